#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkSpecifiers(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
