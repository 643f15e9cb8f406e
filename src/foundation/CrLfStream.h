#pragma once

#include <cstddef>
#include <cstdio>
#include <span>
#include <string_view>

/// Lines that end in CR LF, in a binary stream.
namespace zolex::crlf {

/// Reads like std::fread, with each CR LF as LF. The number of bytes stored: fewer than asked for
/// at the end of the file or on an error only.
std::size_t read(std::span<char> bytes, std::FILE* stream);

/// Writes like std::fwrite, with each LF as CR LF. The number of bytes of `text` that were written.
std::size_t write(std::string_view text, std::FILE* stream);

} // namespace zolex::crlf
