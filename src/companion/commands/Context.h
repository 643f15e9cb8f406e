#pragma once

#include "companion/execution/ExecutionSystem.h"
#include "companion/facts/Facts.h"
#include "companion/findings/Finding.h"
#include "companion/text/Terminal.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

struct Utilities;

/// Exit codes of zolexctl, the same for every command.
namespace exit_code {
inline constexpr int done = 0;
inline constexpr int found = 1;       ///< findings, a difference
inline constexpr int notPossible = 2; ///< bad option, unreadable file, a utility failed
inline constexpr int refused = 3;     ///< apply: nothing was changed
inline constexpr int stopped = 4;     ///< apply: something was changed
inline constexpr int different = 5;   ///< apply: what stands is not what was planned
} // namespace exit_code

enum class Format { text, json, svg, html, policies, concise, sarif, github };

/// The options that all commands which look at a machine have.
struct MachineOptions {
    std::string utilitiesFolder;                  ///< where UTIL.BAT and hwdetect.exe are; or empty
    std::map<std::string, std::string> utilities; ///< "MEGACLI" -> path
    std::vector<std::string> families;            ///< that are asked only by name: "MD"
    std::uint64_t leastDriveBytes = 0;            ///< as in Utilities
    std::string recording;                        ///< read instead of the machine; or empty
    std::string record;                           ///< file that keeps the calls; or empty
    std::vector<std::int32_t> controllers;        ///< numbers from 1; empty: all
    std::chrono::seconds captureLimit{300};       ///< for each reading child
    std::string machineType;                      ///< given instead of asked for; or empty
    std::string serialNumber;                     ///< the same
};

/// Pieces of work that have nothing to do with each other.
struct PiecesOfWork {
    std::size_t count = 0;
    std::int32_t jobs = 1; ///< how many may be done at the same time
    std::function<void(std::size_t index)> work;
    /// Told how many are done, by one thread at a time; may be empty.
    std::function<void(std::size_t done)> progress;
};

/// What a command has to work with.
struct Context {
    Platform& platform; ///< of the system
    MachineOptions machine;
    Format format = Format::text;
    std::string outputFile; ///< of -o; empty or "-": standard output
    TextStyle style;        ///< of what goes to standard output or the output file
    TextStyle errorStyle;   ///< of what goes to standard error
    bool quiet = false;
    bool verbose = false;
    std::vector<std::string> argv;   ///< arguments without the program's name
    std::vector<Finding> failures{}; ///< what failWith was told, for documents
    bool showsProgress = false;      ///< a line for each child of a capture on standard error
    bool canAsk = false;             ///< somebody reads standard error and types an answer
    bool rewritesLines = false;      ///< standard output is a terminal: a line can be written anew
    /// Makes what changes a machine; empty: that of the system.
    std::function<std::unique_ptr<ExecutionSystem>(Platform& system, const Utilities& utilities)>
        makeExecution{};
    /// As in CaptureRequest; asked of the machine itself alone.
    std::function<void(Facts& facts)> noteUses{};
    /// The same of those that are about to be deleted: more is done to find out.
    std::function<void(Facts& facts)> noteHolders{};
    /// Does pieces of work side by side; empty: one after another.
    std::function<void(const PiecesOfWork& pieces)> doPieces{};
};

/// Writes what the command gives: to standard output, or to the output file, which is replaced as a
/// whole or, when that fails, stays as it was. False after a message on standard error.
[[nodiscard]] bool deliver(Context& context, std::string_view output);

/// Whether all that went to standard output so far was written; a message on standard error when it
/// was not, once.
[[nodiscard]] bool outputIsWritten(Context& context);

/// "error: WHAT" and "  help: HELP" on standard error; it is kept in `failures` too. Always
/// exit_code::notPossible.
int failWith(Context& context, std::string_view what, std::string_view help = {});

} // namespace zolex::companion
