#include "companion/execution/SystemParts.h"
#include "platform/posix/ChildStart.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace zolex::companion::system_execution {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using zolex::posix::FileDescriptor;

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

/// What the handler works on. Nothing here moves while handlers stand.
struct Noted {
    std::atomic<int> first{0};    ///< the first signal; 0: none came
    std::atomic<int> wakeEnd{-1}; ///< of the pipe that ends waits
    std::array<struct sigaction, endingSignals.size()> before{};
    std::array<bool, endingSignals.size()> isHeeded{};
};
static_assert(std::atomic<int>::is_always_lock_free);

/// Handlers belong to the process, and so does what they work on.
std::atomic<Noted*>& current() {
    static std::atomic<Noted*> noted{nullptr};
    return noted;
}
static_assert(std::atomic<Noted*>::is_always_lock_free);

// Handlers call nothing that is not safe in them: write, sigaction, raise.

void endAsBefore(const Noted& noted, int signal) {
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        if (endingSignals[i] == signal) {
            ::sigaction(signal, &noted.before[i], nullptr);
        }
    }
    ::raise(signal); // once this handler has returned
}

extern "C" void noteSignal(int signal) {
    const int error = errno;
    if (Noted* const noted = current().load(); noted != nullptr) {
        int none = 0;
        if (noted->first.compare_exchange_strong(none, signal)) {
            const char byte = '!';
            // A pipe that is full ends waits as well.
            static_cast<void>(!::write(noted->wakeEnd.load(), &byte, 1));
        } else if (signal != SIGHUP || noted->first.load() != SIGHUP) {
            // The end of a terminal is told by the shell and by the system: that is one wish.
            endAsBefore(*noted, signal);
        }
    }
    errno = error;
}

class PosixInterruptions : public Interruptions {
  public:
    PosixInterruptions() : before_(current().load()) {
        std::array<int, 2> ends{-1, -1};
        if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
            readEnd_ = FileDescriptor(ends[0]);
            writeEnd_ = FileDescriptor(ends[1]);
        }
        noted_.wakeEnd = writeEnd_.get();
        // Kept before any handler can need them.
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            noted_.isHeeded[i] = ::sigaction(endingSignals[i], nullptr, &noted_.before[i]) == 0 &&
                                 ((noted_.before[i].sa_flags & SA_SIGINFO) != 0 ||
                                  noted_.before[i].sa_handler != SIG_IGN);
        }
        current() = &noted_;
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        for (const int signal : endingSignals) {
            ::sigaddset(&action.sa_mask, signal);
        }
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            if (noted_.isHeeded[i]) {
                ::sigaction(endingSignals[i], &action, nullptr);
            }
        }
    }
    PosixInterruptions(const PosixInterruptions&) = delete;
    PosixInterruptions& operator=(const PosixInterruptions&) = delete;
    ~PosixInterruptions() override {
        for (std::size_t i = 0; i < endingSignals.size(); ++i) {
            if (noted_.isHeeded[i]) {
                ::sigaction(endingSignals[i], &noted_.before[i], nullptr);
            }
        }
        current() = before_;
    }

    Interruption asked() override {
        drain();
        return noted_.first.load() != 0 ? Interruption::asked : Interruption::none;
    }

    Awaited await(std::optional<std::intptr_t> object, milliseconds limit) override {
        const Clock::time_point start = Clock::now();
        for (;;) {
            const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
            const milliseconds left = std::max(limit - passed, milliseconds::zero());
            // An interruption that came between the caller's last look and here is in the pipe.
            std::array<pollfd, 2> events{{{readEnd_.get(), POLLIN, 0},
                                          {object ? static_cast<int>(*object) : -1, POLLIN, 0}}};
            const milliseconds slice = readEnd_.isOpen() ? left : std::min(left, longestSlice);
            const auto timeout = std::min<milliseconds::rep>(slice.count(), INT_MAX);
            const int ready = ::poll(events.data(), events.size(), static_cast<int>(timeout));
            if (ready > 0 && events[1].revents != 0) {
                return Awaited::object;
            }
            if (drain()) {
                return Awaited::interruption;
            }
            // Where poll fails for good (no memory), time passes all the same.
            if (ready < 0 && errno != EINTR) {
                const timespec pause{0, std::chrono::nanoseconds(longestSlice).count()};
                ::nanosleep(&pause, nullptr);
            }
            if (left == milliseconds::zero()) {
                return Awaited::timeOver;
            }
        }
    }

  private:
    /// Where there is no pipe, how often a signal is looked for.
    static constexpr milliseconds longestSlice{20};

    /// Takes the news of an interruption; true when there was one.
    bool drain() {
        if (!readEnd_.isOpen()) {
            const bool isNews = noted_.first.load() != 0 && !isTaken_;
            isTaken_ = isTaken_ || isNews;
            return isNews;
        }
        char byte = 0;
        ssize_t taken = -1;
        do {
            taken = ::read(readEnd_.get(), &byte, 1);
        } while (taken < 0 && errno == EINTR);
        return taken > 0;
    }

    /// A disposition that is inherited could make the system forget the exit codes of children.
    zolex::posix::DefaultChildSignal children_;
    Noted noted_;
    Noted* before_;
    FileDescriptor readEnd_;
    FileDescriptor writeEnd_;
    bool isTaken_ = false;
};

} // namespace

std::shared_ptr<Interruptions> heedInterruptions() {
    return std::make_shared<PosixInterruptions>();
}

std::optional<std::intptr_t> standardInput() {
    return STDIN_FILENO;
}

} // namespace zolex::companion::system_execution
