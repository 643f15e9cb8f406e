#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

std::span<const Rule> rulesOfGroup9() noexcept {
    return {};
}

} // namespace zolex::companion
