#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup2(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
