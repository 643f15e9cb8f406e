#pragma once

#include <algorithm>
#include <array>

namespace zolex::fuzz {

/// Whether the program may end with this code.
constexpr bool isExitCode(int code) {
    constexpr std::array documented = {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11};
    return std::find(documented.begin(), documented.end(), code) != documented.end();
}

} // namespace zolex::fuzz
