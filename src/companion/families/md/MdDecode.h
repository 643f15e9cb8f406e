#pragma once

#include "companion/facts/Facts.h"
#include "companion/families/md/DiskList.h"

#include <map>
#include <string>
#include <string_view>

namespace zolex::companion::md {

/// Keys and values of what mdadm prints with --export: "MD_NAME=zolex-data".
[[nodiscard]] std::map<std::string, std::string, std::less<>> exportedKeys(std::string_view output);

/// Between the state of an array and why it is not to be stopped: "active, mounted at /srv".
inline constexpr std::string_view useSeparator = ", ";

/// Behind the name of an array that a spare is of no more.
inline constexpr std::string_view removedFrom = " (removed)";

/// What drives and arrays are to a planner: our own arrays are logical drives, and all else that a
/// drive is in bars it.
[[nodiscard]] Facts factsOf(const DiskList& list);

} // namespace zolex::companion::md
