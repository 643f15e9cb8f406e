// What goes wrong with zolex on a server must be told by plan beforehand, with the right exit code,
// and nothing is changed meanwhile.

#include "PlannedServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

/// A server, policies for it, and what a plan says.
struct PlannedDanger {
    const char* name;
    std::string definition;
    std::string policies;
    int exitCode;
    std::vector<std::string> pieces; ///< of the text, in this order
};

constexpr const char* nothingWouldRun = "! Nothing would run: 1 error, on controller 1.";

/// Two controllers with 17 drives each.
std::string twoControllers() {
    const auto controller = [](int bus) {
        return R"({"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
            "pci": {"bus": )" +
               std::to_string(bus) +
               R"(, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                    "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
            "drives": [{"enclosure": 32, "slot": 0, "count": 17, "sizeMB": 69376}]})";
    };
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [)" +
           controller(2) + "," + controller(10) + "]}";
}

std::vector<PlannedDanger> plannedDangers() {
    const std::string failedDrive = megaServer(R"(
        {"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
        {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
        {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})");
    const std::string errorText = megaServer(
        eightDrives,
        R"(, "faults": [{"match": "-pdList", "output": "Failed to get data.\n", "exitCode": 0}])");
    const std::string refusedText = megaServer(
        eightDrives,
        R"(, "faults": [{"match": "-pdList", "output": "Adapter busy.\n", "exitCode": 3}])");
    return {
        {"AKeywordIsMistyped",
         eight(),
         with(webPolicies, "Hotspares", "Hotspare"),
         2,
         {"Policies p.ini: 0 policies, 1 error\n", "! Nothing would run: 1 error.\n",
          "p.ini:6:1: error: unknown keyword \"Hotspare\" [ZX007]\n"
          "   help: did you mean Hotspares?\n"}},
        {"NoPolicyFits",
         eight(),
         with(webPolicies, "d:8", "d:6"),
         0,
         {"Controller 1  skipped: no policy fits: Policy.web asks for d:6, and it is 8\n",
          "Nothing to do: every controller is skipped.\n"}},
        {"ADriveThatIsListedHasFailed",
         failedDrive,
         with(webPolicies, ",d:8", ""),
         2,
         {"drive 3 is 32:3 now, as 32:2 (Failed, serial ZS000002) has no", "[ZX701]",
          "there is no drive 8 among 7 [ZX304]", "Nothing would run: 2 errors"}},
        {"DrivesOfAnotherServerHaveTheirLayout",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                       {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "foreign"},
                       {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
         webPolicies,
         0,
         {"  - Foreign              67.8 GB  32:2 ",
          "! the foreign configuration on 32:2 is cleared [ZX710]",
          "-CFGFOREIGN -CLEAR -A0 -SILENT", "This destroys 1 foreign drive."}},
        {"DrivesOfAnotherServerThatAreNotNeededStay",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376},
                       {"enclosure": 32, "slot": 7, "sizeMB": 69376, "status": "foreign"})"),
         with(with(webPolicies, "3,4,5,6,7", "3,4,5,6"), "Hotspares = 8", "Hotspares = 7"),
         0,
         {"B  *  ~\n    A RAID1", "This destroys nothing.\n",
          "To carry it out:\n  zolexctl plan p.ini -o plan.json\n"}},
        {"ASizeDoesNotFit",
         eight(),
         with(webPolicies, "A:FILL:1:ON", "A:90000:1:ON"),
         2,
         {nothingWouldRun,
          "Array.A has room for 69376 MB, and Logical.1 asks for 90000\n            [ZX110]\n"}},
        {"ADriveIsInTwoArrays",
         eight(),
         with(webPolicies, "Array.B = 3", "Array.B = 2,3"),
         2,
         {nothingWouldRun, "32:1 is in Array.A and in Array.B [ZX302]\n"
                           "   help: Array.A is made, and then MEGACLI refuses"}},
        {"ASpareIsAMember",
         eight(),
         with(webPolicies, "Hotspares = 8", "Hotspares = 7"),
         2,
         {nothingWouldRun, "32:6 is a hot spare and in Array.B [ZX502]\n"
                           "   help: Array.B is made, and then MEGACLI refuses the spare\n"}},
        {"TheDefaultSpareIsAMember",
         eight(),
         "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,2,3,4,5,6,7,8\n"
         "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:5:ON\n",
         2,
         {nothingWouldRun,
          "no Hotspares: 32:7 becomes the hot spare, and is listed in\n           Array.A "
          "[ZX501]\n",
          "   help: add Hotspares, or Array_Defaults = 0%:0 for none\n"}},
        {"AnErrorTextIsNoListing",
         errorText,
         webPolicies,
         2,
         {"Nothing would run: ", "printed: Failed", "[ZP105]",
          "controller 1 could not be captured [ZP202]\n   help: zolexctl doctor\n"}},
        {"AListingFails",
         refusedText,
         webPolicies,
         2,
         {"Nothing would run: ",
          "UTIL.BAT MEGACLI -pdList -a0 ended with exit code 3 [ZP104]\n"
          "   Adapter busy.\n",
          "controller 1 could not be captured [ZP202]\n"}},
        {"MoreThanSixteenCommandsAreAllPlanned",
         twoControllers(),
         mirrors(8, "17"),
         0,
         {"Commands (18)", "18 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:16 ] -a1",
          "zolex /f:p.ini would do otherwise:\n", "16"}},
        {"SeveralLogicalDrivesOnOneArrayAreAllMade",
         eight(),
         with(with(webPolicies, "Logical.1 = A:FILL", "Logical.1 = A:20000"), "Logical.2",
              "Logical.2 = A:FILL:1:ON\nLogical.3"),
         0,
         {"+ Logical.1  RAID1   19.5 GB", "+ Logical.2  RAID1   48.2 GB",
          "! zolex leaves out Logical.2: Array.A has Logical.1 already [ZX405]", "Commands (4)",
          "zolex makes the first logical drive of array A alone"}},
        {"RaidTenOfFiveDrivesLeavesOne",
         eight(),
         "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,2,3,4,5\n"
         "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:10:ON\n",
         0,
         {"+ Array A  drives 1-4", "! RAID 10 is made of pairs, and Array.A has 5 drives [ZX404]"}},
        {"ListsWithoutTheModeHaveNoEffect",
         eight(),
         "[Policy.x]\nAppliesTo.1 = ALL\nArray.A = 1,2\nLogical.1 = A:FILL:1:ON\n",
         0,
         {"+ Array A  drives 1-7", "! Array.A has no effect: zolex chooses the drives itself "
                                   "[ZX307]\n    help: add Array_Mode = CUSTOM\n"}},
    };
}

class PlanDanger : public testing::TestWithParam<PlannedDanger> {};

TEST_P(PlanDanger, IsTold) {
    const PlannedDanger& danger = GetParam();
    PlannedServer server(danger.definition);
    server.write("p.ini", danger.policies);
    const ProgramRun plan = server.zolexctl({"plan", "p.ini", "--width", "80"});
    EXPECT_EQ(plan.exitCode, danger.exitCode) << plan.output << plan.error;
    EXPECT_EQ(plan.error, "");
    expectPieces(plan.output, danger.pieces);
    // The document says the same.
    const ProgramRun json = server.zolexctl({"plan", "p.ini", "--format", "json"});
    EXPECT_EQ(json.exitCode, danger.exitCode);
    EXPECT_EQ(json.output.find("\"steps\": [") != std::string::npos, danger.exitCode == 0);
}

INSTANTIATE_TEST_SUITE_P(Server, PlanDanger, testing::ValuesIn(plannedDangers()),
                         [](const testing::TestParamInfo<PlannedDanger>& danger) {
                             return danger.param.name;
                         });

TEST(PlanDangers, AFileThatIsNotThereIsNoPlan) {
    PlannedServer server(eight());
    server.write("x.ini", webPolicies);
    // A mistyped switch of zolex becomes a part of the name there.
    for (const char* const name : {"no-such.ini", "x.ini /noexecutall"}) {
        const ProgramRun plan = server.zolexctl({"plan", name});
        EXPECT_EQ(plan.exitCode, 2);
        EXPECT_EQ(plan.output, "");
        EXPECT_EQ(plan.error, "error: " + std::string(name) +
                                  ": the file cannot be read: there is no such file or folder\n"
                                  "  help: give the name of a policies file, or - for standard "
                                  "input\n");
    }
}

#ifndef _WIN32 // where the firmware is asked for the names of the machine that runs the test
TEST(PlanDangers, WithoutTheDetectorPoliciesThatAskForTheMachineAreRefused) {
    PlannedServer server(eight());
    server.write("web.ini", webPolicies);
    server.write("type.ini", with(webPolicies, "t:LSI", "m:8837,t:LSI"));
    EXPECT_EQ(server.zolexctl({"plan", "type.ini"}).exitCode, 0);
    fs::remove(server.folder() / "hwdetect.exe");
    EXPECT_EQ(server.zolexctl({"plan", "web.ini"}).exitCode, 0);
    const ProgramRun plan = server.zolexctl({"plan", "type.ini", "--width", "160"});
    EXPECT_EQ(plan.exitCode, 2);
    expectPieces(plan.output,
                 {"Policy.web asks for m:8837, and the machine type is not known [ZP203]\n"
                  "   help: if it is this machine: zolexctl plan type.ini --machine-type "
                  "8837\n"});
    EXPECT_EQ(server.zolexctl({"plan", "type.ini", "--machine-type", "8837"}).exitCode, 0);
}
#endif

/// What zolex captures and cannot deploy any more, after it has wiped the server.
TEST(PlanDangers, ACapturedLayoutThatCannotComeBackIsToldBeforeAnythingIsWiped) {
    PlannedServer server(megaServer(eightDrives));
    // A RAID 5 of 256-KB strips, made by hand.
    ASSERT_EQ(server
                  .simulator({"util", "MEGACLI", "-CfgLdAdd", "R5", "[", "32:0,32:1,32:2", "]",
                              "WB", "ADRA", "-strpsz", "256", "-a0"})
                  .exitCode,
              0);
    const ProgramRun shown = server.zolexctl({"show", "--as", "policies", "-o", "captured.ini"});
    EXPECT_EQ(shown.exitCode, 1);
    expectPieces(shown.error, {"256 KB", "[ZC103]"});
    ASSERT_EQ(server.zolex({"/c:t,d", "/f:zolex.ini"}).exitCode, 0);
    const ProgramRun plan = server.zolexctl({"plan", "zolex.ini"});
    EXPECT_EQ(plan.exitCode, 2) << plan.output;
    expectPieces(plan.output, {"Nothing would run", "256", "[ZX"});
}

TEST(PlanDangers, RestoringOneControllerIsOneController) {
    PlannedServer server("two-controllers");
    server.deploy("sample-policies.ini");
    const ProgramRun plan = server.zolexctl({"plan", "sample-policies.ini", "--strategy", "rebuild",
                                             "--controller", "2", "-o", "p.json"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    for (const std::string& command : valuesOf(server.read("p.json"), "command")) {
        EXPECT_TRUE(command.ends_with("-a1") || command.find("-A1") != std::string::npos)
            << command;
    }
    // A number that is none is no value that means everything.
    for (const char* const number : {"x", "0", "1,x"}) {
        const ProgramRun odd =
            server.zolexctl({"plan", "sample-policies.ini", "--controller", number});
        EXPECT_EQ(odd.exitCode, 2);
        EXPECT_EQ(odd.error, "error: --controller: \"" + std::string(number) +
                                 "\" is no list of numbers from 1 to 999, such as 1 or 1,3\n"
                                 "  help: zolexctl plan --help\n");
    }
}

TEST(PlanDangers, OnAConfiguredServerThePlanSaysWhatGoesAndWhereZolexStops) {
    PlannedServer server(eight());
    server.write("less.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
    server.write("web.ini", webPolicies);
    server.deploy("less.ini");
    const ProgramRun plan = server.zolexctl({"plan", "web.ini"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output;
    expectPieces(plan.output,
                 {"= LD 0", "stays as array A", "- LD 1     RAID5       135.5 GB  32:2-32:4",
                  "Strategy rebuild: array B needs 32:2-32:4, and LD 1 lies on 32:2-32:4",
                  "1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0",
                  "without /r zolex stops at the first drive in use, exit code 11",
                  "This destroys 1 logical drive (135.5 GB).\n"
                  "To agree to exactly this, and carry it out:\n"
                  "  zolexctl plan web.ini -o plan.json\n"
                  "  zolexctl apply plan.json --destroy "});
}

TEST(PlanDangers, WithoutAControllerThereIsNoPlan) {
    PlannedServer server(eight());
    server.write("web.ini", webPolicies);
    server.environment["ZOLEX_PCI_ROOT"] = (server.folder() / "none").string();
    for (const char* const command : {"plan", "diff"}) {
        const ProgramRun run = server.zolexctl({command, "web.ini"});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.error, "error: no supported RAID controller was found\n"
                             "  help: zolexctl doctor tells what is there\n");
    }
}

/// A clone onto smaller drives, and onto fewer of them.
TEST(PlanDangers, ACloneThatDoesNotFitIsTold) {
    PlannedServer source(eight());
    source.write("web.ini", with(webPolicies, "B:FILL:5", "B:277504:5"));
    source.deploy("web.ini");
    ASSERT_LE(source.zolexctl({"show", "--as", "policies", "--exact", "-o", "c.ini"}).exitCode, 1);
    const std::string captured = source.read("c.ini");
    PlannedServer smaller(
        megaServer(R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 35000})"));
    smaller.write("c.ini", captured);
    const ProgramRun plan = smaller.zolexctl({"plan", "c.ini"});
    EXPECT_EQ(plan.exitCode, 2) << plan.output;
    expectPieces(plan.output, {"Nothing would run", "has room for 35000 MB", "[ZX110]"});
    PlannedServer fewer(megaServer(R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376})"));
    fewer.write("c.ini", captured);
    const ProgramRun other = fewer.zolexctl({"plan", "c.ini", "--width", "160"});
    EXPECT_EQ(other.exitCode, 0) << other.output;
    expectPieces(other.output, {"skipped: no policy fits: ", "asks for d:8, and it is 7"});
}

/// A degraded server: the layout is the policy's, and what is broken is named.
TEST(PlanDangers, ADegradedServerIsAsThePolicySaysAndNotWell) {
    PlannedServer server(
        with(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                      {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
                      {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
             "\"drives\": [",
             R"("virtualDisks": [{"level": "RAID5", "spans": [["32:1", "32:2", "32:3"]],
                            "writePolicy": "WB", "readPolicy": "ADRA"}],
           "drives": [)"));
    server.write("p.ini", "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                          "Array.A = 2,3,4\nArray_Defaults = 0%:0\nLogical_Mode = CUSTOM\n"
                          "Logical.1 = A:FILL:5:ON\n");
    const ProgramRun plan = server.zolexctl({"plan", "p.ini", "--exit-code"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output;
    expectPieces(plan.output, {"Controller 1  as the policy says", "32:2", "Nothing to do.\n"});
    const ProgramRun diff = server.zolexctl({"diff", "p.ini"});
    EXPECT_EQ(diff.exitCode, 0) << diff.output;
    expectPieces(diff.output, {"same\n", "32:2"});
    EXPECT_EQ(server.zolexctl({"diff", "p.ini", "--strict"}).exitCode, 1);
    // A capture says so too.
    const ProgramRun captured = server.zolexctl({"show", "--as", "policies"});
    EXPECT_EQ(captured.exitCode, 1);
    expectPieces(captured.error, {"[ZC106]"});
}

TEST(PlanDangers, ALineThatACaptureWouldCutIsTold) {
    std::string members;
    for (int i = 1; i <= 32; ++i) {
        members += (i == 1 ? "" : ",") + std::to_string(i);
    }
    PlannedServer server(R"({"machineType": "8840", "serialNumber": "KQ52A1R", "controllers": [{
        "utility": "ARCCONF", "model": "Kestrix-B7", "serialNumber": "1000001",
        "pci": {"bus": 4, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
        "drives": [{"channel": 0, "device": 4, "count": 32, "sizeMB": 70000}]}]})");
    server.write("p.ini",
                 "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = " + members +
                     "\nArray_Defaults = 0%:0\nLogical_Mode = CUSTOM\n"
                     "Logical.1 = A:FILL:5:ON\n");
    const ProgramRun plan = server.zolexctl({"plan", "p.ini"});
    EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    expectPieces(plan.output, {"[ZX602]"});
}

} // namespace
} // namespace zolex::e2e
