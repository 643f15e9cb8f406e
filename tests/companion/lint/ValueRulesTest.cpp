#include "companion/lint/RuleCases.h"

#include <gtest/gtest.h>

using namespace zolex::companion::test;

namespace {

std::vector<Case> valueCases() {
    // clang-format off
    return {
    {"ZX101", "stripe",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "StripeSize = 64KB\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "StripeSize = 64\n",
     R"(p.ini:3:14: error: StripeSize cannot be "64KB" [ZX101]
   3 | StripeSize = 64KB
     |              ^^^^
   help: did you mean 64?
   help: StripeSize is 16, 32, 64, 128, 256, 512, 1024, 2048 or 4096 (KB)
)"},
    {"ZX101", "near",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "ReadAhead = ADAPTIV\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "ReadAhead = adaptive\n",
     R"(p.ini:3:13: error: ReadAhead cannot be "ADAPTIV" [ZX101]
   3 | ReadAhead = ADAPTIV
     |             ^^^^^^^
   help: did you mean ADAPTIVE?
   help: ReadAhead is ADAPTIVE, ON or OFF
)"},
    {"ZX101", "empty",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "RebuildRate =\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "RebuildRate = LOW\n",
     R"(p.ini:3:14: error: RebuildRate has no value [ZX101]
   3 | RebuildRate =
     |              ^
   help: RebuildRate is HIGH, MED or LOW
)"},
    {"ZX101", "comment",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK ; fast\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; fast\n" "Init = QUICK\n",
     R"(p.ini:3:8: error: Init cannot be "QUICK ; fast" [ZX101]
   3 | Init = QUICK ; fast
     |        ^^^^^^^^^^^^
   help: a comment needs a line of its own: here it is a part of the value
   help: Init is QUICK or BUILD
)"},
    {"ZX101", "mode",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = AUTO\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:3:14: error: Array_Mode cannot be "AUTO" [ZX101]
   3 | Array_Mode = AUTO
     |              ^^^^
   help: Array_Mode is CUSTOM; leave it out to have the drives chosen
)"},
    {"ZX102", "form",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 10%\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 10%:1\n",
     R"(p.ini:3:18: error: Array_Defaults cannot be "10%" [ZX102]
   3 | Array_Defaults = 10%
     |                  ^^^
   help: it is variance:hotspares, such as 10%:1; 0%:0 asks for no hot spare
)"},
    {"ZX102", "variance",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 20%:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 100%:0\n",
     R"(p.ini:3:18: error: "20%" is no variance of Array_Defaults [ZX102]
   3 | Array_Defaults = 20%:1
     |                  ^^^
   help: the sizes of an array's drives may differ by 0%, 5%, 10% or 100%
)"},
    {"ZX102", "number",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 10%:one\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 5%:2\n",
     R"(p.ini:3:22: error: "one" is no number of hot spares [ZX102]
   3 | Array_Defaults = 10%:one
     |                      ^^^
   help: it is variance:hotspares, such as 10%:1; 0%:0 asks for no hot spare
)"},
    {"ZX103", "unit",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Max_Logical_Drive_Size = 2TB\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Max_Logical_Drive_Size = 0\n",
     R"(p.ini:3:26: error: Max_Logical_Drive_Size cannot be "2TB" [ZX103]
   3 | Max_Logical_Drive_Size = 2TB
     |                          ^^^
   help: it is a whole number of MB, and has no effect: it can be left out
)"},
    {"ZX104", "range",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1, 3-6\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1, 3,4,5,6\n",
     R"(p.ini:4:14: error: "3-6" is no drive in Array.A [ZX104]
   4 | Array.A = 1, 3-6
     |              ^^^
   help: write 3,4,5,6
)"},
    {"ZX104", "zero",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 0,1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n",
     R"(p.ini:4:11: error: "0" is no drive in Array.A [ZX104]
   4 | Array.A = 0,1
     |           ^
   help: the first drive is 1
)"},
    {"ZX104", "all",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = all\n",
     R"(p.ini:4:13: error: "ALL" is no drive in Array.A [ZX104]
   4 | Array.A = 1,ALL
     |             ^^^
   help: ALL stands alone: it takes all drives that remain
)"},
    {"ZX104", "spareAll",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = 1:0\n",
     R"(p.ini:3:13: error: "ALL" is no drive in Hotspares [ZX104]
   3 | Hotspares = ALL
     |             ^^^
   help: only an array can be ALL: name the drives
)"},
    {"ZX106", "defaultsWithAnArray",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical_Defaults = A:FILL:5\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical_Defaults = FILL:5\n",
     R"(p.ini:3:20: error: Logical_Defaults names no array: it holds for each [ZX106]
   3 | Logical_Defaults = A:FILL:5
     |                    ^
   help: write Logical_Defaults = FILL:5
)"},
    {"ZX107", "logicalFromTwo",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.A = 1:0,1:1,1:2\n" "Array_Mode = CUSTOM\n"
     "Logical_Mode = CUSTOM\n" "Logical.2 = A:FILL:5\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.A = 1:0,1:1,1:2\n" "Array_Mode = CUSTOM\n"
     "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:5\n",
     R"(p.ini:1:1: error: Logical_Mode = CUSTOM without Logical.1 in Policy.web [ZX107]
   help: numbers have no gap: call Logical.2 Logical.1
)"},
    {"ZX104", "emptyFirst",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = ,1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1\n",
     R"(p.ini:4:11: error: no drive before the first comma of Array.A [ZX104]
   4 | Array.A = ,1
     |           ^
   help: take one comma out
)"},
    {"ZX104", "emptyItem",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,,2\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n",
     R"(p.ini:4:13: error: no drive between two commas of Array.A [ZX104]
   4 | Array.A = 1,,2
     |             ^
   help: take one comma out
)"},
    {"ZX104", "empty",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares =\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = 1\n",
     R"(p.ini:3:12: error: Hotspares names no drive [ZX104]
   3 | Hotspares =
     |            ^
   help: drives are numbers from 1, or channel:id pairs, between commas
)"},
    {"ZX104", "semicolon",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1;2\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n",
     R"(p.ini:4:11: error: "1;2" is no drive in Array.A [ZX104]
   4 | Array.A = 1;2
     |           ^^^
   help: write 1,2
)"},
    {"ZX105", "mixed",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2,1:3\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1:1,1:2,1:3\n",
     R"(p.ini:4:15: error: drive numbers and channel:id pairs in one list [ZX105]
   4 | Array.A = 1,2,1:3
     |               ^^^
     |           - the other way
   help: name all drives of Array.A in one way
)"},
    {"ZX106", "form",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1\n",
     R"(p.ini:6:13: error: Logical.1 cannot be "A:FILL" [ZX106]
   6 | Logical.1 = A:FILL
     |             ^^^^^^
   help: it is array:size:level(:cache), such as A:FILL:5:ON
)"},
    {"ZX106", "letter",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = B:FILL:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = a:FILL:1\n",
     R"(p.ini:6:13: error: no Array.B in Policy.web [ZX106]
   6 | Logical.1 = B:FILL:1
     |             ^
   help: add Array.B = 1,2 or name another array
)"},
    {"ZX106", "noLetter",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = 1:FILL:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1\n",
     R"(p.ini:6:13: error: "1" is no letter of an array [ZX106]
   6 | Logical.1 = 1:FILL:1
     |             ^
   help: it is array:size:level(:cache), such as A:FILL:5:ON
)"},
    {"ZX106", "size",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:10GB:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:10240:1\n",
     R"(p.ini:6:15: error: "10GB" is no size [ZX106]
   6 | Logical.1 = A:10GB:1
     |               ^^^^
   help: a size is 1% to 100%, a number of MB without a unit, or FILL
)"},
    {"ZX106", "level",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:RAID 1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:SIMPLE VOLUME\n",
     R"(p.ini:6:20: error: "RAID 1" is no RAID level [ZX106]
   6 | Logical.1 = A:FILL:RAID 1
     |                    ^^^^^^
   help: write 1
)"},
    {"ZX106", "otherLevel",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:3\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:AUTO\n",
     R"(p.ini:6:20: error: "3" is no RAID level [ZX106]
   6 | Logical.1 = A:FILL:3
     |                    ^
   help: levels are 0 1 1E 5 5E 5EE 6 10 50 60 VOLUME and AUTO
)"},
    {"ZX106", "cache",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1:WB\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1:auto\n",
     R"(p.ini:6:22: error: "WB" is no write-cache mode [ZX106]
   6 | Logical.1 = A:FILL:1:WB
     |                      ^^
   help: the write cache is ON, OFF or AUTO
)"},
    {"ZX106", "defaults",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical_Defaults = 5\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical_Defaults = 100%:5\n",
     R"(p.ini:3:20: error: Logical_Defaults cannot be "5" [ZX106]
   3 | Logical_Defaults = 5
     |                    ^
   help: it is size:level(:cache), such as 100%:5:ON
)"},
    {"ZX106", "noField",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A::1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:1:1\n",
     R"(p.ini:6:15: error: no size [ZX106]
   6 | Logical.1 = A::1
     |               ^
   help: a size is 1% to 100%, a number of MB without a unit, or FILL
)"},
    {"ZX107", "noArray",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1\n",
     R"(p.ini:1:1: error: Array_Mode = CUSTOM without Array.A in Policy.web [ZX107]
   help: add Array.A = 1,2 or the drives that it shall have
)"},
    {"ZX107", "gap",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1\n" "Array.C = 2\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1\n" "Array.B = 2\n",
     R"(p.ini:5:1: error: Array.C without Array.B [ZX107]
   5 | Array.C = 2
     | ^^^^^^^
   help: letters have no gap: call it Array.B
)"},
    {"ZX107", "noLogical",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:0\n",
     R"(p.ini:1:1: error: Logical_Mode = CUSTOM without Logical.1 in Policy.web [ZX107]
   help: add Logical.1 = A:FILL:5 or the logical drive that it shall have
)"},
    {"ZX107", "logicalGap",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:0\n" "Logical.3 = A:50%:0\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:0\n" "Logical.2 = A:50%:0\n",
     R"(p.ini:7:1: error: Logical.3 without Logical.2 [ZX107]
   7 | Logical.3 = A:50%:0
     | ^^^^^^^^^
   help: numbers have no gap: call it Logical.2
)"},
    {"ZX108", "afterAll",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = ALL\n" "Array.B = 1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1\n" "Array.B = ALL\n",
     R"(p.ini:5:1: error: Array.B after Array.A = ALL [ZX108]
   4 | Array.A = ALL
     |           --- takes all drives
   5 | Array.B = 1
     | ^^^^^^^
   help: only the last array can be ALL
)"},
    {"ZX109", "shared",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:5EE\n" "Logical.2 = A:50%:5\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:5\n" "Logical.2 = A:50%:5\n",
     R"(p.ini:7:1: error: RAID 5E and 5EE take a whole array: two logical drives on
           Array.A [ZX109]
   6 | Logical.1 = A:50%:5EE
     | --------- the other one
   7 | Logical.2 = A:50%:5
     | ^^^^^^^^^
   help: give it an array of its own, or another level
)"},
    {"ZX110", "sum",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:60%:1\n" "Logical.2 = A:50%:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:60%:1\n" "Logical.2 = A:40%:1\n",
     R"(p.ini:7:15: warning: logical drives of 110% on Array.A [ZX110]
   7 | Logical.2 = A:50%:1
     |               ^^^
   help: percentages are of the whole array: all together at most 100%
)"},
    {"ZX110", "fillFirst",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1\n" "Logical.2 = A:50%:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:1\n" "Logical.2 = A:FILL:1\n",
     R"(p.ini:6:15: warning: FILL leaves nothing of Array.A to Logical.2 [ZX110]
   6 | Logical.1 = A:FILL:1
     |               ^^^^
   7 | Logical.2 = A:50%:1
     | --------- gets nothing
   help: put the logical drive with FILL last
)"},
    {"ZX111", "specifier",
     "[Policy.web]\n" "AppliesTo.1 = c : 1\n",
     "[Policy.web]\n" "AppliesTo.1 = c:1 , d:8\n",
     R"(p.ini:2:16: error: blanks beside the ":" of a specifier [ZX111]
   2 | AppliesTo.1 = c : 1
     |                ^
   help: write c:1
)"},
    {"ZX111", "value",
     "[Policy.web]\n" "AppliesTo.1 = m: 8837\n",
     "[Policy.web]\n" "AppliesTo.1 = m:8837\n",
     R"(p.ini:2:17: warning: the blanks behind the ":" are part of the value [ZX111]
   2 | AppliesTo.1 = m: 8837
     |                 ^
   No machine has such a value: the entry matches nothing.
   help: write m:8837
)"},
    {"ZX111", "model",
     "[Policy.web]\n" "AppliesTo.1 = t:\tKestrix-C7\n",
     "[Policy.web]\n" "AppliesTo.1 = t:Kestrix-C7\n",
     R"(p.ini:2:17: error: blanks beside the ":" of a specifier [ZX111]
   2 | AppliesTo.1 = t: Kestrix-C7
     |                 ^
   help: write t:Kestrix-C7
)"},
    {"ZX111", "defaults",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults = 10% :1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Defaults =  10%:1\n",
     R"(p.ini:3:21: error: blanks beside a ":" are part of the field [ZX111]
   3 | Array_Defaults = 10% :1
     |                     ^
   help: write "10%" without them
)"},
    {"ZX111", "position",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1: 0\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1:0 , 1:1\n",
     R"(p.ini:4:13: error: blanks beside a ":" are part of the field [ZX111]
   4 | Array.A = 1: 0
     |             ^
   help: write "0" without them
)"},
    {"ZX111", "logical",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL :1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:FILL:1\n",
     R"(p.ini:6:19: error: blanks beside a ":" are part of the field [ZX111]
   6 | Logical.1 = A:FILL :1
     |                   ^
   help: write "FILL" without them
)"},
    };
    // clang-format on
}

} // namespace

TEST(ValueRules, AreFoundAndTheirNeighboursNot) {
    checkCases(valueCases());
}
