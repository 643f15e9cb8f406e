#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace zolex::companion::md {

/// Up to `most` bytes from an offset of an open file, read in whole blocks into memory that begins
/// at one: as the kernel wants it where a file was opened with O_DIRECT. Nothing where they cannot
/// be read; errno tells why.
[[nodiscard]] std::optional<std::string> readAligned(int file, std::uint64_t offset,
                                                     std::size_t most);

} // namespace zolex::companion::md
