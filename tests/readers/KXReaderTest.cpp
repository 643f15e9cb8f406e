#include "model/Codes.h"
#include "readers/ListingSupport.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zolex::test::kx {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions qtcsend = {.type = controller_type::family};
constexpr ListingOptions cfggen = {.type = controller_type::lsiSas};

/// The options with other ones changed.
ListingOptions with(ListingOptions options, std::int32_t verbosity, bool capture = true) {
    options.verbosity = verbosity;
    options.capture = capture;
    return options;
}

/// A listing of these lines of the controller, of its settings, of the layout and of the drives.
std::string listing(const std::string& controller, const std::string& settings,
                    const std::string& layout, const std::string& drives) {
    return "Utility\n--------\nController information\n--------\n" + controller +
           "Controller name : x\n" + settings + "--------\nLogical drives\n--------\n" + layout +
           "--------\nPhysical devices\n--------\n" + drives;
}

std::string layoutListing(const std::string& layout) {
    return listing("", "", layout, "");
}

/// The traces that do not stand for single lines.
Lines traces(const ListingResult& result) {
    Lines lines = splitLines(withoutLineTraces(result.output));
    for (std::string& line : lines) {
        line.pop_back();
    }
    return lines;
}

std::string lastTrace(const ListingResult& result) {
    const Lines lines = traces(result);
    return lines.empty() ? "" : lines.back();
}

TEST(KXReader, AnEmptyListingChangesNothing) {
    for (const std::string text : {"", "Utility\n", "one\ntwo\n-------\n", "--------"}) {
        for (const bool capture : {true, false}) {
            const ListingResult result = readListing(with(qtcsend, 9, capture), text);
            EXPECT_TRUE(result.read) << text;
            EXPECT_EQ(result.lines, Lines{"controller"});
            EXPECT_EQ(traces(result), (Lines{"Entering KXReader::readConfiguration",
                                             "Exiting KXReader::readConfiguration, returning "
                                             "true"}));
        }
    }
}

TEST(KXReader, FailsByANumberedExitForEachStep) {
    const std::string start = "--------\n--------\n";
    const std::string named = start + "Controller name : x\n";
    const std::string level = "--------\n--------\nRAID level : 10\n";
    const std::string device =
        "--------\n--------\n--------\n--------\nTarget on\nDevice is a Hard "
        "disk\nState : (ONL)\nSize : 1\n";
    struct Case {
        std::string text;
        bool capture;
        std::string exit;
    };
    const std::vector<Case> cases = {
        {"--------\nController\n", true, "false(1)"},
        {start + "Slot : 3\n", true, "false(2)"},
        {start + "Controller type : ?\n", false, "false(2)"},
        {named + "Rebuild rate : ?\n", true, "false(3)"},
        {named + "Rebuild rate : ?\n", false, "false(4)"},
        {named + "Rebuild rate : High\n", true, "false(5)"},
        {named + "--------\n", true, "false(5)"},
        {named + "--------\n", false, "false(5)"},
        {named + level, true, "false(6)"},
        {named + level, false, "false(7)"},
        {named + "--------\n--------\n", true, "true(2)"},
        {named + "--------\n--------\n--------\n", false, "true(2)"},
        {named + device, true, "false(8)"},
        {named + device, false, "false(8)"},
        {named + "--------\n--------\n--------\n--------\n", true, "true(3)"},
        {named + "--------\n--------\n--------\n--------\n", false, "true(3)"},
    };
    for (const Case& c : cases) {
        const ListingResult result = readListing(with(qtcsend, 9, c.capture), c.text);
        EXPECT_EQ(result.read, c.exit[0] == 't') << c.text;
        EXPECT_EQ(lastTrace(result), "Exiting KXReader::readConfiguration, returning " + c.exit)
            << c.text;
        EXPECT_EQ(result.of("array"), Lines{}) << c.text;
    }
}

TEST(KXReader, ControllerModels) {
    for (int model = 1; model <= 7; ++model) {
        const std::string name = "Kestrix-A" + std::to_string(model);
        const ListingResult result =
            readListing(with(qtcsend, 9), listing("Controller type : " + name + "\n", "", "", ""));
        EXPECT_EQ(result.lines.front(), "controller subtype=" + std::to_string(model));
        EXPECT_EQ(countOf(result.output, "Found controller type KESTRIX, value = " + name + "\n"),
                  1U);
    }
    for (const std::string name : {"Kestrix-A8", "kestrix-a1", "Kestrix-A1 ultra", ""}) {
        const ListingResult result =
            readListing(with(qtcsend, 9), listing("Controller type : " + name + "\n", "", "", ""));
        EXPECT_FALSE(result.read);
        EXPECT_EQ(
            traces(result),
            (Lines{"Entering KXReader::readConfiguration", "Entering KXReader::setControllerType",
                   "Found controller type KESTRIX, value = " + name,
                   "Kestrix type not recognized:  " + name,
                   "Exiting KXReader::setControllerType, returning false(1)",
                   "Exiting KXReader::readConfiguration, returning false(2)"}));
    }
    const std::string unknown = listing("Controller type : LSI1030\n", "", "", "");
    const ListingResult lsiScsi = readListing(with({.type = controller_type::lsiScsi}, 9), unknown);
    EXPECT_EQ(lsiScsi.lines, Lines{"controller subtype=1"});
    EXPECT_EQ(countOf(lsiScsi.output, "Found controller type LSI-SCSI, value = LSI1030\n"), 1U);
    const ListingResult lsiSas = readListing(with(cfggen, 9), unknown);
    EXPECT_EQ(lsiSas.lines, Lines{"controller"});
    EXPECT_EQ(countOf(lsiSas.output, "Found controller type"), 0U);
}

TEST(KXReader, ControllerKeysUpToTheOneThatEndsTheBlock) {
    const std::string block =
        "BIOS version : 1.2:3\nFirmware version :\t4.5 \nController slot : 6\n";
    const std::string rest = "BIOS version : late\n--------\n--------\n--------\n";
    struct End {
        std::string line;
        std::string fields;
        Lines exit;
    };
    const std::vector<End> ends = {
        {"Bus : 7\n",
         " bus=7",
         {"Setting Bus number = 7", "Exiting KXReader::setControllerType, returning true(1)"}},
        {"Controller name : x\n", "", {"Exiting KXReader::setControllerType, returning true(2)"}},
        {"Concurrent commands supported : 511\n",
         "",
         {"Exiting KXReader::setControllerType, returning true(3)"}},
    };
    for (const End& end : ends) {
        const ListingResult result =
            readListing(with(qtcsend, 9, false), "--------\n--------\n" + block + end.line + rest);
        EXPECT_TRUE(result.read);
        EXPECT_EQ(result.lines.front(),
                  "controller slot=6" + end.fields + " bios=1.2 firmware=4.5");
        Lines expected = {"Entering KXReader::readConfiguration",
                          "Entering KXReader::setControllerType", "Setting BIOS version = 1.2",
                          "Setting Firmware version = 4.5", "Setting Slot number = 6"};
        expected.insert(expected.end(), end.exit.begin(), end.exit.end());
        expected.emplace_back("Exiting KXReader::readConfiguration, returning true(2)");
        EXPECT_EQ(traces(result), expected);
    }
    const ListingResult cut =
        readListing(with(qtcsend, 9, false), "--------\n--------\nBIOS version : 1.2\n");
    EXPECT_FALSE(cut.read);
    EXPECT_EQ(traces(cut),
              (Lines{"Entering KXReader::readConfiguration", "Entering KXReader::setControllerType",
                     "Setting BIOS version = 1.2",
                     "Exiting KXReader::setControllerType, returning false(2)",
                     "Exiting KXReader::readConfiguration, returning false(2)"}));
    // The keys are tried in their order, so the first that fits a line takes it.
    EXPECT_EQ(readListing(qtcsend, listing("Slot of the Bus : 5\n", "", "", "")).lines.front(),
              "controller slot=5");
    EXPECT_EQ(
        readListing(qtcsend, listing("bios version : 1\nSLOT : 2\nSlot : Unknown\n", "", "", ""))
            .lines.front(),
        "controller slot=0");
}

TEST(KXReader, OnlyCfggenPrintsSlotAndBusBehindTheOtherKeys) {
    const std::string text = listing("", "Slot : 3\nBus : 4\n", "Slot : 8\nBus : 9\n", "");
    for (const bool capture : {true, false}) {
        for (const std::int32_t type : {controller_type::lsiSas, controller_type::lsiScsi}) {
            const ListingResult result = readListing(with({.type = type}, 9, capture), text);
            EXPECT_EQ(result.lines, Lines{"controller slot=3 bus=4"});
            EXPECT_EQ(countOf(result.output, "Setting Slot number = 3\n"), 1U);
            EXPECT_EQ(countOf(result.output, "Setting Bus number = 4\n"), 1U);
        }
        EXPECT_EQ(readListing(with(qtcsend, 3, capture), text).lines, Lines{"controller"});
    }
}

TEST(KXReader, ControllerSettings) {
    const std::string array = "Array A : 1,0\n";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"Rebuild rate : Low", "rebuild=2 readahead=0 stripe=10"},
        {"Rebuild rate : Medium", "rebuild=1 readahead=0 stripe=10"},
        {"Rebuild rate : High", "rebuild=0 readahead=0 stripe=10"},
        {"Readahead cache setting : Disabled", "rebuild=0 readahead=2 stripe=10"},
        {"Readahead cache setting : Enabled", "rebuild=0 readahead=1 stripe=10"},
        {"Readahead cache setting : Adaptive", "rebuild=0 readahead=0 stripe=10"},
        {"Stripe-unit size : 8 KB", "rebuild=0 readahead=0 stripe=0"},
        {"Stripe-unit size : 16 KB", "rebuild=0 readahead=0 stripe=1"},
        {"Stripe-unit size : 32 KB", "rebuild=0 readahead=0 stripe=2"},
        {"Stripe-unit size : 64 KB", "rebuild=0 readahead=0 stripe=3"},
        {"rebuild rate : ?", "rebuild=0 readahead=0 stripe=10"},
    };
    for (const auto& [line, settings] : rows) {
        EXPECT_EQ(readListing(qtcsend, listing("", line + "\n", array, "")).of("settings"),
                  Lines{settings})
            << line;
    }
    const std::vector<std::pair<std::string, Lines>> failures = {
        {"Rebuild rate : low",
         {"Rebuild rate not recognized:  low",
          "Exiting KXReader::setControllerSettings, returning false(1)"}},
        {"Readahead cache setting : ",
         {"Read-cache mode not recognized:  ",
          "Exiting KXReader::setControllerSettings, returning false(2)"}},
        {"Stripe-unit size : 64KB",
         {"Stripe size not recognized:  64KB",
          "Exiting KXReader::setControllerSettings, returning false(3)"}},
    };
    for (const auto& [line, end] : failures) {
        const std::string text = listing("", line + "\n", array, "");
        const ListingResult result = readListing(with(qtcsend, 9), text);
        EXPECT_FALSE(result.read);
        Lines expected = {"Entering KXReader::readConfiguration",
                          "Entering KXReader::setControllerType",
                          "Exiting KXReader::setControllerType, returning true(2)",
                          "Entering KXReader::setControllerSettings"};
        expected.insert(expected.end(), end.begin(), end.end());
        expected.emplace_back("Exiting KXReader::readConfiguration, returning false(3)");
        EXPECT_EQ(traces(result), expected);
        EXPECT_TRUE(readListing(with(qtcsend, 3, false), text).read);
    }
}

TEST(KXReader, RaidLevels) {
    const std::vector<std::pair<std::string, int>> levels = {{"0", 0}, {"1", 1},  {"1E", 2},
                                                             {"5", 3}, {"5E", 4}, {"5EE", 5}};
    for (const auto& [word, code] : levels) {
        EXPECT_EQ(readListing(qtcsend, layoutListing("IR volume 1\nRAID level : " + word +
                                                     "\nArray A : 1,0\n"))
                      .of("logical"),
                  Lines{"level=" + std::to_string(code) + " size=-101 array=-1 cache=2"});
    }
    for (const std::string word : {"10", "50"}) {
        const std::string text =
            layoutListing("Array A : 1,0\nIR volume 1\nRAID level : " + word + "\n");
        const ListingResult result = readListing(qtcsend, text);
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.lines, Lines{"controller"});
        EXPECT_EQ(result.output, "\n#### ERROR\n\tZOLEX cannot create RAID-10 or RAID-50 drives on "
                                 "this controller type.\n\n");
        const Lines last = traces(readListing(with(qtcsend, 9), text));
        EXPECT_EQ(last.at(last.size() - 2),
                  "Exiting KXReader::getArraysAndLogicalDrives, returning false(1)");
        EXPECT_TRUE(readListing(with(qtcsend, 3, false), text).read);
    }
    for (const std::string word : {"6", "", "1e", "5 5", "60", "VOLUME"}) {
        const ListingResult result =
            readListing(with(qtcsend, 9),
                        layoutListing("Array A : 1,0\nIR volume 1\nRAID level : " + word + "\n"));
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.lines, Lines{"controller"});
        const Lines all = traces(result);
        EXPECT_EQ(Lines(all.end() - 4, all.end()),
                  (Lines{"Entering KXReader::getArraysAndLogicalDrives",
                         "RAID level not recognized:  " + word,
                         "Exiting KXReader::getArraysAndLogicalDrives, returning false(2)",
                         "Exiting KXReader::readConfiguration, returning false(6)"}));
    }
}

TEST(KXReader, LogicalDriveKeys) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"Size (in MB) : 1234 MB", "level=-1 size=1234 array=-1 cache=2"},
        {"Size (in MB) : ?", "level=-1 size=0 array=-1 cache=2"},
        {"Size : 1234", "level=-1 size=-101 array=-1 cache=2"},
        {"Write cache status : Enabled (WB)", "level=-1 size=-101 array=-1 cache=1"},
        {"Write cache status : Write through (WT)", "level=-1 size=-101 array=-1 cache=0"},
        {"Write cache status : unknown", "level=-1 size=-101 array=-1 cache=2"},
        {"Part of array : B", "level=-1 size=-101 array=1 cache=2"},
        {"Part of array : P, half", "level=-1 size=-101 array=15 cache=2"},
        {"Part of array :", "level=-1 size=-101 array=-1 cache=2"},
        {"Status of volume : Okay (OKY)", "level=-1 size=-101 array=-1 cache=2 Okay (OKY)/GOOD"},
        {"Status of logical drive : Rebuilding",
         "level=-1 size=-101 array=-1 cache=2 Rebuilding/GOOD"},
        {"Status of volume : Degraded (DGD)",
         "level=-1 size=-101 array=-1 cache=2 Degraded (DGD)/BAD"},
        {"Status of volume : Offline", "level=-1 size=-101 array=-1 cache=2 Offline/GOOD"},
        {"size (in mb) : 5", "level=-1 size=-101 array=-1 cache=2"},
    };
    for (const auto& [line, drive] : rows) {
        for (const std::string heading : {"Logical drive number 1", "IR volume 1"}) {
            EXPECT_EQ(
                readListing(qtcsend, layoutListing(heading + "\n" + line + "\nArray A : 1,0\n"))
                    .of("logical"),
                Lines{drive})
                << line;
        }
    }
    // A new heading puts the drive before it into the configuration.
    EXPECT_EQ(readListing(qtcsend, layoutListing("IR volume 1\nSize (in MB) : 1\nIR volume 2\n"
                                                 "Size (in MB) : 2\nArray A : 1,0\n"))
                  .of("logical"),
              (Lines{"level=-1 size=1 array=-1 cache=2", "level=-1 size=2 array=-1 cache=2"}));
}

TEST(KXReader, ArraysOfTheFamilyUtility) {
    const std::string blanks(14, ' ');
    // Columns: the lines, the arrays.
    const std::vector<std::pair<std::string, Lines>> rows = {
        {"Array A : 1,0 1,1   2,12\n", {"A: 1:0 1:1 2:12"}},
        {"   Array A : 1,0\n" + blanks + "1,1 1,2\n" + blanks + "   1,3\n", {"A: 1:0 1:1 1:2 1:3"}},
        {"Array A : 1,0\n" + blanks.substr(1) + "1,1\n", {"A: 1:0"}},
        {"Array A :\n" + blanks + ": 1,1\nArray B : 2,0\n" + blanks + "2,1\n",
         {"A: 1:1", "B: 2:0 2:1"}},
        {blanks + "1,1\nArray A : 1,0\n", {"A: 1:0"}},
        {"Arrays : 1,0\narray A : 1,1\nArray A : x 1,y 1/2 1,2\n", {"A: 1:2"}},
        {"Physical hard disks : 1/0 2/35 1,1\n", {"A: 1:0 2:35"}},
        {"Array A : 1,0\nPhysical hard disks : 1/1\n" + blanks + "1,2\n", {"A: 1:0", "B: 1:1"}},
    };
    for (const auto& [lines, arrays] : rows) {
        EXPECT_EQ(readListing(qtcsend, layoutListing(lines)).of("array"), arrays) << lines;
    }
}

TEST(KXReader, AListOfPhysicalHardDisksBelongsToTheOpenLogicalDrive) {
    const ListingResult result = readListing(
        qtcsend, layoutListing("IR volume 1\nPhysical hard disks : 1/0 1/1\nIR volume 2\n"
                               "RAID level : 0\nPhysical hard disks (Channel/ID) : 1/2\n"));
    EXPECT_EQ(result.of("array"), (Lines{"A: 1:0 1:1", "B: 1:2"}));
    EXPECT_EQ(result.of("logical"),
              (Lines{"level=-1 size=-101 array=0 cache=2", "level=0 size=-101 array=1 cache=2"}));
}

TEST(KXReader, PositionsOutOfRangeAndWhatTheRecordCannotHold) {
    ListingResult result = readListing(qtcsend, layoutListing("Array A : 1,0 5,0 1,36 1,1\n"));
    EXPECT_EQ(result.of("array"), Lines{"A: 1:0 1:1"});
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive position out of range for controller Kestrix "
                             "controller:  channel=5, id=0\n\n"
                             "\n#### ERROR\n\tDrive position out of range for controller Kestrix "
                             "controller:  channel=1, id=36\n\n");

    std::string layout;
    for (int i = 0; i < 17; ++i) {
        layout += "IR volume 1\nPhysical hard disks : " + std::to_string(i) + "\n";
    }
    const auto error = [](const std::string& what) {
        return "\n#### ERROR\n\tController LSI-SAS-RAID has more than " + what +
               "; the rest is not captured.\n\n";
    };
    result = readListing(cfggen, layoutListing(layout));
    EXPECT_EQ(result.summary(), "true d=0 a=16 l=8 s=0");
    EXPECT_EQ(result.output, error("8 logical drives") + error("16 arrays"));

    std::string members = "Physical hard disks :";
    for (int i = 0; i < 34; ++i) {
        members += " " + std::to_string(i);
    }
    result = readListing(cfggen, layoutListing(members + "\n"));
    EXPECT_EQ(countOf(result.of("array").at(0), " #"), 32U);
    EXPECT_EQ(result.output, error("32 drives in an array"));
}

TEST(KXReader, AListingThatEndsBehindTheLayoutStillGivesTheConfiguration) {
    const std::string start = "--------\n--------\nController name : x\n--------\n--------\n";
    const ListingResult result =
        readListing(with(qtcsend, 9), start + "Logical drive number 1\nArray A : 1,0\n");
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("array"), Lines{"A: 1:0"});
    EXPECT_EQ(lastTrace(result), "Exiting KXReader::readConfiguration, returning true(2)");
    // A line reading "EOF" is the end as well.
    EXPECT_EQ(readListing(qtcsend, start + "Array A : 1,0\nEOF\n--------\n--------\nTarget on\n")
                  .summary(),
              "true d=0 a=1 l=0 s=0");
    EXPECT_EQ(readListing(qtcsend, start + "Logical drive number 1\n").lines, Lines{"controller"});
}

} // namespace
} // namespace zolex::test::kx
