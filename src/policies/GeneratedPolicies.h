#pragma once

#include "foundation/CString.h"
#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"
#include "platform/Platform.h"
#include "policies/PolicyFile.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zolex {

/// What captured policies say besides the layouts.
struct CaptureOptions {
    CString parameters; ///< specifiers of AppliesTo.1 as a comma list of letters; empty: "t,d"
    CString machineType;
    CString serialNumber;
};

/// The names that policies have: those of the file and those given since.
class PolicyNames {
  public:
    explicit PolicyNames(const PolicyFile& file) : file_(file) {}

    /// A name for a captured policy of this model that none has, and which it now has.
    CString choose(std::string_view model);

  private:
    [[nodiscard]] bool has(const CString& name) const;

    const PolicyFile& file_;
    std::vector<CString> given_;
};

/// A captured policy as text.
struct GeneratedPolicy {
    CString name;
    CString header; ///< the comments before it
    CString body;   ///< from the section header to the empty line after it; empty with a fault
    std::optional<Fault> fault; ///< not reported
};

/// The policy that makes the layout of a controller, which it must have, at `time`. `number` counts
/// the controllers from 1.
[[nodiscard]] GeneratedPolicy generatePolicy(const RAIDController& controller, std::int32_t number,
                                             const CaptureOptions& options, const LocalTime& time,
                                             const ControllerCatalogue& catalogue,
                                             PolicyNames& names, Report& report);

/// Whether a layout was captured from the controller; notes at verbosity 3 when not.
[[nodiscard]] bool isConfigured(const RAIDController& controller, std::int32_t number,
                                Report& report);

/// The policies of all controllers with a layout as text to append to `file`, which must be read.
struct GeneratedPolicies {
    CString text;
    std::size_t count = 0;
    std::optional<Fault> fault; ///< of the options; it has been reported, and `text` is empty
};
[[nodiscard]] GeneratedPolicies
generatePolicies(const ControllerList& controllers, const PolicyFile& file,
                 const CaptureOptions& options, const LocalTime& time,
                 const ControllerCatalogue& catalogue, Report& report);

} // namespace zolex
