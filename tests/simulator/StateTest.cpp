#include "model/State.h"

#include "model/ServerFolder.h"
#include "simulator/SimulatorSupport.h"

namespace zolex_sim::test {
namespace {

constexpr const char* stateDrives = R"(
    {"enclosure": 8, "slot": 0, "count": 5, "sizeMB": 1000},
    {"slot": 0, "sizeMB": 500, "status": "failed"})";

TEST(State, KeepsEverythingThatCommandsChange) {
    const std::string definition =
        definitionWith(stateDrives, "", R"(, "faults": [{"match": "x"}])");
    Server server = serverOf(definition);
    EXPECT_EQ(megacli(server, "-CfgLdAdd R5 [8:2,8:1,8:0] WB RA {-sz77} -strpsz 16 -a0").exitCode,
              0);
    EXPECT_EQ(megacli(server, "-PDHSP -Set -PhysDrv [8:4] -a0").exitCode, 0);
    server.controllers[0].logicalDrives[0].name = "system";
    server.faults[0].seen = 3;
    Server again = serverOf(definition);
    Problem problem;
    readState(writeState(server), again, problem);
    EXPECT_EQ(problem.text(), "");
    EXPECT_EQ(dump(again.controllers[0]),
              "8:0=online | 8:1=online | 8:2=online | 8:3=good | 8:4=hotspare | :0=failed | "
              "RAID5 [8:2,8:1,8:0] 77MB 16kB WB RA");
    EXPECT_EQ(again.controllers[0].logicalDrives[0].name, "system");
    EXPECT_EQ(again.faults[0].seen, 3);
    EXPECT_EQ(writeState(again), writeState(server));
}

TEST(State, KeepsTheNumbersOfLogicalDrives) {
    const std::string definition = definitionWith(stateDrives);
    Server server = serverOf(definition);
    for (const char* command : {"-CfgLdAdd R0 [8:0] -a0", "-CfgLdAdd R0 [8:1] -a0",
                                "-CfgLdAdd R0 [8:2] -a0", "-CfgLdDel -L0,1 -a0"}) {
        EXPECT_EQ(megacli(server, command).exitCode, 0) << command;
    }
    Server again = serverOf(definition);
    Problem problem;
    readState(writeState(server), again, problem);
    EXPECT_EQ(problem.text(), "");
    EXPECT_EQ(again.controllers[0].numberOf(0), 2U);
    EXPECT_EQ(writeState(again), writeState(server));
    // The numbers 0 and 1 are free, 2 is not.
    for (const char* made : {"Created VD 0\n", "Created VD 1\n", "Created VD 3\n"}) {
        const std::string free =
            toText(again.controllers[0].logicalDrives.size() == 1   ? DriveLocation{8, 0}
                   : again.controllers[0].logicalDrives.size() == 2 ? DriveLocation{8, 1}
                                                                    : DriveLocation{8, 3});
        EXPECT_NE(megacli(again, "-CfgLdAdd R0 [" + free + "] -a0").output.find(made),
                  std::string::npos)
            << made;
    }
}

TEST(State, ReplacesAnInitialConfiguration) {
    const std::string definition =
        definitionWith(stateDrives, R"("virtualDisks": [{"level": "RAID0", "spans": [["8:0"]]}],)");
    Server server = serverOf(definition);
    EXPECT_EQ(megacli(server, "-CFGCLR -A0").exitCode, 0);
    Server again = serverOf(definition);
    Problem problem;
    readState(writeState(server), again, problem);
    EXPECT_EQ(problem.text(), "");
    EXPECT_EQ(dump(again.controllers[0]),
              "8:0=good | 8:1=good | 8:2=good | 8:3=good | 8:4=good | :0=failed");
}

/// The state of one mirrored pair, with a piece of its text replaced.
std::string stateWith(const std::string& what, const std::string& instead) {
    Server server = serverOf(definitionWith(stateDrives));
    EXPECT_EQ(megacli(server, "-CfgLdAdd R1 [8:0,8:1] -a0").exitCode, 0);
    std::string text = writeState(server);
    const std::size_t found = text.find(what);
    EXPECT_NE(found, std::string::npos) << what;
    return found == std::string::npos ? text : text.replace(found, what.size(), instead);
}

TEST(State, DamageIsToldClearly) {
    const struct {
        std::string text;
        const char* problem;
    } rows[] = {
        {"[]", "the file: must be an object"},
        {"{}", "format: is missing"},
        {stateWith("\"format\": 1", "\"format\": 2"), "format: must be a whole number from 1 to 1"},
        {R"({"format": 1})", "controllers: there are fewer than the definition has"},
        {R"({"format": 1, "controllers": [{}]})", "controllers[0].drives: is missing"},
        {stateWith("\"faultsSeen\": []", "\"extra\": []"), "extra: unknown field"},
        {stateWith("\"faultsSeen\": []", "\"faultsSeen\": [-1]"), "faultsSeen[0]: is no count"},
        {stateWith("\"8:2\": \"good\"", "\"8:2\": \"gone\""),
         "controllers[0].drives.8:2: unknown word \"gone\""},
        {stateWith("\"8:2\": \"good\",", ""), "controllers[0].drives.8:2: is missing"},
        {stateWith("\"8:2\"", "\"8:9\""), "controllers[0].drives.8:2: is missing"},
        {stateWith("\"8:2\": \"good\"", "\"8:2\": \"good\", \"8:7\": \"good\""),
         "controllers[0].drives.8:7: unknown field"},
        {stateWith("\"8:2\": \"good\"", "\"8:2\": \"online\""),
         "controllers[0].drives: the drive at 8:2 is in use but belongs to no array"},
        {stateWith("\"8:1\": \"online\"", "\"8:1\": \"good\""),
         "controllers[0].arrays[0]: the drive at 8:1 cannot belong to the array"},
        {stateWith("\"8:1\"\n", "\"8:7\"\n"), "controllers[0].arrays[0]: there is no drive at 8:7"},
        {stateWith("\"level\": \"RAID1\"", "\"level\": \"RAID5\""),
         "controllers[0].logicalDrives[0].level: RAID5 takes 3 to 32 physical disks in a span, "
         "not 2."},
        {stateWith("\"level\": \"RAID1\"", "\"level\": \"RAID10\""),
         "controllers[0].logicalDrives[0].level: RAID10 takes 2 to 8 spans, not 1."},
        {stateWith("\"array\": 0", "\"array\": 1"),
         "controllers[0].logicalDrives[0].array: must be a whole number from 0 to 0"},
        {stateWith("\"sizeMB\": 1000", "\"sizeMB\": 1001"),
         "controllers[0].logicalDrives[0].sizeMB: does not fit the array"},
        {stateWith("\"sizeMB\": 1000,", ""),
         "controllers[0].logicalDrives[0].sizeMB: size, stripe or policies are missing"},
        {stateWith("\"stripeKB\": 64", "\"stripeKB\": 63"),
         "controllers[0].logicalDrives[0].level: A stripe size of 63 kB is not supported."},
        {stateWith("\"writePolicy\": \"WT\"", "\"writePolicy\": \"NORA\""),
         "controllers[0].logicalDrives[0].writePolicy: unknown word \"NORA\""},
        {stateWith("\"logicalDrives\"", "\"lost\""),
         "controllers[0].arrays: an array holds no logical drive"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionWith(stateDrives));
        Problem problem;
        readState(row.text, server, problem);
        EXPECT_EQ(problem.text(), row.problem) << row.text;
    }
}

TEST(State, DamagedNumbersOfLogicalDrivesAreToldClearly) {
    const char* wrong = "controllers[0].logicalDrives[1].number: must be a whole number from 4 to "
                        "65535";
    const struct {
        const char* first; ///< number
        const char* second;
        const char* problem;
    } rows[] = {
        {"\"number\": 3,", "\"number\": 9,", ""},
        {"\"number\": 3,", "\"number\": 3,", wrong},
        {"\"number\": 3,", "\"number\": 2,", wrong},
        {"\"number\": 3,", "\"number\": 65536,", wrong},
        {"\"number\": 3,", "", "controllers[0].logicalDrives[1].number: is missing"},
        {"\"number\": -1,", "",
         "controllers[0].logicalDrives[0].number: must be a whole number from 0 to 65535"},
    };
    for (const auto& row : rows) {
        Server server = serverOf(definitionWith(stateDrives));
        EXPECT_EQ(megacli(server, "-CfgLdAdd R0 [8:0] -a0").exitCode, 0);
        EXPECT_EQ(megacli(server, "-CfgLdAdd R0 [8:1] -a0").exitCode, 0);
        std::string text = writeState(server);
        const std::string mark = "\"level\"";
        const std::size_t first = text.find(mark);
        text.insert(text.find(mark, first + 1), row.second);
        text.insert(first, row.first);
        Problem problem;
        readState(text, server, problem);
        EXPECT_EQ(problem.text(), row.problem) << text;
    }
}

TEST(State, EveryTruncationIsFoundDamaged) {
    const std::string whole = stateWith("\"format\"", "\"format\"");
    ASSERT_EQ(whole.back(), '\n');
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        Server server = serverOf(definitionWith(stateDrives));
        Problem problem;
        readState(whole.substr(0, length), server, problem);
        EXPECT_TRUE(problem.found()) << length;
    }
}

TEST(State, FaultsMayBeAddedAndTakenOut) {
    Server server = serverOf(definitionWith(stateDrives));
    const std::string before = writeState(server);
    Server more = serverOf(
        definitionWith(stateDrives, "", R"(, "faults": [{"match": "a"}, {"match": "b"}])"));
    Problem problem;
    readState(before, more, problem);
    EXPECT_EQ(problem.text(), "");
    more.faults[1].seen = 4;
    readState(writeState(more), server, problem);
    EXPECT_EQ(problem.text(), "");
}

TEST(ServerFolder, DamagedFilesEndEveryCommandWithALine) {
    const TemporaryFolder folder;
    const Runner run(folder.path());
    const std::string definition = (folder.path() / "server.json").string();
    const std::string state = (folder.path() / "state.json").string();
    const std::vector<std::vector<std::string>> commands = {{"util", "MEGACLI", "-pdList", "-a0"},
                                                            {"hwdetect", "/i"},
                                                            {"fakeraid", "0", "M"},
                                                            {"show"}};
    const auto expect = [&](const std::string& message) {
        for (const std::vector<std::string>& command : commands) {
            const Outcome result = run(command);
            EXPECT_EQ(result.exitCode, 1);
            EXPECT_EQ(result.output, "");
            EXPECT_EQ(result.error, "zolex-sim: " + message + "\n");
        }
    };
    expect("cannot read the definition file " + definition);
    folder.write("server.json", "{}");
    expect("definition file " + definition + ": machineType: is missing");
    folder.write("server.json", definitionWith(stateDrives));
    EXPECT_EQ(run({"show"}).exitCode, 0);
    folder.write("state.json", "{}");
    expect("state file " + state +
           " is damaged or does not fit the definition: format: is missing");
    EXPECT_EQ(folder.read("state.json"), "{}");
    std::filesystem::remove(state);
    std::filesystem::create_directory(state);
    expect("cannot read the state file " + state);
}

TEST(ServerFolder, AFailureAtAnyStepOfSavingLeavesTheOldState) {
    const TemporaryFolder folder;
    folder.write("server.json", definitionWith(stateDrives));
    Runner run(folder.path());
    EXPECT_EQ(run.util("-CfgLdAdd R0 [8:0] -a0").exitCode, 0);
    const std::string before = folder.read("state.json");
    const auto files = std::vector<std::string>{"server.json", "state.json"};
    for (const ReplaceStep step : {ReplaceStep::create, ReplaceStep::write, ReplaceStep::close,
                                   ReplaceStep::sync, ReplaceStep::rename}) {
        run.environment.failsToSave = [step](ReplaceStep at) { return at == step; };
        const Outcome result = run.util("-CFGCLR -A0 -SILENT");
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error, "zolex-sim: cannot write the state file " +
                                    (folder.path() / "state.json").string() + "\n");
        EXPECT_EQ(folder.read("state.json"), before);
        EXPECT_EQ(folder.names(), files);
    }
    run.environment.failsToSave = {};
    EXPECT_EQ(run.util("-CFGCLR -A0 -SILENT").exitCode, 0);
    EXPECT_NE(folder.read("state.json"), before);
    EXPECT_EQ(folder.names(), files);
}

TEST(ServerFolder, TheStateFileIsWholeAtEveryStepOfSaving) {
    const TemporaryFolder folder;
    folder.write("server.json", definitionWith(stateDrives));
    Runner run(folder.path());
    EXPECT_EQ(run.util("-CfgLdAdd R0 [8:0] -a0").exitCode, 0);
    const std::string before = folder.read("state.json");
    int steps = 0;
    run.environment.failsToSave = [&](ReplaceStep) {
        ++steps;
        // What a command finds that starts while this one is interrupted here for good.
        EXPECT_EQ(folder.read("state.json"), before);
        EXPECT_EQ(Runner(folder.path())({"show"}).exitCode, 0);
        return false;
    };
    EXPECT_EQ(run.util("-CfgLdAdd R0 [8:1] -a0").exitCode, 0);
    EXPECT_EQ(steps, 5);
    EXPECT_NE(folder.read("state.json"), before);
}

TEST(ServerFolder, RefusedAndReadingCommandsDoNotTouchTheStateFile) {
    const TemporaryFolder folder;
    folder.write("server.json", definitionWith(stateDrives));
    const Runner run(folder.path());
    for (const char* options : {"-pdList -a0", "-LdPdInfo -a0", "-AdpAllInfo -a0", "-CFGCLR -A1",
                                "-CfgLdAdd R5 [8:0] -a0", "-CFGFOREIGN -CLEAR -A0"}) {
        run.util(options);
        EXPECT_EQ(folder.names(), std::vector<std::string>{"server.json"}) << options;
    }
}

} // namespace
} // namespace zolex_sim::test
