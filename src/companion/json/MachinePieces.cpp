#include "companion/json/MachinePieces.h"

#include <string>

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

} // namespace

std::string_view driveStateWord(DriveState state) {
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

std::string_view hotspareWord(HotspareKind kind) {
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

std::string_view healthWord(Health health) {
    switch (health) {
    case Health::unknown:
        return {};
    case Health::ok:
        return "OK";
    case Health::warning:
        return "Warning";
    case Health::critical:
        return "Critical";
    }
    return {};
}

void writeIfTold(DocumentText& out, std::string_view name, std::string_view text) {
    if (!text.empty()) {
        out.text(name, text);
    }
}

void writeStatus(DocumentText& out, Health health, std::string_view state) {
    out.object("status");
    out.textOrNull("health", healthWord(health));
    out.textOrNull("state", state);
    out.end();
}

void writeDrive(DocumentText& out, const MachineDrive& drive) {
    const DriveFacts& facts = drive.facts;
    std::string position;
    if (drive.policyPosition) {
        position = std::to_string(drive.policyPosition->channel) + ":" +
                   std::to_string(drive.policyPosition->id);
    }
    out.object();
    out.text("location", facts.location);
    out.numberOrNull("enclosure", facts.enclosure);
    out.numberOrNull("slot", facts.slot);
    out.numberOrNull("channel", facts.channel);
    out.numberOrNull("id", facts.id);
    out.numberOrNull("policy_number", drive.policyNumber);
    out.textOrNull("policy_position", position);
    out.textOrNull("array", drive.array);
    out.textOrNull("serial_number", facts.serialNumber);
    out.textOrNull("manufacturer", facts.manufacturer);
    out.textOrNull("model", facts.model);
    out.textOrNull("revision", facts.revision);
    out.textOrNull("protocol", facts.protocol);
    out.textOrNull("media_type", facts.mediaType);
    out.numberOrNull("capacity_bytes", facts.capacityBytes);
    out.number("capacity_tolerance_bytes", facts.capacityTolerance);
    if (facts.rawCapacityBytes) {
        out.number("raw_capacity_bytes", *facts.rawCapacityBytes);
    }
    writeStatus(out, facts.health, driveStatus(facts.state));
    out.text("drive_state", driveStateWord(facts.state));
    out.textOrNull("reported_state", facts.reportedState);
    if (!facts.barred.empty()) {
        out.text("unusable_reason", facts.barred);
    }
    out.numberOrNull("media_error_count", facts.mediaErrorCount);
    out.numberOrNull("other_error_count", facts.otherErrorCount);
    out.numberOrNull("predicted_failure_count", facts.predictedFailureCount);
    out.numberOrNull("temperature_celsius", facts.temperatureCelsius);
    out.text("hotspare_type", hotspareWord(facts.hotspare));
    out.truth("foreign", facts.isForeign);
    out.end();
}

void writeSupported(DocumentText& out, const Facts& facts) {
    out.object("supported");
    if (facts.raidTypes.empty()) {
        out.null("raid_types");
    } else {
        out.texts("raid_types", facts.raidTypes);
    }
    if (facts.minStripSizeBytes && facts.maxStripSizeBytes) {
        out.json("strip_size_bytes", Json{*facts.minStripSizeBytes, *facts.maxStripSizeBytes});
    } else {
        out.null("strip_size_bytes");
    }
    out.end();
}

Json fingerprintJson(const Fingerprint& fingerprint) {
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
              {"controllers", std::move(controllers)}}},
            {"state", {{"sha256", fingerprint.state}}}};
}

void writeFingerprint(DocumentText& out, const Fingerprint& fingerprint) {
    out.json("fingerprint", fingerprintJson(fingerprint));
}

void writeDiagnostics(DocumentText& out, std::string_view name,
                      const std::vector<Finding>& findings) {
    out.list(name);
    for (const Finding& finding : findings) {
        out.json(diagnosticOf(finding));
    }
    out.end();
}

} // namespace zolex::companion
