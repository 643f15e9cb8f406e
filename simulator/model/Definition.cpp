#include "model/Definition.h"

#include "model/BlockFields.h"
#include "model/ConfFields.h"
#include "model/Operations.h"
#include "model/StorcliFields.h"
#include "model/Text.h"
#include "model/Utility.h"

#include <algorithm>
#include <utility>

namespace zolex_sim {
namespace {

constexpr std::size_t maxControllers = 64;
constexpr std::size_t maxDrives = 1024; ///< of one controller

std::optional<std::string> knownUtility(std::string_view word) {
    const UtilityTraits* utility = utilityNamed(word);
    return utility == nullptr ? std::nullopt : std::optional(std::string(utility->name));
}

std::optional<Generation> generationNamed(std::string_view word) {
    if (equalsIgnoringCase(word, "early")) {
        return Generation::early;
    }
    if (equalsIgnoringCase(word, "newest")) {
        return Generation::newest;
    }
    return equalsIgnoringCase(word, "later") ? std::optional(Generation::later) : std::nullopt;
}

PciFunction readPci(Fields& fields) {
    PciFunction pci;
    pci.bus = fields.smallNumber("bus", 0, 255);
    pci.device = fields.smallNumber("device", 0, 31);
    pci.function = fields.smallNumber("function", 0, 7, 0);
    pci.vendorId = static_cast<std::uint16_t>(fields.number("vendorId", 0, 0xFFFF));
    pci.deviceId = static_cast<std::uint16_t>(fields.number("deviceId", 0, 0xFFFF));
    pci.subsystemVendorId =
        static_cast<std::uint16_t>(fields.number("subsystemVendorId", 0, 0xFFFF, 0));
    pci.subsystemId = static_cast<std::uint16_t>(fields.number("subsystemId", 0, 0xFFFF, 0));
    pci.classCode = static_cast<std::uint32_t>(fields.number("class", 0, 0xFFFFFF, 0x010400));
    pci.revision = static_cast<std::uint8_t>(fields.number("revision", 0, 0xFF, 0));
    pci.description = fields.text("description", "PCI device");
    return pci;
}

/// What the identity of a drive is made of where the definition leaves it out.
struct DriveDefaults {
    std::size_t controller; ///< its number, from 0
    std::size_t index;      ///< of the drive
    const UtilityTraits& utility;
};

void readDriveSizes(Fields& fields, Drive& drive, int reservedMb) {
    drive.sizeMb = fields.number("sizeMB", 1, maxDriveSizeMb);
    const std::int64_t gap = reservedMb * sectorsPerMb;
    const std::int64_t least = drive.sizeMb * sectorsPerMb + gap;
    drive.rawSectors = fields.number("rawSectors", least, 2 * maxDriveSizeMb * sectorsPerMb, least);
    drive.nonCoercedSectors = drive.rawSectors - gap;
}

std::optional<DriveStatus> initialStatusNamed(std::string_view word) {
    const std::optional<DriveStatus> status = statusNamed(word);
    return status == DriveStatus::online || status == DriveStatus::missing ? std::nullopt : status;
}

void readDrivePlace(Fields& fields, Drive& drive, const UtilityTraits& utility) {
    if (utility.addressing == Addressing::channels) {
        readChannelDrive(fields, drive);
        return;
    }
    if (utility.addressing == Addressing::ids) {
        readIdDrive(fields, drive, utility);
        return;
    }
    if (utility.drives.enclosure >= 0) {
        drive.location.enclosure = utility.drives.enclosure;
    }
    if (fields.has("enclosure")) {
        drive.location.enclosure = fields.smallNumber("enclosure", 0, 65535);
    }
    drive.location.slot = fields.smallNumber("slot", 0, 65535);
}

Drive readDrive(Fields& fields, const DriveDefaults& defaults) {
    Drive drive;
    const UtilityTraits& utility = defaults.utility;
    drive.interface = fields.text("interface", std::string(utility.drives.interface), 8);
    drive.medium = fields.word<Medium>("medium", mediumNamed, Medium::disk);
    readDrivePlace(fields, drive, utility);
    readDriveSizes(fields, drive, utility.drives.reservedMb);
    drive.vendor = fields.text("vendor", "NORVIK", 8);
    drive.model = fields.text("model", "NV73455S", 16);
    drive.revision = fields.text("revision", "S527", 4);
    drive.serial = fields.text("serial", "", 20);
    drive.sasAddress =
        fields.bits("sasAddress", ~std::uint64_t{0},
                    0x5000c50000000000U + (defaults.controller << 16) + defaults.index);
    drive.deviceId = fields.smallNumber(fields.has("targetId") ? "targetId" : "deviceId", 0, 65535,
                                        static_cast<int>(defaults.index));
    drive.port = fields.smallNumber("port", 0, 65535, 0);
    drive.mediaErrors = fields.smallNumber("mediaErrors", 0, 1'000'000, 0);
    drive.otherErrors = fields.smallNumber("otherErrors", 0, 1'000'000, 0);
    drive.predictiveFailures = fields.smallNumber("predictiveFailures", 0, 1'000'000, 0);
    drive.temperature = fields.smallNumber("temperature", 0, 200, 29);
    drive.status = fields.word<DriveStatus>("status", initialStatusNamed, DriveStatus::good);
    if (drive.status == DriveStatus::jbod && utility.name != "MEGACLI") {
        fields.complain("status", "only MEGACLI shows drives as they are");
    }
    if (drive.status == DriveStatus::dedicated && utility.name != "MEGACLI" &&
        utility.name != "ARCCONF") {
        fields.complain("status", "only MEGACLI and ARCCONF tell dedicated hot spares");
    }
    return drive;
}

/// What a group of drives has been given beyond the first drive's fields.
struct DriveGroup {
    std::size_t controller; ///< its number, from 0
    int count;
    bool hasSerial;
    bool hasPort;
    int skippedSlot = -1; ///< no drive can have it
    int lastSlot = 100'000;
};

/// Adds the drives of a group: like the first one, in consecutive slots. Their numbers count on;
/// their serial numbers are the given text and a number of three digits.
void addDrives(Controller& controller, const Drive& first, const DriveGroup& group,
               const std::string& path, Problem& problem) {
    int slot = first.location.slot;
    for (int i = 0; i < group.count && !problem.found(); ++i, ++slot) {
        slot += i > 0 && slot == group.skippedSlot ? 1 : 0;
        Drive drive = first;
        drive.location.slot = slot;
        drive.bay.slot += i;
        drive.sasAddress += static_cast<unsigned>(i);
        drive.deviceId += i;
        if (!group.hasPort && controller.identity.generation == Generation::early) {
            drive.port = drive.location.slot;
        }
        if (!group.hasSerial) {
            drive.serial = formatted("ZS%02zu%04zu", group.controller, controller.drives.size());
        } else if (group.count > 1) {
            drive.serial += formatted("%03d", i);
        }
        if (drive.serial.size() > 20) {
            problem.report(path + ".serial: is too long with its number");
        } else if (slot == group.skippedSlot || slot > group.lastSlot) {
            problem.report(path + ".id: no drive can have the id " + std::to_string(slot));
        } else if (controller.driveAt(drive.location) != nullptr) {
            problem.report(path + ".slot: there is already a drive at " + toText(drive.location));
        } else if (controller.drives.size() == maxDrives) {
            problem.report(path + ": a controller takes no more than " + std::to_string(maxDrives) +
                           " drives");
        } else {
            controller.drives.push_back(std::move(drive));
        }
    }
}

void readDrives(Fields& fields, Controller& controller, std::size_t number,
                const UtilityTraits& utility) {
    fields.list("drives", [&](const Json& item, const std::string& path) {
        Fields drive(item, path, fields.problem());
        const Drive first = readDrive(drive, {number, controller.drives.size(), utility});
        const int count = drive.smallNumber("count", 1, 256, 1);
        DriveGroup group{number, count, drive.has("serial"), drive.has("port")};
        if (utility.addressing == Addressing::ids) {
            group.lastSlot = utility.drives.lastId;
            group.skippedSlot =
                utility.drives.takesInitiator ? -1 : controller.identity.block.initiatorId;
        }
        drive.finish();
        addDrives(controller, first, group, path, fields.problem());
    });
}

/// Creates one of the logical drives that the server starts with. Unlike those that are created
/// later its members may be failed or rebuilding. `array` is that of an earlier one, if it is to
/// share it.
void createInitialLogicalDrive(Controller& controller, std::optional<int> array,
                               const NewLogicalDrive& request, const std::string& path,
                               Problem& problem) {
    Controller sound = controller;
    for (Drive& drive : sound.drives) {
        if (drive.status == DriveStatus::failed || drive.status == DriveStatus::rebuild) {
            drive.status = DriveStatus::good;
        }
    }
    if (const std::optional<Refusal> refused =
            array ? addLogicalDrive(sound, static_cast<std::size_t>(*array), request)
                  : createLogicalDrive(sound, request)) {
        problem.report(path + ": " + refused->reason);
        return;
    }
    for (Drive& drive : sound.drives) {
        const DriveStatus before = controller.driveAt(drive.location)->status;
        if (before == DriveStatus::failed || before == DriveStatus::rebuild) {
            drive.status = before;
        }
    }
    controller = std::move(sound);
}

void readLogicalDrives(Fields& fields, Controller& controller) {
    fields.list("virtualDisks", [&](const Json& item, const std::string& path) {
        Fields disk(item, path, fields.problem());
        LogicalDriveFields found = readLogicalDriveFields(disk);
        std::vector<std::vector<DriveLocation>> spans;
        std::optional<int> array; // of an earlier virtual disk
        if (disk.has("array")) {
            array = disk.smallNumber("array", 0, 65535);
        } else if (disk.has("spans")) {
            spans = readSpans(item.at("spans"), path + ".spans", fields.problem());
        } else {
            disk.complain("spans", "is missing");
        }
        disk.finish();
        for (const std::vector<DriveLocation>& span : spans) {
            for (const DriveLocation& location : span) {
                if (controller.placeOf(location)) {
                    disk.complain("spans", "the drive at " + toText(location) +
                                               " belongs to a virtual disk already");
                }
            }
        }
        if (!fields.problem().found()) {
            createInitialLogicalDrive(controller, array,
                                      {found.level, std::move(spans), found.sizeMb, found.stripeKb,
                                       found.writePolicy, found.readPolicy, std::move(found.name),
                                       found.batteryProtected, found.partitioned},
                                      path, fields.problem());
        }
    });
    for (const Drive& drive : controller.drives) {
        if (drive.status == DriveStatus::rebuild && !controller.placeOf(drive.location)) {
            fields.complain("drives", "the drive at " + toText(drive.location) +
                                          " rebuilds but belongs to no virtual disk");
        }
    }
}

/// The drives of a list such as ["8:0", ":1"].
std::vector<DriveLocation> readPlaces(const Json& list, const std::string& path, Problem& problem) {
    std::vector<DriveLocation> places;
    if (!list.is_array()) {
        problem.report(path + ": must be a list");
        return places;
    }
    for (const Json& item : list) {
        const std::optional<DriveLocation> location =
            item.is_string() ? parseLocation(item.get_ref<const std::string&>()) : std::nullopt;
        if (!location) {
            problem.report(path + ": drives are written like \"252:0\" or \":0\"");
            return places;
        }
        places.push_back(*location);
    }
    return places;
}

/// Says of the drives that they carry the foreign configuration.
void markForeign(Fields& fields, Controller& controller, const std::vector<DriveLocation>& places,
                 std::size_t configuration) {
    for (const DriveLocation& location : places) {
        Drive* drive = controller.driveAt(location);
        if (drive == nullptr || drive->status != DriveStatus::foreign) {
            fields.complain("drives", "there is no foreign drive at " + toText(location));
        } else if (drive->foreignConfiguration) {
            fields.complain("drives", "the drive at " + toText(location) +
                                          " carries a foreign configuration already");
        } else {
            drive->foreignConfiguration = configuration;
        }
    }
}

void readForeignConfigurations(Fields& fields, Controller& controller) {
    fields.list("foreignConfigurations", [&](const Json& item, const std::string& path) {
        Fields configuration(item, path, fields.problem());
        ForeignConfiguration found;
        found.level = configuration.word<RaidLevel>("level", levelNamed);
        found.sizeMb = configuration.number("sizeMB", 1, maxLogicalDriveSizeMb, 0);
        found.missing = configuration.smallNumber("missing", 0, 1024, 0);
        found.name = configuration.text("name", "", 32);
        std::vector<DriveLocation> places;
        if (configuration.has("drives")) {
            places = readPlaces(item.at("drives"), path + ".drives", fields.problem());
        }
        if (places.empty()) {
            configuration.complain("drives", "is missing or empty");
        }
        configuration.finish();
        if (!fields.problem().found()) {
            markForeign(configuration, controller, places, controller.foreignConfigurations.size());
            controller.foreignConfigurations.push_back(std::move(found));
        }
    });
}

void readLevels(Fields& fields, ControllerIdentity& identity, const UtilityTraits& utility) {
    if (!fields.has("raidLevels")) {
        identity.levels.assign(utility.levels.begin(), utility.levels.end());
        return;
    }
    fields.list("raidLevels", [&](const Json& item, const std::string& path) {
        const std::optional<RaidLevel> level =
            item.is_string() ? levelNamed(item.get_ref<const std::string&>()) : std::nullopt;
        if (!level || std::find(utility.levels.begin(), utility.levels.end(), *level) ==
                          utility.levels.end()) {
            fields.problem().report(path + ": unknown RAID level");
        } else if (std::find(identity.levels.begin(), identity.levels.end(), *level) ==
                   identity.levels.end()) {
            identity.levels.push_back(*level);
        }
    });
}

void readLimits(Fields& fields, ControllerIdentity& identity, const UtilityTraits& utility) {
    const UtilityLimits& usual = utility.limits;
    identity.minStripeKb = fields.smallNumber("minStripeKB", 1, 65536, usual.minStripeKb);
    identity.maxStripeKb =
        fields.smallNumber("maxStripeKB", identity.minStripeKb, 65536, usual.maxStripeKb);
    identity.maxSpans = fields.smallNumber("maxSpans", 1, 64, 8);
    identity.maxDrivesPerSpan = fields.smallNumber("maxDrivesPerSpan", 1, 256, usual.drivesPerSpan);
    identity.maxLogicalDrives = fields.smallNumber("maxVirtualDisks", 1, 256, usual.logicalDrives);
    identity.maxHotSpares = fields.smallNumber("maxHotSpares", 0, 1024, usual.hotSpares);
    identity.defaultStripeKb = fields.smallNumber("defaultStripeKB", 1, 65536, utility.stripeKb);
    identity.defaultWritePolicy =
        fields.word<WritePolicy>("defaultWritePolicy", writePolicyNamed, utility.writePolicy);
    identity.defaultReadPolicy =
        fields.word<ReadPolicy>("defaultReadPolicy", readPolicyNamed, utility.readPolicy);
}

Controller readController(Fields& fields, std::size_t number) {
    Controller controller;
    ControllerIdentity& identity = controller.identity;
    identity.utility = fields.word<std::string>("utility", knownUtility);
    const UtilityTraits* utility = utilityNamed(identity.utility);
    if (utility == nullptr) {
        return controller; // the problem has been reported
    }
    identity.generation = fields.word<Generation>("generation", generationNamed, Generation::early);
    if (identity.generation == Generation::newest && identity.utility != "ARCCONF") {
        fields.complain("generation", "only ARCCONF has the newest");
    }
    identity.model = fields.text("model");
    identity.productName = fields.text("productName", identity.model);
    identity.serialNumber = fields.text("serialNumber", formatted("%010zu", number + 1));
    identity.firmwarePackage = fields.text("firmwarePackage", "6.0.1-0080");
    identity.firmware = fields.text("firmware", "1.11.50-0300");
    identity.bios = fields.text("bios", "NV10-1");
    identity.webBios = fields.text("webBios", "1.1-32-e_11-Rel");
    identity.bootBlock = fields.text("bootBlock", "1.00.00.01-0008");
    identity.manufactured = fields.text("manufactured", "06/08/07");
    identity.coercionMode = fields.text("coercionMode", "128MB");
    identity.rebuildRate = fields.smallNumber("rebuildRate", 0, 100, 30);
    fields.object("pci", true, [&](Fields& pci) { identity.pci = readPci(pci); });
    readLevels(fields, identity, *utility);
    readLimits(fields, identity, *utility);
    if (utility->addressing == Addressing::channels) {
        identity.conf = readConfIdentity(fields);
        identity.defaultBatteryProtected = fields.flag("defaultBatteryProtected", false);
    }
    if (fields.has("showsMirrorStripe") &&
        (utility->addressing == Addressing::channels || identity.utility == "QTCSEND")) {
        identity.showsMirrorStripe = fields.flag("showsMirrorStripe", true);
    }
    if (utility->showsBlocks) {
        identity.block = readBlockIdentity(fields, *utility, identity.pci);
    }
    readDrives(fields, controller, number, *utility);
    if (utility->showsBlocks && utility->addressing == Addressing::enclosures) {
        completeEnclosures(controller, number, fields.problem());
    }
    if (identity.utility == "MEGACLI") {
        readForeignConfigurations(fields, controller);
    }
    readLogicalDrives(fields, controller);
    return controller;
}

/// What a fault does to an answer of STORCLI: a word, and what it is about.
Effect readEffect(Fields& fields) {
    Effect effect;
    effect.kind = fields.word<EffectKind>("effect", effectNamed);
    if (fields.has("drive")) {
        effect.drive = parseLocation(fields.text("drive"));
        if (!effect.drive) {
            fields.complain("drive", "is written like \"252:0\" or \":0\"");
        }
    }
    if (effect.kind == EffectKind::missingSection) {
        effect.section = fields.text("section");
    }
    if (effect.kind == EffectKind::refused) {
        effect.errorCode = fields.smallNumber("errorCode", 1, 255, 255);
    }
    return effect;
}

Fault readFault(Fields& fields) {
    Fault fault;
    if (fields.has("effect")) {
        fault.effect = readEffect(fields);
    }
    fault.match = fields.text("match", std::nullopt, 255);
    fault.occurrence = fields.smallNumber("occurrence", 0, 1'000'000, 0);
    if (fields.has("exitCode")) {
        fault.exitCode = fields.smallNumber("exitCode", 0, 255);
    }
    fault.delayMs = fields.number("delayMs", 0, 3'600'000, 0);
    fault.output = fields.anyText("output", "");
    fault.outputBytes = fields.number("outputBytes", 0, 1'000'000'000, 0);
    return fault;
}

void readPciDevices(Fields& fields, Server& server) {
    fields.list("otherDevices", [&](const Json& item, const std::string& path) {
        Fields device(item, path, fields.problem());
        server.otherDevices.push_back(readPci(device));
        device.finish();
    });
}

/// Two functions at one place would share one folder of the PCI tree.
void checkPciPlaces(const Server& server, Problem& problem) {
    std::vector<PciFunction> all = server.otherDevices;
    for (const Controller& controller : server.controllers) {
        all.push_back(controller.identity.pci);
    }
    for (const storcli::Controller& controller : server.storcliControllers) {
        all.push_back(controller.pci);
    }
    std::sort(all.begin(), all.end(), standsBefore);
    for (std::size_t i = 1; i < all.size(); ++i) {
        if (!standsBefore(all[i - 1], all[i])) {
            problem.report(formatted("pci: two devices at bus %d, device %d, function %d",
                                     all[i].bus, all[i].device, all[i].function));
        }
    }
}

/// Whether a controller's definition is one of today's machine.
bool isOfToday(const Json& item) {
    const auto utility = item.is_object() ? item.find("utility") : item.end();
    return utility != item.end() && utility->is_string() &&
           equalsIgnoringCase(utility->get_ref<const std::string&>(), storcli::utilityWord);
}

void readServer(Fields& fields, Server& server) {
    server.machineType = fields.text("machineType");
    server.serialNumber = fields.text("serialNumber");
    fields.object("hardwareDetector", false, [&](Fields& detector) {
        server.detectorExitCode = detector.smallNumber("exitCode", 0, 255, 0);
    });
    fields.object("fakeraid", false, [&](Fields& fakeraid) {
        server.fakeraidExitCode = fakeraid.smallNumber("exitCode", 0, 255, 0);
    });
    fields.list("controllers", [&](const Json& item, const std::string& path) {
        Fields controller(item, path, fields.problem());
        const std::size_t number = server.controllers.size() + server.storcliControllers.size();
        if (number == maxControllers) {
            controller.problem().report(path + ": too many controllers");
            return;
        }
        if (isOfToday(item)) {
            static_cast<void>(controller.has("utility"));
            server.storcliControllers.push_back(storcli::readController(controller, number));
        } else {
            server.controllers.push_back(readController(controller, server.controllers.size()));
        }
        controller.finish();
    });
    readPciDevices(fields, server);
    fields.list("faults", [&](const Json& item, const std::string& path) {
        Fields fault(item, path, fields.problem());
        server.faults.push_back(readFault(fault));
        fault.finish();
    });
    fields.finish();
}

} // namespace

LogicalDriveFields readLogicalDriveFields(Fields& fields) {
    LogicalDriveFields found;
    found.level = fields.word<RaidLevel>("level", levelNamed);
    if (fields.has("sizeMB")) {
        found.sizeMb = fields.number("sizeMB", 1, maxLogicalDriveSizeMb);
    }
    if (fields.has("stripeKB")) {
        found.stripeKb = fields.smallNumber("stripeKB", 1, 65536);
    }
    if (fields.has("writePolicy")) {
        found.writePolicy = fields.word<WritePolicy>("writePolicy", writePolicyNamed);
    }
    if (fields.has("readPolicy")) {
        found.readPolicy = fields.word<ReadPolicy>("readPolicy", readPolicyNamed);
    }
    found.name = fields.text("name", "", 32);
    if (fields.has("batteryProtected")) {
        found.batteryProtected = fields.flag("batteryProtected", false);
    }
    found.partitioned = fields.flag("partitioned", false);
    return found;
}

std::vector<std::vector<DriveLocation>> readSpans(const Json& list, const std::string& path,
                                                  Problem& problem) {
    std::vector<std::vector<DriveLocation>> spans;
    if (!list.is_array()) {
        problem.report(path + ": must be a list of lists");
        return spans;
    }
    for (const Json& span : list) {
        const std::string spanPath = path + "[" + std::to_string(spans.size()) + "]";
        spans.push_back(readPlaces(span, spanPath, problem));
        if (problem.found()) {
            return spans;
        }
    }
    return spans;
}

Server readDefinition(std::string_view text, Problem& problem) {
    Server server;
    const Json json = parseJson(text, problem);
    if (!problem.found()) {
        Fields fields(json, "", problem);
        readServer(fields, server);
    }
    if (!problem.found()) {
        checkPciPlaces(server, problem);
    }
    return server;
}

} // namespace zolex_sim
