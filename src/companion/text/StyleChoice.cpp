#include "companion/text/StyleChoice.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace zolex::companion {

namespace {

bool wantsColours(const StyleWishes& wishes) {
    if (wishes.colours != ColourWish::automatic) {
        return wishes.colours == ColourWish::always;
    }
    if (wishes.toFile || (wishes.noColor && !wishes.noColor->empty())) {
        return false;
    }
    const std::string force = wishes.cliColorForce.value_or("");
    return (!force.empty() && force != "0") || wishes.stream.takesColours;
}

std::optional<std::int32_t> columnsFrom(const std::optional<std::string>& text) {
    std::int32_t columns = 0;
    if (!text) {
        return std::nullopt;
    }
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, columns);
    return error == std::errc() && stop == end && columns > 0 ? std::optional(columns)
                                                              : std::nullopt;
}

std::int32_t widthOf(const StyleWishes& wishes) {
    if (wishes.width) {
        return *wishes.width;
    }
    if (wishes.stream.columns && !wishes.toFile) {
        return *wishes.stream.columns;
    }
    return columnsFrom(wishes.columns).value_or(usualWidth);
}

} // namespace

TextStyle chooseStyle(const StyleWishes& wishes) {
    return {wantsColours(wishes), std::clamp(widthOf(wishes), smallestWidth, largestWidth)};
}

std::optional<std::string> environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

} // namespace zolex::companion
