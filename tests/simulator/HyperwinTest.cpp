#include "setup/Samples.h"
#include "simulator/BlockSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

namespace zolex_sim::test {
namespace {

constexpr const char* title = "HyperWin Command Line Utility 1.07\n";
constexpr const char* successCode = "Error Code (hex)                : 0000\n";
constexpr const char* failureCode = "Error Code (hex)                : 0001\n";

constexpr const char* twoDrives = R"({"id": 0, "count": 2, "sizeMB": 38154})";

PlayResult hyperwin(Server& server, const std::string& options) {
    return play(server, "HYPERWIN " + options);
}

TEST(HyperwinListing, ReproducesTheSampleListing) {
    Server server = serverOf(definitionOf(
        "HYPERWIN", twoDrives,
        R"("virtualDisks": [{"level": "RAID0", "spans": [["1:0", "1:1"]], "stripeKB": 128,
                             "writePolicy": "WB"}],)"));
    const PlayResult result = hyperwin(server, "/L /D00");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.changed);
    EXPECT_EQ(result.output, zolex::test::readTestData("hyperwin-list.txt"));
}

TEST(HyperwinListing, TheAdapter) {
    const struct {
        const char* commands[2]; ///< run before
        const char* lines;       ///< between the heading and the code
    } rows[] = {
        {{"/L /D00", "/L /D00"}, ""},
        {{"/AM  /S ", "/L /D00"},
         "LOGICAL_ARRAY                   : 0\n"
         "-WRITE_CACHE\n"
         "RAID_MODE                       : MIRROR\n"
         "TOTAL_PHYSICAL_DRIVES           : 2\n"},
        {{"/AS4096  /S ", "/OW"},
         "LOGICAL_ARRAY                   : 0\n"
         "+WRITE_CACHE\n"
         "RAID_MODE                       : STRIPE\n"
         "STRIPE_SIZE                     : 4096KB\n"
         "TOTAL_PHYSICAL_DRIVES           : 2\n"},
        // The total counts the spare.
        {{"/AS32 /!  /S ", "/OWR"},
         "LOGICAL_ARRAY                   : 0\n"
         "-WRITE_CACHE\n"
         "RAID_MODE                       : STRIPE\n"
         "STRIPE_SIZE                     : 32KB\n"
         "TOTAL_PHYSICAL_DRIVES           : 2\n"
         "SPARE                           : 1\n"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf("HYPERWIN", twoDrives));
        for (const char* command : row.commands) {
            ASSERT_EQ(hyperwin(server, command).exitCode, 0) << command;
        }
        EXPECT_EQ(hyperwin(server, "/L /D00 ").output,
                  title + ("Adapter 0\n" + std::string(row.lines)) + successCode);
    }
}

TEST(HyperwinListing, AnArrayThatLacksADrive) {
    const struct {
        const char* level;
        const char* status;
        const char* line;
    } rows[] = {{"RAID1", "failed", "Degraded (DGD)"},
                {"RAID1", "rebuild", "Rebuilding (RBL)"},
                {"RAID0", "failed", "Offline (OFL)"}};
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf(
            "HYPERWIN",
            formatted(R"({"id": 0, "sizeMB": 9}, {"id": 1, "sizeMB": 9, "status": "%s"})",
                      row.status),
            formatted(R"("virtualDisks": [{"level": "%s", "spans": [["1:0", "1:1"]]}],)",
                      row.level)));
        EXPECT_NE(
            hyperwin(server, "/L /D00")
                .output.find(std::string("ARRAY_STATUS                    : ") + row.line + "\n"),
            std::string::npos);
    }
}

/// A caller tells drives by codes anywhere in the output, so nothing else may look like one.
TEST(HyperwinListing, DrivesAreStatusCodesAlone) {
    Server server = serverOf(definitionOf("HYPERWIN", R"(
        {"id": 0, "sizeMB": 10000, "serial": "0000000a", "model": "M0000"},
        {"id": 1, "sizeMB": 20000, "serial": "00000000", "status": "failed"})"));
    EXPECT_EQ(hyperwin(server, "/L /D10").output,
              title + std::string("Adapter 0, drive 1\nError Code (hex)                : 0000\n"));
    const PlayResult failedDrive = hyperwin(server, "/L /D20");
    EXPECT_EQ(failedDrive.exitCode, 0);
    EXPECT_EQ(failedDrive.output,
              title + std::string("Adapter 0, drive 2\nError Code (hex)                : 000a\n"));
    const PlayResult noDrive = hyperwin(server, "/L /D90");
    EXPECT_EQ(noDrive.exitCode, 0);
    EXPECT_EQ(noDrive.output,
              title + std::string("Adapter 0, drive 9\nError Code (hex)                : 000a\n"));
}

TEST(HyperwinCommand, Creates) {
    const struct {
        int drives;
        const char* options;
        const char* result;
    } rows[] = {
        // As they come from zolex.
        {2, "/AM  /S ", "RAID1 [1:0,1:1] 38154MB"},
        {2, "/AS64  /S ", "RAID0 [1:0,1:1] 76308MB"},
        {1, "/AS32  /S ", "RAID0 [1:0] 38154MB"},
        {2, "/AS4096 /!  /S ", "1:1=hotspare | RAID0 [1:0] 38154MB"},
        // Blanks and letter case do not matter.
        {2, "/A M /S", "RAID1 [1:0,1:1] 38154MB"},
        {2, "/a s128 /! /s", "1:1=hotspare | RAID0 [1:0] 38154MB"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf(
            "HYPERWIN", formatted(R"({"id": 0, "count": %d, "sizeMB": 38154})", row.drives)));
        const PlayResult result = hyperwin(server, row.options);
        EXPECT_EQ(result.exitCode, 0) << row.options;
        EXPECT_TRUE(result.changed) << row.options;
        EXPECT_EQ(result.output,
                  title + std::string("The logical array has been created.\n") + successCode);
        EXPECT_EQ(layoutOf(server), row.result) << row.options;
    }
}

TEST(HyperwinCommand, DrivesThatFailedAreLeftOut) {
    Server server = serverOf(definitionOf(
        "HYPERWIN", R"({"id": 1, "sizeMB": 9}, {"id": 0, "sizeMB": 9, "status": "failed"})"));
    EXPECT_EQ(hyperwin(server, "/AM /S").exitCode, 1);
    EXPECT_EQ(hyperwin(server, "/AS64 /S").exitCode, 0);
    EXPECT_EQ(layoutOf(server), "1:0=failed | RAID0 [1:1] 9MB");
}

TEST(HyperwinCommand, RefusesWithAReasonAndChangesNothing) {
    const struct {
        int drives;
        const char* before; ///< run first when not empty
        const char* options;
        const char* reason;
    } rows[] = {
        {1, "", "/AM /S", "RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {2, "", "/AM /! /S", "RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {1, "", "/AS64 /! /S", "RAID0 takes 1 to 2 physical disks in a span, not 0."},
        {0, "", "/AS64 /S", "RAID0 takes 1 to 2 physical disks in a span, not 0."},
        {0, "", "/AS64 /! /S", "RAID0 takes 1 to 2 physical disks in a span, not 0."},
        {2, "", "/AS16 /S", "A stripe size of 16 kB is not supported."},
        {2, "", "/AS8192 /S", "A stripe size of 8192 kB is not supported."},
        {2, "", "/AS0 /S", "A stripe size of 0 kB is not supported."},
        {2, "", "/AS4294967360 /S", "A stripe size of 1000000 kB is not supported."},
        {2, "/AM /S", "/AM /S", "There is a logical array already."},
        {2, "/AS64 /! /S", "/AS64 /S", "There is a logical array already."},
        {2, "", "/OW", "There is no logical array."},
        {2, "", "/OWR", "There is no logical array."},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionOf(
            "HYPERWIN", row.drives == 0
                            ? ""
                            : formatted(R"({"id": 0, "count": %d, "sizeMB": 38154})", row.drives)));
        if (*row.before != '\0') {
            ASSERT_EQ(hyperwin(server, row.before).exitCode, 0);
        }
        const std::string before = dump(server.controllers.front());
        const PlayResult result = hyperwin(server, row.options);
        EXPECT_EQ(result.exitCode, 1) << row.options;
        EXPECT_FALSE(result.changed) << row.options;
        EXPECT_EQ(result.output, title + ("Error: " + std::string(row.reason)) + "\n" + failureCode)
            << row.options;
        EXPECT_EQ(dump(server.controllers.front()), before) << row.options;
    }
}

TEST(HyperwinCommand, RefusesWhatItDoesNotUnderstand) {
    constexpr const char* incomplete = "The command line is not complete.";
    const CommandRow rows[] = {
        {"", incomplete},
        {"/?", "Unexpected parameter: /?"},
        {"L /D00", "Unexpected parameter: L"},
        {"/L", incomplete},
        {"/L /D", "Unexpected parameter: /D"},
        {"/L /D0", "Unexpected parameter: /D0"},
        {"/L /D01", "Unexpected parameter: /D01"},
        {"/L /D000", "Unexpected parameter: /D000"},
        {"/L /Dx0", "Unexpected parameter: /Dx0"},
        {"/L /D00 /S", "Unexpected parameter: /S"},
        {"/A", incomplete},
        {"/A /S", "Unexpected parameter: /S"}, // a level without a word
        {"/A  /S ", "Unexpected parameter: /S"},
        {"/AX /S", "Unexpected parameter: X"},
        {"/AS /S", "Unexpected parameter: S"},
        {"/ASERROR /S", "Unexpected parameter: SERROR"},
        {"/AS-64 /S", "Unexpected parameter: S-64"},
        {"/AM", "The command must be confirmed by /S."},
        {"/AS64 /!", "The command must be confirmed by /S."},
        {"/AM /S /!", "Unexpected parameter: /!"},
        {"/AM NOW /S", "Unexpected parameter: NOW"},
        {"/O", incomplete},
        {"/OR", "Unexpected parameter: R"},
        {"/OW R", "Unexpected parameter: R"},
        {"/E", "Unexpected parameter: only /Ea deletes arrays."},
        {"/E0", "Unexpected parameter: only /Ea deletes arrays."},
        {"/Ea now", "Unexpected parameter: now"},
    };
    for (const CommandRow& row : rows) {
        Server server = serverOf(definitionOf("HYPERWIN", twoDrives));
        const PlayResult result = hyperwin(server, row.command);
        EXPECT_EQ(result.exitCode, 1) << row.command;
        EXPECT_EQ(result.output, title + ("Error: " + std::string(row.result)) + "\n" + failureCode)
            << row.command;
        EXPECT_EQ(layoutOf(server), "") << row.command;
    }
    Server other = serverOf(definitionOf("CFGGEN", ""));
    EXPECT_EQ(hyperwin(other, "/L /D00").output,
              title + std::string("Error: There is no adapter.\n") + failureCode);
}

TEST(HyperwinCommand, TurnsTheWriteCacheOnAndOff) {
    Server server = serverOf(definitionOf("HYPERWIN", twoDrives));
    ASSERT_EQ(hyperwin(server, "/AM /S").exitCode, 0);
    EXPECT_EQ(hyperwin(server, "/OW").output,
              title + std::string("The write cache is on.\n") + successCode);
    EXPECT_EQ(server.controllers[0].logicalDrives[0].writePolicy, WritePolicy::writeBack);
    EXPECT_EQ(hyperwin(server, "/O WR").output,
              title + std::string("The write cache is off.\n") + successCode);
    EXPECT_EQ(server.controllers[0].logicalDrives[0].writePolicy, WritePolicy::writeThrough);
}

TEST(HyperwinCommand, DeletesEverything) {
    Server server = serverOf(definitionOf("HYPERWIN", twoDrives));
    ASSERT_EQ(hyperwin(server, "/AS64 /! /S").exitCode, 0);
    for (const char* options : {"/Ea", "/EA"}) { // the second time there is nothing left
        const PlayResult result = hyperwin(server, options);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_TRUE(result.changed);
        EXPECT_EQ(result.output,
                  title + std::string("All logical arrays have been deleted.\n") + successCode);
        EXPECT_EQ(layoutOf(server), "");
    }
}

TEST(HyperwinCommand, TheStateIsKeptAcrossRuns) {
    const TemporaryFolder folder;
    folder.write("server.json", std::string(sampleNamed("hyperwin")->definition));
    const auto util = [&](const char* options) {
        return Runner(folder.path())(splitWords(std::string("util HYPERWIN ") + options));
    };
    EXPECT_EQ(util("/AS128  /S ").exitCode, 0);
    EXPECT_EQ(util("/OW").exitCode, 0);
    EXPECT_EQ(util("/AM  /S ").exitCode, 1);
    EXPECT_EQ(util("/L /D00 ").output, zolex::test::readTestData("hyperwin-list.txt"));
    EXPECT_EQ(util("/Ea").exitCode, 0);
    EXPECT_EQ(util("/L /D00 ").output, title + std::string("Adapter 0\n") + successCode);
}

} // namespace
} // namespace zolex_sim::test
