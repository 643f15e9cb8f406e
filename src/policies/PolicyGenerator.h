#pragma once

#include "foundation/CString.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace zolex {

class Application;
class ControllerList;
class File;
class PolicyReader;
class RAIDController;

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
    bool writePolicies(ControllerList& controllers, const PolicyReader& current, File& temporary);
    bool writePolicy(const RAIDController& controller, std::int32_t number,
                     const PolicyReader& current, File& temporary);
    CString chooseName(std::int32_t number, const CString& controllerType,
                       const PolicyReader& current);
    [[nodiscard]] bool wasGenerated(const CString& name) const;
    bool append(File& temporary);
    bool reportTempSpace();

    Application& application_;
    CString machineType_;
    CString serialNumber_;
    std::vector<CString> names_;
    bool generated_ = false;
};

} // namespace zolex
