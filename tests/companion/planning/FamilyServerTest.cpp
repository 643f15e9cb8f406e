// Plans carried out on a virtual server of today's controllers, for thirty layouts in each branding
// and version: what is captured then is what was planned, captured policies make the same on
// another server, a run that stops at any command can be gone on with, and nothing is left to do.

#include "FamilyServer.h"
#include "companion/layout/NormalForm.h"
#include "companion/rewriting/CapturedPolicies.h"
#include "companion/support/StorcliLayouts.h"
#include "companion/support/StorcliServer.h"

#include <gtest/gtest.h>

#include <array>

namespace zolex::companion {
namespace {

using test::LayoutCase;
using test::layouts;
using test::StorcliServer;

/// A plan, or why there is none.
struct Made {
    MachinePlan plan;
    std::string fault;
};

Made planned(StorcliServer& server, const std::string& policies) {
    Made made{server.plan(policies), {}};
    if (!made.plan.isApplicable()) {
        made.fault = "not planned:\n" + policies + planLines(made.plan);
    }
    return made;
}

/// Empty when all steps from this one on are done.
std::string runSteps(StorcliServer& server, const MachinePlan& plan, std::size_t first = 0) {
    const std::vector<PlanStep> steps = plan.steps();
    for (std::size_t i = first; i < steps.size(); ++i) {
        if (const std::string why = server.run(steps[i].command); !why.empty()) {
            return why + "\n" + planLines(plan);
        }
    }
    return {};
}

std::string carryOut(StorcliServer& server, const std::string& policies) {
    const Made made = planned(server, policies);
    return made.fault.empty() ? runSteps(server, made.plan) : made.fault;
}

/// Empty when a plan has nothing to do.
std::string somethingLeft(StorcliServer& server, const std::string& policies) {
    const Made made = planned(server, policies);
    if (!made.fault.empty() || made.plan.steps().empty()) {
        return made.fault;
    }
    std::string why = "something is left to do:\n" + policies;
    for (const Difference& each : made.plan.controllers.front().comparison.differences) {
        why += each.attribute + ": " + each.wanted + ", found " + each.found + "\n";
    }
    return why + planLines(made.plan);
}

/// What stands: layout, strips, caches, and what dedicated spares are for.
std::string standing(StorcliServer& server) {
    const Snapshot snapshot = server.snapshot();
    std::string text;
    for (const ControllerSnapshot& detail : snapshot.details) {
        text += normalForm(detail.facts);
        for (const DriveFacts& drive : detail.facts.drives) {
            for (const std::string& array : drive.covers) {
                const auto volume = std::find_if(
                    detail.facts.logicalDrives.begin(), detail.facts.logicalDrives.end(),
                    [&array](const LogicalDriveFacts& each) { return each.array == array; });
                text +=
                    drive.location + " is for the array of " +
                    (volume == detail.facts.logicalDrives.end() ? "nothing"
                                                                : volume->spans.front().front()) +
                    "\n";
            }
        }
    }
    return text;
}

/// Each command fails once, having done nothing or all of it, and a new plan goes on from there.
/// Empty when all come to the same end.
std::string gonOnFromEachFault(const std::string& definition, const std::string& policies,
                               const std::string& end) {
    StorcliServer first(definition);
    const std::size_t steps = first.plan(policies).steps().size();
    for (std::size_t failed = 0; failed < steps; ++failed) {
        for (const bool isDone : {false, true}) {
            StorcliServer server(definition);
            const MachinePlan plan = server.plan(policies);
            const std::vector<PlanStep> all = plan.steps();
            for (std::size_t i = 0; i < failed + (isDone ? 1 : 0); ++i) {
                server.run(all[i].command);
            }
            std::string why = carryOut(server, policies);
            why = why.empty() && standing(server) != end
                      ? "another end:\n" + standing(server) + "and not\n" + end
                      : why;
            if (!why.empty()) {
                return all[failed].command + (isDone ? ", done, " : ", not done, ") +
                       "was to be gone on from: " + why;
            }
        }
    }
    return {};
}

class FamilyLayouts : public testing::TestWithParam<std::size_t> {};

TEST_P(FamilyLayouts, InEachBrandingAndVersion) {
    const std::vector<LayoutCase> all = layouts();
    ASSERT_GE(all.size(), 30U);
    const LayoutCase& layout = all[GetParam()];
    SCOPED_TRACE(layout.name);
    std::size_t turn = 0;
    for (const char* const branding : {"lsi", "perc", "hpe"}) {
        for (const char* const version : {"1.x", "007.1017", "007.3703"}) {
            const std::string kind = std::string(", \"branding\": \"") + branding +
                                     "\", \"version\": \"" + version + "\"";
            SCOPED_TRACE(kind);
            const std::string definition =
                StorcliServer::definition(kind + layout.fields, layout.drives);
            StorcliServer server(definition);
            ASSERT_EQ(carryOut(server, layout.policies), "");
            ASSERT_EQ(somethingLeft(server, layout.policies), "");
            const std::string end = standing(server);
            // The captured policies make the same of another server, and nothing of this one.
            const std::string captured = capturedPolicies(server.snapshot(), {}).text;
            ASSERT_EQ(somethingLeft(server, captured), "");
            StorcliServer other(definition);
            ASSERT_EQ(carryOut(other, captured), "");
            EXPECT_EQ(standing(other), end) << captured;
            EXPECT_EQ(capturedPolicies(other.snapshot(), {}).text, captured);
            if (turn++ == GetParam() % 9) {
                EXPECT_EQ(gonOnFromEachFault(definition, layout.policies, end), "");
            }
            if (std::string_view(layout.fields).find("refusesNolog") == std::string_view::npos) {
                EXPECT_EQ(server.platform.logsLeft + other.platform.logsLeft, 0);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, FamilyLayouts, testing::Range(std::size_t{0}, layouts().size()));

TEST(FamilyServer, OneLayoutAfterAnother) {
    StorcliServer server(StorcliServer::definition("", test::hdds));
    for (const LayoutCase& each : layouts()) {
        if (each.drives == test::hdds && *each.fields == '\0') {
            EXPECT_EQ(carryOut(server, each.policies), "") << each.name;
            EXPECT_EQ(somethingLeft(server, each.policies), "") << each.name;
        }
    }
}

TEST(FamilyServer, NamesThatPoliciesCannotSayAreTold) {
    StorcliServer server("storcli");
    std::string text;
    for (const Finding& finding : capturedPolicies(server.snapshot(), {}).findings) {
        if (finding.code == "ZC117") {
            text += std::string(severityWord(finding.severity)) + " " + finding.summary + "\n";
        }
    }
    EXPECT_EQ(text,
              "note controller 1: logical drive 239 is called \"system\": policies give no names\n"
              "note controller 1: logical drive 237 is called \"logs\": policies give no names\n"
              "note controller 1: logical drive 236 is called \"data\": policies give no names\n");
}

TEST(FamilyServer, InitIsToldToHaveNoEffect) {
    StorcliServer server(StorcliServer::definition("", test::hdds));
    const MachinePlan plan = server.plan(custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n"
                                                "Init = QUICK\n"));
    ASSERT_TRUE(plan.isApplicable()) << planLines(plan);
    const std::vector<Finding>& warnings = plan.controllers.front().warnings;
    const auto told = std::find_if(warnings.begin(), warnings.end(),
                                   [](const Finding& each) { return each.code == "ZX408"; });
    ASSERT_NE(told, warnings.end());
    EXPECT_EQ(told->summary, "Init has no effect: STORCLI is not told how to initialise");
    EXPECT_EQ(told->start.line, 8);
}

TEST(FamilyServer, ADedicatedSpareOfAnArrayThatStandsIsMadeBeforeItsNumberMayChange) {
    const std::string definition = StorcliServer::definition(
        R"(, "virtualDrives": [{"level": "RAID1", "spans": [["252:0", "252:1"]]},
                               {"level": "RAID5", "spans": [["252:2", "252:3", "252:4"]]}])",
        test::hdds);
    const std::string begin = "Drives.A = slots 252:2,252:3,252:4\nDrives.B = slots 252:10,252:11\n"
                              "Level.A = 5\nLevel.B = 1\nSpares = slots 252:";
    StorcliServer server(definition);
    const std::string policies = policy(begin + "8 covering A\n");
    const MachinePlan plan = server.plan(policies);
    std::string lines;
    for (const PlanStep& step : plan.steps()) {
        lines += step.command + "\n";
    }
    EXPECT_EQ(lines, "STORCLI /c0/e252/s8 add hotsparedrive DGs=1 J nolog\n"
                     "STORCLI /c0/v239 del J nolog\n"
                     "STORCLI /c0 add vd r1 drives=252:10,252:11 J nolog\n")
        << planLines(plan);
    EXPECT_EQ(carryOut(server, policies), "");
    EXPECT_EQ(somethingLeft(server, policies), "");
    // A drive of the array that goes is free too late.
    StorcliServer other(definition);
    const Made late = planned(other, policy(begin + "0 covering A\n"));
    EXPECT_NE(late.fault.find("ZP226"), std::string::npos) << late.fault;
}

TEST(FamilyServer, ConsentListsForeignDrivesThatArePlannedWithAndNoOthers) {
    const std::string definition = StorcliServer::definition(test::foreignSet, test::someForeign);
    StorcliServer server(definition);
    const auto foreign = [&server](const char* drives) {
        const MachinePlan plan =
            server.plan(custom(std::string("Array.A = ") + drives + "\nLogical.1 = A:FILL:1\n"));
        std::string text = plan.consent.empty() ? "no consent" : "consent";
        for (const Loss& loss : plan.losses()) {
            text += "\n" + loss.kind + " " + loss.id;
        }
        return text;
    };
    EXPECT_EQ(foreign("1,2"), "no consent");
    EXPECT_EQ(foreign("1,7"), "consent\nforeign 252:6\nforeign 252:7");
}

} // namespace
} // namespace zolex::companion
