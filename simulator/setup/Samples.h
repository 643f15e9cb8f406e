#pragma once

#include <span>
#include <string_view>

namespace zolex_sim {

/// A server definition that comes with the program.
struct Sample {
    std::string_view name;
    std::string_view about; ///< one line
    std::string_view definition;
};

/// Servers that zolex configures. The first one is the default.
std::span<const Sample> samples();
/// Servers whose controllers zolex does not know.
std::span<const Sample> samplesOfToday();
/// Null for an unknown name.
const Sample* sampleNamed(std::string_view name);

} // namespace zolex_sim
