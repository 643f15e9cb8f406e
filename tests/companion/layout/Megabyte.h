#pragma once

#include <cstdint>

namespace zolex::companion::test {

inline constexpr std::uint64_t mb = std::uint64_t{1} << 20U;

} // namespace zolex::companion::test
