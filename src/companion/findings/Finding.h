#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

enum class Severity { note, warning, error };

/// "note", "warning", "error".
[[nodiscard]] std::string_view severityWord(Severity severity);

/// Who would not take it.
enum class RefusedBy {
    nobody,
    zolex,   ///< the policies file is refused
    plan,    ///< no plan can be made
    utility, ///< the command would be refused
};

/// A place in a text file. Lines and columns count from 1, columns in bytes, bytes from 0.
struct TextPlace {
    std::int32_t line = 0;
    std::int32_t column = 0;
    std::int64_t byte = 0;
    friend bool operator==(const TextPlace&, const TextPlace&) = default;
};

/// What somebody should know, and what can be done.
struct Finding {
    std::string code; ///< "ZX301"; never empty
    Severity severity = Severity::error;
    RefusedBy refusedBy = RefusedBy::nobody;
    std::string summary;           ///< one line, without a full stop
    std::string detail;            ///< may be empty
    std::vector<std::string> help; ///< one line each: what to do
    std::string file;              ///< name as it was given; empty: not in a file
    TextPlace start;               ///< line 0: no place
    TextPlace end;                 ///< behind its last byte
    /// A second place that belongs to it, and what it is: "first here". Line 0: none.
    TextPlace otherStart;
    TextPlace otherEnd;
    std::string other;
    friend bool operator==(const Finding&, const Finding&) = default;
};

} // namespace zolex::companion
