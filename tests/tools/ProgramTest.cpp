// The hardware detector's program, run as zolex runs it.

#include "platform/Platform.h"

#include "support/TemporaryDirectory.h"
#include "tools/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace zolex {
namespace {

using test::setVariable;

/// The program in the current directory, with values in the folder "dmi".
class DetectorProgram : public ::testing::Test {
  protected:
    DetectorProgram() {
        std::filesystem::copy_file(ZOLEX_HWDETECT, "hwdetect.exe");
        directory.write("dmi/product_name", "Kestrel 3650\n");
        directory.write("dmi/product_serial", "KQ1234X\n");
        setVariable("ZOLEX_DMI_ROOT", "dmi");
    }
    ~DetectorProgram() override { setVariable("ZOLEX_DMI_ROOT", ""); }

    /// "exit code: output", CR dropped.
    static std::string run(const std::string& command) {
        const ChildResult result =
            makeSystemPlatform()->runChild(command, true, std::chrono::minutes(1));
        std::string text = std::to_string(result.exitCode) + ": ";
        for (const char c : result.output) {
            text += c == '\r' ? "" : std::string(1, c);
        }
        return result.outcome == ChildOutcome::ended ? text : "not run";
    }

    test::TemporaryDirectory directory;
};

TEST_F(DetectorProgram, IsRunAndEndsAsItShould) {
    EXPECT_EQ(run("hwdetect.exe /i"), "0: Machine_Type=Kestrel 3650\nSerial_Number=KQ1234X\n");
    EXPECT_EQ(run("hwdetect.exe /i --serial-number \"A B\""),
              "0: Machine_Type=Kestrel 3650\nSerial_Number=A B\n");
    EXPECT_TRUE(
        run("hwdetect.exe /i x").starts_with("1: hwdetect.exe: unknown parameter x\nUsage"));
    EXPECT_EQ(run("hwdetect.exe --version"), "0: hwdetect.exe, ZOLEX Version 2.20\n");
    setVariable("ZOLEX_DMI_ROOT", "missing");
    EXPECT_TRUE(run("hwdetect.exe /i").starts_with("2: hwdetect.exe: the firmware tells nothing"));
}

TEST_F(DetectorProgram, AsksTheFirmwareOfThisMachine) {
    setVariable("ZOLEX_DMI_ROOT", "");
    const std::string shown = run("hwdetect.exe /i");
    // What this machine has is not known, but one of both comes.
    EXPECT_TRUE(
        shown.starts_with("2: hwdetect.exe: ") ||
        (shown.starts_with("0: ") && shown.find("Machine_Type=") < shown.find("\nSerial_Number=")))
        << shown;
    setVariable("ZOLEX_MACHINE_TYPE", "8837");
    setVariable("ZOLEX_SERIAL_NUMBER", "7");
    EXPECT_EQ(run("hwdetect.exe /i"), "0: Machine_Type=8837\nSerial_Number=7\n");
    setVariable("ZOLEX_MACHINE_TYPE", "");
    setVariable("ZOLEX_SERIAL_NUMBER", "");
}

} // namespace
} // namespace zolex
