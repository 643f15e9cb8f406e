#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/findings/Finding.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// Tells what was found in bound policies of the file as it is written: where it stands there, and
/// by the names of its entries.
class WrittenPlaces {
  public:
    WrittenPlaces(std::string_view written, const BoundPolicies& bound);

    void move(Finding& finding) const;

  private:
    [[nodiscard]] TextPlace placeOf(const TextPlace& place, bool isStart) const;
    [[nodiscard]] std::string named(std::string text) const;

    std::vector<std::string> written_; ///< lines
    std::vector<std::int64_t> starts_; ///< the byte of each of them
    std::vector<std::string> bound_;
    std::vector<std::int32_t> lineOf_;
    /// "Array.A" and what it was made of, "Drives.A".
    std::vector<std::pair<std::string, std::string>> names_;
};

} // namespace zolex::companion
