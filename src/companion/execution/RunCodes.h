#pragma once

#include <string_view>

/// Why a run that changes a machine is refused, stops or is not believed.
namespace zolex::companion::run_problem {

inline constexpr std::string_view anotherMachine = "ZA101";
inline constexpr std::string_view machineChanged = "ZA102";
inline constexpr std::string_view lossNotAgreed = "ZA103";
inline constexpr std::string_view controllersSkipped = "ZA104";
inline constexpr std::string_view anotherRun = "ZA105";
inline constexpr std::string_view appliedBefore = "ZA106";
inline constexpr std::string_view runInterrupted = "ZA107";
inline constexpr std::string_view journalNotWritten = "ZA108";
inline constexpr std::string_view planNotApplicable = "ZA109";
inline constexpr std::string_view machineNotRead = "ZA110";
inline constexpr std::string_view runStepRefused = "ZA111";
inline constexpr std::string_view runStepNotEnded = "ZA112";
inline constexpr std::string_view runStepNotStarted = "ZA113";
inline constexpr std::string_view endsDifferent = "ZA114";
inline constexpr std::string_view endNotRead = "ZA115";
inline constexpr std::string_view anotherPlan = "ZA116";
inline constexpr std::string_view notAtRest = "ZA117";
inline constexpr std::string_view standsElsewhere = "ZA118";
inline constexpr std::string_view proofNotWritten = "ZA119";
inline constexpr std::string_view lostInUse = "ZA120";
inline constexpr std::string_view keptOffline = "ZA121";

} // namespace zolex::companion::run_problem
