#pragma once

#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <optional>
#include <string>

namespace zolex::companion {

/// A picture of all controllers as an SVG document: text is text, without scripts and outside
/// fonts.
[[nodiscard]] std::string machineSvg(const Snapshot& snapshot);

/// The same of one controller (its index in Snapshot::details), as an element for a page that has
/// its name above it.
[[nodiscard]] std::string controllerSvg(const Snapshot& snapshot, std::size_t index,
                                        bool withLegend);

} // namespace zolex::companion
