#include "companion/execution/SystemParts.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zolex::companion::system_execution {

namespace {

using zolex::posix::FileDescriptor;

constexpr int writeFlags = O_WRONLY | O_APPEND | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;

bool bringToDisk(int descriptor) {
    int done = -1;
    do {
        done = ::fsync(descriptor);
    } while (done != 0 && errno == EINTR);
    return done == 0;
}

/// The entry of a file in its folder. File systems that cannot bring a folder to the disk by itself
/// have no other way.
bool bringEntryToDisk(const std::string& name) {
    const std::size_t end = name.rfind('/');
    const std::string folder = end == std::string::npos ? "." : name.substr(0, end + 1);
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.isOpen() &&
           (bringToDisk(opened.get()) || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS);
}

bool cutTo(int descriptor, off_t size) {
    int done = -1;
    do {
        done = ::ftruncate(descriptor, size);
    } while (done != 0 && errno == EINTR);
    return done == 0;
}

class PosixDurableFile : public DurableFile {
  public:
    bool make(const std::string& name) {
        constexpr mode_t permissions = 0666; // and the mask of the process
        file_ = FileDescriptor(::open(name.c_str(), writeFlags | O_CREAT | O_EXCL, permissions));
        if (!file_.isOpen()) {
            return false;
        }
        if (bringToDisk(file_.get()) && bringEntryToDisk(name)) {
            return true;
        }
        const int error = errno;
        ::unlink(name.c_str());
        errno = error;
        return false;
    }

    bool reopen(const std::string& name, std::uint64_t keep) {
        file_ = FileDescriptor(::open(name.c_str(), writeFlags));
        struct stat status = {};
        if (!file_.isOpen() || ::fstat(file_.get(), &status) != 0) {
            return false;
        }
        if (!S_ISREG(status.st_mode) || keep > static_cast<std::uint64_t>(status.st_size)) {
            errno = EINVAL;
            return false;
        }
        size_ = static_cast<off_t>(keep);
        return (size_ == status.st_size || cutTo(file_.get(), size_)) && bringToDisk(file_.get());
    }

    bool append(std::string_view bytes) override {
        if (isBroken_) {
            errno = EIO;
            return false;
        }
        if (!write(bytes)) {
            // What is written in part would be in the way of what comes next.
            const int error = errno;
            isBroken_ = !cutTo(file_.get(), size_);
            errno = error;
            return false;
        }
        size_ += static_cast<off_t>(bytes.size());
        // What is on the disk is not known then, nor would be by asking again.
        isBroken_ = !bringToDisk(file_.get());
        return !isBroken_;
    }

  private:
    /// One call of the system, but where that takes a part.
    bool write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written <= 0) {
                errno = written == 0 ? ENOSPC : errno;
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    FileDescriptor file_;
    off_t size_ = 0;
    bool isBroken_ = false;
};

/// The file, or nothing and the error that was.
std::unique_ptr<DurableFile> handOver(std::unique_ptr<PosixDurableFile> file, bool isReady) {
    if (!isReady) {
        const int error = errno;
        file.reset();
        errno = error;
    }
    return file;
}

} // namespace

std::unique_ptr<DurableFile> makeDurable(const std::string& name) {
    auto file = std::make_unique<PosixDurableFile>();
    const bool isReady = file->make(name);
    return handOver(std::move(file), isReady);
}

std::unique_ptr<DurableFile> reopenDurable(const std::string& name, std::uint64_t keep) {
    auto file = std::make_unique<PosixDurableFile>();
    const bool isReady = file->reopen(name, keep);
    return handOver(std::move(file), isReady);
}

} // namespace zolex::companion::system_execution
