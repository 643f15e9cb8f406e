#include "FamilyServer.h"
#include "companion/planning/Diff.h"
#include "companion/rewriting/CapturedPolicies.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

std::string warningsOf(const MachinePlan& plan) {
    std::string text;
    for (const Finding& finding : plan.controllers.front().warnings) {
        text += finding.code + ": " + finding.summary + "\n";
        for (const std::string& help : finding.help) {
            text += "  help: " + help + "\n";
        }
    }
    return text;
}

TEST(FamilyPlan, AutomaticAsOnTheSeven) {
    FamilyServer server;
    server.addDrives(8);
    EXPECT_EQ(planLines(server.plan(policy(""))),
              "planned\n"
              "RAID5 fill: 252:0 252:1 252:2 252:3 252:4 252:5 252:6\n"
              "hot spare: 252:7\n"
              "STORCLI /c0 add vd r5 "
              "drives=252:0,252:1,252:2,252:3,252:4,252:5,252:6 J nolog\n"
              "STORCLI /c0/e252/s7 add hotsparedrive J nolog\n");
    EXPECT_EQ(planLines(server.defaults()), planLines(server.plan(policy(""))));
}

TEST(FamilyPlan, UnlikeDrivesAreArraysOfTheirOwn) {
    FamilyServer server;
    server.add(252, 0);
    server.add(252, 1);
    server.add(252, 2, 500, "SATA", "SSD");
    EXPECT_EQ(planLines(server.plan(policy(""))),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID0 fill: 252:2\n"
              "STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog\n"
              "STORCLI /c0 add vd r0 drives=252:2 J nolog\n");
}

TEST(FamilyPlan, WithoutADriveThatCanBeUsedNothingIsAsThePolicySays) {
    FamilyServer server;
    server.addDrives(2);
    for (const std::int32_t slot : {0, 1}) {
        server.driveAt(slot).state = DriveState::jbod;
        server.driveAt(slot).reportedState = "JBOD";
    }
    EXPECT_EQ(
        planLines(server.plan(policy(""))),
        "skipped: none of its drives can be used: 252:0: it is a JBOD drive: the system has it "
        "as it is, and 1 more; to make it good, which loses all that is on it: perccli64 "
        "/c0/e252/s0 set good force\n");
    server.controller().program = "storcli";
    EXPECT_EQ(
        planLines(server.plan(policy(""))),
        "skipped: none of its drives can be used: 252:0: it is a JBOD drive: the system has it "
        "as it is, and 1 more; to make it good, which loses all that is on it: storcli "
        "/c0/e252/s0 set good force\n");
}

TEST(FamilyPlan, APairThatMayNameTwoDrivesIsRefused) {
    FamilyServer server;
    for (const std::int32_t enclosure : {0, 1, 2}) {
        server.add(enclosure, 0);
    }
    const std::string seen =
        planLines(server.plan(custom("Array.A = 1:0,2:0\nLogical.1 = A:FILL:1\n")));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
    EXPECT_NE(
        seen.find("error ZX303: 1:0 is a drive in the enclosure of that id, or one in another "
                  "enclosure by its position\n"),
        std::string::npos)
        << seen;
    EXPECT_NE(planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n")))
                  .find("drives=0:0,1:0 "),
              std::string::npos);
}

TEST(FamilyPlan, NumbersAreNotTrustedWhileAMemberIsMissing) {
    FamilyServer server;
    server.addDrives(8);
    server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000).spans.front().back() = "Missing";
    const std::string entries = "Array.A = 1,2,3\nArray.B = 5,6\nLogical.1 = A:FILL:5\n"
                                "Logical.2 = B:FILL:1\n";
    const std::string seen = planLines(server.plan(custom(entries)));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
    EXPECT_NE(
        seen.find("error ZX701: Array.A counts drives, and a drive of an array is missing: the "
                  "numbers behind it are others\n"),
        std::string::npos)
        << seen;
}

TEST(FamilyPlan, WhatIsNotKnownIsNotDeleted) {
    FamilyServer server;
    server.addDrives(4);
    LogicalDriveFacts& volume = server.addVolume("239", "0", "", {{0, 1}}, 1000);
    volume.reportedLevel = "Cac1";
    const std::string wanted = custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:5\n");
    std::string seen = planLines(server.plan(wanted));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
    EXPECT_NE(seen.find("LD 239 stays: its level is not known: Cac1"), std::string::npos) << seen;
    server.controller().facts.logicalDrives.front().raidType = "RAID1";
    server.controller().facts.logicalDrives.front().health = Health::unknown;
    server.controller().facts.logicalDrives.front().reportedState = "Tmrw";
    seen = planLines(server.plan(wanted));
    EXPECT_NE(seen.find("LD 239 stays: its state is not known: Tmrw"), std::string::npos) << seen;
}

TEST(FamilyPlan, WhichPolicyHolds) {
    FamilyServer server;
    server.addDrives(2);
    const MachinePlan plan = server.plan("[Policy.other]\nAppliesTo.1 = t:PERC-H8*\n"
                                         "AppliesTo.2 = t:STORCLI,o:2\n"
                                         "[Policy.this]\nAppliesTo.1 = t:perc-h7*,o:1,d:2,c:1\n");
    ASSERT_EQ(plan.controllers.size(), 1U);
    EXPECT_EQ(plan.controllers.front().policy, "Policy.this");
    EXPECT_EQ(plan.controllers.front().matchedBy, "AppliesTo.1");
    const PolicyMatch& other = plan.controllers.front().considered.front();
    EXPECT_EQ(other.matched, false);
    EXPECT_EQ(other.entries.at(0).specifiers.at(0).specifier, "t:PERC-H8*");
    EXPECT_EQ(other.entries.at(0).specifiers.at(0).actual, "PERC-H755-Front");
    EXPECT_TRUE(other.entries.at(1).specifiers.at(0).holds);
    EXPECT_FALSE(other.entries.at(1).specifiers.at(1).holds);
    EXPECT_EQ(planLines(server.plan("[Policy.x]\nAppliesTo.1 = t:MD\n")),
              "skipped: no policy fits: Policy.x asks for t:MD, and it is PERC-H755-Front\n");
}

/// Policies of before go on holding for the card that STORCLI drives now.
TEST(FamilyPlan, TheNamesByWhichZolexKnowsACardHold) {
    const auto planFor = [](const char* pciIds, const std::string& type) {
        FamilyServer server("AVAGO-MegaRAID");
        server.addDrives(2);
        server.controller().pciIds = pciIds;
        return planLines(server.plan("[Policy.old]\nAppliesTo.1 = t:" + type + ",d:2\n"));
    };
    const auto skipped = [](const std::string& type) {
        return "skipped: no policy fits: Policy.old asks for t:" + type +
               ", and it is AVAGO-MegaRAID\n";
    };
    const char* const old = "1000:0411:1000:1002";
    const char* const newer = "1000:0079:1000:9261";
    EXPECT_TRUE(planFor(old, "LSI-MegaRAID-8480").starts_with("planned\n"));
    EXPECT_TRUE(planFor(newer, "Kestrix-D4").starts_with("planned\n"));
    EXPECT_EQ(planFor(old, "LSI-MegaRAID-8480"), planFor(old, "STORCLI"));
    EXPECT_EQ(planFor(newer, "LSI-MegaRAID-8480"), skipped("LSI-MegaRAID-8480"));
    EXPECT_EQ(planFor(old, "Kestrix-D4"), skipped("Kestrix-D4"));
    EXPECT_EQ(planFor(old, "Kestrix-B7"), skipped("Kestrix-B7"));
    EXPECT_EQ(planFor("1000:10e2:1028:1ae1", "Kestrix-D4"), skipped("Kestrix-D4"));
    EXPECT_EQ(planFor("", "LSI-MegaRAID-8480"), skipped("LSI-MegaRAID-8480"));
}

TEST(FamilyPlan, ListedDrivesByNumberAndPlace) {
    FamilyServer server;
    server.addDrives(4);
    server.add(253, 4);
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,3\nLogical.1 = A:FILL:1\n"))),
              "planned\n"
              "RAID1 fill: 252:0 252:2\n"
              "STORCLI /c0 add vd r1 drives=252:0,252:2 J nolog\n");
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1:0,2:4\nLogical.1 = A:FILL:1\n"))),
              "planned\n"
              "RAID1 fill: 252:0 253:4\n"
              "STORCLI /c0 add vd r1 drives=252:0,253:4 J nolog\n");
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 252:0,253:4\nLogical.1 = A:FILL:1\n"))),
              "planned\n"
              "RAID1 fill: 252:0 253:4\n"
              "STORCLI /c0 add vd r1 drives=252:0,253:4 J nolog\n");
}

TEST(FamilyPlan, SizesStripCachesAndSeveralOnOneArray) {
    FamilyServer server;
    server.addDrives(4);
    EXPECT_EQ(
        planLines(server.plan(custom("Array.A = 1,2,3,4\nStripeSize = 256\nReadAhead = OFF\n"
                                     "Logical.1 = A:102400:5:ON\nLogical.2 = A:25%:5:OFF\n"
                                     "Logical.3 = A:FILL:5\nRebuildRate = MED\n"))),
        "planned\n"
        "RAID5 100.0 GB, strip 256 KB, write-back, no read-ahead; "
        "RAID5 750.0 GB, strip 256 KB, write-through, no read-ahead; "
        "RAID5 fill, strip 256 KB, no read-ahead: 252:0 252:1 252:2 252:3\n"
        "STORCLI /c0 add vd r5 Size=102400MB drives=252:0,252:1,252:2,252:3 WB nora Strip=256 "
        "J nolog\n"
        "STORCLI /c0 add vd r5 Size=768000MB drives=252:0,252:1,252:2,252:3 WT nora Strip=256 "
        "J nolog\n"
        "STORCLI /c0 add vd r5 drives=252:0,252:1,252:2,252:3 nora Strip=256 J nolog\n"
        "STORCLI /c0 set rebuildrate=30 J nolog\n");
}

TEST(FamilyPlan, Spans) {
    FamilyServer server;
    server.addDrives(20);
    const MachinePlan plan = server.plan(custom("Array.A = ALL\nLogical.1 = A:FILL:10\n"));
    ASSERT_EQ(plan.steps().size(), 1U);
    EXPECT_NE(plan.steps().front().command.find(" PDperArray=4 "), std::string::npos);
    EXPECT_EQ(plan.controllers.front().after.groups.front().spans.size(), 5U);
    const MachinePlan asTold =
        server.plan(custom("Array.A = 1,2,3,4,5,6,7,8,9,10,11,12\nLogical.1 = A:FILL:50\n"
                           "Spans = 4\n"));
    ASSERT_EQ(asTold.steps().size(), 1U) << planLines(asTold);
    EXPECT_NE(asTold.steps().front().command.find(" PDperArray=3 "), std::string::npos);
}

TEST(FamilyPlan, DrivesByWhatTheyAreWithSparesOfTheirOwn) {
    FamilyServer server;
    for (std::int32_t slot = 0; slot < 4; ++slot) {
        server.add(252, slot, 1000, "SAS", "HDD");
    }
    for (std::int32_t slot = 4; slot < 8; ++slot) {
        server.add(252, slot, 480, "SATA", "SSD");
    }
    EXPECT_EQ(planLines(server.plan(policy("Drives.A = 2 x SSD\nDrives.B = 3 x HDD\n"
                                           "Spares = 1 covering A and 1 covering B\n"
                                           "Level.A = 5 else 1\n"))),
              "planned\n"
              "RAID5 fill: 252:0 252:1 252:2\n"
              "RAID1 fill: 252:4 252:5\n"
              "dedicated hot spare: 252:3\n"
              "dedicated hot spare: 252:7\n"
              "STORCLI /c0 add vd r1 drives=252:4,252:5 Spares=252:7 J nolog\n"
              "STORCLI /c0 add vd r5 drives=252:0,252:1,252:2 Spares=252:3 J nolog\n");
}

TEST(FamilyPlan, WhatStandsStays) {
    FamilyServer server;
    server.addDrives(6);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    server.makeSpare(5);
    const std::string text =
        custom("Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 6\nLogical.1 = A:FILL:1\n"
               "Logical.2 = B:FILL:5\n");
    EXPECT_EQ(planLines(server.plan(text)),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID5 fill: 252:2 252:3 252:4\n"
              "hot spare: 252:5\n"
              "STORCLI /c0 add vd r5 drives=252:2,252:3,252:4 J nolog\n");
    server.addVolume("238", "1", "RAID5", {{2, 3, 4}}, 2000);
    const MachinePlan same = server.plan(text);
    EXPECT_EQ(dispositionWord(same.controllers.front().disposition), "already") << planLines(same);
    EXPECT_TRUE(same.steps().empty());
}

TEST(FamilyPlan, SingleDeletesAndSparesInTheWay) {
    FamilyServer server;
    server.addDrives(6);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    server.addVolume("238", "1", "RAID1", {{2, 3}}, 1000);
    server.makeSpare(4, {"1"});
    const MachinePlan plan = server.plan(
        custom("Array.A = 1,2\nArray.B = 3,4,5,6\nLogical.1 = A:FILL:1\nLogical.2 = B:FILL:10\n"));
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID1 fill: 252:0 252:1\n"
                               "RAID10 fill: (252:2 252:3) (252:4 252:5)\n"
                               "loses hotspare 252:4\n"
                               "loses logical_drive 238\n"
                               "STORCLI /c0/e252/s4 delete hotsparedrive J nolog\n"
                               "STORCLI /c0/v238 del J nolog\n"
                               "STORCLI /c0 add vd r10 drives=252:2,252:3,252:4,252:5 PDperArray=2 "
                               "J nolog\n");
    EXPECT_FALSE(plan.consent.empty());
    EXPECT_EQ(plan.oldCommand.wouldRun, std::vector<std::string>());
}

TEST(FamilyPlan, ADedicatedSpareStaysWithItsGroup) {
    FamilyServer server;
    server.addDrives(5);
    server.addVolume("0", "0", "RAID1", {{0, 1}}, 1000);
    server.addVolume("1", "1", "RAID0", {{2}}, 1000);
    server.makeSpare(4, {"0"});
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,2\nArray.B = 3,4\nHotspares = 5\n"
                                           "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:0\n"))),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID0 fill: 252:2 252:3\n"
              "hot spare: 252:4\n"
              "loses logical_drive 1\n"
              "STORCLI /c0/v1 del J nolog\n"
              "STORCLI /c0 add vd r0 drives=252:2,252:3 J nolog\n");
}

/// One that is made new of all arrays is everybody's.
TEST(FamilyPlan, ADedicatedSpareOfAllArraysStaysAsItStands) {
    FamilyServer server;
    server.addDrives(5);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    server.addVolume("238", "1", "RAID1", {{2, 3}}, 1000);
    const std::string policies =
        policy("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3\nLevel.A = 1\n"
               "Level.B = 1\nSpares = slots 252:4 covering A,B\n");
    EXPECT_NE(planLines(server.plan(policies)).find("s4 add hotsparedrive J nolog\n"),
              std::string::npos);
    server.makeSpare(4, {"0", "1"});
    MachinePlan plan = server.plan(policies);
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "already") << planLines(plan);
    server.makeSpare(4);
    plan = server.plan(policies);
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "already") << planLines(plan);
}

TEST(FamilyPlan, ADedicatedSpareOfAnotherArray) {
    FamilyServer server;
    server.addDrives(5);
    server.addVolume("0", "0", "RAID1", {{0, 1}}, 1000);
    server.addVolume("1", "1", "RAID1", {{2, 3}}, 1000);
    server.makeSpare(4, {"0"});
    const std::string start = "Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3\n"
                              "Level.A = 1\nLevel.B = 1\nSpares = slots 252:4 covering ";
    EXPECT_EQ(planLines(server.plan(policy(start + "A\n"))).substr(0, 7), "already");
    EXPECT_EQ(planLines(server.plan(policy(start + "B\n"))),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID1 fill: 252:2 252:3\n"
              "dedicated hot spare: 252:4\n"
              "loses hotspare 252:4\n"
              "STORCLI /c0/e252/s4 delete hotsparedrive J nolog\n"
              "STORCLI /c0/e252/s4 add hotsparedrive DGs=1 J nolog\n");
}

TEST(FamilyPlan, OnlyCachesDiffer) {
    FamilyServer server;
    server.addDrives(2);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000).writeCache = "WriteThrough";
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"))),
              "planned\n"
              "RAID1 fill, write-back: 252:0 252:1\n"
              "STORCLI /c0/v239 set wrcache=WB J nolog\n");
}

TEST(FamilyPlan, Rebuild) {
    FamilyServer server;
    server.addDrives(3);
    server.addVolume("0", "0", "RAID1", {{0, 1}}, 1000);
    server.makeSpare(2);
    const std::string text = custom("Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:1\n");
    EXPECT_EQ(planLines(server.plan(text, StrategyWish::rebuild)),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "hot spare: 252:2\n"
              "loses hotspare 252:2\n"
              "loses logical_drive 0\n"
              "STORCLI /c0/e252/s2 delete hotsparedrive J nolog\n"
              "STORCLI /c0/v0 del J nolog\n"
              "STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog\n"
              "STORCLI /c0/e252/s2 add hotsparedrive J nolog\n");
    EXPECT_EQ(server.plan(text).steps().size(), 0U);
}

TEST(FamilyPlan, AddingIsNotEnough) {
    FamilyServer server;
    server.addDrives(2);
    server.addVolume("0", "0", "RAID0", {{0, 1}}, 2000);
    EXPECT_EQ(
        planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n"), StrategyWish::add)),
        "refused: adding is not enough: this takes a rebuild\n"
        "error ZP220: adding is not enough: this takes a rebuild\n"
        "  help: see what a rebuild would remove: zolexctl plan site.ini --strategy auto\n"
        "RAID1 fill: 252:0 252:1\n");
}

TEST(FamilyPlan, ForeignDrivesOnlyWhereTheyAreNamed) {
    FamilyServer server;
    server.addDrives(3);
    for (const std::int32_t slot : {1, 2}) {
        server.driveAt(slot).isForeign = true;
    }
    EXPECT_EQ(planLines(server.plan(policy("Array_Defaults = 0%:0\n"))),
              "planned\n"
              "RAID0 fill: 252:0\n"
              "STORCLI /c0 add vd r0 drives=252:0 J nolog\n");
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n"))),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "loses foreign 252:1\n"
              "loses foreign 252:2\n"
              "STORCLI /c0/fall del J nolog\n"
              "STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog\n");
}

TEST(FamilyPlan, APreservedCacheRefusesWhatMakesALogicalDriveAndNothingElse) {
    FamilyServer server;
    server.addDrives(4);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    Finding kept;
    kept.code = "ZP145";
    kept.severity = Severity::warning;
    kept.summary = "kept";
    kept.help = {"see"};
    server.controller().findings.push_back(kept);
    const std::string array = "Array.A = 1,2\nLogical.1 = A:FILL:1\n";
    EXPECT_EQ(planLines(server.plan(custom(array + "Array.B = 3,4\nLogical.2 = B:FILL:1\n"))),
              "refused: kept\n"
              "error ZP145: kept\n"
              "  help: see\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID1 fill: 252:2 252:3\n");
    const MachinePlan spare = server.plan(custom(array + "Hotspares = 4\n"));
    EXPECT_EQ(planLines(spare), "planned\n"
                                "RAID1 fill: 252:0 252:1\n"
                                "hot spare: 252:3\n"
                                "STORCLI /c0/e252/s3 add hotsparedrive J nolog\n");
    EXPECT_EQ(warningsOf(spare), "ZP145: kept\n  help: see\n"
                                 "ZX712: 1 drive gets no job: 252:2\n");
    const MachinePlan same = server.plan(custom(array));
    EXPECT_EQ(dispositionWord(same.controllers.front().disposition), "already");
    EXPECT_EQ(warningsOf(same), "ZP145: kept\n  help: see\n"
                                "ZX712: 2 drives get no job: 252:2, 252:3\n");
}

TEST(FamilyPlan, ASilentDriveThatIsInNothingBarsNothing) {
    const std::string array = "Array.A = 1,2\nLogical.1 = A:FILL:1\n";
    FamilyServer server;
    server.addDrives(3);
    server.driveAt(2).barred = "it does not tell its details";
    Finding silent;
    silent.code = "ZP146";
    silent.severity = Severity::warning;
    silent.summary = "252:2 is silent";
    server.controller().findings.push_back(silent);
    const MachinePlan plan = server.plan(custom(array));
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID1 fill: 252:0 252:1\n"
                               "STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog\n");
    EXPECT_EQ(warningsOf(plan), "ZP146: 252:2 is silent\n");
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,3\nLogical.1 = A:FILL:1\n"))),
              "refused: Array.A names 252:2: it does not tell its details\n"
              "error ZX702: Array.A names 252:2: it does not tell its details\n"
              "  help: take it out of the policy: zolexctl show lists the drives\n");
    // Of one that is in an array it is not known what would be lost.
    server.controller().findings.front().code = "ZP132";
    EXPECT_EQ(planLines(server.plan(custom(array))).substr(0, 25), "refused: 252:2 is silent\n");
}

TEST(FamilyPlan, DrivesAreNotCountedWhileOneOfAnArrayIsMissing) {
    FamilyServer server;
    server.addDrives(4);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    server.controller().facts.logicalDrives.front().spans = {{"252:0", "Missing"}};
    EXPECT_EQ(planLines(server.plan(policy("Drives.A = 2 x HDD\nLevel.A = 1\n"))).substr(0, 110),
              "refused: Drives.A counts drives, and a drive of an array is missing: another would "
              "take its place\nerror ZX701:");
}

TEST(FamilyPlan, SaysWhatToDoAboutADriveThatIsNamedByItsSlot) {
    FamilyServer server;
    server.addDrives(3);
    server.driveAt(0).state = DriveState::jbod;
    server.driveAt(0).reportedState = "JBOD";
    server.driveAt(1).state = DriveState::rebuilding;
    server.driveAt(1).reportedState = "Rbld";
    const MachinePlan plan =
        server.plan(policy("Drives.A = slots 252:0,252:1,252:2\nLevel.A = 5\n"));
    const std::vector<Finding>& found = plan.controllers.front().diagnostics;
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].help.front(),
              "take it out of the policy; or make it good, which loses all that is on it: "
              "perccli64 /c0/e252/s0 set good force");
    EXPECT_EQ(found[1].help.front(), "wait until it is rebuilt");
}

TEST(FamilyPlan, AStripThatNoPolicyCanSayIsLeftOut) {
    FamilyServer server;
    server.addDrives(2);
    LogicalDriveFacts& volume = server.addVolume("239", "0", "RAID0", {{0, 1}}, 2000);
    volume.stripSizeBytes = 16 << 10U;
    static_cast<void>(server.defaults()); // joins the drives
    const CapturedPolicies said = capturedPolicies(server.snapshot, {});
    EXPECT_NE(said.text.find("StripeSize = 16\n"), std::string::npos) << said.text;
    server.controller().facts.logicalDrives.front().stripSizeBytes = 8 << 10U;
    static_cast<void>(server.defaults());
    const CapturedPolicies left = capturedPolicies(server.snapshot, {});
    EXPECT_EQ(left.text.find("StripeSize"), std::string::npos) << left.text;
    const bool isTold =
        std::any_of(left.findings.begin(), left.findings.end(), [](const Finding& finding) {
            return finding.code == "ZC112" &&
                   finding.summary.find("its strip size is 8 KB, which no policy can say: it is "
                                        "left to the controller") != std::string::npos;
        });
    EXPECT_TRUE(isTold);
}

TEST(FamilyPlan, DrivesThatCannotBeUsed) {
    FamilyServer server;
    server.addDrives(3);
    server.driveAt(0).state = DriveState::jbod;
    server.driveAt(0).reportedState = "JBOD";
    server.driveAt(1).state = DriveState::failed;
    server.driveAt(1).reportedState = "UBad";
    EXPECT_EQ(planLines(server.plan(custom("Array.A = 1,2,3,9\nLogical.1 = A:FILL:5\n"))),
              "refused: Array.A names 252:0: it is a JBOD drive: the system has it as it is, and 2 "
              "more faults\n"
              "error ZX702: Array.A names 252:0: it is a JBOD drive: the system has it as it is\n"
              "  help: take it out of the policy; or make it good, which loses all that is on it: "
              "perccli64 /c0/e252/s0 set good force\n"
              "error ZX702: Array.A names 252:1: it is UBad, which is no good drive\n"
              "  help: replace the drive, or take it out of the policy\n"
              "error ZX304: there is no drive 9: the controller has 3 drives\n"
              "  help: zolexctl show lists the drives, their numbers and places\n");
}

TEST(FamilyPlan, UnlikeDrivesInAnArray) {
    FamilyServer server;
    server.add(252, 0);
    server.add(252, 1, 1000, "SATA", "SSD").blockSizeBytes = 4096;
    EXPECT_EQ(
        planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n"))),
        "refused: array A has drives of 4096 bytes to the sector and 512 bytes to the sector, "
        "which the controller does not put together, and 2 more faults\n"
        "error ZP224: array A has drives of 4096 bytes to the sector and 512 bytes to the "
        "sector, which the controller does not put together\n"
        "  help: name drives of one kind: zolexctl show lists them\n"
        "error ZP224: array A has drives of SAS and SATA, which the controller does not put "
        "together\n"
        "  help: name drives of one kind: zolexctl show lists them\n"
        "error ZP224: array A has drives of HDD and SSD, which the controller does not put "
        "together\n"
        "  help: name drives of one kind: zolexctl show lists them\n");
    server.controller().facts.abilities.mixesProtocols = true;
    server.controller().facts.abilities.mixesMedia = true;
    server.driveAt(1).blockSizeBytes = 512;
    EXPECT_EQ(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n")).steps().size(), 1U);
}

/// What a controller tells of SAS and SATA says nothing of NVMe.
TEST(FamilyPlan, NvmeIsNotPutTogetherWithOthers) {
    FamilyServer server;
    server.add(252, 0, 1000, "SATA", "SSD");
    server.add(252, 1, 1000, "SAS", "SSD");
    server.add(252, 2, 1000, "NVMe", "SSD");
    server.controller().facts.abilities.mixesProtocols = true;
    const std::string mixed =
        planLines(server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")));
    EXPECT_NE(mixed.find("error ZP224: array A has drives of NVMe, SAS and SATA, which the "
                         "controller does not put together\n"),
              std::string::npos)
        << mixed;
    const std::string policies = custom("Array.A = 1,2\nLogical.1 = A:FILL:1\nHotspares = 3\n");
    EXPECT_TRUE(server.plan(policies).controllers.front().spares.front().covers.empty());
    server.driveAt(2).protocol = "SATA";
    EXPECT_EQ(server.plan(policies).controllers.front().spares.front().covers,
              std::vector<std::string>{"A"});
}

TEST(FamilyPlan, LevelsAndStripsThatAreNotOfTheController) {
    FamilyServer server;
    server.addDrives(4);
    server.controller().facts.raidTypes = {"RAID0", "RAID1", "RAID10"};
    server.controller().facts.maxStripSizeBytes = 256 * 1024;
    const MachinePlan plan =
        server.plan(custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:5\nStripeSize = 512\n"));
    EXPECT_EQ(planLines(plan),
              "refused: array A: RAID 5 is not of PERC-H755-Front, which has 0, 1 and 10, and 1 "
              "more fault\n"
              "error ZX401: array A: RAID 5 is not of PERC-H755-Front, which has 0, 1 and 10\n"
              "  help: take another level\n"
              "error ZX403: a strip size of 512 KB is not of PERC-H755-Front, which takes 8 KB to "
              "256 KB\n"
              "  help: take the line out for the controller's own\n");
}

/// An array of several spans has more drives than one of any other controller.
TEST(FamilyPlan, AsManyDrivesOfAKindAsTheControllerTakes) {
    FamilyServer server;
    server.addDrives(64);
    for (const char* const drives : {"all HDD", "64 x HDD"}) {
        const MachinePlan plan =
            server.plan(policy("Drives.A = " + std::string(drives) + "\nLevel.A = 10\n"));
        ASSERT_TRUE(plan.isApplicable()) << planLines(plan);
        EXPECT_EQ(plan.controllers.front().arrays.front().drives.size(), 64U);
    }
    server.controller().facts.abilities.mostDrives = 16;
    server.controller().facts.abilities.mostSpans = 2;
    EXPECT_NE(planLines(server.plan(policy("Drives.A = all HDD\nLevel.A = 10\n")))
                  .find("these are 64 drives, and an array holds 32\n"),
              std::string::npos);
}

TEST(FamilyPlan, NoRoomAndOneLevelForAnArray) {
    FamilyServer server;
    server.addDrives(2, 100);
    EXPECT_EQ(planLines(server.plan(
                  custom("Array.A = 1,2\nLogical.1 = A:204800:1\nLogical.2 = A:FILL:0\n"))),
              "refused: Logical.1 on array A is to have 200.0 GB, and 100.0 GB is left, and 1 more "
              "fault\n"
              "error ZP225: Logical.1 on array A is to have 200.0 GB, and 100.0 GB is left\n"
              "  help: give it less, or the logical drives before it\n"
              "error ZX405: array A has RAID 1 and RAID 0: its drives take one level\n"
              "  help: give all logical drives of the array one level\n");
}

TEST(FamilyPlan, AFailedMemberKeepsItsNumber) {
    FamilyServer server;
    server.addDrives(4);
    server.addVolume("0", "0", "RAID5", {{0, 1, 2}}, 2000);
    server.driveAt(1).state = DriveState::failed;
    server.driveAt(1).reportedState = "Offln";
    server.driveAt(1).health = Health::critical;
    const MachinePlan plan = server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n"));
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "already") << planLines(plan);
}

/// Ten drives; a RAID 5 of the first three, of which the second does not do its work.
FamilyServer hurtServer(DriveState state = DriveState::failed) {
    FamilyServer server;
    server.addDrives(10);
    LogicalDriveFacts& volume = server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000);
    volume.reportedState = "Dgrd";
    volume.health = Health::warning;
    server.driveAt(1).state = state;
    server.driveAt(1).reportedState = state == DriveState::rebuilding ? "Rbld" : "Offln";
    server.driveAt(1).health = state == DriveState::rebuilding ? Health::warning : Health::critical;
    return server;
}

const std::string keptAndAnother = "Array.A = 1,2,3\nArray.B = 5,6\nLogical.1 = A:FILL:5\n"
                                   "Logical.2 = B:FILL:1\n";

TEST(FamilyPlan, ADegradedArrayStaysBesideAChange) {
    FamilyServer server = hurtServer();
    const MachinePlan plan = server.plan(custom(keptAndAnother));
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID5 fill: 252:0 252:1 252:2\n"
                               "RAID1 fill: 252:4 252:5\n"
                               "STORCLI /c0 add vd r1 drives=252:4,252:5 J nolog\n");
    EXPECT_EQ(warningsOf(plan),
              "ZX712: 5 drives get no job: 252:3, 252:6, 252:7, 252:8, 252:9\n"
              "ZP208: array A (LD 239, Dgrd) stays as it is: drive 252:1, serial S252N1, has "
              "failed\n"
              "  help: replace drive 252:1 while the others of the array are well\n");
}

/// Whoever replaced a drive of it would lose it.
TEST(FamilyPlan, AnArrayThatIsOfflineIsRefusedAndItsDrivesAreNotToBeReplaced) {
    FamilyServer server = hurtServer();
    server.driveAt(2).state = DriveState::failed;
    server.driveAt(2).reportedState = "Offln";
    server.driveAt(2).health = Health::critical;
    server.controller().facts.logicalDrives[0].reportedState = "OfLn";
    server.controller().facts.logicalDrives[0].health = Health::critical;
    for (const std::string& policy :
         {keptAndAnother, std::string("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")}) {
        const MachinePlan plan = server.plan(custom(policy));
        ASSERT_EQ(dispositionWord(plan.controllers.front().disposition), "refused")
            << planLines(plan);
        const std::vector<Finding>& told = plan.controllers.front().diagnostics;
        const auto error = std::find_if(told.begin(), told.end(), [](const Finding& finding) {
            return finding.severity == Severity::error;
        });
        EXPECT_EQ(error->summary, "LD 239 (OfLn) is offline, and nothing is changed beside it; not "
                                  "at work: 252:1 and 252:2");
        EXPECT_EQ(
            error->help,
            (std::vector<std::string>{
                "while its data is wanted, replace no drive and delete nothing: that loses it",
                "bring back the drives that left (cables, enclosure, power), and look at "
                "what its utility lists: zolexctl show",
                "for more: zolexctl explain ZX702"}));
        EXPECT_EQ(diffOf(plan).result, ControllerDiff::Result::different);
    }
}

/// Its drives may be told to be well; one that the policy gives up may go.
TEST(FamilyPlan, NothingIsChangedBesideAnArrayThatIsOfflineOnDrivesThatAreWell) {
    FamilyServer server;
    server.addDrives(8);
    LogicalDriveFacts& volume = server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000);
    volume.reportedState = "OfLn";
    volume.health = Health::critical;
    const std::string told = planLines(server.plan(custom(keptAndAnother)));
    EXPECT_EQ(told.find("refused: "), 0U) << told;
    EXPECT_NE(
        told.find("error ZX702: LD 239 (OfLn) is offline, and nothing is changed beside it\n"),
        std::string::npos)
        << told;
    const std::string given =
        planLines(server.plan(custom("Array.A = 5,6\nLogical.1 = A:FILL:1\n")));
    EXPECT_EQ(given.find("planned\n"), 0U) << given;
}

/// The same where the drives that left are not listed any more: what is wanted is not known then.
TEST(FamilyPlan, AnArrayThatIsOfflineIsToldWhereItsDrivesAreGone) {
    FamilyServer server = hurtServer();
    server.controller().facts.logicalDrives[0].reportedState = "OfLn";
    server.controller().facts.logicalDrives[0].health = Health::critical;
    std::erase_if(server.controller().facts.drives, [](const DriveFacts& drive) {
        return drive.location == "252:1" || drive.location == "252:2";
    });
    for (const std::string& policy :
         {keptAndAnother, std::string("Array.A = 1:0,1:1,1:2\nLogical.1 = A:FILL:5\n")}) {
        const MachinePlan plan = server.plan(custom(policy));
        ASSERT_EQ(dispositionWord(plan.controllers.front().disposition), "refused");
        const std::string told = planLines(plan);
        EXPECT_NE(told.find("error ZX702: LD 239 (OfLn) is offline, and nothing is changed beside "
                            "it; not at work: 252:1 and 252:2\n"),
                  std::string::npos)
            << told;
        EXPECT_EQ(told.find("help: replace"), std::string::npos) << told;
        EXPECT_EQ(told.find("or replace it"), std::string::npos) << told;
        EXPECT_EQ(diffOf(plan).result, ControllerDiff::Result::different);
    }
}

/// Nothing is planned where it is not known which drives are meant, whatever is accepted.
TEST(FamilyPlan, NumbersBehindAMissingDriveAreNotAccepted) {
    FamilyServer server = hurtServer();
    std::erase_if(server.controller().facts.drives,
                  [](const DriveFacts& drive) { return drive.location == "252:1"; });
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = custom("Array.A = 1,2,3\nLogical.1 = A:FILL:0\n");
    request.accept = {"ZX701"};
    static_cast<void>(server.plan(request.policiesText)); // joins the drives
    const MachinePlan plan = planMachine(server.snapshot, request);
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "refused") << planLines(plan);
}

/// Replaced or left out, the drive that failed leads to an array that is deleted.
TEST(FamilyPlan, WhereASpareTookThePlaceItSaysWhichDrivesAreTheArray) {
    FamilyServer server;
    server.addDrives(6);
    server.addVolume("239", "0", "RAID5", {{0, 2, 5}}, 2000);
    server.driveAt(1).state = DriveState::failed;
    server.driveAt(1).reportedState = "UBad";
    server.driveAt(1).health = Health::critical;
    const std::string told =
        planLines(server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")));
    EXPECT_NE(told.find("  help: LD 239 is well without it, on 252:0, 252:2 and 252:5: name these "
                        "in its place, for another list deletes it\n"),
              std::string::npos)
        << told;
}

/// The same when the failed drive has been replaced.
TEST(FamilyPlan, WhatGoesForThePlaceOfItsDrivesAloneIsTold) {
    FamilyServer server;
    server.addDrives(6);
    server.addVolume("239", "0", "RAID5", {{0, 2, 5}}, 2000);
    const MachinePlan plan = server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n"));
    EXPECT_NE(warningsOf(plan).find("ZP210: LD 239 is well on 252:0 252:2 252:5, and goes only "
                                    "because the policy lists other drives\n  help: if a hot spare "
                                    "has taken a place, name the drives on which it is: then it "
                                    "stays\n"),
              std::string::npos)
        << warningsOf(plan);
}

/// A member that is at work and of which nothing more is told is no bad drive.
TEST(FamilyPlan, NobodyIsToReplaceADriveThatIsWell) {
    FamilyServer server;
    server.addDrives(4);
    server.addVolume("239", "0", "RAID1", {{0, 1}}, 1000);
    server.driveAt(1).barred = "it does not tell its details";
    const std::string told =
        planLines(server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n")));
    EXPECT_NE(
        told.find("  help: look at what its utility tells of it, and wait until the controller is "
                  "done with it: a policy without it deletes array A\n"),
        std::string::npos)
        << told;
}

/// Ids need not be numbers: what stands as wanted stays.
TEST(FamilyPlan, ALogicalDriveWithAWordAsIdGoesByItself) {
    FamilyServer server;
    server.controller().utility = "MD";
    server.controller().facts.deepMirrors = DeepMirrors::ofAll;
    server.controller().facts.raidTypes = {"RAID1"};
    server.snapshot.families = {{1, "MD", false}};
    server.addDrives(6);
    server.addVolume("zolex-a", "zolex-a", "RAID1", {{0, 1}}, 1000);
    server.addVolume("zolex-b", "zolex-b", "RAID1", {{2, 3}}, 1000);
    const MachinePlan plan =
        server.plan("[Policy.md]\nAppliesTo.1 = t:MD\nArray_Defaults = 0%:0\nArray_Mode = "
                    "CUSTOM\nLogical_Mode = CUSTOM\n"
                    "Array.A = 1,2\nArray.B = 4,5\nLogical.1 = A:FILL:1\nLogical.2 = B:FILL:1\n");
    EXPECT_EQ(planLines(plan),
              "planned\n"
              "RAID1 fill: 252:0 252:1\n"
              "RAID1 fill: 252:3 252:4\n"
              "loses logical_drive zolex-b\n"
              "MD --stop /dev/md/zolex-b --zero-superblock /dev/disk/by-id/252:2 "
              "/dev/disk/by-id/252:3\n"
              "MD --create /dev/md/zolex-05e69af6 --metadata=1.2 \"--homehost=<none>\" "
              "--name=zolex-05e69af6 --level=1 --raid-devices=2 --bitmap=internal "
              "/dev/disk/by-id/252:3 /dev/disk/by-id/252:4\n");
}

TEST(FamilyPlan, AnArrayThatIsRebuiltStaysBesideAChange) {
    FamilyServer server = hurtServer(DriveState::rebuilding);
    const MachinePlan plan = server.plan(custom(keptAndAnother));
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID5 fill: 252:0 252:1 252:2\n"
                               "RAID1 fill: 252:4 252:5\n"
                               "STORCLI /c0 add vd r1 drives=252:4,252:5 J nolog\n");
    EXPECT_EQ(warningsOf(plan),
              "ZX712: 5 drives get no job: 252:3, 252:6, 252:7, 252:8, 252:9\n"
              "ZP208: array A (LD 239, Dgrd) stays as it is: drive 252:1, serial S252N1, is being "
              "rebuilt\n"
              "  help: wait until drive 252:1 is rebuilt\n");
}

TEST(FamilyPlan, OfTwoArraysTheOneThatIsWellMayGo) {
    FamilyServer server = hurtServer();
    server.addVolume("238", "1", "RAID1", {{4, 5}}, 1000);
    const MachinePlan plan = server.plan(
        custom("Array.A = 1,2,3\nArray.B = 5,6\nLogical.1 = A:FILL:5\nLogical.2 = B:FILL:0\n"));
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID5 fill: 252:0 252:1 252:2\n"
                               "RAID0 fill: 252:4 252:5\n"
                               "loses logical_drive 238\n"
                               "STORCLI /c0/v238 del J nolog\n"
                               "STORCLI /c0 add vd r0 drives=252:4,252:5 J nolog\n");
}

TEST(FamilyPlan, WhatTouchesADegradedArrayIsRefused) {
    struct Case {
        const char* what;
        std::string entries;
    };
    const std::string others = "Array.B = 5,6\nLogical.2 = B:FILL:1\n";
    const std::vector<Case> cases = {
        {"another level", others + "Array.A = 1,2,3\nLogical.1 = A:FILL:0\n"},
        {"one member more", others + "Array.A = 1,2,3,4\nLogical.1 = A:FILL:5\n"},
        {"one member less", others + "Array.A = 1,2\nLogical.1 = A:FILL:1\n"},
        {"another size", others + "Array.A = 1,2,3\nLogical.1 = A:50%:5\n"},
        {"a second logical drive",
         others + "Array.A = 1,2,3\nLogical.1 = A:FILL:5\nLogical.3 = A:FILL:5\n"},
        {"another cache mode", others + "Array.A = 1,2,3\nLogical.1 = A:FILL:5:ON\n"},
        {"the failed drive elsewhere",
         "Array.A = 1,3,4\nLogical.1 = A:FILL:5\nArray.B = 2,6\nLogical.2 = B:FILL:1\n"},
        {"the failed drive as a spare",
         others + "Array.A = 1,3,4\nLogical.1 = A:FILL:5\nHotspares = 2\n"},
        {"a spare that it would be rebuilt on",
         others + "Array.A = 1,2,3\nLogical.1 = A:FILL:5\nHotspares = 8\n"},
    };
    for (const Case& each : cases) {
        FamilyServer server = hurtServer();
        server.controller().facts.logicalDrives.front().writeCache = "WriteThrough";
        const std::string seen = planLines(server.plan(custom(each.entries)));
        EXPECT_EQ(seen.find("refused: "), 0U) << each.what << "\n" << seen;
        EXPECT_NE(seen.find("error "), std::string::npos) << each.what << "\n" << seen;
    }
}

TEST(FamilyPlan, TheSpareOfADegradedArrayIsNotTaken) {
    const std::string entries = "Array.A = 1,2,3\nArray.B = 9,10\nLogical.1 = A:FILL:5\n"
                                "Logical.2 = B:FILL:1\n";
    FamilyServer forAll = hurtServer();
    forAll.makeSpare(9);
    const MachinePlan plan = forAll.plan(custom(entries));
    EXPECT_EQ(planLines(plan).find("refused: "), 0U);
    EXPECT_EQ(plan.controllers.front().diagnostics.front().help,
              (std::vector<std::string>{
                  "replace it, and wait until it is rebuilt: a policy without it deletes array A",
                  "the array could stay beside other changes, but its spare 252:9 would go",
                  "for more: zolexctl explain ZX702"}));
    FamilyServer own = hurtServer();
    own.makeSpare(9, {"0"});
    EXPECT_EQ(planLines(own.plan(custom(entries))).find("refused: "), 0U);
    FamilyServer ofAnother = hurtServer();
    ofAnother.addVolume("238", "1", "RAID1", {{4, 5}}, 1000);
    ofAnother.makeSpare(9, {"1"});
    EXPECT_EQ(planLines(ofAnother.plan(custom(entries))).find("planned\n"), 0U)
        << planLines(ofAnother.plan(custom(entries)));
}

TEST(FamilyPlan, ADegradedArrayThatGoesIsNotPlannedBesideOneThatStays) {
    FamilyServer server = hurtServer();
    server.addVolume("238", "1", "RAID1", {{6, 7}}, 1000);
    server.driveAt(7).state = DriveState::failed;
    const std::string seen = planLines(server.plan(custom(keptAndAnother)));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
}

TEST(FamilyPlan, NumbersBehindAMissingMemberAreRefusedBesideADegradedArray) {
    FamilyServer server = hurtServer();
    server.addVolume("238", "1", "RAID1", {{6, 7}}, 1000).spans.front().back() = "Missing";
    const std::string seen = planLines(server.plan(custom(keptAndAnother)));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
    EXPECT_NE(seen.find("error ZX701: "), std::string::npos) << seen;
}

TEST(FamilyPlan, ForeignDrivesAreNotClearedBesideADegradedArray) {
    FamilyServer server = hurtServer(); // one of them may be the member
    server.driveAt(4).state = DriveState::foreign;
    server.driveAt(4).isForeign = true;
    const std::string seen = planLines(server.plan(custom(keptAndAnother)));
    EXPECT_EQ(seen.find("refused: "), 0U) << seen;
}

TEST(FamilyPlan, ASpareThatSteppedInIsEquivalent) {
    FamilyServer server;
    server.addDrives(4);
    server.addVolume("0", "0", "RAID5", {{0, 1, 3}}, 2000);
    server.makeSpare(2);
    const MachinePlan plan = server.plan(policy(""));
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "already") << planLines(plan);
    EXPECT_EQ(plan.controllers.front().comparison.result, Sameness::equivalent);
    EXPECT_EQ(warningsOf(plan), "");
}

TEST(FamilyPlan, ASpareThatStaysInPlaceOfAnotherHasAJob) {
    FamilyServer server;
    server.addDrives(8);
    server.addVolume("0", "0", "RAID5", {{0, 1, 2}}, 2000);
    server.makeSpare(4); // the last drive would be taken
    server.makeSpare(5);
    const std::string entries = "[Policy.one]\nAppliesTo.1 = t:STORCLI\nArray_Mode = CUSTOM\n"
                                "Array_Defaults = 0%:1\nArray.A = 1,2,3\n";
    const MachinePlan plan = server.plan(entries);
    EXPECT_EQ(planLines(plan), "planned\n"
                               "RAID5 fill: 252:0 252:1 252:2\n"
                               "hot spare: 252:4\n"
                               "loses hotspare 252:5\n"
                               "STORCLI /c0/e252/s5 delete hotsparedrive J nolog\n");
    EXPECT_EQ(warningsOf(plan), "ZX712: 4 drives get no job: 252:3, 252:5, 252:6, 252:7\n");
    server.driveAt(5).state = DriveState::free;
    server.driveAt(5).hotspare = HotspareKind::none;
    const MachinePlan same = server.plan(entries);
    EXPECT_EQ(dispositionWord(same.controllers.front().disposition), "already");
    EXPECT_EQ(warningsOf(same), "ZX712: 4 drives get no job: 252:3, 252:5, 252:6, 252:7\n");
    const MachinePlan anew = server.plan(entries, StrategyWish::rebuild);
    EXPECT_EQ(warningsOf(anew),
              "ZX712: 4 drives get no job: 252:3, 252:4, 252:5, 252:6\n"
              "ZX309: Array.A names drives by number, and AppliesTo.1 gives no d:, while 1 logical "
              "drive is deleted: a drive that was pulled or added shifts the numbers behind it\n"
              "  help: see that the numbers are those that are meant: zolexctl show\n"
              "  help: add d:8, or name the drives by their slots: Drives.A = slots "
              "252:0,252:1,252:2\n");
}

TEST(FamilyPlan, EachDriveHasItsReason) {
    FamilyServer server;
    server.addDrives(4);
    const MachinePlan plan = server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:AUTO\n"));
    const ControllerPlanning& planning = plan.controllers.front();
    EXPECT_EQ(planning.arrays.front().drives.front().reason,
              (PlanReason{"listed", "Array.A", 6, "1"}));
    EXPECT_EQ(planning.volumes.front().reasons.at("raid_type"),
              (PlanReason{"class-default", "", 0, ""}));
    EXPECT_EQ(planning.volumes.front().reasons.at("size"),
              (PlanReason{"given", "Logical.1", 7, "FILL"}));
}

/// The captured policies of a server are planned as what stands there.
void expectComesBack(FamilyServer& server, const std::string& expected) {
    static_cast<void>(server.defaults()); // joins the drives
    const CapturedPolicies captured = capturedPolicies(server.snapshot, {});
    EXPECT_TRUE(captured.comesBack) << captured.text;
    const std::size_t begin = captured.text.find("[Policy.");
    ASSERT_NE(begin, std::string::npos) << captured.text;
    EXPECT_EQ(captured.text.substr(begin), expected);
    const MachinePlan plan = server.plan(captured.text);
    EXPECT_EQ(dispositionWord(plan.controllers.front().disposition), "already") << planLines(plan);
}

TEST(FamilyPlan, WhatStandsAsPoliciesComesBack) {
    FamilyServer server;
    server.addDrives(10);
    LogicalDriveFacts& first = server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 500);
    first.stripSizeBytes = 256 * 1024;
    first.writeCache = "UnprotectedWriteBack";
    first.readCache = "ReadAhead";
    LogicalDriveFacts& second = server.addVolume("238", "0", "RAID5", {{0, 1, 2}}, 1500);
    second.stripSizeBytes = 256 * 1024;
    second.writeCache = "WriteThrough";
    second.readCache = "ReadAhead";
    LogicalDriveFacts& third = server.addVolume("237", "1", "RAID10", {{3, 4}, {5, 6}}, 2000);
    third.stripSizeBytes = 256 * 1024;
    third.readCache = "ReadAhead";
    server.makeSpare(9);
    expectComesBack(server, "[Policy.PERC-H755-Front-1]\n\n"
                            "AppliesTo.1 = t:PERC-H755-Front,d:10\n\n"
                            "StripeSize = 256\nReadAhead = ON\n\n"
                            "Array_Mode = CUSTOM\nArray.A = 1,2,3\nArray.B = 4,5,6,7\n"
                            "Hotspares = 10\n\n"
                            "Logical_Mode = CUSTOM\nLogical.1 = A:512000:5:ON\n"
                            "Logical.2 = A:FILL:5:OFF\nLogical.3 = B:FILL:10\n");
}

TEST(FamilyPlan, SpansAndDedicatedSparesComeBack) {
    FamilyServer server;
    server.addDrives(14);
    server.addVolume("0", "0", "RAID50", {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}}, 8000);
    server.makeSpare(12, {"0"});
    server.makeSpare(13);
    expectComesBack(server,
                    "[Policy.PERC-H755-Front-1]\n\n"
                    "AppliesTo.1 = t:PERC-H755-Front,d:14\n\n"
                    "Spans = 4\n\n"
                    "Drives.A = slots 252:0,252:1,252:2,252:3,252:4,252:5,252:6,252:7,252:8,252:9,"
                    "252:10,252:11\n"
                    "Spares = slots 252:12 covering A and slots 252:13\n\n"
                    "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:50\n");
}

TEST(FamilyPlan, WhatIsNotWellIsToldWithItsPolicies) {
    FamilyServer server = hurtServer();
    static_cast<void>(server.defaults()); // joins the drives
    const auto told = [&server] {
        std::string text;
        for (const Finding& finding : capturedPolicies(server.snapshot, {}).findings) {
            text += finding.code + ": " + finding.summary + "\n";
            for (const std::string& help : finding.help) {
                text += "  help: " + help + "\n";
            }
        }
        return text;
    };
    const std::string dgrd =
        "ZC106: controller 1: logical drive 239 is Dgrd: the policy may not be "
        "what it was when it was well\n"
        "  help: mend it first, then capture again\n";
    EXPECT_EQ(told(), dgrd);
    // One of which the utility says that it is well, and a drive of it is not.
    server.controller().facts.logicalDrives.front().health = Health::ok;
    server.controller().facts.logicalDrives.front().reportedState = "Optl";
    EXPECT_EQ(told(), "ZC106: controller 1: logical drive 239 is not well: the policy may not be "
                      "what it was when it was well\n"
                      "  help: mend it first, then capture again\n");
    // One whose last drive is being written to, as that of a new array is.
    server.driveAt(1).state = DriveState::rebuilding;
    EXPECT_EQ(told(), "");
    // One that lacks a drive altogether.
    server.controller().facts.logicalDrives.front().health = Health::warning;
    server.controller().facts.logicalDrives.front().reportedState = "Dgrd";
    server.controller().facts.logicalDrives.front().spans = {{"252:0", "Missing", "252:2"}};
    EXPECT_EQ(told(), dgrd + "ZC116: controller 1: a drive of an array is not listed (Missing), so "
                             "that there is no policy for it\n"
                             "  help: put it back or replace it, wait until it is rebuilt, and "
                             "capture again\n"
                             "ZC119: no policy is in the file: zolex and zolexctl check refuse it\n"
                             "  help: mend what is told above, and capture again, or write "
                             "policies by hand: man zolex-policies\n");
}

TEST(FamilyPlan, OnlyADriveThatIsGoneIsToBeReplaced) {
    const std::string look = "look at the controller: zolexctl show; the layout is as the policy "
                             "says";
    for (const char* const word : {"Rec", "TRANS", "B", "Wxyz"}) {
        FamilyServer server;
        server.addDrives(3);
        LogicalDriveFacts& volume = server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000);
        volume.reportedState = word;
        const bool isKnown = volume.reportedState != "Wxyz";
        volume.health = isKnown ? Health::warning : Health::unknown;
        const std::string told =
            warningsOf(server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")));
        const std::string state = volume.reportedState == "Rec" ? "rec" : volume.reportedState;
        EXPECT_EQ(told, "ZP208: LD 239 is " + state + (isKnown ? "" : ", which is not known") +
                            "\n  help: " + look + "\n");
    }
    FamilyServer server = hurtServer();
    EXPECT_NE(warningsOf(server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")))
                  .find("ZP208: LD 239 is dgrd: 252:1 failed\n"
                        "  help: replace the drive; the layout is as the policy says\n"),
              std::string::npos);
    // A member that the controller looks at itself.
    server = FamilyServer();
    server.addDrives(3);
    server.addVolume("239", "0", "RAID5", {{0, 1, 2}}, 2000);
    server.driveAt(1).health = Health::warning;
    server.driveAt(1).barred = "the controller is diagnosing it";
    EXPECT_NE(
        planLines(server.plan(custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n")))
            .find("  help: look at what its utility tells of it, and wait until the controller is "
                  "done with it: a "
                  "policy without it deletes array A\n"),
        std::string::npos);
}

TEST(FamilyPlan, TwoHundredAndFortyDrivesInTime) {
    FamilyServer server;
    for (std::int32_t enclosure = 0; enclosure < 10; ++enclosure) {
        for (std::int32_t slot = 0; slot < 24; ++slot) {
            server.add(300 + enclosure, slot);
        }
    }
    const std::clock_t begin = std::clock();
    const MachinePlan plan = server.plan(policy("Array_Defaults = 0%:8\n"));
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    EXPECT_EQ(plan.controllers.front().arrays.size(), 8U);
    EXPECT_EQ(plan.controllers.front().spares.size(), 8U);
    EXPECT_LT(seconds, 0.1); // of processor time
}

TEST(FamilyPlan, AModelOfAnyBrandIsTakenWhereTheMachineHasIt) {
    for (const bool isThere : {true, false}) {
        FamilyServer server(isThere ? "Megaware-9364-8i" : "PERC-H755-Front");
        server.addDrives(2);
        const MachinePlan plan = server.plan(policy("", "t:Megaware-9364-8i"));
        EXPECT_EQ(plan.controllers.at(0).disposition,
                  isThere ? Disposition::planned : Disposition::skipped);
        std::string told;
        for (const Finding& finding : plan.policiesFindings) {
            told += finding.code + " " + finding.summary;
        }
        EXPECT_EQ(told, isThere ? "" : "ZX208 no model is known to be called \"Megaware-9364-8i\"");
    }
}

TEST(FamilyPlan, TheSevenAreNotTouchedByTheTypes) {
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policy("");
    const MachinePlan plan = planMachine(Snapshot(), request);
    for (const Finding& finding : plan.policiesFindings) {
        EXPECT_NE(severityWord(finding.severity), "error") << finding.summary;
    }
}

} // namespace
} // namespace zolex::companion
