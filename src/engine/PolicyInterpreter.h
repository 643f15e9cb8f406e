#pragma once

#include "foundation/CString.h"
#include "policies/Policy.h"

#include <cstdint>

namespace zolex {

class Application;
class ControllerList;
class RAIDController;

/// Finds the policy of each controller and plans its configuration.
class PolicyInterpreter {
  public:
    PolicyInterpreter(Application& application, const PolicyList& policies)
        : application_(application), policies_(policies) {}

    /// True when every controller was handled: configured, skipped or without a match. False after
    /// a planning or internal fault, which has been reported; the controllers after it are then
    /// left as they were.
    bool createConfigurations(ControllerList& controllers);

  private:
    /// Fills the texts that policies are matched with; false when they cannot be had.
    bool getMachineInformation();
    [[nodiscard]] const Policy* findPolicy(const RAIDController& controller,
                                           std::int32_t number) const;
    /// Plans controller `number` (from 1) by `policy`; false after a fault.
    bool configure(RAIDController& controller, std::int32_t number, const Policy& policy);
    void reportPlan(const RAIDController& controller, std::int32_t number, const Policy& policy);
    void reportNoPolicy(const RAIDController& controller, std::int32_t number);
    [[nodiscard]] CString modelName(const RAIDController& controller) const;

    Application& application_;
    const PolicyList& policies_;
    CString machineType_;
    CString serialNumber_;
};

} // namespace zolex
