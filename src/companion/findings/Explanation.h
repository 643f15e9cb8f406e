#pragma once

#include "companion/findings/Finding.h"

#include <optional>
#include <string>

namespace zolex::companion {

/// What is known of a code: a rule, a problem of a machine, or an exit code.
struct Explanation {
    std::string code;    ///< "ZX301", "11", "exit-4"
    std::string program; ///< whose exit code it is, "zolex" or "zolexctl"; empty: it is none
    std::string title;   ///< in a few words
    std::optional<Severity> severity; ///< nothing for an exit code
    RefusedBy refusedBy = RefusedBy::nobody;
    std::string why;  ///< what it means for a server
    std::string help; ///< what to do. A line that begins with two blanks is an example.
};

} // namespace zolex::companion
