// Controllers of today, from the first look at them to a proof and back, with the real program on
// the virtual server.

#include "AppliedServer.h"

#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

using companion::test::keepDocument;

/// A mirror, a RAID 5 with two logical drives, a spare of all and one of the mirror alone.
constexpr const char* sitePolicies = "[Policy.site]\n"
                                     "AppliesTo.1 = t:STORCLI,d:16\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array_Defaults = 0%:0\n"
                                     "Array.A = 13,14\n"
                                     "Array.B = 1,2,3,4\n"
                                     "Hotspares = 12\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1:ON\n"
                                     "Logical.2 = B:102400:5:ON\n"
                                     "Logical.3 = B:FILL:5:OFF\n";

/// What perccli's server gets beside its system.
constexpr const char* dataPolicies = "[Policy.data]\n"
                                     "AppliesTo.1 = t:PERC-H7*\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array_Defaults = 0%:0\n"
                                     "Array.A = 1,2\n"
                                     "Array.B = 3,4,5,6,7\n"
                                     "Hotspares = 8\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1\n"
                                     "Logical.2 = B:FILL:6\n";

/// A server whose programs may write their log nowhere.
class StorcliServer : public AppliedServer {
  public:
    explicit StorcliServer(const std::string& what) : AppliedServer(what) {}
    ~StorcliServer() { expectNothingLeft(); }
    StorcliServer(const StorcliServer&) = delete;
    StorcliServer& operator=(const StorcliServer&) = delete;

    /// The definition of the sample with another field at its controller.
    void addField(const std::string& field) {
        redefine(R"("utility": "STORCLI",)", R"("utility": "STORCLI", )" + field + ",");
        fs::remove(folder() / "state.json");
        EXPECT_EQ(simulator({"show"}).exitCode, 0);
    }
};

TEST(Storcli, IsShownAndExamined) {
    StorcliServer server("percli");
    const ProgramRun shown = server.zolexctl({"show"});
    EXPECT_EQ(shown.exitCode, 0) << shown.error;
    EXPECT_EQ(shown.output, "");
    const ProgramRun doctor = server.zolexctl({"doctor"});
    EXPECT_EQ(doctor.exitCode, 0) << doctor.output << doctor.error;
    EXPECT_NE(doctor.output.find("STORCLI         ok      controller 1: PERC H755 Front"),
              std::string::npos)
        << doctor.output;
}

TEST(Storcli, IsPlannedAppliedAndProved) {
    StorcliServer server("storcli-blank");
    server.write("site.ini", sitePolicies);
    EXPECT_EQ(server.plan({"site.ini"}), "");
    const std::vector<std::string> commands = valuesOf(server.read("plan.json"), "command");
    EXPECT_EQ(commands, std::vector<std::string>{});
    const ProgramRun run = server.apply({"plan.json", "--certificate", "c.json"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(withoutTimesOfRun(run.output), "");
    keepDocument("apply-storcli.jsonl", server.read("plan.journal.jsonl"));
    keepDocument("certificate-storcli", server.read("c.json"));
    keepDocument("plan-storcli.json", server.read("plan.json"));
    for (const char* const file : {"site.ini", "plan.json", "c.json"}) {
        server.expectSame(file);
    }
    server.expectNothingToDo("site.ini");
    const ProgramRun journal = server.zolexctl({"show", "plan.journal.jsonl"});
    EXPECT_EQ(journal.exitCode, 0) << journal.error;
    EXPECT_NE(journal.output.find("The run ended as planned."), std::string::npos);
    EXPECT_EQ(server.zolexctl({"show", "c.json"}).exitCode, 0);
}

TEST(Storcli, KeepsTheSystemOfAPercAndLosesNothing) {
    StorcliServer server("percli");
    server.write("data.ini", dataPolicies);
    EXPECT_EQ(server.plan({"data.ini"}), "");
    EXPECT_EQ(valuesOf(server.read("plan.json"), "command"), std::vector<std::string>{});
    const ProgramRun run = server.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    EXPECT_NE(server.shown().find("boot"), std::string::npos) << server.shown();
    server.expectNothingToDo("data.ini");
}

/// What the system is on is refused by the utility, and "force" is never said.
TEST(Storcli, TheUtilitysRefusalIsHeeded) {
    StorcliServer server("storcli");
    const std::string before = server.shown();
    const ProgramRun asked = server.change({"reset"});
    EXPECT_EQ(asked.exitCode, 3);
    EXPECT_EQ(asked.error, "");
    EXPECT_EQ(server.shown(), before);
    const ProgramRun run = server.change({"reset", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_EQ(run.error, "");
    EXPECT_EQ(withoutTimesOfRun(run.output), "");
    const ProgramRun journal = server.zolexctl({"show", "reset.journal.jsonl"});
    EXPECT_EQ(journal.exitCode, 0) << journal.error;
    EXPECT_EQ(withoutTimesOfRun(journal.output), "");
    keepDocument("reset-storcli.jsonl", server.read("reset.journal.jsonl"));
    // Whoever means it deletes it, and the run goes on.
    server.util({"storcli64", "/c0/v239", "del", "force", "J", "nolog"});
    const ProgramRun resumed = server.apply({"--resume", "reset.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    const ProgramRun again = server.change({"reset"});
    EXPECT_EQ(again.exitCode, 0) << again.output << again.error;
}

/// Each command is run once more without the word, in a folder that goes.
TEST(Storcli, NologIsNotKnown) {
    StorcliServer server("storcli-blank");
    server.addField(R"("refusesNolog": true)");
    EXPECT_EQ(server.zolexctl({"show"}).exitCode, 0);
    server.write("site.ini", "[Policy.one]\nAppliesTo.1 = t:STORCLI\n"
                             "Drives.A = slots 252:0,252:1\nLevel.A = 1\n");
    server.plan({"site.ini"});
    const ProgramRun run = server.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(withoutTimesOfRun(run.output), "");
    EXPECT_EQ(run.error, "");
    const ProgramRun journal = server.zolexctl({"show", "plan.journal.jsonl"});
    EXPECT_EQ(withoutTimesOfRun(journal.output), "");
    keepDocument("apply-storcli-nolog.jsonl", server.read("plan.journal.jsonl"));
    server.expectNothingToDo("site.ini");
}

/// A utility that says success and does nothing.
TEST(Storcli, SuccessWithNothingDoneIsNotBelieved) {
    StorcliServer server("storcli-blank");
    server.write("site.ini", "[Policy.one]\nAppliesTo.1 = t:STORCLI\nSpares = 1\n"
                             "Drives.A = slots 252:0,252:1\nLevel.A = 1\n");
    server.plan({"site.ini"});
    server.setFaults(R"({"match": "add vd", "exitCode": 0, "output":
        "{\"Controllers\":[{\"Command Status\":{\"Status\":\"Success\"}}]}\n"})");
    const ProgramRun run = server.apply({"plan.json"});
    EXPECT_EQ(run.exitCode, 5) << run.output;
    EXPECT_EQ(run.error, "");
    server.setFaults("");
    server.plan({"site.ini", "-o", "next.json"});
    EXPECT_EQ(server.apply({"next.json"}).exitCode, 0);
}

TEST(Storcli, ARecordingReplays) {
    StorcliServer server("storcli");
    const ProgramRun recorded = server.zolexctl({"record", "-o", "server.zrec"});
    EXPECT_EQ(recorded.exitCode, 0) << recorded.error;
    const ProgramRun live = server.zolexctl({"show"});
    const ProgramRun replayed = server.zolexctl({"show", "--recording", "server.zrec"});
    EXPECT_EQ(replayed.exitCode, 0) << replayed.error;
    EXPECT_EQ(replayed.output, live.output);
    EXPECT_EQ(server.zolexctl({"replay", "server.zrec"}).exitCode, 0);
}

/// The program is named, and stands in another folder under another name.
TEST(Storcli, TheProgramIsNamed) {
    StorcliServer server("storcli-blank");
#ifdef _WIN32
    const std::string own = "storcli64.exe";
    const std::string other = "tools\\storcli64.exe";
#else
    const std::string own = "storcli64";
    const std::string other = "tools/storcli64";
#endif
    fs::create_directory(server.folder() / "tools");
    fs::rename(server.folder() / own, server.folder() / other);
#ifndef _WIN32
    fs::copy(server.folder() / "zolex-sim", server.folder() / "tools" / "zolex-sim",
             fs::copy_options::copy_symlinks);
#endif
    EXPECT_NE(server.zolexctl({"show"}).output.find("no supported"), std::string::npos);
    const std::string named = "STORCLI=" + other;
    EXPECT_EQ(server.zolexctl({"show", "--utility", named}).exitCode, 0);
    server.write("site.ini", "[Policy.one]\nAppliesTo.1 = t:STORCLI\n"
                             "Drives.A = slots 252:0,252:1\nLevel.A = 1\n");
    server.plan({"site.ini", "--utility", named});
    const ProgramRun run = server.apply({"plan.json", "--utility", named});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
}

} // namespace
} // namespace zolex::e2e
