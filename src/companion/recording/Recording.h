#pragma once

#include "companion/machine/Utilities.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A recording (.zrec): every question that a run has put to its machine, with the answer. It
/// stands in for the machine later.
namespace zolex::companion {

// Bounds of a recording that is read: what goes beyond is refused. What is written is not measured
// by them; a capture stays far below.
inline constexpr std::size_t mostRecordingBytes = std::size_t{512} << 20U;
inline constexpr std::size_t mostRecordedCalls = 100000;
/// Of one line, its output apart, which has the bound mostChildOutput.
inline constexpr std::size_t mostLineBesideOutput = std::size_t{1} << 20U;

/// The PCI functions were listed.
struct PciCall {
    std::vector<PciDevice> devices; ///< ids, places, classes and revisions alone
    std::size_t count = 0;          ///< as the list counts them
};

/// A child was run.
struct ChildCall {
    std::string command; ///< without blanks and line ends behind it
    bool capture = true;
    std::chrono::milliseconds limit{0};
    ChildResult result;
    std::chrono::milliseconds duration{0};
};

/// The run slept for one second.
struct PauseCall {};

struct LocalTimeCall {
    LocalTime time;
};

/// The firmware was asked for the names of the machine.
struct FirmwareCall {
    FirmwareNames names;
};

/// The utilities were looked for.
struct UtilitiesCall {
    Utilities found;
};

using CallKind =
    std::variant<PciCall, ChildCall, PauseCall, LocalTimeCall, FirmwareCall, UtilitiesCall>;

struct RecordedCall {
    CallKind call;
    std::int32_t line = 0; ///< of the file that it was read from, from 1; 0: of none
};

/// What a recording says of itself.
struct RecordingHeader {
    std::string toolVersion;       ///< of the zolexctl that made it
    std::vector<std::string> argv; ///< its arguments
    std::string madeAt;            ///< RFC 3339
    bool isRedacted = false;
    std::string system; ///< "linux", "windows"
};

struct Recording {
    RecordingHeader header;
    std::vector<RecordedCall> calls;
    bool isComplete = true; ///< its end was written
    std::string file;       ///< its name as it was given; empty: in memory
};

/// Who keeps the calls of a run.
class CallKeeper {
  public:
    virtual ~CallKeeper() = default;
    /// Called as soon as the call has its answer.
    virtual void keep(const CallKind& call) = 0;
};

/// Keeps them in memory.
class CallList : public CallKeeper {
  public:
    void keep(const CallKind& call) override { calls.push_back({call, 0}); }
    std::vector<RecordedCall> calls;
};

/// The command line as recordings name it: without blanks and line ends behind it.
[[nodiscard]] std::string_view recordedCommand(std::string_view commandLine);

/// What tells command lines apart: as recorded, and without the folder of the program, which may be
/// elsewhere when a recording is replayed.
[[nodiscard]] std::string callKey(std::string_view commandLine);

/// The call in words: `UTIL.BAT MEGACLI -pdList -a0`, `the list of PCI functions`.
[[nodiscard]] std::string callName(const CallKind& call);

/// How much is in a recording.
struct RecordingCounts {
    std::size_t utilityCalls = 0;
    std::size_t detectorCalls = 0;
    std::size_t pciFunctions = 0; ///< of the last list
    friend bool operator==(const RecordingCounts&, const RecordingCounts&) = default;
};
[[nodiscard]] RecordingCounts countCalls(const std::vector<RecordedCall>& calls);

} // namespace zolex::companion
