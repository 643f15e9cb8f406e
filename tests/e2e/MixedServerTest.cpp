// Servers with several controllers of several families.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

/// The definition of a built-in sample.
std::string sample(const std::string& name) {
    VirtualServer server;
    server.simulator({"init", ".", "--sample", name});
    return server.read("server.json");
}

TEST(MixedServerTest, OneControllerOfEachFamilyWithDefaults) {
    VirtualServer server(sample("mixed"));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.zolex({"/d", "/v:5"});
    ASSERT_EQ(0, run.exitCode) << run.output;
    for (const char* utility :
         {"MEGACLI", "ARCCONF", "HRCONF", "QTCSEND", "CFGGEN", "CFGGEN1.02.02", "HYPERWIN"}) {
        EXPECT_TRUE(contains(run.output, std::string("Deploy Command=UTIL.BAT ") + utility + " "))
            << utility << run.output;
    }
    EXPECT_FALSE(contains(run.output, "\tSkipped "));
    EXPECT_TRUE(run.output.ends_with("All configuration commands succeeded.\n"
                                     "\nZOLEX completed with RC=0 \n"));
}

TEST(MixedServerTest, OneControllerOfEachFamilyWithAPolicyForEach) {
    VirtualServer server(sample("mixed"));
    ASSERT_TRUE(server.isReady());
    ASSERT_EQ(0, server.zolex({"/d"}).exitCode);
    // The captured policies are one for each controller.
    ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
    EXPECT_EQ(7U, linesAfter(server.read("captured.ini"), "[Policy.AUTO-").size());
    ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
    const ProgramRun run = server.zolex({"/f:captured.ini", "/e1", "/v:5"});
    ASSERT_EQ(0, run.exitCode) << run.output;
    for (int number = 1; number <= 7; ++number) {
        EXPECT_TRUE(contains(run.output, ", controller " + std::to_string(number) +
                                             " using policy:  Policy.AUTO-"));
    }
    ASSERT_EQ(0, server.zolex({"/c", "/f:again.ini"}).exitCode);
    EXPECT_EQ(withoutComments(server.read("captured.ini")),
              withoutComments(server.read("again.ini")));
}

TEST(MixedServerTest, SixteenCommandsAreRunAndTheRestStaysUnrunWithoutAMessage) {
    const std::string controller = R"({"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": BUS, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [{"enclosure": 32, "slot": 0, "count": 18, "sizeMB": 69376}]})";
    std::string definition = R"({"machineType": "8837", "serialNumber": "1", "controllers": [)";
    for (const char* bus : {"2", "3"}) {
        std::string one = controller;
        one.replace(one.find("BUS"), 3, bus);
        definition += (*bus == '2' ? "" : ", ") + one;
    }
    VirtualServer server(definition + "]}");
    ASSERT_TRUE(server.isReady());
    std::string policy = "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nHotspares = 17,18\n"
                         "Logical_Mode = CUSTOM\n";
    for (int i = 0; i < 8; ++i) {
        const char letter = static_cast<char>('A' + i);
        policy += std::string("Array.") + letter + " = " + std::to_string(2 * i + 1) + "," +
                  std::to_string(2 * i + 2) + "\nLogical." + std::to_string(i + 1) + " = " +
                  letter + ":FILL:1\n";
    }
    server.write("p.ini", policy);
    const ProgramRun run = server.zolex({"/f:p.ini"});
    EXPECT_EQ(0, run.exitCode) << run.output;
    const std::vector<std::string> commands = linesAfter(run.output, "Deploy Command=");
    ASSERT_EQ(16U, commands.size());
    EXPECT_EQ(9, std::count_if(commands.begin(), commands.end(), [](const std::string& command) {
                  return command.ends_with(" -a0");
              }));
    EXPECT_TRUE(run.output.ends_with("All configuration commands succeeded.\n"
                                     "\nZOLEX completed with RC=0 \n"));
    // The second controller has its first seven arrays, and neither the eighth nor the spares.
    ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
    const std::string captured = server.read("captured.ini");
    EXPECT_EQ(1U, linesAfter(captured, "Array.H = ").size());
    EXPECT_EQ(2U, linesAfter(captured, "Array.G = ").size());
    EXPECT_EQ(1U, linesAfter(captured, "Hotspares = ").size());
}

/// Two SAS adapters whose listings tell buses in the opposite order of their PCI places.
std::string twoSasAdapters(const std::string& machineType) {
    return R"({"machineType": ")" + machineType + R"(", "serialNumber": "1", "controllers": [
        {"utility": "CFGGEN", "model": "LSI-SAS-RAID", "busNumber": 9,
         "pci": {"bus": 2, "device": 0, "vendorId": "0x1000", "deviceId": "0x0050"},
         "drives": [{"enclosure": 1, "slot": 0, "count": 2, "sizeMB": 70006}]},
        {"utility": "CFGGEN", "model": "LSI-SAS-1078-IR", "busNumber": 4,
         "pci": {"bus": 3, "device": 0, "vendorId": "0x1000", "deviceId": "0x0062"},
         "drives": [{"enclosure": 1, "slot": 0, "count": 2, "sizeMB": 140013}]}]})";
}

TEST(MixedServerTest, TypeTenControllersAreDeployedInOrderOfBusOnTheseMachines) {
    const std::string first = "        Controller 1:  LSI-SAS-RAID ...\n"
                              "Deploy Command=UTIL.BAT CFGGEN ";
    const std::string second = "        Controller 2:  LSI-SAS-1078-IR ...\n"
                               "Deploy Command=UTIL.BAT CFGGEN ";
    struct Row {
        const char* machineType;
        bool reordered;
    };
    for (const Row& row : {Row{"5944", true}, Row{"X5941Y", true}, Row{"5943", false}}) {
        SCOPED_TRACE(row.machineType);
        VirtualServer server(twoSasAdapters(row.machineType));
        ASSERT_TRUE(server.isReady());
        const ProgramRun run = server.zolex({"/d"});
        EXPECT_EQ(0, run.exitCode) << run.output;
        // The records change places; each place keeps its own subtype, which names it.
        EXPECT_TRUE(contains(run.output, first + (row.reordered ? "1" : "0") + " CREATE "));
        EXPECT_TRUE(contains(run.output, second + (row.reordered ? "0" : "1") + " CREATE "));
        const ProgramRun reset = server.zolex({"/r", "/y"});
        EXPECT_EQ(0, reset.exitCode);
        const std::vector<std::string> resets =
            linesAfter(reset.output, "Restore Command=UTIL.BAT CFGGEN ");
        ASSERT_EQ(2U, resets.size());
        EXPECT_EQ(std::string(row.reordered ? "1" : "0") + " DELETE NOPROMPT", resets[0]);
    }
}

TEST(MixedServerTest, CaptureWithEveryParameter) {
    VirtualServer server(sample("mixed"));
    ASSERT_TRUE(server.isReady());
    ASSERT_EQ(0, server.zolex({"/d"}).exitCode);
    ASSERT_EQ(0, server.zolex({"/c:m,s,t,c,d,o", "/f:captured.ini"}).exitCode);
    const auto lines = linesAfter(server.read("captured.ini"), "AppliesTo.1 = ");
    ASSERT_EQ(7U, lines.size());
    EXPECT_EQ("m:8671,s:KQ77X9Z,t:LSI-MegaRAID-8480,c:1,d:3,o:1", lines[0]);
}

} // namespace
} // namespace zolex::e2e
