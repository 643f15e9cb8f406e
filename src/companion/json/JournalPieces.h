#pragma once

#include "companion/execution/Journal.h"
#include "companion/json/DocumentReading.h"
#include "companion/machine/ProblemCodes.h"

#include <string_view>
#include <vector>

/// What journals and certificates have in common; for the files of this folder alone.
namespace zolex::companion {

/// The codes of what is wrong with a journal.
inline constexpr DocumentCodes journalCodes = {
    problem::journalUnreadable, problem::notAJournal,  problem::otherJournalVersion,
    problem::journalBroken,     problem::journalWrong, problem::journalTooLarge};

/// [{number, result, step, of, reason}]: what became of each controller.
[[nodiscard]] Json resultsJson(const std::vector<ControllerResult>& results);
/// Throws DocumentFault.
[[nodiscard]] std::vector<ControllerResult> readResults(const Part& part, std::string_view name);

} // namespace zolex::companion
