#include "companion/commands/ApplyRuns.h"

#include "companion/text/Terminal.h"

#include <algorithm>

namespace zolex::companion {
namespace {

using test::ApplySeen;
using test::ApplyTest;

constexpr const char* asPlannedFor =
    "Machine    8837 KQ10Z7V, controller serial 1122334455             as planned for\n";

TEST_F(ApplyTest, CarriesAPlanOut) {
    plan();
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(
        seen.output,
        std::string(asPlannedFor) +
            R"(State      8 drives, no logical drives                            as planned for
Consent    nothing is lost                                        not needed
Journal    plan.journal.jsonl

[1/3] create A: RAID1 on 32:0 32:1                          ok  exit 0   0.7 s
[2/3] create B: RAID5 on 32:2 32:3 32:4                     ok  exit 0   0.7 s
[3/3] make 32:7 a spare                                     ok  exit 0   0.7 s
Verified   captured again: 2 logical drives, 1 spare, as planned
Controller 1  configured
Done: 1 controller configured.
)");
    EXPECT_EQ(system->started.size(), 3U);
}

TEST_F(ApplyTest, CarriesAPlanOutOnce) {
    plan();
    ASSERT_EQ(applyPlan().exitCode, 0);
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_EQ(seen.output, "Nothing was changed.\n");
    EXPECT_EQ(seen.error, R"(error: plan.journal.jsonl: the plan was already applied on
       2026-11-21T21:05:00+01:00 [ZA106]
  help: zolexctl plan site.ini plans from what is there
)");
    EXPECT_EQ(system->started.size(), 3U);
}

/// Its journal is named as the plan is.
TEST_F(ApplyTest, APlanUnderTheNameOfAnEarlierOneIsToldWhichJournalToTake) {
    plan(others);
    const std::string earlier = planId;
    ASSERT_EQ(applyPlan("any").exitCode, 0);
    plan();
    const std::string later = planId;
    ASSERT_NE(earlier, later);
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_EQ(seen.output, "Nothing was changed.\n");
    EXPECT_EQ(seen.error,
              "error: plan.journal.jsonl: this is the journal of another plan, " + earlier +
                  ",\n       begun on 2026-11-21T21:05:00+01:00; this plan is " + later +
                  " [ZA106]\n"
                  "  help: zolexctl apply plan.json --journal plan.journal-2.jsonl\n");
    ApplyOptions options;
    options.plan = "plan.json";
    options.destroy = destroyWishOf("any").value();
    options.journal = "plan.journal-2.jsonl";
    EXPECT_EQ(apply(options).exitCode, 0);
    // What is taken too is not told again.
    plan(others);
    EXPECT_NE(applyPlan().error.find(" --journal plan.journal-3.jsonl\n"), std::string::npos);
}

TEST_F(ApplyTest, HasNothingToDoAgainAndAgain) {
    configure();
    plan();
    for (int i = 0; i < 2; ++i) {
        const ApplySeen seen = applyPlan();
        EXPECT_EQ(seen.exitCode, 0);
        EXPECT_EQ(
            seen.output,
            std::string(asPlannedFor) +
                R"(State      8 drives, 2 logical drives, 1 spare                    as planned for
Controller 1  already
Nothing to do: nothing was run.
)");
        EXPECT_FALSE(files().contains("plan.journal.jsonl"));
    }
    ApplyOptions options;
    options.plan = "plan.json";
    options.certificate = "proof.json";
    EXPECT_NE(apply(options).output.find("Certificate proof.json is not written: nothing was "
                                         "run\nController 1  already\n"),
              std::string::npos);
    EXPECT_FALSE(files().contains("proof.json"));
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, LosesNothingThatNobodyHasAgreedTo) {
    configure();
    plan(others);
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_EQ(
        seen.output,
        std::string(asPlannedFor) +
            R"(State      8 drives, 2 logical drives, 1 spare                    as planned for
Nothing was changed.
)");
    EXPECT_EQ(seen.error, R"(This destroys 1 logical drive (135.5 GB):
  - LD 1  RAID5  135.5 GB  32:2-32:4  controller 1
error: 1 logical drive (135.5 GB) would be lost, and nobody has agreed to it
       [ZA103]
  help: zolexctl apply plan.json --destroy )" +
                              consent + "\n");
    EXPECT_TRUE(system->started.empty());
    EXPECT_TRUE(system->locks.empty());
    EXPECT_FALSE(files().contains("plan.journal.jsonl"));
}

TEST_F(ApplyTest, AgreesByTheCodeOfExactlyThisList) {
    configure();
    plan(others);
    std::string typed = " " + consent + " ";
    typed.erase(typed.find('-'), 1);
    std::transform(typed.begin(), typed.end(), typed.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const ApplySeen seen = applyPlan(typed);
    EXPECT_EQ(seen.exitCode, 0) << seen.error;
    EXPECT_NE(seen.output.find("\nConsent    " + consent +
                               ": LD 1 of controller 1                        agreed\n"),
              std::string::npos)
        << seen.output;
    EXPECT_NE(files()["plan.journal.jsonl"].find("\"how\":\"option\""), std::string::npos);
}

TEST_F(ApplyTest, RefusesTheCodeOfAnotherList) {
    configure();
    plan(others);
    const ApplySeen seen = applyPlan("7Q4K-2M9D");
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_EQ(seen.error, R"(This destroys 1 logical drive (135.5 GB):
  - LD 1  RAID5  135.5 GB  32:2-32:4  controller 1
error: the code 7Q4K-2M9D is not for this: it is for another machine, or for
       another or an older list of what is lost [ZA103]
  help: zolexctl apply plan.json --destroy )" +
                              consent + "\n");
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, NeverAsksWithDestroyNever) {
    configure();
    plan(others);
    canAsk = true;
    answer = "KQ10Z7V\n";
    const ApplySeen seen = applyPlan("never");
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_NE(seen.error.find("error: --destroy never: 1 logical drive (135.5 GB) would be lost "
                              "[ZA103]\n"),
              std::string::npos)
        << seen.error;
    EXPECT_EQ(server->consoleFake.charactersRead, 0U);
}

TEST_F(ApplyTest, AgreesByTheTypedSerialNumber) {
    configure();
    plan(others);
    canAsk = true;
    answer = "8837\nkq10z7v\n";
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, R"(This destroys 1 logical drive (135.5 GB):
  - LD 1  RAID5  135.5 GB  32:2-32:4  controller 1
Type the serial number of this machine to agree: That is not it. 2 tries are left.
Type the serial number of this machine to agree: )");
    EXPECT_NE(files()["plan.journal.jsonl"].find("\"how\":\"typed-serial\""), std::string::npos);
}

TEST_F(ApplyTest, HasThreeTriesAndNoDefault) {
    configure();
    plan(others);
    canAsk = true;
    answer = "yes\n\ny\nKQ10Z7V\n";
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_NE(seen.error.find("error: the serial number of this machine was not typed [ZA103]\n"),
              std::string::npos)
        << seen.error;
    answer = "KQ10Z7V"; // and no line end
    const ApplySeen atEnd = applyPlan();
    EXPECT_EQ(atEnd.exitCode, 3);
    EXPECT_NE(atEnd.error.find("error: nothing was typed [ZA103]\n"), std::string::npos)
        << atEnd.error;
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, TellsWhatAUtilityRefuses) {
    plan();
    system->work = [this](const std::string& line) {
        return line.find("R5") == std::string::npos
                   ? server->play(line)
                   : ChildResult{ChildOutcome::ended, 38,
                                 "FW error description:\n  The drive is not free.\n"};
    };
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 4);
    EXPECT_NE(seen.output.find("[2/3] create B: RAID5 on 32:2 32:3 32:4                 FAILED  "
                               "exit 38  0.7 s\n"
                               "Controller 1  failed: step 2 of 3"),
              std::string::npos)
        << seen.output;
    EXPECT_NE(seen.error.find("  | FW error description:\n  |   The drive is not free.\n"),
              std::string::npos)
        << seen.error;
    EXPECT_NE(seen.error.find("  help: zolexctl apply --resume plan.journal.jsonl"),
              std::string::npos)
        << seen.error;

    const ApplySeen again = applyPlan();
    EXPECT_EQ(again.exitCode, 3);
    EXPECT_NE(again.error.find("  help: zolexctl apply --resume plan.journal.jsonl goes on with "
                               "it\n  help: zolexctl plan site.ini plans from what is there\n"),
              std::string::npos)
        << again.error;

    system->work = nullptr;
    const ApplySeen resumed = resume();
    EXPECT_EQ(resumed.exitCode, 0) << resumed.error;
    EXPECT_NE(resumed.output.find("[2/3] create B: RAID5 on 32:2 32:3 32:4                     ok  "
                                  "exit 0   0.7 s\n"),
              std::string::npos)
        << resumed.output;
    EXPECT_EQ(resume().exitCode, 3);
}

TEST_F(ApplyTest, PrintsTheJournalAsJson) {
    plan();
    format = Format::json;
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(seen.output, files()["plan.journal.jsonl"]);
    const ApplySeen again = applyPlan();
    EXPECT_EQ(again.exitCode, 3);
    EXPECT_NE(again.output.find("\"event\":\"end\",\"exit_code\":3"), std::string::npos)
        << again.output;
    EXPECT_EQ(std::count(again.output.begin(), again.output.end(), '\n'), 1);
}

TEST_F(ApplyTest, PlansAndAppliesInOneRun) {
    ApplyOptions options;
    options.policies.file = "site.ini";
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output.substr(0, seen.output.find("Machine")), R"(Plan (3 steps)
  1 create A: RAID1 on 32:0 32:1
  2 create B: RAID5 on 32:2 32:3 32:4
  3 make 32:7 a spare

)");
    EXPECT_TRUE(files().contains("site.journal.jsonl"));
    // As often as there is something to do.
    files()["site.ini"] = others;
    options.destroy = destroyWishOf("any").value();
    EXPECT_EQ(apply(options).exitCode, 0);
    EXPECT_TRUE(files().contains("site.journal-2.jsonl"));
}

TEST_F(ApplyTest, RunsNothingOfAPlanWithFaults) {
    files()["site.ini"] = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                          "Array.A = 1,1\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n";
    ApplyOptions options;
    options.policies.file = "site.ini";
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_NE(seen.output.find("[ZX301]"), std::string::npos) << seen.output;
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, RefusesWhatCannotBeRead) {
    files()["plan.json"] = "{\"format\": \"zolex-plan\", \"format_version\": \"9.0\"}";
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_NE(seen.error.find("[ZP192]"), std::string::npos) << seen.error;
    plan();
    files()["plan.journal.jsonl"] = "what is this?\n";
    const ApplySeen other = applyPlan();
    EXPECT_EQ(other.exitCode, 2);
    EXPECT_NE(other.error.find("  help: name another file with --journal\n"), std::string::npos)
        << other.error;
    machine.controllers = {9};
    files().erase("plan.journal.jsonl");
    EXPECT_EQ(applyPlan().exitCode, 2);
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, TakesAJournalInWhichNothingWasBegun) {
    plan();
    files()["plan.journal.jsonl"] = "{\"seq\":1,\"at\":\"2026-11";
    EXPECT_EQ(resume().exitCode, 3);
    EXPECT_EQ(applyPlan().exitCode, 0);
}

TEST_F(ApplyTest, ResumesByNoOtherPlan) {
    plan();
    system->notStarted = "R5";
    ASSERT_EQ(applyPlan().exitCode, 4);
    files()["plan.json"] += "\n";
    const ApplySeen seen = resume();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_NE(seen.error.find("error: plan.json is not the plan of this run: its bytes are others "
                              "[ZA116]\n"),
              std::string::npos)
        << seen.error;
    // The run before has changed something.
    EXPECT_EQ(seen.output, "Nothing more was changed.\n");
}

TEST_F(ApplyTest, NamesTheOptionForAFileOfAnotherKind) {
    plan();
    ASSERT_EQ(applyPlan().exitCode, 0);
    ApplyOptions options;
    options.plan = "plan.journal.jsonl";
    EXPECT_EQ(apply(options).error,
              "error: plan.journal.jsonl: this is no plan but a journal [ZP191]\n"
              "  help: zolexctl apply --resume plan.journal.jsonl goes on with its run\n");
    options.plan = "site.ini";
    EXPECT_EQ(apply(options).error,
              "error: site.ini: this is no plan but a policies file [ZP191]\n"
              "  help: zolexctl apply --policies site.ini plans and carries it out\n");
    options.plan.clear();
    options.resume = "plan.json";
    EXPECT_EQ(apply(options).error, "error: plan.json: this is no journal but a plan [ZA181]\n"
                                    "  help: zolexctl apply plan.json carries a plan out\n");
}

TEST_F(ApplyTest, PutsNamesWithBlanksIntoQuotes) {
    plan();
    system->notStarted = "R5";
    ApplyOptions options;
    options.plan = "plan.json";
    options.journal = "my run.jsonl";
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 4);
    EXPECT_NE(seen.error.find("  help: zolexctl apply --resume \"my run.jsonl\" goes on when "),
              std::string::npos)
        << seen.error;
    EXPECT_NE(apply(options).error.find(
                  "  help: zolexctl apply --resume \"my run.jsonl\" goes on with it\n"),
              std::string::npos);
}

TEST_F(ApplyTest, DoesNotCallARunInterruptedThatMayBeUnderWay) {
    plan();
    ASSERT_EQ(applyPlan().exitCode, 0);
    std::string& journal = files()["plan.journal.jsonl"];
    journal.erase(journal.find("{\"seq\":9,"));
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_NE(seen.error.find(" and\n       has not ended [ZA106]\n"), std::string::npos)
        << seen.error;
}

/// What is typed to agree keeps what the run was to write.
TEST_F(ApplyTest, KeepsTheOptionsInTheHelp) {
    configure();
    ApplyOptions options;
    options.careful = true;
    options.journal = "night.jsonl";
    options.log = "run 1.log";
    const ApplySeen seen = reset(options);
    EXPECT_EQ(seen.exitCode, 3);
    EXPECT_NE(seen.error.find("  help: zolexctl reset --careful --journal night.jsonl --log "
                              "\"run 1.log\" --destroy "),
              std::string::npos)
        << seen.error;
}

/// A folder as journal is told before anybody is asked; a proof replaces no record.
TEST_F(ApplyTest, RefusesOutputsThatCannotBe) {
    configure();
    ApplyOptions options;
    options.destroy = destroyWishOf("any").value();
    options.journal = ".";
    const ApplySeen folder = reset(options);
    EXPECT_EQ(folder.exitCode, 2);
    EXPECT_EQ(folder.error, "error: .: it is a folder\n"
                            "  help: name another file with --journal; nothing was changed\n");
    EXPECT_EQ(folder.output, "Nothing was changed.\n");
    plan();
    options.journal.clear();
    options.certificate = "plan.json";
    const std::string kept = files()["plan.json"];
    const ApplySeen record = reset(options);
    EXPECT_EQ(record.exitCode, 2);
    EXPECT_EQ(record.error, "error: plan.json: it is a plan\n"
                            "  help: name another file with --certificate; nothing was changed\n");
    EXPECT_EQ(files()["plan.json"], kept);
    EXPECT_TRUE(system->started.empty());
}

/// What stands otherwise is folded, a command line is not.
TEST_F(ApplyTest, FoldsWhatDiffers) {
    plan();
    system->work = [this](const std::string& line) {
        return line.find("R5") == std::string::npos
                   ? server->play(line)
                   : ChildResult{ChildOutcome::ended, 0, "Exit Code: 0x00\n"};
    };
    ApplyOptions options;
    options.plan = "plan.json";
    options.careful = true;
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 4); // a step remains
    EXPECT_NE(seen.error.find("\n  Logical.2, missing: planned is RAID5 fill, strip 64 KB, "
                              "write-back, adaptive\n    read-ahead: "),
              std::string::npos)
        << seen.error;
    EXPECT_TRUE(seen.output.ends_with("\nStopped on the way. plan.journal.jsonl tells what was "
                                      "done.\n"))
        << seen.output;
}

TEST_F(ApplyTest, KeepsALog) {
    plan();
    ApplyOptions options;
    options.plan = "plan.json";
    options.log = "apply.log";
    files()["apply.log"] = "before\n";
    ASSERT_EQ(apply(options).exitCode, 0);
    const std::string log = files()["apply.log"];
    EXPECT_TRUE(log.starts_with("before\n")) << log;
    for (const char* const line :
         {": zolexctl apply plan.json\n", " machine 8837 KQ10Z7V\n",
          " step 1 of 3, controller 1, create A: RAID1 on 32:0 32:1: UTIL.BAT MEGACLI  -CfgLdAdd "
          "R1   [ 32:0,32:1 ]   WB   ADRA   -strpsz 64  -a0\n",
          " step 1 of 3: pid 4711\n", " step 1 of 3: exit 0, accepted, 0.700 s, ",
          "\n  | Adapter 0: Created VD 0\n", " controller 1: configured\n",
          " end: exit code 0\n"}) {
        EXPECT_NE(log.find(line), std::string::npos) << line << "\nin\n" << log;
    }
}

TEST_F(ApplyTest, NeedsALogThatCanBeWritten) {
    plan();
    ApplyOptions options;
    options.plan = "plan.json";
    options.log = "apply.log";
    server->fileFake.refused = {"a apply.log"};
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_NE(seen.error.find("  help: name another file with --log; nothing was changed\n"),
              std::string::npos)
        << seen.error;
    for (const char* name : {"plan.json", "./plan.json", "plan.json.lock", "./plan.journal.jsonl",
                             "plan.journal.jsonl.out"}) {
        options.log = name;
        EXPECT_EQ(apply(options).error, "error: " + options.log +
                                            " would be written for two things\n"
                                            "  help: give each its own name; nothing was "
                                            "changed\n");
    }
    EXPECT_TRUE(system->started.empty());
}

TEST_F(ApplyTest, WarnsOfAJournalThatARestartLoses) {
    plan();
    isLost = true;
    EXPECT_EQ(applyPlan().error,
              "warning: plan.journal.jsonl lies on a disk that a restart empties: --journal\n"
              "    names a file elsewhere\n");
    files().erase("plan.journal.jsonl");
    ApplyOptions options;
    options.plan = "plan.json";
    options.journal = "other.jsonl";
    EXPECT_EQ(apply(options).error.find("warning"), std::string::npos);
}

TEST_F(ApplyTest, WritesALineAnewOnATerminal) {
    plan();
    rewritesLines = true;
    system->childTakes = std::chrono::milliseconds(2500);
    const ApplySeen seen = applyPlan();
    EXPECT_NE(seen.output.find("\r[1/3] create A: RAID1 on 32:0 32:1"), std::string::npos);
    EXPECT_NE(seen.output.find("  at work 2 s"), std::string::npos) << seen.output;
    EXPECT_NE(seen.output.find("\r[1/3] create A: RAID1 on 32:0 32:1                          ok  "
                               "exit 0   2.5 s\n"),
              std::string::npos)
        << seen.output;
}

TEST_F(ApplyTest, TellsInAPipeThatAUtilityIsStillAtWork) {
    plan();
    system->childTakes = std::chrono::seconds(65);
    ApplyOptions options;
    options.plan = "plan.json";
    options.stepLimit = std::chrono::seconds(100);
    const ApplySeen seen = apply(options);
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_NE(seen.output.find("[1/3] still at work, pid 4711, 30 s of at most 100 s\n"
                               "[1/3] still at work, pid 4711, 60 s of at most 100 s\n"
                               "[1/3] create A"),
              std::string::npos)
        << seen.output;
}

TEST_F(ApplyTest, IsQuiet) {
    plan();
    quiet = true;
    const ApplySeen seen = applyPlan();
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(seen.error, "");
}

TEST_F(ApplyTest, ResetsControllers) {
    configure();
    const ApplySeen refused = reset({});
    EXPECT_EQ(refused.exitCode, 3);
    EXPECT_TRUE(system->started.empty());
    ApplyOptions options;
    options.destroy = destroyWishOf("any").value();
    const ApplySeen seen = reset(options);
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(system->started,
              (std::vector<std::string>{"UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
                                        "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT"}));
    EXPECT_NE(seen.output.find("Verified   captured again: no logical drives, as planned\n"),
              std::string::npos)
        << seen.output;
    const ApplySeen again = reset({});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_TRUE(again.output.starts_with("Controller 1  nothing stands on it\n")) << again.output;
    EXPECT_TRUE(again.output.ends_with("Controller 1  already\nNothing to reset.\n"))
        << again.output;
}

} // namespace
} // namespace zolex::companion
