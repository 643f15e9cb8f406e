#pragma once

#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "companion/support/SimulatedPlatform.h"
#include "platform/CommandLineSplit.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// A MEGACLI controller: eight drives of 70006 MB in enclosure 32, a mirror on the first two, a
/// failed drive and a hot spare at the end; RAID 0, 1 and 5, strips of up to 128 KB.
constexpr const char* megaRaid = R"({"machineType": "8837", "serialNumber": "KQ1",
    "controllers": [{"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
    "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
            "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
    "raidLevels": ["RAID0", "RAID1", "RAID5"], "maxStripeKB": 128,
    "drives": [{"enclosure": 32, "slot": 0, "count": 6, "sizeMB": 70006},
               {"enclosure": 32, "slot": 6, "sizeMB": 70006, "status": "failed"},
               {"enclosure": 32, "slot": 7, "sizeMB": 70006, "status": "hotspare"}],
    "virtualDisks": [{"level": "RAID1", "spans": [["32:0", "32:1"]]}]}]})";

inline PlanStep step(std::string command, bool isRepeatable = false) {
    PlanStep step;
    step.step = 1;
    step.controller = 1;
    step.isRepeatable = isRepeatable;
    step.argv = splitCommandLine(command);
    step.command = std::move(command);
    step.acceptedExitCodes = {0};
    return step;
}

/// A plan of these steps for the first controller, which is to end as it stands.
inline MachinePlan handMadePlan(const Snapshot& snapshot, std::vector<PlanStep> steps) {
    MachinePlan plan;
    ControllerPlanning& planning = plan.controllers.emplace_back();
    planning.controller = snapshot.details.front();
    planning.disposition = Disposition::planned;
    planning.before = capturedLayout(planning.controller.facts);
    planning.after = planning.before;
    planning.steps = std::move(steps);
    for (std::size_t i = 0; i < planning.steps.size(); ++i) {
        planning.steps[i].step = static_cast<std::int32_t>(i) + 1;
    }
    return plan;
}

inline Snapshot snapshotOf(std::string_view definition) {
    SimulatedPlatform platform(definition);
    return captureMachine(platform, {});
}

} // namespace zolex::companion::test
