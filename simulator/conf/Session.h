#pragma once

#include "conf/Dialect.h"
#include "frontend/Words.h"

namespace zolex_sim::conf {

/// One command line on its way.
struct Call {
    const Dialect& dialect;
    Words words;
    std::size_t found = 0;            ///< controllers of the utility
    Controller* controller = nullptr; ///< the one that the command line names
    std::size_t number = 0;           ///< of that one, from 1
};

/// How commands end: with what was done, or with a reason; all begin with the number of controllers
/// that were found.
PlayResult completed(const Call& call, const std::string& text, bool changed);
PlayResult refused(const Call& call, const std::string& reason);
/// Refuses the word at hand, or the end that came too early.
PlayResult misunderstood(const Call& call);

/// Takes "NOPROMPT" as the last word. What is returned otherwise ends the command.
std::optional<PlayResult> takeConfirmation(Call& call);

} // namespace zolex_sim::conf
