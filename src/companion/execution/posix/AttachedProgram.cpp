#include "companion/execution/AttachedProgram.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zolex::companion {

namespace {

constexpr std::array<int, 4> passedOn{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
/// What this process ignores for its own sake.
constexpr std::array<int, 2> ignoredHere{SIGPIPE, SIGXFSZ};

/// The program that runs; 0: none. A handler reads it.
volatile sig_atomic_t attached = 0;

extern "C" void passOn(int signal) {
    const int before = errno;
    if (attached > 0) {
        ::kill(static_cast<pid_t>(attached), signal);
    }
    errno = before;
}

/// While it lives, signals that end this process go to the attached program, but for those that are
/// ignored, and a child's exit code is kept for whoever waits.
class PassedOnSignals {
  public:
    PassedOnSignals() {
        struct sigaction action = {};
        action.sa_handler = passOn;
        action.sa_flags = SA_RESTART;
        for (std::size_t i = 0; i < passedOn.size(); ++i) {
            ::sigaction(passedOn[i], nullptr, &before_[i]);
            if (before_[i].sa_handler != SIG_IGN) {
                ::sigaction(passedOn[i], &action, nullptr);
            }
        }
        struct sigaction usual = {};
        usual.sa_handler = SIG_DFL;
        ::sigaction(SIGCHLD, &usual, &childBefore_);
    }
    PassedOnSignals(const PassedOnSignals&) = delete;
    PassedOnSignals& operator=(const PassedOnSignals&) = delete;
    ~PassedOnSignals() {
        for (std::size_t i = 0; i < passedOn.size(); ++i) {
            ::sigaction(passedOn[i], &before_[i], nullptr);
        }
        ::sigaction(SIGCHLD, &childBefore_, nullptr);
    }

  private:
    std::array<struct sigaction, passedOn.size()> before_{};
    struct sigaction childBefore_ = {};
};

/// Holds signals back while it lives, so that none comes between a start and its note.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t held;
        ::sigemptyset(&held);
        for (const int signal : passedOn) {
            ::sigaddset(&held, signal);
        }
        ::sigprocmask(SIG_BLOCK, &held, &before_);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }
    [[nodiscard]] const sigset_t& before() const { return before_; }

  private:
    sigset_t before_{};
};

/// The signals of the program are as those of this process would be without its own handlers.
class ProgramSignals {
  public:
    explicit ProgramSignals(const sigset_t& mask) {
        sigset_t usual;
        ::sigemptyset(&usual);
        for (const int signal : ignoredHere) {
            ::sigaddset(&usual, signal);
        }
        isReady_ = ::posix_spawnattr_init(&attributes_) == 0 &&
                   ::posix_spawnattr_setsigdefault(&attributes_, &usual) == 0 &&
                   ::posix_spawnattr_setsigmask(&attributes_, &mask) == 0 &&
                   ::posix_spawnattr_setflags(&attributes_,
                                              POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK) == 0;
    }
    ProgramSignals(const ProgramSignals&) = delete;
    ProgramSignals& operator=(const ProgramSignals&) = delete;
    ~ProgramSignals() { ::posix_spawnattr_destroy(&attributes_); }
    [[nodiscard]] const posix_spawnattr_t* get() const { return isReady_ ? &attributes_ : nullptr; }

  private:
    posix_spawnattr_t attributes_{};
    bool isReady_ = false;
};

bool start(const std::string& path, const std::vector<std::string>& arguments) {
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const HeldSignals held;
    const ProgramSignals signals(held.before());
    pid_t child = -1;
    const bool isStarted = ::posix_spawn(&child, path.c_str(), nullptr, signals.get(),
                                         pointers.data(), ::environ) == 0;
    attached = isStarted ? static_cast<sig_atomic_t>(child) : 0;
    return isStarted;
}

} // namespace

std::optional<std::uint32_t> runAttached(const std::string& path,
                                         const std::vector<std::string>& arguments) {
    const PassedOnSignals passing;
    if (!start(path, arguments)) {
        return std::nullopt;
    }
    const auto child = static_cast<pid_t>(attached);
    int status = 0;
    pid_t answer = -1;
    do {
        answer = ::waitpid(child, &status, 0);
    } while (answer < 0 && errno == EINTR);
    attached = 0;
    if (answer != child) {
        return std::nullopt;
    }
    constexpr int ofSignal = 128;
    return static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status)
                                                        : ofSignal + WTERMSIG(status));
}

} // namespace zolex::companion
