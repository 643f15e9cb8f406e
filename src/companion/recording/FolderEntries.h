#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Names of the entries of a folder, in any order; nothing when it is none that can be read.
[[nodiscard]] std::optional<std::vector<std::string>> folderEntries(const std::string& folder);

} // namespace zolex::companion
