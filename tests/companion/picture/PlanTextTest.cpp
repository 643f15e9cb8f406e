#include "companion/picture/PlanText.h"

#include "companion/picture/PlainStyle.h"
#include "companion/picture/TextLines.h"
#include "companion/support/ExamplePlan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>

namespace zolex::companion {
namespace {

using test::exampleDrive;
using test::exampleFinding;
using test::exampleGroup;
using test::exampleLogicalDrive;
using test::exampleNothingToDoPlan;
using test::examplePlan;
using test::exampleRefusedPlan;
using test::makeMember;
using test::mb;

PlanTextTerms saved() {
    PlanTextTerms terms;
    terms.savedTo = "plan.json";
    return terms;
}

std::string withoutColours(const std::string& text) {
    std::string bare;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\033') {
            i = text.find('m', i);
        } else {
            bare += text[i];
        }
    }
    return bare;
}

/// The first line that is wider, or nothing.
std::string widerLine(const std::string& text, std::size_t width) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        const bool isToBeTyped = line.substr(0, 11) == "  zolexctl ";
        if (columnsOf(line) > width && !isToBeTyped) {
            return std::string(line);
        }
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    return {};
}

/// A utility that only clears everything, a removed spare, a foreign drive, a failed one, bound
/// drives, pauses; a controller without a policy; one that is as planned.
MachinePlan rarePlan() {
    MachinePlan plan = examplePlan();
    ControllerPlanning& first = plan.controllers[0];
    first.controller.utility = "CFGGEN";
    std::vector<MachineDrive>& drives = first.controller.drives;
    drives[5].facts.state = DriveState::hotspare;
    drives[5].facts.hotspare = HotspareKind::global;
    drives[6].facts.state = DriveState::foreign;
    drives.push_back(exampleDrive(32, 8, 0, "3LQ2A008"));
    drives[8].facts.state = DriveState::failed;
    drives.push_back(exampleDrive(32, 9, 9, "3LQ2A009"));
    drives[9].facts.state = DriveState::unknown;
    first.before.spares = {{"32:5", {}, false, false}};
    first.before.foreignDrives = {"32:6"};
    first.losses.insert(
        first.losses.begin(),
        {1, "logical_drive", "0", "RAID1", {"32:0", "32:1"}, 69376 * mb, "Optimal"});
    first.losses.push_back({1, "hotspare", "32:5", "", {"32:5"}, 0, "Hotspare"});
    first.losses.push_back({1, "foreign", "32:6", "", {"32:6"}, 0, "Foreign"});
    first.bindings = {
        {"Drives.A",
         25,
         "2 x HDD <100GB",
         "Array.A = 1,2",
         {{"32:0", "by-kind", "HDD, 67.8 GB: drive 1 of 2"},
          {"32:1", "by-kind", "HDD, 67.8 GB: drive 2 of 2"}},
         ""},
        {"Level.B", 30, "6 else 5", "Logical.2 = B:FILL:5", {}, "6 takes 4 drives or more"}};
    for (PlannedDrive& drive : first.arrays[0].drives) {
        drive.reason = {"by-kind", "Drives.A", 25, "HDD, 67.8 GB"};
    }
    first.arrays[1].drives[0].reason = {"first-free", "", 0, ""};
    for (std::size_t i = 1; i < 5; ++i) {
        first.arrays[1].drives[i].reason = {"like-first", "", 0, ""};
    }
    first.spares[0].covers.clear();
    first.steps[0].action = "clear";
    first.steps[0].command = "UTIL.BAT CFGGEN 0 CLEAR ";
    first.steps[0].destroys = {"0", "1", "32:5"};
    first.steps[0].pauseBeforeSeconds = 15;
    PlanStep mirror = first.steps[1];
    mirror.command = "UTIL.BAT CFGGEN 0 CREATE IM MAX 32:0 32:1 qsync NOPROMPT";
    mirror.creates = {"A", "Logical.1"};
    mirror.pauseBeforeSeconds = 15;
    first.steps.insert(first.steps.begin() + 1, mirror);
    for (std::size_t i = 0; i < first.steps.size(); ++i) {
        first.steps[i].step = static_cast<std::int32_t>(i + 1);
    }
    first.strategyBecause.push_back({"only-whole-clear", "", "0", {}});
    first.comparison.health = {"32:8 failed"};
    Finding note = exampleFinding("ZX712", Severity::note, "1 drive gets no job: 32:9");
    note.help = {"list it, or leave it so"};
    first.warnings.push_back(note);
    ControllerPlanning second;
    second.controller.number = 2;
    second.controller.model = "Kestrix-B7";
    second.controller.utility = "ARCCONF";
    second.disposition = Disposition::skipped;
    second.because = "no policy applies";
    second.considered = {
        {"Policy.one", 3, false, {{"AppliesTo.1", 4, false, {{"t:LSI", false, "Kestrix-B7"}}}}},
        {"Policy.two",
         9,
         false,
         {{"AppliesTo.1", 10, false, {{"c:1", false, "2"}}},
          {"AppliesTo.2", 11, false, {{"m:8837", true, "8837"}, {"s:K", false, ""}}}}},
        {"Policy.none", 15, false, {}}};
    plan.controllers.push_back(second);
    ControllerPlanning third = exampleNothingToDoPlan().controllers[0];
    third.controller.number = 3;
    plan.controllers.push_back(third);
    plan.accepted = {"ZX701", "ZX702"};
    plan.rehearsal.notDoneBecause = {"not rehearsed: controller 3: its level is not known"};
    plan.rehearsal.faultsTried = 4;
    plan.rehearsal.resumesAsPlanned = 3;
    plan.oldCommand.differences.assign(6, "controller 1: zolex also runs something");
    return plan;
}

/// As many arrays, policies and drives as do not fit.
MachinePlan largePlan() {
    MachinePlan plan = examplePlan();
    ControllerPlanning& planning = plan.controllers[0];
    planning.controller.drives.clear();
    planning.controller.arrays.clear();
    planning.controller.facts.logicalDrives.clear();
    planning.before = {};
    planning.losses.clear();
    planning.considered.clear();
    for (std::int32_t i = 0; i < 12; ++i) {
        planning.considered.push_back(
            {"Policy." + std::to_string(i),
             i * 10,
             i < 11 ? std::optional<bool>(i == 10) : std::nullopt,
             {{"AppliesTo.1", i * 10 + 1, i == 10, {{"ALL", i == 10, ""}}}}});
    }
    for (std::int32_t slot = 0; slot < 36; ++slot) {
        planning.controller.drives.push_back(exampleDrive(32, slot, slot + 1, "S"));
    }
    planning.steps.resize(1);
    planning.steps[0].deletes = false;
    planning.steps[0].creates.clear();
    planning.arrays.clear();
    planning.volumes.clear();
    planning.spares.clear();
    planning.after = {};
    for (std::int32_t i = 0; i < 12; ++i) {
        const std::string letter(1, static_cast<char>('A' + i));
        const std::string first = "32:" + std::to_string(3 * i);
        const std::string second = "32:" + std::to_string(3 * i + 2);
        PlannedArray array{letter,
                           2 * 69376 * mb,
                           {{first, {"listed", "Array." + letter, 5, ""}},
                            {second, {"listed", "Array." + letter, 5, ""}}}};
        planning.arrays.push_back(array);
        planning.volumes.push_back(
            test::exampleVolume("Logical." + std::to_string(i + 1), letter, "RAID1", 69376, 9));
        planning.after.groups.push_back(exampleGroup(
            letter, {first, second}, "Logical." + std::to_string(i + 1), "RAID1", 69376));
        planning.steps[0].creates.push_back(letter);
    }
    return plan;
}

TEST(PlanText, APictureIsNoPlanThatWasSaved) {
    PlanTextTerms terms;
    terms.writtenTo = "plan.html";
    const std::string text = planText(test::examplePlan(), {}, terms);
    const std::string expected =
        "\nWritten to plan.html. 1 logical drive to create, 1 to destroy, 1 spare.\n";
    ASSERT_GE(text.size(), expected.size());
    EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
}

TEST(PlanText, ShowsWhatGoesWhatStaysWhatComesAndWhy) {
    EXPECT_EQ(planText(examplePlan(), test::plainStyle, saved()),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 8 drives
Policies site.ini: 3 policies, no faults

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free

  = LD 0     RAID1        67.8 GB  32:0 32:1  optimal, stays as array A
  - LD 1     RAID5       135.5 GB  32:2-32:4  optimal
  + Array B  drives 3-7            32:2-32:6  listed in Array.B
    + Logical.2  RAID5  271.0 GB  write-back, adaptive read-ahead, strip 64 KB
  + Spare    drive 8               32:7       listed in Hotspares; covers A, B

  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

Commands (3)
  1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0
  2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz
      64 -a0
  3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0

Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of
the 3 commands was also made to fail, and resuming ended as planned each time.

zolex /r /y /f:site.ini would do otherwise:
  ~ zolex would need an empty controller: it has no line that deletes one
    logical drive
! With /r zolex first erases everything on all controllers of the server, also
  what stays in this plan.

This destroys 1 logical drive (135.5 GB).
To agree to exactly this, and carry it out:
  zolexctl apply plan.json --destroy 7Q4K-2M9D
Plan saved to plan.json. 1 logical drive to create, 1 to destroy, 1 spare.
)");
}

TEST(PlanText, NothingToDoIsOneLineForEachController) {
    EXPECT_EQ(planText(exampleNothingToDoPlan(), test::plainStyle),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 8 drives
Policies site.ini: 3 policies, no faults

Controller 1  as the policy says (equivalent: the spare is 32:3 instead of 32:7)

Nothing to do.
)");
}

TEST(PlanText, FaultsStandOnTopAndAtTheEnd) {
    EXPECT_EQ(planText(exampleRefusedPlan(), test::plainStyle),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 8 drives
Policies site.ini: 3 policies, no faults
! Nothing would run: 1 error, on controller 1.

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free

site.ini:26:13: error: Array.B lists drive 3, and 32:2 has no number since it
                failed [ZX701]
   drive 3 is 32:3 now
   help: write slots: Drives.B = slots 32:3,32:4,32:5,32:6,32:7
   help: zolexctl plan site.ini --accept ZX701
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

! Nothing would run: 1 error, on controller 1. All faults are listed above.
)");
}

TEST(PlanText, TellsEverythingThatIsRare) {
    EXPECT_EQ(planText(rarePlan(), test::plainStyle),
              R"(Machine 8837, serial KQ10Z7V    3 controllers, 18 drives
Policies site.ini: 3 policies, no faults

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7  8  9
    now          a  a  b  b  b  *  ~  .  x  ?
    planned      A  A  B  B  B  B  B  *  x  ?
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free   x failed
    ~ foreign   ? unknown

  Drives.A = 2 x HDD <100GB  32:0 32:1             because HDD, 67.8 GB
  Level.B = 6 else 5         Logical.2 = B:FILL:5  because 6 takes 4 drives or
                                                   more

  - LD 0     RAID1        67.8 GB  32:0 32:1  optimal
  - LD 1     RAID5       135.5 GB  32:2-32:4  optimal
  - Spare                          32:5       no longer a spare
  - Foreign                        32:6       a configuration of another
                                              controller
  + Array A  drives 1,2            32:0 32:1  of the kind that is asked for in
                                              Drives.A (HDD, 67.8 GB)
    + Logical.1  RAID1   67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array B  drives 3-7            32:2-32:6  the first free drive and those as
                                              large
    + Logical.2  RAID5  271.0 GB  write-back, adaptive read-ahead, strip 64 KB
  + Spare    drive 8               32:7       listed in Hotspares; covers no
                                              array

  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1);
  only-whole-clear
  ! 32:8 failed
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]
  note: 1 drive gets no job: 32:9 [ZX712]
    help: list it, or leave it so

Controller 2  skipped: no policy applies
  Policy  Policy.one   (site.ini:3)   no: t:LSI, this controller is Kestrix-B7
          Policy.two   (site.ini:9)   no: c:1, this is controller 2; s:K, the
                                      serial number of this machine is not known
          Policy.none  (site.ini:15)  no: it does not say what it applies to

Controller 3  as the policy says (equivalent: the spare is 32:3 instead of 32:7)

Commands (4)
  1 UTIL.BAT CFGGEN 0 CLEAR
  2 UTIL.BAT CFGGEN 0 CREATE IM MAX 32:0 32:1 qsync NOPROMPT
  3 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz
      64 -a0
  4 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0
  Pauses before the commands take 30 s in all.

! Not rehearsed: controller 3: its level is not known
! Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of
  the 4 commands was also made to fail, and resuming ended as planned 3 of 4
  times.
! Accepted all the same: ZX701, ZX702. zolexctl explain ZX701 says what it
  means.

zolex /r /y /f:site.ini would do otherwise:
  ~ controller 1: zolex also runs something
  ~ controller 1: zolex also runs something
  ~ controller 1: zolex also runs something
    and 3 more, which -v shows
! With /r zolex first erases everything on all controllers of the server, also
  what stays in this plan.

This destroys 2 logical drives (203.3 GB), 1 hot spare and 1 foreign drive.
  - controller 1: LD 0, LD 1, spare 32:5, foreign 32:6
To agree to exactly this, and carry it out:
  zolexctl plan site.ini -o plan.json
  zolexctl apply plan.json --destroy 7Q4K-2M9D --allow-skipped
2 logical drives to create, 2 to destroy, 1 spare.
)");
}

TEST(PlanText, CommandsAreFoldedAndNeverCut) {
    const std::string drives = "drives=252:0,252:1,252:2,252:3,252:4,252:5";
    EXPECT_EQ(foldedCommand("STORCLI /c0 add vd r6 " + drives + " WB J nolog", 2, 36),
              "STORCLI /c0 add vd r6 drives=252:0,\n"
              "  252:1,252:2,252:3,252:4,252:5 WB J\n"
              "  nolog");
    EXPECT_EQ(foldedCommand("STORCLI /c0 add vd r6 " + drives + " WB J nolog", 2, 46),
              "STORCLI /c0 add vd r6\n"
              "  drives=252:0,252:1,252:2,252:3,252:4,252:5\n"
              "  WB J nolog");
    EXPECT_EQ(foldedCommand("STORCLI /c0 " + drives, 2, 20), "STORCLI /c0\n"
                                                             "  drives=252:0,\n"
                                                             "  252:1,252:2,252:3,\n"
                                                             "  252:4,252:5");
    EXPECT_EQ(foldedCommand("short", 2, 40), "short");
    EXPECT_EQ(foldedCommand("", 2, 40), "");
}

TEST(PlanText, ANarrowTerminalGetsNarrowLines) {
    EXPECT_EQ(planText(examplePlan(), {false, 40}), R"(Machine 8837, serial KQ10Z7V
  1 controller, 8 drives
Policies site.ini: 3 policies, no faults

Controller 1  LSI-MegaRAID-8480
              serial 1122334455
              PCI 02:0e.0
  Policy  Policy.web  (site.ini:17)
      because t:LSI-MegaRAID-8480,d:8
      holds
  Policy.db  (site.ini:3)  no: d:6, this
      controller has 8 drives
  Policy.rest  (site.ini:40)  not asked:
      an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1
    B RAID5   * hot spare   . free

  = LD 0  RAID1  67.8 GB  32:0 32:1
      optimal, stays as array A
  - LD 1  RAID5  135.5 GB  32:2-32:4
      optimal
  + Array B  drives 3-7  32:2-32:6
      listed in Array.B
    + Logical.2  RAID5  271.0 GB
        write-back, adaptive read-ahead,
        strip 64 KB
  + Spare  drive 8  32:7  listed in
      Hotspares; covers A, B

  Strategy rebuild: array B needs 32:5
  and 32:6 besides 32:2-32:4 (LD 1)
  ! 32:3 has 12 media errors, 1
    predicted failure: the drive goes
    into array B [ZX703]

Commands (3)
  1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0
  2 UTIL.BAT MEGACLI -CfgLdAdd R5 [
      32:2,32:3,32:4,32:5,32:6 ] WB ADRA
      -strpsz 64 -a0
  3 UTIL.BAT MEGACLI -PDHSP { -Set }
      -PhysDrv[ 32:7 ] -a0

Rehearsed on a virtual copy of this
machine in 1 ms: ends as planned; each
of the 3 commands was also made to fail,
and resuming ended as planned each time.

zolex /r /y /f:site.ini would do
otherwise:
  ~ zolex would need an empty
    controller: it has no line that
    deletes one logical drive
! With /r zolex first erases everything
  on all controllers of the server, also
  what stays in this plan.

This destroys 1 logical drive (135.5
GB).
To agree to exactly this, and carry it
out:
  zolexctl plan site.ini -o plan.json
  zolexctl apply plan.json --destroy 7Q4K-2M9D
1 logical drive to create, 1 to destroy,
1 spare.
)");
}

TEST(PlanText, VerboseTellsTheReasonsOfAllAndWholeCommandLines) {
    PlanTextTerms terms = saved();
    terms.verbose = true;
    terms.captureTime = std::chrono::milliseconds(1240);
    terms.usualTimes["MEGACLI"] = std::chrono::milliseconds(2040);
    EXPECT_EQ(planText(examplePlan(), test::plainStyle, terms),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 8 drives, captured in 1.2 s
Plan p-5f1c09ab77e2, bound to this machine by the serial numbers of controllers
and drives
Policies site.ini: 3 policies, no faults

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched
          Policy.db   AppliesTo.1  t:LSI-MegaRAID-8480  holds, is
                                                        LSI-MegaRAID-8480
          Policy.db   AppliesTo.1  d:6                  does not hold, is 8
          Policy.web  AppliesTo.1  t:LSI-MegaRAID-8480  holds, is
                                                        LSI-MegaRAID-8480
          Policy.web  AppliesTo.1  d:8                  holds, is 8

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free

  = LD 0     RAID1        67.8 GB  32:0 32:1  optimal, stays as array A
  - LD 1     RAID5       135.5 GB  32:2-32:4  optimal
  + Array B  drives 3-7            32:2-32:6  listed in Array.B
    + Logical.2  RAID5  271.0 GB  write-back, adaptive read-ahead, strip 64 KB
        size         given in Logical.2 (site.ini:29)
        level        given in Logical.2 (site.ini:29)
        read cache   the default of its class
        strip size   given in StripeSize (site.ini:20)
        write cache  given in Logical.2 (site.ini:29)
  + Spare    drive 8               32:7       listed in Hotspares; covers A, B

  Settings rebuild rate HIGH, initialization Fast
  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

Commands (3)                                                          usual time
  1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0                                     2.0 s
      delete LD 1
      zolex would need an empty controller: it has no line that deletes one
      logical drive
  2 UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4,32:5,32:6 ]   WB   ADRA   -strpsz 64  -a0      2.0 s
      create B: RAID5 on 32:2-32:6
  3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0                  2.0 s
      create the spare 32:7

Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of
the 3 commands was also made to fail, and resuming ended as planned each time.

zolex /r /y /f:site.ini would do otherwise:
  ~ zolex would need an empty controller: it has no line that deletes one
    logical drive
! With /r zolex first erases everything on all controllers of the server, also
  what stays in this plan.

This destroys 1 logical drive (135.5 GB).
To agree to exactly this, and carry it out:
  zolexctl apply plan.json --destroy 7Q4K-2M9D
Plan saved to plan.json. 1 logical drive to create, 1 to destroy, 1 spare.
)");
}

TEST(PlanText, ManyPoliciesAreCutAndManySlotsWrapped) {
    EXPECT_EQ(planText(largePlan(), test::plainStyle),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 36 drives
Policies site.ini: 3 policies, no faults

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.10   (site.ini:100)  because ALL holds
          Policy.0                    no: ALL, and it is not known
          Policy.1    (site.ini:10)   no: ALL, and it is not known
          Policy.2    (site.ini:20)   no: ALL, and it is not known
          Policy.3    (site.ini:30)   no: ALL, and it is not known
          Policy.4    (site.ini:40)   no: ALL, and it is not known
          and 6 more                  -v shows them

  Enclosure 32    0   1   2   3   4   5   6   7   8   9  10  11
    now           .   .   .   .   .   .   .   .   .   .   .   .
    planned       A   .   A   B   .   B   C   .   C   D   .   D
                 12  13  14  15  16  17  18  19  20  21  22  23
    now           .   .   .   .   .   .   .   .   .   .   .   .
    planned       E   .   E   F   .   F   G   .   G   H   .   H
                 24  25  26  27  28  29  30  31  32  33  34  35
    now           .   .   .   .   .   .   .   .   .   .   .   .
    planned       I   .   I   J   .   J   K   .   K   L   .   L
    A-L RAID1   . free

  + Array A  drives 1,3    32:0 32:2    listed in Array.A
    + Logical.1   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array B  drives 4,6    32:3 32:5    listed in Array.B
    + Logical.2   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array C  drives 7,9    32:6 32:8    listed in Array.C
    + Logical.3   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array D  drives 10,12  32:9 32:11   listed in Array.D
    + Logical.4   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array E  drives 13,15  32:12 32:14  listed in Array.E
    + Logical.5   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array F  drives 16,18  32:15 32:17  listed in Array.F
    + Logical.6   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array G  drives 19,21  32:18 32:20  listed in Array.G
    + Logical.7   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array H  drives 22,24  32:21 32:23  listed in Array.H
    + Logical.8   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array I  drives 25,27  32:24 32:26  listed in Array.I
    + Logical.9   RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array J  drives 28,30  32:27 32:29  listed in Array.J
    + Logical.10  RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array K  drives 31,33  32:30 32:32  listed in Array.K
    + Logical.11  RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array L  drives 34,36  32:33 32:35  listed in Array.L
    + Logical.12  RAID1  67.8 GB  write-back, adaptive read-ahead, strip 64 KB

  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

Commands (1)
  1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0

Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of
the 3 commands was also made to fail, and resuming ended as planned each time.

zolex /r /y /f:site.ini would do otherwise:
  ~ zolex would need an empty controller: it has no line that deletes one
    logical drive

This destroys nothing.
To carry it out:
  zolexctl plan site.ini -o plan.json
  zolexctl apply plan.json
12 logical drives to create, 0 to destroy.
)");
}

TEST(PlanText, AFaultOfOneControllerLeavesNoCommandsOfAny) {
    MachinePlan plan = rarePlan();
    plan.controllers[2] = exampleRefusedPlan().controllers[0];
    plan.controllers[2].controller.number = 3;
    EXPECT_EQ(planText(plan, test::plainStyle),
              R"(Machine 8837, serial KQ10Z7V    3 controllers, 18 drives
Policies site.ini: 3 policies, no faults
! Nothing would run: 1 error, on controller 3.

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7  8  9
    now          a  a  b  b  b  *  ~  .  x  ?
    planned      A  A  B  B  B  B  B  *  x  ?
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free   x failed
    ~ foreign   ? unknown

  Drives.A = 2 x HDD <100GB  32:0 32:1             because HDD, 67.8 GB
  Level.B = 6 else 5         Logical.2 = B:FILL:5  because 6 takes 4 drives or
                                                   more

  - LD 0     RAID1        67.8 GB  32:0 32:1  optimal
  - LD 1     RAID5       135.5 GB  32:2-32:4  optimal
  - Spare                          32:5       no longer a spare
  - Foreign                        32:6       a configuration of another
                                              controller
  + Array A  drives 1,2            32:0 32:1  of the kind that is asked for in
                                              Drives.A (HDD, 67.8 GB)
    + Logical.1  RAID1   67.8 GB  write-back, adaptive read-ahead, strip 64 KB
  + Array B  drives 3-7            32:2-32:6  the first free drive and those as
                                              large
    + Logical.2  RAID5  271.0 GB  write-back, adaptive read-ahead, strip 64 KB
  + Spare    drive 8               32:7       listed in Hotspares; covers no
                                              array

  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1);
  only-whole-clear
  ! 32:8 failed
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]
  note: 1 drive gets no job: 32:9 [ZX712]
    help: list it, or leave it so

Controller 2  skipped: no policy applies
  Policy  Policy.one   (site.ini:3)   no: t:LSI, this controller is Kestrix-B7
          Policy.two   (site.ini:9)   no: c:1, this is controller 2; s:K, the
                                      serial number of this machine is not known
          Policy.none  (site.ini:15)  no: it does not say what it applies to

Controller 3  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  Policy.web   (site.ini:17)  because t:LSI-MegaRAID-8480,d:8 holds
          Policy.db    (site.ini:3)   no: d:6, this controller has 8 drives
          Policy.rest  (site.ini:40)  not asked: an earlier policy matched

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free

site.ini:26:13: error: Array.B lists drive 3, and 32:2 has no number since it
                failed [ZX701]
   drive 3 is 32:3 now
   help: write slots: Drives.B = slots 32:3,32:4,32:5,32:6,32:7
   help: zolexctl plan site.ini --accept ZX701
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

! Not rehearsed: controller 3: its level is not known
! Rehearsed on a virtual copy of this machine in 1 ms: refused.
! Accepted all the same: ZX701, ZX702. zolexctl explain ZX701 says what it
  means.

! Nothing would run: 1 error, on controller 3. All faults are listed above.
)");
}

TEST(PlanText, DefaultsNeedNoPoliciesAndTimesHaveAColumn) {
    MachinePlan plan = examplePlan();
    plan.policiesFile.clear();
    plan.controllers[0].considered.clear();
    plan.controllers[0].policy.clear();
    PlanTextTerms terms;
    terms.usualTimes["MEGACLI"] = std::chrono::milliseconds(12040);
    EXPECT_EQ(planText(plan, test::plainStyle, terms),
              R"(Machine 8837, serial KQ10Z7V    1 controller, 8 drives
Policies: none, the defaults of each controller's class

Controller 1  LSI-MegaRAID-8480  serial 1122334455  PCI 02:0e.0
  Policy  the defaults of its class

  Enclosure 32   0  1  2  3  4  5  6  7
    now          a  a  b  b  b  .  .  .
    planned      A  A  B  B  B  B  B  *
    a RAID1   b RAID5   A RAID1   B RAID5   * hot spare   . free

  = LD 0     RAID1        67.8 GB  32:0 32:1  optimal, stays as array A
  - LD 1     RAID5       135.5 GB  32:2-32:4  optimal
  + Array B  drives 3-7            32:2-32:6  listed in Array.B
    + Logical.2  RAID5  271.0 GB  write-back, adaptive read-ahead, strip 64 KB
  + Spare    drive 8               32:7       listed in Hotspares; covers A, B

  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)
  ! 32:3 has 12 media errors, 1 predicted failure: the drive goes into array B
    [ZX703]

Commands (3)                                                          usual time
  1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0                                      12 s
  2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6 ] WB           12 s
      ADRA -strpsz 64 -a0
  3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0                   12 s

Rehearsed on a virtual copy of this machine in 1 ms: ends as planned; each of
the 3 commands was also made to fail, and resuming ended as planned each time.

zolex /r /y /f:site.ini would do otherwise:
  ~ zolex would need an empty controller: it has no line that deletes one
    logical drive
! With /r zolex first erases everything on all controllers of the server, also
  what stays in this plan.

This destroys 1 logical drive (135.5 GB).
To agree to exactly this, and carry it out:
  zolexctl plan --default -o plan.json
  zolexctl apply plan.json --destroy 7Q4K-2M9D
1 logical drive to create, 1 to destroy, 1 spare.
)");
}

TEST(PlanText, OfManyReasonsTheFirstAreShown) {
    MachinePlan plan = examplePlan();
    plan.controllers[0].strategyBecause.resize(6, {"different", "LD 2 is in the way", "2", {}});
    const std::string begin = "  Strategy rebuild: array B needs 32:5 and 32:6 besides 32:2-32:4 "
                              "(LD 1); LD 2\n  is in the way; LD 2 is in the way; ";
    EXPECT_NE(planText(plan, test::plainStyle).find(begin + "and 3 more reasons, which -v shows\n"),
              std::string::npos)
        << planText(plan, test::plainStyle);
    PlanTextTerms terms;
    terms.verbose = true;
    EXPECT_NE(planText(plan, test::plainStyle, terms).find(begin + "LD 2 is in the way; LD 2"),
              std::string::npos);
}

/// The lines from the loss to the summary.
std::string carryingOut(const MachinePlan& plan) {
    const std::string text = planText(plan, test::plainStyle);
    const std::size_t begin = text.find("This destroys");
    return text.substr(begin, text.rfind("\n", text.size() - 2) + 1 - begin);
}

TEST(PlanText, NamesTheCommandsThatCarryItOut) {
    MachinePlan plan = examplePlan();
    const std::string lost = "This destroys 1 logical drive (135.5 GB).\n";
    const std::string agree = "To agree to exactly this, and carry it out:\n";
    EXPECT_EQ(carryingOut(plan), lost + agree +
                                     "  zolexctl plan site.ini -o plan.json\n"
                                     "  zolexctl apply plan.json --destroy 7Q4K-2M9D\n");
    // As it was typed; a controller that is skipped would keep it from being carried out.
    plan.command = "zolexctl plan - --controller 1,2";
    plan.controllers.push_back(plan.controllers.front());
    plan.controllers.back().controller.number = 2;
    plan.controllers.back().disposition = Disposition::skipped;
    plan.controllers.back().losses.clear();
    EXPECT_EQ(carryingOut(plan),
              lost + "  - controller 1: LD 1\n" + agree +
                  "  zolexctl plan - --controller 1,2 -o plan.json\n"
                  "  zolexctl apply plan.json --destroy 7Q4K-2M9D --allow-skipped\n");
}

TEST(PlanText, ColoursAreNeverTheOnlyCarrier) {
    for (const MachinePlan& plan :
         {examplePlan(), rarePlan(), exampleRefusedPlan(), exampleNothingToDoPlan(), largePlan()}) {
        PlanTextTerms terms = saved();
        for (const bool verbose : {false, true}) {
            terms.verbose = verbose;
            const std::string text = planText(plan, {true, 80}, terms);
            EXPECT_NE(text.find("\033["), std::string::npos);
            EXPECT_EQ(withoutColours(text), planText(plan, test::plainStyle, terms));
        }
    }
    const std::string text = planText(examplePlan(), {true, 80}, saved());
    const char* const lines[] = {
        "  \033[31m- LD 1\033[0m     \033[31mRAID5\033[0m       \033[31m135.5 GB\033[0m",
        "  \033[32m+ Array B\033[0m  \033[32mdrives 3-7\033[0m",
        "\033[2mbecause t:LSI-MegaRAID-8480,d:8 holds\033[0m\n",
        "    now          a  a  \033[31mb\033[0m  \033[31mb\033[0m  \033[31mb\033[0m  .  .  .\n",
        "    planned      A  A  \033[32mB\033[0m",
        "\033[33m  ! 32:3 has 12 media errors",
        "\033[31mThis destroys 1 logical drive (135.5 GB).\033[0m\n",
        "  1 \033[31mUTIL.BAT MEGACLI -CfgLdDel -L1 -a0\033[0m\n",
    };
    for (const char* const line : lines) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
}

TEST(PlanText, NoLineIsWiderThanTheTerminal) {
    for (const MachinePlan& plan :
         {examplePlan(), rarePlan(), exampleRefusedPlan(), exampleNothingToDoPlan(), largePlan()}) {
        for (const std::int32_t width : {40, 57, 80, 200}) {
            const TextStyle style{false, width};
            EXPECT_EQ(widerLine(planText(plan, style, saved()), static_cast<std::size_t>(width)),
                      "")
                << width;
        }
    }
}

TEST(PlanText, NothingFromOutsideSteersATerminal) {
    const std::string evil = "a\033[2Jb\nc\xE2\x80\xAE"
                             "d\xE2\x80\xA8"
                             "e\xFF";
    MachinePlan plan = rarePlan();
    plan.policiesFile = evil;
    plan.fingerprint.machineType = evil;
    plan.fingerprint.serialNumber = evil;
    plan.consent = evil;
    plan.accepted = {evil};
    plan.coreMessages = {evil};
    plan.oldCommand = {{evil}, {evil}};
    plan.rehearsal.notDoneBecause = {evil};
    plan.diagnostics = {exampleFinding(evil, Severity::warning, evil)};
    for (ControllerPlanning& planning : plan.controllers) {
        for (std::string* text :
             {&planning.controller.model, &planning.controller.pci, &planning.because,
              &planning.policy, &planning.rebuildRate, &planning.initializeType,
              &planning.controller.facts.serialNumber}) {
            *text = evil;
        }
        for (PolicyMatch& match : planning.considered) {
            match.name = evil;
            for (EntryMatch& entry : match.entries) {
                entry.keyword = evil;
                for (SpecifierMatch& specifier : entry.specifiers) {
                    specifier = {evil, specifier.holds, evil};
                }
            }
        }
        for (Binding& binding : planning.bindings) {
            binding.keyword = binding.value = binding.becomes = binding.why = evil;
            for (BoundDrive& drive : binding.drives) {
                drive.location = drive.why = evil;
            }
        }
        for (Finding& warning : planning.warnings) {
            warning = exampleFinding(evil, Severity::warning, evil);
            warning.detail = evil;
            warning.help = {evil};
        }
        for (LogicalDriveFacts& logicalDrive : planning.controller.facts.logicalDrives) {
            logicalDrive.raidType = logicalDrive.reportedState = evil;
        }
        for (PlannedVolume& volume : planning.volumes) {
            volume.raidType = evil;
            volume.reasons[evil] = {evil, evil, 1, evil};
        }
        for (StrategyReason& reason : planning.strategyBecause) {
            reason.text = evil;
        }
        for (PlanStep& step : planning.steps) {
            step.command = step.summary = step.differsFromZolex = evil;
        }
        planning.comparison.health = {evil};
    }
    PlanTextTerms terms;
    terms.verbose = true;
    terms.savedTo = evil;
    const std::string text = planText(plan, test::plainStyle, terms);
    for (const char* const piece : {"\033", "\xE2\x80\xAE", "\xE2\x80\xA8", "\xFF", "b\nc"}) {
        EXPECT_EQ(text.find(piece), std::string::npos) << text;
    }
    EXPECT_NE(text.find("a?[2Jb?c?d?e?"), std::string::npos);
}

} // namespace
} // namespace zolex::companion
