#include "policies/PolicyScan.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyTestSupport.h"
#include "support/PolicyLines.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using test::entries;
using test::errorBlock;
using test::policies;
using test::PolicyReading;

struct ScanFault {
    const char* what;
    std::string content;
    std::string message;
};

const std::string longPiece(255, 'x');

const ScanFault faults[] = {
    {"text before the first section", "; c\n\n  x = y\n", "Line 3 -- Invalid character:  x\n"},
    {"a tab before the bracket", "\t[Policy.A]\nAppliesTo.1=ALL\n",
     "Line 1 -- Invalid character:  \t\n"},
    {"the only line has no newline", "x", "Line 0 -- Invalid character:  x\n"},
    {"a byte 0", std::string("\0\n", 2), "Line 1 -- Invalid character:  \n"},
    {"a byte 0 in a keyword", std::string("[Policy.A]\nAppliesTo.1=ALL\nInit\0=QUICK\n", 39),
     "Line 3 -- Invalid keyword:  Init\n"},
    {"the 51st entry", "[Policy.A]\n" + entries(50) + "Init=QUICK\n",
     "Line 52 -- Invalid character:  I\n"},
    {"the 51st entry, after a comment and a blank line",
     "[Policy.A]\n" + entries(25) + "\n; c\n" + entries(50).substr(entries(25).size()) +
         "  Init=QUICK\n",
     "Line 54 -- Invalid character:  I\n"},
    {"no closing bracket", "[Policy.A\nAppliesTo.1=ALL\n",
     "Line 1 -- Invalid policy declaration.\n"},
    {"no closing bracket within the length of a line",
     "[Policy." + std::string(250, 'a') + "]\nAppliesTo.1=ALL\n",
     "Line 0 -- Invalid policy declaration.\n"},
    {"no name", "[]\n", "Line 1 -- Invalid or duplicate policy name:  \n"},
    {"another prefix", "[Polic.A]\n", "Line 1 -- Invalid or duplicate policy name:  Polic.A\n"},
    {"the prefix only", "[Policy.]\n", "Line 1 -- Invalid or duplicate policy name:  Policy.\n"},
    {"no dot", "[PolicyA]\n", "Line 1 -- Invalid or duplicate policy name:  PolicyA\n"},
    {"a space in the name", "[Policy.A B]\n",
     "Line 1 -- Invalid or duplicate policy name:  Policy.A B\n"},
    {"a space around the name", "[ Policy.A]\n",
     "Line 1 -- Invalid or duplicate policy name:   Policy.A\n"},
    {"a space after the name", "[Policy.A ]\n",
     "Line 1 -- Invalid or duplicate policy name:  Policy.A \n"},
    {"a letter beyond ASCII", "[Policy.\xC4]\n",
     "Line 1 -- Invalid or duplicate policy name:  Policy.\xC4\n"},
    {"a slash in the name", "[Policy.a/b]\n",
     "Line 1 -- Invalid or duplicate policy name:  Policy.a/b\n"},
    {"a name twice, other case", "[Policy.A]\nAppliesTo.1=ALL\n[policy.a]\nAppliesTo.1=ALL\n",
     "Line 3 -- Invalid or duplicate policy name:  policy.a\n"},
    {"the 101st policy", policies(101),
     "Line 201 -- Too many policies specified.\n"
     "\tThe maximum number of policies that you may specify is 100\n"},
    {"an entry without =", "[Policy.A]\nAppliesTo.1=ALL\n  Init QUICK \n",
     "Line 3 -- Line not in keyword = value format:    Init QUICK \n"},
    {"an entry without =, CR LF", "[Policy.A]\r\nInit QUICK\r\n",
     "Line 2 -- Line not in keyword = value format:  Init QUICK\n"},
    {"an entry without = or newline", "[Policy.A]\nInit QUICK",
     "Line 1 -- Line not in keyword = value format:  Init QUICK"},
    {"a tab alone on a line", "[Policy.A]\nAppliesTo.1=ALL\n\t\n",
     "Line 3 -- Line not in keyword = value format:  \t\n"},
    {"an entry without = that is longer than a line", "[Policy.A]\n" + longPiece + "\n",
     "Line 1 -- Line not in keyword = value format:  " + longPiece},
    {"the rest of a long line", "[Policy.A]\nAppliesTo.1=ALL" + std::string(240, ' ') + "rest\n",
     "Line 2 -- Line not in keyword = value format:  rest\n"},
    {"255 spaces before an entry", std::string(255, ' ') + "Init=QUICK\n",
     "Line 1 -- Invalid character:  I\n"},
    {"the rest of a long comment is a section", ";" + std::string(254, '-') + "[Policy.A]\nx\n",
     "Line 2 -- Line not in keyword = value format:  x\n"},
    {"a comment after a tab", "[Policy.A]\nAppliesTo.1=ALL\n\t; c = d\n",
     "Line 3 -- Invalid keyword:  ; c\n"},
    {"an unknown keyword goes before a repeat", "[Policy.A]\nInit=QUICK\nInit=QUICK\nx=1\n",
     "Line 4 -- Invalid keyword:  x\n"},
    {"a section without AppliesTo.1 goes before the next header", "[Policy.A]\nInit=QUICK\n[x]\n",
     "Policy.A -- Each policy must have an AppliesTo.1"},
    {"an unknown keyword", "[Policy.A]\nAppliesTo.1=ALL\n\t Colour \t= red\n",
     "Line 3 -- Invalid keyword:  Colour\n"},
    {"no keyword", "[Policy.A]\n= red\n", "Line 2 -- Invalid keyword:  \n"},
    {"array I", "[Policy.A]\nArray.I = ALL\n", "Line 2 -- Invalid keyword:  Array.I\n"},
    {"number 0", "[Policy.A]\nAppliesTo.0 = ALL\n", "Line 2 -- Invalid keyword:  AppliesTo.0\n"},
    {"no number", "[Policy.A]\nLogical.x = A:FILL:0\n", "Line 2 -- Invalid keyword:  Logical.x\n"},
    {"a keyword twice, other case", "[Policy.A]\nAppliesTo.1=ALL\nInit=QUICK\nINIT=BUILD\n",
     "Policy.A -- Duplicate keywords found:  Init"},
    {"the first of two repeats is the one whose first spelling stands first",
     "[Policy.A]\nInit=QUICK\nReadAhead=ON\nREADAHEAD=ON\ninit=BUILD\n",
     "Policy.A -- Duplicate keywords found:  Init"},
    {"a repeat goes before a missing AppliesTo.1", "[Policy.A]\nInit=QUICK\nInit=BUILD\n",
     "Policy.A -- Duplicate keywords found:  Init"},
    {"a repeat among 50 entries goes before what follows them",
     "[Policy.A]\n" + entries(49) + "appliesto.7 = ALL\nInit=QUICK\n",
     "Policy.A -- Duplicate keywords found:  AppliesTo.7"},
    {"a section without entries", "[Policy.A]\n[Policy.B]\nAppliesTo.1=ALL\n",
     "Policy.A -- Each policy must have an AppliesTo.1"},
    {"a last section without entries", "[Policy.A]\nAppliesTo.1=ALL\n[Policy.B]",
     "Policy.B -- Each policy must have an AppliesTo.1"},
    {"no AppliesTo.1", "[Policy.A]\nAppliesTo.2=ALL\nAppliesTo.01=ALL\n",
     "Policy.A -- Each policy must have an AppliesTo.1"},
    {"an empty file", "", "\tYou must specify at least one policy in the policies file.\n"},
    {"comments and blank lines only", "; c\n\n   \n  ; d\n\r\n",
     "\tYou must specify at least one policy in the policies file.\n"},
};

TEST(PolicyScanTest, FaultsAreReportedInFullAndEndTheRead) {
    for (const ScanFault& fault : faults) {
        PolicyReading reading;
        EXPECT_FALSE(reading.read(fault.content)) << fault.what;
        EXPECT_EQ(reading.output(), errorBlock(fault.message)) << fault.what;
        EXPECT_EQ(reading.reader.policies(), nullptr) << fault.what;
    }
}

struct ScanAccept {
    const char* what;
    std::string content;
    std::string names; ///< each followed by "|"
};

const ScanAccept scanAccepts[] = {
    {"lower case", "[policy.x]\nappliesto.1=ALL\n", "policy.x|"},
    {"every kind of character", "[Policy.aZ0.9_-]\nAppliesTo.1=ALL\n", "Policy.aZ0.9_-|"},
    {"text after the bracket", "  [Policy.A] ; x ]\nAppliesTo.1=ALL\n", "Policy.A|"},
    {"indented, CR LF, no last newline", "; c\r\n   [Policy.A]\r\n  \tAppliesTo.1 \t=ALL",
     "Policy.A|"},
    {"the same keyword in two policies",
     "[Policy.A]\nAppliesTo.1=ALL\nInit=QUICK\n[Policy.B]\nInit=QUICK\nAppliesTo.1=ALL\n",
     "Policy.A|Policy.B|"},
    {"50 entries, then a section", "[Policy.A]\n" + entries(50) + "; c\n[Policy.B]\n" + entries(1),
     "Policy.A|Policy.B|"},
    {"50 entries at the end", "[Policy.A]\n" + entries(50), "Policy.A|"},
    {"a line of exactly 255 characters",
     "[Policy.A]\nAppliesTo.1=ALL" + std::string(240, ' ') + "\n", "Policy.A|"},
    {"Policy.default is a name like others", "[Policy.default]\nAppliesTo.1=ALL\n",
     "Policy.default|"},
};

TEST(PolicyScanTest, AcceptedFilesGiveTheirPoliciesInOrder) {
    for (const ScanAccept& accept : scanAccepts) {
        PolicyReading reading;
        reading.application.printer().setVerbosity(0); // the notes about unused keywords
        ASSERT_TRUE(reading.read(accept.content)) << accept.what << reading.output();
        std::string names;
        for (const Policy& policy : reading.reader.policies()->policies()) {
            names += std::string(policy.name.view()) + "|";
        }
        EXPECT_EQ(names, accept.names) << accept.what;
        EXPECT_EQ(reading.output(), "") << accept.what;
    }
}

TEST(PolicyScanTest, AHundredPoliciesAreRead) {
    PolicyReading reading;
    ASSERT_TRUE(reading.read(policies(100)));
    EXPECT_EQ(reading.reader.policies()->count(), 100U);
    EXPECT_TRUE(reading.reader.hasPolicy("pOLICY.100"));
    EXPECT_FALSE(reading.reader.hasPolicy("Policy.101"));
}

TEST(PolicyKeywordsTest, ValidAndInvalidKeywords) {
    for (const char* valid :
         {"AppliesTo.1", "appliesto.15", "AppliesTo.16", "AppliesTo.007", "AppliesTo.2147483647",
          "RebuildRate", "READAHEAD", "StripeSize", "Init", "Array_Mode", "Array_Defaults",
          "Array.A", "array.h", "Hotspares", "Logical_Mode", "Logical_Defaults", "Logical.1",
          "LOGICAL.99", "Max_Logical_Drive_Size"}) {
        EXPECT_TRUE(keyword::isValid(valid)) << valid;
    }
    for (const char* invalid : {"",
                                "AppliesTo",
                                "AppliesTo.",
                                "AppliesTo.0",
                                "AppliesTo.00",
                                "AppliesTo.x",
                                "AppliesTo.1x",
                                "AppliesTo. 1",
                                "AppliesTo.-1",
                                "AppliesTo.2147483648",
                                "Array.",
                                "Array.I",
                                "Array.AB",
                                "Array.1",
                                "Array.@",
                                "Logical.",
                                "Logical.0",
                                "Logical.x",
                                "Logical.1.1",
                                "Init.",
                                "RebuildRates",
                                "Hotspare"}) {
        EXPECT_FALSE(keyword::isValid(invalid)) << invalid;
    }
}

TEST(PolicyKeywordsTest, KeywordsThatNoLookUpAsksFor) {
    for (const char* unused : {"AppliesTo.16", "appliesto.01", "Logical.10", "LOGICAL.09"}) {
        EXPECT_TRUE(keyword::isNeverLookedUp(unused)) << unused;
    }
    for (const char* used :
         {"AppliesTo.1", "AppliesTo.15", "Logical.1", "logical.9", "Array.H", "Logical_Mode"}) {
        EXPECT_FALSE(keyword::isNeverLookedUp(used)) << used;
    }
}

} // namespace
} // namespace zolex
