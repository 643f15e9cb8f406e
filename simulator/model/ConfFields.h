#pragma once

#include "model/Fields.h"
#include "model/Server.h"

namespace zolex_sim {

/// The fields of a controller that is driven by ARCCONF or HRCONF.
ConfIdentity readConfIdentity(Fields& fields);

/// The place of a drive on a channel, and what else is shown of such a drive.
void readChannelDrive(Fields& fields, Drive& drive);

} // namespace zolex_sim
