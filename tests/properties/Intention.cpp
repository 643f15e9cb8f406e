#include "properties/Intention.h"

#include "properties/Limits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zolex::properties {

namespace {

using zolex_sim::DriveLocation;
using zolex_sim::DriveStatus;
using zolex_sim::RaidLevel;
using zolex_sim::ReadPolicy;
using zolex_sim::WritePolicy;

// The levels by code, as the machine knows them.
constexpr std::array<RaidLevel, 11> levelsByCode = {
    RaidLevel::raid0,  RaidLevel::raid1,   RaidLevel::raid1E, RaidLevel::raid5,
    RaidLevel::raid5E, RaidLevel::raid5EE, RaidLevel::raid6,  RaidLevel::raid10,
    RaidLevel::raid50, RaidLevel::raid60,  RaidLevel::volume};

int kilobytes(std::int32_t stripeCode) {
    return 8 << stripeCode;
}

std::vector<const LogicalDrive*> drivesOn(const RAIDConfiguration& plan, std::size_t array) {
    std::vector<const LogicalDrive*> drives;
    for (const LogicalDrive& drive : plan.logicalDrives()) {
        if (drive.arrayIndex == static_cast<std::int32_t>(array)) {
            drives.push_back(&drive);
        }
    }
    return drives;
}

} // namespace

void Intention::carryOut() {
    if (isUtility("HYPERWIN")) {
        carryOutHyperwin();
        return;
    }
    for (std::size_t array = 0; array < plan().arrays().size(); ++array) {
        if (!carryOutArray(array)) {
            return;
        }
    }
    carryOutHotspares();
}

bool Intention::creation(std::optional<zolex_sim::Refusal> refusal) {
    ++steps_;
    ++creations_;
    refusal_ = std::move(refusal);
    return !refusal_;
}

bool Intention::carryOutArray(std::size_t array) {
    const std::vector<const LogicalDrive*> drives = drivesOn(plan(), array);
    if (!create(array, *drives.front())) {
        return false;
    }
    if (isUtility("ARCCONF")) {
        return setCaches(array, *drives.front());
    }
    // MEGACLI gets a command for the first logical drive alone.
    return !isUtility("QTCSEND") ||
           std::all_of(drives.begin() + 1, drives.end(),
                       [&](const LogicalDrive* drive) { return addOnArray(array, *drive); });
}

bool Intention::create(std::size_t array, const LogicalDrive& drive) {
    if (steps_ == mostSteps_) {
        return false;
    }
    const std::optional<RaidLevel> level = levelOf(drive);
    if (!level) {
        wordless_ = true;
        creation(std::nullopt);
        return false;
    }
    const RaidArray& members = plan().arrays()[array];
    zolex_sim::NewLogicalDrive request;
    request.level = *level;
    request.spans = spansOf(*level, members);
    if (drive.sizeMb != sizeFill && !isUtility("HRCONF")) {
        request.sizeMb = drive.sizeMb;
    }
    request.stripeKb = stripeOf(*level, members.drives().size());
    if (isUtility("MEGACLI")) {
        constexpr std::array<ReadPolicy, 3> modes = {ReadPolicy::adaptive, ReadPolicy::ahead,
                                                     ReadPolicy::none};
        request.readPolicy = modes.at(static_cast<std::size_t>(plan().readAhead));
        if (drive.writeCache != write_cache::notGiven) {
            request.writePolicy = drive.writeCache == write_cache::on ? WritePolicy::writeBack
                                                                      : WritePolicy::writeThrough;
        }
    }
    if (const auto shared = isUtility("MEGACLI") ? target_.arrayOf(request.spans) : std::nullopt) {
        return creation(addLogicalDrive(target_, *shared, request));
    }
    return creation(createLogicalDrive(target_, request));
}

bool Intention::addOnArray(std::size_t array, const LogicalDrive& drive) {
    if (steps_ == mostSteps_) {
        return false;
    }
    const RaidArray& members = plan().arrays()[array];
    const auto part = [&members](const LogicalDrive& each) {
        return static_cast<double>(partOf(each.raidLevel, members.drives().size()));
    };
    zolex_sim::NewLogicalDrive request;
    request.level = *levelOf(drive);
    request.sizeMb = drive.sizeMb;
    if (drive.sizeMb == sizeFill) {
        double left = static_cast<double>(members.capacityMb);
        for (const LogicalDrive* other : drivesOn(plan(), array)) {
            if (other != &drive) {
                left = other->sizeMb == sizeFill ? -1e18 : left - other->sizeMb / part(*other);
            }
        }
        request.sizeMb = left < 0 ? 0 : static_cast<std::int64_t>(std::lround(left * part(drive)));
    }
    return creation(addLogicalDrive(target_, array, request));
}

bool Intention::setCaches(std::size_t array, const LogicalDrive& drive) {
    zolex_sim::LogicalDrive& made = target_.logicalDrives.at(array);
    if (plan().readAhead == read_ahead::off && steps_ < mostSteps_) {
        made.readPolicy = ReadPolicy::none;
        ++steps_;
    }
    if (drive.writeCache != write_cache::notGiven && steps_ < mostSteps_) {
        const bool on = drive.writeCache == write_cache::on;
        // These keep the cache without a battery.
        const bool plain = planned_.type() == controller_type::arcconf2 || planned_.subtype() == 1;
        made.writePolicy = on ? WritePolicy::writeBack : WritePolicy::writeThrough;
        made.batteryProtected = on && !plain;
        ++steps_;
    }
    return true;
}

bool Intention::carryOutHotspares() {
    std::vector<DriveLocation> locations;
    for (const Hotspare& hotspare : plan().hotspares()) {
        locations.push_back(locate(hotspare.channelNumber, hotspare.id));
        if (isUtility("MEGACLI")) {
            // Its command names an enclosure, always.
            locations.back().enclosure = planned_.targetId(hotspare.channelNumber, hotspare.id);
        }
    }
    if (isUtility("MEGACLI")) {
        return locations.empty() || steps_ == mostSteps_ || creation(addSpares(target_, locations));
    }
    return std::all_of(locations.begin(), locations.end(), [this](const DriveLocation& location) {
        return steps_ < mostSteps_ && creation(addSpares(target_, {location}));
    });
}

// The utility takes all free drives, or all but the last one, which becomes the hot spare.
bool Intention::carryOutHyperwin() {
    const LogicalDrive& drive = plan().logicalDrives().front();
    if (steps_ == mostSteps_) {
        return false;
    }
    if (drive.raidLevel != raid_level::raid0 && drive.raidLevel != raid_level::raid1) {
        wordless_ = true;
        creation(std::nullopt);
        return false;
    }
    zolex_sim::Controller changed = target_;
    zolex_sim::NewLogicalDrive request;
    request.level = levelsByCode.at(static_cast<std::size_t>(drive.raidLevel));
    std::vector<DriveLocation> members;
    for (const zolex_sim::Drive& each : target_.drives) {
        if (each.status == DriveStatus::good) {
            members.push_back(each.location);
        }
    }
    std::sort(members.begin(), members.end());
    std::optional<zolex_sim::Refusal> refusal;
    if (!plan().hotspares().empty() && !members.empty()) {
        refusal = addSpares(changed, {members.back()});
        members.pop_back();
    }
    request.spans = {members};
    if (drive.raidLevel == raid_level::raid0) {
        request.stripeKb = kilobytes(plan().stripeSize);
    }
    if (!refusal) {
        refusal = createLogicalDrive(changed, request);
    }
    if (!creation(refusal)) {
        return false;
    }
    target_ = changed;
    if (drive.writeCache != write_cache::notGiven && steps_ < mostSteps_) {
        target_.logicalDrives.front().writePolicy = drive.writeCache == write_cache::on
                                                        ? WritePolicy::writeBack
                                                        : WritePolicy::writeThrough;
        ++steps_;
    }
    return true;
}

DriveLocation Intention::locate(std::int32_t channel, std::int32_t id) const {
    if (isUtility("MEGACLI")) {
        // Drives outside every enclosure are on a controller that has no others.
        const bool enclosed = target_.drives.front().location.enclosure.has_value();
        return {enclosed ? std::optional<int>(planned_.targetId(channel, id)) : std::nullopt, id};
    }
    const bool fromZero = isUtility("ARCCONF") || isUtility("HRCONF");
    return {fromZero ? channel - 1 : channel, id};
}

std::optional<RaidLevel> Intention::levelOf(const LogicalDrive& drive) const {
    const auto code = static_cast<std::size_t>(drive.raidLevel);
    if (code >= levelsByCode.size()) {
        return std::nullopt;
    }
    const RaidLevel level = levelsByCode[code];
    const auto isOneOf = [level](std::initializer_list<RaidLevel> levels) {
        return std::find(levels.begin(), levels.end(), level) != levels.end();
    };
    const bool known = isUtility("MEGACLI") ? !isOneOf({RaidLevel::raid1E, RaidLevel::raid5E,
                                                        RaidLevel::raid5EE, RaidLevel::volume})
                       : isUtility("CFGGEN") || isUtility("CFGGEN1.02.02")
                           ? isOneOf({RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid1E})
                           : true;
    return known ? std::optional(level) : std::nullopt;
}

std::vector<std::vector<DriveLocation>> Intention::spansOf(RaidLevel level,
                                                           const RaidArray& array) const {
    const std::size_t drives = array.drives().size();
    std::size_t perSpan = drives;
    if (level == RaidLevel::raid10) {
        perSpan = 2;
    } else if (level == RaidLevel::raid50 || level == RaidLevel::raid60) {
        perSpan = drives / 2;
    }
    std::vector<std::vector<DriveLocation>> spans;
    for (std::size_t i = 0; i < drives; ++i) {
        if (isUtility("MEGACLI") && i % perSpan == 0 && i + perSpan > drives) {
            break; // the odd one is left out
        }
        if (i % perSpan == 0) {
            spans.emplace_back();
        }
        const DrivePosition drive = array.drives()[i];
        spans.back().push_back(locate(drive.channel, drive.id));
    }
    return spans;
}

std::optional<int> Intention::stripeOf(RaidLevel level, std::size_t drives) const {
    const int planned = kilobytes(plan().stripeSize);
    if (isUtility("MEGACLI")) {
        return planned;
    }
    if ((!isUtility("ARCCONF") && !isUtility("HRCONF")) || level == RaidLevel::raid1 ||
        level == RaidLevel::volume) {
        return std::nullopt;
    }
    int most = planned;
    if (isUtility("ARCCONF") && level == RaidLevel::raid6) {
        most = drives >= 12 ? 64 : drives >= 9 ? 128 : drives >= 6 ? 256 : drives == 5 ? 512 : most;
    } else if (isUtility("ARCCONF") && level == RaidLevel::raid60) {
        most = drives >= 12 ? 256 : drives >= 10 ? 512 : most;
    }
    return std::min(planned, most);
}

std::string describe(const zolex_sim::Controller& controller) {
    std::string text;
    for (const zolex_sim::Array& array : controller.arrays) {
        text += "A";
        for (const auto& span : array.spans) {
            text += " [" + toText(span) + "]";
        }
        text += "; ";
    }
    for (const zolex_sim::LogicalDrive& drive : controller.logicalDrives) {
        text += "L " + std::to_string(drive.array) + " " + std::string(rulesOf(drive.level).name) +
                " " + std::to_string(drive.sizeMb) + " MB, " + std::to_string(drive.stripeKb) +
                " KB, " + std::string(policyWord(drive.writePolicy)) + ", " +
                std::string(policyWord(drive.readPolicy)) +
                (drive.batteryProtected ? ", battery" : "") + "; ";
    }
    for (const zolex_sim::Drive& drive : controller.drives) {
        text += toText(drive.location) + " " + std::string(statusWord(drive.status)) + "; ";
    }
    return text;
}

std::string layoutOf(const zolex_sim::Controller& controller) {
    zolex_sim::Controller layout = controller;
    for (zolex_sim::LogicalDrive& drive : layout.logicalDrives) {
        zolex_sim::LogicalDrive kept;
        kept.array = drive.array;
        kept.level = drive.level;
        drive = kept;
    }
    return describe(layout);
}

} // namespace zolex::properties
