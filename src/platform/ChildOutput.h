#pragma once

#include <cstddef>
#include <string>

namespace zolex {

/// Bytes that an output may hold beyond its text, which grew by doubling.
inline constexpr std::size_t mostUnusedOutput = std::size_t{1} << 20U;

/// Gives back what a long output holds beyond its text: outputs are kept until all controllers have
/// been asked.
inline void giveBackUnused(std::string& output) {
    if (output.capacity() - output.size() > mostUnusedOutput) {
        output.shrink_to_fit();
    }
}

} // namespace zolex
