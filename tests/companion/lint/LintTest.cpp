#include "companion/lint/Lint.h"

#include "companion/lint/Fix.h"
#include "companion/lint/LintText.h"
#include "companion/lint/Rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zolex::companion {
namespace {

/// Ids and lines: "ZX101:3 ZX902:3".
std::string idsOf(const std::string& text, const LintSelection& selection = {}) {
    std::string ids;
    for (const Finding& finding : lint(scanPolicies("p.ini", text), selection)) {
        ids += ids.empty() ? "" : " ";
        ids += finding.code + ":" + std::to_string(finding.start.line);
    }
    return ids;
}

const std::string faulty = "[Policy.web]\n"
                           "AppliesTo.1 = ALL\n"
                           "init = SLOW \n"
                           "StripeSize = 48\n";

TEST(Lint, TellsInTheOrderOfTheFile) {
    EXPECT_EQ(idsOf(faulty), "ZX902:3 ZX101:3 ZX901:3 ZX101:4");
}

TEST(Lint, SelectsByIdsAndTheirBeginnings) {
    EXPECT_EQ(idsOf(faulty, {{"ZX1"}, {}}), "ZX101:3 ZX101:4");
    EXPECT_EQ(idsOf(faulty, {{"zx902", "ZX901"}, {}}), "ZX902:3 ZX901:3");
    EXPECT_EQ(idsOf(faulty, {{}, {"ZX101"}}), "ZX902:3 ZX901:3");
    EXPECT_EQ(idsOf(faulty, {{"ZX9"}, {"ZX901"}}), "ZX902:3");
    EXPECT_EQ(idsOf(faulty, {{"ZX99"}, {}}), "");
    EXPECT_EQ(idsOf(faulty, {{"ZX1011"}, {}}), "");
}

TEST(Lint, IsSilencedByACommentForTheNextLineOfMeaning) {
    const auto with = [](const std::string& comment) {
        return idsOf("[Policy.web]\nAppliesTo.1 = ALL\n" + comment +
                     "init = SLOW \nStripeSize = 48\n");
    };
    EXPECT_EQ(with("; zolexctl: ignore ZX101\n"), "ZX902:4 ZX901:4 ZX101:5");
    EXPECT_EQ(with(";zolexctl:ignore\tzx1,ZX901\n"), "ZX902:4 ZX101:5");
    EXPECT_EQ(with("  ;; ZOLEXCTL: IGNORE ZX9 ZX1\n\n; a comment\n   \n"), "ZX901:6 ZX101:8");
    EXPECT_EQ(with("; zolexctl: ignore ZX101\n; zolexctl: ignore ZX90\n"), "ZX101:6");
    // No list, something else, or more than it may be.
    for (const char* comment :
         {"; zolexctl: ignore\n", "; zolexctl: ignore ZX\n", "; zolexctl ignore ZX1\n",
          "; zolexctl: ignores ZX1\n", "; ignore ZX1\n", "; zolexctl: ignore all\n"}) {
        EXPECT_EQ(with(comment), "ZX902:4 ZX101:4 ZX901:4 ZX101:5") << comment;
    }
}

TEST(Lint, IsSilencedByACommentForAPolicy) {
    const std::string two = "[Policy.b]\nAppliesTo.1 = c:1\nStripeSize = 48\n";
    EXPECT_EQ(idsOf("; zolexctl: ignore ZX101\n" + faulty + two, {{"ZX1"}, {}}), "ZX101:8");
    EXPECT_EQ(idsOf(faulty + "; zolexctl: ignore ZX101\n" + two, {{"ZX1"}, {}}), "ZX101:3 ZX101:4");
    // What is missing in a policy is told at its header.
    EXPECT_EQ(idsOf("; zolexctl: ignore ZX009\n[Policy.web]\nInit = QUICK\n"), "");
}

TEST(Lint, HasNoOtherFindingInAFileThatIsNoText) {
    EXPECT_EQ(idsOf("\xEF\xBB\xBF" + faulty), "ZX002:1");
    EXPECT_EQ(idsOf(faulty + std::string(1, '\0')), "ZX002:5");
    EXPECT_EQ(idsOf("\xEF\xBB\xBF" + faulty, {{"ZX1"}, {}}), "");
}

TEST(Lint, FindingsEndWithinTheirLine) {
    const std::vector<Finding> findings =
        lint(scanPolicies("p.ini", "  no policy  \n"), {{"ZX0"}, {}});
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].start, (TextPlace{1, 3, 2}));
    EXPECT_EQ(findings[0].end, (TextPlace{1, 12, 11}));
}

TEST(Lint, GoesOnBehindEachFault) {
    EXPECT_EQ(idsOf("text\nmore text\n"
                    "[Policy.a\n"
                    "AppliesTo.1 = c:1\nInit\nColour = red\n"
                    "[other]\nno = matter\nno matter\n"
                    "\t[Policy.b]\n"
                    "AppliesTo.1 = c:2\n\t; comment\nInit = SLOW\n"
                    "[Policy.b c]\n"
                    "Hotspares = x\n"
                    "[policy.B]\n"
                    "AppliesTo.1 = c:0\n"),
              "ZX003:1 ZX003:3 ZX006:5 ZX007:6 ZX004:7 ZX014:10 ZX014:12 ZX101:13 ZX009:14 "
              "ZX004:14 ZX104:15 ZX005:16 ZX203:17");
}

TEST(Lint, SaysNothingOfWhatMayStandInLinesAtFault) {
    EXPECT_EQ(idsOf("[Policy.a]\nAppliesTo1 = ALL\nArray_Mode = CUSTOM\nArray A = 1\n"
                    "Logical_Mode = CUSTOM\nLogical,1 = A:FILL:0\nLogical.2 = A:FILL:0\n",
                    {{"ZX0", "ZX1"}, {}}),
              "ZX007:2 ZX007:4 ZX007:6");
}

TEST(Lint, LeavesThePolicyWithTooManyEntriesAlone) {
    std::string text = "[Policy.a]\nAppliesTo.1 = ALL\nInit = SLOW\n";
    for (int i = 2; i < 60; ++i) {
        text += "AppliesTo." + std::to_string(i) + " = c:0\n";
    }
    text += "no text\n[Policy.b]\nAppliesTo.1 = c:0\n";
    EXPECT_EQ(idsOf(text), "ZX011:52 ZX203:64");
}

TEST(Lint, KnowsFilesOfAllLineEnds) {
    const std::string text = "[Policy.web]\r\nAppliesTo.1 = ALL\r\nInit = QUICK";
    EXPECT_EQ(idsOf(text), "");
    // A lone carriage return is no line end, and no blank behind a value.
    EXPECT_EQ(idsOf(text + "\r"), "ZX101:3");
    EXPECT_EQ(idsOf("\r; no matter\n" + text), "");
    EXPECT_EQ(idsOf("[Policy.web]\rAppliesTo.1 = ALL\rInit = QUICK\r"), "ZX009:1");
}

TEST(Rules, AreInOrderAndSayAllOfThemselves) {
    std::string before;
    for (const Rule& rule : rules()) {
        EXPECT_LT(before, rule.id);
        before = rule.id;
        EXPECT_FALSE(rule.title.empty()) << rule.id;
        EXPECT_FALSE(rule.why.empty()) << rule.id;
        EXPECT_FALSE(rule.help.empty()) << rule.id;
        EXPECT_EQ(findRule(rule.id), &rule);
    }
    EXPECT_NE(findRule("zx101"), nullptr);
    EXPECT_EQ(findRule("ZX999"), nullptr);
    EXPECT_EQ(findRule("ZX10"), nullptr);
}

TEST(Fix, LeavesEverythingElseAsItIs) {
    const std::string text = "hotspares =\t1 \t\r\n; comment \r\n \n";
    const PolicyDocument document = scanPolicies("p.ini", "[Policy.a] \n" + text + "INIT=x");
    const FixedText fixed = fixPolicies(document.text, lint(document, {}));
    EXPECT_EQ(fixed.text, "[Policy.a]\nHotspares =\t1\r\n; comment\r\n\nInit=x");
    EXPECT_EQ(fixed.blanks, 4U);
    EXPECT_EQ(fixed.keywords, 2U);
    const PolicyDocument again = scanPolicies("p.ini", fixed.text);
    EXPECT_FALSE(fixPolicies(again.text, lint(again, {})).isChanged());
}

} // namespace
} // namespace zolex::companion
