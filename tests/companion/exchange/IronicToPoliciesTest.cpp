// Each kind of document that Ironic's guide has, and each that is refused.

#include "companion/exchange/IronicToPolicies.h"

#include "companion/binding/KindMachine.h"
#include "companion/planning/PlannedServer.h"
#include "companion/text/Diagnostics.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

constexpr const char* megaRaid = "LSI-MegaRAID-8480";

/// What is told, one line each, and then the policies without their comments.
std::string told(std::string_view document, const std::string& model,
                 const Snapshot* machine = nullptr) {
    const IronicPolicies made = policiesOf(document, {"nodes/n7.json", model, machine, "1"});
    std::string text;
    for (const Finding& finding : made.findings) {
        text += std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column) +
                " " + std::string(severityWord(finding.severity)) + ": " + finding.summary + " [" +
                finding.code + "]\n";
        for (const std::string& help : finding.help) {
            text += "  " + help + "\n";
        }
    }
    for (std::size_t at = 0; at < made.text.size();) {
        const std::size_t end = made.text.find('\n', at);
        if (made.text[at] != ';' && end > at) {
            text += made.text.substr(at, end - at) + "\n";
        }
        at = end + 1;
    }
    return text;
}

TEST(IronicToPolicies, OneRaid5OfAllThatIsThere) {
    EXPECT_EQ(
        told(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "5", "is_root_volume": true}]})",
             megaRaid),
        R"(2:3 warning: logical_disks[0]: no drives are named: drives 1, 2, 3 are written, the least number for RAID 5 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
2:59 warning: logical_disks[0].is_root_volume: policies cannot say which logical drive is the root; left out [ZX952]
[Policy.n7]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5
)");
}

TEST(IronicToPolicies, TwoLogicalDisksByHints) {
    constexpr const char* document = R"({"logical_disks": [
  {"size_gb": 100, "raid_level": "1", "disk_type": "ssd"},
  {"size_gb": 500, "raid_level": "5", "disk_type": "hdd", "interface_type": "sas"}]})";
    EXPECT_EQ(
        told(document, "Kestrix-C1"),
        R"(2:3 warning: logical_disks[0]: no drives are named: drives 1, 2 are written, the least number for RAID 1 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
2:15 note: logical_disks[0].size_gb: 100 is written as 102400 MB [ZX956]
2:52 warning: logical_disks[0].disk_type: "ssd": policies cannot ask for it; left out [ZX951]
3:3 warning: logical_disks[1]: no drives are named: drives 3, 4, 5 are written, the least number for RAID 5 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
3:15 note: logical_disks[1].size_gb: 500 is written as 512000 MB [ZX956]
3:52 warning: logical_disks[1].disk_type: "hdd": policies cannot ask for it; left out [ZX951]
3:77 warning: logical_disks[1].interface_type: "sas": policies cannot ask for it; left out [ZX951]
[Policy.n7]
AppliesTo.1 = t:Kestrix-C1
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:102400:1
Logical.2 = B:512000:5
)");
    const Snapshot machine = test::capturedKinds(test::kindServer(test::mixedDrives));
    EXPECT_EQ(told(document, "", &machine),
              R"(2:3 note: logical_disks[0]: the first free SSD drives are taken: 32:0 32:1 [ZX954]
2:15 note: logical_disks[0].size_gb: 100 is written as 102400 MB [ZX956]
2:52 note: logical_disks[0].disk_type: "ssd": policies cannot ask for it; left out, and the drives were taken by it [ZX951]
3:3 note: logical_disks[1]: the first free SAS HDD drives are taken: 32:4 32:5 32:6 [ZX954]
3:15 note: logical_disks[1].size_gb: 500 is written as 512000 MB [ZX956]
3:52 note: logical_disks[1].disk_type: "hdd": policies cannot ask for it; left out, and the drives were taken by it [ZX951]
3:77 note: logical_disks[1].interface_type: "sas": policies cannot ask for it; left out, and the drives were taken by it [ZX951]
[Policy.n7]
AppliesTo.1 = t:Kestrix-C1,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 5,6,7
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:102400:1
Logical.2 = B:512000:5
)");
}

TEST(IronicToPolicies, NamedDrivesOnANamedController) {
    constexpr const char* document = R"({"logical_disks": [
  {"size_gb": 20, "raid_level": "1", "controller": "LSI-MegaRAID-8480",
   "physical_disks": ["32:2", "32:3"]}]})";
    test::PlannedServer server("single");
    const Snapshot machine = server.snapshot();
    EXPECT_EQ(told(document, "", &machine),
              R"(2:15 note: logical_disks[0].size_gb: 20 is written as 20480 MB [ZX956]
[Policy.n7]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:20480:1
)");
    EXPECT_EQ(
        told(document, ""),
        R"(3:23 error: logical_disks[0].physical_disks[0]: "32:2" is no number of a drive, and without the server its location cannot be looked up [ZX954]
  zolexctl record -o server.zrec on the server, and --machine server.zrec
)");
    EXPECT_EQ(told(R"({"logical_disks": [{"size_gb": 20, "raid_level": "1",
  "controller": "t:LSI-MegaRAID-8480,c:1", "physical_disks": ["3", "4"]}]})",
                   ""),
              R"(1:32 note: logical_disks[0].size_gb: 20 is written as 20480 MB [ZX956]
[Policy.n7]
AppliesTo.1 = t:LSI-MegaRAID-8480,c:1
Array_Mode = CUSTOM
Array.A = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:20480:1
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 20, "raid_level": "5",
  "controller": "RAID.Integrated.1-1", "physical_disks": [
    "Disk.Bay.0:Encl.Int.0-1:RAID.Integrated.1-1", "6I:1:5", "6I:1:6"]}]})",
             "", &machine),
        R"(2:17 warning: logical_disks[0].controller: "RAID.Integrated.1-1" is how a driver calls it: left out, the controller of the server is taken [ZX959]
3:5 error: logical_disks[0].physical_disks[0]: "Disk.Bay.0:Encl.Int.0-1:RAID.Integrated.1-1" is no drive of controller 1 [ZX954]
  zolexctl show RECORDING lists the drives
)");
}

TEST(IronicToPolicies, TwoVolumesWithNamesOnOneController) {
    EXPECT_EQ(told(R"({"logical_disks": [
  {"size_gb": 50, "raid_level": "1+0", "controller": "LSI-MegaRAID-8480",
   "volume_name": "root_volume", "is_root_volume": true, "physical_disks": ["1", "2"]},
  {"size_gb": 100, "raid_level": "5", "controller": "LSI-MegaRAID-8480",
   "volume_name": "data_volume", "physical_disks": ["3", "4", "5"]}]})",
                   ""),
              R"(2:15 note: logical_disks[0].size_gb: 50 is written as 51200 MB [ZX956]
2:33 error: logical_disks[0].raid_level: RAID 10 takes 4 or more drives, and Array.A has 2 drives [ZX402]
  LSI-MegaRAID-8480 makes 0 or 1 of 2 drives
3:19 warning: logical_disks[0].volume_name: policies cannot name a logical drive; "root_volume" is left out [ZX952]
3:52 warning: logical_disks[0].is_root_volume: policies cannot say which logical drive is the root; left out [ZX952]
4:15 note: logical_disks[1].size_gb: 100 is written as 102400 MB [ZX956]
5:19 warning: logical_disks[1].volume_name: policies cannot name a logical drive; "data_volume" is left out [ZX952]
)");
    EXPECT_EQ(told(R"({"logical_disks": [
  {"size_gb": 50, "raid_level": "1", "controller": "LSI-MegaRAID-8480",
   "volume_name": "root_volume", "is_root_volume": true, "physical_disks": ["1", "2"]},
  {"size_gb": 100, "raid_level": "5", "controller": "LSI-MegaRAID-8480",
   "volume_name": "data_volume", "physical_disks": ["3", "4", "5"]}]})",
                   ""),
              R"(2:15 note: logical_disks[0].size_gb: 50 is written as 51200 MB [ZX956]
3:19 warning: logical_disks[0].volume_name: policies cannot name a logical drive; "root_volume" is left out [ZX952]
3:52 warning: logical_disks[0].is_root_volume: policies cannot say which logical drive is the root; left out [ZX952]
4:15 note: logical_disks[1].size_gb: 100 is written as 102400 MB [ZX956]
5:19 warning: logical_disks[1].volume_name: policies cannot name a logical drive; "data_volume" is left out [ZX952]
[Policy.n7]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:51200:1
Logical.2 = B:102400:5
)");
}

TEST(IronicToPolicies, SoftwareRaidAndHintObjects) {
    EXPECT_EQ(
        told(R"({"logical_disks": [
  {"size_gb": 100, "raid_level": "1", "controller": "software"},
  {"size_gb": "MAX", "raid_level": "0", "controller": "software",
   "physical_disks": [{"size": "> 100"}, {"size": "> 100"}]}]})",
             megaRaid),
        R"(2:53 error: logical_disks[0].controller: software RAID is made by the operating system, and by no RAID controller [ZX953]
3:55 error: logical_disks[1].controller: software RAID is made by the operating system, and by no RAID controller [ZX953]
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 100, "raid_level": "1",
  "physical_disks": [{"size": "> 100"}, {"size": "> 100"}]}]})",
             megaRaid),
        R"(2:21 error: logical_disks[0].physical_disks: objects with hints are for software RAID, and policies name drives [ZX953]
  name the drives: "physical_disks": ["32:0", "32:1"]
)");
}

TEST(IronicToPolicies, LevelsAndSizesThatPoliciesCannotSay) {
    EXPECT_EQ(told(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "JBOD"},
  {"size_gb": "MAX", "raid_level": "2"},
  {"size_gb": 2097152, "raid_level": "1"},
  {"size_gb": 2097151, "raid_level": "1"}]})",
                   megaRaid),
              R"(2:36 error: logical_disks[0].raid_level: policies have no level "JBOD" [ZX950]
3:36 error: logical_disks[1].raid_level: policies have no level "2" [ZX950]
4:15 error: logical_disks[2].size_gb: 2097152 is more than 2097151 GiB, the most that policies can say [ZX956]
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 10, "raid_level": "1"}]})", "LSI-IDEal-RAID"),
        R"(1:20 warning: logical_disks[0]: no drives are named: drives 1, 2 are written, the least number for RAID 1 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
1:32 warning: logical_disks[0].size_gb: 10 is left out: a logical drive of HYPERWIN fills its drives [ZX956]
[Policy.n7]
AppliesTo.1 = t:LSI-IDEal-RAID
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 10, "raid_level": "6"}]})", megaRaid),
        R"(1:20 warning: logical_disks[0]: no drives are named: drives 1, 2, 3, 4 are written, the least number for RAID 6 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
1:32 note: logical_disks[0].size_gb: 10 is written as 10240 MB [ZX956]
1:50 error: logical_disks[0].raid_level: RAID 6 is not possible on LSI-MegaRAID-8480 [ZX401]
  LSI-MegaRAID-8480 has 0, 1, 5, 10, 50
)");
}

TEST(IronicToPolicies, DrivesThatAreShared) {
    const auto shared = [](const char* drives, const char* first, const char* second) {
        return std::string(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["1", "2"])") +
               first + R"(},
  {"size_gb": 10, "raid_level": "1", "physical_disks": )" +
               drives + second + "}]}";
    };
    constexpr const char* share = R"(, "share_physical_disks": true)";
    EXPECT_EQ(
        told(shared(R"(["2", "1"])", "", share), megaRaid),
        R"(3:56 error: logical_disks[1].physical_disks: these are the drives of logical_disks[0], and not both say share_physical_disks [ZX955]
  name other drives, or add "share_physical_disks": true to both
)");
    EXPECT_EQ(
        told(shared(R"(["2", "1"])", share, share), megaRaid),
        R"(3:92 error: logical_disks[1].share_physical_disks: MEGACLI takes one logical drive on these drives, and logical_disks[0] is it [ZX955]
  name other drives, or make one logical disk of both
)");
    EXPECT_EQ(
        told(shared(R"(["2", "3"])", share, share), megaRaid),
        R"(3:56 error: logical_disks[1].physical_disks: some of these drives are those of logical_disks[0], and an array has all its drives for itself [ZX955]
  name the same drives, or others
)");
    EXPECT_EQ(told(shared(R"(["2", "1"])", share, share), "Kestrix-A1"),
              R"(3:15 note: logical_disks[1].size_gb: 10 is written as 10240 MB [ZX956]
[Policy.n7]
AppliesTo.1 = t:Kestrix-A1
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:10240:1
Logical.2 = A:FILL:1
)");
}

TEST(IronicToPolicies, DrivesThatAreNotThere) {
    test::PlannedServer server("single");
    const Snapshot machine = server.snapshot();
    EXPECT_EQ(told(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["32:0", "1"]},
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["32:1", "32:9"]},
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["32:1", "32:2"],
   "number_of_physical_disks": 3},
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["32:1", "32:2"],
   "interface_type": "sata"},
  {"size_gb": "MAX", "raid_level": "0", "number_of_physical_disks": 9},
  {"size_gb": "MAX", "raid_level": "0", "disk_type": "ssd"}]})",
                   "", &machine),
              R"(2:68 error: logical_disks[0].physical_disks[1]: "1" is named twice [ZX954]
3:68 error: logical_disks[1].physical_disks[1]: "32:9" is no drive of controller 1 [ZX954]
  zolexctl show RECORDING lists the drives
5:32 error: logical_disks[2].number_of_physical_disks: it is 3, and physical_disks names 2 drives [ZX954]
  take it out, or name so many
6:60 error: logical_disks[3].physical_disks[0]: "32:1" is a drive of kind SAS HDD, and disk_type or interface_type asks for another [ZX954]
  take the hint out, or name another drive
8:69 error: logical_disks[4].number_of_physical_disks: free drives: 9 wanted, and controller 1 has 8 that no other takes [ZX954]
  zolexctl show RECORDING lists the drives
9:3 error: logical_disks[5]: free SSD drives: 1 wanted, and controller 1 has none that no other takes [ZX954]
  zolexctl show RECORDING lists the drives
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "0", "number_of_physical_disks": 2},
  {"size_gb": "MAX", "raid_level": "1", "physical_disks": ["0", "145"]}]})",
             megaRaid),
        R"(2:69 error: logical_disks[0].number_of_physical_disks: drives have to be chosen, and no server is told to choose them of [ZX954]
  zolexctl record -o server.zrec on the server, and --machine server.zrec
3:60 error: logical_disks[1].physical_disks[0]: "0" is no number of a drive, and without the server its location cannot be looked up [ZX954]
  zolexctl record -o server.zrec on the server, and --machine server.zrec
)");
    EXPECT_EQ(told(R"({"logical_disks": [{"size_gb": 900, "raid_level": "1"}]})", "", &machine),
              R"(1:20 note: logical_disks[0]: the first free drives are taken: 32:0 32:1 [ZX954]
1:32 note: logical_disks[0].size_gb: 900 is written as 921600 MB [ZX956]
1:51 error: logical_disks[0].raid_level: Array.A has room for 69376 MB, and Logical.1 asks for 921600 [ZX110]
  MEGACLI refuses the command, exit code 11, when those before it are done
  write FILL for all that is left
)");
}

TEST(IronicToPolicies, ControllersThatAreNotTold) {
    test::PlannedServer server("mixed");
    const Snapshot machine = server.snapshot();
    constexpr const char* nameless = R"({"logical_disks": [{"size_gb": 10, "raid_level": "1"},
  {"size_gb": 10, "raid_level": "1"}]})";
    constexpr const char* drivers = R"({"logical_disks": [{"size_gb": 10, "raid_level": "1",
  "controller": "RAID.Integrated.1-1"}]})";
    EXPECT_EQ(told(nameless, ""),
              R"(1:20 error: logical_disks[0]: which controller is meant is not told [ZX959]
  name its model: --model LSI-MegaRAID-8480
)");
    EXPECT_EQ(told(nameless, "", &machine),
              R"(1:20 error: logical_disks[0]: 7 controllers of the server can be meant [ZX959]
  name it as the server has it: "controller": "c:1"
  zolexctl show RECORDING lists the controllers
)");
    EXPECT_EQ(
        told(drivers, ""),
        R"(2:17 error: logical_disks[0].controller: "RAID.Integrated.1-1" is no model of a controller, and how a driver calls it is not known here [ZX959]
  name its model: --model LSI-MegaRAID-8480
)");
    EXPECT_EQ(
        told(drivers, megaRaid),
        R"(1:20 warning: logical_disks[0]: no drives are named: drives 1, 2 are written, the least number for RAID 1 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
1:32 note: logical_disks[0].size_gb: 10 is written as 10240 MB [ZX956]
2:17 warning: logical_disks[0].controller: "RAID.Integrated.1-1" is how a driver calls it: left out, LSI-MegaRAID-8480 is taken [ZX959]
[Policy.n7]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:10240:1
)");
    // Two names are two controllers, and not one.
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 10, "raid_level": "1",
  "controller": "RAID.Integrated.1-1"}, {"size_gb": 10, "raid_level": "1",
  "controller": "RAID.Slot.2-1"}]})",
             megaRaid),
        R"(2:17 warning: logical_disks[0].controller: "RAID.Integrated.1-1" is how a driver calls it: left out, LSI-MegaRAID-8480 is taken [ZX959]
3:17 error: logical_disks[1].controller: "RAID.Slot.2-1" is another controller than "RAID.Integrated.1-1", and which of the server's they are is not known here [ZX959]
  name each as the server has it: "controller": "c:1"
)");
    EXPECT_EQ(told(R"({"logical_disks": [{"size_gb": 10, "raid_level": "1",
  "controller": "c:9"}]})",
                   "", &machine),
              R"(2:17 error: logical_disks[0].controller: the server has no controller c:9 [ZX959]
  name it as the server has it: "controller": "c:1"
  zolexctl show RECORDING lists the controllers
)");
    EXPECT_EQ(
        told(R"({"logical_disks": [{"size_gb": 10, "raid_level": "1",
  "controller": "Kestrix-B7"}]})",
             megaRaid),
        R"(2:17 error: logical_disks[0].controller: it is "Kestrix-B7", and --model is LSI-MegaRAID-8480 [ZX959]
  leave --model out
)");
}

TEST(IronicToPolicies, OnePolicyForEachControllerThatIsNamed) {
    EXPECT_EQ(
        told(R"({"logical_disks": [
  {"size_gb": "MAX", "raid_level": "1", "controller": "LSI-MegaRAID-8480"},
  {"size_gb": "MAX", "raid_level": "1", "controller": "c:2"},
  {"size_gb": "MAX", "raid_level": "5", "controller": "LSI-MegaRAID-8480"}]})",
             ""),
        R"(2:3 warning: logical_disks[0]: no drives are named: drives 1, 2 are written, the least number for RAID 1 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
3:3 warning: logical_disks[1]: no drives are named: drives 1, 2 are written, the least number for RAID 1 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
4:3 warning: logical_disks[2]: no drives are named: drives 3, 4, 5 are written, the least number for RAID 5 [ZX954]
  to choose among free drives: zolexctl record -o server.zrec on the server, and --machine server.zrec
[Policy.n7-1]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:FILL:5
[Policy.n7-2]
AppliesTo.1 = c:2
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)");
}

TEST(IronicToPolicies, MoreThanEightArrays) {
    std::string document = R"({"logical_disks": [)";
    for (int i = 0; i < 9; ++i) {
        document += std::string(i == 0 ? "" : ",\n") + R"({"size_gb": "MAX", "raid_level": "1"})";
    }
    const std::string text = told(document + "]}", megaRaid);
    EXPECT_NE(text.find("9:1 error: logical_disks[8]: it lies on other drives than those before, "
                        "and policies have 8 arrays [ZX954]\n"),
              std::string::npos)
        << text;
}

TEST(IronicToPolicies, IsNamedByItsFile) {
    const auto name = [](const std::string& file) {
        const std::string text =
            policiesOf(R"({"logical_disks": [{"size_gb": "MAX", "raid_level": "1"}]})",
                       {file, megaRaid, nullptr, "1"})
                .text;
        const std::size_t begin = text.find('[');
        return text.substr(begin, text.find(']') + 1 - begin);
    };
    EXPECT_EQ(name("nodes/node 7.raid.json"), "[Policy.node-7]");
    EXPECT_EQ(name("<stdin>"), "[Policy.ironic]");
    EXPECT_EQ(name("AUTO-x.json"), "[Policy.ironic]");
    EXPECT_EQ(name(".json"), "[Policy.ironic]");
}

} // namespace
} // namespace zolex::companion
