#include "companion/commands/Commands.h"
#include "companion/recording/RecordedRuns.h"
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

} // namespace
} // namespace zolex::companion
