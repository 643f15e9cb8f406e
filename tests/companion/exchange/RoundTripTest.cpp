// From policies to Ironic and back: the layout stays.

#include "companion/exchange/IronicToPolicies.h"
#include "companion/exchange/PoliciesToIronic.h"
#include "companion/planning/PlannedServer.h"
#include "companion/rewriting/CapturedPolicies.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using test::PlannedServer;

/// The logical drives of a plan: controller, level, size in MB, drives. Nothing of what Ironic
/// cannot say, and of sizes whole GiB alone where it is `rounded`.
std::vector<std::string> layoutOfPlan(const MachinePlan& plan, bool rounded = false) {
    std::vector<std::string> lines;
    for (const ControllerPlanning& planning : plan.controllers) {
        for (const PlannedVolume& volume : planning.volumes) {
            const std::uint64_t mb = volume.capacityBytes >> 20U;
            std::string line =
                std::to_string(planning.controller.number) + " " + volume.raidType + " " +
                (volume.fills ? "fills" : std::to_string(rounded ? mb / 1024 * 1024 : mb)) + ":";
            for (const PlannedArray& array : planning.arrays) {
                if (array.id == volume.array) {
                    for (const PlannedDrive& drive : array.drives) {
                        line += " " + drive.location;
                    }
                }
            }
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> codesOf(const std::vector<Finding>& findings) {
    std::vector<std::string> codes;
    for (const Finding& finding : findings) {
        codes.push_back(finding.code);
    }
    return codes;
}

/// "" when the layout stays, "refused: ..." when Ironic cannot say it, or what is otherwise.
std::string wrongRoundTrip(PlannedServer& server, const std::string& policies,
                           const std::string& name) {
    const MachinePlan plan = server.plan(policies);
    if (const auto faults = test::faultsOf(plan); !faults.empty()) {
        return "no plan: " + faults.front();
    }
    const IronicDraft draft = ironicOf(plan, policies);
    for (const Finding& finding : draft.findings) {
        if (finding.severity == Severity::error) {
            return "refused: " + finding.code + " " + finding.summary;
        }
    }
    const std::vector<std::string> codes = codesOf(draft.findings);
    const bool isRounded = std::count(codes.begin(), codes.end(), "ZX956") > 0;
    test::keepDocument("ironic-" + name, draft.text);
    const Snapshot snapshot = server.snapshot();
    const IronicPolicies back = policiesOf(draft.text, {"node.json", "", &snapshot, "1"});
    if (back.text.empty()) {
        return "not back: " + back.findings.front().code + " " + back.findings.front().summary;
    }
    const MachinePlan again = server.plan(back.text);
    if (layoutOfPlan(again) != layoutOfPlan(plan, isRounded)) {
        return "other layout:\n" + back.text;
    }
    return layoutOfPlan(plan).empty() ? "nothing planned" : "";
}

/// The policies with a mirror of the first two drives in the place of an enhanced mirror.
std::string withPlainMirrors(std::string policies) {
    const std::size_t level = policies.find(":1E:");
    if (level == std::string::npos) {
        return policies;
    }
    policies.erase(level + 2, 1);
    const std::size_t array = policies.rfind("\nArray.", level);
    const std::size_t third = policies.find(',', policies.find(',', array) + 1);
    return policies.erase(third, policies.find('\n', third) - third);
}

TEST(IronicRoundTrip, KeepsTheLayoutsOfTheSamplePolicies) {
    std::vector<std::string> refused;
    for (const std::string& sample : test::SimulatedPlatform::samples()) {
        SCOPED_TRACE(sample);
        PlannedServer server(sample);
        const std::string wrong = wrongRoundTrip(server, server.samplePolicies(), sample);
        if (!wrong.empty()) {
            refused.push_back(sample + " " + wrong);
        }
        EXPECT_EQ(wrongRoundTrip(server, withPlainMirrors(server.samplePolicies()), sample), "");
    }
    EXPECT_EQ(refused, (std::vector<std::string>{
                           "cfggen refused: ZX950 controller 1, Logical.2: Ironic has no level "
                           "RAID1E",
                           "mixed refused: ZX950 controller 6, Logical.1: Ironic has no level "
                           "RAID1E"}));
}

/// What was made by zolex and captured: the drives are in use.
TEST(IronicRoundTrip, KeepsTheLayoutsOfServersThatAreSetUp) {
    for (const std::string& sample : test::SimulatedPlatform::samples()) {
        SCOPED_TRACE(sample);
        PlannedServer server(sample);
        ASSERT_EQ(server.runZolex(withPlainMirrors(server.samplePolicies()), {"/r", "/y"}), 0);
        const std::string policies = capturedPolicies(server.snapshot(), {}).text;
        EXPECT_EQ(wrongRoundTrip(server, policies, sample + "-captured"), "");
    }
}

/// Sizes in whole GiB, and a level of each kind.
TEST(IronicRoundTrip, KeepsEachLevelAndSize) {
    struct Row {
        const char* drives;
        const char* logical;
        const char* written;
    };
    const std::vector<Row> rows = {
        {"1", "FILL:0", R"("raid_level": "0",
      "size_gb": "MAX")"},
        {"1,2", "10240:1", R"("raid_level": "1",
      "size_gb": 10)"},
        {"3,2,1", "FILL:5", R"("raid_level": "5",
      "size_gb": "MAX")"},
        {"1,2,3,4", "102400:10", R"("raid_level": "1+0",
      "size_gb": 100)"},
        {"1,2,3,4,5,6", "1024:50", R"("raid_level": "5+0",
      "size_gb": 1)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.logical);
        PlannedServer server("single");
        const std::string policies = std::string("[Policy.web]\nAppliesTo.1 = ALL\n"
                                                 "Array_Mode = CUSTOM\nArray_Defaults = 0%:0\n"
                                                 "Logical_Mode = CUSTOM\nArray.A = ") +
                                     row.drives + "\nLogical.1 = A:" + row.logical + "\n";
        EXPECT_EQ(wrongRoundTrip(server, policies, "level"), "");
        const IronicDraft draft = ironicOf(server.plan(policies), policies);
        EXPECT_NE(draft.text.find(row.written), std::string::npos) << draft.text;
        EXPECT_EQ(codesOf(draft.findings), std::vector<std::string>());
    }
}

TEST(IronicRoundTrip, KeepsDrivesThatAreToldByWhatTheyAre) {
    PlannedServer server("single");
    EXPECT_EQ(wrongRoundTrip(server,
                             "[Policy.web]\nAppliesTo.1 = ALL\nDrives.A = 2 x HDD\n"
                             "Drives.B = 4 x HDD\nSpares = 1\n",
                             "kinds"),
              "");
}

} // namespace
} // namespace zolex::companion
