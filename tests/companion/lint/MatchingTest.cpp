#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(ZX201, APolicyBehindOneForAll) {
    EXPECT_EQ(lintText(R"([Policy.all]
AppliesTo.1 = ALL
[Policy.rest]
AppliesTo.1 = t:Kestrix-C7
)"),
              R"(3:1 warning ZX201: Policy.rest can never be used
  help: each controller that it fits fits Policy.all (line 1) before it
  help: put it before that one, or take it out
)");
}

TEST(ZX201, EachEntryBehindAnother) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
[Policy.two]
AppliesTo.1 = t:Kestrix-C7,d:8
AppliesTo.2 = T:Kestrix-C7
[Policy.three]
AppliesTo.1 = M:8837,c:1
AppliesTo.2 = d:6,t:Kestrix-C7
)"),
              R"(6:1 warning ZX201: Policy.three can never be used
  help: each controller that it fits fits Policy.one (line 1) or Policy.two (line 3) before it
  help: put it before that one, or take it out
)");
}

TEST(ZX201, OneEntryIsAlive) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
[Policy.three]
AppliesTo.1 = m:8838
)"),
              "");
}

TEST(ZX201, AnEntryThatGivesNothingHidesNothing) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
AppliesTo.2 = m:
[Policy.three]
AppliesTo.1 = m:8838
)"),
              R"(3:15 warning ZX205: AppliesTo.2 gives nothing, so it matches no controller
  help: write a value behind the colon, or ALL for every controller
)");
}

TEST(ZX202, AnEntryBehindOneOfAnotherPolicy) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
[Policy.two]
AppliesTo.1 = m:8838
AppliesTo.2 = m:8837,d:4
)"),
              R"(5:15 warning ZX202: AppliesTo.2 adds no controller to Policy.two
  help: each controller that it fits fits AppliesTo.1 of Policy.one (line 2) before it
)");
}

TEST(ZX202, AnEntryBehindOneOfItsOwn) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = c:1
AppliesTo.2 = c:1,d:4
AppliesTo.3 = c:2
)"),
              R"(3:15 warning ZX202: AppliesTo.2 adds no controller to Policy.one
  help: each controller that it fits fits AppliesTo.1 (line 2) before it
)");
}

TEST(ZX202, TheNarrowerOneFirst) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = c:1,d:4
AppliesTo.2 = c:1
)"),
              "");
}

TEST(ZX204, ALetterTwice) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = c:1,c:2
)"),
        R"(2:19 warning ZX204: c: stands twice in AppliesTo.1: c:2 counts, c:1 does not, see 2:15 has no effect
  help: for either of both write a further entry, such as AppliesTo.2 = c:1
)");
}

TEST(ZX204, TwoEntries) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = c:1
AppliesTo.2 = c:2
)"),
              "");
}

TEST(ZX205, NoValue) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m: ,s:
)"),
              R"(2:15 warning ZX205: AppliesTo.1 gives nothing, so it matches no controller
  help: write a value behind the colon, or ALL for every controller
)");
}

TEST(ZX205, NoValueBesideAnother) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:,c:1
)"),
              "");
}

TEST(ZX206, AboveTheLimits) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = c:37
AppliesTo.2 = o:16
AppliesTo.3 = d:145
AppliesTo.4 = t:LSI-IDEal-RAID,d:3
)"),
        R"(2:15 warning ZX206: AppliesTo.1 can hold for no controller: a machine has 36 at most
  help: zolexctl show tells number, model and drives of each controller
3:15 warning ZX206: AppliesTo.2 can hold for no controller: a utility has 15 at most
  help: zolexctl show tells number, model and drives of each controller
4:15 warning ZX206: AppliesTo.3 can hold for no controller: a controller has 144 drives at most
  help: zolexctl show tells number, model and drives of each controller
5:32 warning ZX206: AppliesTo.4 can hold for no controller: LSI-IDEal-RAID has 2 drives at most
  help: zolexctl show tells number, model and drives of each controller
)");
}

TEST(ZX206, ACommentBehindAMachineType) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = m:8837 ; web servers
AppliesTo.2 = s:KQ10Z7V # spare
AppliesTo.3 = m:88;37
)"),
        R"(2:22 warning ZX206: AppliesTo.1 can hold for no controller: the comment is a part of the value
  help: give the comment a line of its own, with ";" before it
3:25 warning ZX206: AppliesTo.2 can hold for no controller: the comment is a part of the value
  help: give the comment a line of its own, with ";" before it
)");
}

TEST(ZX206, AtTheLimits) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = c:36
AppliesTo.2 = o:15
AppliesTo.3 = d:144
AppliesTo.4 = t:LSI-IDEal-RAID,d:2
)"),
              "");
}

TEST(ZX207, AHole) {
    EXPECT_EQ(
        lintText(R"([Policy.six]
AppliesTo.1 = t:Kestrix-C7,d:6
[Policy.eight]
AppliesTo.1 = t:Kestrix-C7,d:8
)"),
        R"(2:15 note ZX207: 2 policies name Kestrix-C7, and none takes those that the others leave
  help: such controllers are skipped; for all of them: AppliesTo.1 = t:Kestrix-C7
)");
}

TEST(ZX207, TheRestIsTaken) {
    EXPECT_EQ(lintText(R"([Policy.six]
AppliesTo.1 = t:Kestrix-C7,d:6
[Policy.eight]
AppliesTo.1 = t:Kestrix-C7,d:8
[Policy.rest]
AppliesTo.1 = t:Kestrix-C7
)"),
              "");
}

TEST(ZX207, OnePolicy) {
    EXPECT_EQ(lintText(R"([Policy.six]
AppliesTo.1 = t:Kestrix-C7,d:6
AppliesTo.2 = t:Kestrix-C7,d:8
)"),
              "");
}

} // namespace
} // namespace zolex::companion
