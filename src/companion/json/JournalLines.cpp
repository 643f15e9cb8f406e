#include "companion/json/JournalLines.h"

#include "companion/json/Base64.h"
#include "companion/json/DocumentValues.h"
#include "companion/json/JournalPieces.h"
#include "companion/json/MachinePieces.h"
#include "companion/json/PlanDocument.h"
#include "companion/json/PlanPieces.h"
#include "companion/text/Utf8.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::string_view journalFormatName = "zolex-journal";
constexpr std::string_view journalFormatVersion = "1.0";
constexpr std::size_t hashDigits = 64;

// Writing

bool isUtf8Text(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0 || text.front() == '\0') {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

/// A text that a reader takes: U+FFFD for what is no UTF-8 and for the character 0, and cut where
/// it is too long.
std::string taken(std::string_view text) {
    constexpr std::string_view unknown = "\xEF\xBF\xBD";
    std::string result;
    while (!text.empty()) {
        const std::size_t length = text.front() == '\0' ? 0 : characterLength(text);
        const std::string_view next = length == 0 ? unknown : text.substr(0, length);
        if (result.size() + next.size() > mostTextBytes) {
            break;
        }
        result += next;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

Json takenOrNull(std::string_view text) {
    return orNull(taken(text));
}

/// Bytes that have to come back as they are: under a name of their own where they are no UTF-8.
void addBytes(Json& line, const std::string& name, std::string_view bytes) {
    if (isUtf8Text(bytes)) {
        line[name] = orNull(bytes);
    } else {
        line[name + "_base64"] = toBase64(bytes);
    }
}

std::int64_t bounded(std::uint64_t number) {
    return static_cast<std::int64_t>(std::min(number, static_cast<std::uint64_t>(mostJsonNumber)));
}

std::int64_t bounded(std::int64_t number) {
    return std::clamp<std::int64_t>(number, 0, mostJsonNumber);
}

void addIfTold(Json& line, const char* name, std::string_view text) {
    if (!text.empty()) {
        line[name] = taken(text);
    }
}

std::string readIfTold(const Part& line, const char* name) {
    return line.has(name) ? line.textOrNull(name) : std::string();
}

void addProcess(Json& line, const ProcessIdentity& process) {
    line["pid"] = bounded(process.pid);
    line["process_started_at"] = takenOrNull(process.startedAt);
}

Json numberOrNull(std::int32_t number) {
    return number == 0 ? Json(nullptr) : Json(number);
}

/// Adds to a line what its event holds.
struct EventWriter {
    Json& line;

    void operator()(const JournalBegin& event) const {
        line["format"] = journalFormatName;
        line["format_version"] = journalFormatVersion;
        line["tool"] = {{"name", "zolexctl"}, {"version", taken(event.toolVersion)}};
        addProcess(line, event.process);
        line["plan_id"] = taken(event.planId);
        line["plan_sha256"] = orNull(event.planHash);
        addBytes(line, "plan_file", event.planFile);
        line["fingerprint"] = fingerprintJson(event.fingerprint);
        line["consent"] = takenOrNull(event.consent);
        line["steps"] = event.steps;
        line["controllers"] = event.controllers;
        line["allow_skipped"] = event.allowSkipped;
        line["plan_text"] = orNull(event.planText);
    }
    void operator()(const JournalCaptured& event) const {
        line["purpose"] = capturePurposeWord(event.purpose);
        line["fingerprint"] = {{"state", {{"sha256", orNull(event.state)}}}};
        Json controllers = Json::array();
        for (const auto& [number, hash] : event.layouts) {
            controllers.push_back({{"number", number}, {"layout_sha256", orNull(hash)}});
        }
        line["controllers"] = std::move(controllers);
        addBytes(line, "recording", event.recording);
    }
    void operator()(const JournalAgreed& event) const {
        line["consent"] = takenOrNull(event.code);
        line["how"] = taken(event.how);
        line["by"] = takenOrNull(event.by);
    }
    void operator()(const JournalStepStarted& event) const {
        line["step"] = event.step;
        line["controller"] = event.controller;
        line["attempt"] = event.attempt;
        line["command"] = taken(event.command);
        line["expected_before"] = {{"layout_sha256", orNull(event.expectedBefore)}};
        line["expected_after"] = {{"layout_sha256", orNull(event.expectedAfter)}};
    }
    void operator()(const JournalChild& event) const {
        line["step"] = event.step;
        addProcess(line, event.process);
        addBytes(line, "output_file", event.output);
    }
    void operator()(const JournalStepEnded& event) const {
        line["step"] = event.step;
        line["outcome"] = outcomeWord(event.outcome);
        line["exit_code"] =
            event.outcome == ChildOutcome::ended ? Json(event.exitCode) : Json(nullptr);
        line["accepted"] = event.accepted;
        line["duration_ms"] = bounded(event.durationMs);
        line["output_bytes"] =
            bounded(std::max<std::uint64_t>(event.outputBytes, event.output.size()));
        addBytes(line, "output", std::string_view(event.output).substr(0, mostJournalOutput));
        addIfTold(line, "reason", event.reason);
        addIfTold(line, "instead", event.instead);
    }
    void operator()(const JournalStepFoundDone& event) const {
        line["step"] = event.step;
        line["why"] = taken(event.why);
    }
    void operator()(const JournalVerified& event) const {
        line["result"] = verifiedWord(event.result);
        Json lines = Json::array();
        for (const std::string& text : event.lines) {
            if (lines.size() < mostPlanLines) {
                lines.push_back(taken(text));
            }
        }
        line["diff"] = std::move(lines);
    }
    void operator()(const JournalEnd& event) const {
        line["exit_code"] = event.exitCode;
        line["results"] = resultsJson(event.results);
        line["reason"] = takenOrNull(event.reason);
    }
};

// Reading

constexpr std::array purposes = {CapturePurpose::guard, CapturePurpose::resume,
                                 CapturePurpose::step, CapturePurpose::verify};
constexpr std::array outcomes = {ChildOutcome::noPipe, ChildOutcome::notStarted,
                                 ChildOutcome::stillRunning, ChildOutcome::ended,
                                 ChildOutcome::notClosed};
constexpr std::array verdicts = {
    JournalVerified::Result::asPlanned, JournalVerified::Result::equivalent,
    JournalVerified::Result::different, JournalVerified::Result::unknown};
/// A text of any length up to `most`; empty for null.
std::string longTextOrNull(const Part& line, std::string_view name, std::size_t most) {
    if (line.isNull(name)) {
        return {};
    }
    const Json& value = *line.json().find(std::string(name));
    if (!value.is_string()) {
        line.fail(name, "is no text");
    }
    const auto& text = value.get_ref<const std::string&>();
    if (text.size() > most) {
        line.fail(name, "is longer than " + std::to_string(most) + " bytes");
    }
    return text;
}

/// Bytes that stand as they are, or in base64 under a name of their own.
std::string readBytesOf(const Part& line, const std::string& name, std::size_t most) {
    const std::string other = name + "_base64";
    if (!line.has(other)) {
        return longTextOrNull(line, name, most);
    }
    if (line.has(name)) {
        line.fail(other, "stands beside \"" + name + "\"");
    }
    const std::optional<std::string> bytes =
        fromBase64(longTextOrNull(line, other, most / 3 * 4 + 4));
    if (!bytes) {
        line.fail(other, "is no base64");
    }
    if (bytes->size() > most) {
        line.fail(other, "is longer than " + std::to_string(most) + " bytes");
    }
    return *bytes;
}

ProcessIdentity readProcess(const Part& line) {
    return {line.number<std::uint64_t>("pid"), line.textOrNull("process_started_at")};
}

std::string readLayoutHash(const Part& line, std::string_view name) {
    return line.object(name).hashOrNull("layout_sha256");
}

/// Reads the events of one journal, one after another.
class EventReader {
  public:
    /// Nothing for an event that is not known and need not be.
    std::optional<JournalEvent> read(const Part& line) {
        const std::string word = line.word("event");
        const auto* const found =
            std::find(journalEventWords.begin(), journalEventWords.end(), word);
        if (found == journalEventWords.end()) {
            if (version_.minor == 0) {
                line.fail("event", "is none that this format version has");
            }
            return std::nullopt;
        }
        switch (found - journalEventWords.begin()) {
        case 0:
            line.fail("event", "is begin again");
        case 1:
            return readCaptured(line);
        case 2:
            return JournalAgreed{line.textOrNull("consent"), line.text("how"),
                                 line.textOrNull("by")};
        case 3:
            return readStarted(line);
        case 4:
            return JournalChild{readStep(line), readProcess(line),
                                readBytesOf(line, "output_file", mostTextBytes)};
        case 5:
            return readEnded(line);
        case 6:
            return JournalStepFoundDone{readStep(line), line.text("why")};
        case 7:
            return JournalVerified{
                line.oneOf<JournalVerified::Result>("result", verdicts, verifiedWord),
                line.texts("diff", mostPlanLines)};
        default:
            return JournalEnd{line.number<int>("exit_code", 0, mostNumber),
                              readResults(line, "results"), line.textOrNull("reason")};
        }
    }

    JournalBegin readBegin(const Part& line) {
        version_ = checkFormat(line, journalFormatName, "journal");
        if (line.word("event") != journalEventWords.front()) {
            line.fail("event", "of the first line is not begin");
        }
        JournalBegin begin;
        begin.toolVersion = line.object("tool").text("version");
        begin.process = readProcess(line);
        begin.planId = line.text("plan_id");
        begin.planHash = line.hashOrNull("plan_sha256");
        begin.planFile = readBytesOf(line, "plan_file", mostTextBytes);
        begin.fingerprint = readFingerprint(line);
        begin.consent = line.textOrNull("consent");
        begin.steps = line.number<std::int32_t>("steps", 0, mostNumber);
        begin.controllers = line.numbers("controllers", mostPlanControllers, 1, mostNumber);
        begin.allowSkipped = line.truth("allow_skipped");
        begin.planText = longTextOrNull(line, "plan_text", mostPlanBytes);
        steps_ = begin.steps;
        return begin;
    }

  private:
    [[nodiscard]] std::int32_t readStep(const Part& line) const {
        const auto step = line.number<std::int32_t>("step", 1, mostNumber);
        if (step > steps_) {
            line.fail("step",
                      "is " + std::to_string(step) + " of " + std::to_string(steps_) + " steps");
        }
        return step;
    }

    static JournalCaptured readCaptured(const Part& line) {
        JournalCaptured event;
        event.purpose = line.oneOf<CapturePurpose>("purpose", purposes, capturePurposeWord);
        event.state = line.object("fingerprint").object("state").hashOrNull("sha256");
        for (const Part& each : line.objects("controllers", mostPlanControllers)) {
            const auto number = each.number<std::int32_t>("number", 1, mostNumber);
            if (!event.layouts.emplace(number, each.hashOrNull("layout_sha256")).second) {
                each.fail("number", "stands twice");
            }
        }
        event.recording = readBytesOf(line, "recording", mostTextBytes);
        return event;
    }

    [[nodiscard]] JournalStepStarted readStarted(const Part& line) const {
        JournalStepStarted event;
        event.step = readStep(line);
        event.controller = line.number<std::int32_t>("controller", 1, mostNumber);
        event.attempt = line.number<std::int32_t>("attempt", 1, mostNumber);
        event.command = line.text("command");
        event.expectedBefore = readLayoutHash(line, "expected_before");
        event.expectedAfter = readLayoutHash(line, "expected_after");
        return event;
    }

    [[nodiscard]] JournalStepEnded readEnded(const Part& line) const {
        JournalStepEnded event;
        event.step = readStep(line);
        event.outcome = line.oneOf<ChildOutcome>("outcome", outcomes, outcomeWord);
        if (line.isNull("exit_code") != (event.outcome != ChildOutcome::ended)) {
            line.fail("exit_code", event.outcome == ChildOutcome::ended
                                       ? "is null of a command that ended"
                                       : "stands at a command that did not end");
        }
        event.exitCode = line.numberOrNull<std::uint32_t>("exit_code", 0,
                                                          std::numeric_limits<std::uint32_t>::max())
                             .value_or(0);
        event.accepted = line.truth("accepted");
        event.durationMs = line.number("duration_ms");
        event.outputBytes = line.number<std::uint64_t>("output_bytes");
        event.output = readBytesOf(line, "output", mostJournalOutput);
        event.reason = readIfTold(line, "reason");
        event.instead = readIfTold(line, "instead");
        if (event.output.size() > event.outputBytes) {
            line.fail("output_bytes", "is less than \"output\" has");
        }
        return event;
    }

    FormatVersion version_;
    std::int32_t steps_ = 0;
};

/// A fault that is told with a code of its own, at a line.
struct ChainFault {
    std::string_view code;
    std::string text;
    std::int64_t line;
};

/// Goes through the lines of one journal.
class JournalReader {
  public:
    JournalReader(std::string_view text, std::string_view fileName)
        : text_(text), fileName_(fileName) {}

    JournalReading read() {
        JournalReading reading;
        try {
            history_.file = fileName_;
            readLines();
            reading.journal = std::move(history_);
        } catch (const DocumentFault& fault) {
            reading.findings.push_back(
                atLine(fileFinding(fileName_, journalCodes.of(fault.kind), fault.text), number_,
                       fault.byte.value_or(0)));
        } catch (const ChainFault& fault) {
            reading.findings.push_back(
                atLine(fileFinding(fileName_, fault.code, fault.text), fault.line, 0));
        }
        return reading;
    }

  private:
    void readLines() {
        std::size_t start = 0;
        while (start < text_.size()) {
            const std::size_t end = text_.find('\n', start);
            if (end == std::string_view::npos || isLost(start, end)) {
                break;
            }
            ++number_;
            lineStart_ = start;
            readLine(text_.substr(start, end - start));
            start = end + 1;
            history_.bytes = start;
        }
        history_.isTorn = start < text_.size();
        history_.hash.add(text_.substr(0, start));
        if (number_ == 0) {
            checkNothing();
            throw ChainFault{problem::nothingBegun,
                             "nothing was begun: the journal has not even one whole line", 0};
        }
    }

    /// A last line whose bytes did not all come to the disk before power was lost: zeros stand in
    /// their place, and its line end may be there all the same.
    [[nodiscard]] bool isLost(std::size_t start, std::size_t end) const {
        return end + 1 == text_.size() &&
               text_.substr(start, end - start).find('\0') != std::string_view::npos;
    }

    /// Throws when the file, which has no whole line, is not the torn begin of a journal.
    void checkNothing() const {
        constexpr std::string_view begin = R"({"seq":1,"at":")";
        const std::string_view told = text_.substr(0, begin.size());
        const bool isBegin = told == begin.substr(0, told.size());
        if (!isBegin && text_.find('\0') == std::string_view::npos) {
            throw DocumentFault{DocumentFault::Kind::otherDocument,
                                "this is no journal: it has no whole line"};
        }
    }

    void readLine(std::string_view line) {
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        const std::size_t most = mostJournalLineBytes + (number_ == 1 ? 2 * mostPlanBytes : 0);
        if (line.size() > most) {
            throw DocumentFault{DocumentFault::Kind::tooLarge,
                                "the line is longer than " + std::to_string(most >> 20U) + " MB"};
        }
        if (history_.entries.size() == mostJournalEvents) {
            throw DocumentFault{DocumentFault::Kind::tooLarge,
                                "the journal has more than " + std::to_string(mostJournalEvents) +
                                    " events"};
        }
        const Json json = parseLine(line);
        const Part part(json);
        JournalEntry entry;
        if (number_ == 1) {
            JournalBegin begin = events_.readBegin(part);
            checkChain(part);
            entry.event = std::move(begin);
        } else {
            checkChain(part);
            std::optional<JournalEvent> event = events_.read(part);
            if (!event) {
                noteLine(line);
                return;
            }
            entry.event = std::move(*event);
        }
        constexpr std::size_t mostTimeBytes = 64;
        entry.seq = static_cast<std::uint64_t>(number_);
        entry.at = part.word("at", mostTimeBytes);
        history_.entries.push_back(std::move(entry));
        noteLine(line);
    }

    [[nodiscard]] Json parseLine(std::string_view line) const {
        try {
            Json json = parseDocument(line);
            if (json.is_object()) {
                return json;
            }
        } catch (const DocumentFault& fault) {
            if (number_ > 1 || fault.kind != DocumentFault::Kind::notJson) {
                throw;
            }
        }
        throw DocumentFault{number_ == 1 ? DocumentFault::Kind::otherDocument
                                         : DocumentFault::Kind::notJson,
                            number_ == 1 ? "this is no journal: the first line is no JSON object"
                                         : "this is no JSON object"};
    }

    void noteLine(std::string_view line) {
        history_.lastSeq = static_cast<std::uint64_t>(number_);
        history_.lastHash = sha256(line);
    }

    /// Whether the line stands behind the one before, as it was written.
    void checkChain(const Part& part) const {
        const auto seq = part.number("seq");
        if (seq != number_) {
            throw ChainFault{problem::journalChanged,
                             "lines were taken out or added: \"seq\" is " + std::to_string(seq) +
                                 " instead of " + std::to_string(number_),
                             number_};
        }
        const std::string prev = part.hash("prev");
        if (number_ == 1 && prev != firstJournalHash()) {
            throw ChainFault{problem::journalChanged,
                             "this is not the first line: \"prev\" is not 64 zeros", 1};
        }
        if (number_ > 1 && prev != history_.lastHash) {
            throw ChainFault{problem::journalChanged,
                             "this line is not the one that was written: line " +
                                 std::to_string(number_) + " has another SHA-256 of it",
                             number_ - 1};
        }
    }

    /// Line 0: none.
    [[nodiscard]] Finding atLine(Finding finding, std::int64_t line, std::size_t offset) const {
        if (line > 0) {
            const bool isThis = line == number_;
            finding.start.line = static_cast<std::int32_t>(std::min(line, mostNumber));
            finding.start.column = static_cast<std::int32_t>(
                std::min<std::size_t>(offset, static_cast<std::size_t>(mostNumber) - 1) + 1);
            finding.start.byte =
                static_cast<std::int64_t>(isThis ? lineStart_ + offset : previousStart());
            finding.end = finding.start;
        }
        return finding;
    }

    /// Where the line before this one begins.
    [[nodiscard]] std::size_t previousStart() const {
        return lineStart_ < 2 ? 0 : text_.rfind('\n', lineStart_ - 2) + 1; // 0 without one
    }

    std::string_view text_;
    std::string fileName_;
    JournalHistory history_;
    EventReader events_;
    std::int64_t number_ = 0; ///< of the line, from 1
    std::size_t lineStart_ = 0;
};

} // namespace

Json resultsJson(const std::vector<ControllerResult>& results) {
    Json list = Json::array();
    for (const ControllerResult& result : results) {
        list.push_back({{"number", result.number},
                        {"result", controllerResultWord(result.result)},
                        {"step", numberOrNull(result.step)},
                        {"of", numberOrNull(result.of)},
                        {"reason", takenOrNull(result.reason)}});
    }
    return list;
}

std::vector<ControllerResult> readResults(const Part& part, std::string_view name) {
    using Result = ControllerResult::Result;
    constexpr std::array results = {Result::configured, Result::already, Result::skipped,
                                    Result::failed};
    std::vector<ControllerResult> list;
    for (const Part& each : part.objects(name, mostPlanControllers)) {
        ControllerResult result;
        result.number = each.number<std::int32_t>("number", 1, mostNumber);
        result.result = each.oneOf<Result>("result", results, controllerResultWord);
        result.step = each.numberOrNull<std::int32_t>("step", 1, mostNumber).value_or(0);
        result.of = each.numberOrNull<std::int32_t>("of", 1, mostNumber).value_or(0);
        result.reason = each.textOrNull("reason");
        list.push_back(std::move(result));
    }
    return list;
}

std::string firstJournalHash() {
    return std::string(hashDigits, '0');
}

std::string journalLine(std::uint64_t seq, std::string_view at, std::string_view prev,
                        const JournalEvent& event) {
    Json line{{"seq", seq}, {"at", at}, {"prev", prev}, {"event", journalEventWord(event)}};
    std::visit(EventWriter{line}, event);
    return lineOf(line);
}

JournalReading readJournal(std::string_view text, std::string_view fileName) {
    if (text.size() > mostJournalBytes) {
        return {std::nullopt, {tooLargeFinding(fileName, journalCodes, mostJournalBytes)}, {}};
    }
    return JournalReader(text, fileName).read();
}

} // namespace zolex::companion
