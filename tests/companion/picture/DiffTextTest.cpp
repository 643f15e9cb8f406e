#include "companion/picture/DiffText.h"

#include "companion/support/ExamplePlan.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace zolex::companion {
namespace {

using test::exampleDiff;
using test::exampleFinding;
using test::exampleGroup;

const TextStyle plain{false, 80};

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
    first.takesRebuild = {"strip size takes a rebuild", "LD 3 is in the way"};
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

TEST(DiffText, Dump) {
    using R = ControllerDiff::Result;
    MachineDiff add = exampleDiff(); add.controllers[0].comparison.differences.erase(add.controllers[0].comparison.differences.begin(), add.controllers[0].comparison.differences.begin() + 2); add.controllers[0].comparison.groupsInTheWay.clear(); add.controllers[0].addingIsEnough = true; add.isByPlan = true; add.wantedBy = "plan.json";
    std::printf("@@1@@%s@@1@@\n", diffText(exampleDiff(), plain, false).c_str());
    std::printf("@@2@@%s@@2@@\n", diffText(rareDiff(), plain, true).c_str());
    std::printf("@@3@@%s@@3@@\n", diffText(exampleDiff(), {false, 40}, false).c_str());
    std::printf("@@4@@%s@@4@@\n", diffText(diffOfResult(R::same), plain, false).c_str());
    std::printf("@@5@@%s@@5@@\n", diffText(diffOfResult(R::equivalent), plain, true).c_str());
    std::printf("@@6@@%s@@6@@\n", diffText(diffOfResult(R::skipped), plain, false).c_str());
    std::printf("@@7@@%s@@7@@\n", diffText(diffOfResult(R::unknown), plain, false).c_str());
    std::printf("@@8@@%s@@8@@\n", diffText(add, plain, false).c_str());
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
            EXPECT_EQ(bare, diffText(diff, plain, verbose));
        }
    }
}

TEST(DiffText, NothingFromOutsideSteersATerminal) {
    const std::string evil = "a\033[2Jb\nc\xE2\x80\xAE"
                             "d\xFF";
    MachineDiff diff = rareDiff();
    diff.wantedBy = evil;
    diff.diagnostics = {exampleFinding(evil, Severity::warning, evil)};
    for (ControllerDiff& controller : diff.controllers) {
        controller.model = controller.policy = controller.because = evil;
        controller.takesRebuild = {evil};
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
    const std::string text = diffText(diff, plain, true);
    for (const char* const piece : {"\033", "\xE2\x80\xAE", "\xFF", "b\nc"}) {
        EXPECT_EQ(text.find(piece), std::string::npos) << text;
    }
    EXPECT_NE(text.find("a?[2Jb?c?d?"), std::string::npos);
}

} // namespace
} // namespace zolex::companion
