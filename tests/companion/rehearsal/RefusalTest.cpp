// What the utilities refuse is told beforehand, in their own words.

#include "companion/rehearsal/HandMadePlan.h"
#include "companion/rehearsal/Rehearse.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::handMadePlan;
using test::megaRaid;
using test::snapshotOf;
using test::step;

MachinePlan rehearsed(std::string_view definition, std::vector<PlanStep> steps) {
    const Snapshot snapshot = snapshotOf(definition);
    MachinePlan plan = handMadePlan(snapshot, std::move(steps));
    plan.consent = "7Q4K-2M9D";
    plan.policiesFile = "site.ini";
    rehearse(snapshot, plan);
    return plan;
}

std::string onlyFinding(const MachinePlan& plan) {
    const std::vector<Finding>& found = plan.controllers.front().diagnostics;
    if (found.size() != 1) {
        return std::to_string(found.size()) + " findings";
    }
    return found.front().code + " " + found.front().summary + "\n" + found.front().detail;
}

TEST(Refusal, TellsTheStepTheLineAndTheUtilitysWords) {
    const MachinePlan plan =
        rehearsed(megaRaid, {step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:2] -a0"),
                             step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:0] -a0"),
                             step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:3] -a0")});
    const ControllerPlanning& planning = plan.controllers.front();
    ASSERT_EQ(planning.diagnostics.size(), 1U);
    const Finding& finding = planning.diagnostics.front();
    EXPECT_EQ(finding.code, "ZP240");
    EXPECT_EQ(finding.severity, Severity::error);
    EXPECT_EQ(finding.refusedBy, RefusedBy::plan);
    EXPECT_EQ(finding.summary, "step 2 would be refused: exit code 38");
    EXPECT_EQ(finding.detail, "UTIL.BAT MEGACLI -CfgLdAdd R0 [32:0] -a0\n"
                              "Adapter 0: Configure Adapter Failed\n"
                              "FW error description:\n"
                              "The physical disk at 32:0 is not free: it is online.\n"
                              "Exit Code: 0x26");
    EXPECT_EQ(finding.help, (std::vector<std::string>{
                                "change what the utility names, and try it: zolexctl plan site.ini",
                                "look at its drives: zolexctl show --controller 1"}));
    EXPECT_EQ(planning.disposition, Disposition::refused);
    EXPECT_EQ(planning.because, "step 2 would be refused: exit code 38");
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_TRUE(plan.steps().empty());
    EXPECT_EQ(plan.consent, "");
    EXPECT_TRUE(plan.rehearsal.done);
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.faultsTried, 0);
}

/// A command line, the exit code and the reason.
struct Refused {
    const char* name;
    const char* options;
    int exitCode;
    const char* reason;
};

class MegacliRefusal : public testing::TestWithParam<Refused> {};

TEST_P(MegacliRefusal, IsTold) {
    const std::string line = std::string("UTIL.BAT MEGACLI ") + GetParam().options;
    const std::string found = onlyFinding(rehearsed(megaRaid, {step(line)}));
    EXPECT_EQ(found.substr(0, found.find('\n')),
              "ZP240 step 1 would be refused: exit code " + std::to_string(GetParam().exitCode));
    EXPECT_NE(found.find("\n" + line + "\n"), std::string::npos) << found;
    EXPECT_NE(found.find(std::string("\n") + GetParam().reason + "\n"), std::string::npos) << found;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Kinds, MegacliRefusal, testing::Values(
    Refused{"memberOfAnArray", "-CfgLdAdd R0 [32:1] -a0", 38, "The physical disk at 32:1 is not free: it is online."},
    Refused{"failedDrive", "-CfgLdAdd R0 [32:6] -a0", 38, "The physical disk at 32:6 is not free: it is failed."},
    Refused{"hotSpare", "-CfgLdAdd R0 [32:7] -a0", 38, "The physical disk at 32:7 is not free: it is hotspare."},
    Refused{"spareOfAMember", "-PDHSP { -Set } -PhysDrv[ 32:0 ] -a0", 38, "The physical disk at 32:0 is not free: it is online."},
    Refused{"namedTwice", "-CfgLdAdd R0 [32:2,32:2] -a0", 3, "The physical disk at 32:2 is named twice."},
    Refused{"noSuchDrive", "-CfgLdAdd R0 [32:9] -a0", 12, "There is no physical disk at 32:9."},
    Refused{"noSuchEnclosure", "-CfgLdAdd R0 [:2] -a0", 12, "There is no physical disk at :2."},
    Refused{"level", "-CfgLdAdd R6 [32:2,32:3,32:4,32:5] -a0", 60, "RAID6 is not supported by this controller."},
    Refused{"numberOfDrives", "-CfgLdAdd R5 [32:2,32:3] -a0", 27, "RAID5 takes 3 to 32 physical disks in a span, not 2."},
    Refused{"stripSize", "-CfgLdAdd R0 [32:2] -strpsz 256 -a0", 28, "A stripe size of 256 kB is not supported."},
    Refused{"size", "-CfgLdAdd R0 [32:2] -sz70007 -a0", 29, "A size of 70007 MB does not fit: the array has room for 70006 MB."},
    Refused{"noRoomLeft", "-CfgLdAdd R1 [32:0,32:1] -a0", 29, "A size of 0 MB does not fit: the array has room for 0 MB."},
    Refused{"noSuchLogicalDrive", "-CfgLdDel -L5 -a0", 12, "There is no virtual disk 5."},
    Refused{"noHotSpare", "-PDHSP -Rmv -PhysDrv[32:2] -a0", 50, "The physical disk at 32:2 is no hot spare: it is good."},
    Refused{"otherAdapter", "-CfgLdAdd R0 [32:2] -a1", 1, "User specified controller is not present."},
    Refused{"notUnderstood", "-CfgLdAdd R0 32:2 -a0", 1, "Invalid input at or near token 32:2"}),
    [](const auto& row) { return std::string(row.param.name); });
// clang-format on

TEST(Refusal, MoreThanAControllerTakes) {
    const std::string definition = R"({"machineType": "8837", "serialNumber": "KQ1",
        "controllers": [{"utility": "CFGGEN", "model": "LSI-1064", "productName": "SAS1064",
        "pci": {"bus": 3, "device": 1, "vendorId": "0x1000", "deviceId": "0x0050"},
        "drives": [{"enclosure": 1, "slot": 0, "count": 7, "sizeMB": 70006}]}]})";
    EXPECT_EQ(onlyFinding(rehearsed(definition,
                                    {step("UTIL.BAT CFGGEN 0 CREATE IM MAX 1:0 1:1 NOPROMPT"),
                                     step("UTIL.BAT CFGGEN 0 CREATE IM MAX 1:2 1:3 NOPROMPT"),
                                     step("UTIL.BAT CFGGEN 0 CREATE IM MAX 1:4 1:5 NOPROMPT")})),
              "ZP240 step 3 would be refused: exit code 1\n"
              "UTIL.BAT CFGGEN 0 CREATE IM MAX 1:4 1:5 NOPROMPT\n"
              "LSI Logic IR Configuration Utility 2.00.15\n"
              "ERROR: The controller takes no more than 2 virtual disks.\n"
              "Command CREATE Failed.");
    EXPECT_EQ(onlyFinding(rehearsed(definition, {step("UTIL.BAT CFGGEN 0 HOTSPARE 1:0"),
                                                 step("UTIL.BAT CFGGEN 0 HOTSPARE 1:1"),
                                                 step("UTIL.BAT CFGGEN 0 HOTSPARE 1:2")})),
              "ZP240 step 3 would be refused: exit code 1\n"
              "UTIL.BAT CFGGEN 0 HOTSPARE 1:2\n"
              "LSI Logic IR Configuration Utility 2.00.15\n"
              "ERROR: The controller takes no more than 2 hot spares.\n"
              "Command HOTSPARE Failed.");
}

TEST(Refusal, AnotherUtilitysWordsAreToldToo) {
    const std::string found = onlyFinding(rehearsed(
        "arcconf", {step("/opt/tools/arcconf CREATE 1 LOGICALDRIVE MAX 5 0 0 0 1 NOPROMPT")}));
    EXPECT_EQ(found, "ZP240 step 1 would be refused: exit code 1\n"
                     "/opt/tools/arcconf CREATE 1 LOGICALDRIVE MAX 5 0 0 0 1 NOPROMPT\n"
                     "Controllers found: 1\n"
                     "RAID5 takes 3 to 32 physical disks in a span, not 2.\n"
                     "Command aborted.");
}

TEST(Refusal, AStepThatIsToChangeSomethingDoes) {
    EXPECT_EQ(
        onlyFinding(rehearsed(megaRaid, {step("UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT")})),
        "ZP241 step 1 would change nothing\n"
        "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT");
}

TEST(Refusal, TheEndIsAsPlanned) {
    const Snapshot snapshot = snapshotOf(megaRaid);
    MachinePlan plan = handMadePlan(snapshot, {step("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT", true)});
    rehearse(snapshot, plan);
    EXPECT_EQ(onlyFinding(plan),
              "ZP242 the commands would end in another layout than planned\n"
              "LD 0, missing: would be none; planned is RAID1 fill, strip 64 KB, write-through, "
              "no read-ahead: 32:0 32:1\n"
              "32:7, missing: would be none; 32:7 is free; planned is hot spare");
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
}

TEST(Refusal, AllFaultsOfAllControllersAreTold) {
    const Snapshot snapshot = snapshotOf("two-controllers");
    MachinePlan plan = handMadePlan(snapshot, {step("UTIL.BAT MEGACLI -Nonsense -a0")});
    plan.controllers.push_back(plan.controllers.front());
    plan.controllers.back().controller = snapshot.details.at(1);
    rehearse(snapshot, plan);
    EXPECT_EQ(plan.controllers.at(0).disposition, Disposition::refused);
    EXPECT_EQ(plan.controllers.at(1).disposition, Disposition::refused);
}

TEST(Refusal, LongAnswersAreCutAndBlankLinesLeftOut) {
    const Snapshot snapshot = snapshotOf("arcconf");
    PlanStep listing = step("UTIL.BAT ARCCONF GETCONFIG 1 AL");
    listing.acceptedExitCodes = {7};
    MachinePlan plan = handMadePlan(snapshot, {listing});
    rehearse(snapshot, plan);
    const std::string found = onlyFinding(plan);
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), 13) << found;
    EXPECT_EQ(found.find("\n\n"), std::string::npos);
}

TEST(Refusal, APlanThatIsRefusedAnywayIsNotRehearsed) {
    const Snapshot snapshot = snapshotOf(megaRaid);
    MachinePlan plan = handMadePlan(snapshot, {step("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT", true)});
    plan.controllers.front().disposition = Disposition::refused;
    rehearse(snapshot, plan);
    EXPECT_FALSE(plan.rehearsal.done);
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(
        plan.rehearsal.notDoneBecause,
        std::vector<std::string>{"not rehearsed: the plan cannot be carried out as it stands"});
    EXPECT_EQ(plan.controllers.front().steps.front().expectedAfter, "");
}

} // namespace
} // namespace zolex::companion
