#include "companion/lint/RuleCases.h"

#include <gtest/gtest.h>

using namespace zolex::companion::test;

namespace {

std::vector<Case> otherCases() {
    // clang-format off
    return {
    {"ZX203", "letter",
     "[Policy.web]\n" "AppliesTo.1 = x:1\n",
     "[Policy.web]\n" "AppliesTo.1 = s:1\n",
     R"(p.ini:2:15: error: "x:1" is no specifier [ZX203]
   2 | AppliesTo.1 = x:1
     |               ^^^
   help: specifiers are ALL, m:, s:, t:, c:, o: and d:, between commas
)"},
    {"ZX203", "noLetter",
     "[Policy.web]\n" "AppliesTo.1 = Kestrix-C7\n",
     "[Policy.web]\n" "AppliesTo.1 = t:Kestrix-C7\n",
     R"(p.ini:2:15: error: "Kestrix-C7" is no specifier [ZX203]
   2 | AppliesTo.1 = Kestrix-C7
     |               ^^^^^^^^^^
   help: did you mean t:Kestrix-C7?
)"},
    {"ZX203", "number",
     "[Policy.web]\n" "AppliesTo.1 = c:0,d:99999999999\n",
     "[Policy.web]\n" "AppliesTo.1 = c:1,d:2147483647\n",
     R"(p.ini:2:17: error: "0" is no controller number [ZX203]
   2 | AppliesTo.1 = c:0,d:99999999999
     |                 ^
   help: c: takes a whole number from 1

p.ini:2:21: error: "99999999999" is no number of drives [ZX203]
   2 | AppliesTo.1 = c:0,d:99999999999
     |                     ^^^^^^^^^^^
   help: d: takes a whole number from 1
)"},
    {"ZX203", "order",
     "[Policy.web]\n" "AppliesTo.1 = o:\n",
     "[Policy.web]\n" "AppliesTo.1 = o:1\n",
     R"(p.ini:2:17: error: o: has no value [ZX203]
   2 | AppliesTo.1 = o:
     |                 ^
   help: o: takes a whole number from 1
)"},
    {"ZX203", "model",
     "[Policy.web]\n" "AppliesTo.1 = t:Kestrx-C7\n",
     "[Policy.web]\n" "AppliesTo.1 = t:Kestrix-C7\n",
     R"(p.ini:2:17: error: no controller model is called "Kestrx-C7" [ZX203]
   2 | AppliesTo.1 = t:Kestrx-C7
     |                 ^^^^^^^^^
   help: did you mean t:Kestrix-C7?
)"},
    {"ZX203", "otherModel",
     "[Policy.web]\n" "AppliesTo.1 = t:Something\n",
     "[Policy.web]\n" "AppliesTo.1 = t:Kestrix-C7\n",
     R"(p.ini:2:17: error: no controller model is called "Something" [ZX203]
   2 | AppliesTo.1 = t:Something
     |                 ^^^^^^^^^
   help: zolexctl show names the model of each controller
)"},
    {"ZX203", "semicolon",
     "[Policy.web]\n" "AppliesTo.1 = c:1;d:8\n",
     "[Policy.web]\n" "AppliesTo.1 = c:1,d:8\n",
     R"(p.ini:2:17: error: "1;d:8" is no controller number [ZX203]
   2 | AppliesTo.1 = c:1;d:8
     |                 ^^^^^
   help: specifiers stand between commas
   help: c: takes a whole number from 1
)"},
    {"ZX203", "commentLikeASpecifier",
     "[Policy.web]\n" "AppliesTo.1 = ALL ; all\n",
     "[Policy.web]\n" "; all\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:2:15: error: "ALL ; all" is no specifier [ZX203]
   2 | AppliesTo.1 = ALL ; all
     |               ^^^^^^^^^
   help: a comment needs a line of its own: here it is a part of the value
)"},
    {"ZX203", "numberSign",
     "[Policy.web]\n" "AppliesTo.1 = d:8 # eight\n",
     "[Policy.web]\n" "AppliesTo.1 = d:8\n",
     R"(p.ini:2:17: error: "8 # eight" is no number of drives [ZX203]
   2 | AppliesTo.1 = d:8 # eight
     |                 ^^^^^^^^^
   help: a comment needs a line of its own, with ";" before it
   help: d: takes a whole number from 1
)"},
    {"ZX203", "emptyItem",
     "[Policy.web]\n" "AppliesTo.1 = c:1,\n",
     "[Policy.web]\n" "AppliesTo.1 = c:1\n",
     R"(p.ini:2:19: error: no specifier behind the last comma [ZX203]
   2 | AppliesTo.1 = c:1,
     |                   ^
   help: take one comma out
)"},
    {"ZX203", "empty",
     "[Policy.web]\n" "AppliesTo.1 =\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:2:14: error: AppliesTo.1 has no value [ZX203]
   2 | AppliesTo.1 =
     |              ^
   help: specifiers are ALL, m:, s:, t:, c:, o: and d:, between commas
)"},
    {"ZX603", "number",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "AppliesTo.16 = c:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "AppliesTo.15 = c:1\n",
     R"(p.ini:3:1: warning: AppliesTo.16 has no effect [ZX603]
   3 | AppliesTo.16 = c:1
     | ^^^^^^^^^^^^
   help: zolex looks at AppliesTo.1 to AppliesTo.15
)"},
    {"ZX603", "zero",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:1\n" "Logical.02 = A:50%:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array_Mode = CUSTOM\n" "Array.A = 1,2\n" "Logical_Mode = CUSTOM\n" "Logical.1 = A:50%:1\n" "Logical.2 = A:50%:1\n",
     R"(p.ini:7:1: warning: Logical.02 has no effect [ZX603]
   7 | Logical.02 = A:50%:1
     | ^^^^^^^^^^
   help: zolex looks for Logical.2, without a zero
)"},
    {"ZX603", "absentValue",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = ^~\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = BUILD\n",
     R"(p.ini:3:8: warning: Init has no effect: ^~ counts as no value at all [ZX603]
   3 | Init = ^~
     |        ^^
   help: take the line out
)"},
    {"ZX610", "drives",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Drives.A = largest 2 x SSD\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:3:1: note: zolex refuses this file: it does not know Drives.A [ZX610]
   3 | Drives.A = largest 2 x SSD
     | ^^^^^^^^
)"},
    {"ZX901", "blanks",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK \t\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n",
     R"(p.ini:3:13: note: blanks at the end of the line [ZX901]
   3 | Init = QUICK
     |             ^^
   help: zolexctl check --fix takes them out
)"},
    {"ZX902", "case",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "hotspares = 4\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = 4\n",
     R"(p.ini:3:1: note: hotspares is usually written Hotspares [ZX902]
   3 | hotspares = 4
     | ^^^^^^^^^
   help: zolexctl check --fix writes it so
)"},
    };
    // clang-format on
}

} // namespace

TEST(OtherRules, AreFoundAndTheirNeighboursNot) {
    checkCases(otherCases());
}
