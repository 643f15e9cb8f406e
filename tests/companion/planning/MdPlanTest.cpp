// Plans for the arrays of Linux itself, over machines that are made up.

#include "FamilyServer.h"
#include "companion/families/md/DiskList.h"
#include "companion/families/md/MdCommands.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Utilities.h"
#include "companion/planning/ResetPlan.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace zolex::companion {
namespace {

constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30U;

/// A Linux machine with drives "ata-1", "ata-2", ...
struct LinuxMachine {
    md::DiskList list;
    std::vector<std::string> lines; ///< that were run

    explicit LinuxMachine(int drives) {
        for (int i = 1; i <= drives; ++i) {
            md::ListedDisk& disk = list.disks.emplace_back();
            disk.name = "sd" + std::string(1, static_cast<char>('a' + i - 1));
            disk.id = "ata-" + std::to_string(i);
            disk.serialNumber = "S" + std::to_string(i);
            disk.bytes = 100 * gibibyte;
            disk.channel = 0;
            disk.target = i;
        }
    }

    md::ListedArray& addArray(const std::string& name, const std::string& level,
                              const std::vector<std::size_t>& drives) {
        md::ListedArray& array = list.arrays.emplace_back();
        array.node = "md" + std::to_string(127 - list.arrays.size());
        array.name = name;
        array.uuid = "uuid-" + name;
        array.level = level;
        array.version = "1.2";
        array.state = "clean";
        array.syncAction = "idle";
        array.raidDisks = static_cast<std::uint32_t>(drives.size());
        array.bytes = 100 * gibibyte;
        array.isOurs = true;
        std::uint32_t slot = 0;
        for (const std::size_t drive : drives) {
            md::ListedDisk& disk = list.disks.at(drive - 1);
            disk.array = array.node;
            disk.arrayState = "in_sync";
            disk.arraySlot = slot;
            disk.superblock.emplace();
            disk.superblock->uuid = array.uuid;
            disk.superblock->name = name;
            disk.superblock->role = slot++;
            array.members.push_back(disk.name);
        }
        return array;
    }

    Snapshot capture(const std::vector<std::string>& families = {"MD"}) {
        zolex::test::FakePlatform platform;
        platform.respond = [this](const std::string& line) {
            lines.push_back(line);
            ChildResult result;
            result.outcome = ChildOutcome::ended;
            if (line == md::drivesLine) {
                result.output = toText(list);
            } else if (line == md::versionLine) {
                result.output = "mdadm - v4.2\n";
            } else {
                for (const md::ListedArray& array : list.arrays) {
                    if (line == (array.node.empty() ? md::examineLine(array.members[0])
                                                    : md::detailLine(array.node))) {
                        result.output = "MD_UUID=" + array.uuid + "\nMD_NAME=" + array.name + "\n";
                    }
                }
            }
            return result;
        };
        Utilities utilities;
        utilities.programs["MD"] = "/sbin/mdadm";
        CaptureRequest request;
        request.machineType = "R750";
        request.serialNumber = "ABC123";
        request.asksFamilies = true;
        request.families = families;
        request.utilities = &utilities;
        return captureMachine(platform, request);
    }

    MachinePlan plan(const std::string& entries, StrategyWish strategy = StrategyWish::automatic) {
        PlanRequest request;
        request.policiesFile = "md.ini";
        request.policiesText = "[Policy.md]\nAppliesTo.1 = t:MD\nArray_Mode = CUSTOM\n"
                               "Logical_Mode = CUSTOM\n" +
                               entries;
        request.strategy = strategy;
        return planMachine(capture(), request);
    }
};

std::string told(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += finding.code + ": " + finding.summary + "\n";
    }
    return text;
}

TEST(MdPlan, NothingIsLookedAtUnlessItIsAskedFor) {
    LinuxMachine machine(4);
    EXPECT_TRUE(machine.capture({}).details.empty());
    for (const std::string& line : machine.lines) {
        EXPECT_NE(line.substr(0, 2), "MD") << line;
    }
    EXPECT_EQ(machine.capture().details.size(), 1U);
}

TEST(MdPlan, AnArrayThatDoesNotRunIsTold) {
    LinuxMachine machine(2);
    machine.addArray("zolex-a", "raid1", {1, 2});
    const std::string policies = "Array.A = 1,2\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:1\n";
    const MachinePlan runs = machine.plan(policies);
    EXPECT_EQ(runs.controllers.at(0).disposition, Disposition::already);
    EXPECT_EQ(told(runs.controllers.at(0).warnings), "");
    machine.list.arrays[0].node.clear();
    for (md::ListedDisk& disk : machine.list.disks) {
        disk.array.clear();
    }
    const ControllerPlanning planning = machine.plan(policies).controllers.at(0);
    EXPECT_EQ(planning.disposition, Disposition::already);
    ASSERT_EQ(planning.warnings.size(), 1U);
    EXPECT_EQ(planning.warnings[0].summary, "LD zolex-a is stopped");
    EXPECT_EQ(planning.warnings[0].help,
              std::vector<std::string>{"start it: mdadm --assemble --scan"});
}

TEST(MdPlan, OnlyAPolicyThatNamesItHolds) {
    LinuxMachine machine(4);
    PlanRequest request;
    request.policiesFile = "md.ini";
    for (const char* const applies : {"d:4", "c:1", "ALL"}) {
        request.policiesText = std::string("[Policy.any]\nAppliesTo.1 = ") + applies + "\n";
        const ControllerPlanning planning =
            planMachine(machine.capture(), request).controllers.at(0);
        EXPECT_EQ(planning.disposition, Disposition::skipped) << applies;
        EXPECT_EQ(planning.because, "no policy names it: AppliesTo.1 = t:MD") << applies;
    }
    request.policiesText = "[Policy.any]\nAppliesTo.1 = d:4,t:MD\n";
    EXPECT_EQ(planMachine(machine.capture(), request).controllers.at(0).disposition,
              Disposition::planned);
    request.classDefaults = true;
    EXPECT_EQ(planMachine(machine.capture(), request).controllers.at(0).disposition,
              Disposition::skipped);
}

TEST(MdPlan, ASpareIsOfTheFirstArrayThatHasNone) {
    LinuxMachine machine(9);
    const MachinePlan plan = machine.plan("Array.A = 1,2\nArray.B = 3,4\nArray.C = 5,6\n"
                                          "Hotspares = 7,8,9\nLogical.1 = A:FILL:0\n"
                                          "Logical.2 = B:FILL:1\nLogical.3 = C:FILL:1\n");
    const ControllerPlanning& planning = plan.controllers.at(0);
    ASSERT_EQ(planning.disposition, Disposition::planned) << told(planning.diagnostics);
    std::string spares;
    for (const PlannedSpare& spare : planning.spares) {
        spares += spare.location + " " + (spare.covers.empty() ? "-" : spare.covers.front()) + "\n";
    }
    EXPECT_EQ(spares, "ata-7 B\nata-8 C\nata-9 B\n");
    const std::string warnings = told(planning.diagnostics) + told(planning.warnings);
    EXPECT_NE(warnings.find("ZP209: the hot spare ata-7 is made one of array B alone, and not of "
                            "C\n"),
              std::string::npos)
        << warnings;
    EXPECT_EQ(planning.steps.size(), 3U);
    EXPECT_NE(planning.steps.at(1).command.find("--spare-devices=2"), std::string::npos);
}

TEST(MdPlan, ASpareOfNoArrayIsRefused) {
    LinuxMachine machine(3);
    const MachinePlan plan = machine.plan("Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:0\n");
    EXPECT_EQ(plan.controllers.at(0).disposition, Disposition::refused);
    EXPECT_EQ(told(plan.controllers.at(0).diagnostics),
              "ZP226: the hot spare ata-3 can stand in for no array\n");
}

TEST(MdPlan, ADriveInUseIsRefusedWithItsReason) {
    LinuxMachine machine(2);
    machine.list.disks[1].why = "in use: mounted at /srv";
    const MachinePlan plan =
        machine.plan("Array.A = 1,2\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:1\n");
    EXPECT_EQ(plan.controllers.at(0).disposition, Disposition::refused);
    EXPECT_EQ(told(plan.controllers.at(0).diagnostics),
              "ZX702: Array.A names ata-2: in use: mounted at /srv\n");
    EXPECT_EQ(plan.controllers.at(0).diagnostics.at(0).help.at(0),
              "take it out of the policy; or, if nobody needs it, clear it with what made it (or "
              "wipefs), and plan again");
    EXPECT_EQ(plan.controllers.at(0).controller.facts.drives.at(1).reportedState,
              "in use: mounted at /srv");
}

TEST(MdPlan, AFailedMemberStandsWhereItWas) {
    LinuxMachine machine(3);
    machine.addArray("zolex-a", "raid5", {1, 2, 3}).bytes = 200 * gibibyte;
    const std::string policy = "Array.A = 1,2,3\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:5\n";
    EXPECT_EQ(machine.plan(policy).controllers.at(0).disposition, Disposition::already);
    machine.list.disks[1].arrayState = "faulty";
    machine.list.disks[1].arraySlot.reset();
    const MachinePlan plan = machine.plan(policy);
    const ControllerPlanning& planning = plan.controllers.at(0);
    EXPECT_EQ(planning.disposition, Disposition::already) << told(planning.diagnostics);
    EXPECT_NE(told(planning.warnings).find("ZP208"), std::string::npos) << told(planning.warnings);
    const LogicalDriveFacts& volume = planning.controller.facts.logicalDrives.at(0);
    EXPECT_EQ(volume.reportedState, "degraded");
    EXPECT_EQ(volume.spans, (std::vector<std::vector<std::string>>{{"ata-1", "ata-2", "ata-3"}}));
}

TEST(MdPlan, WhatIsHeldStaysAndIsNamed) {
    LinuxMachine machine(4);
    machine.addArray("zolex-a", "raid1", {1, 2});
    machine.addArray("zolex-b", "raid1", {3, 4}).whyNotStopped = "mounted at /srv";
    const std::string stays = "ZP221: LD zolex-b stays: mounted at /srv\n";
    const MachinePlan plan = machine.plan(
        "Array.A = 1,2,3,4\nArray_Defaults = 0%:0\nLogical.1 = A:FILL:5\n", StrategyWish::rebuild);
    EXPECT_EQ(plan.controllers.at(0).disposition, Disposition::refused);
    EXPECT_EQ(told(plan.controllers.at(0).diagnostics), stays);
    EXPECT_TRUE(plan.steps().empty());
    const MachinePlan reset = planReset(machine.capture(), {}, "zolexctl reset");
    EXPECT_FALSE(reset.isApplicable());
    EXPECT_EQ(told(reset.controllers.at(0).diagnostics), stays);
    EXPECT_TRUE(reset.steps().empty());
}

/// Whatever is planned, mdadm is never forced, and is told of drives that are free by the names
/// that stay.
TEST(MdPlan, NoPlanForcesMdadm) {
    std::mt19937 chance(17);
    const auto below = [&chance](int count) {
        return static_cast<int>(chance() % static_cast<unsigned>(count));
    };
    int planned = 0;
    int refused = 0;
    for (int round = 0; round < 300; ++round) {
        const int count = 2 + below(12);
        LinuxMachine machine(count);
        std::set<std::string> free;
        for (md::ListedDisk& disk : machine.list.disks) {
            disk.bytes -= below(20) == 0 ? 5 * gibibyte : 0;
            disk.why = below(40) == 0 ? "in use: it carries LVM2" : "";
            if (disk.why.empty()) {
                free.insert("/dev/disk/by-id/" + disk.id);
            }
        }
        std::string policy;
        int next = 1;
        for (const char letter : {'A', 'B', 'C'}) {
            const int size = 2 + below(4);
            if (next + size - 1 > count) {
                break;
            }
            // Levels by the number of drives that they begin with; now and then any.
            constexpr const char* levels[] = {"0", "1", "5", "6", "10", "1E"};
            const int known = size == 2 ? 2 : size == 3 ? 3 : 4;
            const char* const level = levels[below(below(10) == 0 ? 6 : known)];
            const std::string name(1, letter);
            policy += "Array." + name + " = ";
            for (int i = 0; i < size; ++i) {
                policy += (i == 0 ? "" : ",") + std::to_string(next++);
            }
            policy += "\nLogical." + std::to_string(letter - 'A' + 1) + " = " + name +
                      (below(5) == 0 ? ":20000:" : ":FILL:") + level + "\n";
        }
        policy += next <= count && below(2) == 0 ? "Hotspares = " + std::to_string(next) + "\n"
                                                 : "Array_Defaults = 0%:0\n";
        policy += below(2) == 0 ? "StripeSize = 64\n" : "";
        const MachinePlan plan = machine.plan(policy);
        const std::vector<PlanStep> steps = plan.steps();
        (steps.empty() ? refused : planned) += 1;
        std::set<std::string> used;
        for (const PlanStep& step : steps) {
            ASSERT_EQ(step.argv.at(0), "MD");
            ASSERT_EQ(step.argv.at(1), "--create");
            EXPECT_TRUE(md::commandFrom(step.command)) << step.command;
            for (std::size_t i = 3; i < step.argv.size(); ++i) {
                const std::string& word = step.argv[i];
                const bool isOption = word.starts_with("--");
                EXPECT_TRUE(isOption || free.contains(word)) << step.command;
                EXPECT_TRUE(isOption || used.insert(word).second) << step.command;
                EXPECT_TRUE(word != "--run" && word != "--force" && word != "--assume-clean" &&
                            word != "-R" && word != "-f")
                    << step.command;
            }
        }
    }
    EXPECT_GT(planned, 50);
    EXPECT_GT(refused, 50);
}

} // namespace
} // namespace zolex::companion
