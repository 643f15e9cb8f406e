#include "companion/commands/ApplyTeller.h"

#include "companion/commands/LossText.h"
#include "companion/json/JournalLines.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace zolex::companion {

namespace {

constexpr std::size_t headColumn = 11;   ///< where the head lines say what
constexpr std::size_t stateColumns = 16; ///< "  as planned for"
constexpr std::size_t endColumns = 24;   ///< "  FAILED  exit 38   2.1 s"

std::string aligned(const std::string& text, std::size_t columns) {
    const std::size_t used = columnsOf(text);
    return std::string(used < columns ? columns - used : 0, ' ') + text;
}

std::string cut(const std::string& text, std::size_t columns) {
    constexpr std::string_view dots = "...";
    if (columnsOf(text) <= columns || columns < dots.size()) {
        return text;
    }
    std::string result = text;
    while (!result.empty() && columnsOf(result) + dots.size() > columns) {
        result.pop_back();
    }
    return result.append(dots);
}

std::string machineName(const Snapshot& snapshot) {
    const std::string type = printable(snapshot.machine.machineType);
    const std::string serial = printable(snapshot.machine.serialNumber);
    std::string text = type.empty() ? "of unknown type" : type;
    text += serial.empty() ? ", serial not known" : " " + serial;
    std::string serials;
    std::size_t count = 0;
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (!controller.facts.serialNumber.empty()) {
            serials += (serials.empty() ? "" : ", ") + printable(controller.facts.serialNumber);
            ++count;
        }
    }
    return text + (count == 0   ? ""
                   : count == 1 ? ", controller serial " + serials
                                : ", controller serials " + serials);
}

struct Counts {
    std::size_t drives = 0;
    std::size_t logicalDrives = 0;
    std::size_t spares = 0;
};

Counts countsOf(const Snapshot& snapshot) {
    Counts counts;
    for (const ControllerSnapshot& controller : snapshot.details) {
        counts.drives += controller.drives.size();
        counts.logicalDrives += controller.facts.logicalDrives.size();
        counts.spares += capturedLayout(controller.facts).spares.size();
    }
    return counts;
}

std::string standingText(const Counts& counts) {
    if (counts.logicalDrives == 0 && counts.spares == 0) {
        return "no logical drives";
    }
    return countText(counts.logicalDrives, "logical drive", "logical drives") +
           (counts.spares == 0 ? "" : ", " + countText(counts.spares, "spare", "spares"));
}

/// Whether commands of the plan were not run.
bool hasRemains(const ApplyEnd& end) {
    return std::any_of(end.details.begin(), end.details.end(),
                       [](const std::string& line) { return line.starts_with("remains: "); });
}

} // namespace

std::string durationText(std::int64_t milliseconds) {
    constexpr std::int64_t second = 1000;
    constexpr std::int64_t tenth = 100;
    constexpr std::int64_t minute = 60 * second;
    if (milliseconds < 100 * second) {
        const std::int64_t tenths = (milliseconds + tenth / 2) / tenth;
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
    }
    if (milliseconds < 10 * minute) {
        return std::to_string(milliseconds / second) + " s";
    }
    return std::to_string(milliseconds / minute) + " min";
}

std::string resultText(const ControllerResult& result) {
    std::string text(controllerResultWord(result.result));
    if (result.result == ControllerResult::Result::failed && result.step > 0) {
        text += ": step " + std::to_string(result.step) + " of " + std::to_string(result.of);
    }
    return text + (result.reason.empty() ? "" : ": " + printable(result.reason));
}

ApplyTeller::ApplyTeller(Context& context, const MachinePlan& plan, const TellTerms& terms)
    : context_(context), plan_(plan), terms_(terms), steps_(plan.steps()) {}

void ApplyTeller::isAsPlannedFor(const Snapshot& guard) {
    guard_ = guard;
    if (terms_.log != nullptr) {
        terms_.log->captured(guard);
        terms_.log->line("the machine is as planned for");
    }
    head("Machine", machineName(guard), "as planned for");
    const Counts counts = countsOf(guard);
    head("State", countText(counts.drives, "drive", "drives") + ", " + standingText(counts),
         "as planned for");
}

ConsentAnswer ApplyTeller::askConsent(const MachinePlan& plan, const std::vector<Loss>& losses) {
    wasAsked_ = true;
    ConsentTerms terms = terms_.consent;
    if (terms_.notOwn && guard_) {
        terms.notOwn = [this](const std::vector<Loss>& each) {
            return terms_.notOwn(each, *guard_);
        };
    }
    ConsentAnswer answer = consentTo(context_, plan, losses, terms);
    if (!answer.isGiven) {
        if (terms_.log != nullptr) {
            terms_.log->line("not agreed: " + answer.refused);
        }
        return answer;
    }
    const std::string what = losses.empty() ? "nothing is lost" : lossNames(losses);
    head("Consent", askedCode(plan, losses) + ": " + what, "agreed");
    return answer;
}

void ApplyTeller::tellResumption(const JournalHistory& history) {
    const JournalBegin& begin = history.begin();
    head("Run",
         "plan " + printable(begin.planId) + ", begun on " + printable(history.entries.front().at),
         "goes on");
    head("Journal", printable(terms_.journalFile), "");
    if (terms_.log != nullptr) {
        terms_.log->line("goes on with the run of " + terms_.journalFile);
    }
}

void ApplyTeller::happened(const JournalEvent& event) {
    hasBegun_ = hasBegun_ || std::holds_alternative<JournalStepStarted>(event);
    hasEnded_ = hasEnded_ || std::holds_alternative<JournalEnd>(event);
    if (terms_.log != nullptr) {
        terms_.log->happened(plan_, event);
    }
    if (context_.format == Format::json && terms_.lastLine) {
        context_.platform.console().writeOutput(terms_.lastLine() + "\n");
    }
    std::visit([this](const auto& each) { this->tell(each); }, event);
}

void ApplyTeller::tell(const JournalBegin& /*begin*/) {
    if (!wasAsked_) {
        head("Consent", "nothing is lost", "not needed");
    }
    head("Journal", printable(terms_.journalFile), "");
    if (tellsAll()) {
        write("\n");
    }
}

void ApplyTeller::tell(const JournalStepStarted& started) {
    running_ = started;
    child_ = 0;
    if (context_.verbose && tellsAll()) {
        clearLive();
        write("  " + printable(started.command) + "\n");
    }
    tick(std::chrono::milliseconds(0));
}

void ApplyTeller::tell(const JournalChild& child) {
    child_ = child.process.pid;
}

void ApplyTeller::tell(const JournalStepEnded& ended) {
    const bool isOld = !running_;
    running_.reset();
    if (isOld && ended.outcome == ChildOutcome::stillRunning) {
        return; // the words of a command of the run before, which has ended since
    }
    const bool hasRun =
        ended.outcome == ChildOutcome::ended || ended.outcome == ChildOutcome::notClosed;
    const std::string outcome = hasRun ? padded("exit " + std::to_string(ended.exitCode), 7) : "";
    const std::string time = aligned(durationText(ended.durationMs), 7);
    if (ended.outcome == ChildOutcome::stillRunning) {
        stepLine(ended.step, "RUNNING", Emphasis::warning, aligned(time, 14));
        return;
    }
    if (!ended.instead.empty()) {
        stepLine(ended.step, "again", Emphasis::warning, outcome + time);
        below(ended.reason + ": run again as " + ended.instead);
        return;
    }
    stepLine(ended.step, ended.accepted ? "ok" : "FAILED",
             ended.accepted ? Emphasis::good : Emphasis::bad,
             hasRun ? outcome + time : "not started");
}

void ApplyTeller::tell(const JournalStepFoundDone& found) {
    stepLine(found.step, "done", Emphasis::good, "before");
    below(found.why);
}

void ApplyTeller::below(const std::string& text) {
    if (tellsAll()) {
        write(emphasized("      " + foldedWords(printable(text), 6, 6,
                                                static_cast<std::size_t>(context_.style.width)),
                         Emphasis::dim, context_.style) +
              "\n");
    }
}

void ApplyTeller::tell(const JournalVerified& verified) {
    verified_ = verified;
}

void ApplyTeller::stillWaiting(const PlanStep& step, const ProcessIdentity& child,
                               std::chrono::milliseconds since) {
    const std::string text =
        "still at work, pid " + std::to_string(child.pid) + ", " +
        std::to_string(std::chrono::duration_cast<std::chrono::seconds>(since).count()) +
        " s of at most " + std::to_string(terms_.stepLimit.count()) + " s";
    if (terms_.log != nullptr) {
        terms_.log->line("step " + std::to_string(step.step) + ": " + text);
    }
    if (context_.rewritesLines && tellsAll()) {
        child_ = child.pid;
        return; // its line has it
    }
    if (isText()) {
        write(stepNumber(step.step) + text + "\n");
    }
}

void ApplyTeller::note(const std::string& text) {
    if (terms_.log != nullptr) {
        terms_.log->line(text);
    }
    clearLive();
    constexpr std::string_view warning = "warning:";
    const bool isWarning = text.starts_with(warning);
    const std::string folded =
        foldedWords(printable(text), 0, 4, static_cast<std::size_t>(context_.errorStyle.width));
    writeError((isWarning ? emphasized(warning, Emphasis::warning, context_.errorStyle) +
                                folded.substr(warning.size())
                          : folded) +
               "\n");
}

void ApplyTeller::tick(std::chrono::milliseconds since) {
    if (!running_ || !tellsAll() || !context_.rewritesLines) {
        return;
    }
    constexpr std::chrono::seconds longTime{30};
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(since);
    std::string state = "at work " + std::to_string(seconds.count()) + " s";
    const auto controller = std::find_if(plan_.controllers.begin(), plan_.controllers.end(),
                                         [this](const ControllerPlanning& each) {
                                             return each.controller.number == running_->controller;
                                         });
    if (seconds >= longTime && child_ != 0) {
        state += ", pid " + std::to_string(child_);
    } else if (controller != plan_.controllers.end()) {
        const auto usual = terms_.usualTimes.find(controller->controller.utility);
        if (usual != terms_.usualTimes.end()) {
            state += ", usually " + durationText(usual->second.count());
        }
    }
    live(state);
}

void ApplyTeller::live(const std::string& state) {
    const auto width = static_cast<std::size_t>(context_.style.width) - 1;
    const std::size_t used = columnsOf(state) + 2;
    const std::size_t room = width > used ? width - used : 0;
    const std::string line = padded(cut(stepText(running_->step), room), room) + "  " + state;
    const std::size_t columns = columnsOf(line);
    write("\r" + padded(line, liveColumns_));
    liveColumns_ = columns;
}

void ApplyTeller::clearLive() {
    if (liveColumns_ > 0) {
        write("\r" + std::string(liveColumns_, ' ') + "\r");
        liveColumns_ = 0;
    }
}

void ApplyTeller::write(const std::string& text) {
    context_.platform.console().writeOutput(text);
}

void ApplyTeller::writeError(const std::string& text) {
    context_.platform.console().writeError(text);
}

void ApplyTeller::head(const char* name, const std::string& what, const std::string& state,
                       Emphasis emphasis) {
    if (!tellsAll()) {
        return;
    }
    const auto width = static_cast<std::size_t>(context_.style.width);
    const std::size_t room =
        width > headColumn + stateColumns ? width - headColumn - stateColumns : width;
    const std::string text =
        foldedWords(what, headColumn, headColumn, state.empty() ? width : headColumn + room);
    const std::size_t last = text.rfind('\n');
    const std::size_t columns = last == std::string::npos
                                    ? headColumn + columnsOf(text)
                                    : columnsOf(std::string_view(text).substr(last + 1));
    const std::size_t end = headColumn + room + 2;
    std::string line = padded(name, headColumn) + text;
    if (!state.empty()) {
        line += std::string(columns < end ? end - columns : 2, ' ') +
                emphasized(state, emphasis, context_.style);
    }
    write(line + "\n");
}

const PlanStep* ApplyTeller::step(std::int32_t number) const {
    const auto found = std::find_if(steps_.begin(), steps_.end(),
                                    [number](const PlanStep& each) { return each.step == number; });
    return found == steps_.end() ? nullptr : &*found;
}

bool ApplyTeller::isCommand(const std::string& line) const {
    return std::any_of(steps_.begin(), steps_.end(),
                       [&line](const PlanStep& each) { return printable(each.command) == line; });
}

std::string ApplyTeller::stepNumber(std::int32_t number) const {
    return "[" + std::to_string(number) + "/" + std::to_string(steps_.size()) + "] ";
}

std::string ApplyTeller::stepText(std::int32_t number) const {
    const PlanStep* const found = step(number);
    std::string text = stepNumber(number);
    if (found == nullptr) {
        return text;
    }
    if (plan_.controllers.size() > 1) {
        text += "controller " + std::to_string(found->controller) + ": ";
    }
    return text + printable(found->summary);
}

void ApplyTeller::stepLine(std::int32_t number, const std::string& state, Emphasis emphasis,
                           const std::string& rest) {
    clearLive();
    if (!tellsAll()) {
        return;
    }
    const auto width = static_cast<std::size_t>(context_.style.width);
    const std::size_t room = width > endColumns ? width - endColumns : width;
    constexpr std::size_t stateRoom = 6;
    const std::size_t used = columnsOf(state);
    constexpr std::size_t behindNumber = 6;
    std::string text = foldedWords(stepText(number), 0, behindNumber, room - 2);
    const std::size_t last = text.rfind('\n') + 1; // 0 where there is one line
    write(text.substr(0, last) + padded(text.substr(last), room) +
          std::string(used < stateRoom ? stateRoom - used : 0, ' ') +
          emphasized(state, emphasis, context_.style) + "  " + rest + "\n");
}

void ApplyTeller::tellEnd(const ApplyEnd& end, const std::string& proof) {
    clearLive();
    if (terms_.log != nullptr) {
        terms_.log->ended(end);
    }
    if (context_.format == Format::json && !hasEnded_) {
        const JournalEnd last{end.exitCode, end.results, end.what};
        write(journalLine(1, timestampOf(context_.platform.localTime()), firstJournalHash(), last) +
              "\n");
    }
    tellVerified(end);
    if (tellsAll() && !proof.empty()) {
        write(proof);
    }
    // What is empty was told already.
    if (end.exitCode != exit_code::done && !end.what.empty()) {
        tellFault(end);
    }
    tellResults(end);
}

void ApplyTeller::tellVerified(const ApplyEnd& end) {
    if (!verified_ || !tellsAll()) {
        return;
    }
    std::string text;
    switch (verified_->result) {
    case JournalVerified::Result::asPlanned:
    case JournalVerified::Result::equivalent:
        text = "captured again: ";
        text += end.captured ? standingText(countsOf(*end.captured)) + ", " : "";
        text +=
            verified_->result == JournalVerified::Result::asPlanned ? "as planned" : "equivalent";
        text += end.exitCode == exit_code::stopped ? ", but for what was not carried out" : "";
        break;
    case JournalVerified::Result::different:
        text = "captured again: not as planned";
        break;
    case JournalVerified::Result::unknown:
        text = "could not be captured again";
        break;
    }
    head("Verified", text, "");
    if (verified_->result == JournalVerified::Result::equivalent) {
        for (const std::string& line : verified_->lines) {
            head("", printable(line), "");
        }
    }
}

void ApplyTeller::tellFault(const ApplyEnd& end) {
    const TextStyle& style = context_.errorStyle;
    const auto width = static_cast<std::size_t>(style.width);
    constexpr std::size_t indent = 7;
    std::string text =
        emphasized("error:", Emphasis::bad, style) + " " +
        foldedWords(printable(end.what) + (end.code.empty() ? "" : " [" + end.code + "]"), indent,
                    indent, width) +
        "\n";
    for (const std::string& line : end.details) {
        // Command lines and words of utilities stay as they are.
        const std::string shown = printable(line);
        const bool stays = line.starts_with("| ") || isCommand(line);
        text += "  " + (stays ? shown : foldedWords(shown, 2, 4, width)) + "\n";
    }
    for (const std::string& line : end.help) {
        text += "  " + emphasized("help:", Emphasis::heading, style) + " " + printable(line) + "\n";
    }
    writeError(text);
}

void ApplyTeller::tellResults(const ApplyEnd& end) {
    if (!tellsAll()) {
        return;
    }
    std::size_t configured = 0;
    for (const ControllerResult& result : end.results) {
        const bool isUntouched =
            result.result == ControllerResult::Result::failed && result.step == 0;
        if (isUntouched && end.exitCode <= exit_code::refused) {
            continue; // all is told
        }
        const bool isGood = result.result == ControllerResult::Result::configured ||
                            result.result == ControllerResult::Result::already;
        configured += result.result == ControllerResult::Result::configured ? 1 : 0;
        const std::string name = "Controller " + std::to_string(result.number) + "  ";
        write(name +
              emphasized(foldedWords(resultText(result), name.size(), name.size(),
                                     static_cast<std::size_t>(context_.style.width)),
                         isGood                                               ? Emphasis::good
                         : result.result == ControllerResult::Result::skipped ? Emphasis::warning
                                                                              : Emphasis::bad,
                         context_.style) +
              "\n");
    }
    std::string closing;
    switch (end.exitCode) {
    case exit_code::done:
        closing = configured == 0 ? terms_.nothingToDo
                                  : "Done: " + countText(configured, "controller", "controllers") +
                                        " configured.";
        break;
    case exit_code::stopped:
        closing = "Stopped on the way. " + printable(terms_.journalFile) + " tells what was done.";
        break;
    case exit_code::different:
        closing = !end.changedSomething ? "Nothing was changed."
                  : hasRemains(end)
                      ? "Ended before its last step: what stands is not as planned."
                      : "Every command was run, but the end is not proved to be as planned.";
        break;
    default:
        closing = terms_.goesOn ? "Nothing more was changed." : "Nothing was changed.";
        break;
    }
    write(emphasized(closing, Emphasis::bold, context_.style) + "\n");
}

} // namespace zolex::companion
