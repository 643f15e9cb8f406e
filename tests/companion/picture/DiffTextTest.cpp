#include "companion/picture/DiffText.h"
#include "companion/picture/Changes.h"

#include "companion/picture/PlainStyle.h"
#include "companion/support/ExamplePlan.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

using test::exampleDiff;
using test::exampleFinding;
using test::exampleGroup;

/// Everything that is rare: what is too much, a drive that moved, what is in the way, health, a
/// controller that could not be read, and one without a policy.
MachineDiff rareDiff() {
    MachineDiff diff = exampleDiff();
    ControllerDiff& first = diff.controllers[0];
    first.captured.groups.push_back(exampleGroup("2", {"32:8"}, "2", "RAID0", 69376));
    first.captured.groups.push_back(exampleGroup("3", {"32:9", "32:10"}, "3", "None", 69376));
    first.captured.spares = {{"32:11", {}, false, false}, {"32:12", {}, true, false}};
    first.comparison.groupsInTheWay = {1, 2, 3};
    first.comparison.sparesInTheWay = {"32:11"};
    first.comparison.differences.push_back({"surplus", "", "2", "none", "RAID0 on 32:8"});
    first.comparison.differences.push_back({"surplus", "32:11", "", "none", "hot spare 32:11"});
    first.comparison.differences.push_back({"moved", "32:5", "", "32:5", "32:6"});
    first.comparison.differences.push_back({"missing", "", "Logical.3", "RAID1 67.8 GB", ""});
    first.comparison.health = {"LD 1 is degraded: 32:3 failed"};
    first.comparison.notComparable = {"strip_size_bytes", "write_cache_policy"};
    first.takesRebuild = {"strip size", "RAID level"};
    first.toRemove = {"LD 3"};
    ControllerDiff third;
    third.number = 3;
    third.model = "Kestrix-D4";
    third.result = ControllerDiff::Result::unknown;
    third.because = "MEGACLI failed";
    third.diagnostics = {exampleFinding("ZP101", Severity::error, "the listing could not be read")};
    third.diagnostics[0].help = {"zolexctl doctor"};
    ControllerDiff fourth;
    fourth.number = 4;
    fourth.model = "Kestrix-D5";
    fourth.result = ControllerDiff::Result::skipped;
    fourth.because = "no policy applies";
    diff.controllers.push_back(third);
    diff.controllers.push_back(fourth);
    return diff;
}

MachineDiff diffOfResult(ControllerDiff::Result result) {
    MachineDiff diff = exampleDiff();
    diff.controllers.erase(diff.controllers.begin());
    diff.controllers[0].result = result;
    diff.result = result;
    if (result == ControllerDiff::Result::same) {
        diff.controllers[0].comparison.equivalences.clear();
    }
    return diff;
}

TEST(DiffText, TellsEachAttributeAndTheNextCommand) {
    EXPECT_EQ(diffText(exampleDiff(), test::plainStyle, false),
              R"(Controller 1  LSI-MegaRAID-8480  Policy.web (site.ini:17)              different
  = LD 0  RAID1   67.8 GB  32:0 32:1
  ~ LD 1  RAID5  271.0 GB  32:2-32:6
      strip size   policy 64 KB       machine 128 KB
      write cache  policy write-back  machine write-through
  - spare  missing  32:7  hot spare 32:7 (covers A, B); 32:7 is free
Controller 2  Kestrix-B7  Policy.db (site.ini:3)                      equivalent
  = the same layout; the spare is 1:4 and would be planned as 1:5 (equal drives)

1 of 2 controllers differs. This takes a rebuild: strip size. zolexctl plan
site.ini shows what it takes.
)");
}

TEST(DiffText, TellsEverythingThatIsRare) {
    EXPECT_EQ(diffText(rareDiff(), test::plainStyle, true),
              R"(Controller 1  LSI-MegaRAID-8480  Policy.web (site.ini:17)              different
  = LD 0   RAID1    67.8 GB  32:0 32:1
  ~ LD 1   RAID5   271.0 GB  32:2-32:6
      strip size   policy 64 KB       machine 128 KB
      write cache  policy write-back  machine write-through
  + LD 2   RAID0    67.8 GB  32:8        not wanted
  ~ LD 3   VOLUME   67.8 GB  32:9 32:10  in the way of what is wanted
  = spare                    32:12
  - spare      missing  32:7         hot spare 32:7 (covers A, B); 32:7 is free
  + 32:11      surplus  policy none  machine hot spare 32:11
  ~ 32:5       moved    policy 32:5  machine 32:6
  - Logical.3  missing               RAID1 67.8 GB
  ! LD 1 is degraded: 32:3 failed
    not compared, because the utility does not list it: strip size, write cache
Controller 2  Kestrix-B7  Policy.db (site.ini:3)                      equivalent
  = LD 1   RAID1  67.8 GB  1:0 1:1
  = spare                  1:4
  = the same layout; the spare is 1:4 and would be planned as 1:5 (equal drives)
    not compared, because the utility does not list it: write cache
Controller 3  Kestrix-D4                                                 unknown
  MEGACLI failed
error: the listing could not be read [ZP101]
   help: zolexctl doctor
Controller 4  Kestrix-D5                                                 skipped
  no policy applies

1 of 4 controllers could not be compared. 1 of 4 controllers differs. These take
a rebuild: strip size, RAID level. To be removed: LD 3. zolexctl plan site.ini
shows what it takes.
)");
}

TEST(DiffText, ANarrowTerminalGetsNarrowLines) {
    EXPECT_EQ(diffText(exampleDiff(), {false, 40}, false), R"(Controller 1  LSI-MegaRAID-8480
              Policy.web (site.ini:17)
              different
  = LD 0  RAID1   67.8 GB  32:0 32:1
  ~ LD 1  RAID5  271.0 GB  32:2-32:6
      strip size  policy 64 KB  machine
          128 KB
      write cache  policy write-back
          machine write-through
  - spare  missing  32:7  hot spare 32:7
      (covers A, B); 32:7 is free
Controller 2  Kestrix-B7 Policy.db
              (site.ini:3)
              equivalent
  = the same layout; the spare is 1:4
    and would be planned as 1:5 (equal
    drives)

1 of 2 controllers differs. This takes a
rebuild: strip size. zolexctl plan
site.ini shows what it takes.
)");
}

TEST(DiffText, EachResultHasItsSentence) {
    using Result = ControllerDiff::Result;
    EXPECT_EQ(diffText(diffOfResult(Result::same), test::plainStyle, false),
              R"(Controller 2  Kestrix-B7  Policy.db (site.ini:3)                            same
  = the same layout

The controller is as the policies say.
)");
    EXPECT_EQ(diffText(diffOfResult(Result::equivalent), test::plainStyle, true),
              R"(Controller 2  Kestrix-B7  Policy.db (site.ini:3)                      equivalent
  = LD 1   RAID1  67.8 GB  1:0 1:1
  = spare                  1:4
  = the same layout; the spare is 1:4 and would be planned as 1:5 (equal drives)
    not compared, because the utility does not list it: write cache

The controller is as the policies say, on equal drives.
)");
    EXPECT_EQ(diffText(diffOfResult(Result::skipped), test::plainStyle, false),
              R"(Controller 2  Kestrix-B7  Policy.db (site.ini:3)                         skipped

Every controller is skipped.
)");
    EXPECT_EQ(diffText(diffOfResult(Result::unknown), test::plainStyle, false),
              R"(Controller 2  Kestrix-B7  Policy.db (site.ini:3)                         unknown

The controller could not be compared.
)");
}

TEST(DiffText, AMachineAgainstAPlanThatLacksASpare) {
    MachineDiff diff = exampleDiff();
    ControllerDiff& first = diff.controllers[0];
    first.comparison.differences = {first.comparison.differences[2]};
    first.comparison.groupsInTheWay.clear();
    first.addingIsEnough = true;
    diff.isByPlan = true;
    diff.wantedBy = "plan.json";
    EXPECT_EQ(diffText(diff, test::plainStyle, false),
              R"(Controller 1  LSI-MegaRAID-8480  Policy.web                            different
  = LD 0  RAID1   67.8 GB  32:0 32:1
  = LD 1  RAID5  271.0 GB  32:2-32:6
  - spare  missing  32:7  hot spare 32:7 (covers A, B); 32:7 is free
Controller 2  Kestrix-B7  Policy.db                                   equivalent
  = the same layout; the spare is 1:4 and would be planned as 1:5 (equal drives)

1 of 2 controllers differs. Adding what is missing is enough. zolexctl show
plan.json shows the plan.
)");
}

TEST(DiffText, ColoursAreNeverTheOnlyCarrier) {
    for (const MachineDiff& diff : {exampleDiff(), rareDiff()}) {
        for (const bool verbose : {false, true}) {
            const std::string text = diffText(diff, {true, 80}, verbose);
            std::string bare;
            for (std::size_t i = 0; i < text.size(); ++i) {
                if (text[i] == '\033') {
                    i = text.find('m', i);
                } else {
                    bare += text[i];
                }
            }
            EXPECT_NE(text, bare);
            EXPECT_EQ(bare, diffText(diff, test::plainStyle, verbose));
        }
    }
}

TEST(DiffText, DrivesAreToldInRanges) {
    const std::pair<const char*, const char*> rows[] = {
        {"RAID5 fill, strip 64 KB: 32:0 32:1 32:2 32:5", "RAID5 fill, strip 64 KB: 32:0-32:2 32:5"},
        {"RAID10 fill: (32:0 32:1 32:2) (64:0 64:1)", "RAID10 fill: (32:0-32:2) (64:0 64:1)"},
        {"4 drives get no job: 32:3, 32:4, 32:5, 32:7", "4 drives get no job: 32:3-32:5, 32:7"},
        {"A needs 1:0 1:1 1:2, and LD 1 lies on 1:1", "A needs 1:0-1:2, and LD 1 lies on 1:1"},
        {"1:0, 1:1 1:2", "1:0, 1:1 1:2"},
        {"64 KB: 12:30:15 1: :2", "64 KB: 12:30:15 1: :2"},
        {"32:0 ", "32:0 "},
        {"", ""},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(withRanges(text), expected);
    }
}

TEST(DiffText, ARefusedPlanIsNoAddition) {
    MachineDiff diff = exampleDiff();
    ControllerDiff& first = diff.controllers[0];
    first.isRefused = true;
    first.takesRebuild.clear();
    diff.wantedBy = "<stdin>";
    const std::string text = diffText(diff, test::plainStyle, false);
    EXPECT_EQ(text.substr(text.find("\n\n")),
              "\n\n1 of 2 controllers differs. The plan is refused: zolexctl plan - says why.\n");
    first.result = ControllerDiff::Result::unknown;
    const std::string unknown = diffText(diff, test::plainStyle, false);
    EXPECT_EQ(unknown.substr(unknown.find("\n\n")),
              "\n\n1 of 2 controllers could not be compared. The plan is refused: zolexctl plan "
              "-\nsays why.\n");
}

TEST(DiffText, SeveralControllersAreToldOneByOne) {
    MachineDiff diff = exampleDiff();
    ControllerDiff& second = diff.controllers[1];
    second.result = ControllerDiff::Result::different;
    second.toRemove = {"LD 1", "hot spare 1:4"};
    const std::string text = diffText(diff, test::plainStyle, false);
    EXPECT_EQ(text.substr(text.find("\n\n")), R"(

2 of 2 controllers differ. Controller 1: This takes a rebuild: strip size.
Controller 2: To be removed: LD 1, hot spare 1:4. zolexctl plan site.ini shows
what it takes.
)");
}

TEST(DiffText, NothingFromOutsideSteersATerminal) {
    const std::string evil = "a\033[2Jb\nc\xE2\x80\xAE"
                             "d\xFF";
    MachineDiff diff = rareDiff();
    diff.wantedBy = evil;
    diff.diagnostics = {exampleFinding(evil, Severity::warning, evil)};
    for (ControllerDiff& controller : diff.controllers) {
        controller.model = controller.policy = controller.because = evil;
        controller.takesRebuild = controller.toRemove = {evil};
        Comparison& comparison = controller.comparison;
        comparison.health = comparison.equivalences = comparison.notComparable = {evil};
        for (Difference& difference : comparison.differences) {
            difference.wanted = difference.found = difference.attribute = evil;
        }
        comparison.differences.push_back({evil, evil, evil, evil, evil});
        for (LayoutGroup& group : controller.captured.groups) {
            group.spans = {{evil}};
            group.volumes[0].raidType = evil;
        }
    }
    const std::string text = diffText(diff, test::plainStyle, true);
    for (const char* const piece : {"\033", "\xE2\x80\xAE", "\xFF", "b\nc"}) {
        EXPECT_EQ(text.find(piece), std::string::npos) << text;
    }
    EXPECT_NE(text.find("a?[2Jb?c?d?"), std::string::npos);
}

} // namespace
} // namespace zolex::companion
