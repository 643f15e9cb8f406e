// apply of the real program on the virtual server: what it does, what it refuses, what it proves.

#include "AppliedServer.h"

#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

using companion::test::keepDocument;

std::string nameOf(const testing::TestParamInfo<std::string>& name) {
    std::string word = name.param;
    word.erase(std::remove(word.begin(), word.end(), '-'), word.end());
    return word;
}

class ApplyOfASample : public testing::TestWithParam<std::string> {};

/// From what the sample has at first to its policies, and the proof of it.
TEST_P(ApplyOfASample, ConfiguresItAndProvesIt) {
    AppliedServer server(GetParam());
    if (GetParam() == "configured") { // as its policies want it
        ASSERT_EQ(server.zolex({"/r", "/y"}).exitCode, 0);
    }
    const std::string consent = server.plan({"sample-policies.ini"});
    const std::vector<std::string> commands = valuesOf(server.read("plan.json"), "command");
    ASSERT_FALSE(commands.empty());
    const ProgramRun run =
        server.apply(AppliedServer::agreed({"plan.json", "--certificate", "c.json"}, consent));
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    EXPECT_EQ(run.error, "");
    keepDocument("apply-" + GetParam() + ".txt", withoutTimesOfRun(run.output));
    expectPieces(run.output, {"as planned for", "[1/" + std::to_string(commands.size()) + "]",
                              "[" + std::to_string(commands.size()) + "/", "Verified", "as planned",
                              "Certificate"});
    for (const std::string& line : linesOf(run.output)) {
        EXPECT_LE(line.size(), 80U) << line;
    }
    // The journal has every step, and an end.
    const std::vector<std::string> events = server.events("plan.journal.jsonl");
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front(), "begin");
    EXPECT_EQ(events.back(), "end");
    for (std::size_t i = 1; i <= commands.size(); ++i) {
        for (const char* const event : {"step-started ", "child ", "step-ended "}) {
            EXPECT_EQ(std::count(events.begin(), events.end(), event + std::to_string(i)), 1)
                << event << i;
        }
    }
    keepDocument("apply-" + GetParam() + ".jsonl", server.read("plan.journal.jsonl"));
    keepDocument("certificate-" + GetParam(), server.read("c.json"));
    // It is there, and whoever asks is told so.
    for (const char* const file : {"sample-policies.ini", "plan.json", "c.json"}) {
        server.expectSame(file);
    }
    server.expectNothingToDo("sample-policies.ini");
    for (const char* const file : {"plan.journal.jsonl", "c.json"}) {
        const ProgramRun shown = server.zolexctl({"show", file});
        EXPECT_EQ(shown.exitCode, 0) << shown.output << shown.error;
        EXPECT_FALSE(shown.output.empty());
    }
    // A plan is for once.
    const std::string before = server.read("plan.journal.jsonl");
    const ProgramRun again = server.refused(AppliedServer::agreed({"plan.json"}, consent));
    EXPECT_EQ(again.exitCode, 3) << again.output << again.error;
    EXPECT_EQ(server.read("plan.journal.jsonl"), before);
    const ProgramRun resumed = server.refused({"--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 3) << resumed.output << resumed.error;
    EXPECT_EQ(server.read("plan.journal.jsonl"), before);
    // Planned anew there is nothing to do: 0 each time, and no journal.
    server.plan({"sample-policies.ini", "-o", "next.json"});
    for (int i = 0; i < 2; ++i) {
        const ProgramRun next = server.refused({"next.json"});
        EXPECT_EQ(next.exitCode, 0) << next.output << next.error;
    }
    EXPECT_FALSE(server.exists("next.journal.jsonl"));
}

/// What zolex makes of the same policies.
TEST_P(ApplyOfASample, EndsWhereZolexDoes) {
    AppliedServer applied(GetParam());
    AppliedServer deployed(GetParam());
    ASSERT_EQ(applied.zolex({"/r", "/y"}).exitCode, 0);
    const std::string consent = applied.plan({"sample-policies.ini"});
    EXPECT_EQ(consent, "");
    const ProgramRun run = applied.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    deployed.deploy("sample-policies.ini");
    EXPECT_EQ(applied.shown(), deployed.shown());
}

/// Another layout goes, and the policies' comes: with what is lost, and consent.
TEST_P(ApplyOfASample, RebuildsWhatStandsOtherwise) {
    AppliedServer server(GetParam());
    server.deploy("sample-policies.ini");
    const std::string wanted = server.shown();
    ASSERT_EQ(server.zolex({"/r", "/y"}).exitCode, 0);
    ASSERT_EQ(server.zolex({"/d"}).exitCode, 0);
    const std::string consent = server.plan({"sample-policies.ini", "--strategy", "rebuild"});
    ASSERT_NE(consent, "");
    // Without consent nothing happens.
    const ProgramRun refused = server.refused({"plan.json"});
    EXPECT_EQ(refused.exitCode, 3) << refused.output << refused.error;
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.output, {"Consent", consent, "agreed"});
    EXPECT_EQ(server.shown(), wanted);
    server.expectNothingToDo("sample-policies.ini");
}

INSTANTIATE_TEST_SUITE_P(Samples, ApplyOfASample, testing::ValuesIn(sampleNames()), nameOf);

constexpr const char* lessPolicies = "[Policy.less]\n"
                                     "AppliesTo.1 = ALL\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array.A = 1,2\n"
                                     "Array.B = 3,4,5\n"
                                     "Hotspares = 6\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1:ON\n"
                                     "Logical.2 = B:FILL:5:ON\n";

/// A server with two logical drives and a spare, a plan that deletes one of them, and its consent.
class ApplyTest : public testing::Test {
  protected:
    ApplyTest() {
        server.write("less.ini", lessPolicies);
        server.write("web.ini", webPolicies);
        server.deploy("less.ini");
        before = server.shown();
        consent = server.plan({"web.ini"});
    }
    /// A refusal: nothing was run that changes anything, no file was made.
    ProgramRun refuse(const std::vector<std::string>& arguments, const std::string& input = {},
                      const std::string& closed = {}) {
        server.logCalls();
        ProgramRun run = server.refused(arguments, input, closed);
        EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
        EXPECT_EQ(server.changingCalls(), std::vector<std::string>());
        EXPECT_EQ(server.shown(), before);
        return run;
    }
    /// What every refusal says.
    static void expectNothingWasChanged(const ProgramRun& run) {
        expectPieces(run.error, {"error: ", "  help: "});
        expectPieces(run.output, {"Nothing was changed.\n"});
    }

    AppliedServer server{megaServer(eightDrives)};
    std::string before;
    std::string consent;
};

TEST_F(ApplyTest, SaysEachThing) {
    ASSERT_NE(consent, "");
    const ProgramRun run =
        server.apply({"plan.json", "--destroy", consent, "--certificate", "web.certificate.json"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(run.error, "");
    EXPECT_EQ(withoutTimesOfRun(run.output),
              R"(Machine    8837 KQ10Z7V, controller serial 0000000001             as planned for
State      8 drives, 2 logical drives, 1 spare                    as planned for
Consent    )" + consent +
                  R"(: spare 32:5 and LD 1 of controller 1         agreed
Journal    plan.journal.jsonl

[1/4] remove the spare 32:5                                 ok  exit 0 N s
[2/4] delete LD 1: RAID5 on 32:2 32:3 32:4                  ok  exit 0 N s
[3/4] create B: RAID5 on 32:2 32:3 32:4 32:5 32:6           ok  exit 0 N s
[4/4] make 32:7 a spare                                     ok  exit 0 N s
Verified   captured again: 2 logical drives, 1 spare, as planned
Certificate web.certificate.json   sha256 HASH
Controller 1  configured
Done: 1 controller configured.
)");
}

// --- the machine that was planned for ---

TEST_F(ApplyTest, OfAnotherMachineIsRefusedAfterCapturesAlone) {
    AppliedServer other{with(megaServer(eightDrives), "KQ10Z7V", "KQ10Z7W")};
    other.write("less.ini", lessPolicies);
    other.deploy("less.ini");
    other.write("plan.json", server.read("plan.json"));
    other.logCalls();
    const ProgramRun run = other.refused({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 3) << run.output;
    EXPECT_TRUE(other.wasCaptured());
    EXPECT_EQ(other.changingCalls(), std::vector<std::string>());
    expectNothingWasChanged(run);
    expectPieces(run.error, {"KQ10Z7V"});
    expectPieces(run.error, {"KQ10Z7W"});
    // As JSON lines: the last says it too.
    const ProgramRun json = other.refused({"plan.json", "--destroy", consent, "--format", "json"});
    EXPECT_EQ(json.exitCode, 3) << json.output << json.error;
    expectPieces(linesOf(json.output).back(), {"\"exit_code\":3"});
}

/// What another did between plan and apply, and what the refusal names.
struct Meddling {
    const char* name;
    std::vector<std::vector<std::string>> commands; ///< of the utility
    std::string piece;                              ///< of the definition ...
    std::string other;                              ///< ... and what it is now
    std::vector<std::string> named;
};

std::vector<Meddling> meddlings() {
    return {
        {"ALogicalDriveWasMade",
         {{"MEGACLI", "-CfgLdAdd", "R0", "[32:6]", "-a0"}},
         "",
         "",
         {"RAID0", "32:6"}},
        {"ALogicalDriveWasDeleted", {{"MEGACLI", "-CfgLdDel", "-L1", "-a0"}}, "", "", {"RAID5"}},
        {"ASpareWasMoved",
         {{"MEGACLI", "-PDHSP", "-Rmv", "-PhysDrv[32:5]", "-a0"},
          {"MEGACLI", "-PDHSP", "{", "-Set", "}", "-PhysDrv[32:7]", "-a0"}},
         "",
         "",
         {"32:5", "32:7"}},
        {"ADriveWasSwapped",
         {},
         R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376})",
         R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376},
            {"enclosure": 32, "slot": 7, "sizeMB": 69376, "serial": "NEW4711"})",
         {"32:7", "NEW4711"}},
        {"AControllerWasSwapped",
         {},
         R"("model": "LSI-MegaRAID-8480",)",
         R"("model": "LSI-MegaRAID-8480", "serialNumber": "5566778899",)",
         {"5566778899"}},
    };
}

class ApplyAfterMeddling : public testing::TestWithParam<Meddling> {};

TEST_P(ApplyAfterMeddling, IsRefusedAndNamesIt) {
    const Meddling& meddling = GetParam();
    AppliedServer server(megaServer(eightDrives));
    server.write("less.ini", lessPolicies);
    server.write("web.ini", webPolicies);
    server.deploy("less.ini");
    const std::string consent = server.plan({"web.ini"});
    for (const std::vector<std::string>& command : meddling.commands) {
        server.util(command);
    }
    if (!meddling.piece.empty()) {
        server.redefine(meddling.piece, meddling.other);
    }
    server.logCalls();
    const ProgramRun run = server.refused({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
    EXPECT_EQ(server.changingCalls(), std::vector<std::string>());
    expectPieces(run.error, {"error: ", "help: zolexctl plan"});
    expectPieces(run.output, {"Nothing was changed.\n"});
    for (const std::string& word : meddling.named) {
        EXPECT_NE(run.error.find(word), std::string::npos) << word << "\n" << run.error;
    }
    keepDocument(std::string("apply-refused-") + meddling.name + ".txt",
                 withoutTimesOfRun(run.output + run.error));
}

INSTANTIATE_TEST_SUITE_P(Server, ApplyAfterMeddling, testing::ValuesIn(meddlings()),
                         [](const testing::TestParamInfo<Meddling>& meddling) {
                             return meddling.param.name;
                         });

TEST_F(ApplyTest, AReplacedFirmwareIsAWarning) {
    server.redefine(R"("model": "LSI-MegaRAID-8480",)",
                    R"("model": "LSI-MegaRAID-8480", "firmware": "9.9.9-0001",)");
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.output + run.error, {"warning", "firmware", "9.9.9-0001"});
    server.expectSame("web.ini");
}

// --- consent ---

TEST_F(ApplyTest, WithoutConsentIsRefused) {
    const ProgramRun run = refuse({"plan.json"});
    expectNothingWasChanged(run);
    EXPECT_NE(run.error.find("--destroy " + consent), std::string::npos) << run.error;
    EXPECT_EQ(refuse({"plan.json", "--destroy", "never"}).exitCode, 3);
}

TEST_F(ApplyTest, AClosedStandardInputIsNoConsent) {
    for (const char* const closed : {"0", "01", "012"}) {
        SCOPED_TRACE(closed);
        refuse({"plan.json"}, "", closed);
    }
}

/// Nobody types at a pipe: what stands in it is no answer.
TEST_F(ApplyTest, WhatAPipeSaysIsNoConsent) {
    refuse({"plan.json"}, "KQ10Z7V\nKQ10Z7V\n" + consent + "\n");
}

TEST_F(ApplyTest, TheCodeOfAnotherMachineIsRefused) {
    AppliedServer other{with(megaServer(eightDrives), "KQ10Z7V", "KQ10Z7W")};
    other.write("less.ini", lessPolicies);
    other.write("web.ini", webPolicies);
    other.deploy("less.ini");
    const std::string code = other.plan({"web.ini"});
    ASSERT_NE(code, consent);
    expectNothingWasChanged(refuse({"plan.json", "--destroy", code}));
}

TEST_F(ApplyTest, TheCodeOfAnotherListIsRefused) {
    const std::string other =
        server.plan({"web.ini", "--strategy", "rebuild", "-o", "rebuild.json"});
    ASSERT_NE(other, consent);
    expectNothingWasChanged(refuse({"plan.json", "--destroy", other}));
}

TEST_F(ApplyTest, TheCodeOfAnOlderListIsRefused) {
    server.util({"MEGACLI", "-CfgLdAdd", "R0", "[32:6]", "-a0"});
    before = server.shown();
    const std::string newer = server.plan({"web.ini"});
    ASSERT_NE(newer, consent);
    expectNothingWasChanged(refuse({"plan.json", "--destroy", consent}));
    EXPECT_EQ(server.apply({"plan.json", "--destroy", newer}).exitCode, 0);
}

TEST_F(ApplyTest, AWordThatIsNoConsentIsABadOption) {
    for (const char* const word : {"yes", "all", "", "AAAA", "Never"}) {
        SCOPED_TRACE(word);
        const ProgramRun run = server.refused({"plan.json", "--destroy", word});
        EXPECT_TRUE(run.exitCode == 2 || run.exitCode == 3) << run.exitCode;
        expectPieces(run.error, {"error: "});
    }
    EXPECT_EQ(server.refused({"plan.json", "--yes"}).exitCode, 2);
}

TEST_F(ApplyTest, OwnTakesWhatACertificateTellsAndNothingElse) {
    // What zolex made has none.
    const ProgramRun nowhere = server.refused({"plan.json", "--destroy", "own"});
    EXPECT_EQ(nowhere.exitCode, 2);
    EXPECT_EQ(nowhere.error,
              "error: --destroy own needs --certificates: without one nothing is "
              "known to be your own\n"
              "  help: name the folder of the certificates: --certificates proofs\n");
    fs::create_directory(server.folder() / "certificates");
    const ProgramRun none =
        server.refused({"plan.json", "--destroy", "own", "--certificates", "certificates"});
    EXPECT_EQ(none.exitCode, 3) << none.output << none.error;
    // What was applied has one.
    ASSERT_EQ(server.apply({"plan.json", "--destroy", consent, "--certificates", "certificates"})
                  .exitCode,
              0);
    EXPECT_TRUE(fs::exists(server.folder() / "certificates" / "KQ10Z7V.certificate.json"));
    server.plan({"less.ini", "-o", "back.json"});
    const ProgramRun back =
        server.apply({"back.json", "--destroy", "own", "--certificates", "certificates"});
    EXPECT_EQ(back.exitCode, 0) << back.output << back.error;
    server.expectSame("less.ini");
    // Not what somebody else has made since.
    server.util({"MEGACLI", "-CfgLdAdd", "R0", "[32:6]", "-a0"});
    server.plan({"web.ini", "-o", "again.json"});
    const ProgramRun again =
        server.refused({"again.json", "--destroy", "own", "--certificates", "certificates"});
    EXPECT_EQ(again.exitCode, 3) << again.output << again.error;
}

TEST_F(ApplyTest, AnyIsForLaboratories) {
    const ProgramRun run = server.apply({"plan.json", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    server.expectSame("web.ini");
}

// --- utilities that refuse, and that lie ---

TEST_F(ApplyTest, AUtilityThatRefusesStopsIt) {
    server.setFaults(R"({"match": "-CfgLdAdd", "occurrence": 1, "exitCode": 38,
                         "output": "FW error description:\n  The drive is busy.\n"})");
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 4) << run.output << run.error;
    expectPieces(run.output, {"FAILED", "exit 38"});
    EXPECT_EQ(run.error,
              R"(error: step 3 of 4 was refused (exit code 38): create B: RAID5 on 32:2 32:3 32:4
       32:5 32:6 [ZA111]
  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4,32:5,32:6 ]   WB   ADRA   -strpsz 64  -a0
  | FW error description:
  |   The drive is busy.
  now on controller 1: array A stands, array B, hot spare 32:7 do not; what the
    plan removes is gone
  remains: step 3: create B: RAID5 on 32:2 32:3 32:4 32:5 32:6
  remains: step 4: make 32:7 a spare
  help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended
  help: zolexctl plan web.ini plans from what is there
)");
    keepDocument("apply-utility-refuses.txt", withoutTimesOfRun(run.output + run.error));
    EXPECT_EQ(server.events("plan.journal.jsonl").back(), "end");
    // The cause is mended, and it goes on where it was.
    server.setFaults("");
    const ProgramRun resumed = server.apply({"--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    server.expectSame("web.ini");
    EXPECT_EQ(server.refused({"--resume", "plan.journal.jsonl"}).exitCode, 3);
}

/// It prints an error, ends with 0, and has done nothing.
TEST_F(ApplyTest, AUtilityThatLiesIsFoundOut) {
    server.setFaults(R"({"match": "-CfgLdAdd", "occurrence": 1, "exitCode": 0,
                         "output": "FW error description:\n  The drive is busy.\n"})");
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 5) << run.output << run.error;
    expectPieces(run.error, {"error: ", "RAID5", "help: zolexctl plan"});
    expectPieces(run.output, {"Verified   captured again: not as planned\n",
                              "but the end is not proved to be as planned.\n"});
    keepDocument("apply-utility-lies.txt", withoutTimesOfRun(run.output + run.error));
}

TEST_F(ApplyTest, AUtilityThatLiesDoesSoNoLongerThanOneStepWithCare) {
    server.setFaults(R"({"match": "-CfgLdDel", "occurrence": 1, "exitCode": 0})");
    server.logCalls();
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent, "--careful"});
    EXPECT_TRUE(run.exitCode == 4 || run.exitCode == 5) << run.exitCode << run.output << run.error;
    // The spare is gone, the deletion was tried, and nothing more.
    const std::vector<std::string> calls = server.changingCalls();
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_NE(calls.back().find("-CfgLdDel"), std::string::npos) << calls.back();
    EXPECT_NE(server.shown().find("RAID5"), std::string::npos);
}

#ifndef _WIN32
/// It does half: the last drive of the RAID 5 is left out.
TEST_F(ApplyTest, PosixAUtilityThatDoesHalfIsFoundOut) {
    fs::rename(server.folder() / "UTIL.BAT", server.folder() / "utility");
    server.write("UTIL.BAT", "#!/bin/sh\n"
                             "case $* in *-CfgLdAdd*) set -- $(echo \"$*\" | "
                             "sed 's/,32:6//');; esac\n"
                             "exec \"${0%/*}/utility\" \"$@\"\n");
    fs::permissions(server.folder() / "UTIL.BAT", fs::perms::owner_all);
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 5) << run.output << run.error;
    expectPieces(run.error, {"error: ", "32:6"});
}
#endif

// --- what is asked for ---

/// Two controllers, both to be configured.
class ApplyOnTwo : public testing::Test {
  protected:
    ApplyOnTwo() { server.plan({"sample-policies.ini"}); }
    AppliedServer server{"two-controllers"};
};

TEST_F(ApplyOnTwo, StopsAtTheFirstFailure) {
    server.setFaults(R"({"match": "-CfgLdAdd R5", "occurrence": 1, "exitCode": 3})");
    const ProgramRun run = server.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 4) << run.output << run.error;
    const std::string shown = server.shown();
    EXPECT_EQ(shown.find("252:0 online"), std::string::npos) << shown;
    EXPECT_EQ(server.read("state.json").find("RAID5"), std::string::npos);
}

TEST_F(ApplyOnTwo, KeepsGoingOnTheOther) {
    server.setFaults(R"({"match": "-CfgLdAdd R5", "occurrence": 1, "exitCode": 3})");
    const ProgramRun run = server.apply({"plan.json", "--keep-going"});
    EXPECT_EQ(run.exitCode, 4) << run.output << run.error;
    expectPieces(run.output + run.error, {"failed: step 2 of"});
    expectPieces(run.output + run.error, {"configured"});
    server.setFaults("");
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "2"}).exitCode, 0);
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "1"}).exitCode, 1);
    const ProgramRun resumed = server.apply({"--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    server.expectSame("plan.json");
}

TEST_F(ApplyOnTwo, OneControllerIsOneController) {
    server.logCalls();
    const ProgramRun run = server.apply({"plan.json", "--controller", "2"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    for (const std::string& call : server.changingCalls()) {
        EXPECT_TRUE(call.ends_with("-a1")) << call;
    }
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "2"}).exitCode, 0);
    EXPECT_EQ(server.zolexctl({"diff", "sample-policies.ini", "--controller", "1"}).exitCode, 1);
    EXPECT_EQ(server.refused({"plan.json", "--controller", "9"}).exitCode, 2);
}

TEST_F(ApplyOnTwo, PlansAndAppliesInOneRun) {
    fs::remove(server.folder() / "plan.json");
    server.setFaults(R"({"match": "-CfgLdAdd R5", "occurrence": 2, "exitCode": 3})");
    const ProgramRun run = server.apply({"--policies", "sample-policies.ini"});
    EXPECT_EQ(run.exitCode, 4) << run.output << run.error;
    EXPECT_FALSE(server.exists("plan.json"));
    // The journal alone is enough to go on.
    server.setFaults("");
    fs::rename(server.folder() / "sample-policies.ini", server.folder() / "other.ini");
    const ProgramRun resumed = server.apply({"--resume", "sample-policies.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    server.expectSame("other.ini");
    // Again: nothing to do, and no journal.
    fs::remove(server.folder() / "sample-policies.journal.jsonl");
    const ProgramRun again = server.refused({"--policies", "other.ini"});
    EXPECT_EQ(again.exitCode, 0) << again.output << again.error;
}

TEST_F(ApplyTest, WritesALogOfAllThatItRan) {
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent, "--log", "night.log"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    const std::string log = server.read("night.log");
    expectPieces(log, {"zolexctl"});
    for (const char* const piece : {"KQ10Z7V", "-CfgLdDel", "-CfgLdAdd", "-PDHSP"}) {
        EXPECT_NE(log.find(piece), std::string::npos) << piece << "\n" << log;
    }
    for (const std::string& line : linesOf(log)) {
        if (line.find("-CfgLdAdd") != std::string::npos) {
            EXPECT_TRUE(line.starts_with("20")) << "no time stamp: " << line;
        }
    }
    keepDocument("apply-log.txt", withoutTimesOfRun(log));
}

TEST_F(ApplyTest, TellsEachEventAsALineOfJson) {
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent, "--format", "json"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(run.error, "");
    keepDocument("apply-events.jsonl", run.output);
    const std::vector<std::string> lines = linesOf(run.output);
    ASSERT_GT(lines.size(), 5U);
    EXPECT_EQ(valueOf(lines.front(), "event"), "begin");
    EXPECT_EQ(valueOf(lines.back(), "event"), "end");
    expectPieces(lines.back(), {"\"exit_code\":0", "\"results\":[", "\"configured\""});
    // They are the journal's.
    EXPECT_EQ(lines.size(), linesOf(server.read("plan.journal.jsonl")).size());
}

// --- two at once ---

/// The lock of a run that is gone.
TEST_F(ApplyTest, WithoutALockOfItsOwnAnotherRunIsNoHindrance) {
    server.write("plan.json.lock", "");
    const ProgramRun run = server.apply({"plan.json", "--destroy", consent});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
}

} // namespace
} // namespace zolex::e2e
