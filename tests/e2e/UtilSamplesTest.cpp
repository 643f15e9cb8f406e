// The samples of UTIL.BAT in the place of the virtual server's own: each run shows the same.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
const std::vector<std::string> samples = {"util-windows"};
constexpr const char* suffix = ".exe";
#else
const std::vector<std::string> samples = {"util-sh", "util-linux"};
constexpr const char* suffix = "";
#endif

/// Puts the sample into the server's folder, and beside it the utilities under their usual names.
void useSample(VirtualServer& server, const std::string& sample) {
    const fs::path script = server.folder() / "UTIL.BAT";
    fs::remove(script);
    std::ifstream shipped(std::string(ZOLEX_SAMPLES) + "/" + sample + "/UTIL.BAT");
    std::ofstream file(script); // with the line ends of the system
    file << shipped.rdbuf();
    file.close();
    fs::permissions(script, fs::perms::owner_all);
    for (const char* name :
         {"MegaCli64", "arcconf", "hrconf", "qtcsend", "cfggen", "cfggen1.02.02", "hyperwin"}) {
        fs::copy_file(ZOLEX_SIMULATOR_PROGRAM, server.folder() / (std::string(name) + suffix));
    }
#ifndef _WIN32
    // Not the system's, should it have such utilities.
    server.environment["PATH"] = server.folder().string() + ":" + std::getenv("PATH");
#endif
}

/// The runs over a server: what they print, their exit codes and the state at the end.
std::string runsOver(VirtualServer& server, const std::vector<std::vector<std::string>>& runs) {
    std::string text;
    for (const std::vector<std::string>& arguments : runs) {
        const ProgramRun run = server.start(ZOLEX_UNPAUSED_PROGRAM, arguments);
        text += run.output + run.error + "= " + std::to_string(run.exitCode) + "\n";
    }
    return text + server.read("state.json");
}

/// The same runs with the server's own UTIL.BAT and with each sample.
void compareSamples(const std::string& definition,
                    const std::vector<std::vector<std::string>>& runs, const std::string& policies,
                    const std::vector<std::string>& expected) {
    VirtualServer own(definition);
    ASSERT_TRUE(own.isReady());
    if (!policies.empty()) {
        own.write("policies.ini", policies);
    }
    const std::string wanted = runsOver(own, runs);
    for (const std::string& text : expected) {
        EXPECT_NE(wanted.find(text), std::string::npos) << text << " is not in\n" << wanted;
    }
    for (const std::string& sample : samples) {
        VirtualServer server(definition);
        ASSERT_TRUE(server.isReady());
        if (!policies.empty()) {
            server.write("policies.ini", policies);
        }
        useSample(server, sample);
        EXPECT_EQ(runsOver(server, runs), wanted) << sample;
    }
}

TEST(UtilSamplesTest, AllSevenUtilitiesAreRunAsByTheServersOwn) {
    VirtualServer mixed;
    ASSERT_TRUE(mixed.isReady());
    ASSERT_EQ(mixed.simulator({"init", ".", "--sample", "mixed"}).exitCode, 0);
    compareSamples(
        mixed.read("server.json"), {{"/r", "/y"}, {"/d"}, {"/d", "/v:5"}, {"/r:1", "/y"}}, {},
        {"Executing:UTIL.BAT MEGACLI ", "Executing:UTIL.BAT ARCCONF ", "Executing:UTIL.BAT HRCONF ",
         "Executing:UTIL.BAT QTCSEND ", "Executing:UTIL.BAT CFGGEN ",
         "Executing:UTIL.BAT CFGGEN1.02.02 ", "Executing:UTIL.BAT HYPERWIN ",
         "ZOLEX completed with RC=0", "ZOLEX failed with RC=11"});
}

std::string serverOf32Drives(const std::string& fault) {
    return R"({"machineType": "8837", "serialNumber": "1", "controllers": [
        {"utility": "MEGACLI", "model": "LSI-MegaRAID-8480", "maxSpans": 16,
         "pci": {"bus": 2, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411",
                 "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
         "drives": [{"enclosure": 252, "slot": 0, "count": 32, "sizeMB": 34464}]}])" +
           fault + "}";
}

constexpr const char* allDrives = "[Policy.all]\n"
                                  "AppliesTo.1 = ALL\n"
                                  "StripeSize = 64\n"
                                  "Array_Mode = CUSTOM\n"
                                  "Array_Defaults = 0%:0\n"
                                  "Array.A = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,"
                                  "21,22,23,24,25,26,27,28,29,30,31,32\n"
                                  "Logical_Mode = CUSTOM\n"
                                  "Logical.1 = A:FILL:10:ON\n";

TEST(UtilSamplesTest, TheLongestLineOfAControllerArrivesWhole) {
    compareSamples(
        serverOf32Drives(""), {{"/f:policies.ini"}}, allDrives,
        {"-Array15[ 252:30,252:31 ]", "ZOLEX completed with RC=0", "\"level\": \"RAID10\""});
}

TEST(UtilSamplesTest, TheExitCodeOfAUtilityIsKept) {
    for (const char* code : {"1", "49", "255"}) {
        compareSamples(serverOf32Drives(std::string(R"(, "faults": [
                           {"match": "-CfgSpanAdd", "exitCode": )") +
                                        code + "}]"),
                       {{"/f:policies.ini", "/v:5"}}, allDrives, {"= "});
    }
}

} // namespace
} // namespace zolex::e2e
