#include "companion/families/md/MdDecode.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion::md {

namespace {

struct LevelWord {
    std::string_view word; ///< of the kernel
    std::string_view raidType;
    std::uint32_t redundancy; ///< so many drives may be missing
};

constexpr std::array levelWords = {
    LevelWord{"raid0", "RAID0", 0},   LevelWord{"raid1", "RAID1", 0}, // all but one
    LevelWord{"raid5", "RAID5", 1},   LevelWord{"raid6", "RAID6", 2},
    LevelWord{"raid10", "RAID10", 0}, // by pairs
};

std::string locationOf(const ListedDisk& disk) {
    return disk.id.empty() ? disk.name : disk.id;
}

const ListedArray* shownArrayOf(const DiskList& list, const ListedDisk& disk) {
    const auto found =
        std::find_if(list.arrays.begin(), list.arrays.end(), [&disk](const ListedArray& array) {
            return array.isShown && std::find(array.members.begin(), array.members.end(),
                                              disk.name) != array.members.end();
        });
    return found == list.arrays.end() ? nullptr : &*found;
}

/// Whether of an array only spares are left.
bool hasNoMember(const DiskList& list, const ListedArray& array) {
    return std::none_of(list.disks.begin(), list.disks.end(), [&array](const ListedDisk& disk) {
        return lists(array.members, disk.name) &&
               (disk.arraySlot || (disk.superblock && disk.superblock->role));
    });
}

/// A spare that was removed keeps its superblock until it is zeroed: it covers nothing, and goes as
/// other spares do.
DriveFacts spareFacts(DriveFacts facts, const ListedArray& array, const ListedDisk& disk) {
    facts.state = DriveState::hotspare;
    facts.hotspare = HotspareKind::dedicated;
    facts.covers = {array.name};
    if (disk.isFailed()) {
        facts.health = Health::warning;
        facts.reportedState = "removed spare";
        facts.covers = {array.name + std::string(removedFrom)};
    }
    return facts;
}

DriveFacts driveFacts(const DiskList& list, const ListedDisk& disk) {
    DriveFacts facts;
    facts.location = locationOf(disk);
    facts.channel = disk.channel;
    facts.id = disk.target;
    facts.serialNumber = disk.serialNumber;
    facts.manufacturer = disk.manufacturer;
    facts.model = disk.model;
    facts.revision = disk.revision;
    facts.protocol = disk.protocol;
    facts.mediaType = disk.mediaType;
    facts.capacityBytes = disk.bytes;
    facts.blockSizeBytes = disk.blockBytes;
    facts.wwn = disk.wwn;
    facts.health = Health::ok;
    facts.barred = disk.why;
    const ListedArray* const array = shownArrayOf(list, disk);
    if (array == nullptr) {
        facts.state = disk.why.empty() ? DriveState::free : DriveState::jbod;
        facts.reportedState = disk.why.empty() ? "free" : disk.why;
        return facts;
    }
    facts.reportedState = disk.arrayState;
    const bool isAlone = disk.isSpareApart() && hasNoMember(list, *array);
    if (disk.isSpareApart() && !isAlone && disk.why.empty() && array->isOurs) {
        return spareFacts(facts, *array, disk);
    }
    if (disk.isFailed() || (isAlone && disk.why.empty())) {
        facts.state = DriveState::failed;
        facts.health = Health::critical;
    } else if (!disk.arraySlot && (!disk.isSpare() || !disk.why.empty())) {
        facts.state = DriveState::jbod;
        facts.reportedState = disk.why.empty() ? disk.arrayState : disk.why;
    } else if (!disk.arraySlot) {
        return spareFacts(facts, *array, disk);
    } else if (disk.arrayState.find("in_sync") != std::string::npos) {
        facts.state = DriveState::member;
    } else {
        facts.state = DriveState::rebuilding;
    }
    return facts;
}

/// The name that was asked for; none where it was made of the drives.
std::string wishedName(std::string_view name) {
    constexpr std::size_t digits = 8;
    const std::string_view own = name.substr(std::min(ownPrefix.size(), name.size()));
    const bool isMade =
        own.size() == digits && own.find_first_not_of("0123456789abcdef") == std::string_view::npos;
    return std::string(isMade ? std::string_view() : own);
}

std::uint64_t dataDrives2(std::string_view raidType, std::uint64_t drives) {
    return raidType == "RAID1"   ? 2
           : raidType == "RAID5" ? 2 * (std::max<std::uint64_t>(drives, 1) - 1)
           : raidType == "RAID6" ? 2 * (std::max<std::uint64_t>(drives, 2) - 2)
                                 : drives;
}

void tellState(LogicalDriveFacts& volume, const ListedArray& array, std::uint32_t redundancy,
               std::size_t present) {
    const std::size_t missing = array.raidDisks - std::min<std::size_t>(present, array.raidDisks);
    if (missing > redundancy) {
        volume.health = Health::critical;
        volume.reportedState = "failed";
    } else if (missing != 0) {
        volume.health = Health::warning;
        volume.reportedState = "degraded";
    } else {
        // A new array is made with its last drive as one that recovers: nothing is missing.
        const std::string& action = array.syncAction;
        // One that does not run serves nobody, whole as it is.
        volume.health = array.node.empty() ? Health::warning : Health::ok;
        volume.reportedState = array.node.empty()    ? "stopped"
                               : action == "recover" ? "recovering"
                               : action == "resync"  ? "resyncing"
                               : array.degraded != 0 ? "recovering"
                                                     : "active";
    }
}

/// A drive that has failed stands where it was, as long as no other has taken its place. One that
/// does not tell where stands in the only place that is left. Spares of an array of which nothing
/// else is left go with it.
void placeFailed(const DiskList& list, const ListedArray& array, std::vector<std::string>& places) {
    std::vector<std::string> mute;
    for (const ListedDisk& disk : list.disks) {
        const bool isOfIt =
            std::find(array.members.begin(), array.members.end(), disk.name) != array.members.end();
        if (isOfIt && disk.isFailed() && disk.superblock && disk.superblock->role &&
            *disk.superblock->role < places.size() && places[*disk.superblock->role] == "Missing") {
            places[*disk.superblock->role] = locationOf(disk);
        } else if (isOfIt && disk.isFailed() && !disk.superblock) {
            mute.push_back(locationOf(disk));
        }
    }
    if (hasNoMember(list, array)) {
        std::size_t place = 0;
        for (const ListedDisk& disk : list.disks) {
            if (lists(array.members, disk.name) && place < places.size()) {
                places[place++] = locationOf(disk);
            }
        }
        return;
    }
    if (mute.size() == 1 && std::count(places.begin(), places.end(), "Missing") == 1) {
        *std::find(places.begin(), places.end(), "Missing") = mute[0];
    }
}

LogicalDriveFacts volumeFacts(const DiskList& list, const ListedArray& array) {
    LogicalDriveFacts volume;
    volume.id = array.name;
    volume.array = array.name;
    volume.name = wishedName(array.name);
    volume.reportedLevel = array.level;
    volume.device = array.node.empty() ? "" : "/dev/" + array.node;
    volume.uniqueId = array.uuid;
    const auto level =
        std::find_if(levelWords.begin(), levelWords.end(),
                     [&array](const LevelWord& word) { return word.word == array.level; });
    const bool isKnown = level != levelWords.end();
    const bool isTen = array.level == "raid10";
    const bool isOdd = array.raidDisks % 2 != 0;
    volume.raidType = !isKnown ? "" : isTen && isOdd ? "RAID1E" : std::string(level->raidType);
    constexpr std::uint32_t mostDrives = 4096;
    std::vector<std::string> places(std::min(array.raidDisks, mostDrives), "Missing");
    std::size_t present = 0;
    for (const ListedDisk& disk : list.disks) {
        if (std::find(array.members.begin(), array.members.end(), disk.name) ==
            array.members.end()) {
            continue;
        }
        if (disk.arraySlot && *disk.arraySlot < places.size() && !disk.isFailed()) {
            places[*disk.arraySlot] = locationOf(disk);
            ++present;
        }
    }
    std::uint32_t redundancy = isKnown ? level->redundancy : 0;
    if (array.level == "raid1") {
        redundancy = std::max(array.raidDisks, 1U) - 1;
    } else if (isTen) {
        // Of each pair one may be missing; which are pairs of an odd number is not followed.
        redundancy = 1;
        std::size_t both = 0;
        for (std::size_t i = 0; !isOdd && i + 1 < places.size(); i += 2) {
            both += places[i] == "Missing" && places[i + 1] == "Missing" ? 1 : 0;
        }
        redundancy = isOdd ? 1 : both != 0 ? 0 : array.raidDisks / 2;
    }
    placeFailed(list, array, places);
    if (isTen && !isOdd) {
        for (std::size_t i = 0; i + 1 < places.size(); i += 2) {
            volume.spans.push_back({places[i], places[i + 1]});
        }
    } else {
        volume.spans.push_back(std::move(places));
    }
    if (array.bytes != 0) {
        volume.capacityBytes = array.bytes;
    } else if (array.componentBytes != 0 && isKnown && volume.raidType != "RAID0") {
        volume.capacityBytes =
            array.componentBytes / 2 * dataDrives2(volume.raidType, array.raidDisks);
    }
    if (array.chunkBytes != 0 && array.level != "raid1") {
        volume.stripSizeBytes = array.chunkBytes;
    }
    tellState(volume, array, redundancy, present);
    if (!array.isOurs && volume.health == Health::ok) {
        volume.health = Health::warning;
    }
    if (!array.whyNotStopped.empty()) {
        volume.reportedState += std::string(useSeparator) + array.whyNotStopped;
    }
    return volume;
}

} // namespace

std::map<std::string, std::string, std::less<>> exportedKeys(std::string_view output) {
    std::map<std::string, std::string, std::less<>> keys;
    while (!output.empty()) {
        const std::size_t end = std::min(output.find('\n'), output.size());
        const std::string_view line = output.substr(0, end);
        const std::size_t equals = line.find('=');
        if (line.starts_with("MD_") && equals != std::string_view::npos) {
            keys.emplace(line.substr(0, equals), line.substr(equals + 1));
        }
        output.remove_prefix(std::min(end + 1, output.size()));
    }
    return keys;
}

Facts factsOf(const DiskList& list) {
    Facts facts;
    facts.productName = "Linux md";
    facts.driverVersion = list.kernel.empty() ? "" : "Linux " + list.kernel;
    facts.deepMirrors = DeepMirrors::ofAll;
    facts.raidTypes = {"RAID0", "RAID1", "RAID1E", "RAID5", "RAID6", "RAID10"};
    facts.minStripSizeBytes = std::uint64_t{4} << 10U;
    facts.maxStripSizeBytes = std::uint64_t{1} << 30U;
    facts.abilities.usualStripSizeBytes = std::uint64_t{512} << 10U;
    facts.abilities.mostVolumesPerArray = 1;
    facts.abilities.mixesProtocols = true;
    facts.abilities.mixesMedia = true;
    for (const ListedDisk& disk : list.disks) {
        facts.drives.push_back(driveFacts(list, disk));
    }
    for (const ListedArray& array : list.arrays) {
        if (array.isShown) {
            facts.logicalDrives.push_back(volumeFacts(list, array));
        }
    }
    std::sort(facts.logicalDrives.begin(), facts.logicalDrives.end(),
              [](const LogicalDriveFacts& left, const LogicalDriveFacts& right) {
                  return left.id < right.id;
              });
    return facts;
}

} // namespace zolex::companion::md
