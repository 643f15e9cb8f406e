#include "platform/posix/ChildStart.h"

#include "platform/CommandLineSplit.h"
#include "platform/ProgramLookup.h"
#include "platform/posix/ProcessStart.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace zolex::posix {

namespace {

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

    /// The folder in which the child starts.
    bool enter(const std::string& folder) {
        return ready_ && ::posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str()) == 0;
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    bool open(int stream, int mode) {
        return ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0) == 0;
    }

    posix_spawn_file_actions_t actions_{};
    bool ready_ = false;
};

/// The signals that the program ignores have their default action in the child. In one that is
/// apart all have, and none is blocked; it leads a session of its own.
class ChildSignals {
  public:
    explicit ChildSignals(bool isApart) {
        sigset_t signals = signalsOfChildren();
        sigset_t blocked;
        ::sigemptyset(&blocked);
        int flags = POSIX_SPAWN_SETSIGDEF;
        if (isApart) {
            ::sigfillset(&signals);
            flags |= POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID;
        }
        ready_ = ::posix_spawnattr_init(&attributes_) == 0 &&
                 ::posix_spawnattr_setsigdefault(&attributes_, &signals) == 0 &&
                 ::posix_spawnattr_setsigmask(&attributes_, &blocked) == 0 &&
                 ::posix_spawnattr_setflags(&attributes_, static_cast<short>(flags)) == 0;
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
          const ChildSignals& signals, pid_t& child) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return ::posix_spawn(&child, path.c_str(), streams.get(), signals.get(), pointers.data(),
                         ::environ);
}

} // namespace

DefaultChildSignal::DefaultChildSignal() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    ::sigaction(SIGCHLD, &action, &before_);
}

DefaultChildSignal::~DefaultChildSignal() {
    ::sigaction(SIGCHLD, &before_, nullptr);
}

std::optional<pid_t> startChild(std::string_view commandLine, int output, bool isApart,
                                const std::string& folder) {
    std::vector<std::string> arguments = splitCommandLine(commandLine);
    const auto path = arguments.empty() ? std::nullopt : lookUp(arguments.front());
    ChildStreams streams;
    if (!path) {
        errno = ENOENT;
        return std::nullopt;
    }
    const ChildSignals signals(isApart);
    if (!streams.set(output) || (!folder.empty() && !streams.enter(folder)) ||
        (isApart && signals.get() == nullptr)) {
        errno = ENOMEM;
        return std::nullopt;
    }
    pid_t child = -1;
    int error = spawn(*path, arguments, streams, signals, child);
    if (error == ENOEXEC || (error == EACCES && isForTheShell(*path))) {
        arguments.front() = *path;
        arguments.insert(arguments.begin(), "/bin/sh");
        error = spawn("/bin/sh", arguments, streams, signals, child);
    }
    errno = error;
    return error == 0 ? std::optional(child) : std::nullopt;
}

FileDescriptor processDescriptor(pid_t child) {
#ifdef SYS_pidfd_open
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
#else
    static_cast<void>(child);
    return {};
#endif
}

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

} // namespace zolex::posix
