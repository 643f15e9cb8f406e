// What the facts tell of listings that are cut, cannot be true or are none.

#include "companion/facts/FactsReader.h"
#include "companion/facts/VirtualListings.h"
#include "companion/support/Texts.h"
#include "model/Codes.h"
#include "roles/Roles.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace zolex::companion {
namespace {

using test::replaced;

using zolex::test::readTestData;
using Lines = std::vector<std::string>;
using Listings = std::vector<std::string>;

std::string upTo(const std::string& text, const std::string& end) {
    return text.substr(0, text.find(end));
}

/// What is broken in the early MEGACLI listings when the drive listing is another.
Lines brokenDrives(const std::string& driveListing) {
    return test::brokenLines(readFacts(
        controller_type::megaRaid,
        Listings{"\nAdapter #0\n\nNumber of Virtual Disks: 0\n\nExit Code: 0x00\n", driveListing}));
}

Lines brokenDisks(const std::string& diskListing) {
    return test::brokenLines(
        readFacts(controller_type::megaRaid,
                  Listings{diskListing, readTestData("megacli-pdlist-early.txt")}));
}

Lines brokenIn(std::int32_t type, const std::string& listing) {
    return test::brokenLines(readFacts(type, Listings{listing}));
}

const std::string& megacliDrives() {
    static const std::string listing = readTestData("megacli-pdlist-early.txt");
    return listing;
}

const std::string& megacliDisks() {
    static const std::string listing = readTestData("megacli-ldpdinfo-early.txt");
    return listing;
}

const std::string& arcconf() {
    static const std::string listing = readTestData("arcconf-getconfig-plain.txt");
    return listing;
}

const std::string& segments() {
    static const std::string listing = readTestData("arcconf-getconfig-segments.txt");
    return listing;
}

TEST(BrokenListings, NoListing) {
    EXPECT_EQ(brokenIn(controller_type::arcconf7, ""), Lines{"0:1 the listing is empty"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7, " \r\n\t\n"), Lines{"0:1 the listing is empty"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7, "\nThe driver is not loaded.\n"),
              Lines{"0:2 no listing, but \"The driver is not loaded.\""});
    EXPECT_EQ(brokenIn(controller_type::lsiSas, "ERROR: " + std::string(100, 'x') + "\n"),
              Lines{"0:1 no listing, but \"ERROR: " + std::string(53, 'x') + "...\""});
    EXPECT_EQ(brokenDrives("Exit Code: 0x01\n"), Lines{"1:1 no listing, but \"Exit Code: 0x01\""});
    EXPECT_EQ(brokenDrives("Adapter #0\n\nExit Code: 0x01\n"),
              Lines{"1:3 the utility ended with exit code 0x01"});
    EXPECT_EQ(brokenIn(controller_type::lsiIde,
                       "HyperWin Command Line Utility 1.07\nError: There is no adapter.\n"
                       "Error Code (hex)                : 0001\n"),
              Lines{"0:2 no listing, but \"Error: There is no adapter.\""});
    EXPECT_EQ(brokenIn(controller_type::lsiIde, "Adapter 0\nError Code (hex) : 0001\n"),
              Lines{"0:2 the utility ended with error code 0001"});
}

TEST(BrokenListings, AnswersOfUtilitiesThatRefuse) {
    zolex_sim::Server server = test::sampleServer("mixed");
    const auto answer = [&](std::int32_t type, const std::vector<std::string>& command) {
        return brokenIn(type, zolex_sim::playUtility(server, command).output);
    };
    EXPECT_EQ(answer(controller_type::megaRaid, {"MEGACLI", "-pdList", "-a7"}),
              Lines{"0:2 no listing, but \"User specified controller is not present.\""});
    EXPECT_EQ(answer(controller_type::arcconf7, {"ARCCONF", "GETCONFIG", "7", "AL"}),
              Lines{"0:2 no listing, but \"Controller 7 does not exist.\""});
    EXPECT_EQ(answer(controller_type::hrconf8, {"HRCONF", "GETCONFIG", "7", "AL"}),
              Lines{"0:2 no listing, but \"Controller 7 does not exist.\""});
    EXPECT_EQ(answer(controller_type::family, {"QTCSEND", "GETCONFIG", "7", "AL"}),
              Lines{"0:2 no listing, but \"Error: There is no controller 7.\""});
    EXPECT_EQ(answer(controller_type::lsiSas, {"CFGGEN", "7", "DISPLAY"}),
              Lines{"0:2 no listing, but \"ERROR: There is no controller 7.\""});
    EXPECT_EQ(answer(controller_type::lsiScsi, {"CFGGEN1.02.02", "7", "DISPLAY"}),
              Lines{"0:2 no listing, but \"ERROR: There is no controller 7.\""});
}

TEST(BrokenListings, ThoseThatBreakOff) {
    EXPECT_EQ(brokenDrives(upTo(megacliDrives(), "Inquiry Data")),
              Lines{"1:19 the listing breaks off: its last line is missing"});
    EXPECT_EQ(brokenDrives(upTo(megacliDrives(), "Device Id")),
              (Lines{"1:4 physical drive 32:0 without a state",
                     "1:5 the listing breaks off: its last line is missing"}));
    EXPECT_EQ(brokenIn(controller_type::arcconf7, upTo(arcconf(), "Command completed")),
              Lines{"0:102 the listing breaks off: its last line is missing"});
    EXPECT_EQ(brokenIn(controller_type::lsiSas,
                       upTo(readTestData("cfggen-display.txt"), "Target on ID #5")),
              Lines{"0:54 the listing breaks off: its last line is missing"});
}

TEST(BrokenListings, DrivesWithoutTheirPlace) {
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Slot Number: 0\n", "")),
              Lines{"1:4 physical drive without an enclosure or without a slot"});
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Enclosure Device ID: 32\n", "")),
              Lines{"1:4 physical drive without an enclosure or without a slot"});
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Slot Number: 0\n", "Slot Number: x\n")),
              Lines{"1:5 \"Slot Number\" has no number, but \"x\""});
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Slot Number: 1\n", "Slot Number: 0\n")),
              Lines{"1:24 physical drive 32:0 is listed a second time"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7,
                       replaced(arcconf(), "Reported Channel,Device            : 0,2",
                                "Reported Channel,Device            : 0")),
              Lines{"0:81 \"Reported Channel,Device\" has no channel and device, but \"0\""});
    EXPECT_EQ(brokenIn(controller_type::lsiSas,
                       replaced(readTestData("cfggen-display.txt"),
                                "  Slot #                                  : 2\n", "")),
              Lines{"0:55 physical drive without an enclosure and a slot"});
}

TEST(BrokenListings, SizesAndStates) {
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Coerced Size: 69376MB [0x8780000 Sectors]\nF",
                                    "Coerced Size: large\nF")),
              Lines{"1:15 \"Coerced Size\" has no size, but \"large\""});
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "69376MB [0x8780000 Sectors]\nF",
                                    "69376MB [0x780000 Sectors]\nF")),
              Lines{"1:15 size in sectors and size in words differ"});
    EXPECT_EQ(brokenDrives(replaced(megacliDrives(), "Firmware state: Online\n", "")),
              Lines{"1:4 physical drive 32:0 without a state"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Size:138752MB", "Size:?")),
              Lines{"0:8 \"Size\" has no size, but \"?\""});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Size:138752MB\n", "")),
              Lines{"0:5 logical drive 0 without a size"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7,
                       replaced(arcconf(), "RAID level                               : 1",
                                "RAID level                               : 7")),
              Lines{"0:30 logical drive 1 has an unknown RAID level, \"7\""});
}

TEST(BrokenListings, MembersThatAreMissing) {
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Number of PDs: 3", "Number of PDs: 4")),
              Lines{"0:5 logical drive 0 announces 4 members in span 0, and 3 are listed"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Number Of Drives:3", "Number Of Drives:4")),
              Lines{"0:5 logical drive 0 announces 4 members, and 3 are listed"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Number of Spans: 1", "Number of Spans: 2")),
              Lines{"0:5 logical drive 0 announces 2 spans, and 1 is listed"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "Slot Number: 2", "Slot Number: 9")),
              Lines{"0:61 member 32:9 is not among the physical drives"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "3LQ2A002", "3LQ2A003")),
              Lines{"0:61 member 32:2 is drive 32:2 by its place, and 32:3 by its serial number"});
    EXPECT_EQ(brokenDisks(replaced(megacliDisks(), "PD: 2 Information\n", "")),
              Lines{"0:61 a member without a heading"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7,
                       replaced(segments(), "Present (0,1) NV7A0002", "Present (0,1) NV7A0003")),
              Lines{"0:48 member 0,1 is drive 0:1 by its place, and 0:2 by its serial number"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7,
                       replaced(segments(), "Present (0,1) NV7A0002", "Present (0,7) NV7A0009")),
              Lines{"0:48 member 0,7 is not among the physical drives"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7, replaced(arcconf(), "0,0 0,1 ", "0,0 ")),
              Lines{"0:30 logical drive 1 announces 2 members, and 1 is listed"});
}

TEST(BrokenListings, CountsOfTheListing) {
    const Facts facts =
        readFacts(controller_type::megaRaid,
                  Listings{megacliDisks(), megacliDrives(),
                           replaced(replaced(readTestData("megacli-adpallinfo.txt"),
                                             "Virtual Drives    : 1", "Virtual Drives    : 3"),
                                    "Disks           : 5", "Disks           : 6")});
    EXPECT_EQ(test::brokenLines(facts),
              (Lines{"2:55 \"Virtual Drives\" says 3, and 1 logical drive is listed",
                     "2:59 \"Disks\" says 6, and 5 physical drives are listed"}));
    EXPECT_EQ(brokenIn(controller_type::arcconf7, replaced(arcconf(), ": 1/0/0", ": 2/0/0")),
              Lines{"0:14 \"Logical drives/Offline/Critical\" says 2, and 1 logical drive is "
                    "listed"});
    EXPECT_EQ(brokenIn(controller_type::arcconf7,
                       replaced(arcconf(), "State                              : Online",
                                "State                              : Defunct")),
              Lines{"0:13 \"Defunct disk drive count\" says 0, and 1 failed drive is listed"});
}

TEST(BrokenListings, MemberLinesThatZolexWouldCut) {
    std::string list;
    for (int i = 0; i < 3; ++i) {
        list += "0," + std::to_string(i) + std::string(60, ' ');
    }
    const std::string longLine =
        replaced(arcconf(), "Drive(s) (Channel,Device)                : 0,0 0,1 ",
                 "Drive(s) (Channel,Device)                : " + list);
    const Facts facts =
        readFacts(controller_type::arcconf7,
                  Listings{replaced(longLine, "Number of segments                       : 2",
                                    "Number of segments                       : 3")});
    EXPECT_EQ(test::brokenLines(facts),
              Lines{"0:38 line of 235 bytes: zolex takes 198 of them as one line"});
    EXPECT_EQ(facts.logicalDrives.at(0).spans, (std::vector<Lines>{{"0:0", "0:1", "0:2"}}));
}

TEST(BrokenListings, AnotherAdapterBehindTheFirst) {
    const Facts facts = readFacts(controller_type::megaRaid,
                                  Listings{"Adapter #0\nExit Code: 0x00\n",
                                           megacliDrives() + "\nAdapter #1\n\nSlot Number: 7\n"});
    EXPECT_EQ(facts.drives.size(), 5U);
    EXPECT_EQ(test::brokenLines(facts), Lines{"1:107 what follows is of another adapter"});
}

TEST(BrokenListings, MoreThanThereCanBe) {
    std::string listing = "Controller information\n";
    for (int i = 0; i < 1030; ++i) {
        listing +=
            "Logical drive number 1\n Part of array : A\n RAID level : 5\n Size (in MB) : 9\n";
    }
    listing += "Array A :";
    for (int i = 0; i < 300; ++i) {
        listing += " 1," + std::to_string(i);
    }
    const Facts facts = readFacts(controller_type::family,
                                  Listings{listing + "\nCommand completed successfully.\n"});
    ASSERT_EQ(facts.logicalDrives.size(), 1024U);
    EXPECT_EQ(facts.logicalDrives.back().spans.at(0).size(), 256U);
    const Lines broken = test::brokenLines(facts);
    EXPECT_EQ(std::count(broken.begin(), broken.end(),
                         "0:4098 more than 1024 logical drives: the others are not read"),
              1);
    EXPECT_EQ(std::count(broken.begin(), broken.end(),
                         "0:4122 more than 256 drives in an array: the others are not read"),
              1);
}

// Oddities that say nothing.

TEST(BrokenListings, BytesThatAreNoText) {
    std::string listing =
        replaced(megacliDrives(), "NV73455S", std::string("NV\x80\xFF\0\1S  ", 9));
    listing += std::string("\0\0\0\n\xC3\x28 : \xFE\n", 13);
    const Facts facts =
        readFacts(controller_type::megaRaid, Listings{"Adapter #0\nExit Code: 0x00\n", listing});
    EXPECT_EQ(facts.drives.size(), 5U);
    EXPECT_EQ(facts.drives.at(0).location, "32:0");
    EXPECT_EQ(facts.drives.at(0).model, "NV\x80\xFF"); // a zero byte ends the line
    EXPECT_EQ(facts.drives.at(1).serialNumber, "3LQ2A001");
}

TEST(BrokenListings, KeysOfAnyLengthAreKeptShort) {
    const Facts facts = readFacts(
        controller_type::arcconf7,
        Listings{replaced(arcconf(), "         PFA  ", std::string(100000, 'k') + ": x\n  PFA  ")});
    ASSERT_EQ(facts.listings.at(0).unknownKeys.size(), 1U);
    EXPECT_EQ(facts.listings.at(0).unknownKeys.begin()->first, std::string(80, 'k'));
}

/// Reads a huge listing, and expects that this takes no time to speak of.
void expectQuick(std::int32_t type, const std::string& listing) {
    const auto before = std::chrono::steady_clock::now();
    const Facts facts = readFacts(type, Listings{listing, listing, listing});
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
    EXPECT_EQ(facts.listings.size(), 3U);
}

TEST(BrokenListings, HugeListingsTakeTimeByTheirSizeAlone) {
    std::string drives = "Adapter #0\n";
    std::string members = "Controller information\nLogical drive number 1\n   Drive(s) "
                          "(Channel,Device) : ";
    for (int i = 0; i < 20000; ++i) {
        drives += "Enclosure Device ID: 1\nSlot Number: " + std::to_string(i) + "\n";
        members += "0," + std::to_string(i) + " ";
    }
    expectQuick(controller_type::megaRaid, drives);
    expectQuick(controller_type::arcconf7, members + "\n");
    for (const char* piece : {"(", ":", "(:", "x\n", "a:b\n", " ", "Virtual Disk: 0\n", "0,1 ",
                              "Segment 1 : (0,1) X\n", "Array A : 1,0\n", "Target on\n"}) {
        std::string listing = "Adapter #0\nLogical drive number 1\n";
        while (listing.size() < 100000) {
            listing += piece;
        }
        for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
            expectQuick(type, listing);
        }
    }
}

} // namespace
} // namespace zolex::companion
