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
