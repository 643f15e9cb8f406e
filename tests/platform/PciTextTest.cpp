#include "platform/PciText.h"

#include "platform/PciDeviceList.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

TEST(PciText, LeadingHexStopsAtTheFirstOtherByte) {
    struct {
        std::string_view text;
        std::uint32_t expected;
    } const rows[] = {
        {"1000", 0x1000},
        {"00A0", 0xA0},
        {"10061000", 0x10061000},
        {"ffFF", 0xFFFF},
        {"04x", 4},
        {"0x1f3D", 0x1F3D},
        {"", 0},
        {"x", 0},
        {" 1", 0},
        {"1FFFFFFFF", 0xFFFFFFFF},
        {"0x", 0},
        {"12 34", 0x12},
        {"FFFFFFFFFFFFFFFFFFFFFFFFF", 0xFFFFFFFF},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(pci::leadingHex(row.text), row.expected) << row.text;
    }
}

TEST(PciText, LeadingDecimalIsClampedAndNeedsADigit) {
    EXPECT_EQ(pci::leadingDecimal("0"), 0);
    EXPECT_EQ(pci::leadingDecimal("12)"), 12);
    EXPECT_EQ(pci::leadingDecimal("65535"), 65535);
    EXPECT_EQ(pci::leadingDecimal("65536"), 65535);
    EXPECT_EQ(pci::leadingDecimal("99999999999999999999"), 65535);
    for (const char* text : {"", ")", "x1", "-1", "+1", " 1", "%1"}) {
        EXPECT_EQ(pci::leadingDecimal(text), std::nullopt) << text;
    }
}

TEST(PciText, FileNumbersAreHexadecimalAndFit) {
    EXPECT_EQ(pci::fileNumber("0x1000\n", 0xFFFF), 0x1000U);
    EXPECT_EQ(pci::fileNumber("0x010400\n", 0xFFFFFFFF), 0x010400U);
    EXPECT_EQ(pci::fileNumber("0xFFff", 0xFFFF), 0xFFFFU);
    EXPECT_EQ(pci::fileNumber("0x04\r\n", 0xFFFF), 4U);
    EXPECT_EQ(pci::fileNumber("0xFFFFFFFF", 0xFFFFFFFF), 0xFFFFFFFFU);
    for (const char* content :
         {"", "\n", "0x", "0x10000", "vendor", "0x12 34", "0x1g", "-1", "0x0x1", "0x000000001"}) {
        EXPECT_EQ(pci::fileNumber(content, 0xFFFF), 0U) << content;
    }
}

TEST(PciText, FolderNames) {
    struct {
        const char* name;
        int bus;
        int device;
        int function;
        unsigned domain = 0;
    } const accepted[] = {
        {"0000:00:00.0", 0, 0, 0},       {"0000:02:1f.7", 2, 31, 7},
        {"0001:ff:0A.3", 255, 10, 3, 1}, {"10000:e1:00.0", 225, 0, 0, 0x10000},
        {"0000:00:3f.9", 0, 63, 9}, // out of range, but a device
        {"0000-02-1f.7", 2, 31, 7},      {"10000-e1-00.0", 225, 0, 0, 0x10000},
    };
    for (const auto& row : accepted) {
        PciDevice device;
        EXPECT_TRUE(pci::parseFolderName(row.name, device)) << row.name;
        EXPECT_EQ(device.domain, row.domain) << row.name;
        EXPECT_EQ(device.bus, row.bus) << row.name;
        EXPECT_EQ(device.device, row.device) << row.name;
        EXPECT_EQ(device.function, row.function) << row.name;
    }
    for (const char* name : {"",
                             ".",
                             "..",
                             "0000:00:00",
                             "0000:00:00.",
                             "000:00:00.0",
                             "0000.00:00.0",
                             "0000:00.00.0",
                             "0000:00:00:0",
                             "0000:0g:00.0",
                             "0000:00:00.00",
                             "0000:00:00.g",
                             "xxxx:00:00.0",
                             "00:00.0",
                             "0000:00:-1.0",
                             "0000-00:00.0",
                             "0000:00-00.0",
                             "0000-00-00-0",
                             "0000_00_00.0",
                             "0000-00-00"}) {
        PciDevice device;
        device.bus = 9;
        EXPECT_FALSE(pci::parseFolderName(name, device)) << name;
        EXPECT_EQ(device.bus, 9) << name;
    }
}

} // namespace
} // namespace zolex
