#include "companion/cli/Values.h"

#include "companion/cli/Suggestion.h"
#include "companion/commands/DestroyWish.h"
#include "companion/commands/Explanations.h"
#include "companion/families/Family.h"
#include "companion/families/ModelTexts.h"
#include "companion/lint/Rules.h"
#include "companion/text/Terminal.h"
#include "model/ControllerCatalogue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

namespace zolex::companion {

namespace {

constexpr std::array<std::pair<std::string_view, Format>, 8> formats{{
    {"text", Format::text},
    {"json", Format::json},
    {"svg", Format::svg},
    {"html", Format::html},
    {"policies", Format::policies},
    {"concise", Format::concise},
    {"sarif", Format::sarif},
    {"github", Format::github},
}};

constexpr std::array<std::string_view, 9> utilities{"MEGACLI",  "ARCCONF", "HRCONF",
                                                    "QTCSEND",  "CFGGEN",  "CFGGEN1.02.02",
                                                    "HYPERWIN", "STORCLI", "MD"};

std::string faultOfNumber(std::string_view text, std::int32_t least, std::int32_t most) {
    if (wholeNumber(text, least, most)) {
        return {};
    }
    return inQuotes(text) + " is no number from " + std::to_string(least) + " to " +
           std::to_string(most);
}

std::string upper(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    return result;
}

} // namespace

std::optional<Format> formatNamed(std::string_view name) {
    for (const auto& [own, format] : formats) {
        if (own == name) {
            return format;
        }
    }
    return std::nullopt;
}

std::optional<std::int32_t> wholeNumber(std::string_view text, std::int32_t least,
                                        std::int32_t most) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end;
    return isNumber && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::vector<std::string> parts(std::string_view text) {
    std::vector<std::string> result;
    for (;;) {
        const std::size_t comma = text.find(',');
        result.emplace_back(text.substr(0, comma));
        if (comma == std::string_view::npos) {
            return result;
        }
        text.remove_prefix(comma + 1);
    }
}

std::optional<std::vector<std::int32_t>> controllerNumbers(std::string_view text) {
    std::vector<std::int32_t> numbers;
    for (const std::string& part : parts(text)) {
        const auto number = wholeNumber(part, 1, largestControllerNumber);
        if (!number) {
            return std::nullopt;
        }
        numbers.push_back(*number);
    }
    return numbers;
}

std::optional<std::pair<std::string, std::string>> utilityPath(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals + 1 == text.size()) {
        return std::nullopt;
    }
    std::string name = upper(text.substr(0, equals));
    if (std::find(utilities.begin(), utilities.end(), name) == utilities.end()) {
        return std::nullopt;
    }
    return std::pair(std::move(name), std::string(text.substr(equals + 1)));
}

std::string faultOfText(std::string_view text) {
    return text.empty() ? "the value is empty" : "";
}

std::string faultOfWidth(std::string_view text) {
    return faultOfNumber(text, smallestWidth, largestWidth);
}

std::string faultOfColour(std::string_view text) {
    const bool isKnown = text == "auto" || text == "always" || text == "never";
    return isKnown ? "" : inQuotes(text) + " is none of auto, always and never";
}

std::string faultOfUtility(std::string_view text) {
    if (utilityPath(text)) {
        return {};
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        return inQuotes(text) + " is not like MEGACLI=/opt/MegaRAID/MegaCli64";
    }
    if (equals + 1 == text.size()) {
        return inQuotes(text) + " names no program behind the \"=\"";
    }
    std::string fault = inQuotes(text.substr(0, equals)) + " is no utility";
    const std::string_view nearest = nearestWord(text.substr(0, equals), utilities);
    if (!nearest.empty()) {
        return fault.append("; did you mean ").append(nearest).append("?");
    }
    return fault + ": they are MEGACLI, ARCCONF, HRCONF, QTCSEND, CFGGEN, CFGGEN1.02.02, HYPERWIN, "
                   "STORCLI, MD";
}

std::string familyNamed(std::string_view text) {
    const Family* const family = findFamily(text);
    return family != nullptr && family->isOptIn() && upper(text) == family->name()
               ? std::string(family->name())
               : std::string();
}

std::string faultOfFamily(std::string_view text) {
    return familyNamed(text).empty()
               ? inQuotes(text) + " is no family that is asked for by name: that is md alone"
               : std::string();
}

std::string faultOfMegabytes(std::string_view text) {
    return faultOfNumber(text, 1, mostLeastMegabytes);
}

std::string faultOfControllers(std::string_view text) {
    return controllerNumbers(text)
               ? ""
               : inQuotes(text) + " is no list of numbers from 1 to " +
                     std::to_string(largestControllerNumber) + ", such as 1 or 1,3";
}

std::string faultOfLimit(std::string_view text) {
    return faultOfNumber(text, 1, longestCaptureLimit);
}

std::string faultOfJobs(std::string_view text) {
    return faultOfNumber(text, 1, mostJobs);
}

std::string faultOfTarget(std::string_view text) {
    return text == "policies" || text == "ironic"
               ? ""
               : inQuotes(text) + " is nothing to convert to: write policies or ironic";
}

std::string faultOfOrigin(std::string_view text) {
    return text == "ironic" ? "" : inQuotes(text) + " is nothing to convert from: write ironic";
}

std::string faultOfModel(std::string_view text) {
    if (const std::size_t equals = text.find('='); equals != std::string_view::npos) {
        for (std::string_view type : {text.substr(0, equals), text.substr(equals + 1)}) {
            type.remove_prefix(type.starts_with("t:") || type.starts_with("T:") ? 2 : 0);
            if (!ControllerCatalogue::isValidControllerName(type) && !isFamilyType(type)) {
                return inQuotes(type) +
                       " is no type that policies can name: write OLD=NEW, such as "
                       "t:LSI-MegaRAID-8480=t:STORCLI";
            }
        }
        return {};
    }
    const bool isModel = ControllerCatalogue::isValidControllerName(text) ||
                         (isFamilyType(text) && text.find('*') == std::string_view::npos);
    return isModel ? ""
                   : inQuotes(text) +
                         " is no model that policies can name: STORCLI, the text of a "
                         "model such as PERC-H755-Front, or " +
                         ControllerCatalogue::modelNames().c_str();
}

std::string faultOfRules(std::string_view text) {
    for (const std::string& part : parts(text)) {
        const std::string id = upper(part);
        const bool isRule =
            id.size() >= 2 && id.substr(0, 2) == "ZX" &&
            std::all_of(id.begin() + 2, id.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (!isRule) {
            return inQuotes(part) + " is no rule, nor the beginning of one, such as ZX301 or ZX5";
        }
    }
    return {};
}

std::string faultOfSelected(std::string_view text) {
    std::string fault = faultOfRules(text);
    if (!fault.empty()) {
        return fault;
    }
    for (const std::string& part : parts(text)) {
        const std::string id = upper(part);
        const std::span<const Rule> all = rules();
        if (std::none_of(all.begin(), all.end(),
                         [&id](const Rule& rule) { return rule.id.substr(0, id.size()) == id; })) {
            return "there is no rule " + inQuotes(part);
        }
    }
    return {};
}

std::string faultOfStrategy(std::string_view text) {
    const bool isKnown = text == "auto" || text == "add" || text == "rebuild";
    return isKnown ? "" : inQuotes(text) + " is none of auto, add and rebuild";
}

std::string faultOfDestroy(std::string_view text) {
    if (destroyWishOf(text)) {
        return {};
    }
    return inQuotes(text) + " is none of never, own and any, and no code such as 7Q4K-2M9D";
}

std::string faultOfAccepted(std::string_view text) {
    for (const std::string& part : parts(text)) {
        const std::string id = upper(part);
        const bool isId = id.starts_with("ZX") || id.starts_with("ZP") || id.starts_with("ZA2");
        if (!isId || !explanationOf(id)) {
            return "there is no finding " + inQuotes(part) + "; they are such as ZX701";
        }
    }
    return {};
}

} // namespace zolex::companion
