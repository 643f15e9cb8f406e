#pragma once

#include "foundation/CString.h"
#include "model/Codes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zolex {

/// A drive position: channel 0 to 4 (only 1 to 4 hold drives that count), id 0 to 35.
struct DrivePosition {
    std::int32_t channel = -1;
    std::int32_t id = -1;
    friend bool operator==(const DrivePosition&, const DrivePosition&) = default;
};

/// One array: its drives as positions, or as drive numbers (a policy's ordinals, or a utility's own
/// numbers before they are turned into positions).
class RaidArray {
  public:
    static constexpr std::size_t maxDrives = 32;

    /// False when the array already has 32 positions.
    bool addDrive(DrivePosition position);
    /// False when the array already has 32 drive numbers.
    bool addDriveNumber(std::int32_t number);
    void setDrive(std::size_t index, DrivePosition position) { drives_.at(index) = position; }

    [[nodiscard]] const std::vector<DrivePosition>& drives() const { return drives_; }
    [[nodiscard]] const std::vector<std::int32_t>& driveNumbers() const { return driveNumbers_; }
    /// Number of positions or, when there are none, of drive numbers.
    [[nodiscard]] std::size_t driveCount() const {
        return drives_.empty() ? driveNumbers_.size() : drives_.size();
    }

    /// Capacity in MB: number of drives times the smallest of them; -1 when not known.
    std::int64_t capacityMb = -1;
    /// A policy's array given as "ALL": every drive that remains.
    bool allRemaining = false;
    /// A policy's list names more drives than fit; those beyond are left out.
    bool tooManyDrives = false;
    CString text;

    friend bool operator==(const RaidArray&, const RaidArray&) = default;

  private:
    std::vector<DrivePosition> drives_;
    std::vector<std::int32_t> driveNumbers_;
};

/// One logical drive.
struct LogicalDrive {
    std::int32_t raidLevel = raid_level::none;
    std::int32_t sizeMb = sizeFill; ///< MB; -p = p percent; -101 = FILL
    std::int32_t arrayIndex = -1;   ///< 0 for array "A"
    std::int32_t writeCache = write_cache::notGiven;
    CString state;
    CString derivedState;
    friend bool operator==(const LogicalDrive&, const LogicalDrive&) = default;
};

/// A hot-spare drive: where it stands and, when it was captured, what its utility calls it.
struct Hotspare {
    std::int32_t channelNumber = -1;
    std::int32_t id = -1;
    std::int32_t third = -1;
    std::int32_t diskNumber = -1;
    /// The utility's own id of its enclosure; none of a utility that tells the channel.
    std::optional<std::int32_t> enclosure{};
    friend bool operator==(const Hotspare&, const Hotspare&) = default;
};

/// One controller's layout: captured from it, or planned for it.
class RAIDConfiguration {
  public:
    static constexpr std::size_t maxArrays = 16;
    static constexpr std::size_t maxLogicalDrives = 8;
    static constexpr std::size_t maxHotspares = 8;

    std::int32_t rebuildRate = rebuild_rate::high;
    std::int32_t readAhead = read_ahead::adaptive;
    std::int32_t stripeSize = stripe::none;
    std::int32_t init = init_choice::quick;
    CString policyName;

    // Each adds at the end and is false, changing nothing, when the record is full.
    bool addArray(RaidArray array);
    bool addLogicalDrive(LogicalDrive drive);
    bool addHotspare(Hotspare hotspare);

    [[nodiscard]] const std::vector<RaidArray>& arrays() const { return arrays_; }
    [[nodiscard]] std::vector<RaidArray>& arrays() { return arrays_; }
    [[nodiscard]] const std::vector<LogicalDrive>& logicalDrives() const { return logicalDrives_; }
    [[nodiscard]] const std::vector<Hotspare>& hotspares() const { return hotspares_; }

    friend bool operator==(const RAIDConfiguration&, const RAIDConfiguration&) = default;

  private:
    std::vector<RaidArray> arrays_;
    std::vector<LogicalDrive> logicalDrives_;
    std::vector<Hotspare> hotspares_;
};

/// Usable part of the raw capacity of an array of `drives` drives at a RAID level code: 0.5 for 1,
/// 1E and 10; (n-1)/n for 5; (n-2)/n for 5E, 5EE, 6 and 50; (n-4)/n for 60; else 1. Single
/// precision.
[[nodiscard]] float usableFraction(std::int32_t raidLevel, std::size_t drives);

/// The nearest whole number of MB, halves upwards; one more than that where it is below 0.
[[nodiscard]] std::int64_t roundedMb(double mb);

} // namespace zolex
