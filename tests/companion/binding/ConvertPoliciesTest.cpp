#include "companion/binding/ConvertPolicies.h"

#include "KindMachine.h"
#include "companion/text/Diagnostics.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::capturedKinds;
using test::kindServer;
using test::mixedDrives;

/// What is written, or why nothing is, and what is told besides.
std::string converted(const Snapshot& snapshot, const std::string& policies) {
    const ConvertedPolicies result = convertToPolicies(snapshot, {"kinds.ini", policies, "2.20"});
    return (result.isPossible() ? result.text + "--\n" : "nothing\n--\n") +
           conciseDiagnostics(result.findings, {});
}

TEST(Convert, BindsAndSaysWhy) {
    EXPECT_EQ(converted(capturedKinds(kindServer(mixedDrives)), "; Web servers.\n"
                                                                "\n"
                                                                "; With two kinds.\n"
                                                                "[Policy.web]\n"
                                                                "AppliesTo.1 = m:8837\n"
                                                                "Drives.A = 2 x SSD <500GB\n"
                                                                "Drives.B = rest HDD\n"
                                                                "Spares = 1 covering B\n"
                                                                "Level.B = 6 else 5\n"
                                                                "\n"
                                                                "; Not here.\n"
                                                                "[Policy.x]\n"
                                                                "AppliesTo.1 = m:8\n"
                                                                "Drives.A = all\n"),
              R"(; Written by zolexctl 2.20 from kinds.ini for machine type 8837, serial number
;  KQ10Z7V.
; The drives are those of this machine alone.

; Web servers.

; With two kinds.
[Policy.web]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
; Drives.A = 2 x SSD <500GB: 32:0 (SATA SSD, 447.1 GB: drive 1 of 2); 32:1
;  (SATA SSD, 447.1 GB: drive 2 of 2)
Array.A = 1:0,1:1
; Drives.B = rest HDD: 32:4 (SAS HDD, 278.9 GB: drive 1 of 3 that are left);
;  32:5 (SAS HDD, 278.9 GB: drive 2 of 3 that are left); 32:6 (SAS HDD, 278.9
;  GB: drive 3 of 3 that are left)
Array.B = 1:4,1:5,1:6
; Spares = 1 covering B: 32:7 (SAS HDD, 278.9 GB: the largest, last that
;  covers B)
Hotspares = 1:7
Logical_Mode = CUSTOM
Logical.1 = A:FILL:AUTO:ON
; Level.B = 6 else 5: RAID 6 takes 4 or more drives, and the array has 3
Logical.2 = B:FILL:5:ON

--
kinds.ini: note: controller 1, Spares: "1 covering B" is left out: the drives are written, not what they cover [ZP263]
kinds.ini: note: controller 1, Level.B: "6 else 5" is left out: the level that was chosen is written [ZP264]
kinds.ini: note: Policy.x is for no controller of this machine and is left out [ZP262]
)");
}

TEST(Convert, KeepsLineEnds) {
    EXPECT_EQ(converted(capturedKinds(kindServer(mixedDrives)), "[Policy.x]\r\n"
                                                                "AppliesTo.1 = ALL\r\n"
                                                                "StripeSize = 64\r\n"
                                                                "Drives.A = 2 x SSD"),
              "; Written by zolexctl 2.20 from kinds.ini for machine type 8837, serial number\n"
              ";  KQ10Z7V.\n"
              "; The drives are those of this machine alone.\n"
              "\n"
              "[Policy.x]\r\n"
              "AppliesTo.1 = ALL\r\n"
              "StripeSize = 64\r\n"
              "Array_Mode = CUSTOM\n"
              "Array_Defaults = 0%:0\n"
              "; Drives.A = 2 x SSD: 32:0 (SATA SSD, 447.1 GB: drive 1 of 2); 32:1 (SATA SSD,\n"
              ";  447.1 GB: drive 2 of 2)\n"
              "Array.A = 1:0,1:1\n"
              "--\n");
}

TEST(Convert, KeepsPoliciesThatNeedNoBinding) {
    EXPECT_EQ(converted(capturedKinds(kindServer(mixedDrives)), "[Policy.x]\n"
                                                                "AppliesTo.1 = ALL\n"
                                                                "Array_Defaults = 0%:0\n"),
              R"(; Written by zolexctl 2.20 from kinds.ini for machine type 8837, serial number
;  KQ10Z7V.
; The drives are those of this machine alone.

[Policy.x]
AppliesTo.1 = ALL
Array_Defaults = 0%:0
--
)");
}

TEST(Convert, WritesNothingWhenSomethingDoesNotBind) {
    EXPECT_EQ(converted(capturedKinds(kindServer(mixedDrives)), "[Policy.x]\n"
                                                                "AppliesTo.1 = ALL\n"
                                                                "Drives.A = 5 x SSD\n"
                                                                "Drives.B = 1 x SSD >2TB\n"),
              R"(nothing
--
kinds.ini:3:12: error: controller 1: 5 SSD are wanted; there are 4: 32:0 (447.1 GB), 32:1 (447.1 GB), 32:2 (894.3 GB), 32:3 (894.3 GB) [ZX313]
kinds.ini:4:12: error: controller 1: 1 SSD above 2 TB is wanted; there is none [ZX313]
)");
}

TEST(Convert, WritesNothingForNobody) {
    EXPECT_EQ(converted(capturedKinds(kindServer(mixedDrives)), "[Policy.x]\n"
                                                                "AppliesTo.1 = c:2\n"
                                                                "Drives.A = 5 x SSD\n"
                                                                "Drives.B = 1 x SSD >2TB\n"),
              R"(nothing
--
kinds.ini: note: controller 1: no policy is for it [ZP261]
kinds.ini: error: no policy is for a controller of this machine [ZP260]
)");
}

TEST(Convert, HasASectionForEachController) {
    EXPECT_EQ(converted(capturedKinds("two-controllers"), "; Both.\n"
                                                          "[Policy.web]\n"
                                                          "AppliesTo.1 = m:9\n"
                                                          "AppliesTo.2 = ALL, c:1\n"
                                                          "AppliesTo.3 = m:7979\n"
                                                          "Drives.A = 2 x\n"
                                                          "[Policy.web-1]\n"
                                                          "AppliesTo.1 = m:1\n"),
              R"(; Written by zolexctl 2.20 from kinds.ini for machine type 7979, serial number
;  KQ31C9A.
; The drives are those of this machine alone.

; Both.
[Policy.web-1x]
AppliesTo.1 = c:1
Array_Mode = CUSTOM
Array_Defaults = 0%:0
; Drives.A = 2 x: 32:0 (SAS HDD, 67.8 GB: drive 1 of 2); 32:1 (SAS HDD, 67.8
;  GB: drive 2 of 2)
Array.A = 1:0,1:1
; Both.
[Policy.web-2]
AppliesTo.1 = m:7979,c:2
Array_Mode = CUSTOM
Array_Defaults = 0%:0
; Drives.A = 2 x: 252:0 (SAS HDD, 1.82 TB: drive 1 of 2); 252:1 (SAS HDD, 1.82
;  TB: drive 2 of 2)
Array.A = 1:0,1:1
--
kinds.ini: note: Policy.web-1 is for no controller of this machine and is left out [ZP262]
)");
}

TEST(Convert, KeepsTheOrderOfPolicies) {
    EXPECT_EQ(converted(capturedKinds("two-controllers"), "[Policy.one]\n"
                                                          "AppliesTo.1 = c:1\n"
                                                          "Drives.A = 2 x\n"
                                                          "[Policy.all]\n"
                                                          "AppliesTo.1 = ALL\n"
                                                          "Array_Defaults = 0%:1\n"),
              R"(; Written by zolexctl 2.20 from kinds.ini for machine type 7979, serial number
;  KQ31C9A.
; The drives are those of this machine alone.

[Policy.one]
AppliesTo.1 = c:1
Array_Mode = CUSTOM
Array_Defaults = 0%:0
; Drives.A = 2 x: 32:0 (SAS HDD, 67.8 GB: drive 1 of 2); 32:1 (SAS HDD, 67.8
;  GB: drive 2 of 2)
Array.A = 1:0,1:1
[Policy.all]
AppliesTo.1 = ALL
Array_Defaults = 0%:1
--
)");
}

} // namespace
} // namespace zolex::companion
