// What `plan` does beyond its children: policies are matched and planned for controllers of many
// drives, the plan is played on their copies, and each step is made to fail. Half of the
// controllers are of MEGACLI, a third of ARCCONF, the others of HRCONF; each gets eight arrays and
// a spare. Bound: 1 s for 36 controllers of 144 drives.

#include "CpuTime.h"
#include "MemoryPlatform.h"
#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "companion/rehearsal/Rehearse.h"
#include "model/Definition.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

using namespace companion;

constexpr int enclosures = 4;
constexpr int arrays = 8;

/// A kind of controller, and its share of twelve.
struct Kind {
    const char* utility;
    const char* model;
    const char* product;
    const char* pciIds;
    const char* place;  ///< of a drive: the number of its enclosure or channel
    const char* number; ///< within it
    int share;
};
// clang-format off
constexpr std::array<Kind, 3> kinds = {{
    {"MEGACLI", "LSI-MegaRAID-8480", "LSI MegaRAID SAS 8480E", R"("vendorId": "0x1000", "deviceId": "0x0411", "subsystemVendorId": "0x1000", "subsystemId": "0x1002")", "enclosure", "slot", 5},
    {"ARCCONF", "Kestrix-B7", "Norvik Kestrix B7", R"("vendorId": "0x9005", "deviceId": "0x0286")", "channel", "device", 5},
    {"HRCONF", "Kestrix-A10", "Norvik Kestrix A10", R"("vendorId": "0x9005", "deviceId": "0x808f", "subsystemVendorId": "0x9005", "subsystemId": "0x005e")", "channel", "device", 2},
}};
// clang-format on

const Kind& kindOf(int controller) {
    constexpr int twelve = 12;
    int share = controller % twelve;
    for (const Kind& kind : kinds) {
        if (share < kind.share) {
            return kind;
        }
        share -= kind.share;
    }
    return kinds.front();
}

std::string definitionOf(int controllers, int drives) {
    std::string text = R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [)";
    for (int i = 0; i < controllers; ++i) {
        const Kind& kind = kindOf(i);
        text += std::string(i == 0 ? "" : ", ") + R"({"utility": ")" + kind.utility +
                R"(", "model": ")" + kind.model + R"(", "productName": ")" + kind.product +
                R"(", "pci": {"bus": )" + std::to_string(i + 1) + R"(, "device": 1, )" +
                kind.pciIds + R"(}, "drives": [)";
        const int perEnclosure = (drives + enclosures - 1) / enclosures;
        for (int first = 0; first < drives; first += perEnclosure) {
            text += std::string(first == 0 ? "" : ", ") + R"({")" + kind.place +
                    "\": " + std::to_string(first / perEnclosure) + ", \"" + kind.number +
                    R"(": 0, "count": )" + std::to_string(perEnclosure) + R"(, "sizeMB": 70006})";
        }
        text += "]}";
    }
    return text + "]}";
}

class Functions : public OrderedPciDeviceList {
  public:
    Functions(Console& console, std::vector<PciDevice> devices)
        : OrderedPciDeviceList(console), found_(std::move(devices)) {}

  protected:
    std::vector<PciDevice> enumerate() override { return found_; }

  private:
    std::vector<PciDevice> found_;
};

/// A virtual server whose children are played in the process.
class VirtualMachine : public MemoryPlatform {
  public:
    VirtualMachine(int controllers, int drives) {
        zolex_sim::Problem problem;
        server_ = zolex_sim::readDefinition(definitionOf(controllers, drives), problem);
        for (const zolex_sim::Controller& controller : server_.controllers) {
            const zolex_sim::PciFunction& pci = controller.identity.pci;
            PciDevice device;
            device.bus = static_cast<std::uint16_t>(pci.bus);
            device.device = static_cast<std::uint16_t>(pci.device);
            device.vendorId = pci.vendorId;
            device.deviceId = pci.deviceId;
            device.subsystemVendorId = pci.subsystemVendorId;
            device.subsystemId = pci.subsystemId;
            devices_.push_back(device);
        }
    }

    ChildResult runChild(std::string_view commandLine, bool /*capture*/,
                         std::chrono::milliseconds /*limit*/) override {
        std::vector<std::string> arguments = splitCommandLine(commandLine);
        if (arguments.empty() || arguments.front() != "UTIL.BAT") {
            return {};
        }
        arguments.erase(arguments.begin());
        zolex_sim::PlayResult result = zolex_sim::playUtility(server_, arguments);
        return {ChildOutcome::ended, static_cast<std::uint32_t>(result.exitCode),
                std::move(result.output)};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override {
        return std::make_unique<Functions>(console(), devices_);
    }

  private:
    zolex_sim::Server server_;
    std::vector<PciDevice> devices_;
};

/// Eight arrays of the first drives in pairs of equal size, and a spare.
std::string policiesFor(int drives, int firstDrive) {
    std::string text = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n";
    const int members = (drives - 1 - firstDrive) / arrays / 2 * 2;
    int drive = firstDrive;
    for (int array = 0; array < arrays && members > 0; ++array) {
        text += "Array." + std::string(1, static_cast<char>('A' + array)) + " = ";
        for (int i = 0; i < members; ++i) {
            text += (i == 0 ? "" : ",") + std::to_string(++drive);
        }
        text += "\n";
    }
    if (members == 0) {
        text += "Array.A = 1,2,3,4\n";
        drive = 4;
    }
    text += "Hotspares = " + std::to_string(drive + 1) + "\nLogical_Mode = CUSTOM\n";
    for (int array = 0; array < (members == 0 ? 1 : arrays); ++array) {
        text += "Logical." + std::to_string(array + 1) + " = " +
                std::string(1, static_cast<char>('A' + array)) +
                ":FILL:" + (members == 2 ? "1" : "10") + "\n";
    }
    return text;
}

MachinePlan planFor(const Snapshot& snapshot, const std::string& policies) {
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policies;
    request.strategy = StrategyWish::rebuild;
    return planMachine(snapshot, request);
}

/// Runs the plan on the machine, which is then as planned.
void carryOut(VirtualMachine& machine, const MachinePlan& plan) {
    for (const PlanStep& step : plan.steps()) {
        std::string line;
        for (const std::string& word : step.argv) {
            line += (line.empty() ? "" : " ") + word;
        }
        machine.runChild(line, true, {});
    }
}

void planAndRehearse(benchmark::State& state, bool isConfigured) {
    const int drives = static_cast<int>(state.range(1));
    VirtualMachine machine(static_cast<int>(state.range(0)), drives);
    if (isConfigured) {
        carryOut(machine, planFor(captureMachine(machine, {}), policiesFor(drives, 0)));
    }
    const Snapshot snapshot = captureMachine(machine, {});
    const std::string policies = policiesFor(drives, isConfigured ? 1 : 0);
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        MachinePlan plan = planFor(snapshot, policies);
        const auto steps = static_cast<std::int32_t>(plan.steps().size());
        rehearse(snapshot, plan);
        if (steps == 0 || !plan.rehearsal.endsAsPlanned || plan.rehearsal.faultsTried != steps ||
            plan.rehearsal.resumesAsPlanned != steps) {
            state.SkipWithError("the plan is not rehearsed");
            break;
        }
        state.counters["steps"] = steps;
    }
}

// Bound by what the copies print and what is read of it.
void planBlankServer(benchmark::State& state) {
    planAndRehearse(state, false);
}
BENCHMARK(planBlankServer)
    ->ArgsProduct({{1, 8, 36}, {8, 36, 144}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// Bound by the same; what stands is cleared first.
void planConfiguredServer(benchmark::State& state) {
    planAndRehearse(state, true);
}
BENCHMARK(planConfiguredServer)
    ->ArgsProduct({{1, 8, 36}, {8, 36, 144}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
