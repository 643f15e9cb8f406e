#pragma once

#include <string>

namespace zolex::test {

/// `count` entry lines that differ.
inline std::string entries(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) {
        text += "AppliesTo." + std::to_string(i) + " = ALL\n";
    }
    return text;
}

/// `count` policies, "Policy.1" and so on.
inline std::string policies(int count) {
    std::string text;
    for (int i = 1; i <= count; ++i) {
        text += "[Policy." + std::to_string(i) + "]\nAppliesTo.1 = ALL\n";
    }
    return text;
}

} // namespace zolex::test
