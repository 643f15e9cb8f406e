#pragma once

#include "companion/planning/Plan.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What stays on a controller, what goes, and what is to be made.
namespace zolex::companion {

/// What a utility can do besides clearing a controller and filling it again.
struct UtilityAbilities {
    std::string_view utility; ///< "MEGACLI"
    bool removesSingly;       ///< logical drives and spares, one by one
    bool addsBeside;          ///< its creating lines hold beside what stands
    bool lettersArrays;       ///< its lines name arrays by letters that it gives itself
    bool clearsForeign;       ///< it can clear the layouts of other controllers
    bool namesDrives;         ///< its creating lines name drives
    bool setsCaches;          ///< it sets cache modes of what stands, by lines that zolex has
};

/// The row of a controller's utility.
[[nodiscard]] const UtilityAbilities& abilitiesOf(const RAIDController& record);
[[nodiscard]] const UtilityAbilities& abilitiesOf(std::string_view utility);

/// What stays of the captured layout, and what is missing of the wanted one.
struct StandingParts {
    /// A logical drive of the wanted layout.
    struct Volume {
        std::size_t group = 0; ///< index in Layout::groups
        std::size_t volume = 0;
        friend bool operator==(const Volume&, const Volume&) = default;
    };

    std::vector<std::size_t> volumesKept; ///< for each captured group: its first so many stay
    std::vector<bool> sparesKept;         ///< for each captured spare
    /// For each wanted group: the captured group of which some logical drive stays.
    std::vector<std::optional<std::size_t>> standsOn;
    std::vector<Volume> missingVolumes;
    std::vector<std::size_t> missingSpares; ///< indices in Layout::spares
    std::vector<Volume> volumesToSet;       ///< they stay, and get other cache modes

    [[nodiscard]] bool keepsSomething() const;
    [[nodiscard]] bool misses(const Volume& volume) const;
    [[nodiscard]] bool sets(const Volume& volume) const;
};

/// How a controller is brought to what is wanted.
struct StepChoice {
    Strategy strategy = Strategy::none;
    bool clearsAll = false;     ///< the controller is cleared as a whole
    bool clearsForeign = false; ///< all layouts of other controllers are cleared
    StandingParts parts;
    std::vector<StrategyReason> because;
    std::vector<Finding> faults; ///< why it cannot be done
};

[[nodiscard]] StepChoice chooseStrategy(const UtilityAbilities& abilities, StrategyWish wish,
                                        const ControllerPlanning& planning);

/// The number that commands have for a captured logical drive; nothing: it cannot be named.
[[nodiscard]] std::optional<std::int32_t> commandNumberOf(const ControllerPlanning& planning,
                                                          const std::string& id);

/// "write_cache_policy", "read_cache_policy": in which a captured logical drive is not as wanted.
[[nodiscard]] std::vector<std::string> cacheDifferences(const Comparison& comparison,
                                                        const std::string& id);

/// "32:2 32:3 32:4".
[[nodiscard]] std::string driveList(const std::vector<std::string>& drives);
/// The locations of a group, span by span.
[[nodiscard]] std::vector<std::string> groupDrives(const LayoutGroup& group);

} // namespace zolex::companion
