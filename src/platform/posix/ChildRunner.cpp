#include "platform/posix/ChildRunner.h"

#include "platform/ChildOutput.h"
#include "platform/CommandLineSplit.h"
#include "platform/ProgramLookup.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/ProcessStart.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zolex::posix {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// The pipe from the child to this process. Neither end outlives an exec.
struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;

    bool open() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            return false;
        }
        readEnd = FileDescriptor(ends[0]);
        writeEnd = FileDescriptor(ends[1]);
        return true;
    }
};

/// Gives SIGCHLD its default action while it lives. Where the signal is ignored (a parent can hand
/// that down), the system forgets the exit codes of children.
class DefaultChildSignal {
  public:
    DefaultChildSignal() {
        struct sigaction action = {};
        action.sa_handler = SIG_DFL;
        ::sigaction(SIGCHLD, &action, &before_);
    }
    DefaultChildSignal(const DefaultChildSignal&) = delete;
    DefaultChildSignal& operator=(const DefaultChildSignal&) = delete;
    ~DefaultChildSignal() { ::sigaction(SIGCHLD, &before_, nullptr); }

  private:
    struct sigaction before_ = {};
};

/// What stands on the descriptors 0, 1 and 2 of the child.
class ChildStreams {
  public:
    ChildStreams() { ready_ = ::posix_spawn_file_actions_init(&actions_) == 0; }
    ChildStreams(const ChildStreams&) = delete;
    ChildStreams& operator=(const ChildStreams&) = delete;
    ~ChildStreams() { ::posix_spawn_file_actions_destroy(&actions_); }

    /// No input, and output and errors to `output`, or to nowhere when that is -1. The output comes
    /// first: its descriptor may itself be 0 in a process that was started without an input.
    bool set(int output) {
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            ready_ = ready_ && (output >= 0 ? ::posix_spawn_file_actions_adddup2(&actions_, output,
                                                                                 stream) == 0
                                            : open(stream, O_WRONLY));
        }
        return ready_ && open(STDIN_FILENO, O_RDONLY);
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    bool open(int stream, int mode) {
        return ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0) == 0;
    }

    posix_spawn_file_actions_t actions_{};
    bool ready_ = false;
};

/// The signals that the program ignores have their default action in the child.
class ChildSignals {
  public:
    ChildSignals() {
        const sigset_t signals = signalsOfChildren();
        ready_ = ::posix_spawnattr_init(&attributes_) == 0 &&
                 ::posix_spawnattr_setsigdefault(&attributes_, &signals) == 0 &&
                 ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF) == 0;
    }
    ChildSignals(const ChildSignals&) = delete;
    ChildSignals& operator=(const ChildSignals&) = delete;
    ~ChildSignals() { ::posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return ready_ ? &attributes_ : nullptr; }

  private:
    posix_spawnattr_t attributes_{};
    bool ready_ = false;
};

bool isRegularFile(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isExecutable(const std::string& path) {
    return isRegularFile(path) && ::access(path.c_str(), X_OK) == 0;
}

/// The directory of the running executable; empty when it cannot be had.
std::string ownDirectory() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0) {
        return {};
    }
    const std::string path(buffer.data(), static_cast<std::size_t>(length));
    return path.substr(0, path.rfind('/') + 1);
}

/// Whether the file does not name the program that is to read it in a "#!" line.
bool isForTheShell(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 2> start{};
    return file.isOpen() && isRegularFile(path) &&
           !(::read(file.get(), start.data(), start.size()) == 2 && start[0] == '#' &&
             start[1] == '!');
}

/// Executables come first. A batch file needs no permission on the systems that it is written for,
/// so that a plain file will do where there is no executable.
std::optional<std::string> lookUp(const std::string& program) {
    const std::string directory = ownDirectory();
    const char* const path = std::getenv("PATH");
    const ProgramPlaces places{directory, path == nullptr ? "/bin:/usr/bin" : path};
    const auto executable = findProgram(program, places, isExecutable);
    return executable ? executable : findProgram(program, places, isRegularFile);
}

/// 0 or the error number.
int spawn(const std::string& path, std::vector<std::string>& arguments, const ChildStreams& streams,
          pid_t& child) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    const ChildSignals signals;
    return ::posix_spawn(&child, path.c_str(), streams.get(), signals.get(), pointers.data(),
                         ::environ);
}

/// Starts the command line; nothing when it cannot be started.
std::optional<pid_t> start(std::string_view commandLine, int output) {
    std::vector<std::string> arguments = splitCommandLine(commandLine);
    const auto path = arguments.empty() ? std::nullopt : lookUp(arguments.front());
    ChildStreams streams;
    if (!path || !streams.set(output)) {
        return std::nullopt;
    }
    pid_t child = -1;
    int error = spawn(*path, arguments, streams, child);
    if (error == ENOEXEC || (error == EACCES && isForTheShell(*path))) {
        arguments.front() = *path;
        arguments.insert(arguments.begin(), "/bin/sh");
        error = spawn("/bin/sh", arguments, streams, child);
    }
    return error == 0 ? std::optional(child) : std::nullopt;
}

/// A descriptor that becomes readable when the child ends; none where the kernel has no such thing.
FileDescriptor processDescriptor(pid_t child) {
#ifdef SYS_pidfd_open
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
#else
    static_cast<void>(child);
    return {};
#endif
}

enum class ChildState { running, ended, lost };

/// Asks, without waiting, whether the child has ended, and takes its exit code if so.
ChildState askForEnd(pid_t child, std::uint32_t& exitCode) {
    int status = 0;
    pid_t answer = -1;
    do {
        answer = ::waitpid(child, &status, WNOHANG);
    } while (answer < 0 && errno == EINTR);
    if (answer != child) {
        return answer == 0 ? ChildState::running : ChildState::lost;
    }
    exitCode = static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status)
                                                            : 128 + WTERMSIG(status));
    return ChildState::ended;
}

/// Waits for one child and takes up its output meanwhile.
class Watch {
  public:
    Watch(pid_t child, FileDescriptor process, FileDescriptor readEnd, milliseconds limit,
          std::size_t most)
        : child_(child), process_(std::move(process)), readEnd_(std::move(readEnd)),
          deadline_(Clock::now() + limit), most_(most), listening_(readEnd_.isOpen()) {}

    ChildResult run() {
        ChildResult result;
        for (;;) {
            const ChildState state = askForEnd(child_, result.exitCode);
            if (state == ChildState::ended) {
                drain(result.output);
                if (result.output.size() > mostChildOutput) {
                    std::this_thread::sleep_until(deadline_);
                    return {ChildOutcome::stillRunning, 0, {}};
                }
                result.outcome = ChildOutcome::ended;
                giveBackUnused(result.output);
                return result;
            }
            const milliseconds left = std::chrono::ceil<milliseconds>(deadline_ - Clock::now());
            if (state == ChildState::lost || left <= milliseconds::zero()) {
                // The run is abandoned, not killed: the read end stays open too, since a child that
                // goes on writing would otherwise be ended by that.
                readEnd_.release();
                return {ChildOutcome::stillRunning, 0, {}};
            }
            waitFor(left, result.output);
        }
    }

  private:
    /// Waits until the child may have ended, output has come or `left` has passed.
    void waitFor(milliseconds left, std::string& output) {
        std::array<pollfd, 2> events{
            {{listening_ ? readEnd_.get() : -1, POLLIN, 0}, {process_.get(), POLLIN, 0}}};
        const milliseconds most = process_.isOpen() ? left : std::min(left, slice_);
        const auto timeout = std::min<milliseconds::rep>(most.count(), INT_MAX);
        const int ready = ::poll(events.data(), events.size(), static_cast<int>(timeout));
        if (ready <= 0 || events[0].revents == 0) {
            slice_ = std::min(slice_ * 2, longestSlice);
            return;
        }
        slice_ = shortestSlice;
        listening_ = takeUp(output, most_ - output.size()).has_value() && output.size() < most_;
    }

    /// Appends up to `most` bytes to `output`; called only when there are some or the pipe has met
    /// its end, so that it does not wait. Bytes taken; 0 when interrupted; nothing at the end.
    std::optional<std::size_t> takeUp(std::string& output, std::size_t most) {
        std::array<char, bufferSize> buffer; // not filled: each child would pay for that
        const ssize_t taken = ::read(readEnd_.get(), buffer.data(), std::min(most, buffer.size()));
        if (taken < 0 && errno == EINTR) {
            return 0;
        }
        if (taken <= 0) {
            return std::nullopt;
        }
        output.append(buffer.data(), static_cast<std::size_t>(taken));
        return static_cast<std::size_t>(taken);
    }

    /// Takes what stands in the pipe now. Whoever still holds the write end (a program that the
    /// child left behind) is not waited for.
    void drain(std::string& output) {
        int waiting = 0;
        const bool told = ::ioctl(readEnd_.get(), FIONREAD, &waiting) == 0;
        auto left = static_cast<std::size_t>(told ? std::max(waiting, 0) : 0);
        while (left > 0) {
            const auto taken = takeUp(output, left);
            if (!taken) {
                return;
            }
            left -= *taken;
        }
    }

    static constexpr milliseconds shortestSlice{1};
    static constexpr milliseconds longestSlice{20};
    static constexpr std::size_t bufferSize = 65536; // what a pipe holds

    pid_t child_;
    FileDescriptor process_;
    FileDescriptor readEnd_;
    Clock::time_point deadline_;
    std::size_t most_;
    bool listening_;
    milliseconds slice_ = shortestSlice;
};

} // namespace

ChildResult runChild(std::string_view commandLine, bool capture, milliseconds limit, Notice notice,
                     std::size_t most) {
    Pipe pipe;
    if (!pipe.open()) {
        return {ChildOutcome::noPipe, 0, {}};
    }
    const DefaultChildSignal signal;
    const auto child = start(commandLine, capture ? pipe.writeEnd.get() : -1);
    if (!child) {
        return {ChildOutcome::notStarted, 0, {}};
    }
    // Closed at once, so that the end of the pipe is met when the child has closed it.
    const bool closed = pipe.writeEnd.close();
    FileDescriptor process =
        notice == Notice::byDescriptor ? processDescriptor(*child) : FileDescriptor();
    ChildResult result =
        Watch(*child, std::move(process), std::move(pipe.readEnd), limit, most).run();
    if (result.outcome == ChildOutcome::ended && !closed) {
        result.outcome = ChildOutcome::notClosed;
    }
    return result;
}

} // namespace zolex::posix
