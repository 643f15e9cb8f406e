#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup5(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
