#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

std::span<const Rule> rulesOfGroup2() noexcept {
    return {};
}

} // namespace zolex::companion
