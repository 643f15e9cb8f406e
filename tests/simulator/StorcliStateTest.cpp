#include "StorcliSupport.h"

#include "model/State.h"
#include "setup/Init.h"
#include "setup/Samples.h"

namespace zolex_sim::test {
namespace {

const Sample& sample(std::string_view name) {
    const Sample* const found = sampleNamed(name);
    EXPECT_NE(found, nullptr);
    return *found;
}

TEST(StorcliState, KeepsEverythingThatCommandsChange) {
    Server server = serverOf(std::string(sample("storcli").definition));
    for (const char* command :
         {"/c0/v236 del", "/c0 add vd r6 drives=252:12-15 nora awb cached name=six Size=1TB",
          "/c0/e252/s16 set good", "/c0/e252/s16 add hotsparedrive DGs=1,2", "/c0/fall del",
          "/c0/e252/s17 set good force", "/c0 set jbod=off", "/c0 set rebuildrate=45",
          "/c0/e252/s18 start locate"}) {
        EXPECT_EQ(storcli(server, std::string(command) + " nolog").exitCode, 0) << command;
    }
    Server copy = serverOf(std::string(sample("storcli").definition));
    Problem problem;
    readState(writeState(server), copy, problem);
    EXPECT_EQ(problem.text(), "");
    EXPECT_EQ(dumpStorcli(copy), dumpStorcli(server));
    EXPECT_EQ(writeState(copy), writeState(server));
    for (const char* listing : {"/c0 show all J nolog", "/c0/vall show all J nolog",
                                "/c0/eall/sall show all J nolog", "/c0/fall show J nolog"}) {
        EXPECT_EQ(storcli(copy, listing).output, storcli(server, listing).output) << listing;
    }
    EXPECT_TRUE(copy.storcliControllers.front().drives.back().locating);
}

TEST(StorcliState, EveryTruncationIsFoundDamaged) {
    Server server = serverOf(std::string(sample("percli").definition));
    const std::string text = writeState(server);
    for (std::size_t size = 0; size + 2 < text.size(); ++size) {
        Server copy = serverOf(std::string(sample("percli").definition));
        Problem problem;
        readState(std::string_view(text).substr(0, size), copy, problem);
        ASSERT_TRUE(problem.found()) << size;
    }
}

TEST(StorcliState, DamageIsToldClearly) {
    struct Row {
        const char* from;
        const char* to;
        const char* problem;
    };
    constexpr Row rows[] = {
        {R"("status": "online")", R"("status": "good")",
         "storcli[0].drives[0].status: does not fit the groups"},
        {R"("64:1")", R"("64:9")", "storcli[0].groups[0]: no free drive is at 64:9"},
        {R"("group": 0)", R"("group": 3)",
         "storcli[0].virtualDrives[0].group: there is no such group, or the number is taken"},
        {R"("place": "64:5")", R"("place": "64:7")",
         "storcli[0].drives[5].place: is not that of the definition"},
        {R"("blocks": 1874329600)", R"("blocks": 1874329601)",
         "storcli[0].virtualDrives[0].blocks: must be a whole number from 1 to 1874329600"},
        {R"("jbod")", R"("jboc")", "storcli[0].jboc: unknown field"},
    };
    for (const Row& row : rows) {
        Server server = serverOf(std::string(sample("percli").definition));
        std::string text = writeState(server);
        const std::size_t place = text.find(row.from);
        ASSERT_NE(place, std::string::npos) << row.from;
        text.replace(place, std::string_view(row.from).size(), row.to);
        Problem problem;
        readState(text, server, problem);
        EXPECT_EQ(problem.text(), row.problem);
    }
}

TEST(StorcliDefinition, FaultsAreTold) {
    struct Row {
        const char* drives;
        const char* controller;
        const char* problem;
    };
    constexpr Row rows[] = {
        {R"({"slot": 0})", "", "controllers[0].drives[0].rawSectors: is missing"},
        {R"({"slot": 0, "sectors": 9, "sectorBytes": 520})", "",
         "controllers[0].drives[0].sectorBytes: must be 512 or 4096"},
        {R"({"slot": 0, "count": 2, "sectors": 9}, {"slot": 1, "sectors": 9})", "",
         "controllers[0].drives[1].slot: there is already a drive at :1"},
        {R"({"slot": 0, "sectors": 9, "status": "dedicated"})", "",
         "controllers[0].drives[0].groups: a dedicated spare has some, any other drive none"},
        {R"({"slot": 0, "sectors": 9, "status": "dedicated", "groups": [4]})", "",
         "controllers[0].drives: the drive at :0 is of a group that does not exist"},
        {R"({"slot": 0, "sectors": 9, "status": "rebuild"})", "",
         "controllers[0].drives: the drive at :0 is of a group that does not exist"},
        {R"({"slot": 0, "sectors": 9})", R"(, "version": "9")",
         "controllers[0].version: unknown word \"9\""},
        {R"({"slot": 0, "sectors": 9})", R"(, "virtualDrives": [{"level": "RAID1"}])",
         "controllers[0].virtualDrives[0].spans: is missing or does not fit the level"},
        {R"({"slot": 0, "sectors": 9})",
         R"(, "virtualDrives": [{"level": "RAID0", "spans": [[":0"]], "blocks": 10}])",
         "controllers[0].virtualDrives[0].blocks: must be a whole number from 1 to 9"},
        {R"({"slot": 0, "sectors": 9})", R"(, "foreign": [{"drives": [":3"]}])",
         "controllers[0].foreign[0].drives: there is no good drive at :3"},
        {R"({"slot": 0, "sectors": 9})", R"(, "colour": "red")",
         "controllers[0].colour: unknown field"},
    };
    for (const Row& row : rows) {
        Problem problem;
        readDefinition(storcliDefinition(row.drives, row.controller), problem);
        EXPECT_EQ(problem.text(), row.problem);
    }
    Problem problem;
    readDefinition(storcliDefinition(R"({"slot": 0, "sectors": 9})", "",
                                     R"(, "faults": [{"match": "x", "effect": "sudden"}])"),
                   problem);
    EXPECT_EQ(problem.text(), "faults[0].effect: unknown word \"sudden\"");
}

TEST(StorcliSamples, LayServersOutWithTheirUtility) {
    for (const Sample& one : samplesOfToday()) {
        const std::string utility = one.name == "percli" ? "perccli64" : "storcli64";
        for (const Target target : {Target::posix, Target::windows}) {
            const TemporaryFolder folder;
            const std::filesystem::path place = folder.path() / "server";
            folder.write("program", "any");
            std::ostringstream output;
            std::ostringstream error;
            EXPECT_EQ(initialise({place.string(), "--sample", std::string(one.name)},
                                 folder.path() / "program", output, error, target),
                      0);
            EXPECT_EQ(error.str(), "");
            EXPECT_NE(output.str().find(utility + " /c0 show all J nolog\n"), std::string::npos);
            const std::string name = utility + (target == Target::windows ? ".exe" : "");
            EXPECT_TRUE(std::filesystem::exists(place / name));
            EXPECT_FALSE(std::filesystem::exists(place / "sample-policies.ini"));
            if (target == Target::posix) {
                EXPECT_EQ(readFile(place / name, 1000),
                          "#!/bin/sh\nhere=${0%/*}\n[ \"$here\" = \"$0\" ] && here=.\n"
                          "exec \"$here/zolex-sim\" util " +
                              utility + " \"$@\"\n");
            }
        }
    }
}

TEST(StorcliSamples, AreReplacedByAnother) {
    const TemporaryFolder folder;
    folder.write("program", "any");
    std::ostringstream output;
    for (const char* name : {"percli", "single", "storcli-blank"}) {
        ASSERT_EQ(initialise({(folder.path() / "s").string(), "--sample", name},
                             folder.path() / "program", output, output, Target::posix),
                  0);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "s" / "storcli64"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "s" / "perccli64"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "s" / "sample-policies.ini"));
}

TEST(StorcliSamples, AreKnownByTheirPciFunction) {
    const TemporaryFolder folder;
    folder.write("program", "any");
    std::ostringstream output;
    ASSERT_EQ(initialise({(folder.path() / "s").string(), "--sample", "storcli"},
                         folder.path() / "program", output, output, Target::posix),
              0);
    EXPECT_EQ(folder.read("s/pci/0000:c1:00.0/vendor"), "0x1000\n");
    EXPECT_EQ(folder.read("s/pci/0000:c1:00.0/device"), "0x10e2\n");
}

TEST(StorcliProgram, KeepsTheStateAndLeavesALog) {
    const TemporaryFolder folder;
    folder.write("server.json", std::string(sample("storcli-blank").definition));
    std::filesystem::create_directory(folder.path() / "here");
    Runner run(folder.path());
    run.environment.current = folder.path() / "here";
    // A copy of the program under the usual name plays the utility.
    const Outcome created = run({"/c0", "add", "vd", "r10", "drives=62:0-3", "PDperArray=2",
                                 "name=two words", "J", "nolog"},
                                "/any/storcli64.exe");
    EXPECT_EQ(created.exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "here" / "storcli.log"));
    const Outcome listed = run({"util", "storcli64", "/c0/v0", "show", "J"});
    EXPECT_NE(listed.output.find("\"Name\" : \"two words\"\n"), std::string::npos);
    EXPECT_EQ(folder.read("here/storcli.log"), "storcli64 /c0/v0 show J\n");
    EXPECT_EQ(run({"show"}).output.substr(0, 63),
              "Machine type 7X06, serial number KQ91S2M\n\nController 1: MegaRAI");
    const std::string shown = run({"show"}).output;
    EXPECT_EQ(shown.substr(shown.find("  drive group")),
              "  drive group 0: [62:0,62:1] [62:2,62:3]\n"
              "  virtual drive 0: group 0, RAID10, 31255953408 blocks, strip 256 KB, WB, RA, "
              "\"two words\"\n");
    EXPECT_EQ(run({"/c9", "show", "nolog"}, "perccli").exitCode, 255);
}

} // namespace
} // namespace zolex_sim::test
