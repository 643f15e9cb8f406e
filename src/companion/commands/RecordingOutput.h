#pragma once

#include "companion/commands/Context.h"
#include "companion/json/RecordingFile.h"
#include "companion/recording/Recording.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace zolex::companion {

/// The file of a recording.
struct RecordingTarget {
    std::string name;
    std::string option; ///< that names it: "-o"
};

/// Makes a recording of what `fill` keeps, in a file beside the target: the target's name with
/// ".partial" behind it (".partial-2" and so on when there is one). When it is whole it takes the
/// target's place; until then a file that was there stays. Whatever ends the process meanwhile,
/// what was kept can be read beside it. Nothing stays beside when `fill` throws NoSuchController;
/// after any other fault what was kept stays, which is told. Faults of `fill` are passed on. A
/// device or a pipe is written as it is.
/// The bytes of the recording, or nothing after a message: then nothing was asked, or the recording
/// could not be written.
[[nodiscard]] std::optional<std::size_t>
makeRecording(Context& context, const RecordingTarget& target, const RecordingHeader& header,
              const std::function<void(RecordingWriter& writer)>& fill);

} // namespace zolex::companion
