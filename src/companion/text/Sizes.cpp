#include "companion/text/Sizes.h"

#include <array>

namespace zolex::companion {

namespace {

struct Unit {
    const char* name;
    std::uint64_t bytes;
    std::uint32_t decimals;
};

/// The largest first. A size has the first unit that it reaches.
constexpr std::array<Unit, 5> units{{{"PB", std::uint64_t{1} << 50U, 2},
                                     {"TB", std::uint64_t{1} << 40U, 2},
                                     {"GB", std::uint64_t{1} << 30U, 1},
                                     {"MB", std::uint64_t{1} << 20U, 0},
                                     {"KB", std::uint64_t{1} << 10U, 0}}};

/// In that unit, rounded to its decimals; without floating point, which systems round differently.
std::string inUnit(std::uint64_t bytes, const Unit& unit) {
    std::uint64_t scale = 1;
    for (std::uint32_t i = 0; i < unit.decimals; ++i) {
        scale *= 10;
    }
    const std::uint64_t whole = bytes / unit.bytes;
    const std::uint64_t rest = bytes % unit.bytes;
    // The rest of a PB times 100 fits into 64 bits.
    const std::uint64_t scaled = whole * scale + (rest * scale + unit.bytes / 2) / unit.bytes;
    std::string text = std::to_string(scaled / scale);
    if (unit.decimals > 0) {
        const std::string digits = std::to_string(scaled % scale);
        text += "." + std::string(unit.decimals - digits.size(), '0') + digits;
    }
    return text + " " + unit.name;
}

} // namespace

std::string sizeText(std::uint64_t bytes) {
    for (const Unit& unit : units) {
        if (bytes >= unit.bytes) {
            return inUnit(bytes, unit);
        }
    }
    return std::to_string(bytes) + " B";
}

std::string sizeText(std::optional<std::uint64_t> bytes) {
    return bytes ? sizeText(*bytes) : "?";
}

std::string countText(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace zolex::companion
