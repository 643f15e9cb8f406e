// Recordings made and replayed by the real programs on the virtual server.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

/// A server whose firmware tells nothing.
class RecordedServer : public VirtualServer {
  public:
    explicit RecordedServer(const std::string& sample) {
        environment["ZOLEX_DMI_ROOT"] = (folder() / "dmi").string();
        isReady_ = isReady() && simulator({"init", ".", "--sample", sample}).exitCode == 0 &&
                   zolex({"/r", "/y", "/f:sample-policies.ini"}).exitCode == 0;
    }
    ProgramRun zolexctl(const std::vector<std::string>& arguments) {
        return start(ZOLEXCTL_PROGRAM, arguments);
    }
    /// Takes away what a run could ask: utilities, detector, PCI functions.
    void remove() {
        for (const char* name : {"UTIL.BAT", "hwdetect.exe", "pci"}) {
            fs::remove_all(folder() / name);
        }
        environment["ZOLEX_PCI_ROOT"] = (folder() / "gone").string();
    }

    bool isReady_ = false;
};

struct Captured {
    ProgramRun run;
    std::string policies;
};

Captured captured(RecordedServer& server, ProgramRun run) {
    Captured result{std::move(run), withoutComments(server.read("x.ini"))};
    fs::remove(server.folder() / "x.ini");
    return result;
}

TEST(RecordingEndToEnd, ReplaysWhatTheProgramsShowOnTheServer) {
    for (const char* sample : {"single", "arcconf"}) {
        SCOPED_TRACE(sample);
        RecordedServer server(sample);
        ASSERT_TRUE(server.isReady_);
        const Captured live = captured(server, server.shippedZolex({"/c:t,d", "/f:x.ini"}));
        const ProgramRun text = server.zolexctl({"show"});
        const ProgramRun picture = server.zolexctl({"show", "--format", "svg"});
        EXPECT_EQ(0, text.exitCode) << text.error;
        ASSERT_EQ(0, server.zolexctl({"record", "-o", "a.zrec"}).exitCode);
        server.remove();

        const Captured replayed = captured(
            server, server.zolexctl({"replay", "a.zrec", "--", "zolex", "/c:t,d", "/f:x.ini"}));
        EXPECT_EQ(live.run.exitCode, replayed.run.exitCode);
        EXPECT_EQ(live.run.output, replayed.run.output);
        EXPECT_EQ(live.run.error, replayed.run.error);
        EXPECT_EQ(live.policies, replayed.policies);
        EXPECT_NE("", live.policies);
        EXPECT_EQ(text.output, server.zolexctl({"replay", "a.zrec", "--", "show"}).output);
        EXPECT_EQ(text.output, server.zolexctl({"show", "--recording", "a.zrec"}).output);
        EXPECT_EQ(text.output, server.zolexctl({"show", "a.zrec"}).output);
        EXPECT_EQ(picture.output,
                  server.zolexctl({"show", "--format", "svg", "--recording", "a.zrec"}).output);
        const ProgramRun reset = server.zolexctl({"replay", "a.zrec", "--", "zolex", "/r", "/y"});
        EXPECT_EQ(2, reset.exitCode);
        EXPECT_EQ(0U, reset.error.find("error: a.zrec does not hold the call UTIL.BAT "))
            << reset.error;
    }
}

TEST(RecordingEndToEnd, RedactedHoldsNoSerialNumber) {
    RecordedServer server("single");
    ASSERT_TRUE(server.isReady_);
    const ProgramRun run = server.zolexctl({"record", "--redact", "-o", "a.zrec"});
    EXPECT_EQ(0, run.exitCode) << run.error;
    const std::string text = server.read("a.zrec");
    EXPECT_NE(std::string::npos, text.find("\"redacted\":true"));
    for (const char* serial : {"KQ10Z7V", "1122334455", "3LQ2A0", "5000c5000a1"}) {
        EXPECT_EQ(std::string::npos, text.find(serial)) << serial;
    }
    const Captured live = captured(server, server.shippedZolex({"/c:t,d", "/f:x.ini"}));
    const Captured replayed = captured(
        server, server.zolexctl({"replay", "a.zrec", "--", "zolex", "/c:t,d", "/f:x.ini"}));
    EXPECT_EQ(live.policies, replayed.policies);
    EXPECT_EQ(live.run.output, replayed.run.output);
}

TEST(RecordingEndToEnd, OptionKeepsTheCallsOfACommand) {
    RecordedServer server("single");
    ASSERT_TRUE(server.isReady_);
    const ProgramRun live = server.zolexctl({"show", "--record", "a.zrec"});
    EXPECT_EQ(0, live.exitCode) << live.error;
    server.remove();
    EXPECT_EQ(live.output, server.zolexctl({"show", "--recording", "a.zrec"}).output);
}

#ifndef _WIN32
TEST(RecordingEndToEnd, OfAKilledRunIsReadableUpToThere) {
    RecordedServer server("single");
    ASSERT_TRUE(server.isReady_);
    fs::rename(server.folder() / "UTIL.BAT", server.folder() / "utility");
    server.write("UTIL.BAT", "#!/bin/sh\n"
                             "case $* in *-adpallinfo*) kill -9 $PPID; sleep 1;; esac\n"
                             "exec ./utility \"$@\"\n");
    fs::permissions(server.folder() / "UTIL.BAT", fs::perms::owner_all);
    server.write("a.zrec", "old");
    EXPECT_EQ(137, server.zolexctl({"record", "-o", "a.zrec"}).exitCode);
    EXPECT_EQ("old", server.read("a.zrec"));
    const ProgramRun replayed =
        server.zolexctl({"replay", "a.zrec.partial", "--", "zolex", "/c:t,d", "/f:x.ini"});
    EXPECT_EQ(2, replayed.exitCode);
    EXPECT_EQ(
        "note: a.zrec.partial:7:1: the recording has no end: it was interrupted. What it holds "
        "can be used [ZR108]\n"
        "error: a.zrec.partial does not hold the call UTIL.BAT MEGACLI -adpallinfo -a0\n"
        "  help: a recording answers only what was asked when it was made; nothing was run on "
        "this server\n",
        replayed.error);
    EXPECT_FALSE(server.exists("x.ini"));
}

TEST(RecordingEndToEnd, OnAFullDeviceIsTold) {
    RecordedServer server("single");
    ASSERT_TRUE(server.isReady_);
    const ProgramRun run = server.zolexctl({"record", "-o", "/dev/full"});
    EXPECT_EQ(2, run.exitCode);
    EXPECT_EQ("error: /dev/full: the recording could not be written whole\n"
              "  help: free some space, or name another file with -o\n",
              run.error);
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST(RecordingEndToEnd, ToAPipeIsWrittenStraight) {
    RecordedServer server("single");
    ASSERT_TRUE(server.isReady_);
    const ProgramRun run = server.zolexctl({"record", "-o", "/dev/stdout"});
    EXPECT_EQ(0, run.exitCode) << run.error;
    EXPECT_EQ(0U, run.output.find("{\"format\":\"zolex-recording\"")) << run.output;
    EXPECT_NE(std::string::npos, run.output.find("\"sha256\"")) << run.output;
    EXPECT_TRUE(run.output.ends_with("\"}\n")) << run.output;
    EXPECT_EQ(0U, run.error.find("1 controller, 5 utility calls, ")) << run.error;
}
#endif

} // namespace
} // namespace zolex::e2e
