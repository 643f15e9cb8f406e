// Plans for today's controllers, rehearsed: each is taken, ends as planned and goes on from each
// fault, or is refused with the utility's own words; what is supposed of a drive is planned as if
// it were so; and old and new servers are rehearsed together.

#include "companion/machine/Fingerprint.h"
#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/Fleet.h"
#include "companion/rehearsal/HandMadePlan.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/rehearsal/Supposition.h"
#include "companion/support/StorcliServer.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::StorcliServer;
using Lines = std::vector<std::string>;

std::string policy(const std::string& entries) {
    return "[Policy.one]\nAppliesTo.1 = t:STORCLI\n" + entries;
}

Lines tellingsOf(const MachinePlan& plan) {
    Lines lines = test::faultsOf(plan);
    lines.insert(lines.end(), plan.rehearsal.notDoneBecause.begin(),
                 plan.rehearsal.notDoneBecause.end());
    for (const ControllerPlanning& controller : plan.controllers) {
        for (const Finding& warning : controller.warnings) {
            if (warning.code.starts_with("ZP24")) {
                lines.push_back(warning.code + " " + warning.summary);
            }
        }
    }
    return lines;
}

struct RehearsedCase {
    const char* name;
    const char* sample;
    std::string policies;
    StrategyWish wish = StrategyWish::automatic;
};

std::vector<RehearsedCase> cases() {
    const std::string custom =
        "Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n";
    return {
        {"blank", "storcli-blank", policy("")},
        {"two volumes and caches", "storcli-blank",
         policy(custom + "Array.A = 1,2\nArray.B = 5,6,7,8\nLogical.1 = A:FILL:1:ON\n"
                         "Logical.2 = B:100000:10:OFF\nLogical.3 = B:FILL:10\nStripeSize = 64\n"
                         "ReadAhead = OFF\nRebuildRate = HIGH\nHotspares = 16\n")},
        {"mirror of four", "storcli-blank",
         policy(custom + "Array.A = 1,2,3,4\nLogical.1 = A:FILL:1\n")},
        {"spares of arrays alone", "storcli-blank",
         policy("Drives.A = slots 62:0,62:1\nDrives.B = slots 62:2,62:3,62:4\nLevel.A = 1\n"
                "Level.B = 5\nSpares = 1 covering A and 1 covering B\n")},
        {"one more beside what stands", "percli",
         policy(custom + "Array.A = 1,2\nArray.B = 3,4,5\nLogical.1 = A:FILL:1\n"
                         "Logical.2 = B:FILL:5\n")},
        {"other caches", "percli",
         policy(custom + "Array.A = 1,2\nLogical.1 = A:FILL:1:OFF\nReadAhead = OFF\n")},
        {"in the place of what stands", "percli",
         policy(custom + "Array.A = 1,2,3,4\nLogical.1 = A:FILL:10\n"), StrategyWish::rebuild},
        {"all that stands goes", "storcli",
         policy(custom + "Array.A = 13,14,15,16\nLogical.1 = A:FILL:6\n")},
        {"foreign drives, too", "storcli",
         policy(custom + "Array.A = 13,14,15,19\nLogical.1 = A:FILL:5\n")},
        {"a part stays", "storcli",
         policy(custom + "Array.A = 3,4,5,6\nArray.B = 13,14\nLogical.1 = A:FILL:5\n"
                         "Logical.2 = B:FILL:1\nHotspares = 11\n")},
    };
}

TEST(StorcliRehearsal, EndsAsPlannedAndGoesOnFromEachFault) {
    for (const RehearsedCase& each : cases()) {
        SCOPED_TRACE(each.name);
        StorcliServer server(each.sample);
        // An operating system is seen by the utility alone.
        for (auto& volume : server.platform.server.storcliControllers.front().volumes) {
            volume.hasSystem = false;
        }
        const Snapshot snapshot = server.snapshot();
        MachinePlan plan = server.plan(each.policies, each.wish);
        ASSERT_EQ(test::faultsOf(plan), Lines{});
        const std::size_t steps = plan.steps().size();
        ASSERT_GT(steps, 0U);
        rehearse(snapshot, plan);
        EXPECT_EQ(tellingsOf(plan), Lines{});
        EXPECT_TRUE(plan.rehearsal.done);
        EXPECT_TRUE(plan.rehearsal.endsAsPlanned);
        EXPECT_EQ(plan.rehearsal.faultsTried, static_cast<std::int32_t>(steps));
        EXPECT_EQ(plan.rehearsal.resumesAsPlanned, static_cast<std::int32_t>(steps));
        // Each layout is the one that the server really has behind the step.
        for (const PlanStep& step : plan.steps()) {
            ASSERT_EQ(server.run(step.command), "");
            const Snapshot now = server.snapshot();
            const Facts& facts = now.details.front().facts;
            EXPECT_EQ(layoutHash(facts), step.expectedAfter) << step.command;
            EXPECT_EQ(layoutLines(capturedLayout(facts)),
                      plan.rehearsal.layouts[step.expectedAfter])
                << step.command;
        }
        EXPECT_EQ(server.plan(each.policies).steps().size(), 0U);
    }
}

/// The first error of a plan that was rehearsed.
std::string refusal(const std::string& sample, const std::string& policies,
                    const std::function<void(MachinePlan&)>& change) {
    StorcliServer server(sample);
    const Snapshot snapshot = server.snapshot();
    MachinePlan plan = server.plan(policies);
    EXPECT_EQ(test::faultsOf(plan), Lines{});
    change(plan);
    rehearse(snapshot, plan, false);
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
    std::string text;
    for (const Finding& finding : plan.controllers.front().diagnostics) {
        text += finding.code + " " + finding.summary + "\n" + finding.detail + "\n";
        for (const std::string& help : finding.help) {
            text += "help: " + help + "\n";
        }
    }
    return text;
}

TEST(StorcliRehearsal, TellsWhatTheUtilityWouldRefuseInItsWords) {
    const std::string mirror =
        policy("Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n"
               "Array.A = 1,2\nLogical.1 = A:FILL:1\n");
    const auto line = [](const char* command) {
        return [command](MachinePlan& plan) {
            PlanStep& step = plan.controllers.front().steps.front();
            step.command = command;
            step.argv = splitCommandLine(step.command);
        };
    };
    EXPECT_EQ(
        refusal("storcli-blank", mirror, line("STORCLI /c0 add vd r5 drives=62:0,62:1 J nolog")),
        "ZP240 step 1 would be refused: Invalid number of drives for the RAID level. (error "
        "255)\n"
        "STORCLI /c0 add vd r5 drives=62:0,62:1 J nolog\n"
        "help: change what the utility names, and try it: zolexctl plan site.ini\n"
        "help: look at its drives: zolexctl show --controller 1\n");
    EXPECT_EQ(
        refusal("storcli-blank", mirror, line("STORCLI /c0 add vd r1 drives=62:2,62:3 J nolog")),
        "ZP242 the commands would end in another layout than planned\n"
        "LD 239, moved: would be 62:2 62:3; planned is 62:0 62:1\n"
        "help: zolexctl record --redact -o report.zrec, and report it\n"
        "help: look at its drives: zolexctl show --controller 1\n");
    EXPECT_EQ(refusal("storcli-blank", mirror, line("STORCLI /c0/v239 set wrcache=WT J nolog")),
              "ZP240 step 1 would be refused: Invalid VD number (error 255)\n"
              "STORCLI /c0/v239 set wrcache=WT J nolog\n"
              "help: look at what stands, and plan anew: zolexctl plan site.ini\n"
              "help: change what the utility names, and try it: zolexctl plan site.ini\n"
              "help: look at its drives: zolexctl show --controller 1\n");
}

TEST(StorcliRehearsal, OfACacheThatIsPinnedSaysSo) {
    StorcliServer server(StorcliServer::definition(R"(, "preservedCache": true)",
                                                   R"({"enclosure": 252, "slot": 0, "count": 2,
                                           "sectors": 41943040})"));
    Snapshot snapshot = server.snapshot();
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policy("Array_Defaults = 0%:0\n");
    request.accept = {"ZP145"};
    EXPECT_EQ(test::faultsOf(planMachine(snapshot, request)),
              (Lines{"ZP145 the cache keeps data that could not be written to a logical drive: no "
                     "other can be made until it is"}));
    snapshot.details.front().findings.clear(); // the data is kept only after the capture
    MachinePlan plan = planMachine(snapshot, request);
    ASSERT_EQ(test::faultsOf(plan), Lines{});
    rehearse(snapshot, plan, false);
    ASSERT_EQ(plan.controllers.front().diagnostics.size(), 1U);
    EXPECT_EQ(plan.controllers.front().diagnostics.front().summary,
              "step 1 would be refused: controller has data in cache for offline or missing VDs "
              "(error 84)");
}

/// Commands, faults and warnings of the plan for a machine.
Lines linesOf(const Snapshot& snapshot, const std::string& policies) {
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policies;
    MachinePlan plan = planMachine(snapshot, request);
    if (plan.isApplicable()) {
        rehearse(snapshot, plan, false);
    }
    Lines lines = test::commandsOf(plan);
    for (const Lines& part : {test::faultsOf(plan), plan.rehearsal.notDoneBecause}) {
        lines.insert(lines.end(), part.begin(), part.end());
    }
    for (const Loss& loss : plan.losses()) {
        lines.push_back("loses " + loss.kind + " " + loss.id);
    }
    return lines;
}

TEST(StorcliSupposition, IsPlannedAsIfItWereSo) {
    namespace sim = zolex_sim::storcli;
    const std::string policies = policy("Array_Defaults = 0%:0\n");
    for (const char* const location : {"62:1", "252:3"}) {
        StorcliServer server("storcli-blank");
        const Snapshot before = server.snapshot();
        const zolex_sim::Server kept = server.platform.server;
        sim::Controller& controller = server.platform.server.storcliControllers.front();
        const zolex_sim::DriveLocation place =
            *location == '6' ? zolex_sim::DriveLocation{62, 1} : zolex_sim::DriveLocation{252, 3};
        for (const std::string kind : {"fail:", "missing:", "size:"}) {
            const std::string text = kind + location + (kind == "size:" ? "=30000" : "");
            SCOPED_TRACE(text);
            const SupposedMachine machine =
                suppose(before, {*suppositionOf(text)}, server.platform, server.request());
            EXPECT_EQ(machine.because, "");
            EXPECT_EQ(machine.holds, std::vector<bool>{true});
            ASSERT_TRUE(machine.snapshot);
            if (kind == "fail:") {
                controller.driveAt(place)->state = sim::DriveState::bad;
            } else if (kind == "missing:") {
                std::erase_if(controller.drives,
                              [&](const sim::Drive& each) { return each.place == place; });
            } else {
                sim::Drive& drive = *controller.driveAt(place);
                drive.sectors = std::int64_t{30000} * 2048;
            }
            EXPECT_EQ(linesOf(*machine.snapshot, policies), linesOf(server.snapshot(), policies));
            EXPECT_NE(linesOf(*machine.snapshot, policies), linesOf(before, policies));
            server.platform.server = kept;
        }
    }
}

TEST(StorcliSupposition, OfAMemberDegradesItsArray) {
    StorcliServer server("storcli");
    const Snapshot before = server.snapshot();
    for (const char* const text : {"fail:252:3", "missing:252:3", "size:252:3=9000000"}) {
        SCOPED_TRACE(text);
        const SupposedMachine machine =
            suppose(before, {*suppositionOf(text)}, server.platform, server.request());
        EXPECT_EQ(machine.because, "");
        ASSERT_TRUE(machine.snapshot);
        const Facts& facts = machine.snapshot->details.front().facts;
        EXPECT_EQ(facts.logicalDrives[1].reportedState, "Dgrd");
        EXPECT_EQ(facts.logicalDrives[1].spans.front()[1],
                  std::string_view(text).starts_with("fail") ? "252:3" : "Missing");
        EXPECT_EQ(facts.pciAddress, before.details.front().facts.pciAddress);
        EXPECT_EQ(machine.snapshot->details.front().pci, before.details.front().pci);
    }
}

FleetTerms faultTermsOf(const std::string& policies) {
    FleetTerms terms;
    terms.request.policiesFile = "site.ini";
    terms.request.policiesText = policies;
    terms.everyFault = true;
    return terms;
}

TEST(StorcliFleet, OldAndNewServersAreRehearsedTogether) {
    const std::string policies = "[Policy.old]\nAppliesTo.1 = t:LSI-MegaRAID-8480\n"
                                 "Array_Defaults = 0%:0\n"
                                 "[Policy.new]\nAppliesTo.1 = t:PERC-H7*\nAppliesTo.2 = t:STORCLI\n"
                                 "Array_Defaults = 0%:0\n"
                                 "[Policy.none]\nAppliesTo.1 = t:HPE-*\n";
    const FleetTerms terms = faultTermsOf(policies);
    Fleet fleet;
    fleet.policiesFile = "site.ini";
    const auto add = [&](const char* name, const Snapshot& snapshot, Platform& platform,
                         const CaptureRequest& request) {
        FleetServer server =
            rehearseServer(snapshot, readPlanPolicies(terms.request), terms, platform, request);
        server.name = server.file = name;
        fleet.servers.push_back(std::move(server));
    };
    test::PlannedServer old("single");
    add("old", old.snapshot(), old.platform, {});
    for (const char* const sample : {"percli", "storcli-blank"}) {
        StorcliServer server(sample);
        server.platform.server.storcliControllers.front().volumes.clear();
        server.platform.server.storcliControllers.front().groups.clear();
        for (auto& drive : server.platform.server.storcliControllers.front().drives) {
            drive.state = zolex_sim::storcli::DriveState::good;
        }
        add(sample, server.snapshot(), server.platform, server.request());
    }
    completeFleet(fleet, scanPolicies("site.ini", policies));
    Lines lines;
    for (const FleetServer& server : fleet.servers) {
        std::string line = server.name + " " + std::string(serverResultWord(server.result)) + " " +
                           std::to_string(server.commands) + " commands, " +
                           std::to_string(server.faultsTried) + " faults,";
        for (const std::string& each : server.policies) {
            line += " " + each;
        }
        for (const ServerFinding& finding : server.findings) {
            line +=
                finding.finding.severity == Severity::error ? "; " + finding.finding.summary : "";
        }
        lines.push_back(line + (server.unresumed.empty() ? "" : "; not resumed"));
    }
    EXPECT_EQ(lines, (Lines{"old as-planned 1 commands, 1 faults, Policy.old",
                            "percli as-planned 1 commands, 1 faults, Policy.new",
                            "storcli-blank as-planned 2 commands, 2 faults, Policy.new"}));
    ASSERT_EQ(fleet.unused.size(), 1U); // Policy.none
}

} // namespace
} // namespace zolex::companion
