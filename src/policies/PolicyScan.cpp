#include "policies/PolicyScan.h"

#include "controllers/Application.h"
#include "foundation/Text.h"
#include "policies/Policy.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <utility>

namespace zolex {

namespace {

constexpr std::string_view namePrefix = "Policy.";

bool isNameCharacter(char c) noexcept {
    const char lower = text::lower(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
}

/// A keyword that equals an earlier one of the section, in the earlier spelling; null without one.
const std::string* findRepeated(const std::vector<PolicyEntry>& entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (std::size_t k = i + 1; k < entries.size(); ++k) {
            if (text::equalsNoCase(entries[i].keyword, entries[k].keyword)) {
                return &entries[i].keyword;
            }
        }
    }
    return nullptr;
}

} // namespace

std::optional<std::string_view> headerName(std::string_view line) noexcept {
    const std::string_view header = withoutLeadingSpaces(line);
    const std::size_t end = header.find(']');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    return header.substr(1, end - 1);
}

bool isValidPolicyName(std::string_view name) noexcept {
    return name.size() > namePrefix.size() &&
           text::equalsNoCase(name.substr(0, namePrefix.size()), namePrefix) &&
           std::all_of(name.begin() + namePrefix.size(), name.end(), isNameCharacter);
}

bool PolicyScan::run() {
    advance();
    while (haveLine_) {
        if (!readSection()) {
            return false;
        }
    }
    if (lines_.failed()) {
        const CString& name = application_.settings.policiesFile;
        return fail(CString::concatenate("Could not open policies file:  ", name, "\n"));
    }
    return true;
}

/// Takes the next line that is neither blank nor a comment.
bool PolicyScan::advance() {
    haveLine_ = lines_.nextMeaningful(line_);
    return haveLine_;
}

/// Reads one section, from its header to the line after its last entry.
bool PolicyScan::readSection() {
    if (!readHeader()) {
        return false;
    }
    PolicySection& section = sections_.back();
    if (!readEntries(section)) {
        return false;
    }
    if (lines_.failed()) {
        return true; // what was read is no whole section
    }
    if (!checkKeywords(section)) {
        return false;
    }
    if (section.entries.size() == PolicySection::maxEntries) {
        advance();
    }
    return true;
}

bool PolicyScan::readHeader() {
    const std::string_view body = withoutLeadingSpaces(line_);
    if (body[0] != '[') {
        return failAtLine(" -- Invalid character:  ", body.substr(0, 1), "\n");
    }
    const std::optional<std::string_view> name = headerName(line_);
    if (!name) {
        return failAtLine(" -- Invalid policy declaration.\n", {}, {});
    }
    if (!isValidPolicyName(*name) || !isNewName(*name)) {
        return failAtLine(" -- Invalid or duplicate policy name:  ", *name, "\n");
    }
    if (sections_.size() == PolicyList::maxPolicies) {
        return failAtLine(" -- Too many policies specified.\n",
                          "\tThe maximum number of policies that you may specify is 100\n", {});
    }
    sections_.push_back({*name, {}});
    application_.printer().printf(level::detail, "\t%s\n", sections_.back().name.c_str());
    return true;
}

/// Stops with the line at hand being the next header, with no line at the end of the file, or after
/// the last entry that a section may hold.
bool PolicyScan::readEntries(PolicySection& section) {
    while (section.entries.size() < PolicySection::maxEntries && advance()) {
        if (isSectionHeader(line_)) {
            return true;
        }
        if (!section.addEntry(line_)) {
            return failAtLine(" -- Line not in keyword = value format:  ", line_, {});
        }
        const std::string& keyword = section.entries.back().keyword;
        if (!keyword::isValid(keyword)) {
            return failAtLine(" -- Invalid keyword:  ", keyword, "\n");
        }
    }
    return true;
}

bool PolicyScan::checkKeywords(const PolicySection& section) {
    if (const std::string* repeated = findRepeated(section.entries)) {
        return fail(
            CString::concatenate(section.name, " -- Duplicate keywords found:  ", *repeated));
    }
    const bool applies =
        std::any_of(section.entries.begin(), section.entries.end(), [](const PolicyEntry& entry) {
            return text::equalsNoCase(entry.keyword, "AppliesTo.1");
        });
    return applies ||
           fail(CString::concatenate(section.name, " -- Each policy must have an AppliesTo.1"));
}

bool PolicyScan::isNewName(std::string_view name) const {
    return std::none_of(sections_.begin(), sections_.end(), [name](const PolicySection& section) {
        return section.name.equalsNoCase(name);
    });
}

bool PolicyScan::failAtLine(std::string_view head, std::string_view value, std::string_view tail) {
    CString message = "Line ";
    message.append(CString::fromInt(lines_.number())).append(head).append(value).append(tail);
    return fail(message);
}

bool PolicyScan::fail(std::string_view message) {
    application_.printer().errorBlock(message);
    return false;
}

} // namespace zolex
