#include "companion/json/PlanDocument.h"

#include "companion/planning/Steps.h"
#include "companion/support/ExamplePlan.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace zolex::companion {
namespace {
const DocumentHead head{{"plan", "site.ini", "-o", "plan.json"}, "2026-11-21T21:05:00+01:00"};
TEST(X, Y) {
    MachinePlan plan = test::examplePlan();
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    const std::string text = planDocument(plan, head);
    std::puts(text.c_str());
    const PlanReading reading = readPlanDocument(text, "plan.json");
    if (!reading.plan) std::puts(reading.findings[0].summary.c_str());
    else EXPECT_EQ(text, planDocument(*reading.plan, reading.head));
}
}
}
