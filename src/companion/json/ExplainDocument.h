#pragma once

#include "companion/findings/Explanation.h"
#include "companion/json/DocumentHead.h"

#include <string>

namespace zolex::companion {

/// The document `zolex-explain`.
[[nodiscard]] std::string explainDocument(const Explanation& explanation, const DocumentHead& head);

} // namespace zolex::companion
