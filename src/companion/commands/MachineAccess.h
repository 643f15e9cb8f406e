#pragma once

#include "companion/commands/Context.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Snapshot.h"
#include "companion/machine/Utilities.h"
#include "companion/recording/Recording.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Looks at what the options name: at the machine, or at the recording in its place. `look` gets
/// the platform that answers, in zolex's command lines, and the utilities that were found; its
/// result is the exit code. With --record the calls are kept meanwhile. When the recording cannot
/// be read or written, or lacks a call: a message, and exit_code::notPossible. NoSuchController is
/// passed on; then nothing is kept.
int lookAtMachine(Context& context,
                  const std::function<int(Platform& machine, const Utilities& utilities)>& look);

/// The programs that are there, and what the options say of them.
[[nodiscard]] Utilities utilitiesOf(Context& context);

/// What of the machine the options ask for, with a line for each child where the context shows
/// progress. `context` and `utilities` outlive what is returned.
[[nodiscard]] CaptureRequest captureRequest(Context& context, const Utilities* utilities);

/// A recording in the place of a machine, with the console and the files of `system`. Nothing,
/// after a message, when it cannot be read. Notes and warnings about it go to standard error.
[[nodiscard]] std::optional<Recording> loadRecording(Context& context, const std::string& file);

/// The recordings that a path names: itself, or all files "*.zrec" of a folder in the order of
/// their names.
[[nodiscard]] std::vector<std::string> recordingsOf(const std::string& path);

/// A recorded machine while it is looked at.
struct Recorded {
    const RecordingHeader& header;
    Platform& machine; ///< that answers from the recording
    const CaptureRequest& request;
    Snapshot snapshot;
};

/// Has `look` look at the machine of a recording. What is wrong with the recording is the result;
/// notes and warnings about it are put into `told`. Nothing is written: several threads may look at
/// recordings at the same time.
[[nodiscard]] std::optional<Finding>
lookAtRecorded(Context& context, const std::string& file, std::vector<Finding>& told,
               const std::function<void(Recorded machine)>& look);

/// A machine that was recorded.
struct RecordedMachine {
    std::string file;
    Snapshot snapshot;
};

struct RecordedMachines {
    std::vector<RecordedMachine> machines;
    std::vector<Finding> faults; ///< a recording that cannot be read, a folder that has none
};

/// The machines of recordings, or of all files "*.zrec" of a folder in the order of their names.
/// Those that cannot be read are left out and told in the result; notes and warnings go to standard
/// error.
[[nodiscard]] RecordedMachines loadMachines(Context& context,
                                            const std::vector<std::string>& paths);

/// What a recording that is made now says of itself.
[[nodiscard]] RecordingHeader recordingHeader(Context& context, const LocalTime& now);

/// "note: server.zrec:7:1: the last line was cut and is left out [ZR107]", with its line end.
[[nodiscard]] std::string findingLine(const Finding& finding, const TextStyle& style);

} // namespace zolex::companion
