#include "controllers/Application.h"
#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "model/RAIDController.h"

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

/// Most drives of an array when no RAID level is given. Columns: type; subtype (anyCode: every
/// other); most drives. The first row that fits counts.
struct TypeLimit {
    std::int32_t type;
    std::int32_t subtype;
    std::size_t most;
};
// clang-format off
constexpr std::array<TypeLimit, 9> typeLimits{{
    {controller_type::family,    anyCode, 16},
    {controller_type::arcconf2,  anyCode,  4},
    {controller_type::hrconf4,   anyCode,  4},
    {controller_type::arcconf7,  anyCode, 16},
    {controller_type::hrconf8,   anyCode,  4},
    {controller_type::lsiSas,    1,        2},
    {controller_type::lsiSas,    anyCode,  6},
    {controller_type::arcconf11, anyCode, 16},
    {controller_type::megaRaid,  anyCode, 32},
}};
// clang-format on

/// Most drives of an array where neither table has a row.
constexpr std::size_t leastLimit = 2;

/// The types that get exactly one automatic array; the others go on until no free drive remains.
constexpr std::array<std::int32_t, 7> oneArrayTypes{
    controller_type::hrconf3, controller_type::hrconf4, controller_type::lsiScsi,
    controller_type::lsiIde,  controller_type::hrconf8, controller_type::hrconf9,
    controller_type::lsiSas};

std::size_t mostForLevel(std::int32_t raidLevel, std::int32_t type) {
    for (const LevelLimit& row : levelLimits) {
        if (row.raidLevel == raidLevel && (row.type == anyCode || row.type == type)) {
            return row.most;
        }
    }
    return leastLimit;
}

std::size_t mostForType(std::int32_t type, std::int32_t subtype) {
    for (const TypeLimit& row : typeLimits) {
        if (row.type == type && (row.subtype == anyCode || row.subtype == subtype)) {
            return row.most;
        }
    }
    return leastLimit;
}

bool hasOneArray(std::int32_t type) {
    return std::find(oneArrayTypes.begin(), oneArrayTypes.end(), type) != oneArrayTypes.end();
}

/// Collects the drives of one array and marks them used.
class ArrayBuilder {
  public:
    explicit ArrayBuilder(RAIDController& controller) : controller_(controller) {}

    /// The caller adds at most 32 drives.
    void add(DrivePosition position) {
        array_.addDrive(position);
        controller_.setUsed(position.channel, position.id);
        smallest_ = std::min(smallest_, controller_.size(position.channel, position.id));
    }
    [[nodiscard]] std::size_t count() const { return array_.drives().size(); }
    /// The array, with number of drives times smallest size as its capacity.
    [[nodiscard]] RaidArray finish() {
        array_.capacityMb = static_cast<std::int64_t>(count()) * smallest_;
        return std::move(array_);
    }

  private:
    RAIDController& controller_;
    RaidArray array_;
    std::int32_t smallest_ = std::numeric_limits<std::int32_t>::max();
};

} // namespace

bool RAIDConfigCreator::doArrays() {
    printer().trace("Entering RAIDConfigCreator::doArrays\n");
    const bool done = policy_->customArrays ? doCUSTOMArrays() : doAUTOArrays();
    printer().tracef("Exiting RAIDConfigCreator::doArrays, returnValue=%s\n", resultWord(done));
    return done;
}

bool RAIDConfigCreator::doAUTOArrays() {
    printer().trace("Entering RAIDConfigCreator::doAUTOArrays\n");
    const bool one = hasOneArray(controller_->type());
    const auto isFreeDrive = [this](DrivePosition position) { return isFree(position); };
    bool done = true;
    for (;;) {
        const auto* first = std::find_if(planningOrder.begin(), planningOrder.end(), isFreeDrive);
        if (first == planningOrder.end()) {
            break;
        }
        done = addArray(collectLikeDrives(*first));
        if (one || !done) {
            break;
        }
    }
    printer().tracef("Exiting RAIDConfigCreator::doAUTOArrays, returning %s\n", resultWord(done));
    return done;
}

RaidArray RAIDConfigCreator::collectLikeDrives(DrivePosition first) {
    const std::int64_t size = sizeAt(first);
    const auto tolerance = static_cast<std::int64_t>(policy_->arrayDefaults.variancePercent /
                                                     100.0 * static_cast<double>(size));
    // The channels of a type 4 controller do not share arrays.
    const std::int32_t lastChannel = controller_->type() == controller_type::hrconf4
                                         ? first.channel
                                         : RAIDController::channels - 1;
    const std::size_t most = maximumDrivesPerArray(raid_level::none);

    ArrayBuilder builder(*controller_);
    builder.add(first);
    // No free drive stands before the first, so the scan may start over.
    for (const DrivePosition position : planningOrder) {
        if (builder.count() >= most || position.channel > lastChannel) {
            break;
        }
        if (isFree(position) && sizeAt(position) >= size - tolerance &&
            sizeAt(position) <= size + tolerance) {
            builder.add(position);
        }
    }
    return builder.finish();
}

bool RAIDConfigCreator::doCUSTOMArrays() {
    printer().trace("Entering RAIDConfigCreator::doCUSTOMArrays\n");
    bool done = true;
    for (const RaidArray& entry : policy_->arrays) {
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
    printer().tracef("Exiting RAIDConfigCreator::doCUSTOMArrays, returnValue=%s\n",
                     resultWord(done));
    return done;
}

// A drive that is named twice, or that is a hot spare already, is taken again, and sizes are not
// compared: a custom list is planned as it was written.
bool RAIDConfigCreator::doArrayByNumber(const RaidArray& entry) {
    printer().trace("Entering RAIDConfigCreator::doArrayByNumber\n");
    ArrayBuilder builder(*controller_);
    bool done = true;
    for (const std::int32_t number : entry.driveNumbers()) {
        if (number < 1) {
            break;
        }
        const std::optional<DrivePosition> position = getDriveNumber(number);
        if (!position) {
            reportMissingDrive(CString::fromInt(number));
            done = false;
            break;
        }
        builder.add(*position);
    }
    done = done && addListedArray(entry, builder.finish());
    printer().tracef("Exiting RAIDConfigCreator::doArrayByNumber, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::doArrayByLocation(const RaidArray& entry) {
    printer().trace("Entering RAIDConfigCreator::doArrayByLocation\n");
    ArrayBuilder builder(*controller_);
    bool done = true;
    for (const DrivePosition position : entry.drives()) {
        if (sizeAt(position) < 1) {
            reportMissingDrive(formatText("%d:%d", position.channel, position.id));
            done = false;
            break;
        }
        builder.add(position);
    }
    done = done && addListedArray(entry, builder.finish());
    printer().tracef("Exiting RAIDConfigCreator::doArrayByLocation, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::doArrayByAllRemaining() {
    printer().trace("Entering RAIDConfigCreator::doArrayByAllRemaining\n");
    const std::size_t most = maximumDrivesPerArray(getArrayRAIDLevel(plan_->arrays().size()));
    ArrayBuilder builder(*controller_);
    for (const DrivePosition position : planningOrder) {
        if (builder.count() >= most) {
            break;
        }
        if (isFree(position)) {
            builder.add(position);
        }
    }
    const bool done = builder.count() == 0 || addArray(builder.finish());
    printer().tracef("Exiting RAIDConfigCreator::doArrayByAllRemaining, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::addArray(RaidArray array) {
    if (plan_->addArray(std::move(array))) {
        return true;
    }
    printer().errorBlockf("Error in %s -- %s does not support more than 16 arrays.\n", policyName(),
                          modelName().c_str());
    application_.returnCode = planning_code::drivesDoNotFit;
    return false;
}

void RAIDConfigCreator::reportMissingDrive(const CString& drive) {
    printer().errorBlockf(
        "%s, Array.%c -- The following drive does not exist:  %s\n\t%s controller.\n", policyName(),
        arrayLetter(plan_->arrays().size()), drive.c_str(), modelName().c_str());
    application_.returnCode = planning_code::drivesDoNotFit;
    printer().print("Not enough same size drives to accommodate requested configuration\n",
                    level::shortage);
}

bool RAIDConfigCreator::addListedArray(const RaidArray& entry, RaidArray array) {
    if (!entry.tooManyDrives) {
        return addArray(std::move(array));
    }
    printer().errorBlockf("Error in %s -- %s does not support more than 32 drives per array.\n",
                          policyName(), modelName().c_str());
    application_.returnCode = planning_code::drivesDoNotFit;
    return false;
}

std::size_t RAIDConfigCreator::maximumDrivesPerArray(std::int32_t raidLevel) const {
    std::int32_t asked = raidLevel;
    if (asked == raid_level::none) {
        asked =
            policy_->logicalDefaults ? policy_->logicalDefaults->raidLevel : raid_level::notGiven;
    }
    return asked == raid_level::notGiven ? mostForType(controller_->type(), controller_->subtype())
                                         : mostForLevel(asked, controller_->type());
}

} // namespace zolex
