#include "foundation/FileSystem.h"
#include "platform/PciDeviceList.h"
#include "platform/Platform.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>

namespace zolex {
namespace {

TEST(SystemPlatform, ASecondIsASecond) {
    const auto platform = makeSystemPlatform();
    const auto before = std::chrono::steady_clock::now();
    platform->pauseOneSecond();
    // A clock may tick in steps of up to 16 ms.
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(980));
}

TEST(SystemPlatform, ConsoleAndFilesAreTheSystemsOwn) {
    const test::TemporaryDirectory directory;
    directory.write("a.txt", "x");
    const auto platform = makeSystemPlatform();
    EXPECT_TRUE(platform->files().isFile("a.txt"));
    testing::internal::CaptureStdout();
    platform->console().writeOutput("shown\n");
    EXPECT_EQ("shown\n", testing::internal::GetCapturedStdout());
}

TEST(SystemPlatform, TheDevicesOfThisMachineStandInTheirOrder) {
    const auto platform = makeSystemPlatform();
    const auto devices = platform->pciDevices();
    EXPECT_FALSE(devices->collect());
    std::size_t records = 0;
    int place = -1;
    for (const PciDevice* device = devices->next(); device != nullptr; device = devices->next()) {
        const int next = (device->bus * 32 + device->device) * 8 + device->function;
        EXPECT_LE(place, next);
        place = next;
        ++records;
    }
    EXPECT_LE(records, devices->count());
}

} // namespace
} // namespace zolex
