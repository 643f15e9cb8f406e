#include "companion/execution/SystemParts.h"
#include "companion/execution/posix/Processes.h"
#include "platform/ChildOutput.h"
#include "platform/posix/ChildStart.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zolex::companion::system_execution {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using zolex::posix::ChildState;
using zolex::posix::FileDescriptor;

/// The first bytes of a file, at most `most`; fewer where there is no memory for them.
std::string frontOf(int descriptor, std::size_t most) {
    constexpr std::size_t step = std::size_t{64} << 10U;
    std::string bytes;
    try {
        while (bytes.size() < most) {
            const std::size_t had = bytes.size();
            bytes.resize(had + std::min(step, most - had));
            const ssize_t taken = ::pread(descriptor, bytes.data() + had, bytes.size() - had,
                                          static_cast<off_t>(had));
            bytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(taken, 0)));
            if (taken == 0 || (taken < 0 && errno != EINTR)) {
                break;
            }
        }
        giveBackUnused(bytes);
    } catch (const std::bad_alloc&) {
        // What has been read counts: the child's end must not be lost for it.
    } catch (const std::length_error&) {
    }
    return bytes;
}

/// A new file; a name that leads elsewhere is made its own. Nothing but a file, or a link, goes for
/// it.
FileDescriptor makeAnew(const std::string& name) {
    struct stat status = {};
    if (::lstat(name.c_str(), &status) == 0 &&
        (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode))) {
        ::unlink(name.c_str());
    }
    constexpr mode_t own = 0600;
    // Appended to: programs that open it again, as /dev/stdout, do not write over each other.
    return FileDescriptor(
        ::open(name.c_str(),
               O_RDWR | O_CREAT | O_EXCL | O_APPEND | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC, own));
}

class PosixChild : public StartedChild {
  public:
    explicit PosixChild(std::shared_ptr<Interruptions> waits) : waits_(std::move(waits)) {}

    /// Everything that takes memory comes before the child is there.
    bool start(std::string_view commandLine, const std::string& output, const std::string& folder) {
        output_ = makeAnew(output);
        if (!output_.isOpen()) {
            return false;
        }
        const auto child = zolex::posix::startChild(commandLine, output_.get(), true, folder);
        if (!child) {
            const int error = errno;
            ::unlink(output.c_str());
            errno = error;
            return false;
        }
        child_ = *child;
        process_ = zolex::posix::processDescriptor(child_);
        identity_.pid = static_cast<std::uint64_t>(child_);
        try {
            // It has not been waited for, so that its number is still its own.
            identity_ = identityOf(child_);
        } catch (const std::bad_alloc&) {
            // The child runs: its number alone is told.
        }
        return true;
    }

    [[nodiscard]] ProcessIdentity identity() const override { return identity_; }

    std::optional<ChildResult> wait(milliseconds limit) override {
        const Clock::time_point start = Clock::now();
        for (milliseconds slice = shortestSlice;; slice = std::min(slice * 2, longestSlice)) {
            if (hasEnded()) {
                ChildResult result{
                    isLost_ ? ChildOutcome::stillRunning : ChildOutcome::ended, exitCode_, {}};
                result.output = outputSoFar(mostChildOutput);
                return result;
            }
            const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - start);
            if (passed >= limit) {
                return std::nullopt;
            }
            const bool isTold = process_.isOpen() && !isLost_;
            const auto awaited =
                waits_->await(isTold ? std::optional<std::intptr_t>(process_.get()) : std::nullopt,
                              isTold ? limit - passed : std::min(limit - passed, slice));
            if (awaited == Interruptions::Awaited::interruption && !hasEnded()) {
                return std::nullopt;
            }
        }
    }

    std::string outputSoFar(std::size_t most) override { return frontOf(output_.get(), most); }

  private:
    /// Takes the exit code when it has.
    bool hasEnded() {
        if (!isLost_ && !hasEnded_) {
            const ChildState state = zolex::posix::askForEnd(child_, exitCode_);
            hasEnded_ = state == ChildState::ended;
            isLost_ = state == ChildState::lost;
        }
        // Somebody else has taken the exit code: its end shows all the same.
        return hasEnded_ || (isLost_ && !isRunning(identity_));
    }

    static constexpr milliseconds shortestSlice{1};
    static constexpr milliseconds longestSlice{20};

    std::shared_ptr<Interruptions> waits_;
    FileDescriptor output_;
    FileDescriptor process_;
    pid_t child_ = -1;
    ProcessIdentity identity_;
    std::uint32_t exitCode_ = 0;
    bool hasEnded_ = false;
    bool isLost_ = false;
};

} // namespace

std::unique_ptr<StartedChild> startProgram(std::string_view commandLine, const std::string& output,
                                           std::shared_ptr<Interruptions> waits,
                                           const std::string& folder) {
    if (commandLine.empty()) {
        errno = ENOENT;
        return nullptr;
    }
    auto child = std::make_unique<PosixChild>(std::move(waits));
    if (!child->start(commandLine, output, folder)) {
        const int error = errno;
        child.reset();
        errno = error;
    }
    return child;
}

} // namespace zolex::companion::system_execution
