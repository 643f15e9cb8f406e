#pragma once

#include "model/Server.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim::megacli {

/// The options of one command line, read from front to back. Brackets, braces and commas are
/// tokens of their own, with or without blanks around them. Letter case is ignored.
class Tokens {
  public:
    explicit Tokens(const std::vector<std::string>& arguments);

    [[nodiscard]] bool atEnd() const { return position_ == tokens_.size(); }
    /// The token at hand; empty at the end.
    [[nodiscard]] std::string_view current() const;

    /// Each of these takes what it names and is true, or takes nothing and is false.
    bool take(std::string_view word);
    /// An option such as "-a0" or "-a 0": the name and a number, joined or apart.
    bool takeNumber(std::string_view name, std::int64_t& number);
    /// "[ 252:0, 252:1 ]", at least one location.
    bool takeLocations(std::vector<DriveLocation>& locations);

  private:
    std::vector<std::string> tokens_;
    std::size_t position_ = 0;
};

} // namespace zolex_sim::megacli
