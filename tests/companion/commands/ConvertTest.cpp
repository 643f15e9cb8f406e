#include "companion/commands/Commands.h"
#include "companion/recording/RecordedRuns.h"
#include "companion/support/KeptDocument.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::Seen;

constexpr const char* kinds = "[Policy.web]\n"
                              "AppliesTo.1 = ALL\n"
                              "Drives.A = 2 x HDD\n"
                              "Spares = 1\n";

/// Runs convert in a folder that has a recording of the sample "single".
class ConvertTest : public testing::Test {
  protected:
    void SetUp() override {
        test::layOut(folder);
        test::Server server("single");
        ASSERT_EQ(test::runRecord(server, "a.zrec").exitCode, 0);
        folder.write("kinds.ini", kinds);
    }

    Seen run(const ConvertOptions& options) {
        return test::seen(system, [&] { return convert(context, options); });
    }
    Seen run(const std::string& file) { return run({file, "policies", "a.zrec"}); }

    zolex::test::TemporaryDirectory folder;
    test::Elsewhere system;
    Context context{system, {}, Format::text, {}, {}, {}, false, false, {"convert"}};
};

TEST_F(ConvertTest, WritesPoliciesForZolex) {
    const Seen seen = run("kinds.ini");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    // The first line has the version.
    EXPECT_EQ(seen.output.substr(seen.output.find('\n') + 1),
              R"(;  KQ10Z7V.
; The drives are those of this machine alone.

[Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
; Drives.A = 2 x HDD: 32:0 (SAS HDD, 67.8 GB: drive 1 of 2); 32:1 (SAS HDD,
;  67.8 GB: drive 2 of 2)
Array.A = 1:0,1:1
; Spares = 1: 32:7 (SAS HDD, 67.8 GB: the largest, last that covers A)
Hotspares = 1:7
)");
    EXPECT_TRUE(system.children.empty());
}

TEST_F(ConvertTest, WritesIntoAFile) {
    context.outputFile = test::writtenFile;
    const std::string printed = run("kinds.ini").file;
    // Windows ends its lines with a carriage return, too.
    EXPECT_TRUE(printed.find("\nArray.A = 1:0,1:1") != std::string::npos) << printed;
    EXPECT_EQ(run("kinds.ini").output, "");
}

TEST_F(ConvertTest, TellsWhatIsDroppedUnlessItIsQuiet) {
    folder.write("kinds.ini", std::string(kinds) + "Level.A = 10 else 1\n");
    EXPECT_EQ(run("kinds.ini").error,
              R"(kinds.ini: note: controller 1, Level.A: "10 else 1" is left out: the level that
           was chosen is written [ZP264]
   help: convert the policies again when the drives change
)");
    context.quiet = true;
    EXPECT_EQ(run("kinds.ini").error, "");
}

TEST_F(ConvertTest, WritesNothingWhenSomethingDoesNotBind) {
    folder.write("kinds.ini", std::string(kinds) + "Drives.B = 9 x SSD\n");
    context.outputFile = "kept.ini";
    folder.write("kept.ini", "old");
    const Seen seen = run("kinds.ini");
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(seen.error,
              R"(kinds.ini:5:12: error: controller 1: 9 SSD are wanted; there are none [ZX313]
   5 | Drives.B = 9 x SSD
     |            ^^^^^^^
   help: zolexctl show lists the drives
error: kinds.ini: nothing was written
  help: mend what is told above, and convert again
)");
    EXPECT_EQ(zolex::test::TemporaryDirectory::read("kept.ini"), "old");
}

TEST_F(ConvertTest, TellsTheFaultsOfTheFile) {
    folder.write("kinds.ini", "[Policy.web]\nAppliesTo.1 = ALL\nDrives.A = 2 HDD\nInit = SLOW\n");
    const Seen seen = run("kinds.ini");
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_EQ(seen.error, R"(kinds.ini:3:14: error: "HDD" stands where "x" is wanted [ZX112]
   3 | Drives.A = 2 HDD
     |              ^^^
   help: write how many and which: 2 x SSD <500GB, rest of one size, all HDD,
         slots 32:0,32:1

kinds.ini:4:8: error: Init cannot be "SLOW" [ZX101]
   4 | Init = SLOW
     |        ^^^^
   help: Init is QUICK or BUILD
error: kinds.ini: nothing was written
  help: mend what is told above, and convert again
)");
    EXPECT_EQ(run("none.ini").error,
              R"(error: none.ini: the file cannot be read: there is no such file or folder
  help: give the name of a policies file, or - for standard input
)");
}

TEST_F(ConvertTest, NeedsOneMachine) {
    EXPECT_EQ(run({"kinds.ini", "policies", "none.zrec"}).error,
              R"(none.zrec: error: the file cannot be opened: there is no such file or folder
           [ZR100]
   help: record the machine again: zolexctl record -o FILE.zrec
error: kinds.ini: nothing was written
  help: mend what is told above, and convert again
)");
    folder.write("fleet/a.zrec", zolex::test::TemporaryDirectory::read("a.zrec"));
    folder.write("fleet/b.zrec", zolex::test::TemporaryDirectory::read("a.zrec"));
    EXPECT_EQ(run({"kinds.ini", "policies", "fleet"}).error,
              R"(error: fleet has recordings of 2 machines, and drives are told for one
  help: name the recording: --machine server.zrec
)");
    EXPECT_EQ(run({"kinds.ini", "policies", "fleet/a.zrec"}).exitCode, 0);
}

constexpr const char* plain = "[Policy.web]\n"
                              "AppliesTo.1 = ALL\n"
                              "Array_Mode = CUSTOM\n"
                              "Array.A = 1,2\n"
                              "Hotspares = 8\n"
                              "Logical_Mode = CUSTOM\n"
                              "Logical.1 = A:FILL:1\n";
constexpr const char* node = R"({
  "logical_disks": [
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1"
      ]
    }
  ]
}
)";

TEST_F(ConvertTest, WritesForIronicOfARecordingAndOfAPlan) {
    folder.write("web.ini", plain);
    const std::string told =
        R"(web.ini:5:13: warning: controller 1: the hot spare 32:7 is left out: Ironic
              cannot say one [ZX957]
   5 | Hotspares = 8
     |             ^
)";
    const Seen recorded = run({"web.ini", "ironic", "a.zrec"});
    EXPECT_EQ(recorded.exitCode, 0);
    EXPECT_EQ(recorded.error, told);
    EXPECT_EQ(recorded.output, node);
    test::keepDocument("ironic-command", recorded.output);

    Context planning = context;
    planning.machine.recording = "a.zrec";
    PlanOptions options;
    options.file = "web.ini";
    options.savedFile = "plan.json";
    ASSERT_EQ(test::seen(system, [&] { return plan(planning, options); }).exitCode, 0);
    const Seen planned = run({"web.ini", "ironic", "plan.json"});
    EXPECT_EQ(planned.exitCode, 0);
    EXPECT_EQ(planned.error, told);
    EXPECT_EQ(planned.output, node);

    context.outputFile = test::writtenFile;
    context.quiet = true;
    EXPECT_EQ(run({"web.ini", "ironic", "plan.json"}).error, told);
    folder.write("web.ini", std::string(plain) + "; changed\n");
    const Seen other = run({"web.ini", "ironic", "plan.json"});
    EXPECT_EQ(other.exitCode, 2);
    EXPECT_EQ(other.error, R"(error: plan.json is no plan of web.ini as it is now
  help: zolexctl plan web.ini -o plan.json
)");
}

TEST_F(ConvertTest, WritesNothingForIronicOfPoliciesThatCannotBePlanned) {
    folder.write("web.ini", std::string(plain) + "Array.B = 2,3,4\nLogical.2 = B:FILL:5\n");
    folder.write("kept.json", "old");
    context.outputFile = "kept.json";
    const Seen seen = run({"web.ini", "ironic", "a.zrec"});
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_EQ(seen.error, R"(web.ini:8:11: error: 32:1 is in Array.A and in Array.B [ZX302]
   8 | Array.B = 2,3,4
     |           ^
   help: Array.A is made, and then MEGACLI refuses the command for Array.B
   help: to let it pass: zolexctl plan web.ini --accept ZX302
error: web.ini: nothing was written
  help: mend what is told above, and convert again
)");
    EXPECT_EQ(zolex::test::TemporaryDirectory::read("kept.json"), "old");
}

TEST_F(ConvertTest, WritesPoliciesOfIronic) {
    folder.write("node.json", node);
    ConvertOptions options{"node.json", "", "", "ironic", ""};
    EXPECT_EQ(run(options).error,
              R"(node.json:8:9: error: logical_disks[0].physical_disks[0]: "32:0" is no number of
               a drive, and without the server its location cannot be looked up
               [ZX954]
   8 |         "32:0",
     |         ^^^^^^
   help: zolexctl record -o server.zrec on the server, and --machine server.zrec
error: node.json: nothing was written
  help: mend what is told above, and convert again
)");
    options.machine = "a.zrec";
    const Seen seen = run(options);
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    // The first line has the version.
    EXPECT_EQ(seen.output.substr(seen.output.find('\n') + 1),
              R"(; Deploying it makes these arrays anew: what is on the drives is lost.

[Policy.node]

AppliesTo.1 = t:LSI-MegaRAID-8480,d:8

Array_Mode = CUSTOM
; A: 32:0 32:1
Array.A = 1,2

; No hot spares: Ironic has none. Without this entry there could be one.
Array_Defaults = 0%:0

Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)");
    context.outputFile = test::writtenFile;
    const Seen written = run(options);
    EXPECT_EQ(written.error,
              "written.ini: 1 policy, 1 array, 1 logical drive; spares: none (Ironic has none)\n");
    EXPECT_EQ(written.output, "");
    // Windows ends its lines with a carriage return, too.
    EXPECT_NE(written.file.find("Logical.1 = A:FILL:1"), std::string::npos) << written.file;
    EXPECT_TRUE(system.children.empty());
}

TEST_F(ConvertTest, TellsTheFaultsOfIronicsFile) {
    folder.write("node.json", "{\"logical_disks\": [\n  {\"size_gb\": 1.5, \"raid\": 1}]}\n");
    folder.write("kept.ini", "old");
    context.outputFile = "kept.ini";
    const Seen seen = run({"node.json", "", "", "ironic", "LSI-MegaRAID-8480"});
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_EQ(seen.error,
              R"(node.json:2:15: error: logical_disks[0].size_gb is 1.5, and must be a whole
                number above 0, or "MAX" [ZP272]
   2 |   {"size_gb": 1.5, "raid": 1}]}
     |               ^^^
   help: mend it, and hold it against schemas/ironic-raid.schema.json

node.json:2:28: error: logical_disks[0].raid is no name that a logical disk has
                [ZP272]
   2 |   {"size_gb": 1.5, "raid": 1}]}
     |                            ^
   help: mend it, and hold it against schemas/ironic-raid.schema.json

node.json:2:3: error: logical_disks[0] has no raid_level [ZP272]
   2 |   {"size_gb": 1.5, "raid": 1}]}
     |   ^^^^^^^^^^^^^^^^^^^^^^^^^^^
   help: mend it, and hold it against schemas/ironic-raid.schema.json
error: node.json: nothing was written
  help: mend what is told above, and convert again
)");
    EXPECT_EQ(zolex::test::TemporaryDirectory::read("kept.ini"), "old");
    EXPECT_EQ(run({"none.json", "", "", "ironic", "LSI-MegaRAID-8480"}).error,
              R"(error: none.json: the file cannot be read: there is no such file or folder
  help: give the name of a RAID configuration, or - for standard input
)");
}

} // namespace
} // namespace zolex::companion
