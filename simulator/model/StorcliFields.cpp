#include "model/StorcliFields.h"

#include "model/Text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace zolex_sim::storcli {
namespace {

constexpr std::size_t maxDrives = 1024;
constexpr std::int64_t maxSectors = std::int64_t{1} << 44;
constexpr int slotStep = 8; ///< enclosures have a multiple of so many slots

using Places = std::vector<DriveLocation>;

/// The drives of a list such as ["252:0", ":1"].
Places readPlaces(const Json& list, const std::string& path, Problem& problem) {
    Places places;
    if (!list.is_array()) {
        problem.report(path + ": must be a list");
        return places;
    }
    for (const Json& item : list) {
        const std::optional<DriveLocation> place =
            item.is_string() ? parseLocation(item.get_ref<const std::string&>()) : std::nullopt;
        if (!place) {
            problem.report(path + ": drives are written like \"252:0\" or \":0\"");
            return places;
        }
        places.push_back(*place);
    }
    return places;
}

Json placesJson(const Places& places) {
    Json list = Json::array();
    for (const DriveLocation& place : places) {
        list.push_back(toText(place));
    }
    return list;
}

std::optional<std::string> coercionNamed(std::string_view word) {
    for (const char* mode : {"None", "128MB", "1GB"}) {
        if (equalsIgnoringCase(word, mode)) {
            return mode;
        }
    }
    return std::nullopt;
}

std::optional<bool> numbersUpNamed(std::string_view word) {
    return word == "up"     ? std::optional(true)
           : word == "down" ? std::optional(false)
                            : std::nullopt;
}

std::optional<DriveState> initialStateNamed(std::string_view word) {
    const std::optional<DriveState> state = stateNamed(word);
    return state == DriveState::foreign || state == DriveState::online ? std::nullopt : state;
}

/// The sectors that the coercion leaves of a drive, in its own sectors.
std::int64_t coerced(const Controller& controller, const Drive& drive) {
    const std::int64_t step = controller.coercion == "1GB"     ? std::int64_t{1} << 30
                              : controller.coercion == "128MB" ? std::int64_t{128} << 20
                                                               : std::int64_t{1} << 20;
    const std::int64_t sectors = step / drive.sectorBytes;
    return drive.nonCoercedSectors() / sectors * sectors;
}

void readSizes(Fields& fields, const Controller& controller, Drive& drive) {
    drive.sectorBytes = fields.smallNumber("sectorBytes", 512, 4096, 512);
    if (drive.sectorBytes != 512 && drive.sectorBytes != 4096) {
        fields.complain("sectorBytes", "must be 512 or 4096");
        drive.sectorBytes = 512;
    }
    const std::int64_t reserved = (std::int64_t{512} << 20) / drive.sectorBytes;
    std::optional<std::int64_t> usual;
    if (fields.has("sectors")) {
        drive.sectors = fields.number("sectors", 1, maxSectors);
        usual = drive.sectors + reserved;
    }
    drive.rawSectors = fields.number("rawSectors", 1, 2 * maxSectors, usual);
    if (!fields.has("sectors")) {
        drive.sectors = coerced(controller, drive);
    }
    if (drive.sectors < 1 || drive.rawSectors < drive.sectors) {
        fields.complain("rawSectors", "leaves nothing, or less than sectors");
    }
}

Drive readDrive(Fields& fields, const Controller& controller, std::size_t number) {
    const std::size_t index = controller.drives.size();
    Drive drive;
    if (fields.has("enclosure")) {
        drive.place.enclosure = fields.smallNumber("enclosure", 0, 65535);
    }
    drive.place.slot = fields.smallNumber("slot", 0, 65535);
    readSizes(fields, controller, drive);
    drive.interface = fields.text("interface", "SAS", 8);
    drive.medium = fields.word<Medium>("medium", mediumNamed, Medium::disk);
    drive.vendor = fields.text("vendor", drive.interface == "SATA" ? "ATA" : "NORVIK", 8);
    drive.model = fields.text("model", "NV8000SAS12", 40);
    drive.revision = fields.text("revision", "N101", 8);
    drive.serial = fields.text("serial", "", 20);
    drive.wwn = fields.bits("wwn", ~std::uint64_t{0},
                            0x500aaa0000004200U + (std::uint64_t{number} << 16) + index);
    drive.deviceId = fields.smallNumber("deviceId", 0, 65535, static_cast<int>(index) + 8);
    drive.mediaErrors = fields.smallNumber("mediaErrors", 0, 1'000'000, 0);
    drive.otherErrors = fields.smallNumber("otherErrors", 0, 1'000'000, 0);
    drive.predictiveFailures = fields.smallNumber("predictiveFailures", 0, 1'000'000, 0);
    drive.smartAlert = fields.flag("smartAlert", drive.predictiveFailures > 0);
    drive.temperature = fields.smallNumber("temperature", 0, 200, 24);
    drive.state = fields.word<DriveState>("status", initialStateNamed, DriveState::good);
    fields.list("groups", [&](const Json& item, const std::string& path) {
        if (!item.is_number_unsigned() || item.get<std::uint64_t>() > 1000) {
            fields.problem().report(path + ": is no number of a group");
        } else {
            drive.groups.push_back(item.get<std::size_t>());
        }
    });
    if ((drive.state == DriveState::dedicatedSpare) == drive.groups.empty()) {
        fields.complain("groups", "a dedicated spare has some, any other drive none");
    }
    return drive;
}

/// Adds a drive and `count` - 1 more like it in the next slots; serial numbers count on.
void addDrives(Controller& controller, const Drive& first, int count, std::size_t number,
               const std::string& path, Problem& problem) {
    for (int i = 0; i < count && !problem.found(); ++i) {
        Drive drive = first;
        drive.place.slot += i;
        drive.deviceId += i;
        drive.wwn += static_cast<unsigned>(i);
        if (drive.serial.empty()) {
            drive.serial = formatted("ZM%02zu%04zu", number, controller.drives.size());
        } else if (count > 1) {
            drive.serial += formatted("%03d", i);
        }
        if (controller.driveAt(drive.place) != nullptr) {
            problem.report(path + ".slot: there is already a drive at " + toText(drive.place));
        } else if (controller.drives.size() == maxDrives || drive.serial.size() > 20) {
            problem.report(path + ": too many drives, or a serial number too long");
        } else {
            controller.drives.push_back(std::move(drive));
        }
    }
}

void readDrives(Fields& fields, Controller& controller, std::size_t number) {
    fields.list("drives", [&](const Json& item, const std::string& path) {
        Fields drive(item, path, fields.problem());
        const Drive first = readDrive(drive, controller, number);
        const int count = drive.smallNumber("count", 1, 1024, 1);
        drive.finish();
        addDrives(controller, first, count, number, path, fields.problem());
    });
}

void readEnclosures(Fields& fields, Controller& controller) {
    fields.list("enclosures", [&](const Json& item, const std::string& path) {
        Fields enclosure(item, path, fields.problem());
        Enclosure found;
        found.id = enclosure.smallNumber("id", 0, 65535);
        found.slots = enclosure.smallNumber("slots", 1, 65536);
        found.product = enclosure.text("product", "VirtualSES", 16);
        enclosure.finish();
        controller.enclosures.push_back(std::move(found));
    });
    for (const Drive& drive : controller.drives) {
        if (!drive.place.enclosure) {
            continue;
        }
        const auto found = std::find_if(
            controller.enclosures.begin(), controller.enclosures.end(),
            [&](const Enclosure& enclosure) { return enclosure.id == *drive.place.enclosure; });
        const int slots = (drive.place.slot / slotStep + 1) * slotStep;
        if (found == controller.enclosures.end()) {
            const char* product =
                controller.branding == Branding::perc ? "BP14G+EXP" : "VirtualSES";
            controller.enclosures.push_back({*drive.place.enclosure, slots, product});
        } else {
            found->slots = std::max(found->slots, slots);
        }
    }
}

void readForeignSets(Fields& fields, Controller& controller) {
    fields.list("foreign", [&](const Json& item, const std::string& path) {
        Fields set(item, path, fields.problem());
        ForeignSet found;
        found.level = set.word<Level>("level", levelNamed, Level::raid0);
        found.volumes = set.smallNumber("volumes", 0, 16, 1);
        found.missing = set.smallNumber("missing", 0, 1024, 0);
        if (set.has("drives")) {
            found.drives = readPlaces(item.at("drives"), path + ".drives", fields.problem());
        }
        for (const DriveLocation& place : found.drives) {
            Drive* const drive = controller.driveAt(place);
            if (drive == nullptr || drive->state != DriveState::good) {
                set.complain("drives", "there is no good drive at " + toText(place));
            } else {
                drive->state = DriveState::foreign;
            }
        }
        if (found.drives.empty()) {
            set.complain("drives", "is missing or empty");
        }
        const bool sound = !fields.problem().found();
        found.blocks = set.number("blocks", 1, maxSectors * 8,
                                  sound ? controller.capacity(found.level, {found.drives}) : 1);
        set.finish();
        controller.foreignSets.push_back(std::move(found));
    });
}

/// Makes members of the drives of a new group. Those that are failed or busy stay so.
void takeMembers(Fields& fields, Controller& controller, const std::vector<Places>& spans) {
    std::set<DriveLocation> seen;
    for (const Places& span : spans) {
        for (const DriveLocation& place : span) {
            Drive* const drive = controller.driveAt(place);
            if (drive == nullptr || !seen.insert(place).second || controller.placeOf(place)) {
                fields.complain("spans", "no free drive is at " + toText(place));
                return;
            }
            switch (drive->state) {
            case DriveState::good:
                drive->state = DriveState::online;
                break;
            case DriveState::rebuild:
            case DriveState::copyback:
            case DriveState::offline:
            case DriveState::failed:
            case DriveState::missing:
                break;
            default:
                fields.complain("spans", "the drive at " + toText(place) + " can be no member");
                return;
            }
        }
    }
}

/// The group of a virtual drive: a new one of "spans", or an earlier one by its number.
std::optional<std::size_t> readGroup(Fields& fields, const Json& item, const std::string& path,
                                     Controller& controller, Level level) {
    if (fields.has("group")) {
        const auto group = static_cast<std::size_t>(fields.smallNumber("group", 0, 1000));
        if (group >= controller.groups.size()) {
            fields.complain("group", "there is no such group yet");
            return std::nullopt;
        }
        return group;
    }
    std::vector<Places> spans;
    if (fields.has("spans") && item.at("spans").is_array()) {
        for (const Json& span : item.at("spans")) {
            spans.push_back(readPlaces(span, path + ".spans", fields.problem()));
        }
    }
    const Rules& rules = rulesOf(level);
    const bool fits = !spans.empty() && (spans.size() > 1) == rules.spanned &&
                      std::all_of(spans.begin(), spans.end(), [&](const Places& span) {
                          return span.size() == spans.front().size() &&
                                 (rules.redundancy >= 0 || span.size() % 2 == 0) &&
                                 span.size() >= static_cast<std::size_t>(rules.minDrives);
                      });
    if (!fits) {
        fields.complain("spans", "is missing or does not fit the level");
    }
    if (!fields.problem().found()) {
        takeMembers(fields, controller, spans);
    }
    if (fields.problem().found()) {
        return std::nullopt;
    }
    controller.groups.push_back({std::move(spans)});
    return controller.groups.size() - 1;
}

void readCacheFields(Fields& fields, const Controller& controller, Volume& volume) {
    volume.stripKb = fields.smallNumber("stripKB", 1, 65536, controller.defaultStripKb);
    volume.cache = fields.word<Cache>("writeCache", cacheNamed, controller.defaultCache);
    volume.readAhead = fields.flag("readAhead", controller.defaultReadAhead);
    volume.cachedIo = fields.flag("cachedIO", false);
    volume.name = fields.text("name", "", 15);
    volume.consistent = fields.flag("consistent", true);
}

void readVolume(Fields& fields, const Json& item, const std::string& path, Controller& controller) {
    Volume volume;
    volume.level = fields.word<Level>("level", levelNamed);
    const std::optional<std::size_t> group =
        readGroup(fields, item, path, controller, volume.level);
    if (!group) {
        return;
    }
    volume.group = *group;
    const std::int64_t room = controller.roomLeft(*group, volume.level);
    if (room == 0) {
        fields.complain("group", "no room is left on it");
        return;
    }
    volume.blocks = fields.number("blocks", 1, room, room);
    readCacheFields(fields, controller, volume);
    const std::optional<int> next = controller.nextNumber();
    volume.number = fields.smallNumber("number", 0, Controller::lastNumber, next.value_or(0));
    if (!next || controller.volumeNumbered(volume.number) != nullptr) {
        fields.complain("number", "is taken, or there are too many virtual drives");
    }
    volume.hasSystem = fields.has("osDrive");
    volume.device = fields.text("osDrive", controller.nextDevice(), 40);
    controller.enter(std::move(volume));
}

void readVolumes(Fields& fields, Controller& controller) {
    fields.list("virtualDrives", [&](const Json& item, const std::string& path) {
        Fields volume(item, path, fields.problem());
        readVolume(volume, item, path, controller);
        if (!fields.problem().found()) {
            volume.finish();
        }
    });
    for (const Drive& drive : controller.drives) {
        const bool busy = drive.state == DriveState::rebuild ||
                          drive.state == DriveState::copyback || !drive.isThere();
        const bool lost = std::any_of(drive.groups.begin(), drive.groups.end(), [&](auto group) {
            return group >= controller.groups.size();
        });
        if ((busy && !controller.placeOf(drive.place)) || lost) {
            fields.complain("drives", "the drive at " + toText(drive.place) +
                                          " is of a group that does not exist");
        }
    }
}

PciFunction readPci(Fields& fields) {
    PciFunction pci;
    pci.domain = fields.smallNumber("domain", 0, 0xFFFF, 0);
    pci.bus = fields.smallNumber("bus", 0, 255);
    pci.device = fields.smallNumber("device", 0, 31, 0);
    pci.function = fields.smallNumber("function", 0, 7, 0);
    pci.vendorId = static_cast<std::uint16_t>(fields.number("vendorId", 0, 0xFFFF, 0x1000));
    pci.deviceId = static_cast<std::uint16_t>(fields.number("deviceId", 0, 0xFFFF, 0x10e2));
    pci.subsystemVendorId =
        static_cast<std::uint16_t>(fields.number("subsystemVendorId", 0, 0xFFFF, 0x1000));
    pci.subsystemId = static_cast<std::uint16_t>(fields.number("subsystemId", 0, 0xFFFF, 0x4000));
    pci.classCode = static_cast<std::uint32_t>(fields.number("class", 0, 0xFFFFFF, 0x010400));
    pci.revision = static_cast<std::uint8_t>(fields.number("revision", 0, 0xFF, 0));
    pci.description = fields.text("description", "RAID controller");
    return pci;
}

void readLevels(Fields& fields, Controller& controller) {
    controller.levels = {Level::raid0,  Level::raid1,  Level::raid5,  Level::raid6,
                         Level::raid00, Level::raid10, Level::raid50, Level::raid60};
    if (!fields.has("raidLevels")) {
        return;
    }
    controller.levels.clear();
    fields.list("raidLevels", [&](const Json& item, const std::string& path) {
        const std::optional<Level> level =
            item.is_string() ? levelNamed(item.get_ref<const std::string&>()) : std::nullopt;
        if (!level) {
            fields.problem().report(path + ": unknown RAID level");
        } else {
            controller.levels.push_back(*level);
        }
    });
}

void readIdentity(Fields& fields, Controller& controller, std::size_t number) {
    controller.version = fields.word<Version>("version", versionNamed, Version::v2507);
    controller.branding = fields.word<Branding>("branding", brandingNamed, Branding::lsi);
    controller.model = fields.text("model", "MegaRAID N3916-16i 8GB");
    controller.serialNumber = fields.text("serialNumber", formatted("NX264%05zu", number + 17));
    controller.firmwarePackage = fields.text("firmwarePackage", "52.26.0-0001");
    controller.firmware = fields.text("firmware", "5.260.02-0001");
    controller.bios = fields.text("bios", "7.26.00.0_0x071A0000");
    controller.sasAddress =
        fields.bits("sasAddress", ~std::uint64_t{0}, 0x500aaa0000000100U + (number << 16));
    fields.object("pci", true, [&](Fields& pci) { controller.pci = readPci(pci); });
}

void readAbilities(Fields& fields, Controller& controller) {
    controller.battery = fields.word<Battery>("battery", batteryNamed, Battery::optimal);
    controller.coercion = fields.word<std::string>("coercion", coercionNamed, "1GB");
    controller.numbersUp = fields.word<bool>("vdNumbers", numbersUpNamed, false);
    controller.refusesNolog = fields.flag("refusesNolog", false);
    controller.hostAdapter = fields.flag("hostAdapter", false);
    controller.supportsJbod = fields.flag("supportsJbod", true);
    controller.jbodOn = fields.flag("jbod", controller.supportsJbod);
    controller.mixesSasSataDisks = fields.flag("mixesSasSataHDD", true);
    controller.mixesSasSataSsds = fields.flag("mixesSasSataSSD", true);
    controller.mixesMedia = fields.flag("mixesMedia", false);
    controller.preservedCache = fields.flag("preservedCache", false);
    controller.showsRunningCache = fields.flag("showsRunningCache", false);
    controller.minStripKb = fields.smallNumber("minStripKB", 1, 65536, 64);
    controller.maxStripKb = fields.smallNumber("maxStripKB", controller.minStripKb, 65536, 1024);
    controller.defaultStripKb = fields.smallNumber("defaultStripKB", 1, 65536, 256);
    controller.defaultCache = fields.word<Cache>("defaultWriteCache", cacheNamed, Cache::writeBack);
    controller.defaultReadAhead = fields.flag("defaultReadAhead", true);
    controller.maxVolumes = fields.smallNumber("maxVirtualDrives", 1, 240, 240);
    controller.rebuildRate = fields.smallNumber("rebuildRate", 0, 100, 30);
    readLevels(fields, controller);
}

Json volumeJson(const Volume& volume) {
    Json json;
    json["number"] = volume.number;
    json["group"] = volume.group;
    json["level"] = rulesOf(volume.level).name;
    json["blocks"] = volume.blocks;
    json["stripKB"] = volume.stripKb;
    json["writeCache"] = wordOf(volume.cache);
    json["readAhead"] = volume.readAhead;
    json["cachedIO"] = volume.cachedIo;
    json["name"] = volume.name;
    json["consistent"] = volume.consistent;
    json["naaId"] = volume.naaId;
    json["device"] = volume.device;
    json["hasSystem"] = volume.hasSystem;
    return json;
}

Json driveJson(const Drive& drive) {
    Json json;
    json["place"] = toText(drive.place);
    json["status"] = wordOf(drive.state);
    if (!drive.groups.empty()) {
        json["groups"] = drive.groups;
    }
    if (drive.locating) {
        json["locating"] = true;
    }
    return json;
}

void readDriveState(Fields& fields, Drive& drive, const Controller& controller) {
    if (fields.text("place") != toText(drive.place)) {
        fields.complain("place", "is not that of the definition");
    }
    drive.state = fields.word<DriveState>("status", stateNamed);
    drive.locating = fields.flag("locating", false);
    drive.groups.clear();
    fields.list("groups", [&](const Json& item, const std::string& path) {
        if (!item.is_number_unsigned() || item.get<std::uint64_t>() >= controller.groups.size()) {
            fields.problem().report(path + ": there is no such group");
        } else {
            drive.groups.push_back(item.get<std::size_t>());
        }
    });
    const bool member = controller.placeOf(drive.place).has_value();
    const bool can = drive.state == DriveState::online || drive.state == DriveState::rebuild ||
                     drive.state == DriveState::copyback || drive.state == DriveState::offline ||
                     drive.state == DriveState::failed || !drive.isThere();
    const bool free = !can || drive.state == DriveState::failed ||
                      drive.state == DriveState::offline || !drive.isThere();
    if (member ? !can : !free) {
        fields.complain("status", "does not fit the groups");
    }
}

void readGroups(Fields& fields, Controller& controller) {
    fields.list("groups", [&](const Json& item, const std::string& path) {
        Group group;
        if (!item.is_array() || item.empty()) {
            fields.problem().report(path + ": must be a list of lists");
            return;
        }
        for (const Json& span : item) {
            group.spans.push_back(readPlaces(span, path, fields.problem()));
            for (const DriveLocation& place : group.spans.back()) {
                if (controller.driveAt(place) == nullptr || controller.placeOf(place)) {
                    fields.problem().report(path + ": no free drive is at " + toText(place));
                }
            }
            if (group.spans.back().empty()) {
                fields.problem().report(path + ": a span has no drive");
            }
        }
        controller.groups.push_back(std::move(group));
    });
}

void readVolumeStates(Fields& fields, Controller& controller) {
    fields.list("virtualDrives", [&](const Json& item, const std::string& path) {
        Fields state(item, path, fields.problem());
        Volume volume;
        volume.number = state.smallNumber("number", 0, Controller::lastNumber);
        volume.group = static_cast<std::size_t>(state.smallNumber("group", 0, 1000));
        volume.level = state.word<Level>("level", levelNamed);
        if (volume.group >= controller.groups.size() ||
            controller.volumeNumbered(volume.number) != nullptr) {
            state.complain("group", "there is no such group, or the number is taken");
            return;
        }
        const std::int64_t room = controller.roomLeft(volume.group, volume.level);
        volume.blocks = state.number("blocks", 1, std::max<std::int64_t>(room, 1));
        readCacheFields(state, controller, volume);
        volume.naaId = state.text("naaId", "", 40);
        volume.device = state.text("device");
        volume.hasSystem = state.flag("hasSystem", false);
        state.finish();
        controller.enter(std::move(volume));
    });
    for (std::size_t group = 0; group < controller.groups.size(); ++group) {
        if (std::none_of(controller.volumes.begin(), controller.volumes.end(),
                         [&](const Volume& volume) { return volume.group == group; })) {
            fields.complain("groups", "a group holds no virtual drive");
        }
    }
}

} // namespace

Controller readController(Fields& fields, std::size_t number) {
    Controller controller;
    readIdentity(fields, controller, number);
    readAbilities(fields, controller);
    readDrives(fields, controller, number);
    if (fields.problem().found()) {
        return controller;
    }
    readEnclosures(fields, controller);
    readForeignSets(fields, controller);
    readVolumes(fields, controller);
    return controller;
}

Json stateJson(const Controller& controller) {
    std::vector<const Volume*> volumes;
    volumes.reserve(controller.volumes.size());
    for (const Volume& volume : controller.volumes) {
        volumes.push_back(&volume);
    }
    std::sort(volumes.begin(), volumes.end(),
              [](const Volume* a, const Volume* b) { return a->order < b->order; });
    Json json;
    json["jbod"] = controller.jbodOn;
    json["rebuildRate"] = controller.rebuildRate;
    json["deleted"] = controller.deleted;
    json["groups"] = Json::array();
    for (const Group& group : controller.groups) {
        Json spans = Json::array();
        for (const Places& span : group.spans) {
            spans.push_back(placesJson(span));
        }
        json["groups"].push_back(std::move(spans));
    }
    json["drives"] = Json::array();
    for (const Drive& drive : controller.drives) {
        json["drives"].push_back(driveJson(drive));
    }
    json["virtualDrives"] = Json::array();
    for (const Volume* volume : volumes) {
        json["virtualDrives"].push_back(volumeJson(*volume));
    }
    return json;
}

void readState(Fields& fields, Controller& controller) {
    controller.groups.clear();
    controller.volumes.clear();
    controller.jbodOn = fields.flag("jbod", true);
    controller.rebuildRate = fields.smallNumber("rebuildRate", 0, 100);
    controller.deleted = static_cast<std::uint32_t>(fields.number("deleted", 0, 0xFFFFFF, 0));
    readGroups(fields, controller);
    std::size_t read = 0;
    fields.list("drives", [&](const Json& item, const std::string& path) {
        Fields drive(item, path, fields.problem());
        if (read == controller.drives.size()) {
            fields.complain("drives", "there are more than the definition has");
            return;
        }
        readDriveState(drive, controller.drives[read++], controller);
        drive.finish();
    });
    if (read < controller.drives.size()) {
        fields.complain("drives", "there are fewer than the definition has");
    }
    if (!fields.problem().found()) {
        readVolumeStates(fields, controller);
    }
}

} // namespace zolex_sim::storcli
