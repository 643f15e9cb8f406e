#pragma once

#include "engine/ConfigClasses.h"
#include "engine/ControllerPlan.h"
#include "foundation/CString.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"
#include "policies/Policy.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace zolex {

class Report;

/// Plans the configuration of one controller from one policy by the rules of its class. It reads
/// the controller only; the drives that the plan takes are marked in here.
class RAIDConfigCreator {
  public:
    /// Controller `number` is counted from 1. All references must outlive the object; `rules` are
    /// those of the controller's type and subtype. `explains`: the plan gives its reasons.
    RAIDConfigCreator(const RAIDController& controller, std::int32_t number,
                      const ConfigDefaults& rules, const Policy& policy, bool explains,
                      Report& report);
    RAIDConfigCreator(const RAIDConfigCreator&) = delete;
    RAIDConfigCreator& operator=(const RAIDConfigCreator&) = delete;

    /// The plan, to be asked for once. Its outcome is `planned`; `tooFewDrives` when the controller
    /// cannot be configured; or `refused` after a fault, which has been reported.
    [[nodiscard]] ControllerPlan plan();

  private:
    bool createConfig();

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
    /// How many automatic hot spares there shall be.
    [[nodiscard]] std::int32_t automaticHotspareCount();
    /// The largest free drive; of equal ones the last in scan order.
    [[nodiscard]] std::optional<DrivePosition> largestFreeDrive() const;
    bool addHotspare(DrivePosition position, Reason::Kind why);
    [[nodiscard]] Fault makeHotspareFault(FaultKind kind, const char* keyword) const;

    class ArrayBuilder;
    bool doAUTOArrays();
    bool doCUSTOMArrays();
    bool doArrayByNumber(const RaidArray& entry);
    bool doArrayByLocation(const RaidArray& entry);
    bool doArrayByAllRemaining();
    /// A new array of `first` and the free drives of like size, all of them taken.
    [[nodiscard]] RaidArray collectLikeDrives(DrivePosition first);
    bool addArray(RaidArray array);
    /// Adds the array of a policy's list, unless the list names more drives than an array holds.
    bool addListedArray(const RaidArray& entry, RaidArray array);
    /// A fault of the next array of the policy's list.
    [[nodiscard]] Fault makeArrayFault(FaultKind kind) const;

    bool doAUTOLogicalDrives();
    bool doCUSTOMLogicalDrives();
    bool addLogicalDrive(const LogicalDrive& drive);
    /// The logical drive of an array by the policy's defaults, or else by those of the class.
    [[nodiscard]] LogicalDrive automaticLogicalDrive(std::size_t arrayIndex);
    /// The reasons for the next logical drive, which is planned as the policy's entry says.
    void explainCustom(const LogicalSpecification& entry, const LogicalDrive& drive);
    /// "Logical.1" for the first.
    [[nodiscard]] CString logicalKeyword() const;
    /// A fault of the next logical drive, which is for this array.
    [[nodiscard]] Fault makeLogicalFault(FaultKind kind, std::int32_t arrayIndex) const;
    /// The size that is planned for a logical drive: MB, or FILL.
    [[nodiscard]] std::int32_t plannedSize(const DriveSize& wanted, std::int32_t raidLevel,
                                           std::size_t arrayIndex) const;
    /// What is left of an array, in MB of a logical drive whose usable part is `fraction`.
    [[nodiscard]] double remainingMb(double fraction, std::size_t arrayIndex) const;
    /// Whether the logical drive's array has a number of drives that its RAID level takes; if not,
    /// that has been reported.
    bool isRAIDLevelOK(const LogicalDrive& drive);

    /// The RAID level of the first custom logical drive on the array; -1 when there is none.
    std::int32_t getArrayRAIDLevel(std::size_t arrayIndex);
    /// Position of the `number`-th drive, from 1, used or not; none when there are fewer.
    std::optional<DrivePosition> getDriveNumber(std::int32_t number);
    /// By RAID level code; -1 stands for the policy's default level.
    [[nodiscard]] std::size_t maximumDrivesPerArray(std::int32_t raidLevel) const;

    [[nodiscard]] bool isFree(DrivePosition position) const;
    void take(DrivePosition position);
    [[nodiscard]] std::int32_t sizeAt(DrivePosition position) const;

    /// The code that the policy gives, or else the default, with the reason for it.
    [[nodiscard]] std::int32_t chooseSetting(Reason::Subject subject, const char* keyword,
                                             std::optional<std::int32_t> given,
                                             std::int32_t otherwise);
    /// A fault with its place: policy, controller and its model.
    [[nodiscard]] Fault makeFault(FaultKind kind) const;
    /// Reports the fault and keeps it for the plan. Always false.
    bool refuse(Fault fault);
    /// The same for a drive that there is not: the `number`-th, or the one at `position`, which is
    /// of at least `leastMb` MB.
    bool refuseMissingDrive(Fault fault, std::int32_t number);
    bool refuseMissingDrive(Fault fault, DrivePosition position, std::int32_t leastMb);
    /// Keeps the reason that `make()` returns, when reasons are wanted.
    template <typename Make>
    void explain(Make make) {
        if (explains_) {
            result_.reasons.push_back(make());
        }
    }

    const RAIDController& controller_;
    const ConfigDefaults& rules_;
    const Policy& policy_;
    const bool explains_;
    Report& report_;
    const CString modelName_;
    std::bitset<static_cast<std::size_t>(RAIDController::channels) *
                static_cast<std::size_t>(RAIDController::ids)>
        taken_;
    RAIDConfiguration layout_;
    ControllerPlan result_;
};

} // namespace zolex
