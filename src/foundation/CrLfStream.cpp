#include "foundation/CrLfStream.h"

namespace zolex::crlf {

namespace {

/// The byte that the next read gives, which it still does.
int peek(std::FILE* stream) {
    return std::ungetc(std::fgetc(stream), stream);
}

/// Takes the CR out of each CR LF; the number of bytes left. Whether a CR at the end is one of
/// those tells the stream.
std::size_t fold(std::span<char> bytes, std::FILE* stream) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto next = [&] { return i + 1 < bytes.size() ? bytes[i + 1] : peek(stream); };
        if (bytes[i] != '\r' || next() != '\n') {
            bytes[kept++] = bytes[i];
        }
    }
    return kept;
}

} // namespace

std::size_t read(std::span<char> bytes, std::FILE* stream) {
    std::size_t stored = 0;
    while (stored < bytes.size()) {
        const std::span<char> rest = bytes.subspan(stored);
        const std::size_t n = std::fread(rest.data(), 1, rest.size(), stream);
        stored += fold(rest.first(n), stream);
        if (n < rest.size()) {
            break;
        }
    }
    return stored;
}

std::size_t write(std::string_view text, std::FILE* stream) {
    std::size_t written = 0;
    while (written < text.size()) {
        const std::string_view line = text.substr(written, text.find('\n', written) - written);
        const std::size_t n = std::fwrite(line.data(), 1, line.size(), stream);
        written += n;
        if (n < line.size() || written == text.size()) {
            break;
        }
        if (std::fwrite("\r\n", 1, 2, stream) < 2) {
            break;
        }
        ++written;
    }
    return written;
}

} // namespace zolex::crlf
