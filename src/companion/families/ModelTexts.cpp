#include "companion/families/ModelTexts.h"

#include "companion/text/NearestWord.h"
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
constexpr std::array<std::string_view, 11> familyNames = {
    "STORCLI", "STORCLI2", "SSACLI",   "SASIRCU",  "MVCLI",   "MD",
    "IMSM",    "ARCCONF",  "SAS2IRCU", "SAS3IRCU", "MNV_CLI",
};
constexpr std::array<std::string_view, 15> beginnings = {
    "AVAGO-",  "Broadcom-", "Cisco-",     "HPE-",        "INTEL-",
    "Lenovo-", "LINUX-",    "MegaRAID-",  "PERC-",       "PRAID-",
    "RAID-",   "SAS39",     "ServeRAID-", "Supermicro-", "ThinkSystem-",
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

/// Whether it is a name of zolex or of a family, mistyped.
bool isMistyped(std::string_view value) {
    constexpr std::size_t letters = 2;
    const auto isNear = [value](std::string_view name) { return isNearWord(value, name, letters); };
    if (std::any_of(familyNames.begin(), familyNames.end(), isNear)) {
        return true;
    }
    PciRowCursor cursor;
    for (PciRow row = cursor.nextPciRow(); row.type != -1; row = cursor.nextPciRow()) {
        if (isNear(ControllerCatalogue::getControllerName(row.type, row.subtype).view())) {
            return true;
        }
    }
    return false;
}

/// Whether a utility may tell it of a model.
bool mayBeTold(std::string_view value) {
    constexpr std::size_t least = 4;
    constexpr std::size_t most = 64;
    const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
    return value.size() >= least && value.size() <= most && familyModelText(value) == value &&
           std::any_of(value.begin(), value.end(), isDigit) &&
           !std::all_of(value.begin(), value.end(),
                        [&](char letter) { return isDigit(letter) || letter == '-'; }) &&
           !isMistyped(value);
}

/// Whether it is the whole text of a model of a usual brand.
bool isUsualModel(std::string_view value) {
    return value.find('*') == std::string_view::npos &&
           std::any_of(beginnings.begin(), beginnings.end(), [value](std::string_view row) {
               return value.size() > row.size() && beginsWith(value, row);
           });
}

/// Whether it ends with the only "*".
bool isOpen(std::string_view value) {
    return value.size() > 1 && value.find('*') == value.size() - 1 && isPlain(value.front());
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
    return !ControllerCatalogue::isValidControllerName(value) &&
           (isFamilyName(value) || isUsualModel(value) || isOpen(value) || mayBeTold(value));
}

bool isKnownFamilyType(std::string_view value) {
    if (ControllerCatalogue::isValidControllerName(value)) {
        return false;
    }
    const std::string_view begin = value.substr(0, value.size() - (isOpen(value) ? 1 : 0));
    const bool isUsualBegin =
        isOpen(value) &&
        std::any_of(beginnings.begin(), beginnings.end(), [begin](std::string_view row) {
            const std::size_t size = std::min(row.size(), begin.size());
            return beginsWith(begin, row.substr(0, size));
        });
    return isFamilyName(value) || isUsualModel(value) || isUsualBegin;
}

std::span<const std::string_view> modelBeginnings() {
    return beginnings;
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
