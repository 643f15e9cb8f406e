#include "companion/picture/JournalText.h"

#include "companion/support/ExampleJournal.h"
#include "companion/support/ExamplePlan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion::test {
namespace {

JournalHistory historyOf(const std::vector<JournalEvent>& events, std::size_t cutBytes = 0) {
    std::string text = journalText(events);
    text.resize(text.size() - cutBytes);
    JournalReading reading = readJournal(text, "plan.journal.jsonl");
    return std::move(*reading.journal);
}

/// A plan that has words for the steps of the example.
MachinePlan plan() {
    MachinePlan plan = examplePlan();
    std::vector<PlanStep>& steps = plan.controllers[0].steps;
    steps.resize(3);
    const std::vector<std::string> words = {"clear configuration, controller 1",
                                            "create A: RAID1 on 32:0 32:1",
                                            "create B: RAID5 on 32:2-32:6"};
    for (std::size_t i = 0; i < 3; ++i) {
        steps[i].step = static_cast<std::int32_t>(i) + 1;
        steps[i].summary = words[i];
    }
    return plan;
}

std::string shown(const JournalHistory& journal, bool verbose = false, TextStyle style = {}) {
    const MachinePlan known = plan();
    JournalTextTerms terms;
    terms.plan = &known;
    terms.verbose = verbose;
    return journalText(journal, style, terms);
}

TEST(JournalText, TellsEachStepAndHowToGoOn) {
    EXPECT_EQ(shown(historyOf(exampleJournalEvents())), R"(Journal  plan.journal.jsonl
Plan     p-5f1c09ab77e2 of plan.json, 3 steps
Machine  8837, serial KQ10Z7V, controller 1 serial 1122334455
Consent  7Q4K-2M9D was to be agreed to

2026-11-21  +00:00
21:06:01  begun     by zolexctl 1.1.0, pid 4700
21:06:02  captured  before the first step
21:06:03  agreed    7Q4K-2M9D: the serial number was typed, by root
21:06:04  [1/3]     clear configuration, controller 1
21:06:06  [1/3]     ok, exit 0, 2.1 s
21:06:07  [2/3]     create A: RAID1 on 32:0 32:1
21:06:09  captured  to go on, kept in resume.zrec
21:06:10  [2/3]     found done: its array stands
21:06:11  [3/3]     create B: RAID5 on 32:2-32:6
21:06:13  [3/3]     FAILED, exit 38, 0.2 s
                    UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ]
                    WB ADRA -strpsz 64 -a0
                    | FW error description:
                    |   The physical disk at 32:5 is not free: it is online.
                    | Exit Code: 0x26
21:06:14  verified  NOT as planned
                    Logical.2 is missing
                    hot spare 32:7 is missing
21:06:15  ended     exit code 4: the utility refused step 3

What was done
  + step 1  done    clear configuration, controller 1
  + step 2  done    create A: RAID1 on 32:0 32:1
  x step 3  failed  create B: RAID5 on 32:2-32:6
  Controller 1  failed at step 3 of 3: the utility refused step 3
  Controller 2  skipped: no policy is for it

The run was stopped on its way.
  help: zolexctl apply --resume plan.journal.jsonl goes on when the cause is
        mended
  help: zolexctl plan site.ini plans from what is there
)");
}

TEST(JournalText, TellsCommandsWithoutThePlan) {
    EXPECT_EQ(journalText(historyOf(exampleJournalEvents()), {}, {}), R"(Journal  plan.journal.jsonl
Plan     p-5f1c09ab77e2 of plan.json, 3 steps
Machine  8837, serial KQ10Z7V, controller 1 serial 1122334455
Consent  7Q4K-2M9D was to be agreed to

2026-11-21  +00:00
21:06:01  begun     by zolexctl 1.1.0, pid 4700
21:06:02  captured  before the first step
21:06:03  agreed    7Q4K-2M9D: the serial number was typed, by root
21:06:04  [1/3]     started
                    UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT
21:06:06  [1/3]     ok, exit 0, 2.1 s
21:06:07  [2/3]     started
                    UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA -strpsz
                    64 -a0
21:06:09  captured  to go on, kept in resume.zrec
21:06:10  [2/3]     found done: its array stands
21:06:11  [3/3]     started
                    UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ]
                    WB ADRA -strpsz 64 -a0
21:06:13  [3/3]     FAILED, exit 38, 0.2 s
                    | FW error description:
                    |   The physical disk at 32:5 is not free: it is online.
                    | Exit Code: 0x26
21:06:14  verified  NOT as planned
                    Logical.2 is missing
                    hot spare 32:7 is missing
21:06:15  ended     exit code 4: the utility refused step 3

What was done
  + step 1  done    UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT
  + step 2  done    UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA -strpsz
                    64 -a0
  x step 3  failed  UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ]
                    WB ADRA -strpsz 64 -a0
  Controller 1  failed at step 3 of 3: the utility refused step 3
  Controller 2  skipped: no policy is for it

The run was stopped on its way.
  help: zolexctl apply --resume plan.journal.jsonl goes on when the cause is
        mended
  help: zolexctl plan POLICIES plans from what is there
)");
}

/// A utility whose end was not waited for is at work, or was: its step has not failed.
TEST(JournalText, TellsOfAUtilityThatHadNotEnded) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    for (JournalEvent& event : events) {
        auto* const ended = std::get_if<JournalStepEnded>(&event);
        if (ended != nullptr && ended->step == 3) {
            ended->outcome = ChildOutcome::stillRunning;
            ended->durationMs = 62000;
        }
    }
    const std::string text = shown(historyOf(events));
    EXPECT_NE(text.find("21:06:13  [3/3]     had not ended after 62.0 s\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find("  ? step 3  begun, no end noted  create B"), std::string::npos) << text;
    EXPECT_NE(text.find("The run was stopped on its way. The utility of step 3 (pid "),
              std::string::npos)
        << text;
}

/// With several controllers each step says which.
TEST(JournalText, NamesTheControllersOfSteps) {
    MachinePlan known = plan();
    known.controllers[0].steps[2].controller = 2;
    JournalTextTerms terms;
    terms.plan = &known;
    const std::string text = journalText(historyOf(exampleJournalEvents()), {}, terms);
    EXPECT_NE(text.find("[3/3]     controller 2: create B: RAID5 on 32:2-32:6\n"),
              std::string::npos)
        << text;
}

/// Cut in its third step: nothing is known of what the utility did.
TEST(JournalText, TellsOfARunThatWasInterrupted) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    events.resize(13);
    EXPECT_EQ(shown(historyOf(events, 5)), R"(Journal  plan.journal.jsonl
Plan     p-5f1c09ab77e2 of plan.json, 3 steps
Machine  8837, serial KQ10Z7V, controller 1 serial 1122334455
Consent  7Q4K-2M9D was to be agreed to

2026-11-21  +00:00
21:06:01  begun     by zolexctl 1.1.0, pid 4700
21:06:02  captured  before the first step
21:06:03  agreed    7Q4K-2M9D: the serial number was typed, by root
21:06:04  [1/3]     clear configuration, controller 1
21:06:06  [1/3]     ok, exit 0, 2.1 s
21:06:07  [2/3]     create A: RAID1 on 32:0 32:1
21:06:09  captured  to go on, kept in resume.zrec
21:06:10  [2/3]     found done: its array stands
21:06:11  [3/3]     create B: RAID5 on 32:2-32:6
! the last line was cut, and counts as not written

What was done
  + step 1  done                 clear configuration, controller 1
  + step 2  done                 create A: RAID1 on 32:0 32:1
  ? step 3  begun, no end noted  create B: RAID5 on 32:2-32:6

The run was interrupted: its journal has no end. The utility of step 3 (pid
4720) may still run.
  help: zolexctl apply --resume plan.journal.jsonl goes on, or says truly why
        not
)");
}

TEST(JournalText, TellsOfARunThatEndedAsPlanned) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    std::get<JournalBegin>(events[0]).controllers = {1, 3};
    std::get<JournalBegin>(events[0]).planFile.clear();
    std::get<JournalAgreed>(events[2]).how = "own";
    events[12] = exampleStepEnded(3, 0, "", 123456);
    events[13] =
        JournalVerified{JournalVerified::Result::equivalent, {"the spare is 32:3 instead of 32:7"}};
    events[14] = JournalEnd{0, {{1, ControllerResult::Result::configured, 0, 0, ""}}, ""};
    EXPECT_EQ(shown(historyOf(events)), R"(Journal  plan.journal.jsonl
Plan     p-5f1c09ab77e2, made in the same run, 3 steps
Machine  8837, serial KQ10Z7V, controller 1 serial 1122334455
Only     controller 1, 3
Consent  7Q4K-2M9D was to be agreed to

2026-11-21  +00:00
21:06:01  begun     by zolexctl 1.1.0, pid 4700
21:06:02  captured  before the first step
21:06:03  agreed    7Q4K-2M9D: all of it was made by earlier runs (--destroy
                    own), by root
21:06:04  [1/3]     clear configuration, controller 1
21:06:06  [1/3]     ok, exit 0, 2.1 s
21:06:07  [2/3]     create A: RAID1 on 32:0 32:1
21:06:09  captured  to go on, kept in resume.zrec
21:06:10  [2/3]     found done: its array stands
21:06:11  [3/3]     create B: RAID5 on 32:2-32:6
21:06:13  [3/3]     ok, exit 0, 123 s
21:06:14  verified  as planned, on equal drives
                    the spare is 32:3 instead of 32:7
21:06:15  ended     exit code 0

What was done
  + step 1  done  clear configuration, controller 1
  + step 2  done  create A: RAID1 on 32:0 32:1
  + step 3  done  create B: RAID5 on 32:2-32:6
  Controller 1  configured

The run ended as planned.
)");
}

/// What a utility says in JSON is told by its reason; --verbose shows the whole answer.
TEST(JournalText, AReasonStandsForAnAnswerInJson) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    events.resize(6);
    auto& first = std::get<JournalStepEnded>(events[5]);
    first.exitCode = 255;
    first.accepted = false;
    first.output = "{\n\"Controllers\":[]\n}\n";
    first.outputBytes = first.output.size();
    JournalStepEnded second = first;
    first.reason = "Un-supported Command (error 255)";
    first.instead = "STORCLI /c0/v239 del J";
    second.reason = "VD has OS/FS, use force to delete it. (error 255)";
    events.push_back(exampleStepStarted(1, first.instead, 'a', 'b'));
    std::get<JournalStepStarted>(events.back()).attempt = 2;
    events.emplace_back(second);
    events.push_back(JournalEnd{4, {}, "step 1 of 3 was refused"});
    const std::string text = shown(historyOf(events), false);
    EXPECT_EQ(text.substr(text.find("21:06:04")),
              R"(21:06:04  [1/3]     clear configuration, controller 1
21:06:06  [1/3]     not known, exit 255, 2.1 s
                    UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT
                    | Un-supported Command (error 255)
                    run again as STORCLI /c0/v239 del J
21:06:07  [1/3]     clear configuration, controller 1 (attempt 2)
21:06:08  [1/3]     FAILED, exit 255, 2.1 s
                    STORCLI /c0/v239 del J
                    | VD has OS/FS, use force to delete it. (error 255)
21:06:09  ended     exit code 4: step 1 of 3 was refused

What was done
  x step 1  failed  clear configuration, controller 1
  . 2 steps were not begun

The run was stopped on its way.
  help: zolexctl apply --resume plan.journal.jsonl goes on when the cause is
        mended
  help: zolexctl plan site.ini plans from what is there
)");
    EXPECT_NE(shown(historyOf(events), true).find("| \"Controllers\":[]"), std::string::npos);
}

TEST(JournalText, VerboseShowsCommandsAndOutputs) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    events.resize(6);
    std::get<JournalStepEnded>(events[5]).outputBytes = 70000;
    events.push_back(JournalEnd{5, {}, "what stands could not be looked at"});
    EXPECT_EQ(shown(historyOf(events), true), R"(Journal  plan.journal.jsonl
Plan     p-5f1c09ab77e2 of plan.json, 3 steps
Machine  8837, serial KQ10Z7V, controller 1 serial 1122334455
Consent  7Q4K-2M9D was to be agreed to

2026-11-21  +00:00
21:06:01  begun     by zolexctl 1.1.0, pid 4700
21:06:02  captured  before the first step
21:06:03  agreed    7Q4K-2M9D: the serial number was typed, by root
21:06:04  [1/3]     clear configuration, controller 1
                    UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT
21:06:06  [1/3]     ok, exit 0, 2.1 s
                    | Exit Code: 0x00
                    | ... (70000 bytes, of which 17 were kept)
21:06:07  ended     exit code 5: what stands could not be looked at

What was done
  + step 1  done  clear configuration, controller 1
  . 2 steps were not begun

What stands is not what was planned, or could not be looked at.
  help: zolexctl show shows what is there
  help: zolexctl plan site.ini plans from it
)");
}

TEST(JournalText, SteersNoTerminal) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    std::get<JournalStepEnded>(events[12]).output = "\x1B[2Jred\x1B[0m\n" + std::string(90, 'w');
    std::get<JournalEnd>(events[14]).reason = "a\nb\x1B[1m";
    std::get<JournalAgreed>(events[2]).by = "ro\x07ot";
    const std::string text = shown(historyOf(events));
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_NE(text.find("| ?[2Jred?[0m\n"), std::string::npos) << text;
}

/// Lines of the program's own words are no wider than the terminal, with and without colours.
TEST(JournalText, FitsTheTerminalAndHasColours) {
    for (const std::int32_t width : {60, 80, 120}) {
        const std::string plain = shown(historyOf(exampleJournalEvents()), false, {false, width});
        std::string coloured = shown(historyOf(exampleJournalEvents()), false, {true, width});
        EXPECT_NE(coloured, plain);
        std::size_t escape = coloured.find('\x1B');
        while (escape != std::string::npos) {
            coloured.erase(escape, coloured.find('m', escape) + 1 - escape);
            escape = coloured.find('\x1B');
        }
        EXPECT_EQ(coloured, plain);
        std::size_t start = 0;
        while (start < plain.size()) {
            const std::size_t end = plain.find('\n', start);
            const std::string line = plain.substr(start, end - start);
            EXPECT_TRUE(line.size() <= static_cast<std::size_t>(width) ||
                        line.find("| ") != std::string::npos)
                << line;
            EXPECT_FALSE(line.ends_with(' ')) << line;
            start = end + 1;
        }
    }
}

} // namespace
} // namespace zolex::companion::test
