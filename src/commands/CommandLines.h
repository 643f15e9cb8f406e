#pragma once

#include "foundation/CString.h"
#include "foundation/Fault.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zolex {

class RAIDConfiguration;
class RAIDController;
class Report;

/// What command lines depend on besides the controller and its layout.
struct CommandStyle {
    CString pathPrefix; ///< stands before the utility command
    friend bool operator==(const CommandStyle&, const CommandStyle&) = default;
};

/// The command lines of one controller, in order and without a limit.
struct CommandLines {
    std::vector<CString> lines; ///< with a fault, those that were made before it
    std::optional<Fault> fault; ///< has been reported; the lines are then not to be run
    friend bool operator==(const CommandLines&, const CommandLines&) = default;
};

/// The lines that configure the controller, whose position in the list is `number`, from 1, with
/// the layout. Reads only: equal arguments give equal lines.
[[nodiscard]] CommandLines commandLines(const RAIDController& controller, std::int32_t number,
                                        const RAIDConfiguration& layout, const CommandStyle& style,
                                        Report& report);

} // namespace zolex
