#include "companion/lint/RuleGroups.h"

namespace zolex::companion {

void checkUnusedKeywords(const PolicyDocument& /*document*/, FindingSink& /*sink*/) {}

} // namespace zolex::companion
