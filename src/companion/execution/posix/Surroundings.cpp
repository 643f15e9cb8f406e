#include "companion/execution/SystemParts.h"
#include "companion/text/Utf8.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/vfs.h>
#include <unistd.h>

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

std::string startOf(const char* file, std::size_t most) {
    std::string text;
    const posix::FileDescriptor opened(::open(file, O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> piece{};
    while (opened.isOpen() && text.size() < most) {
        const ssize_t length = ::read(opened.get(), piece.data(), piece.size());
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length <= 0) {
            break;
        }
        text.append(piece.data(), static_cast<std::size_t>(length));
    }
    return text;
}

} // namespace

std::string userName() {
    // Not the C library's look-up: linked statically, that loads libraries of the machine.
    std::string number = std::to_string(::getuid());
    const std::string users = startOf("/etc/passwd", std::size_t{1} << 20U);
    for (std::string_view rest = users; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        // NAME:PASSWORD:NUMBER:...
        const std::size_t name = line.find(':');
        const std::size_t password = name == line.npos ? name : line.find(':', name + 1);
        if (password != line.npos && name > 0 &&
            line.substr(password + 1).substr(0, number.size() + 1) == number + ":") {
            return inUtf8(line.substr(0, name));
        }
    }
    return number;
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
