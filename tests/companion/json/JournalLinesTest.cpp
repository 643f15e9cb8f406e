#include "companion/json/JournalLines.h"

#include "companion/json/JournalFile.h"
#include "companion/machine/Sha256.h"
#include "companion/support/ExampleJournal.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/Texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {
namespace {

std::string textOf(const JournalReading& reading) {
    std::string text;
    for (const Finding& finding : reading.findings) {
        text += finding.file;
        if (finding.start.line > 0) {
            text += ":" + std::to_string(finding.start.line) + ":" +
                    std::to_string(finding.start.column) + "@" + std::to_string(finding.start.byte);
        }
        text += ": " + finding.summary + " [" + finding.code + "]\n";
    }
    return text;
}

std::string journalFault(const std::string& text) {
    const JournalReading reading = readJournal(text, "a.jsonl");
    EXPECT_FALSE(reading.journal);
    EXPECT_EQ(reading.findings.size(), 1U);
    return textOf(reading);
}

/// The lines of the text, each with its line end.
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start) + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return text;
}

/// The same lines with a chain that holds: what one writes who wants to be believed.
std::string rechained(const std::string& text) {
    std::string result;
    std::string prev = firstJournalHash();
    for (std::string line : linesOf(text)) {
        constexpr std::string_view name = R"("prev":")";
        line.replace(line.find(name) + name.size(), prev.size(), prev);
        result += line;
        prev = sha256(std::string_view(line).substr(0, line.size() - 1));
    }
    return result;
}

TEST(JournalLines, WritesOneObjectALineWithTheHashOfTheLineBefore) {
    const std::string text = exampleJournalText();
    keepDocument("journal-example.jsonl", text);
    const std::vector<std::string> lines = linesOf(text);
    ASSERT_EQ(lines.size(), exampleJournalEvents().size());
    EXPECT_EQ(lines[0],
              R"({"seq":1,"at":"2026-11-21T21:06:01+00:00","prev":")" + std::string(64, '0') +
                  R"(","event":"begin","format":"zolex-journal","format_version":"1.0",)"
                  R"("tool":{"name":"zolexctl","version":"1.1.0"},"pid":4700,)"
                  R"("process_started_at":"81230","plan_id":"p-5f1c09ab77e2","plan_sha256":")" +
                  std::string(64, '5') +
                  R"(","plan_file":"plan.json","fingerprint":{"algorithm":"zolex-fp-1",)"
                  R"("strength":"serials","identity":{"sha256":")" +
                  std::string(64, '1') +
                  R"(","machine_type":"8837","serial_number":"KQ10Z7V","controllers":[{"number":1,)"
                  R"("pci":"0000:02:0e.0","ids":"1000:0411:1000:1002","model":"LSI-MegaRAID-8480",)"
                  R"("serial_number":"1122334455"}]},"state":{"sha256":")" +
                  std::string(64, '2') +
                  R"("}},"consent":"7Q4K-2M9D","steps":3,"controllers":[],"allow_skipped":false,)"
                  R"("plan_text":null})"
                  "\n");
    EXPECT_EQ(lines[1],
              R"({"seq":2,"at":"2026-11-21T21:06:02+00:00","prev":")" +
                  sha256(std::string_view(lines[0]).substr(0, lines[0].size() - 1)) +
                  R"(","event":"captured","purpose":"guard","fingerprint":{"state":{"sha256":")" +
                  std::string(64, '2') + R"("}},"controllers":[{"number":1,"layout_sha256":")" +
                  std::string(64, 'a') +
                  R"("}],"recording":null})"
                  "\n");
    const auto behindPrev = [&](std::size_t index) {
        return lines[index].substr(lines[index].find(R"("event")"));
    };
    EXPECT_EQ(behindPrev(2), R"("event":"agreed","consent":"7Q4K-2M9D","how":"typed-serial",)"
                             R"("by":"root"})"
                             "\n");
    EXPECT_EQ(behindPrev(3),
              R"("event":"step-started","step":1,"controller":1,"attempt":1,)"
              R"("command":"UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT","expected_before":)"
              R"({"layout_sha256":")" +
                  std::string(64, 'a') + R"("},"expected_after":{"layout_sha256":")" +
                  std::string(64, 'b') +
                  R"("}})"
                  "\n");
    EXPECT_EQ(behindPrev(4), R"("event":"child","step":1,"pid":4711,"process_started_at":"81240",)"
                             R"("output_file":"plan.journal.jsonl.out"})"
                             "\n");
    EXPECT_EQ(behindPrev(5), R"("event":"step-ended","step":1,"outcome":"ended","exit_code":0,)"
                             R"("accepted":true,"duration_ms":2100,"output_bytes":17,)"
                             R"("output":"Exit Code: 0x00\r\n"})"
                             "\n");
    EXPECT_EQ(behindPrev(9), R"("event":"step-found-done","step":2,"why":"its array stands"})"
                             "\n");
}

TEST(JournalLines, ReadsWhatItHasWritten) {
    const std::string text = exampleJournalText();
    const JournalReading reading = readJournal(text, "plan.journal.jsonl");
    EXPECT_EQ(textOf(reading), "");
    ASSERT_TRUE(reading.journal);
    const JournalHistory& journal = *reading.journal;
    EXPECT_EQ(journal.file, "plan.journal.jsonl");
    EXPECT_EQ(journal.bytes, text.size());
    EXPECT_FALSE(journal.isTorn);
    const std::vector<JournalEvent> events = exampleJournalEvents();
    ASSERT_EQ(journal.entries.size(), events.size());
    EXPECT_EQ(journal.lastSeq, events.size());
    EXPECT_EQ(journal.begin().planId, "p-5f1c09ab77e2");
    ASSERT_NE(journal.end(), nullptr);
    EXPECT_EQ(journal.end()->exitCode, 4);
    std::string again;
    std::string prev = firstJournalHash();
    for (const JournalEntry& entry : journal.entries) {
        const std::string line = journalLine(entry.seq, entry.at, prev, entry.event);
        prev = sha256(line);
        again += line + "\n";
    }
    EXPECT_EQ(again, text);
    EXPECT_EQ(journal.lastHash, prev);
}

/// A utility that does not know a word of its command, and refuses the other one, too.
TEST(JournalLines, HasTheReasonOfAUtilityThatAnswersInWords) {
    JournalStepEnded first;
    first.step = 1;
    first.exitCode = 255;
    first.reason = "Un-supported Command (error 255)";
    first.instead = "STORCLI /c0/v239 del J";
    JournalStepEnded second = first;
    second.reason = "VD has OS/FS, use force to delete it. (error 255)";
    second.instead.clear();
    const std::string text = journalText({exampleJournalBegin(), first, second});
    keepDocument("journal-reasons.jsonl", text);
    const std::vector<std::string> lines = linesOf(text);
    ASSERT_EQ(lines.size(), 3U);
    const std::string one = R"J("output":null,"reason":"Un-supported Command (error 255)",)J"
                            R"J("instead":"STORCLI /c0/v239 del J"})J"
                            "\n";
    EXPECT_TRUE(lines[1].ends_with(one)) << lines[1];
    const std::string two = R"J("output":null,"reason":"VD has OS/FS, )J"
                            R"J(use force to delete it. (error 255)"})J"
                            "\n";
    EXPECT_TRUE(lines[2].ends_with(two)) << lines[2];
    const JournalReading reading = readJournal(text, "a.jsonl");
    ASSERT_TRUE(reading.journal) << textOf(reading);
    const auto& read = std::get<JournalStepEnded>(reading.journal->entries[1].event);
    EXPECT_EQ(read.reason, first.reason);
    EXPECT_EQ(read.instead, first.instead);
    EXPECT_EQ(std::get<JournalStepEnded>(reading.journal->entries[2].event).instead, "");
}

TEST(JournalLines, KeepsBytesThatAreNoUtf8AndCutsWhatIsTooLong) {
    JournalBegin begin = exampleJournalBegin();
    begin.planFile = "pl\xE4n.json";
    begin.planText = std::string(200000, '"');
    JournalStepEnded ended;
    ended.step = 1;
    ended.output = std::string("a\0b\xFF", 4);
    ended.outputBytes = 4;
    ended.outputBytes = 0; // is never told to be less than is kept
    JournalStepEnded large = ended;
    large.output = std::string(mostJournalOutput + 10, '\xFE');
    large.outputBytes = large.output.size();
    large.outcome = ChildOutcome::stillRunning;
    JournalEnd end;
    end.exitCode = 4;
    end.reason = std::string(40000, '\xFF') + std::string("\0", 1);
    const std::string text = journalText({begin, ended, large, end});
    keepDocument("journal-bytes.jsonl", text);
    const JournalReading reading = readJournal(text, "a.jsonl");
    EXPECT_EQ(textOf(reading), "");
    ASSERT_TRUE(reading.journal);
    EXPECT_EQ(reading.journal->begin().planFile, begin.planFile);
    EXPECT_EQ(reading.journal->begin().planText, begin.planText);
    EXPECT_EQ(std::get<JournalStepEnded>(reading.journal->entries[1].event).output, ended.output);
    EXPECT_EQ(std::get<JournalStepEnded>(reading.journal->entries[1].event).outputBytes, 4U);
    const auto& cut = std::get<JournalStepEnded>(reading.journal->entries[2].event);
    EXPECT_EQ(cut.output, large.output.substr(0, mostJournalOutput));
    EXPECT_EQ(cut.outputBytes, large.outputBytes);
    EXPECT_EQ(cut.outcome, ChildOutcome::stillRunning);
    EXPECT_LE(reading.journal->end()->reason.size(), std::size_t{64} << 10U);
}

TEST(JournalLines, CutAtAnyByteItReadsTheWholeLines) {
    const std::string text = exampleJournalText();
    const std::vector<std::string> lines = linesOf(text);
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const JournalReading reading =
            readJournal(std::string_view(text).substr(0, size), "a.jsonl");
        std::size_t whole = 0;
        std::size_t bytes = 0;
        while (whole < lines.size() && bytes + lines[whole].size() <= size) {
            bytes += lines[whole++].size();
        }
        if (whole == 0) {
            ASSERT_EQ(textOf(reading), "a.jsonl: nothing was begun: the journal has not even one "
                                       "whole line [ZA187]\n")
                << size;
            continue;
        }
        ASSERT_EQ(textOf(reading), "") << size;
        ASSERT_EQ(reading.journal->entries.size(), whole) << size;
        ASSERT_EQ(reading.journal->bytes, bytes) << size;
        ASSERT_EQ(reading.journal->isTorn, bytes != size) << size;
        ASSERT_EQ(
            reading.journal->lastHash,
            sha256(std::string_view(lines[whole - 1]).substr(0, lines[whole - 1].size() - 1)));
    }
}

TEST(JournalLines, ALastLineWithZerosInThePlaceOfItsBytesIsTorn) {
    const std::string text = exampleJournalText();
    const std::vector<std::string> lines = linesOf(text);
    const std::size_t start = text.size() - lines.back().size();
    for (std::size_t zeros = 1; zeros < lines.back().size(); ++zeros) {
        std::string lost = text;
        lost.replace(start, zeros, zeros, '\0');
        const JournalReading reading = readJournal(lost, "a.jsonl");
        ASSERT_EQ(textOf(reading), "");
        ASSERT_TRUE(reading.journal->isTorn);
        ASSERT_EQ(reading.journal->bytes, start);
        ASSERT_EQ(reading.journal->entries.size(), lines.size() - 1);
    }
    // Elsewhere than in the last line no loss of power leaves them.
    std::string inside = text;
    inside.replace(start - 5, 3, 3, '\0');
    EXPECT_NE(journalFault(inside).find("[ZA183]"), std::string::npos) << journalFault(inside);
}

TEST(JournalLines, TellsTheLineThatWasChanged) {
    const std::string text = exampleJournalText();
    std::vector<std::string> lines = linesOf(text);
    const std::string third = std::to_string(lines[0].size() + lines[1].size());
    EXPECT_EQ(journalFault(replaced(text, "typed-serial", "typed-SERIAL")),
              "a.jsonl:3:1@" + third +
                  ": this line is not the one that was written: line 4 has another SHA-256 of it "
                  "[ZA186]\n");
    std::vector<std::string> without = lines;
    without.erase(without.begin() + 2);
    EXPECT_EQ(journalFault(joined(without)),
              "a.jsonl:3:1@" + third +
                  ": lines were taken out or added: \"seq\" is 4 instead of 3 [ZA186]\n");
    std::vector<std::string> twice = lines;
    twice.insert(twice.begin() + 2, lines[1]);
    EXPECT_EQ(journalFault(joined(twice)),
              "a.jsonl:3:1@" + third +
                  ": lines were taken out or added: \"seq\" is 2 instead of 3 [ZA186]\n");
    EXPECT_EQ(journalFault(replaced(text, std::string(64, '0'), std::string(63, '0') + "1")),
              "a.jsonl:1:1@0: this is not the first line: \"prev\" is not 64 zeros [ZA186]\n");
    EXPECT_EQ(journalFault(joined({lines.begin() + 1, lines.end()})),
              "a.jsonl:1:1@0: this is no journal: \"format\" is not \"zolex-journal\" [ZA181]\n");
    EXPECT_EQ(journalFault(text + "\n").find("a.jsonl:" + std::to_string(lines.size() + 1)), 0U);
}

TEST(JournalLines, EveryByteThatIsChangedBeforeTheLastLineIsNoticed) {
    const std::string text = exampleJournalText();
    const std::vector<std::string> lines = linesOf(text);
    const std::size_t last = text.size() - lines.back().size();
    for (std::size_t at = 0; at < last; ++at) {
        std::string changed = text;
        changed[at] = changed[at] == 'x' ? 'y' : 'x';
        const JournalReading reading = readJournal(changed, "a.jsonl");
        ASSERT_FALSE(reading.journal) << at;
        ASSERT_EQ(reading.findings.size(), 1U) << at;
        const std::int32_t line = reading.findings[0].start.line;
        const auto own = static_cast<std::int32_t>(
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n') + 1);
        // The hash that a line has of the one before may be what was changed.
        ASSERT_TRUE(line == own || line == own - 1) << at << ": " << textOf(reading);
    }
}

TEST(JournalLines, RefusesWhatIsNoJournal) {
    EXPECT_EQ(journalFault(""),
              "a.jsonl: nothing was begun: the journal has not even one whole line "
              "[ZA187]\n");
    EXPECT_EQ(journalFault("Policy.web"),
              "a.jsonl: this is no journal: it has no whole line [ZA181]\n");
    EXPECT_EQ(journalFault("[Policy.web]\nArray.A = 1\n"),
              "a.jsonl:1:1@0: this is no journal: the first line is no JSON object [ZA181]\n");
    EXPECT_EQ(journalFault("{\"format\":\"zolex-recording\"}\n"),
              "a.jsonl:1:1@0: this is no journal but a document of the format zolex-recording "
              "[ZA181]\n");
    const std::string text = exampleJournalText();
    EXPECT_EQ(
        journalFault(replaced(text, R"("format_version":"1.0")", R"("format_version":"2.0")")),
        "a.jsonl:1:1@0: this journal has format version 2.0, of which this program knows "
        "nothing: it reads version 1 [ZA182]\n");
    EXPECT_EQ(journalFault(replaced(text, R"("step":1)", R"("step":1,,)"))
                  .substr(0, std::string_view("a.jsonl:4:").size()),
              "a.jsonl:4:");
}

TEST(JournalLines, RefusesValuesOfAnotherKindThoughTheChainHolds) {
    const std::string text = exampleJournalText();
    const auto fault = [&](std::string_view old, std::string_view with) {
        std::string told = journalFault(rechained(replaced(text, old, with)));
        return told.substr(told.find(": ") + 2);
    };
    EXPECT_EQ(fault(R"("step":1,"controller")", R"("step":4,"controller")"),
              "step is 4 of 3 steps [ZA184]\n");
    EXPECT_EQ(fault(R"("pid":4711)", R"("pid":-1)"),
              "pid is no whole number from 0 to 9007199254740992 [ZA184]\n");
    EXPECT_EQ(fault(R"("outcome":"ended")", R"("outcome":"eaten")"),
              "outcome is the unknown word \"eaten\" [ZA184]\n");
    EXPECT_EQ(fault(R"("outcome":"ended")", R"("outcome":"not-started")"),
              "exit_code stands at a command that did not end [ZA184]\n");
    EXPECT_EQ(fault(R"("output_bytes":17)", R"("output_bytes":16)"),
              "output_bytes is less than \"output\" has [ZA184]\n");
    EXPECT_EQ(fault(R"("output":"Exit)", R"("output_base64":"Exit)"),
              "output_base64 is no base64 [ZA184]\n");
    EXPECT_EQ(fault(R"("event":"agreed")", R"("event":"sold")"),
              "event is none that this format version has [ZA184]\n");
    EXPECT_EQ(fault(R"("event":"agreed")", R"("event":"begin")"), "event is begin again [ZA184]\n");
    EXPECT_EQ(fault(R"("how":"typed-serial")", R"("how":"typed-serial","how":"any")"),
              "a name stands twice in an object [ZA184]\n");
    EXPECT_EQ(fault(R"("strength":"serials")", R"("strength":7)"),
              "fingerprint.strength is no text [ZA184]\n");
    EXPECT_EQ(fault(R"("why":"its array stands")", R"("because":null)"),
              "why is missing [ZA184]\n");
}

TEST(JournalLines, PassesOverEventsOfALaterMinorVersion) {
    std::string text = exampleJournalText();
    text = replaced(text, R"("format_version":"1.0")", R"("format_version":"1.7")");
    text = rechained(replaced(text, R"("event":"agreed")", R"("event":"sworn","new":1)"));
    const JournalReading reading = readJournal(text, "a.jsonl");
    EXPECT_EQ(textOf(reading), "");
    ASSERT_TRUE(reading.journal);
    EXPECT_EQ(reading.journal->entries.size(), exampleJournalEvents().size() - 1);
    EXPECT_EQ(reading.journal->entries[2].seq, 4U);
    // Also as the last line: what is written behind it counts on.
    const std::vector<std::string> lines = linesOf(text);
    const std::string three = joined({lines.begin(), lines.begin() + 3});
    const JournalReading short1 = readJournal(three, "a.jsonl");
    ASSERT_TRUE(short1.journal);
    EXPECT_EQ(short1.journal->lastSeq, 3U);
    EXPECT_EQ(short1.journal->entries.size(), 2U);
}

TEST(JournalLines, BoundsLines) {
    const std::string text = exampleJournalText();
    const std::string line = R"({"seq":)" + std::string(mostJournalLineBytes, ' ') + "\n";
    const std::vector<std::string> lines = linesOf(text);
    const std::string fault = journalFault(lines[0] + line);
    EXPECT_EQ(fault.substr(fault.find(": ") + 2), "the line is longer than 16 MB [ZA185]\n");
}

TEST(JournalLines, ReadsLinesWithCarriageReturns) {
    std::string text;
    for (const std::string& line : linesOf(exampleJournalText())) {
        text += line.substr(0, line.size() - 1) + "\r\n";
    }
    const JournalReading reading = readJournal(text, "a.jsonl");
    EXPECT_EQ(textOf(reading), "");
    ASSERT_TRUE(reading.journal);
    EXPECT_EQ(reading.journal->bytes, text.size());
}

// The file

class KeptFile : public DurableFile {
  public:
    KeptFile(std::string& text, std::size_t most) : text_(text), most_(most) {}
    bool append(std::string_view bytes) override {
        if (text_.size() + bytes.size() > most_) {
            return false;
        }
        text_ += bytes;
        return true;
    }

  private:
    std::string& text_;
    std::size_t most_;
};

TEST(JournalFile, GoesOnWithWhatWasRead) {
    const std::string whole = exampleJournalText();
    const std::vector<JournalEvent> events = exampleJournalEvents();
    for (std::size_t first = 1; first < events.size(); ++first) {
        std::string text;
        int second = 0;
        const auto clock = [&second] { return exampleJournalTime(++second); };
        JournalFile begun(std::make_unique<KeptFile>(text, 1U << 20U), clock);
        for (std::size_t i = 0; i < first; ++i) {
            ASSERT_TRUE(begun.write(events[i]));
        }
        const JournalReading reading = readJournal(text, "a.jsonl");
        ASSERT_TRUE(reading.journal);
        JournalFile rest(std::make_unique<KeptFile>(text, 1U << 20U), clock, *reading.journal);
        EXPECT_EQ(rest.lastLine(), "");
        for (std::size_t i = first; i < events.size(); ++i) {
            ASSERT_TRUE(rest.write(events[i]));
            EXPECT_EQ(text.substr(text.size() - rest.lastLine().size() - 1),
                      rest.lastLine() + "\n");
        }
        EXPECT_EQ(text, whole);
    }
}

TEST(JournalFile, HashesItsBytesUpToVerified) {
    std::string text;
    const JournalFile::Clock clock = [] { return exampleJournalTime(1); };
    JournalFile file(std::make_unique<KeptFile>(text, 1U << 20U), clock);
    ASSERT_TRUE(file.write(exampleJournalBegin()));
    EXPECT_EQ(file.hashUpToVerified(), "");
    const JournalReading reading = readJournal(text, "a.jsonl");
    JournalFile again(std::make_unique<KeptFile>(text, 1U << 20U), clock, *reading.journal);
    JournalVerified verified;
    verified.result = JournalVerified::Result::asPlanned;
    ASSERT_TRUE(again.write(verified));
    EXPECT_EQ(again.hashUpToVerified(), sha256(text));
    ASSERT_TRUE(again.write(JournalEnd{}));
    EXPECT_NE(again.hashUpToVerified(), sha256(text));
}

TEST(JournalFile, WritesNothingMoreWhenALineCouldNotBeWritten) {
    std::string text;
    JournalFile file(std::make_unique<KeptFile>(text, exampleJournalText().size() / 2),
                     [] { return exampleJournalTime(1); });
    std::size_t written = 0;
    bool hasFailed = false;
    for (const JournalEvent& event : exampleJournalEvents()) {
        const bool isWritten = file.write(event);
        EXPECT_FALSE(hasFailed && isWritten);
        hasFailed = hasFailed || !isWritten;
        written += isWritten ? 1 : 0;
    }
    EXPECT_TRUE(hasFailed);
    const JournalReading reading = readJournal(text, "a.jsonl");
    ASSERT_TRUE(reading.journal);
    EXPECT_EQ(reading.journal->entries.size(), written);
}

} // namespace
} // namespace zolex::companion::test
