// Plans carried out on a virtual server of today's controllers: what is captured then is what was
// planned, and nothing is left to do.

#include "FamilyServer.h"
#include "companion/families/Family.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Utilities.h"
#include "companion/rewriting/CapturedPolicies.h"
#include "model/Definition.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

/// A virtual server with one controller.
class VirtualStorcli {
  public:
    explicit VirtualStorcli(const std::string& extra, const std::string& drives) {
        zolex_sim::Problem problem;
        server_ = zolex_sim::readDefinition(
            R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [{
            "utility": "STORCLI", "pci": {"bus": 193})" +
                extra + R"(, "drives": [)" + drives + "]}]}",
            problem);
        EXPECT_FALSE(problem.found()) << problem.text();
        platform_.respond = [this](const std::string& line) { return play(line); };
        utilities_.programs["STORCLI"] = "/opt/storcli64";
    }

    Snapshot capture() {
        CaptureRequest request;
        request.machineType = "7X06";
        request.serialNumber = "KQ1";
        request.asksFamilies = true;
        request.utilities = &utilities_;
        return captureMachine(platform_, request);
    }

    /// What a step came to, as its family judges it; empty: done.
    std::string run(const PlanStep& step) {
        const ChildResult result = play(step.command);
        const Family* const family = findFamily(step.command);
        if (family == nullptr) {
            return "no family";
        }
        const FamilyVerdict verdict = family->judge(step.command, result.exitCode, result.output);
        return verdict.isDone ? "" : step.command + ": " + verdict.why;
    }
    [[nodiscard]] int logsLeft() const { return logsLeft_; }

  private:
    ChildResult play(const std::string& line) {
        std::vector<std::string> words = splitCommandLine(line);
        ChildResult result;
        if (words.empty() || words.front() != "STORCLI") {
            return result;
        }
        words.front() = "storcli64";
        const zolex_sim::PlayResult played = zolex_sim::playUtility(server_, words);
        result.outcome = ChildOutcome::ended;
        result.exitCode = static_cast<std::uint32_t>(played.exitCode);
        result.output = played.output;
        logsLeft_ += played.leavesLog ? 1 : 0;
        return result;
    }

    zolex_sim::Server server_;
    zolex::test::FakePlatform platform_;
    Utilities utilities_;
    int logsLeft_ = 0;
};

MachinePlan planOf(const Snapshot& snapshot, const std::string& policies) {
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = policies;
    return planMachine(snapshot, request);
}

/// "" when the policies are carried out, what stands then is what was planned, a second plan is
/// empty, and so is one of the captured policies.
std::string carriedOut(VirtualStorcli& server, const std::string& policies) {
    const MachinePlan plan = planOf(server.capture(), policies);
    if (!plan.isApplicable() || plan.steps().empty()) {
        return "not planned: " + planLines(plan);
    }
    for (const PlanStep& step : plan.steps()) {
        if (const std::string why = server.run(step); !why.empty()) {
            return why + "\n" + planLines(plan);
        }
    }
    const Snapshot now = server.capture();
    const MachinePlan again = planOf(now, policies);
    if (!again.isApplicable() || !again.steps().empty()) {
        std::string why;
        for (const Difference& each : again.controllers.front().comparison.differences) {
            why += each.attribute + ": " + each.wanted + ", found " + each.found + "\n";
        }
        return "a second plan is not empty: " + why + planLines(again);
    }
    const CapturedPolicies captured = capturedPolicies(now, {});
    const MachinePlan byCaptured = planOf(now, captured.text);
    if (!byCaptured.isApplicable() || !byCaptured.steps().empty()) {
        return "captured policies are not what stands: " + captured.text + planLines(byCaptured);
    }
    return server.logsLeft() == 0 ? "" : "a log file is left";
}

constexpr const char* hdds = R"({"enclosure": 252, "slot": 0, "count": 24, "sectors": 41943040})";

std::string policy(const std::string& entries) {
    return "[Policy.one]\nAppliesTo.1 = t:STORCLI\n" + entries;
}
std::string custom(const std::string& entries) {
    return policy("Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n" + entries);
}

struct LayoutCase {
    const char* name;
    std::string policies;
};

std::vector<LayoutCase> layouts() {
    const std::string eight = "Array.A = 1,2,3,4,5,6,7,8\n";
    return {
        {"automatic", policy("")},
        {"raid0", custom("Array.A = 1\nLogical.1 = A:FILL:0\n")},
        {"raid0 of three", custom("Array.A = 1,2,3\nLogical.1 = A:FILL:0\nStripeSize = 64\n")},
        {"raid1", custom("Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n")},
        {"raid1 of four", custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:1\n")},
        {"raid5", custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5:OFF\nReadAhead = ON\n")},
        {"raid6", custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:6\nReadAhead = OFF\n")},
        {"raid10", custom(eight + "Logical.1 = A:FILL:10\n")},
        {"raid10 of twenty", custom("Array.A = ALL\nHotspares = 21,22,23,24\n"
                                    "Logical.1 = A:FILL:10\n")},
        {"raid50", custom(eight + "Logical.1 = A:FILL:50\n")},
        {"raid50 in four", custom("Array.A = 1,2,3,4,5,6,7,8,9,10,11,12\nSpans = 4\n"
                                  "Logical.1 = A:FILL:50\n")},
        {"raid60", custom(eight + "Logical.1 = A:FILL:60\n")},
        {"two on one",
         custom("Array.A = 1,2,3\nLogical.1 = A:4096:5:ON\nLogical.2 = A:FILL:5:OFF\n")},
        {"three on one", custom("Array.A = 1,2,3,4\nLogical.1 = A:4096:10\nLogical.2 = A:25%:10\n"
                                "Logical.3 = A:FILL:10\n")},
        {"global spares", custom("Array.A = 1,2,3\nHotspares = 23,24\nLogical.1 = A:FILL:5\n")},
        {"dedicated spares",
         policy("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4\n"
                "Level.A = 1\nLevel.B = 5\n"
                "Spares = 1 covering A and 1 covering B\n")},
        {"by place", custom("Array.A = 1:5,1:6\nArray.B = 252:10,252:11\nLogical.1 = A:FILL:1\n"
                            "Logical.2 = B:FILL:0\n")},
    };
}

TEST(FamilyServer, LayoutsInEachBrandingAndVersion) {
    for (const char* const extra :
         {"", R"(, "branding": "perc")", R"(, "branding": "hpe")", R"(, "version": "1.x")",
          R"(, "version": "007.1017")", R"(, "version": "007.3703")"}) {
        for (const LayoutCase& each : layouts()) {
            VirtualStorcli server(extra, hdds);
            EXPECT_EQ(carriedOut(server, each.policies), "") << each.name << extra;
        }
    }
}

TEST(FamilyServer, OneLayoutAfterAnother) {
    VirtualStorcli server("", hdds);
    for (const LayoutCase& each : layouts()) {
        EXPECT_EQ(carriedOut(server, each.policies), "") << each.name;
    }
}

} // namespace
} // namespace zolex::companion
