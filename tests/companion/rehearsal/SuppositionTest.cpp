// What is supposed of a drive is planned as if it were so.

#include "companion/rehearsal/Supposition.h"

#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/Rehearse.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion {
namespace {

using test::PlannedServer;
using Lines = std::vector<std::string>;

TEST(Supposition, IsReadFromItsText) {
    const auto fail = suppositionOf("fail:32:3");
    ASSERT_TRUE(fail);
    EXPECT_EQ(fail->kind, Supposition::Kind::fail);
    EXPECT_EQ(fail->location, "32:3");
    EXPECT_EQ(fail->words(), "drive 32:3 has failed");
    const auto missing = suppositionOf("missing::3");
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->location, ":3");
    EXPECT_EQ(missing->words(), "drive :3 is missing");
    const auto single = suppositionOf("fail:4");
    ASSERT_TRUE(single);
    EXPECT_EQ(single->location, "4");
    const auto size = suppositionOf("size:0:1=34715");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->location, "0:1");
    EXPECT_EQ(size->sizeMb, 34715);
    EXPECT_EQ(size->words(), "drive 0:1 has 34715 MB");
    for (const char* wrong :
         {"", "fail", "fail:", "fail:32:", "fail:a:1", "fail:32:3=5", "fail:32:3:4", "missing:32:x",
          "size:32:3", "size:32:3=", "size:32:3=0", "size:32:3=-1", "size:32:3=1G",
          "size:32:3=99999999999", "break:32:3", "Fail:32:3", "fail: 32:3", "fail:320000:1"}) {
        EXPECT_FALSE(suppositionOf(wrong)) << wrong;
        EXPECT_EQ(faultOfSupposition(wrong),
                  "\"" + std::string(wrong) +
                      "\" is none of fail:32:3, missing:32:3 and size:32:3=34715 (in MB)");
    }
    EXPECT_EQ(faultOfSupposition("size:32:3=1"), "");
}

/// What a plan says of a machine.
Lines supposedLinesOf(const Snapshot& snapshot, const std::string& policies) {
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policies;
    MachinePlan plan = planMachine(snapshot, request);
    if (plan.isApplicable()) {
        rehearse(snapshot, plan, false);
    }
    Lines lines = test::commandsOf(plan);
    for (const std::string& fault : test::faultsOf(plan)) {
        lines.push_back(fault);
    }
    for (const Loss& loss : plan.losses()) {
        lines.push_back("loses " + loss.kind + " " + loss.id);
    }
    for (const ControllerPlanning& planning : plan.controllers) {
        lines.push_back(std::string(dispositionWord(planning.disposition)) + " " +
                        planning.because);
        for (const Finding& finding : planning.warnings) {
            lines.push_back(finding.code + " " + finding.summary);
        }
    }
    return lines;
}

Supposition supposed(const std::string& text) {
    return suppositionOf(text).value_or(Supposition());
}

class SuppositionOnSamples : public testing::TestWithParam<std::string> {};

/// The drive of each kind of server, free or in an array, fails, or is another one.
TEST_P(SuppositionOnSamples, IsPlannedAsIfItWereSo) {
    for (const bool isConfigured : {false, true}) {
        PlannedServer server(GetParam());
        const std::string policies = server.samplePolicies();
        if (isConfigured) {
            static_cast<void>(server.carryOut(server.plan(policies)));
        }
        const Snapshot before = server.snapshot();
        const std::string location = before.details.front().drives.at(1).facts.location;
        const zolex_sim::Server kept = server.platform.server;
        const zolex_sim::DriveLocation here =
            server.platform.server.controllers.front().drives.at(1).location;
        for (const std::string& kind :
             {"fail:" + location, "missing:" + location, "size:" + location + "=30000"}) {
            SCOPED_TRACE(kind + (isConfigured ? " configured" : " blank"));
            const SupposedMachine machine = suppose(before, {supposed(kind)}, server.platform, {});
            ASSERT_EQ(machine.holds, std::vector<bool>{true});
            bool canChange = true; // the server itself, by hand
            for (zolex_sim::Controller& controller : server.platform.server.controllers) {
                zolex_sim::Drive* const drive = controller.driveAt(here);
                if (drive == nullptr) {
                    continue;
                }
                if (kind.starts_with("fail")) {
                    drive->status = zolex_sim::DriveStatus::failed;
                } else if (controller.placeOf(here)) {
                    canChange = false;
                } else if (kind.starts_with("size")) {
                    drive->sizeMb = 30000;
                    drive->rawSectors = drive->nonCoercedSectors = 30000 * 2048;
                } else {
                    std::erase_if(controller.drives, [&](const zolex_sim::Drive& each) {
                        return each.location == here;
                    });
                }
            }
            if (machine.snapshot && canChange) {
                EXPECT_EQ(supposedLinesOf(*machine.snapshot, policies),
                          supposedLinesOf(server.snapshot(), policies));
            }
            // It tells neither sizes nor what has failed.
            if (GetParam() != "hyperwin") {
                EXPECT_EQ(machine.because, "");
                EXPECT_TRUE(machine.snapshot.has_value());
            }
            server.platform.server = kept;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, SuppositionOnSamples,
                         testing::ValuesIn(test::SimulatedPlatform::samples()),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(Supposition, OfADriveThatIsNotThereHoldsNowhere) {
    PlannedServer server("single");
    const SupposedMachine machine =
        suppose(server.snapshot(), {supposed("fail:9:9")}, server.platform, {});
    EXPECT_EQ(machine.holds, std::vector<bool>{false});
    EXPECT_FALSE(machine.snapshot);
    EXPECT_EQ(machine.because, "");
}

} // namespace
} // namespace zolex::companion
