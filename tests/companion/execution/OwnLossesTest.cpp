#include "companion/execution/OwnLosses.h"

#include "companion/support/ExampleCertificate.h"

#include <gtest/gtest.h>

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
                 const std::vector<Certificate>& certificates,
                 const std::vector<NumberedDrives>& numbered = {}) {
    std::string text;
    for (const OwnLoss& own : ownLosses(losses, snapshot, certificates, numbered)) {
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

TEST(OwnLosses, DrivesAreKnownByTheirSerialNumbers) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    // Another drive stands in the slot now.
    Certificate replaced = exampleCertificate();
    driveOf(replaced, 1).serialNumber = "OLD";
    driveOf(replaced, 6).serialNumber = "OLDER";
    EXPECT_EQ(told(allLosses(), certifiedSnapshot(), {replaced}),
              "logical_drive 0: no certificate has a logical drive on its drives\n"
              "logical_drive 1: own by p-5f1c09ab77e2\n"
              "hotspare 32:6: no certificate has a hot spare on its drive\n");
    // The same drives stood in each other's slots.
    Certificate moved = exampleCertificate();
    std::swap(driveOf(moved, 0).serialNumber, driveOf(moved, 1).serialNumber);
    EXPECT_EQ(told(first, certifiedSnapshot(), {moved}),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    // What tells no serial number is never own, wherever it stands.
    Snapshot untold = certifiedSnapshot();
    untold.details[0].facts.drives[0].serialNumber = "";
    untold.details[0].facts.drives[6].serialNumber = "To Be Filled By O.E.M.";
    EXPECT_EQ(told(allLosses(), untold, {exampleCertificate()}),
              "logical_drive 0: a drive of it tells no serial number of its own\n"
              "logical_drive 1: own by p-5f1c09ab77e2\n"
              "hotspare 32:6: its drive tells no serial number of its own\n");
    // Two drives that tell the same number are not known by it.
    Snapshot twice = certifiedSnapshot();
    twice.details[0].facts.drives[7].serialNumber = "3LQ2A000";
    EXPECT_EQ(told(first, twice, {exampleCertificate()}),
              "logical_drive 0: a drive of it tells no serial number of its own\n");
}

/// Numbers of drives shift when one is pulled, though it was free; what is built then lies on other
/// drives.
TEST(OwnLosses, ADriveThatIsGoneOrNewShiftsTheNumbersOfTheOthers) {
    const std::vector<Loss> first = {lossOf("logical_drive", "0")};
    const std::vector<NumberedDrives> numbered = {{1, "Array.A"}};
    const std::vector<Certificate> certificates = {exampleCertificate()};
    EXPECT_EQ(told(first, certifiedSnapshot(), certificates, numbered),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    Snapshot pulled = certifiedSnapshot();
    const DriveFacts gone = pulled.details[0].facts.drives.back();
    pulled.details[0].facts.drives.pop_back();
    EXPECT_EQ(told(first, pulled, certificates, numbered),
              "logical_drive 0: drive " + gone.location + " (serial number " + gone.serialNumber +
                  ") is gone since p-5f1c09ab77e2: Array.A names drives by number, and the "
                  "numbers have shifted; put it back, or name drives by their slots\n");
    EXPECT_EQ(told(first, pulled, certificates, {{2, "Array.A"}}),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    EXPECT_EQ(told(first, pulled, certificates), "logical_drive 0: own by p-5f1c09ab77e2\n");
    // Another drive in its bay shifts nothing.
    Snapshot replaced = certifiedSnapshot();
    replaced.details[0].facts.drives.back().serialNumber = "NEW";
    EXPECT_EQ(told(first, replaced, certificates, numbered),
              "logical_drive 0: own by p-5f1c09ab77e2\n");
    Snapshot added = certifiedSnapshot();
    DriveFacts more = gone;
    more.location = "32:20";
    more.serialNumber = "NEW";
    added.details[0].facts.drives.push_back(more);
    EXPECT_EQ(told(first, added, certificates, numbered),
              "logical_drive 0: drive 32:20 (serial number NEW) is new since p-5f1c09ab77e2: "
              "Array.A names drives by number, and the numbers have shifted; take it out, or name "
              "drives by their slots\n");
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
