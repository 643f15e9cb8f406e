#pragma once

#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/Plan.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// Something of a policies file that no server uses.
struct UnusedPiece {
    enum class Kind { policy, entry, specifier, keyword };
    Kind kind = Kind::policy;
    std::string policy;
    std::string keyword;   ///< of an entry, a specifier and a keyword: "AppliesTo.2", "Array.C"
    std::string specifier; ///< "d:6"
    std::int32_t line = 0;
    /// For people, or empty: "an earlier policy fits"; of a specifier which controllers were asked
    /// for it, when not all.
    std::string because;
    friend bool operator==(const UnusedPiece&, const UnusedPiece&) = default;
};

/// "policy", "entry", "specifier", "keyword".
[[nodiscard]] std::string_view unusedKindWord(UnusedPiece::Kind kind);

/// What of a policies file is used by the plans of servers.
class PolicyCoverage {
  public:
    /// Takes up what the plan of one server uses.
    void add(const MachinePlan& plan);
    void add(const PolicyCoverage& other);

    /// What none of them uses, in the order of the file. Of a policy that is not used its entries
    /// are not told, and of an entry that is used its specifiers are. Keywords are told of policies
    /// by which something is planned, and only those of which a plan tells where they count.
    [[nodiscard]] std::vector<UnusedPiece> unused(const PolicyDocument& document) const;

  private:
    void add(const ControllerPlanning& planning);
    void addEntries(const PolicyView& view, const std::string& name,
                    std::vector<UnusedPiece>& all) const;
    void addKeywords(const DocumentPolicy& policy, const std::string& name,
                     std::vector<UnusedPiece>& all) const;

    // All by their lines.
    std::set<std::int32_t> asked_;    ///< policies that were held against a controller
    std::set<std::int32_t> passed_;   ///< policies that were not, as an earlier one fits it
    std::set<std::int32_t> used_;     ///< policies that fit one
    std::set<std::int32_t> unclear_;  ///< of them those by which a controller was refused
    std::set<std::int32_t> entries_;  ///< entries that fit one
    std::set<std::int32_t> keywords_; ///< entries by which something is planned
    /// Specifiers that were asked for, and whether one held.
    std::map<std::pair<std::int32_t, std::string>, bool> specifiers_;
};

} // namespace zolex::companion
