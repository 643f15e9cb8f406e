#pragma once

#include "foundation/Console.h"
#include "foundation/FileSystem.h"
#include "platform/CapturedOutput.h"
#include "platform/PciDeviceList.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zolex {

/// How the run of one child ended.
enum class ChildOutcome {
    noPipe,       ///< the pipe for its output could not be made
    notStarted,   ///< the command line could not be started
    stillRunning, ///< it had not ended at the limit (or waiting failed); it is left running
    ended,        ///< it ended within the limit: the exit code and the output are valid
    notClosed,    ///< it ended, but its handles could not be closed
};

/// The result of running one child; its fields are never mixed.
struct ChildResult {
    ChildOutcome outcome = ChildOutcome::notStarted;
    std::uint32_t exitCode = 0; ///< 0 to 4294967295, as the system gives it
    std::string output;         ///< standard output and standard error, in the order written
};

/// Bytes of the longest output that a child may have. One that writes more counts as still running
/// at the limit of its time, whether it stalls at the full pipe or ends.
inline constexpr std::size_t mostChildOutput = std::size_t{32} << 20U;

/// What the firmware tells of the machine. A text that it leaves out is empty.
struct FirmwareNames {
    std::string machineType;
    std::string serialNumber;
    /// What could not be read and why, a sentence without its full stop; empty when all could.
    std::string fault;
    friend bool operator==(const FirmwareNames&, const FirmwareNames&) = default;
};

/// A moment of local time. month 1 to 12, day 1 to 31, hour 0 to 23, minute and second 0 to 59.
/// offsetMinutes: how far it is ahead of UTC.
struct LocalTime {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int offsetMinutes = 0;
};

/// Everything that the program asks of the operating system. Tests and recorders stand here.
class Platform {
  public:
    virtual ~Platform() = default;

    virtual Console& console() = 0;
    virtual FileSystem& files() = 0;

    /// Starts `commandLine` with its standard output and standard error joined (discarded when
    /// `capture` is false) and no standard input, and waits up to `limit` for it to end. Takes up
    /// what the child writes while it waits.
    virtual ChildResult runChild(std::string_view commandLine, bool capture,
                                 std::chrono::milliseconds limit) = 0;

    /// The same, with `folder` as the current folder of the child; a platform that has no folders
    /// starts it where it is.
    virtual ChildResult runChildIn(const std::string& /*folder*/, std::string_view commandLine,
                                   bool capture, std::chrono::milliseconds limit) {
        return runChild(commandLine, capture, limit);
    }

    /// A list of this machine's PCI functions, not yet collected.
    virtual std::unique_ptr<PCI_DevList_VC> pciDevices() = 0;

    /// Sleeps for one second.
    virtual void pauseOneSecond() = 0;

    virtual LocalTime localTime() = 0;

    /// Asks the firmware for the names of the machine. A platform that cannot ask it tells nothing.
    virtual FirmwareNames firmware() { return {}; }
};

/// The platform of the system that this program was built for. Making it also makes the process fit
/// for the run: closed standard streams become the null device, and signals that end the process
/// remove its temporary files first. It comes before any file is opened.
std::unique_ptr<Platform> makeSystemPlatform();

} // namespace zolex
