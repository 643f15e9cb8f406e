#include "policies/PolicySection.h"

#include "foundation/Text.h"

namespace zolex {

bool PolicySection::addEntry(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    entries.push_back({std::string(text::trim(line.substr(0, equals))),
                       std::string(text::trim(line.substr(equals + 1)))});
    return true;
}

std::string_view PolicySection::lookUp(std::string_view keyword,
                                       std::string_view defaultValue) const {
    for (const PolicyEntry& entry : entries) {
        if (text::equalsNoCase(entry.keyword, keyword)) {
            return entry.value;
        }
    }
    return defaultValue;
}

} // namespace zolex
