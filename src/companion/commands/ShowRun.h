#pragma once

#include "companion/commands/Context.h"

#include <string>

/// What runs that change a machine leave behind, shown.
namespace zolex::companion {

/// Shows a journal; as JSON the lines as they are. The exit code.
int showJournal(Context& context, const std::string& file);
/// Shows a certificate. The exit code.
int showCertificate(Context& context, const std::string& file);

} // namespace zolex::companion
