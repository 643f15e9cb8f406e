#include "companion/picture/PlanPicture.h"

#include "companion/picture/Changes.h"
#include "companion/picture/Geometry.h"
#include "companion/support/ExamplePlan.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zolex::companion {
namespace {

using test::exampleController;
using test::exampleDiff;
using test::exampleFinding;
using test::exampleNothingToDoPlan;
using test::examplePlan;
using test::exampleRefusedPlan;
using test::keepDocument;
using test::makeMember;

/// The slot of a drive in one of the rows.
std::string slotOf(const std::string& svg, const std::string& location, const std::string& row) {
    const std::size_t at = svg.find("data-location=\"" + location + "\" data-row=\"" + row + "\"");
    if (at == std::string::npos) {
        return "no " + location;
    }
    const std::size_t begin = svg.rfind("<g ", at);
    return svg.substr(begin, svg.find("</g>\n", at) - begin);
}

std::size_t countOf(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + piece.size())) {
        ++count;
    }
    return count;
}

/// The machine of the example comparison: what is wanted but for its strip size and its spare.
Snapshot comparedSnapshot() {
    Snapshot snapshot;
    ControllerSnapshot controller = exampleController();
    makeMember(controller.drives[5], "B");
    makeMember(controller.drives[6], "B");
    controller.arrays[1].drives = {"32:2", "32:3", "32:4", "32:5", "32:6"};
    controller.facts.logicalDrives[1] =
        test::exampleLogicalDrive("1", "RAID5", 277504, {"32:2", "32:3", "32:4", "32:5", "32:6"});
    snapshot.details = {controller};
    return snapshot;
}

TEST(PlanGeometry, TheSecondRowStandsBelowTheFirst) {
    const ControllerChange change = changeOf(test::examplePlanning());
    const PlanGeometry picture = planGeometryOf({{&change.now, &change.after}});
    ASSERT_EQ(picture.controllers.size(), 1U);
    const PlacedPlan& placed = picture.controllers[0];
    ASSERT_EQ(placed.rows.size(), 1U);
    const PlacedPlanRow& row = placed.rows[0];
    EXPECT_EQ(row.title, "Enclosure 32");
    EXPECT_EQ(row.titleBox, (Box{12, 56, 614, 18}));
    EXPECT_EQ(row.nowLabel, (Box{12, 74, 56, 88}));
    EXPECT_EQ(row.afterLabel, (Box{12, 180, 56, 88}));
    ASSERT_EQ(row.now.size(), 8U);
    ASSERT_EQ(row.after.size(), 8U);
    EXPECT_EQ(row.now[0].box, (Box{68, 74, 56, 88}));
    EXPECT_EQ(row.after[0].box, (Box{68, 180, 56, 88}));
    EXPECT_EQ(row.now[7].box, (Box{502, 74, 56, 88}));
    EXPECT_EQ(row.after[7].box, (Box{502, 180, 56, 88}));
    EXPECT_EQ(row.after[7].slot.drive, 7U);
    // The bars are in one scale: two, three, two and five drives.
    EXPECT_EQ(placed.nowLabel, (Box{12, 278, 614, 18}));
    ASSERT_EQ(placed.now.size(), 2U);
    EXPECT_EQ(placed.now[0].bar, (Box{42, 296, 233, 24}));
    EXPECT_EQ(placed.now[1].bar, (Box{42, 328, 350, 24}));
    EXPECT_EQ(placed.afterLabel, (Box{12, 360, 614, 18}));
    ASSERT_EQ(placed.after.size(), 2U);
    EXPECT_EQ(placed.after[0].bar, (Box{42, 378, 233, 24}));
    EXPECT_EQ(placed.after[1].bar, (Box{42, 410, 584, 24}));
    EXPECT_EQ(picture.legend, (Box{12, 452, 614, 58}));
    EXPECT_EQ(picture.width, 638);
    EXPECT_EQ(picture.height, 522);
}

TEST(PlanGeometry, WithoutAPlanThereIsOneRow) {
    const ControllerChange change = changeOf(exampleNothingToDoPlan().controllers[0]);
    ASSERT_FALSE(change.hasAfter);
    const PlanGeometry picture = planGeometryOf({{&change.now, nullptr}}, {{}, false, false});
    const PlacedPlan& placed = picture.controllers[0];
    EXPECT_EQ(placed.rows[0].now.size(), 8U);
    EXPECT_TRUE(placed.rows[0].after.empty());
    EXPECT_EQ(placed.rows[0].afterLabel, Box{});
    EXPECT_EQ(placed.nowLabel, (Box{12, 128, 614, 18}));
    EXPECT_TRUE(placed.after.empty());
    EXPECT_EQ(picture.legend.height, 0);
}

TEST(PlanGeometry, ALongEnclosureGoesOnInFurtherPairsOfRows) {
    ControllerSnapshot controller = exampleController();
    controller.drives.clear();
    for (std::int32_t slot = 0; slot < 30; ++slot) {
        controller.drives.push_back(test::exampleDrive(32, slot, slot + 1, "S"));
    }
    const PlanGeometry picture = planGeometryOf({{&controller, &controller}});
    const PlacedPlan& placed = picture.controllers[0];
    ASSERT_EQ(placed.rows.size(), 2U);
    EXPECT_EQ(placed.rows[0].now.size(), 24U);
    EXPECT_EQ(placed.rows[1].now.size(), 6U);
    EXPECT_EQ(placed.rows[0].after[23].box, (Box{1494, 180, 56, 88}));
    EXPECT_EQ(placed.rows[1].title, "");
    EXPECT_EQ(placed.rows[1].now[0].box, (Box{68, 278, 56, 88}));
    EXPECT_EQ(placed.rows[1].after[5].box, (Box{378, 384, 56, 88}));
    EXPECT_EQ(picture.width, 1562);
}

TEST(PlanSvg, WhatIsLostIsRedAndWhatIsNewIsGreen) {
    const std::string svg = planSvg(examplePlan());
    EXPECT_EQ(
        slotOf(svg, "32:2", "now"),
        R"(<g class="slot member lost" data-location="32:2" data-row="now"><title>32:2: drive 3 of policies, NORVIK NV73455S, serial 3LQ2A002, 67.8 GB, Online; in array b; lost</title>
<rect x="192" y="74" width="56" height="88" rx="3" class="box lost-frame" fill="#009e73"/>
<text x="220" y="88" text-anchor="middle" class="strong" fill="#000000">32:2</text>
<text x="220" y="107" text-anchor="middle" class="number" fill="#000000">3</text>
<text x="220" y="121" text-anchor="middle" fill="#000000">67.8 GB</text>
<text x="220" y="133" text-anchor="middle" fill="#000000">A002</text>
<text x="220" y="154" text-anchor="middle" class="mark" fill="#000000">- b</text>
)");
    EXPECT_EQ(
        slotOf(svg, "32:5", "planned"),
        R"(<g class="slot member new" data-location="32:5" data-row="planned"><title>32:5: drive 6 of policies, NORVIK NV73455S, serial 3LQ2A005, 67.8 GB; in array B; new; listed in Array.B</title>
<rect x="378" y="180" width="56" height="88" rx="3" class="box new-frame" fill="#e69f00"/>
<text x="406" y="194" text-anchor="middle" class="strong" fill="#000000">32:5</text>
<text x="406" y="213" text-anchor="middle" class="number" fill="#000000">6</text>
<text x="406" y="227" text-anchor="middle" fill="#000000">67.8 GB</text>
<text x="406" y="239" text-anchor="middle" fill="#000000">A005</text>
<text x="406" y="260" text-anchor="middle" class="mark" fill="#000000">+ B</text>
)");
    // What stays has its colour in both rows, and a usual frame.
    for (const char* const row : {"now", "planned"}) {
        const std::string slot = slotOf(svg, "32:0", row);
        EXPECT_NE(slot.find("class=\"box frame\" fill=\"#56b4e9\""), std::string::npos) << slot;
        EXPECT_NE(slot.find("<g class=\"slot member\""), std::string::npos) << slot;
    }
    const std::string spare = slotOf(svg, "32:7", "planned");
    EXPECT_NE(spare.find("; hot spare; new; listed in Hotspares</title>"), std::string::npos)
        << spare;
    EXPECT_NE(spare.find(">+ *</text>"), std::string::npos) << spare;
    // Six drives change their role: 32:2 to 32:7.
    EXPECT_EQ(countOf(svg, "<path class=\"link\""), 6U);
    EXPECT_NE(svg.find("<path class=\"link\" d=\"M220 162V180\"/>"), std::string::npos);
    EXPECT_EQ(countOf(svg, "<g class=\"slot "), 16U);
    keepDocument("plan-example.svg", svg);
}

TEST(PlanSvg, TheWholeHasATitleAndADescription) {
    const auto begin = [](const std::string& svg) {
        const std::size_t first = svg.find("<title>");
        return svg.substr(first, svg.find("</desc>") + 7 - first);
    };
    EXPECT_EQ(begin(planSvg(examplePlan())),
              "<title>Plan of Machine 8837, serial KQ10Z7V</title>\n"
              "<desc>Controller 1, LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480): 1 logical drive "
              "(135.5 GB) lost, 1 logical drive created.</desc>");
    EXPECT_EQ(begin(planSvg(exampleRefusedPlan())),
              "<title>Plan of Machine 8837, serial KQ10Z7V</title>\n"
              "<desc>Nothing would run: 1 error, on controller 1. Controller 1, LSI MegaRAID SAS "
              "8480E (LSI-MegaRAID-8480): refused: an error of the plan.</desc>");
    EXPECT_EQ(begin(planSvg(exampleNothingToDoPlan())),
              "<title>Plan of Machine 8837, serial KQ10Z7V</title>\n"
              "<desc>Controller 1, LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480): as the policy says "
              "(equivalent: the spare is 32:3 instead of 32:7).</desc>");
}

TEST(PlanSvg, ForeignDrivesThatAreClearedAndSparesThatGoAreLost) {
    MachinePlan plan = examplePlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.controller.drives[5].facts.state = DriveState::foreign;
    planning.controller.drives[6].facts.state = DriveState::hotspare;
    planning.before.spares = {{"32:6", {}, false, false}};
    planning.losses.push_back({1, "foreign", "32:5", "", {"32:5"}, 0, ""});
    planning.losses.push_back({1, "hotspare", "32:6", "", {"32:6"}, 0, ""});
    const std::string svg = planSvg(plan);
    EXPECT_NE(slotOf(svg, "32:5", "now").find("<g class=\"slot foreign lost\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "32:5", "planned").find("<g class=\"slot member new\""),
              std::string::npos);
    EXPECT_NE(slotOf(svg, "32:6", "now").find("<g class=\"slot spare lost\""), std::string::npos);
}

TEST(PlanSvg, AFailedDriveIsFailedInBothRows) {
    MachinePlan plan = examplePlan();
    plan.controllers[0].controller.drives[3].facts.state = DriveState::failed;
    const std::string svg = planSvg(plan);
    for (const char* const row : {"now", "planned"}) {
        EXPECT_NE(slotOf(svg, "32:3", row).find("class=\"cross\""), std::string::npos);
    }
}

TEST(DiffSvg, FramesWhatIsNotAsWanted) {
    const std::string svg = diffSvg(exampleDiff(), comparedSnapshot());
    EXPECT_NE(slotOf(svg, "32:2", "machine").find("slot member lost"), std::string::npos);
    EXPECT_NE(slotOf(svg, "32:2", "machine").find("; not as wanted</title>"), std::string::npos);
    EXPECT_NE(slotOf(svg, "32:0", "machine").find("<g class=\"slot member\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "32:7", "wanted").find("<g class=\"slot spare new\""), std::string::npos);
    keepDocument("diff-example.svg", svg);
    keepDocument("diff-example.html", diffHtml(exampleDiff(), comparedSnapshot(), ""));
    // Without a difference there is nothing to be joined.
    MachineDiff same = exampleDiff();
    same.controllers[0].result = ControllerDiff::Result::same;
    const std::string one = diffSvg(same, comparedSnapshot());
    EXPECT_EQ(countOf(one, "<path class=\"link\""), 0U);
    EXPECT_EQ(countOf(one, "<g class=\"slot "), 8U);
}

TEST(PlanHtml, TellsLossesConsentReasonsAndCommands) {
    const std::string page = planHtml(examplePlan(), "2026-11-21T21:05:00+00:00");
    const char* const pieces[] = {
        "<h1>Plan of machine 8837, serial KQ10Z7V</h1>\n<p class=\"dim\">1 controller, 8 drives, "
        "site.ini: 3 policies, plan p-5f1c09ab77e2, made 2026-11-21T21:05:00+00:00</p>",
        "<h2>- This destroys 1 logical drive (135.5 GB)</h2>",
        "<p>To agree to exactly this, and carry it out:</p>\n<p><code>zolexctl plan site.ini -o "
        "plan.json</code></p>\n<p><code>zolexctl apply plan.json --destroy 7Q4K-2M9D</code></p>\n"
        "</div>",
        "<p><code>zolex /r /y /f:site.ini</code></p>\n<p class=\"warning\">! With /r zolex first "
        "erases everything on all controllers of the server, also what stays in this plan.</p>\n",
        "<tr class=\"lost\"><td class=\"code\">-</td><td>LD 1</td><td>RAID5</td><td "
        "class=\"right\">135.5 GB</td><td class=\"code wide\">32:2-32:4</td><td "
        "class=\"wide\">is deleted</td></tr>",
        "<tr class=\"new\"><td class=\"code\">+</td><td>Logical.2</td><td>RAID5</td>",
        "<td class=\"new\">+ spare</td><td class=\"wide\">listed in Hotspares</td></tr>",
        "<details><summary>Commands (3)</summary>",
        "<tr class=\"lost\"><td class=\"right\">1</td><td class=\"code wide\">UTIL.BAT MEGACLI "
        "-CfgLdDel -L1 -a0</td><td class=\"wide\">delete LD 1</td>",
        "<p>Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of the 3 "
        "commands was also made to fail, and resuming ended as planned each time.</p>",
        "<details><summary>What zolex would do</summary>",
    };
    for (const char* const piece : pieces) {
        EXPECT_NE(page.find(piece), std::string::npos) << piece;
    }
    EXPECT_EQ(page.find("<script"), std::string::npos);
    keepDocument("plan-example.html", page);
}

TEST(PlanHtml, ARefusedPlanSaysSoOnTopAndHasNoCommands) {
    const std::string page = planHtml(exampleRefusedPlan(), "");
    EXPECT_NE(page.find("<main>\n<ul class=\"findings bad\">\n<li>! Nothing would run: 1 error, on "
                        "controller 1</li>\n</ul>\n"),
              std::string::npos);
    EXPECT_NE(page.find("<li>! site.ini:26:13: Array.B lists drive 3, and 32:2 has no number since "
                        "it failed: drive 3 is 32:3 now"),
              std::string::npos);
    EXPECT_EQ(page.find("<summary>Commands"), std::string::npos);
    EXPECT_EQ(page.find("--destroy"), std::string::npos);
    keepDocument("plan-refused.html", page);
    keepDocument("plan-nothing-to-do.html", planHtml(exampleNothingToDoPlan(), ""));
}

TEST(PlanHtml, NothingFromOutsideBecomesMarkup) {
    const std::string evil = "</text><script>alert('1')</script>\x01\xFF\"&\xE2\x80\xAE";
    MachinePlan plan = examplePlan();
    plan.id = plan.consent = plan.policiesFile = evil;
    plan.fingerprint.machineType = plan.fingerprint.serialNumber = evil;
    plan.accepted = plan.coreMessages = plan.rehearsal.notDoneBecause = {evil};
    plan.oldCommand = {{evil}, {evil}};
    plan.diagnostics = {exampleFinding(evil, Severity::warning, evil)};
    ControllerPlanning& planning = plan.controllers[0];
    planning.controller.model = planning.controller.facts.productName = evil;
    planning.comparison.health = {evil};
    for (MachineDrive& drive : planning.controller.drives) {
        drive.facts.serialNumber = drive.facts.model = drive.facts.reportedState = evil;
    }
    for (PolicyMatch& match : planning.considered) {
        match.name = evil;
        for (EntryMatch& entry : match.entries) {
            entry.specifiers = {{evil, match.matched.value_or(false), evil}};
        }
    }
    planning.bindings = {{evil, 1, evil, evil, {{evil, evil, evil}}, evil},
                         {evil, 1, evil, evil, {}, evil}};
    for (PlannedArray& array : planning.arrays) {
        for (PlannedDrive& drive : array.drives) {
            drive.reason = {evil, evil, 1, evil};
        }
    }
    for (PlannedVolume& volume : planning.volumes) {
        volume.raidType = evil;
        volume.reasons[evil] = {evil, evil, 1, evil};
    }
    planning.after.groups[0].volumes[0].id = evil;
    planning.strategyBecause[0].text = evil;
    planning.losses[0].raidType = planning.losses[0].status = evil;
    planning.steps[0].command = planning.steps[0].summary = evil;
    planning.steps[0].differsFromZolex = evil;
    MachineDiff diff = exampleDiff();
    diff.wantedBy = evil;
    for (ControllerDiff& controller : diff.controllers) {
        controller.model = controller.policy = controller.because = evil;
        controller.takesRebuild = controller.toRemove = controller.comparison.health = {evil};
        controller.comparison.equivalences = controller.comparison.notComparable = {evil};
        controller.comparison.differences.push_back({evil, evil, evil, evil, evil});
    }
    const std::string texts[] = {planSvg(plan), planHtml(plan, evil),
                                 diffSvg(diff, comparedSnapshot()),
                                 diffHtml(diff, comparedSnapshot(), evil)};
    for (const std::string& text : texts) {
        EXPECT_EQ(text.find("<script"), std::string::npos);
        EXPECT_EQ(text.find('\x01'), std::string::npos);
        EXPECT_EQ(text.find('\xFF'), std::string::npos);
        EXPECT_EQ(text.find("\xE2\x80\xAE"), std::string::npos);
        EXPECT_NE(text.find("&lt;script&gt;"), std::string::npos);
    }
    keepDocument("plan-with-markup.svg", texts[0]);
    keepDocument("plan-with-markup.html", texts[1]);
    keepDocument("diff-with-markup.svg", texts[2]);
    keepDocument("diff-with-markup.html", texts[3]);
}

} // namespace
} // namespace zolex::companion
