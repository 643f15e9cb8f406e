#include "StorcliSupport.h"

namespace zolex_sim::test {
namespace {

constexpr const char* storcliDrives = R"(
    {"enclosure": 252, "slot": 0, "count": 6, "sectors": 4194304, "rawSectors": 6291456},
    {"enclosure": 252, "slot": 6, "sectors": 2097152, "rawSectors": 6291456},
    {"enclosure": 252, "slot": 7, "sectors": 4194304, "interface": "SATA"},
    {"enclosure": 252, "slot": 8, "sectors": 4194304, "medium": "ssd"},
    {"enclosure": 252, "slot": 9, "sectors": 524288, "sectorBytes": 4096},
    {"enclosure": 252, "slot": 10, "sectors": 4194304, "status": "bad"},
    {"enclosure": 252, "slot": 11, "sectors": 4194304, "status": "jbod"},
    {"enclosure": 252, "slot": 12, "sectors": 4194304, "status": "hotspare"},
    {"enclosure": 252, "slot": 13, "sectors": 4194304},
    {"slot": 0, "count": 2, "sectors": 4194304},
    {"enclosure": 64, "slot": 0, "count": 40, "sectors": 4194304})";
constexpr const char* foreignDrive = R"(, "foreign": [{"drives": ["252:13"]}])";

Server mixedServer(const std::string& more = "") {
    return serverOf(storcliDefinition(storcliDrives, foreignDrive + more));
}

/// The virtual drives of the first controller, without its drives.
std::string volumes(const Server& server) {
    const std::string text = dumpStorcli(server);
    const std::size_t place = text.find("RAID");
    return place == std::string::npos ? "" : text.substr(text.rfind("| ", place) + 2);
}

TEST(StorcliCreate, MakesEachLevel) {
    struct Row {
        const char* options;
        const char* made;
    };
    constexpr Row rows[] = {
        {"r0 drives=252:0", "239 RAID0 [252:0] 4194304 256kB WB RA"},
        {"r1 drives=252:0,252:1", "239 RAID1 [252:0,252:1] 4194304 256kB WB RA"},
        {"r5 drives=252:0-2", "239 RAID5 [252:0,252:1,252:2] 8388608 256kB WB RA"},
        {"r6 drives=252:0,1,2,3", "239 RAID6 [252:0,252:1,252:2,252:3] 8388608 256kB WB RA"},
        {"r00 drives=252:0-3 PDperArray=2",
         "239 RAID00 [252:0,252:1][252:2,252:3] 16777216 256kB WB RA"},
        {"r10 drives=252:0-3 PDperArray=2",
         "239 RAID10 [252:0,252:1][252:2,252:3] 8388608 256kB WB RA"},
        {"r50 drives=252:0-5 PDperArray=3",
         "239 RAID50 [252:0,252:1,252:2][252:3,252:4,252:5] 16777216 256kB WB RA"},
        {"r60 drives=64:0-7 pdperarray=4",
         "239 RAID60 [64:0,64:1,64:2,64:3][64:4,64:5,64:6,64:7] 16777216 256kB WB RA"},
        {"type=raid1 drives=252:0,64:3", "239 RAID1 [252:0,64:3] 4194304 256kB WB RA"},
        {"r1 drives=:0,:1 wt nora cached Strip=64 name=a",
         "239 RAID1 [:0,:1] 4194304 64kB WT NORA cached"},
        {"r0 drives=252:0 awb direct ra Strip=1024", "239 RAID0 [252:0] 4194304 1024kB AWB RA"},
        {"r1 drives=252:5,252:6", "239 RAID1 [252:5,252:6] 2097152 256kB WB RA"},
        {"r0 Size=1.5GB drives=252:0", "239 RAID0 [252:0] 3145728 256kB WB RA"},
        {"r0 Size=512MB,1GB,remaining drives=252:0",
         "237 RAID0 [252:0] 1048576 256kB WB RA | 238 RAID0 [252:0] 2097152 256kB WB RA | "
         "239 RAID0 [252:0] 1048576 256kB WB RA"},
        {"r0 drives=252:0,252:7", "239 RAID0 [252:0,252:7] 8388608 256kB WB RA"},
        {"r0 drives=252:9", "239 RAID0 [252:9] 4194304 256kB WB RA"},
    };
    for (const Row& row : rows) {
        Server server = mixedServer();
        EXPECT_EQ(outcome(server, std::string("/c0 add vd ") + row.options), "0: Add VD Succeeded.")
            << row.options;
        EXPECT_EQ(volumes(server), row.made) << row.options;
    }
}

TEST(StorcliCreate, RefusesWithItsNumbersAndChangesNothing) {
    struct Row {
        const char* options;
        const char* outcome;
    };
    constexpr Row rows[] = {
        {"r10 drives=252:0-3", "255: PDperArray is needed for this RAID level."},
        {"r50 drives=252:0-5", "255: PDperArray is needed for this RAID level."},
        {"r60 drives=64:0-7", "255: PDperArray is needed for this RAID level."},
        {"r00 drives=64:0-7", "255: PDperArray is needed for this RAID level."},
        {"r5 drives=252:0,252:1", "255: Invalid number of drives for the RAID level."},
        {"r10 drives=252:0-3 PDperArray=3", "255: Invalid number of drives for the RAID level."},
        {"r10 drives=252:0,252:1 PDperArray=2",
         "255: Invalid number of drives for the RAID level."},
        {"r0 drives=64:0-32", "255: Maximum number of arms exceeded."},
        {"r10 drives=64:0-17 PDperArray=2", "255: Maximum number of spans exceeded."},
        {"r0 drives=252:99", "255: Drive not found"},
        {"r0 drives=:9", "255: Drive not found"},
        {"r1 drives=252:0,252:0", "3: a drive is named twice"},
        {"r1 drives=252:0,252:9", "11: drives have different sector sizes"},
        {"r1 drives=252:0,252:8", "255: Mix of SSD and HDD in a VD is not allowed."},
        {"r0 drives=252:10", "50: device state doesn't support requested command"},
        {"r0 drives=252:12", "50: device state doesn't support requested command"},
        {"r0 drives=252:13", "255: Operation not allowed: the drive is foreign."},
        {"r1 drives=252:0,252:11", "11: Mix of configured and unconfigured drives"},
        {"r0 Size=3GB drives=252:0", "13: disk doesn't have enough capacity"},
        {"r0 Size=1GB,1GB,1KB drives=252:0", "13: disk doesn't have enough capacity"},
        {"r0 drives=252:0 Strip=32", "3: invalid strip size"},
        {"r0 drives=252:0 Strip=2048", "3: invalid strip size"},
        {"r0 drives=252:0 Strip=96", "3: invalid strip size"},
        {"r0 drives=252:0 name=longer-than-allowed", "255: VD name is longer than 15 characters."},
        {"r1 drives=252:0,252:1 Spares=252:6", "13: disk doesn't have enough capacity"},
        {"r1 drives=252:0,252:1 Spares=252:12",
         "50: device state doesn't support requested command"},
        {"r1 drives=252:0,252:1 Spares=252:1",
         "50: device state doesn't support requested command"},
        {"r1e drives=252:0,252:1", "255: syntax error, unexpected r1e"},
        {"drives=252:0", "255: syntax error, unexpected $end, expecting the RAID level"},
        {"r0", "255: syntax error, unexpected $end, expecting drives"},
        {"r0 drives=252:x", "255: syntax error, unexpected drives=252:x"},
        {"r0 drives=252:0 Size=7", "255: syntax error, unexpected size=7"},
    };
    for (const Row& row : rows) {
        Server server = mixedServer();
        const std::string before = dumpStorcli(server);
        EXPECT_EQ(outcome(server, std::string("/c0 add vd ") + row.options), row.outcome)
            << row.options;
        EXPECT_EQ(dumpStorcli(server), before) << row.options;
    }
}

TEST(StorcliCreate, ObeysTheAbilitiesOfTheController) {
    struct Row {
        const char* controller;
        const char* options;
        const char* outcome;
    };
    constexpr Row rows[] = {
        {R"(, "mixesSasSataHDD": false)", "r1 drives=252:0,252:7",
         "38: Mix of SAS and SATA in a VD is not allowed"},
        {R"(, "mixesMedia": true)", "r1 drives=252:0,252:8", "0: Add VD Succeeded."},
        {R"(, "preservedCache": true)", "r0 drives=252:0",
         "84: controller has data in cache for offline or missing VDs"},
        {R"(, "raidLevels": ["RAID0", "RAID1"])", "r5 drives=252:0-2",
         "255: RAID level is not supported."},
        {R"(, "maxVirtualDrives": 1)", "r0 drives=252:0 Size=1GB,1GB",
         "26: no more virtual drives can be made"},
        {R"(, "version": "007.3703")", "r0 drives=252:0", "0: Add VD succeeded."},
    };
    for (const Row& row : rows) {
        Server server = mixedServer(row.controller);
        EXPECT_EQ(outcome(server, std::string("/c0 add vd ") + row.options), row.outcome)
            << row.options;
    }
}

TEST(StorcliCreate, AVirtualDriveMoreOnAGroup) {
    Server server = mixedServer();
    EXPECT_EQ(outcome(server, "/c0 add vd r5 Size=1GB drives=252:0-2"), "0: Add VD Succeeded.");
    EXPECT_EQ(outcome(server, "/c0 add vd r1 drives=252:0,252:1"),
              "255: Operation not allowed: the drives are in use.");
    EXPECT_EQ(outcome(server, "/c0 add vd r0 drives=252:0-2"),
              "11: the drive group has another RAID level");
    EXPECT_EQ(outcome(server, "/c0 add vd r5 drives=252:0-3"),
              "11: Mix of configured and unconfigured drives");
    EXPECT_EQ(outcome(server, "/c0 add vd r5 drives=252:2,252:0,252:1"), "0: Add VD Succeeded.");
    EXPECT_EQ(volumes(server), "238 RAID5 [252:0,252:1,252:2] 6291456 256kB WB RA | "
                               "239 RAID5 [252:0,252:1,252:2] 2097152 256kB WB RA");
    EXPECT_EQ(outcome(server, "/c0 add vd r5 drives=252:0-2"),
              "13: disk doesn't have enough capacity");
}

TEST(StorcliCreate, NoneMoreOnAGroupThatIsNotOptimal) {
    Server server = serverOf(storcliDefinition(
        R"({"enclosure": 1, "slot": 0, "count": 2, "sectors": 4194304},
           {"enclosure": 1, "slot": 2, "sectors": 4194304, "status": "failed"})",
        R"(, "virtualDrives": [{"level": "RAID5", "spans": [["1:0", "1:1", "1:2"]],
                               "blocks": 2048}])"));
    EXPECT_EQ(outcome(server, "/c0 add vd r5 drives=1:0-2"), "27: the drive group is not optimal");
}

TEST(StorcliCreate, NumbersCountDownOrUpAndFillGaps) {
    for (const bool up : {false, true}) {
        Server server = mixedServer(up ? R"(, "vdNumbers": "up")" : "");
        for (const char* slot : {"0", "1", "2"}) {
            storcli(server, std::string("/c0 add vd r0 drives=252:") + slot + " nolog");
        }
        const char* middle = up ? "1" : "238";
        EXPECT_EQ(outcome(server, std::string("/c0/v") + middle + " del"),
                  "0: Delete VD Succeeded.");
        storcli(server, "/c0 add vd r0 drives=252:3 nolog");
        EXPECT_EQ(volumes(server), up ? "0 RAID0 [252:0] 4194304 256kB WB RA | "
                                        "1 RAID0 [252:3] 4194304 256kB WB RA | "
                                        "2 RAID0 [252:2] 4194304 256kB WB RA"
                                      : "237 RAID0 [252:2] 4194304 256kB WB RA | "
                                        "238 RAID0 [252:3] 4194304 256kB WB RA | "
                                        "239 RAID0 [252:0] 4194304 256kB WB RA");
    }
}

constexpr const char* configured = R"(, "virtualDrives": [
    {"level": "RAID1", "spans": [["1:0", "1:1"]], "osDrive": "/dev/sda"},
    {"level": "RAID1", "spans": [["1:2", "1:3"]], "blocks": 2048},
    {"level": "RAID1", "group": 1}])";

Server configuredServer() {
    return serverOf(storcliDefinition(
        R"({"enclosure": 1, "slot": 0, "count": 4, "sectors": 4194304},
           {"enclosure": 1, "slot": 4, "sectors": 4194304, "status": "dedicated", "groups": [1]},
           {"enclosure": 1, "slot": 5, "sectors": 4194304, "status": "hotspare"})",
        configured));
}

TEST(StorcliDelete, AVirtualDriveWithASystemNeedsForce) {
    Server server = configuredServer();
    const std::string before = dumpStorcli(server);
    EXPECT_EQ(outcome(server, "/c0/v239 del"),
              "255: Delete VD failed. VD has OS/FS, use force to delete it.");
    EXPECT_EQ(outcome(server, "/c0/v239 del discardcache"),
              "255: Delete VD failed. VD has OS/FS, use force to delete it.");
    EXPECT_EQ(outcome(server, "/c0/v5 del force"), "255: Delete VD failed. Invalid VD number");
    EXPECT_EQ(outcome(server, "/c0 delete config"), "255: VD has OS/FS, use force to delete it. "
                                                    "VD has OS/FS, use force to delete it.");
    EXPECT_EQ(dumpStorcli(server), before);
    EXPECT_EQ(outcome(server, "/c0/v239 del force"), "0: Delete VD Succeeded.");
    EXPECT_EQ(dumpStorcli(server),
              "1:0=good | 1:1=good | 1:2=online | 1:3=online | 1:4=dedicated/0 | 1:5=hotspare | "
              "237 RAID1 [1:2,1:3] 4192256 256kB WB RA | 238 RAID1 [1:2,1:3] 2048 256kB WB RA");
}

TEST(StorcliDelete, AllOfThemAndTheSparesStay) {
    for (const char* command : {"/c0 delete config force", "/c0/vall del force"}) {
        Server server = configuredServer();
        EXPECT_EQ(storcli(server, std::string(command) + " nolog").exitCode, 0);
        EXPECT_EQ(dumpStorcli(server), "1:0=good | 1:1=good | 1:2=good | 1:3=good | "
                                       "1:4=hotspare | 1:5=hotspare");
    }
}

TEST(StorcliDelete, AGroupGoesWithItsLastVirtualDrive) {
    Server server = configuredServer();
    EXPECT_EQ(outcome(server, "/c0/v238 del"), "0: Delete VD Succeeded.");
    EXPECT_EQ(server.storcliControllers.front().groups.size(), 2U);
    EXPECT_EQ(outcome(server, "/c0/v237 del"), "0: Delete VD Succeeded.");
    EXPECT_EQ(server.storcliControllers.front().groups.size(), 1U);
    EXPECT_EQ(outcome(server, "/c0/vall del"),
              "255: Delete VD failed. VD has OS/FS, use force to delete it.");
}

TEST(StorcliDrives, ChangeTheirStates) {
    struct Row {
        const char* command;
        const char* outcome;
        const char* after; ///< of the drive
    };
    constexpr Row rows[] = {
        {"/c0/e252/s0 add hotsparedrive", "0: Add Hot Spare Succeeded.", "252:0=hotspare"},
        {"/c0/e252/s0 add hotsparedrive DGs=0",
         "255: Add Hot Spare Failed. "
         "Invalid drive group number",
         "252:0=good"},
        {"/c0/s0 add hotsparedrive", "0: Add Hot Spare Succeeded.", ":0=hotspare"},
        {"/c0/e252/s12 delete hotsparedrive", "0: Delete Hot Spare Succeeded.", "252:12=good"},
        {"/c0/e252/s0 delete hotsparedrive",
         "50: Delete Hot Spare Failed. device state doesn't support requested command",
         "252:0=good"},
        {"/c0/e252/s10 add hotsparedrive",
         "50: Add Hot Spare Failed. device state doesn't support requested command", "252:10=bad"},
        {"/c0/e252/s13 add hotsparedrive", "255: Add Hot Spare Failed. Operation not allowed.",
         "252:13=foreign"},
        {"/c0/e252/s10 set good", "0: Set Drive Good Succeeded.", "252:10=good"},
        {"/c0/e252/s11 set good",
         "255: Set Drive Good Failed. Operation not allowed: the drive may hold data, use force.",
         "252:11=jbod"},
        {"/c0/e252/s11 set good force", "0: Set Drive Good Succeeded.", "252:11=good"},
        {"/c0/e252/s11 del jbod force", "0: Delete Drive JBOD Succeeded.", "252:11=good"},
        {"/c0/e252/s0 del jbod",
         "50: Delete Drive JBOD Failed. device state doesn't support requested command",
         "252:0=good"},
        {"/c0/e252/s0 set jbod", "0: Set Drive JBOD Succeeded.", "252:0=jbod"},
        {"/c0/e252/s13 set jbod", "255: Set Drive JBOD Failed. Operation not allowed.",
         "252:13=foreign"},
        {"/c0/e252/s12 set jbod",
         "50: Set Drive JBOD Failed. device state doesn't support requested command",
         "252:12=hotspare"},
        {"/c0/e252/s0 start locate", "0: Start Drive Locate Succeeded.", "252:0=good"},
        {"/c0/e252/s99 start locate", "255: Start Drive Locate Failed. Drive not found",
         "252:0=good"},
        {"/c0/fall del", "0: Successfully deleted foreign configuration", "252:13=good"},
        {"/c0 set jbod=off",
         "255: Operation not allowed: there are JBOD drives, use force. Operation not allowed: "
         "there are JBOD drives, use force.",
         "252:11=jbod"},
        {"/c0 set jbod=off force", "0: None", "252:11=good"},
    };
    for (const Row& row : rows) {
        Server server = mixedServer();
        EXPECT_EQ(outcome(server, row.command), row.outcome) << row.command;
        EXPECT_NE((" " + dumpStorcli(server) + " ").find(std::string(" ") + row.after + " "),
                  std::string::npos)
            << row.command << ": " << dumpStorcli(server);
    }
}

TEST(StorcliDrives, ADedicatedSpareIsOfItsGroups) {
    Server server = mixedServer();
    storcli(server, "/c0 add vd r1 drives=252:0,252:1 Spares=252:2 nolog");
    EXPECT_EQ(outcome(server, "/c0/e252/s3 add hotsparedrive DGs=0"),
              "0: Add Hot Spare Succeeded.");
    EXPECT_EQ(outcome(server, "/c0/e252/s6 add hotsparedrive DGs=0"),
              "13: Add Hot Spare Failed. disk doesn't have enough capacity");
    EXPECT_EQ(dumpStorcli(server).substr(0, 79),
              "252:0=online | 252:1=online | 252:2=dedicated/0 | 252:3=dedicated/0 | "
              "252:4=goo");
    OrderedJson rows = storcliJson(server, "/c0 show all")["Response Data"]["TOPOLOGY"];
    ASSERT_EQ(rows.size(), 7U);
    EXPECT_EQ(rows[4]["EID:Slot"], "252:2");
    EXPECT_EQ(rows[4]["State"], "DHS");
    EXPECT_EQ(rows[4]["DG"], 0);
    EXPECT_EQ(rows[6]["DG"], "-");
    EXPECT_EQ(rows[6]["State"], "GHS");
}

TEST(StorcliProperties, OfVirtualDrivesAndControllers) {
    Server server = configuredServer();
    EXPECT_EQ(outcome(server, "/c0/v237 set wrcache=WT"), "0: None");
    EXPECT_EQ(outcome(server, "/c0/v237 set rdcache=NoRA"), "0: None");
    EXPECT_EQ(outcome(server, "/c0/v237 set iopolicy=cached"), "0: None");
    EXPECT_EQ(outcome(server, "/c0/v237 set name=data"), "0: None");
    EXPECT_EQ(outcome(server, "/c0/v237 set wrcache=XX"),
              "255: Set VD failed. syntax error, unexpected XX");
    EXPECT_EQ(outcome(server, "/c0/v237 start init Full"), "0: Start INIT Operation Success");
    EXPECT_EQ(outcome(server, "/c0/v239 start init"),
              "255: Start VD Operation Failed VD has OS/FS, use force to initialise it.");
    const OrderedJson row =
        storcliJson(server, "/c0/v237 show")["Response Data"]["Virtual Drives"][0];
    EXPECT_EQ(row["Cache"], "NRWTC");
    EXPECT_EQ(row["Name"], "data");
    EXPECT_EQ(outcome(server, "/c0 set rebuildrate=60"), "0: None");
    EXPECT_EQ(
        storcliJson(server,
                    "/c0 show all")["Response Data"]["Policies"]["Policies Table"][0]["Current"],
        "60 %");
    EXPECT_EQ(storcli(server, "/c0 set rebuildrate=101 nolog").exitCode, 255);
    EXPECT_EQ(outcome(server, "/c0 set factory defaults"), "0: Set Factory Defaults Succeeded.");
    EXPECT_EQ(server.storcliControllers.front().rebuildRate, 30);
}

TEST(StorcliWords, ThatAreUnknownAreRefused) {
    Server server = configuredServer();
    for (const char* command :
         {"/c0 set patrolread=on", "/c0/v239 migrate", "/c0/e1/s0 erase", "/c0/fall import",
          "/c0/dall set x", "/c0/e1 set y", "/c0/cv set z"}) {
        EXPECT_EQ(outcome(server, command), "255: Un-supported Command") << command;
    }
    EXPECT_EQ(outcome(server, "/c0/x show"), "255: syntax error, unexpected /c0/x");
    EXPECT_EQ(outcome(server, ""), "255: syntax error, unexpected $end");
    EXPECT_EQ(outcome(server, "/c7 show"), "255: Controller 7 not found");
    EXPECT_EQ(outcome(server, "/c0/e9/s0 show"),
              "255: Show Drive Information Failed. Drive not found");
    EXPECT_EQ(outcome(server, "/c0/sall show all"), "255: No drive found!");
    EXPECT_EQ(outcome(server, "/c0/d9 show"), "255: Invalid drive group number");
    EXPECT_EQ(outcome(server, "/c0/v9 show all"), "255: Invalid VD number Invalid VD number");
}

TEST(StorcliText, IsGivenWithoutJ) {
    Server server = configuredServer();
    EXPECT_EQ(storcli(server, "/c0/v1 del nolog").output,
              "CLI Version = 007.2507.0000.0000 Mar 11, 2024\n"
              "Operating system = Linux 6.1.0-18-amd64\n"
              "Controller = 0\n"
              "Status = Failure\n"
              "Description = Delete VD failed.\n"
              "\n"
              "Detailed Status :\n"
              "=================\n"
              "\n"
              "-----------------------------------\n"
              "VD Status  ErrCd ErrMsg            \n"
              "-----------------------------------\n"
              "1  Failure 255   Invalid VD number \n"
              "-----------------------------------\n"
              "\n");
    EXPECT_NE(storcli(server, "/c0 show all nolog").output.find("\nVendor Id = 0x1000\n"),
              std::string::npos);
}

TEST(StorcliNames, AllPlayTheRole) {
    for (const char* name :
         {"STORCLI", "storcli64", "storcli", "perccli64", "perccli", "PERCCLI64"}) {
        Server server = configuredServer();
        EXPECT_EQ(playUtility(server, {name, "show", "nolog"}).exitCode, 0) << name;
    }
}

TEST(StorcliLog, IsLeftUnlessToldOtherwise) {
    Server server = configuredServer();
    EXPECT_TRUE(storcli(server, "show J").leavesLog);
    EXPECT_FALSE(storcli(server, "show J nolog").leavesLog);
    EXPECT_FALSE(storcli(server, "show NOLOG").leavesLog);
    server.storcliControllers.front().refusesNolog = true;
    EXPECT_EQ(outcome(server, "show"), "255: Un-supported Command");
    EXPECT_EQ(storcli(server, "show J").exitCode, 0);
}

} // namespace
} // namespace zolex_sim::test
