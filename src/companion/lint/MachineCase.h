#pragma once

#include "companion/lint/FindingSink.h"
#include "companion/lint/Models.h"
#include "companion/lint/PolicyView.h"
#include "companion/machine/Snapshot.h"
#include "engine/ControllerPlan.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zolex::companion {

/// One controller of a machine, and what the policies make of it.
struct MachineCase {
    const Snapshot& snapshot;
    const ControllerSnapshot& detail;
    const RAIDController& controller;
    const ControllerPlan& plan;
    const std::vector<PolicyView>& policies;
    const PolicyView* policy = nullptr; ///< that is used; null without one
    /// Whether it is for a plan of zolexctl: findings do not name the controller, all rules on
    /// drives and logical drives are asked for the policy that is used, and nothing is said of what
    /// zolex alone would do wrong.
    bool isOfPlan = false;
    std::string uncovered = {}; ///< letters of the arrays that shall have no hot spare
    /// Locations of the drives that have a job where equal ones do what was planned for others;
    /// nothing: those that are planned.
    std::optional<std::set<std::string>> used = {};

    /// "controller 1 of KQ10Z7V", or "controller 1" of a machine without a name.
    [[nodiscard]] std::string name() const;
    /// What is told, with the controller named first where findings name it.
    [[nodiscard]] std::string told(const std::string& summary) const;
    /// The drive at a position of policies; null when there is none.
    [[nodiscard]] const MachineDrive* drive(DrivePosition position) const;
    /// The drive that a list names; null when there is none.
    [[nodiscard]] const MachineDrive* drive(const DriveView& view) const;
    /// Where the policy names the drive as a member of the array, or else where it gives the array
    /// its drives; null where arrays are chosen automatically.
    [[nodiscard]] const Piece* place(std::size_t array, DrivePosition position) const;
    /// The same of a hot spare.
    [[nodiscard]] const Piece* placeOfHotspare(DrivePosition position) const;
    /// Adds a finding at the piece, or at the policy's header. The controller is named first.
    Finding& add(FindingSink& sink, std::string_view rule, const Piece* place,
                 const std::string& summary, std::vector<std::string> help) const;
};

/// What the machines' names are in findings: the serial number, or else the machine type; or empty.
[[nodiscard]] std::string machineName(const Snapshot& snapshot);
/// "32:2 (Failed, serial 3LQ2B000)".
[[nodiscard]] std::string driveWords(const MachineDrive& drive);
/// "32:0, 32:1, 32:2 and 5 more".
[[nodiscard]] std::string someDrives(const std::vector<const MachineDrive*>& drives,
                                     std::size_t most = 4);

/// All that is to be said of the controller: why there is no plan for it, or what its plan and its
/// policy make of it.
void checkController(const MachineCase& machine, Models& models, FindingSink& sink);
/// ZX701 to ZX706 and ZX711, and the other rules on drives that need a machine.
void checkDrives(const MachineCase& machine, FindingSink& sink);

} // namespace zolex::companion
