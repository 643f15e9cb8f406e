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

class Doctor {
  public:
    explicit Doctor(Context& context) : context_(context) {}

    int run() {
        const int code = lookOnce();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            return deliver(context_, failedDoctorDocument(context_.failures, head()))
                       ? code
                       : exit_code::notPossible;
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
            return failWith(context_, missing.what(),
                            "zolexctl doctor looks at all that there are");
        }
    }

    int look(Platform& machine, const Utilities& utilities) {
        const Snapshot snapshot = captureMachine(machine, captureRequest(context_, &utilities));
        const std::vector<ExitCodeProbe> probes = probe(machine, snapshot);
        const Surroundings surroundings = {machine.localTime(), system::temporaryFolder()};
        const Examination examination = examine(snapshot, utilities, probes, surroundings);
        isDelivered_ = true;
        const std::string output =
            context_.format == Format::json
                ? doctorDocument(examination, snapshot, context_.errorStyle, head())
                : doctorText(examination, snapshot, context_.style, detail());
        if (!deliver(context_, output)) {
            return exit_code::notPossible;
        }
        return examination.hasFaults() ? exit_code::found : exit_code::done;
    }

    /// A recording that was made otherwise than by `record` may not hold the verb.
    std::vector<ExitCodeProbe> probe(Platform& machine, const Snapshot& snapshot) {
        try {
            return probeExitCodes(machine, snapshot, context_.machine.captureLimit);
        } catch (const LackingCall&) {
            return {};
        }
    }

    [[nodiscard]] DoctorDetail detail() const {
        return context_.quiet     ? DoctorDetail::findings
               : context_.verbose ? DoctorDetail::keys
                                  : DoctorDetail::usual;
    }

    [[nodiscard]] DocumentHead head() const {
        return {context_.argv, timestampOf(context_.platform.localTime())};
    }

    Context& context_;
    bool isDelivered_ = false;
};

} // namespace

int doctor(Context& context) {
    return Doctor(context).run();
}

} // namespace zolex::companion
