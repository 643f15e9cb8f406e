#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Sha256.h"
#include "companion/recording/Recording.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Recordings as texts: JSON, one object a line. Line ends are LF; a CR before one is no part of
/// the line.
namespace zolex::companion {

// One line each, without its line end. `seq` counts the lines behind the first, from 1.
[[nodiscard]] std::string recordingHeaderLine(const RecordingHeader& header);
[[nodiscard]] std::string recordingCallLine(std::size_t seq, const CallKind& call);
/// `sha256` is that of all lines before, each with a LF.
[[nodiscard]] std::string recordingEndLine(std::size_t calls, const std::string& sha256);

/// The hash as the last line tells it: 64 hexadecimal digits.
[[nodiscard]] std::string hexDigits(const Sha256::Digest& digest);

/// The whole text, with its end.
[[nodiscard]] std::string recordingText(const Recording& recording);

/// What came of reading a recording.
struct RecordingReading {
    std::optional<Recording> recording; ///< nothing: it cannot be read; the last finding says why
    std::vector<Finding> findings;      ///< beside that: notes and warnings, in the order of lines
};

/// Reads the text of a file. What a later minor version may have added is passed over. A last line
/// that was cut is left out, with a note.
[[nodiscard]] RecordingReading readRecording(std::string_view text, std::string_view fileName);

} // namespace zolex::companion
