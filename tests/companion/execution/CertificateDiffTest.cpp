#include "companion/execution/CertificateDiff.h"

#include "companion/picture/DiffText.h"
#include "companion/support/ExampleCertificate.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion::test {
namespace {

std::string told(const Snapshot& snapshot, const Certificate& certificate) {
    MachineDiff diff = diffOf(snapshot, certificate);
    diff.wantedBy = "web.certificate.json";
    return diffText(diff, {}, false);
}

Facts& factsOf(Snapshot& snapshot) {
    return snapshot.details.front().facts;
}

DriveFacts& driveOf(Snapshot& snapshot, std::size_t index) {
    return factsOf(snapshot).drives[index];
}

TEST(CertificateDiff, TheMachineAsItWasLeftIsTheSame) {
    const MachineDiff diff = diffOf(certifiedSnapshot(), exampleCertificate());
    EXPECT_EQ(diff.result, ControllerDiff::Result::same);
    EXPECT_TRUE(diff.isByCertificate);
    EXPECT_EQ(told(certifiedSnapshot(), exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                             same
  = the same layout

The controller is as the certificate says.
)");
}

TEST(CertificateDiff, TellsALogicalDriveThatWasMadeAnew) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).logicalDrives[1].uniqueId = "600aaa01";
    const Certificate certificate = certificateOf(now);
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::same);
    factsOf(now).logicalDrives[1].uniqueId = "600aaa02";
    const MachineDiff diff = diffOf(now, certificate);
    EXPECT_EQ(diff.result, ControllerDiff::Result::equivalent);
    EXPECT_EQ(
        diff.controllers[0].comparison.equivalences,
        std::vector<std::string>{"LD 1 was made anew: its id is 600aaa02 instead of 600aaa01"});
    const auto ending = [](const std::string& text) { return text.substr(text.rfind("\n\n") + 2); };
    EXPECT_EQ(ending(told(now, certificate)),
              "The controller is as the certificate says, but for logical drives that were made\n"
              "anew.\n");
    Snapshot both = now;
    driveOf(both, 1).serialNumber = "3LQ2B777";
    EXPECT_EQ(ending(told(both, certificate)),
              "The controller is as the certificate says, but for drives and logical drives\n"
              "that were made anew.\n");
    // Of a certificate of before nothing is known.
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::same);
}

TEST(CertificateDiff, ALogicalDriveWhoseIdIsNotToldMayBeAnother) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).logicalDrives[1].uniqueId = "600aaa01";
    const Certificate certificate = certificateOf(now);
    factsOf(now).logicalDrives[1].uniqueId.clear();
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::equivalent);
    EXPECT_EQ(told(now, certificate),
              R"(Controller 1  LSI-MegaRAID-8480                                       equivalent
  = the same layout; LD 1 may have been made anew: its id is not told, it was
    600aaa01

The controller is as the certificate says, but for logical drives whose ids are
not told.
)");
    driveOf(now, 1).serialNumber = "3LQ2B777";
    const std::string both = told(now, certificate);
    EXPECT_EQ(both.substr(both.rfind("\n\n") + 2),
              "The controller is as the certificate says, but for drives and logical drives\n"
              "whose ids are not told.\n");
}

TEST(CertificateDiff, ADedicatedSpareIsOfTheArraysThatItWasOf) {
    Snapshot now = certifiedSnapshot();
    driveOf(now, 6).hotspare = HotspareKind::dedicated;
    driveOf(now, 6).covers = {"1"};
    factsOf(now).logicalDrives[0].array = "0";
    factsOf(now).logicalDrives[1].array = "1";
    // One that does not tell of which array.
    Certificate certificate = certificateOf(now);
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::same);
    nameCovers(certificate.controllers[0].layout, factsOf(now));
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::same);
    driveOf(now, 6).covers = {"0"};
    EXPECT_EQ(told(now, certificate),
              R"(Controller 1  LSI-MegaRAID-8480                                        different
  = LD 0  RAID1   67.8 GB  32:0 32:1
  = LD 1  RAID5  135.5 GB  32:3-32:5
  ~ 32:6  spare  certificate dedicated to 1  machine dedicated to 0

The controller differs. This takes a rebuild: kind of hot spare. zolexctl show
web.certificate.json shows what was left there.
)");
}

TEST(CertificateDiff, TellsAttributesThatAreNotAsTheyWere) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).logicalDrives[1].stripSizeBytes = 131072;
    factsOf(now).logicalDrives[1].writeCache = "WriteThrough";
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::different);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                        different
  = LD 0   RAID1   67.8 GB  32:0 32:1
  ~ LD 1   RAID5  135.5 GB  32:3-32:5
      strip size   certificate 64 KB       machine 128 KB
      write cache  certificate write-back  machine write-through
  = spare                   32:6

The controller differs. These take a rebuild: strip size, write cache. zolexctl
show web.certificate.json shows what was left there.
)");
}

TEST(CertificateDiff, TellsWhatIsMissingAndWhatIsMore) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).logicalDrives.erase(factsOf(now).logicalDrives.begin());
    for (const std::size_t index : {0U, 1U}) {
        driveOf(now, index).state = DriveState::free;
    }
    driveOf(now, 6).hotspare = HotspareKind::none;
    driveOf(now, 6).state = DriveState::free;
    driveOf(now, 7).hotspare = HotspareKind::global;
    driveOf(now, 7).state = DriveState::hotspare;
    driveOf(now, 3).serialNumber = "NEW003";
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                        different
  = LD 1  RAID5  135.5 GB  32:3-32:5
  - LD 0  missing  32:0 32:1                   RAID1 fill, strip 64 KB,
                                               write-back, adaptive read-ahead
  ~ 32:6  moved    certificate hot spare 32:6  machine hot spare 32:7
  ! drive 32:3 was replaced: serial number NEW003 instead of 3LQ2A003

The controller differs. This takes a rebuild: the move to the listed drives.
zolexctl show web.certificate.json shows what was left there.
)");
}

TEST(CertificateDiff, ADriveThatWasReplacedIsToldByItsSerialNumber) {
    Snapshot now = certifiedSnapshot();
    driveOf(now, 1).serialNumber = "3LQ2B777";
    driveOf(now, 1).model = "NV73999S";
    *driveOf(now, 1).capacityBytes *= 2;
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::equivalent);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                       equivalent
  = the same layout; drive 32:1 was replaced: serial number 3LQ2B777 instead of
    3LQ2A001, NV73999S instead of NV73455S, 135.5 GB instead of 67.8 GB

The controller is as the certificate says, but for drives.
)");
}

TEST(CertificateDiff, ALayoutThatMovedWithItsDrivesIsTheSameOne) {
    Snapshot now = certifiedSnapshot();
    // The mirror's drives went to the slots 7 and 2, from where two drives were taken out.
    Facts& facts = factsOf(now);
    facts.drives[0].location = "32:7";
    facts.drives[1].location = "32:2";
    facts.drives.erase(facts.drives.begin() + 7);
    facts.drives.erase(facts.drives.begin() + 2);
    facts.logicalDrives[0].spans = {{"32:2", "32:7"}};
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::equivalent);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                       equivalent
  = the same layout; drive 32:0 (serial number 3LQ2A000) is at 32:7 now
    drive 32:1 (serial number 3LQ2A001) is at 32:2 now
    drive 32:2 (serial number 3LQ2A002) is gone
    drive 32:7 (serial number 3LQ2A007) is gone

The controller is as the certificate says, but for drives.
)");
}

TEST(CertificateDiff, ASpareThatHasChangedPlacesWithAMemberIsEquivalent) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).logicalDrives[0].spans = {{"32:0", "32:6"}};
    driveOf(now, 6).state = DriveState::member;
    driveOf(now, 6).hotspare = HotspareKind::none;
    driveOf(now, 1).state = DriveState::hotspare;
    driveOf(now, 1).hotspare = HotspareKind::global;
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::equivalent);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                       equivalent
  = the same layout; the spare is 32:1 instead of 32:6

The controller is as the certificate says, but for drives.
)");
}

TEST(CertificateDiff, ADriveThatIsNewIsTold) {
    Snapshot now = certifiedSnapshot();
    factsOf(now).drives.push_back(exampleDrive(32, 9, 0, "").facts);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(Controller 1  LSI-MegaRAID-8480                                       equivalent
  = the same layout; drive 32:9 is new

The controller is as the certificate says, but for drives.
)");
}

TEST(CertificateDiff, OfAnotherMachineNothingIsCompared) {
    Snapshot now = certifiedSnapshot();
    now.machine.serialNumber = "KQ10Z7W";
    EXPECT_EQ(diffOf(now, exampleCertificate()).result, ControllerDiff::Result::unknown);
    EXPECT_EQ(told(now, exampleCertificate()),
              R"(error: the certificate is of another machine [ZA196]
   its serial number is KQ10Z7W, the certificate is of KQ10Z7V
   help: name the certificate of this machine
Controller 1  LSI-MegaRAID-8480                                          unknown
  the certificate is of another machine

The controller could not be compared.
)");
}

TEST(CertificateDiff, AControllerThatCouldNotBeCapturedIsNotKnown) {
    Snapshot now = certifiedSnapshot();
    const Certificate certificate = exampleCertificate();
    now.details[0].failed = true;
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::unknown);
}

TEST(CertificateDiff, ControllersThatAreAskedForAlone) {
    Snapshot now = certifiedSnapshot();
    now.details.push_back(now.details[0]);
    now.details[1].number = 2;
    now.details[1].pci = "0000:03:0e.0";
    const Certificate both = certificateOf(now);
    EXPECT_EQ(diffOf(now, both).result, ControllerDiff::Result::same);
    Snapshot second = now;
    second.details.erase(second.details.begin());
    const MachineDiff diff = diffOf(second, both, {2});
    EXPECT_EQ(diff.result, ControllerDiff::Result::same);
    EXPECT_EQ(diff.controllers.size(), 1U);
    second.details[0].facts.serialNumber = "other";
    EXPECT_EQ(diffOf(second, both, {2}).result, ControllerDiff::Result::unknown);
}

TEST(CertificateDiff, DrivesWithoutSerialNumbersAreKnownByTheirPlaces) {
    Snapshot now = certifiedSnapshot();
    for (DriveFacts& drive : factsOf(now).drives) {
        drive.serialNumber.clear();
    }
    const Certificate certificate = certificateOf(now);
    EXPECT_EQ(diffOf(now, certificate).result, ControllerDiff::Result::same);
    driveOf(now, 7).model = "NV99999S";
    const MachineDiff diff = diffOf(now, certificate);
    ASSERT_EQ(diff.controllers.size(), 1U);
    EXPECT_EQ(diff.controllers[0].comparison.equivalences,
              std::vector<std::string>{"drive 32:7 was replaced: NV99999S instead of NV73455S"});
}

} // namespace
} // namespace zolex::companion::test
