#include "foundation/SystemFiles.h"

#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace zolex::system_files {

namespace {

using posix::FileDescriptor;
using Clock = std::chrono::steady_clock;

constexpr mode_t permissions = 0666; // and the mask of the process

bool areSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether the name, links in it followed, leads to the file of this status.
bool leadsTo(const std::string& name, const struct stat& file) {
    struct stat status = {};
    return ::stat(name.c_str(), &status) == 0 && areSame(status, file);
}

/// Whether the name itself, a link not followed, is of the open file.
bool isNameOf(const std::string& name, int descriptor) {
    struct stat named = {};
    struct stat opened = {};
    return ::lstat(name.c_str(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
           areSame(named, opened);
}

FileDescriptor openWith(const std::string& name, int flags) {
    // A device or a pipe that has got the name meanwhile must not stop the run.
    return FileDescriptor(
        ::open(name.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, permissions));
}

bool isEmpty(int descriptor) {
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && status.st_size == 0;
}

class PosixLock : public FileLock {
  public:
    explicit PosixLock(std::string name) : name_(std::move(name)) {}
    PosixLock(const PosixLock&) = delete;
    PosixLock& operator=(const PosixLock&) = delete;
    ~PosixLock() override {
        if (made_ && isEmpty(file_.get()) && leadsHere()) {
            ::unlink(name_.c_str());
        }
    }
    [[nodiscard]] bool madeFile() const override { return made_; }

    enum class Outcome { locked, busy, impossible };
    Outcome take(Clock::time_point deadline) {
        do {
            if (!open()) {
                return Outcome::impossible;
            }
            const Outcome outcome = wait(deadline);
            if (outcome != Outcome::locked) {
                made_ = made_ && outcome == Outcome::impossible;
                return outcome;
            }
        } while (!leadsHere()); // whoever had made it has removed it again
        // Somebody else may have been faster and have written it.
        made_ = made_ && isEmpty(file_.get());
        if (made_) {
            ending_.enter(name_, EndingFile::Goes::whileEmpty);
        }
        return Outcome::locked;
    }

  private:
    /// Opens the file, or makes it; false when it is none that can be locked.
    bool open() {
        constexpr int attempts = 100; // it may be made and removed again and again
        for (int i = 0; i < attempts; ++i) {
            struct stat status = {};
            if (::stat(name_.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
                return false;
            }
            file_ = openWith(name_, O_RDWR | O_CREAT | O_EXCL);
            made_ = file_.isOpen();
            for (const int access : {O_RDWR, O_RDONLY}) {
                if (!file_.isOpen()) {
                    file_ = openWith(name_, access);
                }
            }
            if (file_.isOpen()) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] Outcome wait(Clock::time_point deadline) const {
        constexpr std::chrono::milliseconds slice{20};
        while (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) {
                return Outcome::impossible; // not on this file system
            }
            const auto left = deadline - Clock::now();
            if (left <= Clock::duration::zero()) {
                return Outcome::busy;
            }
            std::this_thread::sleep_for(std::min<Clock::duration>(left, slice));
        }
        return Outcome::locked;
    }

    [[nodiscard]] bool leadsHere() const {
        struct stat status = {};
        return ::fstat(file_.get(), &status) == 0 && leadsTo(name_, status);
    }

    std::string name_;
    FileDescriptor file_;
    EndingFile ending_;
    bool made_ = false;
};

} // namespace

std::FILE* create(const std::string& name, const std::string& other, EndingFile* ending) {
    struct stat standing = {};
    if (::lstat(name.c_str(), &standing) == 0 && leadsTo(other, standing)) {
        return nullptr;
    }
    ::unlink(name.c_str());
    if (ending != nullptr) {
        ending->enter(name, EndingFile::Goes::always);
    }
    FileDescriptor file(
        ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, permissions));
    struct stat made = {};
    const bool isOther = file.isOpen() && ::fstat(file.get(), &made) == 0 && leadsTo(other, made);
    std::FILE* const stream = file.isOpen() && !isOther ? ::fdopen(file.get(), "w+") : nullptr;
    if (stream != nullptr) {
        file.release();
        return stream;
    }
    if (file.isOpen()) {
        ::unlink(name.c_str());
    }
    if (ending != nullptr) {
        ending->forget();
    }
    return nullptr;
}

bool discard(std::FILE* stream, const std::string& name) {
    const bool isOwn = isNameOf(name, ::fileno(stream));
    const bool removed = !isOwn || ::unlink(name.c_str()) == 0;
    std::fclose(stream);
    return removed;
}

LockResult lock(const std::string& name, std::chrono::milliseconds wait) {
    auto lock = std::make_unique<PosixLock>(name); // has all its memory before a file is made
    const auto outcome = lock->take(Clock::now() + wait);
    LockResult result;
    result.isBusy = outcome == PosixLock::Outcome::busy;
    if (outcome == PosixLock::Outcome::locked) {
        result.lock = std::move(lock);
    }
    return result;
}

} // namespace zolex::system_files
