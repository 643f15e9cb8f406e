#include "companion/commands/Commands.h"

#include "companion/machine/System.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/SimulatedPlatform.h"
#include "foundation/FileSystem.h"
#include "model/State.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace zolex::companion {
namespace {

using test::keepDocument;
using test::SimulatedPlatform;
using zolex::test::TemporaryDirectory;

struct Examined {
    int code = -1;
    std::string output;
    std::string error;
};

/// Numbers before " ms" are "N", and what stands in the row of the temporary folder is left out.
std::string withoutTimes(std::string text) {
    for (std::size_t at = text.find(" ms"); at != std::string::npos;
         at = text.find(" ms", at + 3)) {
        std::size_t begin = at;
        while (begin > 0 && text[begin - 1] >= '0' && text[begin - 1] <= '9') {
            --begin;
        }
        const std::size_t blanks = text.find_first_not_of(' ', at + 3) - at - 3;
        text.replace(begin, at + 3 + blanks - begin, "N ms ");
        at = begin;
    }
    if (const std::size_t row = text.find("clock, temp"); row != std::string::npos) {
        const std::size_t end = text.find('\n', text.find(" free", row));
        text.replace(row, end - row, "clock, temp ...");
    }
    return text;
}

void addFile(SimulatedPlatform& platform, const std::string& name) {
    platform.fileFake.files[(system::isWindows ? "tools\\" : "tools/") + name] = "";
}

std::string pathOf(const std::string& name) {
    return (system::isWindows ? "tools\\" : "tools/") + name;
}

Examined runDoctor(SimulatedPlatform& platform, Format format = Format::text, bool verbose = false,
                   MachineOptions machine = {}) {
    machine.utilitiesFolder = "tools";
    platform.consoleFake.output.clear();
    platform.consoleFake.error.clear();
    Context context{platform, std::move(machine), format, "", {}, {}, false, verbose, {"doctor"}};
    Examined examined;
    examined.code = doctor(context);
    examined.output = platform.consoleFake.output;
    examined.error = platform.consoleFake.error;
    return examined;
}

/// The machine with UTIL.BAT and hwdetect.exe.
Examined runWrapped(SimulatedPlatform& platform, Format format = Format::text) {
    addFile(platform, "UTIL.BAT");
    addFile(platform, "hwdetect.exe");
    return runDoctor(platform, format);
}

/// What stands behind the table: the findings.
std::string findingsOf(const Examined& examined) {
    const std::size_t table = examined.output.find("clock, temp");
    const std::size_t end = examined.output.find(" free", table);
    return examined.output.substr(examined.output.find('\n', end) + 1);
}

TEST(Doctor, TellsThatAllIsWell) {
    SimulatedPlatform platform("configured");
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(withoutTimes(examined.output), "UTIL.BAT        ok      " + pathOf("UTIL.BAT") +
                                                 R"(; keeps exit codes
hwdetect.exe    ok      machine type 8837, serial KQ10Z7W
MEGACLI         ok      controller 1: LSI MegaRAID SAS 8480E, firmware
                        1.11.50-0300
  -LdPdInfo     ok      N ms read fully: 9 blocks
  -pdList       ok      N ms read fully: 8 blocks
  -adpallinfo   ok      N ms read fully: 15 of 32 keys used
ARCCONF         missing no controller needs it
HRCONF          missing no controller needs it
QTCSEND         missing no controller needs it
CFGGEN          missing no controller needs it
CFGGEN1.02.02   missing no controller needs it
HYPERWIN        missing no controller needs it
console         ok      80 columns, no colours
clock, temp ...
No findings.
)");
    EXPECT_EQ(examined.error, "");
    EXPECT_EQ(examined.code, exit_code::done);
}

TEST(Doctor, FindsUtilitiesByTheirOwnNames) {
    SimulatedPlatform platform("mixed");
    const std::string exe = system::isWindows ? ".exe" : "";
    for (const char* const name :
         {"MegaCli64", "arcconf", "hrconf", "qtcsend", "cfggen", "cfggen1.02.02", "hyperwin"}) {
        addFile(platform, name + exe);
    }
    addFile(platform, "hwdetect.exe");
    const Examined examined = runDoctor(platform);
    EXPECT_EQ(examined.code, exit_code::done) << examined.output;
    EXPECT_NE(examined.output.find(
                  "UTIL.BAT        missing not needed: utilities are found by their own names\n"),
              std::string::npos);
    EXPECT_NE(examined.output.find("HYPERWIN        ok      controller 7: LSI-IDEal-RAID; " +
                                   pathOf("hyperwin" + exe) + "\n"),
              std::string::npos);
    EXPECT_NE(examined.output.find("No findings.\n"), std::string::npos);
}

TEST(Doctor, EverySampleIsWellAndStaysAsItWas) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        const std::string before = zolex_sim::writeState(platform.server);
        const Examined text = runWrapped(platform);
        EXPECT_EQ(text.code, exit_code::done) << text.output;
        EXPECT_TRUE(text.output.ends_with("\nNo findings.\n")) << text.output;
        std::size_t longest = 0;
        for (std::size_t at = 0; at < text.output.size();) {
            const std::size_t end = text.output.find('\n', at);
            longest = std::max(longest, end - at);
            at = end + 1;
        }
        EXPECT_LE(longest, 80U) << text.output;
        const Examined json = runWrapped(platform, Format::json);
        EXPECT_EQ(json.code, exit_code::done);
        keepDocument("doctor-" + sample, json.output);
        EXPECT_EQ(zolex_sim::writeState(platform.server), before);
    }
}

/// Recordings stand in files of the system; all else of this platform is in memory.
class RecordedPlatform : public SimulatedPlatform {
  public:
    explicit RecordedPlatform(const std::string& sample)
        : SimulatedPlatform(sample), files_(fileFake) {}
    FileSystem& files() override { return files_; }

  private:
    class Files : public StandardFileSystem {
      public:
        explicit Files(FileSystem& memory) : memory_(memory) {}
        std::unique_ptr<File> open(std::string_view name, const char* mode) override {
            return isRecording(name) ? StandardFileSystem::open(name, mode)
                                     : memory_.open(name, mode);
        }
        bool isFile(std::string_view name) override { return memory_.isFile(name); }

      private:
        static bool isRecording(std::string_view name) {
            return name.find(".zrec") != std::string_view::npos;
        }
        FileSystem& memory_;
    };

    Files files_;
};

TEST(Doctor, OnARecordingItTellsWhatItToldOfTheMachine) {
    const TemporaryDirectory folder;
    for (const std::string& sample : SimulatedPlatform::samples()) {
        RecordedPlatform platform(sample);
        const Examined live = runWrapped(platform);
        MachineOptions options;
        Context recording{platform, {}, Format::text, "made.zrec", {}, {}, false, false, {}};
        recording.machine.utilitiesFolder = "tools";
        ASSERT_EQ(record(recording, {}), exit_code::done) << platform.consoleFake.error;
        options.recording = "made.zrec";
        platform.devices.clear();
        platform.children.clear();
        platform.now = {2001, 1, 1, 0, 0, 0};
        const Examined replayed = runDoctor(platform, Format::text, false, options);
        EXPECT_EQ(withoutTimes(replayed.output), withoutTimes(live.output));
        EXPECT_EQ(replayed.code, live.code);
        EXPECT_TRUE(platform.children.empty());
    }
}

/// One that `show` has kept does not hold the verb.
TEST(Doctor, ARecordingWithoutTheVerbTellsNothingOfExitCodes) {
    const TemporaryDirectory folder;
    RecordedPlatform platform("single");
    addFile(platform, "UTIL.BAT");
    addFile(platform, "hwdetect.exe");
    Context context{platform, {}, Format::text, "", {}, {}, false, false, {}};
    context.machine.utilitiesFolder = "tools";
    context.machine.record = "kept.zrec";
    ASSERT_EQ(show(context, {}), exit_code::done);
    MachineOptions options;
    options.recording = "kept.zrec";
    const Examined examined = runDoctor(platform, Format::text, false, options);
    EXPECT_EQ(examined.code, exit_code::done) << examined.output;
    EXPECT_TRUE(examined.output.starts_with("UTIL.BAT        ok      " + pathOf("UTIL.BAT") + "\n"))
        << examined.output;
}

TEST(Doctor, QuietlyItTellsWhatIsWrongAlone) {
    SimulatedPlatform platform("single");
    addFile(platform, "UTIL.BAT");
    addFile(platform, "hwdetect.exe");
    Context context{platform, {}, Format::text, "", {}, {}, true, false, {}};
    context.machine.utilitiesFolder = "tools";
    EXPECT_EQ(doctor(context), exit_code::done);
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
    platform.devices.clear();
    EXPECT_EQ(doctor(context), exit_code::found);
    EXPECT_TRUE(platform.consoleFake.output.starts_with("error: machine: no PCI function"));
}

/// Is the wrapper right: a verb that there is not must end with another code than 0.
TEST(Doctor, AWrapperThatLosesExitCodesIsFound) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        result.exitCode = 0;
        return result;
    };
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(examined.output.find("UTIL.BAT        FAIL    " + pathOf("UTIL.BAT") +
                                   "; loses exit codes\n"),
              std::string::npos);
    EXPECT_EQ(findingsOf(examined),
              R"(error: UTIL.BAT: UTIL.BAT MEGACLI -ZOLEXCTL-NO-SUCH-VERB ended with exit code 0,
  although there is no such verb [ZP114]
  help: let UTIL.BAT end with the code of the program: exit /b %ERRORLEVEL%, or
        exec in a script
1 finding. To report: zolexctl record --redact -o report.zrec
)");
    keepDocument("doctor-wrapper", runWrapped(platform, Format::json).output);
}

TEST(Doctor, AProgramOfTheUserThatLosesExitCodesIsFoundToo) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        result.exitCode = 0;
        return result;
    };
    addFile(platform, "hwdetect.exe");
    MachineOptions options;
    options.utilities["MEGACLI"] = "/opt/my tools/MegaCli64";
    const Examined examined = runDoctor(platform, Format::text, false, options);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(examined.output.find("MEGACLI         FAIL    controller 1: LSI MegaRAID SAS 8480E, "
                                   "firmware\n                        1.11.50-0300; /opt/my "
                                   "tools/MegaCli64; loses exit codes\n"),
              std::string::npos)
        << examined.output;
}

TEST(Doctor, AUtilityThatIsNeededAndMissingIsToldOnce) {
    SimulatedPlatform platform("two-controllers");
    addFile(platform, "hwdetect.exe");
    addFile(platform, system::isWindows ? "arcconf.exe" : "arcconf");
    const Examined examined = runDoctor(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(
        examined.output.find("MEGACLI         MISSING controller 1: LSI-MegaRAID-8480 needs it\n"
                             "MEGACLI         MISSING controller 2: Kestrix-D4 needs it\n"
                             "ARCCONF         ok      " +
                             pathOf(system::isWindows ? "arcconf.exe" : "arcconf") +
                             "; no controller needs it\n"),
        std::string::npos)
        << examined.output;
    EXPECT_EQ(findingsOf(examined),
              R"(error: MEGACLI: MEGACLI is missing, and controllers 1,2 need it [ZP101]
  help: install it, or name it: zolexctl --utility MEGACLI=/path/MegaCli64
        doctor
1 finding. To report: zolexctl record --redact -o report.zrec
)");
    keepDocument("doctor-missing", runDoctor(platform, Format::json).output);
}

TEST(Doctor, AUtilityThatFailsIsToldWithWhatItPrinted) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        return line.find("-pdList") == std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(3, "\nAdapter 0: no\naccess\n");
    };
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(withoutTimes(examined.output).find("  -pdList       FAIL    N ms exit code 3\n"),
              std::string::npos)
        << examined.output;
    EXPECT_EQ(findingsOf(examined),
              R"(error: controller 1: UTIL.BAT MEGACLI -pdList -a0 ended with exit code 3 [ZP104]
  | Adapter 0: no
  | access
  help: start the command by hand; what it printed tells why
1 finding. To report: zolexctl record --redact -o report.zrec
)");
    keepDocument("doctor-failed", runWrapped(platform, Format::json).output);
}

TEST(Doctor, AnErrorInThePlaceOfAListingIsNotCalledRead) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        return line.find("-pdList") == std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(0, "Failed to get data.\n\nExit Code: 0x01\n");
    };
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(withoutTimes(examined.output).find("  -pdList       FAIL    N ms no listing\n"),
              std::string::npos)
        << examined.output;
}

TEST(Doctor, AServerWithErrorsForAllListingsHasNoListingInEachRow) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        return line.find("MEGACLI -") == std::string::npos ||
                       line.find("NO-SUCH") != std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(0, "Failed to get data.\n\nExit Code: 0x01\n");
    };
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(withoutTimes(examined.output)
                  .find("  -LdPdInfo     FAIL    N ms no listing\n"
                        "  -pdList       FAIL    N ms no listing\n"
                        "  -adpallinfo   FAIL    N ms no listing\n"),
              std::string::npos)
        << examined.output;
}

/// Lines that nobody knows are counted, and listed when more is asked for.
TEST(Doctor, KeysThatAreNotKnownAreCounted) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        if (line.find("-pdList") != std::string::npos) {
            const std::size_t at = result.output.find("Firmware state");
            result.output.insert(at, "Drive has flagged an odd thing : Yes\n");
        }
        return result;
    };
    const Examined brief = runWrapped(platform);
    EXPECT_EQ(brief.code, exit_code::done);
    EXPECT_NE(withoutTimes(brief.output)
                  .find("  -pdList       ok      N ms read: 8 blocks, 1 key not known\n"
                        "  -adpallinfo "),
              std::string::npos)
        << brief.output;
    const Examined verbose = runDoctor(platform, Format::text, true);
    EXPECT_NE(verbose.output.find("\"Drive has flagged an odd thing\""), std::string::npos)
        << verbose.output;
    keepDocument("doctor-unknown-keys", runWrapped(platform, Format::json).output);
}

TEST(Doctor, AListingThatBreaksOffIsToldWithItsLine) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        if (line.find("-pdList") != std::string::npos) {
            result.output.resize(result.output.rfind("Slot Number"));
        }
        return result;
    };
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(
        withoutTimes(examined.output).find("  -pdList       WARN    N ms 7 of 8 blocks read\n"),
        std::string::npos)
        << examined.output;
    EXPECT_NE(
        findingsOf(examined).find("warning: controller 1: UTIL.BAT MEGACLI -pdList -a0, line"),
        std::string::npos)
        << examined.output;
}

TEST(Doctor, ADetectorThatFailsIsAFindingAndTheOptionsAreNone) {
    SimulatedPlatform platform("single");
    platform.server.detectorExitCode = 2;
    addFile(platform, "UTIL.BAT");
    addFile(platform, "hwdetect.exe");
    const Examined examined = runDoctor(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(examined.output.find(
                  "hwdetect.exe    FAIL    hwdetect.exe /i ended with exit code 2; machine type"),
              std::string::npos)
        << examined.output;
    MachineOptions options;
    options.machineType = "8837";
    options.serialNumber = "KQ1";
    const Examined given = runDoctor(platform, Format::text, false, options);
    EXPECT_EQ(given.code, exit_code::done);
    EXPECT_NE(
        given.output.find("hwdetect.exe    ok      machine type 8837, serial KQ1 (options)\n"),
        std::string::npos)
        << given.output;
}

TEST(Doctor, AMachineWithoutControllersIsAFinding) {
    SimulatedPlatform platform("single");
    platform.devices.clear();
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_EQ(findingsOf(examined),
              R"(error: machine: no PCI function is a RAID controller that zolex knows [ZP120]
  help: look at the list of PCI functions and at the firmware's settings
1 finding. To report: zolexctl record --redact -o report.zrec
)");
    keepDocument("doctor-none", runWrapped(platform, Format::json).output);
}

TEST(Doctor, AClockThatIsWrongIsAFinding) {
    SimulatedPlatform platform("single");
    platform.now.year = 2002;
    const Examined examined = runWrapped(platform);
    EXPECT_EQ(examined.code, exit_code::found);
    EXPECT_NE(findingsOf(examined).find(
                  "warning: clock: the clock says that it is the year 2002 [ZP119]\n"),
              std::string::npos);
}

TEST(Doctor, AControllerThatDoesNotExistIsRefusedInADocumentToo) {
    SimulatedPlatform platform("single");
    addFile(platform, "UTIL.BAT");
    MachineOptions options;
    options.controllers = {9};
    const Examined text = runDoctor(platform, Format::text, false, options);
    EXPECT_EQ(text.code, exit_code::notPossible);
    EXPECT_EQ(text.output, "");
    EXPECT_EQ(text.error, "error: there is no controller 9: this machine has one, number 1\n"
                          "  help: zolexctl doctor looks at all that there are\n");
    const Examined json = runDoctor(platform, Format::json, false, options);
    EXPECT_EQ(json.code, exit_code::notPossible);
    EXPECT_NE(json.output.find("\"there is no controller 9: this machine has one, number 1\""),
              std::string::npos);
    keepDocument("doctor-refused", json.output);
}

TEST(Doctor, ControllersThatWereNotAskedAreSaidSo) {
    SimulatedPlatform platform("mixed");
    MachineOptions options;
    options.controllers = {1};
    addFile(platform, "UTIL.BAT");
    addFile(platform, "hwdetect.exe");
    const Examined examined = runDoctor(platform, Format::text, false, options);
    EXPECT_EQ(examined.code, exit_code::done);
    EXPECT_NE(examined.output.find("ARCCONF         -       its controllers were not asked\n"),
              std::string::npos);
}

} // namespace
} // namespace zolex::companion
