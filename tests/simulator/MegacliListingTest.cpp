#include "megacli/Listings.h"
#include "simulator/SimulatorSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <cmath>
#include <cstdlib>

namespace zolex_sim::test {
namespace {

// The servers that the sample listings show.
constexpr const char* earlyServer = R"({
  "machineType": "8837", "serialNumber": "KQ1",
  "controllers": [{
    "utility": "MEGACLI", "generation": "early", "model": "LSI-MegaRAID-8480",
    "productName": "LSI MegaRAID SAS 8480E", "serialNumber": "1122334455",
    "firmwarePackage": "6.0.1-0080", "firmware": "1.11.50-0300", "bios": "NV10-1",
    "webBios": "1.1-32-e_11-Rel", "bootBlock": "1.00.00.01-0008", "manufactured": "06/08/07",
    "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
            "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
    "drives": [
      {"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376, "rawSectors": "0x88bb800",
       "vendor": "NORVIK", "model": "NV73455S", "revision": "S527", "serial": "3LQ2A",
       "sasAddress": "0x5000c5000a100000"},
      {"enclosure": 32, "slot": 3, "sizeMB": 69376, "rawSectors": "0x88bb800",
       "serial": "3LQ2A003", "sasAddress": "0x5000c5000a100003", "status": "hotspare"},
      {"enclosure": 32, "slot": 4, "sizeMB": 69376, "rawSectors": "0x88bb800",
       "serial": "3LQ2A004", "sasAddress": "0x5000c5000a100004"}],
    "virtualDisks": [
      {"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "stripeKB": 64,
       "writePolicy": "WB", "readPolicy": "ADRA"}]}]})";

constexpr const char* laterServer = R"({
  "machineType": "8837", "serialNumber": "KQ1",
  "controllers": [{
    "utility": "MEGACLI", "generation": "later", "model": "Kestrix-D4",
    "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0079"},
    "drives": [
      {"enclosure": 252, "slot": 0, "count": 2, "sizeMB": 1906394, "rawSectors": "0xe8e088b0",
       "model": "NV2000NM0023", "revision": "0004", "serial": "Z1X0A", "deviceId": 8,
       "sasAddress": "0x5000c500a10b0000"},
      {"enclosure": 252, "slot": 2, "sizeMB": 1906394, "rawSectors": "0xe8e088b0",
       "model": "NV2000NM0023", "revision": "0004", "serial": "Z1X0A002", "deviceId": 10,
       "sasAddress": "0x5000c500a10b0002", "status": "hotspare"},
      {"enclosure": 252, "slot": 3, "sizeMB": 1906394, "rawSectors": "0xe8e088b0",
       "model": "NV2000NM0023", "revision": "0004", "serial": "Z1X0A003", "deviceId": 11,
       "sasAddress": "0x5000c500a10b0003"}],
    "virtualDisks": [
      {"level": "RAID1", "spans": [["252:0", "252:1"]], "stripeKB": 64,
       "writePolicy": "WB", "readPolicy": "RA"}]}]})";

TEST(MegacliListing, ReproducesTheSampleListings) {
    const struct {
        const char* definition;
        const char* options;
        const char* listing;
    } rows[] = {
        {earlyServer, "-LdPdInfo -a0", "megacli-ldpdinfo-early.txt"},
        {earlyServer, "-pdList -a0", "megacli-pdlist-early.txt"},
        {earlyServer, "-adpallinfo -a0", "megacli-adpallinfo.txt"},
        {laterServer, "-LdPdInfo -a0", "megacli-ldpdinfo-later.txt"},
        {laterServer, "-pdList -a0", "megacli-pdlist-later.txt"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(row.definition);
        const PlayResult result = megacli(server, row.options);
        EXPECT_EQ(result.exitCode, 0) << row.listing;
        EXPECT_FALSE(result.changed) << row.listing;
        EXPECT_EQ(result.output, zolex::test::readTestData(row.listing)) << row.listing;
    }
}

TEST(MegacliListing, ReproducesTheSampleListingsOfAServerThatWasConfiguredByCommands) {
    const struct {
        std::string definition;
        const char* create;
        const char* spare;
        const char* listing;
    } rows[] = {
        {earlyServer, "-CfgLdAdd R5 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0",
         "-PDHSP { -Set } -PhysDrv[ 32:3 ] -a0", "megacli-ldpdinfo-early.txt"},
        {laterServer, "-CfgLdAdd R1 [ 252:0,252:1 ] WB RA -strpsz 64 -a0",
         "-PDHSP { -Set } -PhysDrv[ 252:2 ] -a0", "megacli-ldpdinfo-later.txt"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(row.definition);
        EXPECT_EQ(megacli(server, "-CFGCLR -A0 -SILENT").exitCode, 0);
        EXPECT_EQ(megacli(server, row.create).exitCode, 0);
        EXPECT_EQ(megacli(server, row.spare).exitCode, 0);
        EXPECT_EQ(megacli(server, "-LdPdInfo -a0").output, zolex::test::readTestData(row.listing));
        const std::string drives(row.listing);
        EXPECT_EQ(megacli(server, "-PdList -a0").output,
                  zolex::test::readTestData("megacli-pdlist-" + drives.substr(17)));
    }
}

TEST(MegacliListing, EmptyServer) {
    for (const char* generation : {"early", "later"}) {
        Server server =
            serverOf(definitionWith("", formatted("\"generation\": \"%s\",", generation)));
        const std::string head = std::string(37, ' ') + "\nAdapter #0\n\n";
        EXPECT_EQ(megacli(server, "-LdPdInfo -a0").output,
                  head + "Number of Virtual Disks: 0\n\nExit Code: 0x00\n");
        const std::string end = generation == std::string("later") ? "\n\n" : "\n";
        EXPECT_EQ(megacli(server, "-PdList -a0").output, head + end + "Exit Code: 0x00\n");
    }
}

/// The lines of a listing that hold one of the texts.
std::vector<std::string> linesWith(const std::string& listing,
                                   const std::vector<std::string>& texts) {
    std::vector<std::string> found;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        for (const std::string& text : texts) {
            if (line.find(text) != std::string::npos) {
                found.push_back(line);
                break;
            }
        }
    }
    return found;
}

TEST(MegacliListing, SpansRepeatTheirDriveBlocks) {
    const std::vector<std::string> keys = {"RAID Level",  "Drives per span", "Span Depth",
                                           "Number of S", "Span:",           "PD:",
                                           "Slot",        "DiskGroup"};
    const std::string drives = R"({"enclosure": 8, "slot": 0, "count": 4, "sizeMB": 1000})";
    const char* create = "-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:2,8:3] -a0";
    Server early = serverOf(definitionWith(drives));
    EXPECT_EQ(megacli(early, create).exitCode, 0);
    EXPECT_EQ(linesWith(megacli(early, "-LdPdInfo -a0").output, keys),
              (std::vector<std::string>{
                  "RAID Level: Primary-1, Secondary-0, RAID Level Qualifier-0",
                  "Number Of Drives per span:2", "Span Depth:2", "Number of Spans: 2",
                  "Span: 0 - Number of PDs: 2", "PD: 0 Information", "Slot Number: 0",
                  "PD: 1 Information", "Slot Number: 1", "Span: 1 - Number of PDs: 2",
                  "PD: 0 Information", "Slot Number: 2", "PD: 1 Information", "Slot Number: 3"}));
    Server later = serverOf(definitionWith(drives, "\"generation\": \"later\","));
    EXPECT_EQ(megacli(later, create).exitCode, 0);
    EXPECT_EQ(linesWith(megacli(later, "-LdPdInfo -a0").output, keys),
              (std::vector<std::string>{
                  "RAID Level          : Primary-1, Secondary-3, RAID Level Qualifier-0",
                  "Number Of Drives per span: 2", "Span Depth          : 2", "Number of Spans: 2",
                  "Span: 0 - Number of PDs: 2", "PD: 0 Information", "Slot Number: 0",
                  "Drive's position: DiskGroup: 0, Span: 0, Arm: 0", "PD: 1 Information",
                  "Slot Number: 1", "Drive's position: DiskGroup: 0, Span: 0, Arm: 1",
                  "Span: 1 - Number of PDs: 2", "PD: 0 Information", "Slot Number: 2",
                  "Drive's position: DiskGroup: 0, Span: 1, Arm: 0", "PD: 1 Information",
                  "Slot Number: 3", "Drive's position: DiskGroup: 0, Span: 1, Arm: 1"}));
}

TEST(MegacliListing, EachLevelInBothGenerations) {
    const struct {
        const char* create;
        const char* early;
        const char* later;
        const char* redundancy;
    } rows[] = {
        {"-CfgLdAdd R0 [8:0,8:1]", "Primary-0, Secondary-0, RAID Level Qualifier-0",
         "Primary-0, Secondary-0, RAID Level Qualifier-0", "Parity Size         : 0"},
        {"-CfgLdAdd R1 [8:0,8:1]", "Primary-1, Secondary-0, RAID Level Qualifier-0",
         "Primary-1, Secondary-0, RAID Level Qualifier-0", "Mirror Data         : 2.000 GB"},
        {"-CfgLdAdd R5 [8:0,8:1,8:2]", "Primary-5, Secondary-0, RAID Level Qualifier-3",
         "Primary-5, Secondary-0, RAID Level Qualifier-3", "Parity Size         : 2.000 GB"},
        {"-CfgLdAdd R6 [8:0,8:1,8:2,8:3]", "Primary-6, Secondary-0, RAID Level Qualifier-3",
         "Primary-6, Secondary-0, RAID Level Qualifier-3", "Parity Size         : 4.000 GB"},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:2,8:3]",
         "Primary-1, Secondary-0, RAID Level Qualifier-0",
         "Primary-1, Secondary-3, RAID Level Qualifier-0", "Mirror Data         : 4.000 GB"},
        {"-CfgSpanAdd R50 -Array0[8:0,8:1,8:2] -Array1[8:3,8:4,8:5]",
         "Primary-5, Secondary-3, RAID Level Qualifier-3",
         "Primary-5, Secondary-3, RAID Level Qualifier-3", "Parity Size         : 4.000 GB"},
        {"-CfgSpanAdd R60 -Array0[8:0,8:1,8:2,8:3] -Array1[8:4,8:5,8:6,8:7]",
         "Primary-6, Secondary-3, RAID Level Qualifier-3",
         "Primary-6, Secondary-3, RAID Level Qualifier-3", "Parity Size         : 8.000 GB"},
    };
    const std::string drives = R"({"enclosure": 8, "slot": 0, "count": 8, "sizeMB": 2048})";
    for (const auto& row : rows) {
        Server early = serverOf(definitionWith(drives));
        Server later = serverOf(definitionWith(drives, "\"generation\": \"later\","));
        EXPECT_EQ(megacli(early, std::string(row.create) + " -a0").exitCode, 0) << row.create;
        EXPECT_EQ(megacli(later, std::string(row.create) + " -a0").exitCode, 0) << row.create;
        EXPECT_EQ(linesWith(megacli(early, "-LdPdInfo -a0").output, {"RAID Level"}),
                  std::vector<std::string>{std::string("RAID Level: ") + row.early});
        EXPECT_EQ(
            linesWith(megacli(later, "-LdPdInfo -a0").output, {"RAID Level", "Mirror", "Parity"}),
            (std::vector<std::string>{std::string("RAID Level          : ") + row.later,
                                      row.redundancy}));
    }
}

/// The lines of a listing that hold one of these texts.
std::string keptLines(const std::string& listing, const std::vector<std::string>& texts) {
    std::istringstream lines(listing);
    std::string found;
    for (std::string line; std::getline(lines, line);) {
        if (std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
                return line.find(text) != std::string::npos;
            })) {
            found += line + "\n";
        }
    }
    return found;
}

TEST(MegacliListing, VirtualDisksThatShareTheirDrivesAndKeepTheirNumbers) {
    const std::string drives =
        R"({"slot": 3, "count": 2, "sizeMB": 1000}, {"enclosure": 8, "slot": 3, "sizeMB": 1000})";
    Server early = serverOf(definitionWith(drives));
    Server later = serverOf(definitionWith(drives, R"("generation": "later",)"));
    for (Server* server : {&early, &later}) {
        for (const char* command :
             {"-CfgLdAdd R1 [:3,:4] -sz300 -a0", "-CfgLdAdd R1 [:3,:4] -sz200 -a0",
              "-CfgLdAdd R0 [8:3] -a0", "-CfgLdAdd R1 [:4,:3] -sz100 -a0", "-CfgLdDel -L1 -a0"}) {
            ASSERT_EQ(megacli(*server, command).exitCode, 0) << command;
        }
    }
    EXPECT_EQ(keptLines(megacli(early, "-LdPdInfo -a0").output,
                        {"Number of V", "Virtual Disk:", "Enclosure Device", "Slot Number"}),
              "Number of Virtual Disks: 3\n"
              "Virtual Disk: 0 (Target Id: 0)\n"
              "Enclosure Device ID: N/A\n"
              "Slot Number: 3\n"
              "Enclosure Device ID: N/A\n"
              "Slot Number: 4\n"
              "Virtual Disk: 2 (Target Id: 2)\n"
              "Enclosure Device ID: 8\n"
              "Slot Number: 3\n"
              "Virtual Disk: 3 (Target Id: 3)\n"
              "Enclosure Device ID: N/A\n"
              "Slot Number: 3\n"
              "Enclosure Device ID: N/A\n"
              "Slot Number: 4\n");
    EXPECT_EQ(keptLines(megacli(later, "-LdPdInfo -a0").output,
                        {"Number of V", "Virtual Drive:", "DiskGroup"}),
              "Number of Virtual Disks: 3\n"
              "Virtual Drive: 0 (Target Id: 0)\n"
              "Drive's position: DiskGroup: 0, Span: 0, Arm: 0\n"
              "Drive's position: DiskGroup: 0, Span: 0, Arm: 1\n"
              "Virtual Drive: 2 (Target Id: 2)\n"
              "Drive's position: DiskGroup: 1, Span: 0, Arm: 0\n"
              "Virtual Drive: 3 (Target Id: 3)\n"
              "Drive's position: DiskGroup: 0, Span: 0, Arm: 0\n"
              "Drive's position: DiskGroup: 0, Span: 0, Arm: 1\n");
}

TEST(MegacliListing, CachePolicyFollowsTheCommand) {
    const struct {
        const char* words;
        const char* line;
    } rows[] = {
        {"", "WriteThrough, ReadAheadNone"},        {"WT", "WriteThrough, ReadAheadNone"},
        {"WB ADRA", "WriteBack, ReadAdaptive"},     {"wb ra", "WriteBack, ReadAhead"},
        {"NORA WT", "WriteThrough, ReadAheadNone"}, {"RA", "WriteThrough, ReadAhead"},
    };
    for (const char* generation : {"early", "later"}) {
        for (const auto& row : rows) {
            Server server =
                serverOf(definitionWith(R"({"slot": 0, "sizeMB": 1000})",
                                        formatted("\"generation\": \"%s\",", generation)));
            EXPECT_EQ(megacli(server, formatted("-CfgLdAdd R0 [:0] %s -a0", row.words)).exitCode,
                      0);
            EXPECT_EQ(linesWith(megacli(server, "-LdPdInfo -a0").output, {"Cache Policy: Write"}),
                      (std::vector<std::string>{std::string("Default Cache Policy: ") + row.line +
                                                    ", Direct, No Write Cache if Bad BBU",
                                                std::string("Current Cache Policy: ") + row.line +
                                                    ", Direct, No Write Cache if Bad BBU"}));
        }
    }
}

TEST(MegacliListing, DriveStates) {
    const struct {
        const char* status;
        const char* early;
        const char* later;
        const char* foreign;
    } rows[] = {
        {"good", "Unconfigured(good)", "Unconfigured(good), Spun Up", "None"},
        {"bad", "Unconfigured(bad)", "Unconfigured(bad)", "None"},
        {"failed", "Failed", "Failed", "None"},
        {"foreign", "Unconfigured(good)", "Unconfigured(good), Spun Up", "Foreign"},
        {"hotspare", "Hotspare", "Hotspare, Spun down", "None"},
    };
    for (const auto& row : rows) {
        const std::string drive =
            formatted(R"({"slot": 3, "sizeMB": 1000, "status": "%s"})", row.status);
        for (const bool later : {false, true}) {
            Server server =
                serverOf(definitionWith(drive, later ? "\"generation\": \"later\"," : ""));
            EXPECT_EQ(linesWith(megacli(server, "-pdlist -a0").output,
                                {"Enclosure Device", "Slot", "Firmware state", "Foreign State"}),
                      (std::vector<std::string>{
                          "Enclosure Device ID: N/A", "Slot Number: 3",
                          std::string("Firmware state: ") + (later ? row.later : row.early),
                          std::string("Foreign State: ") + row.foreign + " "}));
        }
    }
}

TEST(MegacliListing, MissingMembersDegradeAVirtualDisk) {
    const struct {
        const char* level;
        std::vector<const char*> statuses;
        const char* state;
    } rows[] = {
        {"RAID0", {"good", "good"}, "Optimal"},
        {"RAID0", {"good", "failed"}, "Offline"},
        {"RAID1", {"rebuild", "good"}, "Degraded"},
        {"RAID1", {"failed", "failed"}, "Offline"},
        {"RAID5", {"good", "failed", "good"}, "Degraded"},
        {"RAID6", {"good", "failed", "good", "good"}, "Partially Degraded"},
        {"RAID6", {"good", "failed", "good", "rebuild"}, "Degraded"},
        {"RAID6", {"failed", "failed", "good", "rebuild"}, "Offline"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> drives;
        std::vector<std::string> members;
        for (std::size_t i = 0; i < row.statuses.size(); ++i) {
            drives.push_back(
                formatted(R"({"enclosure": 1, "slot": %zu, "sizeMB": 1000, "status": "%s"})", i,
                          row.statuses[i]));
            members.push_back(formatted("\"1:%zu\"", i));
        }
        Server server = serverOf(definitionWith(
            join(drives, ","), formatted(R"("virtualDisks": [{"level": "%s", "spans": [[%s]]}],)",
                                         row.level, join(members, ",").c_str())));
        EXPECT_EQ(linesWith(megacli(server, "-LdPdInfo -a0").output,
                            {"State: O", "State: P", "State: D"}),
                  std::vector<std::string>{std::string("State: ") + row.state})
            << row.level;
    }
}

TEST(MegacliListing, AdapterListingCountsDevices) {
    const std::string drives = R"(
        {"enclosure": 1, "slot": 0, "count": 2, "sizeMB": 1000},
        {"enclosure": 2, "slot": 0, "sizeMB": 1000, "status": "failed"},
        {"slot": 0, "sizeMB": 1000, "predictiveFailures": 3})";
    Server server =
        serverOf(definitionWith(drives, R"("raidLevels": ["RAID1", "raid10"], "maxSpans": 4,
                   "virtualDisks": [{"level": "RAID1", "spans": [["1:0", "2:0"]]}],)"));
    const std::string listing = megacli(server, "-AdpAllInfo -a0").output;
    EXPECT_EQ(linesWith(listing, {"Supported", "Spans", "Virtual Drives", "Degraded", "Offline",
                                  "Physical Dev", "Disks"}),
              (std::vector<std::string>{"RAID Level Supported             : RAID1, RAID10",
                                        "Supported Drives                 : SAS, SATA",
                                        "Max Spans Per VD        : 4 ", "Virtual Drives    : 1 ",
                                        "  Degraded        : 1 ", "  Offline         : 0 ",
                                        "Physical Devices  : 6 ", "  Disks           : 4 ",
                                        "  Critical Disks  : 1 ", "  Failed Disks    : 1 "}));
}

TEST(MegacliListing, LaterSizes) {
    using megacli::driveSizeText;
    using megacli::virtualDiskSizeText;
    EXPECT_EQ(driveSizeText(3907029168), "1.819 TB");
    EXPECT_EQ(driveSizeText(3905980592), "1.818 TB"); // 1.81886: cut, not rounded
    EXPECT_EQ(driveSizeText(69376 * sectorsPerMb), "67.750 GB");
    EXPECT_EQ(driveSizeText(1023 * sectorsPerMb), "1023 MB");
    EXPECT_EQ(driveSizeText(1024 * sectorsPerMb), "1.000 GB");
    EXPECT_EQ(driveSizeText(1048575 * sectorsPerMb), "1023.999 GB");
    EXPECT_EQ(driveSizeText(1048576 * sectorsPerMb), "1.000 TB");
    EXPECT_EQ(virtualDiskSizeText(1), "1 MB");
    EXPECT_EQ(virtualDiskSizeText(1023), "1023 MB");
    EXPECT_EQ(virtualDiskSizeText(1024), "1.000 GB");
    EXPECT_EQ(virtualDiskSizeText(1906394), "1.818 TB");
    EXPECT_EQ(virtualDiskSizeText(7628390), "7.275 TB"); // 7.2749996 is what this asks for
    EXPECT_EQ(virtualDiskSizeText(7628389), "7.274 TB");
}

/// The MB that a text stands for: those of GB and TB as whole or started ones.
std::int64_t mbOf(const std::string& text, bool startedToo) {
    const double number = std::strtod(text.c_str(), nullptr);
    const double mb = text.find("TB") != std::string::npos   ? number * 1024 * 1024
                      : text.find("GB") != std::string::npos ? number * 1024
                                                             : number;
    return static_cast<std::int64_t>(startedToo ? std::ceil(mb) : std::floor(mb));
}

TEST(MegacliListing, LaterSizesKeepTheirMeaning) {
    std::mt19937_64 random(20240917);
    for (int i = 0; i < 200'000; ++i) {
        // Every order of magnitude equally often.
        const int magnitude = std::uniform_int_distribution<int>(0, 36)(random);
        const std::int64_t size =
            std::uniform_int_distribution<std::int64_t>(1, std::int64_t{1} << magnitude)(random);
        const std::string text = megacli::virtualDiskSizeText(size);
        const std::int64_t asked = mbOf(text, false);
        ASSERT_LE(asked, size) << text;
        ASSERT_EQ(megacli::virtualDiskSizeText(asked), text) << size;
        ASSERT_LE(mbOf(megacli::driveSizeText(size * sectorsPerMb), true), size) << size;
    }
}

} // namespace
} // namespace zolex_sim::test
