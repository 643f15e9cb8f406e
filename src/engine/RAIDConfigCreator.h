#pragma once

#include "controllers/Configuration.h"
#include "policies/Policy.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zolex {

class Application;
class RAIDController;

/// Plans the configuration of one controller from one policy. The steps are written here once; the
/// classes that derive from it answer what differs by controller kind. Planning reads and changes
/// only the controller record: it marks the drives that it takes as used and stores the plan.
class RAIDConfigCreator {
  public:
    explicit RAIDConfigCreator(Application& application) : application_(application) {}
    virtual ~RAIDConfigCreator() = default;
    RAIDConfigCreator(const RAIDConfigCreator&) = delete;
    RAIDConfigCreator& operator=(const RAIDConfigCreator&) = delete;

    /// True with a configuration stored in the controller, or with none when the controller cannot
    /// be configured; false after a planning fault, which has been reported.
    bool createConfig(RAIDController& controller, const Policy& policy);

    // What differs by controller kind. They answer for the controller at hand.
    [[nodiscard]] virtual std::int32_t defaultHotspareCount() const = 0;
    /// MB or a negative code; FILL for every class.
    [[nodiscard]] virtual std::int32_t defaultLogicalDriveSize(const RaidArray& array) const;
    /// RAID level code; -1 when no level fits.
    [[nodiscard]] virtual std::int32_t defaultRAIDLevel(const RaidArray& array) const = 0;
    [[nodiscard]] virtual std::int32_t defaultWriteCache(const RaidArray& array) const;
    [[nodiscard]] virtual std::int32_t defaultRebuildRate() const;
    [[nodiscard]] virtual std::int32_t defaultReadAhead() const = 0;
    [[nodiscard]] virtual std::int32_t defaultStripeSize() const = 0;
    [[nodiscard]] virtual bool canConfigure() const = 0;
    [[nodiscard]] virtual bool supportsStripeSize(std::int32_t code) const = 0;
    [[nodiscard]] virtual bool supportsRAIDLevel(std::int32_t code) const = 0;

    /// Makes `controller` the one at hand, as createConfig does.
    void setController(RAIDController& controller) { controller_ = &controller; }

  protected:
    [[nodiscard]] const RAIDController& controller() const { return *controller_; }

  private:
    Application& application_;
    RAIDController* controller_ = nullptr;
    const Policy* policy_ = nullptr;
};

} // namespace zolex
