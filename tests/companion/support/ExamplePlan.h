#pragma once

#include "companion/planning/Diff.h"
#include "companion/planning/Plan.h"
#include "companion/support/ExampleSnapshot.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

/// Plans and comparisons for the tests of what is shown and written, made by hand.
namespace zolex::companion::test {

/// The server of the example plan: eight drives, a mirror, a RAID 5 of three drives, three free
/// drives, of which 32:3 has errors and is in the RAID 5.
inline ControllerSnapshot exampleController() {
    ControllerSnapshot controller = exampleSnapshot().details[0];
    controller.findings.clear();
    controller.drives.clear();
    for (std::int32_t slot = 0; slot < 8; ++slot) {
        controller.drives.push_back(
            exampleDrive(32, slot, slot + 1, "3LQ2A00" + std::to_string(slot)));
    }
    std::vector<MachineDrive>& drives = controller.drives;
    for (std::size_t i = 0; i < 5; ++i) {
        makeMember(drives[i], i < 2 ? "A" : "B");
    }
    drives[3].facts.mediaErrorCount = 12;
    drives[3].facts.predictedFailureCount = 1;
    drives[3].facts.health = Health::warning;
    controller.facts.logicalDrives = {
        exampleLogicalDrive("0", "RAID1", 69376, {"32:0", "32:1"}),
        exampleLogicalDrive("1", "RAID5", 138752, {"32:2", "32:3", "32:4"}),
    };
    controller.arrays = {{"A", "0", {"32:0", "32:1"}, {0}},
                         {"B", "1", {"32:2", "32:3", "32:4"}, {1}}};
    controller.facts.drives.clear();
    for (const MachineDrive& drive : drives) {
        controller.facts.drives.push_back(drive.facts);
    }
    return controller;
}

inline LayoutGroup exampleGroup(const std::string& id, std::vector<std::string> drives,
                                const std::string& volume, const std::string& raidType,
                                std::uint64_t megabytes) {
    LayoutGroup group;
    group.id = id;
    group.spans.push_back(std::move(drives));
    LayoutVolume standing;
    standing.id = volume;
    standing.raidType = raidType;
    standing.capacityBytes = megabytes * mb;
    standing.fills = true;
    standing.stripSizeBytes = 65536;
    standing.writeCache = "UnprotectedWriteBack";
    standing.readCache = "AdaptiveReadAhead";
    standing.reportedState = "Optimal";
    standing.health = Health::ok;
    group.volumes.push_back(standing);
    return group;
}

inline PlannedArray exampleArray(const std::string& letter, std::int32_t firstSlot,
                                 std::int32_t lastSlot, std::int32_t line) {
    PlannedArray array;
    array.id = letter;
    for (std::int32_t slot = firstSlot; slot <= lastSlot; ++slot) {
        array.drives.push_back({"32:" + std::to_string(slot),
                                {"listed", "Array." + letter, line, std::to_string(slot + 1)}});
    }
    array.capacityBytes = array.drives.size() * 69376 * mb;
    return array;
}

inline PlannedVolume exampleVolume(const std::string& id, const std::string& array,
                                   const std::string& raidType, std::uint64_t megabytes,
                                   std::int32_t line) {
    PlannedVolume volume;
    volume.id = id;
    volume.array = array;
    volume.raidType = raidType;
    volume.sizePolicy = "FILL";
    volume.capacityBytes = megabytes * mb;
    volume.fills = true;
    volume.stripSizeBytes = 65536;
    volume.writeCache = "UnprotectedWriteBack";
    volume.readCache = "AdaptiveReadAhead";
    volume.reasons["raid_type"] = {"given", id, line, raidType};
    volume.reasons["capacity_bytes"] = {"given", id, line, "FILL"};
    volume.reasons["strip_size_bytes"] = {"given", "StripeSize", 20, "64"};
    volume.reasons["write_cache_policy"] = {"given", id, line, ""};
    volume.reasons["read_cache_policy"] = {"class-default", "", 0, ""};
    return volume;
}

inline Finding exampleFinding(const std::string& code, Severity severity,
                              const std::string& summary) {
    Finding finding;
    finding.code = code;
    finding.severity = severity;
    finding.summary = summary;
    return finding;
}

inline std::vector<PolicyMatch> exampleMatches() {
    return {
        {"Policy.db",
         3,
         false,
         {{"AppliesTo.1",
           4,
           false,
           {{"t:LSI-MegaRAID-8480", true, "LSI-MegaRAID-8480"}, {"d:6", false, "8"}}}}},
        {"Policy.web",
         17,
         true,
         {{"AppliesTo.1",
           18,
           true,
           {{"t:LSI-MegaRAID-8480", true, "LSI-MegaRAID-8480"}, {"d:8", true, "8"}}}}},
        {"Policy.rest", 40, std::nullopt, {}},
    };
}

/// The mirror stays, the RAID 5 grows to five drives and is made anew, a spare is added.
inline ControllerPlanning examplePlanning() {
    ControllerPlanning planning;
    planning.controller = exampleController();
    planning.disposition = Disposition::planned;
    planning.policy = "Policy.web";
    planning.policyLine = 17;
    planning.matchedBy = "AppliesTo.1";
    planning.considered = exampleMatches();
    planning.before.groups = {
        exampleGroup("0", {"32:0", "32:1"}, "0", "RAID1", 69376),
        exampleGroup("1", {"32:2", "32:3", "32:4"}, "1", "RAID5", 138752),
    };
    planning.after.groups = {
        exampleGroup("A", {"32:0", "32:1"}, "Logical.1", "RAID1", 69376),
        exampleGroup("B", {"32:2", "32:3", "32:4", "32:5", "32:6"}, "Logical.2", "RAID5", 277504),
    };
    planning.after.groups[0].isListed = true;
    planning.after.groups[1].isListed = true;
    planning.after.spares = {{"32:7", {"A", "B"}, false, true}};
    planning.arrays = {exampleArray("A", 0, 1, 25), exampleArray("B", 2, 6, 26)};
    planning.volumes = {exampleVolume("Logical.1", "A", "RAID1", 69376, 28),
                        exampleVolume("Logical.2", "B", "RAID5", 277504, 29)};
    planning.spares = {{"32:7", {"A", "B"}, {"listed", "Hotspares", 27, "8"}}};
    planning.rebuildRate = "HIGH";
    planning.initializeType = "Fast";
    planning.comparison.result = Sameness::different;
    planning.comparison.groups = {{0, 1, true}, {1, 0, false}};
    planning.comparison.groupsInTheWay = {1};
    planning.comparison.spares = {""};
    planning.comparison.differences = {
        {"drives", "", "1", "32:2 32:3 32:4 32:5 32:6", "32:2 32:3 32:4"},
        {"missing", "32:7", "", "hot spare 32:7 (covers A, B)", "none; 32:7 is free"},
    };
    planning.strategy = Strategy::rebuild;
    planning.strategyBecause = {{"drives-in-use",
                                 "array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)",
                                 "1",
                                 {"32:2", "32:3", "32:4"}}};
    planning.warnings = {exampleFinding("ZX703", Severity::warning,
                                        "32:3 has 12 media errors, 1 predicted failure")};
    planning.warnings[0].detail = "the drive goes into array B";
    planning.losses = {
        {1, "logical_drive", "1", "RAID5", {"32:2", "32:3", "32:4"}, 138752 * mb, "Optimal"}};
    PlanStep remove;
    remove.step = 1;
    remove.controller = 1;
    remove.action = "delete-logical-drive";
    remove.deletes = true;
    remove.command = "UTIL.BAT MEGACLI -CfgLdDel -L1 -a0";
    remove.argv = {"UTIL.BAT", "MEGACLI", "-CfgLdDel", "-L1", "-a0"};
    remove.acceptedExitCodes = {0};
    remove.destroys = {"1"};
    remove.summary = "delete LD 1";
    remove.differsFromZolex = "zolex would need an empty controller: it has no line that deletes "
                              "one logical drive";
    remove.expectedAfter = std::string(64, 'a');
    PlanStep create;
    create.step = 2;
    create.controller = 1;
    create.action = "create-array";
    create.command = "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4,32:5,32:6 ]   WB   ADRA   "
                     "-strpsz 64  -a0";
    create.argv = {"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R5",      "[",  "32:2,32:3,32:4,32:5,32:6",
                   "]",        "WB",      "ADRA",      "-strpsz", "64", "-a0"};
    create.acceptedExitCodes = {0};
    create.creates = {"B", "Logical.2"};
    create.summary = "create B: RAID5 on 32:2-32:6";
    create.expectedAfter = std::string(64, 'b');
    PlanStep spare;
    spare.step = 3;
    spare.controller = 1;
    spare.action = "create-spare";
    spare.command = "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0";
    spare.argv = {"UTIL.BAT", "MEGACLI",   "-PDHSP", "{", "-Set",
                  "}",        "-PhysDrv[", "32:7",   "]", "-a0"};
    spare.acceptedExitCodes = {0};
    spare.creates = {"32:7"};
    spare.summary = "create the spare 32:7";
    spare.expectedAfter = std::string(64, 'c');
    planning.steps = {remove, create, spare};
    planning.oldDifferences = {remove.differsFromZolex};
    return planning;
}

/// A plan that can be carried out, rehearsed.
inline MachinePlan examplePlan() {
    MachinePlan plan;
    plan.id = "p-5f1c09ab77e2";
    plan.machineSource = "hwdetect.exe";
    plan.fingerprint.strength = Strength::serials;
    plan.fingerprint.identity = std::string(64, '1');
    plan.fingerprint.state = std::string(64, '2');
    plan.fingerprint.machineType = "8837";
    plan.fingerprint.serialNumber = "KQ10Z7V";
    plan.fingerprint.controllers = {
        {1, "0000:02:0e.0", "1000:0411:1000:1002", "LSI-MegaRAID-8480", "1122334455"}};
    plan.policiesFile = "site.ini";
    plan.policiesHash = std::string(64, '7');
    plan.policiesCount = 3;
    plan.controllers = {examplePlanning()};
    plan.consent = "7Q4K-2M9D";
    plan.rehearsal.done = true;
    plan.rehearsal.endsAsPlanned = true;
    plan.rehearsal.durationMs = 1;
    plan.rehearsal.faultsTried = 3;
    plan.rehearsal.resumesAsPlanned = 3;
    plan.rehearsal.layouts = {
        {std::string(64, 'a'), {"RAID1 fill: 32:0 32:1"}},
        {std::string(64, 'b'), {"RAID1 fill: 32:0 32:1", "RAID5 fill: 32:2 32:3 32:4 32:5 32:6"}},
        {std::string(64, 'c'),
         {"RAID1 fill: 32:0 32:1", "RAID5 fill: 32:2 32:3 32:4 32:5 32:6", "spare 32:7"}}};
    plan.oldCommand.wouldRun = {"zolex /r /y /f:site.ini"};
    plan.oldCommand.differences = {examplePlanning().steps[0].differsFromZolex};
    return plan;
}

/// Nothing is to be done: what stands is equivalent.
inline MachinePlan exampleNothingToDoPlan() {
    MachinePlan plan = examplePlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.disposition = Disposition::already;
    planning.because = "equivalent: the spare is 32:3 instead of 32:7";
    planning.comparison = {};
    planning.comparison.result = Sameness::equivalent;
    planning.comparison.equivalences = {"the spare is 32:3 instead of 32:7"};
    planning.strategy = Strategy::none;
    planning.strategyBecause.clear();
    planning.warnings.clear();
    planning.losses.clear();
    planning.steps.clear();
    planning.oldDifferences.clear();
    plan.consent.clear();
    plan.oldCommand = {};
    plan.rehearsal = {};
    return plan;
}

/// A fault: a listed number behind a drive without one.
inline MachinePlan exampleRefusedPlan() {
    MachinePlan plan = examplePlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.disposition = Disposition::refused;
    planning.because = "an error of the plan";
    Finding error = exampleFinding("ZX701", Severity::error,
                                   "Array.B lists drive 3, and 32:2 has no number since it failed");
    error.refusedBy = RefusedBy::nobody;
    error.detail = "drive 3 is 32:3 now";
    error.help = {"write slots: Drives.B = slots 32:3,32:4,32:5,32:6,32:7",
                  "zolexctl plan site.ini --accept ZX701"};
    error.file = "site.ini";
    error.start = {26, 13, 612};
    error.end = {26, 14, 613};
    planning.diagnostics = {error};
    planning.steps.clear();
    planning.losses.clear();
    plan.consent.clear();
    plan.rehearsal = {};
    return plan;
}

/// One controller with another stripe and without its spare, and one that is equivalent.
inline MachineDiff exampleDiff() {
    MachineDiff diff;
    diff.wantedBy = "site.ini";
    diff.result = ControllerDiff::Result::different;
    diff.fingerprint = examplePlan().fingerprint;
    ControllerDiff first;
    first.number = 1;
    first.model = "LSI-MegaRAID-8480";
    first.result = ControllerDiff::Result::different;
    first.policy = "Policy.web";
    first.policyLine = 17;
    const std::vector<std::string> five{"32:2", "32:3", "32:4", "32:5", "32:6"};
    first.captured.groups = {exampleGroup("0", {"32:0", "32:1"}, "0", "RAID1", 69376),
                             exampleGroup("1", five, "1", "RAID5", 277504)};
    first.captured.groups[1].volumes[0].stripSizeBytes = 131072;
    first.captured.groups[1].volumes[0].writeCache = "WriteThrough";
    first.wanted.groups = {exampleGroup("A", {"32:0", "32:1"}, "Logical.1", "RAID1", 69376),
                           exampleGroup("B", five, "Logical.2", "RAID5", 277504)};
    first.wanted.spares = {{"32:7", {"A", "B"}, false, true}};
    first.comparison.result = Sameness::different;
    first.comparison.groups = {{0, 1, true}, {1, 0, false}};
    first.comparison.groupsInTheWay = {1};
    first.comparison.spares = {""};
    first.comparison.differences = {
        {"strip_size_bytes", "", "1", "64 KB", "128 KB"},
        {"write_cache_policy", "", "1", "write-back", "write-through"},
        {"missing", "32:7", "", "hot spare 32:7 (covers A, B)", "none; 32:7 is free"}};
    first.takesRebuild = {"strip size"};
    ControllerDiff second;
    second.number = 2;
    second.model = "Kestrix-B7";
    second.result = ControllerDiff::Result::equivalent;
    second.policy = "Policy.db";
    second.policyLine = 3;
    second.captured.groups = {exampleGroup("1", {"1:0", "1:1"}, "1", "RAID1", 69376)};
    second.captured.spares = {{"1:4", {}, false, false}};
    second.wanted.groups = {exampleGroup("A", {"1:0", "1:1"}, "Logical.1", "RAID1", 69376)};
    second.wanted.spares = {{"1:5", {"A"}, false, false}};
    second.comparison.result = Sameness::equivalent;
    second.comparison.groups = {{0, 1, true}};
    second.comparison.spares = {"1:4"};
    second.comparison.equivalences = {
        "the spare is 1:4 and would be planned as 1:5 (equal drives)"};
    second.comparison.notComparable = {"write_cache_policy"};
    diff.controllers = {first, second};
    return diff;
}

} // namespace zolex::companion::test
