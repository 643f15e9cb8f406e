#include "companion/machine/Capture.h"

#include "companion/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

TEST(Capture, DrivesOfAPlainServerHaveTheirNumbers) {
    SimulatedPlatform platform("single");
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(snapshot.machine.machineType, "8837");
    EXPECT_EQ(snapshot.machine.serialNumber, "KQ10Z7V");
    EXPECT_EQ(snapshot.machineSource, "hwdetect.exe");
    ASSERT_EQ(snapshot.details.size(), 1U);
    const ControllerSnapshot& controller = snapshot.details[0];
    EXPECT_EQ(controller.number, 1);
    EXPECT_EQ(controller.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(controller.utility, "MEGACLI");
    EXPECT_EQ(controller.adapter, 0);
    EXPECT_EQ(controller.pci, "0000:02:0e.0");
    EXPECT_EQ(controller.pciIds, "1000:0411:1000:1002");
    EXPECT_FALSE(controller.failed);
    ASSERT_EQ(controller.commands.size(), 3U);
    EXPECT_EQ(controller.commands[1].command, "UTIL.BAT MEGACLI -pdList -a0 ");
    ASSERT_EQ(controller.drives.size(), 8U);
    EXPECT_EQ(controller.drives[7].facts.location, "32:7");
    EXPECT_EQ(controller.drives[7].policyNumber, 8);
    EXPECT_EQ(controller.drives[7].policyPosition, (DrivePosition{1, 7}));
    EXPECT_TRUE(snapshot.findings.empty());
    EXPECT_TRUE(controller.findings.empty());
}

} // namespace
} // namespace zolex::companion
