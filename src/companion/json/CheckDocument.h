#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "companion/text/Diagnostics.h"

#include <span>
#include <string>
#include <vector>

namespace zolex::companion {

/// The document `zolex-check`: what is found in policies files. `valid`: no error.
[[nodiscard]] std::string checkDocument(const std::vector<Finding>& findings,
                                        const DocumentHead& head);

/// The findings as SARIF 2.1.0, with the rules that they belong to. Columns are in characters; they
/// are counted in the lines of `sources`.
[[nodiscard]] std::string sarifDocument(const std::vector<Finding>& findings,
                                        std::span<const SourceFile> sources);

} // namespace zolex::companion
