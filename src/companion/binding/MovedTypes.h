#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Policies for one type of controllers as policies for another.
namespace zolex::companion {

struct MovedPolicies {
    std::string text;        ///< the same but for the types
    std::size_t entries = 0; ///< AppliesTo entries that name the new type now
    /// The first list of drives by channel and id in a policy of these; empty: there is none.
    std::string placesIn;
};

/// Writes "t:TO" where AppliesTo entries have "t:FROM", letter case ignored.
[[nodiscard]] MovedPolicies moveTypes(std::string_view text, std::string_view from,
                                      std::string_view to);

} // namespace zolex::companion
