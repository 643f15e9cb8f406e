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
    EXPECT_EQ(shown(historyOf(exampleJournalEvents())), R"(@)");
}

TEST(JournalText, TellsCommandsWithoutThePlan) {
    EXPECT_EQ(journalText(historyOf(exampleJournalEvents()), {}, {}), R"(@)");
}

/// Cut in its third step: nothing is known of what the utility did.
TEST(JournalText, TellsOfARunThatWasInterrupted) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    events.resize(14);
    EXPECT_EQ(shown(historyOf(events, 5)), R"(@)");
}

TEST(JournalText, TellsOfARunThatEndedAsPlanned) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    std::get<JournalBegin>(events[0]).controllers = {1, 3};
    std::get<JournalBegin>(events[0]).planFile.clear();
    std::get<JournalAgreed>(events[2]).how = "own";
    events[13] = exampleStepEnded(3, 0, "", 123456);
    events[14] =
        JournalVerified{JournalVerified::Result::equivalent, {"the spare is 32:3 instead of 32:7"}};
    events[15] = JournalEnd{0, {{1, ControllerResult::Result::configured, 0, 0, ""}}, ""};
    EXPECT_EQ(shown(historyOf(events)), R"(@)");
}

TEST(JournalText, VerboseShowsCommandsAndOutputs) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    events.resize(6);
    std::get<JournalStepEnded>(events[5]).outputBytes = 70000;
    events.push_back(JournalEnd{5, {}, "what stands could not be looked at"});
    EXPECT_EQ(shown(historyOf(events), true), R"(@)");
}

TEST(JournalText, SteersNoTerminal) {
    std::vector<JournalEvent> events = exampleJournalEvents();
    std::get<JournalStepEnded>(events[13]).output = "\x1B[2Jred\x1B[0m\n" + std::string(90, 'w');
    std::get<JournalEnd>(events[15]).reason = "a\nb\x1B[1m";
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
