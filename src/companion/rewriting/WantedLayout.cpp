#include "companion/rewriting/WantedLayout.h"

#include "commands/CommandLines.h"
#include "engine/ConfigClasses.h"
#include "foundation/Report.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesPerMb = std::uint64_t{1} << 20U;
/// A size this close to what is left takes all that is left, by the rules of planning.
constexpr std::int64_t closeMb = 139;

std::int64_t wholeMb(std::uint64_t bytes) {
    return static_cast<std::int64_t>((bytes + bytesPerMb - 1) / bytesPerMb);
}

bool holdsDrive(const RAIDController& controller, DrivePosition position) {
    return position.channel >= RAIDController::firstChannel &&
           controller.size(position.channel, position.id) > 0;
}

/// Hot spares of MEGACLI are captured by their enclosure: they are at the drive of that target id.
DrivePosition positionOf(const RAIDController& controller, const Hotspare& hotspare) {
    const DrivePosition captured{hotspare.enclosure.value_or(hotspare.channelNumber), hotspare.id};
    if (controller.type() != controller_type::megaRaid) {
        return captured;
    }
    for (std::int32_t channel = RAIDController::firstChannel; channel < RAIDController::channels;
         ++channel) {
        const DrivePosition position{channel, hotspare.id};
        if (holdsDrive(controller, position) &&
            controller.targetId(channel, hotspare.id) == captured.channel) {
            return position;
        }
    }
    return captured;
}

/// The enclosure that the other drives of a channel of MEGACLI stand in; else the channel.
std::int32_t enclosureOf(const RAIDController& controller, std::int32_t channel) {
    std::int32_t enclosure = channel;
    if (controller.type() == controller_type::megaRaid) {
        controller.forEachDrive([&](std::int32_t other, std::int32_t id) {
            enclosure = other == channel ? controller.targetId(other, id) : enclosure;
        });
    }
    return enclosure;
}

const MachineDrive* driveAt(const ControllerSnapshot& details, const std::string& location) {
    const auto found =
        std::find_if(details.drives.begin(), details.drives.end(),
                     [&](const MachineDrive& drive) { return drive.facts.location == location; });
    return found == details.drives.end() ? nullptr : &*found;
}

/// The members that the listings name, in their order; empty when one of them has no position.
std::vector<DrivePosition> membersByFacts(const ControllerSnapshot& details,
                                          const LogicalDriveFacts& facts) {
    std::vector<DrivePosition> members;
    for (const std::string& location : facts.drives()) {
        const MachineDrive* const drive = driveAt(details, location);
        if (drive == nullptr || !drive->policyPosition) {
            return {};
        }
        members.push_back(*drive->policyPosition);
    }
    return members;
}

bool isPermutation(const std::vector<DrivePosition>& a, const std::vector<DrivePosition>& b) {
    return a.size() == b.size() && std::is_permutation(a.begin(), a.end(), b.begin());
}

/// Whether the lines that make a layout differ between these two values of a setting.
template <typename Change>
bool changesLines(const RAIDController& controller, std::int32_t number, const Change& change,
                  std::int32_t one, std::int32_t other) {
    const auto linesWith = [&](std::int32_t value) {
        RAIDConfiguration layout = *controller.captured();
        change(layout, value);
        SilentReport report;
        return commandLines(controller, number, layout, {}, report).lines;
    };
    return linesWith(one) != linesWith(other);
}

/// The layout with this write cache for all its logical drives.
void setWriteCaches(RAIDConfiguration& layout, std::int32_t writeCache) {
    RAIDConfiguration changed;
    changed.rebuildRate = layout.rebuildRate;
    changed.readAhead = layout.readAhead;
    changed.stripeSize = layout.stripeSize;
    changed.init = layout.init;
    for (const RaidArray& array : layout.arrays()) {
        changed.addArray(array);
    }
    for (LogicalDrive drive : layout.logicalDrives()) {
        drive.writeCache = writeCache;
        changed.addLogicalDrive(std::move(drive));
    }
    for (const Hotspare& hotspare : layout.hotspares()) {
        changed.addHotspare(hotspare);
    }
    layout = std::move(changed);
}

/// Whether the captured read-ahead mode comes back of a policy that says none, and some mode is not
/// told apart from it.
bool isUsualReadAhead(const RAIDController& controller, std::int32_t number) {
    const ConfigDefaults* const rules = rulesFor(controller.type(), controller.subtype());
    const std::int32_t own = controller.captured()->readAhead;
    const auto isSame = [&](std::int32_t mode) {
        const auto set = [](RAIDConfiguration& layout, std::int32_t value) {
            layout.readAhead = value;
        };
        return !changesLines(controller, number, set, own, mode);
    };
    constexpr std::array<std::int32_t, 3> modes = {read_ahead::adaptive, read_ahead::on,
                                                   read_ahead::off};
    return rules != nullptr && isSame(rules->readAhead) &&
           std::any_of(modes.begin(), modes.end(),
                       [&](std::int32_t mode) { return mode != own && isSame(mode); });
}

SettingEffects effectsOf(const RAIDController& controller, std::int32_t number) {
    const WrittenSettings written = traitsOf(controller.type()).writes;
    const auto set = [](std::int32_t RAIDConfiguration::*member) {
        return [member](RAIDConfiguration& layout, std::int32_t value) { layout.*member = value; };
    };
    SettingEffects effects;
    effects.stripeSize =
        written.stripeSize && changesLines(controller, number, set(&RAIDConfiguration::stripeSize),
                                           stripe::kb32, stripe::kb64);
    effects.readAhead =
        written.readAhead && changesLines(controller, number, set(&RAIDConfiguration::readAhead),
                                          read_ahead::on, read_ahead::off);
    effects.readAheadIsUsual = effects.readAhead && isUsualReadAhead(controller, number);
    effects.rebuildRate = written.rebuildRate &&
                          changesLines(controller, number, set(&RAIDConfiguration::rebuildRate),
                                       rebuild_rate::high, rebuild_rate::low);
    effects.writeCache = written.writeCache && changesLines(controller, number, setWriteCaches,
                                                            write_cache::on, write_cache::off);
    return effects;
}

/// Makes the layout of what was captured and of what the listings say.
class Builder {
  public:
    Builder(const RAIDController& controller, const ControllerSnapshot& details,
            std::vector<Finding>& findings)
        : controller_(controller), configuration_(*controller.captured()), details_(details),
          findings_(findings) {}

    WantedLayout build() {
        layout_.controller = &controller_;
        layout_.details = &details_;
        layout_.stripeSize = configuration_.stripeSize;
        layout_.readAhead = configuration_.readAhead;
        layout_.rebuildRate = configuration_.rebuildRate;
        layout_.effects = effectsOf(controller_, details_.number);
        for (const RaidArray& array : configuration_.arrays()) {
            layout_.arrays.push_back(array.drives());
        }
        for (const Hotspare& hotspare : configuration_.hotspares()) {
            layout_.hotspares.push_back(positionOf(controller_, hotspare));
        }
        layout_.numbersAreShaky =
            std::any_of(details_.drives.begin(), details_.drives.end(),
                        [](const MachineDrive& drive) { return !drive.policyNumber; });
        addLogicalDrives();
        for (WantedLogicalDrive& drive : layout_.logicalDrives) {
            measure(drive);
        }
        return std::move(layout_);
    }

  private:
    void addLogicalDrives() {
        const std::vector<LogicalDriveFacts>& facts = details_.facts.logicalDrives;
        const bool sameCount = facts.size() == configuration_.logicalDrives().size();
        if (!facts.empty() && !sameCount) {
            tell("ZC116", "zolex reads " + std::to_string(configuration_.logicalDrives().size()) +
                              " of " + std::to_string(facts.size()) + " logical drives");
        }
        for (const LogicalDrive& drive : configuration_.logicalDrives()) {
            WantedLogicalDrive wanted;
            const std::size_t number = layout_.logicalDrives.size();
            wanted.id = std::to_string(number);
            wanted.array = static_cast<std::size_t>(std::max(drive.arrayIndex, 0));
            wanted.raidLevel = drive.raidLevel;
            wanted.sizeMb = drive.sizeMb;
            wanted.writeCache = drive.writeCache;
            if (sameCount && wanted.array < layout_.arrays.size()) {
                takeFacts(wanted, facts[number]);
            }
            layout_.logicalDrives.push_back(std::move(wanted));
        }
    }

    void takeFacts(WantedLogicalDrive& wanted, const LogicalDriveFacts& facts) {
        wanted.facts = &facts;
        wanted.id = facts.id.empty() ? wanted.id : facts.id;
        wanted.name = facts.name;
        const std::vector<DrivePosition> members = membersByFacts(details_, facts);
        std::vector<DrivePosition>& array = layout_.arrays[wanted.array];
        if (members.empty() || isPermutation(members, array)) {
            return;
        }
        findings_.push_back(captureFinding(details_, "ZC109", Severity::note,
                                           "logical drive " + wanted.id + " lies on " +
                                               listOf(members) + "; zolex itself reads " +
                                               listOf(array) + " in the listing",
                                           {"the policy names the drives that the listing names"}));
        array = members;
    }

    std::string listOf(const std::vector<DrivePosition>& drives) {
        std::string text;
        for (const DrivePosition drive : drives) {
            text.append(text.empty() ? "" : " ").append(layout_.locationOf(drive));
        }
        return text;
    }

    /// What the listings' rounding may hide of an array.
    [[nodiscard]] std::int64_t toleranceOf(const WantedLogicalDrive& drive) const {
        std::int64_t tolerance = closeMb;
        tolerance += drive.facts == nullptr ? 0 : wholeMb(drive.facts->capacityTolerance);
        for (const DrivePosition position : layout_.arrays[drive.array]) {
            const MachineDrive* const member = driveAt(details_, layout_.locationOf(position));
            tolerance += member == nullptr ? 0 : wholeMb(member->facts.capacityTolerance);
        }
        return tolerance;
    }

    /// Whether the drive takes all that is left of the drives that it lies on.
    void measure(WantedLogicalDrive& drive) {
        drive.fills = true;
        if (drive.array >= layout_.arrays.size() || drive.sizeMb <= 0) {
            return;
        }
        drive.toleranceMb = toleranceOf(drive);
        const std::vector<DrivePosition>& members = layout_.arrays[drive.array];
        std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
        std::int64_t sum = 0;
        for (const DrivePosition position : members) {
            const std::int64_t size = controller_.size(position.channel, position.id);
            if (size <= 0) {
                return; // what the array held is not known any more
            }
            smallest = std::min(smallest, size);
            sum += size;
        }
        // A volume lies on its drives one behind the other.
        const bool isVolume =
            drive.raidLevel == raid_level::volume || drive.raidLevel == raid_level::simpleVolume;
        auto rawMb = static_cast<double>(
            isVolume ? sum : smallest * static_cast<std::int64_t>(members.size()));
        for (const WantedLogicalDrive& earlier : layout_.logicalDrives) {
            if (&earlier == &drive) {
                break;
            }
            if (earlier.array < layout_.arrays.size() &&
                isPermutation(layout_.arrays[earlier.array], members)) {
                rawMb -= earlier.sizeMb /
                         static_cast<double>(usableFraction(earlier.raidLevel, members.size()));
            }
        }
        const double room =
            rawMb * static_cast<double>(usableFraction(drive.raidLevel, members.size()));
        drive.fills = drive.sizeMb + static_cast<double>(drive.toleranceMb) >= room;
    }

    void tell(const char* code, const std::string& what) {
        findings_.push_back(captureFinding(details_, code, Severity::warning, what));
    }

    const RAIDController& controller_;
    const RAIDConfiguration& configuration_;
    const ControllerSnapshot& details_;
    std::vector<Finding>& findings_;
    WantedLayout layout_;
};

} // namespace

std::string WantedLayout::locationOf(DrivePosition position) const {
    for (const MachineDrive& drive : details->drives) {
        if (drive.policyPosition && *drive.policyPosition == position &&
            !drive.facts.location.empty()) {
            return drive.facts.location;
        }
    }
    return std::to_string(enclosureOf(*controller, position.channel)) + ":" +
           std::to_string(position.id);
}

std::int32_t WantedLayout::numberOf(DrivePosition position) const {
    if (!holdsDrive(*controller, position)) {
        return 0;
    }
    std::int32_t number = 0;
    bool reached = false;
    controller->forEachDrive([&](std::int32_t channel, std::int32_t id) {
        if (!reached && holdsDrive(*controller, {channel, id})) {
            ++number;
            reached = DrivePosition{channel, id} == position;
        }
    });
    return number;
}

WantedLayout wantedLayout(const RAIDController& controller, const ControllerSnapshot& details,
                          std::vector<Finding>& findings) {
    return Builder(controller, details, findings).build();
}

Finding captureFinding(const ControllerSnapshot& details, const char* code, Severity severity,
                       const std::string& what, std::vector<std::string> help) {
    Finding finding;
    finding.code = code;
    finding.severity = severity;
    finding.summary = "controller " + std::to_string(details.number) + ": " + what;
    finding.help = std::move(help);
    return finding;
}

} // namespace zolex::companion
