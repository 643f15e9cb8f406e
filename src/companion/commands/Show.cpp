#include "companion/commands/Commands.h"
#include "companion/commands/FileKind.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/ShowPlan.h"
#include "companion/commands/ShowPolicies.h"
#include "companion/commands/ShowRun.h"
#include "companion/json/MachineDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Examination.h"
#include "companion/machine/Snapshot.h"
#include "companion/picture/Html.h"
#include "companion/picture/MachineText.h"
#include "companion/picture/Svg.h"
#include "companion/text/Timestamp.h"

namespace zolex::companion {

namespace {

/// The picture, page, document or text of the machine; `readAt` is when it was read.
std::string shown(Context& context, const Snapshot& snapshot, const LocalTime& readAt) {
    switch (context.format) {
    case Format::json:
        return machineDocument(snapshot, {context.argv, timestampOf(context.platform.localTime())});
    case Format::svg:
        return machineSvg(snapshot);
    case Format::html:
        return machineHtml(snapshot, timestampOf(readAt));
    default:
        return machineText(snapshot, context.style, context.verbose);
    }
}

/// What could not be read is told beside what was; and that there is nothing.
int judge(Context& context, const Snapshot& snapshot) {
    if (snapshot.details.empty()) {
        context.platform.console().writeError("no supported RAID controller was found\n");
        for (const UndrivenFunction& function : snapshot.undriven) {
            context.platform.console().writeError(
                emphasized("note:", Emphasis::heading, context.errorStyle) + " PCI " +
                printable(function.pci) + ": " + undrivenText(function) + "\n");
        }
    }
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (controller.failed) {
            const Finding* const first =
                controller.findings.empty() ? nullptr : &controller.findings.front();
            failWith(context,
                     "controller " + std::to_string(controller.number) + ": " +
                         printable(first == nullptr ? "it could not be read" : first->summary),
                     first == nullptr || first->help.empty() ? "" : first->help.front());
        }
    }
    return snapshot.isComplete() ? exit_code::done : exit_code::notPossible;
}

class Show {
  public:
    Show(Context& context, const ShowOptions& options) : context_(context), options_(options) {}

    int run() {
        if (!options_.file.empty()) {
            switch (fileKindOf(context_.platform, options_.file)) {
            case FileKind::plan:
                return showPlan(context_, options_.file);
            case FileKind::journal:
                return showJournal(context_, options_.file);
            case FileKind::certificate:
                return showCertificate(context_, options_.file);
            case FileKind::other:
                break;
            }
            context_.machine.recording = options_.file;
        }
        const int code = lookOnce();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            const std::string document = failedMachineDocument(
                context_.failures, {context_.argv, timestampOf(context_.platform.localTime())});
            return deliver(context_, document) ? code : exit_code::notPossible;
        }
        return code;
    }

  private:
    int lookOnce() {
        try {
            return lookAtMachine(context_, [this](Platform& machine, const Utilities& utilities) {
                return look(machine, utilities);
            });
        } catch (const NoSuchController& missing) {
            return failWith(context_, missing.what(), "zolexctl show lists those that there are");
        }
    }

    int look(Platform& machine, const Utilities& utilities) {
        const Snapshot snapshot = captureMachine(machine, captureRequest(context_, &utilities));
        const LocalTime readAt = machine.localTime();
        const int code = judge(context_, snapshot);
        isDelivered_ = true;
        if (context_.format == Format::policies) {
            const int written = showPolicies(context_, options_, snapshot, readAt);
            return code == exit_code::done ? written : code;
        }
        return deliver(context_, shown(context_, snapshot, readAt)) ? code : exit_code::notPossible;
    }

    Context& context_;
    const ShowOptions& options_;
    bool isDelivered_ = false;
};

} // namespace

int show(Context& context, const ShowOptions& options) {
    return Show(context, options).run();
}

} // namespace zolex::companion
