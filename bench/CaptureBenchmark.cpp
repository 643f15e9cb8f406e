// What `show` does beyond its children: 36 controllers of 144 drives each are captured, read twice,
// joined and written as text. Bound: 50 ms.

#include "CpuTime.h"
#include "Listings.h"
#include "MemoryPlatform.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Fingerprint.h"
#include "companion/picture/MachineText.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

using namespace companion;

constexpr int drives = 144;
constexpr int mostOfUtility = 15;

class Functions : public OrderedPciDeviceList {
  public:
    Functions(Console& console, std::vector<PciDevice> devices)
        : OrderedPciDeviceList(console), found_(std::move(devices)) {}

  protected:
    std::vector<PciDevice> enumerate() override { return found_; }

  private:
    std::vector<PciDevice> found_;
};

/// A server of up to 36 controllers: 15 of MEGACLI, 15 of ARCCONF, the others of HRCONF. Its
/// children have printed all that they will.
class Server : public MemoryPlatform {
  public:
    explicit Server(int controllers) {
        for (int i = 0; i < controllers; ++i) {
            PciDevice device;
            device.bus = static_cast<std::uint16_t>(i + 1);
            const int family = i / mostOfUtility;
            const int number = i % mostOfUtility;
            if (family == 0) {
                device.vendorId = 0x1000;
                device.deviceId = 0x0079;
                std::vector<std::string> listings = megaCliListings(drives, number);
                const char* const options[] = {"-LdPdInfo", "-pdList", "-adpallinfo"};
                for (std::size_t listing = 0; listing < listings.size(); ++listing) {
                    add("MEGACLI " + std::string(options[listing]) + " -a" + std::to_string(number),
                        std::move(listings[listing]));
                }
            } else if (family == 1) {
                device.vendorId = 0x9005;
                device.deviceId = 0x0286;
                add("ARCCONF GETCONFIG " + std::to_string(number + 1) + " AL",
                    arcconfListing(drives));
            } else {
                device.vendorId = 0x9005;
                device.deviceId = 0x808F;
                add("HRCONF GETCONFIG " + std::to_string(number + 1) + " AL",
                    hrconfListing(drives));
            }
            devices_.push_back(device);
        }
    }

    ChildResult runChild(std::string_view commandLine, bool /*capture*/,
                         std::chrono::milliseconds /*limit*/) override {
        const std::string_view line =
            commandLine.substr(0, commandLine.find_last_not_of(" \n") + 1);
        const auto output = outputs_.find(line);
        return output == outputs_.end() ? ChildResult()
                                        : ChildResult{ChildOutcome::ended, 0, output->second};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override {
        return std::make_unique<Functions>(console(), devices_);
    }

  private:
    void add(const std::string& command, std::string output) {
        outputs_["UTIL.BAT " + command] = std::move(output);
    }

    std::vector<PciDevice> devices_;
    std::map<std::string, std::string, std::less<>> outputs_;
};

bool isWhole(const Snapshot& snapshot, std::int64_t controllers) {
    return snapshot.isComplete() &&
           static_cast<std::int64_t>(snapshot.details.size()) == controllers &&
           snapshot.details.back().drives.size() == static_cast<std::size_t>(drives);
}

// Bound by the two readings of the listings.
void captureServer(benchmark::State& state) {
    Server server(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const Snapshot snapshot = captureMachine(server, {});
        if (!isWhole(snapshot, state.range(0))) {
            state.SkipWithError("the server is not captured");
            break;
        }
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(captureServer)
    ->Arg(9)
    ->Arg(18)
    ->Arg(36)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Bound by the capture.
void showServer(benchmark::State& state) {
    Server server(36);
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const Snapshot snapshot = captureMachine(server, {});
        const std::string text = machineText(snapshot, {}, false);
        if (!isWhole(snapshot, 36) || text.size() < 100000) {
            state.SkipWithError("the server is not shown");
            break;
        }
    }
}
BENCHMARK(showServer)->UseManualTime()->Unit(benchmark::kMillisecond);

// Bound by the sorting of drives and groups, and the hash.
void fingerprintServer(benchmark::State& state) {
    Server server(36);
    const Snapshot snapshot = captureMachine(server, {});
    for ([[maybe_unused]] auto _ : state) {
        const CpuTime time(state);
        const Fingerprint print = fingerprintOf(snapshot);
        benchmark::DoNotOptimize(print.state.data());
    }
}
BENCHMARK(fingerprintServer)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
