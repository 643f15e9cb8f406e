#include "companion/lint/Keywords.h"
#include "companion/lint/RuleGroups.h"

#include <cstdint>
#include <optional>

namespace zolex::companion {

namespace {

/// ZX901. A line of tabs is another matter: zolex takes it for an entry.
void checkTrailingBlanks(const PolicyDocument& document, FindingSink& sink) {
    for (std::size_t i = 0; i < document.lineStarts.size(); ++i) {
        const auto number = static_cast<std::int32_t>(i + 1);
        const std::string_view line = document.line(number);
        const std::size_t last = line.find_last_not_of(" \t");
        const std::size_t end = last == std::string_view::npos ? 0 : last + 1;
        if (end == line.size() || (end == 0 && line.find('\t') != std::string_view::npos)) {
            continue;
        }
        const auto place = [&](std::size_t byte) {
            return TextPlace{number, static_cast<std::int32_t>(byte + 1),
                             static_cast<std::int64_t>(document.lineStarts[i] + byte)};
        };
        sink.add("ZX901", place(end), place(line.size()), "blanks at the end of the line",
                 {"zolexctl check --fix takes them out"});
    }
}

/// ZX902.
void checkSpelling(const PolicyDocument& document, FindingSink& sink) {
    for (const DocumentPolicy& policy : document.policies) {
        for (const DocumentEntry& entry : policy.entries) {
            const std::optional<std::string> usual = usualSpelling(entry.keyword.text);
            if (usual && *usual != entry.keyword.text) {
                sink.add("ZX902", entry.keyword,
                         entry.keyword.text + " is usually written " + *usual,
                         {"zolexctl check --fix writes it so"});
            }
        }
    }
}

} // namespace

void checkGroup9(const PolicyDocument& document, FindingSink& sink) {
    checkTrailingBlanks(document, sink);
    checkSpelling(document, sink);
}

} // namespace zolex::companion
