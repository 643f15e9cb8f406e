#include "companion/binding/BoundPolicies.h"

#include "KindMachine.h"
#include "engine/PlanController.h"
#include "policies/PolicyFile.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::boundTo;
using test::boundTold;
using test::capturedKinds;
using test::kindServer;
using test::mixedDrives;
using test::SimulatedPlatform;

/// What the entries are bound to on the mixed server: drives and reasons, then the text, then of
/// which line each of its lines was made.
std::string told(const std::string& entries) {
    const BoundPolicies bound = boundTo(capturedKinds(kindServer(mixedDrives)), entries);
    std::string text = boundTold(bound);
    if (!bound.faults.empty()) {
        return text;
    }
    text += "--\n" + bound.text + "--\nlines";
    for (const std::int32_t line : bound.lineOf) {
        text += " " + std::to_string(line);
    }
    return text + "\n";
}

TEST(Bind, CountsInDriveOrderAndWhatIsLeft) {
    EXPECT_EQ(told("Drives.A = 2 x SSD <500GB\n"
                   "Drives.B = rest of one size\n"),
              R"(Drives.A -> Array.A = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
Drives.B -> Array.B = 1:2,1:3
  32:2 rest: SATA SSD, 894.3 GB: drive 1 of 2 that are left
  32:3 rest: SATA SSD, 894.3 GB: drive 2 of 2 that are left
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:0,1:1
Array.B = 1:2,1:3
--
lines 1 2 3 3 3 4
)");
}

TEST(Bind, TheFirstOfOneSizeAndKind) {
    EXPECT_EQ(told("Drives.A = 4 x\n"),
              R"(Drives.A -> Array.A = 1:4,1:5,1:6,1:7
  32:4 by-kind: SAS HDD, 278.9 GB: drive 1 of 4
  32:5 by-kind: SAS HDD, 278.9 GB: drive 2 of 4
  32:6 by-kind: SAS HDD, 278.9 GB: drive 3 of 4
  32:7 by-kind: SAS HDD, 278.9 GB: drive 4 of 4
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:4,1:5,1:6,1:7
--
lines 1 2 3 3 3
)");
}

TEST(Bind, FromTheLargest) {
    EXPECT_EQ(told("Drives.A = largest 2 x\n"),
              R"(Drives.A -> Array.A = 1:2,1:3
  32:2 by-kind: SATA SSD, 894.3 GB: drive 1 of 2 from the largest
  32:3 by-kind: SATA SSD, 894.3 GB: drive 2 of 2 from the largest
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:2,1:3
--
lines 1 2 3 3 3
)");
}

TEST(Bind, FromTheSmallest) {
    EXPECT_EQ(told("Drives.A = Smallest 2 X\n"),
              R"(Drives.A -> Array.A = 1:4,1:5
  32:4 by-kind: SAS HDD, 278.9 GB: drive 1 of 2 from the smallest
  32:5 by-kind: SAS HDD, 278.9 GB: drive 2 of 2 from the smallest
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:4,1:5
--
lines 1 2 3 3 3
)");
}

TEST(Bind, OfAnySize) {
    EXPECT_EQ(told("Drives.A = 3 x SSD any size\n"),
              R"(Drives.A -> Array.A = 1:0,1:1,1:2
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 3
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 3
  32:2 by-kind: SATA SSD, 894.3 GB: drive 3 of 3
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:0,1:1,1:2
--
lines 1 2 3 3 3
)");
}

TEST(Bind, SizesSparesAndLevels) {
    EXPECT_EQ(told("Drives.A = 2 x =894GB\n"
                   "Drives.B = 2 x 400GB-450GB SATA\n"
                   "Drives.C = rest SAS HDD\n"
                   "; a spare\n"
                   "Spares = 1 covering C\n"
                   "Level.C = 6 else 5\n"),
              R"(Drives.A -> Array.A = 1:2,1:3
  32:2 by-kind: SATA SSD, 894.3 GB: drive 1 of 2
  32:3 by-kind: SATA SSD, 894.3 GB: drive 2 of 2
Drives.B -> Array.B = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
Drives.C -> Array.C = 1:4,1:5,1:6
  32:4 rest: SAS HDD, 278.9 GB: drive 1 of 3 that are left
  32:5 rest: SAS HDD, 278.9 GB: drive 2 of 3 that are left
  32:6 rest: SAS HDD, 278.9 GB: drive 3 of 3 that are left
Spares -> Hotspares = 1:7
  32:7 spare: SAS HDD, 278.9 GB: the largest, last that covers C
Level.C -> Logical.3 = C:FILL:5:ON (RAID 6 takes 4 or more drives, and the array has 3)
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:2,1:3
Array.B = 1:0,1:1
Array.C = 1:4,1:5,1:6
; a spare
Hotspares = 1:7
Logical_Mode = CUSTOM
Logical.1 = A:FILL:AUTO:ON
Logical.2 = B:FILL:AUTO:ON
Logical.3 = C:FILL:5:ON
--
lines 1 2 3 3 4 5 6 7 8 8 8 8
)");
}

TEST(Bind, AllOfOneKind) {
    EXPECT_EQ(told("Drives.A = all HDD\n"),
              R"(Drives.A -> Array.A = 1:4,1:5,1:6,1:7
  32:4 by-kind: SAS HDD, 278.9 GB: drive 1 of 4
  32:5 by-kind: SAS HDD, 278.9 GB: drive 2 of 4
  32:6 by-kind: SAS HDD, 278.9 GB: drive 3 of 4
  32:7 by-kind: SAS HDD, 278.9 GB: drive 4 of 4
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:4,1:5,1:6,1:7
--
lines 1 2 3 3 3
)");
}

TEST(Bind, SlotsAndSerialNumbers) {
    EXPECT_EQ(told("Drives.A = slots 32:4, 32:0\n"
                   "Drives.B = serials s9000,S9001\n"
                   "Spares = slots 32:7\n"),
              R"(Drives.A -> Array.A = 1:4,1:0
  32:4 by-slot: slot 32:4
  32:0 by-slot: slot 32:0
Drives.B -> Array.B = 1:2,1:3
  32:2 by-serial: serial number s9000
  32:3 by-serial: serial number S9001
Spares -> Hotspares = 1:7
  32:7 by-slot: slot 32:7
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:4,1:0
Array.B = 1:2,1:3
Hotspares = 1:7
--
lines 1 2 3 3 4 5
)");
}

TEST(Bind, ASpareForEachKind) {
    EXPECT_EQ(told("Drives.A = 2 x SSD\n"
                   "Drives.B = 3 x HDD\n"
                   "Spares = 1 covering A and 1 covering B\n"),
              R"(Drives.A -> Array.A = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
Drives.B -> Array.B = 1:4,1:5,1:6
  32:4 by-kind: SAS HDD, 278.9 GB: drive 1 of 3
  32:5 by-kind: SAS HDD, 278.9 GB: drive 2 of 3
  32:6 by-kind: SAS HDD, 278.9 GB: drive 3 of 3
Spares -> Hotspares = 1:3,1:7
  32:3 spare: SATA SSD, 894.3 GB: the largest, last that covers A
  32:7 spare: SAS HDD, 278.9 GB: the largest, last that covers B
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array.B = 1:4,1:5,1:6
Hotspares = 1:3,1:7
--
lines 1 2 3 3 4 5
)");
}

TEST(Bind, SparesAreTakenBeforeTheRest) {
    EXPECT_EQ(told("Drives.A = rest HDD\n"
                   "Drives.B = rest SSD any size\n"
                   "Spares = 1 covering A and 1 covering B\n"),
              R"(Drives.A -> Array.A = 1:4,1:5,1:6
  32:4 rest: SAS HDD, 278.9 GB: drive 1 of 3 that are left
  32:5 rest: SAS HDD, 278.9 GB: drive 2 of 3 that are left
  32:6 rest: SAS HDD, 278.9 GB: drive 3 of 3 that are left
Drives.B -> Array.B = 1:0,1:1,1:2
  32:0 rest: SATA SSD, 447.1 GB: drive 1 of 3 that are left
  32:1 rest: SATA SSD, 447.1 GB: drive 2 of 3 that are left
  32:2 rest: SATA SSD, 894.3 GB: drive 3 of 3 that are left
Spares -> Hotspares = 1:7,1:3
  32:7 spare: SAS HDD, 278.9 GB: the largest, last that covers A
  32:3 spare: SATA SSD, 894.3 GB: the largest, last that covers B
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6
Array.B = 1:0,1:1,1:2
Hotspares = 1:7,1:3
--
lines 1 2 3 3 4 5
)");
}

TEST(Bind, LogicalDefaultsHoldForMadeLogicalDrives) {
    EXPECT_EQ(told("Drives.A = 2 x SSD\n"
                   "Drives.B = 2 x SSD\n"
                   "Logical_Defaults = 50%:1:OFF\n"
                   "Level.B = 6 else 0\n"),
              R"(Drives.A -> Array.A = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
Drives.B -> Array.B = 1:2,1:3
  32:2 by-kind: SATA SSD, 894.3 GB: drive 1 of 2
  32:3 by-kind: SATA SSD, 894.3 GB: drive 2 of 2
Level.B -> Logical.2 = B:50%:0:OFF (RAID 6 takes 4 or more drives, and the array has 2)
--
[Policy.a]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array_Defaults = 0%:0
Array.A = 1:0,1:1
Array.B = 1:2,1:3
Logical_Defaults = 50%:1:OFF
Logical_Mode = CUSTOM
Logical.1 = A:50%:1:OFF
Logical.2 = B:50%:0:OFF
--
lines 1 2 3 3 3 4 5 6 6 6
)");
}

TEST(Bind, BesideWrittenLogicalDrivesAndLineEnds) {
    EXPECT_EQ(told("Drives.A = 2 x SSD\r\n"
                   "Drives.B = 2 x SSD\r\n"
                   "Array_Mode = CUSTOM\r\n"
                   "Logical_Mode = CUSTOM\r\n"
                   "Logical.1 = A:FILL:1\r\n"
                   "Level.B = 1"),
              "Drives.A -> Array.A = 1:0,1:1\n"
              "  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2\n"
              "  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2\n"
              "Drives.B -> Array.B = 1:2,1:3\n"
              "  32:2 by-kind: SATA SSD, 894.3 GB: drive 1 of 2\n"
              "  32:3 by-kind: SATA SSD, 894.3 GB: drive 2 of 2\n"
              "Level.B -> Logical.2 = B:FILL:1:ON\n"
              "--\n"
              "[Policy.a]\n"
              "AppliesTo.1 = ALL\n"
              "Array_Defaults = 0%:0\r\n"
              "Array.A = 1:0,1:1\r\n"
              "Array.B = 1:2,1:3\r\n"
              "Array_Mode = CUSTOM\r\n"
              "Logical_Mode = CUSTOM\r\n"
              "Logical.1 = A:FILL:1\r\n"
              "Logical.2 = B:FILL:1:ON--\n"
              "lines 1 2 3 3 4 5 6 7 8\n");
}

TEST(DoesNotBind, TooFew) {
    EXPECT_EQ(
        told("Drives.A = 3 x SSD <500GB\n"
             "Drives.B = 1 x SSD >1TB\n"),
        R"(3:12-26 ZX313 Drives.A: 3 SSD below 500 GB are wanted; there are 2: 32:0 (447.1 GB), 32:1 (447.1 GB)
  help: zolexctl show lists the drives
4:12-24 ZX313 Drives.B: 1 SSD above 1 TB is wanted; there is none
  help: zolexctl show lists the drives
)");
}

TEST(DoesNotBind, NotOfOneSize) {
    EXPECT_EQ(
        told("Drives.A = 3 x SSD\n"
             "Drives.B = all\n"
             "Drives.C = all any size\n"),
        R"(3:12-19 ZX313 Drives.A: 3 SSD of one size and kind are wanted; there are 32:0 (SATA SSD, 447.1 GB), 32:1 (SATA SSD, 447.1 GB), 32:2 (SATA SSD, 894.3 GB), 32:3 (SATA SSD, 894.3 GB)
  help: add any size, or say SSD or HDD and a protocol
4:12-15 ZX313 Drives.B: all these are of different sizes or kinds: 32:0 (SATA SSD, 447.1 GB), 32:1 (SATA SSD, 447.1 GB), 32:2 (SATA SSD, 894.3 GB), 32:3 (SATA SSD, 894.3 GB), 32:4 (SAS HDD, 278.9 GB), 32:5 (SAS HDD, 278.9 GB), 32:6 (SAS HDD, 278.9 GB), 32:7 (SAS HDD, 278.9 GB)
  help: add any size, or say SSD or HDD and a protocol
5:12-24 ZX313 Drives.C: all these are of different kinds: 32:0 (SATA SSD, 447.1 GB), 32:1 (SATA SSD, 447.1 GB), 32:2 (SATA SSD, 894.3 GB), 32:3 (SATA SSD, 894.3 GB), 32:4 (SAS HDD, 278.9 GB), 32:5 (SAS HDD, 278.9 GB), 32:6 (SAS HDD, 278.9 GB), 32:7 (SAS HDD, 278.9 GB)
  help: say SSD or HDD, and a protocol
)");
}

TEST(DoesNotBind, NothingLeft) {
    EXPECT_EQ(told("Drives.A = 2 x SSD\n"
                   "Drives.B = 2 x SSD\n"
                   "Drives.C = 2 x SSD\n"
                   "Drives.D = rest SSD\n"),
              R"(5:12-19 ZX313 Drives.C: 2 SSD are wanted; there are none
  help: 32:0 goes to Drives.A
6:12-20 ZX313 Drives.D: nothing is left of what is wanted: SSD
  help: 32:0 goes to Drives.A
)");
}

TEST(DoesNotBind, NamesThatAreNotThere) {
    EXPECT_EQ(told("Drives.A = slots 32:9,32:0\n"
                   "Drives.B = serials X\n"
                   "Drives.C = serials S4000\n"),
              R"(3:18-22 ZX313 Drives.A: there is no drive at 32:9
  help: zolexctl show lists the slots
4:20-21 ZX313 Drives.B: there is no drive with serial number X
  help: zolexctl show --as json lists the serial numbers
5:20-25 ZX313 Drives.C: 32:0 is in Drives.A already
  help: name each drive once
)");
}

TEST(DoesNotBind, NoSpareForTwoKinds) {
    EXPECT_EQ(
        told("Drives.A = 2 x SSD\n"
             "Drives.B = 4 x HDD\n"
             "Spares = 1\n"),
        R"(5:10-11 ZX313 Spares: 1 hot spare for A,B is wanted, SAS HDD and SATA SSD of 447.1 GB or more; free are 32:2 (894.3 GB), 32:3 (894.3 GB)
  help: write a number for each kind: 1 covering A and 1 covering B
)");
}

TEST(DoesNotBind, TooFewSpares) {
    EXPECT_EQ(
        told("Drives.A = 2 x SSD\n"
             "Drives.B = 3 x HDD\n"
             "Spares = 2 covering B\n"),
        R"(5:10-22 ZX313 Spares: 2 hot spares for B are wanted, SAS HDD of 278.9 GB or more; found so far: 1; free are 32:2 (894.3 GB), 32:3 (894.3 GB)
  help: take fewer drives into the arrays, or fewer hot spares
)");
}

TEST(DoesNotBind, MembersAreNoFreeDrives) {
    const std::string members = R"({"level": "RAID1", "spans": [["32:2", "32:3"]]})";
    const std::string drives = R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
                                  {"enclosure": 32, "slot": 4, "sizeMB": 34176})";
    const std::string entries = "Drives.A = 2 x >50GB\n"
                                "Spares = 3 covering A\n";
    EXPECT_EQ(
        boundTold(boundTo(capturedKinds(kindServer(drives, members)), entries)),
        R"(4:10-22 ZX313 Spares: 3 hot spares for A are wanted, SAS HDD of 67.8 GB or more; found so far: 2; free are 32:4 (33.4 GB)
  help: take fewer drives into the arrays, or fewer hot spares
)");
    EXPECT_EQ(
        boundTold(boundTo(capturedKinds(kindServer(
                              R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                                 {"enclosure": 32, "slot": 2, "count": 2, "sizeMB": 34176})",
                              members)),
                          "Drives.A = 2 x >50GB\nSpares = 1\n")),
        R"(4:10-11 ZX313 Spares: 1 hot spare for A is wanted, SAS HDD of 67.8 GB or more; free is none
  help: take fewer drives into the arrays, or fewer hot spares
)");
}

TEST(DoesNotBind, NoLevel) {
    EXPECT_EQ(
        told("Drives.A = 2 x SSD\n"
             "Level.A = 6 else 5\n"),
        R"(4:11-19 ZX313 Level.A: none of these levels is possible: RAID 6 takes 4 or more drives, and the array has 2; RAID 5 takes 3 or more drives, and the array has 2
  help: add another level, or change the number of drives of Drives.A
Drives.A -> Array.A = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
)");
}

TEST(DoesNotBind, WhatZolexRefusesBesides) {
    EXPECT_EQ(
        told("Drives.A = 2 x SSD\n"
             "ReadAhead = 1\n"),
        R"(4:1-1 ZX312 : zolex refuses what these policies become: Policy.a, ReadAhead -- Invalid specifier: 1 Valid values are: ADAPTIVE ON OFF
  help: zolexctl check tells all faults of the file
Drives.A -> Array.A = 1:0,1:1
  32:0 by-kind: SATA SSD, 447.1 GB: drive 1 of 2
  32:1 by-kind: SATA SSD, 447.1 GB: drive 2 of 2
)");
}

/// Two drives of each state.
constexpr std::string_view hurtDrives =
    R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376, "status": "bad"},
{"enclosure": 32, "slot": 4, "sizeMB": 69376, "status": "foreign"},
{"enclosure": 32, "slot": 5, "count": 2, "sizeMB": 69376})";

TEST(Bind, TakesGoodDrivesAlone) {
    EXPECT_EQ(boundTold(hurtDrives, "Drives.A = all\n"), R"(Drives.A -> Array.A = 1:0,1:1,1:5,1:6
  32:0 by-kind: SAS HDD, 67.8 GB: drive 1 of 4
  32:1 by-kind: SAS HDD, 67.8 GB: drive 2 of 4
  32:5 by-kind: SAS HDD, 67.8 GB: drive 3 of 4
  32:6 by-kind: SAS HDD, 67.8 GB: drive 4 of 4
)");
    EXPECT_EQ(
        boundTold(hurtDrives, "Drives.A = 5 x HDD\nDrives.B = slots 32:2,32:3,32:4\n"),
        R"(3:12-19 ZX313 Drives.A: 5 HDD are wanted; there are 4: 32:0 (67.8 GB), 32:1 (67.8 GB), 32:5 (67.8 GB), 32:6 (67.8 GB)
  help: 32:3 is Unconfigured(bad) and is not taken
4:18-22 ZX313 Drives.B: 32:2 is Failed and has no number: policies cannot name it
  help: replace it, or name another drive
4:23-27 ZX313 Drives.B: 32:3 is Unconfigured(bad): no good drive
  help: replace it, or name another drive
4:28-32 ZX313 Drives.B: 32:4 carries arrays of another controller: no good drive
  help: replace it, or name another drive
)");
}

TEST(Bind, TakesWhatArraysHaveNow) {
    const std::string definition =
        kindServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})",
                   R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})");
    EXPECT_EQ(boundTold(boundTo(capturedKinds(definition), "Drives.A = 3 x\n")),
              R"(Drives.A -> Array.A = 1:0,1:1,1:2
  32:0 by-kind: SAS HDD, 67.8 GB: drive 1 of 3
  32:1 by-kind: SAS HDD, 67.8 GB: drive 2 of 3
  32:2 by-kind: SAS HDD, 67.8 GB: drive 3 of 3
)");
}

TEST(Bind, AFailedMemberStaysWhereThatIsAskedFor) {
    Snapshot snapshot =
        capturedKinds(kindServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})",
                                 R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"));
    DriveFacts& member = snapshot.details.front().drives.front().facts;
    member.state = DriveState::missing;
    member.health = Health::critical;
    EXPECT_EQ(
        boundTo(snapshot, "Drives.A = 2 x\n", {.failedMembersStay = true}).bindings.front().becomes,
        "Array.A = 1:0,1:1");
    member.state = DriveState::failed;
    EXPECT_EQ(boundTo(snapshot, "Drives.A = 2 x\n").bindings.front().becomes, "Array.A = 1:1,1:2");
    EXPECT_EQ(
        boundTo(snapshot, "Drives.A = 2 x\n", {.failedMembersStay = true}).bindings.front().becomes,
        "Array.A = 1:0,1:1");
}

constexpr const char* twoPolicies = R"(; Two.
[Policy.a]
AppliesTo.1 = c:1
Drives.A = 2 x HDD
Spares = 1
Level.A = 1
; behind

[Policy.b]
AppliesTo.1 = c:2
Drives.A = 3 x HDD
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Level.A = 5
)";

TEST(Bind, PutsOtherPoliciesAside) {
    EXPECT_TRUE(hasKindEntries(twoPolicies));
    EXPECT_EQ(withoutKindEntries(twoPolicies), R"(; Two.
[Policy.a]
AppliesTo.1 = c:1
Array.A = 999
Hotspares = 999
Logical.1 = A:FILL:AUTO
; behind

[Policy.b]
AppliesTo.1 = c:2
Array.A = 999
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Logical.1 = A:FILL:AUTO
)");
    SilentReport silent;
    EXPECT_TRUE(
        readPolicies(withoutKindEntries(twoPolicies), ControllerCatalogue(), {}, silent).policies);
    const Snapshot snapshot = capturedKinds(kindServer(mixedDrives));
    const BoundPolicies bound =
        bindPolicy(twoPolicies, 1, snapshot.details.front(), *snapshot.controllers.controller(0));
    EXPECT_EQ(bound.text, R"(; Two.
[Policy.a]
AppliesTo.1 = c:1
Array.A = 999
Hotspares = 999
Logical.1 = A:FILL:AUTO
; behind

[Policy.b]
AppliesTo.1 = c:2
Array_Defaults = 0%:0
Array.A = 1:4,1:5,1:6
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)");
    EXPECT_EQ(bound.lineOf,
              (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 11, 12, 13, 14}));
}

TEST(Bind, LeavesOtherFilesAsTheyAre) {
    const std::string text = "; Drives.A = 2 x SSD\n[Policy.a]\r\nAppliesTo.1 = ALL\r\n\n[x";
    EXPECT_FALSE(hasKindEntries(text));
    EXPECT_EQ(withoutKindEntries(text), text);
    EXPECT_TRUE(kindEntryFaults(text).empty());
    const Snapshot snapshot = capturedKinds(kindServer(mixedDrives));
    const BoundPolicies missing =
        bindPolicy(text, 1, snapshot.details.front(), *snapshot.controllers.controller(0));
    EXPECT_EQ(boundTold(missing), "1:1-1 ZX312 : there is no policy 2 in the file\n  help: \n");
}

TEST(Bind, OnEverySampleThePlanHasTheBoundDrives) {
    std::size_t bound = 0;
    for (const std::string& sample : SimulatedPlatform::samples()) {
        const Snapshot snapshot = capturedKinds(sample);
        for (const ControllerSnapshot& controller : snapshot.details) {
            SCOPED_TRACE(sample);
            const RAIDController& record = *snapshot.controllers.controller(controller.index);
            const BoundPolicies made =
                bindPolicy("[Policy.a]\nAppliesTo.1 = ALL\nDrives.A = 2 x\nLevel.A = 1\n", 0,
                           controller, record);
            ASSERT_EQ(made.faults.size(), 0U) << boundTold(made);
            SilentReport silent;
            const PolicyFile file = readPolicies(made.text, ControllerCatalogue(), {}, silent);
            ASSERT_TRUE(file.policies);
            const ControllerPlan plan = planByPolicy(record, controller.number,
                                                     file.policies->policies().front(), {}, silent);
            ASSERT_TRUE(plan.layout);
            EXPECT_TRUE(plan.layout->hotspares().empty());
            std::vector<std::string> planned;
            for (const DrivePosition position : plan.layout->arrays().front().drives()) {
                for (const MachineDrive& drive : controller.drives) {
                    if (drive.policyPosition == position) {
                        planned.push_back(drive.facts.location);
                    }
                }
            }
            std::vector<std::string> asked;
            for (const BoundDrive& drive : made.bindings.front().drives) {
                asked.push_back(drive.location);
            }
            EXPECT_EQ(planned, asked);
            ++bound;
        }
    }
    EXPECT_GT(bound, 12U);
}

} // namespace
} // namespace zolex::companion
