#include "companion/families/ModelTexts.h"

#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace zolex::companion {

namespace {

// Families that zolexctl alone knows. The order does not matter.
constexpr std::array<std::string_view, 8> familyNames = {
    "STORCLI", "STORCLI2", "SSACLI", "SASIRCU", "MVCLI", "MD", "IMSM", "ARCCONF",
};
// How the texts of their models begin.
constexpr std::array<std::string_view, 13> modelBeginnings = {
    "LINUX-", "MegaRAID-",    "PERC-", "HPE-",  "AVAGO-", "Broadcom-",   "Lenovo-",
    "PRAID-", "ThinkSystem-", "RAID-", "SAS39", "Cisco-", "Supermicro-",
};

bool isPlain(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

bool beginsWith(std::string_view text, std::string_view begin) {
    return text::equalsNoCase(text.substr(0, begin.size()), begin);
}

/// The same without a look at the ends.
std::string joinedText(std::string_view text) {
    std::string joined;
    for (const char letter : text) {
        if (isPlain(letter)) {
            joined += letter;
        } else if (joined.empty() || joined.back() != '-') {
            joined += '-';
        }
    }
    return joined;
}

std::optional<std::uint16_t> hexadecimal(std::string_view text) {
    std::uint16_t value = 0;
    constexpr int base = 16;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return text.empty() || end.ec != std::errc() || end.ptr != text.data() + text.size()
               ? std::nullopt
               : std::optional(value);
}

/// Whether zolex knows a card of these ids by the name.
bool isNameOfCard(std::string_view name, std::string_view pciIds) {
    const auto vendor = hexadecimal(text::token(pciIds, ":", 0));
    const auto device = hexadecimal(text::token(pciIds, ":", 1));
    if (!vendor || !device || !ControllerCatalogue::isValidControllerName(name)) {
        return false;
    }
    PciRowCursor cursor;
    for (PciRow row = cursor.nextPciRow(); row.type != -1; row = cursor.nextPciRow()) {
        if (row.vendorId == *vendor && row.deviceId == *device &&
            text::equalsNoCase(ControllerCatalogue::getControllerName(row.type, row.subtype).view(),
                               name)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool isFamilyName(std::string_view value) {
    return std::any_of(familyNames.begin(), familyNames.end(),
                       [value](std::string_view row) { return text::equalsNoCase(row, value); });
}

bool isFamilyType(std::string_view value) {
    if (ControllerCatalogue::isValidControllerName(value)) {
        return false;
    }
    const bool isOpen = value.size() > 1 && value.find('*') == value.size() - 1;
    const bool isModel =
        value.find('*') == std::string_view::npos &&
        std::any_of(modelBeginnings.begin(), modelBeginnings.end(), [value](std::string_view row) {
            return value.size() > row.size() && beginsWith(value, row);
        });
    return isFamilyName(value) || isModel || (isOpen && isPlain(value.front()));
}

std::string familyModelText(std::string_view text) {
    std::string joined = joinedText(text);
    const std::size_t first = joined.find_first_not_of('-');
    if (first == std::string::npos) {
        return {};
    }
    const std::size_t last = joined.find_last_not_of('-');
    return joined.substr(first, last - first + 1);
}

bool familyTypeHolds(std::string_view value, std::string_view family, std::string_view model,
                     std::string_view pciIds) {
    if (text::equalsNoCase(value, family) || isNameOfCard(value, pciIds)) {
        return true;
    }
    const std::string own = familyModelText(model);
    if (value.ends_with('*')) {
        const std::string begin = joinedText(value.substr(0, value.size() - 1));
        return !begin.empty() && own.size() >= begin.size() && beginsWith(own, begin);
    }
    return !own.empty() && text::equalsNoCase(familyModelText(value), own);
}

} // namespace zolex::companion
