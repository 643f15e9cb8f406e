#pragma once

#include "model/StorcliController.h"
#include "storcli/Value.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zolex_sim::storcli {

/// Error codes: those of the firmware, and the utility's own.
constexpr int invalidParameter = 3;
constexpr int configurationConflict = 11;
constexpr int driveTooSmall = 13;
constexpr int tooManyVolumes = 26;
constexpr int volumeNotOptimal = 27;
constexpr int tooManySpares = 31;
constexpr int mixedInterfaces = 38;
constexpr int driveAnswersNot = 46;
constexpr int wrongState = 50;
constexpr int foreignIncomplete = 59;
constexpr int cachePinned = 84;
constexpr int ownRefusal = 255;

/// Why something is not done.
struct Refusal {
    int code = ownRefusal;
    std::string message;
};

/// What one controller answers to a command.
struct Reply {
    std::optional<std::size_t> controller; ///< absent: the answer is about all
    std::string description = "None";
    Value details = Value::list(); ///< a row for each thing that was asked for
    Value data = Value::object();
    int errorCode = 0; ///< the first one that is not 0
    bool changed = false;

    /// Ends the command with a code and nothing but its text.
    void fail(const Refusal& refusal) {
        description = refusal.message;
        errorCode = errorCode != 0 ? errorCode : refusal.code;
    }
    /// Adds the row of a thing, done or not. Old versions have no text for codes of the firmware.
    void tell(Version version, const std::string& key, const Value& thing,
              const std::optional<Refusal>& refusal);
};

/// The answer as the utility prints it.
std::string jsonText(const std::vector<Reply>& replies, Version version);
std::string plainText(const std::vector<Reply>& replies, Version version);

} // namespace zolex_sim::storcli
