#include "companion/lint/ValueChecks.h"

#include "companion/lint/Keywords.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <array>
#include <optional>

namespace zolex::companion {

namespace {

/// A keyword with one of a few words as its value.
struct WordRow {
    std::string_view keyword;
    bool (*isTaken)(std::string_view);
    std::string_view words; ///< between blanks
    std::string_view help;
};

bool isRebuildRate(std::string_view text) {
    return policy_value::rebuildRate(text).has_value();
}
bool isReadAhead(std::string_view text) {
    return policy_value::readAhead(text).has_value();
}
bool isStripeSize(std::string_view text) {
    return policy_value::stripeSize(text).has_value();
}
bool isInit(std::string_view text) {
    return policy_value::initChoice(text).has_value();
}
bool isCustom(std::string_view text) {
    return text::equalsNoCase(text, "CUSTOM");
}
bool isVariance(std::string_view text) {
    return policy_value::variance(text).has_value();
}
bool isCount(std::string_view text) {
    return text::wholeNumber(text).has_value();
}

// Order does not matter.
// clang-format off
constexpr std::array<WordRow, 6> wordRows = {{
    {keyword::rebuildRate, isRebuildRate, "HIGH MED LOW", "RebuildRate is HIGH, MED or LOW"},
    {keyword::readAhead,   isReadAhead,   "ADAPTIVE ON OFF", "ReadAhead is ADAPTIVE, ON or OFF"},
    {keyword::stripeSize,  isStripeSize,  "16 32 64 128 256 512 1024 2048 4096",
     "StripeSize is 16, 32, 64, 128, 256, 512, 1024, 2048 or 4096 (KB)"},
    {keyword::init,        isInit,        "QUICK BUILD", "Init is QUICK or BUILD"},
    {keyword::arrayMode,   isCustom,      "CUSTOM",
     "Array_Mode is CUSTOM; leave it out to have the drives chosen"},
    {keyword::logicalMode, isCustom,      "CUSTOM",
     "Logical_Mode is CUSTOM; leave it out for one logical drive on each array"},
}};
// clang-format on

std::vector<std::string> wordsOf(std::string_view list) {
    std::vector<std::string> words;
    for (const std::string_view word : policy_value::split(list, ' ')) {
        words.emplace_back(word);
    }
    return words;
}

/// The number at the front of a text such as "64KB" or "64 KB", when nothing but a unit follows.
std::optional<std::string> withoutUnit(std::string_view text) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view unit = text::trim(text.substr(digits));
    constexpr std::array<std::string_view, 6> units = {"K", "KB", "KiB", "M", "MB", "MiB"};
    const bool isUnit = std::any_of(units.begin(), units.end(), [unit](std::string_view row) {
        return text::equalsNoCase(row, unit);
    });
    return digits > 0 && isUnit ? std::optional(std::string(text.substr(0, digits))) : std::nullopt;
}

std::string whatIsWrong(std::string_view keyword, std::string_view value) {
    return value.empty() ? std::string(keyword) + " has no value"
                         : std::string(keyword) + " cannot be " + quoted(value);
}

} // namespace

std::string commaWords(const Piece& list, const Piece& item) {
    return item.start == list.start ? "before the first comma"
           : item.end == list.end   ? "behind the last comma"
                                    : "between two commas";
}

std::string quoted(std::string_view text) {
    constexpr std::size_t longestShown = 40;
    if (text.size() <= longestShown) {
        return "\"" + std::string(text) + "\"";
    }
    std::size_t end = longestShown;
    // No character of several bytes is cut.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
        --end;
    }
    return "\"" + std::string(text.substr(0, end)) + "...\"";
}

std::vector<std::string> commentHelp(std::string_view value) {
    if (value.find(" #") != std::string_view::npos) {
        return {"a comment needs a line of its own, with \";\" before it"};
    }
    if (value.find(';') == std::string_view::npos) {
        return {};
    }
    return {"a comment needs a line of its own: here it is a part of the value"};
}

bool hasLaterKeyword(const DocumentPolicy& policy) {
    return std::any_of(
        policy.entries.begin(), policy.entries.end(),
        [](const DocumentEntry& entry) { return isLaterKeyword(entry.keyword.text); });
}

Piece ColonField::piece(const Piece& value) const {
    return trimmed.empty()
               ? partOf(value, at, raw.size())
               : partOf(value, at + static_cast<std::size_t>(trimmed.data() - raw.data()),
                        trimmed.size());
}

Piece ColonField::blanks(const Piece& value) const {
    if (trimmed.empty()) {
        return partOf(value, at, raw.size());
    }
    const auto before = static_cast<std::size_t>(trimmed.data() - raw.data());
    return before > 0 ? partOf(value, at, before)
                      : partOf(value, at + trimmed.size(), raw.size() - trimmed.size());
}

std::vector<ColonField> colonFields(const Piece& value) {
    std::vector<ColonField> fields;
    std::size_t at = 0;
    for (const std::string_view raw : policy_value::split(value.text, ':')) {
        fields.push_back({raw, text::trim(raw), at});
        at += raw.size() + 1;
    }
    return fields;
}

void addBlanks(FindingSink& sink, const Piece& value, const ColonField& field) {
    sink.add("ZX111", field.blanks(value), "blanks beside a \":\" are part of the field",
             {"write " + quoted(field.trimmed) + " without them"});
}

void checkWords(const DocumentPolicy& policy, FindingSink& sink) {
    for (const WordRow& row : wordRows) {
        const DocumentEntry* entry = policy.effective(row.keyword);
        if (entry == nullptr || row.isTaken(entry->value.text)) {
            continue;
        }
        const std::string& value = entry->value.text;
        std::vector<std::string> help = commentHelp(value);
        std::optional<std::string> meant = withoutUnit(value);
        if (!meant || !row.isTaken(*meant)) {
            meant = nearestWord(value, wordsOf(row.words));
        }
        if (help.empty() && meant && !isCount(value) && row.words != "CUSTOM") {
            help.push_back("did you mean " + *meant + "?");
        }
        help.emplace_back(row.help);
        sink.add("ZX101", entry->value, whatIsWrong(row.keyword, value), std::move(help));
    }
}

void checkArrayDefaults(const DocumentPolicy& policy, FindingSink& sink) {
    const DocumentEntry* entry = policy.effective(keyword::arrayDefaults);
    if (entry == nullptr) {
        return;
    }
    const Piece& value = entry->value;
    const std::string help = "it is variance:hotspares, such as 10%:1; 0%:0 asks for no hot spare";
    const std::vector<ColonField> fields = colonFields(value);
    if (fields.size() != 2) {
        std::vector<std::string> helps = commentHelp(value.text);
        helps.push_back(help);
        sink.add("ZX102", value, whatIsWrong(keyword::arrayDefaults, value.text), std::move(helps));
        return;
    }
    if (!isVariance(fields[0].raw)) {
        if (isBlanksFault(fields[0], isVariance)) {
            addBlanks(sink, value, fields[0]);
        } else {
            sink.add("ZX102", fields[0].piece(value),
                     quoted(fields[0].trimmed) + " is no variance of Array_Defaults",
                     {"the sizes of an array's drives may differ by 0%, 5%, 10% or 100%"});
        }
    }
    if (!isCount(fields[1].raw)) {
        if (isBlanksFault(fields[1], isCount)) {
            addBlanks(sink, value, fields[1]);
        } else {
            std::vector<std::string> helps = commentHelp(fields[1].raw);
            helps.push_back(help);
            sink.add("ZX102", fields[1].piece(value),
                     quoted(fields[1].trimmed) + " is no number of hot spares", std::move(helps));
        }
    }
}

void checkMaxLogicalDriveSize(const DocumentPolicy& policy, FindingSink& sink) {
    const DocumentEntry* entry = policy.effective(keyword::maxLogicalDriveSize);
    if (entry == nullptr || isCount(entry->value.text)) {
        return;
    }
    std::vector<std::string> help = commentHelp(entry->value.text);
    help.emplace_back("it is a whole number of MB, and has no effect: it can be left out");
    sink.add("ZX103", entry->value, whatIsWrong(keyword::maxLogicalDriveSize, entry->value.text),
             std::move(help));
}

} // namespace zolex::companion
