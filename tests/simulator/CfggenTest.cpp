#include "setup/Samples.h"
#include "simulator/BlockSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

namespace zolex_sim::test {
namespace {

// The adapter that the sample listing shows.
constexpr const char* sampleAdapter = R"({
  "machineType": "8837", "serialNumber": "KQ1",
  "controllers": [{
    "utility": "CFGGEN", "model": "LSI-SAS-RAID", "productName": "SAS1064E",
    "bios": "6.12.01.00", "firmware": "1.18.84.00",
    "pci": {"bus": 2, "device": 0, "vendorId": "0x1000", "deviceId": "0x0056"},
    "enclosures": [{"number": 1, "logicalId": "0x5000abcd10010203", "slots": 4}],
    "drives": [
      {"enclosure": 1, "slot": 1, "targetId": 1, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00010000000A0001"},
      {"enclosure": 1, "slot": 0, "targetId": 4, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00020000000A0002"},
      {"enclosure": 1, "slot": 2, "targetId": 5, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00030000000A0003"}],
    "virtualDisks": [{"level": "RAID1", "spans": [["1:1", "1:0"]], "sizeMB": 69618}]}]})";

TEST(CfggenListing, ReproducesTheSampleListing) {
    Server server = serverOf(sampleAdapter);
    const PlayResult result = play(server, "CFGGEN 0 DISPLAY");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.changed);
    EXPECT_EQ(result.output, zolex::test::readTestData("cfggen-display.txt"));
}

TEST(CfggenListing, ReproducesTheSampleListingOfAServerThatWasConfiguredByCommands) {
    Server server = serverOf(sampleAdapter);
    EXPECT_EQ(play(server, "CFGGEN 0 DELETE NOPROMPT").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IM 69618 1:1 1:0 qsync NOPROMPT").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 DISPLAY").output,
              zolex::test::readTestData("cfggen-display.txt"));
}

constexpr const char* sasTitle = "LSI Logic IR Configuration Utility 2.00.15\n";
constexpr const char* scsiTitle = "LSI Logic IM Configuration Utility 1.02.02\n";

// Every state of a drive; two volumes, of which one is degraded and one is being rebuilt.
constexpr const char* scsiAdapter = R"(
    {"id": 5, "count": 3, "sizeMB": 17357, "rawSectors": 35548160, "model": "NV18401S",
     "revision": "B51A", "serial": "NV5A0"},
    {"id": 9, "sizeMB": 17357, "serial": "NV5A1", "status": "rebuild"},
    {"id": 10, "sizeMB": 17357, "serial": "NV5A2", "status": "failed"},
    {"id": 11, "sizeMB": 17357, "serial": "NV5A3", "status": "hotspare"},
    {"id": 12, "sizeMB": 17357, "serial": "NV5A4", "status": "bad"},
    {"id": 13, "sizeMB": 17357, "serial": "NV5A5", "status": "foreign"})";
constexpr const char* scsiFields = R"(
    "productName": "LSI1030", "bios": "5.10.02", "firmware": "1.03.23", "physicalSlot": 3,
    "busNumber": 6,
    "virtualDisks": [{"level": "RAID1", "spans": [["1:6", "1:10"]], "sizeMB": 17000},
                     {"level": "RAID1", "spans": [["1:9", "1:5"]]}],)";

std::string scsiDrive(int id, const char* state, const char* sectors, const char* model,
                      const char* revision, const char* serial) {
    return formatted("Target on SCSI ID #%d\n"
                     "  Device is a Hard disk\n"
                     "  SCSI ID                                 : %d\n"
                     "  State                                   : %s\n"
                     "  Size (in MB)/(in sectors)               : 17357/%s\n"
                     "  Manufacturer                            : NORVIK\n"
                     "  Model Number                            : %s\n"
                     "  Firmware Revision                       : %s\n"
                     "  Serial No                               : %s\n"
                     "  Drive Type                              : SCSI\n",
                     id, id, state, sectors, model, revision, serial);
}

TEST(CfggenListing, ParallelForm) {
    Server server = serverOf(definitionOf("CFGGEN1.02.02", scsiAdapter, scsiFields));
    const std::string ruler = std::string(72, '-') + "\n";
    const auto usual = [](int id, const char* state, const char* serial) {
        return scsiDrive(id, state, "35547136", "NV73455S", "S527", serial);
    };
    EXPECT_EQ(play(server, "CFGGEN1.02.02 0 DISPLAY").output,
              scsiTitle + std::string("Read configuration has been initiated for controller 0\n") +
                  ruler + "Controller information\n" + ruler +
                  "  Controller type                         : LSI1030\n"
                  "  BIOS version                            : 5.10.02\n"
                  "  Firmware version                        : 1.03.23\n"
                  "  Channel description                     : 1 Parallel SCSI\n"
                  "  Initiator IDs (Channel/SCSI ID)         : 1/7\n"
                  "  Maximum physical devices                : 15\n"
                  "  Concurrent commands supported           : 222\n"
                  "  Slot                                    : 3\n"
                  "  Bus                                     : 6\n"
                  "  Device                                  : 0\n"
                  "  Function                                : 0\n"
                  "  RAID Support                            : Yes\n" +
                  ruler + "IR Volume information\n" + ruler +
                  "IR volume 1\n"
                  "  Volume ID                               : 0\n"
                  "  Status of volume                        : Degraded (DGD)\n"
                  "  RAID level                              : 1\n"
                  "  Size (in MB)                            : 17000\n"
                  "  Physical hard disks (Target ID)         : 6 10\n"
                  "IR volume 2\n"
                  "  Volume ID                               : 1\n"
                  "  Status of volume                        : Rebuilding (RBL)\n"
                  "  RAID level                              : 1\n"
                  "  Size (in MB)                            : 17357\n"
                  "  Physical hard disks (Target ID)         : 9 5\n" +
                  ruler + "Physical device information\n" + ruler + "Initiator at SCSI ID #7\n" +
                  scsiDrive(5, "Online (ONL)", "35548160", "NV18401S", "B51A", "NV5A0000") +
                  scsiDrive(6, "Online (ONL)", "35548160", "NV18401S", "B51A", "NV5A0001") +
                  scsiDrive(8, "Ready (RDY)", "35548160", "NV18401S", "B51A", "NV5A0002") +
                  usual(9, "Rebuild (RBL)", "NV5A1") + usual(10, "Defunct (DDD)", "NV5A2") +
                  usual(11, "Hot Spare (HSP)", "NV5A3") + usual(12, "Missing (MIS)", "NV5A4") +
                  usual(13, "Ready (RDY)", "NV5A5") + ruler);
}

/// The lines of a listing that hold one of the texts, without the blanks before them.
std::vector<std::string> trimmedLinesWith(const std::string& listing,
                                          const std::vector<std::string>& texts) {
    std::vector<std::string> found;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        const bool wanted = std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
            return line.find(text) != std::string::npos;
        });
        if (wanted) {
            found.push_back(line.substr(line.find_first_not_of(' ')));
        }
    }
    return found;
}

TEST(CfggenListing, AnEmptyAdapterHasAllBlocks) {
    Server server = serverOf(definitionOf("CFGGEN", ""));
    const std::string listing = play(server, "CFGGEN 0 DISPLAY").output;
    EXPECT_EQ(trimmedLinesWith(listing,
                               {"information", "Initiator", "Target", "Enclosure#", "IR volume"}),
              (std::vector<std::string>{"Controller information",
                                        "Initiator ID                            : 112",
                                        "IR Volume information", "Physical device information",
                                        "Initiator at ID #112", "Enclosure information"}));
}

TEST(CfggenListing, EnclosuresThatNobodyDescribesFollowTheDrives) {
    Server server = serverOf(definitionOf("CFGGEN", R"(
        {"enclosure": 3, "slot": 4, "sizeMB": 10}, {"slot": 7, "count": 2, "sizeMB": 10})"));
    EXPECT_EQ(
        trimmedLinesWith(
            play(server, "CFGGEN 0 DISPLAY").output,
            {"Enclosure #", "Slot #", "Target ID ", "Enclosure#", "Logical", "Numslots"}),
        (std::vector<std::string>{"Enclosure #                             : 3",
                                  "Slot #                                  : 4",
                                  "Target ID                               : 0",
                                  "Enclosure #                             : 1",
                                  "Slot #                                  : 7",
                                  "Target ID                               : 1",
                                  "Enclosure #                             : 1",
                                  "Slot #                                  : 8",
                                  "Target ID                               : 2",
                                  "Enclosure#                                : 3",
                                  "Logical ID                              : 500062b0:00000003",
                                  "Numslots                                : 8",
                                  "Enclosure#                                : 1",
                                  "Logical ID                              : 500062b0:00000001",
                                  "Numslots                                : 12"}));
}

TEST(CfggenListing, LevelsAreNumbers) {
    const CommandRow rows[] = {
        {"IS 10 1:0 1:1", "0"}, {"IM 10 1:0 1:1", "1"}, {"IME 10 1:0 1:1 1:2", "1E"}};
    for (const CommandRow& row : rows) {
        Server server =
            serverOf(definitionOf("CFGGEN", R"({"slot": 0, "count": 3, "sizeMB": 10})"));
        EXPECT_EQ(play(server, formatted("CFGGEN 0 CREATE %s NOPROMPT", row.command)).exitCode, 0);
        EXPECT_EQ(trimmedLinesWith(play(server, "CFGGEN 0 DISPLAY").output, {"RAID level"}),
                  std::vector<std::string>{
                      std::string("RAID level                              : ") + row.result});
    }
}

// Twelve drives of three sizes, two in enclosure 2, and one of each kind that is not free.
constexpr const char* sasDrives = R"(
    {"enclosure": 1, "slot": 0, "count": 11, "sizeMB": 1000},
    {"enclosure": 1, "slot": 11, "sizeMB": 901},
    {"enclosure": 2, "slot": 0, "count": 2, "sizeMB": 500},
    {"enclosure": 2, "slot": 4, "sizeMB": 1000, "status": "bad"},
    {"enclosure": 2, "slot": 5, "sizeMB": 1000, "status": "failed"},
    {"enclosure": 2, "slot": 6, "sizeMB": 1000, "status": "foreign"})";
constexpr const char* notFree = "2:4=bad | 2:5=failed | 2:6=foreign | ";

TEST(CfggenCommand, Creates) {
    const CommandRow rows[] = {
        // As they come from zolex.
        {"CFGGEN 0 CREATE IM MAX 1:0 1:1 qsync NOPROMPT", "RAID1 [1:0,1:1] 1000MB"},
        {"CFGGEN 0 CREATE IME 1500 1:2 1:1 1:0 qsync NOPROMPT", "RAID1E [1:2,1:1,1:0] 1500MB"},
        {"CFGGEN 0 CREATE IS 1 1:0 2:1 NOPROMPT", "RAID0 [1:0,2:1] 1MB"},
        // The smallest member counts; half of an odd number of drives leaves half a MB unused.
        {"CFGGEN 0 CREATE IS MAX 1:0 2:0 1:1 NOPROMPT", "RAID0 [1:0,2:0,1:1] 1500MB"},
        {"CFGGEN 0 CREATE IME MAX 1:0 1:11 1:1 NOPROMPT", "RAID1E [1:0,1:11,1:1] 1351MB"},
        {"CFGGEN 0 CREATE IM MAX 2:0 1:1 NOPROMPT", "RAID1 [2:0,1:1] 500MB"},
        {"CFGGEN 0 CREATE IS MAX 1:0 NOPROMPT", "RAID0 [1:0] 1000MB"},
        {"CFGGEN 0 CREATE IS MAX 1:0 1:1 1:2 1:3 1:4 1:5 1:6 1:7 1:8 1:9 NOPROMPT",
         "RAID0 [1:0,1:1,1:2,1:3,1:4,1:5,1:6,1:7,1:8,1:9] 10000MB"},
        {"cfggen 0 create im max 1:0 1:1 QSYNC noprompt", "RAID1 [1:0,1:1] 1000MB"},
        {"CFGGEN 00 CREATE IM 0100 01:00 1:1 NOPROMPT", "RAID1 [1:0,1:1] 100MB"},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf("CFGGEN", sasDrives));
        const PlayResult result = play(server, row.command);
        EXPECT_EQ(result.exitCode, 0) << row.command;
        EXPECT_TRUE(result.changed) << row.command;
        EXPECT_EQ(result.output,
                  sasTitle + std::string("IR volume 1 has been created on controller 0\n"
                                         "Command CREATE Completed Successfully.\n"));
        EXPECT_EQ(layoutOf(server), notFree + std::string(row.result)) << row.command;
    }
}

TEST(CfggenCommand, TargetIdsNameDrivesOfTheParallelAdapter) {
    Server server =
        serverOf(definitionOf("CFGGEN1.02.02", R"({"id": 0, "count": 8, "sizeMB": 1000})"));
    const PlayResult result = play(server, "CFGGEN1.02.02 0 CREATE IM 700 8 1 qsync NOPROMPT");
    EXPECT_EQ(result.output,
              scsiTitle + std::string("IR volume 1 has been created on controller 0\n"
                                      "Command CREATE Completed Successfully.\n"));
    EXPECT_EQ(play(server, "CFGGEN1.02.02 0 CREATE IM MAX 3 2 NOPROMPT").exitCode, 0);
    const PlayResult spare = play(server, "CFGGEN1.02.02 0 HOTSPARE 5 ");
    EXPECT_EQ(spare.output,
              scsiTitle + std::string("The drive 5 is a hot spare now on controller 0\n"
                                      "Command HOTSPARE Completed Successfully.\n"));
    EXPECT_EQ(layoutOf(server), "1:5=hotspare | RAID1 [1:8,1:1] 700MB | RAID1 [1:3,1:2] 1000MB");
    // The other levels are none of this adapter's.
    const CommandRow rows[] = {
        {"CREATE IS MAX 0 4 NOPROMPT", "RAID0 is not supported by this controller."},
        {"CREATE IME MAX 0 4 6 NOPROMPT", "RAID1E is not supported by this controller."},
        {"CREATE IM MAX 0 7 NOPROMPT", "There is no physical disk at 1:7."},
        {"CREATE IM MAX 0 65535 NOPROMPT", "There is no physical disk at 1:65535."},
        {"HOTSPARE 8", "The physical disk at 1:8 is not free: it is online."},
    };
    for (const CommandRow& row : rows) {
        const PlayResult refused = play(server, std::string("CFGGEN1.02.02 0 ") + row.command);
        EXPECT_EQ(refused.exitCode, 1) << row.command;
        EXPECT_NE(refused.output.find(std::string("ERROR: ") + row.result + "\n"),
                  std::string::npos)
            << refused.output;
    }
    for (const char* options :
         {"CREATE IM MAX 1:0 1:4 NOPROMPT", "HOTSPARE 1:4", "CREATE IM MAX 0 65536 NOPROMPT"}) {
        EXPECT_NE(play(server, std::string("CFGGEN1.02.02 0 ") + options)
                      .output.find("Unexpected parameter: "),
                  std::string::npos)
            << options;
    }
}

TEST(CfggenCommand, RefusesWithAReasonAndChangesNothing) {
    const CommandRow rows[] = {
        {"CREATE IM MAX 1:0 1:12 NOPROMPT", "There is no physical disk at 1:12."},
        {"CREATE IM MAX 1:0 3:0 NOPROMPT", "There is no physical disk at 3:0."},
        {"CREATE IM MAX 1:0 1:0 NOPROMPT", "The physical disk at 1:0 is named twice."},
        {"CREATE IM MAX 1:0 2:4 NOPROMPT", "The physical disk at 2:4 is not free: it is bad."},
        {"CREATE IM MAX 1:0 2:5 NOPROMPT", "The physical disk at 2:5 is not free: it is failed."},
        {"CREATE IM MAX 1:0 2:6 NOPROMPT", "The physical disk at 2:6 is not free: it is foreign."},
        {"CREATE IM MAX 1:0 1:10 NOPROMPT", "The physical disk at 1:10 is not free: it is online."},
        {"CREATE IM MAX 1:0 2:1 NOPROMPT", "The physical disk at 2:1 is not free: it is hotspare."},
        {"CREATE IM MAX 1:0 NOPROMPT", "RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {"CREATE IM MAX 1:0 1:1 1:2 NOPROMPT",
         "RAID1 takes 2 to 2 physical disks in a span, not 3."},
        {"CREATE IME MAX 1:0 1:1 NOPROMPT",
         "RAID1E takes 3 to 10 physical disks in a span, not 2."},
        {"CREATE IS MAX 1:0 1:1 1:2 1:3 1:4 1:5 1:6 1:7 1:8 1:9 1:11 NOPROMPT",
         "RAID0 takes 1 to 10 physical disks in a span, not 11."},
        {"CREATE IM 0 1:0 1:1 NOPROMPT",
         "A size of 0 MB does not fit: the array has room for 1000 MB."},
        {"CREATE IM 1001 1:0 1:1 NOPROMPT",
         "A size of 1001 MB does not fit: the array has room for 1000 MB."},
        {"CREATE IME 1352 1:0 1:11 1:2 NOPROMPT",
         "A size of 1352 MB does not fit: the array has room for 1351 MB."},
        {"HOTSPARE 1:12", "There is no physical disk at 1:12."},
        {"HOTSPARE 1:10", "The physical disk at 1:10 is not free: it is online."},
        {"HOTSPARE 2:1", "The physical disk at 2:1 is not free: it is hotspare."},
        {"HOTSPARE 2:5", "The physical disk at 2:5 is not free: it is failed."},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf(
            "CFGGEN", sasDrives, R"("virtualDisks": [{"level": "RAID0", "spans": [["1:10"]]}],)"));
        ASSERT_EQ(play(server, "CFGGEN 0 HOTSPARE 2:1").exitCode, 0);
        const std::string before = dump(server.controllers.front());
        const PlayResult result = play(server, std::string("CFGGEN 0 ") + row.command);
        EXPECT_EQ(result.exitCode, 1) << row.command;
        EXPECT_FALSE(result.changed) << row.command;
        const char* word = row.command[0] == 'C' ? "CREATE" : "HOTSPARE";
        EXPECT_EQ(result.output, sasTitle + ("ERROR: " + std::string(row.result)) + "\nCommand " +
                                     word + " Failed.\n")
            << row.command;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.command;
    }
}

TEST(CfggenCommand, TakesTwoVolumesAndTwoHotSpares) {
    Server server = serverOf(definitionOf("CFGGEN", sasDrives));
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IM MAX 1:0 1:1 NOPROMPT").exitCode, 0);
    EXPECT_NE(play(server, "CFGGEN 0 CREATE IS MAX 1:2 1:3 NOPROMPT")
                  .output.find("IR volume 2 has been created"),
              std::string::npos);
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IM MAX 1:4 1:5 NOPROMPT").output,
              sasTitle + std::string("ERROR: The controller takes no more than 2 virtual disks.\n"
                                     "Command CREATE Failed.\n"));
    EXPECT_EQ(play(server, "CFGGEN 0 HOTSPARE 1:4").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 HOTSPARE 1:5").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 HOTSPARE 1:6").output,
              sasTitle + std::string("ERROR: The controller takes no more than 2 hot spares.\n"
                                     "Command HOTSPARE Failed.\n"));
    EXPECT_EQ(layoutOf(server), "1:4=hotspare | 1:5=hotspare | " + std::string(notFree) +
                                    "RAID1 [1:0,1:1] 1000MB | RAID0 [1:2,1:3] 2000MB");
}

TEST(CfggenCommand, RefusesLevelsThatTheModelDoesNotSupport) {
    Server server =
        serverOf(definitionOf("CFGGEN", sasDrives, R"("raidLevels": ["RAID0", "RAID1"],)"));
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IME MAX 1:0 1:1 1:2 NOPROMPT").output,
              sasTitle + std::string("ERROR: RAID1E is not supported by this controller.\n"
                                     "Command CREATE Failed.\n"));
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IM MAX 1:0 1:1 NOPROMPT").exitCode, 0);
}

TEST(CfggenCommand, RefusesWhatItDoesNotUnderstand) {
    constexpr const char* incomplete = "The command line is not complete.";
    const CommandRow rows[] = {
        {"", incomplete},
        {"DISPLAY", "Unexpected parameter: DISPLAY"},
        {"0", incomplete},
        {"-1 DISPLAY", "Unexpected parameter: -1"},
        {"65536 DISPLAY", "Unexpected parameter: 65536"},
        {"0 SHOW", "Unexpected parameter: SHOW"},
        {"0 DISPLAY ALL", "Unexpected parameter: ALL"},
        {"1 DISPLAY", "There is no controller 1."},
        {"65535 DISPLAY", "There is no controller 65535."},
        {"0 CREATE", incomplete},
        {"0 CREATE ERROR MAX 1:0 1:1 NOPROMPT", "Unexpected parameter: ERROR"},
        {"0 CREATE 1 MAX 1:0 1:1 NOPROMPT", "Unexpected parameter: 1"},
        {"0 CREATE IM 1:0 1:1 NOPROMPT", "Unexpected parameter: 1:0"},
        {"0 CREATE IM -1 1:0 1:1 NOPROMPT", "Unexpected parameter: -1"},
        {"0 CREATE IM 1000000000001 1:0 1:1 NOPROMPT", "Unexpected parameter: 1000000000001"},
        {"0 CREATE IM MAX", incomplete},
        {"0 CREATE IM MAX NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"0 CREATE IM MAX qsync NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"0 CREATE IM MAX 0 1 NOPROMPT", "Unexpected parameter: 0"},
        {"0 CREATE IM MAX :0 :1 NOPROMPT", "Unexpected parameter: :0"},
        {"0 CREATE IM MAX 1:0 1:x NOPROMPT", "Unexpected parameter: 1:x"},
        {"0 CREATE IM MAX 1:0 1:1", incomplete},
        {"0 CREATE IM MAX 1:0 1:1 qsync", incomplete},
        {"0 CREATE IM MAX 1:0 1:1 NOPROMPT qsync", "Unexpected parameter: qsync"},
        {"0 CREATE IM MAX 1:0 qsync 1:1 NOPROMPT", "Unexpected parameter: 1:1"},
        {"1 CREATE IM MAX 1:0 1:1 NOPROMPT", "There is no controller 1."},
        {"0 HOTSPARE", incomplete},
        {"0 HOTSPARE 5", "Unexpected parameter: 5"},
        {"0 HOTSPARE 1:0 1:1", "Unexpected parameter: 1:1"},
        {"1 HOTSPARE 1:0", "There is no controller 1."},
        {"0 DELETE", incomplete},
        {"0 DELETE 1 NOPROMPT", "Unexpected parameter: 1"},
        {"0 DELETE NOPROMPT NOW", "Unexpected parameter: NOW"},
        {"1 DELETE NOPROMPT", "There is no controller 1."},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf("CFGGEN", sasDrives));
        const std::string before = dump(server.controllers.front());
        const PlayResult result = play(server, std::string("CFGGEN ") + row.command);
        EXPECT_EQ(result.exitCode, 1) << row.command;
        EXPECT_NE(result.output.find(sasTitle + ("ERROR: " + std::string(row.result)) + "\n"),
                  std::string::npos)
            << row.command << "\n"
            << result.output;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.command;
    }
}

TEST(CfggenCommand, DeletesVolumesAndHotSpares) {
    Server server = serverOf(
        definitionOf("CFGGEN", sasDrives,
                     R"("virtualDisks": [{"level": "RAID1", "spans": [["1:0", "2:5"]]}],)"));
    ASSERT_EQ(play(server, "CFGGEN 0 HOTSPARE 1:4").exitCode, 0);
    for (int time = 0; time < 2; ++time) { // the second time there is nothing left
        const PlayResult result = play(server, "CFGGEN 0 DELETE NOPROMPT");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output,
                  sasTitle +
                      std::string("All volumes and hot spares have been deleted on controller 0\n"
                                  "Command DELETE Completed Successfully.\n"));
        EXPECT_EQ(layoutOf(server), "2:4=bad | 2:5=failed | 2:6=foreign");
    }
}

TEST(CfggenCommand, EachUtilityCountsItsOwnAdaptersInPciOrder) {
    const char* controller = R"({"utility": "%s", "model": "M", "productName": "Product %d",
        "pci": {"bus": %d, "device": 1, "function": %d, "vendorId": 1, "deviceId": 2}})";
    Server server = serverOf(R"({"machineType": "1", "serialNumber": "2", "controllers": [)" +
                             formatted(controller, "CFGGEN", 0, 9, 0) + "," +
                             formatted(controller, "CFGGEN1.02.02", 1, 3, 1) + "," +
                             formatted(controller, "CFGGEN", 2, 4, 0) + "," +
                             formatted(controller, "cfggen1.02.02", 3, 3, 0) + "]}");
    const CommandRow rows[] = {{"CFGGEN 0", "Product 2\n"},
                               {"CFGGEN 1", "Product 0\n"},
                               {"CFGGEN1.02.02 0", "Product 3\n"},
                               {"CFGGEN1.02.02 1", "Product 1\n"}};
    for (const CommandRow& row : rows) {
        const PlayResult result = play(server, std::string(row.command) + " DISPLAY");
        EXPECT_EQ(result.exitCode, 0) << row.command;
        EXPECT_NE(result.output.find(row.result), std::string::npos) << row.command;
    }
    EXPECT_EQ(play(server, "CFGGEN 2 DISPLAY").exitCode, 1);
    EXPECT_EQ(play(server, "CFGGEN1.02.02 2 DISPLAY").exitCode, 1);
}

TEST(CfggenCommand, TheStateIsKeptAcrossRuns) {
    const TemporaryFolder folder;
    folder.write("server.json", std::string(sampleNamed("cfggen")->definition));
    const auto util = [&](const char* command) {
        return Runner(folder.path())(splitWords(std::string("util ") + command));
    };
    EXPECT_EQ(util("CFGGEN 0 CREATE IME MAX 1:0 1:1 1:2 qsync NOPROMPT").exitCode, 0);
    EXPECT_EQ(util("CFGGEN 0 HOTSPARE 2:1").exitCode, 0);
    EXPECT_EQ(util("CFGGEN 0 CREATE IM MAX 1:0 1:3 NOPROMPT").exitCode, 1);
    const std::string listing = util("CFGGEN 0 DISPLAY").output;
    EXPECT_NE(listing.find("RAID level                              : 1E\n"
                           "  Size (in MB)                            : 105009\n"
                           "  Physical hard disks (Target ID)         : 1 2 3\n"),
              std::string::npos)
        << listing;
    EXPECT_EQ(trimmedLinesWith(listing, {"State"}).back(),
              "State                                   : Hot Spare (HSP)");
    EXPECT_EQ(util("CFGGEN 0 DELETE NOPROMPT").exitCode, 0);
    EXPECT_EQ(util("CFGGEN 0 DISPLAY").output.find("IR volume"), std::string::npos);
}

} // namespace
} // namespace zolex_sim::test
