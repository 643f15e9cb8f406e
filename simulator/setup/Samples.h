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

/// The first one is the default.
std::span<const Sample> samples();
/// Null for an unknown name.
const Sample* sampleNamed(std::string_view name);

} // namespace zolex_sim
