#pragma once

#include "companion/facts/Facts.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// Drives in classes of those that can do each other's work: good or being rebuilt, of one protocol
/// and medium, and of sizes that the listing does not tell apart. One that is not good is a class
/// of its own.
class DriveClasses {
  public:
    explicit DriveClasses(const Facts& facts);

    /// The drive; null for a location that is none's.
    [[nodiscard]] const DriveFacts* drive(std::string_view location) const;
    /// The same word for the drives of one class.
    [[nodiscard]] std::string wordOf(const std::string& location) const;
    /// The words of several drives, sorted, in one text.
    [[nodiscard]] std::string wordsOf(const std::vector<std::string>& locations) const;
    /// Whether one can take the place of the other, in the same enclosure or channel too where the
    /// policy names places.
    [[nodiscard]] bool areInterchangeable(const std::string& a, const std::string& b,
                                          bool inOneEnclosure) const;

  private:
    struct Entry {
        const DriveFacts* drive = nullptr;
        std::size_t number = 0; ///< of its class, from 1; 0: its own
    };
    std::map<std::string, Entry, std::less<>> entries_;
};

} // namespace zolex::companion
