// Policies for controllers that zolex does not know, through every command that takes policies.

#include "companion/commands/Commands.h"
#include "companion/recording/RecordedRuns.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::Seen;

/// A folder with recordings of an old server and of two of today.
class FamilyPoliciesTest : public testing::Test {
  protected:
    void SetUp() override {
        test::layOut(folder);
        for (const char* const sample : {"single", "percli", "storcli"}) {
            test::Server server(sample);
            ASSERT_EQ(test::runRecord(server, std::string(sample) + ".zrec").exitCode, 0);
        }
    }

    template <typename Run>
    Seen run(Run command) {
        Context context{system, {}, Format::text, {}, {}, {}, false, false, {"zolexctl"}};
        return test::seen(system, [&] { return command(context); });
    }
    Seen runCheck(const std::string& file, const std::string& machine = "") {
        return run([&](Context& context) {
            CheckOptions options;
            options.files = {file};
            if (!machine.empty()) {
                options.machines = {machine};
            }
            return check(context, options);
        });
    }
    Seen runPlan(const std::string& file, const std::string& machine) {
        return run([&](Context& context) {
            context.machine.recording = machine;
            PlanOptions options;
            options.file = file;
            return plan(context, options);
        });
    }
    Seen runConvert(const std::string& file, const std::string& from, const std::string& to) {
        return run([&](Context& context) {
            ConvertOptions options;
            options.file = file;
            options.to = "policies";
            options.fromType = from;
            options.toType = to;
            return convert(context, options);
        });
    }

    zolex::test::TemporaryDirectory folder;
    test::Elsewhere system;
};

constexpr const char* byForms = "[Policy.other]\n"
                                "AppliesTo.1 = t:PERC-H8*\n"
                                "AppliesTo.2 = t:STORCLI,o:2\n"
                                "[Policy.this]\n"
                                "AppliesTo.1 = t:perc-h7*,o:1,c:1,d:8\n"
                                "Array_Mode = CUSTOM\n"
                                "Array.A = 1,2\n"
                                "Array_Defaults = 0%:0\n";

constexpr const char* notesOfForms =
    R"(forms.ini:2:15: note: zolex refuses this file: it does not know t:PERC-H8*
                [ZX610]
   2 | AppliesTo.1 = t:PERC-H8*
     |               ^^^^^^^^^^
   help: keep the policies for such controllers in a file of their own

forms.ini:3:15: note: zolex refuses this file: it does not know t:STORCLI
                [ZX610]
   3 | AppliesTo.2 = t:STORCLI,o:2
     |               ^^^^^^^^^
   help: keep the policies for such controllers in a file of their own

forms.ini:5:15: note: zolex refuses this file: it does not know t:perc-h7*
                [ZX610]
   5 | AppliesTo.1 = t:perc-h7*,o:1,c:1,d:8
     |               ^^^^^^^^^^
   help: keep the policies for such controllers in a file of their own

3 notes in 1 file (2 policies). zolexctl explain ZX610 tells more.
)";

TEST_F(FamilyPoliciesTest, FormsOfTypesAreChecked) {
    folder.write("forms.ini", byForms);
    const Seen alone = runCheck("forms.ini");
    EXPECT_EQ(alone.exitCode, 0);
    EXPECT_EQ(alone.output, notesOfForms);
    const Seen here = runCheck("forms.ini", "percli.zrec");
    EXPECT_EQ(here.exitCode, 0);
    EXPECT_EQ(here.output, notesOfForms);
}

TEST_F(FamilyPoliciesTest, FormsOfTypesArePlanned) {
    folder.write("forms.ini", byForms);
    const Seen seen = runPlan("forms.ini", "percli.zrec");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(seen.output, "Machine R750, serial KQ92P3C    1 controller, 8 drives\n"
                           "Policies forms.ini: 2 policies, no faults\n\n"
                           "Controller 1  as the policy says\n\n"
                           "Nothing to do.\n");
}

TEST_F(FamilyPoliciesTest, LevelsThatNoneHasAreRefused) {
    for (const char* const level : {"1E", "5E", "5EE", "VOLUME"}) {
        SCOPED_TRACE(level);
        folder.write("level.ini", std::string("[Policy.one]\nAppliesTo.1 = t:STORCLI\n"
                                              "Array_Mode = CUSTOM\nArray.A = 3,4,5,6\n"
                                              "Array_Defaults = 0%:0\nLogical_Mode = CUSTOM\n"
                                              "Logical.1 = A:FILL:") +
                                      level + "\n");
        for (const Seen& seen : {runCheck("level.ini"), runPlan("level.ini", "percli.zrec")}) {
            EXPECT_NE(seen.exitCode, 0);
            EXPECT_NE((seen.output + seen.error).find("[ZX401]"), std::string::npos)
                << seen.output << seen.error;
        }
    }
}

TEST_F(FamilyPoliciesTest, ZolexRefusesSuchAFile) {
    folder.write("forms.ini", byForms);
    test::Server server("single");
    const Seen seen = test::runZolex(server, {"zolex", "/f:forms.ini"});
    EXPECT_EQ(seen.exitCode, 5);
    EXPECT_NE((seen.output + seen.error)
                  .find("Policy.other, AppliesTo.1 -- Invalid controller type:  PERC-H8*"),
              std::string::npos)
        << seen.output << seen.error;
}

constexpr const char* old = "; the web servers\n"
                            "[Policy.web]\n"
                            "AppliesTo.1 = m:8837, T:LSI-MegaRAID-8480 ,d:8\n"
                            "AppliesTo.2 = t:Kestrix-A1\n"
                            "Array_Mode = CUSTOM\n"
                            "Array.A = 1,2\n"
                            "Logical_Mode = CUSTOM\n"
                            "Logical.1 = A:FILL:1:ON\n";

TEST_F(FamilyPoliciesTest, AreMovedFromOtherControllers) {
    folder.write("old.ini", old);
    const Seen seen = runConvert("old.ini", "LSI-MegaRAID-8480", "STORCLI");
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output, "; the web servers\n"
                           "[Policy.web]\n"
                           "AppliesTo.1 = m:8837, T:STORCLI ,d:8\n"
                           "AppliesTo.2 = t:Kestrix-A1\n"
                           "Array_Mode = CUSTOM\n"
                           "Array.A = 1,2\n"
                           "Logical_Mode = CUSTOM\n"
                           "Logical.1 = A:FILL:1:ON\n");
}

TEST_F(FamilyPoliciesTest, AreMovedWithAWordOfPlaces) {
    folder.write("old.ini", "[Policy.web]\nAppliesTo.1 = t:LSI-MegaRAID-8480\n"
                            "Array_Mode = CUSTOM\nArray.A = 1:0,1:1\n");
    const Seen seen = runConvert("old.ini", "LSI-MegaRAID-8480", "PERC-H7*");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output, "[Policy.web]\nAppliesTo.1 = t:PERC-H7*\n"
                           "Array_Mode = CUSTOM\nArray.A = 1:0,1:1\n");
    EXPECT_EQ(seen.error,
              R"(old.ini: note: Array.A names drives by channel and id, which PERC-H7* may count
         otherwise [ZP265]
   help: look at the places: zolexctl show
)");
}

TEST_F(FamilyPoliciesTest, AreNotMovedToWhatCannotHaveThem) {
    folder.write("old.ini", "[Policy.web]\nAppliesTo.1 = t:Kestrix-A1\n"
                            "Array_Mode = CUSTOM\nArray.A = 1,2,3,4\nLogical_Mode = CUSTOM\n"
                            "Logical.1 = A:FILL:5EE\n");
    const Seen level = runConvert("old.ini", "Kestrix-A1", "STORCLI");
    EXPECT_EQ(level.exitCode, 2);
    EXPECT_EQ(level.output, "");
    EXPECT_EQ(level.error,
              R"(old.ini:6:20: error: RAID 5EE is not possible on t:STORCLI [ZX401]
   6 | Logical.1 = A:FILL:5EE
     |                    ^^^
   help: such controllers have 0, 1, 5, 6, 10, 50, 60
   help: AppliesTo.1 (line 2) names them
error: old.ini: nothing was written
  help: mend what is told above, and convert again
)");
    const Seen none = runConvert("old.ini", "LSI-MegaRAID-8480", "STORCLI");
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.error, R"(old.ini: error: no policy is for t:LSI-MegaRAID-8480 [ZP266]
   help: write it as the file has it: --model t:LSI-MegaRAID-8480=t:STORCLI
error: old.ini: nothing was written
  help: mend what is told above, and convert again
)");
}

TEST_F(FamilyPoliciesTest, AreRehearsedOnAFolderOfOldAndNewServers) {
    folder.write("site.ini", "[Policy.old]\nAppliesTo.1 = t:LSI-MegaRAID-8480\n"
                             "[Policy.new]\nAppliesTo.1 = t:STORCLI\n"
                             "Array_Mode = CUSTOM\nArray.A = 3,4,5\nLogical_Mode = CUSTOM\n"
                             "Logical.1 = A:FILL:5\nArray_Defaults = 0%:0\n");
    const Seen seen = run([](Context& context) {
        RehearseOptions options;
        options.policies.file = "site.ini";
        options.recordings = {"."};
        options.everyFault = true;
        return rehearseFleet(context, options);
    });
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(seen.output,
              R"(server            policies used  result      loses                     commands
percli   KQ92P3C  new            as planned  1 LD, 893.8 GB                   2
single   KQ10Z7V  old            as planned  nothing                          2
storcli  KQ90S1M  new            as planned  4 LD, 37.26 TB, 2 spares         7

3 servers: 3 as planned
What is lost: nothing on 1 server, 5 logical drives (38.13 TB) and 2 hot spares
  on 2
Every single command was made to fail once (11 runs): resume always ended as
  planned.
Warnings: ZX309 on 2 servers; -v shows each
)");
    const Seen supposed = run([](Context& context) {
        RehearseOptions options;
        options.policies.file = "site.ini";
        options.recordings = {"percli.zrec", "single.zrec"};
        options.suppositions = {*suppositionOf("fail:64:3")};
        return rehearseFleet(context, options);
    });
    EXPECT_EQ(supposed.output, R"(Supposed: drive 64:3 has failed, on 1 of 2 servers
server           policies used  result      loses    commands
percli  KQ92P3C  new            ERROR       -               -
      site.ini:6:13: Array.A names 64:3: it is UBad, which is no good drive
      [ZX702]
single  KQ10Z7V  old            as planned  nothing         2

2 servers: 1 as planned, 1 error
What is lost: nothing on 1 server, not known of 1
)");
}

} // namespace
} // namespace zolex::companion
