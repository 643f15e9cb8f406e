#pragma once

#include <string>
#include <vector>

namespace zolex::companion::test {

/// A policies file that a rule finds something in, all that is told of it, and one like it that the
/// rule finds nothing in.
struct Case {
    std::string rule;
    std::string name;
    std::string bad;  ///< "p.ini"
    std::string good; ///< zolex takes it
    std::string told; ///< of the bad one, by the rules of shape, values and style
};

/// Checks each of them, and that zolex refuses the bad one exactly where an error says so.
void checkCases(const std::vector<Case>& cases);

/// "12,12,12" and so on.
[[nodiscard]] std::string list(int drives);
[[nodiscard]] std::string repeated(const std::string& text, int times);
/// So many policies.
[[nodiscard]] std::string policies(int count);
/// A policy with so many entries.
[[nodiscard]] std::string entries(int count);

} // namespace zolex::companion::test
