#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

std::span<const Rule> rulesOfGroup1() noexcept {
    return {};
}

} // namespace zolex::companion
