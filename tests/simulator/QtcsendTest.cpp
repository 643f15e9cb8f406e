#include "setup/Samples.h"
#include "simulator/BlockSupport.h"

namespace zolex_sim::test {
namespace {

constexpr const char* qtcsendTitle = "Norvik Kestrix Send Utility 7.12.02\n";

std::string completed(const std::string& text) {
    return qtcsendTitle + text + "\nCommand completed successfully.\n";
}

std::string failedWith(const std::string& reason) {
    return qtcsendTitle + ("Error: " + reason) + "\n\nCommand failed.\n";
}

PlayResult qtcsend(Server& server, const std::string& options) {
    return play(server, "QTCSEND " + options);
}

std::string driveBlock(int id, const char* state, const char* sizes, const char* serial,
                       const char* model) {
    return formatted("      Target on SCSI ID %d\n"
                     "         Device is a Hard disk\n"
                     "         SCSI ID                           : %d\n"
                     "         State                             : %s\n"
                     "         Size (in MB)/(in sectors)         : %s\n"
                     "         Serial No                         : %s\n"
                     "         Device ID                         : NORVIK  %s\n",
                     id, id, state, sizes, serial, model);
}

// Two arrays, of which one holds two logical drives and the other has lost a drive; no drive on the
// second channel.
constexpr const char* someDrives = R"(
    {"channel": 1, "id": 5, "count": 3, "sizeMB": 17357, "model": "NV18401S", "serial": "NV1"},
    {"channel": 3, "id": 0, "sizeMB": 17358, "rawSectors": 35550300, "model": "NV18401S",
     "serial": "NV2"},
    {"channel": 3, "id": 1, "sizeMB": 17357, "serial": "NV3", "status": "failed"},
    {"channel": 3, "id": 9, "sizeMB": 34715, "serial": "NV4", "status": "hotspare"},
    {"channel": 3, "id": 15, "sizeMB": 100, "serial": "NV5"})";
constexpr const char* someFields = R"(
    "bios": "7.12.02", "firmware": "7.12.05", "physicalSlot": 4, "controllerName": "BLUE",
    "rebuildPriority": "Medium", "defaultReadPolicy": "RA", "defaultStripeKB": 32,
    "virtualDisks": [
      {"level": "RAID5", "spans": [["1:6", "1:5", "1:8"]], "sizeMB": 20000, "stripeKB": 8},
      {"level": "RAID1", "spans": [["3:0", "3:1"]], "writePolicy": "WB"},
      {"level": "RAID0", "array": 0}],)";

TEST(QtcsendListing, ShowsEverything) {
    Server server = serverOf(definitionOf("QTCSEND", someDrives, someFields));
    const std::string ruler = std::string(72, '-') + "\n";
    const PlayResult result = qtcsend(server, "GETCONFIG 1 AL");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.changed);
    EXPECT_EQ(result.output,
              completed("Read configuration has been initiated for controller 1\n" + ruler +
                        "Controller information\n" + ruler +
                        "   Controller type                         : M\n"
                        "   BIOS version                            : 7.12.02\n"
                        "   Firmware version                        : 7.12.05\n"
                        "   Channel description                     : 3 parallel SCSI\n"
                        "   Initiator IDs (Channel/SCSI ID)         : 1/7 2/7 3/7\n"
                        "   Maximum physical devices                : 45\n"
                        "   Defunct disk drive count                : 1\n"
                        "   Logical drives/Offline/Critical         : 3/0/1\n"
                        "   Slot                                    : 4\n"
                        "   Controller name                         : BLUE\n"
                        "   Rebuild rate                            : Medium\n"
                        "   Readahead cache setting                 : Enabled\n"
                        "   Stripe-unit size                        : 32 KB\n"
                        "   Battery backup                          : Not installed\n" +
                        ruler + "Logical drive information\n" + ruler +
                        "   Logical drive number 1\n"
                        "      Status of logical drive              : Okay (OKY)\n"
                        "      RAID level                           : 5\n"
                        "      Size (in MB)                         : 20000\n"
                        "      Write cache status                   : Write through (WT)\n"
                        "      Number of chunks                     : 3\n"
                        "      Stripe-unit size                     : 8 KB\n"
                        "      Part of array                        : A\n"
                        "   Logical drive number 2\n"
                        "      Status of logical drive              : Degraded (DGD)\n"
                        "      RAID level                           : 1\n"
                        "      Size (in MB)                         : 17357\n"
                        "      Write cache status                   : Write back (WB)\n"
                        "      Number of chunks                     : 2\n"
                        "      Stripe-unit size                     : 32 KB\n"
                        "      Part of array                        : B\n"
                        "   Logical drive number 3\n"
                        "      Status of logical drive              : Okay (OKY)\n"
                        "      RAID level                           : 0\n"
                        "      Size (in MB)                         : 22071\n"
                        "      Write cache status                   : Write through (WT)\n"
                        "      Number of chunks                     : 3\n"
                        "      Stripe-unit size                     : 32 KB\n"
                        "      Part of array                        : A\n"
                        "   Array A                                 : 1,6 1,5 1,8\n"
                        "   Array B                                 : 3,0 3,1\n" +
                        ruler + "Physical device information\n" + ruler +
                        "   Channel #1:\n"
                        "      Initiator at SCSI ID 7\n" +
                        driveBlock(5, "Online (ONL)", "17357/35547136", "NV1000", "NV18401S") +
                        driveBlock(6, "Online (ONL)", "17357/35547136", "NV1001", "NV18401S") +
                        driveBlock(8, "Online (ONL)", "17357/35547136", "NV1002", "NV18401S") +
                        "   Channel #2:\n"
                        "      Initiator at SCSI ID 7\n"
                        "   Channel #3:\n"
                        "      Initiator at SCSI ID 7\n" +
                        driveBlock(0, "Online (ONL)", "17358/35550300", "NV2", "NV18401S") +
                        driveBlock(1, "Defunct (DDD)", "17357/35547136", "NV3", "NV73455S") +
                        driveBlock(9, "Hot Spare (HSP)", "34715/71096320", "NV4", "NV73455S") +
                        driveBlock(15, "Ready (RDY)", "100/204800", "NV5", "NV73455S")));
}

TEST(QtcsendListing, LongArraysGoOnBelow) {
    Server server =
        serverOf(definitionOf("QTCSEND", R"({"channel": 1, "id": 0, "count": 15, "sizeMB": 10},
                                            {"channel": 2, "id": 10, "count": 2, "sizeMB": 10})"));
    ASSERT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1 0 1 1 1 2 1 3 1 4 1 5 1 6 "
                              "1 8 1 9 1 10 1 11 1 12 1 13 1 14 2 10 2 11 NOPROMPT")
                  .exitCode,
              0);
    EXPECT_NE(qtcsend(server, "GETCONFIG 1 AL")
                  .output.find("   Array A                                 : 1,0 1,1 1,2 1,3 1,4 "
                               "1,5 1,6 1,8\n"
                               "                                             1,9 1,10 1,11 1,12 "
                               "1,13 1,14 2,10 2,11\n"),
              std::string::npos);
}

TEST(QtcsendListing, SettingsOfTheController) {
    const struct {
        const char* fields;
        const char* lines;
    } rows[] = {
        {"", "   Slot                                    : Unknown\n"
             "   Controller name                         : Null Config\n"
             "   Rebuild rate                            : High\n"
             "   Readahead cache setting                 : Adaptive\n"
             "   Stripe-unit size                        : 16 KB\n"},
        {R"("physicalSlot": 0, "controllerName": "", "rebuildPriority": "Low",
            "defaultReadPolicy": "NORA", "defaultStripeKB": 8,)",
         "   Slot                                    : 0\n"
         "   Controller name                         : \n"
         "   Rebuild rate                            : Low\n"
         "   Readahead cache setting                 : Disabled\n"
         "   Stripe-unit size                        : 8 KB\n"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf("QTCSEND", "", row.fields));
        const std::string listing = qtcsend(server, "GETCONFIG 1 AL").output;
        EXPECT_NE(listing.find(row.lines), std::string::npos) << listing;
        EXPECT_NE(listing.find("   Channel #1:\n"), std::string::npos);
        EXPECT_EQ(listing.find("   Channel #2:\n"), std::string::npos);
    }
}

// Ten drives on two channels, and one of each kind that is not free.
constexpr const char* qtcsendDrives = R"(
    {"channel": 1, "id": 0, "count": 7, "sizeMB": 1000},
    {"channel": 2, "id": 0, "count": 3, "sizeMB": 901},
    {"channel": 4, "id": 0, "sizeMB": 1000, "status": "bad"},
    {"channel": 4, "id": 1, "sizeMB": 1000, "status": "failed"})";
constexpr const char* qtcsendNotFree = "4:0=bad | 4:1=failed | ";

TEST(QtcsendCommand, CreatesOnANewArray) {
    const CommandRow rows[] = {
        {"NEWARRAY MAX 5 1 0 1 1 1 2 NOPROMPT", "RAID5 [1:0,1:1,1:2] 2000MB"},
        {"NEWARRAY 1500 5 1 2 1 1 2 0 NOPROMPT", "RAID5 [1:2,1:1,2:0] 1500MB"},
        {"NEWARRAY MAX 0 1 0 NOPROMPT", "RAID0 [1:0] 1000MB"},
        {"NEWARRAY MAX 0 1 0 2 1 NOPROMPT", "RAID0 [1:0,2:1] 1802MB"},
        {"NEWARRAY MAX 1 2 1 1 6 NOPROMPT", "RAID1 [2:1,1:6] 901MB"},
        {"NEWARRAY MAX 1E 1 0 1 1 2 0 NOPROMPT", "RAID1E [1:0,1:1,2:0] 1351MB"},
        {"NEWARRAY MAX 1E 1 0 1 1 1 2 1 3 NOPROMPT", "RAID1E [1:0,1:1,1:2,1:3] 2000MB"},
        {"NEWARRAY MAX 5E 1 0 1 1 1 2 1 3 NOPROMPT", "RAID5E [1:0,1:1,1:2,1:3] 2000MB"},
        {"NEWARRAY MAX 5EE 1 0 1 1 1 2 1 3 1 4 NOPROMPT", "RAID5EE [1:0,1:1,1:2,1:3,1:4] 3000MB"},
        {"newarray max 5ee 1 0 1 1 1 2 1 3 noprompt", "RAID5EE [1:0,1:1,1:2,1:3] 2000MB"},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
        const PlayResult result =
            qtcsend(server, std::string("CREATE 1 LOGICALDRIVE ") + row.command);
        EXPECT_EQ(result.output, completed("Logical drive 1 has been created on array A.\n"))
            << row.command;
        EXPECT_EQ(result.exitCode, 0) << row.command;
        EXPECT_TRUE(result.changed) << row.command;
        EXPECT_EQ(layoutOf(server), qtcsendNotFree + std::string(row.result)) << row.command;
        EXPECT_EQ(server.controllers[0].logicalDrives[0].stripeKb, 16);
    }
}

/// What is left on an array, by the level that is to take it.
TEST(QtcsendCommand, CreatesMoreLogicalDrivesOnAnArray) {
    const struct {
        const char* first;   ///< size and level on the array of four drives of 1000 MB
        const char* further; ///< size and level of the second
        const char* result;  ///< of the second; a reason when it is refused
    } rows[] = {
        {"1000 5", "MAX 5", "RAID5 2000MB"},
        {"1000 5", "2000 5", "RAID5 2000MB"},
        {"1000 5", "2001 5", "A size of 2001 MB does not fit: the array has room for 2000 MB."},
        {"1000 5", "0 5", "A size of 0 MB does not fit: the array has room for 2000 MB."},
        // 1000 MB of RAID 5 take 1333.3 of the 4000 MB; what is left of a MB counts as one.
        {"1000 5", "MAX 0", "RAID0 2667MB"},
        {"1000 5", "2668 0", "A size of 2668 MB does not fit: the array has room for 2667 MB."},
        {"1000 5", "MAX 1E", "RAID1E 1334MB"},
        {"1 0", "MAX 1E", "RAID1E 2000MB"},
        {"2 0", "MAX 1E", "RAID1E 1999MB"},
        {"MAX 5", "1 5", "A size of 1 MB does not fit: the array has room for 0 MB."},
        {"MAX 5", "MAX 5", "A size of 0 MB does not fit: the array has room for 0 MB."},
        {"1000 5", "100 1", "RAID1 takes 2 to 2 physical disks in a span, not 4."},
        {"1000 5", "100 5E", "RAID5E takes an array to itself."},
        {"1000 5EE", "100 5", "RAID5EE takes an array to itself."},
        {"1000 5", "100 10", "RAID10 is not supported by this controller."},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
        ASSERT_EQ(qtcsend(server, std::string("CREATE 1 LOGICALDRIVE NEWARRAY ") + row.first +
                                      " 1 0 1 1 1 2 1 3 NOPROMPT")
                      .exitCode,
                  0);
        const std::string before = dump(server.controllers[0]);
        const PlayResult result =
            qtcsend(server, std::string("CREATE 1 LOGICALDRIVE A ") + row.further + " NOPROMPT");
        if (result.exitCode == 0) {
            const LogicalDrive& drive = server.controllers[0].logicalDrives.back();
            EXPECT_EQ(drive.array, 0U);
            EXPECT_EQ(result.output, completed("Logical drive 2 has been created on array A.\n"));
            EXPECT_EQ(formatted("%s %lldMB", std::string(rulesOf(drive.level).name).c_str(),
                                static_cast<long long>(drive.sizeMb)),
                      row.result)
                << row.first << ", " << row.further;
        } else {
            EXPECT_EQ(result.output, failedWith(row.result)) << row.first << ", " << row.further;
            EXPECT_EQ(dump(server.controllers[0]), before);
        }
    }
}

TEST(QtcsendCommand, HalfAMbOfAnOddMirrorIsNotLost) {
    // Three drives of 901 MB keep 1351.5 MB of an enhanced mirror.
    Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
    ASSERT_EQ(
        qtcsend(server, "CREATE 1 LOGICALDRIVE NEWARRAY 351 1E 2 0 2 1 2 2 NOPROMPT").exitCode, 0);
    ASSERT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE A 1001 1E NOPROMPT").exitCode, 0);
    EXPECT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE A 1 1E NOPROMPT").output,
              failedWith("A size of 1 MB does not fit: the array has room for 0 MB."));
}

TEST(QtcsendCommand, RefusesWithAReasonAndChangesNothing) {
    const CommandRow rows[] = {
        {"NEWARRAY MAX 1 1 0 3 0 NOPROMPT", "There is no physical disk at 3:0."},
        {"NEWARRAY MAX 1 1 0 1 7 NOPROMPT", "There is no physical disk at 1:7."},
        {"NEWARRAY MAX 1 1 0 1 0 NOPROMPT", "The physical disk at 1:0 is named twice."},
        {"NEWARRAY MAX 1 1 0 4 0 NOPROMPT", "The physical disk at 4:0 is not free: it is bad."},
        {"NEWARRAY MAX 1 1 0 4 1 NOPROMPT", "The physical disk at 4:1 is not free: it is failed."},
        {"NEWARRAY MAX 1 1 0 1 6 NOPROMPT", "The physical disk at 1:6 is not free: it is online."},
        {"NEWARRAY MAX 1 1 0 2 2 NOPROMPT",
         "The physical disk at 2:2 is not free: it is hotspare."},
        {"NEWARRAY MAX 1 1 0 1 1 1 2 NOPROMPT",
         "RAID1 takes 2 to 2 physical disks in a span, not 3."},
        {"NEWARRAY MAX 1E 1 0 1 1 NOPROMPT",
         "RAID1E takes 3 to 16 physical disks in a span, not 2."},
        {"NEWARRAY MAX 5 1 0 1 1 NOPROMPT", "RAID5 takes 3 to 16 physical disks in a span, not 2."},
        {"NEWARRAY MAX 5E 1 0 1 1 1 2 NOPROMPT",
         "RAID5E takes 4 to 16 physical disks in a span, not 3."},
        {"NEWARRAY MAX 5EE 1 0 1 1 1 2 NOPROMPT",
         "RAID5EE takes 4 to 16 physical disks in a span, not 3."},
        {"NEWARRAY MAX 6 1 0 1 1 1 2 1 3 NOPROMPT", "RAID6 is not supported by this controller."},
        {"NEWARRAY MAX 10 1 0 1 1 1 2 1 3 NOPROMPT", "RAID10 is not supported by this controller."},
        {"NEWARRAY MAX VOLUME 1 0 NOPROMPT", "VOLUME is not supported by this controller."},
        {"NEWARRAY 2001 5 1 0 1 1 1 2 NOPROMPT",
         "A size of 2001 MB does not fit: the array has room for 2000 MB."},
        {"NEWARRAY 0 5 1 0 1 1 1 2 NOPROMPT",
         "A size of 0 MB does not fit: the array has room for 2000 MB."},
        {"B MAX 5 NOPROMPT", "There is no such array."},
        {"H MAX 5 NOPROMPT", "There is no such array."},
    };
    for (const CommandRow& row : rows) {
        Server server =
            serverOf(definitionOf("QTCSEND", qtcsendDrives,
                                  R"("virtualDisks": [{"level": "RAID0", "spans": [["1:6"]]}],)"));
        ASSERT_EQ(qtcsend(server, "SETSTATE 1 2 2 HSP").exitCode, 0);
        const std::string before = dump(server.controllers.front());
        const PlayResult result =
            qtcsend(server, std::string("CREATE 1 LOGICALDRIVE ") + row.command);
        EXPECT_EQ(result.exitCode, 1) << row.command;
        EXPECT_EQ(result.output, failedWith(row.result)) << row.command;
        EXPECT_FALSE(result.changed) << row.command;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.command;
    }
}

TEST(QtcsendCommand, RefusesWhatItDoesNotUnderstand) {
    constexpr const char* incomplete = "The command line is not complete.";
    const CommandRow rows[] = {
        {"", incomplete},
        {"LIST 1", "Unexpected parameter: LIST"},
        {"GETCONFIG", incomplete},
        {"GETCONFIG x AL", "Unexpected parameter: x"},
        {"GETCONFIG 1", incomplete},
        {"GETCONFIG 1 PD", "Unexpected parameter: PD"},
        {"GETCONFIG 1 AL now", "Unexpected parameter: now"},
        {"GETCONFIG 0 AL", "There is no controller 0."},
        {"GETCONFIG 2 AL", "There is no controller 2."},
        {"GETCONFIG 65536 AL", "Unexpected parameter: 65536"},
        {"CREATE 1", incomplete},
        {"CREATE 1 ARRAY", "Unexpected parameter: ARRAY"},
        {"CREATE 1 LOGICALDRIVE", incomplete},
        {"CREATE 1 LOGICALDRIVE I MAX 5 NOPROMPT", "Unexpected parameter: I"},
        {"CREATE 1 LOGICALDRIVE AA MAX 5 NOPROMPT", "Unexpected parameter: AA"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY", incomplete},
        {"CREATE 1 LOGICALDRIVE NEWARRAY -5 5 1 0 NOPROMPT", "Unexpected parameter: -5"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX", incomplete},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX ERROR 1 0 NOPROMPT", "Unexpected parameter: ERROR"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX RAID5 1 0 NOPROMPT", "Unexpected parameter: RAID5"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0", incomplete},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 NOPROMPT", "Unexpected parameter: NOPROMPT"},
        // A channel without an id.
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1 0 1 NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1 0 1", incomplete},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1 0", incomplete},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1,0 NOPROMPT", "Unexpected parameter: 1,0"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 -1 0 NOPROMPT", "Unexpected parameter: -1"},
        {"CREATE 1 LOGICALDRIVE NEWARRAY MAX 0 1 0 NOPROMPT NOPROMPT",
         "Unexpected parameter: NOPROMPT"},
        {"CREATE 2 LOGICALDRIVE NEWARRAY MAX 0 1 0 NOPROMPT", "There is no controller 2."},
        {"CREATE 1 LOGICALDRIVE A MAX 5", incomplete},
        {"CREATE 1 LOGICALDRIVE A MAX 5 1 0 NOPROMPT", "Unexpected parameter: 1"},
        {"SETSTATE 1", incomplete},
        {"SETSTATE 1 1", incomplete},
        {"SETSTATE 1 1 0", incomplete},
        {"SETSTATE 1 1 0 DDD", "Unexpected parameter: DDD"},
        {"SETSTATE 1 1 0 HSP NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"SETSTATE 2 1 0 HSP", "There is no controller 2."},
        {"SETCONFIG 1", incomplete},
        {"SETCONFIG 1 DEFAULT", incomplete},
        {"SETCONFIG 1 NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"SETCONFIG 1 DEFAULT NOPROMPT 1", "Unexpected parameter: 1"},
        {"SETCONFIG 2 DEFAULT NOPROMPT", "There is no controller 2."},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
        const std::string before = dump(server.controllers.front());
        const PlayResult result = qtcsend(server, row.command);
        EXPECT_EQ(result.exitCode, 1) << row.command;
        EXPECT_EQ(result.output, failedWith(row.result)) << row.command;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.command;
    }
}

TEST(QtcsendCommand, HotSpares) {
    Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
    const PlayResult result = qtcsend(server, "SETSTATE 1 2 1 HSP");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(result.output, completed("The drive at channel 2, SCSI ID 1 is a hot spare now.\n"));
    EXPECT_EQ(layoutOf(server), "2:1=hotspare | 4:0=bad | 4:1=failed");
    const CommandRow rows[] = {
        {"1 2 1 HSP", "The physical disk at 2:1 is not free: it is hotspare."},
        {"1 4 1 HSP", "The physical disk at 4:1 is not free: it is failed."},
        {"1 3 0 HSP", "There is no physical disk at 3:0."},
    };
    for (const CommandRow& row : rows) {
        EXPECT_EQ(qtcsend(server, std::string("SETSTATE ") + row.command).output,
                  failedWith(row.result));
    }
    for (int id = 0; id < 7; ++id) {
        EXPECT_EQ(qtcsend(server, formatted("SETSTATE 1 1 %d HSP", id)).exitCode, 0);
    }
    EXPECT_EQ(qtcsend(server, "SETSTATE 1 2 0 HSP").output,
              failedWith("The controller takes no more than 8 hot spares."));
}

TEST(QtcsendCommand, TakesEightLogicalDrivesAndEightArrays) {
    Server server = serverOf(definitionOf("QTCSEND", qtcsendDrives));
    ASSERT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE NEWARRAY 10 0 1 0 NOPROMPT").exitCode, 0);
    for (int number = 2; number <= 8; ++number) {
        EXPECT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE A 10 0 NOPROMPT").exitCode, 0);
    }
    EXPECT_EQ(qtcsend(server, "CREATE 1 LOGICALDRIVE A 10 0 NOPROMPT").output,
              failedWith("The controller takes no more than 8 virtual disks."));

    Server large = serverOf(definitionOf("QTCSEND", qtcsendDrives, R"("maxVirtualDisks": 20,)"));
    for (int id = 0; id < 7; ++id) {
        ASSERT_EQ(qtcsend(large, formatted("CREATE 1 LOGICALDRIVE NEWARRAY 10 0 1 %d NOPROMPT", id))
                      .exitCode,
                  0);
    }
    EXPECT_EQ(qtcsend(large, "CREATE 1 LOGICALDRIVE NEWARRAY 10 0 2 0 NOPROMPT").output,
              completed("Logical drive 8 has been created on array H.\n"));
    EXPECT_EQ(qtcsend(large, "CREATE 1 LOGICALDRIVE NEWARRAY 10 0 2 1 NOPROMPT").output,
              failedWith("The controller takes no more than 8 arrays."));
    EXPECT_EQ(qtcsend(large, "CREATE 1 LOGICALDRIVE H 10 0 NOPROMPT").output,
              completed("Logical drive 9 has been created on array H.\n"));
}

TEST(QtcsendCommand, SetsTheConfigurationToItsDefault) {
    Server server = serverOf(definitionOf("QTCSEND", someDrives, someFields));
    for (int time = 0; time < 2; ++time) { // the second time there is nothing left
        const PlayResult result = qtcsend(server, "SETCONFIG 1 DEFAULT NOPROMPT");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output,
                  completed("All arrays, logical drives and hot spares have been deleted.\n"));
        EXPECT_EQ(layoutOf(server), "3:1=failed");
    }
}

TEST(QtcsendCommand, ControllersFollowThePciListing) {
    const char* controller = R"({"utility": "QTCSEND", "model": "Kestrix-A%d",
        "pci": {"bus": %d, "device": 1, "vendorId": 1, "deviceId": 2}})";
    Server server =
        serverOf(R"({"machineType": "1", "serialNumber": "2", "controllers": [)" +
                 formatted(controller, 1, 9) + "," + formatted(controller, 2, 4) + "]}");
    EXPECT_NE(qtcsend(server, "GETCONFIG 1 AL").output.find(": Kestrix-A2\n"), std::string::npos);
    EXPECT_NE(qtcsend(server, "GETCONFIG 2 AL").output.find(": Kestrix-A1\n"), std::string::npos);
    EXPECT_EQ(qtcsend(server, "GETCONFIG 3 AL").exitCode, 1);
}

TEST(QtcsendCommand, TheStateIsKeptAcrossRuns) {
    const TemporaryFolder folder;
    folder.write("server.json", std::string(sampleNamed("qtcsend")->definition));
    const auto util = [&](const char* command) {
        return Runner(folder.path())(splitWords(std::string("util QTCSEND ") + command));
    };
    const std::string initial = util("GETCONFIG 1 AL").output;
    EXPECT_EQ(util("CREATE 1 LOGICALDRIVE NEWARRAY 4000 1 2 0 2 2 NOPROMPT").exitCode, 0);
    EXPECT_EQ(util("CREATE 1 LOGICALDRIVE B MAX 1 NOPROMPT").exitCode, 0);
    EXPECT_EQ(util("SETSTATE 1 1 3 HSP").exitCode, 0);
    EXPECT_EQ(util("SETSTATE 1 2 0 HSP").exitCode, 1);
    const std::string listing = util("GETCONFIG 1 AL").output;
    EXPECT_NE(listing.find("   Logical drives/Offline/Critical         : 4/0/0\n"),
              std::string::npos);
    EXPECT_NE(listing.find("      Size (in MB)                         : 30715\n"),
              std::string::npos)
        << listing;
    EXPECT_NE(listing.find("   Array A                                 : 1,0 1,1 1,2\n"
                           "   Array B                                 : 2,0 2,2\n"),
              std::string::npos);
    EXPECT_NE(listing.find("Hot Spare (HSP)"), std::string::npos);
    EXPECT_EQ(util("SETCONFIG 1 DEFAULT NOPROMPT").exitCode, 0);
    EXPECT_EQ(util("GETCONFIG 1 AL").output.find("Array"), std::string::npos);
    EXPECT_NE(initial.find("Array A"), std::string::npos);
}

} // namespace
} // namespace zolex_sim::test
