#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Snapshot.h"
#include "companion/machine/System.h"
#include "companion/machine/Utilities.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// What a verb that no utility has came to.
struct ExitCodeProbe {
    std::string utility;
    std::string command;
    ChildOutcome outcome = ChildOutcome::notStarted;
    std::uint32_t exitCode = 0;

    /// Whether the utility, or what starts it, ended it as if it had succeeded.
    [[nodiscard]] bool isLost() const { return hasEnded() && exitCode == 0; }
    [[nodiscard]] bool hasEnded() const {
        return outcome == ChildOutcome::ended || outcome == ChildOutcome::notClosed;
    }
};

/// Sends the verb to each utility that a controller of the snapshot needs.
[[nodiscard]] std::vector<ExitCodeProbe>
probeExitCodes(Platform& platform, const Snapshot& snapshot, std::chrono::milliseconds limit);

/// One utility, of the seven or of a family.
struct UtilityCheck {
    enum class State {
        ok,
        unused,  ///< there, and no controller needs it
        absent,  ///< not there, and no controller needs it
        missing, ///< not there, and needed
        failed,  ///< there, and does not do
    };
    std::string name; ///< "MEGACLI"
    State state = State::absent;
    std::string program;                   ///< path of what is started; empty: nothing
    bool usesWrapper = false;              ///< that is UTIL.BAT
    std::vector<std::int32_t> controllers; ///< numbers of those that need it
    std::optional<ExitCodeProbe> probe;
};

/// What is wrong, and with what: "controller 1", "MEGACLI", "UTIL.BAT", "hwdetect.exe", "machine",
/// "clock", "temporary folder".
struct SubjectFinding {
    std::string subject;
    Finding finding;
};

/// What is around the utilities.
struct Surroundings {
    LocalTime clock;
    system::TemporaryFolder temporaryFolder;
};

/// Whether everything is there that zolexctl needs, and whether it is understood.
struct Examination {
    std::string wrapper;  ///< path of UTIL.BAT; empty: none
    std::string detector; ///< path of hwdetect.exe; empty: none
    Surroundings surroundings;
    std::vector<UtilityCheck> utilities;
    std::vector<SubjectFinding> findings; ///< of the machine, its controllers and all below

    /// Whether there is an error or a warning.
    [[nodiscard]] bool hasFaults() const;
    /// Whether the exit codes that come through UTIL.BAT are lost; nothing: not known.
    [[nodiscard]] std::optional<bool> wrapperLosesCodes() const;
};

/// What is to be said of a controller on the bus that no utility tells of, and what to do.
[[nodiscard]] std::string undrivenText(const UndrivenFunction& function);
[[nodiscard]] std::string undrivenHelp(const UndrivenFunction& function);

[[nodiscard]] Examination examine(const Snapshot& snapshot, const Utilities& utilities,
                                  const std::vector<ExitCodeProbe>& probes,
                                  const Surroundings& surroundings);

} // namespace zolex::companion
