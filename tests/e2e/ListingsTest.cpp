// Listings of real layouts, typed by a UTIL.BAT, are captured as a person reads them.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace zolex::e2e {
namespace {

/// A server with one controller of the given PCI ids.
std::string serverWith(const std::string& vendor, const std::string& device,
                       const std::string& subsystemVendor = "0x0000",
                       const std::string& subsystem = "0x0000") {
    return R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [],
        "otherDevices": [{"bus": 2, "device": 1, "vendorId": ")" +
           vendor + R"(", "deviceId": ")" + device + R"(", "subsystemVendorId": ")" +
           subsystemVendor + R"(", "subsystemId": ")" + subsystem + R"("}]})";
}

// The parts of a script that types a file for each option that its second parameter can be.
#ifdef _WIN32
constexpr const char* scriptStart = "@echo off\r\n";
constexpr const char* scriptEnd = "";
std::string scriptLine(const std::string& option, const std::string& listing) {
    return (option == "*" ? "" : "if \"%2\"==\"" + option + "\" ") + "type " + listing + "\r\n";
}
#else
constexpr const char* scriptStart = "case \"$2\" in\n";
constexpr const char* scriptEnd = "esac\n";
std::string scriptLine(const std::string& option, const std::string& listing) {
    return option + ") cat " + listing + " ;;\n";
}
#endif

class ListingsTest : public testing::Test {
  protected:
    /// Captures a server whose UTIL.BAT types `listing` for the option that its second parameter
    /// begins with; "*" for any other.
    static std::string capture(const std::string& definition,
                               const std::vector<std::pair<std::string, std::string>>& listings) {
        VirtualServer server(definition);
        EXPECT_TRUE(server.isReady());
        std::string script = scriptStart;
        for (const auto& [option, listing] : listings) {
            std::filesystem::copy_file(std::filesystem::path(ZOLEX_TEST_DATA) / listing,
                                       server.folder() / listing);
            script += scriptLine(option, listing);
        }
        server.write("UTIL.BAT", script + scriptEnd);
        const ProgramRun run = server.zolex({"/c", "/f:captured.ini"});
        EXPECT_EQ(0, run.exitCode) << run.output;
        return withoutComments(server.read("captured.ini"));
    }
};

TEST_F(ListingsTest, MegaCliEarly) {
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-LSI-MegaRAID-8480-1]\n\n"
              "AppliesTo.1 = t:LSI-MegaRAID-8480,d:5\n\n"
              "StripeSize = 64\n"
              "ReadAhead = ADAPTIVE\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 1,2,3\n\n"
              "Hotspares = 4\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:138752:5:ON\n\n",
              capture(serverWith("0x1000", "0x0411", "0x1000", "0x1002"),
                      {{"-LdPdInfo", "megacli-ldpdinfo-early.txt"},
                       {"-pdList", "megacli-pdlist-early.txt"},
                       {"-adpallinfo", "megacli-adpallinfo.txt"}}));
}

TEST_F(ListingsTest, MegaCliLater) {
    // 1.818 TB are 1906311.168 MB: a logical drive keeps the whole part.
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-LSI-MegaRAID-8480-1]\n\n"
              "AppliesTo.1 = t:LSI-MegaRAID-8480,d:4\n\n"
              "StripeSize = 64\n"
              "ReadAhead = ON\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 1,2\n\n"
              "Hotspares = 3\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:1906311:1:ON\n\n",
              capture(serverWith("0x1000", "0x0411", "0x1000", "0x1002"),
                      {{"-LdPdInfo", "megacli-ldpdinfo-later.txt"},
                       {"-pdList", "megacli-pdlist-later.txt"},
                       {"-adpallinfo", "megacli-adpallinfo.txt"}}));
}

TEST_F(ListingsTest, ArcconfWithDriveList) {
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-Kestrix-B8-1]\n\n"
              "AppliesTo.1 = t:Kestrix-B8,d:3\n\n"
              "RebuildRate = HIGH\n"
              "ReadAhead = ADAPTIVE\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 1,2\n\n"
              "Hotspares = 3\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:69889:1\n\n",
              capture(serverWith("0x9005", "0x0286"), {{"*", "arcconf-getconfig-plain.txt"}}));
}

TEST_F(ListingsTest, ArcconfWithSegments) {
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-Kestrix-B7-1]\n\n"
              "AppliesTo.1 = t:Kestrix-B7,d:3\n\n"
              "StripeSize = 256\n"
              "RebuildRate = HIGH\n"
              "ReadAhead = ON\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 1,2\n\n"
              "Hotspares = 3\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:69889:1\n\n",
              capture(serverWith("0x9005", "0x0286"), {{"*", "arcconf-getconfig-segments.txt"}}));
}

// Behind an expander the slots are unlike the device numbers: drives 1 and 2 stand in slots 1 and
// 0.
TEST_F(ListingsTest, ArcconfWithAnExpander) {
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-Kestrix-B7-1]\n\n"
              "AppliesTo.1 = t:Kestrix-B7,d:6\n\n"
              "StripeSize = 256\n"
              "RebuildRate = HIGH\n"
              "ReadAhead = ON\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 2,1\n"
              "Array.B = 5,4,3\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:139889:1\n"
              "Logical.2 = B:279900:5\n\n",
              capture(serverWith("0x9005", "0x0286"), {{"*", "arcconf-getconfig-expander.txt"}}));
}

TEST_F(ListingsTest, ArcconfOfTheNewestLayout) {
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-Kestrix-B8-1]\n\n"
              "AppliesTo.1 = t:Kestrix-B8,d:4\n\n"
              "StripeSize = 256\n"
              "RebuildRate = HIGH\n"
              "ReadAhead = OFF\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 2,1\n"
              "Array.B = 4,3\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:139889:1\n"
              "Logical.2 = B:279900:0:OFF\n\n",
              capture(serverWith("0x9005", "0x0286"), {{"*", "arcconf-getconfig-newer.txt"}}));
}

TEST_F(ListingsTest, Cfggen) {
    // The members are named by target ids 1 and 4, which are the drives of slots 1 and 0.
    EXPECT_EQ("\n\n\n"
              "[Policy.AUTO-LSI-SAS-RAID-1]\n\n"
              "AppliesTo.1 = t:LSI-SAS-RAID,d:3\n\n"
              "Array_Mode = CUSTOM\n"
              "Array.A = 2,1\n\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:69618:1\n\n",
              capture(serverWith("0x1000", "0x0050"), {{"*", "cfggen-display.txt"}}));
}

} // namespace
} // namespace zolex::e2e
