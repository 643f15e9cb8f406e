#pragma once

#include "foundation/CString.h"
#include "model/Configuration.h"
#include "policies/Policy.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace zolex {

class Application;
class Printer;
class RAIDController;

/// Plans the configuration of one controller from one policy. The steps are written here once; the
/// classes that derive from it answer what differs by controller kind. Planning reads and changes
/// only the controller record and the application's return code: it marks the drives that it takes
/// as used and stores the plan.
class RAIDConfigCreator {
  public:
    explicit RAIDConfigCreator(Application& application) : application_(application) {}
    virtual ~RAIDConfigCreator() = default;
    RAIDConfigCreator(const RAIDConfigCreator&) = delete;
    RAIDConfigCreator& operator=(const RAIDConfigCreator&) = delete;

    /// True with a configuration stored in the controller, or with none when the controller cannot
    /// be configured; false, with none, after a planning fault, which has been reported. Drives
    /// that were taken before a fault stay marked as used.
    bool createConfig(RAIDController& controller, const Policy& policy);

    // What differs by controller kind. They answer for the controller at hand.
    [[nodiscard]] virtual std::int32_t defaultHotspareCount() const = 0;
    /// MB or a negative code; FILL for every class.
    [[nodiscard]] virtual std::int32_t defaultLogicalDriveSize(const RaidArray& array) const;
    /// RAID level code; -1 when no level fits.
    [[nodiscard]] virtual std::int32_t defaultRAIDLevel(const RaidArray& array) const = 0;
    [[nodiscard]] virtual std::int32_t defaultWriteCache(const RaidArray& array) const = 0;
    /// HIGH for every class.
    [[nodiscard]] virtual std::int32_t defaultRebuildRate() const;
    [[nodiscard]] virtual std::int32_t defaultReadAhead() const = 0;
    [[nodiscard]] virtual std::int32_t defaultStripeSize() const = 0;
    [[nodiscard]] virtual bool canConfigure() const = 0;
    [[nodiscard]] virtual bool supportsStripeSize(std::int32_t code) const = 0;
    [[nodiscard]] virtual bool supportsRAIDLevel(std::int32_t code) const = 0;

    /// Makes `controller` the one at hand, as createConfig does. It must outlive the questions.
    void setController(RAIDController& controller) { controller_ = &controller; }

  protected:
    [[nodiscard]] const RAIDController& controller() const { return *controller_; }

  private:
    // The steps, each true unless it reported a fault.
    bool doHotspares();
    bool doArrays();
    bool doLogicalDrives();
    bool doStripeSize();
    bool doReadAhead();
    bool doRebuildRate();
    bool doInit();

    bool doAUTOHotspares();
    bool doCUSTOMHotspares();
    bool doHotspareByNumber(std::int32_t number);
    bool doHotspareByLocation(DrivePosition position);
    /// The largest free drive; of equal ones the last in scan order.
    [[nodiscard]] std::optional<DrivePosition> largestFreeDrive() const;
    bool addHotspare(DrivePosition position);
    void reportMissingHotspare(const CString& drive);

    bool doAUTOArrays();
    bool doCUSTOMArrays();
    bool doArrayByNumber(const RaidArray& entry);
    bool doArrayByLocation(const RaidArray& entry);
    bool doArrayByAllRemaining();
    /// A new array of `first` and the free drives of like size, all marked used.
    [[nodiscard]] RaidArray collectLikeDrives(DrivePosition first);
    bool addArray(RaidArray array);
    /// Adds the array of a policy's list, unless the list names more drives than an array holds.
    bool addListedArray(const RaidArray& entry, RaidArray array);
    void reportMissingDrive(const CString& drive);

    bool doAUTOLogicalDrives();
    bool doCUSTOMLogicalDrives();
    bool addLogicalDrive(const LogicalDrive& drive);
    /// The logical drive of an array by the policy's defaults, or else by those of the class.
    [[nodiscard]] LogicalDrive automaticLogicalDrive(std::size_t arrayIndex) const;
    /// The size that is planned for `sizeMb` of a policy: MB, or FILL.
    [[nodiscard]] std::int32_t plannedSize(std::int32_t sizeMb, std::int32_t raidLevel,
                                           std::size_t arrayIndex) const;
    /// What is left of an array, in MB of a logical drive whose usable part is `fraction`.
    [[nodiscard]] double remainingMb(double fraction, std::size_t arrayIndex) const;
    /// Whether the logical drive's array has a number of drives that its RAID level takes; if not,
    /// that has been reported.
    bool isRAIDLevelOK(const LogicalDrive& drive, const RAIDConfiguration& configuration);

    /// The RAID level of the first custom logical drive on the array; -1 when there is none.
    std::int32_t getArrayRAIDLevel(std::size_t arrayIndex);
    /// Position of the `number`-th drive, from 1, used or not; none when there are fewer.
    std::optional<DrivePosition> getDriveNumber(std::int32_t number);
    /// By RAID level code; -1 stands for the policy's default level.
    [[nodiscard]] std::size_t maximumDrivesPerArray(std::int32_t raidLevel) const;

    [[nodiscard]] bool isFree(DrivePosition position) const;
    [[nodiscard]] std::int32_t sizeAt(DrivePosition position) const;
    [[nodiscard]] Printer& printer() const;
    [[nodiscard]] const char* policyName() const { return policy_->name.c_str(); }
    [[nodiscard]] CString modelName() const;

    Application& application_;
    RAIDController* controller_ = nullptr;
    const Policy* policy_ = nullptr;
    std::unique_ptr<RAIDConfiguration> plan_;
};

} // namespace zolex
