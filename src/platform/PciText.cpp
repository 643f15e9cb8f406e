#include "platform/PciText.h"

#include "foundation/Text.h"
#include "platform/PciDeviceList.h"

#include <algorithm>
#include <cstddef>

namespace zolex::pci {

namespace {

/// Value of a hexadecimal digit; -1 for any other byte.
int hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char small = text::lower(c);
    return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

std::string_view withoutPrefix(std::string_view number) noexcept {
    return number.starts_with("0x") || number.starts_with("0X") ? number.substr(2) : number;
}

bool isHex(std::string_view number) noexcept {
    return !number.empty() &&
           std::all_of(number.begin(), number.end(), [](char c) { return hexDigit(c) >= 0; });
}

} // namespace

std::uint32_t leadingHex(std::string_view text) noexcept {
    constexpr std::uint64_t highest = 0xFFFFFFFF;
    std::uint64_t value = 0;
    for (const char c : withoutPrefix(text)) {
        const int digit = hexDigit(c);
        if (digit < 0) {
            break;
        }
        value = std::min(value * 16 + static_cast<std::uint64_t>(digit), highest);
    }
    return static_cast<std::uint32_t>(value);
}

std::optional<std::uint16_t> leadingDecimal(std::string_view text) noexcept {
    if (text.empty() || text.front() < '0' || text.front() > '9') {
        return std::nullopt;
    }
    return static_cast<std::uint16_t>(std::min(text::leadingInt(text), 65535));
}

std::uint32_t fileNumber(std::string_view content, std::uint32_t highest) noexcept {
    const std::string_view digits = withoutPrefix(text::trim(content, " \t\r\n"));
    // Eight digits are the most that a number of 32 bits has.
    if (!isHex(digits) || digits.size() > 8) {
        return 0;
    }
    const std::uint32_t value = leadingHex(digits);
    return value <= highest ? value : 0;
}

bool parseFolderName(std::string_view name, PciDevice& device) noexcept {
    // The last eight bytes are ":BB:DD.F" or "-BB-DD.F"; the domain stands before them.
    constexpr std::size_t tailLength = 8;
    constexpr std::size_t domainLength = 4;
    if (name.size() < domainLength + tailLength) {
        return false;
    }
    const std::string_view domain = name.substr(0, name.size() - tailLength);
    const std::string_view tail = name.substr(domain.size());
    const std::string_view bus = tail.substr(1, 2);
    const std::string_view slot = tail.substr(4, 2);
    const std::string_view function = tail.substr(7, 1);
    const bool marksFit =
        (tail[0] == ':' || tail[0] == '-') && tail[3] == tail[0] && tail[6] == '.';
    if (!marksFit || !isHex(domain) || !isHex(bus) || !isHex(slot) || !isHex(function)) {
        return false;
    }
    device.domain = leadingHex(domain);
    device.bus = static_cast<std::uint16_t>(leadingHex(bus));
    device.device = static_cast<std::uint16_t>(leadingHex(slot));
    device.function = static_cast<std::uint16_t>(leadingHex(function));
    return true;
}

} // namespace zolex::pci
