#include "companion/json/MachineDocument.h"

#include "companion/json/MachinePieces.h"
#include "companion/machine/Fingerprint.h"

namespace zolex::companion {

namespace {

void writeLogicalDrive(DocumentText& out, const LogicalDriveFacts& logicalDrive) {
    const bool isLost = logicalDrive.health == Health::critical;
    out.object();
    out.text("id", logicalDrive.id);
    out.textOrNull("name", logicalDrive.name);
    out.textOrNull("array", logicalDrive.array);
    out.textOrNull("raid_type", logicalDrive.raidType);
    out.textOrNull("policy_level", logicalDrive.raidType == "None" ? "VOLUME" : "");
    out.textOrNull("reported_level", logicalDrive.reportedLevel);
    out.json("spans", logicalDrive.spans);
    out.numberOrNull("capacity_bytes", logicalDrive.capacityBytes);
    out.number("capacity_tolerance_bytes", logicalDrive.capacityTolerance);
    out.numberOrNull("strip_size_bytes", logicalDrive.stripSizeBytes);
    out.textOrNull("write_cache_policy", logicalDrive.writeCache);
    out.textOrNull("read_cache_policy", logicalDrive.readCache);
    writeStatus(out, logicalDrive.health, isLost ? "Disabled" : "Enabled");
    out.textOrNull("reported_state", logicalDrive.reportedState);
    writeIfTold(out, "device", logicalDrive.device);
    writeIfTold(out, "unique_id", logicalDrive.uniqueId);
    writeIfTold(out, "used_as", logicalDrive.usedAs);
    out.end();
}

void writeArray(DocumentText& out, const MachineArray& array, const Facts& facts) {
    out.object();
    out.textOrNull("id", array.id);
    out.text("letter", array.letter);
    out.texts("drives", array.drives);
    out.list("logical_drives");
    for (const std::size_t index : array.logicalDrives) {
        out.text(facts.logicalDrives.at(index).id);
    }
    out.end();
    out.end();
}

void writeLayout(DocumentText& out, const ControllerSnapshot& controller) {
    out.object("layout");
    out.list("arrays");
    for (const MachineArray& array : controller.arrays) {
        writeArray(out, array, controller.facts);
    }
    out.end();
    out.list("logical_drives");
    for (const LogicalDriveFacts& logicalDrive : controller.facts.logicalDrives) {
        writeLogicalDrive(out, logicalDrive);
    }
    out.end();
    out.list("hotspares");
    for (const MachineDrive& drive : controller.drives) {
        if (drive.facts.hotspare != HotspareKind::none) {
            out.object();
            out.text("location", drive.facts.location);
            out.text("hotspare_type", hotspareWord(drive.facts.hotspare));
            out.end();
        }
    }
    out.end();
    out.texts("foreign_configurations", controller.facts.foreignConfigurations);
    out.text("layout_sha256", layoutHash(controller.facts));
    out.end();
}

void writeReading(DocumentText& out, const ListingReading& reading) {
    out.object("reading");
    out.number("blocks", reading.blocks);
    out.number("blocks_read", reading.blocksRead);
    out.number("keys", reading.keys);
    out.number("keys_used", reading.keysUsed);
    out.end();
}

void writeCommands(DocumentText& out, const ControllerSnapshot& controller) {
    out.list("commands");
    for (std::size_t i = 0; i < controller.commands.size(); ++i) {
        const CapturedListing& listing = controller.commands[i];
        out.object();
        out.text("command", listing.command);
        out.text("outcome", outcomeWord(listing.outcome));
        if (listing.outcome == ChildOutcome::ended) {
            out.number("exit_code", listing.exitCode);
        } else {
            out.null("exit_code");
        }
        out.number("duration_ms", listing.duration.count());
        if (i < controller.facts.listings.size()) {
            writeReading(out, controller.facts.listings[i]);
        } else {
            out.null("reading");
        }
        out.end();
    }
    out.end();
}

void writeController(DocumentText& out, const ControllerSnapshot& controller) {
    const Facts& facts = controller.facts;
    out.object();
    out.number("number", controller.number);
    out.truth("captured", !controller.failed);
    out.textOrNull("model", controller.model);
    out.text("utility", controller.utility);
    out.number("adapter", controller.adapter);
    out.textOrNull("pci", controller.pci);
    out.textOrNull("pci_ids", controller.pciIds);
    out.textOrNull("product_name", facts.productName);
    out.textOrNull("serial_number", facts.serialNumber);
    out.textOrNull("firmware_version", facts.firmwareVersion);
    out.textOrNull("bios_version", facts.biosVersion);
    out.textOrNull("driver_version", facts.driverVersion);
    out.textOrNull("reported_state", facts.reportedState);
    writeSupported(out, facts);
    out.numberOrNull("rebuild_rate_percent", facts.rebuildRatePercent);
    out.textOrNull("reported_rebuild_rate", facts.rebuildRate);
    out.list("drives");
    for (const MachineDrive& drive : controller.drives) {
        writeDrive(out, drive);
    }
    out.end();
    if (controller.failed) {
        out.null("layout");
    } else {
        writeLayout(out, controller);
    }
    writeCommands(out, controller);
    writeDiagnostics(out, "diagnostics", controller.findings);
    out.end();
}

} // namespace

std::string machineDocument(const Snapshot& snapshot, const DocumentHead& head) {
    DocumentText out("zolex-machine", head);
    if (snapshot.isComplete()) {
        writeFingerprint(out, fingerprintOf(snapshot));
    } else {
        out.null("fingerprint");
    }
    out.textOrNull("machine_type", snapshot.machine.machineType.view());
    out.textOrNull("serial_number", snapshot.machine.serialNumber.view());
    out.textOrNull("machine_source", snapshot.machineSource);
    out.list("controllers");
    for (const ControllerSnapshot& controller : snapshot.details) {
        writeController(out, controller);
    }
    out.end();
    out.texts("core_messages", snapshot.coreMessages);
    writeDiagnostics(out, "diagnostics", snapshot.findings);
    return out.finish();
}

std::string failedMachineDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    DocumentText out("zolex-machine", head);
    for (const char* const name :
         {"fingerprint", "machine_type", "serial_number", "machine_source"}) {
        out.null(name);
    }
    out.texts("controllers", {});
    out.texts("core_messages", {});
    writeDiagnostics(out, "diagnostics", findings);
    return out.finish();
}

} // namespace zolex::companion
