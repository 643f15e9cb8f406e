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
    EXPECT_EQ(shown.output, R"(Machine R750, serial KQ92P3C
Controller 1  PERC H755 Front (PERC-H755-Front)  serial NX26400017
              PCI 65:00.0 1000:10e2 1028:1ae1  firmware 52.26.0-0001
              levels 0 1 5 6 00 10 50 60, strip 64-1024 KB, rebuild rate 30 %
  Enclosure 64  no  location      size  drive              state  in
                 1  64:0      893.8 GB  ATA NVS960-D 1000  Onln   A
                 2  64:1      893.8 GB  ATA NVS960-D 1001  Onln   A
                 3  64:2      893.8 GB  ATA NVS960-D 1002  UGood  free
                 4  64:3      893.8 GB  ATA NVS960-D 1003  UGood  free
                 5  64:4      893.8 GB  ATA NVS960-D 1004  UGood  free
                 6  64:5      893.8 GB  ATA NVS960-D 1005  UGood  free
                 7  64:6      893.8 GB  ATA NVS960-D 1006  UGood  free
                 8  64:7      893.8 GB  ATA NVS960-D 1007  UGood  free
  A  64:0 64:1  LD 239  RAID1  893.8 GB  optl  write-back  256 KB  "boot"
  .  64:2-64:7  6 free drives, 5.24 TB
)");
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
    EXPECT_EQ(valuesOf(server.read("plan.json"), "command"),
              (std::vector<std::string>{
                  "STORCLI /c0 add vd r1 drives=252:0,252:1 WB J nolog",
                  "STORCLI /c0 add vd r5 Size=102400MB drives=62:0,62:1,62:2,62:3 WB J nolog",
                  "STORCLI /c0 add vd r5 drives=62:0,62:1,62:2,62:3 WT J nolog",
                  "STORCLI /c0/e62/s11 add hotsparedrive J nolog"}));
    const ProgramRun run = server.apply({"plan.json", "--certificate", "c.json"});
    EXPECT_EQ(run.exitCode, 0) << run.error;
    EXPECT_EQ(withoutTimesOfRun(run.output),
              R"(Machine    7X06 KQ91S2M, controller serial NX26400017             as planned for
State      16 drives, no logical drives                           as planned for
Consent    nothing is lost                                        not needed
Journal    plan.journal.jsonl

[1/4] create A: RAID1 on 252:0 252:1                        ok  exit 0 N s
[2/4] create B: RAID5 on 62:0 62:1 62:2 62:3                ok  exit 0 N s
[3/4] create Logical.3 on B: RAID5 on 62:0 62:1 62:2
      62:3                                                  ok  exit 0 N s
[4/4] make 62:11 a spare                                    ok  exit 0 N s
Verified   captured again: 3 logical drives, 1 spare, as planned
Certificate c.json   sha256 HASH
Controller 1  configured
Done: 1 controller configured.
)");
    keepDocument("apply-storcli.jsonl", server.read("plan.journal.jsonl"));
    keepDocument("certificate-storcli", server.read("c.json"));
    keepDocument("plan-storcli-applied", server.read("plan.json"));
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
    EXPECT_EQ(
        valuesOf(server.read("plan.json"), "command"),
        (std::vector<std::string>{"STORCLI /c0 add vd r6 drives=64:2,64:3,64:4,64:5,64:6 J nolog",
                                  "STORCLI /c0/e64/s7 add hotsparedrive J nolog"}));
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
    EXPECT_EQ(asked.error,
              R"(error: 4 logical drives (37.26 TB), 2 hot spares and 1 foreign drive would be
       lost, and nobody has agreed to it [ZA103]
  help: zolexctl reset --destroy AB6V-QPAT
)");
    EXPECT_EQ(server.shown(), before);
    const ProgramRun run = server.change({"reset", "--destroy", "any"});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_EQ(run.error,
              R"(error: step 3 of 7 was refused (VD has OS/FS, use force to delete it. (error
       255)): delete LD 239: RAID1 on 252:0 252:1 [ZA111]
  STORCLI /c0/v239 del J nolog
  now on controller 1: still there: LD 239; still there: LD 238; still there: LD
    237; still there: LD 236
  remains: step 3: delete LD 239: RAID1 on 252:0 252:1
  remains: step 4: delete LD 238: RAID5 on 252:2 252:3 252:4 252:5
  remains: step 5: delete LD 237: RAID10 on 252:6 252:7 252:8 252:9
  remains: step 6: delete LD 236: RAID10 on 252:6 252:7 252:8 252:9
  remains: step 7: clear the layouts of other controllers: 252:18 (DG 0: RAID0,
    7.277 TB, 1 logical drive)
  help: the system has files there; move them, or delete it by hand
  help: zolexctl apply --resume reset.journal.jsonl goes on when its cause is mended
  help: zolexctl reset plans from what is there
)");
    const std::string losses =
        "This destroys 4 logical drives (37.26 TB), 2 hot spares and 1 foreign drive:\n"
        "  - spare 252:11  controller 1\n"
        "  - spare 252:10  controller 1\n"
        "  - LD 239  RAID1  893.8 GB  252:0 252:1  \"system\", /dev/sda  controller 1\n"
        "  - LD 238  RAID5  21.83 TB  252:2-252:5  /dev/sdb  controller 1\n"
        "  - LD 237  RAID10  156.3 GB  252:6-252:9  \"logs\", /dev/sdc  controller 1\n"
        "  - LD 236  RAID10  14.40 TB  252:6-252:9  \"data\", /dev/sdd  controller 1\n"
        "  - foreign 252:18  RAID0  7.28 TB  controller 1\n";
    EXPECT_NE(asked.output.find(losses), std::string::npos) << asked.output;
    const std::string output = withoutTimesOfRun(run.output);
    EXPECT_EQ(output.substr(output.find("Consent")),
              R"(Consent    AB6V-QPAT: spare 252:11, spare 252:10, LD 239, LD
           238, LD 237, LD 236 and foreign 252:18 of controller
           1                                                      agreed
Journal    reset.journal.jsonl

[1/7] remove the spare 252:11                               ok  exit 0 N s
[2/7] remove the spare 252:10                               ok  exit 0 N s
[3/7] delete LD 239: RAID1 on 252:0 252:1               FAILED  exit 255 N s
Controller 1  failed: step 3 of 7: VD has OS/FS, use force to delete it. (error
              255)
Stopped on the way. reset.journal.jsonl tells what was done.
)");
    const ProgramRun journal = server.zolexctl({"show", "reset.journal.jsonl"});
    EXPECT_EQ(journal.exitCode, 0) << journal.error;
    expectPieces(journal.output, {"[3/7]     FAILED, exit 255, ",
                                  "                    STORCLI /c0/v239 del J nolog\n"
                                  "                    | VD has OS/FS, use force to delete it. "
                                  "(error 255)\n",
                                  "  x step 3  failed  delete LD 239: RAID1 on 252:0 252:1\n"
                                  "  . 4 steps were not begun\n"});
    keepDocument("reset-storcli.jsonl", server.read("reset.journal.jsonl"));
    // Whoever means it deletes it, and the run goes on.
    server.util({"storcli64", "/c0/v239", "del", "force", "J", "nolog"});
    const ProgramRun resumed = server.apply({"--resume", "reset.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    server.expectNothingLeft();
    const ProgramRun again = server.change({"reset", "--journal", "again.jsonl"});
    EXPECT_EQ(again.exitCode, 0) << again.output << again.error;
    EXPECT_FALSE(server.exists("again.jsonl"));
}

#ifndef _WIN32
/// Linux is asked what it does with a logical drive before the first command: here what stands
/// beside the folder of the bus.
TEST(Storcli, WhatTheRunningSystemUsesIsNotReset) {
    StorcliServer server("storcli");
    const std::string id =
        valuesOf(server.zolexctl({"show", "--format", "json"}).output, "unique_id").at(1);
    fs::create_directories(server.folder() / "sys/block/sdq/device");
    fs::create_directories(server.folder() / "proc/self");
    server.write("sys/block/sdq/dev", "65:0\n");
    server.write("sys/block/sdq/device/wwid", "naa." + id + "\n");
    server.write("proc/self/mountinfo", "20 1 65:0 / /srv rw - ext4 /dev/sdq rw\n");
    const ProgramRun reset = server.change({"reset", "--destroy", "any"});
    EXPECT_EQ(reset.exitCode, 2) << reset.output;
    EXPECT_EQ(reset.error, R"(error: LD 238 (/dev/sdq) stays: mounted at /srv [ZP227]
   help: umount /srv
error: nothing can be reset as it stands
  help: zolexctl doctor
)");
    EXPECT_FALSE(server.exists("reset.journal.jsonl"));
    EXPECT_NE(server.zolexctl({"show", "-v"}).output.find("mounted at /srv"), std::string::npos);
    // Of a recording nothing is asked.
    EXPECT_EQ(server.zolexctl({"record", "-o", "server.zrec"}).exitCode, 0);
    EXPECT_EQ(server.zolexctl({"show", "-v", "--recording", "server.zrec"}).output.find("mounted"),
              std::string::npos);
}
#endif

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
    EXPECT_EQ(withoutTimesOfRun(run.output),
              R"(Machine    7X06 KQ91S2M, controller serial NX26400017             as planned for
State      16 drives, no logical drives                           as planned for
Consent    nothing is lost                                        not needed
Journal    plan.journal.jsonl

[1/1] create A: RAID1 on 252:0 252:1                     again  exit 255 N s
      Un-supported Command (error 255): run again as STORCLI /c0 add vd r1
      drives=252:0,252:1 J
[1/1] create A: RAID1 on 252:0 252:1                        ok  exit 0 N s
Verified   captured again: 1 logical drive, as planned
Controller 1  configured
Done: 1 controller configured.
)");
    EXPECT_EQ(run.error, "");
    const ProgramRun journal = server.zolexctl({"show", "plan.journal.jsonl"});
    expectPieces(journal.output,
                 {"[1/1]     not known, exit 255, ",
                  "                    STORCLI /c0 add vd r1 drives=252:0,252:1 J nolog\n"
                  "                    | Un-supported Command (error 255)\n"
                  "                    run again as STORCLI /c0 add vd r1 drives=252:0,252:1 J\n",
                  "[1/1]     create A: RAID1 on 252:0 252:1 (attempt 2)\n",
                  "[1/1]     ok, exit 0, ", "The run ended as planned.\n"});
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
    EXPECT_EQ(run.error,
              R"(error: what stands on controller 1 now is not what was planned [ZA114]
  Logical.1, missing: planned is RAID1 fill: 252:0 252:1; found is none
  help: zolexctl plan site.ini plans from what is there
)");
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
    const ProgramRun replay = server.zolexctl({"replay", "server.zrec", "--", "show"});
    EXPECT_EQ(replay.exitCode, 0) << replay.error;
    EXPECT_EQ(replay.output, live.output);
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
    fs::remove(server.folder() / "UTIL.BAT"); // it is asked where no program is found
    EXPECT_EQ(server.zolexctl({"show"}).output.find("Controller 1"), std::string::npos);
    const std::string named = "STORCLI=" + other;
    EXPECT_EQ(server.zolexctl({"show", "--utility", named}).exitCode, 0);
    server.write("site.ini", "[Policy.one]\nAppliesTo.1 = t:STORCLI\n"
                             "Drives.A = slots 252:0,252:1\nLevel.A = 1\n");
    server.plan({"site.ini", "--utility", named});
    const ProgramRun run = server.apply({"plan.json", "--utility", named});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
}

/// guard lets zolex work on its own controller; what zolex does not know stays.
TEST(Storcli, ZolexIsGuardedBesideIt) {
    std::string definition = megaServer(eightDrives);
    const std::string end = "]}]}";
    EXPECT_TRUE(definition.ends_with(end));
    definition.resize(definition.size() - 2);
    definition += R"(, {"utility": "STORCLI", "pci": {"bus": 193}, "drives": [
        {"enclosure": 252, "slot": 0, "count": 2, "sectors": 41943040}], "virtualDrives": [
        {"level": "RAID1", "spans": [["252:0", "252:1"]], "name": "keep"}]}]})";
    StorcliServer server(definition);
#ifdef _WIN32
    const char* const program = "ZOLEX.EXE";
    const char* const call = ".\\ZOLEX.EXE";
#else
    const char* const program = "zolex";
    const char* const call = "./zolex";
#endif
    fs::copy_file(ZOLEX_UNPAUSED_PROGRAM, server.folder() / program);
    server.write("web.ini", webPolicies);
    const ProgramRun run =
        server.start(ZOLEXCTL_PROGRAM, {"guard", "--", call, "/r", "/y", "/f:web.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    const std::string shown = server.shown();
    EXPECT_NE(shown.find("\"keep\""), std::string::npos) << shown;
    const ProgramRun both = server.zolexctl({"show"});
    EXPECT_EQ(both.exitCode, 0) << both.error;
    expectPieces(both.output, {"Controller 1  LSI", "Controller 2  MegaRAID"});
}

} // namespace
} // namespace zolex::e2e
