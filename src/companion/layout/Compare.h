#pragma once

#include "companion/layout/Layout.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

enum class Sameness { same, equivalent, different };

/// "same", "equivalent", "different".
[[nodiscard]] std::string_view samenessWord(Sameness sameness);

/// One attribute that is not as wanted.
struct Difference {
    /// "raid_type", "capacity_bytes", "strip_size_bytes", "write_cache_policy",
    /// "read_cache_policy", "hotspare_type", "drives", "moved", "missing", "surplus",
    /// "state" of one that serves nobody.
    std::string attribute;
    std::string location;     ///< drive; or empty
    std::string logicalDrive; ///< id of the captured one, or of the wanted one; or empty
    std::string wanted;       ///< for people: "64 KB"
    std::string found;
    friend bool operator==(const Difference&, const Difference&) = default;
};

/// What the comparison is told besides the two layouts.
struct CompareTerms {
    std::string utility; ///< "MEGACLI": what it does not list is not compared
};

/// A wanted group, and what stands of it.
struct StandingGroup {
    std::optional<std::size_t> captured; ///< index of the captured group on its drives
    /// Its first volumes stand as wanted, this many of them; behind them stands nothing, or what is
    /// in the way.
    std::size_t volumesThatStand = 0;
    /// The same when cache modes are let be: at least as many.
    std::size_t volumesButForCaches = 0;
    bool isWhole = false; ///< all of it stands, and nothing else on its drives
};

struct Comparison {
    Sameness result = Sameness::same;
    std::vector<Difference> differences;
    std::vector<std::string> equivalences; ///< for people: "the spare is 32:3 instead of 32:7"
    /// Attributes that the policy gives and the utility does not list: "strip_size_bytes".
    std::vector<std::string> notComparable;
    std::vector<std::string> health;         ///< for people: "LD 0 is degraded: 32:3 failed"
    std::vector<StandingGroup> groups;       ///< one for each wanted group
    std::vector<std::size_t> groupsInTheWay; ///< captured ones that are no wanted one's
    /// One for each wanted spare: location of the captured spare that does its job; or empty.
    std::vector<std::string> spares;
    std::vector<std::string> sparesInTheWay; ///< locations of captured spares beyond these
};

/// Holds what stands against what is wanted, attribute by attribute. `facts` tell the drives: size,
/// protocol, media and state, by which they are interchangeable, and the listings' granularity.
[[nodiscard]] Comparison compareLayouts(const Facts& facts, const Layout& captured,
                                        const Layout& wanted, const CompareTerms& terms);

} // namespace zolex::companion
