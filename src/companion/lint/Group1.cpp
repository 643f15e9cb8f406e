#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup1(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
