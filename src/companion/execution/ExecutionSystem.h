#pragma once

#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zolex::companion {

/// A process, and what tells it from a later one of the same number.
struct ProcessIdentity {
    std::uint64_t pid = 0;
    std::string startedAt; ///< as the system counts it, an opaque text; empty: not told
    friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
};

/// A child that was started and has not been waited for to its end.
class StartedChild {
  public:
    virtual ~StartedChild() = default;
    [[nodiscard]] virtual ProcessIdentity identity() const = 0;
    /// Waits up to `limit` for its end; ends early at the moment in which the user interrupts, and
    /// waits on when it is called again. Nothing: it runs.
    /// Whatever becomes of this object, the child runs on to its end and can write its output.
    [[nodiscard]] virtual std::optional<ChildResult> wait(std::chrono::milliseconds limit) = 0;
    /// What it has written so far, at most `most` bytes of its begin.
    [[nodiscard]] virtual std::string outputSoFar(std::size_t most) = 0;
};

/// A file that only grows. What was appended is on the disk when append has come back.
class DurableFile {
  public:
    virtual ~DurableFile() = default;
    /// False when it could not be written or could not be brought to the disk.
    [[nodiscard]] virtual bool append(std::string_view bytes) = 0;
};

/// A lock that this process holds. It ends on destruction, and with the process however that ends.
/// Its file goes with it, unless a child is noted that may still run: then the file stays, held by
/// nobody, and the next one who asks for the lock is told of the child.
class RunLock {
  public:
    virtual ~RunLock() = default;
    /// Notes a child that may outlive this process; {} when there is none any more.
    virtual void note(const ProcessIdentity& child) = 0;
};

/// What came of asking for a lock.
struct LockAnswer {
    std::unique_ptr<RunLock> lock; ///< null: not had
    /// Who holds it, or who held it and is gone without letting it go. {} when nobody did.
    ProcessIdentity holder;
    ProcessIdentity child; ///< that the holder noted last
    std::string fault;     ///< why it is not had, when nobody holds it: "no space is left"
};

/// How often the user asked for the end: Ctrl-C, Ctrl-Break, SIGINT, SIGTERM, SIGHUP, the end of
/// the console. At the second the process ends at once.
enum class Interruption { none, asked };

/// What is asked of the system to change a machine, beside Platform. Tests stand here.
class ExecutionSystem {
  public:
    virtual ~ExecutionSystem() = default;

    /// Starts a command line as zolex writes it ("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT") in a
    /// process group of its own, without standard input. Its output goes to the file `output`,
    /// which is made anew, so that it outlives this process unharmed, and stays until it is removed
    /// by whoever has read it. A command line that makes its utility write files into the current
    /// folder runs in a new one beside the output. Null when it cannot be started.
    virtual std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                                const std::string& output) = 0;
    /// Removes the folder of a child that wrote to `output` and has ended, if it had one.
    virtual void removeFolder(const std::string& output) = 0;
    [[nodiscard]] virtual ProcessIdentity ownProcess() = 0;
    /// Whether this very process still runs.
    [[nodiscard]] virtual bool isRunning(const ProcessIdentity& process) = 0;
    [[nodiscard]] virtual Interruption interruption() = 0;
    /// Ends early when the user interrupts.
    virtual void sleep(std::chrono::milliseconds time) = 0;
    /// Waits until a line stands on the terminal that is standard input, or its end. False when the
    /// user interrupts first, or has done so already: nothing is to be read then.
    [[nodiscard]] virtual bool awaitLine() { return interruption() == Interruption::none; }
    /// The time since some moment, which never goes back.
    [[nodiscard]] virtual std::chrono::milliseconds elapsed() = 0;
    /// RFC 3339, local time with its offset.
    [[nodiscard]] virtual std::string timestamp() = 0;
    [[nodiscard]] virtual std::string userName() = 0;

    /// `name` is a file that is made for it; links are not followed.
    virtual LockAnswer lock(const std::string& name) = 0;
    /// A file that must not be there yet, with its folder's entry on the disk; null when that
    /// fails or it is there.
    virtual std::unique_ptr<DurableFile> makeDurable(const std::string& name) = 0;
    /// One that is there, to be gone on with behind its first `keep` bytes; what stands behind
    /// them (a torn line) is cut off.
    virtual std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                                       std::uint64_t keep) = 0;
    /// The folder for files that all runs on this machine can find, without a separator at its end:
    /// TMPDIR, else /tmp; TEMP on Windows.
    [[nodiscard]] virtual std::string commonFolder() = 0;
    /// Whether `file` lies on a disk that a restart empties: the RAM disk of a Windows
    /// pre-installation environment. False where that is not known.
    [[nodiscard]] virtual bool isLostAtRestart(const std::string& file) = 0;
};

} // namespace zolex::companion
