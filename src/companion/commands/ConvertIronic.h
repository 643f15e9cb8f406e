#pragma once

#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/findings/Finding.h"
#include "companion/text/Diagnostics.h"

#include <optional>
#include <string>
#include <vector>

/// The ways of convert from and to the RAID configurations of OpenStack's Ironic, and what all of
/// its ways have in common.
namespace zolex::companion {

/// Policies, of `options.file`, a RAID configuration of Ironic.
int convertFromIronic(Context& context, const ConvertOptions& options);
/// A RAID configuration of Ironic, of the policies in `options.file`.
int convertToIronic(Context& context, const ConvertOptions& options);

/// On standard error; without notes when it is to be quiet.
void tellConverted(Context& context, std::vector<Finding> findings, const SourceFile& source);
/// Of findings that were told: nothing was written of the file. The exit code.
int refuseConversion(Context& context, const std::string& name);
/// The recorded machine; nothing, after a message, when there is not just one.
[[nodiscard]] std::optional<RecordedMachine> loadMachine(Context& context, const std::string& path,
                                                         const SourceFile& source);

} // namespace zolex::companion
