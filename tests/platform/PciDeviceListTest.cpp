#include "platform/PciDeviceList.h"

#include "foundation/CString.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

using test::FakeConsole;
using test::FakePlatform;
using namespace std::string_literals;

std::string identification(std::string hardwareId) {
    PciDevice device;
    device.hardwareId = std::move(hardwareId);
    parseHardwareIds(device);
    return std::string(formatText("%04X %04X %04X %04X %06X %02X", unsigned{device.vendorId},
                                  unsigned{device.deviceId}, unsigned{device.subsystemVendorId},
                                  unsigned{device.subsystemId}, device.classCode,
                                  unsigned{device.revision})
                           .view());
}

TEST(PciHardwareIds, ReadsEveryField) {
    EXPECT_EQ(identification("PCI\\VEN_1000&DEV_0060&SUBSYS_10061000&REV_04\0"
                             "PCI\\VEN_1000&DEV_0060&SUBSYS_10061000\0"
                             "PCI\\VEN_1000&DEV_0060&CC_010400\0"
                             "PCI\\VEN_1000&DEV_0060&CC_0104\0\0"s),
              "1000 0060 1000 1006 010400 04");
}

TEST(PciHardwareIds, Rows) {
    struct {
        std::string id;
        const char* expected;
    } const rows[] = {
        {"", "0000 0000 0000 0000 000000 00"},
        {"\0\0"s, "0000 0000 0000 0000 000000 00"},
        // Each field keeps its first value, over all strings and within one; 0 is a value.
        {"PCI\\VEN_1&DEV_2\0PCI\\VEN_3&DEV_4\0\0"s, "0001 0002 0000 0000 000000 00"},
        {"PCI\\VEN_1&DEV_2&DEV_5"s, "0001 0002 0000 0000 000000 00"},
        {"PCI\\VEN_0000\0PCI\\VEN_1000\0\0"s, "0000 0000 0000 0000 000000 00"},
        // The value of a field is never taken for the name of another.
        {"PCI\\VEN_1&REV_4&REV_CC&DEV_7"s, "0001 0007 0000 0000 000000 04"},
        // Names are taken with exact case, and the first with its bus in front only.
        {"pci\\ven_1&dev_2&DEV_3"s, "0000 0003 0000 0000 000000 00"},
        {"VEN_1&DEV_2"s, "0000 0002 0000 0000 000000 00"},
        // Not ended by a NUL; a name without a value; bytes that are no number.
        {"PCI\\VEN_1000&DEV_0060"s, "1000 0060 0000 0000 000000 00"},
        {"PCI\\VEN_1000&DEV"s, "1000 0000 0000 0000 000000 00"},
        {"PCI\\VEN_zz&DEV_1"s, "0000 0001 0000 0000 000000 00"},
        {"&&__&PCI\\VEN__1000&&REV_0A&"s, "1000 0000 0000 0000 000000 0A"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(identification(row.id), row.expected) << row.id;
    }
}

/// "bus device function" of a location text.
std::string location(std::string text) {
    PciDevice device;
    device.locationInformation = std::move(text);
    parseLocation(device);
    return std::string(
        formatText("%d %d %d", int{device.bus}, int{device.device}, int{device.function}).view());
}

TEST(PciLocation, Rows) {
    const std::string resource = "@System32\\drivers\\pci.sys,#65536;";
    struct {
        std::string text;
        const char* expected;
    } const rows[] = {
        {"", "0 0 0"},
        {resource, "0 0 0"},
        // Placeholders take the tuple's numbers, each its own.
        {resource + "PCI bus %1, device %2, function %3;(2,1,0)", "2 1 0"},
        {resource + "PCI bus %1, device %2, function %3;(2,1,0)\0"s, "2 1 0"},
        {resource + "PCI bus %3, device %1, function %2;(2,1,0)", "0 2 1"},
        {resource + "PCI bus %1, device %2, function %3; ( 130, 17 , 6 )", "130 17 6"},
        {resource + "PCI bus %1, device %1, function %1;(4,5,6)", "4 4 4"},
        // A number is no placeholder, whatever its value.
        {resource + "PCI bus %1, device 2, function 3;(7,8,9)", "7 2 3"},
        {resource + "PCI bus 1, device %2, function %3;(7,8,9)", "1 2 3"},
        {resource + "PCI bus 1, device 2, function 3;(7,8,9)", "1 2 3"},
        // Fewer numbers than placeholders: those that are missing stay as read.
        {resource + "PCI bus %1, device %2, function %3;(9,8)", "9 8 3"},
        {resource + "PCI bus %1, device %2, function %3;(9)", "9 2 3"},
        {resource + "PCI bus %1, device %2, function %3;()", "1 2 3"},
        {resource + "PCI bus %1, device %2, function %3;(", "1 2 3"},
        {resource + "PCI bus %1, device %2, function %3", "1 2 3"},
        {resource + "PCI bus %1, device %2, function %3;(9,8);(7,6,5)", "9 8 3"},
        {resource + "PCI bus %1, device %2, function %3;(9,8,7);(6,5,4)", "9 8 7"},
        // A part that is no number takes its place all the same.
        {resource + "PCI bus %1, device %2, function %3;(x,1,0)", "1 1 0"},
        {resource + "PCI bus %1, device %2, function %3;(2,x,0)", "2 2 0"},
        {resource + "PCI bus %1, device %2, function %3;(2,1,x)", "2 1 3"},
        // The numbers of a tuple are counted from 1: a placeholder 0 gets none.
        {"x;PCI bus %0, device %1, function %2;(4,5)", "0 4 5"},
        {"x;PCI bus %0, device %1, function %2;(4,5,6)", "0 4 5"},
        {"x;PCI bus %1, device %0, function %2;(4,5,6)", "4 0 5"},
        {"x;PCI bus %1, device %4, function %2;(4,5,6,7)", "4 4 5"},
        // Separated by other bytes than commas.
        {resource + "PCI bus %1, device %2, function %3;(2;1;0)", "2 1 0"},
        {resource + "PCI bus %1, device %2, function %3;( 2 1 0 )", "2 1 0"},
        {resource + "PCI bus %1, device %2, function %3;(2 1 0)", "2 1 0"},
        {resource + "PCI bus %1, device %2, function %3 (2, 1; 0)", "2 1 0"},
        // The tuple counts only after the function.
        {resource + "(4,5,6);PCI bus %1, device %2, function %3", "1 2 3"},
        {resource + "PCI bus %1, device %2;(4,5,6)", "1 2 0"},
        // Without a part in front the first part holds the bus, which is then not read.
        {"PCI bus 2, device 1, function 0", "0 1 0"},
        {"PCI bus 2, device 31, function 7", "0 31 7"},
        // The first number of each stays.
        {resource + "bus 1, device 2, function 3, bus 4, device 5, function 6", "1 2 3"},
        {resource + "bus 0, device 0, function 0, bus 4, device 5, function 6", "0 0 0"},
        // Words in full and with exact case; a word at the end has no number.
        {resource + "PCI Bus 1, devices 2, functions 3", "0 0 0"},
        {resource + "bus", "0 0 0"},
        {resource + "bus 5, device", "5 0 0"},
        {resource + "bus x, device y, function z", "0 0 0"},
        // Numbers beyond every range are not folded into it.
        {resource + "bus 65536, device 99999999999, function 1", "65535 65535 1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(location(row.text), row.expected) << row.text;
    }
}

TEST(PciDeviceRecord, StartsWithoutTextsAndNumbers) {
    const PciDevice device;
    for (const CString& text : device.texts) {
        EXPECT_TRUE(text.isEmpty());
    }
    EXPECT_EQ(device.numbers, (std::array{-1, -1}));
}

PciDevice at(int bus, int device, int function, int id = 0) {
    PciDevice record;
    record.bus = static_cast<std::uint16_t>(bus);
    record.device = static_cast<std::uint16_t>(device);
    record.function = static_cast<std::uint16_t>(function);
    record.deviceId = static_cast<std::uint16_t>(id);
    return record;
}

std::string walk(PCI_DevList_VC& list) {
    std::string positions;
    while (const PciDevice* device = list.next()) {
        positions += formatText("%d.%d.%d#%d ", int{device->bus}, int{device->device},
                                int{device->function}, int{device->deviceId})
                         .view();
    }
    return positions;
}

TEST(PciDeviceOrder, IsByBusDeviceAndFunction) {
    FakePlatform platform;
    platform.devices = {at(1, 0, 0), at(0, 31, 7), at(0, 2, 1), at(255, 0, 0),
                        at(0, 2, 0), at(0, 10, 0), at(0, 0, 0)};
    const auto list = platform.pciDevices();
    EXPECT_FALSE(list->collect());
    EXPECT_EQ(list->count(), 7U);
    EXPECT_EQ(walk(*list), "0.0.0#0 0.2.0#0 0.2.1#0 0.10.0#0 0.31.7#0 1.0.0#0 255.0.0#0 ");
}

TEST(PciDeviceOrder, RecordsAtOnePlaceStayInTheOrderFound) {
    FakePlatform platform;
    platform.devices = {at(1, 0, 0, 3), at(0, 0, 0, 1), at(1, 0, 0, 2), at(0, 0, 0, 4)};
    const auto list = platform.pciDevices();
    list->collect();
    EXPECT_EQ(walk(*list), "0.0.0#1 0.0.0#4 1.0.0#3 1.0.0#2 ");
}

TEST(PciDeviceOrder, RecordsOutOfRangeDropOutButAreCounted) {
    FakePlatform platform;
    platform.devices = {at(256, 0, 0), at(0, 32, 0), at(0, 0, 8), at(3, 31, 7)};
    const auto list = platform.pciDevices();
    list->collect();
    EXPECT_EQ(list->count(), 4U);
    EXPECT_EQ(walk(*list), "3.31.7#0 ");
}

TEST(PciDeviceOrder, NextEndsInNullUntilReset) {
    FakePlatform platform;
    platform.devices = {at(0, 1, 0), at(0, 2, 0)};
    const auto list = platform.pciDevices();
    EXPECT_EQ(list->next(), nullptr);
    EXPECT_FALSE(list->rescan());
    EXPECT_EQ(walk(*list), "0.1.0#0 0.2.0#0 ");
    EXPECT_EQ(list->next(), nullptr);
    list->reset();
    EXPECT_EQ(walk(*list), "0.1.0#0 0.2.0#0 ");
    EXPECT_EQ(list->spare(), 0);
    EXPECT_EQ(platform.consoleFake.output, "");
}

TEST(PciDeviceOrder, CollectingAgainStartsAfresh) {
    FakePlatform platform;
    platform.devices = {at(0, 1, 0), at(0, 2, 0)};
    const auto list = platform.pciDevices();
    list->collect();
    list->next();
    list->collect();
    EXPECT_EQ(list->count(), 2U);
    EXPECT_EQ(walk(*list), "0.1.0#0 0.2.0#0 ");
}

TEST(PciDeviceListInterface, EveryOperationComplains) {
    FakeConsole console;
    PCI_DevList_VC list(console);
    const std::string complaint = "Unimplemented SubClass PCI_DevList_VC Virtual funciton\n";
    EXPECT_FALSE(list.rescan());
    EXPECT_EQ(console.takeOutput(), complaint);
    EXPECT_EQ(list.next(), nullptr);
    EXPECT_EQ(console.takeOutput(), complaint);
    list.reset();
    EXPECT_EQ(console.takeOutput(), complaint);
    EXPECT_EQ(list.count(), 0U);
    EXPECT_EQ(console.takeOutput(), complaint);
    EXPECT_EQ(list.spare(), 0);
    EXPECT_EQ(console.takeOutput(), complaint);
    EXPECT_FALSE(list.collect());
    EXPECT_EQ(console.takeOutput(), complaint);
    EXPECT_EQ(console.error, "");
}

} // namespace
} // namespace zolex
