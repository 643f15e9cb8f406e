#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

/// One LSI-MegaRAID-8480 with `drives` drives of 69376 MB, and more fields of the server.
std::string definition(int drives, const std::string& more = {}) {
    std::string text = R"({"machineType": "8837", "serialNumber": "KQ12345", )" + more +
                       R"("controllers": [{"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": 2, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)";
    if (drives > 0) {
        text += R"({"enclosure": 32, "slot": 0, "count": )" + std::to_string(drives) +
                R"(, "sizeMB": 69376})";
    }
    return text + "]}]}";
}

std::string faults(const std::string& list) {
    return R"("faults": [)" + list + "], ";
}

constexpr const char* mirrorPolicy = "[Policy.mirror]\n"
                                     "AppliesTo.1 = t:LSI-MegaRAID-8480\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array.A = 1,2\n"
                                     "Hotspares = 3\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1:ON\n";

TEST(ExitCodesTest, Success) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", mirrorPolicy);
    const ProgramRun deploy = server.zolex({"/f:p.ini"});
    EXPECT_EQ(0, deploy.exitCode) << deploy.output;
    EXPECT_TRUE(deploy.output.ends_with("All configuration commands succeeded.\n"
                                        "\nZOLEX completed with RC=0 \n"))
        << deploy.output;
    const ProgramRun capture = server.zolex({"/c", "/f:captured.ini"});
    EXPECT_EQ(0, capture.exitCode) << capture.output;
    EXPECT_TRUE(contains(server.read("captured.ini"), "Array.A = 1,2\n\nHotspares = 3\n"));
}

TEST(ExitCodesTest, UsageAndADeclinedPromptAreSuccesses) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    EXPECT_EQ(0, server.shippedZolex({}).exitCode);
    EXPECT_EQ(0, server.shippedZolex({"/?"}).exitCode);
    const ProgramRun declined = server.shippedZolex({"/r"}, "n\n");
    EXPECT_EQ(0, declined.exitCode);
    EXPECT_FALSE(contains(declined.output, "Restore Command="));
    const ProgramRun accepted = server.shippedZolex({"/r"}, "y\n");
    EXPECT_EQ(0, accepted.exitCode) << accepted.output;
    EXPECT_TRUE(contains(accepted.output, "Restore Command="));
}

TEST(ExitCodesTest, AControllerWithoutPolicyIs1) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", "[Policy.x]\nAppliesTo.1 = m:0000\n");
    EXPECT_EQ(1, server.zolex({"/f:p.ini", "/e1"}).exitCode);
    EXPECT_EQ(0, server.zolex({"/f:p.ini"}).exitCode);
}

TEST(ExitCodesTest, NoControllerIs2) {
    VirtualServer server(R"({"machineType": "8837", "serialNumber": "1", "controllers": []})");
    ASSERT_TRUE(server.isReady());
    EXPECT_EQ(2, server.shippedZolex({"/e2"}).exitCode);
    EXPECT_EQ(2, server.zolex({"/e2", "/d"}).exitCode);
    EXPECT_EQ(0, server.zolex({"/d"}).exitCode);
}

TEST(ExitCodesTest, AControllerWithoutDrivesIs3) {
    VirtualServer server(definition(0));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.zolex({"/d", "/e3"});
    EXPECT_EQ(3, run.exitCode) << run.output;
    EXPECT_EQ(0, server.zolex({"/d"}).exitCode);
}

TEST(ExitCodesTest, ACommandLineFaultIs4) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    const std::vector<std::vector<std::string>> rows = {
        {"/x"}, {"/c"}, {"/f:a", "/d"}, {"/v:4", "/d"}, {"/s:1", "/d"}, {"/r", "/c"}};
    for (const auto& arguments : rows) {
        EXPECT_EQ(4, server.shippedZolex(arguments).exitCode);
    }
}

TEST(ExitCodesTest, AnInvalidPoliciesFileIs5) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    EXPECT_EQ(5, server.zolex({"/f:none.ini"}).exitCode);
    server.write("p.ini", "[Policy.x]\nAppliesTo.1 = ALL\nRebuildRate = fast\n");
    const ProgramRun run = server.zolex({"/f:p.ini"});
    EXPECT_EQ(5, run.exitCode);
    EXPECT_TRUE(contains(run.output, "\n#### ERROR\n\tPolicy.x, RebuildRate -- Invalid specifier:  "
                                     "fast\n\tValid values are:  HIGH MED LOW\n\n"));
}

TEST(ExitCodesTest, AFailedResetIs7) {
    VirtualServer server(definition(4, faults(R"({"match": "-CFGCLR", "exitCode": 5})")));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.zolex({"/r", "/y"});
    EXPECT_EQ(7, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "     Received error return code 5 from the UTIL.BAT MEGACLI "
                                     "command.\nRestore Command Standard Output:\n"));
}

TEST(ExitCodesTest, AFailedCaptureIs8) {
    VirtualServer server(definition(4, faults(R"({"match": "-pdList", "exitCode": 5})")));
    ASSERT_TRUE(server.isReady());
    EXPECT_EQ(8, server.zolex({"/c", "/f:c.ini"}).exitCode);
    const ProgramRun deploy = server.zolex({"/d"});
    EXPECT_EQ(8, deploy.exitCode);
    EXPECT_FALSE(contains(deploy.output, "RC=8"));
}

TEST(ExitCodesTest, WithoutTheUtilityACaptureIs8) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    ASSERT_TRUE(std::filesystem::remove(server.folder() / "UTIL.BAT"));
    const ProgramRun run = server.zolex({"/c", "/f:c.ini"});
    EXPECT_EQ(8, run.exitCode);
    EXPECT_TRUE(
        run.output.ends_with("Capture Command=UTIL.BAT MEGACLI -LdPdInfo -a0 \n\n"
                             "Executing:UTIL.BAT MEGACLI -LdPdInfo -a0 \n\n"
                             "     Error gathering information from controller LSI-MegaRAID-8480.\n"
                             "\nZOLEX failed with RC=8 \n"))
        << run.output;
    EXPECT_EQ("", run.error);
    EXPECT_FALSE(server.exists("c.ini"));
}

TEST(ExitCodesTest, WithoutTheHardwareDetectorADeploymentIs5) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    ASSERT_TRUE(std::filesystem::remove(server.folder() / "hwdetect.exe"));
    const std::string start = "Started ZOLEX.\n"
                              "ZOLEXSupport.gatherHardwareInfo:Execution failed.\n"
                              "Found 1 supported RAID controllers.\n";
    server.write("p.ini", mirrorPolicy);
    const ProgramRun deploy = server.zolex({"/f:p.ini"});
    EXPECT_EQ(5, deploy.exitCode);
    EXPECT_TRUE(deploy.output.starts_with(start)) << deploy.output;
    EXPECT_TRUE(deploy.output.ends_with(
        "\n#### ERROR\n\tCould not detect the system machine type or serial number.\n\n"
        "\nZOLEX failed with RC=5 \n"))
        << deploy.output;
    EXPECT_EQ("", deploy.error);
    EXPECT_FALSE(contains(deploy.output, "Deploy Command="));
    // A capture does without it.
    const ProgramRun capture = server.zolex({"/c", "/f:c.ini"});
    EXPECT_EQ(0, capture.exitCode);
    EXPECT_TRUE(capture.output.starts_with(start)) << capture.output;
}

TEST(ExitCodesTest, APolicyGeneratorThatFailsIs9) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.zolex({"/c", "/f:c.ini", "/t:no/such/folder"});
    EXPECT_EQ(9, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output,
                         "Could not write to temp space.  ZOLEX requires temp space to run.\n"));
    server.write("bad.ini", "not a policy\n");
    EXPECT_EQ(9, server.zolex({"/c", "/f:bad.ini"}).exitCode);
    EXPECT_EQ("not a policy\n", server.read("bad.ini"));
}

TEST(ExitCodesTest, AFailedInitialisationIs10) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("contlist.ini", "");
    EXPECT_EQ(10, server.zolex({"/fake", "/d"}).exitCode);
}

TEST(ExitCodesTest, AFailedDeployCommandIs11) {
    VirtualServer server(definition(4, faults(R"({"match": "-CfgLdAdd", "exitCode": 5})")));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", mirrorPolicy);
    const ProgramRun run = server.zolex({"/f:p.ini"});
    EXPECT_EQ(11, run.exitCode) << run.output;
    EXPECT_TRUE(run.output.ends_with("\nZOLEX failed with RC=11 \n"));
}

TEST(ExitCodesTest, ARefusedCommandIs11AndShowsTheReason) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    // The third drive is a hot spare and a member: the controller refuses.
    server.write("p.ini", "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,2,3\n"
                          "Hotspares = 3\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:5\n");
    const ProgramRun run = server.zolex({"/f:p.ini"});
    EXPECT_EQ(11, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "Deploy Command Standard Output:\n"));
}

// On Windows a carriage return that ended the run's output was not written.
TEST(ExitCodesTest, AReturnAtTheEndOfTheOutputIsWritten) {
    VirtualServer server(
        definition(4, faults(R"({"match": "-CFGCLR", "exitCode": 5, "output": "refused\r"})")));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.shippedZolex({"/r", "/y"});
    EXPECT_EQ(7, run.exitCode);
    EXPECT_TRUE(run.output.ends_with("refused\r")) << run.output;
}

TEST(ExitCodesTest, AChildThatDoesNotEndIsGivenUpAtTheLimit) {
    VirtualServer server(definition(4, faults(R"({"match": "-LdPdInfo", "delayMs": 12000})")));
    ASSERT_TRUE(server.isReady());
    server.environment["ZOLEX_TEST_CHILD_LIMIT"] = "3000";
    const ProgramRun run = server.zolex({"/c", "/f:c.ini"});
    EXPECT_EQ(8, run.exitCode);
    EXPECT_TRUE(run.output.ends_with(
        "Executing:UTIL.BAT MEGACLI -LdPdInfo -a0 \n\n"
        "\n### Process UTIL.BAT MEGACLI -LdPdInfo -a0 \n has failed to execute within the five "
        "minute limit.\nProcess cancelled.\n"
        "     Error gathering information from controller LSI-MegaRAID-8480.\n"
        "\nZOLEX failed with RC=8 \n"))
        << run.output;
}

TEST(ExitCodesTest, AChildThatPrintsFiveMegabytesDoesNotStallTheRun) {
    VirtualServer server(definition(4, faults(R"({"match": "-pdList", "outputBytes": 5000000})")));
    ASSERT_TRUE(server.isReady());
    const ProgramRun run = server.zolex({"/c", "/f:c.ini"});
    EXPECT_EQ(0, run.exitCode);
}

TEST(ExitCodesTest, RestoreAndDeployInOneRun) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", mirrorPolicy);
    ASSERT_EQ(0, server.zolex({"/f:p.ini"}).exitCode);
    const ProgramRun again = server.zolex({"/r", "/y", "/f:p.ini"});
    EXPECT_EQ(0, again.exitCode) << again.output;
}

TEST(ExitCodesTest, TheInventoryFileOfTheServerServesADryRun) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", mirrorPolicy);
    const std::string before = server.simulator({"show"}).output;
    EXPECT_FALSE(before.empty());
    const ProgramRun run = server.zolex({"/fake", "/f:p.ini"});
    EXPECT_EQ(0, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "FakeRAID Command=fakeraid 2 LSI-MegaRAID-8480\n"));
    EXPECT_EQ(before, server.simulator({"show"}).output);
}

TEST(ExitCodesTest, TheShippedProgramPausesTenSecondsAndDeploys) {
    VirtualServer server(definition(4));
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", mirrorPolicy);
    const auto start = std::chrono::steady_clock::now();
    const ProgramRun run = server.shippedZolex({"/f:p.ini"});
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
    EXPECT_EQ(0, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "..........\n"));
    EXPECT_GE(seconds.count(), 9);
    EXPECT_TRUE(contains(server.simulator({"show"}).output, "RAID1"));
}

} // namespace
} // namespace zolex::e2e
