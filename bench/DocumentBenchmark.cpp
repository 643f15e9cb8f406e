// Documents of a machine of 36 controllers with 144 drives each, and of a plan for it. Bound of the
// machine's: 50 ms.

#include "CpuTime.h"
#include "companion/json/MachineDocument.h"
#include "companion/json/PlanDocument.h"
#include "companion/planning/Steps.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

using namespace companion;

constexpr std::int32_t controllers = 36;
constexpr std::int32_t drives = 144;
constexpr std::int32_t drivesOfArray = 12;
constexpr std::uint64_t driveBytes = std::uint64_t{69376} << 20U;

std::string locationOf(std::int32_t drive) {
    constexpr std::int32_t slots = 24;
    return std::to_string(drive / slots + 8) + ":" + std::to_string(drive % slots);
}

MachineDrive driveOf(std::int32_t drive) {
    MachineDrive made;
    made.facts.location = locationOf(drive);
    made.facts.serialNumber = "3LQ2A" + std::to_string(drive);
    made.facts.manufacturer = "NORVIK";
    made.facts.model = "NV73455S";
    made.facts.revision = "S527";
    made.facts.protocol = "SAS";
    made.facts.mediaType = "HDD";
    made.facts.capacityBytes = driveBytes;
    made.facts.state = DriveState::member;
    made.facts.health = Health::ok;
    made.facts.reportedState = "Online";
    made.facts.mediaErrorCount = 0;
    made.policyNumber = drive + 1;
    made.policyPosition = DrivePosition{1 + drive / 36, drive % 36};
    return made;
}

/// A group of consecutive drives that stands, with one logical drive.
LayoutGroup groupOf(std::int32_t array) {
    LayoutGroup group;
    group.id = std::to_string(array);
    group.spans.emplace_back();
    for (std::int32_t drive = 0; drive < drivesOfArray; ++drive) {
        group.spans[0].push_back(locationOf(array * drivesOfArray + drive));
    }
    LayoutVolume volume;
    volume.id = std::to_string(array);
    volume.raidType = "RAID5";
    volume.capacityBytes = (drivesOfArray - 1) * driveBytes;
    volume.fills = true;
    volume.health = Health::ok;
    group.volumes.push_back(volume);
    return group;
}

/// The wanted array on the drives of a standing one, with its command line and what it destroys.
void planArray(std::int32_t array, ControllerPlanning& planning) {
    const LayoutGroup& standing = planning.before.groups[static_cast<std::size_t>(array)];
    const std::string letter(1, static_cast<char>('A' + array));
    PlannedArray wanted{letter, drivesOfArray * driveBytes, {}};
    for (const std::string& location : standing.spans[0]) {
        wanted.drives.push_back({location, {"listed", "Array." + letter, 20 + array, "1"}});
    }
    planning.arrays.push_back(wanted);
    PlannedVolume volume;
    volume.id = "Logical." + std::to_string(array + 1);
    volume.array = letter;
    volume.raidType = "RAID6";
    volume.sizePolicy = "FILL";
    volume.fills = true;
    volume.capacityBytes = (drivesOfArray - 2) * driveBytes;
    for (const char* const attribute : {"raid_type", "capacity_bytes", "strip_size_bytes"}) {
        volume.reasons[attribute] = {"given", volume.id, 40 + array, "RAID6"};
    }
    planning.volumes.push_back(volume);
    planning.losses.push_back({planning.controller.number, "logical_drive", standing.id, "RAID5",
                               standing.spans[0], (drivesOfArray - 1) * driveBytes, "Optimal"});
}

PlanStep stepOf(const ControllerPlanning& planning, std::int32_t array) {
    const std::size_t index = static_cast<std::size_t>(array);
    PlanStep step;
    step.step = (planning.controller.number - 1) * (drives / drivesOfArray) + array + 1;
    step.controller = planning.controller.number;
    step.action = "create-array";
    step.argv = {"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R6", "[", "", "]", "WB", "-a0"};
    for (const PlannedDrive& drive : planning.arrays[index].drives) {
        step.argv[5] += (step.argv[5].empty() ? "" : ",") + drive.location;
    }
    for (const std::string& argument : step.argv) {
        step.command += (step.command.empty() ? "" : " ") + argument;
    }
    step.acceptedExitCodes = {0};
    step.creates = {planning.arrays[index].id, planning.volumes[index].id};
    return step;
}

ControllerPlanning planningOf(std::int32_t number) {
    constexpr std::int32_t arrays = drives / drivesOfArray;
    ControllerPlanning planning;
    planning.controller.number = number;
    planning.controller.model = "LSI-MegaRAID-8480";
    planning.controller.utility = "MEGACLI";
    for (std::int32_t drive = 0; drive < drives; ++drive) {
        planning.controller.drives.push_back(driveOf(drive));
        planning.controller.facts.drives.push_back(planning.controller.drives.back().facts);
    }
    planning.disposition = Disposition::planned;
    planning.strategy = Strategy::rebuild;
    for (std::int32_t array = 0; array < arrays; ++array) {
        planning.before.groups.push_back(groupOf(array));
    }
    for (std::int32_t array = 0; array < arrays; ++array) {
        planArray(array, planning);
        planning.steps.push_back(stepOf(planning, array));
    }
    return planning;
}

MachinePlan planOf36() {
    MachinePlan plan;
    plan.id = "p-5f1c09ab77e2";
    plan.fingerprint.identity = std::string(64, '1');
    plan.fingerprint.state = std::string(64, '2');
    for (std::int32_t number = 1; number <= controllers; ++number) {
        plan.controllers.push_back(planningOf(number));
    }
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    return plan;
}

const DocumentHead head{{"plan", "site.ini"}, "2026-11-21T21:05:00+01:00"};

void setBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    state.counters["megabytes"] = static_cast<double>(bytes) / 1e6;
}

// Bound by the copying of texts.
void writeMachineDocument(benchmark::State& state) {
    Snapshot snapshot;
    for (const ControllerPlanning& planning : planOf36().controllers) {
        snapshot.details.push_back(planning.controller);
    }
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        bytes = machineDocument(snapshot, head).size();
    }
    setBytes(state, bytes);
}
BENCHMARK(writeMachineDocument)->UseManualTime()->Unit(benchmark::kMillisecond);

// Likewise.
void writePlanDocument(benchmark::State& state) {
    const MachinePlan plan = planOf36();
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        bytes = planDocument(plan, head).size();
    }
    setBytes(state, bytes);
}
BENCHMARK(writePlanDocument)->UseManualTime()->Unit(benchmark::kMillisecond);

// Bound by the library's parser; a third goes into the values.
void readPlanDocument(benchmark::State& state) {
    const std::string text = planDocument(planOf36(), head);
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const PlanReading reading = companion::readPlanDocument(text, "plan.json");
        if (!reading.plan || reading.plan->steps().empty()) {
            state.SkipWithError("the plan is not read");
            break;
        }
    }
    setBytes(state, text.size());
}
BENCHMARK(readPlanDocument)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
