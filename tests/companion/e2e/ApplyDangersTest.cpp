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

/// Arrays of two drives, each a mirror.
std::string mirrors(int count, const std::string& spares) {
    std::string arrays;
    std::string drives;
    for (int i = 0; i < count; ++i) {
        const char letter = static_cast<char>('A' + i);
        arrays += std::string("Array.") + letter + " = " + std::to_string(2 * i + 1) + "," +
                  std::to_string(2 * i + 2) + "\n";
        drives += "Logical." + std::to_string(i + 1) + " = " + letter + ":FILL:1:ON\n";
    }
    return custom(arrays, drives, spares);
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
         {"/controllers:contlist.ini"}},
        {"AWordOfTheOldCommandIsNoOption", webPolicies, {"--policies", "p.ini", "/e1"}, 2, {"/e1"}},
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
    AppliedServer server(megaServer(eightDrives));
    server.write("first.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
    server.deploy("first.ini");
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
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 36, "sizeMB": 69376})"),
         mirrors(8, "17,18,19,20,21,22,23,24,25,26,27,28"),
         {},
         {}},
        {"SeveralLogicalDrivesOnOneArray",
         megaServer(eightDrives),
         with(with(webPolicies, "Logical.1 = A:FILL", "Logical.1 = A:20000"), "Logical.2",
              "Logical.2 = A:FILL:1:ON\nLogical.3"),
         {},
         {}},
        {"RaidTenOfFiveDrives",
         megaServer(eightDrives),
         custom("Array.A = 1,2,3,4,5\n", "Logical.1 = A:FILL:10:ON\n"),
         {"RAID 10 is made of pairs, and Array.A has 5 drives [ZX404]"},
         {}},
        {"ListsWithoutTheMode",
         megaServer(eightDrives),
         noMode,
         {"Array.A has no effect: zolex chooses the drives itself [ZX307]"},
         {}},
        {"AllTakesSixteenDrives",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 24, "sizeMB": 69376})"),
         custom("Array.A = ALL\n", "Logical.1 = A:FILL:5:ON\n"),
         {},
         {}},
        {"AFifthEnclosure",
         fiveEnclosures(),
         custom("Array.A = ALL\n", "Logical.1 = A:FILL:5:ON\n"),
         {},
         {}},
        {"DrivesInAnEnclosureBesideDrivesInNone",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
                       {"slot": 0, "count": 4, "sizeMB": 69376})"),
         custom("Array.A = 1,2\n", "Logical.1 = A:FILL:1:ON\n"),
         {},
         {}},
    };
}

class ApplyMakes : public testing::TestWithParam<Made> {};

TEST_P(ApplyMakes, WhatThePlanSays) {
    const Made& danger = GetParam();
    AppliedServer server(danger.definition);
    server.write("p.ini", danger.policies);
    const ProgramRun run = server.apply({"--policies", "p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    std::printf("%s\n%s%s%s\n", danger.name, run.output.c_str(), run.error.c_str(),
                server.shown().c_str());
    expectPieces(run.output + run.error, danger.told);
    expectPieces(server.shown(), danger.made);
    server.expectSame("p.ini");
}

INSTANTIATE_TEST_SUITE_P(Server, ApplyMakes, testing::ValuesIn(made()),
                         [](const testing::TestParamInfo<Made>& danger) {
                             return danger.param.name;
                         });

} // namespace
} // namespace zolex::e2e
