#include "companion/commands/Commands.h"

#include "commands/CommandSource.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/RecordingOutput.h"
#include "companion/json/RecordingLines.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Examination.h"
#include "companion/machine/ReadOnlyPlatform.h"
#include "companion/recording/RecordingPlatform.h"
#include "companion/recording/Redaction.h"
#include "companion/recording/ReplayPlatform.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Sizes.h"
#include "foundation/Report.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

/// Keeps the calls in memory and, where there is a file, in it.
class Keeper : public CallKeeper {
  public:
    explicit Keeper(RecordingWriter* writer) : writer_(writer) {}

    void keep(const CallKind& call) override {
        if (writer_ != nullptr) {
            writer_->keep(call);
        }
        list.keep(call);
    }

    CallList list;

  private:
    RecordingWriter* writer_; ///< null: in memory alone
};

/// Asks what the commands of zolexctl and zolex ask of a machine, and the capture did not.
class FurtherCalls {
  public:
    FurtherCalls(Platform& recorder, const CallList& kept, std::chrono::milliseconds limit)
        : machine_(recorder), kept_(kept), limit_(limit) {}

    void ask(const Snapshot& snapshot) {
        tryTo([this] { machine_.localTime(); });
        if (!isKept<FirmwareCall>()) {
            tryTo([this] { machine_.firmware(); });
        }
        SilentReport silent;
        GetConfigFiles source({.style = {}, .withLayout = true, .scriptPrefix = {}}, silent);
        for (const ControllerSnapshot& controller : snapshot.details) {
            askListings(snapshot, controller, source);
        }
        tryTo([&] { static_cast<void>(probeExitCodes(machine_, snapshot, limit_)); });
    }

  private:
    /// Those that the capture left out behind one that failed: zolex may ask them alone.
    void askListings(const Snapshot& snapshot, const ControllerSnapshot& controller,
                     GetConfigFiles& source) {
        const RAIDController* const record = snapshot.controllers.controller(controller.index);
        if (record == nullptr || record->scanOrder() < 1) {
            return;
        }
        for (std::size_t i = 0; i < source.numberOfCommands(*record); ++i) {
            const CString line = source.getCommand(*record, controller.number, i);
            if (!isKeptLine(line.view())) {
                for (int s = 0; s < traitsOf(record->type()).secondsBeforeCommand; ++s) {
                    machine_.pauseOneSecond();
                }
                tryTo([&] { machine_.runChild(line.view(), true, limit_); });
            }
        }
    }

    [[nodiscard]] bool isKeptLine(std::string_view commandLine) const {
        const std::string key = callKey(commandLine);
        return std::any_of(kept_.calls.begin(), kept_.calls.end(),
                           [&](const RecordedCall& recorded) {
                               const auto* const child = std::get_if<ChildCall>(&recorded.call);
                               return child != nullptr && callKey(child->command) == key;
                           });
    }

    /// A recording that stands in for the machine has no more than it has.
    template <typename Ask>
    static void tryTo(Ask ask) {
        try {
            ask();
        } catch (const LackingCall&) {
            return;
        }
    }

    template <typename Call>
    [[nodiscard]] bool isKept() const {
        return std::any_of(kept_.calls.begin(), kept_.calls.end(), [](const RecordedCall& call) {
            return std::holds_alternative<Call>(call.call);
        });
    }

    ReadOnlyPlatform machine_;
    const CallList& kept_;
    std::chrono::milliseconds limit_;
};

/// "11.4 KB".
std::string shortSize(std::size_t bytes) {
    constexpr std::size_t kilobyte = 1024;
    if (bytes >= kilobyte * kilobyte) {
        return sizeText(std::uint64_t{bytes});
    }
    const std::size_t tenths = (bytes * 10 + kilobyte / 2) / kilobyte;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " KB";
}

std::string countsText(const Snapshot& snapshot, const std::vector<RecordedCall>& calls,
                       std::size_t bytes) {
    const RecordingCounts counts = countCalls(calls);
    return countText(snapshot.count(), "controller", "controllers") + ", " +
           countText(counts.utilityCalls, "utility call", "utility calls") + ", " +
           countText(counts.detectorCalls, "detector call", "detector calls") + ", " +
           countText(counts.pciFunctions, "PCI function", "PCI functions") + ", " +
           shortSize(bytes) + "\n";
}

/// "12 serial numbers and 8 addresses were replaced by made-up ones (same length, same order)".
std::string redactionText(const Redactor& redactor) {
    std::vector<std::string> parts;
    const auto add = [&parts](std::size_t count, const char* one, const char* many) {
        if (count > 0) {
            parts.push_back(countText(count, one, many));
        }
    };
    add(redactor.serialNumbers(), "serial number", "serial numbers");
    add(redactor.addresses(), "address", "addresses");
    add(redactor.names(), "name", "names");
    if (parts.empty()) {
        return "no serial number was found that could be replaced\n";
    }
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ";
        text += parts[i];
    }
    const bool isOne = redactor.serialNumbers() + redactor.addresses() + redactor.names() == 1;
    return text + (isOne ? " was replaced by a made-up one" : " were replaced by made-up ones") +
           "\n(same length, same order)\n";
}

/// What failed, one warning for each controller. False when nothing did.
bool tellFailures(Context& context, const Snapshot& snapshot) {
    bool failed = false;
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (!controller.failed) {
            continue;
        }
        failed = true;
        const std::string what = controller.findings.empty()
                                     ? std::string("could not be captured")
                                     : printable(controller.findings.front().summary);
        context.platform.console().writeError(
            emphasized("warning:", Emphasis::warning, context.errorStyle) + " controller " +
            std::to_string(controller.number) + ": " + what + "; the recording holds the call\n");
    }
    return failed;
}

class Recorder {
  public:
    Recorder(Context& context, const RecordOptions& options)
        : context_(context), options_(options) {}

    int run(Platform& machine, const Utilities& utilities) {
        Recording recording;
        recording.header = recordingHeader(context_, machine.localTime());
        Snapshot snapshot;
        const auto fill = [&](RecordingWriter* writer) {
            Keeper keeper(writer);
            keeper.keep(UtilitiesCall{utilities});
            snapshot = capture(machine, utilities, keeper);
            recording.calls = std::move(keeper.list.calls);
        };
        std::string text;
        if (options_.redact) {
            fill(nullptr);
            text = writeRedacted(snapshot, recording);
        } else if (const auto bytes =
                       makeRecording(context_, {context_.outputFile, "-o"}, recording.header,
                                     [&fill](RecordingWriter& writer) { fill(&writer); })) {
            text = countsText(snapshot, recording.calls, *bytes);
        }
        if (text.empty()) {
            return exit_code::notPossible;
        }
        if (!context_.quiet) {
            tell(text);
        }
        return judge(snapshot);
    }

  private:
    /// A recording that goes to a device may be read from there: nothing else goes to standard
    /// output then.
    void tell(const std::string& text) {
        Console& console = context_.platform.console();
        const std::string name = output_file::systemName(context_.outputFile);
        if (output_file::standing(name) == output_file::Standing::device) {
            console.writeError(text);
        } else {
            console.writeOutput(text);
        }
    }

    Snapshot capture(Platform& machine, const Utilities& utilities, Keeper& keeper) {
        RecordingPlatform recorder(machine, keeper);
        const CaptureRequest request = captureRequest(context_, &utilities);
        Snapshot snapshot = captureMachine(recorder, request);
        FurtherCalls(recorder, keeper.list, request.limit).ask(snapshot);
        return snapshot;
    }

    /// What is to be said; empty after a message.
    std::string writeRedacted(const Snapshot& snapshot, Recording& recording) {
        Secrets secrets = secretsOf(snapshot);
        addRecordedSecrets(recording.calls, secrets);
        const Redactor redactor(secrets, randomKey());
        redact(recording, redactor);
        const std::string text = recordingText(recording);
        if (!deliver(context_, text)) {
            return {};
        }
        return countsText(snapshot, recording.calls, text.size()) + redactionText(redactor);
    }

    int judge(const Snapshot& snapshot) {
        if (snapshot.count() == 0) {
            return failWith(context_, "no supported RAID controller was found",
                            "the recording holds the PCI functions of this machine all the same");
        }
        return tellFailures(context_, snapshot) ? exit_code::found : exit_code::done;
    }

    Context& context_;
    const RecordOptions& options_;
};

} // namespace

int record(Context& context, const RecordOptions& options) {
    if (context.outputFile.empty() || context.outputFile == "-") {
        return failWith(context, "record needs a file", "zolexctl record -o server.zrec");
    }
    try {
        return lookAtMachine(context, [&](Platform& machine, const Utilities& utilities) {
            return Recorder(context, options).run(machine, utilities);
        });
    } catch (const NoSuchController& missing) {
        return failWith(context, missing.what(), "zolexctl show lists those that there are");
    }
}

} // namespace zolex::companion
