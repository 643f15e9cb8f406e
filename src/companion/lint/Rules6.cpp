#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

std::span<const Rule> rulesOfGroup6() noexcept {
    return {};
}

} // namespace zolex::companion
