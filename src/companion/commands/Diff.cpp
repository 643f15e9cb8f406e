#include "companion/planning/Diff.h"
#include "companion/commands/Commands.h"
#include "companion/commands/FileKind.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PlanMaking.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/commands/UnaskedFamilies.h"
#include "companion/execution/CertificateDiff.h"
#include "companion/json/CertificateDocument.h"
#include "companion/json/DiffDocument.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/picture/DiffText.h"
#include "companion/picture/PlanPicture.h"
#include "companion/planning/Plan.h"
#include "companion/planning/PlanFaults.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// A plan or a certificate is a document, which begins with a brace; no policies file does.
bool isDocument(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{';
}

class DiffCommand {
  public:
    DiffCommand(Context& context, const DiffOptions& options)
        : context_(context), options_(options) {}

    int run() {
        const int code = diffOnce();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            const std::string document = failedDiffDocument(
                fault_ ? std::vector<Finding>{*fault_} : context_.failures, head());
            return deliver(context_, document) ? code : exit_code::notPossible;
        }
        return code;
    }

  private:
    int diffOnce() {
        if (!readWanted()) {
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

    /// What the machine is held against; false after a message.
    bool readWanted() {
        PoliciesText read = readPoliciesText(context_.platform, options_.file);
        constexpr std::size_t headBytes = 256;
        if (!read.fault &&
            fileKindOf(std::string_view(read.text).substr(0, headBytes)) == FileKind::certificate) {
            CertificateReading reading = readCertificate(read.text, read.name);
            if (!reading.certificate) {
                read.fault = reading.findings.front();
            }
            certificate_ = std::move(reading.certificate);
        } else if (!read.fault && isDocument(read.text)) {
            PlanReading reading = readPlanDocument(read.text, read.name);
            if (!reading.plan) {
                read.fault = reading.findings.front();
            }
            plan_ = std::move(reading.plan);
        }
        if (read.fault) {
            fault_ = read.fault;
            context_.platform.console().writeError(
                diagnosticsText({&*fault_, 1}, {}, context_.errorStyle));
            return false;
        }
        request_.policiesFile = std::move(read.name);
        request_.policiesText = isByPolicies() ? std::move(read.text) : "";
        return isByPolicies() || asksWhatIsTold();
    }

    [[nodiscard]] bool isByPolicies() const { return !plan_ && !certificate_; }

    /// The numbers of controllers of which the plan or the certificate tells.
    [[nodiscard]] std::vector<std::int32_t> toldNumbers() const {
        std::vector<std::int32_t> numbers;
        if (plan_) {
            for (const ControllerPlanning& planning : plan_->controllers) {
                numbers.push_back(planning.controller.number);
            }
        } else {
            for (const Certificate::Controller& controller : certificate_->controllers) {
                numbers.push_back(controller.number);
            }
        }
        return numbers;
    }

    /// Whether it has the controllers that the options ask for; false after a message.
    bool asksWhatIsTold() {
        const std::vector<std::int32_t> told = toldNumbers();
        for (const std::int32_t number : context_.machine.controllers) {
            if (std::find(told.begin(), told.end(), number) == told.end()) {
                failWith(
                    context_,
                    printable(request_.policiesFile) +
                        (plan_ ? " has no plan of controller " : " does not tell of controller ") +
                        std::to_string(number),
                    "zolexctl show " + printable(request_.policiesFile) + " tells those of it");
                return false;
            }
        }
        return true;
    }

    int look(Platform& machine, const Utilities& utilities) {
        const Snapshot snapshot = captureMachine(machine, captureRequest(context_, &utilities));
        const auto notAsked =
            familyNotAsked(context_, request_.policiesFile, request_.policiesText,
                           "zolexctl diff " + typedWord(policiesArgument(request_.policiesFile)) +
                               machineArguments(context_.machine));
        const std::string notSeen = plan_ ? whyPlanNotSeen(context_, *plan_) : std::string();
        if (!notSeen.empty()) {
            return failWith(context_, notSeen,
                            "zolexctl diff " + typedWord(request_.policiesFile) +
                                machineArguments(context_.machine) + " --family md");
        }
        if (snapshot.details.empty()) {
            return failWithoutController(context_, notAsked);
        }
        if (notAsked) {
            tellNotAsked(context_, *notAsked);
        }
        madeAt_ = timestampOf(machine.localTime());
        MachineDiff diff = certificate_
                               ? diffOf(snapshot, *certificate_, context_.machine.controllers)
                           : plan_ ? diffOf(snapshot, *plan_, context_.machine.controllers)
                                   : diffOf(planMachine(snapshot, request_));
        diff.wantedBy = request_.policiesFile;
        isDelivered_ = true;
        if (!deliver(context_, written(diff, snapshot))) {
            return exit_code::notPossible;
        }
        return judge(diff);
    }

    [[nodiscard]] std::string written(const MachineDiff& diff, const Snapshot& snapshot) const {
        switch (context_.format) {
        case Format::json:
            return diffDocument(diff, head());
        case Format::svg:
            return diffSvg(diff, snapshot);
        case Format::html:
            return diffHtml(diff, snapshot, madeAt_);
        default:
            return context_.quiet && exitCodeOf(diff) == exit_code::done
                       ? std::string()
                       : diffText(diff, context_.style, context_.verbose);
        }
    }

    int judge(const MachineDiff& diff) {
        if (isNothingCompared(diff)) {
            return failWith(context_, "nothing was compared: no controller has a policy",
                            !isByPolicies()
                                ? "zolexctl show " + printable(request_.policiesFile) + " tells why"
                                : "zolexctl plan " +
                                      printable(policiesArgument(request_.policiesFile)) +
                                      " tells for each policy why it does not fit");
        }
        return exitCodeOf(diff);
    }

    static bool isNothingCompared(const MachineDiff& diff) {
        return std::all_of(diff.controllers.begin(), diff.controllers.end(),
                           [](const ControllerDiff& controller) {
                               return controller.result == ControllerDiff::Result::skipped;
                           });
    }

    [[nodiscard]] int exitCodeOf(const MachineDiff& diff) const {
        using Result = ControllerDiff::Result;
        if (diff.result == Result::unknown) {
            return exit_code::notPossible;
        }
        bool isDifferent = false;
        for (const ControllerDiff& controller : diff.controllers) {
            isDifferent = isDifferent || controller.result == Result::different ||
                          (options_.strict && controller.result != Result::skipped &&
                           (controller.result == Result::equivalent ||
                            !controller.comparison.health.empty()));
        }
        return isNothingCompared(diff) ? exit_code::notPossible
               : isDifferent           ? exit_code::found
                                       : exit_code::done;
    }

    [[nodiscard]] DocumentHead head() const {
        return {context_.argv,
                madeAt_.empty() ? timestampOf(context_.platform.localTime()) : madeAt_};
    }

    Context& context_;
    const DiffOptions& options_;
    std::optional<MachinePlan> plan_;
    std::optional<Certificate> certificate_; ///< neither: policies
    PlanRequest request_;
    std::optional<Finding> fault_; ///< of the policies or the plan
    std::string madeAt_;
    bool isDelivered_ = false;
};

} // namespace

int diff(Context& context, const DiffOptions& options) {
    return DiffCommand(context, options).run();
}

} // namespace zolex::companion
