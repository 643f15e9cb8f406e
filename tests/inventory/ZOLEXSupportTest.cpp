#include "inventory/ZOLEXSupport.h"

#include "driver/Application.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

using test::FakePlatform;

class HardwareInfo : public ::testing::Test {
  protected:
    /// Asks a detector that ends with `exitCode` after printing `output`.
    bool ask(std::string output, std::uint32_t exitCode = 0) {
        platform.results.push_back(FakePlatform::ended(exitCode, std::move(output)));
        return ask();
    }
    bool ask() {
        machine = ZOLEXSupport::gatherHardwareInfo(
            std::make_unique<Tool>(platform, application.report(), limit), application.report());
        return machine.has_value();
    }

    FakePlatform platform;
    Application application{platform};
    std::chrono::milliseconds limit = Tool::defaultLimit;
    std::optional<Machine> machine;
};

TEST_F(HardwareInfo, RunsTheDetector) {
    EXPECT_TRUE(ask("Machine_Type=8837\nSerial_Number=KD12345\n"));
    EXPECT_EQ(platform.children, std::vector<std::string>{"hwdetect.exe /i"});
    EXPECT_EQ(machine->machineType, "8837");
    EXPECT_EQ(machine->serialNumber, "KD12345");
    EXPECT_EQ(platform.consoleFake.output, "");
}

TEST_F(HardwareInfo, TheDetectorMayRunAsLongAsAnyChild) {
    limit = std::chrono::milliseconds(100);
    EXPECT_TRUE(ask(""));
    EXPECT_EQ(platform.limits, std::vector{std::chrono::milliseconds(100)});
}

TEST_F(HardwareInfo, ReadsTheSecondFieldOfTheLinesWithAKey) {
    const std::string key = "Machine_Type=";
    struct {
        std::string output;
        std::string machineType;
        std::string serialNumber;
    } const rows[] = {
        {"", "", ""},
        {"Machine_Type = 8837\n", "8837", ""},
        {"Machine_Type =\t 8837 \t\n", "8837", ""},
        {"Machine_Type=8837\r\nSerial_Number=A1\r\n", "8837", "A1"},
        {"Machine_Type=8837\rx\n", "8837\rx", ""},
        {"Serial_Number=A1", "", "A1"}, // an unterminated last line counts
        {"\n\nBIOS=1\nthe Machine_Type is=88 37=9\n", "88 37", ""},
        {"Machine_Type=1\nMachine_Type=2\n", "2", ""}, // later lines overwrite earlier ones
        {"Serial_Number=A1\nSerial_Number=B2\n", "", "B2"},
        {"Machine_Type=1\nMachine_Type\n", "", ""},
        {"machine_type=1\nSERIAL_NUMBER=2\nMachine Type=3\n", "", ""},
        {"Machine_Type Serial_Number=5\n", "5", "5"},
        {"=Machine_Type=5\n", "Machine_Type", ""},
        // Pieces are 198 bytes long at most; the next one lacks the key.
        {key + std::string(185, 'x') + "Serial_Number=y\n", std::string(185, 'x'), "y"},
        {key + std::string(183, 'x') + "yz\n", std::string(183, 'x') + "yz", ""},
        {std::string(198, 'x') + "Machine_Type=1\n", "1", ""},
        {std::string(192, 'x') + "Machine_Type=1\n", "", ""},
        // A line of 197 bytes fits with its newline, the carriage return is not counted.
        {key + std::string(184, 'x') + "\r\nSerial_Number=1\n", std::string(184, 'x'), "1"},
        {key + std::string(185, 'x') + "\r\nSerial_Number=1\n", std::string(185, 'x'), "1"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(ask(row.output)) << row.output;
        EXPECT_EQ(machine->machineType.view(), row.machineType) << row.output;
        EXPECT_EQ(machine->serialNumber.view(), row.serialNumber) << row.output;
    }
}

// A value that a NUL ended kept the blanks before it: "8837 " matched no policy for "m:8837".
TEST_F(HardwareInfo, AValueIsTrimmedUpToItsFirstZeroByte) {
    using namespace std::string_literals;
    EXPECT_TRUE(ask("Machine_Type= 8837 \t\0x\nSerial_Number=KQ1\0\n"s));
    EXPECT_EQ(machine->machineType.view(), "8837");
    EXPECT_EQ(machine->serialNumber.view(), "KQ1");
}

TEST_F(HardwareInfo, AnotherExitCodeIsReported) {
    EXPECT_FALSE(ask("Machine_Type=8837\n", 7));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "ZOLEXSupport.gatherHardwareInfo: Return code is 7.\n");
    EXPECT_FALSE(ask("", 0xFFFFFFFF));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "ZOLEXSupport.gatherHardwareInfo: Return code is -1.\n");
}

TEST_F(HardwareInfo, ADetectorThatCannotRunIsReported) {
    const std::string failed = "ZOLEXSupport.gatherHardwareInfo:Execution failed.\n";
    struct {
        ChildOutcome outcome;
        std::string printed;
    } const rows[] = {
        {ChildOutcome::notStarted, failed},
        {ChildOutcome::notClosed, failed},
        {ChildOutcome::noPipe, "CreatePipe Faield:Tool::Tool()\n" + failed},
        {ChildOutcome::stillRunning,
         "\n### Process hwdetect.exe /i has failed to execute within the five minute limit.\n"
         "Process cancelled.\n" +
             failed},
    };
    for (const auto& row : rows) {
        platform.results.push_back({row.outcome, 0, "Machine_Type=8837\n"});
        EXPECT_FALSE(ask());
        EXPECT_EQ(platform.consoleFake.takeOutput(), row.printed);
    }
}

TEST_F(HardwareInfo, ARunnerThatCannotBeMadeIsReported) {
    EXPECT_FALSE(ZOLEXSupport::gatherHardwareInfo(nullptr, application.report()));
    EXPECT_EQ(platform.consoleFake.output, "ZOLEXSupport.gatherHardwareInfo: util is NULL\n");
    EXPECT_TRUE(platform.children.empty());
}

TEST_F(HardwareInfo, MessagesAreShownAtEveryVerbosity) {
    for (const std::int32_t verbosity : {level::unset, level::always, level::traces}) {
        application.printer().setVerbosity(verbosity);
        EXPECT_FALSE(ask("", 1));
        EXPECT_EQ(platform.consoleFake.takeOutput(),
                  "ZOLEXSupport.gatherHardwareInfo: Return code is 1.\n");
    }
}

} // namespace
} // namespace zolex
