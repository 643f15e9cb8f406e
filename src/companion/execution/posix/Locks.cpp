#include "companion/execution/LockHolding.h"
#include "companion/execution/LockText.h"
#include "companion/execution/SystemParts.h"
#include "companion/text/OutputFile.h"
#include "platform/posix/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zolex::companion::system_execution {

namespace {

using zolex::posix::FileDescriptor;

constexpr mode_t own = 0600;
/// A device or a pipe that has the name must not stop the run.
constexpr int lockFlags = O_RDWR | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;

void pauseShortly() {
    constexpr long slice = 20'000'000; // nanoseconds
    const timespec pause{0, slice};
    ::nanosleep(&pause, nullptr);
}

std::string folderOf(const std::string& name) {
    const std::size_t end = name.rfind('/');
    return end == std::string::npos ? "." : name.substr(0, end + 1);
}

bool canAnybodyWriteTo(const std::string& folder) {
    struct stat status = {};
    return ::stat(folder.c_str(), &status) == 0 && (status.st_mode & S_IWOTH) != 0;
}

/// Why what has the name is no lock of ours; empty when it is one.
std::string faultOf(const std::string& name, const struct stat& status) {
    if (S_ISLNK(status.st_mode)) {
        return "it is a symbolic link";
    }
    if (!S_ISREG(status.st_mode)) {
        return "it is no file";
    }
    if (status.st_nlink > 1) {
        return "it has other names, too";
    }
    if (status.st_uid != ::geteuid() && canAnybodyWriteTo(folderOf(name))) {
        return "it belongs to another user";
    }
    return {};
}

bool areSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether the name, a link not followed, is of the open file.
bool isNameOf(const std::string& name, int descriptor) {
    struct stat named = {};
    struct stat opened = {};
    return ::lstat(name.c_str(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
           areSame(named, opened);
}

/// The front of the file; nothing, and errno, when it cannot be read.
std::optional<std::string> readFront(int descriptor) {
    LockText text{};
    ssize_t taken = -1;
    do {
        taken = ::pread(descriptor, text.data(), text.size(), 0);
    } while (taken < 0 && errno == EINTR);
    return taken < 0 ? std::nullopt
                     : std::optional(std::string(text.data(), static_cast<std::size_t>(taken)));
}

/// The text in the file; nothing where it has none that is whole.
std::optional<LockHolder> readText(int descriptor) {
    const auto front = readFront(descriptor);
    return front ? lockHolderOf(*front) : std::nullopt;
}

/// False, and errno, when it is not written whole.
bool writeText(int descriptor, const LockText& text) {
    ssize_t written = -1;
    do {
        written = ::pwrite(descriptor, text.data(), text.size(), 0);
    } while (written < 0 && errno == EINTR);
    if (written >= 0 && static_cast<std::size_t>(written) < text.size()) {
        errno = ENOSPC;
        return false;
    }
    return written >= 0;
}

/// A lock that is held from `hold` to its destruction.
class PosixRunLock : public RunLock {
  public:
    PosixRunLock(std::string name, LockHolder holder)
        : name_(std::move(name)), holder_(std::move(holder)) {}
    PosixRunLock(const PosixRunLock&) = delete;
    PosixRunLock& operator=(const PosixRunLock&) = delete;
    ~PosixRunLock() override {
        if (leavesChild(holder_)) {
            return; // whoever comes next is to know of it
        }
        // While it is locked nobody else takes the file for his own, nor makes another of the name.
        if (file_.isOpen() && isNameOf(name_, file_.get()) && ::unlink(name_.c_str()) != 0) {
            // It stays, but nobody has it.
            static_cast<void>(::ftruncate(file_.get(), 0) == 0);
        }
    }

    void note(const ProcessIdentity& child) override {
        holder_.child = child;
        writeText(file_.get(), lockTextOf(holder_));
    }

    /// The child of a holder that is gone stays noted: it may still run when this process is gone.
    void keepChild(ProcessIdentity child) { holder_.child = std::move(child); }
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] LockText text() const { return lockTextOf(holder_); }
    void hold(FileDescriptor file) { file_ = std::move(file); }

  private:
    std::string name_;
    LockHolder holder_;
    FileDescriptor file_;
};

/// What one attempt came to.
enum class Attempt { answered, again };

/// One that asks for the lock of a name.
class LockTaker {
  public:
    LockTaker(const std::string& name, FileLocks locks)
        : locks_(locks), lock_(std::make_unique<PosixRunLock>(name, LockHolder{ownProcess(), {}})) {
    }

    LockAnswer take() {
        // Others may make and remove the file again and again, and write it a moment after that.
        constexpr int attempts = 100;
        for (int i = 0; i < attempts; ++i) {
            if (attempt() == Attempt::answered) {
                return std::move(answer_);
            }
            pauseShortly();
        }
        answer_.fault = "another process has it and does not say which";
        return std::move(answer_);
    }

  private:
    [[nodiscard]] const std::string& name() const { return lock_->name(); }

    Attempt fail(std::string fault) {
        answer_ = {};
        answer_.fault = std::move(fault);
        return Attempt::answered;
    }

    Attempt attempt() {
        bool isMade = true;
        // Made or opened: to make one that is there is refused in folders that anybody can write.
        FileDescriptor file(::open(name().c_str(), lockFlags | O_CREAT | O_EXCL, own));
        if (!file.isOpen() && errno == EEXIST) {
            isMade = false;
            file = FileDescriptor(::open(name().c_str(), lockFlags));
        }
        struct stat status = {};
        if (!file.isOpen()) {
            const int error = errno;
            if (error == ENOENT && !isMade) {
                return Attempt::again;
            }
            std::string fault;
            if (!isMade && ::lstat(name().c_str(), &status) == 0) {
                fault = faultOf(name(), status);
            }
            errno = error;
            return fail(fault.empty() ? lastSystemError() : std::move(fault));
        }
        if (::fstat(file.get(), &status) != 0) {
            return fail(lastSystemError());
        }
        if (!isMade) {
            if (std::string fault = faultOf(name(), status); !fault.empty()) {
                return fail(std::move(fault));
            }
            const auto front = readFront(file.get());
            if (!front || !mayBeLockText(*front)) {
                return fail(front ? "it is not a lock" : lastSystemError());
            }
        }
        return lock(std::move(file), isMade);
    }

    Attempt lock(FileDescriptor file, bool isMade) {
        int done = -1;
        do {
            done = locks_ == FileLocks::none ? -1 : ::flock(file.get(), LOCK_EX | LOCK_NB);
        } while (done != 0 && locks_ == FileLocks::ofSystem && errno == EINTR);
        if (done == 0) {
            // Whoever had it may have removed it meanwhile.
            return isNameOf(name(), file.get()) ? hold(std::move(file), isMade) : Attempt::again;
        }
        if (locks_ == FileLocks::ofSystem && errno == EWOULDBLOCK) {
            return isHeld(readText(file.get()));
        }
        return lockByName(std::move(file), isMade);
    }

    Attempt isHeld(std::optional<LockHolder> holder) {
        return tellHolder(std::move(holder), answer_) ? Attempt::answered : Attempt::again;
    }

    void keepWhatRuns(LockHolder before) {
        if (auto child = takeOver(std::move(before), answer_)) {
            lock_->keepChild(std::move(*child));
        }
    }

    /// The lock is had: writes who has it, and tells who had it and is gone.
    Attempt hold(FileDescriptor file, bool isMade) {
        auto before = isMade ? std::nullopt : readText(file.get());
        if (before) {
            keepWhatRuns(std::move(*before));
        }
        if (!writeText(file.get(), lock_->text())) {
            const std::string fault = lastSystemError();
            if (isMade && isNameOf(name(), file.get())) {
                ::unlink(name().c_str());
            }
            return fail(fault);
        }
        lock_->hold(std::move(file));
        answer_.lock = std::move(lock_);
        return Attempt::answered;
    }

    /// Where files cannot be locked: whoever makes the file has the lock as long as he runs.
    Attempt lockByName(FileDescriptor file, bool isMade) {
        if (isMade) {
            return hold(std::move(file), isMade);
        }
        auto holder = readText(file.get());
        if (!holder) {
            // One that was never written whole stays when its maker ends at that moment.
            constexpr std::time_t longestMaking = 60;
            struct stat status = {};
            if (::fstat(file.get(), &status) == 0 &&
                std::time(nullptr) - status.st_mtime <= longestMaking) {
                return Attempt::again;
            }
        } else if (isRunning(holder->process)) {
            return isHeld(std::move(holder));
        }
        return removeStale(file, holder);
    }

    /// One alone can give the stale file another name. What it was is looked at again then: it may
    /// be the new file of somebody who was faster.
    Attempt removeStale(const FileDescriptor& file, std::optional<LockHolder>& holder) {
        const std::string aside = name() + "." + std::to_string(::getpid());
        if (::rename(name().c_str(), aside.c_str()) != 0) {
            return errno == ENOENT ? Attempt::again : fail(lastSystemError());
        }
        if (!isNameOf(aside, file.get())) {
            static_cast<void>(::link(aside.c_str(), name().c_str()) == 0);
        } else if (holder) {
            keepWhatRuns(std::move(*holder));
        }
        ::unlink(aside.c_str());
        return Attempt::again;
    }

    FileLocks locks_;
    LockAnswer answer_;
    std::unique_ptr<PosixRunLock> lock_;
};

} // namespace

LockAnswer takeLock(const std::string& name, FileLocks locks) {
    return LockTaker(name, locks).take();
}

} // namespace zolex::companion::system_execution
