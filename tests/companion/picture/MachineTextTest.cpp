#include "companion/picture/MachineText.h"

#include "companion/picture/PlainStyle.h"
#include "companion/support/ExampleSnapshot.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::exampleDrive;
using test::exampleLogicalDrive;
using test::exampleSnapshot;
using test::makeMember;

TEST(MachineText, ShowsWhichDriveIsWhereWhatIsBrokenAndWhatIsFree) {
    EXPECT_EQ(machineText(exampleSnapshot(), test::plainStyle, false),
              R"(Machine 8837, serial KQ10Z7V
Controller 1  LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)  serial 1122334455
              PCI 02:0e.0 1000:0411 1000:1002  firmware 1.11.50-0300
              levels 0 1 5 6 10 50 60, strip 8-1024 KB, rebuild rate 30 %
  Enclosure 32
    no  location     size  drive                 state               in
     1  32:0      67.8 GB  NORVIK NV73455S A000  Online              A
     2  32:1      67.8 GB  NORVIK NV73455S A001  Online              A
     -  32:2      67.8 GB  NORVIK NV73455S A002  Failed              -
     3  32:3      67.8 GB  NORVIK NV73455S A003  Online              B
     4  32:4      67.8 GB  NORVIK NV73455S A004  Online              B
     5  32:5      67.8 GB  NORVIK NV73455S A005  Online              B
     6  32:6      67.8 GB  NORVIK NV73455S A006  Hotspare            spare
     7  32:7      67.8 GB  NORVIK NV73455S A007  Unconfigured(good)  free
  ! 32:2 is failed and has no number: policies' drive 3 is 32:3 now
  ! 32:4 has 12 media errors, 1 predicted failure, and is in array B
  A  32:0 32:1  LD 0  RAID1   67.8 GB  optimal  write-back  64 KB
  B  32:3-32:5  LD 1  RAID5  135.5 GB  optimal  write-back  64 KB
  x  32:2       failed, serial 3LQ2A002
  *  32:6       1 hot spare, 67.8 GB
  .  32:7       1 free drive, 67.8 GB
)");
}

TEST(MachineText, TitlesOfEnclosuresStandBesideTheirDrivesWhereThereIsRoom) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.coreMessages.clear();
    ControllerSnapshot& controller = snapshot.details[0];
    controller.findings.clear();
    controller.drives.resize(2);
    controller.drives.push_back(exampleDrive(64, 0, 3, "3LQ2B000"));
    controller.arrays.pop_back();
    controller.facts.logicalDrives.pop_back();
    controller.drives[2].facts.reportedState = "Ready";
    EXPECT_EQ(machineText(snapshot, test::plainStyle, false),
              R"(Machine 8837, serial KQ10Z7V
Controller 1  LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)  serial 1122334455
              PCI 02:0e.0 1000:0411 1000:1002  firmware 1.11.50-0300
              levels 0 1 5 6 10 50 60, strip 8-1024 KB, rebuild rate 30 %
  Enclosure 32  no  location     size  drive                 state   in
                 1  32:0      67.8 GB  NORVIK NV73455S A000  Online  A
                 2  32:1      67.8 GB  NORVIK NV73455S A001  Online  A
  Enclosure 64  no  location     size  drive                 state   in
                 3  64:0      67.8 GB  NORVIK NV73455S B000  Ready   free
  A  32:0 32:1  LD 0  RAID1  67.8 GB  optimal  write-back  64 KB
  .  64:0       1 free drive, 67.8 GB
)");
}

TEST(MachineText, ANarrowTerminalGetsNarrowLines) {
    Snapshot snapshot = exampleSnapshot();
    const std::string text = machineText(snapshot, {false, 44}, false);
    EXPECT_EQ(text, R"(Machine 8837, serial KQ10Z7V
Controller 1  LSI MegaRAID SAS 8480E
              (LSI-MegaRAID-8480)
              serial 1122334455
              PCI 02:0e.0 1000:0411
              1000:1002
              firmware 1.11.50-0300
              levels 0 1 5 6 10 50 60,
              strip 8-1024 KB,
              rebuild rate 30 %
  Enclosure 32
    no  location     size  drive  in
     1  32:0      67.8 GB  A000   A
     2  32:1      67.8 GB  A001   A
     -  32:2      67.8 GB  A002   -
     3  32:3      67.8 GB  A003   B
     4  32:4      67.8 GB  A004   B
     5  32:5      67.8 GB  A005   B
     6  32:6      67.8 GB  A006   spare
     7  32:7      67.8 GB  A007   free
  ! 32:2 is failed and has no number:
    policies' drive 3 is 32:3 now
  ! 32:4 has 12 media errors, 1 predicted
    failure, and is in array B
  A  32:0 32:1
     LD 0  RAID1  67.8 GB  optimal
     write-back  64 KB
  B  32:3-32:5
     LD 1  RAID5  135.5 GB  optimal
     write-back  64 KB
  x  32:2       failed, serial 3LQ2A002
  *  32:6       1 hot spare, 67.8 GB
  .  32:7       1 free drive, 67.8 GB
)");
}

TEST(MachineText, TheWidestDrivesFitIntoTheNarrowestTerminal) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details.front();
    std::int32_t slot = 200;
    for (MachineDrive& drive : controller.drives) {
        drive.facts.location = "65535:" + std::to_string(slot++);
        drive.facts.state = DriveState::foreign;
        drive.facts.capacityBytes = std::uint64_t{893} << 30U;
        drive.array.clear();
    }
    controller.arrays.clear();
    controller.facts.logicalDrives.clear();
    const std::string text = machineText(snapshot, {false, 40}, false);
    EXPECT_NE(text.find("no  location       size  in\n"), std::string::npos) << text;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        EXPECT_LE(columnsOf(text.substr(at, end - at)), 40U) << text.substr(at, end - at);
        at = end + 1;
    }
}

TEST(MachineText, ColoursMarkWhatIsBroken) {
    const std::string text = machineText(exampleSnapshot(), {true, 80}, false);
    const char* const lines[] = {
        "\033[1mMachine 8837, serial KQ10Z7V\033[0m\n",
        "\033[36mController 1  \033[0m\033[1mLSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)  serial "
        "1122334455\033[0m\n",
        "  \033[36mEnclosure 32\033[0m\n",
        "     \033[1m2\033[0m  32:1      67.8 GB  NORVIK NV73455S A001  Online              "
        "\033[1mA\033[0m\n",
        "     \033[31m-\033[0m  \033[31m32:2\033[0m      \033[31m67.8 GB\033[0m  \033[31mNORVIK "
        "NV73455S A002\033[0m  \033[31mFailed\033[0m              \033[31m-\033[0m\n",
        "\033[33m  ! 32:4 has 12 media errors, 1 predicted failure, and is in array B\033[0m\n",
        "  \033[1mA\033[0m  32:0 32:1  LD 0  RAID1   67.8 GB  \033[32moptimal\033[0m  write-back  "
        "64 KB\n",
        "  \033[31mx\033[0m  32:2       \033[31mfailed, serial 3LQ2A002\033[0m\n",
    };
    for (const char* const line : lines) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
    // Without the colours it is what stands there without colours.
    std::string bare;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\033') {
            i = text.find('m', i);
        } else {
            bare += text[i];
        }
    }
    EXPECT_EQ(bare, machineText(exampleSnapshot(), test::plainStyle, false));
}

/// A controller that has everything that is rare.
Snapshot rareSnapshot() {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    std::vector<MachineDrive>& drives = controller.drives;
    drives[0].facts.state = DriveState::failed;
    drives[0].facts.reportedState = "Offline";
    drives[1].facts.state = DriveState::rebuilding;
    drives[1].facts.reportedState = "Rebuild";
    drives[1].facts.health = Health::warning;
    drives[2].facts.state = DriveState::missing;
    drives[2].facts.reportedState.clear();
    drives[2].facts.serialNumber.clear();
    drives[6].facts.hotspare = HotspareKind::dedicated;
    drives[7].facts.state = DriveState::foreign;
    drives[7].facts.isForeign = true;
    drives.push_back(exampleDrive(32, 8, 8, "X"));
    drives.back().facts.state = DriveState::jbod;
    drives.push_back(exampleDrive(32, 9, 9, "Y"));
    drives.back().facts.state = DriveState::unknown;
    drives.back().facts.reportedState = "\033[2J";
    drives.back().facts.manufacturer.clear();
    drives.back().facts.model.clear();
    drives.back().facts.inquiry = "RAW \xFF TEXT";
    drives.back().facts.capacityBytes.reset();
    controller.arrays[1].drives.push_back("32:12");
    controller.facts.logicalDrives[1].health = Health::warning;
    controller.facts.logicalDrives[1].reportedState = "Degraded";
    controller.facts.logicalDrives[1].name = "data \"1\"";
    controller.facts.foreignConfigurations = {"RAID1 of 32:7"};
    controller.arrays.push_back({"C", "2", {"32:9"}, {}});
    return snapshot;
}

TEST(MachineText, NothingOfALayoutIsLeftOut) {
    const std::string text = machineText(rareSnapshot(), test::plainStyle, false);
    const std::size_t layout = text.find("  ! 32:2 is failed");
    EXPECT_EQ(text.substr(layout),
              R"(  ! 32:2 is failed and has no number: policies' drive 3 is 32:3 now
  ! 32:4 has 12 media errors, 1 predicted failure, and is in array B
  A  32:0 32:1
     LD 0  RAID1   67.8 GB  optimal   write-back  64 KB
  B  32:3-32:5 32:12
     LD 1  RAID5  135.5 GB  degraded  write-back  64 KB  "data "1""
  C  32:9             no logical drive
  x  32:0             offline, serial 3LQ2A000, of array A
  x  32:2             missing
  x  32:12            missing in array B
  *  32:6             1 dedicated hot spare, 67.8 GB
  ~  32:7             1 foreign drive, 67.8 GB
  =  32:8             1 drive that the system sees as it is, 67.8 GB
  ?  32:9             1 drive in an unknown state
  ~  foreign configuration: RAID1 of 32:7
)");
    EXPECT_NE(
        text.find("\n     9  32:9            ?  RAW ? TEXT Y          ?[2J                -\n"),
        std::string::npos)
        << text;
}

TEST(MachineText, AControllerThatFailedIsTold) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    controller.failed = true;
    controller.facts = Facts();
    controller.drives.clear();
    controller.arrays.clear();
    controller.commands[0].exitCode = 3;
    controller.findings[0].summary = "UTIL.BAT MEGACLI -pdList -a0 ended with exit code 3";
    controller.findings[0].severity = Severity::error;
    controller.findings[0].help = {"start the command by hand"};
    EXPECT_EQ(machineText(snapshot, test::plainStyle, false), R"(Machine 8837, serial KQ10Z7V
Controller 1  LSI-MegaRAID-8480
              PCI 02:0e.0 1000:0411 1000:1002
  ! MEGACLI failed: nothing more is known
  ! UTIL.BAT MEGACLI -pdList -a0 ended with exit code 3
    help: start the command by hand
)");
}

TEST(MachineText, AMachineWithoutControllersOrNamesIsShownToo) {
    EXPECT_EQ(machineText(Snapshot(), test::plainStyle, false),
              "Machine of unknown type, serial not known\nNo RAID controller\n");
    Snapshot snapshot;
    snapshot.details.emplace_back().number = 1;
    snapshot.details[0].model = "Kestrix-C7";
    Finding finding;
    finding.summary = "the machine type is not known";
    finding.severity = Severity::note;
    snapshot.findings.push_back(finding);
    EXPECT_EQ(machineText(snapshot, test::plainStyle, false),
              "Machine of unknown type, serial not known\n"
              "  the machine type is not known\n"
              "Controller 1  Kestrix-C7\n"
              "  No drives\n");
}

TEST(MachineText, MoreIsToldWhenAskedFor) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].facts.listings.resize(1);
    snapshot.details[0].facts.listings[0].blocks = 10;
    snapshot.details[0].facts.listings[0].blocksRead = 9;
    snapshot.details[0].facts.listings[0].keys = 171;
    snapshot.details[0].facts.listings[0].keysUsed = 14;
    snapshot.details[0].findings[0].detail = "Every number behind it names the next drive.";
    snapshot.details[0].findings[0].help = {"name drives by their slot"};
    const std::string text = machineText(snapshot, test::plainStyle, true);
    EXPECT_EQ(text.substr(0, text.find('\n')),
              "Machine 8837, serial KQ10Z7V (told by hwdetect.exe)");
    EXPECT_NE(text.find("  ! 32:2 is failed and has no number: policies' drive 3 is 32:3 now\n"
                        "    Every number behind it names the next drive.\n"
                        "    help: name drives by their slot\n"),
              std::string::npos)
        << text;
    const std::string end = "  .  32:7       1 free drive, 67.8 GB\n"
                            "  UTIL.BAT MEGACLI -pdList -a0\n"
                            "      exit code 0, 380 ms, 9 of 10 blocks read, 14 of 171 keys used\n"
                            "\n"
                            "Messages of the core\n"
                            "  A message of the core.\n";
    EXPECT_TRUE(text.ends_with(end)) << text;
}

TEST(MachineText, TwoControllersHaveALineBetweenThem) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details.push_back(snapshot.details[0]);
    snapshot.details[1].number = 2;
    const std::string text = machineText(snapshot, test::plainStyle, false);
    EXPECT_NE(text.find("free drive, 67.8 GB\n\nController 2  LSI"), std::string::npos) << text;
}

} // namespace
} // namespace zolex::companion
