#include "policies/PolicyKeywords.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace zolex::keyword {

namespace {

/// Keywords that stand alone. Order does not matter.
// clang-format off
constexpr std::array<std::string_view, 10> plainKeywords = {
    rebuildRate,
    readAhead,
    stripeSize,
    init,
    arrayMode,
    arrayDefaults,
    hotspares,
    logicalMode,
    logicalDefaults,
    maxLogicalDriveSize,
};
// clang-format on

/// The text after `prefix` (letter case ignored); nothing when the keyword begins otherwise.
std::optional<std::string_view> after(std::string_view prefix, std::string_view keyword) noexcept {
    if (!text::equalsNoCase(keyword.substr(0, prefix.size()), prefix)) {
        return std::nullopt;
    }
    return keyword.substr(prefix.size());
}

/// The text after "AppliesTo." or "Logical.".
std::optional<std::string_view> numberText(std::string_view keyword) noexcept {
    const std::optional<std::string_view> applies = after(appliesTo, keyword);
    return applies ? applies : after(logical, keyword);
}

bool isArrayLetter(std::string_view text) noexcept {
    const char letter = text.size() == 1 ? text::upper(text[0]) : '\0';
    return letter >= 'A' && letter <= 'H';
}

} // namespace

bool isValid(std::string_view keyword) noexcept {
    if (const auto number = numberText(keyword)) {
        return text::wholeNumber(*number).value_or(0) > 0;
    }
    if (const auto letter = after(array, keyword)) {
        return isArrayLetter(*letter);
    }
    return std::any_of(plainKeywords.begin(), plainKeywords.end(), [keyword](std::string_view row) {
        return text::equalsNoCase(row, keyword);
    });
}

bool isNeverLookedUp(std::string_view keyword) noexcept {
    const auto number = numberText(keyword);
    if (!number) {
        return false;
    }
    const std::int32_t last = after(appliesTo, keyword) ? lastAppliesTo : lastLogical;
    return number->substr(0, 1) == "0" || text::wholeNumber(*number).value_or(0) > last;
}

} // namespace zolex::keyword
