#include "companion/planning/Plan.h"
#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PlanMaking.h"
#include "companion/commands/Timings.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/picture/PlanPicture.h"
#include "companion/picture/PlanText.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

class PlanCommand {
  public:
    PlanCommand(Context& context, const PlanOptions& options)
        : context_(context), options_(options), maker_(context, options) {}

    int run() {
        const int code = planOnce();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            const std::string document = failedPlanDocument(maker_.faults(), head());
            return deliver(context_, document) ? code : exit_code::notPossible;
        }
        return code;
    }

  private:
    int planOnce() {
        if (!maker_.readPolicies() || !readTimings()) {
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

    bool readTimings() {
        std::optional<UsualTimes> times = usualTimes(context_, options_.timings);
        if (!times) {
            return false;
        }
        terms_.usualTimes = *std::move(times);
        return true;
    }

    int look(Platform& machine, const Utilities& utilities) {
        const std::optional<MachinePlan> plan = maker_.make(machine, utilities);
        terms_.captureTime = maker_.captureTime();
        return plan ? give(*plan) : exit_code::notPossible;
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
            return planHtml(plan, maker_.madeAt(), terms_.savedTo);
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
        const SourceFile source{maker_.request().policiesFile, maker_.request().policiesText};
        return diagnosticsText(all, {&source, 1}, context_.style);
    }

    [[nodiscard]] DocumentHead head() const {
        return {context_.argv, maker_.madeAt().empty() ? timestampOf(context_.platform.localTime())
                                                       : maker_.madeAt()};
    }

    Context& context_;
    const PlanOptions& options_;
    PlanMaker maker_;
    PlanTextTerms terms_;
    bool isDelivered_ = false;
};

} // namespace

int plan(Context& context, const PlanOptions& options) {
    return PlanCommand(context, options).run();
}

} // namespace zolex::companion
