#pragma once

#include "model/Server.h"
#include "storcli/Value.h"

#include <cstddef>
#include <vector>

namespace zolex_sim::storcli {

/// A controller as a listing shows it.
struct View {
    const Controller& controller;
    std::size_t number;
    const Effect* effect = nullptr; ///< that a fault has on the answer
};

/// The drive that the effect is about; the first one unless it names another.
DriveLocation affectedDrive(const View& view);

/// The row of the controller in the overview of all.
Value overviewRow(const View& view);
/// The row of an adapter without RAID.
Value adapterRow(const View& view);
/// What "/cN show" and "/cN show all" tell.
Value controllerData(const View& view, bool all);
/// The row of a drive in its lists.
Value driveRow(const View& view, const Drive& drive);
/// What a drive's detailed information holds.
Value driveDetails(const View& view, const Drive& drive);
Value volumeRow(const View& view, const Volume& volume);
/// The rows of the drives of a virtual drive.
Value memberRows(const View& view, const Volume& volume);
Value volumeProperties(const View& view, const Volume& volume);
/// Groups, spans, members, spares: of all groups, or of one.
Value topologyRows(const View& view);
/// What "/cN/dall show all" tells.
Value groupData(const View& view);
/// What "/cN/fall show" tells; there must be a foreign configuration.
Value foreignData(const View& view);

/// The foreign sets that drives still carry.
std::vector<const ForeignSet*> foreignSets(const Controller& controller);

} // namespace zolex_sim::storcli
