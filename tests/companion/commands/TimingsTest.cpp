#include "companion/commands/Timings.h"

#include "companion/json/RecordingLines.h"
#include "companion/recording/RecordedRuns.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {
namespace {

using std::chrono::milliseconds;

ChildCall call(const std::string& command, int time, ChildOutcome outcome = ChildOutcome::ended) {
    ChildCall child;
    child.command = command;
    child.result.outcome = outcome;
    child.duration = milliseconds(time);
    return child;
}

void writeRecording(const test::TemporaryDirectory& folder, const std::string& name,
                    const std::vector<ChildCall>& calls) {
    Recording recording;
    recording.header.toolVersion = "2.20";
    recording.header.madeAt = "2026-11-21T21:05:00+00:00";
    recording.header.system = "linux";
    for (const ChildCall& child : calls) {
        recording.calls.push_back({child, 0});
    }
    folder.write(name, recordingText(recording));
}

TEST(Timings, AreTheMediansOfEachUtility) {
    const test::TemporaryDirectory folder;
    writeRecording(folder, "a.zrec",
                   {call("UTIL.BAT MEGACLI -pdList -a0", 900), call("hwdetect.exe /i", 5000),
                    call("UTIL.BAT ARCCONF GETCONFIG 1", 40),
                    call("UTIL.BAT MEGACLI -LdPdInfo -a0", 60000, ChildOutcome::stillRunning)});
    writeRecording(folder, "b.zrec",
                   {call("UTIL.BAT MEGACLI -pdList -a0", 100),
                    call("UTIL.BAT MEGACLI -adpallinfo -a0", 300),
                    call("UTIL.BAT ARCCONF GETCONFIG 2", 20)});
    test::Elsewhere system;
    Context context = test::contextOf(system);
    const auto times = usualTimes(context, {"a.zrec", "b.zrec"});
    ASSERT_TRUE(times.has_value()) << system.consoleFake.error;
    // Of an even number the lower one of the two in the middle.
    EXPECT_EQ(*times, (UsualTimes{{"MEGACLI", milliseconds(300)}, {"ARCCONF", milliseconds(20)}}));
    EXPECT_EQ(usualTimes(context, {}), UsualTimes());
}

TEST(Timings, OfARecordingThatCannotBeReadAreNone) {
    const test::TemporaryDirectory folder;
    folder.write("p.ini", "[Policy.web]\n");
    test::Elsewhere system;
    Context context = test::contextOf(system);
    EXPECT_FALSE(usualTimes(context, {"p.ini"}).has_value());
    EXPECT_EQ(system.consoleFake.error.substr(0, 17), "error: p.ini:1:2:");
}

} // namespace
} // namespace zolex::companion
