#pragma once

#include "companion/recording/Recording.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace zolex::companion {

/// The recording does not hold what the run asks for. The text names the call, and where there is
/// one the recorded call that stands in its place: "server.zrec does not hold the call
/// UTIL.BAT MEGACLI -CFGCLR -a0".
class LackingCall : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// How a run's calls are found in a recording.
enum class ReplayMode {
    keyed,  ///< the n-th call of a command line has the n-th answer recorded for it, or the last
    strict, ///< the calls are those of the recording, in its order
};

/// A machine that answers as it did when it was recorded. Nothing is started, and a pause takes no
/// time. Console and files are those of the system. A call without an answer throws LackingCall.
class ReplayPlatform : public Platform {
  public:
    /// `recording` outlives this.
    ReplayPlatform(const Recording& recording, Platform& system,
                   ReplayMode mode = ReplayMode::keyed);

    Console& console() override { return system_.console(); }
    FileSystem& files() override { return system_.files(); }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override;
    void pauseOneSecond() override;
    /// When the recording holds no time, the one at which it was made.
    LocalTime localTime() override;
    FirmwareNames firmware() override;

    /// The utilities that were found; none when the recording does not tell.
    [[nodiscard]] Utilities utilities() const;

  private:
    class Devices;
    /// The recorded calls of one key, and how many of them were answered.
    struct Answers {
        std::vector<std::size_t> calls;
        std::size_t used = 0;
    };

    /// The recorded call that answers `wanted`. Throws LackingCall when there is none.
    const CallKind& answerTo(const CallKind& wanted);
    /// Whether a command line is of a family that the machine did not have, or that was not known
    /// when it was recorded: it cannot be started.
    [[nodiscard]] bool isOfAbsentFamily(std::string_view commandLine) const;
    const CallKind& nextAnswer(const CallKind& wanted);
    [[nodiscard]] std::string fileName() const;

    const Recording& recording_;
    Platform& system_;
    ReplayMode mode_;
    std::map<std::string, Answers> answers_;
    std::size_t next_ = 0; ///< of a strict replay
};

/// The time at the beginning of an RFC 3339 text; the default time when it is none.
[[nodiscard]] LocalTime timeOfStamp(std::string_view stamp);

} // namespace zolex::companion
