#pragma once

#include "foundation/CString.h"
#include "foundation/FileSystem.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "model/ControllerCatalogue.h"
#include "platform/Platform.h"
#include "policies/GeneratedPolicies.h"
#include "policies/PolicyReader.h"

#include <cstdint>

namespace zolex {

/// Where captured policies go.
struct Appending {
    PolicySource policies; ///< the policies file, as it is read before
    CString tempDirectory; ///< ends in "\" when not empty
    bool keepsTemporary = false;
};

/// Appends policies that reproduce the captured configurations to the policies file.
class PolicyGenerator {
  public:
    PolicyGenerator(Platform& platform, const ControllerCatalogue& catalogue, Appending appending,
                    CaptureOptions options, Report& report);

    /// False when a step failed; it has then been reported, and the policies file is as it was
    /// unless the report says that data may have been written in part.
    bool generatePolicies(const ControllerList& controllers);
    /// Whether at least one policy was generated.
    [[nodiscard]] bool wrotePolicies() const { return generated_; }

  private:
    bool writePolicies(const ControllerList& controllers, const PolicyFile& current,
                       File& temporary);
    bool writePolicy(const RAIDController& controller, std::int32_t number, PolicyNames& names,
                     File& temporary);
    bool append(File& temporary);
    bool reportTempSpace();
    bool fail(FaultKind kind, const CString& file = {});

    Platform& platform_;
    const ControllerCatalogue& catalogue_;
    Appending appending_;
    CaptureOptions options_;
    Report& report_;
    bool generated_ = false;
};

} // namespace zolex
