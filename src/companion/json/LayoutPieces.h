#pragma once

#include "companion/json/DocumentText.h"
#include "companion/layout/Compare.h"
#include "companion/layout/Layout.h"

#include <string_view>

/// Layouts and comparisons as documents of plans and of differences have them; for the files of
/// this folder alone.
namespace zolex::companion {

/// {arrays, logical_drives, hotspares, foreign_drives}: the names alone, in an object that is open.
void writeLayoutNames(DocumentText& out, const Layout& layout);
/// {differences, equivalences, not_compared, health}: likewise.
void writeComparisonNames(DocumentText& out, const Comparison& comparison);

} // namespace zolex::companion
