#include "commands/CommandSource.h"

#include "driver/PrinterReport.h"
#include "foundation/FileSystem.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace zolex::test {
namespace {

class CommandSourceTest : public ::testing::Test {
  protected:
    CString capture(std::int32_t type, std::int32_t scanOrder, std::size_t index = 0) {
        return GetConfigFiles(options, report).getCommand(controllerOf(type, scanOrder), 1, index);
    }
    CString restore(std::int32_t type, std::int32_t scanOrder, std::size_t index = 0) {
        return RestoreDefaults(options, report).getCommand(controllerOf(type, scanOrder), 1, index);
    }
    const RAIDController& controllerOf(std::int32_t type, std::int32_t scanOrder) {
        controller.setType(type);
        controller.setScanOrder(scanOrder);
        return controller;
    }

    FakePlatform platform;
    Printer printer{platform.console()};
    PrinterReport report{printer};
    SourceOptions options;
    RAIDController controller;
};

TEST_F(CommandSourceTest, CaptureLineOfEveryType) {
    struct Row {
        std::int32_t type;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {1,  "UTIL.BAT QTCSEND GETCONFIG 2 AL\n"},
        {2,  "UTIL.BAT ARCCONF GETCONFIG 2 AL\n"},
        {3,  "UTIL.BAT HRCONF GETCONFIG 2 AL\n"},
        {4,  "UTIL.BAT HRCONF GETCONFIG 2 AL\n"},
        {5,  "UTIL.BAT CFGGEN1.02.02 1 DISPLAY \n"},
        {6,  "UTIL.BAT HYPERWIN /L /D10 \n"},
        {7,  "UTIL.BAT ARCCONF GETCONFIG 2 AL\n"},
        {8,  "UTIL.BAT HRCONF GETCONFIG 2 AL\n"},
        {9,  "UTIL.BAT HRCONF GETCONFIG 2 AL\n"},
        {10, "UTIL.BAT CFGGEN 1 DISPLAY \n"},
        {11, "UTIL.BAT ARCCONF GETCONFIG 2 AL\n"},
        {12, "UTIL.BAT MEGACLI -pdList -a1 \n"},
        {-1, "\nGOTO ERROR\n"},
        {0,  "\nGOTO ERROR\n"},
        {13, "\nGOTO ERROR\n"},
    };
    // clang-format on
    for (const Row& row : rows) {
        EXPECT_EQ(capture(row.type, 2), row.line) << row.type;
    }
}

TEST_F(CommandSourceTest, RestoreLineOfEveryType) {
    struct Row {
        std::int32_t type;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {1,  "UTIL.BAT QTCSEND SETCONFIG 2 DEFAULT NOPROMPT"},
        {2,  "UTIL.BAT ARCCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {3,  "UTIL.BAT HRCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {4,  "UTIL.BAT HRCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {5,  "UTIL.BAT CFGGEN1.02.02 1 DELETE NOPROMPT"},
        {6,  "UTIL.BAT HYPERWIN /Ea"},
        {7,  "UTIL.BAT ARCCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {8,  "UTIL.BAT HRCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {9,  "UTIL.BAT HRCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {10, "UTIL.BAT CFGGEN 1 DELETE NOPROMPT"},
        {11, "UTIL.BAT ARCCONF SETCONFIG 2 DEFAULT NOPROMPT"},
        {12, "UTIL.BAT MEGACLI -CFGCLR -A1 -SILENT"},
        {-1, ""},
        {0,  ""},
        {13, ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        EXPECT_EQ(restore(row.type, 2), row.line) << row.type;
    }
}

TEST_F(CommandSourceTest, LinesOfAnInventoryAreRemarks) {
    options.remarks = true;
    EXPECT_EQ(capture(1, 1), "REM * UTIL.BAT QTCSEND GETCONFIG 1 AL\n");
    EXPECT_EQ(capture(5, 1), "REM * UTIL.BAT CFGGEN1.02.02 0 DISPLAY \n");
    EXPECT_EQ(capture(6, 1), "REM * UTIL.BAT HYPERWIN /L /D10 \n");
    EXPECT_EQ(capture(12, 1), "REM * UTIL.BAT MEGACLI -pdList -a0 \n");
    EXPECT_EQ(capture(13, 1), "REM * \nGOTO ERROR\n");
    EXPECT_EQ(restore(1, 1), "REM * UTIL.BAT QTCSEND SETCONFIG 1 DEFAULT NOPROMPT");
    EXPECT_EQ(restore(6, 1), "REM * UTIL.BAT HYPERWIN /Ea");
    EXPECT_EQ(restore(10, 1), "REM * UTIL.BAT CFGGEN 0 DELETE NOPROMPT");
    EXPECT_EQ(restore(12, 1, 1), "REM * UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT");
    EXPECT_EQ(restore(13, 1), "");
}

TEST_F(CommandSourceTest, PathPrefixStandsBeforeTheUtilityCommand) {
    options.style.pathPrefix = "C:\\RAID\\";
    EXPECT_EQ(capture(4, 1), "C:\\RAID\\UTIL.BAT HRCONF GETCONFIG 1 AL\n");
    EXPECT_EQ(capture(6, 1, 1), "C:\\RAID\\UTIL.BAT HYPERWIN /L /D20 \n");
    EXPECT_EQ(capture(12, 1, 1), "C:\\RAID\\UTIL.BAT MEGACLI -adpallinfo -a0 \n");
    EXPECT_EQ(restore(5, 3), "C:\\RAID\\UTIL.BAT CFGGEN1.02.02 2 DELETE NOPROMPT");
    options.remarks = true;
    EXPECT_EQ(capture(4, 1), "REM * C:\\RAID\\UTIL.BAT HRCONF GETCONFIG 1 AL\n");
}

TEST_F(CommandSourceTest, MegaCliListingsByCommandNumber) {
    // clang-format off
    const char* const drivesOnly[] = {
        "UTIL.BAT MEGACLI -pdList -a0 \n",
        "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
        "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
    };
    const char* const withLogicalDrives[] = {
        "UTIL.BAT MEGACLI -LdPdInfo -a0 \n",
        "UTIL.BAT MEGACLI -pdList -a0 \n",
        "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
        "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
    };
    // clang-format on
    for (std::size_t i = 0; i < std::size(drivesOnly); ++i) {
        EXPECT_EQ(capture(12, 1, i), drivesOnly[i]) << i;
    }
    options.withLayout = true;
    for (std::size_t i = 0; i < std::size(withLogicalDrives); ++i) {
        EXPECT_EQ(capture(12, 1, i), withLogicalDrives[i]) << i;
    }
}

TEST_F(CommandSourceTest, HyperwinDrivesByCommandNumber) {
    EXPECT_EQ(capture(6, 1, 0), "UTIL.BAT HYPERWIN /L /D10 \n");
    EXPECT_EQ(capture(6, 1, 1), "UTIL.BAT HYPERWIN /L /D20 \n");
    options.withLayout = true;
    EXPECT_EQ(capture(6, 1, 0), "UTIL.BAT HYPERWIN /L /D00 \n");
    EXPECT_EQ(capture(6, 1, 1), "UTIL.BAT HYPERWIN /L /D10 \n");
    EXPECT_EQ(capture(6, 1, 2), "UTIL.BAT HYPERWIN /L /D20 \n");
}

TEST_F(CommandSourceTest, ForeignConfigurationsAreClearedByTheSecondMegaCliCommand) {
    EXPECT_EQ(restore(12, 1, 0), "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT");
    EXPECT_EQ(restore(12, 1, 1), "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT");
    EXPECT_EQ(restore(12, 15, 1), "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A14 -SILENT");
}

TEST_F(CommandSourceTest, NumberOfCommandsOfEveryType) {
    for (const bool capturing : {false, true}) {
        options.withLayout = capturing;
        const GetConfigFiles getConfig(options, report);
        const RestoreDefaults restoreDefaults(options, report);
        for (std::int32_t type = -1; type <= 13; ++type) {
            const bool several = type == 6 || type == 12;
            const std::size_t captures = !several ? 1U : capturing ? 3U : 2U;
            EXPECT_EQ(getConfig.numberOfCommands(controllerOf(type, 1)), captures) << type;
            EXPECT_EQ(restoreDefaults.numberOfCommands(controllerOf(type, 1)), type == 12 ? 2U : 1U)
                << type;
        }
    }
}

TEST_F(CommandSourceTest, CaptureLogsItsEntry) {
    printer.setVerbosity(level::traces);
    GetConfigFiles source(options, report);
    static_cast<void>(source.getCommand(controllerOf(12, 1), 3, 1));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "Entering GetConfigFiles::getCommand, controller type=12, num=3, comandNum=1\n");
    static_cast<void>(source.getCommand(controllerOf(-1, 1), 36, 0));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "Entering GetConfigFiles::getCommand, controller type=-1, num=36, comandNum=0\n");
    printer.setVerbosity(level::detail);
    static_cast<void>(source.getCommand(controllerOf(12, 1), 3, 1));
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
}

TEST_F(CommandSourceTest, Type5IsAddressedLikeItsUtility) {
    EXPECT_TRUE(usesCfggenSyntax("UTIL.BAT CFGGEN1.02.02", "UTIL.BAT CFGGEN"));
    EXPECT_TRUE(usesCfggenSyntax("UTIL.BAT CFGGEN", "UTIL.BAT CFGGEN"));
    EXPECT_FALSE(usesCfggenSyntax("UTIL.BAT CFGGEN2", "UTIL.BAT CFGGEN"));
    EXPECT_FALSE(usesCfggenSyntax("", "UTIL.BAT CFGGEN"));
}

constexpr const char* captureSection =
    ":ERROR\n"
    "REM *---------------------------------------------------------------*\n"
    "REM * Perform error handling.\n"
    "REM *---------------------------------------------------------------*\n"
    "ECHO ### ERROR\n"
    "ECHO      Error gathering information from controller %2.\n"
    "ECHO      Received error return code %3 from the %4 command.\n"
    "ZLXERR.BAT /error\n"
    "\n";

constexpr const char* restoreSection =
    ":ERROR\n"
    "REM *---------------------------------------------------------------*\n"
    "REM * Perform error handling.\n"
    "REM *---------------------------------------------------------------*\n"
    "ECHO ### ERROR\n"
    "ECHO      Error restoring controller %2 to factory-default settings.\n"
    "ECHO      Received error return code %3 from the %4 command.\n"
    "IF \"%4\"==\"UTIL.BAT QTCSEND\" "
    "ECHO      Note: Be sure that the qtcraspi.sys DOS device driver is loaded.\n"
    "T:\\TEMP\\ZLXERR.BAT /error\n"
    "\n";

TEST_F(CommandSourceTest, CaptureErrorSection) {
    const std::unique_ptr<File> script = platform.fileFake.open("x.bat", "w");
    EXPECT_TRUE(GetConfigFiles(options, report).writeErrorSection(*script));
    EXPECT_EQ(platform.fileFake.files["x.bat"], captureSection);
}

TEST_F(CommandSourceTest, RestoreErrorSection) {
    options.scriptPrefix = "T:\\TEMP\\";
    options.style.pathPrefix = "C:\\RAID\\";
    const std::unique_ptr<File> script = platform.fileFake.open("x.bat", "w");
    EXPECT_TRUE(RestoreDefaults(options, report).writeErrorSection(*script));
    EXPECT_EQ(platform.fileFake.files["x.bat"], restoreSection);
}

/// Counts writes and fails the n-th.
class FailingFile : public File {
  public:
    std::size_t read(std::span<char> /*bytes*/) override { return 0; }
    std::size_t write(std::string_view bytes) override {
        EXPECT_FALSE(closed) << "written after it was closed";
        if (++writes == failWrite) {
            return bytes.size() - 1;
        }
        content += bytes;
        return bytes.size();
    }
    bool failed() const override { return false; }
    bool rewind() override { return true; }
    bool flush() override { return !failFlush; }
    bool close() override {
        EXPECT_FALSE(closed) << "closed twice";
        closed = true;
        return true;
    }

    int writes = 0;
    int failWrite = -1;
    bool failFlush = false;
    bool closed = false;
    std::string content;
};

TEST_F(CommandSourceTest, FailedWriteOfTheErrorSectionClosesTheFile) {
    struct Row {
        bool restore;
        int writes;
    };
    for (const Row row : {Row{false, 8}, Row{true, 9}}) {
        GetConfigFiles captureSource(options, report);
        RestoreDefaults restoreSource(options, report);
        CommandSource& source = row.restore ? static_cast<CommandSource&>(restoreSource)
                                            : static_cast<CommandSource&>(captureSource);
        FailingFile good;
        EXPECT_TRUE(source.writeErrorSection(good));
        EXPECT_FALSE(good.closed);
        EXPECT_EQ(good.writes, row.writes);
        for (int failing = 1; failing <= row.writes; ++failing) {
            FailingFile bad;
            bad.failWrite = failing;
            EXPECT_FALSE(source.writeErrorSection(bad)) << failing;
            EXPECT_TRUE(bad.closed) << failing;
            EXPECT_EQ(bad.writes, failing);
        }
        FailingFile full;
        full.failFlush = true;
        EXPECT_FALSE(source.writeErrorSection(full));
        EXPECT_TRUE(full.closed);
    }
}

} // namespace
} // namespace zolex::test
