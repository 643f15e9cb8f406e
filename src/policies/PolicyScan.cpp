#include "policies/PolicyScan.h"

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

bool hasNamePrefix(std::string_view name) noexcept {
    return text::equalsNoCase(name.substr(0, namePrefix.size()), namePrefix);
}

/// The first entry after this one that has the same keyword, letter case ignored; null without one.
const PolicyEntry* findRepeat(const std::vector<PolicyEntry>& entries, std::size_t index) {
    for (std::size_t k = index + 1; k < entries.size(); ++k) {
        if (text::equalsNoCase(entries[index].keyword, entries[k].keyword)) {
            return &entries[k];
        }
    }
    return nullptr;
}

/// Whether the entries look like those of two policies, the second one's header being lost.
bool isTwoSections(const std::vector<PolicyEntry>& entries) {
    return std::count_if(entries.begin(), entries.end(), [](const PolicyEntry& entry) {
               return text::equalsNoCase(entry.keyword, "AppliesTo.1");
           }) > 1;
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
    return name.size() > namePrefix.size() && hasNamePrefix(name) &&
           std::all_of(name.begin() + namePrefix.size(), name.end(), isNameCharacter);
}

bool PolicyScan::run() {
    advance();
    while (haveLine_) {
        if (!readSection() && !faults_.goOn()) {
            return false;
        }
    }
    if (lines_.failed()) {
        return faults_.add(FaultKind::policiesUnreadable);
    }
    return faults_.areNone();
}

/// Takes the next line that is neither blank nor a comment. Of a line of the file with a fault,
/// what stands beyond 255 characters is left out.
bool PolicyScan::advance() {
    do {
        haveLine_ = lines_.nextMeaningful(line_);
    } while (haveLine_ && lines_.line() == faultyLine_);
    return haveLine_;
}

/// Reads one section, from its header to the line after its last entry.
bool PolicyScan::readSection() {
    if (!readHeader()) {
        skipSection();
        return false;
    }
    PolicySection& section = sections_.back();
    if (!readEntries(section)) {
        return false;
    }
    if (lines_.failed()) {
        section.isIncomplete = true;
        return true;
    }
    if (!checkKeywords(section) && !faults_.goOn()) {
        return false;
    }
    if (section.entries.size() == PolicySection::maxEntries) {
        advance();
    }
    return true;
}

/// False when there is no section to read.
bool PolicyScan::readHeader() {
    const std::string_view body = withoutLeadingSpaces(line_);
    if (body[0] != '[') {
        if (!sections_.empty()) {
            sections_.back().isIncomplete = true; // it has too many entries
        }
        return failAtLine(FaultKind::policyCharacterInvalid, body.substr(0, 1), "[");
    }
    const std::optional<std::string_view> name = headerName(line_);
    if (!name) {
        return failAtLine(FaultKind::policyDeclarationInvalid, body.substr(0, 0),
                          "[Policy.<name>]");
    }
    if (!isValidPolicyName(*name) || !isNewName(*name)) {
        failAtLine(FaultKind::policyNameInvalid, *name);
        if (!faults_.goOn() || !hasNamePrefix(*name)) {
            return false;
        }
    }
    if (sections_.size() == PolicyList::maxPolicies) {
        failAtLine(FaultKind::policiesTooMany, body.substr(0, 0));
        haveLine_ = false;
        return false;
    }
    PolicySection section;
    section.name = *name;
    section.line = static_cast<std::int32_t>(lines_.line());
    section.column = static_cast<std::int32_t>(lines_.column() + line_.size() - body.size());
    sections_.push_back(std::move(section));
    report_.notef(level::detail, "\t%s\n", sections_.back().name.c_str());
    return true;
}

/// Goes on to the next header when the read goes on.
void PolicyScan::skipSection() {
    while (faults_.goOn() && haveLine_ && advance() && !isSectionHeader(line_)) {
    }
}

/// Stops with the line at hand being the next header, with no line at the end of the file, or after
/// the last entry that a section may hold.
bool PolicyScan::readEntries(PolicySection& section) {
    while (section.entries.size() < PolicySection::maxEntries && advance()) {
        if (isSectionHeader(line_)) {
            return true;
        }
        if (!readEntry(section)) {
            leaveOutEntry(section);
            if (!faults_.goOn()) {
                return false;
            }
        }
    }
    return true;
}

bool PolicyScan::readEntry(PolicySection& section) {
    if (!section.addEntry(line_, static_cast<std::int32_t>(lines_.line()),
                          static_cast<std::int32_t>(lines_.column()))) {
        return failAtLine(FaultKind::policyLineInvalid, line_, "keyword = value");
    }
    const std::string& keyword = section.entries.back().keyword;
    return keyword::isValid(keyword) || failAtLine(FaultKind::policyKeywordInvalid,
                                                   text::trim(line_.substr(0, line_.find('='))));
}

/// Drops the entries of the line at fault: one that stands before its 256th character is cut short.
void PolicyScan::leaveOutEntry(PolicySection& section) {
    section.isIncomplete = true;
    while (!section.entries.empty() && section.entries.back().line == faultyLine_) {
        section.entries.pop_back();
    }
}

bool PolicyScan::checkKeywords(const PolicySection& section) {
    const std::vector<PolicyEntry>& entries = section.entries;
    std::vector<const PolicyEntry*> repeats; // that are told
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const PolicyEntry* repeat = findRepeat(entries, i);
        if (repeat == nullptr) {
            continue;
        }
        const bool isTold = std::find(repeats.begin(), repeats.end(), &entries[i]) != repeats.end();
        repeats.push_back(repeat);
        if (isTold) {
            continue;
        }
        faults_.add(FaultKind::policyKeywordRepeated,
                    {repeat->line, repeat->keywordColumn, section.name, repeat->keyword, 0},
                    entries[i].keyword);
        if (!faults_.goOn() || isTwoSections(entries)) {
            return false;
        }
    }
    return section.find("AppliesTo.1") != nullptr || section.isIncomplete ||
           faults_.add(FaultKind::policyWithoutAppliesTo,
                       {section.line, section.column, section.name, "AppliesTo.1", 0});
}

bool PolicyScan::isNewName(std::string_view name) const {
    return std::none_of(sections_.begin(), sections_.end(), [name](const PolicySection& section) {
        return section.name.equalsNoCase(name);
    });
}

/// Reports a fault of `piece`, which is part of the line at hand. Always false.
bool PolicyScan::failAtLine(FaultKind kind, std::string_view piece, std::string_view possible) {
    faultyLine_ = lines_.line();
    PolicySpot spot;
    spot.line = static_cast<std::int32_t>(faultyLine_);
    spot.column = static_cast<std::int32_t>(lines_.column()) +
                  static_cast<std::int32_t>(piece.data() - line_.data());
    if (!sections_.empty() && !isSectionHeader(line_)) {
        spot.section = sections_.back().name;
    }
    spot.number = static_cast<std::int32_t>(lines_.number());
    return faults_.add(kind, spot, piece, possible);
}

} // namespace zolex
