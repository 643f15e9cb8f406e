#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/ProblemCodes.h"

#include <span>
#include <string>
#include <string_view>

namespace zolex::companion {

/// Why zolex is not started by guard, and what is told beside.
namespace guard_problem {
inline constexpr std::string_view wordNotUnderstood = "ZA201";
inline constexpr std::string_view fileNotRead = "ZA202";
inline constexpr std::string_view switchesExclude = "ZA203";
inline constexpr std::string_view noSuchNumber = "ZA204";
inline constexpr std::string_view inventedInput = "ZA205";
inline constexpr std::string_view skippedController = "ZA206";
inline constexpr std::string_view asksAgain = "ZA207";
inline constexpr std::string_view programMissing = "ZA208";
inline constexpr std::string_view wouldFail = "ZA209";
inline constexpr std::string_view endsElsewhere = "ZA210";
inline constexpr std::string_view zolexMissing = "ZA211";
inline constexpr std::string_view notAgreed = "ZA212";
inline constexpr std::string_view changedMeanwhile = "ZA213";
inline constexpr std::string_view locked = "ZA214";
inline constexpr std::string_view notPlayed = "ZA215";
inline constexpr std::string_view runsAllTheSame = "ZA216";
inline constexpr std::string_view drivesInUse = "ZA217";
inline constexpr std::string_view endedElsewhere = "ZA218";
} // namespace guard_problem

/// What guard can tell, in the order of the ids.
[[nodiscard]] std::span<const ProblemCode> guardCodes();
/// Null when there is none of this id; letter case is ignored.
[[nodiscard]] const ProblemCode* findGuardCode(std::string_view id);

/// A finding of this code, with its usual severity, that no --accept lets pass.
[[nodiscard]] Finding guardFinding(std::string_view id, std::string summary,
                                   std::vector<std::string> help = {});

} // namespace zolex::companion
