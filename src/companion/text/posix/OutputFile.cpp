#include "companion/text/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zolex::companion {

std::string lastSystemError() {
    switch (errno) {
    case ENOENT:
        return "there is no such file or folder";
    case ENOTDIR:
        return "a part of its path is no folder";
    case EACCES:
    case EPERM:
        return "it is not allowed";
    case EROFS:
        return "the device is read-only";
    case ENOSPC:
    case EDQUOT:
        return "no space is left on the device";
    case EPIPE:
        return "nobody reads it any more";
    default:
        return std::strerror(errno);
    }
}

namespace output_file {

namespace {

constexpr mode_t permissionBits = 07777;

/// What is not on the disk yet could be lost with the power, and the old file with it.
bool bringToDisk(const std::string& name) {
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool done = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return done;
}

/// Whether a link is the system's own for a stream (/dev/stdout), or ends at a device or a pipe.
bool leadsToDevice(const std::string& link) {
    struct stat status = {};
    if (::stat(link.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        return false;
    }
    return !S_ISREG(status.st_mode) || link == "/dev/stdout" || link == "/dev/stderr" ||
           link.starts_with("/dev/fd/") || link.starts_with("/proc/self/fd/");
}

/// Whether both names are there, and are of the same.
bool haveOnePlace(const std::string& one, const std::string& other) {
    struct stat status = {};
    struct stat otherStatus = {};
    return ::stat(one.c_str(), &status) == 0 && ::stat(other.c_str(), &otherStatus) == 0 &&
           status.st_dev == otherStatus.st_dev && status.st_ino == otherStatus.st_ino;
}

} // namespace

Standing standing(const std::string& name) {
    struct stat status = {};
    if (::lstat(name.c_str(), &status) != 0) {
        return Standing::nothing;
    }
    if (S_ISREG(status.st_mode)) {
        return ::access(name.c_str(), W_OK) == 0 ? Standing::file : Standing::protectedFile;
    }
    if (S_ISDIR(status.st_mode)) {
        return Standing::folder;
    }
    return S_ISLNK(status.st_mode) && !leadsToDevice(name) ? Standing::link : Standing::device;
}

bool areOne(const std::string& one, const std::string& other) {
    if (one == other || haveOnePlace(one, other)) {
        return true;
    }
    const std::size_t folder = one.rfind('/') + 1;
    const std::size_t otherFolder = other.rfind('/') + 1;
    return one.compare(folder, std::string::npos, other, otherFolder, std::string::npos) == 0 &&
           haveOnePlace(folder == 0 ? "." : one.substr(0, folder),
                        otherFolder == 0 ? "." : other.substr(0, otherFolder));
}

bool moveOver(const std::string& from, const std::string& to) {
    struct stat status = {};
    const bool replaces = ::lstat(to.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    if (replaces && ::chmod(from.c_str(), status.st_mode & permissionBits) != 0) {
        return false;
    }
    return bringToDisk(from) && std::rename(from.c_str(), to.c_str()) == 0;
}

unsigned long processNumber() {
    return static_cast<unsigned long>(::getpid());
}

} // namespace output_file

} // namespace zolex::companion
