#pragma once

#include "companion/execution/Journal.h"
#include "companion/planning/Plan.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// What the text of a journal is told besides the journal.
struct JournalTextTerms {
    /// The plan that was carried out, which has words for each step; null: not at hand.
    const MachinePlan* plan = nullptr;
    bool verbose = false; ///< what every step printed, not only those that failed
};

/// What `show JOURNAL` writes on a terminal: what was planned and agreed to, each step with what
/// came of it, how it ended, and how to go on where it did not.
[[nodiscard]] std::string journalText(const JournalHistory& journal, const TextStyle& style,
                                      const JournalTextTerms& terms = {});

} // namespace zolex::companion
