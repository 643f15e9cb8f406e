#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup6(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
