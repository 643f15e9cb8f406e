#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

std::span<const Rule> rulesOfGroup4() noexcept {
    return {};
}

} // namespace zolex::companion
