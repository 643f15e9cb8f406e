#pragma once

#include "companion/lint/FindingSink.h"
#include "companion/lint/Models.h"
#include "companion/lint/PolicyView.h"

namespace zolex::companion {

/// ZX408: settings that no command line of the models in AppliesTo tells. Whether one does is found
/// by making the lines for each value that the setting may have.
void checkEffects(const PolicyView& policy, Models& models, FindingSink& sink);

/// All rules of group 4 on one policy.
void checkLogicalRules(const PolicyView& policy, Models& models, FindingSink& sink);

} // namespace zolex::companion
