#pragma once

#include "companion/families/md/DiskList.h"
#include "companion/families/md/Signatures.h"

#include <functional>
#include <map>
#include <string>

namespace zolex::companion::md {

/// What the superblocks of drives tell of the others of their array, by the kernel's names.
using RoleTables = std::map<std::string, RoleTable, std::less<>>;

/// Adds arrays that do not run, of which the superblocks of drives tell, and names those that do by
/// the superblocks of their members. A drive of an array that runs without it has dropped out of
/// it; and so has one of a stopped array of which fresher superblocks say so.
void findStopped(DiskList& list, const RoleTables& roles);

} // namespace zolex::companion::md
