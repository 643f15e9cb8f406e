#include "companion/json/JournalLines.h"
#include "companion/machine/Sha256.h"
#include "companion/picture/JournalText.h"
#include "support/Check.h"
#include "support/Input.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace zolex::fuzz {
namespace {

using namespace companion;

/// An error with a place in the text, and no journal.
void checkError(const JournalReading& reading, std::string_view text) {
    check(!reading.journal && reading.findings.size() == 1, "what is not read has one reason");
    const Finding& finding = reading.findings.front();
    check(finding.severity == Severity::error && !finding.code.empty() && !finding.summary.empty(),
          "an error says something");
    check(finding.start.byte >= 0 && finding.start.byte <= static_cast<std::int64_t>(text.size()),
          "an error stands in the text");
}

/// The text with the chain that it should have, so that what is changed in a line is looked at.
std::string chained(std::string_view text) {
    constexpr std::string_view name = R"("prev":")";
    constexpr std::size_t digits = 64;
    std::string result;
    std::string prev = firstJournalHash();
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string line(text.substr(0, end));
        const std::size_t at = line.find(name);
        if (at != std::string::npos && line.size() - at - name.size() >= digits) {
            line.replace(at + name.size(), digits, prev);
        }
        prev =
            sha256(std::string_view(line).substr(0, line.size() - (line.ends_with('\r') ? 1 : 0)));
        result += line;
        if (end < text.size()) {
            result += '\n';
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

/// What was read comes back as it is, and can be told of.
void checkJournal(const JournalHistory& journal, std::string_view text) {
    check(journal.bytes <= text.size() && (journal.bytes < text.size()) == journal.isTorn,
          "whole lines alone");
    check(journal.lastSeq >= journal.entries.size(), "lines are counted");
    std::string again;
    std::string prev = firstJournalHash();
    std::uint64_t number = 0;
    for (const JournalEntry& entry : journal.entries) {
        const std::string line = journalLine(++number, entry.at, prev, entry.event);
        prev = sha256(line);
        again += line + "\n";
    }
    const JournalReading reading = readJournal(again, "again.jsonl");
    check(reading.journal && !reading.journal->isTorn, "what was written is read");
    check(reading.journal->entries.size() == journal.entries.size(), "all of it");
    check(reading.journal->lastHash == prev, "up to its last line");
    check(!journalText(journal, {}, {}).empty(), "it can be told of");
}

void readAny(std::string_view text) {
    const JournalReading reading = readJournal(text, "plan.journal.jsonl");
    if (reading.journal) {
        check(reading.findings.empty(), "a journal that is read has no fault");
        checkJournal(*reading.journal, text);
    } else {
        checkError(reading, text);
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = zolex::fuzz::Input(data, size).rest();
    zolex::fuzz::readAny(text);
    zolex::fuzz::readAny(zolex::fuzz::chained(text));
    return 0;
}
