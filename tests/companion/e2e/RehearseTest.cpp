// One policies file on a folder of recordings, by the real program; and each server applied.

#include "AppliedServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

constexpr const char* fleetPolicies = "[Policy.db]\n"
                                      "AppliesTo.1 = d:6\n"
                                      "\n"
                                      "[Policy.web]\n"
                                      "AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
                                      "AppliesTo.2 = t:LSI-MegaRAID-8480,d:7\n"
                                      "Array_Mode = CUSTOM\n"
                                      "Array.A = 1,2\n"
                                      "Array.B = 3,4,5,6,7\n"
                                      "Hotspares = 8\n"
                                      "Logical_Mode = CUSTOM\n"
                                      "Logical.1 = A:FILL:1:ON\n"
                                      "Logical.2 = B:FILL:5:ON\n";

std::string serverWith(const std::string& serial, const std::string& drives) {
    return with(megaServer(drives), "KQ10Z7V", serial);
}

/// Recordings of: a blank server, one that loses a mirror, one that is as planned already, one with
/// seven drives, one with five that no policy fits, one that is cut.
class RehearsedFleet : public testing::Test {
  protected:
    void SetUp() override {
        home.write("site.ini", fleetPolicies);
        fs::create_directory(home.folder() / "fleet");
        record("r1u01", blank);
        losing.write("old.ini", "[Policy.old]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                "Array.A = 2,3\nHotspares = 8\nLogical_Mode = CUSTOM\n"
                                "Logical.1 = A:FILL:1:ON\n");
        losing.deploy("old.ini");
        record("r1u02", losing);
        ready.write("site.ini", fleetPolicies);
        ready.deploy("site.ini");
        record("r1u03", ready);
        record("r1u04", small);
        record("r1u05", tiny);
        const std::string whole = home.read("fleet/r1u01.zrec");
        home.write("fleet/r1u06.zrec", whole.substr(0, whole.size() / 3));
        home.write("fleet/readme.txt", "no recording");
    }

    void record(const std::string& name, PlannedServer& server) {
        const ProgramRun run = server.zolexctl({"record", "-q", "-o", name + ".zrec"});
        ASSERT_EQ(run.exitCode, 0) << run.error;
        home.write("fleet/" + name + ".zrec", server.read(name + ".zrec"));
    }

    ProgramRun rehearse(std::vector<std::string> more = {}) {
        more.insert(more.begin(), {"rehearse", "site.ini", "fleet"});
        return home.zolexctl(more);
    }

    PlannedServer home{"single"};
    AppliedServer blank{serverWith("KQ10001", eightDrives)};
    AppliedServer losing{serverWith("KQ10002", eightDrives)};
    AppliedServer ready{serverWith("KQ10003", eightDrives)};
    AppliedServer small{
        serverWith("KQ10004", R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376})")};
    AppliedServer tiny{
        serverWith("KQ10005", R"({"enclosure": 32, "slot": 0, "count": 5, "sizeMB": 69376})")};
};

constexpr const char* fleetTable =
    "server           policies used  result      loses          commands\n"
    "r1u01   KQ10001  web            as planned  nothing               3\n"
    "r1u02   KQ10002  web            as planned  1 LD, 67.8 GB         3\n"
    "r1u03   KQ10003  web            same        nothing               0\n"
    "r1u04   KQ10004  web            ERROR       -                     -\n"
    "      site.ini:10:13: there is no drive 8 among 7 [ZX304]\n"
    "r1u05   KQ10005  none           skipped     nothing               0\n"
    "      no policy fits: Policy.db asks for d:6, and it is 5; Policy.web asks for\n"
    "      d:8, and it is 5; Policy.web asks for d:7, and it is 5\n"
    "r1u06            none           ERROR       -                     -\n"
    "      fleet/r1u06.zrec does not hold the call UTIL.BAT MEGACLI -pdList -a0\n"
    "      [ZP100]\n"
    "\n"
    "6 servers: 2 as planned, 1 same, 1 skipped, 2 errors\n"
    "What is lost: nothing on 3 servers, 1 logical drive (67.8 GB) on 1, not known of\n"
    "  2\n"
    "Never used by any server that could be planned: Policy.db (site.ini:1; no\n"
    "  controller has d:6)\n"
    "Warnings: ZP210 on 1 server; -v shows each\n"
    "More on a server: zolexctl plan site.ini --recording fleet/r1u04.zrec\n";

TEST_F(RehearsedFleet, TellsEachServerAndAllOfThem) {
    const ProgramRun run = rehearse();
    EXPECT_EQ(run.error, "");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, fleetTable);
    // The same for any number of jobs, and for files that are named one by one.
    for (const char* jobs : {"1", "2", "7", "256"}) {
        EXPECT_EQ(rehearse({"--jobs", jobs}).output, run.output) << jobs;
    }
    std::vector<std::string> names = {"rehearse", "site.ini"};
    for (const char* name : {"1", "2", "3", "4", "5", "6"}) {
        names.push_back("fleet/r1u0" + std::string(name) + ".zrec");
    }
    names.push_back("fleet"); // each counts once
    EXPECT_EQ(home.zolexctl(names).output, run.output);
}

TEST_F(RehearsedFleet, TellsWhatApplyDoes) {
    for (AppliedServer* const server : {&blank, &losing, &ready, &small, &tiny}) {
        server->write("site.ini", fleetPolicies);
    }
    const auto apply = [](AppliedServer& server) {
        return server
            .start(ZOLEXCTL_PROGRAM, {"apply", "--policies", "site.ini", "--destroy", "any"})
            .exitCode;
    };
    EXPECT_EQ(apply(blank), 0);  // as planned
    EXPECT_EQ(apply(losing), 0); // as planned
    EXPECT_EQ(apply(ready), 0);  // same
    EXPECT_EQ(apply(small), 2);  // ERROR
    EXPECT_EQ(apply(tiny), 3);   // skipped
}

TEST_F(RehearsedFleet, EndsWellWithoutErrors) {
    fs::remove(home.folder() / "fleet/r1u04.zrec");
    fs::remove(home.folder() / "fleet/r1u06.zrec");
    const ProgramRun run = rehearse({"--every-fault"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.output, {"4 servers: 2 as planned, 1 same, 1 skipped\n",
                              "What is lost: nothing on 3 servers, 1 logical drive (67.8 GB) on 1",
                              "Never used by any server: Policy.db (site.ini:1; no controller has "
                              "d:6),\n  Policy.web AppliesTo.2 (site.ini:6; no controller has d:7)",
                              "Every single command was made to fail once ("});
}

TEST_F(RehearsedFleet, SupposesWhatIsAskedFor) {
    const ProgramRun run = rehearse({"--what-if", "missing:32:7"});
    EXPECT_EQ(run.exitCode, 1);
    expectPieces(run.output, {"Supposed: drive 32:7 is missing, on 3 of 6 servers\n",
                              "r1u01   KQ10001  web            ERROR", "[ZX304]"});
    const ProgramRun nowhere = rehearse({"--what-if", "fail:99:1"});
    EXPECT_EQ(nowhere.exitCode, 2);
    EXPECT_EQ(nowhere.output, "");
    EXPECT_EQ(nowhere.error, "error: no server has a drive 99:1\n"
                             "  help: zolexctl show fleet/r1u01.zrec tells the locations of a "
                             "server\n");
    const ProgramRun twice = rehearse({"--what-if", "fail:32:1", "--what-if", "missing:32:1"});
    EXPECT_EQ(twice.exitCode, 2);
    EXPECT_EQ(twice.error, "error: --what-if: two things are supposed of drive 32:1\n"
                           "  help: suppose one at a time\n");
}

TEST_F(RehearsedFleet, WritesDocumentsAndAPage) {
    const ProgramRun run =
        rehearse({"--format", "json", "-o", "fleet.json", "--html", "fleet.html", "-v"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    const std::string document = home.read("fleet.json");
    EXPECT_EQ(valuesOf(document, "result"),
              (std::vector<std::string>{"as-planned", "as-planned", "same", "error", "skipped",
                                        "error"}));
    const std::string page = home.read("fleet.html");
    expectPieces(page, {"<!DOCTYPE html>", "1 logical drive (67.8 GB) on 1", "id=\"fleet\"",
                        "<section class=\"server\" id=\"server-1\">", "<svg", "lost-frame",
                        "</script>\n</body>\n</html>\n"});
    // An older page stays when the new one cannot be written.
    const ProgramRun refused = rehearse({"--html", "nowhere/fleet.html"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.output.find("6 servers"), std::string::npos);
    EXPECT_EQ(refused.output.find("Pictures"), std::string::npos);
}

TEST_F(RehearsedFleet, WritesOverNoRecording) {
    const std::string recording = home.read("fleet/r1u01.zrec");
    const std::string file = " fleet/r1u01.zrec is read, and would be replaced\n";
    const ProgramRun page = rehearse({"--html", "fleet/r1u01.zrec"});
    EXPECT_EQ(page.exitCode, 2);
    EXPECT_EQ(page.output, "");
    EXPECT_EQ(page.error, "error: --html:" + file + "  help: name another file with --html\n");
    for (const char* const format : {"text", "json"}) {
        const ProgramRun output = rehearse({"--format", format, "-o", "fleet/r1u01.zrec"});
        EXPECT_EQ(output.exitCode, 2) << format;
        EXPECT_EQ(output.output, "") << format;
        EXPECT_EQ(output.error, "error: -o:" + file + "  help: name another file with -o\n");
    }
    EXPECT_EQ(home.read("fleet/r1u01.zrec"), recording);
}

TEST_F(RehearsedFleet, TellsWhyThereIsNothingToRehearse) {
    const auto expectFault = [&](const std::vector<std::string>& words, const std::string& error) {
        std::vector<std::string> arguments = {"rehearse"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const ProgramRun run = home.zolexctl(arguments);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.error, error);
    };
    fs::create_directory(home.folder() / "empty");
    expectFault({"site.ini", "empty"},
                "error: there is nothing to rehearse: no recording (*.zrec) is in empty\n"
                "  help: record each server: zolexctl record -o server.zrec\n");
    expectFault({"site.ini", "none.zrec"},
                "error: there is nothing to rehearse: none.zrec is no file\n"
                "  help: record each server: zolexctl record -o server.zrec\n");
    expectFault({"site.ini"}, "error: rehearse needs recordings, or folders of them\n"
                              "  help: zolexctl rehearse site.ini fleet/\n");
    expectFault({"none.ini", "fleet"},
                "error: none.ini: the file cannot be read: there is no such file or folder\n"
                "  help: give the name of a policies file, or - for standard input\n");
    home.write("broken.ini", "[Policy.a]\nAppliesTo.1 = x:1\n");
    const ProgramRun broken = home.zolexctl({"rehearse", "broken.ini", "fleet"});
    EXPECT_EQ(broken.exitCode, 2);
    expectPieces(broken.error, {"broken.ini:2:15: error: ", "[ZX203]",
                                "error: broken.ini: no server can be planned by these policies\n"
                                "  help: mend what is told as error, and rehearse again\n"});
    const ProgramRun json = home.zolexctl({"rehearse", "broken.ini", "fleet", "--format", "json"});
    EXPECT_EQ(json.exitCode, 2);
    expectPieces(json.output, {"\"format\": \"zolex-fleet\"", "\"servers\": []", "\"ZX203\""});
}

} // namespace
} // namespace zolex::e2e
