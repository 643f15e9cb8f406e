// What happens to a server with a controller of today between plan, apply and resume: nothing is
// lost that was not agreed to.

#include "companion/execution/ApplyBench.h"
#include "companion/execution/StorcliRuns.h"
#include "companion/planning/ResetPlan.h"
#include "model/StorcliController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Lines;
using Controller = zolex_sim::storcli::Controller;
using zolex_sim::storcli::DriveState;

/// The layout of usedDrives goes but for the RAID 5; a mirror comes.
constexpr const char* policies =
    "Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n"
    "Array.A = 3,4,5,6\nArray.B = 1,2,13,14\n"
    "Logical.1 = A:FILL:5:ON\nLogical.2 = B:FILL:10\n";

class StorcliDangers : public testing::Test {
  protected:
    StorcliDangers() : bench_(test::storcliServer("") + test::usedDrives + "]}]}") {
        bench_.makePlan(test::storcliPolicies(policies), StrategyWish::automatic, false);
        initial_ = bench_.server.platform.server;
    }

    Controller& controller() { return bench_.server.platform.server.storcliControllers.front(); }
    /// Each of the two has the number of the other.
    void swapNumbers(std::size_t one, std::size_t other) {
        std::swap(controller().volumes[one], controller().volumes[other]); // they stand by numbers
        std::swap(controller().volumes[one].number, controller().volumes[other].number);
    }
    /// The last one is deleted and made again: with another id.
    void makeAnew() {
        zolex_sim::storcli::Volume volume = controller().volumes.back();
        controller().volumes.pop_back();
        ++controller().deleted;
        volume.naaId.clear();
        controller().enter(volume);
    }
    zolex_sim::storcli::Drive& drive(std::size_t slot) { return controller().drives.at(slot); }

    /// The details of an apply that is refused and starts nothing, after a change.
    Lines refusedAfter(const std::function<void()>& change) {
        bench_.server.platform.server = initial_;
        bench_.system.started.clear();
        change();
        const ApplyEnd end = bench_.apply();
        EXPECT_EQ(end.exitCode, 3) << testing::PrintToString(endLines(end));
        EXPECT_EQ(bench_.system.started, Lines{});
        EXPECT_FALSE(bench_.disk.isThere);
        return end.details;
    }

    /// What happens behind so many commands of a run.
    void afterCommand(std::size_t commands, const std::function<void()>& change) {
        ended_ = 0;
        bench_.system.onMoment = [this, commands, change](const std::string& moment) {
            if (moment == "ended" && ++ended_ == commands) {
                change();
            }
        };
    }

    void killBeforeConsentIsWritten() {
        bench_.system.onMoment = [this](const std::string& moment) {
            if (moment == "write agreed") {
                bench_.system.kill();
            }
        };
        EXPECT_THROW(static_cast<void>(bench_.apply()), test::Killed);
        bench_.system.onMoment = nullptr;
        bench_.system.restart();
    }

    /// Interrupts the run behind so many commands.
    void interruptBehind(std::size_t commands) {
        afterCommand(commands, [this] { bench_.system.isInterrupted = true; });
        EXPECT_EQ(bench_.apply().exitCode, 4);
        bench_.system.onMoment = nullptr;
        bench_.system.restart();
        bench_.system.started.clear();
    }

    ApplyBench bench_;
    zolex_sim::Server initial_;
    std::size_t ended_ = 0; ///< commands
};

TEST_F(StorcliDangers, APlanHoldsForWhatItWasMadeFor) {
    ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
    EXPECT_EQ(
        test::commandsOf(bench_.plan),
        (Lines{"STORCLI /c0/e252/s11 delete hotsparedrive J nolog",
               "STORCLI /c0/e252/s10 delete hotsparedrive J nolog", "STORCLI /c0/v239 del J nolog",
               "STORCLI /c0/v237 del J nolog", "STORCLI /c0/v236 del J nolog",
               "STORCLI /c0 add vd r10 drives=252:0,252:1,252:12,252:13 PDperArray=2 J nolog"}));
    EXPECT_EQ(refusedAfter([&] { controller().drives.erase(controller().drives.begin() + 12); }),
              Lines{"controller 1: drive 252:12, serial number ZM000012, is gone"});
    EXPECT_EQ(refusedAfter([&] { drive(12).serial = "OTHER"; }),
              Lines{"controller 1: drive 252:12: serial number OTHER in the place of serial number "
                    "ZM000012"});
    EXPECT_EQ(refusedAfter([&] { drive(12).state = DriveState::jbod; }),
              (Lines{"controller 1: drive 252:12 is not to be used now: it is a JBOD drive: "
                     "the system has it as it is",
                     "controller 1: drive 252:12 is shown to the system (JBOD), it was good"}));
    EXPECT_EQ(refusedAfter([&] { drive(12).state = DriveState::bad; }),
              Lines{"controller 1: drive 252:12 is failed (UBad), it was good"});
    EXPECT_EQ(refusedAfter([&] { drive(12).state = DriveState::globalSpare; }),
              Lines{"controller 1: there now: hot spare: 252:12"});
    EXPECT_EQ(refusedAfter([&] { drive(10).state = DriveState::good; }),
              Lines{"controller 1: no longer there: hot spare: 252:10"});
    EXPECT_EQ(refusedAfter([&] {
                  drive(13).state = DriveState::foreign;
                  controller().foreignSets.push_back(
                      {zolex_sim::storcli::Level::raid0, 1000, 1, 0, {drive(13).place}});
              }),
              (Lines{"controller 1: drive 252:13 is foreign (UGood), it was good",
                     "controller 1: there now: foreign: 252:13"}));
    EXPECT_EQ(refusedAfter([&] { controller().foreignSets.front().blocks = 5000; }),
              Lines{"controller 1: its layout is not what it was"});
    EXPECT_EQ(refusedAfter([&] { controller().remove(controller().volumes.back().number); }),
              Lines{"controller 1: no longer there: LD 239, RAID1 fill, strip 64 KB, protected "
                    "write-back, read-ahead: 252:0 252:1"});
}

/// Somebody deletes two logical drives and makes them again, each with the number of the other.
TEST_F(StorcliDangers, ANumberThatIsAnothersIsFound) {
    EXPECT_EQ(refusedAfter([this] { swapNumbers(0, 1); }),
              (Lines{"controller 1: LD 237 on 252:6 252:7 252:8 252:9 has the number 236 now",
                     "controller 1: LD 236 on 252:6 252:7 252:8 252:9 has the number 237 now"}));
    EXPECT_EQ(refusedAfter([this] { swapNumbers(2, 3); }),
              (Lines{"controller 1: LD 239 on 252:0 252:1 has the number 238 now",
                     "controller 1: LD 238 on 252:2 252:3 252:4 252:5 has the number 239 now"}));
}

/// Somebody deletes a logical drive and makes another one: with its number, on its drives, and with
/// his data.
TEST_F(StorcliDangers, ALogicalDriveThatWasMadeAnewIsFound) {
    const std::string before = controller().volumes.back().naaId;
    const auto told = [&] {
        return "LD 239 on 252:0 252:1 is not the one that was there: its id is " +
               controller().volumes.back().naaId + ", it was " + before;
    };
    const Lines details = refusedAfter([this] { makeAnew(); });
    EXPECT_EQ(details, Lines{"controller 1: " + told()});
    EXPECT_NE(controller().volumes.back().naaId, before);
    EXPECT_EQ(refusedAfter([this] { controller().volumes.back().name = "data"; }),
              Lines{"controller 1: LD 239 on 252:0 252:1 is called \"data\" now, it was nothing"});
    // The same in the middle of a run, while that one still stands.
    bench_.server.platform.server = initial_;
    interruptBehind(1);
    makeAnew();
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.what, "logical drives of controller 1 are not those that the plan was made of");
    EXPECT_EQ(end.details.front(), told());
    EXPECT_EQ(bench_.system.started, Lines{});
}

/// What the run itself has made has the number of one that went, and an id that no plan knows.
TEST_F(StorcliDangers, ALogicalDriveThatTheRunHasMadeIsItsOwn) {
    const std::string before = controller().volumes.back().naaId;
    interruptBehind(1);
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(controller().volumes.back().number, 239);
    EXPECT_NE(controller().volumes.back().naaId, before);
}

/// A plan that was made before ids were told is carried out as it is.
TEST_F(StorcliDangers, APlanWithoutIdsHolds) {
    for (LayoutGroup& group : bench_.plan.controllers.front().before.groups) {
        for (LayoutVolume& volume : group.volumes) {
            volume.uniqueId.clear();
        }
    }
    bench_.plan.fingerprint.state = stateWithoutIds(bench_.server.snapshot());
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
}

/// Mounted since it was planned for.
TEST_F(StorcliDangers, WhatTheSystemUsesIsNotDeleted) {
    std::string use = "mounted at /srv";
    bench_.capture.noteUses = [&use](Facts& facts) {
        for (LogicalDriveFacts& volume : facts.logicalDrives) {
            volume.usedAs = volume.id == "236" || volume.id == "238" ? use : "";
        }
    };
    const Lines refused = {"3: the running system uses what would be deleted",
                           "  controller 1: LD 236 (/dev/sdd): mounted at /srv",
                           "help: umount /srv", "controller 1: failed step 0 of 6: not begun"};
    EXPECT_EQ(endLines(bench_.apply()), refused);
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.capture.noteUses = nullptr;
    interruptBehind(1);
    bench_.capture.noteUses = [](Facts& facts) {
        for (LogicalDriveFacts& volume : facts.logicalDrives) {
            volume.usedAs = "it holds the system's root";
        }
    };
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.what, "the running system uses what would be deleted");
    EXPECT_EQ(end.details.size(), 3U);
    EXPECT_EQ(bench_.system.started, Lines{});
}

/// A controller whose cache keeps data makes no logical drive: nothing is deleted for one.
TEST_F(StorcliDangers, ACacheThatKeepsDataKeepsFromDeleting) {
    const Lines told = {"the cache keeps data that could not be written to a logical drive: no "
                        "other can be made until it is"};
    EXPECT_EQ(refusedAfter([this] { controller().preservedCache = true; }), told);
    bench_.server.platform.server = initial_;
    interruptBehind(1);
    controller().preservedCache = true;
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: the cache of controller 1 keeps data", "  " + told.front(),
                     "help: see of which: storcli64 /c0 show preservedcache",
                     "help: bring its drives back, and the data is written; or delete it, and it "
                     "is lost: storcli64 /c0/vN delete preservedcache",
                     "controller 1: failed step 2 of 6: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    controller().preservedCache = false;
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// Mounted while an earlier step is at work.
TEST_F(StorcliDangers, WhatIsMountedOnTheWayIsNotDeleted) {
    std::string use;
    bench_.capture.noteUses = [&use](Facts& facts) {
        for (LogicalDriveFacts& volume : facts.logicalDrives) {
            volume.usedAs = volume.id == "236" ? use : "";
        }
    };
    bench_.system.onMoment = [&use](const std::string& moment) {
        if (moment == "start STORCLI /c0/v237 del J nolog") {
            use = "mounted at /srv";
        }
    };
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: step 5 of 6 was not begun: the running system uses what would be deleted",
                     "  controller 1: LD 236 (/dev/sdd): mounted at /srv",
                     "  remains: step 5: delete LD 236: RAID10 on 252:6 252:7 252:8 252:9",
                     "  remains: step 6: create B: RAID10 on 252:0 252:1 252:12 252:13",
                     "help: umount /srv",
                     "help: zolexctl apply --resume plan.journal.jsonl goes on when it is used no "
                     "more",
                     "controller 1: failed step 5 of 6: LD 236 (/dev/sdd): mounted at /srv"}));
    EXPECT_EQ(bench_.system.started.size(), 4U);
    EXPECT_EQ(bench_.events().back(), "end 4");
    bench_.system.onMoment = nullptr;
    bench_.system.restart();
    EXPECT_EQ(bench_.resume().exitCode, 3);
    use.clear();
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// More drives of an array that stays leave than its level bears, while others are made.
TEST_F(StorcliDangers, AnArrayThatIsOfflineIsNoGoodEnd) {
    std::size_t ended = 0;
    bench_.system.onMoment = [this, &ended](const std::string& moment) {
        if (moment == "ended" && ++ended == 6) {
            drive(2).state = DriveState::failed;
            drive(3).state = DriveState::failed;
        }
    };
    const Lines help = {
        "help: while its data is wanted, replace no drive and delete nothing: that loses it",
        "help: bring back the drives that left (cables, enclosure, power), and "
        "look at what its utility lists: zolexctl show",
        "help: zolexctl apply --resume plan.journal.jsonl verifies it again"};
    Lines told = {"5: what stands on controller 1 now is not what was planned",
                  "  LD 238, state: planned is online; found is offline (OfLn)"};
    told.insert(told.end(), help.begin(), help.end());
    told.emplace_back("controller 1: failed step 6 of 6: what stands is not what was planned");
    EXPECT_EQ(endLines(bench_.apply()), told);
    bench_.system.onMoment = nullptr;
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), told);
    drive(2).state = DriveState::online;
    drive(3).state = DriveState::online;
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// The same before a run is gone on with: nothing more is deleted beside it.
TEST_F(StorcliDangers, BesideAnArrayThatIsOfflineNoRunIsGoneOnWith) {
    const auto leave = [this](DriveState state) {
        drive(2).state = state;
        drive(3).state = state;
    };
    interruptBehind(3);
    leave(DriveState::failed);
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{"3: a logical drive that stays is offline, and nothing is changed beside it",
               "  controller 1: LD 238 (/dev/sdb) is offline (OfLn)",
               "help: while its data is wanted, replace no drive and delete nothing: that loses it",
               "help: bring back the drives that left (cables, enclosure, power), and look at what "
               "its utility lists: zolexctl show",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when it is back",
               "controller 1: failed step 4 of 6: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    leave(DriveState::online);
    // One that goes anyway may be.
    drive(6).state = DriveState::failed;
    drive(7).state = DriveState::failed;
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// Nor is one that was killed before its first command.
TEST_F(StorcliDangers, BesideAnArrayThatIsOfflineNothingIsBegun) {
    killBeforeConsentIsWritten();
    drive(2).state = DriveState::failed;
    drive(3).state = DriveState::failed;
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.exitCode, 3);
    EXPECT_EQ(end.code, "ZA121");
    EXPECT_EQ(end.details, Lines{"controller 1: LD 238 (/dev/sdb) is offline (OfLn)"});
    EXPECT_EQ(bench_.system.started, Lines{});
}

/// What no mount names is only asked of what is to be deleted.
TEST_F(StorcliDangers, WhatSomebodyHasOpenedIsNotDeleted) {
    Lines asked;
    bench_.capture.noteHolders = [&asked](Facts& facts) {
        for (LogicalDriveFacts& volume : facts.logicalDrives) {
            asked.push_back(volume.id);
            volume.usedAs = volume.id == "237" ? "opened by somebody" : "";
        }
    };
    EXPECT_EQ(refusedAfter([] {}), Lines{"controller 1: LD 237 (/dev/sdc): opened by somebody"});
    std::sort(asked.begin(), asked.end());
    EXPECT_EQ(asked, (Lines{"236", "237", "239"}));
}

/// Somebody needs his time to agree, and others are not idle.
TEST_F(StorcliDangers, WhatHappensWhileItIsAskedIsFound) {
    bench_.listener.answer = {true, "typed-serial", "", {}, true};
    const std::string before = controller().volumes.back().naaId;
    bench_.listener.whenAsked = [this] { makeAnew(); };
    const Lines details = refusedAfter([] {});
    EXPECT_EQ(
        details,
        Lines{"controller 1: LD 239 on 252:0 252:1 is not the one that was there: its id is " +
              controller().volumes.back().naaId + ", it was " + before});
    std::string use;
    bench_.listener.whenAsked = [&use] { use = "mounted at /srv"; };
    bench_.capture.noteUses = [&use](Facts& facts) {
        for (LogicalDriveFacts& volume : facts.logicalDrives) {
            volume.usedAs = volume.id == "236" ? use : "";
        }
    };
    EXPECT_EQ(refusedAfter([] {}), Lines{"controller 1: LD 236 (/dev/sdd): mounted at /srv"});
    bench_.listener.whenAsked = nullptr;
    use.clear();
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
}

/// The same where a run was killed before its consent stood in the journal.
TEST_F(StorcliDangers, WhatHappensWhileItIsAskedOnceMoreIsFound) {
    killBeforeConsentIsWritten();
    bench_.listener.answer = {true, "typed-serial", "", {}, true};
    bench_.listener.whenAsked = [this] { makeAnew(); };
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.exitCode, 3);
    EXPECT_EQ(end.what, "the machine has changed while it was asked for consent");
    EXPECT_EQ(end.code, "ZA102");
    EXPECT_EQ(bench_.system.started, Lines{});
}

/// The planner says so beforehand, and so does a reset.
TEST_F(StorcliDangers, WhatTheSystemUsesIsNotPlannedToGo) {
    Snapshot snapshot = bench_.server.snapshot();
    snapshot.details.front().facts.logicalDrives.front().usedAs = "mounted at /srv";
    snapshot.details.front().facts.logicalDrives.front().name = "data";
    const MachinePlan reset = planReset(snapshot, {}, "zolexctl reset");
    ASSERT_FALSE(reset.isApplicable());
    EXPECT_TRUE(reset.steps().empty());
    const Finding& finding = reset.controllers.front().diagnostics.front();
    EXPECT_EQ(finding.code, "ZP227");
    EXPECT_EQ(finding.summary, "LD 239 \"data\" (/dev/sda) stays: mounted at /srv");
    EXPECT_EQ(finding.help, Lines{"umount /srv"});
}

/// Drives that are counted name others when one is pulled.
TEST_F(StorcliDangers, NumbersAreDoubtedWhereSomethingIsDeleted) {
    const std::vector<Finding>& all = bench_.plan.controllers.front().warnings;
    const auto found = std::find_if(all.begin(), all.end(),
                                    [](const Finding& finding) { return finding.code == "ZX309"; });
    ASSERT_NE(found, all.end());
    EXPECT_EQ(found->summary,
              "Array.A names drives by number, and AppliesTo.1 gives no d:, while 3 logical "
              "drives are deleted: a drive that was pulled or added shifts the numbers behind it");
    EXPECT_EQ(found->help, Lines({"see that the numbers are those that are meant: zolexctl show",
                                  "add d:16, or name the drives by their slots: Drives.A = slots "
                                  "252:2,252:3,252:4,252:5"}));
}

/// A host adapter that is put in before it has its number now.
TEST_F(StorcliDangers, AControllerThatHasTheNumberOfAnotherIsFound) {
    const Lines told = {"controller 1 has the number 1 in the commands of STORCLI now, it had 0"};
    const auto putIn = [this] {
        Controller adapter;
        adapter.hostAdapter = true;
        adapter.pci.bus = 10;
        bench_.server.platform.server.storcliControllers.push_back(adapter);
    };
    EXPECT_EQ(refusedAfter(putIn), told);
    bench_.server.platform.server = initial_;
    interruptBehind(1);
    putIn();
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.exitCode, 3);
    EXPECT_EQ(end.what, "the plan's commands would reach another controller");
    EXPECT_EQ(end.details, told);
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(StorcliDangers, ANumberThatIsAnothersIsFoundWhenARunIsGoneOnWith) {
    interruptBehind(1);
    swapNumbers(0, 1);
    const Lines stood = bench_.layout();
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{
            "4: the logical drives of controller 1 have other numbers than the plan's commands say",
            "  LD 237 on 252:6 252:7 252:8 252:9 has the number 236 now",
            "  LD 236 on 252:6 252:7 252:8 252:9 has the number 237 now",
            "  remains: step 2: remove the spare 252:10",
            "  remains: step 3: delete LD 239: RAID1 on 252:0 252:1",
            "  remains: step 4: delete LD 237: RAID10 on 252:6 252:7 252:8 252:9",
            "  remains: step 5: delete LD 236: RAID10 on 252:6 252:7 252:8 252:9",
            "  remains: step 6: create B: RAID10 on 252:0 252:1 252:12 252:13",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 2 of 6: its logical drives have other numbers"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    EXPECT_EQ(bench_.layout(), stood);
}

/// A controller that is reset behind a delete numbers the others anew, in the middle of a run.
TEST_F(StorcliDangers, ANumberThatIsAnothersIsFoundWithinARun) {
    for (const bool isCareful : {false, true}) {
        bench_.server.platform.server = initial_;
        bench_.disk = {};
        bench_.system.restart();
        bench_.system.started.clear();
        bench_.terms.careful = isCareful;
        afterCommand(3, [this] { swapNumbers(1, 2); });
        EXPECT_EQ(
            endLines(bench_.apply()),
            (Lines{"4: step 4 of 6 was not begun: the logical drives of controller 1 have other "
                   "numbers than the plan's commands say",
                   "  LD 238 on 252:2 252:3 252:4 252:5 has the number 237 now",
                   "  LD 237 on 252:6 252:7 252:8 252:9 has the number 238 now",
                   "  remains: step 4: delete LD 237: RAID10 on 252:6 252:7 252:8 252:9",
                   "  remains: step 5: delete LD 236: RAID10 on 252:6 252:7 252:8 252:9",
                   "  remains: step 6: create B: RAID10 on 252:0 252:1 252:12 252:13",
                   "help: zolexctl plan site.ini plans from what is there",
                   "help: zolexctl apply --resume plan.journal.jsonl goes on when they are as they "
                   "were",
                   "controller 1: failed step 4 of 6: its logical drives have other numbers"}));
        EXPECT_EQ(bench_.system.started.size(), 3U);
        EXPECT_EQ(controller().volumes.size(), 3U);
        bench_.system.onMoment = nullptr;
        bench_.system.restart();
        EXPECT_EQ(bench_.resume().code, "ZA118");
        EXPECT_EQ(bench_.system.started.size(), 3U);
        swapNumbers(1, 2);
        bench_.system.restart();
        EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    }
}

/// Somebody deletes one himself while the run is at work, and makes another: with its number.
TEST_F(StorcliDangers, ANumberThatIsTakenWithinARunIsFound) {
    afterCommand(4, [this] {
        controller().remove(236);
        static_cast<void>(
            bench_.server.platform.play("STORCLI /c0 add vd r1 drives=252:12,252:13 J nolog"));
        for (zolex_sim::storcli::Volume& volume : controller().volumes) {
            volume.number = volume.number == 239 ? 236 : volume.number;
        }
        std::swap(controller().volumes.front(), controller().volumes.back());
    });
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.what, "step 5 of 6 was not begun: the logical drives of controller 1 have other "
                        "numbers than the plan's commands say");
    EXPECT_EQ(end.details.front(),
              "LD 236 is on 252:12 252:13 now, it was on 252:6 252:7 252:8 252:9");
    EXPECT_EQ(bench_.system.started.size(), 4U);
    EXPECT_EQ(controller().volumes.size(), 2U);
}

/// Each delete but the first is looked before, and only once.
TEST_F(StorcliDangers, WhatStandsIsReadBeforeWhatIsDeletedByNumber) {
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
    Lines lines;
    for (const std::string& line : bench_.events()) {
        if (line.starts_with("captured") || line.starts_with("step-started")) {
            lines.push_back(line);
        }
    }
    EXPECT_EQ(lines, (Lines{"captured guard", "step-started 1", "step-started 2", "step-started 3",
                            "captured step", "step-started 4", "captured step", "step-started 5",
                            "step-started 6", "captured verify"}));
}

/// What cannot be read there is not deleted.
TEST_F(StorcliDangers, WhatCannotBeReadBeforeADeleteIsNotDeleted) {
    const auto respond = bench_.server.platform.respond;
    afterCommand(3, [this, respond] {
        bench_.server.platform.respond = [respond](const std::string& line) {
            return line.find("/c0") == std::string::npos
                       ? respond(line)
                       : zolex::test::FakePlatform::ended(1, "no memory");
        };
    });
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.what, "what stands before step 4 of 6 could not be captured");
    EXPECT_EQ(bench_.system.started.size(), 3U);
    EXPECT_EQ(controller().volumes.size(), 3U);
    bench_.server.platform.respond = respond;
    bench_.system.onMoment = nullptr;
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

TEST_F(StorcliDangers, ADriveThatTheSystemHasByNowIsLeftToIt) {
    interruptBehind(1);
    drive(12).state = DriveState::jbod;
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: drives are not those that were planned for",
                     "  controller 1: drive 252:12 is not to be used now: it is a JBOD drive: "
                     "the system has it as it is",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 2 of 6: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

/// What the system is on is not deleted, and "force" is never said.
TEST_F(StorcliDangers, ALogicalDriveOfTheSystemStays) {
    controller().volumes[0].hasSystem = true;
    controller().volumes[0].device = "/dev/sda";
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"4: step 5 of 6 was refused (VD has OS/FS, use force to delete it. (error 255)): "
               "delete LD 236: RAID10 on 252:6 252:7 252:8 252:9",
               "  STORCLI /c0/v236 del J nolog",
               "  now on controller 1: array A stands, array B does not; still there: LD 236",
               "  remains: step 5: delete LD 236: RAID10 on 252:6 252:7 252:8 252:9",
               "  remains: step 6: create B: RAID10 on 252:0 252:1 252:12 252:13",
               "help: the system has files there; move them, or delete it by hand",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 5 of 6: VD has OS/FS, use force to delete it. (error "
               "255)"}));
    for (const std::string& line : bench_.system.started) {
        EXPECT_EQ(line.find("force"), std::string::npos) << line;
    }
    // Whoever means it deletes it, and the run goes on.
    controller().remove(controller().volumes[0].number);
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// Three arrays and two free drives; two of them stay, each with a spare of its own.
class StorcliSpares : public testing::Test {
  protected:
    StorcliSpares()
        : bench_(
              test::storcliServer("") +
              R"({"enclosure": 252, "slot": 0, "count": 12, "sectors": 41943040}], "virtualDrives": [
        {"level": "RAID1", "spans": [["252:0", "252:1"]]},
        {"level": "RAID5", "spans": [["252:2", "252:3", "252:4", "252:5"]]},
        {"level": "RAID5", "spans": [["252:6", "252:7", "252:8", "252:9"]]}]}]})") {}

    Controller& controller() { return bench_.server.platform.server.storcliControllers.front(); }
    /// Each of the two has the number of the other.
    void swapArrays(std::size_t one, std::size_t other) {
        std::swap(controller().groups[one], controller().groups[other]);
        const auto follow = [one, other](std::size_t& group) {
            group = group == one ? other : group == other ? one : group;
        };
        for (zolex_sim::storcli::Volume& volume : controller().volumes) {
            follow(volume.group);
        }
        for (zolex_sim::storcli::Drive& drive : controller().drives) {
            std::for_each(drive.groups.begin(), drive.groups.end(), follow);
        }
    }

    ApplyBench bench_;
};

/// Numbers of groups are positions here: a spare of one that stays is made before another goes.
TEST_F(StorcliSpares, OfAGroupThatStaysIsMadeBeforeAnotherGoes) {
    bench_.makePlan(test::storcliPolicies("Drives.A = slots 252:2,252:3,252:4,252:5\nLevel.A = 5\n"
                                          "Drives.B = slots 252:6,252:7,252:8,252:9\nLevel.B = 5\n"
                                          "Spares = 1 covering A and 1 covering B\n"),
                    StrategyWish::automatic, false);
    ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
    EXPECT_EQ(test::commandsOf(bench_.plan),
              (Lines{"STORCLI /c0/e252/s10 add hotsparedrive DGs=2 J nolog",
                     "STORCLI /c0/e252/s11 add hotsparedrive DGs=1 J nolog",
                     "STORCLI /c0/v239 del J nolog"}));
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
}

/// Their numbers change: each spare would be of the array of the other.
TEST_F(StorcliSpares, AreMadeOfNoArrayThatHasTheNumberOfAnother) {
    bench_.makePlan(
        test::storcliPolicies("Drives.A = slots 252:0,252:1\nLevel.A = 1\n"
                              "Drives.B = slots 252:2,252:3,252:4,252:5\nLevel.B = 5\n"
                              "Drives.C = slots 252:6,252:7,252:8,252:9\nLevel.C = 5\n"
                              "Spares = slots 252:10 covering A and slots 252:11 covering B\n"),
        StrategyWish::automatic, false);
    ASSERT_EQ(test::commandsOf(bench_.plan),
              (Lines{"STORCLI /c0/e252/s10 add hotsparedrive DGs=0 J nolog",
                     "STORCLI /c0/e252/s11 add hotsparedrive DGs=1 J nolog"}));
    swapArrays(1, 2);
    const ApplyEnd refused = bench_.apply();
    EXPECT_EQ(endLines(refused),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: array 1 on 252:2 252:3 252:4 252:5 has the number 2 now",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 2: not begun"}));
    EXPECT_EQ(refused.code, "ZA102");
    EXPECT_EQ(bench_.system.started, Lines{});
    // The same before a run is gone on with.
    swapArrays(1, 2);
    bench_.system.onMoment = [this](const std::string& moment) {
        bench_.system.isInterrupted = bench_.system.isInterrupted || moment == "ended";
    };
    EXPECT_EQ(bench_.apply().exitCode, 4);
    bench_.system.onMoment = nullptr;
    bench_.system.restart();
    swapArrays(1, 2);
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(
        endLines(end),
        (Lines{"4: the arrays of controller 1 have other numbers than the plan's commands say",
               "  array 1 on 252:2 252:3 252:4 252:5 has the number 2 now",
               "  remains: step 2: make 252:11 a spare of B",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 2 of 2: its arrays have other numbers"}));
    EXPECT_EQ(end.code, "ZA118");
    EXPECT_EQ(bench_.system.started.size(), 1U);
    // What the run names no more may have any number.
    swapArrays(1, 2);
    swapArrays(0, 2);
    bench_.system.restart();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// The array goes before the spare of another is made.
TEST_F(StorcliSpares, AreMadeOfNoArrayThatHasAnotherNumberOnTheWay) {
    bench_.makePlan(test::storcliPolicies("Drives.A = slots 252:0,252:1\nLevel.A = 1\n"
                                          "Drives.B = slots 252:2,252:3,252:4,252:5\nLevel.B = 5\n"
                                          "Drives.C = slots 252:6,252:7,252:8,252:9\nLevel.C = 6\n"
                                          "Spares = slots 252:10 covering A\n"),
                    StrategyWish::automatic, false);
    const Lines commands = test::commandsOf(bench_.plan);
    ASSERT_EQ(commands.size(), 3U);
    ASSERT_EQ(commands.back(), "STORCLI /c0/e252/s10 add hotsparedrive DGs=0 J nolog");
    std::size_t ended = 0;
    bench_.system.onMoment = [this, &ended](const std::string& moment) {
        if (moment == "ended" && ++ended == 2) {
            swapArrays(0, 1);
        }
    };
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.what, "step 3 of 3 was not begun: the arrays of controller 1 have other numbers "
                        "than the plan's commands say");
    EXPECT_EQ(end.details.front(), "array 0 on 252:0 252:1 has the number 1 now");
    EXPECT_EQ(bench_.system.started.size(), 2U);
}

/// A spare that is of another array than planned is told by what people call that one.
TEST_F(StorcliSpares, AreToldByTheArraysOfThePolicies) {
    bench_.makePlan(test::storcliPolicies("Drives.A = slots 252:0,252:1\nLevel.A = 1\n"
                                          "Drives.B = slots 252:2,252:3,252:4,252:5\nLevel.B = 5\n"
                                          "Drives.C = slots 252:6,252:7,252:8,252:9\nLevel.C = 5\n"
                                          "Spares = slots 252:10 covering B\n"),
                    StrategyWish::automatic, false);
    bench_.system.onMoment = [this](const std::string& moment) {
        if (moment == "ended") {
            controller().drives[10].groups = {2};
        }
    };
    EXPECT_EQ(bench_.apply().details,
              Lines{"252:10, hotspare_type: planned is dedicated to B; found is dedicated to C"});
}

/// The command clears whatever is foreign, and not what was agreed to alone.
TEST(StorcliForeign, WhatBecameForeignOnTheWayIsNotCleared) {
    ApplyBench bench(test::storcliServer("") + test::usedDrives + "]}]}");
    bench.makePlan(test::storcliPolicies("Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\n"
                                         "Array_Defaults = 0%:0\nArray.A = 11,12,13,14,15,16\n"
                                         "Logical.1 = A:FILL:6\n"),
                   StrategyWish::automatic, false);
    const Lines commands = test::commandsOf(bench.plan);
    const auto clear = std::find(commands.begin(), commands.end(), "STORCLI /c0/fall del J nolog");
    ASSERT_NE(clear, commands.end());
    ASSERT_NE(clear, commands.begin());
    const auto before = static_cast<std::size_t>(clear - commands.begin());
    Controller& controller = bench.server.platform.server.storcliControllers.front();
    std::size_t ended = 0;
    bench.system.onMoment = [&](const std::string& moment) {
        if (moment == "ended" && ++ended == before) {
            zolex_sim::storcli::Drive& drive = controller.drives[13];
            drive.state = DriveState::foreign;
            controller.foreignSets.push_back(
                {zolex_sim::storcli::Level::raid0, 1000, 1, 0, {drive.place}});
        }
    };
    const ApplyEnd end = bench.apply();
    const std::string step = std::to_string(before + 1);
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.what, "step " + step + " of " + std::to_string(commands.size()) +
                            " was not begun: what is foreign is not what was agreed to be cleared");
    EXPECT_EQ(end.details.front(), "controller 1: drive 252:13 is foreign now, it was not");
    EXPECT_EQ(end.code, "ZA102");
    EXPECT_EQ(bench.system.started.size(), before);
    EXPECT_EQ(controller.foreignSets.size(), 2U);
    bench.system.onMoment = nullptr;
    controller.foreignSets.pop_back();
    controller.drives[13].state = DriveState::good;
    bench.system.restart();
    EXPECT_EQ(endLines(bench.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// Two controllers that are set up alike; a RAID 5 comes on each in the place of a mirror.
class StorcliPair : public testing::Test {
  protected:
    StorcliPair() : bench_(definition()) {
        bench_.makePlan(test::storcliPolicies("Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\n"
                                              "Array_Defaults = 0%:0\nArray.A = 1,2\n"
                                              "Array.B = 3,4,5\nLogical.1 = A:FILL:1\n"
                                              "Logical.2 = B:FILL:5\n"),
                        StrategyWish::automatic, false);
    }

    static std::string definition() {
        std::string text = R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [)";
        for (const char* const bus : {"193", "194"}) {
            text += text.ends_with("[") ? "" : ", ";
            text += std::string(R"({"utility": "STORCLI", "serialNumber": "SV)") + bus +
                    R"(", "pci": {"bus": )" + bus +
                    R"(}, "drives": [{"enclosure": 252, "slot": 0, "count": 6,
                    "sectors": 41943040}], "virtualDrives": [
                    {"level": "RAID1", "spans": [["252:0", "252:1"]]},
                    {"level": "RAID1", "spans": [["252:2", "252:3"]]}]})";
        }
        return text + "]}";
    }

    Controller& second() { return bench_.server.platform.server.storcliControllers.back(); }

    /// What an apply comes to when this happens while the first controller is worked on.
    ApplyEnd applyWith(const std::function<void()>& change) {
        bench_.system.onMoment = [change,
                                  ended = std::make_shared<int>(0)](const std::string& moment) {
            if (moment == "ended" && ++*ended == 2) {
                change();
            }
        };
        const ApplyEnd end = bench_.apply();
        bench_.system.onMoment = nullptr;
        EXPECT_EQ(end.exitCode, 4) << testing::PrintToString(endLines(end));
        EXPECT_EQ(end.results.front().result, ControllerResult::Result::configured);
        EXPECT_EQ(end.results.back().result, ControllerResult::Result::failed);
        EXPECT_EQ(bench_.system.started.size(), 2U);
        bench_.system.restart();
        return end;
    }

    ApplyBench bench_;
};

TEST_F(StorcliPair, TheOtherIsLookedAtAgainBeforeItIsWorkedOn) {
    ASSERT_EQ(test::commandsOf(bench_.plan),
              (Lines{"STORCLI /c0/v238 del J nolog",
                     "STORCLI /c0 add vd r5 drives=252:2,252:3,252:4 J nolog",
                     "STORCLI /c1/v238 del J nolog",
                     "STORCLI /c1 add vd r5 drives=252:2,252:3,252:4 J nolog"}));
    // Another logical drive under the number of the one that goes, on other drives.
    const ApplyEnd end = applyWith([this] {
        second().remove(238);
        static_cast<void>(
            bench_.server.platform.play("STORCLI /c1 add vd r1 drives=252:4,252:5 J nolog"));
    });
    EXPECT_EQ(end.what, "step 3 of 4 was not begun: the logical drives of controller 2 have other "
                        "numbers than the plan's commands say");
    EXPECT_EQ(end.details.front(), "LD 238 is on 252:4 252:5 now, it was on 252:2 252:3");
    EXPECT_EQ(second().volumes.size(), 2U);
}

TEST_F(StorcliPair, OnTheOtherADriveIsAnotherByThen) {
    const ApplyEnd end = applyWith([this] { second().drives[4].serial = "OTHER"; });
    EXPECT_EQ(end.what, "step 3 of 4 was not begun: controller 2 has changed since it was planned "
                        "for");
    EXPECT_EQ(end.details.front().substr(0, 57),
              "controller 2: drive 252:4: serial number OTHER in the pla");
    EXPECT_EQ(end.code, "ZA102");
}

TEST_F(StorcliPair, OnTheOtherAnArrayThatStaysIsOfflineByThen) {
    const ApplyEnd end = applyWith([this] {
        second().drives[0].state = DriveState::failed;
        second().drives[1].state = DriveState::failed;
    });
    EXPECT_EQ(second().volumes.size(), 2U) << end.what;
    second().drives[0].state = DriveState::online;
    second().drives[1].state = DriveState::online;
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"0: ", "controller 1: configured", "controller 2: configured"}));
}

TEST_F(StorcliPair, IsReadOnceMoreForEach) {
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"0: ", "controller 1: configured", "controller 2: configured"}));
    Lines lines;
    for (const std::string& line : bench_.events()) {
        if (line.starts_with("captured") || line.starts_with("step-started")) {
            lines.push_back(line);
        }
    }
    EXPECT_EQ(lines,
              (Lines{"captured guard", "step-started 1", "step-started 2", "captured step",
                     "captured step", "step-started 3", "step-started 4", "captured verify"}));
}

/// Its state is a word that nobody knows by now: nobody has agreed to the loss of that.
TEST_F(StorcliDangers, WhatHasAnUnknownStateIsNotDeleted) {
    const auto respond = bench_.server.platform.respond;
    const auto say = [respond](const std::string& line) {
        ChildResult result = respond(line);
        std::size_t at = result.output.find("\"237/"); // none: volumes stand by groups
        at = at == std::string::npos ? result.output.find("/237\"") : at;
        while (at != std::string::npos) {
            const std::size_t state = result.output.find("\"Optl\"", at);
            if (state != std::string::npos) {
                result.output.replace(state, 6, "\"Zork\"");
            }
            at = result.output.find("/237\"", at + 1);
        }
        return result;
    };
    const Lines told = refusedAfter([this, say] { bench_.server.platform.respond = say; });
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front(),
              "controller 1: LD 237 (/dev/sdc) is not deleted: its state is not known: Zork");
}

/// The utility does not know "nolog": each command is run once more without it.
TEST(StorcliNolog, IsNotKnown) {
    ApplyBench bench(test::storcliServer(R"(, "refusesNolog": true)") + test::freeDrives + "]}]}");
    bench.makePlan(test::storcliPolicies("Drives.A = slots 252:0,252:1\nLevel.A = 1\n"),
                   StrategyWish::automatic, false);
    EXPECT_EQ(endLines(bench.apply()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench.system.started, (Lines{"STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog",
                                           "STORCLI /c0 add vd r1 drives=252:0,252:1 J"}));
    const auto ended = bench.eventsOf<JournalStepEnded>();
    ASSERT_EQ(ended.size(), 2U);
    EXPECT_EQ(ended[0].reason, "Un-supported Command (error 255)");
    EXPECT_EQ(ended[0].instead, "STORCLI /c0 add vd r1 drives=252:0,252:1 J");
    EXPECT_EQ(ended[1].reason + ended[1].instead, "");
}

} // namespace
} // namespace zolex::companion
