#include "companion/commands/RunLog.h"

#include "companion/text/OutputFile.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

/// The step of the plan; null when there is none of this number.
const PlanStep* stepNumbered(const std::vector<PlanStep>& steps, std::int32_t number) {
    const auto found = std::find_if(steps.begin(), steps.end(),
                                    [number](const PlanStep& step) { return step.step == number; });
    return found == steps.end() ? nullptr : &*found;
}

/// One line for each event; empty for one that is told elsewhere.
class EventLine {
  public:
    explicit EventLine(const MachinePlan& plan) : steps_(plan.steps()) {}

    std::string operator()(const JournalBegin& begin) const {
        return "begin: plan " + begin.planId +
               (begin.planFile.empty() ? "" : " (" + begin.planFile + ")");
    }
    std::string operator()(const JournalCaptured& captured) const {
        return "captured for " + std::string(capturePurposeWord(captured.purpose));
    }
    std::string operator()(const JournalAgreed& agreed) const {
        return "agreed: " + agreed.code + " (" + agreed.how + ") by " + agreed.by;
    }
    std::string operator()(const JournalStepStarted& started) const {
        const PlanStep* const step = stepNumbered(steps_, started.step);
        return nameOf(started.step) + ", controller " + std::to_string(started.controller) +
               (step == nullptr ? "" : ", " + step->summary) + ": " + started.command +
               (started.attempt > 1 ? " (attempt " + std::to_string(started.attempt) + ")" : "");
    }
    std::string operator()(const JournalChild& child) const {
        return nameOf(child.step) + ": pid " + std::to_string(child.process.pid);
    }
    std::string operator()(const JournalStepEnded& ended) const {
        return nameOf(ended.step) + ": " + outcomeText(ended.outcome, ended.exitCode) +
               (ended.accepted ? ", accepted, " : ", not accepted, ") +
               exactSeconds(ended.durationMs) + ", " + std::to_string(ended.outputBytes) +
               (ended.outputBytes == 1 ? " byte" : " bytes") + " printed" +
               (ended.reason.empty() ? "" : ": " + ended.reason) +
               (ended.instead.empty() ? "" : "; run again as " + ended.instead);
    }
    std::string operator()(const JournalStepFoundDone& found) const {
        return nameOf(found.step) + ": found done: " + found.why;
    }
    std::string operator()(const JournalVerified& verified) const {
        std::string text = "verified: " + std::string(verifiedWord(verified.result));
        for (const std::string& line : verified.lines) {
            text += "; " + line;
        }
        return text;
    }
    std::string operator()(const JournalEnd&) const { return {}; }

  private:
    [[nodiscard]] std::string nameOf(std::int32_t step) const {
        return "step " + std::to_string(step) + " of " + std::to_string(steps_.size());
    }

    std::vector<PlanStep> steps_;
};

} // namespace

std::string exactSeconds(std::int64_t milliseconds) {
    constexpr std::int64_t thousand = 1000;
    constexpr std::size_t digits = 3;
    const std::string rest = std::to_string(milliseconds % thousand);
    return std::to_string(milliseconds / thousand) + "." + std::string(digits - rest.size(), '0') +
           rest + " s";
}

std::string outcomeText(ChildOutcome outcome, std::uint32_t exitCode) {
    switch (outcome) {
    case ChildOutcome::noPipe:
    case ChildOutcome::notStarted:
        return "not started";
    case ChildOutcome::stillRunning:
        return "still at work";
    case ChildOutcome::ended:
    case ChildOutcome::notClosed:
        break;
    }
    return "exit " + std::to_string(exitCode);
}

std::unique_ptr<RunLog> RunLog::open(Context& context, const std::string& name) {
    std::unique_ptr<RunLog> log(
        new RunLog(context, name, context.platform.files().open(name, "a")));
    std::string command = "zolexctl";
    for (const std::string& argument : context.argv) {
        command +=
            " " + (argument.find(' ') == std::string::npos ? argument : "\"" + argument + "\"");
    }
    const std::string version = std::string("zolexctl ") + ZOLEX_VERSION;
    const bool isOpen = log->file_ != nullptr;
    if (!isOpen || !log->write(version + ": " + command)) {
        failWith(context, printable(name) + ": " + lastSystemError(),
                 "name another file with --log; nothing was changed");
        return nullptr;
    }
    return log;
}

bool RunLog::write(const std::string& text) {
    const std::string whole =
        timestampOf(context_.platform.localTime()) + " " + printable(text) + "\n";
    return file_->write(whole) == whole.size() && file_->flush();
}

void RunLog::append(const std::string& text) {
    if (file_ != nullptr && !(file_->write(text) == text.size() && file_->flush())) {
        file_.reset();
        context_.platform.console().writeError(
            emphasized("warning:", Emphasis::warning, context_.errorStyle) + " " +
            printable(name_) + ": the log cannot be written any more\n");
    }
}

void RunLog::line(std::string_view text) {
    append(timestampOf(context_.platform.localTime()) + " " + printable(text) + "\n");
}

void RunLog::block(std::string_view output) {
    std::string text;
    while (!output.empty()) {
        const std::size_t end = std::min(output.find('\n'), output.size());
        std::string_view line = output.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        text += "  | " + printable(line) + "\n";
        output.remove_prefix(std::min(end + 1, output.size()));
    }
    append(text);
}

void RunLog::captured(const Snapshot& snapshot) {
    line("machine " + snapshot.machine.machineType + " " + snapshot.machine.serialNumber);
    for (const ControllerSnapshot& controller : snapshot.details) {
        line("controller " + std::to_string(controller.number) + ": " + controller.model +
             (controller.facts.serialNumber.empty() ? ""
                                                    : ", serial " + controller.facts.serialNumber));
        for (std::size_t i = 0; i < controller.commands.size(); ++i) {
            const CapturedListing& listing = controller.commands[i];
            line("controller " + std::to_string(controller.number) + ": " + listing.command + ": " +
                 outcomeText(listing.outcome, listing.exitCode) + ", " +
                 exactSeconds(listing.duration.count()));
            block(i < controller.listings.size() ? controller.listings[i] : std::string());
        }
    }
}

void RunLog::happened(const MachinePlan& plan, const JournalEvent& event) {
    if (const std::string text = std::visit(EventLine(plan), event); !text.empty()) {
        line(text);
    }
    if (const auto* const ended = std::get_if<JournalStepEnded>(&event)) {
        block(ended->output);
    }
}

void RunLog::ended(const ApplyEnd& end) {
    if (end.captured && end.changedSomething) {
        captured(*end.captured);
    }
    if (!end.what.empty()) {
        line("error: " + end.what);
    }
    for (const std::string& each : end.details) {
        line("  " + each);
    }
    for (const ControllerResult& result : end.results) {
        line("controller " + std::to_string(result.number) + ": " +
             std::string(controllerResultWord(result.result)) +
             (result.step > 0
                  ? ": step " + std::to_string(result.step) + " of " + std::to_string(result.of)
                  : "") +
             (result.reason.empty() ? "" : ": " + result.reason));
    }
    line("end: exit code " + std::to_string(end.exitCode));
}

} // namespace zolex::companion
