#include "companion/json/MachineDocument.h"

#include "companion/json/Pieces.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/NormalForm.h"

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
    return {{"health", healthOf(health)}, {"state", orNull(state)}};
}

Json driveOf(const MachineDrive& drive) {
    const DriveFacts& facts = drive.facts;
    Json position;
    if (drive.policyPosition) {
        position = std::to_string(drive.policyPosition->channel) + ":" +
                   std::to_string(drive.policyPosition->id);
    }
    return {{"location", facts.location},
            {"enclosure", orNull(facts.enclosure)},
            {"slot", orNull(facts.slot)},
            {"channel", orNull(facts.channel)},
            {"id", orNull(facts.id)},
            {"policy_number", orNull(drive.policyNumber)},
            {"policy_position", position},
            {"array", orNull(drive.array)},
            {"serial_number", orNull(facts.serialNumber)},
            {"manufacturer", orNull(facts.manufacturer)},
            {"model", orNull(facts.model)},
            {"revision", orNull(facts.revision)},
            {"protocol", orNull(facts.protocol)},
            {"media_type", orNull(facts.mediaType)},
            {"capacity_bytes", orNull(facts.capacityBytes)},
            {"capacity_tolerance_bytes", facts.capacityTolerance},
            {"status", statusOf(facts.health, driveStatus(facts.state))},
            {"drive_state", stateWord(facts.state)},
            {"reported_state", orNull(facts.reportedState)},
            {"media_error_count", orNull(facts.mediaErrorCount)},
            {"other_error_count", orNull(facts.otherErrorCount)},
            {"predicted_failure_count", orNull(facts.predictedFailureCount)},
            {"temperature_celsius", orNull(facts.temperatureCelsius)},
            {"hotspare_type", hotspareType(facts.hotspare)},
            {"foreign", facts.isForeign}};
}

Json logicalDriveOf(const LogicalDriveFacts& logicalDrive) {
    const bool isVolume = logicalDrive.raidType == "None";
    return {{"id", logicalDrive.id},
            {"name", orNull(logicalDrive.name)},
            {"array", orNull(logicalDrive.array)},
            {"raid_type", orNull(logicalDrive.raidType)},
            {"policy_level", isVolume ? Json("VOLUME") : Json(nullptr)},
            {"reported_level", orNull(logicalDrive.reportedLevel)},
            {"spans", logicalDrive.spans},
            {"capacity_bytes", orNull(logicalDrive.capacityBytes)},
            {"capacity_tolerance_bytes", logicalDrive.capacityTolerance},
            {"strip_size_bytes", orNull(logicalDrive.stripSizeBytes)},
            {"write_cache_policy", orNull(logicalDrive.writeCache)},
            {"read_cache_policy", orNull(logicalDrive.readCache)},
            {"status", statusOf(logicalDrive.health,
                                logicalDrive.health == Health::critical ? "Disabled" : "Enabled")},
            {"reported_state", orNull(logicalDrive.reportedState)}};
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
    return {{"arrays", arrays},
            {"logical_drives", logicalDrives},
            {"hotspares", hotspares},
            {"foreign_configurations", controller.facts.foreignConfigurations},
            {"layout_sha256", layoutHash(controller.facts)}};
}

std::string_view outcomeWord(ChildOutcome outcome) {
    switch (outcome) {
    case ChildOutcome::noPipe:
        return "no-pipe";
    case ChildOutcome::notStarted:
        return "not-started";
    case ChildOutcome::stillRunning:
        return "still-running";
    case ChildOutcome::ended:
        return "ended";
    case ChildOutcome::notClosed:
        return "not-closed";
    }
    return {};
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
        commands.push_back(command);
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
    Json controllers = Json::array();
    for (const ControllerSnapshot& controller : snapshot.details) {
        controllers.push_back(controllerOf(controller));
    }
    document["controllers"] = std::move(controllers);
    document["core_messages"] = snapshot.coreMessages;
    document["diagnostics"] = diagnosticsOf(snapshot.findings);
    return textOf(document);
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
