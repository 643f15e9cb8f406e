// Policies for today's controllers to Ironic and back: the layout stays.

#include "companion/exchange/IronicToPolicies.h"
#include "companion/exchange/PoliciesToIronic.h"
#include "companion/rewriting/CapturedPolicies.h"
#include "companion/support/StorcliServer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion {
namespace {

using test::StorcliServer;

std::string tellings(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += std::string(severityWord(finding.severity)) + " " + finding.code + " " +
                finding.summary + "\n";
    }
    return text;
}

std::string layoutTextOfPlan(const MachinePlan& plan) {
    std::string text;
    for (const ControllerPlanning& planning : plan.controllers) {
        for (const std::string& line : layoutLines(planning.after)) {
            text += line + "\n";
        }
    }
    return text;
}

TEST(StorcliIronic, WritesTheModelAndReadsItBack) {
    StorcliServer server("percli");
    const std::string policies = "[Policy.web]\nAppliesTo.1 = t:PERC-H7*\nArray_Mode = CUSTOM\n"
                                 "Array.A = 1,2\nArray.B = 3,4,5\nArray_Defaults = 0%:0\n"
                                 "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n"
                                 "Logical.2 = B:102400:5\nLogical.3 = B:FILL:5\nSpans = 2\n";
    const MachinePlan plan = server.plan(policies);
    const IronicDraft draft = ironicOf(plan, policies);
    EXPECT_EQ(tellings(draft.findings),
              "warning ZX958 Spans = 2 is left out: Ironic cannot say it\n");
    EXPECT_EQ(draft.text, R"({
  "logical_disks": [
    {
      "raid_level": "1",
      "size_gb": "MAX",
      "controller": "PERC-H755-Front",
      "physical_disks": [
        "64:0",
        "64:1"
      ]
    },
    {
      "raid_level": "5",
      "size_gb": 100,
      "share_physical_disks": true,
      "controller": "PERC-H755-Front",
      "physical_disks": [
        "64:2",
        "64:3",
        "64:4"
      ]
    },
    {
      "raid_level": "5",
      "size_gb": "MAX",
      "share_physical_disks": true,
      "controller": "PERC-H755-Front",
      "physical_disks": [
        "64:2",
        "64:3",
        "64:4"
      ]
    }
  ]
}
)");
    const Snapshot snapshot = server.snapshot();
    const IronicPolicies back = policiesOf(draft.text, {"node.json", "", &snapshot, "1"});
    EXPECT_EQ(back.text, R"(; Written by zolexctl 1 from node.json, a RAID configuration of Ironic.
; Deploying it makes these arrays anew: what is on the drives is lost.

[Policy.node]

AppliesTo.1 = t:PERC-H755-Front,d:8

Array_Mode = CUSTOM
; A: 64:0 64:1
Array.A = 1,2
; B: 64:2 64:3 64:4
Array.B = 3,4,5

; No hot spares: Ironic has none. Without this entry there could be one.
Array_Defaults = 0%:0

Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:102400:5
Logical.3 = B:FILL:5
)") << tellings(back.findings);
    EXPECT_EQ(layoutTextOfPlan(server.plan(back.text)), layoutTextOfPlan(plan));
}

TEST(StorcliIronic, KeepsTheLayoutsOfServersThatAreSetUp) {
    for (const char* const levels : {"0", "1", "5", "6", "10", "50", "60"}) {
        SCOPED_TRACE(levels);
        StorcliServer server("storcli-blank");
        const std::string policies =
            "[Policy.web]\nAppliesTo.1 = t:STORCLI\nArray_Mode = CUSTOM\n"
            "Array.A = 5,6,7,8,9,10,11,12\nArray_Defaults = 0%:0\nLogical_Mode = CUSTOM\n"
            "Logical.1 = A:FILL:" +
            std::string(levels) + "\n";
        for (const PlanStep& step : server.plan(policies).steps()) {
            ASSERT_EQ(server.run(step.command), "");
        }
        const Snapshot snapshot = server.snapshot();
        const std::string captured = capturedPolicies(snapshot, {}).text;
        const MachinePlan plan = server.plan(captured);
        EXPECT_EQ(plan.steps().size(), 0U);
        const IronicDraft draft = ironicOf(plan, captured);
        const IronicPolicies back = policiesOf(draft.text, {"node.json", "", &snapshot, "1"});
        ASSERT_NE(back.text, "") << tellings(back.findings) << draft.text;
        EXPECT_EQ(server.plan(back.text).steps().size(), 0U) << back.text;
    }
}

TEST(StorcliIronic, TakesTheModelOfAControllerWithoutAServer) {
    const std::string document = R"({"logical_disks": [
        {"raid_level": "1", "size_gb": 100, "physical_disks": ["1", "2"],
         "share_physical_disks": true},
        {"raid_level": "1", "size_gb": "MAX", "physical_disks": ["1", "2"],
         "share_physical_disks": true}]})";
    const IronicPolicies made = policiesOf(document, {"n.json", "PERC-H755-Front", nullptr, "1"});
    EXPECT_NE(made.text.find("AppliesTo.1 = t:PERC-H755-Front\n"), std::string::npos)
        << tellings(made.findings);
    EXPECT_NE(made.text.find("Logical.2 = A:FILL:1\n"), std::string::npos);
    // Those of Linux take one logical drive on an array.
    EXPECT_EQ(policiesOf(document, {"n.json", "LINUX-MD", nullptr, "1"}).text, "");
}

} // namespace
} // namespace zolex::companion
