#include "companion/families/Family.h"
#include "companion/json/MachinePieces.h"
#include "companion/json/PlanPieces.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace zolex::companion {

namespace {

using enum DriveState;
constexpr std::array driveStates{unknown, free,    member,  hotspare, rebuilding,
                                 failed,  missing, foreign, jbod};
constexpr std::array hotspareKinds{HotspareKind::none, HotspareKind::global,
                                   HotspareKind::dedicated};
constexpr std::array healths{Health::unknown, Health::ok, Health::warning, Health::critical};
constexpr std::array strengths{Strength::positions, Strength::machine, Strength::drives,
                               Strength::serials};
constexpr std::array severities{Severity::note, Severity::warning, Severity::error};
constexpr std::array refusers{RefusedBy::nobody, RefusedBy::zolex, RefusedBy::plan,
                              RefusedBy::utility};

TextPlace readPlace(const Part& range, std::string_view name) {
    if (range.isNull(name)) {
        return {};
    }
    const Part part = range.object(name);
    TextPlace place;
    place.line = part.number<std::int32_t>("line", 1, mostNumber);
    place.column = part.number<std::int32_t>("column", 1, mostNumber);
    place.byte = part.number("byte");
    return place;
}

void readRange(const Part& part, std::string& file, TextPlace& start, TextPlace& end) {
    if (part.isNull("range")) {
        return;
    }
    const Part range = part.object("range");
    file = range.text("filename");
    start = readPlace(range, "start");
    end = readPlace(range, "end");
    if ((start.line == 0) != (end.line == 0)) {
        range.fail("has a start or an end alone");
    }
    if (file.empty() && start.line == 0) {
        range.fail("filename", "is empty");
    }
}

Finding readDiagnostic(const Part& part) {
    Finding finding;
    finding.code = part.word("code");
    finding.severity = part.oneOf<Severity>("severity", severities, severityWord);
    finding.refusedBy = part.oneOf<RefusedBy>("refused_by", refusers, refusedByWord);
    finding.summary = part.text("summary");
    finding.detail = part.textOrNull("detail");
    finding.help = part.texts("help", mostPlanLines);
    readRange(part, finding.file, finding.start, finding.end);
    if (part.has("related")) {
        const Part related = part.object("related");
        finding.other = related.text("summary");
        std::string file;
        readRange(related, file, finding.otherStart, finding.otherEnd);
        if (file != finding.file || finding.otherStart.line == 0) {
            related.fail("is no place in the same file");
        }
    }
    if (finding.code.empty() || finding.summary.empty()) {
        part.fail(finding.code.empty() ? "code" : "summary", "is empty");
    }
    return finding;
}

/// "1:3"
std::optional<DrivePosition> readPosition(const Part& part) {
    constexpr std::string_view name = "policy_position";
    if (part.isNull(name)) {
        return std::nullopt;
    }
    const std::string text = part.word(name);
    DrivePosition position;
    const char* const end = text.data() + text.size();
    auto read = std::from_chars(text.data(), end, position.channel);
    if (read.ec == std::errc() && read.ptr != end && *read.ptr == ':') {
        read = std::from_chars(read.ptr + 1, end, position.id);
        if (read.ec == std::errc() && read.ptr == end && position.channel >= 0 &&
            position.id >= 0 &&
            text == std::to_string(position.channel) + ":" + std::to_string(position.id)) {
            return position;
        }
    }
    part.fail(name, "is no channel and id such as \"1:3\"");
}

void readSupported(const Part& part, Facts& facts) {
    const Part supported = part.object("supported");
    if (!supported.isNull("raid_types")) {
        facts.raidTypes = supported.words("raid_types", mostPlanLines);
        if (facts.raidTypes.empty()) {
            supported.fail("raid_types", "is empty");
        }
    }
    constexpr const char* name = "strip_size_bytes";
    if (!supported.isNull(name)) {
        const std::vector<std::int32_t> sizes = supported.numbers(name, 2, 0, mostNumber);
        if (sizes.size() != 2) {
            supported.fail(name, "is not the smallest and the largest size");
        }
        facts.minStripSizeBytes = static_cast<std::uint64_t>(sizes[0]);
        facts.maxStripSizeBytes = static_cast<std::uint64_t>(sizes[1]);
    }
}

LayoutVolume readLayoutVolume(const Part& part) {
    LayoutVolume volume;
    volume.id = part.word("id");
    volume.raidType = part.wordOrNull("raid_type");
    volume.capacityBytes = part.numberOrNull<std::uint64_t>("capacity_bytes");
    volume.toleranceBytes = part.number<std::uint64_t>("capacity_tolerance_bytes");
    volume.fills = part.truth("fills");
    volume.stripSizeBytes = part.numberOrNull<std::uint64_t>("strip_size_bytes");
    volume.writeCache = part.wordOrNull("write_cache_policy");
    volume.readCache = part.wordOrNull("read_cache_policy");
    const Part status = part.object("status");
    volume.health = status.oneOf<Health>("health", healths, healthWord);
    volume.reportedState = part.textOrNull("reported_state");
    volume.name = textIfTold(part, "name");
    volume.device = textIfTold(part, "device");
    volume.uniqueId = textIfTold(part, "unique_id");
    return volume;
}

LayoutSpare readSpare(const Part& part) {
    LayoutSpare spare;
    spare.location = part.word("location");
    spare.isDedicated = part.oneOf<HotspareKind>("hotspare_type", hotspareKinds, hotspareWord) ==
                        HotspareKind::dedicated;
    spare.covers = part.words("covers", mostPlanDrives);
    spare.isListed = part.truth("listed");
    return spare;
}

} // namespace

std::string textIfTold(const Part& part, std::string_view name) {
    return part.has(name) ? part.text(name) : std::string();
}

Fingerprint readFingerprint(const Part& part) {
    const Part object = part.object("fingerprint");
    if (object.word("algorithm") != Fingerprint::algorithm) {
        object.fail("algorithm",
                    "is unknown: this program knows " + std::string(Fingerprint::algorithm));
    }
    Fingerprint fingerprint;
    fingerprint.strength = object.oneOf<Strength>("strength", strengths, strengthWord);
    const Part identity = object.object("identity");
    fingerprint.identity = identity.hash("sha256");
    fingerprint.machineType = identity.textOrNull("machine_type");
    fingerprint.serialNumber = identity.textOrNull("serial_number");
    for (const Part& each : identity.objects("controllers", mostPlanControllers)) {
        Fingerprint::Controller controller;
        controller.number = each.number<std::int32_t>("number", 1, mostNumber);
        controller.pci = each.textOrNull("pci");
        controller.ids = each.textOrNull("ids");
        controller.model = each.textOrNull("model");
        controller.serialNumber = each.textOrNull("serial_number");
        fingerprint.controllers.push_back(std::move(controller));
    }
    const Part state = object.object("state");
    fingerprint.state = state.hash("sha256");
    return fingerprint;
}

std::vector<Finding> readDiagnostics(const Part& part, std::string_view name) {
    std::vector<Finding> findings;
    for (const Part& each : part.objects(name, mostPlanLines)) {
        if (!each.has(repeatedFrom)) {
            findings.push_back(readDiagnostic(each));
        }
    }
    return findings;
}

MachineDrive readDrive(const Part& part) {
    MachineDrive drive;
    DriveFacts& facts = drive.facts;
    const auto small = [&](const char* name) {
        return part.numberOrNull<std::int32_t>(name, 0, mostNumber);
    };
    facts.location = part.word("location");
    facts.enclosure = small("enclosure");
    facts.slot = small("slot");
    facts.channel = small("channel");
    facts.id = small("id");
    drive.policyNumber = part.numberOrNull<std::int32_t>("policy_number", 1, mostNumber);
    drive.policyPosition = readPosition(part);
    drive.array = part.wordOrNull("array");
    facts.serialNumber = part.textOrNull("serial_number");
    facts.manufacturer = part.textOrNull("manufacturer");
    facts.model = part.textOrNull("model");
    facts.revision = part.textOrNull("revision");
    facts.protocol = part.wordOrNull("protocol");
    facts.mediaType = part.wordOrNull("media_type");
    facts.capacityBytes = part.numberOrNull<std::uint64_t>("capacity_bytes");
    facts.capacityTolerance = part.number<std::uint64_t>("capacity_tolerance_bytes");
    if (part.has("raw_capacity_bytes")) {
        facts.rawCapacityBytes = part.number<std::uint64_t>("raw_capacity_bytes");
    }
    const Part status = part.object("status");
    facts.health = status.oneOf<Health>("health", healths, healthWord);
    facts.state = part.oneOf<DriveState>("drive_state", driveStates, driveStateWord);
    facts.reportedState = part.textOrNull("reported_state");
    facts.barred = part.has("unusable_reason") ? part.text("unusable_reason") : std::string();
    facts.mediaErrorCount = part.numberOrNull<std::uint64_t>("media_error_count");
    facts.otherErrorCount = part.numberOrNull<std::uint64_t>("other_error_count");
    facts.predictedFailureCount = part.numberOrNull<std::uint64_t>("predicted_failure_count");
    facts.temperatureCelsius =
        part.numberOrNull<std::int32_t>("temperature_celsius", -mostNumber, mostNumber);
    facts.hotspare = part.oneOf<HotspareKind>("hotspare_type", hotspareKinds, hotspareWord);
    facts.isForeign = part.truth("foreign");
    return drive;
}

ControllerSnapshot readPlanController(const Part& part) {
    ControllerSnapshot controller;
    Facts& facts = controller.facts;
    controller.number = part.number<std::int32_t>("number", 1, mostNumber);
    controller.failed = !part.truth("captured");
    controller.model = part.wordOrNull("model");
    controller.utility = part.word("utility");
    controller.index = findFamily(controller.utility) == nullptr
                           ? static_cast<std::size_t>(controller.number) - 1
                           : ControllerSnapshot::noRecord;
    controller.adapter = part.number<std::int32_t>("adapter", 0, mostNumber);
    controller.pci = part.wordOrNull("pci");
    controller.pciIds = part.wordOrNull("pci_ids");
    facts.productName = part.textOrNull("product_name");
    facts.serialNumber = part.textOrNull("serial_number");
    facts.firmwareVersion = part.textOrNull("firmware_version");
    readSupported(part, facts);
    for (const Part& each : part.objects("drives", mostPlanDrives)) {
        controller.drives.push_back(readDrive(each));
        facts.drives.push_back(controller.drives.back().facts);
    }
    return controller;
}

Layout readLayout(const Part& part) {
    Layout layout;
    for (const Part& each : part.objects("arrays", mostPlanDrives)) {
        LayoutGroup group;
        group.id = each.word("id");
        group.spans = each.wordLists("spans", mostPlanDrives);
        group.isListed = each.truth("listed");
        if (each.words("drives", mostPlanDrives) != group.drives()) {
            each.fail("drives", "are not those of the spans");
        }
        layout.groups.push_back(std::move(group));
    }
    for (const Part& each : part.objects("logical_drives", mostPlanDrives)) {
        const std::string array = each.word("array");
        const auto group =
            std::find_if(layout.groups.begin(), layout.groups.end(),
                         [&](const LayoutGroup& candidate) { return candidate.id == array; });
        if (group == layout.groups.end()) {
            each.fail("array", "\"" + array + "\" is none of the arrays");
        }
        group->volumes.push_back(readLayoutVolume(each));
    }
    for (const Part& each : part.objects("hotspares", mostPlanDrives)) {
        layout.spares.push_back(readSpare(each));
    }
    layout.foreignDrives = part.words("foreign_drives", mostPlanDrives);
    return layout;
}

Comparison readComparison(const Part& part) {
    constexpr std::array samenesses{Sameness::same, Sameness::equivalent, Sameness::different};
    Comparison comparison;
    comparison.result = part.oneOf<Sameness>("result", samenesses, samenessWord);
    for (const Part& each : part.objects("differences", mostPlanLines)) {
        comparison.differences.push_back({each.word("attribute"), each.wordOrNull("location"),
                                          each.wordOrNull("logical_drive"),
                                          each.textOrNull("wanted"), each.textOrNull("found")});
    }
    comparison.equivalences = part.texts("equivalences", mostPlanLines);
    comparison.notComparable = part.words("not_compared", mostPlanLines);
    comparison.health = part.texts("health", mostPlanLines);
    return comparison;
}

void addStandingLayout(const Layout& before, ControllerSnapshot& controller) {
    Facts& facts = controller.facts;
    for (const LayoutGroup& group : before.groups) {
        MachineArray array;
        array.id = group.id;
        array.drives = group.drives();
        for (const LayoutVolume& volume : group.volumes) {
            LogicalDriveFacts logicalDrive;
            logicalDrive.id = volume.id;
            logicalDrive.array = group.id;
            logicalDrive.raidType = volume.raidType;
            logicalDrive.reportedLevel = volume.raidType;
            logicalDrive.spans = group.spans;
            logicalDrive.capacityBytes = volume.capacityBytes;
            logicalDrive.capacityTolerance = volume.toleranceBytes;
            logicalDrive.stripSizeBytes = volume.stripSizeBytes;
            logicalDrive.writeCache = volume.writeCache;
            logicalDrive.readCache = volume.readCache;
            logicalDrive.reportedState = volume.reportedState;
            logicalDrive.health = volume.health;
            logicalDrive.name = volume.name;
            logicalDrive.device = volume.device;
            logicalDrive.uniqueId = volume.uniqueId;
            array.logicalDrives.push_back(facts.logicalDrives.size());
            facts.logicalDrives.push_back(std::move(logicalDrive));
        }
        const DriveFacts* const first =
            array.drives.empty() ? nullptr : facts.drive(array.drives.front());
        if (first != nullptr) {
            array.letter =
                controller.drives[static_cast<std::size_t>(first - facts.drives.data())].array;
        }
        controller.arrays.push_back(std::move(array));
    }
}

} // namespace zolex::companion
