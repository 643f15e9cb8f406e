#include "companion/exchange/PoliciesToIronic.h"

#include "companion/planning/PlannedServer.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

/// What is told, one line each, and the document.
std::string told(test::PlannedServer& server, const std::string& policies) {
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(test::faultsOf(plan), std::vector<std::string>());
    const IronicDraft draft = ironicOf(plan, policies);
    std::string text;
    for (const Finding& finding : draft.findings) {
        EXPECT_EQ(finding.file, "site.ini");
        text += std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column) +
                "-" + std::to_string(finding.end.column) + " " +
                std::string(severityWord(finding.severity)) + ": " + finding.summary + " [" +
                finding.code + "]\n";
    }
    return text + draft.text;
}

TEST(PoliciesToIronic, TellsWhatIronicCannotSay) {
    test::PlannedServer server("single");
    EXPECT_EQ(told(server, R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
StripeSize = 128
ReadAhead = ON
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5
Hotspares = 7,8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:100000:5:OFF
[Policy.other]
AppliesTo.1 = m:8840
)"),
              R"(3:14-17 warning: StripeSize = 128 is left out: Ironic cannot say it [ZX958]
4:13-15 warning: ReadAhead = ON is left out: Ironic cannot say it [ZX958]
8:13-16 warning: controller 1: the hot spares 32:6 32:7 are left out: Ironic cannot say any [ZX957]
10:22-24 warning: the write cache ON of Logical.1 is left out: Ironic cannot say it [ZX958]
11:13-27 warning: controller 1, Logical.2: 100000 MB is written as 97 GiB, which is 672 MB less [ZX956]
11:24-27 warning: the write cache OFF of Logical.2 is left out: Ironic cannot say it [ZX958]
12:2-14 note: Policy.other is for no controller of this machine and is left out [ZX959]
{
  "logical_disks": [
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1"
      ]
    },
    {
      "raid_level": "5",
      "size_gb": 97,
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:2",
        "32:3",
        "32:4"
      ]
    }
  ]
}
)");
}

TEST(PoliciesToIronic, TellsSettingsOfAllLogicalDrives) {
    test::PlannedServer server("single");
    EXPECT_EQ(
        told(server, R"([Policy.web]
AppliesTo.1 = ALL
Init = BUILD
RebuildRate = LOW
Array_Defaults = 10%:1
Logical_Defaults = FILL:5:ON
)"),
        R"(1:2-12 warning: controller 1: the hot spare 32:7 is left out: Ironic cannot say one [ZX957]
3:8-13 warning: Init = BUILD is left out: Ironic cannot say it [ZX958]
4:15-18 warning: RebuildRate = LOW is left out: Ironic cannot say it [ZX958]
6:27-29 warning: the write cache ON of Logical_Defaults is left out: Ironic cannot say it [ZX958]
{
  "logical_disks": [
    {
      "raid_level": "5",
      "size_gb": "MAX",
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1",
        "32:2",
        "32:3",
        "32:4",
        "32:5",
        "32:6"
      ]
    }
  ]
}
)");
}

TEST(PoliciesToIronic, RefusesOtherLevelsAndSmallSizes) {
    test::PlannedServer server("single");
    EXPECT_EQ(
        told(server, R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:1023:1
)"),
        R"(7:13-21 error: controller 1, Logical.1: 1023 MB is less than 1 GiB, the least that Ironic can say [ZX956]
)");
    test::PlannedServer other("cfggen");
    EXPECT_EQ(told(other, R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1,2,3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1E
)"),
              R"(7:13-22 error: controller 1, Logical.1: Ironic has no level RAID1E [ZX950]
)");
}

TEST(PoliciesToIronic, RefusesWhatMakesNothing) {
    test::PlannedServer server("single");
    EXPECT_EQ(
        told(server, "[Policy.web]\nAppliesTo.1 = m:8840\n"),
        R"(0:0-0 note: controller 1 is left out: no policy fits: Policy.web asks for m:8840, and it is 8837 [ZX959]
0:0-0 error: no policy makes a logical drive on a controller of this machine [ZX959]
1:2-12 note: Policy.web is for no controller of this machine and is left out [ZX959]
)");
}

TEST(PoliciesToIronic, NamesControllersOfOneModelByTheirNumbers) {
    test::PlannedServer server("cfggen-scsi");
    EXPECT_EQ(
        told(server, "[Policy.web]\nAppliesTo.1 = c:2\nArray_Mode = CUSTOM\n"
                     "Array_Defaults = 0%:0\nArray.A = 1,2\nLogical_Mode = CUSTOM\n"
                     "Logical.1 = A:FILL:1\n"),
        R"(0:0-0 note: controller 1 is left out: no policy fits: Policy.web asks for c:2, and it is 1 [ZX959]
{
  "logical_disks": [
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "controller": "LSI-SCSI-RAID,c:2",
      "physical_disks": [
        "5",
        "6"
      ]
    }
  ]
}
)");
}

TEST(PoliciesToIronic, TellsWhichDrivesAreShared) {
    test::PlannedServer server("two-controllers");
    EXPECT_EQ(
        told(server, "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                     "Array_Defaults = 0%:0\nArray.A = 1,2\nLogical_Mode = CUSTOM\n"
                     "Logical.1 = A:50%:1\nLogical.2 = A:FILL:1\n"),
        R"(7:13-20 warning: controller 1, Logical.1: 34688 MB is written as 33 GiB, which is 896 MB less [ZX956]
7:13-20 warning: controller 2, Logical.1: 953156 MB is written as 930 GiB, which is 836 MB less [ZX956]
{
  "logical_disks": [
    {
      "raid_level": "1",
      "size_gb": 33,
      "share_physical_disks": true,
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1"
      ]
    },
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "share_physical_disks": true,
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1"
      ]
    },
    {
      "raid_level": "1",
      "size_gb": 930,
      "share_physical_disks": true,
      "controller": "Kestrix-D4",
      "physical_disks": [
        "252:0",
        "252:1"
      ]
    },
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "share_physical_disks": true,
      "controller": "Kestrix-D4",
      "physical_disks": [
        "252:0",
        "252:1"
      ]
    }
  ]
}
)");
}

} // namespace
} // namespace zolex::companion
