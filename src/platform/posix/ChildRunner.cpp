#include "platform/posix/ChildRunner.h"

#include "platform/ChildOutput.h"
#include "platform/posix/ChildStart.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

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
                     std::size_t most, const std::string& folder) {
    Pipe pipe;
    if (!pipe.open()) {
        return {ChildOutcome::noPipe, 0, {}};
    }
    const DefaultChildSignal signal;
    const auto child = startChild(commandLine, capture ? pipe.writeEnd.get() : -1, false, folder);
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
