#include "companion/layout/Compare.h"

#include "companion/layout/Megabyte.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace zolex::companion {
namespace {

using test::mb;

constexpr std::uint64_t kb = std::uint64_t{1} << 10U;
constexpr std::uint64_t driveMb = 69376;

using Locations = std::vector<std::string>;
using Lines = std::vector<std::string>;

std::string slot(int number) {
    return "32:" + std::to_string(number);
}

DriveFacts boxDrive(const std::string& location, DriveState state = DriveState::free) {
    DriveFacts facts;
    facts.location = location;
    facts.enclosure = 32;
    facts.protocol = "SAS";
    facts.mediaType = "HDD";
    facts.capacityBytes = driveMb * mb;
    facts.state = state;
    facts.health = Health::ok;
    return facts;
}

/// Facts and layouts are made together: what is captured is what the server has.
struct Server {
    Facts facts;

    explicit Server(int drives = 12) {
        for (int i = 0; i < drives; ++i) {
            facts.drives.push_back(boxDrive(slot(i)));
        }
    }

    DriveFacts& at(const std::string& location) {
        return *std::find_if(facts.drives.begin(), facts.drives.end(),
                             [&](const DriveFacts& each) { return each.location == location; });
    }

    LogicalDriveFacts& add(const std::string& level, std::vector<Locations> spans,
                           std::uint64_t sizeMb) {
        LogicalDriveFacts& logical = facts.logicalDrives.emplace_back();
        logical.id = std::to_string(facts.logicalDrives.size() - 1);
        logical.array = logical.id;
        logical.raidType = level;
        logical.spans = std::move(spans);
        logical.capacityBytes = sizeMb * mb;
        logical.stripSizeBytes = 64 * kb;
        logical.writeCache = "UnprotectedWriteBack";
        logical.readCache = "AdaptiveReadAhead";
        logical.reportedState = "Optimal";
        logical.health = Health::ok;
        for (const Locations& span : logical.spans) {
            for (const std::string& location : span) {
                if (facts.drive(location) != nullptr) {
                    at(location).state = DriveState::member;
                }
            }
        }
        return logical;
    }

    void addSpare(const std::string& location, HotspareKind kind = HotspareKind::global) {
        at(location).state = DriveState::hotspare;
        at(location).hotspare = kind;
    }

    /// The same, as a policy wants it.
    [[nodiscard]] Layout wanted(bool isListed = true) const {
        Layout layout = capturedLayout(facts);
        char letter = 'A';
        int number = 0;
        for (LayoutGroup& group : layout.groups) {
            group.id = std::string(1, letter++);
            group.isListed = isListed;
            for (LayoutVolume& volume : group.volumes) {
                volume.id = "Logical." + std::to_string(++number);
                volume.reportedState.clear();
                volume.health = Health::unknown;
            }
        }
        for (LayoutSpare& spare : layout.spares) {
            spare.isListed = isListed;
        }
        return layout;
    }

    [[nodiscard]] Comparison against(const Layout& wanted,
                                     const std::string& utility = "MEGACLI") const {
        return compareLayouts(facts, capturedLayout(facts), wanted, {utility});
    }
};

/// A mirror, RAID 5 and a spare.
Server usual() {
    Server server;
    server.add("RAID1", {{slot(0), slot(1)}}, driveMb);
    server.add("RAID5", {{slot(2), slot(3), slot(4)}}, 2 * driveMb);
    server.addSpare(slot(7));
    return server;
}

/// "attribute location logicalDrive: wanted | found".
Lines linesOf(const Comparison& comparison) {
    Lines lines;
    for (const Difference& each : comparison.differences) {
        lines.push_back(each.attribute + " " + (each.location.empty() ? "-" : each.location) + " " +
                        (each.logicalDrive.empty() ? "-" : each.logicalDrive) + ": " + each.wanted +
                        " | " + each.found);
    }
    return lines;
}

/// "0+1", "0+1 whole", "none+0".
Lines standingOf(const Comparison& comparison) {
    Lines lines;
    for (const StandingGroup& each : comparison.groups) {
        lines.push_back((each.captured ? std::to_string(*each.captured) : "none") + "+" +
                        std::to_string(each.volumesThatStand) + (each.isWhole ? " whole" : ""));
    }
    return lines;
}

TEST(Compare, WhatStandsAsWantedIsTheSame) {
    for (const bool isListed : {true, false}) {
        const Server server = usual();
        const Comparison comparison = server.against(server.wanted(isListed));
        EXPECT_EQ(comparison.result, Sameness::same);
        EXPECT_EQ(linesOf(comparison), Lines());
        EXPECT_EQ(comparison.equivalences, Lines());
        EXPECT_EQ(comparison.notComparable, Lines());
        EXPECT_EQ(comparison.health, Lines());
        EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "1+1 whole"}));
        EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>());
        EXPECT_EQ(comparison.spares, Lines{slot(7)});
        EXPECT_EQ(comparison.sparesInTheWay, Lines());
    }
    EXPECT_EQ(samenessWord(Sameness::same), "same");
    EXPECT_EQ(samenessWord(Sameness::equivalent), "equivalent");
    EXPECT_EQ(samenessWord(Sameness::different), "different");
}

TEST(Compare, ABlankControllerMissesAll) {
    const Layout wanted = usual().wanted();
    const Comparison comparison = Server().against(wanted);
    EXPECT_EQ(comparison.result, Sameness::different);
    EXPECT_EQ(linesOf(comparison),
              (Lines{"missing - Logical.1: RAID1 fill, strip 64 KB, write-back, adaptive "
                     "read-ahead: 32:0 32:1 | none",
                     "missing - Logical.2: RAID5 fill, strip 64 KB, write-back, adaptive "
                     "read-ahead: 32:2 32:3 32:4 | none",
                     "missing 32:7 -: hot spare | none; 32:7 is free"}));
    EXPECT_EQ(standingOf(comparison), (Lines{"none+0", "none+0"}));
    EXPECT_EQ(comparison.spares, Lines{""});
}

/// Each attribute alone is told alone.
TEST(Compare, OneAttributeThatDiffersIsToldAlone) {
    struct Row {
        std::function<void(LogicalDriveFacts&)> change;
        const char* line;
    };
    const std::vector<Row> rows = {
        {[](auto& each) { each.raidType = "RAID0", each.capacityBytes = 3 * driveMb * mb; },
         "raid_type - 1: RAID5 | RAID0"},
        {[](auto& each) { each.capacityBytes = 100000 * mb; },
         "capacity_bytes - 1: fill (135.5 GB) | 97.7 GB"},
        {[](auto& each) { each.stripSizeBytes = 128 * kb; },
         "strip_size_bytes - 1: 64 KB | 128 KB"},
        {[](auto& each) { each.writeCache = "WriteThrough"; },
         "write_cache_policy - 1: write-back | write-through"},
        {[](auto& each) { each.readCache = "Off"; },
         "read_cache_policy - 1: adaptive read-ahead | no read-ahead"},
        {[](auto& each) { each.readCache = "ReadAhead"; },
         "read_cache_policy - 1: adaptive read-ahead | read-ahead"},
    };
    for (const bool isListed : {true, false}) {
        for (const Row& row : rows) {
            Server server = usual();
            const Layout wanted = server.wanted(isListed);
            row.change(server.facts.logicalDrives[1]);
            const Comparison comparison = server.against(wanted);
            EXPECT_EQ(comparison.result, Sameness::different);
            EXPECT_EQ(linesOf(comparison), Lines{row.line});
            EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "1+0"})) << row.line;
            EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>());
        }
    }
}

TEST(Compare, WhatIsLeftToTheControllerIsWhatIsFound) {
    const Server server = usual();
    Layout wanted = server.wanted();
    for (LayoutGroup& group : wanted.groups) {
        group.volumes[0].stripSizeBytes.reset();
        group.volumes[0].writeCache.clear();
        group.volumes[0].readCache.clear();
    }
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(comparison.result, Sameness::same);
    EXPECT_EQ(comparison.notComparable, Lines());
}

/// Policies know on and off, however the listing calls it.
TEST(Compare, WriteBackIsWriteBackWithAndWithoutProtection) {
    for (const char* utility : {"MEGACLI", "ARCCONF"}) {
        Server server = usual();
        const Layout wanted = server.wanted();
        server.facts.logicalDrives[0].writeCache = "ProtectedWriteBack";
        EXPECT_EQ(server.against(wanted, utility).result, Sameness::same) << utility;
        server.facts.logicalDrives[0].writeCache = "WriteThrough";
        EXPECT_EQ(linesOf(server.against(wanted, utility)),
                  Lines{"write_cache_policy - 0: write-back | write-through"});
    }
}

// Drives.

TEST(Compare, ASpareThatSteppedInIsEquivalent) {
    for (const bool isListed : {true, false}) {
        const Layout wanted = usual().wanted(isListed);
        Server server;
        server.add("RAID1", {{slot(0), slot(1)}}, driveMb);
        server.add("RAID5", {{slot(2), slot(7), slot(4)}}, 2 * driveMb);
        server.addSpare(slot(3));
        const Comparison comparison = server.against(wanted);
        EXPECT_EQ(comparison.result, Sameness::equivalent);
        EXPECT_EQ(linesOf(comparison), Lines());
        EXPECT_EQ(comparison.equivalences, Lines{"the spare is 32:3 instead of 32:7"});
        EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "1+1 whole"}));
        EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>());
        EXPECT_EQ(comparison.spares, Lines{slot(3)});
        EXPECT_EQ(comparison.sparesInTheWay, Lines());
    }
}

TEST(Compare, ASpareOfAnotherKindOrPlaceIsNoStandIn) {
    struct Row {
        const char* name;
        std::function<void(DriveFacts&)> change;
    };
    const std::vector<Row> rows = {
        {"size", [](auto& each) { *each.capacityBytes += 2 * mb; }},
        {"protocol", [](auto& each) { each.protocol = "SATA"; }},
        {"medium", [](auto& each) { each.mediaType = "SSD"; }},
        {"state", [](auto& each) { each.health = Health::critical; }},
        {"foreign", [](auto& each) { each.isForeign = true; }},
    };
    for (const Row& row : rows) {
        const Layout wanted = usual().wanted();
        Server server;
        server.add("RAID1", {{slot(0), slot(1)}}, driveMb);
        server.add("RAID5", {{slot(2), slot(7), slot(4)}}, 2 * driveMb);
        server.addSpare(slot(3));
        row.change(server.at(slot(7)));
        const Comparison comparison = server.against(wanted);
        EXPECT_EQ(linesOf(comparison), (Lines{"drives - 1: 32:2 32:3 32:4 | 32:2 32:4 32:7",
                                              "moved 32:7 -: hot spare 32:7 | hot spare 32:3"}))
            << row.name;
        EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "none+0"})) << row.name;
        EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>{1}) << row.name;
        EXPECT_EQ(comparison.sparesInTheWay, Lines{slot(3)}) << row.name;
    }
}

/// Where pairs name places, the stand-in has to be in the same enclosure.
TEST(Compare, PairsKeepAStandInToItsEnclosure) {
    for (const bool isByPairs : {false, true}) {
        Layout wanted = usual().wanted();
        wanted.groups[1].isByPairs = isByPairs;
        Server server;
        server.add("RAID1", {{slot(0), slot(1)}}, driveMb);
        server.add("RAID5", {{slot(2), slot(7), slot(4)}}, 2 * driveMb);
        server.addSpare(slot(3));
        server.at(slot(7)).enclosure = 33;
        EXPECT_EQ(server.against(wanted).result,
                  isByPairs ? Sameness::different : Sameness::equivalent);
    }
}

/// Without being the spare, the drive that left is no everyday case.
TEST(Compare, AnyOtherMoveOfListedDrivesIsAMove) {
    const Layout wanted = usual().wanted();
    Server server;
    server.add("RAID1", {{slot(0), slot(1)}}, driveMb);
    server.add("RAID5", {{slot(2), slot(6), slot(4)}}, 2 * driveMb);
    server.addSpare(slot(7));
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(linesOf(comparison), Lines{"moved - 1: 32:2 32:3 32:4 | 32:2 32:4 32:6"});
    EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "none+0"}));
    EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>{1});
    EXPECT_EQ(comparison.spares, Lines{slot(7)});
}

TEST(Compare, TwoSparesThatSteppedInAreAMove) {
    Server before = usual();
    before.addSpare(slot(8));
    const Layout wanted = before.wanted();
    Server server;
    server.add("RAID1", {{slot(0), slot(8)}}, driveMb);
    server.add("RAID5", {{slot(2), slot(7), slot(4)}}, 2 * driveMb);
    server.addSpare(slot(3));
    server.addSpare(slot(1));
    EXPECT_EQ(server.against(wanted).result, Sameness::different);
    Layout automatic = before.wanted(false);
    EXPECT_EQ(server.against(automatic).result, Sameness::equivalent);
    EXPECT_EQ(server.against(automatic).equivalences,
              (Lines{"the spare is 32:3 instead of 32:7", "the spare is 32:1 instead of 32:8"}));
}

TEST(Compare, ListedSparesStandWhereTheyAreListed) {
    const Layout wanted = usual().wanted();
    Server server = usual();
    server.at(slot(7)) = boxDrive(slot(7));
    server.addSpare(slot(9));
    EXPECT_EQ(linesOf(server.against(wanted)),
              Lines{"moved 32:7 -: hot spare 32:7 | hot spare 32:9"});
    EXPECT_EQ(server.against(usual().wanted(false)).equivalences,
              Lines{"the spare is 32:9 instead of 32:7"});
}

TEST(Compare, ArraysThatWereChosenAutomaticallyMayLieOnEqualDrives) {
    const Layout wanted = usual().wanted(false);
    Server server;
    server.add("RAID5", {{slot(0), slot(5), slot(9)}}, 2 * driveMb);
    server.add("RAID1", {{slot(3), slot(7)}}, driveMb);
    server.addSpare(slot(1));
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(comparison.result, Sameness::equivalent);
    EXPECT_EQ(comparison.equivalences, (Lines{"LD 1 lies on 32:3 32:7 instead of 32:0 32:1",
                                              "LD 0 lies on 32:0 32:5 32:9 instead of 32:2 32:3 "
                                              "32:4",
                                              "the spare is 32:1 instead of 32:7"}));
    EXPECT_EQ(standingOf(comparison), (Lines{"1+1 whole", "0+1 whole"}));
    EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>());
    server.at(slot(9)).capacityBytes = (driveMb - 5) * mb;
    EXPECT_EQ(server.against(wanted).result, Sameness::different);
}

TEST(Compare, TwoArraysThatExchangedTheirDrives) {
    Server before;
    before.add("RAID1", {{slot(0), slot(1)}}, driveMb);
    before.add("RAID0", {{slot(2), slot(3)}}, 2 * driveMb);
    Server server;
    server.add("RAID0", {{slot(0), slot(1)}}, 2 * driveMb);
    server.add("RAID1", {{slot(2), slot(3)}}, driveMb);
    EXPECT_EQ(server.against(before.wanted(false)).result, Sameness::equivalent);
    EXPECT_EQ(standingOf(server.against(before.wanted(false))), (Lines{"1+1 whole", "0+1 whole"}));
    // On listed drives the levels are what is wrong.
    EXPECT_EQ(linesOf(server.against(before.wanted())),
              (Lines{"raid_type - 0: RAID1 | RAID0", "raid_type - 1: RAID0 | RAID1",
                     "capacity_bytes - 1: fill (135.5 GB) | 67.8 GB"}));
}

TEST(Compare, OtherDrivesAreToldWithTheArrayThatHasMostOfThem) {
    Server before;
    before.add("RAID5", {{slot(2), slot(3), slot(4), slot(5), slot(6)}}, 4 * driveMb);
    for (const bool isListed : {true, false}) {
        Server server;
        server.add("RAID1", {{slot(5), slot(6)}}, driveMb);
        server.add("RAID5", {{slot(2), slot(3), slot(4)}}, 2 * driveMb);
        const Comparison comparison = server.against(before.wanted(isListed));
        EXPECT_EQ(linesOf(comparison),
                  (Lines{"drives - 1: 32:2 32:3 32:4 32:5 32:6 | 32:2 32:3 32:4",
                         "surplus - 0: none | RAID1 fill, strip 64 KB, write-back, adaptive "
                         "read-ahead: 32:5 32:6"}));
        EXPECT_EQ(standingOf(comparison), Lines{"none+0"});
        EXPECT_EQ(comparison.groupsInTheWay, (std::vector<std::size_t>{0, 1}));
    }
}

TEST(Compare, WhatIsMissingAndWhatIsTooMuch) {
    const Server before = usual();
    Server server = usual();
    server.facts.logicalDrives.pop_back();
    server.at(slot(7)) = boxDrive(slot(7), DriveState::member);
    server.add("RAID0", {{slot(9)}}, driveMb);
    server.addSpare(slot(10));
    server.at(slot(10)).capacityBytes = 10 * mb;
    const Comparison comparison = server.against(before.wanted(false));
    EXPECT_EQ(linesOf(comparison),
              (Lines{"missing - Logical.2: RAID5 fill, strip 64 KB, write-back, adaptive "
                     "read-ahead: 32:2 32:3 32:4 | none",
                     "surplus - 1: none | RAID0 fill, strip 64 KB, write-back, adaptive "
                     "read-ahead: 32:9",
                     "missing 32:7 -: hot spare | none; 32:7 is a member of an array",
                     "surplus 32:10 -: none | hot spare"}));
    EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "none+0"}));
    EXPECT_EQ(comparison.groupsInTheWay, std::vector<std::size_t>{1});
    EXPECT_EQ(comparison.spares, Lines{""});
    EXPECT_EQ(comparison.sparesInTheWay, Lines{slot(10)});
}

TEST(Compare, AGroupThatLacksItsLaterLogicalDrivesStandsInPart) {
    Server whole;
    whole.add("RAID5", {{slot(0), slot(1), slot(2)}}, 50000);
    whole.add("RAID5", {{slot(0), slot(1), slot(2)}}, 40000);
    whole.add("RAID5", {{slot(0), slot(1), slot(2)}}, 2 * driveMb - 90000);
    const Layout wanted = whole.wanted();
    ASSERT_EQ(wanted.groups.size(), 1U);
    EXPECT_EQ(standingOf(whole.against(wanted)), Lines{"0+3 whole"});
    Server server = whole;
    server.facts.logicalDrives.pop_back();
    EXPECT_EQ(linesOf(server.against(wanted)),
              Lines{"missing - Logical.3: RAID5 fill, strip 64 KB, write-back, adaptive "
                    "read-ahead: 32:0 32:1 32:2 | none"});
    EXPECT_EQ(standingOf(server.against(wanted)), Lines{"0+2"});
    server.facts.logicalDrives[1].stripSizeBytes = 8 * kb;
    EXPECT_EQ(standingOf(server.against(wanted)), Lines{"0+1"});
    // More than is wanted stands in the way behind what stands.
    Server more = whole;
    Layout less = wanted;
    less.groups[0].volumes.pop_back();
    EXPECT_EQ(linesOf(more.against(less)),
              Lines{"surplus - 2: none | RAID5 fill, strip 64 KB, write-back, adaptive "
                    "read-ahead: 32:0 32:1 32:2"});
    EXPECT_EQ(standingOf(more.against(less)), Lines{"0+2"});
}

TEST(Compare, AMirrorOfFourDrivesIsRaid10OfPairs) {
    Server server;
    server.add("RAID1", {{slot(0), slot(1), slot(2), slot(3)}}, 2 * driveMb);
    Layout wanted;
    LayoutGroup& group = wanted.groups.emplace_back();
    group.isListed = true;
    group.spans = {{slot(3), slot(2), slot(1), slot(0)}};
    LayoutVolume& volume = group.volumes.emplace_back();
    volume.raidType = "RAID10";
    volume.fills = true;
    volume.capacityBytes = 2 * driveMb * mb;
    normalize(wanted);
    EXPECT_EQ(server.against(wanted).result, Sameness::same);
    wanted.groups[0].volumes[0].raidType = "RAID1";
    normalize(wanted);
    EXPECT_EQ(server.against(wanted).result, Sameness::same);
}

TEST(Compare, AMirrorOfFourDrivesThatIsALevelOfItsOwnIsNoRaid10) {
    for (const DeepMirrors kind : {DeepMirrors::ofPairs, DeepMirrors::ofAll}) {
        const std::uint64_t size = (kind == DeepMirrors::ofPairs ? 2 : 1) * driveMb;
        Server server;
        server.facts.deepMirrors = kind;
        server.add("RAID1", {{slot(0), slot(1), slot(2), slot(3)}}, size);
        EXPECT_EQ(capturedLayout(server.facts).groups.at(0).spans.size(), 1U);
        EXPECT_TRUE(capturedLayout(server.facts).groups.at(0).volumes.at(0).fills);
        Layout wanted;
        wanted.deepMirrors = kind;
        LayoutGroup& group = wanted.groups.emplace_back();
        group.isListed = true;
        group.spans = {{slot(3), slot(2), slot(1), slot(0)}};
        LayoutVolume& volume = group.volumes.emplace_back();
        volume.raidType = "RAID1";
        volume.fills = true;
        volume.capacityBytes = size * mb;
        normalize(wanted);
        EXPECT_EQ(server.against(wanted).result, Sameness::same);
        // Half of the room is not all of it.
        Server half;
        half.facts.deepMirrors = kind;
        half.add("RAID1", {{slot(0), slot(1), slot(2), slot(3)}}, size / 2);
        EXPECT_EQ(half.against(wanted).result, Sameness::different);
        wanted.groups[0].volumes[0].raidType = "RAID10";
        normalize(wanted);
        EXPECT_EQ(server.against(wanted).result, Sameness::different);
    }
}

TEST(Compare, SpansThatTheListingTellsAreCompared) {
    Server before;
    before.add("RAID10", {{slot(0), slot(1)}, {slot(2), slot(3)}}, 2 * driveMb);
    Server server;
    server.add("RAID10", {{slot(0), slot(2)}, {slot(1), slot(3)}}, 2 * driveMb);
    const Comparison listed = server.against(before.wanted());
    EXPECT_EQ(linesOf(listed),
              Lines{"moved - 0: (32:0 32:1) (32:2 32:3) | (32:0 32:2) (32:1 32:3)"});
    const Comparison automatic = server.against(before.wanted(false));
    EXPECT_EQ(automatic.result, Sameness::equivalent);
    EXPECT_EQ(automatic.equivalences,
              Lines{"LD 0 has its drives in other spans: (32:0 32:2) (32:1 32:3)"});
    // One list of drives tells no spans.
    Server flat;
    flat.add("RAID10", {{slot(0), slot(2), slot(1), slot(3)}}, 2 * driveMb);
    EXPECT_EQ(flat.against(before.wanted()).result, Sameness::same);
}

// Health.

TEST(Compare, HealthIsToldAndIsNoDifference) {
    Server server = usual();
    const Layout wanted = server.wanted();
    server.facts.logicalDrives[1].health = Health::critical;
    server.facts.logicalDrives[1].reportedState = "Degraded";
    server.at(slot(3)).state = DriveState::failed;
    server.at(slot(4)).state = DriveState::rebuilding;
    server.at(slot(1)).state = DriveState::rebuilding;
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(comparison.result, Sameness::same);
    EXPECT_EQ(comparison.health,
              (Lines{"LD 0: 32:1 rebuilding", "LD 1 is degraded: 32:3 failed, 32:4 rebuilding"}));
    EXPECT_EQ(standingOf(comparison), (Lines{"0+1 whole", "1+1 whole"}));
}

TEST(Compare, AStateThatIsNotKnownIsTold) {
    Server server = usual();
    const Layout wanted = server.wanted();
    server.facts.logicalDrives[1].health = Health::unknown;
    server.facts.logicalDrives[1].reportedState.clear();
    EXPECT_EQ(server.against(wanted).health, Lines()); // there is no word
    server.facts.logicalDrives[1].reportedState = "Wxyz";
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(comparison.result, Sameness::same);
    EXPECT_EQ(comparison.health, Lines{"LD 1 is Wxyz, which is not known"});
}

// Spares.

TEST(Compare, ADedicatedSpareCoversLessThanAGlobalOne) {
    const Layout wanted = usual().wanted();
    Server server = usual();
    server.addSpare(slot(7), HotspareKind::dedicated);
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(linesOf(comparison), Lines{"hotspare_type 32:7 -: global | dedicated"});
    EXPECT_EQ(comparison.spares, Lines{""});
    EXPECT_EQ(comparison.sparesInTheWay, Lines{slot(7)});
    // Of one array that can use it, it covers as much.
    Server one;
    one.add("RAID5", {{slot(2), slot(3), slot(4)}}, 2 * driveMb);
    one.add("RAID0", {{slot(0)}}, driveMb);
    one.addSpare(slot(7));
    const Layout all = one.wanted();
    one.addSpare(slot(7), HotspareKind::dedicated);
    EXPECT_EQ(one.against(all).result, Sameness::same);
}

TEST(Compare, AMissingSpareSaysWhatItsDriveDoes) {
    struct Row {
        DriveState state;
        const char* text;
    };
    for (const Row& row : {Row{DriveState::free, "none; 32:7 is free"},
                           Row{DriveState::failed, "none; 32:7 is failed"},
                           Row{DriveState::missing, "none; 32:7 is missing"},
                           Row{DriveState::foreign, "none; 32:7 is foreign"},
                           Row{DriveState::rebuilding, "none; 32:7 is rebuilding"},
                           Row{DriveState::jbod, "none; 32:7 is a disk of its own"},
                           Row{DriveState::unknown, "none"}}) {
        Server server = usual();
        Layout wanted = server.wanted();
        wanted.spares[0].covers = {"A", "B"};
        server.at(slot(7)) = boxDrive(slot(7), row.state);
        EXPECT_EQ(linesOf(server.against(wanted)),
                  Lines{std::string("missing 32:7 -: hot spare (covers A, B) | ") + row.text});
    }
    Layout wanted = usual().wanted();
    wanted.spares[0].location = "32:99";
    EXPECT_EQ(usual().against(wanted).differences[0].found, "hot spare 32:7");
    wanted.spares[0].isListed = false;
    EXPECT_EQ(usual().against(wanted).differences[0].found, "none; there is no drive 32:99");
}

// Sizes.

/// Two drives' worth of data with strips of 64 KB: a full stripe of 128 KB.
TEST(Compare, SizesMayBeOffByTheListingsDigitsAFullStripeAndAMegabyte) {
    struct Row {
        std::uint64_t granularity;
        std::uint64_t off;
        bool isSame;
    };
    const std::uint64_t base = 128 * kb + mb;
    for (const Row& row : {Row{0, base, true}, Row{0, base + 1, false}, Row{mb, base + mb, true},
                           Row{mb, base + mb + 1, false}, Row{1048 * mb, base + 1048 * mb, true},
                           Row{1048 * mb, base + 1048 * mb + 1, false}}) {
        for (const bool isLarger : {true, false}) {
            Server server;
            LogicalDriveFacts& logical = server.add("RAID5", {{slot(0), slot(1), slot(2)}}, 50000);
            const Layout wanted = server.wanted();
            ASSERT_FALSE(wanted.groups[0].volumes[0].fills);
            logical.capacityTolerance = row.granularity;
            *logical.capacityBytes += isLarger ? row.off : 0 - row.off;
            EXPECT_EQ(server.against(wanted).result,
                      row.isSame ? Sameness::same : Sameness::different)
                << row.granularity << " " << row.off << " " << isLarger;
        }
    }
}

TEST(Compare, SizesThatLookAlikeAreToldInMegabytes) {
    Server server;
    server.add("RAID5", {{slot(0), slot(1), slot(2)}}, 50000);
    const Layout wanted = server.wanted();
    *server.facts.logicalDrives[0].capacityBytes += 3 * mb;
    EXPECT_EQ(linesOf(server.against(wanted)), Lines{"capacity_bytes - 0: 50000 MB | 50003 MB"});
}

/// 139 MB, the listing's digits and 2 of 1000 of what is wanted may be missing.
TEST(Compare, WhatFillsItsDrivesMayLeaveALittle) {
    const std::uint64_t whole = 2 * driveMb * mb;
    for (const std::uint64_t granularity : {std::uint64_t{0}, mb, 1048 * mb}) {
        // The room that is left is counted drive by drive, in whole bytes.
        const std::uint64_t least =
            whole - 139 * mb - granularity - metadataBytes(driveMb * mb) * 2;
        for (const bool isEnough : {true, false}) {
            Server server;
            LogicalDriveFacts& logical =
                server.add("RAID5", {{slot(0), slot(1), slot(2)}}, 2 * driveMb);
            const Layout wanted = server.wanted();
            ASSERT_TRUE(wanted.groups[0].volumes[0].fills);
            logical.capacityTolerance = granularity;
            logical.capacityBytes = isEnough ? least + 2 : least - 2;
            EXPECT_EQ(server.against(wanted).result,
                      isEnough ? Sameness::same : Sameness::different)
                << granularity << " " << isEnough;
        }
    }
}

/// Without the sizes of all drives, what is wanted alone tells it.
TEST(Compare, WhatFillsDrivesOfUnknownSizeIsHeldAgainstTheWantedSize) {
    for (const bool isEnough : {true, false}) {
        Server server;
        LogicalDriveFacts& logical =
            server.add("RAID5", {{slot(0), slot(1), slot(2)}}, 2 * driveMb);
        const Layout wanted = server.wanted();
        server.at(slot(1)).capacityBytes.reset();
        const std::uint64_t whole = 2 * driveMb * mb;
        const std::uint64_t least = whole - 139 * mb - metadataBytes(whole);
        logical.capacityBytes = isEnough ? least : least - 1;
        EXPECT_EQ(server.against(wanted).result, isEnough ? Sameness::same : Sameness::different);
    }
}

// What is not comparable.

struct NotComparableRow {
    const char* utility;
    const char* level;
    Lines attributes;
};

TEST(Compare, WhatAUtilityDoesNotTakeOrListIsNotComparable) {
    const Lines read = {"read_cache_policy"};
    const Lines cache = {"read_cache_policy", "write_cache_policy"};
    const Lines cacheAndStrip = {"read_cache_policy", "strip_size_bytes", "write_cache_policy"};
    const Lines readAndStrip = {"read_cache_policy", "strip_size_bytes"};
    const std::vector<NotComparableRow> rows = {
        {"MEGACLI", "RAID1", {}},
        {"MEGACLI", "RAID0", {}},
        {"ARCCONF", "RAID1", readAndStrip},
        {"ARCCONF", "None", readAndStrip},
        {"ARCCONF", "RAID0", read},
        {"HRCONF", "RAID1", cacheAndStrip},
        {"HRCONF", "None", cacheAndStrip},
        {"HRCONF", "RAID0", cache},
        {"QTCSEND", "RAID1", cacheAndStrip},
        {"QTCSEND", "RAID0", cacheAndStrip},
        {"CFGGEN", "RAID1", cacheAndStrip},
        {"CFGGEN", "RAID0", cacheAndStrip},
        {"CFGGEN1.02.02", "RAID1", cacheAndStrip},
        {"CFGGEN1.02.02", "RAID0", cacheAndStrip},
        {"HYPERWIN", "RAID1", readAndStrip},
        {"HYPERWIN", "RAID0", read},
    };
    for (const NotComparableRow& row : rows) {
        Server server;
        const std::uint64_t size = std::string(row.level) == "RAID1" ? driveMb : 2 * driveMb;
        LogicalDriveFacts& logical = server.add(row.level, {{slot(0), slot(1)}}, size);
        const Layout wanted = server.wanted();
        const Comparison same = server.against(wanted, row.utility);
        EXPECT_EQ(same.notComparable, row.attributes) << row.utility << " " << row.level;
        // What is not compared may be anything.
        const auto holds = [&](const char* attribute) {
            return std::count(row.attributes.begin(), row.attributes.end(), attribute) != 0;
        };
        logical.stripSizeBytes = 16 * kb;
        logical.writeCache = "WriteThrough";
        logical.readCache = "Off";
        Lines expected;
        if (!holds("strip_size_bytes")) {
            expected.emplace_back("strip_size_bytes - 0: 64 KB | 16 KB");
        }
        if (!holds("write_cache_policy")) {
            expected.emplace_back("write_cache_policy - 0: write-back | write-through");
        }
        if (!holds("read_cache_policy")) {
            expected.emplace_back("read_cache_policy - 0: adaptive read-ahead | no read-ahead");
        }
        EXPECT_EQ(linesOf(server.against(wanted, row.utility)), expected)
            << row.utility << " " << row.level;
    }
}

/// ARCCONF is told to turn read-ahead off, and never to turn it on.
TEST(Compare, ArcconfTakesReadAheadThatIsOffAlone) {
    Server server = usual();
    server.facts.logicalDrives[0].readCache = "Off";
    server.facts.logicalDrives[1].readCache = "Off";
    const Layout wanted = server.wanted();
    EXPECT_EQ(server.against(wanted, "ARCCONF").notComparable, Lines{"strip_size_bytes"});
    server.facts.logicalDrives[0].readCache = "ReadAhead";
    EXPECT_EQ(linesOf(server.against(wanted, "ARCCONF")),
              Lines{"read_cache_policy - 0: no read-ahead | read-ahead"});
}

TEST(Compare, WhatTheListingDoesNotTellIsNotComparable) {
    Server server = usual();
    const Layout wanted = server.wanted();
    LogicalDriveFacts& logical = server.facts.logicalDrives[0];
    logical.capacityBytes.reset();
    logical.stripSizeBytes.reset();
    logical.writeCache.clear();
    logical.readCache.clear();
    const Comparison comparison = server.against(wanted);
    EXPECT_EQ(comparison.result, Sameness::same);
    EXPECT_EQ(comparison.notComparable, (Lines{"capacity_bytes", "read_cache_policy",
                                               "strip_size_bytes", "write_cache_policy"}));
}

TEST(Compare, HrconfMakesLogicalDrivesAsLargeAsTheirDrives) {
    Server server;
    server.add("RAID5", {{slot(0), slot(1), slot(2)}}, 2 * driveMb);
    Layout wanted = server.wanted();
    wanted.groups[0].volumes[0].fills = false;
    wanted.groups[0].volumes[0].capacityBytes = 5000 * mb;
    const Comparison comparison = server.against(wanted, "HRCONF");
    EXPECT_EQ(comparison.result, Sameness::same);
    EXPECT_EQ(comparison.notComparable,
              (Lines{"capacity_bytes", "read_cache_policy", "write_cache_policy"}));
    EXPECT_EQ(linesOf(server.against(wanted, "CFGGEN")),
              Lines{"capacity_bytes - 0: 4.9 GB | 135.5 GB"});
    // One that was made smaller by other means is not as planned.
    server.facts.logicalDrives[0].capacityBytes = 9000 * mb;
    EXPECT_EQ(linesOf(server.against(wanted, "HRCONF")),
              Lines{"capacity_bytes - 0: 4.9 GB | 8.8 GB"});
}

TEST(Compare, HyperwinChoosesItsDrivesItself) {
    Server server(2);
    server.add("RAID0", {{slot(0), slot(1)}}, 2 * driveMb);
    Layout wanted = server.wanted();
    server.facts.logicalDrives[0].capacityBytes.reset();
    wanted.groups[0].spans = {{slot(0)}};
    EXPECT_EQ(server.against(wanted, "HYPERWIN").result, Sameness::same);
    EXPECT_EQ(server.against(wanted, "HYPERWIN").notComparable,
              (Lines{"capacity_bytes", "drives", "read_cache_policy"}));
    EXPECT_EQ(server.against(wanted, "MEGACLI").result, Sameness::different);
    Server spared(2);
    spared.add("RAID0", {{slot(0)}}, driveMb);
    spared.addSpare(slot(1));
    Layout other = spared.wanted();
    other.spares[0].location = slot(0);
    EXPECT_EQ(spared.against(other, "HYPERWIN").result, Sameness::same);
    EXPECT_EQ(spared.against(other, "HYPERWIN").spares, Lines{slot(1)});
}

// Properties.

/// A server with any arrays on drives of two kinds.
Server randomServer(std::mt19937& random) {
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    Server server(8 + upTo(24));
    for (DriveFacts& each : server.facts.drives) {
        if (upTo(3) == 0) {
            each.capacityBytes = 34715 * mb;
        }
    }
    Locations free;
    for (const DriveFacts& each : server.facts.drives) {
        free.push_back(each.location);
    }
    std::shuffle(free.begin(), free.end(), random);
    const auto takeDrives = [&](std::size_t count) {
        Locations taken;
        while (taken.size() < count && !free.empty()) {
            taken.push_back(free.back());
            free.pop_back();
        }
        return taken;
    };
    struct Row {
        const char* level;
        std::size_t least;
        bool isEven;
    };
    const std::vector<Row> levels = {{"RAID0", 1, false},
                                     {"RAID1", 2, false},
                                     {"RAID5", 3, false},
                                     {"RAID6", 4, false},
                                     {"RAID10", 4, true}};
    for (int arrays = upTo(5); arrays >= 0 && free.size() > 8; --arrays) {
        const Row& row = levels[static_cast<std::size_t>(upTo(4))];
        const std::size_t more = std::string(row.level) == "RAID1"
                                     ? 0
                                     : static_cast<std::size_t>(upTo(3)) * (row.isEven ? 2 : 1);
        const Locations drives = takeDrives(row.least + more);
        std::vector<Locations> spans = {drives};
        if (row.isEven) {
            spans.clear();
            for (std::size_t i = 0; i + 1 < drives.size(); i += 2) {
                spans.push_back({drives[i], drives[i + 1]});
            }
        }
        const std::uint64_t halves = dataHalves(row.level, drives.size(), spans.size());
        const std::uint64_t whole = 34715 * halves / 2;
        const std::uint64_t size = upTo(1) == 0 ? whole / 2 : whole;
        LogicalDriveFacts& logical = server.add(row.level, spans, size);
        logical.stripSizeBytes = (std::uint64_t{16} << static_cast<unsigned>(upTo(3))) * kb;
        logical.writeCache = upTo(1) == 0 ? "WriteThrough" : "UnprotectedWriteBack";
        logical.readCache = upTo(1) == 0 ? "Off" : "ReadAhead";
        if (size != whole && upTo(2) == 0) {
            server.add(row.level, spans, whole / 4);
        }
    }
    for (const std::string& location : takeDrives(static_cast<std::size_t>(upTo(2)))) {
        server.addSpare(location);
    }
    return server;
}

/// Another order of everything that has none.
void shuffle(Server& server, std::mt19937& random) {
    std::vector<LogicalDriveFacts>& logicals = server.facts.logicalDrives;
    std::vector<std::vector<LogicalDriveFacts>> groups;
    for (LogicalDriveFacts& logical : logicals) {
        if (!groups.empty() && groups.back().front().spans == logical.spans) {
            groups.back().push_back(logical);
        } else {
            groups.push_back({logical});
        }
    }
    std::shuffle(groups.begin(), groups.end(), random);
    logicals.clear();
    for (std::vector<LogicalDriveFacts>& group : groups) {
        for (LogicalDriveFacts& logical : group) {
            std::shuffle(logical.spans.begin(), logical.spans.end(), random);
            for (Locations& span : logical.spans) {
                std::shuffle(span.begin(), span.end(), random);
            }
            logicals.push_back(std::move(logical));
        }
    }
    std::shuffle(server.facts.drives.begin(), server.facts.drives.end(), random);
}

TEST(Compare, ALayoutIsItselfInAnyOrder) {
    std::mt19937 random(20261122);
    int groups = 0;
    for (int i = 0; i < 2000; ++i) {
        const Server server = randomServer(random);
        Server other = server;
        shuffle(other, random);
        for (const bool isListed : {true, false}) {
            const Comparison comparison = other.against(server.wanted(isListed));
            ASSERT_EQ(comparison.result, Sameness::same) << i << " " << linesOf(comparison)[0];
            ASSERT_TRUE(std::all_of(comparison.groups.begin(), comparison.groups.end(),
                                    [](const StandingGroup& each) { return each.isWhole; }));
            groups += static_cast<int>(comparison.groups.size());
        }
        ASSERT_EQ(layoutLines(capturedLayout(other.facts)),
                  layoutLines(capturedLayout(server.facts)));
    }
    EXPECT_GT(groups, 5000);
}

/// Drives of one kind take any of each other's places, and an automatic layout is still itself.
TEST(Compare, AnAutomaticLayoutIsEquivalentOnAnyEqualDrives) {
    std::mt19937 random(20261123);
    int moved = 0;
    for (int i = 0; i < 2000; ++i) {
        const Server server = randomServer(random);
        std::map<std::uint64_t, Locations> kinds;
        for (const DriveFacts& each : server.facts.drives) {
            kinds[*each.capacityBytes].push_back(each.location);
        }
        std::map<std::string, std::string> places;
        for (const auto& [size, from] : kinds) {
            Locations to = from;
            std::shuffle(to.begin(), to.end(), random);
            for (std::size_t k = 0; k < from.size(); ++k) {
                places[from[k]] = to[k];
            }
        }
        Server other = server;
        for (LogicalDriveFacts& logical : other.facts.logicalDrives) {
            for (Locations& span : logical.spans) {
                for (std::string& location : span) {
                    location = places[location];
                }
            }
        }
        for (DriveFacts& each : other.facts.drives) {
            const DriveFacts& old = *server.facts.drive(each.location);
            DriveFacts& target = other.at(places[each.location]);
            target.state = old.state;
            target.hotspare = old.hotspare;
        }
        const Comparison comparison = other.against(server.wanted(false));
        ASSERT_NE(comparison.result, Sameness::different) << i << " " << linesOf(comparison)[0];
        ASSERT_TRUE(std::all_of(comparison.groups.begin(), comparison.groups.end(),
                                [](const StandingGroup& each) { return each.isWhole; }));
        moved += comparison.result == Sameness::equivalent ? 1 : 0;
    }
    EXPECT_GT(moved, 1000);
}

TEST(Compare, AnyOneChangeIsFound) {
    const std::vector<std::pair<const char*, std::function<bool(LogicalDriveFacts&)>>> changes = {
        {"raid_type",
         [](auto& each) {
             each.raidType = each.raidType == "RAID0" ? "RAID5EE" : "RAID0";
             return true;
         }},
        {"capacity_bytes",
         [](auto& each) {
             *each.capacityBytes -= *each.capacityBytes / 10;
             return true;
         }},
        {"strip_size_bytes",
         [](auto& each) {
             *each.stripSizeBytes *= 2;
             return true;
         }},
        {"write_cache_policy",
         [](auto& each) {
             each.writeCache =
                 each.writeCache == "WriteThrough" ? "ProtectedWriteBack" : "WriteThrough";
             return true;
         }},
        {"read_cache_policy",
         [](auto& each) {
             each.readCache = each.readCache == "Off" ? "AdaptiveReadAhead" : "Off";
             return true;
         }},
        {"drives",
         [](auto& each) {
             each.spans.back().pop_back();
             return each.spans.size() == 1 && !each.spans.back().empty();
         }},
    };
    std::map<std::string, int> found;
    std::mt19937 random(20261124);
    for (int i = 0; i < 2000; ++i) {
        const Server server = randomServer(random);
        for (const auto& [attribute, change] : changes) {
            Server other = server;
            std::vector<LogicalDriveFacts>& logicals = other.facts.logicalDrives;
            if (logicals.empty() ||
                !change(logicals[static_cast<std::size_t>(i) % logicals.size()])) {
                continue;
            }
            for (const bool isListed : {true, false}) {
                const Comparison comparison = other.against(server.wanted(isListed));
                ASSERT_EQ(comparison.result, Sameness::different) << i << " " << attribute;
                found[attribute] += static_cast<int>(
                    std::any_of(comparison.differences.begin(), comparison.differences.end(),
                                [&name = attribute](const Difference& each) {
                                    return each.attribute == name || each.attribute == "missing";
                                }));
            }
        }
    }
    for (const auto& [attribute, change] : changes) {
        EXPECT_GT(found[attribute], 500) << attribute;
    }
}

} // namespace
} // namespace zolex::companion
