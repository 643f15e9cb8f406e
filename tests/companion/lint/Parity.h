#pragma once

#include <string>

namespace zolex::companion::test {

/// What is wrong with what the linter finds in a policies file, against what zolex says of it: it
/// must find an error of reading exactly where zolex refuses the file, and one in the line of
/// zolex's first fault. Empty when they agree.
[[nodiscard]] std::string disagreement(const std::string& text);

[[nodiscard]] bool isRefused(const std::string& text);
/// What zolex prints of it first.
[[nodiscard]] std::string zolexSays(const std::string& text);
/// All that the linter finds, one line each.
[[nodiscard]] std::string linterSays(const std::string& text);

} // namespace zolex::companion::test
