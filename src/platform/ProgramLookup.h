#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zolex {

/// Where a program named without a path is looked for.
struct ProgramPlaces {
    std::string_view ownDirectory; ///< of the running executable; empty when it is not known
    std::string_view searchPath;   ///< directories separated by ":"; an empty one is the current
};

/// The path under which `program` is started: a "\" counts as "/", and letter case stands as given.
/// A name with a "/" is used as it is, unseen. Any other is looked for in the directory of the
/// running executable, then in the current one, then along the search path; the first for which
/// `isProgram` holds is taken. Nothing for an empty name and for one that is found nowhere.
[[nodiscard]] std::optional<std::string>
findProgram(std::string_view program, const ProgramPlaces& places,
            const std::function<bool(const std::string& path)>& isProgram);

} // namespace zolex
