#include "companion/families/md/DiskFiles.h"
#include "companion/families/posix/AlignedRead.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zolex::companion::md {

namespace {

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

struct TextFreer {
    void operator()(char* text) const { std::free(text); }
};

/// Others write on a drive past the memory in which the kernel keeps what it has read of it: it is
/// read past that, too.
bool isDevice(int file) {
    struct stat status = {};
    return ::fstat(file, &status) == 0 && S_ISBLK(status.st_mode);
}

class SystemDiskFiles : public DiskFiles {
  public:
    std::vector<std::string> entries(const std::string& folder) override {
        constexpr std::size_t most = 65536;
        std::vector<std::string> names;
        const std::unique_ptr<DIR, FolderCloser> opened(::opendir(folder.c_str()));
        while (opened && names.size() < most) {
            const dirent* const entry = ::readdir(opened.get());
            if (entry == nullptr) {
                break;
            }
            if (entry->d_name[0] != '.') {
                names.emplace_back(entry->d_name);
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::optional<std::string> read(const std::string& file, std::uint64_t offset,
                                    std::size_t most) override {
        const posix::FileDescriptor opened(
            ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        if (opened.get() < 0) {
            return std::nullopt;
        }
        if (isDevice(opened.get())) {
            const posix::FileDescriptor direct(
                ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_DIRECT));
            std::optional<std::string> found =
                direct.get() < 0 ? std::nullopt : readAligned(direct.get(), offset, most);
            if (found || errno != EINVAL) {
                return found;
            }
            (void)::posix_fadvise(opened.get(), static_cast<off_t>(offset),
                                  static_cast<off_t>(most), POSIX_FADV_DONTNEED);
        }
        std::string bytes(most, '\0');
        std::size_t filled = 0;
        while (filled < most) {
            const ssize_t length = ::pread(opened.get(), bytes.data() + filled, most - filled,
                                           static_cast<off_t>(offset + filled));
            if (length < 0 && errno == EINTR) {
                continue;
            }
            if (length < 0) {
                return std::nullopt;
            }
            if (length == 0) {
                break;
            }
            filled += static_cast<std::size_t>(length);
        }
        bytes.resize(filled);
        return bytes;
    }

    std::string resolved(const std::string& path) override {
        const std::unique_ptr<char, TextFreer> found(::realpath(path.c_str(), nullptr));
        return found ? std::string(found.get()) : std::string();
    }

    std::string whyNotOpened(const std::string& device) override {
        const posix::FileDescriptor opened(
            ::open(device.c_str(), O_RDONLY | O_EXCL | O_CLOEXEC | O_NONBLOCK));
        return opened.get() < 0 ? std::strerror(errno) : std::string();
    }
};

} // namespace

std::unique_ptr<DiskFiles> systemDiskFiles() {
    return std::make_unique<SystemDiskFiles>();
}

} // namespace zolex::companion::md
