#pragma once

#include "model/Fields.h"
#include "model/Server.h"
#include "model/Utility.h"

namespace zolex_sim {

/// The fields of a controller that is driven by QTCSEND or one of the CFGGEN utilities. Its PCI
/// place must be known already.
BlockIdentity readBlockIdentity(Fields& fields, const UtilityTraits& utility,
                                const PciFunction& pci);

/// The place of a drive that is addressed by channel and id.
void readIdDrive(Fields& fields, Drive& drive, const UtilityTraits& utility);

/// Completes the enclosures by those that the drives name, and checks that no two drives have one
/// target id.
void completeEnclosures(Controller& controller, std::size_t number, Problem& problem);

} // namespace zolex_sim
