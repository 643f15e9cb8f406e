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

TEST_F(FamilyPoliciesTest, FormsOfTypesAreChecked) {
    folder.write("forms.ini", byForms);
    const Seen alone = runCheck("forms.ini");
    EXPECT_EQ(alone.exitCode, 0);
    EXPECT_EQ(alone.output, "FORMS-CHECK");
    const Seen here = runCheck("forms.ini", "percli.zrec");
    EXPECT_EQ(here.exitCode, 0);
    EXPECT_EQ(here.output, "FORMS-MACHINE");
}

TEST_F(FamilyPoliciesTest, FormsOfTypesArePlanned) {
    folder.write("forms.ini", byForms);
    const Seen seen = runPlan("forms.ini", "percli.zrec");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.error, "");
    EXPECT_EQ(seen.output, "FORMS-PLAN");
}

TEST_F(FamilyPoliciesTest, LevelsThatNoneHasAreRefused) {
    for (const char* const level : {"1E", "5E", "5EE", "VOLUME"}) {
        SCOPED_TRACE(level);
        folder.write("level.ini", std::string("[Policy.one]\nAppliesTo.1 = t:STORCLI\n"
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
                            "AppliesTo.1 = m:8837, T:lsi-megaraid-8480 ,d:8\n"
                            "AppliesTo.2 = t:Kestrix-A1\n"
                            "Array_Mode = CUSTOM\n"
                            "Array.A = 1,2\n"
                            "Logical_Mode = CUSTOM\n"
                            "Logical.1 = A:FILL:1:ON ; a mirror\n";

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
                           "Logical.1 = A:FILL:1:ON ; a mirror\n");
}

TEST_F(FamilyPoliciesTest, AreMovedWithAWordOfPlaces) {
    folder.write("old.ini", "[Policy.web]\nAppliesTo.1 = t:LSI-MegaRAID-8480\n"
                            "Array_Mode = CUSTOM\nArray.A = 1:0,1:1\n");
    const Seen seen = runConvert("old.ini", "LSI-MegaRAID-8480", "PERC-H7*");
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output, "[Policy.web]\nAppliesTo.1 = t:PERC-H7*\n"
                           "Array_Mode = CUSTOM\nArray.A = 1:0,1:1\n");
    EXPECT_EQ(seen.error, "PLACES");
}

TEST_F(FamilyPoliciesTest, AreNotMovedToWhatCannotHaveThem) {
    folder.write("old.ini", "[Policy.web]\nAppliesTo.1 = t:Kestrix-A1\n"
                            "Array_Mode = CUSTOM\nArray.A = 1,2,3,4\nLogical_Mode = CUSTOM\n"
                            "Logical.1 = A:FILL:5EE\n");
    const Seen level = runConvert("old.ini", "Kestrix-A1", "STORCLI");
    EXPECT_EQ(level.exitCode, 2);
    EXPECT_EQ(level.output, "");
    EXPECT_EQ(level.error, "LEVEL");
    const Seen none = runConvert("old.ini", "LSI-MegaRAID-8480", "STORCLI");
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.error, "NONE");
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
    EXPECT_EQ(seen.output, "FLEET");
    const Seen supposed = run([](Context& context) {
        RehearseOptions options;
        options.policies.file = "site.ini";
        options.recordings = {"percli.zrec", "single.zrec"};
        options.suppositions = {*suppositionOf("fail:64:3")};
        return rehearseFleet(context, options);
    });
    EXPECT_EQ(supposed.output, "SUPPOSED");
}

} // namespace
} // namespace zolex::companion
