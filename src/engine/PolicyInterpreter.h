#pragma once

#include "foundation/CString.h"
#include "policies/Policy.h"

namespace zolex {

class Application;
class ControllerList;

/// Finds the policy of each controller and plans its configuration.
class PolicyInterpreter {
  public:
    PolicyInterpreter(Application& application, const PolicyList& policies)
        : application_(application), policies_(policies) {}

    /// True when every controller was handled: configured, skipped or without a match. False after
    /// a planning or internal fault, which has been reported.
    bool createConfigurations(ControllerList& controllers);

  private:
    bool getMachineInformation();

    Application& application_;
    const PolicyList& policies_;
    CString machineType_;
    CString serialNumber_;
};

} // namespace zolex
