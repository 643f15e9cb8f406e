#include "readers/HRReader.h"

#include "driver/Application.h"
#include "readers/ListingSupport.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zolex::test::hr {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions hrconf = {.type = controller_type::hrconf9};
constexpr ListingOptions drivesOnly = {.type = controller_type::hrconf9, .capture = false};
constexpr ListingOptions traced = {.type = controller_type::hrconf9, .verbosity = 9};

constexpr const char* ruler =
    "----------------------------------------------------------------------\n";

/// A listing of these lines of the logical drive section and these device blocks.
std::string listing(const std::string& logicalDrives, const std::string& devices) {
    return std::string("Controllers found: 1\n") + ruler + "Controller information\n" + ruler +
           "   Controller Status                        : Okay\n\n" + ruler +
           "Logical drive information\n" + ruler + logicalDrives + "\n" + ruler +
           "Physical Device information\n" + ruler + devices +
           "\nCommand completed successfully.\n";
}

std::string logicalDrive(const std::string& lines) {
    return "Logical drive number 1\n" + lines + "   Drive(s) (Channel,Device) : 0,0 0,1\n";
}

std::string disk(const std::string& position, const std::string& state = "Online") {
    return "      Device #0\n"
           "         Device is a Hard drive\n"
           "         State                              : " +
           state +
           "\n"
           "         Reported Channel,Device            : " +
           position +
           "\n"
           "         Serial number                      : SN" +
           position +
           "\n"
           "         Size                               : 70006 MB\n"
           "         PFA                                : No\n";
}

/// What the listing of one logical drive with these lines gives for it.
std::string logicalDriveOf(const std::string& lines) {
    const Lines found = readListing(hrconf, listing(logicalDrive(lines), "")).of("logical");
    return found.size() == 1 ? found.front() : "not one";
}

TEST(HRReader, ReadsAWholeListing) {
    const std::string sample = readTestData("hrconf-getconfig.txt");
    const ListingResult result = readListing(hrconf, sample);
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.lines,
              (Lines{"controller bios=4.30-17 (3152) driver=2.10-3 (41)",
                     "drive 1:0 70006 [1:0 70006] NV7A0001 Online/GOOD",
                     "drive 1:1 70006 [1:1 70006] NV7A0002 Online/GOOD",
                     "drive 1:2 70007 [1:2 70007] NV7A0003 Rebuilding/GOOD",
                     "drive 2:4 70006 [2:4 70006] NV7A0004 Online/GOOD",
                     "drive 2:12 70006 [2:12 70006] NV7A0005 Defunct/BAD used",
                     "drive 2:13 140012 [2:13 140012] NV7A0006 Standby Hot Spare/GOOD",
                     "settings rebuild=0 readahead=0 stripe=3", "array A: 1:0 1:1 1:2",
                     "array B: 2:4 2:12", "logical level=3 size=140012 array=0 cache=2 Okay/GOOD",
                     "logical level=1 size=69889 array=1 cache=2 Degraded/BAD", "spare 2:13"}));
    expectSameWithCrLf(hrconf, sample);
}

TEST(HRReader, ReadsTheDrivesAloneWithoutTheCaptureFlag) {
    const std::string sample = readTestData("hrconf-getconfig.txt");
    const ListingResult result = readListing(drivesOnly, sample);
    EXPECT_EQ(result.summary(), "true d=6 a=0 l=0 s=0");
    EXPECT_EQ(result.lines.front(), "controller");
    EXPECT_EQ(result.output, "");
    // Nothing of the logical drives is looked at.
    EXPECT_TRUE(readListing(drivesOnly, replaced(sample, ": 5\n", ": 4\n")).read);
}

TEST(HRReader, RaidLevels) {
    const std::vector<std::pair<std::string, int>> levels = {{"0", 0},
                                                             {"1", 1},
                                                             {"1E", 2},
                                                             {"5", 3},
                                                             {"5E", 4},
                                                             {"5EE", 5},
                                                             {"6", 6},
                                                             {"10", 7},
                                                             {"50", 8},
                                                             {"60", 9},
                                                             {"SIMPLE", 10},
                                                             {"VOLUME", 10},
                                                             {"Simple_volume", 10}};
    for (const auto& [word, code] : levels) {
        EXPECT_EQ(logicalDriveOf("   RAID level  : \t" + word + " \n"),
                  "level=" + std::to_string(code) + " size=-101 array=0 cache=2");
    }
    for (const std::string word :
         {"4", "", "1e", "05", "5 5", "simple", "Spanned_volume", "6 Reed-Solomon"}) {
        const ListingResult result =
            readListing(traced, listing(logicalDrive("RAID level : " + word + "\n"), disk("0,0")));
        EXPECT_FALSE(result.read) << word;
        EXPECT_EQ(result.lines, Lines{"controller"});
        EXPECT_EQ(result.output,
                  "Entering HRReader::readConfiguration\n"
                  "Entering HRReader::getArraysAndLogicalDrive\n"
                  "RAID level not recognized:  " +
                      word +
                      "\n"
                      "Exiting HRReader::getArraysAndLogicalDrive, returning false(1)\n"
                      "Exiting HRReader::readConfiguration, returning false(1)\n");
    }
}

TEST(HRReader, StripeSizes) {
    int code = 1;
    for (const std::string size : {"16", "32", "64", "128", "256", "512", "1024", "2048", "4096"}) {
        for (const std::string unit : {"", "KB", " KB"}) {
            const ListingResult result = readListing(
                hrconf, listing(logicalDrive("   Stripe-unit size : " + size + unit + "\n"), ""));
            EXPECT_EQ(result.of("settings"),
                      Lines{"rebuild=0 readahead=0 stripe=" + std::to_string(code)})
                << size << unit;
        }
        ++code;
    }
    for (const std::string size : {"8", "8 KB", "64  KB", "64kb", "64 K", "KB", "", "64KBKB"}) {
        const ListingResult result = readListing(
            traced, listing(logicalDrive("Stripe-unit size : " + size + "\n"), disk("0,0")));
        EXPECT_FALSE(result.read) << size;
        EXPECT_EQ(result.lines, Lines{"controller"});
        EXPECT_EQ(result.output,
                  "Entering HRReader::readConfiguration\n"
                  "Entering HRReader::getArraysAndLogicalDrive\n"
                  "Stripe size not recognized:  " +
                      size +
                      "\n"
                      "Exiting HRReader::getArraysAndLogicalDrive, returning false(2)\n"
                      "Exiting HRReader::readConfiguration, returning false(1)\n");
    }
}

TEST(HRReader, ChannelsCountFromZeroInTheListing) {
    const ListingResult result =
        readListing(hrconf, listing("Logical drive number 1\n   Drive(s) (Channel,Device) : 0,3\n",
                                    disk("0,3")));
    EXPECT_EQ(result.of("array"), Lines{"A: 1:3"});
    EXPECT_EQ(result.of("drive"), Lines{"1:3 70006 [1:3 70006] SN0,3 Online/GOOD"});
}

TEST(HRReader, DriveLists) {
    const std::vector<std::pair<std::string, std::string>> lists = {
        {"Drive(s) (Channel,Device)    : 0,0 0,1", "A: 1:0 1:1"},
        {"   Channel,Device :0,0   3,35\t", "A: 1:0 4:35"},
        // Behind "DDD" stand the members, whatever stands in front of it.
        {"Drive(s) (Channel,Device)    : DDD 0,3 0,4", "A: 1:3 1:4"},
        {"Drive(s) (Channel,Device) DDD: 0,3 0,4", "A: 1:3 1:4"},
        {"Drive(s) (Channel,Device)    : 0,9 DDD 0,3", "A: 1:3"},
        {"Drive(s) (Channel,Device)    : 0,9DDD 0,3", "A: 1:3"},
        // What is no pair of numbers is no member.
        {"Drive(s) (Channel,Device)    : none 0,2 x,1 1,y 4 , 0,5", "A: 1:2 1:5"},
    };
    for (const auto& [line, array] : lists) {
        const ListingResult result =
            readListing(hrconf, listing("Logical drive number 1\n" + line + "\n", ""));
        EXPECT_EQ(result.of("array"), Lines{array}) << line;
        EXPECT_EQ(result.of("logical"), Lines{"level=-1 size=-101 array=0 cache=2"}) << line;
    }
    for (const std::string empty : {"", " ", "none"}) {
        const ListingResult result = readListing(
            hrconf, listing("Logical drive number 1\n  Channel,Device : " + empty + "\n", ""));
        EXPECT_EQ(result.lines, Lines{"controller"}) << empty;
    }
}

TEST(HRReader, MembersOutsideThePositionRangeAreLeftOut) {
    const ListingResult result = readListing(
        hrconf, listing("Logical drive number 1\nChannel,Device : 0,0 4,1 0,36 -2,0 2147483647,1 "
                        "0,1\n",
                        ""));
    EXPECT_EQ(result.of("array"), Lines{"A: 1:0 1:1"});
    std::string errors;
    for (const std::string position :
         {"channel=5, id=1", "channel=1, id=36", "channel=-1, id=0", "channel=2147483647, id=1"}) {
        errors +=
            "\n#### ERROR\n\tDrive position out of range for controller Kestrix-B4:  " + position +
            "\n\n";
    }
    EXPECT_EQ(result.output, errors);
}

TEST(HRReader, LogicalDriveStates) {
    const std::vector<std::pair<std::string, std::string>> states = {
        {"degraded", "BAD"}, {"Offline", "BAD"},   {"migrating", "GOOD"}, {"OKAY", "GOOD"},
        {"Optimal", "GOOD"}, {"Impacted", "????"}, {"Okay (OKY)", "????"}};
    for (const auto& [word, derived] : states) {
        EXPECT_EQ(logicalDriveOf("   Status of logical drive : " + word + "\n"),
                  "level=-1 size=-101 array=0 cache=2 " + word + "/" + derived);
    }
}

TEST(HRReader, PhysicalStates) {
    const std::vector<std::pair<std::string, std::string>> states = {
        {"Defunct", "BAD"},     {"Hot Spare", "GOOD"}, {"ONLINE", "GOOD"},
        {"rebuilding", "GOOD"}, {"Ready", "GOOD"},     {"Standby hot spare", "GOOD"},
        {"Verifying", "????"},  {"Failed", "????"}};
    for (const auto& [word, derived] : states) {
        const ListingResult result = readListing(drivesOnly, listing("", disk("0,0", word)));
        const std::string used = word == "Defunct" ? " used" : "";
        EXPECT_EQ(result.of("drive"),
                  Lines{"1:0 70006 [1:0 70006] SN0,0 " + word + "/" + derived + used});
    }
}

TEST(HRReader, ADefunctDriveIsStoredUsedAndWarnedOfTwice) {
    constexpr const char* warning =
        "\nWarning:  One or more controller have a defunct disk drive.\n"
        "Warning:  One or more controller have a defunct disk drive.\n\n";
    const std::string text = listing(logicalDrive(""), disk("0,0", "Defunct") + disk("0,1"));
    ListingResult result = readListing(hrconf, text);
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("drive"), (Lines{"1:0 70006 [1:0 70006] SN0,0 Defunct/BAD used",
                                         "1:1 70006 [1:1 70006] SN0,1 Online/GOOD"}));
    EXPECT_EQ(result.output, warning);
    ListingOptions quiet = hrconf;
    quiet.verbosity = 0;
    EXPECT_EQ(readListing(quiet, text).output, "");
    result = readListing(drivesOnly, text);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.of("drive").front(), "1:0 70006 [1:0 70006] SN0,0 Defunct/BAD used");
}

TEST(HRReader, APartitionedDriveIsStoredUsedAndNamed) {
    constexpr const char* message =
        "\nDrive is partitioned and cannot be used in raid configuration.\n";
    const std::string text = listing(logicalDrive(""), disk("0,0", "Ready (Partitioned)"));
    for (const ListingOptions& options : {hrconf, drivesOnly}) {
        const ListingResult result = readListing(options, text);
        EXPECT_EQ(result.of("drive"),
                  Lines{"1:0 70006 [1:0 70006] SN0,0 Ready (Partitioned)/???? used"});
        EXPECT_EQ(result.output, message);
    }
    // Only a "State" line says so.
    const ListingResult other = readListing(
        hrconf,
        listing(logicalDrive("   Partitioned : Yes\n   Defunct segments : No\n"),
                replaced(disk("0,0"), "Serial", "Partitioned : Hot Spare Defunct\nSerial")));
    EXPECT_EQ(other.of("drive"), Lines{"1:0 70006 [1:0 70006] SN0,0 Online/GOOD"});
    EXPECT_EQ(other.summary(), "true d=1 a=1 l=1 s=0");
    EXPECT_EQ(other.output, "");
}

TEST(HRReader, HotSparesJoinTheConfigurationOnlyWhenItIsCaptured) {
    const std::string text =
        listing(logicalDrive(""), disk("0,5", "Hot Spare") + disk("2,6", "Standby Hot Spare") +
                                      disk("0,7", "hot spare"));
    const ListingResult result = readListing(hrconf, text);
    EXPECT_EQ(result.of("spare"), (Lines{"1:5", "3:6"}));
    EXPECT_EQ(result.summary(), "true d=3 a=1 l=1 s=2");
    EXPECT_EQ(readListing(drivesOnly, text).summary(), "true d=3 a=0 l=0 s=0");
    // A hot spare that is defunct as well is still a hot spare.
    EXPECT_EQ(readListing(hrconf, listing(logicalDrive(""), disk("0,5", "Defunct Hot Spare")))
                  .lines.at(1),
              "drive 1:5 70006 [1:5 70006] SN0,5 Defunct Hot Spare/????");
}

TEST(HRReader, AConfigurationWithoutArraysIsDropped) {
    const ListingResult result = readListing(
        hrconf, listing("Logical drive number 1\n   RAID level : 5\n", disk("0,5", "Hot Spare")));
    EXPECT_EQ(result.summary(), "true d=1 a=0 l=0 s=0");
    EXPECT_EQ(readListing(hrconf, listing("", disk("0,5"))).summary(), "true d=1 a=0 l=0 s=0");
}

TEST(HRReader, KeysAndHeadings) {
    const std::string sample = readTestData("hrconf-getconfig.txt");
    // Headings and the keys written in small letters are found in any case, all others as they are.
    std::string text = replaced(sample, "Logical drive information", "LOGICAL DRIVE INFORMATION");
    text = replaced(text, "Physical Device information", "physical device INFORMATION");
    text = replaced(text, "BIOS version", "Bios");
    text = replaced(text, "Driver version", "DRIVER");
    EXPECT_EQ(readListing(hrconf, text).lines, readListing(hrconf, sample).lines);
    for (const char* key : {"RAID level", "Status of logical", "Size  ", "Channel,Device",
                            "Device is", "State  ", "Serial number"}) {
        std::string other = key;
        other[0] = static_cast<char>(other[0] ^ 0x20);
        EXPECT_NE(readListing(hrconf, replaced(sample, key, other)).lines,
                  readListing(hrconf, sample).lines)
            << key;
    }
    // Some lines hold a key and are not what it says.
    const std::string more = "         Power State : Full\n         Block Size : 512 Bytes\n"
                             "         Unused Size : 12 MB\n         PFA";
    EXPECT_EQ(readListing(hrconf, replaced(sample, "         PFA", more)).lines,
              readListing(hrconf, sample).lines);
    EXPECT_EQ(logicalDriveOf("   Size : 500 MB\n   Block Size : 512 Bytes\n"
                             "   Unused Size : 3 MB\n"),
              "level=-1 size=500 array=0 cache=2");
}

TEST(HRReader, ALineWithBothStateAndSizeIsAStateLine) {
    const std::string both = "         Size State                         : Ready\n         PFA";
    EXPECT_EQ(
        readListing(hrconf, listing("", replaced(disk("0,0"), "         PFA", both))).of("drive"),
        Lines{"1:0 70006 [1:0 70006] SN0,0 Ready/GOOD"});
}

TEST(HRReader, BlocksThatAreNoDiskAreNotStored) {
    for (const std::string kind : {"an Enclosure services device", "a hard drive", "a CD-ROM"}) {
        const std::string block = replaced(disk("0,0"), "a Hard drive", kind);
        EXPECT_EQ(readListing(hrconf, listing("", block + disk("0,1"))).of("drive"),
                  Lines{"1:1 70006 [1:1 70006] SN0,1 Online/GOOD"})
            << kind;
    }
    for (const std::string kind : {"a Hard drive", "a Hard disk", "a SCSI Hard disk drive"}) {
        const std::string block = replaced(disk("0,0"), "a Hard drive", kind);
        EXPECT_EQ(readListing(hrconf, listing("", block)).of("drive").size(), 1U) << kind;
    }
}

TEST(HRReader, ABlockEndsAtTheNextDeviceOrAtTheEnd) {
    const std::string pfa = "         PFA                                : No\n";
    const std::string blocks = replaced(disk("0,0"), pfa, "") + replaced(disk("0,1"), pfa, "");
    const ListingResult result = readListing(hrconf, listing("", blocks));
    EXPECT_EQ(result.of("drive"), (Lines{"1:0 70006 [1:0 70006] SN0,0 Online/GOOD",
                                         "1:1 70006 [1:1 70006] SN0,1 Online/GOOD"}));
    // Behind "PFA" there is nothing for the drive.
    const std::string late = disk("0,0") + "         Size : 1 MB\n         State : Defunct\n";
    EXPECT_EQ(readListing(hrconf, listing("", late)).of("drive"),
              Lines{"1:0 70006 [1:0 70006] SN0,0 Online/GOOD"});
}

TEST(HRReader, DrivesOfAnImpossibleSizeAreLeftOut) {
    std::string drive = disk("1,4");
    drive.replace(drive.find("70006"), 5, "-2");
    const ListingResult result = readListing(hrconf, listing("", drive + disk("3,35")));
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("drive"), Lines{"4:35 70006 [4:35 70006] SN3,35 Online/GOOD"});
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive size out of range for controller "
                             "Kestrix-B4:  channel=2, id=4, size=-2 MB\n\n");
}

TEST(HRReader, DrivesOutsideThePositionRangeAreLeftOut) {
    const ListingResult result =
        readListing(hrconf, listing(logicalDrive(""), disk("4,0", "Hot Spare") + disk("0,36") +
                                                          disk("none") + disk("3,35")));
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("drive"), Lines{"4:35 70006 [4:35 70006] SN3,35 Online/GOOD"});
    EXPECT_EQ(result.of("spare"), Lines{});
    std::string errors;
    for (const std::string position :
         {"channel=5, id=0", "channel=1, id=36", "channel=-1, id=-1"}) {
        errors +=
            "\n#### ERROR\n\tDrive position out of range for controller Kestrix-B4:  " + position +
            "\n\n";
    }
    EXPECT_EQ(result.output, errors);
}

TEST(HRReader, WhatTheRecordCannotHoldIsLeftOut) {
    std::string drives;
    std::string members;
    for (int i = 0; i < 9; ++i) {
        const std::string id = std::to_string(i);
        drives += "Logical drive number " + id + "\n   Channel,Device : 0," + id + "\n";
        members += disk("1," + id, "Hot Spare");
    }
    const auto error = [](const std::string& what) {
        return "\n#### ERROR\n\tController Kestrix-B4 has more than " + what +
               "; the rest is not captured.\n\n";
    };
    ListingResult result = readListing(hrconf, listing(drives, members));
    EXPECT_EQ(result.summary(), "true d=9 a=9 l=8 s=8");
    EXPECT_EQ(result.output, error("8 logical drives") + error("8 hot-spare drives"));
    EXPECT_EQ(result.of("logical").back(), "level=-1 size=-101 array=7 cache=2");

    std::string lists = "Logical drive number 1\n";
    for (int i = 0; i < 18; ++i) {
        lists += "   Channel,Device : 0," + std::to_string(i) + "\n";
    }
    result = readListing(hrconf, listing(lists, ""));
    EXPECT_EQ(result.summary(), "true d=0 a=16 l=1 s=0");
    EXPECT_EQ(result.output, error("16 arrays"));
    EXPECT_EQ(result.of("logical").back(), "level=-1 size=-101 array=15 cache=2");

    std::string many = "Logical drive number 1\n   Channel,Device :";
    for (int i = 0; i < 35; ++i) {
        many += " 0," + std::to_string(i);
    }
    result = readListing(hrconf, listing(many + "\n", ""));
    EXPECT_EQ(countOf(result.of("array").at(0), " 1:"), 32U);
    EXPECT_EQ(result.output, error("32 drives in an array"));
}

} // namespace
} // namespace zolex::test::hr
