#ifndef _WIN32

#include "foundation/CString.h"
#include "platform/Platform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <future>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zolex {
namespace {

using test::TemporaryDirectory;

class PosixPciDeviceList : public ::testing::Test {
  protected:
    PosixPciDeviceList() { ::setenv("ZOLEX_PCI_ROOT", directory.path().c_str(), 1); }
    ~PosixPciDeviceList() override { ::unsetenv("ZOLEX_PCI_ROOT"); }

    void addDevice(const std::string& name, const std::string& vendor, const std::string& device) {
        directory.write(name + "/vendor", vendor + "\n");
        directory.write(name + "/device", device + "\n");
    }

    /// "count:" and every record in order.
    std::string collect() {
        const auto platform = makeSystemPlatform();
        const auto list = platform->pciDevices();
        EXPECT_FALSE(list->collect());
        std::string text = std::to_string(list->count()) + ":";
        while (const PciDevice* d = list->next()) {
            text += formatText(" %d.%d.%d=%x,%x,%x,%x,%x,%x", int{d->bus}, int{d->device},
                               int{d->function}, unsigned{d->vendorId}, unsigned{d->deviceId},
                               unsigned{d->subsystemVendorId}, unsigned{d->subsystemId},
                               d->classCode, unsigned{d->revision})
                        .view();
        }
        return text;
    }

    TemporaryDirectory directory;
};

TEST_F(PosixPciDeviceList, ReadsEveryFile) {
    addDevice("0000:02:0e.1", "0x1000", "0x0060");
    directory.write("0000:02:0e.1/subsystem_vendor", "0x1014\n");
    directory.write("0000:02:0e.1/subsystem_device", "0x0364\n");
    directory.write("0000:02:0e.1/class", "0x010400\n");
    directory.write("0000:02:0e.1/revision", "0x04\n");
    EXPECT_EQ(collect(), "1: 2.14.1=1000,60,1014,364,10400,4");
}

TEST_F(PosixPciDeviceList, WhatIsMissingOrNoNumberIsZero) {
    directory.write("0000:00:01.0/other", "");
    addDevice("0000:00:02.0", "none", "0x12345");
    addDevice("0000:00:03.0", "", "0x0001");
    directory.write("0000:00:04.0/vendor/deeper", "0x1000\n");
    EXPECT_EQ(collect(), "4: 0.1.0=0,0,0,0,0,0 0.2.0=0,0,0,0,0,0 0.3.0=0,1,0,0,0,0 "
                         "0.4.0=0,0,0,0,0,0");
}

TEST_F(PosixPciDeviceList, APipeThatNobodyWritesIsNotWaitedFor) {
    addDevice("0000:00:01.0", "0x1", "0x2");
    const std::string pipe = directory.path() + "/0000:00:01.0/class";
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    auto found = std::async(std::launch::async, [this] { return collect(); });
    const bool waits = found.wait_for(std::chrono::seconds(20)) != std::future_status::ready;
    if (waits) {
        ::close(::open(pipe.c_str(), O_WRONLY | O_NONBLOCK)); // lets it go on
    }
    EXPECT_FALSE(waits);
    EXPECT_EQ(found.get(), "1: 0.1.0=1,2,0,0,0,0");
}

TEST_F(PosixPciDeviceList, IsInOrderAndCountsWhatDropsOut) {
    addDevice("0001:00:00.0", "0x2", "0x2");
    addDevice("0000:10:00.0", "0x3", "0x3");
    addDevice("0000:0a:1f.7", "0x4", "0x4");
    addDevice("0000:0a:02.0", "0x5", "0x5");
    addDevice("0000:00:00.0", "0x1", "0x1");
    addDevice("0000:00:20.0", "0x6", "0x6");
    addDevice("0000:00:00.8", "0x7", "0x7");
    EXPECT_EQ(collect(), "7: 0.0.0=1,1,0,0,0,0 0.0.0=2,2,0,0,0,0 10.2.0=5,5,0,0,0,0 "
                         "10.31.7=4,4,0,0,0,0 16.0.0=3,3,0,0,0,0");
}

TEST_F(PosixPciDeviceList, OtherNamesAreNoDevices) {
    addDevice("0000:00:01", "0x1", "0x1");
    addDevice("pci0000:00", "0x1", "0x1");
    directory.write("note.txt", "0x1000");
    EXPECT_EQ(collect(), "0:");
}

TEST_F(PosixPciDeviceList, AMissingDirectoryGivesNoDevices) {
    ::setenv("ZOLEX_PCI_ROOT", (directory.path() + "/missing").c_str(), 1);
    EXPECT_EQ(collect(), "0:");
}

TEST_F(PosixPciDeviceList, WithoutAVariableTheSystemsOwnListingIsRead) {
    ::setenv("ZOLEX_PCI_ROOT", "/sys/bus/pci/devices", 1);
    const std::string own = collect();
    ::unsetenv("ZOLEX_PCI_ROOT");
    EXPECT_EQ(collect(), own);
    ::setenv("ZOLEX_PCI_ROOT", "", 1);
    EXPECT_EQ(collect(), own);
}

} // namespace
} // namespace zolex

#endif
