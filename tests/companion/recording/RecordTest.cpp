#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/machine/Capture.h"
#include "companion/recording/RecordedRuns.h"
#include "companion/recording/Redaction.h"
#include "companion/recording/ReplayPlatform.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/SimulatedPlatform.h"
#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "setup/ServerFiles.h"
#include "support/TemporaryDirectory.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {
namespace {

using namespace test; // of this folder
using zolex::test::FakePlatform;
using zolex::test::readTestData;
using zolex::test::TemporaryDirectory;

Snapshot captureRecorded(const std::string& file) {
    Elsewhere system;
    Context context = contextOf(system);
    const std::optional<Recording> recording = loadRecording(context, file);
    EXPECT_TRUE(recording.has_value()) << system.consoleFake.error;
    ReplayPlatform machine(*recording, system);
    return captureMachine(machine, {});
}

const std::vector<std::vector<std::string>>& readingRuns() {
    static const std::vector<std::vector<std::string>> runs = {
        {"zolex", "/c:t,d", "/f:written.ini"},
        {"zolex", "/c:ALL", "/f:written.ini", "/v:9"},
        {"zolex", "/c", "/f:written.ini", "/p:tools"},
        {"zolex", "/f:sample.ini", "/noexecutedeploy"},
        {"zolex", "/e1", "/e3", "/f:sample.ini", "/noexecutedeploy"},
        {"zolex", "/d", "/noexecutedeploy"},
        {"zolex", "/e2"},
        {"zolex", "/?"},
    };
    return runs;
}

/// Records the machine and holds what zolex does on the recording against what it does on it.
void expectSameOnRecording(FakePlatform& machine, const std::string& name) {
    const Seen recorded = runRecord(machine, "a.zrec");
    ASSERT_EQ(0, recorded.exitCode) << name << recorded.error;
    EXPECT_EQ("", recorded.error) << name;
    keepDocument("record-" + name + ".zrec", TemporaryDirectory::read("a.zrec"));
    for (const std::vector<std::string>& run : readingRuns()) {
        EXPECT_EQ(runZolex(machine, run), runReplay("a.zrec", run)) << name << " " << run.at(1);
    }
}

TEST(Record, ZolexDoesOnARecordingWhatItDoesOnTheServer) {
    const TemporaryDirectory folder;
    layOut(folder);
    for (const std::string& sample : SimulatedPlatform::samples()) {
        Server server(sample);
        folder.write("sample.ini", zolex_sim::samplePolicies(server.server).content);
        expectSameOnRecording(server, sample);
        configure(server, folder);
        expectSameOnRecording(server, sample + "-configured");
    }
}

/// A machine with one controller of a type, whose utility prints these files.
class ListingMachine : public FakePlatform {
  public:
    ListingMachine(std::int32_t type, const std::map<std::string, std::string>& listings) {
        PciRowCursor cursor;
        PciRow row = cursor.nextPciRow();
        while (row.type != type && row.type != controller_type::none) {
            row = cursor.nextPciRow();
        }
        PciDevice device;
        device.vendorId = row.vendorId;
        device.deviceId = row.deviceId;
        device.subsystemVendorId = row.subsystemVendorId;
        device.subsystemId = row.subsystemId;
        device.bus = 2;
        device.classCode = 0x010400;
        devices.push_back(device);
        for (const auto& [option, file] : listings) {
            texts_[option] = readTestData(file);
        }
        respond = [this](const std::string& line) { return answer(line); };
    }

  private:
    [[nodiscard]] ChildResult answer(const std::string& line) const {
        if (line.find("hwdetect") != std::string::npos) {
            return ended(0, "Machine_Type=8837\nSerial_Number=KQ10Z7V\n");
        }
        for (const auto& [option, text] : texts_) {
            if (line.find(option) != std::string::npos) {
                return ended(0, text);
            }
        }
        return ended(1, "unknown command\n");
    }

    std::map<std::string, std::string> texts_;
};

struct Listing {
    std::int32_t type;
    std::map<std::string, std::string> files;
};

const std::vector<Listing>& listings() {
    using namespace controller_type;
    static const std::vector<Listing> all = {
        {arcconf11, {{"GETCONFIG", "arcconf-getconfig-plain.txt"}}},
        {arcconf11, {{"GETCONFIG", "arcconf-getconfig-segments.txt"}}},
        {arcconf7, {{"GETCONFIG", "arcconf-getconfig-expander.txt"}}},
        {arcconf2, {{"GETCONFIG", "arcconf-getconfig-newer.txt"}}},
        {hrconf8, {{"GETCONFIG", "hrconf-getconfig.txt"}}},
        {family, {{"GETCONFIG", "qtcsend-getconfig.txt"}}},
        {lsiSas, {{"DISPLAY", "cfggen-display.txt"}}},
        {lsiScsi, {{"DISPLAY", "cfggen-display.txt"}}},
        {lsiIde, {{"/L", "hyperwin-list.txt"}}},
        {megaRaid,
         {{"-LdPdInfo", "megacli-ldpdinfo-early.txt"},
          {"-pdList", "megacli-pdlist-early.txt"},
          {"-adpallinfo", "megacli-adpallinfo.txt"}}},
        {megaRaid,
         {{"-LdPdInfo", "megacli-ldpdinfo-later.txt"},
          {"-pdList", "megacli-pdlist-later.txt"},
          {"-adpallinfo", "megacli-adpallinfo.txt"}}},
        {megaRaid,
         {{"-LdPdInfo", "megacli-ldpdinfo-missing.txt"},
          {"-pdList", "megacli-pdlist-later.txt"},
          {"-adpallinfo", "megacli-adpallinfo.txt"}}},
    };
    return all;
}

TEST(Record, ZolexDoesOnARecordedListingWhatItDoesOnTheListing) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("sample.ini", "[Policy.all]\nAppliesTo.1 = ALL\n");
    for (const Listing& listing : listings()) {
        WithFiles<ListingMachine> machine(listing.type, listing.files);
        expectSameOnRecording(machine, listing.files.begin()->second);
    }
}

TEST(Record, TellsWhatIsInTheRecording) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    const Seen recorded = runRecord(server, "a.zrec");
    EXPECT_EQ("", recorded.error);
    const std::size_t size = TemporaryDirectory::read("a.zrec").size();
    const std::size_t tenths = (size * 10 + 512) / 1024;
    EXPECT_EQ("1 controller, 5 utility calls, 1 detector call, 3 PCI functions, " +
                  std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " KB\n",
              recorded.output);
}

TEST(Record, OfARecordingIsTheSame) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    runRecord(server, "a.zrec");
    Elsewhere system;
    Context context = contextOf(system);
    context.machine.recording = "a.zrec";
    context.outputFile = "b.zrec";
    EXPECT_EQ(0, record(context, {})) << system.consoleFake.error;
    for (const std::vector<std::string>& run : readingRuns()) {
        EXPECT_EQ(runReplay("a.zrec", run), runReplay("b.zrec", run)) << run.at(1);
    }
}

TEST(Record, ShowsProgressOfTheMachineAlone) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    Context context = contextOf(server);
    context.outputFile = "a.zrec";
    context.showsProgress = true;
    EXPECT_EQ(0, record(context, {}));
    EXPECT_EQ("hardware detector\n"
              "STORCLI show J nolog\n"
              "controller 1 of 1: UTIL.BAT MEGACLI -LdPdInfo -a0\n"
              "controller 1 of 1: UTIL.BAT MEGACLI -pdList -a0\n"
              "controller 1 of 1: UTIL.BAT MEGACLI -adpallinfo -a0\n",
              server.consoleFake.error);
    server.consoleFake = {};
    context.machine.recording = "a.zrec";
    context.outputFile = "b.zrec";
    EXPECT_EQ(0, record(context, {}));
    EXPECT_EQ("", server.consoleFake.error);
}

TEST(Record, NeedsAFile) {
    Server server("single");
    for (const std::string name : {"", "-"}) {
        const Seen recorded = runRecord(server, name);
        EXPECT_EQ(2, recorded.exitCode);
        EXPECT_EQ("", recorded.output);
        EXPECT_EQ("error: record needs a file\n  help: zolexctl record -o server.zrec\n",
                  recorded.error);
    }
    EXPECT_TRUE(server.children.empty());
}

TEST(Record, OfWhatFailsHoldsTheFailedCall) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    const auto play = server.respond;
    server.respond = [&](const std::string& line) {
        return line.find("-LdPdInfo") != std::string::npos
                   ? FakePlatform::ended(3, "The adapter does not answer.\n")
                   : play(line);
    };
    const Seen recorded = runRecord(server, "a.zrec");
    EXPECT_EQ(1, recorded.exitCode);
    EXPECT_EQ("warning: controller 1: UTIL.BAT MEGACLI -LdPdInfo -a0 ended with exit code 3; the "
              "recording holds the call\n",
              recorded.error);
    EXPECT_NE(std::string::npos,
              TemporaryDirectory::read("a.zrec").find("The adapter does not answer.\\n"));
    // What zolex asks when it deploys is there all the same.
    folder.write("sample.ini", zolex_sim::samplePolicies(server.server).content);
    for (const std::vector<std::string>& run : readingRuns()) {
        EXPECT_EQ(runZolex(server, run), runReplay("a.zrec", run)) << run.at(1);
    }
}

TEST(Record, OfAMachineWithoutControllersHoldsItsFunctions) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    server.devices.resize(1);
    server.devices[0].vendorId = 0x8086;
    const Seen recorded = runRecord(server, "a.zrec");
    EXPECT_EQ(2, recorded.exitCode);
    EXPECT_EQ("error: no supported RAID controller was found\n"
              "  help: the recording holds the PCI functions of this machine all the same\n",
              recorded.error);
    EXPECT_EQ(runZolex(server, {"zolex", "/c", "/f:written.ini"}),
              runReplay("a.zrec", {"zolex", "/c", "/f:written.ini"}));
}

TEST(Record, WithOptionKeepsTheCallsOfAnyCommand) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    Context context = contextOf(server);
    context.machine.record = "kept.zrec";
    const auto look = [](Platform& machine, const Utilities& utilities) {
        EXPECT_EQ(false, utilities.wrapper.empty());
        return captureMachine(machine, {}).details.size() == 1 ? 7 : 8;
    };
    EXPECT_EQ(7, lookAtMachine(context, look));
    EXPECT_EQ("", server.consoleFake.error);
    context.machine.record.clear();
    context.machine.recording = "kept.zrec";
    server.children.clear();
    EXPECT_EQ(7, lookAtMachine(context, look)) << server.consoleFake.error;
    EXPECT_TRUE(server.children.empty());
    EXPECT_EQ(runZolex(server, {"zolex", "/c:t,d", "/f:written.ini"}),
              runReplay("kept.zrec", {"zolex", "/c:t,d", "/f:written.ini"}));
}

TEST(Record, ThatCannotBeMadeAsksNothing) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("folder/x", "");
    Server server("single");
    const Seen recorded = runRecord(server, "folder");
    EXPECT_EQ(2, recorded.exitCode);
    EXPECT_EQ("error: folder: no recording can be made here\n"
              "  help: name another file; nothing was asked of the machine\n",
              recorded.error);
    Context context = contextOf(server);
    context.machine.record = "no/such/folder.zrec";
    server.consoleFake = {};
    EXPECT_EQ(2, lookAtMachine(context, [](Platform&, const Utilities&) { return 7; }));
    EXPECT_EQ("error: no/such/folder.zrec: no recording can be made here\n"
              "  help: name another file; nothing was asked of the machine\n",
              server.consoleFake.error);
    EXPECT_TRUE(server.children.empty());
}

/// The files of the current folder that belong to recordings.
std::vector<std::string> recordingFiles() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        if (std::string name = entry.path().filename().string();
            name.find(".zrec") != std::string::npos) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

using Names = std::vector<std::string>;

TEST(Record, OfAControllerThatThereIsNotLeavesAnOldFile) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("old.zrec", "old");
    Server server("single");
    Context context = contextOf(server);
    context.machine.controllers = {9};
    context.outputFile = "old.zrec";
    EXPECT_EQ(2, record(context, {}));
    const std::string text = "error: there is no controller 9: this machine has one, number 1\n"
                             "  help: zolexctl show lists those that there are\n";
    EXPECT_EQ(text, server.consoleFake.error);
    server.consoleFake = {};
    context.outputFile = "out.json";
    context.format = Format::json;
    context.machine.record = "old.zrec";
    EXPECT_EQ(2, show(context, {}));
    EXPECT_EQ(text, server.consoleFake.error);
    EXPECT_NE("", TemporaryDirectory::read("out.json"));
    server.consoleFake = {};
    context.outputFile.clear();
    context.format = Format::text;
    EXPECT_EQ(2, doctor(context));
    EXPECT_EQ("error: there is no controller 9: this machine has one, number 1\n"
              "  help: zolexctl doctor looks at all that there are\n",
              server.consoleFake.error);
    EXPECT_EQ("old", TemporaryDirectory::read("old.zrec"));
    EXPECT_EQ(Names{"old.zrec"}, recordingFiles());
}

TEST(Record, LeavesAnOldFileUntilItIsWhole) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("a.zrec", "old");
    folder.write("a.zrec.partial", "interrupted");
    Server server("single");
    const auto play = server.respond;
    server.respond = [&](const std::string& line) {
        EXPECT_EQ("old", TemporaryDirectory::read("a.zrec"));
        EXPECT_EQ((Names{"a.zrec", "a.zrec.partial", "a.zrec.partial-2"}), recordingFiles());
        return line.find("-pdList") != std::string::npos ? FakePlatform::ended(3, "") : play(line);
    };
    EXPECT_EQ(1, runRecord(server, "a.zrec").exitCode);
    EXPECT_EQ((Names{"a.zrec", "a.zrec.partial"}), recordingFiles());
    EXPECT_EQ("interrupted", TemporaryDirectory::read("a.zrec.partial"));
    EXPECT_EQ("", runReplay("a.zrec", {"zolex", "/?"}).error);
}

TEST(Record, ThatEndsInAFaultTellsWhereItIs) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("a.zrec", "old");
    Server server("single");
    Context context = contextOf(server);
    context.machine.record = "a.zrec";
    const auto look = [](Platform& machine, const Utilities& /*utilities*/) -> int {
        machine.pauseOneSecond();
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(lookAtMachine(context, look), std::runtime_error);
    EXPECT_EQ("note: what was recorded is in a.zrec.partial\n", server.consoleFake.error);
    EXPECT_EQ("old", TemporaryDirectory::read("a.zrec"));
    EXPECT_EQ("note: a.zrec.partial:3:1: the recording has no end: it was interrupted. What it "
              "holds can be used [ZR108]\n",
              runReplay("a.zrec.partial", {"zolex", "/?"}).error);
}

TEST(Record, WhoseNameIsTakenMeanwhileTellsWhereItIs) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    const auto play = server.respond;
    server.respond = [&](const std::string& line) {
        folder.write("a.zrec/x", "");
        return play(line);
    };
    const Seen recorded = runRecord(server, "a.zrec");
    EXPECT_EQ(2, recorded.exitCode);
    EXPECT_EQ("", recorded.output);
    EXPECT_TRUE(recorded.error.starts_with("error: a.zrec: ")) << recorded.error;
    EXPECT_TRUE(recorded.error.ends_with("\n  help: the recording is whole: give it another name\n"
                                         "note: what was recorded is in a.zrec.partial\n"))
        << recorded.error;
    EXPECT_EQ("", runReplay("a.zrec.partial", {"zolex", "/?"}).error);
}

TEST(Replay, OfAChangingCommandNamesIt) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    folder.write("sample.ini", zolex_sim::samplePolicies(server.server).content);
    runRecord(server, "a.zrec");
    const Seen deployed = runReplay("a.zrec", {"zolex", "/f:sample.ini"});
    EXPECT_EQ(2, deployed.exitCode);
    EXPECT_EQ(0U, deployed.error.find("error: a.zrec does not hold the call UTIL.BAT MEGACLI  "
                                      "-CfgLdAdd R1   ["))
        << deployed.error;
    EXPECT_NE(std::string::npos,
              deployed.error.find("\n  help: a recording answers only what was asked when it was "
                                  "made; nothing was run on this server\n"));
    const Seen reset = runReplay("a.zrec", {"zolex", "/r", "/y"});
    EXPECT_EQ(2, reset.exitCode);
    EXPECT_EQ(0U,
              reset.error.find(
                  "error: a.zrec does not hold the call UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"))
        << reset.error;
}

TEST(Replay, OfWhatIsNoRecordingTellsThePlace) {
    const TemporaryDirectory folder;
    folder.write("a.zrec", "{\"format\":\"zolex-plan\"}\n");
    const Seen wrong = runReplay("a.zrec", {"zolex", "/?"});
    EXPECT_EQ(2, wrong.exitCode);
    EXPECT_EQ("", wrong.output);
    EXPECT_EQ("error: a.zrec:1:11: this is no recording: \"format\" is not \"zolex-recording\" "
              "[ZR101]\n"
              "  help: record the machine again: zolexctl record -o FILE.zrec\n",
              wrong.error);
    EXPECT_EQ("error: b.zrec: the file cannot be opened: there is no such file or folder [ZR100]\n"
              "  help: record the machine again: zolexctl record -o FILE.zrec\n",
              runReplay("b.zrec", {"zolex", "/?"}).error);
}

TEST(Replay, OfAnInterruptedRecordingSaysSo) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    runRecord(server, "a.zrec");
    const std::string text = TemporaryDirectory::read("a.zrec");
    folder.write("a.zrec", text.substr(0, text.rfind("{\"seq\"") + 9));
    const Seen seen = runReplay("a.zrec", {"zolex", "/c:t,d", "/f:written.ini"});
    EXPECT_EQ(0, seen.exitCode);
    EXPECT_EQ("note: a.zrec:12:1: the last line was cut and is left out [ZR107]\n"
              "note: a.zrec:12:1: the recording has no end: it was interrupted. What it holds can "
              "be used [ZR108]\n",
              seen.error);
}

TEST(Machines, OfAFolderAreReadInOrder) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("fleet/none.txt", "");
    folder.write("empty/none.txt", "");
    for (const std::string sample : {"single", "many"}) {
        Server server(SimulatedPlatform::samples().at(sample == "many" ? 1 : 0));
        runRecord(server, "fleet/" + sample + ".ZREC");
    }
    Elsewhere system;
    Context context = contextOf(system);
    const RecordedMachines loaded = loadMachines(context, {"fleet", "fleet/single.ZREC"});
    const std::vector<RecordedMachine>& machines = loaded.machines;
    EXPECT_TRUE(loaded.faults.empty());
    ASSERT_EQ(3U, machines.size());
    EXPECT_EQ("fleet/many.ZREC", machines.at(0).file);
    EXPECT_EQ("fleet/single.ZREC", machines.at(1).file);
    EXPECT_EQ("KQ10Z7V", machines.at(1).snapshot.machine.serialNumber.view());
    EXPECT_EQ("fleet/single.ZREC", machines.at(2).file);
    // What cannot be read is told, and the others are there.
    folder.write("fleet/broken.zrec", "no recording\n");
    const RecordedMachines some = loadMachines(context, {"fleet/", "empty"});
    EXPECT_EQ(2U, some.machines.size());
    ASSERT_EQ(2U, some.faults.size());
    EXPECT_EQ("fleet/broken.zrec", some.faults.at(0).file);
    EXPECT_EQ("empty", some.faults.at(1).file);
    EXPECT_EQ("no recording (*.zrec) is in this folder", some.faults.at(1).summary);
    EXPECT_EQ("", system.consoleFake.error);
}

// Redaction

/// Everything of a snapshot but for what names the machine.
std::string shape(const Snapshot& snapshot) {
    std::string text = snapshot.machine.machineType.view().data();
    for (const ControllerSnapshot& controller : snapshot.details) {
        text += "\n" + controller.model + " " + controller.pci;
        Facts facts = controller.facts;
        for (const MachineDrive& drive : controller.drives) {
            text += "\n" + drive.facts.location + " " + drive.facts.model + " " +
                    drive.facts.revision + " " + drive.facts.manufacturer + " " +
                    std::to_string(drive.facts.capacityBytes.value_or(0)) + " " +
                    std::to_string(drive.policyNumber.value_or(0)) + " " + drive.array + " " +
                    drive.facts.reportedState + " " +
                    std::to_string(drive.facts.serialNumber.size());
        }
        for (const LogicalDriveFacts& drive : facts.logicalDrives) {
            text += "\n" + drive.id + " " + drive.raidType + " " + drive.reportedState + " " +
                    std::to_string(drive.capacityBytes.value_or(0)) + " " +
                    std::to_string(drive.spans.size()) + " " + std::to_string(drive.name.size());
        }
        text += "\n" + std::to_string(facts.broken.size()) + " " + facts.firmwareVersion;
        for (const ListingReading& listing : facts.listings) {
            text +=
                " " + std::to_string(listing.blocksRead) + "/" + std::to_string(listing.keysUsed);
        }
    }
    return text;
}

/// Every serial number of a virtual server.
std::vector<std::string> serialNumbersOf(const zolex_sim::Server& server) {
    std::vector<std::string> serials{server.serialNumber};
    for (const zolex_sim::Controller& controller : server.controllers) {
        serials.push_back(controller.identity.serialNumber);
        for (const zolex_sim::Drive& drive : controller.drives) {
            serials.push_back(drive.serial);
        }
    }
    return serials;
}

/// Without the comments of the policies, which name the machine.
Seen withoutComments(Seen seen) {
    std::string file;
    for (std::size_t at = 0; at < seen.file.size();) {
        const std::size_t end = std::min(seen.file.find('\n', at), seen.file.size() - 1) + 1;
        file += seen.file[at] == ';' ? "" : seen.file.substr(at, end - at);
        at = end;
    }
    seen.file = file;
    return seen;
}

void expectRedacted(FakePlatform& machine, const std::vector<std::string>& serials,
                    const std::string& name) {
    ASSERT_EQ(0, runRecord(machine, "plain.zrec").exitCode) << name;
    const Seen recorded = runRecord(machine, "a.zrec", true);
    ASSERT_EQ(0, recorded.exitCode) << name << recorded.error;
    const std::string text = TemporaryDirectory::read("a.zrec");
    keepDocument("record-redacted-" + name + ".zrec", text);
    EXPECT_NE(std::string::npos, text.find("\"redacted\":true"));
    for (const std::string& serial : serials) {
        EXPECT_EQ(std::string::npos, text.find(serial)) << name << " " << serial;
    }
    EXPECT_EQ(shape(captureRecorded("plain.zrec")), shape(captureRecorded("a.zrec"))) << name;
    for (const std::vector<std::string>& run : readingRuns()) {
        if (run.at(1) == "/c:ALL") {
            continue; // names the machine
        }
        EXPECT_EQ(withoutComments(runReplay("plain.zrec", run)),
                  withoutComments(runReplay("a.zrec", run)))
            << name << " " << run.at(1);
    }
}

TEST(Redaction, LeavesNoSerialNumberAndTheSameLayout) {
    const TemporaryDirectory folder;
    layOut(folder);
    for (const std::string& sample : SimulatedPlatform::samples()) {
        Server server(sample);
        configure(server, folder);
        expectRedacted(server, serialNumbersOf(server.server), sample);
    }
}

TEST(Redaction, OfTheListingsLeavesTheSameLayout) {
    const TemporaryDirectory folder;
    layOut(folder);
    folder.write("sample.ini", "[Policy.all]\nAppliesTo.1 = ALL\n");
    const std::vector<std::string> serials = {"KQ10Z7V", "1122334455", "3LQ2A00", "Z1X0A00",
                                              "NV7A000", "NV9A000",    "NV9B000", "1000042",
                                              "1000001", "2000017",    "5000C5",  "5000c5"};
    for (const Listing& listing : listings()) {
        WithFiles<ListingMachine> machine(listing.type, listing.files);
        expectRedacted(machine, serials, listing.files.begin()->second);
    }
}

std::string redactedText(const Secrets& secrets, const std::string& text) {
    return Redactor(secrets, "key").redacted(text);
}

TEST(Redaction, KeepsLengthKindAndOrder) {
    const Secrets secrets{{"WD-12345678", "3LQ2A000", "3LQ2A001", "3LQ2A00B", "00000017"}, {}, {}};
    const Redactor redactor(secrets, "key");
    std::vector<std::string> madeUp;
    for (const std::string& serial : secrets.serialNumbers) {
        const std::string text = redactor.redactedSerialNumber(serial);
        ASSERT_EQ(serial.size(), text.size());
        EXPECT_NE(serial, text);
        for (std::size_t i = 0; i < serial.size(); ++i) {
            EXPECT_EQ(std::isdigit(serial[i]) != 0, std::isdigit(text[i]) != 0);
            EXPECT_EQ(std::isupper(serial[i]) != 0, std::isupper(text[i]) != 0);
        }
        EXPECT_TRUE(madeUp.empty() || madeUp.back() < text);
        madeUp.push_back(text);
        EXPECT_EQ(text, redactor.redactedSerialNumber(serial));
        EXPECT_NE(text, Redactor(secrets, "another").redactedSerialNumber(serial));
    }
    EXPECT_EQ('-', madeUp.back()[2]);
    EXPECT_EQ('0', madeUp.front()[0]);
    EXPECT_EQ(5U, redactor.serialNumbers());
}

TEST(Redaction, FindsSerialNumbersInWhateverSurroundings) {
    const Secrets secrets{{"3LQ2A000", "1000042", "ABCD"}, {"5000C500A10B0001"}, {}};
    const Redactor redactor(secrets, "key");
    const std::string drive = redactor.redactedSerialNumber("3LQ2A000");
    const std::string number = redactor.redactedSerialNumber("1000042");
    const std::string word = redactor.redactedSerialNumber("ABCD");
    const std::string address = redactor.redactedSerialNumber("5000C500A10B0001");
    std::string small = address;
    for (char& c : small) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"Inquiry Data: NORVIK  NV73455S        S5273LQ2A000   \r\n",
         "Inquiry Data: NORVIK  NV73455S        S527" + drive + "   \r\n"},
        {"Segment 0 : Present (0,1) 3LQ2A000", "Segment 0 : Present (0,1) " + drive},
        {"Serial number : 1000042\nsize 1000042\nx1000042",
         "Serial number : " + number + "\nsize 1000042\nx1000042"},
        {"Serial No : ABCD\nName : ABCD\nABCDE", "Serial No : " + word + "\nName : ABCD\nABCDE"},
        {"WWN: 5000C500A10B0001\nSAS Address(0): 0x5000c500a10b0001\n",
         "WWN: " + address + "\nSAS Address(0): 0x" + small + "\n"},
        {"", ""},
        {"3LQ2A00", "3LQ2A00"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(expected, redactor.redacted(text));
    }
}

TEST(Redaction, OfNamesIsOnLinesOfNamesAlone) {
    const Secrets secrets{{}, {}, {"data 1", "Size"}};
    const std::string text =
        redactedText(secrets, "Name :data 1\nSize : 4 data 1\nVD Name: Size\r\n"
                              "Name : Size 2\n");
    EXPECT_EQ(std::string::npos, text.find("Name :data 1"));
    EXPECT_NE(std::string::npos, text.find("Size : 4 data 1\nVD Name: "));
    EXPECT_NE(std::string::npos, text.find("\r\nName : Size 2\n"));
    EXPECT_EQ(std::string::npos, text.find("Name: Size"));
}

TEST(Redaction, LeavesPlaceholdersAndWhatIsTooShort) {
    Snapshot snapshot;
    snapshot.machine.serialNumber = "None";
    ControllerSnapshot& controller = snapshot.details.emplace_back();
    controller.facts.serialNumber = "0000000000";
    controller.facts.drives.resize(3);
    controller.facts.drives[0].serialNumber = "1";
    controller.facts.drives[1].serialNumber = "To Be Filled By O.E.M.";
    controller.facts.drives[2].serialNumber = std::string(65, 'A');
    Secrets secrets = secretsOf(snapshot);
    EXPECT_TRUE(secrets.serialNumbers.empty());
    ChildCall child;
    child.result.output = "Serial No: None\nSerial ATA drives: 1234567890\nWWN: 0\n"
                          "SAS Address(1): 0x0\nSAS Address(2): 0x0000000000000000\nSerial:\n"
                          "Board serial = A1B2C3\nGUID: {0x12345678-9abcdef0}\n";
    addRecordedSecrets({{child, 0}, {FirmwareCall{{"8837", "FW12345", ""}}, 0}}, secrets);
    EXPECT_EQ((std::set<std::string>{"A1B2C3", "FW12345"}), secrets.serialNumbers);
    EXPECT_EQ((std::set<std::string>{"12345678", "9abcdef0"}), secrets.addresses);
}

} // namespace
} // namespace zolex::companion
