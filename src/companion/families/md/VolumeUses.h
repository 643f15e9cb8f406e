#pragma once

#include "companion/facts/Facts.h"
#include "companion/families/md/DiskFiles.h"

namespace zolex::companion::md {

/// Notes what this Linux uses the logical drives of a controller for. The device of one is found by
/// its SCSI id; by the name that the utility tells only where one of the two tells no id. What is
/// none of this system's devices is used for nothing.
void noteUses(DiskFiles& files, const Roots& roots, Facts& facts);

/// The same of logical drives that are to be deleted: the device of each is opened for this process
/// alone, too. What has it for itself without a mount that names it, as pools of drives have, is
/// found that way.
void noteHolders(DiskFiles& files, const Roots& roots, Facts& facts);

} // namespace zolex::companion::md
