// What goes wrong with zolex on a server: apply refuses it before anything is changed, does it
// right, or tells it truly afterwards. The server's state after each run is what the text says.

#include "AppliedServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

constexpr const char* noMode = "[Policy.x]\nAppliesTo.1 = ALL\nArray.A = 1,2\n"
                               "Logical.1 = A:FILL:1:ON\n";

/// A policy over these lists of drives.
std::string custom(const std::string& arrays, const std::string& drives,
                   const std::string& spares = "") {
    return "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n" + arrays +
           (spares.empty() ? "Array_Defaults = 0%:0\n" : "Hotspares = " + spares + "\n") +
           "Logical_Mode = CUSTOM\n" + drives;
}

// --- policies that cannot be carried out: the configured server stays as it is ---

struct Untouched {
    const char* name;
    std::string policies;
    std::vector<std::string> arguments; ///< besides --destroy any
    int exitCode;
    std::vector<std::string> pieces; ///< of output and error
};

std::vector<Untouched> untouched() {
    const std::vector<std::string> usual = {"--policies", "p.ini"};
    return {
        {"AKeywordIsMistyped",
         with(webPolicies, "Hotspares", "Hotspare"),
         usual,
         2,
         {"unknown keyword \"Hotspare\" [ZX007]"}},
        {"ThereIsNoSuchFile", webPolicies, {"--policies", "no-such.ini"}, 2, {"no-such.ini"}},
        {"ASwitchIsMistyped",
         webPolicies,
         {"--policies", "p.ini", "--noexecutall"},
         2,
         {"--noexecutall"}},
        {"ASwitchIsPartOfTheName",
         webPolicies,
         {"--policies", "p.ini /noexecutall"},
         2,
         {"p.ini /noexecutall"}},
        {"NoPolicyFits",
         with(webPolicies, "d:8", "d:6"),
         usual,
         3,
         {"Policy.web asks for d:6, and it is 8"}},
        {"ASizeDoesNotFit", with(webPolicies, "A:FILL", "A:90000"), usual, 2, {"[ZX110]"}},
        {"ADriveIsInTwoArrays",
         with(webPolicies, "Array.B = 3", "Array.B = 2,3"),
         usual,
         2,
         {"[ZX302]"}},
        {"ASpareIsAMember",
         with(webPolicies, "Hotspares = 8", "Hotspares = 7"),
         usual,
         2,
         {"[ZX502]"}},
        {"ThereIsNoSuchController",
         webPolicies,
         {"--policies", "p.ini", "--controller", "3"},
         2,
         {"controller 3"}},
        {"AControllerIsNoNumber",
         webPolicies,
         {"--policies", "p.ini", "--controller", "x"},
         2,
         {"\"x\" is no list of numbers"}},
        {"AControllerIsZero",
         webPolicies,
         {"--policies", "p.ini", "--controller", "0"},
         2,
         {"\"0\" is no list of numbers"}},
        {"InventedDrivesReachNoChild",
         webPolicies,
         {"--policies", "p.ini", "--recording", "a.zrec"},
         2,
         {"--recording"}},
        {"AnInventoryOfTheOldCommandIsNoOption",
         webPolicies,
         {"--policies", "p.ini", "/controllers:contlist.ini"},
         2,
         {"apply takes one of a plan, --policies and --resume"}},
        {"AWordOfTheOldCommandIsNoOption",
         webPolicies,
         {"--policies", "p.ini", "/e1"},
         2,
         {"apply takes one of a plan, --policies and --resume"}},
        {"ADriveInAnEnclosureIsNotTheOneInNone",
         custom("Array.A = 1,2\n", "Logical.1 = A:FILL:1:ON\n"),
         usual,
         2,
         {"[ZX711]"}},
        {"AddingIsNotEnough",
         webPolicies,
         {"--policies", "p.ini", "--strategy", "add"},
         2,
         {"[ZP220]"}},
    };
}

class ApplyLeavesUntouched : public testing::TestWithParam<Untouched> {};

TEST_P(ApplyLeavesUntouched, AConfiguredServer) {
    const Untouched& danger = GetParam();
    const bool isMixed = std::string(danger.name) == "ADriveInAnEnclosureIsNotTheOneInNone";
    AppliedServer server(
        isMixed ? with(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
                                     {"slot": 0, "count": 4, "sizeMB": 69376})"),
                       "\"drives\": [",
                       R"("virtualDisks": [{"level": "RAID1", "spans": [[":2", ":3"]]}],
                          "drives": [)")
                : megaServer(eightDrives));
    if (!isMixed) {
        server.write("first.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
        server.deploy("first.ini");
    }
    server.write("p.ini", danger.policies);
    server.logCalls();
    std::vector<std::string> arguments = danger.arguments;
    arguments.insert(arguments.end(), {"--destroy", "any"});
    const ProgramRun run = server.refused(arguments);
    EXPECT_EQ(run.exitCode, danger.exitCode) << run.output << run.error;
    EXPECT_EQ(server.changingCalls(), std::vector<std::string>());
    for (const std::string& piece : danger.pieces) {
        EXPECT_NE((run.output + run.error).find(piece), std::string::npos)
            << piece << "\n"
            << run.output << run.error;
    }
    expectPieces(run.output + run.error, {"help: "});
}

INSTANTIATE_TEST_SUITE_P(Server, ApplyLeavesUntouched, testing::ValuesIn(untouched()),
                         [](const testing::TestParamInfo<Untouched>& danger) {
                             return danger.param.name;
                         });

// --- what is made otherwise than one may think is made as the plan says ---

struct Made {
    const char* name;
    std::string definition;
    std::string policies;
    std::vector<std::string> told; ///< before the commands
    std::vector<std::string> made; ///< of what stands afterwards
};

std::string fiveEnclosures() {
    std::string drives;
    for (int i = 0; i < 5; ++i) {
        drives += std::string(i == 0 ? "" : ",") + "{\"enclosure\": " + std::to_string(i + 10) +
                  ", \"slot\": 0, \"count\": 4, \"sizeMB\": 69376}";
    }
    return megaServer(drives);
}

std::vector<Made> made() {
    return {
        {"MoreThanSixteenCommands",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 20, "sizeMB": 69376})"),
         custom("Array.A = 1,2\nArray.B = 3,4\nArray.C = 5,6\nArray.D = 7,8\n"
                "Array.E = 9,10\nArray.F = 11,12\n",
                "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:1:ON\nLogical.3 = C:FILL:1:ON\n"
                "Logical.4 = D:FILL:1:ON\nLogical.5 = E:FILL:1:ON\nLogical.6 = F:FILL:1:ON\n",
                "13,14,15,16,17,18,19"),
         {},
         {"drive 32:12 ", "hotspare", "drive 32:18 ", "hotspare", "array 5: [32:10,32:11]"}},
        {"SeveralLogicalDrivesOnOneArray",
         megaServer(eightDrives),
         with(with(webPolicies, "Logical.1 = A:FILL", "Logical.1 = A:20000"), "Logical.2",
              "Logical.2 = A:FILL:1:ON\nLogical.3"),
         {"! Controller 1: zolex leaves out Logical.2: Array.A has Logical.1 already\n  [ZX405]",
          "Plan (4 steps)"},
         {"logical drive 0: array 0, RAID1, 20000 MB", "logical drive 1: array 0, RAID1, 49376 MB",
          "logical drive 2: array 1, RAID5"}},
        {"RaidTenOfFiveDrives",
         megaServer(eightDrives),
         custom("Array.A = 1,2,3,4,5\n", "Logical.1 = A:FILL:10:ON\n"),
         {"! Controller 1: RAID 10 is made of pairs, and Array.A has 5 drives [ZX404]\n",
          "1 create A: RAID10 on 32:0 32:1 32:2 32:3\n"},
         {"drive 32:4 ", "good", "array 0: [32:0,32:1] [32:2,32:3]\n"}},
        {"ListsWithoutTheMode",
         megaServer(eightDrives),
         noMode,
         {"! Controller 1: Array.A has no effect: zolex chooses the drives itself [ZX307]\n",
          "1 create A: RAID5 on 32:0 32:1 32:2 32:3 32:4 32:5 32:6\n"},
         {"array 0: [32:0,32:1,32:2,32:3,32:4,32:5,32:6]\n"}},
        {"AllTakesSixteenDrives",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 24, "sizeMB": 69376})"),
         custom("Array.A = ALL\n", "Logical.1 = A:FILL:5:ON\n"),
         {"! Controller 1: Array.A takes 16 of 24 drives that remain [ZX305]\n"},
         {"drive 32:15 ", "online", "drive 32:16 ", "good", "drive 32:23 ", "good"}},
        {"AFifthEnclosure",
         fiveEnclosures(),
         custom("Array.A = ALL\n", "Logical.1 = A:FILL:5:ON\n"),
         {"! Controller 1: 14:0 (Unconfigured(good), serial ZS000016) has no number in\n"
          "  policies [ZX701]\n"},
         {"drive 13:3 ", "online", "drive 14:0 ", "good"}},
        {"DrivesInNoEnclosureAlone",
         megaServer(R"({"slot": 0, "count": 4, "sizeMB": 69376})"),
         custom("Array.A = 1,2\n", "Logical.1 = A:FILL:1:ON\n", "4"),
         {},
         {"drive :3 ", "hotspare", "array 0: [:0,:1]\n"}},
    };
}

class ApplyMakes : public testing::TestWithParam<Made> {};

TEST_P(ApplyMakes, WhatThePlanSays) {
    const Made& danger = GetParam();
    AppliedServer server(danger.definition);
    server.write("p.ini", danger.policies);
    const ProgramRun run = server.apply({"--policies", "p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.output + run.error, danger.told);
    expectPieces(server.shown(), danger.made);
    server.expectSame("p.ini");
}

INSTANTIATE_TEST_SUITE_P(Server, ApplyMakes, testing::ValuesIn(made()),
                         [](const testing::TestParamInfo<Made>& danger) {
                             return danger.param.name;
                         });

// --- a restore that is followed by nothing ---

/// A configured server, and policies for it.
class ApplyDangers : public testing::Test {
  protected:
    static void configure(AppliedServer& server) {
        server.write("first.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
        server.write("web.ini", webPolicies);
        server.deploy("first.ini");
    }
};

TEST_F(ApplyDangers, WithoutTheDetectorTheMachineIsAnotherOne) {
    AppliedServer server(megaServer(eightDrives));
    configure(server);
    const std::string consent = server.plan({"web.ini"});
    fs::remove(server.folder() / "hwdetect.exe");
    const ProgramRun run = server.refused({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
    expectPieces(run.error, {"another machine", "KQ10Z7V", "not told"});
    // A policy that asks for it is refused too.
    server.write("m.ini", with(webPolicies, "d:8", "d:8,m:8837"));
    const ProgramRun asked = server.refused({"--policies", "m.ini", "--destroy", "any"});
    EXPECT_TRUE(asked.exitCode == 2 || asked.exitCode == 3) << asked.output << asked.error;
}

TEST_F(ApplyDangers, ADriveThatThePolicyNamesHasFailed) {
    AppliedServer server(
        with(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                      {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
                      {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
             "\"drives\": [",
             R"("virtualDisks": [{"level": "RAID1", "spans": [["32:0", "32:1"]]}],
           "drives": [)"));
    server.write("p.ini", with(webPolicies, ",d:8", ""));
    const ProgramRun run = server.refused({"--policies", "p.ini", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
    expectPieces(run.output + run.error, {"32:2 (Failed", "[ZX701]"});
}

/// What is captured of it either comes back whole, or is refused.
TEST_F(ApplyDangers, WhatACaptureCannotKeepIsToldOrComesBack) {
    const auto serverWith = [](const std::string& disks) {
        return with(megaServer(R"({"enclosure": 32, "slot": 0, "count": 12, "sizeMB": 69376})"),
                    "\"drives\": [", "\"virtualDisks\": [" + disks + "], \"drives\": [");
    };
    AppliedServer strip(
        serverWith(R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "stripeKB": 256})"));
    const ProgramRun lost =
        strip.start(strip.program(), {"show", "--as", "policies", "-o", "c.ini"});
    EXPECT_EQ(lost.exitCode, 1);
    expectPieces(lost.error, {"256 KB would come\n    back with 64 KB [ZC103]"});

    AppliedServer spans(serverWith(
        R"({"level": "RAID50", "spans": [["32:0", "32:1", "32:2"], ["32:3", "32:4", "32:5"],
                                         ["32:6", "32:7", "32:8"]]})"));
    const ProgramRun other =
        spans.start(spans.program(), {"show", "--as", "policies", "-o", "c.ini"});
    EXPECT_EQ(other.exitCode, 1);
    expectPieces(other.error, {"[ZC105]"});
    const ProgramRun run = spans.refused({"--policies", "c.ini", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
    expectPieces(run.output + run.error, {"[ZX402]"});

    AppliedServer several(serverWith(
        R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "sizeMB": 20000},
           {"level": "RAID5", "array": 0})"));
    const std::string before = several.shown();
    EXPECT_EQ(
        several.start(several.program(), {"show", "--as", "policies", "-o", "c.ini"}).exitCode, 0);
    const ProgramRun whole =
        several.apply({"--policies", "c.ini", "--strategy", "rebuild", "--destroy", "any"});
    EXPECT_EQ(whole.exitCode, 0) << whole.output << whole.error;
    EXPECT_EQ(several.shown(), before);
}

/// Controller 2 of two configured ones is set up anew; 1 stays as it is.
TEST_F(ApplyDangers, OneControllerIsRebuiltAlone) {
    AppliedServer server("two-controllers");
    server.deploy("sample-policies.ini");
    const std::string second = "controller 2";
    server.write("next.ini", with(with(server.read("sample-policies.ini"), "StripeSize = 64",
                                       "StripeSize = 128"),
                                  "StripeSize = 64", "StripeSize = 128"));
    server.logCalls();
    const std::string shown = server.shown();
    const ProgramRun run =
        server.apply({"--policies", "next.ini", "--controller", "2", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    EXPECT_FALSE(server.changingCalls().empty());
    for (const std::string& call : server.changingCalls()) {
        EXPECT_TRUE(call.find("-a1") != std::string::npos || call.find("-A1") != std::string::npos)
            << call;
    }
    EXPECT_EQ(server.zolexctl({"diff", "next.ini", "--controller", "2"}).exitCode, 0);
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "1"}).exitCode, 0);
}

/// Drives of another server: their layout is in the list of losses.
TEST_F(ApplyDangers, ForeignConfigurationsGoWithConsentAlone) {
    AppliedServer server(megaServer(
        R"({"enclosure": 32, "slot": 0, "count": 6, "sizeMB": 69376},
           {"enclosure": 32, "slot": 6, "count": 2, "sizeMB": 69376, "status": "foreign"})"));
    server.write("web.ini", webPolicies);
    const std::string consent = server.plan({"web.ini"});
    ASSERT_NE(consent, "");
    const ProgramRun refused = server.refused({"plan.json"});
    EXPECT_EQ(refused.exitCode, 3);
    expectPieces(refused.error, {"2 foreign drives", "32:6", "32:7", "--destroy " + consent});
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    server.expectNothingToDo("web.ini");
}

// --- success that was none ---

TEST_F(ApplyDangers, WithoutAControllerNothingSucceeds) {
    AppliedServer server(megaServer(eightDrives));
    server.write("web.ini", webPolicies);
    server.plan({"web.ini"});
    server.environment["ZOLEX_PCI_ROOT"] = (server.folder() / "none").string();
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"plan.json"}, {"--policies", "web.ini"}}) {
        const ProgramRun run = server.refused(arguments);
        EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
        // What a kept plan is compared with has a code.
        const std::string code = arguments.size() == 1 ? " [ZA110]" : "";
        EXPECT_EQ(run.error, "error: no supported RAID controller was found" + code +
                                 "\n  help: zolexctl doctor tells what is there\n");
    }
}

TEST_F(ApplyDangers, AnErrorTextIsNoListing) {
    AppliedServer server(megaServer(eightDrives));
    configure(server);
    const std::string consent = server.plan({"web.ini"});
    server.setFaults(R"({"match": "-pdList", "output": "Failed to get data.\n", "exitCode": 0})");
    const ProgramRun run = server.refused({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
    expectPieces(run.error, {"error: ", "could not be captured", "help: zolexctl doctor"});
    server.setFaults(R"({"match": "-pdList", "output": "Adapter busy.\n", "exitCode": 3})");
    const ProgramRun failing = server.refused({"plan.json", "--destroy", consent});
    EXPECT_EQ(failing.exitCode, 2) << failing.output << failing.error;
    expectPieces(failing.error, {"error: ", "exit code 3"});
}

/// The listing turns into an error text when everything has been done: it is not known whether.
TEST_F(ApplyDangers, WhatCannotBeReadBackIsNotProved) {
    AppliedServer server(megaServer(eightDrives));
    server.write("web.ini", webPolicies);
    server.plan({"web.ini"});
    const ProgramRun counted = server.zolexctl({"show"});
    ASSERT_EQ(counted.exitCode, 0);
    // The first capture of apply is the guard's, the second looks at what was made.
    server.setFaults(
        R"({"match": "-LdPdInfo", "occurrence": 2, "output": "Failed.\n", "exitCode": 1})");
    const ProgramRun run = server.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 5) << run.output << run.error;
    expectPieces(run.error, {"error: "});
    EXPECT_EQ(run.output.find("as planned\n"), std::string::npos) << run.output;
    server.setFaults("");
    server.expectNothingToDo("web.ini");
}

/// A policy made from a degraded server fits it when it is whole, and is told to be of no healthy
/// one.
TEST_F(ApplyDangers, ACaptureOfADegradedServerIsToldToBeOne) {
    AppliedServer server(
        with(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                      {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
                      {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
             "\"drives\": [",
             R"("virtualDisks": [{"level": "RAID5", "spans": [["32:1", "32:2", "32:3"]],
                            "writePolicy": "WB", "readPolicy": "ADRA"}],
           "drives": [)"));
    const ProgramRun captured =
        server.start(server.program(), {"show", "--as", "policies", "-o", "c.ini"});
    EXPECT_EQ(captured.exitCode, 1);
    expectPieces(captured.error, {"[ZC106]"});
}

/// The RAID 5 of a sample's one HYPERWIN controller cannot be; naming one drive takes both.
TEST_F(ApplyDangers, HyperwinTakesBothDrivesAndThePlanSaysSo) {
    AppliedServer server("hyperwin");
    server.write("one.ini", custom("Array.A = 1\n", "Logical.1 = A:FILL:0:ON\n"));
    const ProgramRun run = server.refused({"--policies", "one.ini"});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
}

TEST_F(ApplyDangers, AnEmptyServerHasNoPolicyToGoBackTo) {
    AppliedServer server(megaServer(eightDrives));
    const ProgramRun captured =
        server.start(server.program(), {"show", "--as", "policies", "-o", "c.ini"});
    EXPECT_EQ(captured.exitCode, 1);
    expectPieces(captured.error, {"[ZC119]"});
    const ProgramRun run = server.refused({"--policies", "c.ini"});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
}

TEST_F(ApplyDangers, ACloneOntoAnotherNumberOfDrivesIsRefused) {
    AppliedServer source(megaServer(eightDrives));
    source.write("web.ini", webPolicies);
    source.deploy("web.ini");
    ASSERT_LE(source.start(source.program(), {"show", "--as", "policies", "-o", "c.ini"}).exitCode,
              1);
    AppliedServer fewer(megaServer(R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376})"));
    fewer.write("c.ini", source.read("c.ini"));
    const ProgramRun run = fewer.refused({"--policies", "c.ini"});
    EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
    expectPieces(run.output + run.error, {"asks for d:8,", "and it is 7"});
    const ProgramRun let = fewer.refused({"--policies", "c.ini", "--allow-skipped"});
    EXPECT_EQ(let.exitCode, 0) << let.output << let.error;
    expectPieces(let.output, {"skipped: "});
}

/// A listing's line of 200 bytes: its last member is told by the facts, not by what the line is cut
/// to.
TEST_F(ApplyDangers, ALineThatWouldBeCutNamesTheRightDrive) {
    std::string members;
    for (int i = 1; i <= 32; ++i) {
        members += (i == 1 ? "" : ",") + std::to_string(i);
    }
    AppliedServer server(R"({"machineType": "8840", "serialNumber": "KQ52A1R", "controllers": [{
        "utility": "ARCCONF", "model": "Kestrix-B7", "serialNumber": "1000001",
        "pci": {"bus": 4, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
        "drives": [{"channel": 0, "device": 4, "count": 32, "sizeMB": 70000}]}]})");
    server.write("p.ini", custom("Array.A = " + members + "\n", "Logical.1 = A:FILL:5:ON\n"));
    const ProgramRun run = server.apply({"--policies", "p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    EXPECT_NE(server.shown().find("0:35"), std::string::npos) << server.shown();
    server.expectSame("p.ini");
}

// --- switches that do more than they say ---

TEST_F(ApplyDangers, AResetOfOneControllerSpeaksOfThatOne) {
    AppliedServer server("two-controllers");
    server.deploy("sample-policies.ini");
    server.logCalls();
    const ProgramRun refused = server.start(server.program(), {"reset", "--controller", "2"});
    EXPECT_EQ(refused.exitCode, 3) << refused.output << refused.error;
    expectPieces(refused.output + refused.error, {"252:0", "--destroy "});
    EXPECT_EQ((refused.output + refused.error).find(" 32:0"), std::string::npos)
        << refused.output << refused.error;
    EXPECT_EQ(server.changingCalls(), std::vector<std::string>());
    std::smatch code;
    ASSERT_TRUE(
        std::regex_search(refused.error, code, std::regex("--destroy ([0-9A-Z]{4}-[0-9A-Z]{4})")))
        << refused.error;
    const ProgramRun run =
        server.change({"reset", "--controller", "2", "--destroy", code[1].str()});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    for (const std::string& call : server.changingCalls()) {
        EXPECT_TRUE(call.find("-a1") != std::string::npos || call.find("-A1") != std::string::npos)
            << call;
    }
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "1"}).exitCode, 0);
    for (const char* const number : {"3", "x", "0"}) {
        const std::string before = server.read("state.json");
        const ProgramRun odd =
            server.start(server.program(), {"reset", "--controller", number, "--destroy", "any"});
        EXPECT_EQ(odd.exitCode, 2) << odd.output << odd.error;
        EXPECT_EQ(server.read("state.json"), before);
    }
}

/// Nobody has agreed: the reset is refused, and nothing that was to follow happens either.
TEST_F(ApplyDangers, AResetThatNobodyAgreedToIsNoReset) {
    for (const char* const closed : {"", "0", "012"}) {
        SCOPED_TRACE(closed);
        AppliedServer server("configured");
        const std::string before = server.read("state.json");
        const ProgramRun run = server.start(server.program(), {"reset"}, "y\n", closed);
        EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
        EXPECT_EQ(server.read("state.json"), before);
    }
}

} // namespace
} // namespace zolex::e2e
