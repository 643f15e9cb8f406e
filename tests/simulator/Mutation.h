#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace zolex_sim::test {

using Random = std::mt19937;

inline std::size_t below(Random& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

inline char anyByte(Random& random) {
    return static_cast<char>(below(random, 256));
}

/// The text with a few bytes changed, taken out, doubled or exchanged for JSON's own signs.
inline std::string mutated(std::string text, Random& random) {
    constexpr std::string_view signs = "{}[]\",: 0123456789-.eE\\ntfu/*";
    for (std::size_t n = 1 + below(random, 3); n > 0 && !text.empty(); --n) {
        const std::size_t at = below(random, text.size());
        switch (below(random, 8)) {
        case 0:
            text[at] = anyByte(random);
            break;
        case 1:
            text.erase(at, 1 + below(random, 20));
            break;
        case 2:
            text.insert(at, text.substr(below(random, text.size()), below(random, 60)));
            break;
        case 3:
            text[at] = signs[below(random, signs.size())];
            break;
        case 4:
            text.insert(at, std::to_string(random()) + std::to_string(random()));
            break;
        default: // another digit, so that some texts stay sound as JSON
            if (const std::size_t digit = text.find_first_of("0123456789", at);
                digit != std::string::npos) {
                text[digit] = signs[9 + below(random, 10)];
            }
            break;
        }
    }
    return text;
}

} // namespace zolex_sim::test
