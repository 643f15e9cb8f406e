#pragma once

#include "companion/findings/Finding.h"
#include "companion/lint/PolicyDocument.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

struct Snapshot;

/// Which findings are wanted: rule ids or beginnings of them ("ZX5", "ZX301").
struct LintSelection {
    std::vector<std::string> select; ///< empty: all
    std::vector<std::string> ignore;
};

/// All that is to be said of a policies file: shape, values, matching, drives and arrays, logical
/// drives, spares, limits of zolex, style. In the order of the file.
[[nodiscard]] std::vector<Finding> lint(const PolicyDocument& document,
                                        const LintSelection& selection);
/// The same with what the machines have (ZX7xx and the rules that need a machine).
[[nodiscard]] std::vector<Finding> lint(const PolicyDocument& document,
                                        const std::vector<const Snapshot*>& machines,
                                        const LintSelection& selection);

/// Takes out what is said of types (ZX208) that a controller of this machine has.
void dropTypesOf(const Snapshot& machine, const PolicyDocument& document,
                 std::vector<Finding>& findings);

} // namespace zolex::companion
