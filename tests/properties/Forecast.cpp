#include "properties/Forecast.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zolex::properties {

namespace {

bool builds(const Family& family, std::int32_t level) {
    // A controller that tells its own levels has those of its class.
    const bool own = std::string_view(family.extra).find("raidLevels") != std::string_view::npos;
    const std::vector<std::string>& words = own ? family.levels : limitsOf(family.utility).levels;
    return shapeOf(level) != nullptr &&
           std::find(words.begin(), words.end(), raidLevelWord(level)) != words.end();
}

bool takesArrayAlone(std::int32_t level) {
    return level == raid_level::raid5E || level == raid_level::raid5EE;
}

std::string placeText(int group, int place) {
    return " " + std::to_string(group) + ":" + std::to_string(place);
}

} // namespace

Forecast::Forecast(const RAIDController& planned, const Family& family,
                   const VirtualController& machine)
    : planned_(planned), family_(family), machine_(machine) {
    for (const VirtualDrive& drive : machine.drives) {
        drives_[{drive.group, drive.place}] = &drive;
    }
    if (isUtility("HYPERWIN")) {
        judgeHyperwinGenerator();
    } else {
        judgeGenerator();
    }
    if (generatorCause_ == Cause::none) {
        carryOut();
    }
}

void Forecast::refuseCommands(Cause cause, std::string_view complaint) {
    generatorCause_ = cause;
    complaint_ = complaint;
}

void Forecast::judgeGenerator() {
    constexpr std::string_view noLogicalDrive = "Each array must have at least one logical drive.";
    if (plan().arrays().empty()) {
        refuseCommands(Cause::noArray, "Each controller must have at least one array.");
    }
    for (std::size_t array = 0; array < plan().arrays().size(); ++array) {
        const std::size_t drives = drivesOn(array).size();
        if (drives == 0) {
            refuseCommands(Cause::arrayWithoutLogicalDrive, noLogicalDrive);
            return;
        }
        if (drives > 1 && !isUtility("MEGACLI") && !isUtility("QTCSEND")) {
            refuseCommands(Cause::severalOnArray,
                           isUtility("HRCONF") ? "Only one logical drive may be created per array"
                                               : noLogicalDrive);
            return;
        }
    }
}

void Forecast::judgeHyperwinGenerator() {
    const std::vector<LogicalDrive>& drives = plan().logicalDrives();
    if (plan().arrays().empty()) {
        refuseCommands(Cause::noArray, "Each controller must have at least one array.");
    } else if (drives.empty()) {
        refuseCommands(Cause::arrayWithoutLogicalDrive,
                       "Each array must have at least one logical drive.");
    } else if (drives.size() != 1 || drives.front().arrayIndex != 0) {
        refuseCommands(Cause::hyperwinSeveral, "Only one logical drive may be created per array");
    } else if (drives.front().sizeMb != sizeFill) {
        refuseCommands(Cause::hyperwinSize, "You may only specify FILL or 100% for 'size'");
    } else if (drives.front().raidLevel == raid_level::raid1 && !plan().hotspares().empty()) {
        refuseCommands(Cause::hyperwinMirrorSpare,
                       "Hot-spare drives are not supported with mirroring");
    } else if (drives.front().raidLevel == raid_level::raid0 && plan().hotspares().size() > 1) {
        refuseCommands(Cause::hyperwinSecondSpare, "You may only create one hot-spare drive");
    }
}

std::vector<const LogicalDrive*> Forecast::drivesOn(std::size_t array) const {
    std::vector<const LogicalDrive*> drives;
    for (const LogicalDrive& drive : plan().logicalDrives()) {
        if (drive.arrayIndex == static_cast<std::int32_t>(array)) {
            drives.push_back(&drive);
        }
    }
    return drives;
}

Forecast::Place Forecast::placeOf(std::int32_t channel, std::int32_t id) const {
    if (isUtility("MEGACLI")) {
        // Drives outside every enclosure are on a controller that has no others.
        const bool enclosed = machine_.drives.front().group != 0;
        return {enclosed ? planned_.targetId(channel, id) : 0, id};
    }
    const bool fromZero = isUtility("ARCCONF") || isUtility("HRCONF");
    return {fromZero ? channel - 1 : channel, id};
}

bool Forecast::isShownAsFree(std::int32_t channel, std::int32_t id) const {
    const auto drive = drives_.find(placeOf(channel, id));
    const bool showsForeign = !isUtility("ARCCONF") && !isUtility("HRCONF");
    return drive != drives_.end() && (drive->second->status == "good" ||
                                      (showsForeign && drive->second->status == "foreign"));
}

Forecast::Places Forecast::membersOf(std::size_t array, const LogicalDrive& drive) const {
    Places members;
    if (isUtility("HYPERWIN")) {
        // The command names no drives: it takes all, but for the last one when there is a spare.
        for (const auto& [place, virtualDrive] : drives_) {
            members.push_back(place);
        }
        if (!plan().hotspares().empty() && !members.empty()) {
            members.pop_back();
        }
        return members;
    }
    for (const DrivePosition& position : plan().arrays().at(array).drives()) {
        members.push_back(placeOf(position.channel, position.id));
    }
    if (isUtility("MEGACLI") && drive.raidLevel == raid_level::raid10 && members.size() % 2 != 0) {
        members.pop_back();
    }
    return members;
}

/// The members as a level groups them: in pairs, in two halves, or all together.
template <typename Place>
std::vector<std::set<Place>> spansOf(std::int32_t level, const std::vector<Place>& members) {
    const bool halves = level == raid_level::raid50 || level == raid_level::raid60;
    const std::size_t perSpan = level == raid_level::raid10 ? 2
                                : halves                    ? (members.size() + 1) / 2
                                                            : members.size();
    std::vector<std::set<Place>> spans;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (i % perSpan == 0) {
            spans.emplace_back();
        }
        spans.back().insert(members[i]);
    }
    return spans;
}

// MEGACLI takes a further logical drive on an array by the names of exactly its drives.
std::optional<std::size_t> Forecast::sharedArray(std::int32_t level, const Places& members) const {
    const std::vector<std::set<Place>> spans = spansOf(level, members);
    std::size_t named = 0;
    for (const std::set<Place>& span : spans) {
        named += span.size();
    }
    const auto found = std::find(spans_.begin(), spans_.end(), spans);
    return isUtility("MEGACLI") && named == members.size() && found != spans_.end()
               ? std::optional(static_cast<std::size_t>(found - spans_.begin()))
               : std::nullopt;
}

// As large as the smallest member allows; a volume takes its drives one after another.
double Forecast::roomOf(std::int32_t level, const Places& members) const {
    double smallest = std::numeric_limits<double>::max();
    double sum = 0;
    for (const Place& place : members) {
        const int sizeMb = drives_.at(place)->sizeMb;
        smallest = std::min(smallest, static_cast<double>(sizeMb));
        sum += sizeMb;
    }
    const int lost = shapeOf(level)->lost;
    const auto count = static_cast<double>(members.size());
    return level == raid_level::volume  ? sum
           : lost == LevelShape::halved ? smallest * count / 2
                                        : smallest * (count - lost);
}

// The logical drives of an array share it by what they take of its members; a begun MB counts.
double Forecast::roomOn(std::size_t array, std::int32_t level) const {
    constexpr double rounding = 0.001;
    const double whole = roomOf(level, arrays_[array]);
    double share = 0;
    for (const Made& made : made_) {
        if (made.array == array) {
            share += static_cast<double>(made.sizeMb) / roomOf(made.level, arrays_[array]);
        }
    }
    return share == 0 ? std::floor(whole) : std::ceil(whole * (1 - share) - rounding);
}

void Forecast::checkPlaces(const Places& places, std::set<Cause>& causes) const {
    std::set<Place> named;
    for (const Place& place : places) {
        const auto drive = drives_.find(place);
        if (drive == drives_.end()) {
            causes.insert(Cause::missing);
        } else if (drive->second->status != "good") {
            causes.insert(drive->second->status == "foreign" ? Cause::foreign : Cause::failed);
        }
        if (!named.insert(place).second) {
            causes.insert(Cause::namedTwice);
        }
        if (taken_.count(place) > 0) {
            causes.insert(Cause::taken);
        }
    }
}

void Forecast::checkLevel(const LogicalDrive& drive, std::size_t members,
                          std::set<Cause>& causes) const {
    if (!builds(family_, drive.raidLevel)) {
        causes.insert(Cause::level);
        return;
    }
    const LevelShape& shape = *shapeOf(drive.raidLevel);
    const std::size_t most = limitsOf(family_.utility).drives;
    const bool halves =
        drive.raidLevel == raid_level::raid50 || drive.raidLevel == raid_level::raid60;
    const bool pairs = drive.raidLevel == raid_level::raid10;
    if (members < shape.least) {
        causes.insert(Cause::tooFewDrives);
    }
    if ((shape.most > 0 && members > shape.most) || (halves && members % 2 != 0) ||
        (!pairs && members > (halves ? 2 * most : most))) {
        causes.insert(Cause::tooManyDrives);
    }
    if (pairs && members % 2 != 0) {
        causes.insert(Cause::odd10);
    }
    if (pairs && (members + 1) / 2 > mostSpans) {
        causes.insert(Cause::tooManySpans);
    }
}

void Forecast::checkSize(Step& step, std::int64_t sizeMb, double room) const {
    step.roomMb = room;
    const bool whole = sizeMb == sizeFill;
    if (whole ? room < 1 : sizeMb < 1 || static_cast<double>(sizeMb) > room) {
        step.causes.insert(step.shared    ? Cause::sizeOfShared
                           : !step.first  ? Cause::sizeOfFurther
                           : step.leftOut ? Cause::sizeOfLeftOut
                                          : Cause::size);
    }
    if (made_.size() >= limitsOf(family_.utility).logicalDrives) {
        step.causes.insert(Cause::tooManyLogicalDrives);
    }
}

bool Forecast::finish(Step step) {
    const bool accepted = step.causes.empty();
    steps_.push_back(std::move(step));
    return accepted;
}

void Forecast::carryOut() {
    for (std::size_t array = 0; array < plan().arrays().size(); ++array) {
        if (!carryOutArray(array)) {
            return;
        }
    }
    carryOutHotspares();
}

bool Forecast::carryOutArray(std::size_t array) {
    const std::vector<const LogicalDrive*> onArray = drivesOn(array);
    const Places members = membersOf(array, *onArray.front());
    const std::int32_t level = onArray.front()->raidLevel;
    const std::optional<std::size_t> shared = sharedArray(level, members);
    const std::size_t place = shared.value_or(arrays_.size());
    if (!shared) {
        arrays_.push_back(members);
        spans_.push_back(spansOf(level, members));
    }
    for (const LogicalDrive* drive : onArray) {
        Step step;
        step.drive = drive;
        step.array = array;
        step.first = drive == onArray.front();
        step.shared = shared.has_value();
        step.leftOut =
            !isUtility("HYPERWIN") && members.size() < plan().arrays().at(array).drives().size();
        if (step.first && !step.shared) {
            checkPlaces(members, step.causes);
        } else if (!step.first &&
                   std::any_of(onArray.begin(), onArray.end(), [](const LogicalDrive* each) {
                       return takesArrayAlone(each->raidLevel);
                   })) {
            step.causes.insert(Cause::notAlone);
        }
        checkLevel(*drive, members.size(), step.causes);
        std::int64_t sizeMb = isUtility("HRCONF") ? sizeFill : drive->sizeMb;
        if (!step.first && sizeMb == sizeFill) {
            sizeMb = restFor(array, *drive);
        }
        // An array that cannot be has no room.
        const auto has = [&step](Cause cause) { return step.causes.count(cause) > 0; };
        if (!has(Cause::missing) && !has(Cause::level) && !has(Cause::tooFewDrives)) {
            checkSize(step, sizeMb, roomOn(place, drive->raidLevel));
        }
        const auto room = static_cast<std::int64_t>(step.roomMb);
        if (!finish(std::move(step))) {
            return false;
        }
        taken_.insert(members.begin(), members.end());
        made_.push_back({place, drive->raidLevel, sizeMb == sizeFill ? room : sizeMb});
        if (!isUtility("QTCSEND")) {
            break; // MEGACLI gets a command for the first one alone, the others have one each
        }
    }
    noteDeviations(array, members);
    return true;
}

void Forecast::noteDeviations(std::size_t array, const Places& members) {
    Places planned;
    for (const DrivePosition& position : plan().arrays().at(array).drives()) {
        planned.push_back(placeOf(position.channel, position.id));
    }
    const std::vector<const LogicalDrive*> onArray = drivesOn(array);
    if (isUtility("HYPERWIN")) {
        std::sort(planned.begin(), planned.end());
        if (planned != members) {
            deviations_.insert("HYPERWIN takes other drives than were planned");
        }
    } else if (planned != members) {
        deviations_.insert("MEGACLI leaves out the odd drive of RAID 10");
    }
    if (onArray.size() > 1 && isUtility("MEGACLI")) {
        deviations_.insert("MEGACLI builds the first logical drive of an array alone");
    }
    if (isUtility("HRCONF") && onArray.front()->sizeMb != sizeFill) {
        deviations_.insert("HRCONF builds a logical drive as large as its array");
    }
}

// What QTCSEND is asked for when a further logical drive takes the rest: what all the others, those
// to come as well, leave of the array.
std::int64_t Forecast::restFor(std::size_t array, const LogicalDrive& drive) const {
    const RaidArray& members = plan().arrays().at(array);
    const auto part = [&members](const LogicalDrive& each) {
        return static_cast<double>(partOf(each.raidLevel, members.drives().size()));
    };
    auto leftMb = static_cast<double>(members.capacityMb);
    for (const LogicalDrive* other : drivesOn(array)) {
        if (other != &drive) {
            if (other->sizeMb == sizeFill) {
                return 0;
            }
            leftMb -= other->sizeMb / part(*other);
        }
    }
    return leftMb < 0 ? 0 : static_cast<std::int64_t>(std::floor(leftMb * part(drive) + 0.5));
}

bool Forecast::carryOutHotspares() {
    Places places;
    for (const Hotspare& hotspare : plan().hotspares()) {
        places.push_back(placeOf(hotspare.channelNumber, hotspare.id));
    }
    if (isUtility("HYPERWIN")) {
        // The spare has been made with the array: the last drive, whichever the plan names. Levels
        // other than 0 are without.
        if (!places.empty() && !drives_.empty()) {
            spares_.insert(drives_.rbegin()->first);
        }
        return true;
    }
    // Its command names hot spares in an enclosure, always.
    const bool lost = isUtility("MEGACLI") && !places.empty() && machine_.drives.front().group == 0;
    std::vector<Places> commands;
    if (isUtility("MEGACLI") && !places.empty()) {
        commands.push_back(places);
    } else {
        for (const Place& place : places) {
            commands.push_back({place});
        }
    }
    return std::all_of(commands.begin(), commands.end(), [this, lost](const Places& command) {
        Step step;
        if (lost) {
            step.causes.insert(Cause::missing);
            return finish(std::move(step));
        }
        checkPlaces(command, step.causes);
        if (spares_.size() + command.size() > limitsOf(family_.utility).hotspares) {
            step.causes.insert(Cause::tooManyHotspares);
        }
        taken_.insert(command.begin(), command.end());
        spares_.insert(command.begin(), command.end());
        return finish(std::move(step));
    });
}

std::string Forecast::layout() const {
    std::string text;
    for (const Places& members : arrays_) {
        text += "A";
        for (const Place& place : members) {
            text += placeText(place.first, place.second);
        }
        text += "; ";
    }
    for (const Made& made : made_) {
        text += "L " + std::to_string(made.array) + " " + raidLevelWord(made.level) + " " +
                std::to_string(made.sizeMb) + " MB; ";
    }
    text += "H";
    for (const Place& place : spares_) {
        text += placeText(place.first, place.second);
    }
    return text;
}

std::string layoutText(const zolex_sim::Controller& controller) {
    constexpr std::string_view raid = "RAID";
    const auto textOf = [](const zolex_sim::DriveLocation& location) {
        return placeText(location.enclosure.value_or(0), location.slot);
    };
    std::string text;
    for (const zolex_sim::Array& array : controller.arrays) {
        text += "A";
        for (const auto& span : array.spans) {
            for (const zolex_sim::DriveLocation& location : span) {
                text += textOf(location);
            }
        }
        text += "; ";
    }
    for (const zolex_sim::LogicalDrive& drive : controller.logicalDrives) {
        std::string level(rulesOf(drive.level).name);
        if (level.compare(0, raid.size(), raid) == 0) {
            level.erase(0, raid.size());
        }
        text += "L " + std::to_string(drive.array) + " " + level + " " +
                std::to_string(drive.sizeMb) + " MB; ";
    }
    std::set<zolex_sim::DriveLocation> spares;
    for (const zolex_sim::Drive& drive : controller.drives) {
        if (drive.status == zolex_sim::DriveStatus::hotspare) {
            spares.insert(drive.location);
        }
    }
    text += "H";
    for (const zolex_sim::DriveLocation& location : spares) {
        text += textOf(location);
    }
    return text;
}

} // namespace zolex::properties
