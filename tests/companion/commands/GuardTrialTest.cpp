#include "companion/commands/GuardTrial.h"

#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"
#include "roles/Roles.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

constexpr const char* policies = "[Policy.web]\n"
                                 "AppliesTo.1 = ALL\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Hotspares = 8\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n";

/// A run of zolex that is judged on a virtual server.
struct Judged {
    explicit Judged(const std::string& sample, const std::vector<std::string>& words)
        : machine(sample) {
        machine.fileFake.files["web.ini"] = policies;
        run = readGuardedRun(words, machine.files());
        terms.policiesText = policies;
        terms.zolexWords = words;
        snapshot = captureMachine(machine, {});
        plan = planGuardedRun(snapshot, run, terms);
    }

    std::vector<Finding> play() { return tryRun(machine, snapshot, run, plan, terms); }

    test::SimulatedPlatform machine;
    GuardedRun run;
    GuardTerms terms;
    Snapshot snapshot;
    GuardPlan plan;
};

TEST(GuardTrial, RunsZolexOnACopyAlone) {
    Judged judged("configured", {"/r", "/y", "/f:web.ini"});
    EXPECT_FALSE(judged.plan.isRefused());
    EXPECT_EQ(judged.plan.erased.losses().size(), 3U);
    EXPECT_TRUE(judged.play().empty());
    const Snapshot now = captureMachine(judged.machine, {});
    EXPECT_EQ(fingerprintOf(now), fingerprintOf(judged.snapshot));
    EXPECT_EQ(judged.machine.pauses, 0);
    EXPECT_EQ(judged.machine.consoleFake.output, "");
    EXPECT_EQ(judged.machine.consoleFake.error, "");
    EXPECT_EQ(judged.machine.fileFake.files.size(), 1U);
}

TEST(GuardTrial, TellsWhatZolexWouldEndWith) {
    Judged judged("configured", {"/f:web.ini"}); // its drives are in use
    const std::vector<Finding> found = judged.play();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().code, "ZA209");
    EXPECT_EQ(found.front().summary, "zolex would end with exit code 11");
    EXPECT_NE(found.front().detail.find("| ZOLEX failed with RC=11"), std::string::npos);
    EXPECT_EQ(found.front().refusedBy, RefusedBy::plan);
}

TEST(GuardTrial, TellsWhatWouldStandOtherwise) {
    Judged judged("configured", {"/r", "/y", "/f:web.ini"});
    judged.plan.ends.begin()->second.spares.clear();
    const std::vector<Finding> found = judged.play();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().code, "ZA210");
    EXPECT_EQ(found.front().summary,
              "zolex would end with 0, and controller 1 would not stand as it should");
    EXPECT_NE(found.front().detail.find("32:7"), std::string::npos) << found.front().detail;
    // What stands on the machine is compared in the same way.
    const std::vector<Finding> now = compareEnds(judged.snapshot, judged.plan);
    ASSERT_EQ(now.size(), 1U);
    EXPECT_EQ(now.front().code, "ZA218");
}

TEST(GuardTrial, PlaysEveryUtility) {
    for (const std::string& sample : test::SimulatedPlatform::samples()) {
        Judged judged(sample, {"/r", "/y"});
        if (judged.snapshot.details.empty()) {
            continue;
        }
        EXPECT_FALSE(judged.plan.isRefused()) << sample;
        const std::vector<Finding> found = judged.play();
        EXPECT_TRUE(found.empty()) << sample << ": " << found.front().summary << "\n"
                                   << found.front().detail;
    }
}

} // namespace
} // namespace zolex::companion
