#pragma once

#include "model/Server.h"

#include <cstdint>
#include <string>

namespace zolex_sim::megacli {

/// The line that every output begins with.
std::string banner();

/// The banner and the line that names the adapter.
std::string heading(int adapter);

/// The last line of an output that went well.
constexpr const char* successLine = "Exit Code: 0x00\n";

/// "EnclId-252 SlotId-3", or "SlotId-3" for a drive outside every enclosure.
std::string placeText(const DriveLocation& location);

/// The three listings, in the layout of the controller's generation.
std::string logicalDriveListing(const Controller& controller, int adapter);
std::string driveListing(const Controller& controller, int adapter);
std::string adapterListing(const Controller& controller, int adapter);

/// The size of a drive as the later generation writes it: in TB, GB or MB, cut after three
/// decimals, so that it never promises more than the drive has.
std::string driveSizeText(std::int64_t sectors);

/// The size of a virtual disk as the later generation writes it. Of the texts with three decimals
/// it is the greatest whose whole MB the disk has. So who asks for just those MB gets a disk that
/// is written the same.
std::string virtualDiskSizeText(std::int64_t sizeMb);

} // namespace zolex_sim::megacli
