#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(ZX602, ALineThatIsCut) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6,1:7,1:8,1:9,1:10,1:11,1:12,1:13,1:14,1:15,1:16,1:17,1:18,1:19,1:20,1:21,1:22,1:23,1:24,1:25,1:26,1:27,1:28,1:29,1:30,1:31,1:32,1:33,1:34,1:35
Array_Defaults = 0%:0
)"),
        R"(4:160 warning ZX602: ARCCONF lists 32 drives in a line of 200 bytes, and 198 are read
  help: a capture names wrong drives from drive 1:35 on
  help: make two arrays of it
)");
}

TEST(ZX602, ALineThatFits) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6,1:7,1:8,1:9,1:10,1:11,1:12,1:13,1:14,1:15,1:16,1:17,1:18,1:19,1:20,1:21,1:22,1:23,1:24,1:25,1:26,1:27,1:28,1:29,1:30,1:31,1:32,1:33,1:34
Array_Defaults = 0%:0
)"),
              "");
}

TEST(ZX602, AnotherUtility) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-A1
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6,1:7,1:8,1:9,1:10,1:11,1:12,1:13,1:14,1:15,1:16,1:17,1:18,1:19,1:20,1:21,1:22,1:23,1:24,1:25,1:26,1:27,1:28,1:29,1:30,1:31,1:32,1:33,1:34,1:35
Array_Defaults = 0%:0
)"),
              "");
}

TEST(ZX604, WithoutAModel) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,s:KQ10Z7V
StripeSize = 256
)"),
              R"(3:14 warning plan ZX604: a strip size of 256 KB is refused on MegaRAID controllers
  help: no plan can be made for one; they take 16, 32, 64, 128
  help: AppliesTo.1 (line 2) does not say which models it is for
)");
}

TEST(ZX604, SmallEnough) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,s:KQ10Z7V
StripeSize = 128
)"),
              "");
}

TEST(ZX610, AFamilyOfLater) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:STORCLI,d:8
AppliesTo.2 = t:MegaRAID-9560-8i-4GB
)"),
              R"(2:15 note zolex ZX610: zolex refuses this file: it does not know t:STORCLI
  help: keep the policies for such controllers in a file of their own
3:15 note zolex ZX610: zolex refuses this file: it does not know t:MegaRAID-9560-8i-4GB
  help: keep the policies for such controllers in a file of their own
)");
}

TEST(ZX610, NoSuchFamily) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:PERC-H7*
AppliesTo.2 = t:STORCLI3
)"),
              R"(2:15 note zolex ZX610: zolex refuses this file: it does not know t:PERC-H7*
  help: keep the policies for such controllers in a file of their own
3:17 error zolex ZX203: no controller model is called "STORCLI3"
  help: zolexctl show names the model of each controller
)");
}

/// "ZX208 ZX610".
std::string lintIds(const std::string& policies) {
    std::string ids;
    for (const Finding& finding : lint(scanPolicies("p.ini", policies), {{}, {"ZX9"}})) {
        ids += (ids.empty() ? "" : " ") + finding.code;
    }
    return ids;
}

TEST(ZX208, AModelOfABrandThatIsNotKnown) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Megaware-9364-8i,d:4
)"),
              R"(2:15 warning ZX208: no model is known to be called "Megaware-9364-8i"
  help: zolexctl show names the model of each controller
  help: known ones begin with AVAGO-, Broadcom-, Cisco-, HPE-, INTEL-, Lenovo-, LINUX-, MegaRAID-, PERC-, PRAID-, RAID-, SAS39, ServeRAID-, Supermicro-, ThinkSystem-
  help: t:STORCLI holds for each model that storcli or perccli drives
2:15 note zolex ZX610: zolex refuses this file: it does not know t:Megaware-9364-8i
  help: keep the policies for such controllers in a file of their own
)");
    EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:Mega*\n"), "ZX610");
    EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:MegaRAID-93*\n"), "ZX610");
    EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:Megaware*\n"), "ZX208 ZX610");
}

TEST(ZX208, NotWhereThePolicyNamesAFamily) {
    EXPECT_EQ(lintIds(R"([Policy.one]
AppliesTo.1 = t:Megaware-9364-8i,d:4
AppliesTo.2 = t:STORCLI
)"),
              "ZX610 ZX610");
    EXPECT_EQ(lintIds(R"([Policy.one]
AppliesTo.1 = t:Megaware-9364-8i,d:4
AppliesTo.2 = t:SSACLI
)"),
              "ZX208 ZX610 ZX208 ZX610");
}

TEST(ZX208, UsualBrands) {
    for (const char* const model :
         {"ServeRAID-M5210", "INTEL-RS3DC080", "Cisco-12G-SAS-Modular-Raid-Controller",
          "Lenovo-RAID-940-8i", "HPE-MR416i-p-Gen10", "PRAID-EP540i"}) {
        EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:" + std::string(model) + "\n"), "ZX610")
            << model;
    }
}

TEST(ZX208, AFamilyThatIsNotDrivenYet) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:storcli2
)"),
        R"(2:15 warning ZX208: t:storcli2 holds for no controller: its utility is not driven yet
  help: write t:MD or t:STORCLI, or the text of a model
2:15 note zolex ZX610: zolex refuses this file: it does not know t:storcli2
  help: keep the policies for such controllers in a file of their own
)");
    for (const char* const name :
         {"SSACLI", "SASIRCU", "SAS2IRCU", "SAS3IRCU", "MVCLI", "MNV_CLI", "IMSM", "ARCCONF"}) {
        EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:" + std::string(name) + "\n"),
                  "ZX208 ZX610")
            << name;
    }
}

TEST(ZX203, NamesThatAreMistyped) {
    for (const char* const name : {"LSI-MegaRAID-8481", "Kestrx-C7", "STORCLI3", "STRCLI2", "1234",
                                   "Something", "Kestrix-C77", "SAS4IRCU", "-A9", "A--9B"}) {
        EXPECT_EQ(lintIds("[Policy.one]\nAppliesTo.1 = t:" + std::string(name) + "\n"), "ZX203")
            << name;
    }
}

TEST(ZX401, LevelsThatNoFamilyHas) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:STORCLI,d:4
Logical_Defaults = FILL:5EE
)"),
              R"(2:15 note zolex ZX610: zolex refuses this file: it does not know t:STORCLI
  help: keep the policies for such controllers in a file of their own
3:25 error plan ZX401: RAID 5EE is not possible on t:STORCLI
  help: such controllers have 0, 1, 5, 6, 10, 50, 60
  help: AppliesTo.1 (line 2) names them
)");
}

} // namespace
} // namespace zolex::companion
