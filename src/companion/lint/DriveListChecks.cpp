#include "companion/lint/ValueChecks.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace zolex::companion {

namespace {

constexpr std::string_view drivesHelp =
    "drives are numbers from 1, or channel:id pairs, between commas";

enum class DriveKind { number, pair, neither };

DriveKind kindOf(std::string_view item) {
    const auto list = policy_value::driveList(item);
    if (!list) {
        return DriveKind::neither;
    }
    return list->numbers.empty() ? DriveKind::pair : DriveKind::number;
}

/// "3,4,5" for "3-5"; nothing for anything else.
std::optional<std::string> writtenRange(std::string_view item) {
    constexpr std::int32_t mostDrives = 32;
    const std::size_t dash = item.find('-');
    if (dash == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = policy_value::nonZeroNumber(text::trim(item.substr(0, dash)));
    const auto last = policy_value::nonZeroNumber(text::trim(item.substr(dash + 1)));
    if (!first || !last || *last <= *first || *last - *first >= mostDrives) {
        return std::nullopt;
    }
    std::string list = std::to_string(*first);
    for (std::int32_t number = *first + 1; number <= *last; ++number) {
        list += ',' + std::to_string(number);
    }
    return list;
}

/// The text without the blanks beside its colons.
std::string withoutBlanksAtColons(const Piece& item) {
    std::string joined;
    for (const ColonField& field : colonFields(item)) {
        joined += joined.empty() && field.at == 0 ? "" : ":";
        joined += field.trimmed;
    }
    return joined;
}

std::vector<std::string> itemHelp(const Piece& item, bool isArray) {
    std::string commas = item.text;
    std::replace(commas.begin(), commas.end(), ';', ',');
    if (commas != item.text && policy_value::driveList(commas)) {
        return {"write " + commas};
    }
    std::vector<std::string> help = commentHelp(item.text);
    if (const auto range = writtenRange(item.text)) {
        help.push_back("write " + *range);
    } else if (text::equalsNoCase(item.text, "ALL")) {
        help.emplace_back(isArray ? "ALL stands alone: it takes all drives that remain"
                                  : "only an array can be ALL: name the drives");
    } else if (item.text == "0") {
        help.emplace_back("the first drive is 1");
    } else if (help.empty()) {
        help.emplace_back(drivesHelp);
    }
    return help;
}

/// A fault of the form of one drive.
void addItem(FindingSink& sink, const DocumentEntry& entry, const Piece& item, bool isArray) {
    if (item.text.empty()) {
        sink.add("ZX104", item,
                 "no drive " + commaWords(entry.value, item) + " of " + entry.keyword.text,
                 {"take one comma out"});
        return;
    }
    if (kindOf(withoutBlanksAtColons(item)) == DriveKind::pair) {
        const std::vector<ColonField> fields = colonFields(item);
        const auto field = std::find_if(fields.begin(), fields.end(),
                                        [](const ColonField& row) { return row.hasBlanks(); });
        if (field != fields.end()) {
            addBlanks(sink, item, *field);
            return;
        }
    }
    sink.add("ZX104", item, quoted(item.text) + " is no drive in " + entry.keyword.text,
             itemHelp(item, isArray));
}

/// ZX104, ZX105.
void checkList(const DocumentEntry& entry, bool isArray, FindingSink& sink) {
    const Piece& value = entry.value;
    if (policy_value::driveList(value.text) || (isArray && text::equalsNoCase(value.text, "ALL"))) {
        return;
    }
    if (value.text.empty()) {
        sink.add("ZX104", value, entry.keyword.text + " names no drive", {std::string(drivesHelp)});
        return;
    }
    const std::vector<Piece> items = fieldsOf(value, ',');
    bool isFaulty = false;
    for (const Piece& item : items) {
        if (kindOf(item.text) == DriveKind::neither) {
            addItem(sink, entry, item, isArray);
            isFaulty = true;
        }
    }
    if (isFaulty) {
        return;
    }
    const auto other = std::find_if(items.begin(), items.end(), [&items](const Piece& item) {
        return kindOf(item.text) != kindOf(items.front().text);
    });
    if (other != items.end()) {
        Finding& finding =
            sink.add("ZX105", *other, "drive numbers and channel:id pairs in one list",
                     {"name all drives of " + entry.keyword.text + " in one way"});
        finding.otherStart = items.front().start;
        finding.otherEnd = items.front().end;
        finding.other = "the other way";
    }
}

std::string arrayKeyword(char letter) {
    return std::string(keyword::array) + letter;
}

/// ZX107, ZX108.
void checkOrder(const DocumentPolicy& policy, FindingSink& sink) {
    const bool lacksNothing = policy.isIncomplete || hasLaterKeyword(policy);
    const DocumentEntry* mode = policy.effective(keyword::arrayMode);
    const bool isCustom = mode != nullptr && text::equalsNoCase(mode->value.text, "CUSTOM");
    bool isGapTold = lacksNothing;
    if (!isGapTold && isCustom && policy.effective("Array.A") == nullptr) {
        sink.add("ZX107", policy, "Array_Mode = CUSTOM without Array.A in " + policy.name.text,
                 {"add Array.A = 1,2 or the drives that it shall have"});
        isGapTold = true;
    }
    char missing = '\0';
    const DocumentEntry* taker = nullptr; // of all drives
    for (char letter = 'A'; letter <= 'H'; ++letter) {
        const DocumentEntry* entry = policy.effective(arrayKeyword(letter));
        if (entry == nullptr) {
            missing = missing == '\0' ? letter : missing;
            continue;
        }
        if (missing != '\0' && !isGapTold) {
            sink.add("ZX107", entry->keyword,
                     entry->keyword.text + " without " + arrayKeyword(missing),
                     {"letters have no gap: call it " + arrayKeyword(missing)});
            isGapTold = true;
        }
        if (taker != nullptr) {
            Finding& finding =
                sink.add("ZX108", entry->keyword,
                         entry->keyword.text + " after " + taker->keyword.text + " = ALL",
                         {"only the last array can be ALL"});
            finding.otherStart = taker->value.start;
            finding.otherEnd = taker->value.end;
            finding.other = "takes all drives";
        } else if (text::equalsNoCase(entry->value.text, "ALL")) {
            taker = entry;
        }
    }
}

} // namespace

void checkDriveLists(const DocumentPolicy& policy, FindingSink& sink) {
    for (char letter = 'A'; letter <= 'H'; ++letter) {
        if (const DocumentEntry* entry = policy.effective(arrayKeyword(letter))) {
            checkList(*entry, true, sink);
        }
    }
    if (const DocumentEntry* entry = policy.effective(keyword::hotspares)) {
        checkList(*entry, false, sink);
    }
    checkOrder(policy, sink);
}

} // namespace zolex::companion
