#include "simulator/SimulatorSupport.h"

namespace zolex_sim::test {
namespace {

constexpr const char* fourDrives = R"({"enclosure": 8, "slot": 0, "count": 4, "sizeMB": 1000})";

/// A folder with a server; `rest` holds further fields of the server, each after a comma.
class Simulator : public ::testing::Test {
  protected:
    void define(const std::string& rest) const {
        folder_.write("server.json", definitionWith(fourDrives, "", rest));
    }

    TemporaryFolder folder_;
    Runner run_{folder_.path()};
};

TEST_F(Simulator, HardwareDetector) {
    define("");
    const Outcome result = run_({"hwdetect", "/i"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "Hardware detection\n"
                             "\n"
                             "Manufacturer=NORVIK\n"
                             "Machine_Type=8837\n"
                             "Serial_Number=KQ1\n"
                             "Processors=2\n"
                             "Memory=4096 MB\n"
                             "RAID_Controllers=1\n"
                             "Disk_Drives=4\n");
    const std::vector<std::vector<std::string>> wrong = {
        {"hwdetect"}, {"hwdetect", "/x"}, {"hwdetect", "/i", "/i"}, {"hwdetect", ""}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome refused = run_(arguments);
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_EQ(refused.output, "Usage: hwdetect /i\n");
    }
    define(R"(, "hardwareDetector": {"exitCode": 7})");
    EXPECT_EQ(run_({"hwdetect", "/i"}).exitCode, 7);
}

TEST_F(Simulator, Fakeraid) {
    define("");
    const struct {
        std::vector<std::string> arguments;
        const char* output;
    } rows[] = {
        {{"fakeraid", "0", "LSI-MegaRAID"}, "fakeraid: restoring LSI-MegaRAID\n"},
        {{"fakeraid", "1", "Kestrix", "controller"}, "fakeraid: capturing Kestrix controller\n"},
        {{"fakeraid", "2", "Kestrix-C1"}, "fakeraid: deploying Kestrix-C1\n"},
    };
    for (const auto& row : rows) {
        const Outcome result = run_(row.arguments);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, row.output);
    }
    const std::vector<std::vector<std::string>> wrong = {{"fakeraid"},
                                                         {"fakeraid", "1"},
                                                         {"fakeraid", "3", "M"},
                                                         {"fakeraid", "-1", "M"},
                                                         {"fakeraid", "01", "M"},
                                                         {"fakeraid", "M", "1"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome refused = run_(arguments);
        EXPECT_EQ(refused.exitCode, 1);
        EXPECT_EQ(refused.output, "Usage: fakeraid 0|1|2 MODEL\n");
    }
    define(R"(, "fakeraid": {"exitCode": 3})");
    EXPECT_EQ(run_({"fakeraid", "2", "M"}).exitCode, 3);
    EXPECT_EQ(run_({"fakeraid", "4", "M"}).exitCode, 1);
}

TEST_F(Simulator, ItsNameSaysWhatItPlays) {
    define("");
    const struct {
        const char* program;
        std::vector<std::string> arguments;
        int exitCode;
        const char* start;
    } rows[] = {
        {"hwdetect", {"/i"}, 0, "Hardware detection\n"},
        {"/srv/x/hwdetect.exe", {"/i"}, 0, "Hardware detection\n"},
        {"C:\\srv\\HWDETECT.EXE", {"/i"}, 0, "Hardware detection\n"},
        {"hwdetect.exe", {"hwdetect", "/i"}, 1, "Usage: hwdetect"},
        {"./fakeraid", {"1", "M"}, 0, "fakeraid: capturing M\n"},
        {"fakeraid.exe", {"9", "M"}, 1, "Usage: fakeraid"},
        {"ZOLEX-SIM.EXE", {"fakeraid", "1", "M"}, 0, "fakeraid: capturing M\n"},
        {"fakeraid2", {"hwdetect", "/i"}, 0, "Hardware detection\n"},
        {"/fakeraid/sim", {"hwdetect", "/i"}, 0, "Hardware detection\n"},
        {"show", {"hwdetect", "/i"}, 0, "Hardware detection\n"},
        {"MegaCli64", {"-pdList", "-a0"}, 0, "                                     \nAdapter #0\n"},
        {"C:\\tools\\MEGACLI.EXE",
         {"-pdList", "-a0"},
         0,
         "                                     \nAdapter #0\n"},
        {"/opt/cfggen1.02.02", {"0", "DISPLAY"}, 1, "LSI"},
        {"cfggen1.02", {"show"}, 0, "Machine type"},
        {"MegaCli64.bat", {"show"}, 0, "Machine type"},
    };
    for (const auto& row : rows) {
        const Outcome result = run_(row.arguments, row.program);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.program;
        EXPECT_EQ(result.output.substr(0, std::string(row.start).size()), row.start) << row.program;
    }
}

TEST_F(Simulator, UnknownUtilitiesAndCommandsAreRefused) {
    define("");
    const Outcome utility = run_({"util", "CFGGEN2", "0", "DISPLAY"});
    EXPECT_EQ(utility.exitCode, 1);
    EXPECT_EQ(utility.output, "UTIL: unknown utility CFGGEN2\n");
    const Outcome none = run_({"util"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.output, "UTIL: no utility given\n");
    const Outcome option = run_({"util", "megacli", "-Restart"});
    EXPECT_EQ(option.exitCode, 1);
    EXPECT_EQ(option.output, std::string(37, ' ') + "\nInvalid input at or near token -Restart\n"
                                                    "\nExit Code: 0x01\n");
    const Outcome command = run_({"explode"});
    EXPECT_EQ(command.exitCode, 1);
    EXPECT_EQ(command.error.substr(0, 47), "zolex-sim: unknown command explode\nUsage: zolex");
    const Outcome nothing = run_({});
    EXPECT_EQ(nothing.exitCode, 1);
    EXPECT_EQ(nothing.error.substr(0, 12), "Usage: zolex");
    const Outcome help = run_({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.output.substr(0, 12), "Usage: zolex");
    EXPECT_EQ(run_({"show", "all"}).exitCode, 1);
}

TEST_F(Simulator, CommandsBuildOnEachOther) {
    define("");
    EXPECT_EQ(run_.util("-CfgLdAdd R5 [ 8:0,8:1,8:2 ] WB ADRA -strpsz 64 -a0").exitCode, 0);
    EXPECT_EQ(run_.util("-PDHSP { -Set } -PhysDrv[ 8:3 ] -a0").exitCode, 0);
    EXPECT_EQ(run_.util("-CfgLdAdd R0 [ 8:3 ] -a0").exitCode, 0x26);
    EXPECT_EQ(run_({"show"}).output,
              "Machine type 8837, serial number KQ1\n"
              "\n"
              "Controller 1: LSI-MegaRAID-8480, MEGACLI, PCI 2:1:0 1000:0411:0000:0000\n"
              "  drive 8:0            1000 MB  SAS  ZS000000             online\n"
              "  drive 8:1            1000 MB  SAS  ZS000001             online\n"
              "  drive 8:2            1000 MB  SAS  ZS000002             online\n"
              "  drive 8:3            1000 MB  SAS  ZS000003             hotspare\n"
              "  array 0: [8:0,8:1,8:2]\n"
              "  logical drive 0: array 0, RAID5, 2000 MB, stripe 64 KB, WB, ADRA\n");
    EXPECT_EQ(run_.util("-CFGCLR -A0 -SILENT").exitCode, 0);
    EXPECT_EQ(run_.util("-CfgLdAdd R0 [ 8:3 ] -a0").exitCode, 0);
}

TEST(Show, NumbersThatStayAndForeignConfigurations) {
    Server server = serverOf(definitionWith(
        R"({"slot": 0, "count": 2, "sizeMB": 1000},
           {"slot": 2, "count": 4, "sizeMB": 1000, "status": "foreign"})",
        R"("foreignConfigurations": [{"level": "RAID5", "drives": [":2", ":3"], "missing": 1,
           "sizeMB": 2000, "name": "data"}, {"level": "RAID0", "drives": [":4"]}],)"));
    for (const char* command :
         {"-CfgLdAdd R0 [:0] -a0", "-CfgLdAdd R0 [:1] -a0", "-CfgLdDel -L0 -a0"}) {
        ASSERT_EQ(megacli(server, command).exitCode, 0) << command;
    }
    const std::string text = showServer(server, {}).output;
    EXPECT_EQ(text.substr(text.find("  array")),
              "  array 0: [:1]\n"
              "  logical drive 1: array 0, RAID0, 1000 MB, stripe 64 KB, WT, NORA\n"
              "  foreign configuration 0: [:2,:3], RAID5, 2000 MB, 1 missing, \"data\"\n"
              "  foreign configuration 1: [:4], RAID0\n"
              "  foreign configuration 2: [:5]\n");
}

TEST_F(Simulator, AFaultOnTheSecondCreatingCommand) {
    define(R"(, "faults": [{"match": "-cfgldadd", "occurrence": 2, "exitCode": 5,
                            "output": "FW error\n"}])");
    EXPECT_EQ(run_.util("-CfgLdAdd R0 [8:0] -a0").exitCode, 0);
    EXPECT_EQ(run_.util("-pdList -a0").exitCode, 0);
    const Outcome second = run_.util("-CfgLdAdd R0 [8:1] -a0");
    EXPECT_EQ(second.exitCode, 5);
    EXPECT_EQ(second.output, "FW error\n");
    EXPECT_NE(run_({"show"}).output.find("drive 8:1            1000 MB  SAS  ZS000001"
                                         "             good"),
              std::string::npos);
    EXPECT_EQ(run_.util("-CfgLdAdd R0 [8:1] -a0").exitCode, 0);
    EXPECT_EQ(run_.util("-CfgLdAdd R0 [8:2] -a0").exitCode, 0);
}

TEST_F(Simulator, AFaultOnEveryCommandOfAKind) {
    define(R"(, "faults": [{"match": "MEGACLI -CFGCLR -A0", "exitCode": 49},
                           {"match": "hwdetect /i", "exitCode": 9, "delayMs": 1500},
                           {"match": "fakeraid 1", "exitCode": 0}])");
    EXPECT_EQ(run_.util("-CFGCLR  -A0 -SILENT").exitCode, 49);
    EXPECT_EQ(run_.util("-CFGCLR -A0").exitCode, 49);
    EXPECT_EQ(run_.util("-pdList -a0").exitCode, 0);
    EXPECT_TRUE(run_.pauses.empty());
    EXPECT_EQ(run_({"hwdetect", "/i"}).exitCode, 9);
    EXPECT_EQ(run_.pauses, std::vector<std::chrono::milliseconds>{std::chrono::milliseconds(1500)});
    EXPECT_EQ(run_({"fakeraid", "1", "M"}).output, "");
    EXPECT_EQ(run_({"fakeraid", "2", "M"}).output, "fakeraid: deploying M\n");
}

TEST_F(Simulator, AFaultThatOnlyPrints) {
    define(R"(, "faults": [{"match": "-pdList", "output": "first\n", "outputBytes": 5000000}])");
    const Outcome result = run_.util("-pdList -a0");
    EXPECT_EQ(result.exitCode, 0);
    define("");
    const std::string listing = run_.util("-pdList -a0").output;
    ASSERT_EQ(result.output.size(), 6 + 5000000 + listing.size());
    EXPECT_EQ(result.output.substr(0, 6 + 80), "first\n" + std::string(79, '.') + "\n");
    EXPECT_EQ(result.output.substr(6 + 5000000 - 1, 1), "\n");
    EXPECT_EQ(result.output.substr(6 + 5000000), listing);
}

TEST_F(Simulator, FillerOfAnyLengthEndsItsLine) {
    for (const int bytes : {1, 2, 79, 80, 81, 160, 161}) {
        define(formatted(R"(, "faults": [{"match": "show", "exitCode": 0, "outputBytes": %d}])",
                         bytes));
        const std::string text = run_({"show"}).output;
        ASSERT_EQ(text.size(), static_cast<std::size_t>(bytes));
        EXPECT_EQ(text.back(), '\n');
        for (const std::string& line : splitWords(text)) {
            EXPECT_LE(line.size(), 79U);
        }
    }
}

TEST_F(Simulator, ACountThatCannotBeKeptStopsTheCommand) {
    define(R"(, "faults": [{"match": "-CFGCLR", "occurrence": 2, "exitCode": 5}])");
    run_.environment.failsToSave = [](ReplaceStep) { return true; };
    EXPECT_EQ(run_.util("-pdList -a0").exitCode, 0);
    const Outcome result = run_.util("-CFGCLR -A0");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
}

} // namespace
} // namespace zolex_sim::test
