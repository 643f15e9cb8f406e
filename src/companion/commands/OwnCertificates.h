#pragma once

#include "companion/commands/Context.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// Empty where the certificates of a folder tell of each loss that an earlier run has made it and
/// nobody has changed it since; else why not. Certificates that cannot be read are warned of, and
/// tell nothing.
[[nodiscard]] std::string whyNotOwn(Context& context, const std::vector<Loss>& losses,
                                    const Snapshot& snapshot, const std::string& folder);

/// How the file of a certificate ends.
inline constexpr std::string_view certificateEnding = ".certificate.json";

} // namespace zolex::companion
