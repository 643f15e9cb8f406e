#include "companion/recording/RecordingPlatform.h"
#include "companion/recording/ReplayPlatform.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using test::FakePlatform;

/// The children, in words.
std::vector<std::string> commandsOf(const CallList& list) {
    std::vector<std::string> names;
    for (const RecordedCall& recorded : list.calls) {
        names.push_back(callName(recorded.call));
    }
    return names;
}

std::vector<int> busesOf(Platform& platform) {
    const auto list = platform.pciDevices();
    list->collect();
    std::vector<int> buses;
    while (const PciDevice* const device = list->next()) {
        buses.push_back(device->bus);
    }
    return buses;
}

/// What a replay says instead of answering.
template <typename Call>
std::string lackOf(Call call) {
    try {
        call();
    } catch (const LackingCall& lacking) {
        return lacking.what();
    }
    return "answered";
}

constexpr std::chrono::milliseconds limit{300000};

class Firmware : public FakePlatform {
  public:
    FirmwareNames firmware() override { return {"8837", "KQ10Z7V", ""}; }
};

TEST(RecordingPlatform, KeepsEachCallAndItsAnswer) {
    Firmware machine;
    machine.devices.resize(2);
    machine.devices[0].bus = 5;
    machine.devices[0].hardwareId = "PCI\\VEN_1000";
    machine.devices[1].bus = 300; // of no order: counted, but not listed
    machine.results = {FakePlatform::ended(3, "abc"), {ChildOutcome::notStarted, 0, {}}};
    CallList kept;
    RecordingPlatform platform(machine, kept);
    EXPECT_EQ(&machine.consoleFake, &platform.console());
    EXPECT_EQ(&machine.fileFake, &platform.files());

    EXPECT_EQ("abc", platform.runChild("UTIL.BAT MEGACLI -pdList -a0 \n", true, limit).output);
    EXPECT_EQ(ChildOutcome::notStarted, platform.runChild("x", false, limit).outcome);
    platform.pauseOneSecond();
    EXPECT_EQ(14, platform.localTime().hour);
    EXPECT_EQ("KQ10Z7V", platform.firmware().serialNumber);
    const auto list = platform.pciDevices();
    EXPECT_FALSE(list->collect());
    EXPECT_EQ(2U, list->count());
    ASSERT_NE(nullptr, list->next());
    EXPECT_EQ(nullptr, list->next());

    EXPECT_EQ((std::vector<std::string>{
                  "UTIL.BAT MEGACLI -pdList -a0", "x", "a pause of one second", "the local time",
                  "the names that the firmware tells", "the list of PCI functions"}),
              commandsOf(kept));
    EXPECT_EQ(1, machine.pauses);
    EXPECT_EQ("UTIL.BAT MEGACLI -pdList -a0 \n", machine.children.at(0));
    const auto& child = std::get<ChildCall>(kept.calls[0].call);
    EXPECT_TRUE(child.capture);
    EXPECT_EQ(limit, child.limit);
    EXPECT_EQ(3U, child.result.exitCode);
    EXPECT_EQ("abc", child.result.output);
    EXPECT_FALSE(std::get<ChildCall>(kept.calls[1].call).capture);
    const auto& pci = std::get<PciCall>(kept.calls[5].call);
    EXPECT_EQ(2U, pci.count);
    ASSERT_EQ(1U, pci.devices.size());
    EXPECT_EQ(5, pci.devices[0].bus);
    EXPECT_EQ("", pci.devices[0].hardwareId);
}

ChildCall child(std::string command, std::string output) {
    ChildCall call;
    call.command = std::move(command);
    call.result = FakePlatform::ended(0, std::move(output));
    return call;
}

Recording recordingOf(std::vector<CallKind> calls) {
    Recording recording;
    recording.header.madeAt = "2026-11-21T21:05:09-02:30";
    std::int32_t line = 1;
    for (CallKind& call : calls) {
        recording.calls.push_back({std::move(call), ++line});
    }
    return recording;
}

PciCall pciCall(std::uint16_t bus) {
    PciCall call;
    call.devices.resize(1);
    call.devices[0].bus = bus;
    call.count = 7;
    return call;
}

TEST(ReplayPlatform, AnswersTheNthCallOfACommandLineAndThenWithTheLast) {
    FakePlatform system;
    const Recording recording =
        recordingOf({child("UTIL.BAT A", "1"), child("UTIL.BAT B", "x"), pciCall(1), pciCall(2),
                     child("UTIL.BAT A", "2"), FirmwareCall{{"8837", "S", ""}}});
    ReplayPlatform platform(recording, system);
    EXPECT_EQ("x", platform.runChild("UTIL.BAT B", true, limit).output);
    EXPECT_EQ("1", platform.runChild("UTIL.BAT A \n", true, limit).output);
    EXPECT_EQ("2", platform.runChild("UTIL.BAT A", true, limit).output);
    EXPECT_EQ("2", platform.runChild("tools/UTIL.BAT A", true, limit).output);
    EXPECT_EQ("2", platform.runChild("\"C:\\my tools\\UTIL.BAT\" A", true, limit).output);
    EXPECT_EQ("", platform.runChild("UTIL.BAT A", false, limit).output);
    EXPECT_EQ(std::vector<int>{1}, busesOf(platform));
    EXPECT_EQ(std::vector<int>{2}, busesOf(platform));
    EXPECT_EQ(std::vector<int>{2}, busesOf(platform));
    const auto list = platform.pciDevices();
    list->rescan();
    EXPECT_EQ(7U, list->count());
    EXPECT_EQ("S", platform.firmware().serialNumber);
    platform.pauseOneSecond();
    EXPECT_EQ(0, system.pauses);
    EXPECT_TRUE(system.children.empty());
    EXPECT_EQ(&system.consoleFake, &platform.console());
    EXPECT_EQ(&system.fileFake, &platform.files());
}

TEST(ReplayPlatform, NamesTheCallThatTheRecordingLacks) {
    FakePlatform system;
    ChildCall uncaptured = child("UTIL.BAT B", "");
    uncaptured.capture = false;
    Recording recording = recordingOf({child("UTIL.BAT A", "1"), uncaptured});
    recording.file = "server.zrec";
    ReplayPlatform platform(recording, system);
    EXPECT_EQ(
        "server.zrec does not hold the call UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
        lackOf([&] { platform.runChild("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n", true, limit); }));
    EXPECT_EQ("server.zrec does not hold the call UTIL.BAT A 2",
              lackOf([&] { platform.runChild("UTIL.BAT A 2", true, limit); }));
    EXPECT_EQ("server.zrec does not hold the output of UTIL.BAT B",
              lackOf([&] { platform.runChild("UTIL.BAT B", true, limit); }));
    EXPECT_EQ("server.zrec does not hold the call the list of PCI functions",
              lackOf([&] { platform.pciDevices()->collect(); }));
    EXPECT_EQ("server.zrec does not hold the call the names that the firmware tells",
              lackOf([&] { platform.firmware(); }));
    EXPECT_TRUE(system.children.empty());
}

TEST(ReplayPlatform, TellsTheRecordedTime) {
    FakePlatform system;
    LocalTimeCall time;
    time.time = {2026, 1, 2, 3, 4, 5, 60};
    const Recording with = recordingOf({time});
    const LocalTime told = ReplayPlatform(with, system).localTime();
    EXPECT_EQ(5, told.second);
    EXPECT_EQ(60, told.offsetMinutes);
    const Recording without = recordingOf({});
    const LocalTime made = ReplayPlatform(without, system).localTime();
    EXPECT_EQ(2026, made.year);
    EXPECT_EQ(11, made.month);
    EXPECT_EQ(21, made.day);
    EXPECT_EQ(21, made.hour);
    EXPECT_EQ(5, made.minute);
    EXPECT_EQ(9, made.second);
    EXPECT_EQ(-150, made.offsetMinutes);
    EXPECT_EQ(1970, timeOfStamp("").year);
    EXPECT_EQ(12, timeOfStamp("9999-99-99T99:99:99+99:99").month);
}

TEST(ReplayPlatform, TellsTheUtilitiesThatWereFound) {
    FakePlatform system;
    UtilitiesCall utilities;
    utilities.found.wrapper = "/opt/UTIL.BAT";
    EXPECT_EQ("/opt/UTIL.BAT",
              ReplayPlatform(recordingOf({}), system).utilities().wrapper + "/opt/UTIL.BAT");
    const Recording recording = recordingOf({utilities});
    EXPECT_EQ("/opt/UTIL.BAT", ReplayPlatform(recording, system).utilities().wrapper);
}

TEST(ReplayPlatform, InOrderTakesTheSameCallsAlone) {
    FakePlatform system;
    Recording recording = recordingOf({UtilitiesCall{}, pciCall(1), child("UTIL.BAT A", "1"),
                                       PauseCall{}, child("UTIL.BAT B", "2")});
    recording.file = "server.zrec";
    {
        ReplayPlatform platform(recording, system, ReplayMode::strict);
        EXPECT_EQ(std::vector<int>{1}, busesOf(platform));
        EXPECT_EQ("1", platform.runChild("UTIL.BAT A", true, limit).output);
        platform.pauseOneSecond();
        EXPECT_EQ("server.zrec:6 holds the call UTIL.BAT B in the place of UTIL.BAT A",
                  lackOf([&] { platform.runChild("UTIL.BAT A", true, limit); }));
        EXPECT_EQ("2", platform.runChild("UTIL.BAT B", true, limit).output);
        EXPECT_EQ("server.zrec ends before the call the local time",
                  lackOf([&] { platform.localTime(); }));
    }
    ReplayPlatform platform(recording, system, ReplayMode::strict);
    EXPECT_EQ("server.zrec:3 holds the call the list of PCI functions in the place of a pause of "
              "one second",
              lackOf([&] { platform.pauseOneSecond(); }));
    EXPECT_EQ(0, system.pauses);
}

TEST(Recording, CallsAreCounted) {
    std::vector<RecordedCall> calls;
    for (const CallKind& call : std::vector<CallKind>{
             pciCall(1), child("hwdetect.exe /i", ""), child("x/hwdetect.exe", ""),
             child("hwdetect.exes", ""), child("UTIL.BAT A", ""), PauseCall{}}) {
        calls.push_back({call, 0});
    }
    EXPECT_EQ((RecordingCounts{2, 2, 1}), countCalls(calls));
}

TEST(Recording, KeysHaveNoFolderAndNoLineEnd) {
    EXPECT_EQ("UTIL.BAT A  b ", callKey("C:\\a/b\\UTIL.BAT A  b ") + " ");
    EXPECT_EQ("UTIL.BAT a/b", callKey("UTIL.BAT a/b \r\n"));
    EXPECT_EQ("u x", callKey("\"/a b/u\" x"));
    EXPECT_EQ("u x", callKey("\"/a b/u x"));
    EXPECT_EQ("", callKey(" \n"));
    EXPECT_EQ("", callKey("a/"));
}

} // namespace
} // namespace zolex::companion
