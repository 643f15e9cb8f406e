#pragma once

#include "frontend/Words.h"

namespace zolex_sim::megacli {

/// The options of one command line, read from front to back. Brackets, braces and commas are
/// words of their own, with or without blanks around them.
class Tokens : public Words {
  public:
    explicit Tokens(const std::vector<std::string>& arguments);

    // Each of these takes what it names and is true, or takes nothing and is false.
    /// An option such as "-a0" or "-a 0": the name and a number, joined or apart.
    bool takeNumbered(std::string_view name, std::int64_t& number);
    /// "[ 252:0, 252:1 ]", at least one location.
    bool takeLocations(std::vector<DriveLocation>& locations);
};

} // namespace zolex_sim::megacli
