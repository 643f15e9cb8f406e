#include "companion/rehearsal/StorcliCopy.h"

#include "companion/facts/Bytes.h"
#include "companion/families/storcli/StorcliDecode.h"
#include "companion/rehearsal/NoCopy.h"
#include "foundation/Text.h"
#include "model/Server.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace zolex::companion::storcli_copy {

namespace {

namespace sim = zolex_sim::storcli;
using zolex_sim::DriveLocation;

constexpr std::uint64_t bytesOfBlock = 512;
constexpr std::uint64_t greatestSize = std::uint64_t{1} << 60U;
/// Enclosures from here on can be named by no command: members stand there that are missing.
constexpr int nowhere = 70000;

struct StateRow {
    std::string_view word; ///< as listed
    sim::DriveState state;
};
// clang-format off
constexpr std::array<StateRow, 11> stateRows = {{
    {"UGood",   sim::DriveState::good},
    {"UBad",    sim::DriveState::bad},
    {"JBOD",    sim::DriveState::jbod},
    {"Onln",    sim::DriveState::online},
    {"Rbld",    sim::DriveState::rebuild},
    {"Cpybck",  sim::DriveState::copyback},
    {"Offln",   sim::DriveState::offline},
    {"Failed",  sim::DriveState::failed},
    {"GHS",     sim::DriveState::globalSpare},
    {"DHS",     sim::DriveState::dedicatedSpare},
    {"Msng",    sim::DriveState::missing},
}};
// clang-format on

const StateRow* rowOf(std::string_view word) {
    const auto* const row =
        std::find_if(stateRows.begin(), stateRows.end(),
                     [word](const StateRow& each) { return text::equalsNoCase(each.word, word); });
    return row == stateRows.end() ? nullptr : row;
}

std::uint64_t hexadecimal(std::string_view text) {
    std::uint64_t value = 0;
    constexpr int base = 16;
    std::from_chars(text.data(), text.data() + text.size(), value, base);
    return value;
}

template <typename Number>
Number boundedCount(const std::optional<std::uint64_t>& count) {
    constexpr std::uint64_t most = 1'000'000;
    return static_cast<Number>(std::min(count.value_or(0), most));
}

/// Makes one copy.
class Builder {
  public:
    explicit Builder(const ControllerSnapshot& original)
        : original_(original), facts_(original.facts) {}

    sim::Controller build() {
        addIdentity();
        addAbilities();
        for (const DriveFacts& drive : facts_.drives) {
            addDrive(drive);
        }
        addEnclosures();
        for (const LogicalDriveFacts& volume : facts_.logicalDrives) {
            addVolume(volume);
        }
        addSpareGroups();
        addForeign();
        addNumbers();
        return std::move(copy_);
    }

  private:
    [[nodiscard]] bool holds(std::string_view word) const {
        return !original_.listings.empty() && text::contains(original_.listings.front(), word);
    }

    void addIdentity() {
        copy_.version = version();
        copy_.branding = holds("\"Energy Pack Status\"")      ? sim::Branding::hpe
                         : holds("\"Enable SystemPD\"")       ? sim::Branding::perc
                         : text::contains(pciIds(), ":1028:") ? sim::Branding::perc
                                                              : sim::Branding::lsi;
        copy_.model = facts_.productName;
        copy_.serialNumber = facts_.serialNumber;
        copy_.firmwarePackage = copy_.firmware = facts_.firmwareVersion;
        copy_.bios = facts_.biosVersion;
        copy_.coercion = "1GB";
        copy_.refusesNolog = std::none_of(
            original_.commands.begin(), original_.commands.end(),
            [](const CapturedListing& each) { return text::contains(each.command, " nolog"); });
        copy_.preservedCache = holds("\"Any Offline VD Cache Preserved\" : \"Yes\"");
        copy_.rebuildRate = facts_.rebuildRatePercent.value_or(copy_.rebuildRate);
        addFunction();
    }

    /// By the version that its utility tells; those of 1.x tell none.
    [[nodiscard]] sim::Version version() const {
        struct Row {
            int number;
            sim::Version version;
        };
        constexpr std::array<Row, 4> rows = {{{1504, sim::Version::v1017},
                                              {2000, sim::Version::v1616},
                                              {3703, sim::Version::v2507},
                                              {1 << 30, sim::Version::v3703}}};
        const std::string told = original_.listings.empty()
                                     ? std::string()
                                     : storcliAnswer(original_.listings.front()).cliVersion;
        if (told.empty()) {
            return sim::Version::first;
        }
        const std::int32_t number = text::leadingInt(text::token(told, ".", 1));
        return std::find_if(rows.begin(), rows.end(),
                            [number](const Row& row) { return number < row.number; })
            ->version;
    }

    [[nodiscard]] const std::string& pciIds() const {
        return facts_.pciIds.empty() ? original_.pciIds : facts_.pciIds;
    }

    void addFunction() {
        zolex_sim::PciFunction& pci = copy_.pci;
        const auto number = [](std::string_view text, std::string_view parts, std::size_t part) {
            return hexadecimal(text::token(text, parts, part));
        };
        pci.domain = static_cast<int>(hexadecimal(text::token(original_.pci, ":", 0)));
        pci.bus = static_cast<int>(number(facts_.pciAddress, ":.", 0));
        pci.device = static_cast<int>(number(facts_.pciAddress, ":.", 1));
        pci.function = static_cast<int>(number(facts_.pciAddress, ":.", 2));
        pci.vendorId = static_cast<std::uint16_t>(number(pciIds(), ":", 0));
        pci.deviceId = static_cast<std::uint16_t>(number(pciIds(), ":", 1));
        pci.subsystemVendorId = static_cast<std::uint16_t>(number(pciIds(), ":", 2));
        pci.subsystemId = static_cast<std::uint16_t>(number(pciIds(), ":", 3));
    }

    void addAbilities() {
        const ControllerAbilities& told = facts_.abilities;
        for (const std::string& type : facts_.raidTypes) {
            if (const auto level = sim::levelNamed(type)) {
                copy_.levels.push_back(*level);
            }
        }
        if (copy_.levels.empty()) {
            copy_.levels = {sim::Level::raid0, sim::Level::raid1,  sim::Level::raid5,
                            sim::Level::raid6, sim::Level::raid10, sim::Level::raid50,
                            sim::Level::raid60};
        }
        const auto orUsual = [](std::int32_t number, int usual) {
            return number > 0 ? number : usual;
        };
        copy_.maxArms = orUsual(told.mostDrives, copy_.maxArms);
        copy_.maxSpans = orUsual(told.mostSpans, copy_.maxSpans);
        copy_.maxVolumesPerGroup = orUsual(told.mostVolumesPerArray, copy_.maxVolumesPerGroup);
        copy_.mixesSasSataDisks = told.mixesProtocols.value_or(false);
        copy_.mixesSasSataSsds = copy_.mixesSasSataDisks;
        copy_.mixesMedia = told.mixesMedia.value_or(false);
        copy_.minStripKb = stripOr(facts_.minStripSizeBytes, 8);
        copy_.maxStripKb = stripOr(facts_.maxStripSizeBytes, copy_.maxStripKb);
        copy_.defaultStripKb = stripOr(told.usualStripSizeBytes, copy_.defaultStripKb);
        copy_.defaultCache = cacheOf(told.usualWriteCache).value_or(copy_.defaultCache);
        copy_.defaultReadAhead = told.usualReadCache != "Off";
    }

    static int stripOr(const std::optional<std::uint64_t>& bytes, int usualKb) {
        constexpr std::uint64_t greatest = std::uint64_t{1} << 30U;
        return bytes && *bytes >= bytesOfKb && *bytes <= greatest
                   ? static_cast<int>(*bytes / bytesOfKb)
                   : usualKb;
    }

    static std::optional<sim::Cache> cacheOf(std::string_view writeCache) {
        return writeCache == "WriteThrough"           ? std::optional(sim::Cache::writeThrough)
               : writeCache == "ProtectedWriteBack"   ? std::optional(sim::Cache::writeBack)
               : writeCache == "UnprotectedWriteBack" ? std::optional(sim::Cache::alwaysWriteBack)
                                                      : std::nullopt;
    }

    // Drives.

    void addDrive(const DriveFacts& facts) {
        if (!facts.slot) {
            throw NoCopy("drive " + facts.location + " has no place that a command could name");
        }
        sim::Drive drive;
        drive.place = placeOf(facts);
        drive.deviceId = facts.number.value_or(0);
        drive.interface = facts.protocol;
        drive.medium =
            facts.mediaType == "SSD" ? zolex_sim::Medium::solidState : zolex_sim::Medium::disk;
        drive.vendor = facts.manufacturer;
        drive.model = facts.model;
        drive.revision = facts.revision;
        drive.serial = facts.serialNumber;
        drive.wwn = hexadecimal(facts.wwn);
        drive.mediaErrors = boundedCount<int>(facts.mediaErrorCount);
        drive.otherErrors = boundedCount<int>(facts.otherErrorCount);
        drive.predictiveFailures = boundedCount<int>(facts.predictedFailureCount);
        // An alert is told as one predicted failure at least, and hurts the health.
        drive.smartAlert = drive.predictiveFailures > 0 && facts.health != Health::ok;
        drive.temperature = facts.temperatureCelsius.value_or(0);
        drive.state = stateOf(facts);
        setSize(facts, drive);
        if (!taken_.insert(drive.place).second) {
            throw NoCopy("two drives are told to be at " + facts.location);
        }
        copy_.drives.push_back(std::move(drive));
    }

    /// Of a word that the virtual server has not: a drive that nobody plans with.
    static sim::DriveState stateOf(const DriveFacts& facts) {
        if (facts.isForeign) {
            return sim::DriveState::foreign;
        }
        if (const StateRow* const row = rowOf(facts.reportedState)) {
            return row->state;
        }
        switch (facts.state) {
        case DriveState::member:
            return sim::DriveState::online;
        case DriveState::rebuilding:
            return sim::DriveState::copyback;
        case DriveState::hotspare:
            return sim::DriveState::globalSpare;
        default:
            return sim::DriveState::bad;
        }
    }

    static void setSize(const DriveFacts& facts, sim::Drive& drive) {
        const std::uint64_t bytes = facts.capacityBytes.value_or(0);
        constexpr std::uint32_t largeSector = 4096;
        drive.sectorBytes = facts.blockSizeBytes == largeSector ? 4096 : 512;
        const bool isOfUse = drive.state != sim::DriveState::bad &&
                             drive.state != sim::DriveState::failed &&
                             drive.state != sim::DriveState::missing;
        if (bytes > greatestSize || (bytes < bytesOfBlock && isOfUse)) {
            throw NoCopy("drive " + facts.location + " has no size");
        }
        drive.sectors =
            static_cast<std::int64_t>(bytes / static_cast<std::uint64_t>(drive.sectorBytes));
        const std::uint64_t raw = facts.rawCapacityBytes.value_or(0);
        drive.rawSectors =
            raw > bytes && raw <= 2 * greatestSize
                ? static_cast<std::int64_t>(raw / static_cast<std::uint64_t>(drive.sectorBytes))
                : drive.sectors + (std::int64_t{512} << 20) / drive.sectorBytes;
    }

    void addEnclosures() {
        constexpr int step = 8;
        std::map<int, int> slots;
        for (const sim::Drive& drive : copy_.drives) {
            if (drive.place.enclosure) {
                int& most = slots[*drive.place.enclosure];
                most = std::max(most, (drive.place.slot / step + 1) * step);
            }
        }
        for (const auto& [id, count] : slots) {
            copy_.enclosures.push_back({id, count, "VirtualSES"});
        }
    }

    // Logical drives.

    void addVolume(const LogicalDriveFacts& facts) {
        const std::string name = "LD " + facts.id;
        const auto level = sim::levelNamed(facts.raidType);
        if (!level) {
            throw NoCopy(name + " has a RAID level that is not known, " +
                         quotedText(facts.reportedLevel));
        }
        const auto cache = cacheOf(facts.writeCache);
        if (!cache || facts.readCache.empty()) {
            throw NoCopy("the cache modes of " + name + " are not known");
        }
        const std::optional<std::int32_t> number = text::wholeNumber(facts.id);
        if (!number || *number < 0) {
            throw NoCopy(name + " has no number");
        }
        if (!facts.capacityBytes || *facts.capacityBytes > greatestSize) {
            throw NoCopy(name + " has no size");
        }
        sim::Volume volume;
        volume.number = *number;
        volume.level = *level;
        volume.group = groupOf(facts, *level);
        volume.blocks = static_cast<std::int64_t>(*facts.capacityBytes / bytesOfBlock);
        volume.stripKb = stripOr(facts.stripSizeBytes, 0);
        volume.cache = *cache;
        volume.readAhead = facts.readCache != "Off";
        volume.name = facts.name;
        volume.naaId = facts.uniqueId.empty() ? "-" : facts.uniqueId;
        volume.device = facts.device.empty() ? "-" : facts.device;
        copy_.enter(std::move(volume));
    }

    /// The drive group, which is made when it is not there yet.
    std::size_t groupOf(const LogicalDriveFacts& facts, sim::Level level) {
        const std::optional<std::int32_t> told = text::wholeNumber(facts.array);
        if (!told || *told < 0) {
            throw NoCopy("the drive group of LD " + facts.id + " has no number");
        }
        const auto number = static_cast<std::size_t>(*told);
        if (number < copy_.groups.size()) {
            return number;
        }
        if (number > copy_.groups.size()) {
            throw NoCopy("the drive groups are not numbered from 0 on: there is no group " +
                         std::to_string(copy_.groups.size()));
        }
        sim::Group group;
        for (const std::vector<std::string>& span : facts.spans) {
            std::vector<DriveLocation>& members = group.spans.emplace_back();
            for (const std::string& location : span) {
                members.push_back(memberOf(facts, location));
            }
        }
        const bool isSpanned = group.spans.size() > 1;
        const bool isWhole =
            !group.spans.empty() && std::none_of(group.spans.begin(), group.spans.end(),
                                                 [](const auto& span) { return span.empty(); });
        if (!isWhole || isSpanned != sim::rulesOf(level).spanned) {
            throw NoCopy("the spans of LD " + facts.id + " are not told");
        }
        copy_.groups.push_back(std::move(group));
        return number;
    }

    DriveLocation memberOf(const LogicalDriveFacts& facts, const std::string& location) {
        const DriveFacts* const drive = facts_.drive(location);
        if (drive != nullptr) {
            const DriveLocation place = placeOf(*drive);
            if (!members_.insert(place).second) {
                throw NoCopy("drive " + location + " is told to be of two arrays");
            }
            return place;
        }
        if (location != "Missing") {
            throw NoCopy("a member of LD " + facts.id + " is no drive that is listed, " +
                         quotedText(location));
        }
        sim::Drive gone;
        gone.place = {nowhere, static_cast<int>(members_.size())};
        gone.state = sim::DriveState::missing;
        gone.sectors = sizeOfOthers(facts);
        gone.rawSectors = gone.sectors;
        members_.insert(gone.place);
        copy_.drives.push_back(gone);
        return gone.place;
    }

    [[nodiscard]] std::int64_t sizeOfOthers(const LogicalDriveFacts& facts) const {
        std::uint64_t smallest = 0;
        for (const std::vector<std::string>& span : facts.spans) {
            for (const std::string& location : span) {
                const DriveFacts* const drive = facts_.drive(location);
                const std::uint64_t size = drive == nullptr ? 0 : drive->capacityBytes.value_or(0);
                smallest = smallest == 0 || (size > 0 && size < smallest) ? size : smallest;
            }
        }
        return static_cast<std::int64_t>(smallest / bytesOfBlock);
    }

    void addSpareGroups() {
        for (const DriveFacts& facts : facts_.drives) {
            sim::Drive& drive = *copy_.driveAt(placeOf(facts));
            if (drive.state != sim::DriveState::dedicatedSpare) {
                continue;
            }
            for (const std::string& id : facts.covers) {
                const std::optional<std::int32_t> group = text::wholeNumber(id);
                if (!group || *group < 0 ||
                    static_cast<std::size_t>(*group) >= copy_.groups.size()) {
                    throw NoCopy("the hot spare " + facts.location +
                                 " is told to be of a drive group that there is not, " +
                                 quotedText(id));
                }
                drive.groups.push_back(static_cast<std::size_t>(*group));
            }
            if (drive.groups.empty()) {
                throw NoCopy("it is not told for which drive group the hot spare " +
                             facts.location + " is");
            }
        }
    }

    /// What is told of foreign layouts stands as it was captured: here it counts that there are
    /// some, on all drives that are foreign.
    void addForeign() {
        if (facts_.foreignConfigurations.empty()) {
            return;
        }
        sim::ForeignSet set;
        for (const sim::Drive& drive : copy_.drives) {
            if (drive.state == sim::DriveState::foreign) {
                set.drives.push_back(drive.place);
            }
        }
        if (set.drives.empty()) {
            throw NoCopy("a foreign layout is told, and no drive that it is on");
        }
        set.blocks = 1;
        copy_.foreignSets.push_back(std::move(set));
    }

    /// Controllers of the latest generation number their logical drives from the highest on.
    void addNumbers() {
        copy_.numbersUp =
            !copy_.volumes.empty() && copy_.volumes.back().number < sim::Controller::lastNumber / 2;
    }

    const ControllerSnapshot& original_;
    const Facts& facts_;
    sim::Controller copy_;
    std::set<DriveLocation> taken_;
    std::set<DriveLocation> members_;
};

bool isSameSize(const std::optional<std::uint64_t>& a, std::uint64_t tolerance,
                const std::optional<std::uint64_t>& b) {
    const std::uint64_t one = a.value_or(0);
    const std::uint64_t other = b.value_or(0);
    return !a || std::max(one, other) - std::min(one, other) <= tolerance;
}

std::string differenceOfDrive(const DriveFacts& drive, const DriveFacts& found) {
    const auto differs = [&](const char* what) {
        return "drive " + drive.location + " of the copy has another " + what;
    };
    if (found.serialNumber != drive.serialNumber) {
        return differs("serial number");
    }
    if (isToldAlike(drive) && (found.state != drive.state || found.isForeign != drive.isForeign ||
                               found.hotspare != drive.hotspare || found.covers != drive.covers)) {
        return differs("state");
    }
    if (found.protocol != drive.protocol ||
        (!drive.mediaType.empty() && found.mediaType != drive.mediaType)) {
        return differs("protocol or medium");
    }
    const bool isBlockTold = drive.blockSizeBytes.has_value();
    if (!isSameSize(drive.capacityBytes, drive.capacityTolerance, found.capacityBytes) ||
        (isBlockTold && found.blockSizeBytes != drive.blockSizeBytes)) {
        return differs("size");
    }
    return {};
}

std::string differenceOfVolume(const LogicalDriveFacts& volume, const LogicalDriveFacts& found) {
    const auto differs = [&](const char* what) {
        return "LD " + volume.id + " of the copy has " + what;
    };
    if (found.id != volume.id || found.array != volume.array) {
        return differs("another number");
    }
    if (found.raidType != volume.raidType || found.spans != volume.spans) {
        return differs("another RAID level or other drives");
    }
    if (!isSameSize(volume.capacityBytes, volume.capacityTolerance, found.capacityBytes)) {
        return differs("another size");
    }
    return found.stripSizeBytes != volume.stripSizeBytes || found.writeCache != volume.writeCache ||
                   found.readCache != volume.readCache
               ? differs("another strip size or cache mode")
               : std::string();
}

} // namespace

zolex_sim::DriveLocation placeOf(const DriveFacts& drive) {
    return {drive.enclosure, drive.slot.value_or(0)};
}

bool isToldAlike(const DriveFacts& drive) {
    return drive.isForeign || rowOf(drive.reportedState) != nullptr;
}

zolex_sim::storcli::Controller make(const ControllerSnapshot& original) {
    return Builder(original).build();
}

std::string differenceOf(const Facts& original, const Facts& copy) {
    if (original.drives.size() != copy.drives.size() ||
        original.logicalDrives.size() != copy.logicalDrives.size()) {
        return "the copy has " + std::to_string(copy.drives.size()) + " drives and " +
               std::to_string(copy.logicalDrives.size()) + " logical drives, and not " +
               std::to_string(original.drives.size()) + " and " +
               std::to_string(original.logicalDrives.size());
    }
    std::map<std::string_view, const DriveFacts*> byLocation;
    for (const DriveFacts& drive : copy.drives) {
        byLocation.emplace(drive.location, &drive);
    }
    for (const DriveFacts& drive : original.drives) {
        const auto at = byLocation.find(drive.location);
        std::string difference = at == byLocation.end() ? "the copy has no drive " + drive.location
                                                        : differenceOfDrive(drive, *at->second);
        if (!difference.empty()) {
            return difference;
        }
    }
    for (std::size_t i = 0; i < original.logicalDrives.size(); ++i) {
        std::string difference =
            differenceOfVolume(original.logicalDrives[i], copy.logicalDrives[i]);
        if (!difference.empty()) {
            return difference;
        }
    }
    return original.foreignConfigurations.empty() == copy.foreignConfigurations.empty()
               ? std::string()
               : "the foreign layouts of the copy are others";
}

} // namespace zolex::companion::storcli_copy
