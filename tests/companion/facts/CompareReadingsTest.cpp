#include "companion/facts/CompareReadings.h"

#include "companion/facts/FactsReader.h"
#include "companion/facts/VirtualListings.h"
#include "model/Operations.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using Lines = std::vector<std::string>;
using zolex_sim::DriveStatus;

Lines textOf(const std::vector<ReadingDifference>& differences) {
    Lines lines;
    for (const ReadingDifference& each : differences) {
        lines.push_back((isContradiction(each.kind) ? "! " : "") + each.subject + ": " + each.what);
    }
    return lines;
}

/// Both readings of the first controller's listings.
Lines differences(zolex_sim::Server& server) {
    const zolex_sim::Controller& controller = server.controllers.front();
    const std::vector<std::string> listings = test::listingsOf(server, controller);
    const std::int32_t type = test::typeOf(controller);
    const test::CoreReading core = test::readByCore(type, listings);
    return textOf(compareReadings(readFacts(type, listings), core.controller, core.isRead));
}

/// What is found when the core has read other listings than the facts.
Lines differencesBetween(const std::vector<std::string>& ours,
                         const std::vector<std::string>& theirs) {
    constexpr std::int32_t type = controller_type::megaRaid;
    const test::CoreReading core = test::readByCore(type, theirs);
    return textOf(compareReadings(readFacts(type, ours), core.controller, core.isRead));
}

zolex_sim::Server megaRaidWith(std::vector<zolex_sim::DriveLocation> places) {
    zolex_sim::Server server = test::sampleServer("single");
    std::vector<zolex_sim::Drive>& drives = server.controllers.front().drives;
    drives.resize(places.size(), drives.front());
    for (std::size_t i = 0; i < places.size(); ++i) {
        drives[i].location = places[i];
        drives[i].serial = "SN" + std::to_string(i);
    }
    return server;
}

TEST(CompareReadings, EqualReadingsDifferInNothing) {
    zolex_sim::Server server = test::sampleServer("configured");
    EXPECT_EQ(differences(server), Lines());
}

TEST(CompareReadings, FailedDrivesAreLeftOutByZolex) {
    zolex_sim::Server server = test::sampleServer("single");
    server.controllers.front().drives[2].status = DriveStatus::failed;
    EXPECT_EQ(differences(server), Lines{"32:2: left out by zolex: failed"});
    server.controllers.front().drives[2].status = DriveStatus::bad; // has a number
    EXPECT_EQ(differences(server), Lines());
}

TEST(CompareReadings, DrivesOutsideItsChannelsAndIds) {
    zolex_sim::Server server =
        megaRaidWith({{8, 0}, {16, 0}, {24, 0}, {32, 36}, {40, 35}, {32, 35}});
    EXPECT_EQ(differences(server),
              (Lines{"32:36: left out by zolex: outside its 4 channels of 36 drives",
                     "40:35: left out by zolex: outside its 4 channels of 36 drives"}));
}

TEST(CompareReadings, DrivesInNoEnclosureBesideOthers) {
    zolex_sim::Server server = megaRaidWith({{32, 0}, {32, 1}, {std::nullopt, 0}});
    EXPECT_EQ(differences(server),
              (Lines{"32:0: zolex's command lines say :0, which is another drive",
                     "32:1: zolex's command lines say :1",
                     ":0: zolex's hot-spare line says 0:0, which is in enclosure 0"}));
}

TEST(CompareReadings, TwoDrivesAtOnePlace) {
    zolex_sim::Server server = megaRaidWith({{0, 3}, {std::nullopt, 3}});
    Lines lines = differences(server);
    lines.resize(2);
    EXPECT_EQ(lines, (Lines{"0:3: one of several drives at 1:3, where zolex keeps one",
                            ":3: one of several drives at 1:3, where zolex keeps one"}));
}

TEST(CompareReadings, LayoutsThatZolexDoesNotKeep) {
    zolex_sim::Server server = test::sampleServer("single");
    zolex_sim::Controller& controller = server.controllers.front();
    controller.drives[7].status = DriveStatus::hotspare;
    EXPECT_EQ(differences(server),
              Lines{"layout: zolex captures no hot spare without a logical drive"});
    zolex_sim::NewLogicalDrive request;
    request.level = zolex_sim::RaidLevel::raid1;
    request.spans = {{{32, 0}, {32, 1}}};
    ASSERT_FALSE(zolex_sim::createLogicalDrive(controller, request));
    request.spans = {{{32, 2}, {32, 3}}};
    request.stripeKb = 128;
    ASSERT_FALSE(zolex_sim::createLogicalDrive(controller, request));
    EXPECT_EQ(differences(server), Lines{"layout: several strip sizes: zolex keeps one"});
    controller.logicalDrives[0].stripeKb = controller.logicalDrives[1].stripeKb = 1024;
    EXPECT_EQ(differences(server), Lines{"layout: zolex does not keep strips of 1024 KB"});
}

TEST(CompareReadings, ReadingsThatContradictEachOther) {
    zolex_sim::Server server = test::sampleServer("configured");
    const zolex_sim::Controller& controller = server.controllers.front();
    const std::vector<std::string> ours = test::listingsOf(server, controller);

    zolex_sim::Server other = server;
    zolex_sim::Controller& changed = other.controllers.front();
    changed.drives[0].sizeMb = 70000;
    changed.drives[7].status = DriveStatus::good;
    changed.logicalDrives[0].sizeMb = 60000;
    changed.logicalDrives[1].level = zolex_sim::RaidLevel::raid6;
    std::swap(changed.arrays[0].spans[0][0], changed.arrays[1].spans[0][0]);
    changed.logicalDrives[0].stripeKb = changed.logicalDrives[1].stripeKb = 128;
    EXPECT_EQ(
        differencesBetween(ours, test::listingsOf(other, changed)),
        (Lines{"! 32:0: 69376 MB, and 70000 MB to zolex",
               "! logical drive 0: 69376 MB, and 60000 MB to zolex",
               "! logical drive 0: its members are not the same to zolex (2, and 2)",
               "! logical drive 1: RAID5, and RAID6 to zolex",
               "! logical drive 1: its members are not the same to zolex (5, and 5)",
               "! layout: strips of 64 KB, and 128 KB to zolex", "! 32:7: no hot spare to zolex"}));

    zolex_sim::Server bare = test::sampleServer("single");
    const std::vector<std::string> theirs = test::listingsOf(bare, bare.controllers.front());
    EXPECT_EQ(differencesBetween(ours, theirs),
              Lines{"! layout: zolex captures none of 2 logical drives"});
    EXPECT_EQ(differencesBetween(theirs, ours),
              (Lines{"! layout: 0 logical drives, and 2 to zolex",
                     "! layout: 1 hot spare to zolex, of which 0 are listed"}));
    zolex_sim::Server fewer = bare;
    fewer.controllers.front().drives.resize(7);
    const std::vector<std::string> of7 = test::listingsOf(fewer, fewer.controllers.front());
    EXPECT_EQ(differencesBetween(of7, theirs),
              Lines{"! position 1:7: zolex has a drive there that is not listed"});
    EXPECT_EQ(differencesBetween(theirs, of7),
              Lines{"! 32:7: left out by zolex, though it is \"Unconfigured(good)\""});
}

TEST(CompareReadings, ListingsThatZolexRefuses) {
    const std::string listing = zolex::test::readTestData("qtcsend-getconfig.txt");
    std::string refused = listing;
    refused.replace(refused.find("Kestrix-A4"), 10, "Kestrix-Z9");
    const std::vector<std::string> listings = {refused};
    const test::CoreReading core = test::readByCore(controller_type::family, listings);
    EXPECT_EQ(textOf(compareReadings(readFacts(controller_type::family, listings), core.controller,
                                     core.isRead)),
              Lines{"! listing: refused by zolex"});
}

TEST(CorePositions, AreThoseThatPoliciesName) {
    const auto positionsOf = [](zolex_sim::Server server) {
        const zolex_sim::Controller& controller = server.controllers.front();
        const std::int32_t type = test::typeOf(controller);
        const Facts facts = readFacts(type, test::listingsOf(server, controller));
        std::string text;
        const std::vector<std::optional<DrivePosition>> positions = corePositions(type, facts);
        for (std::size_t i = 0; i < positions.size(); ++i) {
            text += (i == 0 ? "" : " ") + facts.drives[i].location + "=" +
                    (positions[i] ? std::to_string(positions[i]->channel) + ":" +
                                        std::to_string(positions[i]->id)
                                  : "-");
        }
        return text;
    };
    EXPECT_EQ(positionsOf(megaRaidWith({{64, 5}, {32, 0}, {std::nullopt, 2}, {64, 36}})),
              "64:5=1:5 32:0=2:0 :2=3:2 64:36=-");
    EXPECT_EQ(positionsOf(test::sampleServer("hrconf")),
              "0:0=1:0 0:1=1:1 0:2=1:2 0:3=1:3 1:8=2:8 1:9=2:9 1:10=2:10");
    EXPECT_EQ(positionsOf(test::sampleServer("qtcsend")),
              "1:0=1:0 1:1=1:1 1:2=1:2 1:3=1:3 1:4=1:4 2:0=2:0 2:1=2:1 2:2=2:2");
    EXPECT_EQ(positionsOf(test::sampleServer("cfggen")),
              "1:0=1:0 1:1=1:1 1:2=1:2 1:3=1:3 1:4=1:4 1:5=1:5 2:0=2:0 2:1=2:1");
    EXPECT_EQ(positionsOf(test::sampleServer("cfggen-scsi")), "0=1:0 1=1:1 2=1:2");
    EXPECT_EQ(positionsOf(test::sampleServer("hyperwin")), "1=1:0 2=1:1");
}

} // namespace
} // namespace zolex::companion
