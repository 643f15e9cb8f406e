#pragma once

#include "companion/lint/PolicyView.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Which entries of a file can be the one that a policy is chosen by. An entry is the set of its
/// specifiers, letter and value; ALL alone is the empty set. Wherever it holds, each of its subsets
/// holds too, so it is never asked when a subset of it stands before it. What is said to be dead is
/// dead; what is not may be.
namespace zolex::companion {

/// One entry: the policy, and the place among its entries, both from 0.
struct EntryPlace {
    std::size_t policy = 0;
    std::size_t entry = 0;
    friend bool operator==(const EntryPlace&, const EntryPlace&) = default;
};

enum class Fate {
    live,     ///< as far as can be said
    unknown,  ///< it cannot be read
    nothing,  ///< it gives nothing, so it matches nothing
    untrue,   ///< no controller is so
    shadowed, ///< an earlier entry holds wherever it does
};

struct EntryFate {
    Fate fate = Fate::live;
    EntryPlace shadow; ///< of a shadowed entry: the earlier one
};

/// Of each entry of each policy.
[[nodiscard]] std::vector<std::vector<EntryFate>>
findFates(const std::vector<PolicyView>& policies);

/// The specifier of the entry that no controller fulfils, the one that counts of its letter, and
/// the most that it could say; null without one.
struct Untrue {
    const SpecifierView* specifier = nullptr;
    std::int32_t most = 0;
    bool isModels = false; ///< the most of the entry's model
};
[[nodiscard]] Untrue findUntrue(const EntryView& entry);

/// Whether the policy can never be used because of earlier ones: no entry is alive, and at least
/// one is shadowed by an entry of another policy.
[[nodiscard]] bool isShadowed(const std::vector<EntryFate>& fates, std::size_t policy);

} // namespace zolex::companion
