#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "foundation/TraceScope.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zolex {

namespace {

/// Most drives of an array when its RAID level is given. Columns: level; type (anyCode: every
/// other); most drives. The first row that fits counts.
struct LevelLimit {
    std::int32_t raidLevel;
    std::int32_t type;
    std::size_t most;
};
// clang-format off
constexpr std::array<LevelLimit, 13> levelLimits{{
    {raid_level::raid0,   controller_type::lsiSas, 10},
    {raid_level::raid0,   anyCode,                 16},
    {raid_level::raid1,   anyCode,                  2},
    {raid_level::raid1E,  controller_type::lsiSas,  6},
    {raid_level::raid1E,  anyCode,                 16},
    {raid_level::raid5,   anyCode,                 16},
    {raid_level::raid5E,  anyCode,                 16},
    {raid_level::raid5EE, anyCode,                 16},
    {raid_level::raid6,   anyCode,                 16},
    {raid_level::raid10,  anyCode,                 16},
    {raid_level::raid50,  anyCode,                 16},
    {raid_level::raid60,  anyCode,                 16},
    {raid_level::volume,  anyCode,                 16},
}};
// clang-format on

/// Most drives of an array whose RAID level is not in the table.
constexpr std::size_t leastLimit = 2;

std::size_t mostForLevel(std::int32_t raidLevel, std::int32_t type) {
    for (const LevelLimit& row : levelLimits) {
        if (row.raidLevel == raidLevel && (row.type == anyCode || row.type == type)) {
            return row.most;
        }
    }
    return leastLimit;
}

/// "Array.A" for index 0.
CString arrayKeyword(std::size_t index) {
    return keyword::array + CString(arrayLetter(index), 1);
}

} // namespace

/// Collects the drives of one array and takes them.
class RAIDConfigCreator::ArrayBuilder {
  public:
    explicit ArrayBuilder(RAIDConfigCreator& planner) : planner_(planner) {}

    /// The caller adds at most 32 drives.
    void add(DrivePosition position, Reason::Kind why) {
        array_.addDrive(position);
        planner_.take(position);
        const std::int32_t size = planner_.sizeAt(position);
        smallest_ = std::min(smallest_, size);
        planner_.explain([&] { return reasonFor(position, why, size); });
    }
    [[nodiscard]] std::size_t count() const { return array_.drives().size(); }
    /// The array, with number of drives times smallest size as its capacity.
    [[nodiscard]] RaidArray finish() {
        array_.capacityMb = static_cast<std::int64_t>(count()) * smallest_;
        return std::move(array_);
    }

  private:
    [[nodiscard]] Reason reasonFor(DrivePosition position, Reason::Kind why,
                                   std::int32_t size) const {
        const std::size_t index = planner_.layout_.arrays().size();
        const bool listed = why == Reason::Kind::listed || why == Reason::Kind::allRemaining;
        const bool like = why == Reason::Kind::likeFirst;
        return {.kind = why,
                .subject = Reason::Subject::array,
                .index = static_cast<std::int32_t>(index),
                .keyword = listed ? arrayKeyword(index) : CString(),
                .drive = position,
                .asked = like ? planner_.policy_.arrayDefaults.variancePercent : 0,
                .value = size};
    }

    RAIDConfigCreator& planner_;
    RaidArray array_;
    std::int32_t smallest_ = std::numeric_limits<std::int32_t>::max();
};

bool RAIDConfigCreator::doArrays() {
    const TraceScope scope(report_, "RAIDConfigCreator::doArrays");
    return scope.returnValue(policy_.customArrays ? doCUSTOMArrays() : doAUTOArrays());
}

bool RAIDConfigCreator::doAUTOArrays() {
    const TraceScope scope(report_, "RAIDConfigCreator::doAUTOArrays");
    const auto isFreeDrive = [this](DrivePosition position) { return isFree(position); };
    bool done = true;
    for (;;) {
        const auto* first = std::find_if(planningOrder.begin(), planningOrder.end(), isFreeDrive);
        if (first == planningOrder.end()) {
            break;
        }
        done = addArray(collectLikeDrives(*first));
        if (rules_.oneArray || !done) {
            break;
        }
    }
    return scope.returning(done);
}

RaidArray RAIDConfigCreator::collectLikeDrives(DrivePosition first) {
    const std::int64_t size = sizeAt(first);
    const auto tolerance = static_cast<std::int64_t>(policy_.arrayDefaults.variancePercent / 100.0 *
                                                     static_cast<double>(size));
    const std::int32_t lastChannel =
        rules_.channelsApart ? first.channel : RAIDController::channels - 1;
    const std::size_t most = maximumDrivesPerArray(raid_level::none);

    ArrayBuilder builder(*this);
    builder.add(first, Reason::Kind::firstFree);
    // No free drive stands before the first, so the scan may start over.
    for (const DrivePosition position : planningOrder) {
        if (builder.count() >= most || position.channel > lastChannel) {
            break;
        }
        if (isFree(position) && sizeAt(position) >= size - tolerance &&
            sizeAt(position) <= size + tolerance) {
            builder.add(position, Reason::Kind::likeFirst);
        }
    }
    return builder.finish();
}

bool RAIDConfigCreator::doCUSTOMArrays() {
    const TraceScope scope(report_, "RAIDConfigCreator::doCUSTOMArrays");
    bool done = true;
    for (const RaidArray& entry : policy_.arrays) {
        if (entry.allRemaining) {
            done = doArrayByAllRemaining();
            break;
        }
        const bool byNumber = !entry.driveNumbers().empty() && entry.driveNumbers().front() > 0;
        done = byNumber ? doArrayByNumber(entry) : doArrayByLocation(entry);
        if (!done) {
            break;
        }
    }
    return scope.returnValue(done);
}

// A drive that is named twice, or that is a hot spare already, is taken again, and sizes are not
// compared: a custom list is planned as it was written.
bool RAIDConfigCreator::doArrayByNumber(const RaidArray& entry) {
    const TraceScope scope(report_, "RAIDConfigCreator::doArrayByNumber");
    ArrayBuilder builder(*this);
    for (const std::int32_t number : entry.driveNumbers()) {
        if (number < 1) {
            break;
        }
        const std::optional<DrivePosition> position = getDriveNumber(number);
        if (!position) {
            return scope.returning(
                refuseMissingDrive(makeArrayFault(FaultKind::planArrayDriveMissing), number));
        }
        builder.add(*position, Reason::Kind::listed);
    }
    return scope.returning(addListedArray(entry, builder.finish()));
}

bool RAIDConfigCreator::doArrayByLocation(const RaidArray& entry) {
    constexpr std::int32_t leastMb = 1;
    const TraceScope scope(report_, "RAIDConfigCreator::doArrayByLocation");
    ArrayBuilder builder(*this);
    for (const DrivePosition position : entry.drives()) {
        if (sizeAt(position) < leastMb) {
            return scope.returning(refuseMissingDrive(
                makeArrayFault(FaultKind::planArrayDriveMissing), position, leastMb));
        }
        builder.add(position, Reason::Kind::listed);
    }
    return scope.returning(addListedArray(entry, builder.finish()));
}

bool RAIDConfigCreator::doArrayByAllRemaining() {
    const TraceScope scope(report_, "RAIDConfigCreator::doArrayByAllRemaining");
    const std::size_t most = maximumDrivesPerArray(getArrayRAIDLevel(layout_.arrays().size()));
    ArrayBuilder builder(*this);
    for (const DrivePosition position : planningOrder) {
        if (builder.count() >= most) {
            break;
        }
        if (isFree(position)) {
            builder.add(position, Reason::Kind::allRemaining);
        }
    }
    return scope.returning(builder.count() == 0 || addArray(builder.finish()));
}

bool RAIDConfigCreator::addArray(RaidArray array) {
    if (layout_.addArray(std::move(array))) {
        return true;
    }
    Fault fault = makeFault(FaultKind::planTooManyArrays);
    fault.number = static_cast<std::int32_t>(RAIDConfiguration::maxArrays);
    return refuse(std::move(fault));
}

bool RAIDConfigCreator::addListedArray(const RaidArray& entry, RaidArray array) {
    if (!entry.tooManyDrives) {
        return addArray(std::move(array));
    }
    Fault fault = makeArrayFault(FaultKind::planTooManyArrayDrives);
    fault.number = static_cast<std::int32_t>(RaidArray::maxDrives);
    return refuse(std::move(fault));
}

Fault RAIDConfigCreator::makeArrayFault(FaultKind kind) const {
    const std::size_t index = layout_.arrays().size();
    Fault fault = makeFault(kind);
    fault.place.keyword = arrayKeyword(index);
    fault.place.array = static_cast<std::int32_t>(index);
    return fault;
}

std::size_t RAIDConfigCreator::maximumDrivesPerArray(std::int32_t raidLevel) const {
    std::int32_t asked = raidLevel;
    if (asked == raid_level::none) {
        asked = policy_.logicalDefaults ? policy_.logicalDefaults->raidLevel : raid_level::notGiven;
    }
    return asked == raid_level::notGiven ? rules_.mostArrayDrives
                                         : mostForLevel(asked, controller_.type());
}

} // namespace zolex
