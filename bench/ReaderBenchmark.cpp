// How fast the listings of MegaCLI are read, in bytes a second of listing.

#include "controllers/Application.h"
#include "controllers/RAIDController.h"
#include "platform/CapturedOutput.h"
#include "readers/MEGAReader.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace {

/// A drive listing with the usual lines of one drive's block, `drives` times. Places repeat when
/// there are more drives than places.
std::string driveListing(std::int64_t drives) {
    std::string text = "\r\nAdapter #0\r\n\r\n";
    for (std::int64_t i = 0; i < drives; ++i) {
        const auto slot = static_cast<long>(i % zolex::RAIDController::ids);
        const auto enclosure = static_cast<long>(i / zolex::RAIDController::ids % 4);
        const zolex::CString block =
            zolex::formatText("Enclosure Device ID: %ld\r\n"
                              "Slot Number: %ld\r\n"
                              "Drive's position: DiskGroup: 0, Span: 0, Arm: 0\r\n"
                              "Enclosure position: 1\r\n"
                              "Device Id: 8\r\n"
                              "WWN: 5000C500A10B0000\r\n"
                              "Sequence Number: 2\r\n"
                              "Media Error Count: 0\r\n"
                              "Other Error Count: 0\r\n"
                              "Predictive Failure Count: 0\r\n"
                              "Last Predictive Failure Event Seq Number: 0\r\n"
                              "PD Type: SAS\r\n"
                              "\r\n"
                              "Raw Size: 1.819 TB [0xe8e088b0 Sectors]\r\n"
                              "Non Coerced Size: 1.818 TB [0xe8d088b0 Sectors]\r\n"
                              "Coerced Size: 1.818 TB [0xe8b6d000 Sectors]\r\n"
                              "Sector Size:  512\r\n"
                              "Firmware state: Online, Spun Up\r\n"
                              "Commissioned Spare : No\r\n"
                              "Emergency Spare : No\r\n"
                              "Device Firmware Level: 0004\r\n"
                              "Shield Counter: 0\r\n"
                              "Successful diagnostics completion on :  N/A\r\n"
                              "SAS Address(0): 0x5000c500a10b0000\r\n"
                              "SAS Address(1): 0x0\r\n"
                              "Connected Port Number: 0(path0) \r\n"
                              "Inquiry Data: NORVIK  NV2000NM0023    0004Z1X0A000            \r\n"
                              "FDE Capable: Not Capable\r\n"
                              "FDE Enable: Disable\r\n"
                              "Secured: Unsecured\r\n"
                              "Locked: Unlocked\r\n"
                              "Needs EKM Attention: No\r\n"
                              "Foreign State: None \r\n"
                              "Device Speed: 6.0Gb/s \r\n"
                              "Link Speed: 6.0Gb/s \r\n"
                              "Media Type: Hard Disk Device\r\n"
                              "Drive Temperature :29C (84.20 F)\r\n"
                              "PI Eligibility:  No \r\n"
                              "Drive is formatted for PI information:  No\r\n"
                              "PI: No PI\r\n"
                              "Port-0 :\r\n"
                              "Port status: Active\r\n"
                              "Port's Linkspeed: 6.0Gb/s \r\n"
                              "Port-1 :\r\n"
                              "Port status: Active\r\n"
                              "Port's Linkspeed: Unknown \r\n"
                              "Drive has flagged a S.M.A.R.T alert : No\r\n"
                              "\r\n\r\n",
                              enclosure + 8, slot);
        text += block.view();
    }
    return text + "\r\nExit Code: 0x00\r\n";
}

void readMegaCliDrives(benchmark::State& state) {
    const auto platform = zolex::makeSystemPlatform();
    zolex::Application application(*platform);
    zolex::MEGAReader reader(application);
    zolex::RAIDController controller;
    controller.setType(zolex::controller_type::megaRaid);
    const std::string listing = driveListing(state.range(0));
    for (auto _ : state) {
        reader.readConfiguration(controller, std::make_shared<zolex::CapturedOutput>(listing));
        benchmark::DoNotOptimize(controller.numberOfDrives());
    }
    if (controller.numberOfDrives() != std::min<std::int64_t>(state.range(0), 144)) {
        state.SkipWithError("drives are missing");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(listing.size()));
}
BENCHMARK(readMegaCliDrives)->Arg(10)->Arg(144)->Arg(5000);

} // namespace
