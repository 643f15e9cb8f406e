#include "policies/GeneratedPolicies.h"

#include "policies/GeneratorTestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using namespace test;

GeneratedPolicies generate(Generation& run, const PolicyFile& file = {}) {
    SilentReport report;
    return generatePolicies(run.controllers, file, captureOptions(run.application),
                            run.platform.now, run.application.catalogue(), report);
}

TEST(GeneratedPoliciesTest, TheTextIsWhatACaptureAppends) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    run.add(12, 2).setCaptured(std::nullopt);
    fillMegaRaid(run.add(12, 2));
    const GeneratedPolicies policies = generate(run);
    EXPECT_EQ(policies.count, 2U);
    EXPECT_FALSE(policies.fault.has_value());
    ASSERT_TRUE(run.run());
    EXPECT_EQ(std::string(policies.text.view()), run.file());
}

TEST(GeneratedPoliciesTest, GeneratingReadsOnly) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    const RAIDController before = *run.controllers.controller(0);
    const GeneratedPolicies first = generate(run);
    EXPECT_EQ(generate(run).text, first.text);
    EXPECT_EQ(*run.controllers.controller(0), before);
    EXPECT_TRUE(run.platform.fileFake.opened.empty());
}

TEST(GeneratedPoliciesTest, NamesOfTheFileAreNotGivenAgain) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    fillMegaRaid(run.add(12, 2));
    PolicyFile file;
    PolicySection section;
    const std::string model(run.application.controllerName(12, 2).view());
    section.name = "POLICY.AUTO-" + model + "-1";
    file.sections.push_back(section);
    const std::string text(generate(run, file).text.view());
    EXPECT_EQ(text.find("[Policy.AUTO-" + model + "-1]"), std::string::npos);
    EXPECT_NE(text.find("[Policy.AUTO-" + model + "-2]"), std::string::npos);
    EXPECT_NE(text.find("[Policy.AUTO-" + model + "-3]"), std::string::npos);
}

TEST(GeneratedPoliciesTest, ParametersAtFaultGiveNoText) {
    Generation run;
    run.application.settings.captureParameters = "m,q";
    fillMegaRaid(run.add(12, 2));
    const GeneratedPolicies policies = generate(run);
    EXPECT_EQ(policies.text, "");
    ASSERT_TRUE(policies.fault.has_value());
    EXPECT_EQ(policies.fault->kind, FaultKind::captureParametersInvalid);
    EXPECT_EQ(policies.fault->wanted, "m,q");
}

} // namespace
} // namespace zolex
