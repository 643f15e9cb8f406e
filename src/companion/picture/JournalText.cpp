#include "companion/picture/JournalText.h"

#include "companion/picture/TextLines.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "companion/text/TypedWord.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Behind "21:06:01  ".
constexpr std::size_t textIndent = 10;

/// "2.1 s", "340 s", "74 min".
std::string timeText(std::int64_t milliseconds) {
    constexpr std::int64_t second = 1000;
    constexpr std::int64_t minute = 60 * second;
    if (milliseconds < 100 * second) {
        const std::int64_t tenths = (milliseconds + 50) / 100;
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
    }
    return milliseconds < 10 * minute ? std::to_string(milliseconds / second) + " s"
                                      : std::to_string(milliseconds / minute) + " min";
}

/// "2026-11-21T21:06:01+00:00" has a day and a time of it; another text neither.
bool isTimestamp(std::string_view at) {
    constexpr std::size_t timeBegins = 11;
    constexpr std::size_t timeEnds = 19;
    return at.size() >= timeEnds && at[timeBegins - 1] == 'T' && at[13] == ':' && at[16] == ':';
}
std::string dayOf(std::string_view at) {
    return isTimestamp(at) ? std::string(at.substr(0, 10)) : std::string();
}
std::string clockOf(std::string_view at) {
    return isTimestamp(at) ? printable(at.substr(11, 8)) : "        ";
}

std::string_view purposeText(CapturePurpose purpose) {
    switch (purpose) {
    case CapturePurpose::guard:
        return "before the first step";
    case CapturePurpose::resume:
        return "to go on";
    case CapturePurpose::step:
        return "after a step";
    case CapturePurpose::verify:
        break;
    }
    return "to verify";
}

std::string agreedText(std::string_view how) {
    return how == "typed-serial" ? "the serial number was typed"
           : how == "typed-code" ? "the code was typed"
           : how == "option"     ? "by the option --destroy"
           : how == "own"        ? "all of it was made by earlier runs (--destroy own)"
           : how == "any"        ? "to any loss (--destroy any)"
                                 : printable(how);
}

std::string verdictText(JournalVerified::Result result) {
    switch (result) {
    case JournalVerified::Result::asPlanned:
        return "as planned";
    case JournalVerified::Result::equivalent:
        return "as planned, on equal drives";
    case JournalVerified::Result::different:
        return "NOT as planned";
    case JournalVerified::Result::unknown:
        break;
    }
    return "not known";
}

std::string processText(const ProcessIdentity& process) {
    return "pid " + std::to_string(process.pid);
}

std::string resultLine(const ControllerResult& result) {
    std::string text(controllerResultWord(result.result));
    if (result.step > 0) {
        text += " at step " + std::to_string(result.step) + " of " + std::to_string(result.of);
    }
    return text + (result.reason.empty() ? "" : ": " + printable(result.reason));
}

Emphasis emphasisOf(ControllerResult::Result result) {
    switch (result) {
    case ControllerResult::Result::configured:
    case ControllerResult::Result::already:
        return Emphasis::good;
    case ControllerResult::Result::skipped:
        return Emphasis::warning;
    case ControllerResult::Result::failed:
        break;
    }
    return Emphasis::bad;
}

/// What the journal knows of one step.
struct StepState {
    bool isStarted = false;
    bool isDone = false; ///< its last attempt was accepted, or it was found done
    bool hasFailed = false;
    ProcessIdentity child;
    std::string command;
};

class JournalWriter {
  public:
    JournalWriter(const JournalHistory& journal, const TextStyle& style,
                  const JournalTextTerms& terms)
        : journal_(journal), begin_(journal.begin()), style_(style), terms_(terms),
          width_(static_cast<std::size_t>(style.width)) {
        if (terms.plan != nullptr) {
            const std::vector<PlanStep> steps = terms.plan->steps();
            const bool isOne = steps.empty() || steps.front().controller == steps.back().controller;
            for (const PlanStep& step : steps) {
                const std::string where =
                    isOne ? "" : "controller " + std::to_string(step.controller) + ": ";
                summaries_[step.step] = where + step.summary;
            }
        }
    }

    std::string write() {
        head();
        for (const JournalEntry& entry : journal_.entries) {
            day(entry.at);
            at_ = clockOf(entry.at);
            std::visit(*this, entry.event);
        }
        if (journal_.isTorn) {
            out_ += signedLine("! ", "the last line was cut, and counts as not written",
                               Emphasis::warning, style_);
        }
        standing();
        ending();
        return std::move(out_);
    }

    void operator()(const JournalBegin& event) {
        line("begun",
             "by zolexctl " + printable(event.toolVersion) + ", " + processText(event.process));
    }
    void operator()(const JournalCaptured& event) {
        line("captured",
             std::string(purposeText(event.purpose)) +
                 (event.recording.empty() ? "" : ", kept in " + printable(event.recording)));
    }
    void operator()(const JournalAgreed& event) {
        std::string text = event.code.empty() ? "" : printable(event.code) + ": ";
        text += agreedText(event.how);
        text += event.by.empty() ? "" : ", by " + printable(event.by);
        line("agreed", text, Emphasis::bold);
    }
    void operator()(const JournalStepStarted& event) {
        StepState& state = steps_[event.step];
        state.isStarted = true;
        state.isDone = false;
        state.hasFailed = false;
        state.child = {};
        state.command = event.command;
        std::string text = summaryOf(event.step);
        text += event.attempt > 1 ? " (attempt " + std::to_string(event.attempt) + ")" : "";
        stepLine(event.step, text, Emphasis::plain);
        if (!isNamed(event.step) || terms_.verbose) {
            below(printable(event.command), Emphasis::dim);
        }
    }
    void operator()(const JournalChild& event) { steps_[event.step].child = event.process; }
    void operator()(const JournalStepEnded& event) {
        StepState& state = steps_[event.step];
        state.isDone = event.accepted;
        state.hasFailed = !event.accepted && event.outcome != ChildOutcome::stillRunning;
        const bool isAgain = !event.instead.empty();
        std::string text = event.accepted ? "ok, " : isAgain ? "not known, " : "FAILED, ";
        text += endText(event) + ", " + timeText(event.durationMs);
        if (event.outcome == ChildOutcome::stillRunning) {
            text = event.durationMs > 0 ? "had not ended after " + timeText(event.durationMs)
                                        : "its end was not seen";
        }
        stepLine(event.step, text,
                 event.accepted ? Emphasis::good
                 : isAgain      ? Emphasis::warning
                                : Emphasis::bad);
        if (!event.accepted && isNamed(event.step) && !terms_.verbose) {
            below(printable(state.command), Emphasis::dim);
        }
        if (!event.reason.empty()) {
            below("| " + printable(event.reason), Emphasis::plain);
        }
        if (isAgain) {
            below("run again as " + printable(event.instead), Emphasis::dim);
        }
        // An answer in JSON says no more than the reason.
        const bool isInWords =
            !event.reason.empty() && zolex::text::trim(event.output, " \t\r\n").starts_with('{');
        if ((!event.accepted && !isInWords) || terms_.verbose) {
            output(event);
        }
    }
    void operator()(const JournalStepFoundDone& event) {
        steps_[event.step].isDone = true;
        steps_[event.step].hasFailed = false;
        stepLine(event.step, "found done: " + printable(event.why), Emphasis::good);
    }
    void operator()(const JournalVerified& event) {
        using Result = JournalVerified::Result;
        line("verified", verdictText(event.result),
             event.result == Result::asPlanned || event.result == Result::equivalent
                 ? Emphasis::good
                 : Emphasis::bad);
        for (const std::string& text : event.lines) {
            below(printable(text), Emphasis::plain);
        }
    }
    void operator()(const JournalEnd& event) {
        line("ended",
             "exit code " + std::to_string(event.exitCode) +
                 (event.reason.empty() ? "" : ": " + printable(event.reason)),
             event.exitCode == 0 ? Emphasis::good : Emphasis::bad);
    }

  private:
    void head() {
        std::string plan = printable(begin_.planId);
        plan += begin_.planFile.empty() ? ", made in the same run"
                                        : " of " + printable(begin_.planFile);
        plan += ", " + countText(static_cast<std::size_t>(begin_.steps), "step", "steps");
        out_ += signedLine("Journal  ", printable(journal_.file), Emphasis::heading, style_);
        out_ += signedLine("Plan     ", plan, Emphasis::plain, style_);
        const Fingerprint& machine = begin_.fingerprint;
        std::string text = machine.machineType.empty() ? "?" : printable(machine.machineType);
        text += machine.serialNumber.empty() ? "" : ", serial " + printable(machine.serialNumber);
        for (const Fingerprint::Controller& controller : machine.controllers) {
            text += ", controller " + std::to_string(controller.number);
            text += controller.serialNumber.empty()
                        ? ""
                        : " serial " + printable(controller.serialNumber);
        }
        out_ += signedLine("Machine  ", text, Emphasis::plain, style_);
        if (!begin_.controllers.empty()) {
            std::string numbers;
            for (const std::int32_t number : begin_.controllers) {
                numbers += (numbers.empty() ? "" : ", ") + std::to_string(number);
            }
            out_ += "Only     controller " + numbers + "\n";
        }
        if (!begin_.consent.empty()) {
            out_ += "Consent  " + printable(begin_.consent) + " was to be agreed to\n";
        }
    }

    /// A line of its own when the day is another one.
    void day(const std::string& at) {
        const std::string day = dayOf(at);
        if (!day.empty() && day != day_) {
            day_ = day;
            constexpr std::size_t timeEnds = 19;
            out_ += "\n" + emphasized(printable(day), Emphasis::heading, style_) +
                    emphasized("  " + printable(at.substr(timeEnds)), Emphasis::dim, style_) + "\n";
        }
    }

    void line(std::string_view what, const std::string& text, Emphasis emphasis = Emphasis::plain) {
        constexpr std::size_t gap = 10;
        const std::string name =
            std::string(what) + std::string(gap - std::min(gap, what.size()), ' ');
        const std::size_t indent = textIndent + gap;
        out_ += emphasized(at_, Emphasis::dim, style_) + "  " + name +
                emphasized(foldedWords(text, indent, indent, width_), emphasis, style_) + "\n";
    }

    void stepLine(std::int32_t step, const std::string& text, Emphasis emphasis) {
        line("[" + std::to_string(step) + "/" + std::to_string(begin_.steps) + "]", text, emphasis);
    }

    void below(const std::string& text, Emphasis emphasis) {
        out_ += signedLine(std::string(2 * textIndent, ' '), text, emphasis, style_);
    }

    [[nodiscard]] bool isNamed(std::int32_t step) const {
        const auto found = summaries_.find(step);
        return found != summaries_.end() && !found->second.empty();
    }

    /// "create A: RAID1 on 32:0 32:1"; without the plan "started".
    [[nodiscard]] std::string summaryOf(std::int32_t step) const {
        return isNamed(step) ? printable(summaries_.at(step)) : "started";
    }

    static std::string endText(const JournalStepEnded& event) {
        switch (event.outcome) {
        case ChildOutcome::noPipe:
        case ChildOutcome::notStarted:
            return "could not be started";
        case ChildOutcome::stillRunning:
        case ChildOutcome::notClosed:
            return "its exit code is not known";
        case ChildOutcome::ended:
            break;
        }
        return "exit " + std::to_string(event.exitCode);
    }

    /// The utility's own words.
    void output(const JournalStepEnded& event) {
        constexpr std::size_t mostLines = 40;
        std::string_view rest = event.output;
        std::size_t count = 0;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            std::string_view text = rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
            while (!text.empty() && (text.back() == '\r' || text.back() == ' ')) {
                text.remove_suffix(1);
            }
            if (text.empty()) {
                continue;
            }
            if (count == mostLines && !terms_.verbose) {
                below("| ... (--verbose shows the rest)", Emphasis::dim);
                return;
            }
            ++count;
            // As it is, so that its columns stay.
            out_ += std::string(2 * textIndent, ' ') + "| " + printable(text) + "\n";
        }
        if (event.outputBytes > event.output.size()) {
            below("| ... (" + std::to_string(event.outputBytes) + " bytes, of which " +
                      std::to_string(event.output.size()) + " were kept)",
                  Emphasis::dim);
        } else if (count == 0) {
            below("| (it printed nothing)", Emphasis::dim);
        }
    }

    /// The steps as they stand after all.
    void standing() {
        out_ += "\n";
        std::vector<FieldLine> lines;
        const JournalEnd* const end = journal_.end();
        for (const auto& [step, state] : steps_) {
            const std::string sign = state.isDone ? "+ " : state.hasFailed ? "x " : "? ";
            const std::string what = state.isDone      ? "done"
                                     : state.hasFailed ? "failed"
                                                       : "begun, no end noted";
            lines.push_back(
                {2,
                 {{sign + "step " + std::to_string(step), state.isDone      ? Emphasis::good
                                                          : state.hasFailed ? Emphasis::bad
                                                                            : Emphasis::warning},
                  {what},
                  {isNamed(step) ? summaryOf(step) : printable(state.command)}}});
        }
        const std::size_t begun = lines.size();
        const auto all = static_cast<std::size_t>(begin_.steps);
        out_ += emphasized("What was done", Emphasis::heading, style_) + "\n";
        for (const std::string& text : fieldLines(lines, style_)) {
            out_ += text;
        }
        if (begun < all) {
            out_ += "  . " + countText(all - begun, "step was", "steps were") + " not begun\n";
        }
        if (end != nullptr) {
            for (const ControllerResult& result : end->results) {
                out_ += signedLine("  Controller " + std::to_string(result.number) + "  ",
                                   resultLine(result), emphasisOf(result.result), style_);
            }
        }
        out_ += "\n";
    }

    /// The last sentence, and what can be typed.
    void ending() {
        const JournalEnd* const end = journal_.end();
        const std::string resume =
            "zolexctl apply --resume " + printable(typedWord(journal_.file)) + " goes on";
        constexpr int stopped = 4;
        constexpr int different = 5;
        if (end == nullptr) {
            tell("The run was interrupted: its journal has no end." + running(), Emphasis::warning);
            help(resume + ", or says truly why not");
        } else if (end->exitCode == 0) {
            tell("The run ended as planned.", Emphasis::good);
        } else if (end->exitCode == stopped) {
            tell("The run was stopped on its way." + running(), Emphasis::bad);
            help(resume + " when the cause is mended");
            help(planCommand() + " plans from what is there");
        } else if (end->exitCode == different) {
            tell("What stands is not what was planned, or could not be looked at.", Emphasis::bad);
            help("zolexctl show shows what is there");
            help(planCommand() + " plans from it");
        } else {
            tell("The run ended with exit code " + std::to_string(end->exitCode) + ".",
                 Emphasis::bad);
        }
    }

    /// A child that may still be at work.
    [[nodiscard]] std::string running() const {
        for (const auto& [step, state] : steps_) {
            if (state.isStarted && !state.isDone && !state.hasFailed && state.child.pid != 0) {
                return " The utility of step " + std::to_string(step) + " (" +
                       processText(state.child) + ") may still run.";
            }
        }
        return "";
    }

    [[nodiscard]] std::string planCommand() const {
        return terms_.plan == nullptr ? "zolexctl plan POLICIES"
                                      : printable(companion::planCommand(*terms_.plan));
    }

    void tell(const std::string& text, Emphasis emphasis) {
        out_ += signedLine("", text, emphasis, style_);
    }
    void help(const std::string& text) {
        out_ += signedLine("  help: ", text, Emphasis::dim, style_);
    }

    const JournalHistory& journal_;
    const JournalBegin& begin_;
    const TextStyle& style_;
    const JournalTextTerms& terms_;
    std::size_t width_;
    std::map<std::int32_t, std::string> summaries_;
    std::map<std::int32_t, StepState> steps_;
    std::string at_;
    std::string day_;
    std::string out_;
};

} // namespace

std::string journalText(const JournalHistory& journal, const TextStyle& style,
                        const JournalTextTerms& terms) {
    return JournalWriter(journal, style, terms).write();
}

} // namespace zolex::companion
