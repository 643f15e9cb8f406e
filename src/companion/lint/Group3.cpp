#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkGroup3(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
