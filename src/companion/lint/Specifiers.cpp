#include "companion/lint/Keywords.h"
#include "companion/lint/RuleGroups.h"
#include "companion/lint/ValueChecks.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <cstdint>

namespace zolex::companion {

namespace {

constexpr std::string_view specifiersHelp =
    "specifiers are ALL, m:, s:, t:, c:, o: and d:, between commas";

/// The models that a policy may name, in the order of the catalogue.
const std::vector<std::string>& modelNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        PciRowCursor cursor;
        for (PciRow row = cursor.nextPciRow(); row.type != -1; row = cursor.nextPciRow()) {
            const std::string name(
                ControllerCatalogue::getControllerName(row.type, row.subtype).view());
            if (ControllerCatalogue::isValidControllerName(name) &&
                std::find(all.begin(), all.end(), name) == all.end()) {
                all.push_back(name);
            }
        }
        return all;
    }();
    return names;
}

bool isNumberLetter(char letter) {
    return letter == 'c' || letter == 'o' || letter == 'd';
}

std::string_view numberWords(char letter) {
    return letter == 'c'   ? "controller number"
           : letter == 'o' ? "place among the controllers of a utility"
                           : "number of drives";
}

/// Whether zolex takes this specifier.
bool isTaken(std::string_view specifier) {
    if (text::equalsNoCase(specifier, "ALL")) {
        return true;
    }
    if (specifier.size() < 2 || specifier[1] != ':') {
        return false;
    }
    const char letter = text::lower(specifier[0]);
    const std::string_view value = specifier.substr(2);
    if (isNumberLetter(letter)) {
        return policy_value::nonZeroNumber(value).has_value();
    }
    return letter == 'm' || letter == 's' ||
           (letter == 't' && ControllerCatalogue::isValidControllerName(value));
}

/// The blanks beside the first colon of a specifier; empty without any.
Piece blanksAtColon(const Piece& specifier) {
    const std::string& text = specifier.text;
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) {
        return {};
    }
    std::size_t first = colon;
    while (first > 0 && (text[first - 1] == ' ' || text[first - 1] == '\t')) {
        --first;
    }
    if (first < colon) {
        return partOf(specifier, first, colon - first);
    }
    const std::size_t end = std::min(text.find_first_not_of(" \t", colon + 1), text.size());
    return end > colon + 1 ? partOf(specifier, colon + 1, end - colon - 1) : Piece{};
}

/// The specifier without the blanks beside its first colon.
std::string squeezed(std::string_view specifier) {
    const std::size_t colon = specifier.find(':');
    if (colon == std::string_view::npos) {
        return std::string(specifier);
    }
    return std::string(text::trim(specifier.substr(0, colon))) + ":" +
           std::string(text::trim(specifier.substr(colon + 1)));
}

/// Checks one entry of AppliesTo.
class EntryCheck {
  public:
    EntryCheck(const DocumentEntry& entry, FindingSink& sink) : entry_(entry), sink_(sink) {}

    void check() {
        for (const Piece& specifier : fieldsOf(entry_.value, ',')) {
            checkBlanks(specifier) || checkSpecifier(specifier);
        }
    }

  private:
    /// ZX111. True when it is told.
    bool checkBlanks(const Piece& specifier) {
        const Piece blanks = blanksAtColon(specifier);
        const std::string without = squeezed(specifier.text);
        if (blanks.text.empty() || (!isTaken(without) && !isLater(without))) {
            return false;
        }
        const bool isRefused = !isTaken(specifier.text);
        Finding& finding =
            sink_.add("ZX111", blanks,
                      isRefused ? "blanks beside the \":\" of a specifier"
                                : "the blanks behind the \":\" are part of the value",
                      {"write " + without});
        if (!isRefused) {
            finding.severity = Severity::warning;
            finding.refusedBy = RefusedBy::nobody;
            finding.detail = "No machine has such a value: the entry matches nothing.";
        }
        return true;
    }

    /// ZX206: zolex takes any machine type and serial number, and a comment behind one with it.
    void checkComment(const Piece& specifier) {
        const std::size_t semicolon = specifier.text.find(" ;");
        const std::size_t comment =
            semicolon == std::string::npos ? specifier.text.find(" #") : semicolon;
        if (comment != std::string::npos) {
            sink_.add("ZX206", partOf(specifier, comment + 1, specifier.text.size() - comment - 1),
                      entry_.keyword.text +
                          " can hold for no controller: the comment is a part of the value",
                      {"give the comment a line of its own, with \";\" before it"});
        }
    }

    static bool isLater(std::string_view specifier) {
        return specifier.size() > 2 && text::lower(specifier[0]) == 't' && specifier[1] == ':' &&
               isLaterModel(specifier.substr(2));
    }

    bool checkSpecifier(const Piece& specifier) {
        // A model that zolexctl alone knows is no error.
        if (isTaken(specifier.text) || isLater(specifier.text)) {
            checkComment(specifier);
            return true;
        }
        const bool hasLetter = specifier.text.size() >= 2 && specifier.text[1] == ':';
        const char letter = hasLetter ? text::lower(specifier.text[0]) : '\0';
        const Piece value = partOf(specifier, 2, specifier.text.size());
        if (isNumberLetter(letter)) {
            addNumber(letter, value);
        } else if (letter == 't') {
            addModel(value);
        } else {
            addUnknown(specifier);
        }
        return true;
    }

    void addNumber(char letter, const Piece& value) {
        std::vector<std::string> help = separatorHelp(value.text);
        help.push_back(std::string(1, letter) + ": takes a whole number from 1");
        sink_.add("ZX203", value,
                  value.text.empty()
                      ? std::string(1, letter) + ": has no value"
                      : quoted(value.text) + " is no " + std::string(numberWords(letter)),
                  std::move(help));
    }

    void addModel(const Piece& value) {
        std::vector<std::string> help = separatorHelp(value.text);
        if (const auto nearest = nearestWord(value.text, modelNames())) {
            help.push_back("did you mean t:" + *nearest + "?");
        } else if (help.empty()) {
            help.emplace_back("zolexctl show names the model of each controller");
        }
        sink_.add("ZX203", value,
                  value.text.empty() ? std::string("t: has no value")
                                     : "no controller model is called " + quoted(value.text),
                  std::move(help));
    }

    void addUnknown(const Piece& specifier) {
        const std::string& text = specifier.text;
        if (text.empty()) {
            const bool isAlone = entry_.value.text.empty();
            sink_.add("ZX203", specifier,
                      isAlone ? entry_.keyword.text + " has no value"
                              : "no specifier " + commaWords(entry_.value, specifier),
                      {isAlone ? std::string(specifiersHelp) : "take one comma out"});
            return;
        }
        std::vector<std::string> help = separatorHelp(text);
        if (ControllerCatalogue::isValidControllerName(text)) {
            help.push_back("did you mean t:" + text + "?");
        } else if (help.empty()) {
            help.emplace_back(specifiersHelp);
        }
        sink_.add("ZX203", specifier, quoted(text) + " is no specifier", std::move(help));
    }

    static std::vector<std::string> separatorHelp(std::string_view text) {
        const std::size_t semicolon = text.find(';');
        if (semicolon == std::string_view::npos) {
            return commentHelp(text);
        }
        const std::string_view rest = text::trim(text.substr(semicolon + 1));
        const bool isSpecifier = isTaken(rest) && rest.find(':') != std::string_view::npos;
        return isSpecifier ? std::vector<std::string>{"specifiers stand between commas"}
                           : commentHelp(text);
    }

    const DocumentEntry& entry_;
    FindingSink& sink_;
};

} // namespace

void checkSpecifiers(const PolicyDocument& document, FindingSink& sink) {
    for (const DocumentPolicy& policy : document.policies) {
        for (std::int32_t n = 1; n <= keyword::lastAppliesTo && !policy.isQuiet; ++n) {
            const DocumentEntry* entry = policy.effective(keyword::appliesTo + std::to_string(n));
            if (entry != nullptr) {
                EntryCheck(*entry, sink).check();
            }
        }
    }
}

} // namespace zolex::companion
