#include "companion/execution/SystemParts.h"
#include "companion/text/Utf8.h"

#include <array>
#include <cerrno>
#include <pwd.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <vector>

namespace zolex::companion::system_execution {

namespace {

std::string inUtf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        valid += length == 0 ? std::string_view("?") : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return valid;
}

} // namespace

std::string userName() {
    constexpr std::size_t mostMemory = std::size_t{1} << 20U;
    const uid_t user = ::getuid();
    for (std::size_t size = 4096; size <= mostMemory; size *= 2) {
        std::vector<char> memory(size);
        passwd entry = {};
        passwd* found = nullptr;
        int error = 0;
        do {
            error = ::getpwuid_r(user, &entry, memory.data(), memory.size(), &found);
        } while (error == EINTR);
        if (error == 0 && found != nullptr && found->pw_name != nullptr &&
            *found->pw_name != '\0') {
            return inUtf8(found->pw_name);
        }
        if (error != ERANGE) {
            break;
        }
    }
    return std::to_string(user);
}

bool isLostAtRestart(const std::string& file) {
    // As the system counts them; its header names not all of them everywhere.
    constexpr std::array<unsigned long, 2> inMemory{0x01021994, 0x858458F6}; // tmpfs, ramfs
    const std::size_t end = file.rfind('/');
    const std::string folder = end == std::string::npos ? "." : file.substr(0, end + 1);
    struct statfs status = {};
    if (::statfs(folder.c_str(), &status) != 0) {
        return false;
    }
    const unsigned long type = static_cast<unsigned long>(status.f_type) & 0xFFFFFFFFUL;
    return type == inMemory[0] || type == inMemory[1];
}

} // namespace zolex::companion::system_execution
