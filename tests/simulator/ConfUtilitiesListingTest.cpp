#include "simulator/ConfSupport.h"

#include <algorithm>
#include <sstream>

namespace zolex_sim::test {
namespace {

// What both sample listings show; they differ in the fields of the controller.
constexpr const char* sampleDrives = R"(
    {"channel": 0, "device": 0, "sizeMB": 69889, "rawSectors": 144420864,
     "revision": "B522", "serial": "NV7A0001"},
    {"channel": 0, "device": 1, "sizeMB": 69889, "rawSectors": 144420864,
     "revision": "B522", "serial": "NV7A0002"},
    {"channel": 0, "device": 2, "sizeMB": 69889, "rawSectors": 144420864,
     "revision": "B522", "serial": "NV7A0003", "status": "hotspare"})";

constexpr const char* sampleFields = R"json(
    "serialNumber": "1000001", "bios": "5.2-0 (15000)", "firmware": "5.2-0 (15000)",
    "bootBlock": "5.1-0 (15000)", "driver": "1.2-0 (29000)",
    "enclosureDevices": [{"channel": 2, "device": 0}],)json";

std::string sampleFile(const std::string& name) {
    return readFile(std::string(ZOLEX_TEST_DATA) + "/" + name, 100'000).value_or("(no file)");
}

std::string sampleListing(const std::string& fields) {
    Server server = ConfServer{"ARCCONF", sampleDrives, sampleFields + fields}.server();
    const PlayResult result = playLine(server, "ARCCONF GETCONFIG 1 AL");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.changed);
    return result.output;
}

TEST(ConfListing, PlainFormByteForByte) {
    EXPECT_EQ(sampleListing(R"("productName": "Norvik Kestrix B8", "showsReadCache": false,
        "virtualDisks": [{"level": "RAID1", "spans": [["0:0", "0:1"]], "partitioned": true,
                          "name": "ARRAY0_LOGICAL0"}],)"),
              sampleFile("arcconf-getconfig-plain.txt"));
}

TEST(ConfListing, SegmentFormByteForByte) {
    EXPECT_EQ(sampleListing(R"("productName": "Norvik Kestrix B7",
        "automaticFailover": "Enabled", "defaultBatteryProtected": true,
        "virtualDisks": [{"level": "RAID1", "spans": [["0:0", "0:1"]], "partitioned": true,
                          "name": "ARRAY0_LOGICAL0"}],)"),
              sampleFile("arcconf-getconfig-segments.txt"));
}

// A mirror and a RAID 6 with a failed and a rebuilding member, a spare, a bad, a foreign and a free
// drive, over two channels.
constexpr const char* mixedDrives = R"(
    {"channel": 0, "device": 0, "count": 4, "sizeMB": 1000, "serial": "AA"},
    {"channel": 0, "device": 4, "sizeMB": 1000, "serial": "BB", "status": "failed"},
    {"channel": 1, "device": 12, "sizeMB": 1000, "serial": "CC", "status": "rebuild",
     "enclosure": 3, "slot": 7, "predictiveFailures": 2, "transferSpeed": "SAS 6.0 Gb/s"},
    {"channel": 1, "device": 13, "sizeMB": 900, "serial": "DD", "status": "hotspare"},
    {"channel": 1, "device": 14, "sizeMB": 900, "serial": "EE", "status": "bad"},
    {"channel": 1, "device": 15, "sizeMB": 900, "serial": "FF", "status": "foreign"},
    {"channel": 3, "device": 35, "sizeMB": 900, "serial": "GG", "interface": "SATA"})";
constexpr const char* mixedDisks = R"("virtualDisks": [
    {"level": "RAID1", "spans": [["0:0", "0:1"]], "name": "first", "writePolicy": "WT"},
    {"level": "RAID6", "spans": [["0:2", "0:3", "0:4", "1:12"]], "sizeMB": 1500, "stripeKB": 16,
     "readPolicy": "NORA", "name": "second"}],)";

std::string mixedListing(const char* utility, const std::string& fields) {
    Server server = ConfServer{utility, mixedDrives, mixedDisks + fields}.server();
    return playLine(server, std::string(utility) + " GETCONFIG 1 AL").output;
}

TEST(ConfListing, CountsOfDefunctDrivesAndOfLogicalDrivesThatSuffer) {
    const std::string listing = mixedListing("ARCCONF", "");
    EXPECT_EQ(excerpt(listing, "Defunct disk", "Logical drive information"),
              "   Defunct disk drive count                 : 2\n"
              "   Logical drives/Offline/Critical          : 2/0/1\n"
              "   --------------------------------------------------------\n"
              "   Controller Version Information\n"
              "   --------------------------------------------------------\n"
              "   BIOS                                     : NV10-1\n"
              "   Firmware                                 : 1.11.50-0300\n"
              "   Driver                                   : 1.2-0 (29000)\n"
              "   Boot Flash                               : 1.00.00.01-0008\n"
              "   --------------------------------------------------------\n"
              "   Controller Battery Information\n"
              "   --------------------------------------------------------\n"
              "   Status                                   : Not Installed\n"
              "\n"
              "----------------------------------------------------------------------\n");
}

TEST(ConfListing, PlainLogicalDrivesCountFromOne) {
    EXPECT_EQ(excerpt(mixedListing("ARCCONF", ""), "Logical drive number", "Physical Device"),
              "Logical drive number 1\n"
              "   Logical drive name                       : first\n"
              "   RAID level                               : 1\n"
              "   Status of logical drive                  : Okay\n"
              "   Size                                     : 1000 MB\n"
              "   Read-cache mode                          : Enabled\n"
              "   Write-cache mode                         : Disabled (write-through)\n"
              "   Partitioned                              : No\n"
              "   Number of segments                       : 2\n"
              "   Drive(s) (Channel,Device)                : 0,0 0,1 \n"
              "   Defunct segments                         : No\n"
              "Logical drive number 2\n"
              "   Logical drive name                       : second\n"
              "   RAID level                               : 6\n"
              "   Status of logical drive                  : Critical\n"
              "   Size                                     : 1500 MB\n"
              "   Stripe-unit size                         : 16 KB\n"
              "   Read-cache mode                          : Disabled\n"
              "   Write-cache mode                         : Enabled (write-back)\n"
              "   Partitioned                              : No\n"
              "   Number of segments                       : 4\n"
              "   Drive(s) (Channel,Device)                : 0,2 0,3 0,4 1,12 \n"
              "   Defunct segments                         : Yes\n"
              "\n"
              "----------------------------------------------------------------------\n");
}

TEST(ConfListing, SegmentsCountFromZero) {
    EXPECT_EQ(excerpt(mixedListing("ARCCONF", R"("automaticFailover": "Disabled",)"),
                      "Logical drive number 1", "Physical Device"),
              "Logical drive number 1\n"
              "   Logical drive name                       : second\n"
              "   RAID level                               : 6\n"
              "   Status of logical drive                  : Critical\n"
              "   Size                                     : 1500 MB\n"
              "   Stripe-unit size                         : 16 KB\n"
              "   Read-cache mode                          : Disabled\n"
              "   Write-cache mode                         : Enabled (write-back)\n"
              "   Write-cache setting                      : Enabled (write-back)\n"
              "   Partitioned                              : No\n"
              "   Protected by Hot-Spare                   : No\n"
              "   Bootable                                 : No\n"
              "   Defunct stripes                          : Yes\n"
              "   --------------------------------------------------------\n"
              "   Logical drive segment information\n"
              "   --------------------------------------------------------\n"
              "   Segment 0                                : Present (0,2) AA002\n"
              "   Segment 1                                : Present (0,3) AA003\n"
              "   Segment 2                                : Defunct (0,4) BB\n"
              "   Segment 3                                : Rebuilding (1,12) CC\n"
              "\n"
              "\n"
              "----------------------------------------------------------------------\n");
}

TEST(ConfListing, LaterGenerationWordsItInItsOwnWay) {
    const std::string listing =
        mixedListing("ARCCONF", R"("automaticFailover": "Enabled", "generation": "later",)");
    EXPECT_EQ(excerpt(listing, "Logical devices/", "   ---"),
              "   Logical devices/Offline/Critical         : 2/0/1\n");
    EXPECT_EQ(excerpt(listing, "Logical device number 1", "   Size"),
              "Logical device number 1\n"
              "   Logical device name                      : second\n"
              "   RAID level                               : 6 Reed-Solomon\n"
              "   Status of logical device                 : Critical\n");
    EXPECT_EQ(
        excerpt(listing, "Logical device segment information", "Segment 2"),
        "   Logical device segment information\n"
        "   --------------------------------------------------------\n"
        "   Segment 0                                : Present (Controller:1,Connector:0,Device:0) "
        "AA000\n"
        "   Segment 1                                : Present (Controller:1,Connector:0,Device:1) "
        "AA001\n"
        "\n"
        "Logical device number 1\n"
        "   Logical device name                      : second\n"
        "   RAID level                               : 6 Reed-Solomon\n"
        "   Status of logical device                 : Critical\n"
        "   Size                                     : 1500 MB\n"
        "   Stripe-unit size                         : 16 KB\n"
        "   Read-cache mode                          : Disabled\n"
        "   Write-cache mode                         : Enabled (write-back)\n"
        "   Write-cache setting                      : Enabled (write-back)\n"
        "   Partitioned                              : No\n"
        "   Protected by Hot-Spare                   : No\n"
        "   Bootable                                 : No\n"
        "   Defunct stripes                          : Yes\n"
        "   --------------------------------------------------------\n"
        "   Logical device segment information\n"
        "   --------------------------------------------------------\n"
        "   Segment 0                                : Present (Controller:1,Connector:0,Device:2) "
        "AA002\n"
        "   Segment 1                                : Present (Controller:1,Connector:0,Device:3) "
        "AA003\n");
    EXPECT_EQ(excerpt(listing, ": 1,12(12:0)", "         Vendor"),
              "         Reported Channel,Device(T:L)       : 1,12(12:0)\n"
              "         Reported Location                  : Enclosure 3, Slot 7\n");
}

// Behind an expander members are told by enclosure and slot, which are unlike channel and device.
TEST(ConfListing, ExpandersTellMembersByEnclosureAndSlot) {
    const std::string fields = R"("expander": true, "automaticFailover": "Enabled",)";
    for (const std::string generation : {"", R"("generation": "later",)"}) {
        const std::string listing = mixedListing("ARCCONF", fields + generation);
        EXPECT_EQ(excerpt(listing, "Segment 3", "-----"),
                  "   Segment 3                                : Rebuilding "
                  "(Controller:1,Enclosure:3,Slot:7) CC\n\n\n");
        EXPECT_NE(listing.find("Reported Location                  : Enclosure 3, Slot 7\n"),
                  std::string::npos);
    }
}

TEST(ConfListing, NewestGenerationTellsSettingsAndDevices) {
    const std::string newest = R"("generation": "newest",)";
    const std::string listing = mixedListing("ARCCONF", newest);
    EXPECT_EQ(excerpt(listing, "Logical Device information", "Logical Device Number 0"),
              "Logical Device information\n"
              "----------------------------------------------------------------------\n");
    EXPECT_EQ(excerpt(listing, "Logical Device Number 1", "\n\n----"),
              "Logical Device Number 1\n"
              "   Logical Device name                      : second\n"
              "   RAID level                               : 6 Reed-Solomon\n"
              "   Status of Logical Device                 : Critical\n"
              "   Size                                     : 1500 MB\n"
              "   Stripe-unit size                         : 16 KB\n"
              "   Full Stripe Size                         : 32 KB\n"
              "   Read-cache setting                       : Disabled\n"
              "   Read-cache status                        : Off\n"
              "   Write-cache setting                      : Enabled (write-back)\n"
              "   Write-cache status                       : On\n"
              "   Partitioned                              : No\n"
              "   Protected by Hot-Spare                   : No\n"
              "   Bootable                                 : No\n"
              "   Defunct stripes                          : Yes\n"
              "   --------------------------------------------------------\n"
              "   Logical Device segment information\n"
              "   --------------------------------------------------------\n"
              "   Device 0                                 : Present (1000MB, SAS, HDD, "
              "Connector:0, Device:2) AA002\n"
              "   Device 1                                 : Present (1000MB, SAS, HDD, "
              "Connector:0, Device:3) AA003\n"
              "   Device 2                                 : Missing\n"
              "   Device 3                                 : Present (1000MB, SAS, HDD, "
              "Connector:3, Device:7) CC\n\n");
    EXPECT_EQ(excerpt(listing, ": 1,12(12:0)", "         Vendor"),
              "         Reported Channel,Device(T:L)       : 1,12(12:0)\n"
              "         Reported Location                  : Connector 3, Device 7\n");
    EXPECT_EQ(excerpt(listing, "Block Size", "         PFA"),
              "         Block Size                         : 512 Bytes\n"
              "         Size                               : 1000 MB\n"
              "         Write Cache                        : Disabled (write-through)\n"
              "         FRU                                : None\n"
              "         Power State                        : Full rpm\n");
    const std::string behind = mixedListing("ARCCONF", newest + R"("expander": true,)");
    EXPECT_EQ(excerpt(behind, "Enclosure:3", "\n\n----"),
              "   Device 3                                 : Present (1000MB, SAS, HDD, "
              "Enclosure:3, Slot:7) CC\n\n");
    EXPECT_NE(behind.find("Reported Location                  : Enclosure 3, Slot 7\n"),
              std::string::npos);
    Server empty = ConfServer{"ARCCONF", sampleDrives, newest}.server();
    EXPECT_NE(
        playLine(empty, "ARCCONF GETCONFIG 1 AL").output.find("\nNo logical devices configured\n"),
        std::string::npos);
}

TEST(ConfListing, PlacesOfMembersTellTheControllersNumber) {
    const char* controller = R"({"utility": "ARCCONF", "model": "M", "generation": "later",
        "automaticFailover": "Enabled",
        "pci": {"bus": %d, "device": 0, "vendorId": 1, "deviceId": 2},
        "drives": [{"channel": 1, "device": 3, "sizeMB": 100, "serial": "S%d"}],
        "virtualDisks": [{"level": "VOLUME", "spans": [["1:3"]]}]})";
    Server server =
        serverOf(R"({"machineType": "1", "serialNumber": "2", "controllers": [)" +
                 formatted(controller, 8, 8) + "," + formatted(controller, 5, 5) + "]}");
    EXPECT_EQ(excerpt(playLine(server, "ARCCONF GETCONFIG 2 AL").output, "Segment 0", "-----"),
              "   Segment 0                                : Present "
              "(Controller:2,Connector:1,Device:3) S8\n\n\n");
}

/// The states of all drives, in the order of the listing.
std::string statesOf(const std::string& listing) {
    const std::string key = "         State                              : ";
    std::vector<std::string> states;
    std::istringstream lines(listing);
    for (std::string text; std::getline(lines, text);) {
        if (text.starts_with(key)) {
            states.push_back(text.substr(key.size()));
        }
    }
    return join(states, "|");
}

TEST(ConfListing, StatesOfDrives) {
    const std::string states =
        "Online|Online|Online|Online|Defunct|Rebuilding|Hot Spare|Defunct|Partitioned|Ready";
    EXPECT_EQ(statesOf(mixedListing("ARCCONF", "")), states);
    EXPECT_EQ(statesOf(mixedListing("ARCCONF", R"("generation": "later",)")),
              "Online|Online|Online|Online|Failed|Rebuilding|Hot-Spare|Failed|Partitioned|Ready");
}

TEST(ConfListing, DeviceBlocks) {
    const std::string listing = mixedListing(
        "ARCCONF", R"("enclosureDevices": [{"channel": 1, "device": 20, "id": 3, "type": "SAFTE",
        "vendor": "NV", "model": "BOX", "revision": "7", "temperature": "High"}],)");
    EXPECT_EQ(excerpt(listing, "Device #5", "Device #6"),
              "      Device #5\n"
              "         Device is a Hard drive\n"
              "         State                              : Rebuilding\n"
              "         Supported                          : Yes\n"
              "         Transfer Speed                     : SAS 6.0 Gb/s\n"
              "         Reported Channel,Device            : 1,12\n"
              "         Reported Location                  : Enclosure 3, Slot 7\n"
              "         Reported ESD                       : 1,20\n"
              "         Vendor                             : NORVIK\n"
              "         Model                              : NV73455S\n"
              "         Firmware                           : S527\n"
              "         Serial number                      : CC\n"
              "         Size                               : 1000 MB\n"
              "         Write Cache                        : Disabled (write-through)\n"
              "         FRU                                : None\n"
              "         PFA                                : Yes\n");
    // Enclosure 0 has no device that watches over it.
    EXPECT_EQ(excerpt(listing, "Device #9", "Device #10").find("Reported ESD"), std::string::npos);
    EXPECT_EQ(excerpt(listing, "Device #10", "Command"),
              "      Device #10\n"
              "         Device is an Enclosure services device\n"
              "         Reported Channel,Device            : 1,20\n"
              "         Enclosure ID                       : 3\n"
              "         Type                               : SAFTE\n"
              "         Vendor                             : NV\n"
              "         Model                              : BOX\n"
              "         Firmware                           : 7\n"
              "         Status of Enclosure services device\n"
              "            Temperature                     : High\n"
              "\n");
}

TEST(ConfListing, HrconfByteForByte) {
    constexpr const char* drives = R"(
        {"channel": 0, "device": 3, "sizeMB": 70006, "interface": "SCSI", "serial": "NV7B01"},
        {"channel": 1, "device": 12, "sizeMB": 70006, "interface": "SCSI", "serial": "NV7B02"},
        {"channel": 1, "device": 13, "sizeMB": 70000, "interface": "SCSI", "serial": "NV7B03",
         "status": "failed"})";
    constexpr const char* fields = R"json(
        "productName": "Norvik Kestrix A10", "serialNumber": "2000017", "bios": "4.30-17 (3152)",
        "firmware": "4.30-18 (3153)", "driver": "2.10-3 (41)", "channelDescription": "SCSI",
        "physicalSlot": 3, "installedMemory": "64 MB",
        "virtualDisks": [{"level": "RAID0", "spans": [["0:3", "1:12"]], "stripeKB": 32,
                          "name": "ARRAY0_LOGICAL0"}],)json";
    Server server = ConfServer{"HRCONF", drives, fields}.server();
    EXPECT_EQ(playLine(server, "HRCONF GETCONFIG 1 AL").output,
              R"text(Controllers found: 1
----------------------------------------------------------------------
Controller information
----------------------------------------------------------------------
   Controller Status                        : Okay
   Channel description                      : SCSI
   Controller Model                         : Norvik Kestrix A10
   Controller Serial Number                 : 2000017
   Physical Slot                            : 3
   Installed memory                         : 64 MB
   Copyback                                 : Disabled
   Data scrubbing                           : Enabled
   Defunct disk drive count                 : 1
   Logical drives/Offline/Critical          : 1/0/0

----------------------------------------------------------------------
Logical drive information
----------------------------------------------------------------------
   BIOS version                             : 4.30-17 (3152)
   Firmware version                         : 4.30-18 (3153)
   Driver version                           : 2.10-3 (41)
Logical drive number 1
   Logical drive name                       : ARRAY0_LOGICAL0
   RAID level                               : 0
   Status of logical drive                  : Okay
   Size                                     : 140012 MB
   Stripe-unit size                         : 32 KB
   Read-cache mode                          : Enabled
   Write-cache mode                         : Enabled (write-back)
   Partitioned                              : No
   Number of segments                       : 2
   Drive(s) (Channel,Device)                : 0,3 1,12 
   Defunct segments                         : No

----------------------------------------------------------------------
Physical device information
----------------------------------------------------------------------
      Device #0
         Device is a Hard drive
         State                              : Online
         Supported                          : Yes
         Transfer Speed                     : Ultra320
         Reported Channel,Device            : 0,3
         Vendor                             : NORVIK
         Model                              : NV73455S
         Firmware                           : S527
         Serial number                      : NV7B01
         Size                               : 70006 MB
         Write Cache                        : Disabled (write-through)
         FRU                                : None
         PFA                                : No
      Device #1
         Device is a Hard drive
         State                              : Online
         Supported                          : Yes
         Transfer Speed                     : Ultra320
         Reported Channel,Device            : 1,12
         Vendor                             : NORVIK
         Model                              : NV73455S
         Firmware                           : S527
         Serial number                      : NV7B02
         Size                               : 70006 MB
         Write Cache                        : Disabled (write-through)
         FRU                                : None
         PFA                                : No
      Device #2
         Device is a Hard drive
         State                              : Defunct
         Supported                          : Yes
         Transfer Speed                     : Ultra320
         Reported Channel,Device            : 1,13
         Vendor                             : NORVIK
         Model                              : NV73455S
         Firmware                           : S527
         Serial number                      : NV7B03
         Size                               : 70000 MB
         Write Cache                        : Disabled (write-through)
         FRU                                : None
         PFA                                : No

Command completed successfully.
)text");
}

TEST(ConfListing, WithoutLogicalDrivesAndDrives) {
    for (const char* utility : {"ARCCONF", "HRCONF"}) {
        Server server = ConfServer{utility, "", ""}.server();
        const std::string listing =
            playLine(server, std::string(utility) + " GETCONFIG 1 AL").output;
        EXPECT_NE(listing.find("No logical drives configured\n\n-"), std::string::npos) << utility;
        EXPECT_NE(listing.find("Defunct disk drive count                 : 0\n"
                               "   Logical drives/Offline/Critical          : 0/0/0\n"),
                  std::string::npos);
        EXPECT_EQ(listing.find("Device #"), std::string::npos) << utility;
    }
}

/// The value of a key in the block of the last logical drive.
std::string valueOf(const std::string& listing, const std::string& key) {
    const std::string start = "   " + key;
    const std::size_t found = listing.rfind(start + " ");
    if (found == std::string::npos) {
        return "(none)";
    }
    const std::size_t colon = listing.find(": ", found);
    return listing.substr(colon + 2, listing.find('\n', colon) - colon - 2);
}

TEST(ConfListing, LevelsAndStripeLines) {
    constexpr const char* twelve = R"({"channel": 0, "device": 0, "count": 12, "sizeMB": 1000})";
    const struct {
        const char* utility;
        const char* generation;
        const char* level;
        int drives;
        const char* shown;
        const char* stripePlain;    ///< in the form with drive lists
        const char* stripeSegments; ///< in the form with segments
    } rows[] = {
        {"ARCCONF", "early", "0", 1, "0", "256 KB", "256 KB"},
        {"ARCCONF", "early", "1", 2, "1", "(none)", "256 KB"},
        {"ARCCONF", "early", "1E", 3, "1E", "256 KB", "256 KB"},
        {"ARCCONF", "early", "5", 3, "5", "256 KB", "256 KB"},
        {"ARCCONF", "early", "5EE", 4, "5EE", "256 KB", "256 KB"},
        {"ARCCONF", "early", "6", 4, "6", "256 KB", "256 KB"},
        {"ARCCONF", "later", "6", 4, "6 Reed-Solomon", "256 KB", "256 KB"},
        {"ARCCONF", "early", "10", 4, "10", "256 KB", "256 KB"},
        {"ARCCONF", "early", "50", 6, "50", "256 KB", "256 KB"},
        {"ARCCONF", "early", "60", 8, "60", "256 KB", "256 KB"},
        {"ARCCONF", "early", "VOLUME", 1, "Simple_volume", "(none)", "(none)"},
        {"ARCCONF", "early", "VOLUME", 2, "Spanned_volume", "(none)", "(none)"},
        {"HRCONF", "early", "0", 2, "0", "64 KB", "64 KB"},
        {"HRCONF", "early", "1", 2, "1", "(none)", "(none)"},
        {"HRCONF", "early", "10", 4, "10", "64 KB", "64 KB"},
        {"HRCONF", "early", "VOLUME", 1, "Simple_volume", "(none)", "(none)"},
        {"HRCONF", "early", "VOLUME", 3, "VOLUME", "(none)", "(none)"},
    };
    for (const auto& row : rows) {
        for (const bool segments : {false, true}) {
            const std::string fields =
                formatted(R"("generation": "%s", %s)", row.generation,
                          segments ? R"("automaticFailover": "Enabled",)" : "");
            Server server = ConfServer{row.utility, twelve, fields}.server();
            std::string command =
                formatted("%s CREATE 1 LOGICALDRIVE Name X MAX %s", row.utility, row.level);
            for (int i = 0; i < row.drives; ++i) {
                command += " 0 " + std::to_string(i);
            }
            EXPECT_EQ(playLine(server, command + " NOPROMPT").exitCode, 0) << command;
            const std::string listing =
                playLine(server, std::string(row.utility) + " GETCONFIG 1 AL").output;
            EXPECT_EQ(valueOf(listing, "RAID level"), row.shown) << command;
            EXPECT_EQ(valueOf(listing, "Stripe-unit size"),
                      segments ? row.stripeSegments : row.stripePlain)
                << command;
        }
    }
}

TEST(ConfListing, OneLineHoldsAllDrives) {
    Server server = ConfServer{"ARCCONF",
                               R"({"channel": 0, "device": 0, "count": 24, "sizeMB": 10},
                                  {"channel": 1, "device": 28, "count": 8, "sizeMB": 10})",
                               ""}
                        .server();
    std::string drives;
    std::string list;
    for (const Drive& drive : server.controllers[0].drives) {
        drives += formatted(" %d %d", *drive.location.enclosure, drive.location.slot);
        list += formatted("%d,%d ", *drive.location.enclosure, drive.location.slot);
    }
    EXPECT_EQ(
        playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE Name X MAX 5" + drives + " NOPROMPT")
            .output,
        "Controllers found: 1\nCreating logical drive: X\n\nCommand completed successfully.\n");
    EXPECT_EQ(
        valueOf(playLine(server, "ARCCONF GETCONFIG 1 AL").output, "Drive(s) (Channel,Device)"),
        list);
}

TEST(ConfListing, ProtectionNeedsASpareThatIsLargeEnough) {
    for (const int spareMb : {999, 1000}) {
        const std::string drives =
            formatted(R"({"channel": 0, "device": 0, "count": 2, "sizeMB": 1000},
                         {"channel": 0, "device": 2, "sizeMB": %d})",
                      spareMb);
        Server server =
            ConfServer{"ARCCONF", drives, R"("automaticFailover": "Enabled",)"}.server();
        playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE MAX 1 0 0 0 1 NOPROMPT");
        playLine(server, "ARCCONF SETSTATE 1 DEVICE 0 2 HSP");
        EXPECT_EQ(
            valueOf(playLine(server, "ARCCONF GETCONFIG 1 AL").output, "Protected by Hot-Spare"),
            spareMb == 1000 ? "Yes" : "No");
    }
}

} // namespace
} // namespace zolex_sim::test
