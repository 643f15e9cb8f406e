#pragma once

#include "model/Server.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace zolex_sim {

/// The line between the blocks of a listing.
extern const std::string_view blockSeparator;

/// A title between two separators.
std::string blockTitle(std::string_view title);

/// A key after so many blanks, padded so that its ":" stands in this column (from 0), and a value.
std::string keyLine(std::size_t indent, std::string_view key, std::size_t column,
                    std::string_view value);

/// "Online (ONL)" and the like. A bad drive does not answer: it is missing.
std::string_view driveStateText(DriveStatus status);

/// "Okay (OKY)" and the like. A logical drive that lacks nothing but drives that are being rebuilt
/// is rebuilding.
std::string_view logicalDriveStateText(const Controller& controller, const LogicalDrive& drive);

/// "70006/143374000": the size in MB and in sectors.
std::string sizesText(const Drive& drive);

/// "3", or "Unknown".
std::string slotText(const ControllerIdentity& identity);

} // namespace zolex_sim
