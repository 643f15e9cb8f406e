#include "companion/machine/System.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

namespace zolex::companion::system {

std::string ownFolder() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0) {
        return {};
    }
    const std::string path(buffer.data(), static_cast<std::size_t>(length));
    return path.substr(0, path.rfind('/') + 1);
}

std::vector<std::string> searchPath() {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path == nullptr ? "/bin:/usr/bin" : path;
    std::vector<std::string> folders;
    for (;;) {
        const std::size_t end = rest.find(':');
        folders.emplace_back(rest.substr(0, end));
        if (end == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(end + 1);
    }
    // Where the packages of the utilities put them.
    for (const char* const folder :
         {"/opt/MegaRAID/MegaCli", "/usr/Arcconf", "/usr/StorMan", "/opt/MegaRAID/storcli",
          "/opt/MegaRAID/perccli", "/opt/lsi/storcli", "/opt/MegaRAID/storcli2",
          "/opt/MegaRAID/perccli2"}) {
        folders.emplace_back(folder);
    }
    return folders;
}

TemporaryFolder temporaryFolder() {
    const char* const named = std::getenv("TMPDIR");
    TemporaryFolder folder;
    folder.name = named == nullptr || *named == '\0' ? "/tmp" : named;
    folder.isWritable = ::access(folder.name.c_str(), W_OK | X_OK) == 0;
    struct statvfs status = {};
    if (::statvfs(folder.name.c_str(), &status) == 0) {
        folder.freeBytes = static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize;
    }
    return folder;
}

EmptyFolder::EmptyFolder() {
    std::string name = temporaryFolder().name + "/zolexctl-XXXXXX";
    if (::mkdtemp(name.data()) != nullptr) {
        name_ = std::move(name);
    }
}

EmptyFolder::~EmptyFolder() {
    if (!name_.empty()) {
        removeFolder(name_);
    }
}

bool makeFolder(const std::string& name) {
    constexpr mode_t own = 0700;
    return ::mkdir(name.c_str(), own) == 0;
}

void removeFolder(const std::string& name) {
    const int error = errno;
    const int descriptor =
        ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        errno = error;
        return;
    }
    if (DIR* const folder = ::fdopendir(descriptor); folder != nullptr) {
        while (const dirent* const entry = ::readdir(folder)) {
            ::unlinkat(::dirfd(folder), entry->d_name, 0);
        }
        ::closedir(folder);
    } else {
        ::close(descriptor);
    }
    ::rmdir(name.c_str());
    errno = error;
}

std::string absolutePath(const std::string& path) {
    std::array<char, PATH_MAX> buffer{};
    return ::realpath(path.c_str(), buffer.data()) == nullptr ? path : std::string(buffer.data());
}

std::optional<std::uint32_t> codePage() {
    return std::nullopt;
}

std::chrono::milliseconds elapsed() {
    using Clock = std::chrono::steady_clock;
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch());
}

} // namespace zolex::companion::system
