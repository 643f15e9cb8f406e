#include "companion/commands/Commands.h"

#include "companion/support/KeptDocument.h"
#include "companion/support/SimulatedPlatform.h"
#include "foundation/FileSystem.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::keepDocument;
using test::SimulatedPlatform;

/// What one run of `show` wrote.
struct Shown {
    int code = -1;
    std::string output;
    std::string error;
};

Shown run(SimulatedPlatform& platform, Format format, MachineOptions machine = {},
          const ShowOptions& options = {}) {
    for (const char* const folder : {"tools/", "tools\\"}) {
        for (const char* const program : {"UTIL.BAT", "hwdetect.exe"}) {
            platform.fileFake.files[std::string(folder) + program] = "";
        }
    }
    machine.utilitiesFolder = "tools";
    platform.consoleFake.output.clear();
    platform.consoleFake.error.clear();
    Context context{platform, std::move(machine), format, "", {}, {}, false, false, {"show"}};
    Shown shown;
    shown.code = show(context, options);
    shown.output = platform.consoleFake.output;
    shown.error = platform.consoleFake.error;
    return shown;
}

std::size_t countOf(const std::string& text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

std::size_t drivesOf(const zolex_sim::Server& server) {
    std::size_t drives = 0;
    for (const zolex_sim::Controller* controller : server.controllersInPciOrder()) {
        drives += controller->drives.size();
    }
    return drives;
}

TEST(Show, TellsAServerAsText) {
    SimulatedPlatform platform("configured");
    const Shown shown = run(platform, Format::text);
    EXPECT_EQ(shown.code, exit_code::done);
    EXPECT_EQ(shown.error, "");
    EXPECT_EQ(shown.output, R"(Machine 8837, serial KQ10Z7W
Controller 1  LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)  serial 0000000001
              PCI 02:0e.0 1000:0411 1000:1002  firmware 1.11.50-0300
              levels 0 1 5 6 10 50 60, strip 8-1024 KB, rebuild rate 30 %
  Enclosure 32  no  location     size  drive                 state     in
                 1  32:0      67.8 GB  NORVIK NV73455S F000  Online    A
                 2  32:1      67.8 GB  NORVIK NV73455S F001  Online    A
                 3  32:2      67.8 GB  NORVIK NV73455S F002  Online    B
                 4  32:3      67.8 GB  NORVIK NV73455S F003  Online    B
                 5  32:4      67.8 GB  NORVIK NV73455S F004  Online    B
                 6  32:5      67.8 GB  NORVIK NV73455S F005  Online    B
                 7  32:6      67.8 GB  NORVIK NV73455S F006  Online    B
                 8  32:7      67.8 GB  NORVIK NV73455S F007  Hotspare  spare
  A  32:0 32:1  LD 0  RAID1   67.8 GB  optimal  write-back  64 KB
  B  32:2-32:6  LD 1  RAID5  271.0 GB  optimal  write-back  64 KB
  *  32:7       1 hot spare, 67.8 GB
)");
}

/// A failed drive moves the numbers of all drives behind it: policies' drive 3 is another one then.
TEST(Show, TellsThatAFailedDriveHasNoNumber) {
    SimulatedPlatform platform("single");
    platform.server.controllers[0].drives[2].status = zolex_sim::DriveStatus::failed;
    const Shown shown = run(platform, Format::text);
    EXPECT_EQ(shown.code, exit_code::done);
    EXPECT_NE(shown.output.find("     2  32:1      67.8 GB  NORVIK NV73455S A001  "
                                "Unconfigured(good)  free\n"
                                "     -  32:2      67.8 GB  NORVIK NV73455S A002  "
                                "Failed              -\n"
                                "     3  32:3      67.8 GB  NORVIK NV73455S A003  "
                                "Unconfigured(good)  free\n"),
              std::string::npos)
        << shown.output;
    EXPECT_NE(
        shown.output.find("  ! 32:2 (Failed, serial 3LQ2A002) has no number in policies: drive 3 "
                          "is 32:3\n    now\n"),
        std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find("  x  32:2                 failed, serial 3LQ2A002\n"),
              std::string::npos)
        << shown.output;
}

TEST(Show, ShowsEverySampleInEveryFormat) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        const std::size_t drives = drivesOf(platform.server);
        const Shown text = run(platform, Format::text);
        EXPECT_EQ(text.code, exit_code::done) << sample;
        EXPECT_EQ(text.error, "") << sample;
        const Shown json = run(platform, Format::json);
        EXPECT_EQ(json.code, exit_code::done) << sample;
        EXPECT_EQ(countOf(json.output, "\"policy_number\": "), drives) << sample;
        EXPECT_EQ(countOf(json.output, "\"policy_number\": null"), 0U) << sample;
        const Shown svg = run(platform, Format::svg);
        EXPECT_EQ(countOf(svg.output, "<g class=\"slot ") -
                      countOf(svg.output, "<g class=\"slot absent\""),
                  drives)
            << sample;
        const Shown html = run(platform, Format::html);
        EXPECT_EQ(countOf(html.output, "data-location="), drives) << sample;
        keepDocument("show-" + sample + ".txt", text.output);
        keepDocument("machine-" + sample, json.output);
        keepDocument("machine-" + sample + ".svg", svg.output);
        keepDocument("machine-" + sample + ".html", html.output);
    }
}

TEST(Show, LinesOfASampleStayWithinTheTerminal) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        std::string text = run(platform, Format::text).output;
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            EXPECT_LE(end, 80U) << sample << ": " << text.substr(0, end);
            text.erase(0, end + 1);
        }
    }
}

TEST(Show, AMachineWithoutControllersIsNoFault) {
    SimulatedPlatform platform("single");
    platform.devices.clear();
    const Shown shown = run(platform, Format::text);
    EXPECT_EQ(shown.code, exit_code::done);
    EXPECT_EQ(shown.error, "no supported RAID controller was found\n");
    EXPECT_EQ(shown.output, "Machine 8837, serial KQ10Z7V\nNo RAID controller\n");
    const Shown json = run(platform, Format::json);
    EXPECT_EQ(json.code, exit_code::done);
    EXPECT_NE(json.output.find("\"controllers\": [],"), std::string::npos) << json.output;
    keepDocument("machine-without-controllers", json.output);
    keepDocument("machine-without-controllers.svg", run(platform, Format::svg).output);
    keepDocument("machine-without-controllers.html", run(platform, Format::html).output);
}

TEST(Show, AUtilityThatFailsIsToldBesideWhatCouldBeRead) {
    SimulatedPlatform platform("two-controllers");
    zolex_sim::Fault fault;
    fault.match = "-pdList -a1";
    fault.exitCode = 3;
    fault.output = "Adapter 1: FW error\n";
    platform.server.faults.push_back(fault);
    const Shown shown = run(platform, Format::text);
    EXPECT_EQ(shown.code, exit_code::notPossible);
    EXPECT_EQ(shown.error,
              "error: controller 2: UTIL.BAT MEGACLI -pdList -a1 ended with exit code 3\n"
              "  help: start the command by hand; what it printed tells why\n");
    EXPECT_NE(shown.output.find("  .  32:0-32:5  6 free drives, 406.5 GB\n"), std::string::npos)
        << shown.output;
    EXPECT_NE(shown.output.find("\nController 2  Kestrix-D4\n"
                                "              PCI 0a:00.0 1000:0079 1000:9260\n"
                                "  ! MEGACLI failed: nothing more is known\n"
                                "  ! UTIL.BAT MEGACLI -pdList -a1 ended with exit code 3\n"
                                "    help: start the command by hand; what it printed tells why\n"),
              std::string::npos)
        << shown.output;
    const Shown json = run(platform, Format::json);
    EXPECT_EQ(json.code, exit_code::notPossible);
    EXPECT_NE(json.output.find("\"captured\": false"), std::string::npos) << json.output;
    keepDocument("machine-with-a-failed-utility", json.output);
    keepDocument("machine-with-a-failed-utility.svg", run(platform, Format::svg).output);
    keepDocument("machine-with-a-failed-utility.html", run(platform, Format::html).output);
}

TEST(Show, AProgramThatCannotBeStartedIsNamed) {
    SimulatedPlatform platform("single");
    MachineOptions machine;
    machine.utilities = {{"MEGACLI", "/nowhere/MegaCli64"}};
    platform.respond = [&platform](const std::string& line) {
        return line.find("nowhere") == std::string::npos ? platform.play(line) : ChildResult();
    };
    const Shown shown = run(platform, Format::text, machine);
    EXPECT_EQ(shown.code, exit_code::notPossible);
    EXPECT_EQ(shown.error,
              "error: controller 1: UTIL.BAT MEGACLI -LdPdInfo -a0 cannot be started: the program "
              "is /nowhere/MegaCli64\n"
              "  help: name the right program: zolexctl --utility "
              "MEGACLI=/path/MegaCli64 doctor\n");
}

TEST(Show, AUtilityThatIsNowhereCanBeNamed) {
    SimulatedPlatform platform("arcconf");
    Context context{platform, {}, Format::text, "", {}, {}, false, false, {"show"}};
    EXPECT_EQ(show(context, {}), exit_code::notPossible);
    EXPECT_EQ(platform.consoleFake.error,
              "error: controller 1: ARCCONF is missing\n"
              "  help: install it, or name it: zolexctl --utility ARCCONF=/path/arcconf doctor\n");
}

TEST(Show, PoliciesOfAServerWithoutArraysAreSaidToBeNone) {
    SimulatedPlatform platform("single");
    const Shown shown = run(platform, Format::policies);
    EXPECT_EQ(shown.code, exit_code::found);
    EXPECT_EQ(shown.error,
              "note: controller 1: it has no arrays, so that there is no policy for it [ZC101]\n"
              "\n"
              "warning: no policy is in the file: zolex and zolexctl check refuse it [ZC119]\n"
              "   help: make the arrays first, or write policies by hand: man zolex-policies\n");
    EXPECT_NE(shown.output.find("; No policy is in this file: zolex and zolexctl check refuse it "
                                "[ZC119].\n"),
              std::string::npos)
        << shown.output;
}

TEST(Show, AControllerThatIsNotThereIsRefused) {
    SimulatedPlatform platform("single");
    MachineOptions machine;
    machine.controllers = {9};
    const Shown shown = run(platform, Format::text, machine);
    EXPECT_EQ(shown.code, exit_code::notPossible);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.error, "error: there is no controller 9: this machine has one, number 1\n"
                           "  help: zolexctl show lists those that there are\n");
    // Whoever asks for JSON gets a document all the same.
    const Shown json = run(platform, Format::json, machine);
    EXPECT_EQ(json.code, exit_code::notPossible);
    EXPECT_NE(json.output.find(
                  "\"summary\": \"there is no controller 9: this machine has one, number 1\""),
              std::string::npos)
        << json.output;
    keepDocument("machine-not-there", json.output);
}

/// A machine in memory with the files of the system, which says why one cannot be opened.
class SystemFilesPlatform : public SimulatedPlatform {
  public:
    using SimulatedPlatform::SimulatedPlatform;
    FileSystem& files() override { return files_; }

  private:
    StandardFileSystem files_;
};

TEST(Show, ARecordingThatIsNotThereIsToldInTheDocumentToo) {
    SystemFilesPlatform platform("single");
    const Shown json = run(platform, Format::json, {}, {"missing.zrec", false});
    EXPECT_EQ(json.code, exit_code::notPossible);
    const std::string text =
        "missing.zrec: the file cannot be opened: there is no such file or folder [ZR100]";
    EXPECT_NE(json.error.find(text), std::string::npos) << json.error;
    EXPECT_NE(json.output.find(text), std::string::npos) << json.output;
    keepDocument("machine-recording-missing", json.output);
    EXPECT_TRUE(platform.children.empty());
}

} // namespace
} // namespace zolex::companion
