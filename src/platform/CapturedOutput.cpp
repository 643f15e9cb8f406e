#include "platform/CapturedOutput.h"

#include <algorithm>

namespace zolex {

std::size_t CapturedOutput::read(std::span<char> buffer) {
    const std::size_t moved = std::min(buffer.size(), bytes_.size() - position_);
    std::copy_n(bytes_.data() + position_, moved, buffer.data());
    position_ += moved;
    return moved;
}

std::string_view CapturedOutput::nextPiece(std::size_t limit) {
    const std::string_view rest = std::string_view(bytes_).substr(position_, limit);
    const std::size_t newline = rest.find('\n');
    const std::string_view piece =
        newline == std::string_view::npos ? rest : rest.substr(0, newline + 1);
    position_ += piece.size();
    return piece;
}

} // namespace zolex
