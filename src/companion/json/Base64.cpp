#include "companion/json/Base64.h"

#include <cstdint>

namespace zolex::companion {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string toBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::string_view group = bytes.substr(i, 3);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            bits = bits << 8U | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= group.size() ? digits[bits >> (18 - 6 * k) & 63U] : '=';
        }
    }
    return text;
}

std::optional<std::string> fromBase64(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::string_view group = text.substr(i, 4);
        if (i + 4 == text.size()) {
            group.remove_suffix(group.ends_with("==") ? 2 : group.ends_with("=") ? 1 : 0);
        }
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            const std::size_t digit = k < group.size() ? digits.find(group[k]) : 0;
            if (digit == std::string_view::npos) {
                return std::nullopt;
            }
            bits = bits << 6U | static_cast<std::uint32_t>(digit);
        }
        for (std::size_t k = 0; k + 1 < group.size(); ++k) {
            bytes += static_cast<char>(bits >> (16 - 8 * k) & 0xFFU);
        }
        // Bits that are no part of a byte are zero.
        const std::uint32_t rest = group.size() == 2 ? 0xFFFFU : group.size() == 3 ? 0xFFU : 0U;
        if ((bits & rest) != 0) {
            return std::nullopt;
        }
    }
    return bytes;
}

} // namespace zolex::companion
