#pragma once

#include "companion/machine/Snapshot.h"

#include <string>
#include <utility>
#include <vector>

/// Servers for the tests of what is shown, made by hand.
namespace zolex::companion::test {

inline constexpr std::uint64_t mb = std::uint64_t{1} << 20U;

inline MachineDrive exampleDrive(std::int32_t enclosure, std::int32_t slot, std::int32_t number,
                                 const std::string& serial) {
    MachineDrive drive;
    drive.facts.location = std::to_string(enclosure) + ":" + std::to_string(slot);
    drive.facts.enclosure = enclosure;
    drive.facts.slot = slot;
    drive.facts.id = slot;
    drive.facts.manufacturer = "NORVIK";
    drive.facts.model = "NV73455S";
    drive.facts.revision = "S527";
    drive.facts.serialNumber = serial;
    drive.facts.protocol = "SAS";
    drive.facts.mediaType = "HDD";
    drive.facts.capacityBytes = 69376 * mb;
    drive.facts.state = DriveState::free;
    drive.facts.reportedState = "Unconfigured(good)";
    drive.facts.health = Health::ok;
    drive.facts.mediaErrorCount = 0;
    drive.facts.otherErrorCount = 0;
    drive.facts.predictedFailureCount = 0;
    if (number > 0) {
        drive.policyNumber = number;
        drive.policyPosition = DrivePosition{1, slot};
    }
    return drive;
}

inline void makeMember(MachineDrive& drive, const std::string& array) {
    drive.array = array;
    drive.facts.state = DriveState::member;
    drive.facts.reportedState = "Online";
}

inline LogicalDriveFacts exampleLogicalDrive(const std::string& id, const std::string& raidType,
                                             std::uint64_t megabytes,
                                             std::vector<std::string> drives) {
    LogicalDriveFacts logicalDrive;
    logicalDrive.id = id;
    logicalDrive.array = id;
    logicalDrive.raidType = raidType;
    logicalDrive.reportedLevel = raidType;
    logicalDrive.spans.push_back(std::move(drives));
    logicalDrive.capacityBytes = megabytes * mb;
    logicalDrive.stripSizeBytes = 65536;
    logicalDrive.writeCache = "UnprotectedWriteBack";
    logicalDrive.readCache = "AdaptiveReadAhead";
    logicalDrive.reportedState = "Optimal";
    logicalDrive.health = Health::ok;
    return logicalDrive;
}

/// A mirror, a failed drive, a RAID 5, a drive with errors in it, a spare and a free drive.
inline Snapshot exampleSnapshot() {
    Snapshot snapshot;
    snapshot.machine = {"8837", "KQ10Z7V"};
    snapshot.machineSource = "hwdetect.exe";
    ControllerSnapshot controller;
    controller.number = 1;
    controller.model = "LSI-MegaRAID-8480";
    controller.utility = "MEGACLI";
    controller.pci = "0000:02:0e.0";
    controller.pciIds = "1000:0411:1000:1002";
    controller.commands = {
        {"UTIL.BAT MEGACLI -pdList -a0", ChildOutcome::ended, 0, std::chrono::milliseconds(380)}};
    Facts& facts = controller.facts;
    facts.productName = "LSI MegaRAID SAS 8480E";
    facts.serialNumber = "1122334455";
    facts.firmwareVersion = "1.11.50-0300";
    facts.raidTypes = {"RAID0", "RAID1", "RAID5", "RAID6", "RAID10", "RAID50", "RAID60"};
    facts.minStripSizeBytes = 8192;
    facts.maxStripSizeBytes = 1048576;
    facts.rebuildRatePercent = 30;
    facts.logicalDrives = {
        exampleLogicalDrive("0", "RAID1", 69376, {"32:0", "32:1"}),
        exampleLogicalDrive("1", "RAID5", 138752, {"32:3", "32:4", "32:5"}),
    };
    for (std::int32_t slot = 0; slot < 8; ++slot) {
        const std::int32_t number = slot < 2 ? slot + 1 : slot == 2 ? 0 : slot;
        controller.drives.push_back(
            exampleDrive(32, slot, number, "3LQ2A00" + std::to_string(slot)));
    }
    std::vector<MachineDrive>& drives = controller.drives;
    makeMember(drives[0], "A");
    makeMember(drives[1], "A");
    drives[2].facts.state = DriveState::failed;
    drives[2].facts.reportedState = "Failed";
    drives[2].facts.health = Health::critical;
    makeMember(drives[3], "B");
    makeMember(drives[4], "B");
    makeMember(drives[5], "B");
    drives[4].facts.mediaErrorCount = 12;
    drives[4].facts.predictedFailureCount = 1;
    drives[4].facts.health = Health::warning;
    drives[6].facts.state = DriveState::hotspare;
    drives[6].facts.hotspare = HotspareKind::global;
    drives[6].facts.reportedState = "Hotspare";
    controller.arrays = {{"A", "0", {"32:0", "32:1"}, {0}},
                         {"B", "1", {"32:3", "32:4", "32:5"}, {1}}};
    Finding finding;
    finding.code = "ZX701";
    finding.severity = Severity::warning;
    finding.summary = "32:2 is failed and has no number: policies' drive 3 is 32:3 now";
    controller.findings = {finding};
    snapshot.details.push_back(controller);
    snapshot.coreMessages = {"A message of the core."};
    return snapshot;
}

} // namespace zolex::companion::test
