#include "companion/cli/Completion.h"

#include "companion/cli/Values.h"
#include "companion/commands/Explanations.h"
#include "companion/machine/Utilities.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

/// The words of a text, parted by any of the letters.
std::vector<std::string> wordsOf(std::string_view text, std::string_view partedBy) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = text.find_first_of(partedBy);
        if (end != 0) {
            words.emplace_back(text.substr(0, end));
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return words;
}

bool takes(const OptionRow& option, const std::string& word) {
    return option.fault != nullptr && option.fault(word).empty();
}

/// What the option's text names and the option takes, when it does not take anything.
std::vector<std::string> wordsToldOf(const OptionRow& option) {
    std::vector<std::string> words;
    if (takes(option, "no such word")) {
        return words;
    }
    for (std::string& word : wordsOf(option.text, " ,:;()")) {
        const bool isNew = std::find(words.begin(), words.end(), word) == words.end();
        if (isNew && std::all_of(word.begin(), word.end(), isLower) && takes(option, word)) {
            words.push_back(std::move(word));
        }
    }
    return words;
}

std::vector<std::string> codesTakenBy(const OptionRow& option) {
    std::vector<std::string> codes = explainedCodes();
    std::erase_if(codes, [&option](const std::string& code) { return !takes(option, code); });
    return codes;
}

std::vector<std::string> utilitiesTakenBy(const OptionRow& option) {
    std::vector<std::string> names;
    for (const UtilityNames& each : utilityNames()) {
        if (takes(option, std::string(each.utility) + "=program")) {
            names.emplace_back(each.utility);
        }
    }
    return names;
}

Offered oneOf(std::vector<std::string> words) {
    return {words.empty() ? Offer::nothing : Offer::words, std::move(words)};
}

bool hasValue(std::string_view name) {
    const auto rows = optionRows();
    return std::any_of(rows.begin(), rows.end(), [name](const OptionRow& row) {
        return (row.name == name || row.shortName == name) && !row.value.empty();
    });
}

bool namesFile(std::string_view value) {
    constexpr std::array<std::string_view, 7> names{"FILE",        "JOURNAL",  "PATH",     "PLAN",
                                                    "CERTIFICATE", "POLICIES", "RECORDING"};
    return std::find(names.begin(), names.end(), value) != names.end();
}

} // namespace

Offered offeredValues(const OptionRow& option, const CommandRow& command) {
    if (option.value == "FORMAT") {
        return oneOf(wordsOf(command.formats, " "));
    }
    if (option.value == "IDS") {
        return {Offer::list, codesTakenBy(option)};
    }
    if (option.value == "NAME=PATH") {
        return {Offer::paths, utilitiesTakenBy(option)};
    }
    if (option.value == "DIR" || option.value == "FOLDER") {
        return {Offer::folders, {}};
    }
    if (namesFile(option.value)) {
        return {Offer::files, {}};
    }
    // A value with a name in small letters is its own name: "policies|ironic".
    if (!option.value.empty() && isLower(option.value.front())) {
        return oneOf(wordsOf(option.value, "|"));
    }
    return oneOf(wordsToldOf(option));
}

Offered offeredWords(const CommandRow& command) {
    const std::vector<std::string> usage = wordsOf(command.usage, " []");
    for (std::size_t i = 1; i < usage.size() && usage[i] != "--"; ++i) {
        if (usage[i].front() == '-') {
            i += hasValue(usage[i]) ? 1 : 0;
        } else if (usage[i] == "CODE") {
            return oneOf(explainedCodes());
        } else if (usage[i] != "OPTIONS") {
            return {Offer::files, {}};
        }
    }
    return {};
}

} // namespace zolex::companion
