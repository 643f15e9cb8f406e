#include "companion/rehearsal/CopyMaker.h"

#include "companion/facts/Bytes.h"
#include "companion/layout/NormalForm.h"
#include "companion/rehearsal/NoCopy.h"
#include "companion/rehearsal/StorcliCopy.h"
#include "foundation/Text.h"
#include "model/Utility.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

using zolex_sim::DriveLocation;
using zolex_sim::DriveStatus;
using zolex_sim::Generation;

constexpr std::uint64_t bytesOfSector = 512;

/// What the facts leave open.
struct CopyForm {
    Generation generation = Generation::early;
    bool hasSegments = false;              ///< ARCCONF lists a line for each member
    bool isExpander = false;               ///< and names it by enclosure and slot
    bool showsReadCache = true;            ///< ARCCONF and HRCONF
    std::optional<bool> showsMirrorStripe; ///< ARCCONF, HRCONF and QTCSEND
};

bool holds(const ControllerSnapshot& original, std::string_view word) {
    return std::any_of(original.listings.begin(), original.listings.end(),
                       [word](const std::string& text) { return text::contains(text, word); });
}

/// What the listings look like.
CopyForm formOf(const ControllerSnapshot& original) {
    CopyForm form;
    if (original.utility == "MEGACLI") {
        const bool isLater = holds(original, "Spun ") || holds(original, "Strip Size  ") ||
                             holds(original, " GB [0x") || holds(original, " TB [0x");
        form.generation = isLater ? Generation::later : Generation::early;
    }
    if (original.utility == "ARCCONF") {
        const bool isNewest = holds(original, "Write-cache status") ||
                              holds(original, "Power State") || holds(original, "Logical Device");
        form.generation = isNewest                                        ? Generation::newest
                          : holds(original, "Logical device information") ? Generation::later
                                                                          : Generation::early;
        form.hasSegments = isNewest || holds(original, "segment information") ||
                           holds(original, "Automatic Failover");
        form.isExpander = holds(original, "Enclosure:");
    }
    const std::vector<LogicalDriveFacts>& volumes = original.facts.logicalDrives;
    for (const LogicalDriveFacts& volume : volumes) {
        if (volume.raidType == "RAID1") {
            form.showsMirrorStripe = volume.stripSizeBytes.has_value();
        }
    }
    form.showsReadCache = volumes.empty() || std::any_of(volumes.begin(), volumes.end(),
                                                         [](const LogicalDriveFacts& volume) {
                                                             return !volume.readCache.empty();
                                                         });
    return form;
}

/// What to try, the likeliest first.
std::vector<CopyForm> formsOf(const ControllerSnapshot& original) {
    const CopyForm likeliest = formOf(original);
    std::vector<CopyForm> forms = {likeliest};
    const auto add = [&](Generation generation) {
        for (const bool hasSegments : {likeliest.hasSegments, !likeliest.hasSegments}) {
            for (const bool isExpander : {likeliest.isExpander, !likeliest.isExpander}) {
                forms.push_back({generation, hasSegments, isExpander, likeliest.showsReadCache,
                                 likeliest.showsMirrorStripe});
            }
        }
    };
    if (original.utility == "MEGACLI") {
        forms.push_back(likeliest);
        forms.back().generation =
            likeliest.generation == Generation::early ? Generation::later : Generation::early;
    } else if (original.utility == "ARCCONF") {
        for (const Generation each : {Generation::early, Generation::later, Generation::newest}) {
            add(each);
        }
    }
    return forms;
}

std::int64_t asSigned(std::uint64_t number) {
    return static_cast<std::int64_t>(number);
}

/// A text that the fields of fixed width of a listing hold.
std::string cutTo(std::string_view text, std::size_t width) {
    return std::string(text.substr(0, width));
}

/// Makes one copy, of one form.
class CopyBuilder {
  public:
    CopyBuilder(const ControllerSnapshot& original, const CopyForm& form)
        : original_(original), facts_(original.facts), form_(form),
          traits_(zolex_sim::utilityNamed(original.utility)) {}

    zolex_sim::Controller build() {
        if (traits_ == nullptr) {
            throw NoCopy("the virtual server has no utility " + quotedText(original_.utility));
        }
        addIdentity();
        for (const DriveFacts& drive : facts_.drives) {
            addDrive(drive);
        }
        for (const LogicalDriveFacts& volume : facts_.logicalDrives) {
            addVolume(volume);
        }
        addLimits();
        checkArrayNames();
        return std::move(copy_);
    }

  private:
    [[nodiscard]] bool isUtility(std::string_view name) const { return original_.utility == name; }
    [[nodiscard]] bool isConf() const { return isUtility("ARCCONF") || isUtility("HRCONF"); }

    void addIdentity() {
        zolex_sim::ControllerIdentity& identity = copy_.identity;
        identity.utility = original_.utility;
        identity.generation = form_.generation;
        identity.model = isUtility("QTCSEND") ? facts_.productName : original_.model;
        identity.productName = facts_.productName;
        identity.serialNumber = facts_.serialNumber;
        identity.firmware = identity.firmwarePackage = facts_.firmwareVersion;
        identity.bios = facts_.biosVersion;
        identity.rebuildRate = facts_.rebuildRatePercent.value_or(0);
        identity.conf.status = facts_.reportedState.empty() ? "Okay" : facts_.reportedState;
        identity.conf.channels = "SAS/SATA";
        identity.conf.driver = facts_.driverVersion;
        identity.conf.failover = form_.hasSegments ? "Enabled" : "";
        identity.conf.expander = form_.isExpander;
        identity.showsMirrorStripe = form_.showsMirrorStripe;
        identity.conf.showsReadCache = form_.showsReadCache;
        identity.block.rebuildPriority = facts_.rebuildRate;
        identity.block.initiatorId = traits_->initiatorId;
        addPciIds();
        addLevels();
    }

    /// "1000:0411:1000:1002".
    void addPciIds() {
        const std::array<std::uint16_t zolex_sim::PciFunction::*, 4> fields = {
            &zolex_sim::PciFunction::vendorId, &zolex_sim::PciFunction::deviceId,
            &zolex_sim::PciFunction::subsystemVendorId, &zolex_sim::PciFunction::subsystemId};
        const std::string& ids = facts_.pciIds.empty() ? original_.pciIds : facts_.pciIds;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            unsigned value = 0;
            for (const char digit : text::token(ids, ":", i)) {
                const auto position = std::string_view("0123456789abcdef").find(text::lower(digit));
                value = (value << 4U) + static_cast<unsigned>(position & 0xFU);
            }
            copy_.identity.pci.*fields.at(i) = static_cast<std::uint16_t>(value & 0xFFFFU);
        }
    }

    void addLevels() {
        std::vector<zolex_sim::RaidLevel>& levels = copy_.identity.levels;
        for (const std::string& type : facts_.raidTypes) {
            if (const auto level = levelOf(type)) {
                levels.push_back(*level);
            }
        }
        if (levels.empty()) {
            levels.assign(traits_->levels.begin(), traits_->levels.end());
        }
    }

    static std::optional<zolex_sim::RaidLevel> levelOf(std::string_view raidType) {
        return raidType == "None" ? zolex_sim::RaidLevel::volume : zolex_sim::levelNamed(raidType);
    }

    /// What the listings do not tell is as the utility's controllers have it, and no less than what
    /// stands.
    void addLimits() {
        zolex_sim::ControllerIdentity& identity = copy_.identity;
        const zolex_sim::UtilityLimits& usual = traits_->limits;
        constexpr int spans = 8;
        std::size_t widest = 0;
        std::size_t longest = 0;
        for (const zolex_sim::Array& array : copy_.arrays) {
            widest = std::max(widest, array.spans.size());
            for (const std::vector<DriveLocation>& span : array.spans) {
                longest = std::max(longest, span.size());
            }
        }
        const auto atLeast = [](std::size_t found, int limit) {
            return std::max(static_cast<int>(found), limit);
        };
        identity.minStripeKb = stripOr(facts_.minStripSizeBytes, usual.minStripeKb);
        identity.maxStripeKb = stripOr(facts_.maxStripSizeBytes, usual.maxStripeKb);
        identity.maxSpans = atLeast(widest, spans);
        identity.maxDrivesPerSpan = atLeast(longest, usual.drivesPerSpan);
        identity.maxLogicalDrives = atLeast(copy_.logicalDrives.size(), usual.logicalDrives);
        identity.maxHotSpares = usual.hotSpares;
        identity.defaultStripeKb =
            std::clamp(traits_->stripeKb, identity.minStripeKb, identity.maxStripeKb);
        identity.defaultWritePolicy = traits_->writePolicy;
        identity.defaultReadPolicy = traits_->readPolicy;
    }

    static int stripOr(const std::optional<std::uint64_t>& bytes, int usualKb) {
        constexpr std::uint64_t greatest = std::uint64_t{1} << 30U;
        return bytes && *bytes >= bytesOfKb && *bytes <= greatest
                   ? static_cast<int>(*bytes / bytesOfKb)
                   : usualKb;
    }

    // Drives.

    void addDrive(const DriveFacts& facts) {
        zolex_sim::Drive drive;
        drive.location = locationOf(facts);
        drive.bay = {facts.enclosure && facts.slot ? facts.enclosure : drive.location.enclosure,
                     facts.slot.value_or(drive.location.slot)};
        drive.interface =
            facts.protocol.empty() ? std::string(traits_->drives.interface) : facts.protocol;
        drive.medium =
            facts.mediaType == "SSD" ? zolex_sim::Medium::solidState : zolex_sim::Medium::disk;
        drive.transferSpeed = drive.interface + " 3.0 Gb/s";
        constexpr std::size_t vendorWidth = 8;
        constexpr std::size_t modelWidth = 16;
        constexpr std::size_t revisionWidth = 4;
        constexpr std::size_t serialWidth = 20;
        drive.vendor = cutTo(facts.manufacturer, vendorWidth);
        drive.model = cutTo(facts.model, modelWidth);
        drive.revision = cutTo(facts.revision, revisionWidth);
        drive.serial =
            isUtility("MEGACLI") ? cutTo(facts.serialNumber, serialWidth) : facts.serialNumber;
        drive.deviceId = facts.number.value_or(0);
        drive.mediaErrors = countOf(facts.mediaErrorCount);
        drive.otherErrors = countOf(facts.otherErrorCount);
        drive.predictiveFailures = countOf(facts.predictedFailureCount);
        drive.temperature = facts.temperatureCelsius.value_or(0);
        drive.status = statusOf(facts);
        setSize(facts, drive);
        if (!placeOf_.emplace(facts.location, drive.location).second ||
            !taken_.insert(drive.location).second) {
            throw NoCopy("two drives are told to be at " + facts.location);
        }
        copy_.drives.push_back(std::move(drive));
    }

    static int countOf(const std::optional<std::uint64_t>& count) {
        constexpr std::uint64_t most = 1'000'000;
        return static_cast<int>(std::min(count.value_or(0), most));
    }

    /// As the utility's commands name the place.
    [[nodiscard]] DriveLocation locationOf(const DriveFacts& facts) const {
        if (isUtility("MEGACLI") || isUtility("CFGGEN")) {
            if (facts.slot && (facts.enclosure || facts.location.starts_with(':'))) {
                return {facts.enclosure, *facts.slot};
            }
        } else if (facts.id) {
            return {facts.channel.value_or(1), *facts.id};
        }
        throw NoCopy("drive " + facts.location + " has no place that a command could name");
    }

    [[nodiscard]] DriveStatus statusOf(const DriveFacts& facts) const {
        switch (facts.state) {
        case DriveState::free:
            return DriveStatus::good;
        case DriveState::member:
            return DriveStatus::online;
        case DriveState::rebuilding:
            return DriveStatus::rebuild;
        case DriveState::foreign:
            return DriveStatus::foreign;
        case DriveState::hotspare:
            if (facts.hotspare == HotspareKind::dedicated) {
                return DriveStatus::dedicated;
            }
            return DriveStatus::hotspare;
        case DriveState::failed:
            return text::containsNoCase(facts.reportedState, "(bad)") ? DriveStatus::bad
                                                                      : DriveStatus::failed;
        case DriveState::missing:
            return DriveStatus::bad;
        case DriveState::jbod:
            // ARCCONF and HRCONF have one word for drives with something on them.
            return isConf() ? DriveStatus::foreign : DriveStatus::jbod;
        case DriveState::unknown:
            break;
        }
        throw NoCopy("drive " + facts.location + " has a state that is not known, " +
                     quotedText(facts.reportedState));
    }

    void setSize(const DriveFacts& facts, zolex_sim::Drive& drive) const {
        const bool isGone = drive.status == DriveStatus::failed || drive.status == DriveStatus::bad;
        std::uint64_t bytes = facts.capacityBytes.value_or(0);
        constexpr std::uint64_t greatest = std::uint64_t{1} << 60U;
        if (isUtility("HYPERWIN") && !facts.capacityBytes) {
            bytes = 100000 * bytesOfMb; // it tells no sizes, and its commands have none
        } else if (isGone && !facts.capacityBytes) {
            bytes = bytesOfMb;
        } else if (bytes < bytesOfMb || bytes > greatest) {
            throw NoCopy("drive " + facts.location + " has no size");
        }
        drive.sizeMb = asSigned(bytes / bytesOfMb);
        const std::int64_t sectors = traits_->showsBlocks ? asSigned(bytes / bytesOfSector)
                                                          : drive.sizeMb * zolex_sim::sectorsPerMb;
        drive.rawSectors = drive.nonCoercedSectors = sectors;
    }

    // Logical drives.

    void addVolume(const LogicalDriveFacts& facts) {
        const std::string name = "LD " + facts.id;
        const std::optional<zolex_sim::RaidLevel> level = levelOf(facts.raidType);
        if (facts.raidType.empty() || !level) {
            throw NoCopy(name + " has a RAID level that is not known, " +
                         quotedText(facts.reportedLevel));
        }
        zolex_sim::LogicalDrive volume;
        volume.level = *level;
        volume.array = arrayOf(facts, *level);
        volume.sizeMb = sizeOf(facts, volume);
        volume.stripeKb = stripOr(facts.stripSizeBytes, traits_->stripeKb);
        const bool isWrittenBack = facts.writeCache.ends_with("WriteBack");
        volume.writePolicy = facts.writeCache.empty() ? traits_->writePolicy
                             : isWrittenBack          ? zolex_sim::WritePolicy::writeBack
                                                      : zolex_sim::WritePolicy::writeThrough;
        volume.batteryProtected = isConf() && facts.writeCache == "ProtectedWriteBack";
        volume.withoutBattery = isUtility("MEGACLI") && facts.writeCache == "UnprotectedWriteBack";
        volume.readPolicy = readPolicyOf(facts.readCache);
        volume.name = facts.name;
        const std::optional<std::int32_t> number = text::wholeNumber(facts.id);
        if (!number) {
            throw NoCopy(name + " has no number");
        }
        const bool fromOne = isConf() && !form_.hasSegments;
        if (isUtility("MEGACLI") || isConf()) {
            volume.number = static_cast<std::size_t>(std::max(*number - (fromOne ? 1 : 0), 0));
        }
        if (!copy_.logicalDrives.empty() && volume.number &&
            *volume.number <= copy_.numberOf(copy_.logicalDrives.size() - 1)) {
            throw NoCopy("the numbers of the logical drives do not rise at " + name);
        }
        copy_.logicalDrives.push_back(std::move(volume));
    }

    [[nodiscard]] zolex_sim::ReadPolicy readPolicyOf(std::string_view readCache) const {
        return readCache.empty()                  ? traits_->readPolicy
               : readCache == "Off"               ? zolex_sim::ReadPolicy::none
               : readCache == "AdaptiveReadAhead" ? zolex_sim::ReadPolicy::adaptive
                                                  : zolex_sim::ReadPolicy::ahead;
    }

    [[nodiscard]] std::int64_t sizeOf(const LogicalDriveFacts& facts,
                                      const zolex_sim::LogicalDrive& volume) const {
        if (facts.capacityBytes) {
            return asSigned(*facts.capacityBytes / bytesOfMb);
        }
        if (!isUtility("HYPERWIN")) {
            throw NoCopy("LD " + facts.id + " has no size");
        }
        return copy_.capacity(volume.level, copy_.arrays[volume.array].spans);
    }

    /// The array of its drives, which is made when there is none yet.
    std::size_t arrayOf(const LogicalDriveFacts& facts, zolex_sim::RaidLevel level) {
        const std::vector<std::string> drives = facts.drives();
        if (drives.empty()) {
            throw NoCopy("LD " + facts.id + " has no drives");
        }
        std::vector<std::string> key = drives;
        std::sort(key.begin(), key.end());
        key.push_back(facts.array); // what is missing has no name of its own
        const auto [entry, isNew] = arrays_.emplace(std::move(key), copy_.arrays.size());
        if (!isNew) {
            return entry->second;
        }
        zolex_sim::Array array;
        const std::size_t length = spanLength(facts, drives.size(), level);
        for (const std::vector<std::string>& span : facts.spans) {
            for (std::size_t i = 0; i < span.size(); ++i) {
                if (i == 0 || (length > 0 && i % length == 0)) {
                    array.spans.emplace_back();
                }
                array.spans.back().push_back(memberOf(facts, span[i]));
            }
        }
        arrayNames_.push_back(facts.array);
        copy_.arrays.push_back(std::move(array));
        return entry->second;
    }

    /// Drives of each span of a level that has spans, where the listing has them in one row; 0
    /// where they are as listed.
    static std::size_t spanLength(const LogicalDriveFacts& facts, std::size_t drives,
                                  zolex_sim::RaidLevel level) {
        constexpr std::size_t pair = 2;
        if (!zolex_sim::rulesOf(level).spanned || facts.spans.size() > 1) {
            return 0;
        }
        if (drives % pair != 0) {
            throw NoCopy("the spans of LD " + facts.id + " are not told: " +
                         std::to_string(drives) + " drives of " + facts.raidType);
        }
        return level == zolex_sim::RaidLevel::raid10 ? pair : drives / pair;
    }

    DriveLocation memberOf(const LogicalDriveFacts& facts, const std::string& location) {
        if (const auto at = placeOf_.find(location); at != placeOf_.end()) {
            if (!members_.insert(at->second).second) {
                throw NoCopy("drive " + location + " is told to be of two arrays");
            }
            return at->second;
        }
        const bool isMissing = location == "Missing" || location.starts_with("PD ");
        if (!isMissing) {
            throw NoCopy("a member of LD " + facts.id + " is no drive that is listed, " +
                         quotedText(location));
        }
        zolex_sim::Drive drive;
        constexpr int nowhere = 70000; // no command can name it
        drive.location = drive.bay = {nowhere, static_cast<int>(members_.size())};
        drive.status = DriveStatus::missing;
        drive.sizeMb = sizeOfOthers(facts);
        drive.rawSectors = drive.nonCoercedSectors = drive.sizeMb * zolex_sim::sectorsPerMb;
        members_.insert(drive.location);
        copy_.drives.push_back(drive);
        return drive.location;
    }

    [[nodiscard]] std::int64_t sizeOfOthers(const LogicalDriveFacts& facts) const {
        std::int64_t size = 1;
        for (const std::string& location : facts.drives()) {
            if (const auto at = placeOf_.find(location); at != placeOf_.end()) {
                size = std::max(size, copy_.driveAt(at->second)->sizeMb);
            }
        }
        return size;
    }

    /// Arrays that have names by which commands call them are in the order of the names.
    void checkArrayNames() const {
        if (!isUtility("QTCSEND")) {
            return;
        }
        for (std::size_t i = 0; i < arrayNames_.size(); ++i) {
            if (arrayNames_[i] != std::string(1, static_cast<char>('A' + i))) {
                throw NoCopy("the arrays are not called A, B and so on in the order of the logical "
                             "drives");
            }
        }
    }

    const ControllerSnapshot& original_;
    const Facts& facts_;
    const CopyForm& form_;
    const zolex_sim::UtilityTraits* traits_;
    zolex_sim::Controller copy_;
    std::map<std::string, DriveLocation, std::less<>> placeOf_;
    std::set<DriveLocation> taken_;
    std::set<DriveLocation> members_;
    std::map<std::vector<std::string>, std::size_t> arrays_;
    std::vector<std::string> arrayNames_;
};

// What of the copy is not as it was captured. Each is empty, or says it for people.

bool isSsd(const DriveFacts& drive) {
    return drive.mediaType == "SSD";
}

std::string differenceOfDrives(const Facts& original, const Facts& copy) {
    if (original.drives.size() != copy.drives.size()) {
        return "the copy has " + std::to_string(copy.drives.size()) + " drives, and not " +
               std::to_string(original.drives.size());
    }
    std::map<std::string_view, const DriveFacts*> byLocation;
    for (const DriveFacts& drive : copy.drives) {
        byLocation.emplace(drive.location, &drive);
    }
    for (const DriveFacts& drive : original.drives) {
        const auto at = byLocation.find(drive.location);
        if (at == byLocation.end()) {
            return "the copy has no drive " + drive.location;
        }
        const DriveFacts& found = *at->second;
        const auto differs = [&](const char* what) {
            return "drive " + drive.location + " of the copy has another " + what;
        };
        if (found.serialNumber != drive.serialNumber) {
            return differs("serial number");
        }
        if (found.state != drive.state || found.isForeign != drive.isForeign ||
            found.hotspare != drive.hotspare) {
            return differs("state");
        }
        if (!drive.protocol.empty() && found.protocol != drive.protocol) {
            return differs("protocol");
        }
        // Where hard disks are not told as such, the copy's are not either.
        if (drive.mediaType != found.mediaType && (isSsd(drive) || isSsd(found))) {
            return differs("medium");
        }
        const std::uint64_t a = drive.capacityBytes.value_or(0);
        const std::uint64_t b = found.capacityBytes.value_or(0);
        if (drive.capacityBytes && std::max(a, b) - std::min(a, b) >= bytesOfMb) {
            return differs("size");
        }
    }
    return {};
}

std::string differenceOfVolumes(const Facts& original, const Facts& copy) {
    if (original.logicalDrives.size() != copy.logicalDrives.size()) {
        return "the copy has " + std::to_string(copy.logicalDrives.size()) +
               " logical drives, and not " + std::to_string(original.logicalDrives.size());
    }
    for (std::size_t i = 0; i < original.logicalDrives.size(); ++i) {
        const LogicalDriveFacts& volume = original.logicalDrives[i];
        const LogicalDriveFacts& found = copy.logicalDrives[i];
        const auto differs = [&](const char* what) {
            return "LD " + volume.id + " of the copy has " + what;
        };
        if (found.id != volume.id) {
            return differs("another number");
        }
        if (found.raidType != volume.raidType) {
            return differs("another RAID level");
        }
        if (found.spans != volume.spans) {
            return differs("other drives");
        }
        const std::uint64_t a = volume.capacityBytes.value_or(0);
        const std::uint64_t b = found.capacityBytes.value_or(0);
        if (volume.capacityBytes &&
            std::max(a, b) - std::min(a, b) >= std::max(volume.capacityTolerance, bytesOfMb)) {
            return differs("another size");
        }
        if (found.stripSizeBytes != volume.stripSizeBytes ||
            found.writeCache != volume.writeCache || found.readCache != volume.readCache) {
            return differs("another strip size or cache mode");
        }
    }
    return {};
}

/// How the copy differs from its original; empty when it reads back as it, with `facts`.
std::string differenceOf(const ControllerSnapshot& original, VirtualCopy& copy, Facts& facts) {
    Facts found = copy.read();
    std::string difference = differenceOfDrives(original.facts, found);
    difference = difference.empty() ? differenceOfVolumes(original.facts, found) : difference;
    facts = copy.inPlaceOfOriginal(std::move(found));
    if (difference.empty() && normalForm(facts) != normalForm(original.facts)) {
        difference = "the copy has another layout";
    }
    return difference;
}

/// Of one that STORCLI drives.
MadeCopy copyStorcli(const ControllerSnapshot& original) {
    MadeCopy made;
    try {
        VirtualCopy copy(original, storcli_copy::make(original));
        Facts found = copy.read();
        made.because = storcli_copy::differenceOf(original.facts, found);
        made.facts = copy.inPlaceOfOriginal(std::move(found));
        if (made.because.empty() && normalForm(made.facts) != normalForm(original.facts)) {
            made.because = "the copy has another layout";
        }
        if (made.because.empty()) {
            made.copy = std::move(copy);
        }
    } catch (const NoCopy& fault) {
        made.because = fault.what();
    }
    return made;
}

} // namespace

MadeCopy copyController(const ControllerSnapshot& original, std::int32_t controllerType) {
    MadeCopy made;
    if (original.failed || original.commands.empty()) {
        made.because = "it was not captured";
        return made;
    }
    constexpr std::int32_t mostAdapters = 64;
    if (original.adapter < 0 || original.adapter > mostAdapters) {
        made.because = "its utility has no number for it";
        return made;
    }
    if (original.index == ControllerSnapshot::noRecord) {
        if (original.utility == "STORCLI") {
            return copyStorcli(original);
        }
        made.because = "controllers of " + original.utility + " are not copied";
        return made;
    }
    for (const CopyForm& form : formsOf(original)) {
        std::string because;
        try {
            VirtualCopy copy(original, controllerType, CopyBuilder(original, form).build());
            because = differenceOf(original, copy, made.facts);
            if (because.empty()) {
                made.because.clear();
                made.copy = std::move(copy);
                return made;
            }
        } catch (const NoCopy& fault) {
            because = fault.what();
        }
        // What is told is the fault of the likeliest form.
        made.because = made.because.empty() ? std::move(because) : made.because;
    }
    return made;
}

} // namespace zolex::companion
