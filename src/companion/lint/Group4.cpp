#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup4(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
