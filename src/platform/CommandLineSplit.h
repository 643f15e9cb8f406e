#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolex {

/// The arguments of a command line: its parts between blanks, tabs and line ends. Double quotes
/// group and are removed; a pair with nothing in it makes an empty argument, and one that is not
/// closed groups to the end.
[[nodiscard]] std::vector<std::string> splitCommandLine(std::string_view commandLine);

} // namespace zolex
