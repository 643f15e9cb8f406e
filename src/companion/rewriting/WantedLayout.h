#pragma once

#include "companion/machine/Snapshot.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// One logical drive that policies shall make again.
struct WantedLogicalDrive {
    std::string id; ///< as its utility numbers it, or its number from 0
    std::string name;
    std::size_t array = 0; ///< index in WantedLayout::arrays
    std::int32_t raidLevel = raid_level::none;
    std::int32_t sizeMb = 0;
    std::int64_t toleranceMb = 0; ///< how far a size may be off
    bool fills = false;           ///< it takes all that its array has left
    std::int32_t writeCache = write_cache::notGiven;
    const LogicalDriveFacts* facts = nullptr; ///< null: not told
};

/// Which settings reach the utility of a controller in its command lines. What does not is left to
/// the controller, whatever a policy says.
struct SettingEffects {
    bool stripeSize = false;
    bool readAhead = false;
    /// The captured mode makes the same lines as other modes, among them that of a policy without
    /// one.
    bool readAheadIsUsual = false;
    bool rebuildRate = false;
    bool writeCache = false;
};

/// What policies shall make again: the layout that zolex captured, with the members that the
/// listings really name where a line was cut.
struct WantedLayout {
    const RAIDController* controller = nullptr;
    const ControllerSnapshot* details = nullptr;
    std::int32_t stripeSize = stripe::none;
    std::int32_t readAhead = read_ahead::adaptive;
    std::int32_t rebuildRate = rebuild_rate::high;
    std::vector<std::vector<DrivePosition>> arrays;
    std::vector<WantedLogicalDrive> logicalDrives;
    std::vector<DrivePosition> hotspares;
    SettingEffects effects; ///< of these logical drives
    /// Whether some drive has no number, so that those of the others would be others without it.
    bool numbersAreShaky = false;

    /// The drive as its utility calls it, or its position.
    [[nodiscard]] std::string locationOf(DrivePosition position) const;
    /// From 1; 0 for a drive without a number.
    [[nodiscard]] std::int32_t numberOf(DrivePosition position) const;
};

/// The layout of a controller that has one. Findings go to `findings`.
[[nodiscard]] WantedLayout wantedLayout(const RAIDController& controller,
                                        const ControllerSnapshot& details,
                                        std::vector<Finding>& findings);

/// "controller 2: WHAT", as a finding.
[[nodiscard]] Finding captureFinding(const ControllerSnapshot& details, const char* code,
                                     Severity severity, const std::string& what,
                                     std::vector<std::string> help = {});

} // namespace zolex::companion
