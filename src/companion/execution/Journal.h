#pragma once

#include "companion/execution/ExecutionSystem.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Sha256.h"
#include "platform/Platform.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What a run that changes a machine notes, each event on the disk before the next action.
namespace zolex::companion {

/// What became of one controller.
struct ControllerResult {
    enum class Result { configured, already, skipped, failed };
    std::int32_t number = 0; ///< of the controller
    Result result = Result::failed;
    std::int32_t step = 0; ///< of failed: the step of the plan, from 1; 0: none was begun
    std::int32_t of = 0;   ///< how many steps the plan has
    std::string reason;    ///< of skipped and failed, for people
    friend bool operator==(const ControllerResult&, const ControllerResult&) = default;
};
/// "configured", "already", "skipped", "failed".
[[nodiscard]] std::string_view controllerResultWord(ControllerResult::Result result);

struct JournalBegin {
    std::string planId;
    std::string planHash; ///< SHA-256 of the plan's bytes
    std::string planFile; ///< as it was named; empty: made in this run, see planText
    std::string planText; ///< the document of a plan that stands in no file; else empty
    Fingerprint fingerprint;
    std::string toolVersion;
    ProcessIdentity process;
    std::string consent;                   ///< code of the plan; empty: nothing is lost
    std::int32_t steps = 0;                ///< of the plan
    std::vector<std::int32_t> controllers; ///< that are asked for; empty: all
    bool allowSkipped = false;
};

enum class CapturePurpose { guard, resume, step, verify };
/// "guard", "resume", "step", "verify".
[[nodiscard]] std::string_view capturePurposeWord(CapturePurpose purpose);

struct JournalCaptured {
    CapturePurpose purpose = CapturePurpose::guard;
    std::string state;                           ///< of the fingerprint
    std::map<std::int32_t, std::string> layouts; ///< hash, by the controller's number
    std::string recording;                       ///< name of the file; or empty
};

struct JournalAgreed {
    std::string code;
    std::string how; ///< "typed-serial", "typed-code", "option", "own", "any"
    std::string by;  ///< name of the user
};

struct JournalStepStarted {
    std::int32_t step = 0;
    std::int32_t controller = 0;
    std::string command;
    std::string expectedBefore; ///< hash; empty: not rehearsed
    std::string expectedAfter;
    std::int32_t attempt = 1;
};

struct JournalChild {
    std::int32_t step = 0;
    ProcessIdentity process;
    std::string output; ///< file that has what it writes
};

struct JournalStepEnded {
    std::int32_t step = 0;
    ChildOutcome outcome = ChildOutcome::ended;
    std::uint32_t exitCode = 0;
    bool accepted = false;
    std::int64_t durationMs = 0;
    std::string output;            ///< its first 64 KB
    std::uint64_t outputBytes = 0; ///< how long it is in whole
    std::string reason;  ///< why it is not accepted, where the utility's words tell; or empty
    std::string instead; ///< the command line that is run in its place, as it has done nothing
};

/// Of a resumption: the layout says that the step has done its work.
struct JournalStepFoundDone {
    std::int32_t step = 0;
    std::string why;
};

struct JournalVerified {
    enum class Result { asPlanned, equivalent, different, unknown };
    Result result = Result::unknown;
    std::vector<std::string> lines; ///< differences, equivalences, or why it is not known
};
/// "as-planned", "equivalent", "different", "unknown".
[[nodiscard]] std::string_view verifiedWord(JournalVerified::Result result);

struct JournalEnd {
    int exitCode = 0;
    std::vector<ControllerResult> results;
    std::string reason; ///< of another code than 0: for people, one sentence
};

using JournalEvent =
    std::variant<JournalBegin, JournalCaptured, JournalAgreed, JournalStepStarted, JournalChild,
                 JournalStepEnded, JournalStepFoundDone, JournalVerified, JournalEnd>;
/// The words of the events, in the order of the variant.
inline constexpr std::array<std::string_view, std::variant_size_v<JournalEvent>> journalEventWords =
    {"begin",      "captured",        "agreed",   "step-started", "child",
     "step-ended", "step-found-done", "verified", "end"};
[[nodiscard]] std::string_view journalEventWord(const JournalEvent& event);

/// Bytes of a step's output that are kept.
inline constexpr std::size_t mostJournalOutput = std::size_t{64} << 10U;

/// One that was read back.
struct JournalEntry {
    std::uint64_t seq = 0; ///< from 1
    std::string at;        ///< RFC 3339
    JournalEvent event;
};

/// A journal that was read: its begin, and all that stands behind it. Whole lines alone.
struct JournalHistory {
    std::string file;
    std::vector<JournalEntry> entries; ///< the first is a JournalBegin
    std::string lastHash;              ///< SHA-256 of the last line, for the next one
    std::uint64_t lastSeq = 0;         ///< of the last line, which may be one that is passed over
    Sha256 hash;                       ///< over the bytes of all whole lines; to be gone on with
    std::uint64_t bytes = 0;           ///< of all whole lines
    bool isTorn = false;               ///< a last line was cut and is left out

    [[nodiscard]] const JournalBegin& begin() const;
    /// The last `end`, when nothing but captures stands behind it; null: the run was interrupted.
    [[nodiscard]] const JournalEnd* end() const;
};

/// Keeps events. An event is on the disk when write has come back.
class JournalKeeper {
  public:
    virtual ~JournalKeeper() = default;
    /// False when it cannot be written: nothing more may be done to the machine.
    [[nodiscard]] virtual bool write(const JournalEvent& event) = 0;
};

} // namespace zolex::companion
