#include "companion/rehearsal/CopyMaker.h"

#include "companion/facts/VirtualListings.h"
#include "companion/layout/NormalForm.h"
#include "companion/machine/Capture.h"
#include "companion/rehearsal/HandMadePlan.h"
#include "companion/rehearsal/Originals.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/support/SimulatedPlatform.h"
#include "setup/Samples.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

Snapshot captured(const std::string& sample) {
    SimulatedPlatform platform(sample);
    return captureMachine(platform, {});
}

MadeCopy copied(const Snapshot& snapshot, std::size_t index) {
    const ControllerSnapshot& details = snapshot.details.at(index);
    return copyController(details, snapshot.controllers.controller(details.index)->type());
}

TEST(CopyMaker, EveryControllerOfEverySampleReadsBackAsItself) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        const Snapshot snapshot = captured(sample);
        for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
            SCOPED_TRACE(sample + " " + std::to_string(i + 1));
            const MadeCopy made = copied(snapshot, i);
            EXPECT_EQ(made.because, "");
            ASSERT_TRUE(made.copy);
            EXPECT_EQ(normalForm(made.facts), normalForm(snapshot.details[i].facts));
        }
    }
}

TEST(CopyMaker, RandomControllersReadBackAsThemselves) {
    std::map<std::string, int> because;
    for (unsigned seed = 0; seed < 600; ++seed) {
        std::mt19937 random(seed);
        zolex_sim::Server server = test::randomServer(random);
        const ControllerSnapshot original = test::originalOf(server);
        const MadeCopy made = test::copyOf(original, server.controllers.front());
        ++because[made.because];
        // HYPERWIN does not tell which drive is being rebuilt.
        if (made.copy && original.utility != "HYPERWIN") {
            ASSERT_EQ(test::layoutFacts(made.facts), test::layoutFacts(original.facts)) << seed;
        }
    }
    EXPECT_EQ(because, (std::map<std::string, int>{{"", 600}}));
}

TEST(CopyMaker, WhatChangesIsReadByItselfAsItIsReadInAll) {
    int changes = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        zolex_sim::Server server = test::randomServer(random);
        const ControllerSnapshot original = test::originalOf(server);
        MadeCopy made = test::copyOf(original, server.controllers.front());
        if (!made.copy) {
            continue;
        }
        Facts facts = made.facts;
        for (int step = 0; step < 20; ++step) {
            const CopyState before = made.copy->state();
            const std::vector<std::string> line = test::randomLine(facts, original.utility, random);
            made.copy->play(line);
            changes += made.copy->state() == before ? 0 : 1;
            facts = made.copy->capture(before, facts);
            const Facts whole = made.copy->capture();
            ASSERT_EQ(test::layoutFacts(facts), test::layoutFacts(whole))
                << seed << " " << line.at(2);
            ASSERT_EQ(normalForm(facts), normalForm(whole)) << seed;
        }
    }
    EXPECT_GT(changes, 1000);
}

/// Why there is no copy once the facts have been changed.
template <typename Change>
std::string refusedCopy(std::string_view sample, Change change) {
    zolex_sim::Server server = test::SimulatedPlatform(sample).server;
    ControllerSnapshot original = test::originalOf(server);
    change(original);
    const MadeCopy made = test::copyOf(original, server.controllers.front());
    EXPECT_FALSE(made.copy);
    return made.because;
}

TEST(CopyMaker, SaysWhatCannotBeCopied) {
    using Original = ControllerSnapshot;
    const auto drive = [](Original& original) -> DriveFacts& { return original.facts.drives[2]; };
    const auto volume = [](Original& original) -> LogicalDriveFacts& {
        return original.facts.logicalDrives.front();
    };
    EXPECT_EQ(refusedCopy(test::megaRaid,
                          [&](Original& it) {
                              volume(it).raidType.clear();
                              volume(it).reportedLevel = "Primary-7\x1b";
                          }),
              "LD 0 has a RAID level that is not known, \"Primary-7?\"");
    EXPECT_EQ(refusedCopy(test::megaRaid,
                          [&](Original& it) {
                              volume(it).raidType = "RAID50";
                              volume(it).spans = {{"32:0", "32:1", "32:2", "32:3", "32:4"}};
                          }),
              "the spans of LD 0 are not told: 5 drives of RAID50");
    EXPECT_EQ(refusedCopy(test::megaRaid, [&](Original& it) { drive(it).capacityBytes.reset(); }),
              "drive 32:2 has no size");
    EXPECT_EQ(refusedCopy(test::megaRaid, [&](Original& it) { volume(it).capacityBytes.reset(); }),
              "LD 0 has no size");
    EXPECT_EQ(refusedCopy(test::megaRaid,
                          [&](Original& it) {
                              drive(it).state = DriveState::unknown;
                              drive(it).reportedState = "Sleeping";
                          }),
              "drive 32:2 has a state that is not known, \"Sleeping\"");
    EXPECT_EQ(refusedCopy(test::megaRaid, [&](Original& it) { drive(it).slot.reset(); }),
              "drive 32:2 has no place that a command could name");
    EXPECT_EQ(
        refusedCopy(test::megaRaid, [&](Original& it) { drive(it) = it.facts.drives.front(); }),
        "two drives are told to be at 32:0");
    EXPECT_EQ(refusedCopy(test::megaRaid,
                          [&](Original& it) { volume(it).spans.front().front() = "32:99"; }),
              "a member of LD 0 is no drive that is listed, \"32:99\"");
    EXPECT_EQ(refusedCopy(test::megaRaid, [&](Original& it) { volume(it).spans.clear(); }),
              "LD 0 has no drives");
    EXPECT_EQ(refusedCopy(test::megaRaid, [&](Original& it) { volume(it).id = "?"; }),
              "LD ? has no number");
    EXPECT_EQ(refusedCopy(test::megaRaid, [](Original& it) { it.utility = "OTHER"; }),
              "the virtual server has no utility \"OTHER\"");
    EXPECT_EQ(refusedCopy(test::megaRaid, [](Original& it) { it.failed = true; }),
              "it was not captured");
}

// What is made and does not read back as it was told is no copy.
TEST(CopyMaker, SaysWhatDoesNotReadBack) {
    using Original = ControllerSnapshot;
    EXPECT_EQ(
        refusedCopy(test::megaRaid, [](Original& it) { it.facts.drives[2].isForeign = true; }),
        "drive 32:2 of the copy has another state");
    EXPECT_EQ(
        refusedCopy(test::megaRaid, [](Original& it) { it.facts.drives[2].protocol = "NVMe\n"; }),
        "drive 32:2 of the copy has another protocol");
    EXPECT_EQ(refusedCopy(
                  test::megaRaid,
                  [](Original& it) { it.facts.logicalDrives.front().writeCache = "WriteAround"; }),
              "LD 0 of the copy has another strip size or cache mode");
    EXPECT_EQ(
        refusedCopy("cfggen",
                    [](Original& it) {
                        LogicalDriveFacts volume;
                        volume.id = "2"; // the first is gone: it would be called 1 here
                        volume.raidType = "RAID1";
                        volume.capacityBytes = std::uint64_t{1000} << 20U;
                        volume.spans = {{it.facts.drives[0].location, it.facts.drives[1].location}};
                        it.facts.drives[0].state = DriveState::member;
                        it.facts.drives[1].state = DriveState::member;
                        it.facts.logicalDrives = {volume};
                    }),
        "LD 2 of the copy has another number");
}

TEST(CopyMaker, WhatIsNotCopiedIsSaidInThePlan) {
    Snapshot snapshot = test::snapshotOf(test::megaRaid);
    snapshot.details.front().facts.drives[2].capacityBytes.reset();
    MachinePlan plan =
        test::handMadePlan(snapshot, {test::step("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT", true)});
    rehearse(snapshot, plan);
    EXPECT_FALSE(plan.rehearsal.done);
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.notDoneBecause,
              std::vector<std::string>{"not rehearsed: controller 1: drive 32:2 has no size"});
    EXPECT_EQ(plan.controllers.front().disposition, Disposition::planned);
    EXPECT_EQ(plan.rehearsal.faultsTried, 0);
}

/// A copy of a controller of test::megaRaid that has been changed.
template <typename Change>
MadeCopy changedCopy(Change change) {
    zolex_sim::Server server = test::SimulatedPlatform(test::megaRaid).server;
    change(server.controllers.front());
    const ControllerSnapshot original = test::originalOf(server);
    MadeCopy made = test::copyOf(original, server.controllers.front());
    EXPECT_EQ(made.because, "");
    if (made.copy) {
        EXPECT_EQ(test::layoutFacts(made.facts), test::layoutFacts(original.facts));
    }
    return made;
}

TEST(CopyMaker, CopiesDrivesThatAreShownAsTheyAre) {
    MadeCopy made = changedCopy([](zolex_sim::Controller& controller) {
        controller.drives[3].status = zolex_sim::DriveStatus::jbod;
    });
    ASSERT_TRUE(made.copy);
    EXPECT_EQ(made.facts.drives[3].state, DriveState::jbod);
    const PlayedLine played =
        made.copy->play({"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R0", "[32:3]", "-a0"});
    EXPECT_EQ(played.exitCode, 38);
    EXPECT_NE(played.output.find("32:3 is not free: it is jbod."), std::string::npos);
}

TEST(CopyMaker, CopiesMembersThatAreMissing) {
    MadeCopy made = changedCopy([](zolex_sim::Controller& controller) {
        controller.drives[1].status = zolex_sim::DriveStatus::missing;
    });
    ASSERT_TRUE(made.copy);
    EXPECT_EQ(made.facts.drives.size(), 7U);
    EXPECT_EQ(made.facts.logicalDrives.front().spans.front(),
              (std::vector<std::string>{"32:0", "PD 1"}));
    EXPECT_EQ(made.facts.logicalDrives.front().reportedState, "Degraded");
    EXPECT_EQ(made.copy->play({"UTIL.BAT", "MEGACLI", "-CfgLdDel", "-L0", "-a0"}).exitCode, 0);
    EXPECT_EQ(made.copy->capture().drives.size(), 7U);
    EXPECT_EQ(made.copy->capture().drives.front().state, DriveState::free);
}

TEST(CopyMaker, CopiesWriteBackWithoutABattery) {
    const MadeCopy made = changedCopy([](zolex_sim::Controller& controller) {
        controller.logicalDrives.front().writePolicy = zolex_sim::WritePolicy::writeBack;
        controller.logicalDrives.front().withoutBattery = true;
    });
    EXPECT_EQ(made.facts.logicalDrives.front().writeCache, "UnprotectedWriteBack");
}

TEST(CopyMaker, CopiesDrivesInNoEnclosureAndForeignOnes) {
    MadeCopy made = changedCopy([](zolex_sim::Controller& controller) {
        controller.drives[4].location.enclosure.reset();
        controller.drives[5].status = zolex_sim::DriveStatus::foreign;
        controller.drives[2].predictiveFailures = 3;
    });
    ASSERT_TRUE(made.copy);
    EXPECT_EQ(made.copy->play({"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R0", "[:4]", "-a0"}).exitCode,
              0);
    EXPECT_EQ(made.copy->play({"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R0", "[32:5]", "-a0"}).exitCode,
              38);
    EXPECT_EQ(made.facts.drives[2].health, Health::warning);
}

// With several controllers of a utility each copy answers to its own number alone.
TEST(CopyMaker, ACopyHasTheNumberOfItsOriginal) {
    const Snapshot snapshot = captured("two-controllers");
    MadeCopy made = copied(snapshot, 1);
    ASSERT_TRUE(made.copy);
    const std::string own = std::to_string(snapshot.details[1].adapter);
    ASSERT_EQ(own, "1");
    EXPECT_EQ(made.copy->play({"UTIL.BAT", "MEGACLI", "-CFGCLR", "-A1", "-SILENT"}).exitCode, 0);
    const CopyState before = made.copy->state();
    const std::string drive = snapshot.details[1].facts.drives.front().location;
    const std::vector<std::string> line = {"UTIL.BAT", "MEGACLI", "-CfgLdAdd", "R0",
                                           "[" + drive + "]"};
    for (const auto& [adapter, code] : std::map<std::string, int>{{"0", 12}, {"2", 1}, {"1", 0}}) {
        std::vector<std::string> each = line;
        each.push_back("-a" + adapter);
        EXPECT_EQ(made.copy->play(each).exitCode, code) << adapter;
        EXPECT_EQ(made.copy->state() == before, code != 0);
        made.copy->restore(before);
    }
}

} // namespace
} // namespace zolex::companion
