// The plan of a controller that zolex does not know, with 240 drives in ten enclosures: eight
// spares, and arrays of all that is like the first drive. Bound: 100 ms.

#include "CpuTime.h"
#include "companion/planning/Plan.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>

namespace zolex::bench {
namespace {

using namespace companion;

constexpr std::int32_t enclosures = 10;
constexpr std::int32_t slots = 24;

Snapshot machineOf() {
    Snapshot snapshot;
    ControllerSnapshot& controller = snapshot.details.emplace_back();
    controller.number = 1;
    controller.index = ControllerSnapshot::noRecord;
    controller.model = "MegaRAID-9560-8i-4GB";
    controller.utility = "STORCLI";
    for (std::int32_t enclosure = 0; enclosure < enclosures; ++enclosure) {
        for (std::int32_t slot = 0; slot < slots; ++slot) {
            DriveFacts drive;
            drive.enclosure = 300 + enclosure;
            drive.slot = slot;
            drive.location = std::to_string(*drive.enclosure) + ":" + std::to_string(slot);
            drive.protocol = "SAS";
            drive.mediaType = "HDD";
            drive.capacityBytes = std::uint64_t{1000} << 30U;
            drive.blockSizeBytes = 512;
            drive.state = DriveState::free;
            drive.health = Health::ok;
            controller.facts.drives.push_back(drive);
            MachineDrive joined;
            joined.facts = std::move(drive);
            joined.policyNumber = static_cast<std::int32_t>(controller.drives.size()) + 1;
            controller.drives.push_back(std::move(joined));
        }
    }
    return snapshot;
}

void planOfManyDrives(benchmark::State& state) {
    const Snapshot snapshot = machineOf();
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = "[Policy.one]\nAppliesTo.1 = t:STORCLI\nArray_Defaults = 0%:8\n";
    for (auto _ : state) {
        const CpuTime time(state);
        const MachinePlan plan = planMachine(snapshot, request);
        if (plan.steps().empty()) {
            state.SkipWithError("nothing is planned");
        }
    }
}
BENCHMARK(planOfManyDrives)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
