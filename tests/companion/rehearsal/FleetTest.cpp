// One policies file on many servers: what is told of them is what comes of carrying out each plan.

#include "companion/rehearsal/Fleet.h"

#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/RandomServers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <tuple>

namespace zolex::companion {
namespace {

using test::PlannedServer;
using Lines = std::vector<std::string>;

FleetTerms termsOf(const std::string& policies) {
    FleetTerms terms;
    terms.request.policiesFile = "site.ini";
    terms.request.policiesText = policies;
    return terms;
}

FleetServer rehearsed(PlannedServer& server, const FleetTerms& terms,
                      const std::string& name = "r1") {
    const CaptureRequest request;
    FleetServer result = rehearseServer(server.snapshot(), readPlanPolicies(terms.request), terms,
                                        server.platform, request);
    result.name = result.file = name;
    return result;
}

Fleet fleetOf(std::vector<FleetServer> servers, const std::string& policies) {
    Fleet fleet;
    fleet.policiesFile = "site.ini";
    fleet.servers = std::move(servers);
    completeFleet(fleet, scanPolicies("site.ini", policies));
    return fleet;
}

/// What stands on a server and can be lost.
struct Standing {
    std::set<std::string> logicalDrives;
    std::map<std::string, std::uint64_t> bytes; ///< of logical drives
    std::set<std::string> spares;
    std::set<std::string> foreign;
};

Standing standingOn(const zolex_sim::Server& server) {
    Standing result;
    constexpr std::uint64_t bytesOfMb = std::uint64_t{1} << 20U;
    for (std::size_t c = 0; c < server.controllers.size(); ++c) {
        const zolex_sim::Controller& controller = server.controllers[c];
        const std::string prefix = std::to_string(c) + " ";
        std::map<std::string, int> seen;
        for (const zolex_sim::LogicalDrive& drive : controller.logicalDrives) {
            std::string name = prefix + std::to_string(static_cast<int>(drive.level));
            for (const auto& span : controller.arrays[drive.array].spans) {
                name += " " + zolex_sim::toText(span);
            }
            name += " " + std::to_string(drive.sizeMb);
            name += " " + std::to_string(seen[name]++);
            result.logicalDrives.insert(name);
            result.bytes[name] = static_cast<std::uint64_t>(drive.sizeMb) * bytesOfMb;
        }
        for (const zolex_sim::Drive& drive : controller.drives) {
            const std::string name = prefix + zolex_sim::toText(drive.location);
            if (drive.status == zolex_sim::DriveStatus::hotspare ||
                drive.status == zolex_sim::DriveStatus::dedicated) {
                result.spares.insert(name);
            }
            if (drive.status == zolex_sim::DriveStatus::foreign) {
                result.foreign.insert(name);
            }
        }
    }
    return result;
}

std::size_t goneFrom(const std::set<std::string>& before, const std::set<std::string>& after) {
    return static_cast<std::size_t>(
        std::count_if(before.begin(), before.end(),
                      [&after](const std::string& each) { return !after.contains(each); }));
}

/// What came of carrying out the plan on the server itself.
struct Applied {
    bool isTaken = true;       ///< every command was accepted
    bool endsAsWanted = false; ///< and a second plan has nothing to do
    std::size_t commands = 0;
    FleetLosses losses;
};

Applied applied(PlannedServer& server, const std::string& policies) {
    Applied result;
    const MachinePlan plan = server.plan(policies);
    for (const PlanStep& step : plan.steps()) {
        const Standing before = standingOn(server.platform.server);
        std::string line;
        for (const std::string& word : step.argv) {
            line += (line.empty() ? "" : " ") + word;
        }
        const ChildResult played = server.platform.play(line);
        const auto code = static_cast<std::int32_t>(played.exitCode);
        ++result.commands;
        if (std::find(step.acceptedExitCodes.begin(), step.acceptedExitCodes.end(), code) ==
            step.acceptedExitCodes.end()) {
            result.isTaken = false;
            return result;
        }
        const Standing after = standingOn(server.platform.server);
        result.losses.logicalDrives += goneFrom(before.logicalDrives, after.logicalDrives);
        result.losses.hotspares += goneFrom(before.spares, after.spares);
        result.losses.foreign += goneFrom(before.foreign, after.foreign);
        for (const auto& [name, bytes] : before.bytes) {
            result.losses.capacityBytes += after.bytes.contains(name) ? 0 : bytes;
        }
    }
    const MachinePlan again = server.plan(policies);
    result.endsAsWanted = again.isApplicable() && again.steps().empty();
    return result;
}

constexpr const char* manyPolicies = "[Policy.pair]\n"
                                     "AppliesTo.1 = d:2\n"
                                     "AppliesTo.2 = d:3\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array.A = 1,2\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1\n"
                                     "Array_Defaults = 0%:0\n"
                                     "[Policy.two]\n"
                                     "AppliesTo.1 = d:4\n"
                                     "AppliesTo.2 = d:5\n"
                                     "AppliesTo.3 = d:6\n"
                                     "AppliesTo.4 = d:8\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array.A = 1,2\n"
                                     "Array.B = 3,4\n"
                                     "Hotspares = 5\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1\n"
                                     "Logical.2 = B:FILL:0\n"
                                     "[Policy.free]\n"
                                     "AppliesTo.1 = d:9\n"
                                     "AppliesTo.2 = d:10\n"
                                     "AppliesTo.3 = d:11\n"
                                     "AppliesTo.4 = d:12\n"
                                     "Array_Defaults = 0%:1\n";

TEST(Fleet, CountsWhatComesOfCarryingOutEachPlan) {
    const FleetTerms terms = termsOf(manyPolicies);
    std::vector<FleetServer> servers;
    std::map<ServerResult, std::size_t> counts;
    FleetLosses losses;
    std::set<std::string> models;
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        PlannedServer server("single");
        test::makeRandom(server, random);
        if (seed % 4 == 0) { // as planned already
            static_cast<void>(server.carryOut(server.plan(manyPolicies)));
        }
        models.insert(server.snapshot().details.front().model);
        servers.push_back(rehearsed(server, terms));
        const FleetServer& told = servers.back();
        ++counts[told.result];
        const Applied real = applied(server, manyPolicies);
        EXPECT_EQ(told.result == ServerResult::asPlanned,
                  real.isTaken && real.endsAsWanted && real.commands > 0);
        if (told.result != ServerResult::error) {
            EXPECT_EQ(told.commands, real.commands);
            EXPECT_EQ(told.losses.logicalDrives, real.losses.logicalDrives);
            EXPECT_EQ(told.losses.hotspares, real.losses.hotspares);
            EXPECT_EQ(told.losses.foreign, real.losses.foreign);
            constexpr std::uint64_t listed = std::uint64_t{4} << 30U; // listings round
            const bool tellsSizes =
                server.platform.server.controllers.front().identity.utility != "HYPERWIN";
            EXPECT_NEAR(static_cast<double>(told.losses.capacityBytes),
                        tellsSizes ? static_cast<double>(real.losses.capacityBytes) : 0.0,
                        static_cast<double>(listed));
            losses.add(told.losses);
        }
        if (HasFailure()) {
            FAIL() << serverResultWord(told.result) << " "
                   << (told.findings.empty() ? "" : told.findings.front().finding.summary);
        }
    }
    EXPECT_GE(models.size(), 8U);
    const Fleet fleet = fleetOf(std::move(servers), manyPolicies);
    for (const auto& [result, count] : counts) {
        EXPECT_EQ(fleet.count(result), count);
        EXPECT_GT(count, 3U) << serverResultWord(result);
    }
    EXPECT_EQ(counts.size(), 4U);
    EXPECT_EQ(fleet.losses(), losses);
    EXPECT_GT(losses.logicalDrives, 10U);
}

constexpr const char* pairPolicies = "[Policy.db]\n"
                                     "AppliesTo.1 = d:99\n"
                                     "[Policy.web]\n"
                                     "AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
                                     "AppliesTo.2 = t:LSI-MegaRAID-8480,d:6\n"
                                     "AppliesTo.3 = t:Kestrix-B7,d:8\n"
                                     "StripeSize = 64\n"
                                     "Array_Mode = CUSTOM\n"
                                     "Array.A = 1,2\n"
                                     "Array.B = 3,4\n"
                                     "Hotspares = 8\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1:ON\n"
                                     "Logical.2 = B:FILL:1:ON\n"
                                     "[Policy.rest]\n"
                                     "AppliesTo.1 = ALL\n"
                                     "[Policy.never]\n"
                                     "AppliesTo.1 = c:1\n";

Lines unusedLines(const Fleet& fleet) {
    Lines lines;
    for (const UnusedPiece& piece : fleet.unused) {
        std::string line = std::to_string(piece.line);
        for (const std::string& part : {std::string(unusedKindWord(piece.kind)), piece.policy,
                                        piece.keyword, piece.specifier, piece.because}) {
            line += part.empty() ? "" : " " + part;
        }
        lines.push_back(line);
    }
    return lines;
}

TEST(Fleet, TellsWhatNoServerUses) {
    PlannedServer single("single");
    const FleetTerms terms = termsOf(pairPolicies);
    const Fleet one = fleetOf({rehearsed(single, terms)}, pairPolicies);
    EXPECT_EQ(one.servers.front().result, ServerResult::asPlanned);
    EXPECT_EQ(one.servers.front().policies, (Lines{"Policy.web"}));
    EXPECT_EQ(
        unusedLines(one),
        (Lines{"1 policy Policy.db", "2 specifier Policy.db AppliesTo.1 d:99",
               "5 entry Policy.web AppliesTo.2", "5 specifier Policy.web AppliesTo.2 d:6",
               "6 entry Policy.web AppliesTo.3", "6 specifier Policy.web AppliesTo.3 t:Kestrix-B7",
               "15 policy Policy.rest an earlier policy fits",
               "17 policy Policy.never an earlier policy fits"}));
    // Of what was asked of no server nothing else is known.
    const Fleet none = fleetOf({FleetServer()}, pairPolicies);
    EXPECT_EQ(unusedLines(none), (Lines{"1 policy Policy.db", "3 policy Policy.web",
                                        "15 policy Policy.rest", "17 policy Policy.never"}));
    // What only some controllers were asked for may be on the others.
    constexpr const char* covered = "[Policy.first]\n"
                                    "AppliesTo.1 = t:LSI-MegaRAID-8480\n"
                                    "[Policy.second]\n"
                                    "AppliesTo.1 = t:LSI-MegaRAID-8480\n";
    PlannedServer unlike("hrconf");
    const FleetTerms coveredTerms = termsOf(covered);
    EXPECT_EQ(unusedLines(fleetOf(
                  {rehearsed(single, coveredTerms), rehearsed(unlike, coveredTerms)}, covered)),
              (Lines{"3 policy Policy.second",
                     "4 specifier Policy.second AppliesTo.1 t:LSI-MegaRAID-8480 where no earlier "
                     "policy fits"}));
    // Another server uses the rest.
    PlannedServer other("hrconf");
    const Fleet both = fleetOf({rehearsed(single, terms), rehearsed(other, terms)}, pairPolicies);
    EXPECT_EQ(both.servers.back().policies, (Lines{"Policy.rest"}));
    const Lines lines = unusedLines(both);
    EXPECT_EQ(
        std::count(lines.begin(), lines.end(), "15 policy Policy.rest an earlier policy fits"), 0);
}

TEST(Fleet, TellsKeywordsWithoutEffect) {
    const std::string policies = "[Policy.web]\nAppliesTo.1 = ALL\nArray.A = 1,2\n"
                                 "Logical.1 = A:FILL:1\nHotspares = 8\nStripeSize = 64\n";
    PlannedServer server("single");
    const Fleet fleet = fleetOf({rehearsed(server, termsOf(policies))}, policies);
    EXPECT_EQ(unusedLines(fleet),
              (Lines{"3 keyword Policy.web Array.A", "4 keyword Policy.web Logical.1"}));
}

TEST(Fleet, IsNotAsPlannedWhereARunWouldNotBegin) {
    // Only one of its controllers has a policy.
    PlannedServer server("two-controllers");
    const std::string policies = "[Policy.one]\nAppliesTo.1 = c:1\nArray_Defaults = 0%:0\n";
    FleetTerms terms = termsOf(policies);
    const FleetServer skipped = rehearsed(server, terms);
    EXPECT_EQ(skipped.result, ServerResult::skipped);
    EXPECT_EQ(skipped.commands, 0U);
    ASSERT_EQ(skipped.reasons.size(), 2U);
    EXPECT_EQ(skipped.reasons[0].substr(0, 29), "controller 2: no policy fits:");
    EXPECT_EQ(skipped.reasons[1].substr(0, 57),
              "apply refuses the server; with --allow-skipped the rest w");
    terms.allowSkipped = true;
    const FleetServer allowed = rehearsed(server, terms);
    EXPECT_EQ(allowed.result, ServerResult::asPlanned);
    EXPECT_GT(allowed.commands, 0U);
}

TEST(Fleet, IsAnErrorWhereItCannotBeRehearsed) {
    PlannedServer server("single");
    const std::string policies = server.samplePolicies();
    Snapshot snapshot = server.snapshot();
    snapshot.details.front().commands.clear(); // what a copy is held against
    const FleetTerms terms = termsOf(policies);
    const FleetServer told =
        rehearseServer(snapshot, readPlanPolicies(terms.request), terms, server.platform, {});
    EXPECT_EQ(told.result, ServerResult::error);
    EXPECT_TRUE(told.hasPlan); // it could be carried out, and what it would lose is told
    EXPECT_GT(told.commands, 0U);
    ASSERT_FALSE(told.findings.empty());
    EXPECT_EQ(told.findings.front().finding.code, "ZP244");
}

TEST(Fleet, MakesCommandsFailOnlyWhenAsked) {
    PlannedServer server("single");
    FleetTerms terms = termsOf(server.samplePolicies());
    EXPECT_EQ(rehearsed(server, terms).faultsTried, 0);
    terms.everyFault = true;
    const FleetServer told = rehearsed(server, terms);
    EXPECT_EQ(told.faultsTried, static_cast<std::int32_t>(told.commands));
    EXPECT_TRUE(told.unresumed.empty());
}

TEST(Fleet, TellsAServerThatIsCountedTwice) {
    PlannedServer server("single");
    const FleetTerms terms = termsOf(pairPolicies);
    const Fleet fleet =
        fleetOf({rehearsed(server, terms, "r1"), rehearsed(server, terms, "r2")}, pairPolicies);
    ASSERT_EQ(fleet.findings.size(), 1U);
    EXPECT_EQ(fleet.findings.front().code, "ZP246");
    EXPECT_EQ(fleet.findings.front().summary, "a server is counted twice: r2 is r1");
}

TEST(Fleet, NamesServersByTheirFiles) {
    EXPECT_EQ(serverNamesOf({"fleet/r1u01.zrec", "fleet/r1u02.ZREC", "x.json", ".zrec"}),
              (Lines{"r1u01", "r1u02", "x.json", ".zrec"}));
    EXPECT_EQ(serverNamesOf({"a/r1.zrec", "b/r1.zrec"}), (Lines{"a/r1.zrec", "b/r1.zrec"}));
}

} // namespace
} // namespace zolex::companion
