#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zolex {

/// What a child printed on its standard output and standard error, read once from front to back.
class CapturedOutput {
  public:
    CapturedOutput() = default;
    explicit CapturedOutput(std::string bytes) : bytes_(std::move(bytes)) {}

    /// Moves up to buffer.size() bytes; 0 at the end of the output.
    std::size_t read(std::span<char> buffer);

    /// The next piece: up to and including the next newline, but at most `limit` bytes; the rest
    /// when neither comes; empty at the end. Valid as long as this object.
    std::string_view nextPiece(std::size_t limit);

    /// The whole of it, which is then gone from here.
    [[nodiscard]] std::string take() {
        position_ = 0;
        return std::exchange(bytes_, {});
    }

  private:
    std::string bytes_;
    std::size_t position_ = 0;
};

/// Longest piece, in bytes, that a reader of captured output takes as one line.
inline constexpr std::size_t capturedLineLimit = 198;

} // namespace zolex
