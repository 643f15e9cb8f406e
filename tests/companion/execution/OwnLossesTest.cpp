#include "companion/execution/OwnLosses.h"

#include "companion/support/ExampleCertificate.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion::test {
namespace {

Loss lossOf(const std::string& kind, const std::string& id) {
    Loss loss;
    loss.controller = 1;
    loss.kind = kind;
    loss.id = id;
    return loss;
}

std::vector<Loss> allLosses() {
    return {lossOf("logical_drive", "0"), lossOf("logical_drive", "1"), lossOf("hotspare", "32:6")};
}

/// "logical_drive 0: own by p-5f1c09ab77e2", or why not.
std::string told(const std::vector<Loss>& losses, const Snapshot& snapshot,
                 const std::vector<Certificate>& certificates) {
    std::string text;
    for (const OwnLoss& own : ownLosses(losses, snapshot, certificates)) {
        text += own.loss.kind + " " + own.loss.id + ": " +
                (own.isOwn ? "own by " + own.planId : own.why) + "\n";
    }
    return text;
}

DriveFacts& driveOf(Certificate& certificate, std::size_t index) {
    return certificate.controllers[0].facts.drives[index];
}

TEST(OwnLosses, WhatACertificateTellsOfIsOwn) {
    EXPECT_EQ(told(allLosses(), certifiedSnapshot(), {exampleCertificate()}),
              "logical_drive 0: own by p-5f1c09ab77e2\n"
              "logical_drive 1: own by p-5f1c09ab77e2\n"
              "hotspare 32:6: own by p-5f1c09ab77e2\n");
}

TEST(OwnLosses, WithoutACertificateOfThisMachineNothingIsOwn) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    EXPECT_EQ(told(first, certifiedSnapshot(), {}),
              "logical_drive 0: no certificate is of this machine\n");
    Certificate other = exampleCertificate();
    other.fingerprint.identity = std::string(64, '9');
    EXPECT_EQ(told(first, certifiedSnapshot(), {other}),
              "logical_drive 0: no certificate is of this machine\n");
}

TEST(OwnLosses, ALogicalDriveOfAnotherLevelOrSizeIsNot) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    Certificate certificate = exampleCertificate();
    certificate.controllers[0].layout.groups[0].volumes[0].raidType = "RAID0";
    EXPECT_EQ(told(first, certifiedSnapshot(), {certificate}),
              "logical_drive 0: its RAID level is not the certified one\n");
    certificate = exampleCertificate();
    LayoutVolume& volume = certificate.controllers[0].layout.groups[0].volumes[0];
    *volume.capacityBytes += 1;
    EXPECT_EQ(told(first, certifiedSnapshot(), {certificate}),
              "logical_drive 0: its size is not the certified one\n");
    volume.toleranceBytes = 1;
    EXPECT_EQ(told(first, certifiedSnapshot(), {certificate}),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
}

const std::string noNumber = " tells no serial number of its own, so that it may be another one: "
                             "agree by the code\n";

TEST(OwnLosses, DrivesAreKnownByTheirSerialNumbers) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    // Another drive stands in the slot now.
    Certificate replaced = exampleCertificate();
    driveOf(replaced, 1).serialNumber = "OLD";
    EXPECT_EQ(told(first, certifiedSnapshot(), {replaced}),
              "logical_drive 0: drive 32:1 (serial number OLD) is gone since p-5f1c09ab77e2: put "
              "it back, or agree by the code\n");
    // What tells no serial number is never own, wherever it stands; nor is what lies beside it.
    Snapshot untold = certifiedSnapshot();
    untold.details[0].facts.drives[6].serialNumber = "To Be Filled By O.E.M.";
    EXPECT_EQ(told(first, untold, {exampleCertificate()}),
              "logical_drive 0: drive 32:6" + noNumber);
    EXPECT_EQ(told(first, untold, {certificateOf(untold)}),
              "logical_drive 0: drive 32:6" + noNumber);
    // Two drives that tell the same number are not known by it.
    Snapshot twice = certifiedSnapshot();
    twice.details[0].facts.drives[7].serialNumber = "3LQ2A000";
    EXPECT_EQ(told(first, twice, {exampleCertificate()}), "logical_drive 0: drive 32:0" + noNumber);
    EXPECT_EQ(told(first, twice, {certificateOf(twice)}), "logical_drive 0: drive 32:0" + noNumber);
}

/// What is told of LD 0 where one thing of the hardware differs.
std::string toldWhere(const std::function<void(std::vector<DriveFacts>&)>& differ) {
    Snapshot snapshot = certifiedSnapshot();
    differ(snapshot.details[0].facts.drives);
    return told({lossOf("logical_drive", "1")}, snapshot, {exampleCertificate()});
}

/// The same policy may choose other drives when one is gone or new, in whatever form it names
/// them.
TEST(OwnLosses, ADriveThatIsGoneOrNewLeavesNothingOwn) {
    const DriveFacts last = certifiedSnapshot().details[0].facts.drives.back();
    const std::string named =
        "logical_drive 1: drive " + last.location + " (serial number " + last.serialNumber + ")";
    const std::string gone =
        named + " is gone since p-5f1c09ab77e2: put it back, or agree by the code\n";
    EXPECT_EQ(toldWhere([](auto& drives) { drives.pop_back(); }), gone);
    EXPECT_EQ(toldWhere([](auto& drives) { drives.back().serialNumber = "NEW"; }), gone);
    EXPECT_EQ(toldWhere([](auto& drives) {
                  drives.back().state = DriveState::missing;
                  drives.back().serialNumber.clear();
              }),
              gone);
    EXPECT_EQ(toldWhere([&last](auto& drives) {
                  drives.push_back(last);
                  drives.back().location = "32:20";
                  drives.back().serialNumber = "NEW";
              }),
              "logical_drive 1: drive 32:20 (serial number NEW) is new since p-5f1c09ab77e2: take "
              "it out, or agree by the code\n");
}

TEST(OwnLosses, DrivesThatChangedBaysLeaveNothingOwn) {
    // Of one array, too.
    EXPECT_EQ(
        toldWhere([](auto& drives) { std::swap(drives[0].serialNumber, drives[1].serialNumber); }),
        "logical_drive 1: the drive with serial number 3LQ2A000 is in 32:1, it was in 32:0 "
        "at p-5f1c09ab77e2: put it back, or agree by the code\n");
}

TEST(OwnLosses, ADriveOfAnotherStateLeavesNothingOwn) {
    const auto stateOf = [](DriveState state) {
        return [state](std::vector<DriveFacts>& drives) {
            drives[6].state = state;
            drives[6].hotspare = HotspareKind::none;
        };
    };
    const std::string sixth = "logical_drive 1: drive 32:6 (serial number 3LQ2A006) is ";
    const std::string was = ", it was a hot spare at p-5f1c09ab77e2: put it right, or agree by the "
                            "code\n";
    EXPECT_EQ(toldWhere(stateOf(DriveState::failed)), sixth + "failed" + was);
    EXPECT_EQ(toldWhere(stateOf(DriveState::free)), sixth + "free" + was);
    EXPECT_EQ(toldWhere(stateOf(DriveState::member)), sixth + "a member of an array" + was);
    EXPECT_EQ(toldWhere(stateOf(DriveState::rebuilding)), sixth + "being rebuilt" + was);
    EXPECT_EQ(toldWhere([](auto& drives) { drives[6].hotspare = HotspareKind::dedicated; }),
              sixth + "a dedicated hot spare" + was);
    // A failed drive tells nothing of itself.
    EXPECT_EQ(toldWhere([](auto& drives) {
                  drives[6].state = DriveState::failed;
                  drives[6].serialNumber.clear();
              }),
              "logical_drive 1: drive 32:6 is failed" + was);
    EXPECT_EQ(toldWhere([](auto& drives) { drives[6].health = Health::warning; }),
              sixth + "not well any more since p-5f1c09ab77e2: replace it, or agree by the code\n");
    EXPECT_EQ(toldWhere([](auto& drives) { drives[6].barred = "it is being erased"; }),
              sixth + "not to be used since p-5f1c09ab77e2 (it is being erased): put it right, or "
                      "agree by the code\n");
}

TEST(OwnLosses, WhatWasBeingRebuiltMayHaveEnded) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    const std::string own = "logical_drive 0: own by p-5f1c09ab77e2\n";
    Certificate building = exampleCertificate();
    driveOf(building, 1).state = DriveState::rebuilding;
    driveOf(building, 1).health = Health::warning;
    EXPECT_EQ(told(first, certifiedSnapshot(), {building}), own);
    Snapshot unwell = certifiedSnapshot();
    unwell.details[0].facts.drives[7].health = Health::warning;
    EXPECT_EQ(told(first, unwell, {certificateOf(unwell)}), own);
    EXPECT_EQ(told(first, certifiedSnapshot(), {certificateOf(unwell)}), own);
}

/// What was lately certified tells which drives there are.
TEST(OwnLosses, OfSeveralCertificatesThatWhichHoldsIsTheOneToAsk) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    Certificate before = exampleCertificate();
    before.planId = "p-111111111111";
    before.madeAt = "2026-11-20T21:06:20+00:00";
    driveOf(before, 1).state = DriveState::free;
    EXPECT_EQ(told(first, certifiedSnapshot(), {before, exampleCertificate()}),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    Snapshot pulled = certifiedSnapshot();
    const DriveFacts gone = pulled.details[0].facts.drives.back();
    pulled.details[0].facts.drives.pop_back();
    EXPECT_EQ(told(first, pulled, {exampleCertificate(), before}),
              "logical_drive 0: drive " + gone.location + " (serial number " + gone.serialNumber +
                  ") is gone since p-5f1c09ab77e2: put it back, or agree by the code\n");
}

TEST(OwnLosses, ALogicalDriveThatWasMadeAnewIsNot) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    Snapshot snapshot = certifiedSnapshot();
    LogicalDriveFacts& volume = snapshot.details[0].facts.logicalDrives[0];
    volume.uniqueId = "600aaa01";
    volume.name = "data";
    // Of a certificate of before nothing is known.
    EXPECT_EQ(told(first, snapshot, {exampleCertificate()}),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    const Certificate certificate = certificateOf(snapshot);
    EXPECT_EQ(told(first, snapshot, {certificate}), "logical_drive 0: own by p-5f1c09ab77e2\n");
    volume.uniqueId = "600aaa02";
    EXPECT_EQ(told(first, snapshot, {certificate}),
              "logical_drive 0: it was made anew since: its id is not the certified one\n");
    volume.uniqueId = "600aaa01";
    volume.name = "of others";
    EXPECT_EQ(told(first, snapshot, {certificate}),
              "logical_drive 0: its name is not the certified one\n");
    volume.name = "data";
    volume.uniqueId.clear();
    EXPECT_EQ(
        told(first, snapshot, {certificate}),
        "logical_drive 0: its id is not told, so that it may have been made anew since: agree "
        "by the code\n");
}

TEST(OwnLosses, WhatWasMadeSinceIsNot) {
    const Snapshot now = certifiedSnapshot();
    Certificate before = exampleCertificate();
    before.controllers[0].layout.groups.erase(before.controllers[0].layout.groups.begin());
    before.controllers[0].layout.spares.clear();
    EXPECT_EQ(told(allLosses(), now, {before}),
              "logical_drive 0: no certificate has a logical drive on its drives\n"
              "logical_drive 1: own by p-5f1c09ab77e2\n"
              "hotspare 32:6: no certificate has a hot spare on its drive\n");
    // Two certificates tell of it together.
    Certificate other = exampleCertificate();
    other.planId = "p-222222222222";
    other.controllers[0].layout.groups.pop_back();
    EXPECT_EQ(told(allLosses(), now, {before, other}), "logical_drive 0: own by p-222222222222\n"
                                                       "logical_drive 1: own by p-5f1c09ab77e2\n"
                                                       "hotspare 32:6: own by p-222222222222\n");
}

TEST(OwnLosses, WhatACertificateTellsOfIsFoundOnce) {
    Snapshot snapshot = certifiedSnapshot();
    LogicalDriveFacts second = snapshot.details[0].facts.logicalDrives[0];
    second.id = "7";
    snapshot.details[0].facts.logicalDrives.push_back(second);
    EXPECT_EQ(told({lossOf("logical_drive", "0"), lossOf("logical_drive", "7")}, snapshot,
                   {exampleCertificate()}),
              "logical_drive 0: own by p-5f1c09ab77e2\n"
              "logical_drive 7: no certificate has a logical drive more on its drives\n");
}

TEST(OwnLosses, ForeignAndUnknownThingsAreNot) {
    Snapshot snapshot = certifiedSnapshot();
    EXPECT_EQ(told({lossOf("foreign", "32:7"), lossOf("logical_drive", "5"), lossOf("new", "5")},
                   snapshot, {exampleCertificate()}),
              "foreign 32:7: it is of another controller\n"
              "logical_drive 5: it is not there\n"
              "new 5: it is of another controller\n");
    Loss elsewhere = lossOf("logical_drive", "0");
    elsewhere.controller = 2;
    EXPECT_EQ(told({elsewhere}, snapshot, {exampleCertificate()}),
              "logical_drive 0: the controller was not captured\n");
    snapshot.details[0].failed = true;
    EXPECT_EQ(told({lossOf("logical_drive", "0")}, snapshot, {exampleCertificate()}),
              "logical_drive 0: the controller was not captured\n");
}

} // namespace
} // namespace zolex::companion::test
