#include "simulator/SimulatorSupport.h"

namespace zolex_sim::test {
namespace {

// Six drives of two sizes in enclosure 8, two outside every enclosure, and one of each kind that is
// not free.
constexpr const char* megaDrives = R"(
    {"enclosure": 8, "slot": 0, "count": 8, "sizeMB": 1000},
    {"enclosure": 8, "slot": 8, "sizeMB": 900},
    {"slot": 0, "count": 2, "sizeMB": 500},
    {"enclosure": 9, "slot": 0, "sizeMB": 1000, "status": "bad"},
    {"enclosure": 9, "slot": 1, "sizeMB": 1000, "status": "failed"},
    {"enclosure": 9, "slot": 2, "sizeMB": 1000, "status": "foreign"},
    {"enclosure": 9, "slot": 3, "sizeMB": 1000, "status": "hotspare"})";

Server megaTestServer(const std::string& controller = "") {
    return serverOf(definitionWith(megaDrives, controller));
}

/// What is left of the dump when the drives that no test uses are taken away.
std::string raidDrivesOf(const Server& server) {
    const std::string text = dump(server.controllers.front());
    const std::size_t found = text.find("RAID");
    return found == std::string::npos ? "" : text.substr(found);
}

TEST(MegacliCommand, Creates) {
    const struct {
        const char* options;
        const char* result;
    } rows[] = {
        // As it comes from a command line, blanks and all.
        {"-CfgLdAdd R5  [ 8:0,8:1,8:2 ]   WB   ADRA   { -sz1500 }  -strpsz 32  -a0",
         "RAID5 [8:0,8:1,8:2] 1500MB 32kB WB ADRA"},
        {"-CfgLdAdd R0  [ 8:0 ]  -a0", "RAID0 [8:0] 1000MB 64kB WT NORA"},
        {"-CfgLdAdd R1 [ 8:1,8:0 ] -a0", "RAID1 [8:1,8:0] 1000MB 64kB WT NORA"},
        {"-CfgLdAdd R6 [8:0,8:1,8:2,8:3] -a0", "RAID6 [8:0,8:1,8:2,8:3] 2000MB 64kB WT NORA"},
        // The smallest member counts.
        {"-CfgLdAdd R5 [8:0,8:1,8:8] -a0", "RAID5 [8:0,8:1,8:8] 1800MB 64kB WT NORA"},
        {"-CfgLdAdd R0 [8:8,8:1] -a0", "RAID0 [8:8,8:1] 1800MB 64kB WT NORA"},
        {"-CfgSpanAdd R10  -Array0[ 8:0,8:1 ]  -Array1[ 8:2,8:8 ]   WT   NORA   -strpsz 128 -a0",
         "RAID10 [8:0,8:1][8:2,8:8] 1800MB 128kB WT NORA"},
        {"-CfgSpanAdd R50 -Array0[8:0,8:1,8:2] -Array1[8:3,8:4,8:5] WB RA -strpsz 8 -a0",
         "RAID50 [8:0,8:1,8:2][8:3,8:4,8:5] 4000MB 8kB WB RA"},
        {"-CfgSpanAdd R60 -Array0[8:0,8:1,8:2,8:3] -Array1[8:4,8:5,8:6,8:7] {-sz3999} -a0",
         "RAID60 [8:0,8:1,8:2,8:3][8:4,8:5,8:6,8:7] 3999MB 64kB WT NORA"},
        // Blanks missing or extra, any order, any letter case.
        {"-cfgldadd r1[8:0,8:1]wb{-sz10}-STRPSZ16 -A0", "RAID1 [8:0,8:1] 10MB 16kB WB NORA"},
        {"-CfgLdAdd R1 [ 8:0 , 8:1 ] -a 0 { -sz 10 } -strpsz 1024 NORA WB",
         "RAID1 [8:0,8:1] 10MB 1024kB WB NORA"},
        {"-CfgLdAdd R1 [8:0,8:1] -sz1000 -a0", "RAID1 [8:0,8:1] 1000MB 64kB WT NORA"},
        // Drives outside every enclosure.
        {"-CfgLdAdd R1 [:0,:1] -a0", "RAID1 [:0,:1] 500MB 64kB WT NORA"},
        {"-CfgLdAdd R1 [:0,8:1] -a0", "RAID1 [:0,8:1] 500MB 64kB WT NORA"},
    };
    for (const auto& row : rows) {
        Server server = megaTestServer();
        const PlayResult result = megacli(server, row.options);
        EXPECT_EQ(result.output, std::string(37, ' ') +
                                     "\nAdapter 0: Created VD 0\n\n"
                                     "Adapter 0: Configured the Adapter!!\n\nExit Code: 0x00\n")
            << row.options;
        EXPECT_EQ(result.exitCode, 0) << row.options;
        EXPECT_TRUE(result.changed) << row.options;
        EXPECT_EQ(raidDrivesOf(server), row.result) << row.options;
    }
}

TEST(MegacliCommand, RefusesWithAReasonAndChangesNothing) {
    const struct {
        const char* options;
        int exitCode;
        const char* reason;
    } rows[] = {
        {"-CfgLdAdd R1 [8:0,8:9] -a0", 0x0c, "There is no physical disk at 8:9."},
        {"-CfgLdAdd R1 [8:0,:2] -a0", 0x0c, "There is no physical disk at :2."},
        // Drives outside every enclosure are in no enclosure 0.
        {"-CfgLdAdd R1 [8:0,0:0] -a0", 0x0c, "There is no physical disk at 0:0."},
        {"-CfgLdAdd R1 [0:0,0:1] -a0", 0x0c, "There is no physical disk at 0:0."},
        {"-CfgLdAdd R1 [8:0,:8] -a0", 0x0c, "There is no physical disk at :8."},
        {"-CfgLdAdd R1 [8:0,8:0] -a0", 0x03, "The physical disk at 8:0 is named twice."},
        {"-CfgLdAdd R1 [:0,:0] -a0", 0x03, "The physical disk at :0 is named twice."},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:1,8:2] -a0", 0x03,
         "The physical disk at 8:1 is named twice."},
        {"-CfgLdAdd R1 [8:0,9:0] -a0", 0x26, "The physical disk at 9:0 is not free: it is bad."},
        {"-CfgLdAdd R1 [8:0,9:1] -a0", 0x26, "The physical disk at 9:1 is not free: it is failed."},
        {"-CfgLdAdd R1 [8:0,9:2] -a0", 0x26,
         "The physical disk at 9:2 is not free: it is foreign."},
        {"-CfgLdAdd R1 [8:0,9:3] -a0", 0x26,
         "The physical disk at 9:3 is not free: it is hotspare."},
        {"-CfgLdAdd R1 [8:0,8:7] -a0", 0x26, "The physical disk at 8:7 is not free: it is online."},
        {"-CfgLdAdd R1 [8:0] -a0", 0x1b, "RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {"-CfgLdAdd R1 [8:0,8:1,8:2,8:3] -a0", 0x1b,
         "RAID1 takes 2 to 2 physical disks in a span, not 4."},
        {"-CfgLdAdd R5 [8:0,8:1] -a0", 0x1b, "RAID5 takes 3 to 6 physical disks in a span, not 2."},
        {"-CfgLdAdd R6 [8:0,8:1,8:2] -a0", 0x1b,
         "RAID6 takes 4 to 6 physical disks in a span, not 3."},
        {"-CfgLdAdd R0 [8:0,8:1,8:2,8:3,8:4,8:5,8:6] -a0", 0x1b,
         "RAID0 takes 1 to 6 physical disks in a span, not 7."},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1] -a0", 0x1b, "RAID10 takes 2 to 3 spans, not 1."},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:2,8:3] -Array2[8:4,8:5] -Array3[8:6,8:8] -a0",
         0x1b, "RAID10 takes 2 to 3 spans, not 4."},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1,8:2] -Array1[8:3,8:4,8:5] -a0", 0x1b,
         "RAID10 takes 2 to 2 physical disks in a span, not 3."},
        {"-CfgSpanAdd R50 -Array0[8:0,8:1,8:2] -Array1[8:3,8:4,8:5,8:6] -a0", 0x1b,
         "All spans must hold the same number of physical disks."},
        {"-CfgSpanAdd R50 -Array0[8:0,8:1] -Array1[8:3,8:4] -a0", 0x1b,
         "RAID50 takes 3 to 6 physical disks in a span, not 2."},
        {"-CfgLdAdd R1 [8:0,8:1] -strpsz 4 -a0", 0x1c, "A stripe size of 4 kB is not supported."},
        {"-CfgLdAdd R1 [8:0,8:1] -strpsz 48 -a0", 0x1c, "A stripe size of 48 kB is not supported."},
        {"-CfgLdAdd R1 [8:0,8:1] -strpsz 2048 -a0", 0x1c,
         "A stripe size of 2048 kB is not supported."},
        {"-CfgLdAdd R1 [8:0,8:1] -strpsz 0 -a0", 0x1c, "A stripe size of 0 kB is not supported."},
        {"-CfgLdAdd R1 [8:0,8:1] -strpsz 4294967360 -a0", 0x1c,
         "A stripe size of 0 kB is not supported."},
        {"-CfgLdAdd R1 [8:0,8:1] -sz0 -a0", 0x1d,
         "A size of 0 MB does not fit: the array has room for 1000 MB."},
        {"-CfgLdAdd R1 [8:0,8:1] -sz1001 -a0", 0x1d,
         "A size of 1001 MB does not fit: the array has room for 1000 MB."},
        {"-CfgLdAdd R5 [8:0,8:1,8:8] -sz1801 -a0", 0x1d,
         "A size of 1801 MB does not fit: the array has room for 1800 MB."},
        {"-CfgLdAdd R1 [8:0,8:1] -sz999999999999999999 -a0", 0x1d,
         "A size of 999999999999999999 MB does not fit: the array has room for 1000 MB."},
    };
    for (const auto& row : rows) {
        Server server = megaTestServer(
            R"("maxSpans": 3, "maxDrivesPerSpan": 6,
               "virtualDisks": [{"level": "RAID0", "spans": [["8:7"]]}],)");
        const std::string before = dump(server.controllers.front());
        const PlayResult result = megacli(server, row.options);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.options;
        EXPECT_EQ(result.output, std::string(37, ' ') +
                                     "\nAdapter 0: Configure Adapter Failed\n\n" +
                                     "FW error description: \n  " + row.reason +
                                     formatted("  \n\nExit Code: 0x%02x\n", row.exitCode))
            << row.options;
        EXPECT_FALSE(result.changed) << row.options;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.options;
    }
}

TEST(MegacliCommand, RefusesLevelsThatTheModelDoesNotSupport) {
    Server server = megaTestServer(R"("raidLevels": ["RAID0", "RAID1"],)");
    for (const char* options : {"-CfgLdAdd R5 [8:0,8:1,8:2] -a0",
                                "-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:2,8:3] -a0"}) {
        const PlayResult result = megacli(server, options);
        EXPECT_EQ(result.exitCode, 0x3c) << options;
        EXPECT_NE(result.output.find("is not supported by this controller."), std::string::npos);
    }
    EXPECT_EQ(megacli(server, "-CfgLdAdd R1 [8:0,8:1] -a0").exitCode, 0);
}

TEST(MegacliCommand, RefusesMoreVirtualDisksThanTheControllerTakes) {
    Server server = megaTestServer(R"("maxVirtualDisks": 2,)");
    EXPECT_EQ(megacli(server, "-CfgLdAdd R0 [8:0] -a0").exitCode, 0);
    EXPECT_NE(megacli(server, "-CfgLdAdd R0 [8:1] -a0").output.find("Created VD 1\n"),
              std::string::npos);
    const PlayResult result = megacli(server, "-CfgLdAdd R0 [8:2] -a0");
    EXPECT_EQ(result.exitCode, 0x1e);
    EXPECT_NE(result.output.find("The controller takes no more than 2 virtual disks."),
              std::string::npos);
    EXPECT_EQ(raidDrivesOf(server),
              "RAID0 [8:0] 1000MB 64kB WT NORA | RAID0 [8:1] 1000MB 64kB WT NORA");
}

TEST(MegacliCommand, RefusesWhatItDoesNotUnderstand) {
    const struct {
        const char* options;
        const char* message;
    } rows[] = {
        {"", "Invalid input: the command line is not complete"},
        {"ERROR [ ] -a0", "Invalid input at or near token ERROR"},
        {"-Help", "Invalid input at or near token -Help"},
        {"-LdPdInfo", "Invalid input: the command line is not complete"},
        {"-pdList -a", "Invalid input at or near token -a"},
        {"-pdList -ax", "Invalid input at or near token -ax"},
        {"-pdList -a0 -a0", "Invalid input at or near token -a0"},
        {"-pdList -a0 now", "Invalid input at or near token now"},
        {"-adpallinfo -a1", "User specified controller is not present."},
        {"-adpallinfo -a999999999999999999", "User specified controller is not present."},
        {"-adpallinfo -a9999999999999999999",
         "Invalid input at or near token -a9999999999999999999"},
        {"-adpallinfo -a-1", "Invalid input at or near token -a-1"},
        {"-CfgLdAdd", "Invalid input: the command line is not complete"},
        {"-CfgLdAdd R7 [8:0] -a0", "Invalid input at or near token R7"},
        {"-CfgLdAdd R10 [8:0,8:1] -a0", "Invalid input at or near token R10"},
        {"-CfgLdAdd R0 -a0", "Invalid input at or near token -a0"},
        {"-CfgLdAdd R0 [ ] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:0 -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:0,] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [,8:0] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:0 8:1] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:0:1] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [-1:0] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:x] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:65536] -a0", "Invalid input at or near token ["},
        {"-CfgLdAdd R0 [8:0] WX -a0", "Invalid input at or near token WX"},
        {"-CfgLdAdd R0 [8:0] WB WT -a0", "Invalid input at or near token WT"},
        {"-CfgLdAdd R0 [8:0] RA NORA -a0", "Invalid input at or near token NORA"},
        {"-CfgLdAdd R0 [8:0] -strpsz -a0", "Invalid input at or near token -strpsz"},
        {"-CfgLdAdd R0 [8:0] -szFILL -a0", "Invalid input at or near token -szFILL"},
        {"-CfgLdAdd R0 [8:0] -sz-5 -a0", "Invalid input at or near token -sz-5"},
        {"-CfgLdAdd R0 [8:0] -sz10 -sz20 -a0", "Invalid input at or near token -sz20"},
        {"-CfgLdAdd R0 [8:0] { -sz10 -a0", "Invalid input at or near token -a0"},
        {"-CfgLdAdd R0 [8:0] -sz10 } -a0", "Invalid input at or near token }"},
        {"-CfgLdAdd R0 [8:0] { } -a0", "Invalid input at or near token }"},
        {"-CfgLdAdd R0 [8:0]", "Invalid input: the command line is not complete"},
        {"-CfgLdAdd R0 [8:0] -a7", "User specified controller is not present."},
        {"-CfgSpanAdd R5 -Array0[8:0,8:1,8:2] -a0", "Invalid input at or near token R5"},
        {"-CfgSpanAdd R10 [8:0,8:1] -a0", "Invalid input at or near token ["},
        {"-CfgSpanAdd R10 -Array1[8:0,8:1] -Array0[8:2,8:3] -a0",
         "Invalid input at or near token -Array1"},
        {"-CfgSpanAdd R10 -Array0[8:0,8:1] -Array0[8:2,8:3] -a0",
         "Invalid input at or near token -Array0"},
        {"-PDHSP", "Invalid input: the command line is not complete"},
        {"-PDHSP { -Set -PhysDrv[8:0] -a0", "Invalid input at or near token -PhysDrv"},
        {"-PDHSP { -Rmv } -PhysDrv[8:0] -a0", "Invalid input at or near token -Rmv"},
        {"-PDHSP { -Set } -PhysDrv[] -a0", "Invalid input at or near token ["},
        {"-PDHSP { -Set } -PhysDrv[8:0] -a0 WB", "Invalid input at or near token WB"},
        {"-PDHSP { -Set } -PhysDrv[8:0]", "Invalid input: the command line is not complete"},
        {"-PDHSP { -Set } -PhysDrv[8:0] -a1", "User specified controller is not present."},
        {"-PDHSP -Rmv", "Invalid input: the command line is not complete"},
        {"-PDHSP -Rmv -Set -PhysDrv[8:0] -a0", "Invalid input at or near token -Set"},
        {"-PDHSP -Rmv -PhysDrv[9:3] -a1", "User specified controller is not present."},
        {"-CfgLdDel", "Invalid input: the command line is not complete"},
        {"-CfgLdDel -a0", "Invalid input at or near token -a0"},
        {"-CfgLdDel -L -a0", "Invalid input at or near token -L"},
        {"-CfgLdDel -Lx -a0", "Invalid input at or near token -Lx"},
        {"-CfgLdDel -L-1 -a0", "Invalid input at or near token -L-1"},
        {"-CfgLdDel -L0, -a0", "Invalid input at or near token -a0"},
        {"-CfgLdDel -L0", "Invalid input: the command line is not complete"},
        {"-CfgLdDel -L0 -a0 -SILENT", "Invalid input at or near token -SILENT"},
        {"-CfgLdDel -L0 -a1", "User specified controller is not present."},
        {"-CFGCLR -SILENT", "Invalid input: the command line is not complete"},
        {"-CFGCLR -A0 -LOUD", "Invalid input at or near token -LOUD"},
        {"-CFGCLR -A1 -SILENT", "User specified controller is not present."},
        {"-CFGFOREIGN -A0 -SILENT", "Invalid input at or near token -A0"},
        {"-CFGFOREIGN -CLEAR -SILENT", "Invalid input: the command line is not complete"},
        {"-CFGFOREIGN -CLEAR -A1 -SILENT", "User specified controller is not present."},
        {"-CFGFOREIGN -SCAN", "Invalid input: the command line is not complete"},
        {"-CFGFOREIGN -SCAN -CLEAR -A0", "Invalid input at or near token -CLEAR"},
        {"-CFGFOREIGN -SCAN -A1", "User specified controller is not present."},
    };
    for (const auto& row : rows) {
        Server server = megaTestServer();
        const std::string before = dump(server.controllers.front());
        const PlayResult result = megacli(server, row.options);
        EXPECT_EQ(result.exitCode, 1) << row.options;
        EXPECT_EQ(result.output,
                  std::string(37, ' ') + "\n" + row.message + "\n\nExit Code: 0x01\n")
            << row.options;
        EXPECT_FALSE(result.changed);
        EXPECT_EQ(dump(server.controllers.front()), before) << row.options;
    }
}

TEST(MegacliCommand, HotSpares) {
    Server server = megaTestServer();
    const PlayResult result = megacli(server, "-PDHSP { -Set } -PhysDrv[ 8:0,:1 ] -a0");
    EXPECT_EQ(result.output,
              std::string(37, ' ') +
                  "\nAdapter: 0: Set Physical Drive at EnclId-8 SlotId-0 as Hot Spare Success.\n"
                  "Adapter: 0: Set Physical Drive at SlotId-1 as Hot Spare Success.\n"
                  "\nExit Code: 0x00\n");
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(server.controllers[0].driveAt({8, 0})->status, DriveStatus::hotspare);
    EXPECT_EQ(server.controllers[0].driveAt({std::nullopt, 1})->status, DriveStatus::hotspare);

    // All of them or none.
    const struct {
        const char* list;
        int exitCode;
    } rows[] = {{"8:1,8:0", 0x26},
                {"8:1,8:11", 0x0c},
                {"8:1,0:0", 0x0c},
                {"8:1,8:1", 0x03},
                {"8:1,9:2", 0x26}};
    for (const auto& row : rows) {
        const PlayResult refused =
            megacli(server, formatted("-PDHSP -Set -PhysDrv [%s] -a0", row.list));
        EXPECT_EQ(refused.exitCode, row.exitCode) << row.list;
        EXPECT_NE(refused.output.find("Set Physical Drive as Hot Spare Failed"), std::string::npos);
        EXPECT_FALSE(refused.changed);
        EXPECT_EQ(server.controllers[0].driveAt({8, 1})->status, DriveStatus::good) << row.list;
    }
}

TEST(MegacliCommand, ZeroIsAnEnclosureWhereThereIsOne) {
    Server server = serverOf(
        definitionWith(R"({"slot": 0, "sizeMB": 10}, {"enclosure": 0, "slot": 0, "sizeMB": 20})"));
    EXPECT_EQ(megacli(server, "-CfgLdAdd R0 [0:0] -a0").exitCode, 0);
    EXPECT_EQ(raidDrivesOf(server), "RAID0 [0:0] 20MB 64kB WT NORA");
    EXPECT_EQ(megacli(server, "-CfgLdAdd R0 [:0] -a0").exitCode, 0);
    EXPECT_EQ(raidDrivesOf(server), "RAID0 [0:0] 20MB 64kB WT NORA | RAID0 [:0] 10MB 64kB WT NORA");
}

// Most servers have several virtual disks on one group of drives. A second one was refused, and a
// deployment of a captured server stopped half built.
TEST(MegacliCommand, FurtherVirtualDisksOnAnArray) {
    Server server = megaTestServer();
    const auto add = [&server](const char* options) { return megacli(server, options).exitCode; };
    EXPECT_EQ(add("-CfgLdAdd R5 [8:0,8:1,8:2] -sz500 -a0"), 0);
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:2,8:0,8:1] WB {-sz600} -a0").output,
              std::string(37, ' ') + "\nAdapter 0: Created VD 1\n\n"
                                     "Adapter 0: Configured the Adapter!!\n\nExit Code: 0x00\n");
    // Room for 900 MB is left.
    const PlayResult refused = megacli(server, "-CfgLdAdd R5 [8:0,8:1,8:2] -sz901 -a0");
    EXPECT_EQ(refused.exitCode, 0x1d);
    EXPECT_FALSE(refused.changed);
    EXPECT_NE(refused.output.find("A size of 901 MB does not fit: the array has room for 900 MB."),
              std::string::npos);
    // Other drives than all of the array's are taken.
    for (const char* others : {"8:0,8:1", "8:0,8:1,8:3", "8:0,8:1,8:2,8:3"}) {
        EXPECT_EQ(add(formatted("-CfgLdAdd R0 [%s] -sz10 -a0", others).c_str()), 0x26) << others;
    }
    EXPECT_EQ(add("-CfgLdAdd R5 [8:0,8:1,8:2] -strpsz 4 -a0"), 0x1c);
    EXPECT_EQ(add("-CfgLdAdd R5 [8:0,8:1,8:2] -a0"), 0);
    EXPECT_EQ(add("-CfgLdAdd R5 [8:0,8:1,8:2] -a0"), 0x1d);
    EXPECT_EQ(add("-CfgLdAdd R5 [8:0,8:1,8:2] -sz1 -a0"), 0x1d);
    const Controller& controller = server.controllers.front();
    EXPECT_EQ(controller.arrays.size(), 1U);
    std::string sizes;
    for (const LogicalDrive& drive : controller.logicalDrives) {
        sizes += std::to_string(drive.array) + ":" + std::to_string(drive.sizeMb) + " ";
    }
    EXPECT_EQ(sizes, "0:500 0:600 0:900 ");
}

TEST(MegacliCommand, FurtherVirtualDisksOverSpans) {
    Server server = megaTestServer();
    const auto add = [&server](const char* options) { return megacli(server, options).exitCode; };
    EXPECT_EQ(add("-CfgSpanAdd R10 -Array0[8:0,8:1] -Array1[8:2,8:3] -sz500 -a0"), 0);
    EXPECT_EQ(add("-CfgSpanAdd R10 -Array0[8:1,8:0] -Array1[8:2,8:3] -sz600 -a0"), 0);
    // The same drives in other spans are no further virtual disk of the array.
    EXPECT_EQ(add("-CfgSpanAdd R10 -Array0[8:0,8:2] -Array1[8:1,8:3] -sz10 -a0"), 0x26);
    EXPECT_EQ(add("-CfgLdAdd R0 [8:0,8:1,8:2,8:3] -sz10 -a0"), 0x26);
    EXPECT_EQ(server.controllers.front().arrays.size(), 1U);
    EXPECT_EQ(server.controllers.front().logicalDrives.size(), 2U);
}

TEST(MegacliCommand, AnArrayWithAFailedDriveTakesNoFurtherVirtualDisk) {
    Server server = megaTestServer(R"("virtualDisks": [{"level": "RAID5",
        "spans": [["8:0", "8:1", "9:1"]], "sizeMB": 100}],)");
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:0,8:1,9:1] -sz10 -a0").exitCode, 0x26);
}

/// The numbers of the logical drives with their arrays and sizes, and how many arrays there are.
std::string numbersOf(const Server& server) {
    const Controller& controller = server.controllers.front();
    std::string text;
    for (std::size_t place = 0; place < controller.logicalDrives.size(); ++place) {
        const LogicalDrive& drive = controller.logicalDrives[place];
        text += formatted("%zu@%zu:%lld ", controller.numberOf(place), drive.array,
                          static_cast<long long>(drive.sizeMb));
    }
    return text + formatted("of %zu", controller.arrays.size());
}

/// Two logical drives on three drives, one on a drive outside every enclosure, one on a mirror
/// whose second drive has failed.
Server serverToThinOut() {
    return megaTestServer(R"("virtualDisks": [
        {"level": "RAID5", "spans": [["8:0", "8:1", "8:2"]], "sizeMB": 500},
        {"level": "RAID0", "spans": [[":1"]]},
        {"level": "RAID5", "array": 0, "sizeMB": 600},
        {"level": "RAID1", "spans": [["8:4", "9:1"]]}],)");
}

TEST(MegacliCommand, DeletesSingleVirtualDisks) {
    Server server = serverToThinOut();
    EXPECT_EQ(numbersOf(server), "0@0:500 1@1:500 2@0:600 3@2:1000 of 3");
    // The array stays as long as it holds another one, and so do the numbers.
    PlayResult result = megacli(server, "-CfgLdDel -L0 -a0");
    EXPECT_EQ(result.output, std::string(37, ' ') +
                                 "\nAdapter 0: Deleted Virtual Drive-0(target id-0)\n"
                                 "\nExit Code: 0x00\n");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(numbersOf(server), "1@1:500 2@0:600 3@2:1000 of 3");
    EXPECT_EQ(server.controllers[0].driveAt({8, 0})->status, DriveStatus::online);
    // The last one frees the drives; a failed one stays what it is.
    result = megacli(server, "-cfglddel -L 3 , 2 -a0");
    EXPECT_EQ(result.output, std::string(37, ' ') +
                                 "\nAdapter 0: Deleted Virtual Drive-3(target id-3)\n"
                                 "Adapter 0: Deleted Virtual Drive-2(target id-2)\n"
                                 "\nExit Code: 0x00\n");
    EXPECT_EQ(numbersOf(server), "1@0:500 of 1");
    EXPECT_EQ(dump(server.controllers[0]),
              "8:0=good | 8:1=good | 8:2=good | 8:3=good | 8:4=good | 8:5=good | 8:6=good | "
              "8:7=good | 8:8=good | :0=good | :1=online | 9:0=bad | 9:1=failed | 9:2=foreign | "
              "9:3=hotspare | RAID0 [:1] 500MB 64kB WT NORA");
    // New ones take the lowest free number.
    EXPECT_EQ(megacli(server, "-CfgLdAdd R1 [8:0,8:1] -a0").output,
              std::string(37, ' ') + "\nAdapter 0: Created VD 0\n\n"
                                     "Adapter 0: Configured the Adapter!!\n\nExit Code: 0x00\n");
    EXPECT_NE(megacli(server, "-CfgLdAdd R0 [8:2] -a0").output.find("Created VD 2\n"),
              std::string::npos);
    EXPECT_EQ(numbersOf(server), "0@1:1000 1@0:500 2@2:1000 of 3");
    EXPECT_EQ(megacli(server, "-CfgLdDel -L0,1,2 -a0").exitCode, 0);
    EXPECT_EQ(numbersOf(server), "of 0");
}

TEST(MegacliCommand, WhatADeletedVirtualDiskTookIsFreeForAnother) {
    Server server = serverToThinOut();
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:0,8:1,8:2] -sz1401 -a0").exitCode, 0x1d);
    EXPECT_EQ(megacli(server, "-CfgLdDel -L0 -a0").exitCode, 0);
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:0,8:1,8:2] -sz1401 -a0").exitCode, 0x1d);
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:0,8:1,8:2] -sz1400 -a0").exitCode, 0);
    EXPECT_EQ(numbersOf(server), "0@0:1400 1@1:500 2@0:600 3@2:1000 of 3");
}

TEST(MegacliCommand, RefusesToDeleteWhatIsNotThere) {
    const struct {
        const char* numbers;
        int exitCode;
        const char* reason;
    } rows[] = {{"4", 0x0c, "There is no virtual disk 4."},
                {"0,9", 0x0c, "There is no virtual disk 9."},
                {"999999999999999999", 0x0c, "There is no virtual disk 999999999999999999."},
                {"0,1,0", 0x03, "The virtual disk 0 is named twice."}};
    for (const auto& row : rows) {
        Server server = serverToThinOut();
        const std::string before = dump(server.controllers.front());
        const PlayResult result = megacli(server, formatted("-CfgLdDel -L%s -a0", row.numbers));
        EXPECT_EQ(result.exitCode, row.exitCode) << row.numbers;
        EXPECT_EQ(result.output, std::string(37, ' ') +
                                     "\nAdapter 0: Delete Virtual Drive Failed\n\n"
                                     "FW error description: \n  " +
                                     row.reason +
                                     formatted("  \n\nExit Code: 0x%02x\n", row.exitCode));
        EXPECT_FALSE(result.changed) << row.numbers;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.numbers;
    }
    Server server = serverToThinOut();
    EXPECT_EQ(megacli(server, "-CfgLdDel -L2 -a0").exitCode, 0);
    EXPECT_EQ(megacli(server, "-CfgLdDel -L2 -a0").exitCode, 0x0c);
}

TEST(MegacliCommand, RemovesHotSpares) {
    Server server = megaTestServer();
    EXPECT_EQ(megacli(server, "-PDHSP { -Set } -PhysDrv[ :0,8:3 ] -a0").exitCode, 0);
    // All of them or none.
    const struct {
        const char* list;
        int exitCode;
        const char* reason;
    } rows[] = {
        {"9:3,8:0", 0x32, "The physical disk at 8:0 is no hot spare: it is good."},
        {"9:3,9:2", 0x32, "The physical disk at 9:2 is no hot spare: it is foreign."},
        {":1", 0x32, "The physical disk at :1 is no hot spare: it is good."},
        {"9:3,0:0", 0x0c, "There is no physical disk at 0:0."},
        {"9:3,9:3", 0x03, "The physical disk at 9:3 is named twice."},
    };
    for (const auto& row : rows) {
        const std::string before = dump(server.controllers.front());
        const PlayResult result =
            megacli(server, formatted("-PDHSP -Rmv -PhysDrv[%s] -a0", row.list));
        EXPECT_EQ(result.exitCode, row.exitCode) << row.list;
        EXPECT_EQ(result.output, std::string(37, ' ') +
                                     "\nAdapter 0: Remove Physical Drive as Hot Spare Failed\n\n"
                                     "FW error description: \n  " +
                                     row.reason +
                                     formatted("  \n\nExit Code: 0x%02x\n", row.exitCode));
        EXPECT_FALSE(result.changed) << row.list;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.list;
    }
    const PlayResult result = megacli(server, "-pdhsp -rmv -physdrv [ 9:3 , :0 ] -a0");
    EXPECT_EQ(result.output,
              std::string(37, ' ') +
                  "\nAdapter: 0: Remove Physical Drive at EnclId-9 SlotId-3 as Hot Spare Success.\n"
                  "Adapter: 0: Remove Physical Drive at SlotId-0 as Hot Spare Success.\n"
                  "\nExit Code: 0x00\n");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(dump(server.controllers[0]),
              "8:0=good | 8:1=good | 8:2=good | 8:3=hotspare | 8:4=good | 8:5=good | 8:6=good | "
              "8:7=good | 8:8=good | :0=good | :1=good | 9:0=bad | 9:1=failed | 9:2=foreign | "
              "9:3=good");
}

TEST(MegacliCommand, ClearsTheConfiguration) {
    Server server = megaTestServer(
        R"("virtualDisks": [{"level": "RAID5", "spans": [["8:0", "8:1", "9:1"]]}],)");
    EXPECT_EQ(dump(server.controllers[0]).find("9:1=failed") != std::string::npos, true);
    const PlayResult result = megacli(server, "-CFGCLR -A0 -SILENT");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, std::string(37, ' ') + "\nAdapter 0: Configuration is Cleared.\n"
                                                    "\nExit Code: 0x00\n");
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(dump(server.controllers[0]),
              "8:0=good | 8:1=good | 8:2=good | 8:3=good | 8:4=good | 8:5=good | 8:6=good | "
              "8:7=good | 8:8=good | :0=good | :1=good | 9:0=bad | 9:1=failed | 9:2=foreign | "
              "9:3=good");
}

TEST(MegacliCommand, ClearsForeignDrives) {
    Server server = megaTestServer();
    const PlayResult first = megacli(server, "-CFGFOREIGN -CLEAR -A0 -SILENT");
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_TRUE(first.changed);
    EXPECT_EQ(first.output, std::string(37, ' ') +
                                "\nForeign configuration 0 is cleared on controller 0.\n"
                                "\nExit Code: 0x00\n");
    EXPECT_EQ(server.controllers[0].driveAt({9, 2})->status, DriveStatus::good);
    const PlayResult second = megacli(server, "-CfgForeign -Clear -a0");
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_FALSE(second.changed);
    EXPECT_EQ(second.output, std::string(37, ' ') +
                                 "\nThere is no foreign configuration on controller 0.\n"
                                 "\nExit Code: 0x00\n");
}

TEST(MegacliCommand, CountsAndClearsForeignConfigurations) {
    const char* foreign = R"(
        {"enclosure": 8, "slot": 0, "count": 4, "sizeMB": 1000, "status": "foreign"},
        {"slot": 0, "count": 2, "sizeMB": 1000, "status": "foreign"},
        {"slot": 2, "sizeMB": 1000})";
    const struct {
        const char* configurations;
        int count;
    } rows[] = {
        // Foreign drives of unknown content are one configuration together.
        {"", 1},
        {R"("foreignConfigurations": [{"level": "RAID5", "missing": 1, "drives": ["8:0", "8:1"]}],)",
         2},
        {R"("foreignConfigurations": [{"level": "RAID1", "drives": ["8:0", "8:1"]},
                                      {"level": "RAID0", "drives": ["8:2", "8:3", ":0", ":1"]}],)",
         2},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionWith(foreign, row.configurations));
        const std::string before = dump(server.controllers[0]);
        const std::string there =
            std::string(37, ' ') +
            formatted("\nThere are %d foreign configuration(s) on controller 0.\n"
                      "\nExit Code: 0x00\n",
                      row.count);
        for (const char* scan : {"-CfgForeign -Scan -a0", "-CFGFOREIGN -SCAN -A0 -SILENT"}) {
            const PlayResult scanned = megacli(server, scan);
            EXPECT_EQ(scanned.output, there);
            EXPECT_EQ(scanned.exitCode, 0);
            EXPECT_FALSE(scanned.changed);
            EXPECT_EQ(dump(server.controllers[0]), before);
        }
        const PlayResult cleared = megacli(server, "-CFGFOREIGN -CLEAR -A0 -SILENT");
        std::string text = std::string(37, ' ') + "\n";
        for (int i = 0; i < row.count; ++i) {
            text += formatted("Foreign configuration %d is cleared on controller 0.\n", i);
        }
        EXPECT_EQ(cleared.output, text + "\nExit Code: 0x00\n");
        EXPECT_TRUE(cleared.changed);
        EXPECT_EQ(dump(server.controllers[0]),
                  "8:0=good | 8:1=good | 8:2=good | 8:3=good | :0=good | :1=good | :2=good");
        const PlayResult none = megacli(server, "-CfgForeign -Scan -a0");
        EXPECT_EQ(none.output, std::string(37, ' ') +
                                   "\nThere is no foreign configuration on controller 0.\n"
                                   "\nExit Code: 0x00\n");
        EXPECT_EQ(none.exitCode, 0);
    }
}

TEST(MegacliCommand, AdaptersFollowThePciListing) {
    const char* controller = R"({"utility": "megacli", "model": "M%d", "productName": "Product %d",
        "pci": {"bus": %d, "device": %d, "function": %d, "vendorId": 1, "deviceId": 2},
        "drives": [{"slot": %d, "sizeMB": 100}]})";
    const std::string list = formatted(controller, 0, 0, 3, 0, 0, 0) + "," +
                             formatted(controller, 1, 1, 2, 9, 0, 1) + "," +
                             formatted(controller, 2, 2, 2, 1, 1, 2) + "," +
                             formatted(controller, 3, 3, 2, 1, 0, 3);
    Server server =
        serverOf(R"({"machineType": "1", "serialNumber": "2", "controllers": [)" + list + "]}");
    const int expected[] = {3, 2, 1, 0};
    for (int adapter = 0; adapter < 4; ++adapter) {
        const std::string listing = megacli(server, formatted("-AdpAllInfo -a%d", adapter)).output;
        EXPECT_NE(listing.find(formatted("Adapter #%d\n", adapter)), std::string::npos);
        EXPECT_NE(listing.find(formatted("Product %d\n", expected[adapter])), std::string::npos);
        EXPECT_EQ(megacli(server, formatted("-CfgLdAdd R0 [:%d] -a%d", expected[adapter], adapter))
                      .exitCode,
                  0);
    }
    EXPECT_EQ(megacli(server, "-AdpAllInfo -a4").exitCode, 1);
}

} // namespace
} // namespace zolex_sim::test
