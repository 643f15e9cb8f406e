#pragma once

#include "foundation/CString.h"

#include <vector>

namespace zolex {

class Application;
class ControllerList;

/// Appends policies that reproduce the captured configurations to the policies file.
class PolicyGenerator {
  public:
    explicit PolicyGenerator(Application& application);

    /// False when a step failed; it has then been reported, and the policies file is as it was
    /// unless the report says that data may have been written in part.
    bool generatePolicies(ControllerList& controllers);
    /// Whether at least one policy was generated.
    [[nodiscard]] bool wrotePolicies() const { return generated_; }

  private:
    Application& application_;
    CString machineType_;
    CString serialNumber_;
    std::vector<CString> names_;
    bool generated_ = false;
};

} // namespace zolex
