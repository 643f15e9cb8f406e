#pragma once

#include "model/StorcliController.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim::storcli {

/// What a command is about.
enum class Subject : std::uint8_t {
    controller,
    enclosures,
    drives,
    volumes,
    groups,
    foreign,
    cache
};

/// Numbers such as "3", "0,2" or "0-3"; without a list: all.
using Numbers = std::optional<std::vector<int>>;

/// What a path such as "/c0/e252/s0,1" names.
struct Target {
    Subject subject = Subject::controller;
    std::optional<std::size_t> controller; ///< absent: all
    bool inEnclosures = false;
    Numbers enclosures;
    Numbers items; ///< slots, virtual drives, groups
};

/// Nothing for what is no path.
std::optional<Target> parseTarget(std::string_view path);

/// Nothing for what is no list of numbers.
std::optional<std::vector<int>> parseNumbers(std::string_view text);

/// The drives of a list such as "252:0,252:1", "252:0-3,5" or ":0,:1".
std::optional<std::vector<DriveLocation>> parsePlaces(std::string_view text);

} // namespace zolex_sim::storcli
