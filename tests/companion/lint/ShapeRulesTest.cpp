#include "companion/lint/RuleCases.h"

#include <gtest/gtest.h>

using namespace zolex::companion::test;

namespace {

std::vector<Case> shapeCases() {
    // clang-format off
    return {
    {"ZX002", "byteOrderMark",
     "\357\273\277[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = SLOW\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: byte-order mark before the first line [ZX002]
   1 | ?[Policy.web]
     | ^
   help: save it as plain text: ASCII, or UTF-8 without a byte-order mark
)"},
    {"ZX002", "utf16",
     std::string("\377\376[\000P\000", 6),
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; \303\274\n",
     R"(p.ini:1:1: error: the file is UTF-16 [ZX002]
   1 | ??[?P?
     | ^^
   help: save it as plain text: ASCII, or UTF-8 without a byte-order mark
)"},
    {"ZX002", "utf16WithoutMark",
     std::string("[\000P\000o\000l\000", 8),
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: the file is UTF-16 without a byte-order mark [ZX002]
   1 | [?P?o?l?
     |  ^
   help: save it as plain text: ASCII, or UTF-8 without a byte-order mark
)"},
    {"ZX002", "nul",
     std::string("[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUI\000CK\n", 45),
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n",
     R"(p.ini:3:11: error: NUL byte in the file [ZX002]
   3 | Init = QUI?CK
     |           ^
   help: save it as plain text: ASCII, or UTF-8 without a byte-order mark
)"},
    {"ZX002", "nulInComment",
     std::string("; a\000b\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n", 37),
     "; ab\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:4: warning: NUL byte in the file [ZX002]
   1 | ; a?b
     |    ^
   help: save it as plain text: ASCII, or UTF-8 without a byte-order mark
)"},
    {"ZX003", "textBefore",
     "Web servers\n" "of the site\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     "; Web servers\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: text before the first policy [ZX003]
   1 | Web servers
     | ^^^^^^^^^^^
   help: a policy begins with a line such as [Policy.web]
)"},
    {"ZX003", "headerOpen",
     "[Policy.web\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: no "]" at the end of the policy's name [ZX003]
   1 | [Policy.web
     | ^
   help: write [Policy.web]
)"},
    {"ZX004", "blank",
     "[Policy.web server]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web-server_1.x]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: invalid name of a policy: "Policy.web server" [ZX004]
   1 | [Policy.web server]
     |  ^^^^^^^^^^^^^^^^^
   help: a name is Policy. and letters, digits, ".", "_" or "-":
         [Policy.web-server]
)"},
    {"ZX004", "noPrefix",
     "[web]\n" "AppliesTo.1 = NONE\n" "no text\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: invalid name of a policy: "web" [ZX004]
   1 | [web]
     |  ^^^
   help: a name is Policy. and letters, digits, ".", "_" or "-": [Policy.web]
)"},
    {"ZX004", "blankFirst",
     "[ Policy.web ]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: invalid name of a policy: " Policy.web " [ZX004]
   1 | [ Policy.web ]
     |  ^^^^^^^^^^^^
   help: a name is Policy. and letters, digits, ".", "_" or "-": [Policy.web]
)"},
    {"ZX004", "bracketTwice",
     "[[Policy.web]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: invalid name of a policy: "[Policy.web" [ZX004]
   1 | [[Policy.web]
     |  ^^^^^^^^^^^
   help: a name is Policy. and letters, digits, ".", "_" or "-": [Policy.web]
)"},
    {"ZX004", "empty",
     "[Policy.]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:2: error: invalid name of a policy: "Policy." [ZX004]
   1 | [Policy.]
     |  ^^^^^^^
   help: a name is Policy. and letters, digits, ".", "_" or "-": [Policy.name]
)"},
    {"ZX005", "twice",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "\n" "[policy.WEB]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "\n" "[Policy.web2]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:4:2: error: a second policy of the name "policy.WEB" [ZX005]
   1 | [Policy.web]
     |  ---------- first here
   4 | [policy.WEB]
     |  ^^^^^^^^^^
   help: give it another name; letter case makes no difference
)"},
    {"ZX006", "noEquals",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares 4\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = 4\n",
     R"(p.ini:3:1: error: no "=": "Hotspares 4" [ZX006]
   3 | Hotspares 4
     | ^^^^^^^^^^^
   help: write Hotspares = 4
)"},
    {"ZX006", "text",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "  and no more of it\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "  ; and no more of it\n",
     R"(p.ini:3:3: error: no "=": "and no more of it" [ZX006]
   3 |   and no more of it
     |   ^^^^^^^^^^^^^^^^^
   help: every line is KEYWORD = VALUE; a comment begins with ";"
)"},
    {"ZX006", "tabs",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "  \t\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "    \n",
     R"(p.ini:3:3: error: a line of tabs: to zolex it is not blank [ZX006]
   3 |
     |   ^
   help: take the tabs out
)"},
    {"ZX007", "mistyped",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspare = 4\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "HOTSPARES = 4\n",
     R"(p.ini:3:1: error: unknown keyword "Hotspare" [ZX007]
   3 | Hotspare = 4
     | ^^^^^^^^
   help: did you mean Hotspares?
)"},
    {"ZX007", "lastArray",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.I = 4\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.A = 4\n",
     R"(p.ini:3:1: error: unknown keyword "Array.I" [ZX007]
   3 | Array.I = 4
     | ^^^^^^^
   help: arrays are Array.A to Array.H
)"},
    {"ZX007", "numberZero",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "AppliesTo.0 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "AppliesTo.2 = c:1\n",
     R"(p.ini:3:1: error: unknown keyword "AppliesTo.0" [ZX007]
   3 | AppliesTo.0 = ALL
     | ^^^^^^^^^^^
   help: entries are AppliesTo.1 to AppliesTo.15
)"},
    {"ZX007", "numberTooLarge",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical.99999999999 = A:FILL:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Logical.999999999 = A:FILL:1\n",
     R"(p.ini:3:1: error: unknown keyword "Logical.99999999999" [ZX007]
   3 | Logical.99999999999 = A:FILL:1
     | ^^^^^^^^^^^^^^^^^^^
   help: logical drives are Logical.1 to Logical.9
)"},
    {"ZX007", "nothing",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "= 4\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:3:1: error: no keyword before the "=" [ZX007]
   3 | = 4
     | ^
   help: zolexctl explain ZX007 lists the keywords
)"},
    {"ZX007", "farFromAll",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Colour = red\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:3:1: error: unknown keyword "Colour" [ZX007]
   3 | Colour = red
     | ^^^^^^
   help: zolexctl explain ZX007 lists the keywords
)"},
    {"ZX008", "twice",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n" "init = BUILD\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n",
     R"(p.ini:4:1: error: init is in Policy.web twice [ZX008]
   3 | Init = QUICK
     | ---- first here
   4 | init = BUILD
     | ^^^^
   help: leave one of the two lines

p.ini:4:1: note: init is usually written Init [ZX902]
   4 | init = BUILD
     | ^^^^
   help: zolexctl check --fix writes it so
)"},
    {"ZX008", "lostHeader",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n" "; another\n" "AppliesTo.1 = c:1\n" "Init = BUILD\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK\n" "[Policy.b]\n" "AppliesTo.1 = c:1\n" "Init = BUILD\n",
     R"(p.ini:5:1: error: AppliesTo.1 is in Policy.web twice [ZX008]
   2 | AppliesTo.1 = ALL
     | ----------- first here
   5 | AppliesTo.1 = c:1
     | ^^^^^^^^^^^
   help: is the [Policy.NAME] of a second policy missing before it?
)"},
    {"ZX009", "missing",
     "[Policy.web]\n" "AppliesTo.2 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: no AppliesTo.1 in Policy.web [ZX009]
   help: add AppliesTo.1 = ALL, or which controllers it is for
)"},
    {"ZX009", "absentValue",
     "[Policy.web]\n" "AppliesTo.1 = ^~\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: no AppliesTo.1 in Policy.web [ZX009]
   help: add AppliesTo.1 = ALL, or which controllers it is for

p.ini:2:15: warning: AppliesTo.1 has no effect: ^~ counts as no value at all
            [ZX603]
   2 | AppliesTo.1 = ^~
     |               ^^
   help: take the line out
)"},
    {"ZX010", "tooMany",
     policies(101),
     policies(100),
     R"(p.ini:201:2: error: more than 100 policies [ZX010]
   201 | [Policy.p100]
       |  ^^^^^^^^^^^
   help: zolex takes 100; make another file for the others
)"},
    {"ZX011", "tooMany",
     entries(50) + "Init = SLOW\nInit = SLOWER\n",
     entries(50),
     R"(p.ini:52:1: error: more than 50 entries in Policy.web [ZX011]
   52 | Init = SLOW
      | ^^^^^^^^^^^
   help: zolex takes 50 and reads the next line as the begin of a policy
)"},
    {"ZX012", "value",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.A = " + list(90) + "\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Array.A = " + list(81) + "\n",
     R"(p.ini:3:256: error: line of 279 characters: what is beyond 255 is read as
             another line [ZX012]
   3 | ...2,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12
     |                                               ^^^^^^^^^^^^^^^^^^^^^^^^
   help: shorten it: no entry goes on in a second line
)"},
    {"ZX012", "comment",
     "; " + repeated("The drives of this machine are numbered from one. ", 6) + "\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     ";                                        x\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:256: error: line of 302 characters: what is beyond 255 is read as
             another line [ZX012]
   1 | ...mbered from one. The drives of this machine are numbered from one.
     |                        ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^
   help: make two lines of the comment

p.ini:1:302: note: blanks at the end of the line [ZX901]
   1 | ...mbered from one. The drives of this machine are numbered from one.
     |                                                                      ^
   help: zolexctl check --fix takes them out
)"},
    {"ZX012", "commentWithBlankTail",
     "; " + std::string(253, '-') + "                    \n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     "; " + std::string(253, '-') + "\n" "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:256: warning: line of 275 characters: what is beyond 255 is read as
             another line [ZX012]
   1 | ...-----------------------------------------------
     |                                                   ^^^^^^^^^^^^^^^^^^^^
   Nothing is lost: what is beyond is blank or a comment.
   help: make two lines of the comment

p.ini:1:256: note: blanks at the end of the line [ZX901]
   1 | ...-----------------------------------------------
     |                                                   ^^^^^^^^^^^^^^^^^^^^
   help: zolexctl check --fix takes them out
)"},
    {"ZX012", "liveTail",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; " + std::string(253, '-') + "Init = BUILD\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; " + std::string(200, '-') + "Init = BUILD\n",
     R"(p.ini:3:256: error: line of 267 characters: what is beyond 255 is read as
             another line [ZX012]
   3 | ...-------------------------------------------------------Init = BUILD
     |                                                           ^^^^^^^^^^^^
   zolex takes the file, with what stands there.
   help: make two lines of the comment
)"},
    {"ZX012", "headerInTail",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; " + std::string(253, '-') + "[Policy.b]\n" "AppliesTo.1 = c:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "; [Policy.b]\n",
     R"(p.ini:3:256: error: line of 265 characters: what is beyond 255 is read as
             another line [ZX012]
   3 | ...---------------------------------------------------------[Policy.b]
     |                                                             ^^^^^^^^^^
   zolex takes the file, with what stands there.
   help: make two lines of the comment
)"},
    {"ZX012", "valueWithBlankTail",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK" + std::string(300, ' ') + "\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Init = QUICK" + std::string(243, ' ') + "\n",
     R"(p.ini:3:13: note: blanks at the end of the line [ZX901]
   3 | Init = QUICK                                                       ...
     |             ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^
   help: zolexctl check --fix takes them out

p.ini:3:256: warning: line of 312 characters: what is beyond 255 is read as
             another line [ZX012]
   3 | ...                                                                   ...
     |                    ^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^^
   Nothing is lost: what is beyond is blank or a comment.
   help: shorten it: no entry goes on in a second line
)"},
    {"ZX013", "empty",
     "",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: no policy in the file [ZX013]
   help: a policy begins with a line such as [Policy.web]
)"},
    {"ZX013", "comments",
     "; nothing\n" "\n" "  ; at all\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: no policy in the file [ZX013]
   help: a policy begins with a line such as [Policy.web]
)"},
    {"ZX014", "header",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "\t[Policy.b]\n" "AppliesTo.1 = c:1\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "   [Policy.b]\n" "AppliesTo.1 = c:1\n",
     R"(p.ini:3:1: error: tab before the "[": to zolex this line begins no policy
           [ZX014]
   3 |  [Policy.b]
     | ^
   help: take the tab out, or write blanks
)"},
    {"ZX014", "comment",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" " \t; text\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "   ; text\n",
     R"(p.ini:3:2: error: tab before the ";": to zolex this line is no comment [ZX014]
   3 |   ; text
     |  ^
   help: take the tab out, or write blanks
)"},
    {"ZX014", "atBegin",
     "\t[Policy.web]\n" "AppliesTo.1 = ALL\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n",
     R"(p.ini:1:1: error: tab before the "[": to zolex this line begins no policy
           [ZX014]
   1 |  [Policy.web]
     | ^
   help: take the tab out, or write blanks
)"},
    {"ZX007", "longList",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hot = " + list(90) + "\n",
     "[Policy.web]\n" "AppliesTo.1 = ALL\n" "Hotspares = 12\n",
     R"(p.ini:3:1: error: unknown keyword "Hot" [ZX007]
   3 | Hot = 12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,12,1...
     | ^^^
   help: zolexctl explain ZX007 lists the keywords
)"},
    };
    // clang-format on
}

} // namespace

TEST(ShapeRules, AreFoundAndTheirNeighboursNot) {
    checkCases(shapeCases());
}
