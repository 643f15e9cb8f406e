#include "policies/PolicySection.h"

#include "foundation/Text.h"

#include <algorithm>

namespace zolex {

namespace {

/// `text` trimmed of blanks, tabs and newlines, and how many bytes of it stand before that.
struct Trimmed {
    explicit Trimmed(std::string_view whole)
        : text(zolex::text::trim(whole)),
          before(text.empty() ? 0 : static_cast<std::size_t>(text.data() - whole.data())) {}

    std::string_view text;
    std::size_t before;
};

} // namespace

bool PolicySection::addEntry(std::string_view text, std::int32_t number, std::int32_t firstColumn) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const Trimmed keyword(text.substr(0, equals));
    const Trimmed value(text.substr(equals + 1));
    PolicyEntry entry;
    entry.keyword = keyword.text;
    entry.value = value.text;
    entry.line = number;
    entry.keywordColumn = firstColumn + static_cast<std::int32_t>(keyword.before);
    entry.valueColumn = firstColumn + static_cast<std::int32_t>(equals + 1 + value.before);
    entries.push_back(std::move(entry));
    return true;
}

const PolicyEntry* PolicySection::find(std::string_view keyword) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [keyword](const PolicyEntry& entry) {
            return text::equalsNoCase(entry.keyword, keyword);
        });
    return found == entries.end() ? nullptr : &*found;
}

std::string_view PolicySection::lookUp(std::string_view keyword,
                                       std::string_view defaultValue) const {
    const PolicyEntry* entry = find(keyword);
    return entry != nullptr ? std::string_view(entry->value) : defaultValue;
}

} // namespace zolex
