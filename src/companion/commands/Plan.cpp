#include "companion/planning/Plan.h"
#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/commands/Timings.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/System.h"
#include "companion/picture/PlanPicture.h"
#include "companion/picture/PlanText.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// The word as it is typed.
std::string typed(const std::string& word) {
    return word.find(' ') == std::string::npos ? word : "\"" + word + "\"";
}

/// What was typed, but for what is let pass and for how the plan is written: it makes the same
/// plan.
std::string commandOf(const Context& context, const PlanOptions& options) {
    const MachineOptions& machine = context.machine;
    std::string command =
        "zolexctl plan " + (options.classDefaults ? "--default" : typed(options.file));
    const auto add = [&command](const char* option, const std::string& value) {
        if (!value.empty()) {
            command += std::string(" ") + option + " " + typed(value);
        }
    };
    add("--strategy", options.strategy == StrategyWish::add       ? "add"
                      : options.strategy == StrategyWish::rebuild ? "rebuild"
                                                                  : "");
    std::string numbers;
    for (const std::int32_t number : machine.controllers) {
        numbers += (numbers.empty() ? "" : ",") + std::to_string(number);
    }
    add("--controller", numbers);
    add("--recording", machine.recording);
    add("--utilities", machine.utilitiesFolder);
    for (const auto& [name, path] : machine.utilities) {
        add("--utility", std::string(name).append("=").append(path));
    }
    add("--machine-type", machine.machineType);
    add("--serial", machine.serialNumber);
    return command;
}

class PlanCommand {
  public:
    PlanCommand(Context& context, const PlanOptions& options)
        : context_(context), options_(options) {}

    int run() {
        const int code = planOnce();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            const std::string document = failedPlanDocument(findings(), head());
            return deliver(context_, document) ? code : exit_code::notPossible;
        }
        return code;
    }

  private:
    int planOnce() {
        if (!readPolicies() || !readTimings()) {
            return exit_code::notPossible;
        }
        try {
            return lookAtMachine(context_, [this](Platform& machine, const Utilities& utilities) {
                return look(machine, utilities);
            });
        } catch (const NoSuchController& missing) {
            return failWith(context_, missing.what(), "zolexctl show lists those that there are");
        }
    }

    bool readPolicies() {
        request_.classDefaults = options_.classDefaults;
        request_.strategy = options_.strategy;
        request_.accept = options_.accept;
        request_.command = commandOf(context_, options_);
        if (options_.classDefaults) {
            return true;
        }
        PoliciesText read = readPoliciesText(context_.platform, options_.file);
        if (read.fault) {
            fault_ = read.fault;
            failWith(context_, printable(read.name) + ": " + printable(read.fault->summary),
                     read.fault->help.front());
            return false;
        }
        request_.policiesFile = std::move(read.name);
        request_.policiesText = std::move(read.text);
        return true;
    }

    bool readTimings() {
        std::optional<UsualTimes> times = usualTimes(context_, options_.timings);
        if (!times) {
            return false;
        }
        terms_.usualTimes = *std::move(times);
        return true;
    }

    int look(Platform& machine, const Utilities& utilities) {
        const std::chrono::milliseconds begin = system::elapsed();
        const Snapshot snapshot = captureMachine(machine, captureRequest(context_, &utilities));
        if (context_.machine.recording.empty()) {
            terms_.captureTime = system::elapsed() - begin;
        }
        if (snapshot.details.empty()) {
            return failWith(context_, "no supported RAID controller was found",
                            "zolexctl doctor tells what is there");
        }
        madeAt_ = timestampOf(machine.localTime());
        MachinePlan plan = planMachine(snapshot, request_);
        if (options_.rehearse && plan.isApplicable()) {
            rehearse(snapshot, plan);
        }
        plan.id = planIdOf(plan, madeAt_);
        return give(plan);
    }

    int give(const MachinePlan& plan) {
        const bool isApplicable = plan.isApplicable();
        bool isWritten = !isApplicable || save(plan);
        isDelivered_ = true;
        const bool isQuiet = context_.quiet && context_.format == Format::text;
        isWritten = deliver(context_, isQuiet ? quietText(plan)
                                              : written(plan, context_.format, context_.style)) &&
                    isWritten;
        if (!isApplicable) {
            tellNotSaved();
        }
        if (!isApplicable || !isWritten) {
            return exit_code::notPossible;
        }
        return options_.exitCode && plan.changesSomething() ? exit_code::found : exit_code::done;
    }

    /// Keeps a plan that can be carried out; an old file stays where the new one cannot be written.
    bool save(const MachinePlan& plan) {
        if (options_.savedFile.empty()) {
            return true;
        }
        const TextStyle plain;
        // A picture is no plan that can be carried out.
        (options_.savedFormat == Format::json ? terms_.savedTo : terms_.writtenTo) =
            options_.savedFile;
        const std::string content = written(plan, options_.savedFormat, plain);
        const std::string error =
            replaceFile(context_.platform.files(), options_.savedFile, content);
        if (!error.empty()) {
            terms_.savedTo.clear();
            terms_.writtenTo.clear();
            failWith(context_, error, "name another file with -o; nothing was written");
        }
        return error.empty();
    }

    void tellNotSaved() {
        if (!options_.savedFile.empty()) {
            failWith(context_,
                     printable(options_.savedFile) +
                         " is not written: the plan cannot be carried out",
                     "mend what is told as error, and plan again");
        }
    }

    [[nodiscard]] std::string written(const MachinePlan& plan, Format format,
                                      const TextStyle& style) const {
        switch (format) {
        case Format::json:
            return planDocument(plan, head());
        case Format::svg:
            return planSvg(plan);
        case Format::html:
            return planHtml(plan, madeAt_);
        default:
            PlanTextTerms terms = terms_;
            terms.verbose = context_.verbose;
            return planText(plan, style, terms);
        }
    }

    /// What is wrong, and nothing else.
    [[nodiscard]] std::string quietText(const MachinePlan& plan) const {
        std::vector<Finding> all;
        const auto take = [&all](const std::vector<Finding>& findings) {
            std::copy_if(findings.begin(), findings.end(), std::back_inserter(all),
                         [](const Finding& finding) { return finding.severity != Severity::note; });
        };
        take(plan.policiesFindings);
        take(plan.diagnostics);
        for (const ControllerPlanning& controller : plan.controllers) {
            take(controller.diagnostics);
            take(controller.warnings);
        }
        const SourceFile source{request_.policiesFile, request_.policiesText};
        return diagnosticsText(all, {&source, 1}, context_.style);
    }

    /// Why there is no plan.
    [[nodiscard]] std::vector<Finding> findings() const {
        return fault_ ? std::vector<Finding>{*fault_} : context_.failures;
    }

    [[nodiscard]] DocumentHead head() const {
        return {context_.argv,
                madeAt_.empty() ? timestampOf(context_.platform.localTime()) : madeAt_};
    }

    Context& context_;
    const PlanOptions& options_;
    PlanRequest request_;
    PlanTextTerms terms_;
    std::optional<Finding> fault_; ///< of the policies file
    std::string madeAt_;
    bool isDelivered_ = false;
};

} // namespace

int plan(Context& context, const PlanOptions& options) {
    return PlanCommand(context, options).run();
}

} // namespace zolex::companion
