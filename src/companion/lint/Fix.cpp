#include "companion/lint/Fix.h"

#include "companion/lint/Keywords.h"

#include <algorithm>
#include <vector>

namespace zolex::companion {

FixedText fixPolicies(std::string_view text, std::span<const Finding> findings) {
    std::vector<const Finding*> wanted;
    for (const Finding& finding : findings) {
        if (finding.code == "ZX901" || finding.code == "ZX902") {
            wanted.push_back(&finding);
        }
    }
    std::sort(wanted.begin(), wanted.end(),
              [](const Finding* a, const Finding* b) { return a->start.byte < b->start.byte; });
    FixedText fixed;
    std::size_t copied = 0;
    for (const Finding* finding : wanted) {
        const auto start = static_cast<std::size_t>(finding->start.byte);
        const auto end = static_cast<std::size_t>(finding->end.byte);
        fixed.text += text.substr(copied, start - copied);
        copied = end;
        if (finding->code == "ZX901") {
            ++fixed.blanks;
            continue;
        }
        const std::string_view keyword = text.substr(start, end - start);
        fixed.text += usualSpelling(keyword).value_or(std::string(keyword));
        ++fixed.keywords;
    }
    fixed.text += text.substr(copied);
    return fixed;
}

} // namespace zolex::companion
