#include "companion/families/posix/AlignedRead.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace zolex::companion::md {

namespace {

struct Freer {
    void operator()(char* bytes) const { std::free(bytes); }
};

} // namespace

std::optional<std::string> readAligned(int file, std::uint64_t offset, std::size_t most) {
    constexpr std::size_t block = 4096;
    constexpr std::size_t sector = 512;
    const auto before = static_cast<std::size_t>(offset % block);
    const std::uint64_t begin = offset - before;
    const std::size_t length = (before + most + block - 1) / block * block;
    const std::unique_ptr<char, Freer> bytes(
        static_cast<char*>(std::aligned_alloc(block, std::max(length, block))));
    if (!bytes) {
        errno = ENOMEM;
        return std::nullopt;
    }
    std::size_t filled = 0;
    while (filled < length) {
        const ssize_t count = ::pread(file, bytes.get() + filled, length - filled,
                                      static_cast<off_t>(begin + filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        filled += static_cast<std::size_t>(count);
        if (count == 0 || filled % sector != 0) {
            break; // the end of the file
        }
    }
    const std::size_t first = std::min(before, filled);
    return std::string(bytes.get() + first, std::min(most, filled - first));
}

} // namespace zolex::companion::md
