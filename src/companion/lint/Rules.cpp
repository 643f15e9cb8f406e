#include "companion/lint/Rules.h"

#include "companion/lint/RuleGroups.h"
#include "foundation/Text.h"

#include <algorithm>
#include <vector>

namespace zolex::companion {

std::span<const Rule> rules() {
    static const std::vector<Rule> all = [] {
        std::vector<Rule> joined;
        for (const std::span<const Rule> group :
             {rulesOfGroup0(), rulesOfGroup1(), rulesOfGroup2(), rulesOfGroup3(), rulesOfGroup4(),
              rulesOfGroup5(), rulesOfGroup6(), rulesOfGroup7(), rulesOfGroup9()}) {
            joined.insert(joined.end(), group.begin(), group.end());
        }
        return joined;
    }();
    return all;
}

const Rule* findRule(std::string_view id) {
    const std::span<const Rule> all = rules();
    const auto found = std::find_if(
        all.begin(), all.end(), [id](const Rule& rule) { return text::equalsNoCase(rule.id, id); });
    return found == all.end() ? nullptr : &*found;
}

} // namespace zolex::companion
