#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup9(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
