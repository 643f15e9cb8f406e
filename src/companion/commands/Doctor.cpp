#include "companion/commands/Commands.h"
#include "companion/commands/DoctorText.h"
#include "companion/commands/MachineAccess.h"
#include "companion/json/DoctorDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Examination.h"
#include "companion/recording/ReplayPlatform.h"
#include "companion/text/Timestamp.h"

namespace zolex::companion {

namespace {

/// A recording that was made otherwise than by `record` may not hold the verb.
std::vector<ExitCodeProbe> probe(Context& context, Platform& machine, const Snapshot& snapshot) {
    try {
        return probeExitCodes(machine, snapshot, context.machine.captureLimit);
    } catch (const LackingCall&) {
        return {};
    }
}

int examineMachine(Context& context, Platform& machine, const Utilities& utilities) {
    const Snapshot snapshot = captureMachine(machine, captureRequest(context));
    const std::vector<ExitCodeProbe> probes = probe(context, machine, snapshot);
    const Surroundings surroundings = {machine.localTime(), system::temporaryFolder()};
    const Examination examination = examine(snapshot, utilities, probes, surroundings);
    const std::string output =
        context.format == Format::json
            ? doctorDocument(examination, snapshot, context.errorStyle,
                             {context.argv, timestampOf(context.platform.localTime())})
            : doctorText(examination, snapshot, context.style, context.verbose);
    if (!deliver(context, output)) {
        return exit_code::notPossible;
    }
    return examination.hasFaults() ? exit_code::found : exit_code::done;
}

} // namespace

int doctor(Context& context) {
    return lookAtMachine(context, [&context](Platform& machine, const Utilities& utilities) {
        try {
            return examineMachine(context, machine, utilities);
        } catch (const NoSuchController& missing) {
            return failWith(context, missing.what(), "zolexctl doctor looks at all of them");
        }
    });
}

} // namespace zolex::companion
