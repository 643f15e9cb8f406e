#pragma once

#include <gtest/gtest.h>

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <initializer_list>
#include <iostream>
#include <map>
#include <string>
#include <utility>

namespace zolex::properties {

/// Counts what the cases of a property were like, so that a property that has become empty fails.
class Tally {
  public:
    /// One more case; all cases are counted.
    void begin() { ++cases_; }
    /// The current case holds one of these. A case that holds several is one case of them.
    void count(const std::string& kind) {
        Count& found = kinds_[kind];
        ++found.times;
        if (found.latest != cases_) {
            found.latest = cases_;
            ++found.cases;
        }
    }

    /// Cases of this kind.
    [[nodiscard]] int casesOf(const std::string& kind) const {
        const auto found = kinds_.find(kind);
        return found == kinds_.end() ? 0 : found->second.cases;
    }
    /// At least `percent` of the cases are of this kind.
    void expectShare(const std::string& kind, double percent) const {
        EXPECT_GE(100.0 * casesOf(kind), percent * cases_)
            << kind << ": " << casesOf(kind) << " of " << cases_ << " cases";
    }

    void print(std::ostream& out) const {
        for (const auto& [kind, found] : kinds_) {
            out << "  " << kind << ": " << found.cases << " of " << cases_;
            if (found.times > found.cases) {
                out << ", " << found.times << " times";
            }
            out << "\n";
        }
    }

  private:
    struct Count {
        int cases = 0;
        int times = 0;
        int latest = 0; ///< number of the case that was counted last
    };

    int cases_ = 0;
    std::map<std::string, Count> kinds_;
};

/// Share of the cases, in percent, that a kind must have.
using Shares = std::initializer_list<std::pair<const char*, double>>;

/// Checks `property`, a function of a Tally, over many cases; then that the cases were of the kinds
/// that make it worth something. After a failure the shares mean nothing, since the search for a
/// smaller case counts too.
template <typename Testable>
void checkProperty(const Shares& shares, Testable property) {
    Tally tally;
    rc::detail::checkGTest([&] {
        tally.begin();
        property(tally);
    });
    if (testing::Test::HasFailure()) {
        return;
    }
    tally.print(std::cout);
    for (const auto& [kind, percent] : shares) {
        tally.expectShare(kind, percent);
    }
}

} // namespace zolex::properties
