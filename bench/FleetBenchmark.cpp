// `rehearse` on 200 recordings of eight models, from the text of each recording to what is told of
// all: it is read, captured, planned by one policies file, and the plan is played on a copy. Half
// of the servers have other arrays, which are lost. Bound: 2 s of processor time.

#include "CpuTime.h"
#include "MemoryPlatform.h"
#include "companion/json/RecordingLines.h"
#include "companion/machine/Capture.h"
#include "companion/picture/FleetText.h"
#include "companion/recording/RecordingPlatform.h"
#include "companion/recording/ReplayPlatform.h"
#include "companion/rehearsal/Fleet.h"
#include "model/Definition.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"
#include "setup/Samples.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

using namespace companion;

constexpr std::size_t servers = 200;
/// Samples of one model each; the last has a controller of each utility.
constexpr std::array<const char*, 8> kinds = {"single", "arcconf",     "hrconf",   "qtcsend",
                                              "cfggen", "cfggen-scsi", "hyperwin", "mixed"};

constexpr const char* policies = "[Policy.large]\n"
                                 "AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Array.B = 3,4,5,6,7\n"
                                 "Hotspares = 8\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n"
                                 "Logical.2 = B:FILL:5:ON\n"
                                 "[Policy.rest]\n"
                                 "AppliesTo.1 = ALL\n"
                                 "Array_Defaults = 10%:0\n";

class SampleFunctions : public OrderedPciDeviceList {
  public:
    SampleFunctions(Console& console, std::vector<PciDevice> devices)
        : OrderedPciDeviceList(console), found_(std::move(devices)) {}

  protected:
    std::vector<PciDevice> enumerate() override { return found_; }

  private:
    std::vector<PciDevice> found_;
};

/// A virtual server whose children are played in the process.
class SampleMachine : public MemoryPlatform {
  public:
    SampleMachine(const char* sample, std::size_t number) {
        zolex_sim::Problem problem;
        server_ = zolex_sim::readDefinition(zolex_sim::sampleNamed(sample)->definition, problem);
        server_.serialNumber = "KQ" + std::to_string(10000 + number);
        for (const zolex_sim::Controller* controller : server_.controllersInPciOrder()) {
            const zolex_sim::PciFunction& pci = controller->identity.pci;
            PciDevice device;
            device.bus = static_cast<std::uint16_t>(pci.bus);
            device.device = static_cast<std::uint16_t>(pci.device);
            device.function = static_cast<std::uint16_t>(pci.function);
            device.vendorId = pci.vendorId;
            device.deviceId = pci.deviceId;
            device.subsystemVendorId = pci.subsystemVendorId;
            device.subsystemId = pci.subsystemId;
            device.classCode = pci.classCode;
            devices_.push_back(device);
        }
    }

    ChildResult runChild(std::string_view commandLine, bool /*capture*/,
                         std::chrono::milliseconds /*limit*/) override {
        std::vector<std::string> words = splitCommandLine(commandLine);
        if (words.empty()) {
            return {};
        }
        const bool isDetector = words.front() == "hwdetect.exe";
        if (!isDetector && words.front() != "UTIL.BAT") {
            return {};
        }
        words.erase(words.begin());
        zolex_sim::PlayResult result = isDetector ? zolex_sim::playDetector(server_, words)
                                                  : zolex_sim::playUtility(server_, words);
        return {ChildOutcome::ended, static_cast<std::uint32_t>(result.exitCode),
                std::move(result.output)};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override {
        return std::make_unique<SampleFunctions>(console(), devices_);
    }

  private:
    zolex_sim::Server server_;
    std::vector<PciDevice> devices_;
};

void carryOut(SampleMachine& machine, const MachinePlan& plan) {
    for (const PlanStep& step : plan.steps()) {
        std::string line;
        for (const std::string& word : step.argv) {
            line += (line.empty() ? "" : " ") + word;
        }
        machine.runChild(line, true, {});
    }
}

/// The texts of the recordings.
std::vector<std::string> recordings() {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < servers; ++i) {
        SampleMachine machine(kinds.at(i % kinds.size()), i);
        if (i / kinds.size() % 2 == 1) {
            PlanRequest other;
            other.policiesText = "[Policy.other]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                 "Array.A = 1,2\nHotspares = 3\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:0\n";
            carryOut(machine, planMachine(captureMachine(machine, {}), other));
        }
        Recording recording;
        CallList calls;
        RecordingPlatform recorder(machine, calls);
        static_cast<void>(captureMachine(recorder, {}));
        recording.calls = std::move(calls.calls);
        texts.push_back(recordingText(recording));
    }
    return texts;
}

void rehearse200Servers(benchmark::State& state) {
    const std::vector<std::string> texts = recordings();
    MemoryPlatform system;
    FleetTerms terms;
    terms.request.policiesFile = "site.ini";
    terms.request.policiesText = policies;
    terms.everyFault = state.range(0) == 1;
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const PoliciesReading reading = readPlanPolicies(terms.request);
        Fleet fleet;
        fleet.policiesFile = "site.ini";
        for (const std::string& text : texts) {
            const RecordingReading read = readRecording(text, "server.zrec");
            ReplayPlatform machine(*read.recording, system);
            FleetServer& server = fleet.servers.emplace_back(rehearseServer(
                captureMachine(machine, {}), reading, terms, machine, CaptureRequest()));
            server.plan.reset();
        }
        completeFleet(fleet, scanPolicies("site.ini", policies));
        benchmark::DoNotOptimize(fleetText(fleet, {}).data());
        state.counters["as_planned"] = static_cast<double>(fleet.count(ServerResult::asPlanned));
        state.counters["errors"] = static_cast<double>(fleet.count(ServerResult::error));
        state.counters["lost"] = static_cast<double>(fleet.losses().logicalDrives);
    }
}
// Bound by what the copies print and what is read of it; with 1 each command is made to fail, too.
BENCHMARK(rehearse200Servers)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
