#pragma once

#include "companion/commands/Context.h"
#include "companion/text/StyleChoice.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The values of options: what they mean, and what is wrong with them.
namespace zolex::companion {

inline constexpr std::int32_t largestControllerNumber = 999;
inline constexpr std::int32_t longestCaptureLimit = 86400; ///< seconds
inline constexpr std::int32_t mostJobs = 256;
inline constexpr std::int32_t mostLeastMegabytes = 1048576;

[[nodiscard]] std::optional<Format> formatNamed(std::string_view name);
/// "1,3"; nothing when a part is no number of a controller.
[[nodiscard]] std::optional<std::vector<std::int32_t>> controllerNumbers(std::string_view text);
/// "MEGACLI=/opt/MegaCli64", the name in any letter case; nothing when it is none.
[[nodiscard]] std::optional<std::pair<std::string, std::string>> utilityPath(std::string_view text);
/// The family that is asked only by name, in any letter case; empty when it is none.
[[nodiscard]] std::string familyNamed(std::string_view text);
/// The parts of "ZX5,ZX301".
[[nodiscard]] std::vector<std::string> parts(std::string_view text);
[[nodiscard]] std::optional<std::int32_t> wholeNumber(std::string_view text, std::int32_t least,
                                                      std::int32_t most);

// What is wrong with a value; empty when nothing is.
[[nodiscard]] std::string faultOfText(std::string_view text);
[[nodiscard]] std::string faultOfWidth(std::string_view text);
[[nodiscard]] std::string faultOfColour(std::string_view text);
[[nodiscard]] std::string faultOfUtility(std::string_view text);
[[nodiscard]] std::string faultOfFamily(std::string_view text);
[[nodiscard]] std::string faultOfMegabytes(std::string_view text);
[[nodiscard]] std::string faultOfControllers(std::string_view text);
[[nodiscard]] std::string faultOfLimit(std::string_view text);
[[nodiscard]] std::string faultOfJobs(std::string_view text);
[[nodiscard]] std::string faultOfRules(std::string_view text);
[[nodiscard]] std::string faultOfTarget(std::string_view text);
[[nodiscard]] std::string faultOfOrigin(std::string_view text);
[[nodiscard]] std::string faultOfModel(std::string_view text);
/// Of rules that alone are wanted: one that does not exist would find nothing in any file.
[[nodiscard]] std::string faultOfSelected(std::string_view text);
[[nodiscard]] std::string faultOfStrategy(std::string_view text);
/// Of what may be lost: a word, or a code of consent.
[[nodiscard]] std::string faultOfDestroy(std::string_view text);
/// Of errors that a plan lets pass: ids of rules and of what only a plan finds.
[[nodiscard]] std::string faultOfAccepted(std::string_view text);

} // namespace zolex::companion
