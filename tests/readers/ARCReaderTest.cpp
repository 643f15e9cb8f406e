#include "readers/ARCReader.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ListingSupport.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zolex::test::arc {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions arcconf = {.type = controller_type::arcconf7};
constexpr ListingOptions drivesOnly = {.type = controller_type::arcconf7, .capture = false};
constexpr ListingOptions traced = {.type = controller_type::arcconf7, .verbosity = 9};

constexpr const char* ruler = "------------------------------------------\n";
constexpr const char* failover = "   Automatic Failover : Enabled\n";

/// A listing of these lines of the controller information, of the logical drive section and of the
/// device blocks.
std::string listing(const std::string& info, const std::string& logicalDrives,
                    const std::string& devices) {
    return std::string(ruler) + "Controller information\n" + ruler + "   Physical Slot : 4\n" +
           info + "   --------\n   Controller Version Information\n   --------\n" +
           "   Firmware : 5.2\n" + ruler + "Logical drive information\n" + ruler + logicalDrives +
           ruler + "Physical Device information\n" + ruler + devices;
}

std::string plainListing(const std::string& logicalDrives, const std::string& devices = {}) {
    return listing("", logicalDrives, devices);
}

std::string logicalDrive(const std::string& lines) {
    return "Logical drive number 0\n" + lines + "   Drive(s) (Channel,Device) : 0,0 0,1\n";
}

std::string disk(const std::string& position, const std::string& state = "Online") {
    return "      Device #0\n         Device is a Hard drive\n         State : " + state +
           "\n         Reported Channel,Device : " + position +
           "\n         Size : 70006 MB\n         PFA : No\n";
}

std::string logicalDriveOf(const std::string& lines) {
    const Lines found = readListing(arcconf, plainListing(logicalDrive(lines))).of("logical");
    return found.size() == 1 ? found.front() : "not one";
}

/// What is traced for these lines of a logical drive at which reading fails.
std::string failureOf(const std::string& info, const std::string& lines) {
    const ListingResult result =
        readListing(traced, listing(info, logicalDrive(lines), disk("0,0")));
    EXPECT_FALSE(result.read) << lines;
    EXPECT_EQ(result.lines, Lines{"controller slot=4 firmware=5.2"}) << lines;
    const std::string output = withoutLineTraces(result.output);
    const std::string start = "Entering ARCReader::readConfiguration\n"
                              "Entering ARCReader::getControllerInfo\n"
                              "Exiting ARCReader::getControllerInfo\n"
                              "Entering ARCReader::getFirmware\n"
                              "Exiting ARCReader::getFirmware\n";
    EXPECT_EQ(output.substr(0, start.size()), start);
    return output.substr(std::min(start.size(), output.size()));
}

TEST(ARCReader, ControllerModels) {
    const std::vector<std::pair<std::string, std::string>> models = {
        {"Norvik Kestrix B8", " subtype=1"},
        {"Norvik Kestrix B7", " subtype=2"},
        {"Norvik Kestrix B80", ""},
        {"Norvik Kestrix B7 rev 2", ""},
        {"Norvik Kestrix B", ""},
        {"norvik kestrix b8", ""},
        {"", ""}};
    for (const auto& [model, subtype] : models) {
        const ListingResult result =
            readListing(arcconf, listing("   Controller Model : " + model + "\n", "", ""));
        EXPECT_EQ(result.lines.front(), "controller" + subtype + " slot=4 firmware=5.2") << model;
    }
}

TEST(ARCReader, ControllerInformationEndsAtTheSeparatorBehindItsFirstKey) {
    const std::string block = "   --------\n   Controller Version Information\n   --------\n"
                              "   BIOS : 1\n   Firmware : 2\n   Driver : 3\n   --------\n"
                              "   BIOS : 4\n   bios : 5\n";
    for (const std::string key :
         {"Controller Model", "Automatic Failover", "Logical drives/Offline",
          "Logical devices/Failed", "Logical Devices/Failed"}) {
        const ListingResult result = readListing(
            arcconf, std::string(ruler) + "Controller\n" + ruler + ruler + key + " : 0\n" + block);
        EXPECT_EQ(result.lines, Lines{"controller bios=1 firmware=2 driver=3"}) << key;
    }
    // A line that holds none of the keys does not make the block begin.
    EXPECT_EQ(readListing(arcconf, std::string(ruler) + "Status : Okay\n" + block).lines,
              Lines{"controller"});
    // Nothing behind the separator belongs to the controller information.
    EXPECT_EQ(readListing(arcconf, "Physical Slot : 1\n" + std::string(ruler) +
                                       "Physical Slot : 2\nController Model : Norvik Kestrix B8\n")
                  .lines,
              Lines{"controller slot=1"});
}

TEST(ARCReader, RaidLevels) {
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
                                                             {"Simple_volume", 10},
                                                             {"Spanned_volume", 10},
                                                             {"6 Reed-Solomon", 6}};
    for (const auto& [word, code] : levels) {
        for (const std::string key : {"RAID level", "RAID Level"}) {
            EXPECT_EQ(logicalDriveOf("   " + key + "  : " + word + "\n"),
                      "level=" + std::to_string(code) + " size=-101 array=0 cache=2");
        }
    }
    for (const std::string word : {"4", "", "Spanned_volumes", "6 reed-solomon"}) {
        EXPECT_EQ(failureOf("", "RAID level : " + word + "\n"),
                  "Entering ARCReader::getArraysAndLogicalDrives\n"
                  "RAID level not recognized:  " +
                      word +
                      " \n"
                      "Exiting ARCReader::getArraysAndLogicalDrives, returning false(1)\n"
                      "Exiting ARCReader::readConfiguration, returning false(1)\n");
        EXPECT_EQ(failureOf(failover, "RAID level : " + word + "\n"),
                  "Entering ARCReader::getSegmentsAndLogicalDrives\n"
                  "RAID level not recognized:  " +
                      word +
                      " \n"
                      "Exiting ARCReader::getSegmentsAndLogicalDrives, returning false(1)\n"
                      "Exiting ARCReader::readConfiguration, returning false(1)\n");
    }
}

TEST(ARCReader, StripeSizes) {
    for (const std::string size : {"64", "64KB", "64 KB"}) {
        const ListingResult result =
            readListing(arcconf, plainListing(logicalDrive("Stripe-unit size : " + size + "\n")));
        EXPECT_EQ(result.of("settings"), Lines{"rebuild=0 readahead=0 stripe=3"});
    }
    for (const std::string size : {"8", "8192 KB", ""}) {
        EXPECT_EQ(failureOf("", "Stripe-unit size : " + size + "\n"),
                  "Entering ARCReader::getArraysAndLogicalDrives\n"
                  "Stripe size not recognized:  " +
                      size +
                      "\n"
                      "Exiting ARCReader::getArraysAndLogicalDrives, returning false(2)\n"
                      "Exiting ARCReader::readConfiguration, returning false(1)\n");
    }
}

TEST(ARCReader, ReadCacheModes) {
    const std::vector<std::pair<std::string, std::string>> modes = {{"Enabled", "1"},
                                                                    {"Disabled", "2"}};
    for (const auto& [mode, code] : modes) {
        const ListingResult result =
            readListing(arcconf, plainListing(logicalDrive("   Read-cache mode : " + mode + "\n")));
        EXPECT_EQ(result.of("settings"), Lines{"rebuild=0 readahead=" + code + " stripe=10"});
    }
    for (const std::string mode : {"Adaptive", "enabled", "Disabled (OS)", ""}) {
        EXPECT_EQ(failureOf("", "Read-cache mode : " + mode + "\n"),
                  "Entering ARCReader::getArraysAndLogicalDrives\n"
                  "Read cache mode not recognized:  " +
                      mode +
                      "\n"
                      "Exiting ARCReader::getArraysAndLogicalDrives, returning false(3)\n"
                      "Exiting ARCReader::readConfiguration, returning false(1)\n");
        EXPECT_EQ(failureOf(failover, "Read-cache mode : " + mode + "\n"),
                  "Entering ARCReader::getSegmentsAndLogicalDrives\n"
                  "Read cache mode not recognized:  " +
                      mode +
                      "\n"
                      "Exiting ARCReader::getSegmentsAndLogicalDrives, returning false(3)\n"
                      "Exiting ARCReader::readConfiguration, returning false(1)\n");
    }
}

// Newer listings tell the setting; the word of a setting that is not known leaves what was read
// before, where that of a mode fails the read.
TEST(ARCReader, ReadCacheSettings) {
    const std::vector<std::pair<std::string, std::string>> settings = {
        {"   Read-cache setting : Enabled\n", "1"},
        {"   Read-cache setting : Disabled\n", "2"},
        {"   Read-cache setting : Adaptive\n", "0"},
        {"   Read-cache setting : \n", "0"},
        {"   Read-cache setting : Disabled\n   Read-cache setting : Not applicable\n", "2"},
        {"   Read-cache mode : Enabled\n   Read-cache setting : disabled\n", "1"}};
    for (const auto& [lines, code] : settings) {
        const ListingResult result = readListing(arcconf, plainListing(logicalDrive(lines)));
        EXPECT_TRUE(result.read) << lines;
        EXPECT_EQ(result.of("settings"), Lines{"rebuild=0 readahead=" + code + " stripe=10"})
            << lines;
        EXPECT_EQ(result.output, "") << lines;
    }
}

// "Full Stripe Size : 512 KB" was taken for the size of the logical drive.
TEST(ARCReader, SizesAndStatesOfOtherThings) {
    EXPECT_EQ(logicalDriveOf("   Size : 1000 MB\n   Full Stripe Size : 512 KB\n"
                             "   Stripe Size : 256 KB\n   Block Size : 512 Bytes\n"),
              "level=-1 size=1000 array=0 cache=2");
    const std::string device =
        replaced(disk("0,0", "Hot Spare"), "         PFA",
                 "         Stripe Size of State : Online\n         Block Size State : Online\n"
                 "         Power State Size : 7 MB\n         PFA");
    const ListingResult result = readListing(arcconf, plainListing(logicalDrive(""), device));
    EXPECT_EQ(result.of("drive"), Lines{"1:0 70006 [1:0 70006] Hot Spare/GOOD"});
}

TEST(ARCReader, WriteCacheModes) {
    const std::vector<std::pair<std::string, std::string>> modes = {
        {"   Write-cache mode : Enabled (write-back)\n", "2"},
        {"   Write-cache mode : Disabled (write-through)\n", "0"},
        {"   Write-cache mode : disabled\n", "2"},
        {"   Write-cache mode : \n", "2"},
        {"", "2"},
        {"   Write-cache setting : Disabled (write-through)\n", "0"},
        {"   Write-cache setting : Enabled (write-back) when protected by battery\n", "2"},
        {"   Write-cache status : Disabled\n", "2"}};
    for (const auto& [line, code] : modes) {
        const std::string expected = "level=-1 size=-101 array=0 cache=" + code;
        EXPECT_EQ(logicalDriveOf(line), expected) << line;
        // A list of drives leaves the setting alone, wherever it stands.
        const std::string listFirst = logicalDrive("") + line;
        EXPECT_EQ(readListing(arcconf, plainListing(listFirst)).of("logical"), Lines{expected});
    }
}

TEST(ARCReader, LogicalDriveStates) {
    const std::vector<std::pair<std::string, std::string>> states = {{"Critical", "BAD"},
                                                                     {"degraded", "BAD"},
                                                                     {"Impacted", "BAD"},
                                                                     {"OFFLINE", "BAD"},
                                                                     {"Clearing", "GOOD"},
                                                                     {"Critical migrating", "GOOD"},
                                                                     {"Degraded Migrating", "GOOD"},
                                                                     {"Migrating", "GOOD"},
                                                                     {"Okay", "GOOD"},
                                                                     {"Optimal", "????"},
                                                                     {"Okay, Impacted", "????"}};
    for (const auto& [word, derived] : states) {
        for (const std::string key :
             {"Status of logical drive", "Status of logical device", "Status of Logical Device"}) {
            EXPECT_EQ(logicalDriveOf("   " + key + " : " + word + "\n"),
                      "level=-1 size=-101 array=0 cache=2 " + word + "/" + derived);
        }
    }
}

TEST(ARCReader, PhysicalStates) {
    const std::vector<std::pair<std::string, std::string>> states = {
        {"Defunct", "BAD"},
        {"Failed", "BAD"},
        {"Hot Spare", "GOOD"},
        {"Hot-Spare", "GOOD"},
        {"Global Hot-Spare", "GOOD"},
        {"Dedicated Hot-Spare", "GOOD"},
        {"online", "GOOD"},
        {"Rebuilding", "GOOD"},
        {"Ready", "GOOD"},
        {"VERIFYING", "GOOD"},
        {"Standby Hot Spare", "????"},
        {"Global Hot Spare", "????"}};
    for (const auto& [word, derived] : states) {
        const ListingResult result =
            readListing(arcconf, plainListing(logicalDrive(""), disk("0,5", word)));
        const std::string used = derived == "BAD" ? " used" : "";
        EXPECT_EQ(result.of("drive"),
                  Lines{"1:5 70006 [1:5 70006] " + word + "/" + derived + used});
        const bool isSpare = word.find("Spare") != std::string::npos;
        EXPECT_EQ(result.of("spare"), isSpare ? Lines{"1:5"} : Lines{}) << word;
        const std::string warning =
            "\nWarning:  One or more controller have a defunct disk drive.\n"
            "Warning:  One or more controller have a defunct disk drive.\n\n";
        EXPECT_EQ(result.output, used.empty() ? "" : warning) << word;
    }
}

TEST(ARCReader, MembersOfSegments) {
    // Columns: the value of a segment line, the member it adds.
    const std::vector<std::pair<std::string, std::string>> values = {
        {"Present (0,3) SN (1,1)", " 1:3"},
        {"Present (2,12)", " 3:12"},
        {"Present (Controller:1,Enclosure:0,Slot:4) SN", " 1:4"},
        {"Present (Controller:1,Connector:1,Device:5) SN", " 2:5"},
        {"Present (Controller:1, Enclosure:2, Slot:14)", " 3:14"},
        {"Missing", ""},
        {"Inconsistent (unknown)", ""},
        {"Present (Controller:1,Bay:2)", ""},
        {"Present (0,3", ""},
    };
    for (const auto& [value, member] : values) {
        const std::string drives = "Logical drive number 0\n   Logical drive segment information\n"
                                   "   Segment 0 : Present (0,0) SN\n   Group 0, Segment 1 : " +
                                   value + "\n   Segment 2 : Present (0,35)\n";
        for (const std::string info : {"", failover}) {
            const ListingResult result = readListing(arcconf, listing(info, drives, ""));
            EXPECT_EQ(result.of("array"), Lines{"A: 1:0" + member + " 1:35"}) << value;
            EXPECT_EQ(result.of("logical"), Lines{"level=-1 size=-101 array=0 cache=2"});
        }
    }
}

/// A disk of this position and reported location.
std::string diskAt(const std::string& position, const std::string& location) {
    return replaced(disk(position), "         PFA",
                    "         Reported Location : " + location + "\n         PFA");
}

// Drives behind an expander have a device number unlike their slot: the members of a logical drive
// were taken for the drives whose device number was the slot.
TEST(ARCReader, SegmentsNameDrivesByTheirReportedLocation) {
    const std::string devices =
        diskAt("0,8", "Enclosure 0, Slot 3") + diskAt("0,9", "Enclosure 0, Slot 30") +
        diskAt("1,10", "Enclosure 1, Slot 3(Connector 0)") +
        diskAt("0,11", "Connector 0, Device 3") + diskAt("0,12", "Connector 1 near Device 3") +
        diskAt("0,13", "Direct Attached, Slot 5") + diskAt("0,14", "Enclosure 0, Slot 3") +
        diskAt("0,36", "Enclosure 3, Slot 1") +
        replaced(diskAt("0,15", "Enclosure 0, Slot 9"), "a Hard drive", "an Enclosure");
    // Columns: the value of a segment line, the member it adds.
    const std::vector<std::pair<std::string, std::string>> values = {
        {"Present (Controller:1,Enclosure:0,Slot:3) SN", " 1:8"},
        {"Present (Controller:1,Enclosure:0,Slot:30) SN", " 1:9"},
        {"Present (140014MB, SAS, HDD, Enclosure:1, Slot:3) SN", " 2:10"},
        {"Rebuilding (Controller:1,Connector:0,Device:3)", " 1:11"},
        {"Present (Controller:1,Connector:1,Device:3)", " 1:12"},
        // No drive tells these locations.
        {"Present (Controller:1,Enclosure:0,Slot:5)", " 1:5"},
        {"Present (Controller:1,Enclosure:0,Slot:9)", " 1:9"},
        {"Present (Controller:1,Enclosure:2,Slot:3)", " 3:3"},
        {"Present (Controller:1,Connector:2,Device:4)", " 3:4"},
        // A position is one as it stands.
        {"Present (0,3)", " 1:3"},
    };
    for (const auto& [value, member] : values) {
        const std::string drives = "Logical drive number 0\n   Logical drive segment information\n"
                                   "   Segment 0 : Present (3,0) SN\n   Segment 1 : " +
                                   value + "\n";
        for (const std::string info : {"", failover}) {
            const ListingResult result = readListing(arcconf, listing(info, drives, devices));
            EXPECT_EQ(result.of("array"), Lines{"A: 4:0" + member}) << value;
        }
    }
}

// A drive that cannot be stored is still the one that a segment names: no other takes its place.
TEST(ARCReader, AMemberOutOfRangeIsNotReplacedByAnotherDrive) {
    const std::string drives = "Logical drive number 0\n   Logical drive segment information\n"
                               "   Segment 0 : Present (Controller:1,Enclosure:0,Slot:0)\n"
                               "   Segment 1 : Present (Controller:1,Enclosure:0,Slot:1)\n";
    const std::string error = "\n#### ERROR\n\tDrive position out of range for controller "
                              "Kestrix-B1:  channel=1, id=40\n\n";
    const ListingResult result =
        readListing(arcconf, listing(failover, drives,
                                     diskAt("0,40", "Enclosure 0, Slot 0") +
                                         diskAt("0,0", "Enclosure 0, Slot 1")));
    EXPECT_EQ(result.of("array"), Lines{"A: 1:0"});
    EXPECT_EQ(result.output, error + error);
}

TEST(ARCReader, PresentDevicesAreSegments) {
    // Columns: a line among the segments, the member it adds.
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"Device 1 : Present (0,3) SN", " 1:3"},
        {"   Device 12       : Present (Controller:1,Enclosure:1,Slot:4) SN", " 2:4"},
        {"Device 1 : Missing (0,3)", ""},
        {"Device 1 : Present", ""},
        {"Device 1", ""},
        {"Device one : Present (0,3)", ""},
        {"Device : Present (0,3)", ""},
        {"Devices 1 : Present (0,3)", ""},
        {"Hot-Spare Device 1 : Present (0,3)", ""},
    };
    for (const auto& [line, member] : lines) {
        const std::string heading = "Logical drive number 0\n";
        const std::string segments = "   Logical drive segment information\n"
                                     "   Device 0 : Present (0,1)\n" +
                                     line + "\n";
        for (const std::string info : {"", failover}) {
            EXPECT_EQ(readListing(arcconf, listing(info, heading + segments, "")).of("array"),
                      Lines{"A: 1:1" + member})
                << line;
            // Before the heading of the segments they are nothing.
            EXPECT_EQ(readListing(arcconf, listing(info, heading + line + "\n" + segments, ""))
                          .of("array"),
                      Lines{"A: 1:1" + member})
                << line;
        }
    }
}

TEST(ARCReader, SegmentsOfEachLogicalDrive) {
    const auto drive = [](const std::string& name, const std::string& id) {
        return name + " number " + id + "\n   RAID level : 1\n   " + name +
               " segment information\n   Segment 0 : Present (0," + id +
               ")\n   Segment 1 : Present (1," + id + ")\n";
    };
    const std::string empty = "Logical drive number 9\n   RAID level : 0\n"
                              "   Logical drive segment information\n   Segment 0 : Missing\n";
    const std::string text =
        listing(failover,
                "   Segment 5 : Present (0,9)\n" + drive("Logical drive", "0") + empty +
                    drive("Logical device", "2") + drive("Logical Device", "3") +
                    logicalDrive("   RAID level : 5\n"),
                "");
    const ListingResult result = readListing(arcconf, text);
    EXPECT_EQ(result.of("array"), (Lines{"A: 1:0 2:0", "B: 1:2 2:2", "C: 1:3 2:3", "D: 1:0 1:1"}));
    EXPECT_EQ(result.of("logical"),
              (Lines{"level=1 size=-101 array=0 cache=2", "level=0 size=-101 array=-1 cache=2",
                     "level=1 size=-101 array=1 cache=2", "level=1 size=-101 array=2 cache=2",
                     "level=3 size=-101 array=3 cache=2"}));
}

// A logical drive whose segments and list of drives both stood in the listing was captured as two
// arrays of the same drives.
TEST(ARCReader, ALogicalDriveHasItsMembersFromSegmentsOrFromAList) {
    const std::string segmentLines = "   Logical drive segment information\n"
                                     "   Segment 0 : Present (3,1)\n";
    for (const std::string info : {"", failover}) {
        const ListingResult result =
            readListing(arcconf, listing(info, logicalDrive("") + segmentLines, ""));
        EXPECT_EQ(result.of("array"), Lines{"A: 1:0 1:1"});
    }
    // Members that the segments have named are not taken again from a list.
    for (const std::string info : {"", failover}) {
        const ListingResult result =
            readListing(arcconf, listing(info,
                                         "Logical drive number 0\n" + segmentLines +
                                             "   Drive(s) (Channel,Device) : 3,1 0,0\n",
                                         ""));
        EXPECT_EQ(result.of("array"), Lines{"A: 4:1"});
        EXPECT_EQ(result.of("logical"), Lines{"level=-1 size=-101 array=0 cache=2"});
    }
    const std::string emptyList = "Logical drive number 0\n   Channel,Device : none\n";
    EXPECT_EQ(readListing(arcconf, plainListing(emptyList + segmentLines)).of("array"),
              Lines{"A: 4:1"});
    // A heading without segments leaves the place to a list.
    EXPECT_EQ(readListing(arcconf, plainListing("Logical drive number 0\n   Logical drive segment\n"
                                                "   Channel,Device : 0,5\n" +
                                                segmentLines))
                  .of("array"),
              Lines{"A: 1:5"});
}

TEST(ARCReader, OnlyTheSegmentFormEndsAtAnyPhysicalDeviceLine) {
    const std::string drives = logicalDrive("   Physical Device count : 2\n   RAID level : 5\n");
    EXPECT_EQ(readListing(arcconf, listing("", drives, disk("0,0"))).summary(),
              "true d=1 a=1 l=1 s=0");
    EXPECT_EQ(readListing(arcconf, listing(failover, drives, disk("0,0"))).summary(),
              "true d=1 a=0 l=0 s=0");
    for (const std::string info : {"", failover}) {
        const std::string text =
            replaced(listing(info, logicalDrive(""), disk("0,0")), "Physical Device information",
                     "PHYSICAL DEVICE INFORMATION");
        EXPECT_EQ(readListing(arcconf, text).summary(), "true d=1 a=1 l=1 s=0");
    }
}

TEST(ARCReader, OtherSpellings) {
    const std::string text = "Physical Slot : 4\n   --------\n   --------\n   --------\n"
                             "LOGICAL DEVICE information\n"
                             "Logical Device number 0\n"
                             "   RAID Level : 6 Reed-Solomon\n"
                             "   Status of Logical Device : Okay\n"
                             "   Size : 1000 MB\n   Block Size of member drives : 512 Bytes\n"
                             "   Channel,Device(T:L) : 0,4 0,5\n"
                             "Physical Device information\n--------\n"
                             "      Device #0\n         Device is a Hard drive\n"
                             "         State : Online\n         Power State : Full rpm\n"
                             "         Block Size : 512 Bytes\n         Size : 70006 MB\n"
                             "         Unused Size : 64 KB\n"
                             "         Reported Channel,Device(T:L) : 0,4(4:0)\n"
                             "         Reported Location : Connector 0, Device 4\n"
                             "         PFA : No\n";
    const ListingResult result = readListing(arcconf, text);
    EXPECT_EQ(result.lines,
              (Lines{"controller slot=4",
                     "drive 1:4 70006 [1:4 70006] Online/GOOD in Connector 0, Device 4",
                     "settings rebuild=0 readahead=0 stripe=10", "array A: 1:4 1:5",
                     "logical level=6 size=1000 array=0 cache=2 Okay/GOOD"}));
    // These are this utility's spellings alone.
    ListingOptions hrconf = arcconf;
    hrconf.type = controller_type::hrconf3;
    EXPECT_EQ(readListing(hrconf, text).summary(), "true d=1 a=0 l=0 s=0");
}

TEST(ARCReader, KeysThatBeginALogicalDrive) {
    for (const std::string key :
         {"Logical drive number 0", "Logical device number 0", "Logical Device number 0",
          "Logical drive Number 0", "Logical device Number 0", "Logical Device Number 0"}) {
        const std::string drives =
            key + "\n   Channel,Device : 0,0\n" + key + "\n   Channel,Device : 0,1\n";
        EXPECT_EQ(readListing(arcconf, plainListing(drives)).of("logical").size(), 2U) << key;
    }
}

TEST(ARCReader, VersionLinesOfTheLogicalDriveSectionAreNotRead) {
    EXPECT_EQ(readListing(arcconf, plainListing("   BIOS : 9\n   Driver : 9\n")).lines,
              Lines{"controller slot=4 firmware=5.2"});
}

TEST(ARCReader, PositionsOutOfRangeAreLeftOut) {
    const std::string drives = "Logical drive number 0\n   Logical drive segment information\n"
                               "   Segment 0 : Present (Controller:1,Enclosure:4,Slot:0)\n"
                               "   Segment 1 : Present (0,0)\n";
    const ListingResult result =
        readListing(arcconf, listing(failover, drives, disk("0,0") + disk("0,40", "Hot Spare")));
    EXPECT_EQ(result.of("array"), Lines{"A: 1:0"});
    EXPECT_EQ(result.of("drive"), Lines{"1:0 70006 [1:0 70006] Online/GOOD"});
    EXPECT_EQ(result.of("spare"), Lines{});
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive position out of range for controller "
                             "Kestrix-B1:  channel=5, id=0\n\n"
                             "\n#### ERROR\n\tDrive position out of range for controller "
                             "Kestrix-B1:  channel=1, id=40\n\n");
}

TEST(ARCReader, TracesEachStep) {
    const std::string text = "Physical Slot : 4\n--------\n--------\nBIOS : 1\n--------\n"
                             "Logical drive information\nLogical drive number 0\n"
                             "Status of logical drive : Okay\n"
                             "Write-cache mode : Disabled\n"
                             "Channel,Device : 0,3  1,4\n"
                             "Physical Device information\n--------\n"
                             "Device #0\nDevice is a Hard drive\nState : Ready\n"
                             "Channel,Device : 0,3\nSize : 500 MB\nPFA : No\n"
                             "Device #1\nDevice is a Hard drive\nState : Defunct\n"
                             "Channel,Device : 1,4\nSize : 501 MB\n";
    ListingOptions options = drivesOnly;
    options.verbosity = 9;
    const std::string start = "Entering ARCReader::readConfiguration\n"
                              "Entering ARCReader::getControllerInfo\n"
                              "Exiting ARCReader::getControllerInfo\n"
                              "Entering ARCReader::getFirmware\n"
                              "Exiting ARCReader::getFirmware\n";
    const std::string first = "Entering ARCReader::getDrives\n"
                              "Entering ARCReader::addDevice\n"
                              "Entering ARCReader::translatePhysicalState\n"
                              "Exitinging ARCReader::translatePhysicalState, derivedState=GOOD\n"
                              "Setting the state of the physical drive=Ready\n"
                              "Setting the channel: 1, sid: 3, and size: 500\n"
                              "Exiting ARCReader::addDevice, returning true\n"
                              "Entering ARCReader::addDevice\n"
                              "Entering ARCReader::translatePhysicalState\n"
                              "Exitinging ARCReader::translatePhysicalState, derivedState=BAD\n"
                              "Setting the state of the physical drive=Defunct\n";
    const std::string rest = "Setting the channel: 2, sid: 4, and size: 501 **\n"
                             "Exiting ARCReader::addDevice, returning true\n"
                             "Entering ARCReader::getDrives, returning true\n"
                             "Exiting ARCReader::readConfiguration\n";
    EXPECT_EQ(withoutLineTraces(readListing(options, text).output), start + first + rest);
    EXPECT_EQ(withoutLineTraces(readListing(traced, text).output),
              start +
                  "Entering ARCReader::getArraysAndLogicalDrives\n"
                  "Entering ARCReader::translateLogicalState\n"
                  "Exitinging ARCReader::translateLogicalState, derivedState=GOOD\n"
                  "Setting the state of the logical drive=Okay\n"
                  "Processing write-cache mode info\n"
                  "Processing channel/device info\n"
                  "Found channel/device value='0,3  1,4', number of drives=2\n"
                  "Setting channel=1, scsiID=3\n"
                  "Setting channel=2, scsiID=4\n"
                  "Exiting ARCReader::getArraysAndLogicalDrives, returning true\n" +
                  first +
                  "\nWarning:  One or more controller have a defunct disk drive.\n"
                  "Warning:  One or more controller have a defunct disk drive.\n\n" +
                  rest);
}

TEST(ARCReader, TracesEachLine) {
    std::string expected;
    const std::string text = "Physical Slot : 4\n\n  --------\r\nDevice #0\n";
    for (const std::string line : {"Physical Slot : 4", "", "  --------", "Device #0", "EOF"}) {
        expected += "ARCReader::nextLine:" + line + "\n";
    }
    std::string lineTraces;
    for (const std::string& line : splitLines(readListing(traced, text).output)) {
        lineTraces += line.find("nextLine") == std::string::npos ? "" : line;
    }
    EXPECT_EQ(lineTraces, expected);
}

TEST(ARCReader, ShowsThatThereIsNoOutput) {
    const ListingResult result = readListing(arcconf, std::vector<std::string>{});
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.lines, Lines{"controller"});
    EXPECT_EQ(result.output, "***************configInfo = NULL******************");
    EXPECT_EQ(readListing(arcconf, "").output, "");
}

TEST(ARCReader, AFailingDeviceBlockFailsTheRead) {
    class FailingReader : public ARCReader {
      public:
        using ARCReader::ARCReader;

      protected:
        bool addDevice() override { return false; }
    };
    FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(9);
    RAIDController controller;
    controller.setType(controller_type::arcconf7);
    FailingReader reader({.layout = true}, application.report());
    EXPECT_FALSE(
        reader.readConfiguration(controller, Lines{plainListing(logicalDrive(""), disk("0,0"))}));
    EXPECT_EQ(controller.captured(), nullptr);
    EXPECT_TRUE(withoutLineTraces(platform.consoleFake.takeOutput())
                    .ends_with("Entering ARCReader::getDrives\n"
                               "Entering ARCReader::getDrives, returning false\n"
                               "Exiting ARCReader::readConfiguration, returning false(2)\n"));
}

TEST(ARCReader, ReadsOneControllerAfterAnother) {
    FakePlatform platform;
    Application application(platform);
    ARCReader reader({.layout = true}, application.report());
    RAIDController first;
    first.setType(controller_type::arcconf2);
    const auto output = [](const std::string& text) { return Lines{text}; };
    // A listing that fails within a logical drive's segments leaves nothing behind for the next.
    EXPECT_FALSE(reader.readConfiguration(
        first, output(listing(failover,
                              "Logical drive number 0\nLogical drive segment\n"
                              "Segment 0 : (0,0)\nRAID level : ?\n",
                              ""))));
    RAIDController second;
    second.setType(controller_type::arcconf2);
    EXPECT_TRUE(reader.readConfiguration(
        second, output(plainListing(logicalDrive("   Physical Device count : 2\n")))));
    ASSERT_NE(second.captured(), nullptr);
    EXPECT_EQ(second.captured()->arrays().size(), 1U);
    EXPECT_EQ(second.captured()->logicalDrives().size(), 1U);
}

} // namespace
} // namespace zolex::test::arc
