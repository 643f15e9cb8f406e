#include "companion/commands/DestroyWish.h"

#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>

namespace zolex::companion {

namespace {

constexpr std::size_t codeDigits = 8;
constexpr std::size_t planIdDigits = 12;

/// The digit of a consent code that a letter stands for; 0 for what is none.
char codeDigit(char letter) {
    constexpr std::string_view alphabet = "0123456789ABCDEFGHJKMNPQRSTVWXYZ";
    const char upper = text::upper(letter);
    const char meant = upper == 'I' || upper == 'L' ? '1' : upper == 'O' ? '0' : upper;
    return alphabet.find(meant) == std::string_view::npos ? '\0' : meant;
}

bool isPlanId(std::string_view text) {
    constexpr std::string_view begin = "p-";
    constexpr std::string_view digits = "0123456789abcdef";
    return text.size() == begin.size() + planIdDigits && text.starts_with(begin) &&
           text.find_first_not_of(digits, begin.size()) == std::string_view::npos;
}

std::optional<std::string> codeOf(std::string_view text) {
    std::string code;
    for (const char each : text) {
        if (each == ' ' || each == '\t' || each == '-') {
            continue;
        }
        const char digit = codeDigit(each);
        if (digit == '\0' || code.size() == codeDigits) {
            return std::nullopt;
        }
        code += digit;
    }
    if (code.size() != codeDigits) {
        return std::nullopt;
    }
    return code.insert(codeDigits / 2, "-");
}

} // namespace

std::optional<DestroyWish> destroyWishOf(std::string_view text) {
    using Kind = DestroyWish::Kind;
    const std::string_view word = text::trim(text, " \t\r");
    if (word == "never" || word == "own" || word == "any") {
        const Kind kind = word == "never" ? Kind::never : word == "own" ? Kind::own : Kind::any;
        return DestroyWish{kind, {}};
    }
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(), text::lower);
    if (isPlanId(lower)) {
        return DestroyWish{Kind::code, std::move(lower)};
    }
    std::optional<std::string> code = codeOf(word);
    return code ? std::optional(DestroyWish{Kind::code, *std::move(code)}) : std::nullopt;
}

} // namespace zolex::companion
