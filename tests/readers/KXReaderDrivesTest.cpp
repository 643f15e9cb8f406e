#include "model/Codes.h"
#include "readers/ListingSupport.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zolex::test::kx_drives {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions qtcsend = {.type = controller_type::family};
constexpr ListingOptions lsiScsi = {.type = controller_type::lsiScsi};
constexpr ListingOptions cfggen = {.type = controller_type::lsiSas};

ListingOptions with(ListingOptions options, std::int32_t verbosity, bool capture = true) {
    options.verbosity = verbosity;
    options.capture = capture;
    return options;
}

/// A listing of these lines of the layout and of the drives.
std::string listing(const std::string& layout, const std::string& drives) {
    return "--------\n--------\nController name : x\n--------\n--------\n" + layout +
           "--------\n--------\n" + drives;
}

/// A drive as the family utility prints it.
std::string scsiDrive(const std::string& id, const std::string& state = "Online (ONL)") {
    return "Target on SCSI ID " + id + "\nDevice is a Hard disk\nSCSI ID : " + id +
           "\nState : " + state + "\nSize (in MB)/(in sectors) : 17357/35548160\nSerial No : SN" +
           id + "\nDevice ID : NORVIK\n";
}

/// A drive as CFGGEN prints it.
std::string sasDrive(const std::string& enclosure, const std::string& slot, const std::string& id,
                     const std::string& state = "Ready (RDY)") {
    return "Target on ID #" + id + "\nDevice is a Hard disk\nEnclosure # : " + enclosure +
           "\nSlot # : " + slot + "\nTarget ID : " + id + "\nState : " + state +
           "\nSize (in MB)/(in sectors) : 70006/143374000\nSerial No : SN" + id +
           "\nDrive Type : SAS\n";
}

Lines drivesOf(const ListingOptions& options, const std::string& drives) {
    return readListing(options, listing("", drives)).of("drive");
}

constexpr const char* scsiDrive10 = "1:0 17357 t0 [1:0 17357] SN0 Online (ONL)/GOOD";
constexpr const char* sasDrive13 = "1:3 70006 t8 type SAS [1:8:3 70006] SN8 Ready (RDY)/GOOD";

TEST(KXReader, WhereDrivesStand) {
    // The family utility counts the channels by their headings.
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1:\nInitiator at SCSI ID 7\n" + scsiDrive("0") +
                                    "Channel #2:\n" + scsiDrive("3")),
              (Lines{scsiDrive10, "2:3 17357 t3 [2:3 17357] SN3 Online (ONL)/GOOD"}));
    // CFGGEN for SCSI counts them by their initiators, too, and takes the position from there.
    const std::string twoChannels = "Initiator at SCSI ID 7\n" +
                                    replaced(sasDrive("9", "9", "0"), "Target ID", "SCSI ID") +
                                    "Initiator at ID #7\n" + sasDrive("9", "9", "3");
    EXPECT_EQ(drivesOf(lsiScsi, twoChannels),
              (Lines{"1:0 70006 t0 type SAS [1:0 70006] SN0 Ready (RDY)/GOOD",
                     "2:3 70006 t3 type SAS [2:3 70006] SN3 Ready (RDY)/GOOD"}));
    EXPECT_EQ(drivesOf(lsiScsi, "Channel #1\n" + twoChannels).size(), 2U);
    EXPECT_EQ(drivesOf(lsiScsi, "Channel #1\n" + twoChannels).front().substr(0, 3), "2:0");
    // CFGGEN for SAS takes enclosure and slot; the id is the target id.
    EXPECT_EQ(drivesOf(cfggen, "Initiator at ID #112\n" + sasDrive("1", "3", "8")),
              Lines{sasDrive13});
}

TEST(KXReader, OnlyHardDisksAreDrives) {
    const std::vector<std::pair<std::string, bool>> kinds = {
        {"Device is a Hard disk", true},   {"Device is : Hard disk drive", true},
        {"Device is a Hard drive", false}, {"Device is a hard disk", false},
        {"Device is an Enclosure", false}, {"Hard disk Device is : none", false},
        {"Model : Hard disk", false}};
    for (const auto& [kind, stored] : kinds) {
        EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" +
                                        replaced(scsiDrive("0"), "Device is a Hard disk", kind)),
                  stored ? Lines{scsiDrive10} : Lines{})
            << kind;
    }
}

TEST(KXReader, OnlyDrivesThatArePresentAreStored) {
    const std::string block = "Channel #1\n" + scsiDrive("0");
    const std::string state = "State : Online (ONL)\n";
    const std::vector<std::pair<std::string, Lines>> rows = {
        {replaced(block, state, "State : Missing (MIS)\n"), {}},
        {replaced(block, state, ""), {}},
        {replaced(block, state, "State :\n"), {"1:0 17357 t0 [1:0 17357] SN0 /GOOD"}},
        {replaced(block, state, "State : Ready\n"), {"1:0 17357 t0 [1:0 17357] SN0 Ready/GOOD"}},
        {replaced(block, state, "State : Defunct (DDD)\n"),
         {"1:0 17357 t0 [1:0 17357] SN0 Defunct (DDD)/BAD used"}},
        {replaced(block, "Size (in MB)/(in sectors) : 17357/35548160\n", ""), {}},
        {replaced(block, "17357/35548160", "17358"),
         {"1:0 17358 t0 [1:0 17358] SN0 Online (ONL)/GOOD"}},
        {replaced(block, "17357/35548160", "?"), {"1:0 0 t0 [1:0 0] SN0 Online (ONL)/GOOD"}},
        {replaced(block, "Serial No : SN0", "Serial No : LSIInternalUse"), {}},
        {replaced(block, "Serial No : SN0", "Serial No : xLSIInternalUse1"), {}},
    };
    for (const auto& [text, drives] : rows) {
        EXPECT_EQ(drivesOf(qtcsend, text), drives) << text;
    }
    const std::string own = replaced(sasDrive("1", "3", "8"), "SN8", "LSIInternalUse");
    EXPECT_EQ(drivesOf(cfggen, own + sasDrive("1", "4", "9")),
              Lines{"1:4 70006 t9 type SAS [1:9:4 70006] SN9 Ready (RDY)/GOOD"});
    // A drive without a position is no fault when it is not stored.
    EXPECT_TRUE(readListing(cfggen, listing("", replaced(own, "Slot # : 3\n", ""))).read);
}

// A drive whose block told it present and held a further "State" line was lost, and the
// controller's own drive was taken for one of the server's when its serial number came twice.
TEST(KXReader, WhatALineOfABlockHasToldStands) {
    const std::string block = "Channel #1\n" + scsiDrive("0");
    EXPECT_EQ(drivesOf(qtcsend, replaced(block, "Size", "State : Missing (MIS)\nSize")),
              Lines{"1:0 17357 t0 [1:0 17357] SN0 Missing (MIS)/GOOD"});
    EXPECT_EQ(drivesOf(qtcsend, replaced(block, "Serial", "Serial No : LSIInternalUse\nSerial")),
              Lines{});
    // The next block starts anew.
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" +
                                    replaced(scsiDrive("1"), "Serial No : SN1\nDevice ID : NORVIK",
                                             "Serial No : LSIInternalUse\nState : Missing (MIS)") +
                                    replaced(scsiDrive("0"), "Online (ONL)", "Missing (MIS)") +
                                    scsiDrive("0")),
              Lines{scsiDrive10});
}

TEST(KXReader, ALineWithBothStateAndSizeIsAStateLine) {
    const std::string block = "Channel #1\n" + scsiDrive("0");
    EXPECT_EQ(drivesOf(qtcsend, replaced(block, "Serial", "Size State : Ready (RDY)\nSerial")),
              Lines{"1:0 17357 t0 [1:0 17357] SN0 Ready (RDY)/GOOD"});
}

TEST(KXReader, ADriveWithoutAPositionFailsTheRead) {
    struct Case {
        ListingOptions options;
        std::string drives;
        std::string message;
        std::string exit;
    };
    const std::string sas = sasDrive("1", "3", "8");
    const std::string channel = "Enclosure/Channel not found. channel<0\n";
    const std::string id = "SCSIID not found. scsiID<0\n";
    const std::string slot = "Slot not found. slot<0\n";
    const std::vector<Case> cases = {
        {cfggen, replaced(sas, "Enclosure # : 1\n", ""), channel, "false(1)"},
        {cfggen, replaced(sas, "Enclosure # : 1\n", "Enclosure # : -2\n"), channel, "false(1)"},
        {cfggen, replaced(sas, "Target ID : 8\n", ""), id, "false(2)"},
        {cfggen, replaced(sas, "Slot # : 3\n", ""), slot, "false(3)"},
        {lsiScsi, replaced(sas, "Target ID : 8\n", ""), id, "false(2)"},
        {qtcsend, replaced(scsiDrive("0"), "\nSCSI ID : 0", ""), id, "false(2)"},
    };
    for (const Case& c : cases) {
        ListingOptions options = c.options;
        options.verbosity = 0;
        const std::string text = listing("Array A : 1,0\n", c.drives + sasDrive("1", "5", "9"));
        const ListingResult result = readListing(options, text);
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.summary(), "false d=0 a=0 l=0 s=0");
        EXPECT_EQ(result.output, c.message);
        const std::string traced = readListing(with(options, 9), text).output;
        EXPECT_EQ(countOf(traced, c.message + "Exiting KXReader::addDevice, returning " + c.exit +
                                      "\nExiting KXReader::getDrives, returning false\nExiting "
                                      "KXReader::readConfiguration, returning false(8)\n"),
                  1U)
            << traced;
    }
}

TEST(KXReader, HotSparesJoinTheConfiguration) {
    const std::string array = "Array A : 1,0\n";
    const std::string scsi = "Channel #1\n" + scsiDrive("4", "Hot spare (HSP)");
    const std::string sas = "Initiator at ID #7\n" + sasDrive("2", "3", "8", "Hot Spare (HSP)");
    EXPECT_EQ(readListing(qtcsend, listing(array, scsi)).of("spare"), Lines{"1:4"});
    EXPECT_EQ(readListing(lsiScsi, listing(array, sas)).of("spare"), Lines{"1:8"});
    EXPECT_EQ(readListing(cfggen, listing(array, sas)).of("spare"), Lines{"2:3 disk 8"});
    for (const ListingOptions& options : {lsiScsi, cfggen}) {
        const ListingResult result = readListing(with(options, 3, false), listing(array, sas));
        EXPECT_EQ(result.summary(), "true d=1 a=0 l=0 s=0");
    }
}

TEST(KXReader, AFailedDriveIsUsedAndBadWhereConfigurationsAreRead) {
    const std::string drive = sasDrive("1", "3", "8", "Failed (DDD)");
    EXPECT_EQ(drivesOf(cfggen, drive),
              Lines{"1:3 70006 t8 type SAS [1:8:3 70006] SN8 Failed (DDD)/BAD used"});
    EXPECT_EQ(drivesOf(with(cfggen, 3, false), drive),
              Lines{"1:3 70006 t8 type SAS [1:8:3 70006] SN8 Failed (DDD)/GOOD used"});
}

TEST(KXReader, DrivesOutsideThePositionRangeAreLeftOut) {
    const ListingResult result =
        readListing(cfggen, listing("Physical hard disks : 1 2\n",
                                    sasDrive("5", "0", "1", "Hot spare (HSP)") +
                                        sasDrive("1", "36", "2") + sasDrive("1", "3", "8")));
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("drive"), Lines{sasDrive13});
    EXPECT_EQ(result.of("spare"), Lines{});
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive position out of range for controller "
                             "LSI-SAS-RAID:  channel=5, id=0\n\n"
                             "\n#### ERROR\n\tDrive position out of range for controller "
                             "LSI-SAS-RAID:  channel=1, id=36\n\n");
}

TEST(KXReader, DrivesOfAnImpossibleSizeAreLeftOut) {
    std::string drive = sasDrive("1", "4", "2");
    drive.replace(drive.find("70006"), 5, "-2");
    const ListingResult result = readListing(cfggen, listing("", drive + sasDrive("1", "3", "8")));
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.of("drive"), Lines{sasDrive13});
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive size out of range for controller "
                             "LSI-SAS-RAID:  channel=1, id=4, size=-2 MB\n\n");
}

TEST(KXReader, CfggenMembersAreDriveNumbers) {
    const std::string drives = "Initiator at ID #7\n" + sasDrive("1", "2", "4") +
                               sasDrive("1", "1", "5") + sasDrive("2", "0", "6");
    const std::string layout = "IR volume 1\nPhysical hard disks (Target ID) : 6  4\n"
                               "IR volume 2\nPhysical hard disks : 5 77 -1\n";
    ListingResult result = readListing(cfggen, listing(layout, drives));
    // Numbers that no drive has get no position.
    EXPECT_EQ(result.of("array"), (Lines{"A: 2:0 1:2 #6 #4", "B: 1:1 #5 #77 #-1"}));
    EXPECT_EQ(result.of("logical"),
              (Lines{"level=-1 size=-101 array=0 cache=2", "level=-1 size=-101 array=1 cache=2"}));
    result = readListing(lsiScsi, listing(layout, drives));
    EXPECT_EQ(result.of("array"), (Lines{"A: 1:6 1:4 #6 #4", "B: 1:5 #5 #77 #-1"}));
    // A failed drive is found as well.
    result = readListing(cfggen, listing(layout, sasDrive("1", "2", "4", "Failed (DDD)")));
    EXPECT_EQ(result.of("array").front(), "A: 1:2 #6 #4");
}

TEST(KXReader, AnEmptyLineEndsTheDrives) {
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" + scsiDrive("0") + "\n" + scsiDrive("1")),
              Lines{scsiDrive10});
    EXPECT_EQ(drivesOf(qtcsend, "\nChannel #1\n" + scsiDrive("0")), Lines{});
    // The one that ends a block does not.
    const std::string open = replaced(scsiDrive("0"), "Device ID : NORVIK\n", "\n");
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" + open + scsiDrive("1")),
              (Lines{scsiDrive10, "1:1 17357 t1 [1:1 17357] SN1 Online (ONL)/GOOD"}));
    // A blank is a line of its own, and so is a separator.
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n \n--------\n" + scsiDrive("0")), Lines{scsiDrive10});
}

TEST(KXReader, ABlockEndsAtItsUtilitysOwnKey) {
    const std::string late = "Size : 5\nDevice ID : x\nDrive Type : SATA\n";
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" + scsiDrive("0") + late), Lines{scsiDrive10});
    EXPECT_EQ(drivesOf(cfggen, sasDrive("1", "3", "8") + late), Lines{sasDrive13});
    EXPECT_EQ(drivesOf(qtcsend, "Channel #1\n" + replaced(scsiDrive("0"), "Serial",
                                                          "Drive Type : SCSI\nSerial")),
              Lines{"1:0 17357 t0 type SCSI [1:0 17357] SN0 Online (ONL)/GOOD"});
}

TEST(KXReader, TracesEachStepOfACfggenListing) {
    const std::string text =
        listing("IR volume 1\nStatus of volume : Degraded (DGD)\n",
                "Initiator at ID #7\n" + sasDrive("1", "3", "8", "Failed (DDD)") + "--------\n");
    EXPECT_EQ(readListing(with(cfggen, 9), text).output,
              "Entering KXReader::readConfiguration\n"
              "KXReader::nextLine: --------\n"
              "KXReader::nextLine: --------\n"
              "Entering KXReader::setControllerType\n"
              "Exiting KXReader::setControllerType, returning true(2)\n"
              "Entering KXReader::setControllerSettings\n"
              "Exiting KXReader::setControllerSettings, returning true\n"
              "KXReader::nextLine: --------\n"
              "Entering KXReader::getArraysAndLogicalDrives\n"
              "Found 'State', setting logical volume state=Degraded (DGD)\n"
              "Setting logical volume derived state=BAD\n"
              "Exiting KXReader::getArraysAndLogicalDrives, returning true\n"
              "KXReader::nextLine: --------\n"
              "Entering KXReader::getDrives\n"
              "Entering KXReader::addDevice\n"
              "currentCommand=UTIL.BAT CFGGEN, LSI_SAS_command=UTIL.BAT CFGGEN\n"
              "Found 'Enclosure', setting channel=1\n"
              "Found 'Slot', setting ID=3\n"
              "Found 'SCSI ID' or 'Target ID', setting ID=8\n"
              "Found 'State', setting state=Failed (DDD)\n"
              "Setting derived state=BAD\n"
              "Exiting KXReader::addDevice, returning true\n"
              "Exiting KXReader::getDrives, returning true\n"
              "Exiting KXReader::readConfiguration, returning true(3)\n");
    EXPECT_EQ(readListing(with(cfggen, 8), text).output, "");
}

TEST(KXReader, TracesEachStepOfAFamilyListing) {
    const std::string text = "Utility\n--------\nController\n--------\nController name : x\n"
                             "Rebuild rate : High\n--------\nLogical\n";
    EXPECT_EQ(readListing(with(qtcsend, 9, false), text + "--------\nx\n").output,
              "Entering KXReader::readConfiguration\n"
              "KXReader::nextLine: Utility\n"
              "KXReader::nextLine: --------\n"
              "KXReader::nextLine: Controller\n"
              "KXReader::nextLine: --------\n"
              "Entering KXReader::setControllerType\n"
              "Exiting KXReader::setControllerType, returning true(2)\n"
              "KXReader::nextLine: Rebuild rate : High\n"
              "KXReader::nextLine: --------\n"
              "KXReader::nextLine: Logical\n"
              "KXReader::nextLine: --------\n"
              "KXReader::nextLine: x\n"
              "KXReader::nextLine, returning EOF\n"
              "Exiting KXReader::readConfiguration, returning false(7)\n");
    const std::string output =
        readListing(with(qtcsend, 9), listing("", "Channel #1\n" + scsiDrive("0"))).output;
    EXPECT_EQ(countOf(output, "Entering KXReader::addDevice\n"
                              "currentCommand=UTIL.BAT QTCSEND, LSI_SAS_command=UTIL.BAT CFGGEN\n"
                              "Found 'SCSI ID' or 'Target ID', setting ID=0\n"
                              "Found 'State', setting state=Online (ONL)\n"
                              "Setting derived state=GOOD\n"
                              "Exiting KXReader::addDevice, returning true\n"),
              1U)
        << output;
}

TEST(KXReader, DumpsTheRecordsWithTheDebugFlag) {
    ListingOptions options = cfggen;
    options.debug = true;
    const std::string text =
        listing("Array A : 1,0\n", sasDrive("1", "3", "8", "Hot spare (HSP)") +
                                       replaced(sasDrive("1", "4", "9"), "SN9", "LSIInternalUse"));
    EXPECT_EQ(readListing(options, text).output, "kxread:Start readConfiguration \n"
                                                 "Contents of RaidDisk:\n"
                                                 "  Channel Number:    1\n"
                                                 "  ID:                8\n"
                                                 "  Disk Number:       3\n"
                                                 "  Size:              70006\n"
                                                 "  Serial Number:     SN8\n"
                                                 "  Reported Location: \n"
                                                 "  State:             Hot spare (HSP)\n"
                                                 "  Derived State:     GOOD\n\n"
                                                 "Contents of Hotspare:\n"
                                                 "  Channel Number:    1\n"
                                                 "  ID:                3\n"
                                                 "  Disk Number:       8\n");
    EXPECT_EQ(readListing(cfggen, text).output, "");
}

} // namespace
} // namespace zolex::test::kx_drives
