#include "model/State.h"
#include "simulator/ConfSupport.h"

namespace zolex_sim::test {
namespace {

// Twelve drives of one size, a smaller one, drives on other channels, and one of each kind that is
// not free.
constexpr const char* confDrives = R"(
    {"channel": 0, "device": 0, "count": 12, "sizeMB": 1000},
    {"channel": 0, "device": 12, "sizeMB": 900},
    {"channel": 1, "device": 5, "count": 2, "sizeMB": 1000},
    {"channel": 3, "device": 0, "sizeMB": 1000, "status": "bad"},
    {"channel": 3, "device": 1, "sizeMB": 1000, "status": "failed"},
    {"channel": 3, "device": 2, "sizeMB": 1000, "status": "foreign"},
    {"channel": 3, "device": 3, "sizeMB": 1000, "status": "hotspare"})";

Server testServer(const char* utility, const std::string& fields = "") {
    return ConfServer{utility, confDrives, fields}.server();
}

/// The logical drives of the first controller, with what only these utilities tell of them.
std::string logicalDrivesOf(const Server& server) {
    const std::string text = dump(server.controllers.front());
    const std::size_t levels = std::min(text.find(" RAID"), text.find(" VOLUME"));
    std::string found = levels == std::string::npos ? "" : text.substr(levels + 1);
    for (const LogicalDrive& drive : server.controllers.front().logicalDrives) {
        found += (drive.batteryProtected ? " protected " : " ") + drive.name;
    }
    return found;
}

std::string aborted(const std::string& reason, int controllers = 1) {
    return formatted("Controllers found: %d\n", controllers) + reason + "\n\nCommand aborted.\n";
}

/// Controllers found, what was done, and the end of a command that succeeds.
std::string succeeded(const std::string& text) {
    return "Controllers found: 1\n" + text + "\n\nCommand completed successfully.\n";
}

TEST(ConfCommand, Creates) {
    const struct {
        const char* commandLine;
        const char* result;
    } rows[] = {
        // As they come from a command line, blanks and all.
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 Method QUICK MAX 5 "
         "0 0 0 1 0 2 NOPROMPT ",
         "RAID5 [0:0,0:1,0:2] 2000MB 64kB WB RA ARRAY0_LOGICAL0"},
        {"ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method QUICK MAX 1 0 0 1 5 NOPROMPT ",
         "RAID1 [0:0,1:5] 1000MB 256kB WB RA ARRAY0_LOGICAL0"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 1024  Name A MAX 0 0 3 NOPROMPT",
         "RAID0 [0:3] 1000MB 1024kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 16 Name A Method QUICK 777 1E 0 0 0 1 0 2 "
         "NOPROMPT",
         "RAID1E [0:0,0:1,0:2] 777MB 16kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1E 0 0 0 1 0 2 NOPROMPT",
         "RAID1E [0:0,0:1,0:2] 1500MB 256kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 5EE 0 0 0 1 0 2 0 3 NOPROMPT",
         "RAID5EE [0:0,0:1,0:2,0:3] 2000MB 256kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 6 0 0 0 1 0 2 0 12 NOPROMPT",
         "RAID6 [0:0,0:1,0:2,0:12] 1800MB 256kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 10 0 0 0 1 0 2 0 3 0 4 0 5 NOPROMPT",
         "RAID10 [0:0,0:1][0:2,0:3][0:4,0:5] 3000MB 256kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 50 0 0 0 1 0 2 0 3 0 4 0 5 NOPROMPT",
         "RAID50 [0:0,0:1,0:2][0:3,0:4,0:5] 4000MB 256kB WB RA A"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 60 0 0 0 1 0 2 0 3 0 4 0 5 0 6 0 7 NOPROMPT",
         "RAID60 [0:0,0:1,0:2,0:3][0:4,0:5,0:6,0:7] 4000MB 256kB WB RA A"},
        // A volume has the whole room of each drive.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX VOLUME 0 0 0 12 NOPROMPT",
         "VOLUME [0:0,0:12] 1900MB 256kB WB RA A"},
        {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 32  Name ARRAY0_LOGICAL0 Init_Priority HIGH "
         "Init_Method QUICK MAX 10 0 0 0 1 1 5 1 6 NOPROMPT ",
         "RAID10 [0:0,0:1][1:5,1:6] 2000MB 32kB WB RA ARRAY0_LOGICAL0"},
        {"HRCONF CREATE 1 LOGICALDRIVE  Name A Init_Priority LOW MAX 1 0 0 0 1 NOPROMPT",
         "RAID1 [0:0,0:1] 1000MB 64kB WB RA A"},
        {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 64 Name A Init_Priority MED MAX 0 0 0 0 12 "
         "NOPROMPT",
         "RAID0 [0:0,0:12] 1800MB 64kB WB RA A"},
        {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 64 Name A Init_Priority HIGH MAX SIMPLE VOLUME "
         "0 0 NOPROMPT",
         "VOLUME [0:0] 1000MB 64kB WB RA A"},
        {"HRCONF CREATE 1 LOGICALDRIVE Name A MAX VOLUME 0 0 0 1 NOPROMPT",
         "VOLUME [0:0,0:1] 2000MB 64kB WB RA A"},
        // Any letter case, options in any order, or none.
        {"arcconf create 1 logicaldrive method quick name a stripesize 128 max 5 0 0 0 1 0 2 "
         "noprompt",
         "RAID5 [0:0,0:1,0:2] 2000MB 128kB WB RA a"},
        {"ARCCONF CREATE 1 LOGICALDRIVE 500 volume 0 0 NOPROMPT",
         "VOLUME [0:0] 500MB 256kB WB RA ARRAY0_LOGICAL0"},
        // Options' words can be names.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name NAME MAX VOLUME 0 0 NOPROMPT",
         "VOLUME [0:0] 1000MB 256kB WB RA NAME"},
        // A stripe size that is left out is one that so many drives of RAID 6 can have.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 6 0 0 0 1 0 2 0 3 0 4 0 5 0 6 0 7 0 8 NOPROMPT",
         "RAID6 [0:0,0:1,0:2,0:3,0:4,0:5,0:6,0:7,0:8] 7000MB 128kB WB RA A"},
    };
    for (const auto& row : rows) {
        Server server =
            testServer(startsWithIgnoringCase(row.commandLine, "HR") ? "HRCONF" : "ARCCONF");
        const PlayResult result = playLine(server, row.commandLine);
        ASSERT_EQ(result.exitCode, 0) << row.commandLine << "\n" << result.output;
        EXPECT_EQ(result.output, succeeded("Creating logical drive: " +
                                           server.controllers[0].logicalDrives.back().name))
            << row.commandLine;
        EXPECT_TRUE(result.changed) << row.commandLine;
        EXPECT_EQ(logicalDrivesOf(server), row.result) << row.commandLine;
    }
}

TEST(ConfCommand, RefusesWithAReasonAndChangesNothing) {
    const struct {
        const char* commandLine;
        const char* reason;
    } rows[] = {
        // The controller.
        {"ARCCONF GETCONFIG 0 AL", "Controller 0 does not exist."},
        {"ARCCONF GETCONFIG 2 AL", "Controller 2 does not exist."},
        {"ARCCONF SETCONFIG 2 DEFAULT NOPROMPT", "Controller 2 does not exist."},
        {"ARCCONF SETSTATE 9 DEVICE 0 0 HSP", "Controller 9 does not exist."},
        {"ARCCONF SETCACHE 2 LOGICALDRIVE 1 wt NOPROMPT", "Controller 2 does not exist."},
        // The drives.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 0 13 NOPROMPT",
         "There is no physical disk at 0:13."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 2 0 NOPROMPT",
         "There is no physical disk at 2:0."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 1 0 1 NOPROMPT",
         "The physical disk at 0:1 is named twice."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 10 0 0 0 1 0 2 0 0 NOPROMPT",
         "The physical disk at 0:0 is named twice."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 3 0 NOPROMPT",
         "The physical disk at 3:0 is not free: it is bad."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 3 1 NOPROMPT",
         "The physical disk at 3:1 is not free: it is failed."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 3 2 NOPROMPT",
         "The physical disk at 3:2 is not free: it is foreign."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 3 3 NOPROMPT",
         "The physical disk at 3:3 is not free: it is hotspare."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 0 11 NOPROMPT",
         "The physical disk at 0:11 is not free: it is online."},
        // The number of drives.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 NOPROMPT",
         "RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1E 0 0 0 1 NOPROMPT",
         "RAID1E takes 3 to 32 physical disks in a span, not 2."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 5 0 0 0 1 NOPROMPT",
         "RAID5 takes 3 to 32 physical disks in a span, not 2."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 5EE 0 0 0 1 0 2 NOPROMPT",
         "RAID5EE takes 4 to 32 physical disks in a span, not 3."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 6 0 0 0 1 0 2 NOPROMPT",
         "RAID6 takes 4 to 32 physical disks in a span, not 3."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 10 0 0 0 1 NOPROMPT",
         "RAID10 takes 2 to 8 spans, not 1."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 10 0 0 0 1 0 2 0 3 0 4 NOPROMPT",
         "RAID10 takes 2 to 2 physical disks in a span, not 1."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 50 0 0 0 1 0 2 0 3 0 4 NOPROMPT",
         "RAID50 takes 3 to 32 physical disks in a span, not 2."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 50 0 0 0 1 0 2 0 3 0 4 0 5 0 6 NOPROMPT",
         "All spans must hold the same number of physical disks."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 60 0 0 0 1 0 2 0 3 0 4 0 5 NOPROMPT",
         "RAID60 takes 4 to 32 physical disks in a span, not 3."},
        {"HRCONF CREATE 1 LOGICALDRIVE Name A MAX SIMPLE VOLUME 0 0 0 1 NOPROMPT",
         "A simple volume takes 1 physical disk, not 2."},
        // The level.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 5E 0 0 0 1 0 2 0 3 NOPROMPT",
         "RAID5E is not supported by this controller."},
        {"HRCONF CREATE 1 LOGICALDRIVE Name A MAX 5 0 0 0 1 0 2 NOPROMPT",
         "RAID5 is not supported by this controller."},
        // The stripe size.
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 2048 Name A MAX 0 0 0 NOPROMPT",
         "A stripe size of 2048 kB is not supported."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 4 Name A MAX 0 0 0 NOPROMPT",
         "A stripe size of 4 kB is not supported."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 48 Name A MAX 0 0 0 NOPROMPT",
         "A stripe size of 48 kB is not supported."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 0 Name A MAX 0 0 0 NOPROMPT",
         "A stripe size of 0 kB is not supported."},
        // The size.
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A 2001 5 0 0 0 1 0 2 NOPROMPT",
         "A size of 2001 MB does not fit: the array has room for 2000 MB."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A 0 5 0 0 0 1 0 2 NOPROMPT",
         "A size of 0 MB does not fit: the array has room for 2000 MB."},
        // Hot spares and cache modes.
        {"ARCCONF SETSTATE 1 DEVICE 2 0 HSP", "There is no physical disk at 2:0."},
        {"ARCCONF SETSTATE 1 DEVICE 3 3 HSP",
         "The physical disk at 3:3 is not free: it is hotspare."},
        {"ARCCONF SETSTATE 1 DEVICE 0 11 HSP",
         "The physical disk at 0:11 is not free: it is online."},
        {"HRCONF SETSTATE 1 DEVICE 3 1 HSP noprompt",
         "The physical disk at 3:1 is not free: it is failed."},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE 0 wt NOPROMPT", "Logical drive 0 does not exist."},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT", "Logical drive 2 does not exist."},
        // Words that are missing, unknown or out of place.
        {"ARCCONF", "The command line is not complete."},
        {"ARCCONF LIST 1", "Unexpected parameter: LIST"},
        {"ARCCONF GETCONFIG", "The command line is not complete."},
        {"ARCCONF GETCONFIG one AL", "Unexpected parameter: one"},
        {"ARCCONF GETCONFIG -1 AL", "Unexpected parameter: -1"},
        {"ARCCONF GETCONFIG 99999999999999999999 AL", "Unexpected parameter: 99999999999999999999"},
        {"ARCCONF GETCONFIG 1", "The command line is not complete."},
        {"ARCCONF GETCONFIG 1 ALL", "Unexpected parameter: ALL"},
        {"ARCCONF GETCONFIG 1 AL PD", "Unexpected parameter: PD"},
        {"ARCCONF CREATE 1", "The command line is not complete."},
        {"ARCCONF CREATE 1 ARRAY", "Unexpected parameter: ARRAY"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize", "The command line is not complete."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 64KB Name A MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: 64KB"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name", "The command line is not complete."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A Name B MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: Name"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name ABCDEFGHIJKLMNOPQRSTUVWXYZ1234567 MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: ABCDEFGHIJKLMNOPQRSTUVWXYZ1234567"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Method SLOW MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: SLOW"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Init_Priority HIGH MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: Init_Priority"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Init_Method QUICK MAX 0 0 0 NOPROMPT",
         "Unexpected parameter: Init_Method"},
        {"HRCONF CREATE 1 LOGICALDRIVE Method QUICK MAX 0 0 0 0 1 NOPROMPT",
         "Unexpected parameter: Method"},
        {"HRCONF CREATE 1 LOGICALDRIVE Init_Priority ERROR MAX 0 0 0 0 1 NOPROMPT",
         "Unexpected parameter: ERROR"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A -5 0 0 0 NOPROMPT", "Unexpected parameter: -5"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX", "The command line is not complete."},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX ERROR 0 0 NOPROMPT",
         "Unexpected parameter: ERROR"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX SIMPLE VOLUME 0 0 NOPROMPT",
         "Unexpected parameter: SIMPLE"},
        {"HRCONF CREATE 1 LOGICALDRIVE Name A MAX SIMPLE 1 0 0 0 1 NOPROMPT",
         "Unexpected parameter: 1"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 NOPROMPT", "Unexpected parameter: NOPROMPT"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 0 0 1 NOPROMPT",
         "Unexpected parameter: NOPROMPT"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 0,0 NOPROMPT", "Unexpected parameter: 0,0"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 0 70000 NOPROMPT",
         "Unexpected parameter: 70000"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 0 0 NOPROMPT NOPROMPT",
         "Unexpected parameter: NOPROMPT"},
        {"ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 0 0 0",
         "The command has not been confirmed. Use NOPROMPT to run it without a question."},
        {"ARCCONF SETCACHE 1 ARRAY 1 wt NOPROMPT", "Unexpected parameter: ARRAY"},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE A wt NOPROMPT", "Unexpected parameter: A"},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE 1", "The command line is not complete."},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE 1 ERROR NOPROMPT", "Unexpected parameter: ERROR"},
        {"ARCCONF SETCACHE 1 LOGICALDRIVE 1 wt",
         "The command has not been confirmed. Use NOPROMPT to run it without a question."},
        {"ARCCONF SETSTATE 1 LOGICALDRIVE 1 HSP", "Unexpected parameter: LOGICALDRIVE"},
        {"ARCCONF SETSTATE 1 DEVICE 0 HSP", "Unexpected parameter: HSP"},
        {"ARCCONF SETSTATE 1 DEVICE 0 0", "The command line is not complete."},
        {"ARCCONF SETSTATE 1 DEVICE 0 0 DDD", "Unexpected parameter: DDD"},
        {"ARCCONF SETSTATE 1 DEVICE 0 0 HSP NOPROMPT 1", "Unexpected parameter: 1"},
        {"ARCCONF SETCONFIG 1", "The command line is not complete."},
        {"ARCCONF SETCONFIG 1 FACTORY NOPROMPT", "Unexpected parameter: FACTORY"},
        {"ARCCONF SETCONFIG 1 DEFAULT",
         "The command has not been confirmed. Use NOPROMPT to run it without a question."},
        {"ARCCONF SETCONFIG 1 DEFAULT NOPROMPT now", "Unexpected parameter: now"},
    };
    for (const auto& row : rows) {
        Server server =
            testServer(startsWithIgnoringCase(row.commandLine, "HR") ? "HRCONF" : "ARCCONF",
                       R"("virtualDisks": [{"level": "VOLUME", "spans": [["0:11"]]}],)");
        const std::string before = writeState(server);
        const PlayResult result = playLine(server, row.commandLine);
        EXPECT_EQ(result.output, aborted(row.reason)) << row.commandLine;
        EXPECT_EQ(result.exitCode, 1) << row.commandLine;
        EXPECT_FALSE(result.changed) << row.commandLine;
        EXPECT_EQ(writeState(server), before) << row.commandLine;
    }
}

TEST(ConfCommand, StripeSizesThatRaid6And60CanHave) {
    const struct {
        const char* level;
        int drives;
        int largestKb;
    } rows[] = {
        {"6", 4, 1024},  {"6", 5, 512},    {"6", 6, 256},    {"6", 8, 256},   {"6", 9, 128},
        {"6", 11, 128},  {"6", 12, 64},    {"60", 8, 1024},  {"60", 10, 512}, {"60", 12, 256},
        {"5", 12, 1024}, {"50", 12, 1024}, {"10", 12, 1024},
    };
    for (const auto& row : rows) {
        std::string members;
        for (int i = 0; i < row.drives; ++i) {
            members += formatted("0 %d ", i);
        }
        for (int stripe = 16; stripe <= 1024; stripe *= 2) {
            Server server = testServer("ARCCONF");
            const PlayResult result = playLine(
                server, formatted("ARCCONF CREATE 1 LOGICALDRIVE Stripesize %d Name A MAX %s %s"
                                  "NOPROMPT",
                                  stripe, row.level, members.c_str()));
            if (stripe <= row.largestKb) {
                EXPECT_EQ(result.exitCode, 0) << row.level << " " << row.drives << " " << stripe;
                continue;
            }
            EXPECT_EQ(result.output,
                      aborted(formatted("A stripe size of %d kB is too large for %d physical "
                                        "disks.",
                                        stripe, row.drives)));
        }
    }
}

TEST(ConfCommand, HotSpares) {
    for (const char* commandLine :
         {"ARCCONF SETSTATE 1 DEVICE 1 6 HSP", "HRCONF SETSTATE 1 DEVICE 1 6 HSP noprompt",
          "HRCONF setstate 1 device 1 6 hsp"}) {
        Server server =
            testServer(startsWithIgnoringCase(commandLine, "HR") ? "HRCONF" : "ARCCONF");
        const PlayResult result = playLine(server, commandLine);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, succeeded("Channel 1, device 6 is a hot spare."));
        EXPECT_TRUE(result.changed);
        EXPECT_EQ(server.controllers[0].driveAt({1, 6})->status, DriveStatus::hotspare);
    }
}

TEST(ConfCommand, CacheModes) {
    const struct {
        const char* modes;
        const char* said;   ///< by the last one
        const char* result; ///< of the first and of the second logical drive
    } rows[] = {
        {"1 roff", "Logical drive 1, Read-cache mode: Disabled", "WB NORA|WB RA"},
        {"2 ROFF", "Logical drive 2, Read-cache mode: Disabled", "WB RA|WB NORA"},
        {"1 roff 1 ron", "Logical drive 1, Read-cache mode: Enabled", "WB RA|WB RA"},
        {"2 wt", "Logical drive 2, Write-cache mode: Disabled (write-through)", "WB RA|WT RA"},
        {"1 wbb",
         "Logical drive 1, Write-cache mode: Enabled (write-back) when protected by battery",
         "WB RA protected|WB RA"},
        {"1 wbb 1 wb", "Logical drive 1, Write-cache mode: Enabled (write-back)", "WB RA|WB RA"},
        {"1 wbb 1 wt", "Logical drive 1, Write-cache mode: Disabled (write-through)",
         "WT RA|WB RA"},
        {"1 wbb 1 roff", "Logical drive 1, Read-cache mode: Disabled", "WB NORA protected|WB RA"},
    };
    for (const bool failover : {false, true}) {
        for (const auto& row : rows) {
            Server server =
                testServer("ARCCONF", failover ? R"("automaticFailover": "Enabled",)" : "");
            playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 0 1 NOPROMPT");
            playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE Name B MAX 1 0 2 0 3 NOPROMPT");
            const std::vector<std::string> words = splitWords(row.modes);
            PlayResult result;
            for (std::size_t i = 0; i < words.size(); i += 2) {
                result = playLine(server, "ARCCONF SETCACHE 1 LOGICALDRIVE " + words[i] + " " +
                                              words[i + 1] + " NOPROMPT ");
                EXPECT_EQ(result.exitCode, 0) << row.modes;
                EXPECT_TRUE(result.changed) << row.modes;
            }
            EXPECT_EQ(result.output, succeeded(row.said)) << row.modes;
            std::vector<std::string> modes;
            for (const LogicalDrive& drive : server.controllers[0].logicalDrives) {
                modes.push_back(std::string(policyWord(drive.writePolicy)) + " " +
                                std::string(policyWord(drive.readPolicy)) +
                                (drive.batteryProtected ? " protected" : ""));
            }
            EXPECT_EQ(join(modes, "|"), row.result) << row.modes;
        }
    }
}

/// The numbers of the logical drives as a listing tells them.
std::string listedNumbers(Server& server, const std::string& utility) {
    std::istringstream lines(playLine(server, utility + " GETCONFIG 1 AL").output);
    std::string found;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("Logical drive number ", 0) == 0) {
            found += line.substr(sizeof "Logical drive number " - 1) + " ";
        }
    }
    return found;
}

TEST(ConfCommand, DeletesSingleLogicalDrives) {
    for (const bool failover : {false, true}) {
        Server server = testServer("ARCCONF", failover ? R"("automaticFailover": "Enabled",)" : "");
        for (const char* places : {"0 0", "0 1", "0 2"}) {
            playLine(server,
                     formatted("ARCCONF CREATE 1 LOGICALDRIVE MAX VOLUME %s NOPROMPT", places));
        }
        EXPECT_EQ(listedNumbers(server, "ARCCONF"), failover ? "0 1 2 " : "1 2 3 ");
        PlayResult result = playLine(server, "arcconf delete 1 logicaldrive 2 noprompt");
        EXPECT_EQ(result.output, succeeded("Logical drive 2 is deleted."));
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_TRUE(result.changed);
        // The others keep their numbers, which all commands go by.
        EXPECT_EQ(listedNumbers(server, "ARCCONF"), failover ? "0 2 " : "1 3 ");
        EXPECT_EQ(server.controllers[0].driveAt({0, 1})->status, DriveStatus::good);
        EXPECT_EQ(playLine(server, "ARCCONF SETCACHE 1 LOGICALDRIVE 3 wt NOPROMPT").exitCode, 0);
        EXPECT_EQ(server.controllers[0].logicalDrives[1].writePolicy, WritePolicy::writeThrough);
        for (const char* command : {"ARCCONF DELETE 1 LOGICALDRIVE %s NOPROMPT",
                                    "ARCCONF SETCACHE 1 LOGICALDRIVE %s wt NOPROMPT"}) {
            for (const char* number : {"0", "2", "4"}) {
                const std::string before = dump(server.controllers[0]);
                result = playLine(server, formatted(command, number));
                EXPECT_EQ(result.output,
                          aborted(formatted("Logical drive %s does not exist.", number)));
                EXPECT_EQ(result.exitCode, 1);
                EXPECT_FALSE(result.changed);
                EXPECT_EQ(dump(server.controllers[0]), before);
            }
        }
        // A new one takes the number that is free.
        EXPECT_EQ(
            playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE MAX VOLUME 0 1 NOPROMPT").exitCode, 0);
        EXPECT_EQ(listedNumbers(server, "ARCCONF"), failover ? "0 1 2 " : "1 2 3 ");
        EXPECT_EQ(toText(server.controllers[0]
                             .arrays[server.controllers[0].logicalDrives[1].array]
                             .spans[0]),
                  "0:1");
    }
}

TEST(ConfCommand, HotSparesBecomeReadyAgain) {
    Server server = testServer("ARCCONF");
    EXPECT_EQ(playLine(server, "ARCCONF SETSTATE 1 DEVICE 0 2 HSP noprompt").exitCode, 0);
    const PlayResult result = playLine(server, "ARCCONF SETSTATE 1 DEVICE 0 2 RDY");
    EXPECT_EQ(result.output, succeeded("Channel 0, device 2 is ready."));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(result.changed);
    EXPECT_EQ(server.controllers[0].driveAt({0, 2})->status, DriveStatus::good);
    const struct {
        const char* place;
        const char* reason;
    } rows[] = {{"0 2", "The physical disk at 0:2 is no hot spare: it is good."},
                {"5 77", "There is no physical disk at 5:77."}};
    for (const auto& row : rows) {
        const PlayResult refused =
            playLine(server, formatted("ARCCONF SETSTATE 1 DEVICE %s RDY NOPROMPT", row.place));
        EXPECT_EQ(refused.output, aborted(row.reason));
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_FALSE(refused.changed);
    }
}

TEST(ConfCommand, RemovalsThatAreNotUnderstood) {
    const struct {
        const char* commandLine;
        const char* complaint;
    } rows[] = {
        {"ARCCONF DELETE 1", "The command line is not complete."},
        {"ARCCONF DELETE 1 ARRAY 1 NOPROMPT", "Unexpected parameter: ARRAY"},
        {"ARCCONF DELETE 1 LOGICALDRIVE", "The command line is not complete."},
        {"ARCCONF DELETE 1 LOGICALDRIVE ALL NOPROMPT", "Unexpected parameter: ALL"},
        {"ARCCONF DELETE 1 LOGICALDRIVE 1",
         "The command has not been confirmed. Use NOPROMPT to run it without a question."},
        {"ARCCONF DELETE 1 LOGICALDRIVE 1 2 NOPROMPT", "Unexpected parameter: 2"},
        {"ARCCONF DELETE 2 LOGICALDRIVE 1 NOPROMPT", "Controller 2 does not exist."},
        {"ARCCONF SETSTATE 1 DEVICE 0 2 RDY NOW", "Unexpected parameter: NOW"},
        // The other utility is not known to have these.
        {"HRCONF DELETE 1 LOGICALDRIVE 1 NOPROMPT", "Unexpected parameter: DELETE"},
        {"HRCONF SETSTATE 1 DEVICE 0 2 RDY", "Unexpected parameter: RDY"},
    };
    for (const auto& row : rows) {
        const std::string utility = splitWords(row.commandLine)[0];
        Server server = testServer(utility.c_str());
        playLine(server, utility + " CREATE 1 LOGICALDRIVE MAX VOLUME 0 0 0 1 NOPROMPT");
        playLine(server, utility + " SETSTATE 1 DEVICE 0 2 HSP");
        const std::string before = dump(server.controllers[0]);
        const PlayResult result = playLine(server, row.commandLine);
        EXPECT_EQ(result.output, aborted(row.complaint)) << row.commandLine;
        EXPECT_EQ(result.exitCode, 1) << row.commandLine;
        EXPECT_EQ(dump(server.controllers[0]), before) << row.commandLine;
    }
}

TEST(ConfCommand, ControllersOwnCacheModes) {
    const struct {
        const char* fields;
        const char* result;
    } rows[] = {
        {"", "RAID1 [0:0,0:1] 1000MB 256kB WB RA A"},
        {R"("defaultBatteryProtected": true,)", "RAID1 [0:0,0:1] 1000MB 256kB WB RA protected A"},
        {R"("defaultBatteryProtected": true, "defaultWritePolicy": "WT",)",
         "RAID1 [0:0,0:1] 1000MB 256kB WT RA A"},
        {R"("defaultReadPolicy": "NORA", "defaultStripeKB": 64,)",
         "RAID1 [0:0,0:1] 1000MB 64kB WB NORA A"},
    };
    for (const auto& row : rows) {
        Server server = testServer("ARCCONF", row.fields);
        playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1 0 0 0 1 NOPROMPT");
        EXPECT_EQ(logicalDrivesOf(server), row.result) << row.fields;
    }
}

TEST(ConfCommand, DefaultConfigurationFreesWhatIsSound) {
    for (const char* utility : {"ARCCONF", "HRCONF"}) {
        Server server = ConfServer{utility,
                                   R"({"channel": 0, "device": 0, "sizeMB": 10},
                                      {"channel": 0, "device": 1, "sizeMB": 10, "status": "failed"},
                                      {"channel": 0, "device": 2, "sizeMB": 10,
                                       "status": "hotspare"},
                                      {"channel": 0, "device": 3, "sizeMB": 10, "status": "foreign"}
                                     )",
                                   R"("virtualDisks": [{"level": "RAID1",
                                                        "spans": [["0:0", "0:1"]]}],)"}
                            .server();
        const PlayResult result =
            playLine(server, std::string(utility) + " SETCONFIG 1 DEFAULT NOPROMPT");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, succeeded("All logical drives and hot spares are deleted."));
        EXPECT_TRUE(result.changed);
        EXPECT_EQ(dump(server.controllers[0]), "0:0=good | 0:1=failed | 0:2=good | 0:3=foreign");
    }
}

TEST(ConfCommand, EachUtilityCountsItsControllersInPciOrder) {
    const char* controller = R"({"utility": "%s", "model": "M", "productName": "Product %d",
        "pci": {"bus": %d, "device": %d, "function": %d, "vendorId": 1, "deviceId": 2},
        "drives": [{%s, "sizeMB": 100}]})";
    const char* onChannel = R"("channel": 0, "device": 0)";
    const std::vector<std::string> list = {
        formatted(controller, "ARCCONF", 0, 9, 0, 0, onChannel),
        formatted(controller, "HRCONF", 1, 7, 0, 0, onChannel),
        formatted(controller, "MEGACLI", 2, 1, 0, 0, R"("slot": 0)"),
        formatted(controller, "arcconf", 3, 2, 3, 1, onChannel),
        formatted(controller, "HRCONF", 4, 2, 4, 0, onChannel),
        formatted(controller, "ARCCONF", 5, 2, 3, 0, onChannel),
    };
    Server server = serverOf(R"({"machineType": "1", "serialNumber": "2", "controllers": [)" +
                             join(list, ",") + "]}");
    const struct {
        const char* utility;
        int number;
        int product;
    } rows[] = {{"ARCCONF", 1, 5},
                {"ARCCONF", 2, 3},
                {"ARCCONF", 3, 0},
                {"HRCONF", 1, 4},
                {"HRCONF", 2, 1}};
    for (const auto& row : rows) {
        const PlayResult result =
            playLine(server, formatted("%s GETCONFIG %d AL", row.utility, row.number));
        EXPECT_EQ(
            result.output.find(formatted("Controllers found: %d\n", row.utility[0] == 'A' ? 3 : 2)),
            0U);
        EXPECT_NE(result.output.find(formatted("Controller Model                         : "
                                               "Product %d\n",
                                               row.product)),
                  std::string::npos)
            << row.utility << row.number;
    }
    EXPECT_EQ(playLine(server, "ARCCONF GETCONFIG 4 AL").output,
              aborted("Controller 4 does not exist.", 3));
    EXPECT_EQ(playLine(server, "HRCONF GETCONFIG 3 AL").output,
              aborted("Controller 3 does not exist.", 2));
}

TEST(ConfCommand, NoControllerOfTheUtility) {
    Server server = testServer("HRCONF");
    EXPECT_EQ(playLine(server, "ARCCONF GETCONFIG 1 AL").output,
              aborted("Controller 1 does not exist.", 0));
}

TEST(ConfCommand, NoMoreLogicalDrivesThanTheControllerTakes) {
    Server server = testServer("ARCCONF", R"("maxVirtualDisks": 1,)");
    EXPECT_EQ(playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE MAX VOLUME 0 0 NOPROMPT").exitCode,
              0);
    EXPECT_EQ(playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE MAX VOLUME 0 1 NOPROMPT").output,
              aborted("The controller takes no more than 1 virtual disks."));
}

} // namespace
} // namespace zolex_sim::test
