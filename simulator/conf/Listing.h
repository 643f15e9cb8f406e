#pragma once

#include "model/Server.h"

#include <cstddef>
#include <string>

namespace zolex_sim::conf {

/// How a utility of one generation words what others word in another way.
struct Wording {
    const char* drive;    ///< of a logical drive: "drive", "device" or "Device"
    const char* number;   ///< in the key that begins a logical drive: "number" or "Number"
    const char* hotSpare; ///< state of a drive, and so below
    const char* failed;
    const char* critical;  ///< state of a logical drive that can bear no further loss
    const char* raid6;     ///< level
    const char* spanned;   ///< level of a volume over several drives
    const char* placeMark; ///< after the key of a drive's place; empty: the place stands alone
    bool namedPlaces;      ///< members of segments are told by controller, connector and device
    bool settings; ///< logical drives tell their cache settings, and their drives as devices
};

/// "   key      : value", the key at so many blanks. The colons of all lines stand below each
/// other.
std::string line(std::size_t indent, const std::string& key, const std::string& value);
std::string line(std::size_t indent, const std::string& key, std::size_t value);

/// A section's heading between its rulers, at the margin; one within a section, indented.
std::string sectionHeading(const std::string& title);
std::string blockHeading(const std::string& title);
/// The ruler of a heading within a section.
std::string blockRuler();

/// The first section's lines about the controller, from its status to the counts of its drives.
std::string controllerLines(const Controller& controller, const Wording& wording);

/// The logical drives with the drives of each in one line, numbered from 1.
std::string logicalDrivesWithLists(const Controller& controller, const Wording& wording);
/// The logical drives with a line for each segment, numbered from 0. The controller's number tells
/// the places of members.
std::string logicalDrivesWithSegments(const Controller& controller, std::size_t number,
                                      const Wording& wording);

/// The section about the drives and the other devices. With `bays` it tells where each drive sits.
std::string deviceSection(const Controller& controller, const char* title, const Wording& wording,
                          bool bays);

} // namespace zolex_sim::conf
