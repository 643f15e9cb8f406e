#pragma once

#include "companion/findings/Finding.h"
#include "companion/text/Terminal.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Findings as texts. Each ends with a newline; none steers a terminal, whatever a file holds.
namespace zolex::companion {

/// A text file that findings point into.
struct SourceFile {
    std::string name; ///< as the findings name it
    std::string_view text;
};

/// How many findings there are of each kind.
struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
};
[[nodiscard]] FindingCounts countFindings(std::span<const Finding> findings);

/// "3 errors, 2 warnings" or "no findings".
[[nodiscard]] std::string countsText(const FindingCounts& counts);

/// For a person: each with its line of the file, a mark below it and what helps, and an empty line
/// between two.
[[nodiscard]] std::string diagnosticsText(std::span<const Finding> findings,
                                          std::span<const SourceFile> sources,
                                          const TextStyle& style);

/// One line each: "site.ini:12:17: error: drive 4 is listed twice in Array.B [ZX301]".
[[nodiscard]] std::string conciseDiagnostics(std::span<const Finding> findings,
                                             const TextStyle& style);

/// Workflow commands of GitHub, one line each: "::error file=site.ini,line=12,...".
[[nodiscard]] std::string githubDiagnostics(std::span<const Finding> findings);

} // namespace zolex::companion
