#pragma once

#include "model/Configuration.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// The line in which ARCCONF and HRCONF list the members of a logical drive, with the blank at its
/// end, for drives at these positions of a policy. Form and width of its key are those of the
/// captured listings: "   Drive(s) (Channel,Device)                : 0,0 0,1".
[[nodiscard]] std::string memberLine(const std::vector<DrivePosition>& drives);

/// Whether the listings of a controller type hold such lines.
[[nodiscard]] bool listsMembersInOneLine(std::int32_t controllerType);

/// Number of the drives that a reader still sees whole, when the line is longer than it takes.
[[nodiscard]] std::size_t membersRead(const std::vector<DrivePosition>& drives);

} // namespace zolex::companion
