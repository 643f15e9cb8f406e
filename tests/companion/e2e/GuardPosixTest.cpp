// How guard finds and starts zolex, and what it does meanwhile.

#ifndef _WIN32

#include "PlannedServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

/// A server with a script in the place of zolex, in a folder of the search path.
class ScriptedServer : public PlannedServer {
  public:
    explicit ScriptedServer(const std::string& script) : PlannedServer(megaServer(eightDrives)) {
        environment["TMPDIR"] = folder().string();
        fs::create_directory(folder() / "bin");
        write("bin/zolex", "#!/bin/sh\n" + script);
        fs::permissions(folder() / "bin/zolex", fs::perms::owner_all);
        environment["PATH"] = (folder() / "bin").string() + ":/usr/bin:/bin";
        write("p.ini", webPolicies);
    }

    ProgramRun guard(const std::string& command) {
        return start("/bin/sh", {"-c", "C='" ZOLEXCTL_PROGRAM "'; " + command});
    }
};

TEST(GuardPosix, FindsZolexAlongThePathAndPassesWordsAndStreams) {
    ScriptedServer server("for w; do echo \"<$w>\"; done; cat; echo told >&2; exit 7\n");
    const ProgramRun run =
        server.guard("echo asked | $C guard -q -- zolex '/f:p.ini' '/o:a  b\"c' /v:3");
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_EQ(run.output, "</f:p.ini>\n</o:a  b\"c>\n</v:3>\nasked\n");
    EXPECT_EQ(run.error, "told\n");
}

TEST(GuardPosix, SaysWhenThereIsNoZolex) {
    ScriptedServer server("exit 0\n");
    fs::remove(server.folder() / "bin/zolex");
    const ProgramRun run = server.guard("$C guard -- ./zolex /d");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.error, "error: zolex is not found [ZA211]\n"
                         "   help: put zolex beside zolexctl\n"
                         "\n"
                         "error: zolex was not started, and nothing was changed\n");
}

TEST(GuardPosix, HoldsTheLockOfTheMachineWhileZolexRuns) {
    ScriptedServer server("touch started; n=0\n"
                          "until [ -e go ] || [ $n = 600 ]; do sleep 0.05; n=$((n + 1)); done\n");
    const ProgramRun run = server.guard(
        "$C guard -q -- zolex /f:p.ini & first=$!\n"
        "until [ -e started ]; do sleep 0.05; kill -0 $first || break; done; rm started\n"
        "$C guard -q -- zolex /f:p.ini; echo second $?; ls started 2>/dev/null\n"
        "touch go; wait $first; echo first $?\n"
        "$C guard -q -- zolex /f:p.ini; echo third $?; ls started");
    EXPECT_EQ(run.output, "second 3\nfirst 0\nthird 0\nstarted\n") << run.error;
    expectPieces(run.error, {"error: another run is under way on this machine (pid ", "[ZA214]\n",
                             "error: zolex was not started, and nothing was changed\n"});
}

TEST(GuardPosix, PassesSignalsOnAndWaitsForTheEnd) {
    ScriptedServer server("trap 'echo ended; exit 9' TERM; touch started\n"
                          "n=0; until [ $n = 600 ]; do sleep 0.05; n=$((n + 1)); done\n");
    const ProgramRun run = server.guard(
        "$C guard -q -- zolex /f:p.ini & first=$!\n"
        "until [ -e started ]; do sleep 0.05; kill -0 $first || break; done; kill -TERM $first\n"
        "wait $first; echo first $?");
    EXPECT_EQ(run.output, "ended\nfirst 9\n") << run.error;
}

TEST(GuardPosix, EndsAsAShellDoesWhenASignalEndsZolex) {
    ScriptedServer server("kill -KILL $$\n");
    EXPECT_EQ(server.guard("$C guard -q -- zolex /f:p.ini").exitCode, 137);
}

TEST(GuardPosix, RefusesWhatChangesBehindItsBack) {
    // The detector is asked first in each capture: the second one finds another server.
    ScriptedServer server("touch started\n");
    const fs::path utility = server.folder() / "UTIL.BAT";
    fs::rename(utility, server.folder() / "UTIL.OLD");
    server.write("UTIL.BAT", "#!/bin/sh\n"
                             "n=$(cat calls 2>/dev/null || echo 0); echo $((n + 1)) > calls\n"
                             "[ $n = 3 ] && ./UTIL.OLD MEGACLI -PDHSP -Set '-PhysDrv[32:7]' -a0 "
                             "> /dev/null\n"
                             "exec ./UTIL.OLD \"$@\"\n");
    fs::permissions(utility, fs::perms::owner_all);
    const ProgramRun run = server.guard("$C guard -- zolex /f:p.ini; echo $?; ls started");
    expectPieces(run.output, {"3\n"});
    EXPECT_EQ(run.output.find("started"), std::string::npos);
    expectPieces(run.error, {"error: the server has changed meanwhile [ZA213]\n"
                             "   help: run the command again\n"});
}

} // namespace
} // namespace zolex::e2e

#endif
