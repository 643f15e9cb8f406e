#include "companion/json/MachineDocument.h"

#include "companion/json/Pieces.h"
#include "companion/machine/Fingerprint.h"

#include <utility>

namespace zolex::companion {

namespace {

/// What a drive is there for, in the words of the field.
std::string_view driveStatus(DriveState state) {
    switch (state) {
    case DriveState::hotspare:
        return "StandbySpare";
    case DriveState::failed:
        return "Disabled";
    case DriveState::missing:
        return "Absent";
    case DriveState::unknown:
        return {};
    case DriveState::free:
    case DriveState::member:
    case DriveState::rebuilding:
    case DriveState::foreign:
    case DriveState::jbod:
        return "Enabled";
    }
    return {};
}

std::string_view stateWord(DriveState state) {
    switch (state) {
    case DriveState::unknown:
        return "unknown";
    case DriveState::free:
        return "free";
    case DriveState::member:
        return "member";
    case DriveState::hotspare:
        return "hotspare";
    case DriveState::rebuilding:
        return "rebuilding";
    case DriveState::failed:
        return "failed";
    case DriveState::missing:
        return "missing";
    case DriveState::foreign:
        return "foreign";
    case DriveState::jbod:
        return "jbod";
    }
    return {};
}

std::string_view hotspareType(HotspareKind kind) {
    switch (kind) {
    case HotspareKind::none:
        return "None";
    case HotspareKind::global:
        return "Global";
    case HotspareKind::dedicated:
        return "Dedicated";
    }
    return {};
}

Json statusOf(Health health, std::string_view state) {
    return ObjectMaker(2)("health", healthOf(health))("state", orNull(state)).make();
}

Json driveOf(const MachineDrive& drive) {
    const DriveFacts& facts = drive.facts;
    Json position;
    if (drive.policyPosition) {
        position = std::to_string(drive.policyPosition->channel) + ":" +
                   std::to_string(drive.policyPosition->id);
    }
    ObjectMaker object(25);
    object("location", facts.location);
    object("enclosure", orNull(facts.enclosure));
    object("slot", orNull(facts.slot));
    object("channel", orNull(facts.channel));
    object("id", orNull(facts.id));
    object("policy_number", orNull(drive.policyNumber));
    object("policy_position", std::move(position));
    object("array", orNull(drive.array));
    object("serial_number", orNull(facts.serialNumber));
    object("manufacturer", orNull(facts.manufacturer));
    object("model", orNull(facts.model));
    object("revision", orNull(facts.revision));
    object("protocol", orNull(facts.protocol));
    object("media_type", orNull(facts.mediaType));
    object("capacity_bytes", orNull(facts.capacityBytes));
    object("capacity_tolerance_bytes", facts.capacityTolerance);
    object("status", statusOf(facts.health, driveStatus(facts.state)));
    object("drive_state", stateWord(facts.state));
    object("reported_state", orNull(facts.reportedState));
    object("media_error_count", orNull(facts.mediaErrorCount));
    object("other_error_count", orNull(facts.otherErrorCount));
    object("predicted_failure_count", orNull(facts.predictedFailureCount));
    object("temperature_celsius", orNull(facts.temperatureCelsius));
    object("hotspare_type", hotspareType(facts.hotspare));
    object("foreign", facts.isForeign);
    return object.make();
}

Json logicalDriveOf(const LogicalDriveFacts& logicalDrive) {
    const bool isVolume = logicalDrive.raidType == "None";
    const bool isLost = logicalDrive.health == Health::critical;
    ObjectMaker object(14);
    object("id", logicalDrive.id);
    object("name", orNull(logicalDrive.name));
    object("array", orNull(logicalDrive.array));
    object("raid_type", orNull(logicalDrive.raidType));
    object("policy_level", isVolume ? Json("VOLUME") : Json(nullptr));
    object("reported_level", orNull(logicalDrive.reportedLevel));
    object("spans", logicalDrive.spans);
    object("capacity_bytes", orNull(logicalDrive.capacityBytes));
    object("capacity_tolerance_bytes", logicalDrive.capacityTolerance);
    object("strip_size_bytes", orNull(logicalDrive.stripSizeBytes));
    object("write_cache_policy", orNull(logicalDrive.writeCache));
    object("read_cache_policy", orNull(logicalDrive.readCache));
    object("status", statusOf(logicalDrive.health, isLost ? "Disabled" : "Enabled"));
    object("reported_state", orNull(logicalDrive.reportedState));
    return object.make();
}

Json layoutOf(const ControllerSnapshot& controller) {
    Json arrays = Json::array();
    for (const MachineArray& array : controller.arrays) {
        Json logicalDrives = Json::array();
        for (const std::size_t index : array.logicalDrives) {
            logicalDrives.push_back(controller.facts.logicalDrives.at(index).id);
        }
        arrays.push_back({{"id", orNull(array.id)},
                          {"letter", array.letter},
                          {"drives", array.drives},
                          {"logical_drives", logicalDrives}});
    }
    Json logicalDrives = Json::array();
    for (const LogicalDriveFacts& logicalDrive : controller.facts.logicalDrives) {
        logicalDrives.push_back(logicalDriveOf(logicalDrive));
    }
    Json hotspares = Json::array();
    for (const MachineDrive& drive : controller.drives) {
        if (drive.facts.hotspare != HotspareKind::none) {
            hotspares.push_back({{"location", drive.facts.location},
                                 {"hotspare_type", hotspareType(drive.facts.hotspare)}});
        }
    }
    return ObjectMaker(5)("arrays", std::move(arrays))("logical_drives", std::move(logicalDrives))(
               "hotspares", std::move(hotspares))("foreign_configurations",
                                                  controller.facts.foreignConfigurations)(
               "layout_sha256", layoutHash(controller.facts))
        .make();
}

Json commandsOf(const ControllerSnapshot& controller) {
    Json commands = Json::array();
    for (std::size_t i = 0; i < controller.commands.size(); ++i) {
        const CapturedListing& listing = controller.commands[i];
        const bool ended = listing.outcome == ChildOutcome::ended;
        Json command{{"command", listing.command},
                     {"outcome", outcomeWord(listing.outcome)},
                     {"exit_code", ended ? Json(listing.exitCode) : Json(nullptr)},
                     {"duration_ms", listing.duration.count()}};
        if (i < controller.facts.listings.size()) {
            const ListingReading& reading = controller.facts.listings[i];
            command["reading"] = {{"blocks", reading.blocks},
                                  {"blocks_read", reading.blocksRead},
                                  {"keys", reading.keys},
                                  {"keys_used", reading.keysUsed}};
        } else {
            command["reading"] = nullptr;
        }
        commands.push_back(std::move(command));
    }
    return commands;
}

Json controllerOf(const ControllerSnapshot& controller) {
    const Facts& facts = controller.facts;
    Json document{{"number", controller.number},
                  {"captured", !controller.failed},
                  {"model", orNull(controller.model)},
                  {"utility", controller.utility},
                  {"adapter", controller.adapter},
                  {"pci", orNull(controller.pci)},
                  {"pci_ids", orNull(controller.pciIds)},
                  {"product_name", orNull(facts.productName)},
                  {"serial_number", orNull(facts.serialNumber)},
                  {"firmware_version", orNull(facts.firmwareVersion)},
                  {"bios_version", orNull(facts.biosVersion)},
                  {"driver_version", orNull(facts.driverVersion)},
                  {"reported_state", orNull(facts.reportedState)}};
    Json strips;
    if (facts.minStripSizeBytes && facts.maxStripSizeBytes) {
        strips = {*facts.minStripSizeBytes, *facts.maxStripSizeBytes};
    }
    document["supported"] = {
        {"raid_types", facts.raidTypes.empty() ? Json(nullptr) : Json(facts.raidTypes)},
        {"strip_size_bytes", strips}};
    document["rebuild_rate_percent"] = orNull(facts.rebuildRatePercent);
    document["reported_rebuild_rate"] = orNull(facts.rebuildRate);
    Json drives = Json::array();
    for (const MachineDrive& drive : controller.drives) {
        drives.push_back(driveOf(drive));
    }
    document["drives"] = std::move(drives);
    document["layout"] = controller.failed ? Json(nullptr) : layoutOf(controller);
    document["commands"] = commandsOf(controller);
    document["diagnostics"] = diagnosticsOf(controller.findings);
    return document;
}

Json fingerprintDocument(const Snapshot& snapshot) {
    const Fingerprint fingerprint = fingerprintOf(snapshot);
    Json controllers = Json::array();
    for (const Fingerprint::Controller& controller : fingerprint.controllers) {
        controllers.push_back({{"number", controller.number},
                               {"pci", orNull(controller.pci)},
                               {"ids", orNull(controller.ids)},
                               {"model", orNull(controller.model)},
                               {"serial_number", orNull(controller.serialNumber)}});
    }
    return {{"algorithm", Fingerprint::algorithm},
            {"strength", strengthWord(fingerprint.strength)},
            {"identity",
             {{"sha256", fingerprint.identity},
              {"machine_type", orNull(fingerprint.machineType)},
              {"serial_number", orNull(fingerprint.serialNumber)},
              {"controllers", controllers}}},
            {"state", {{"sha256", fingerprint.state}}}};
}

} // namespace

std::string machineDocument(const Snapshot& snapshot, const DocumentHead& head) {
    Json document = documentOf("zolex-machine", head);
    document["fingerprint"] = snapshot.isComplete() ? fingerprintDocument(snapshot) : Json(nullptr);
    document["machine_type"] = orNull(snapshot.machine.machineType.view());
    document["serial_number"] = orNull(snapshot.machine.serialNumber.view());
    document["machine_source"] = orNull(snapshot.machineSource);
    document["controllers"] = Json::array();
    document["core_messages"] = snapshot.coreMessages;
    document["diagnostics"] = diagnosticsOf(snapshot.findings);
    return textOf(document, "controllers", snapshot.details.size(),
                  [&](std::size_t i) { return controllerOf(snapshot.details[i]); });
}

std::string failedMachineDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    Json document = documentOf("zolex-machine", head);
    document["fingerprint"] = nullptr;
    document["machine_type"] = nullptr;
    document["serial_number"] = nullptr;
    document["machine_source"] = nullptr;
    document["controllers"] = Json::array();
    document["core_messages"] = Json::array();
    document["diagnostics"] = diagnosticsOf(findings);
    return textOf(document);
}

} // namespace zolex::companion
