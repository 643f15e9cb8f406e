#pragma once

#include "companion/findings/Explanation.h"
#include "companion/text/Terminal.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// What is known of a code, letter case ignored: "ZX411", "ZP101", "11" (an exit code of zolex),
/// "exit-4" (one of zolexctl). Nothing for any other text.
[[nodiscard]] std::optional<Explanation> explanationOf(std::string_view code);

/// All codes that there are: rules, problems, exit codes of zolex and of zolexctl.
[[nodiscard]] std::vector<std::string> explainedCodes();

/// The code that a text without an explanation is most like; nothing when none is near.
[[nodiscard]] std::optional<std::string> nearestCode(std::string_view text);

/// The explanation in lines of the style's width.
[[nodiscard]] std::string explanationText(const Explanation& explanation, const TextStyle& style);

} // namespace zolex::companion
