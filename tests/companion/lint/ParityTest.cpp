#include "companion/lint/Parity.h"
#include "companion/lint/Fix.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyTexts.h"
#include "policies/PolicyFile.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

TEST(Parity, MutatedPoliciesHaveAnErrorWhereZolexRefusesThem) {
    const std::vector<std::string> shipped = test::shippedPolicies();
    std::mt19937 random(20260); // NOLINT: the same files each time
    int refused = 0;
    for (int i = 0; i < 10'000; ++i) {
        std::string text =
            i % 3 == 0 ? test::generatedPolicies(random) : shipped[random() % shipped.size()];
        if (i % 3 != 0 || i % 2 == 0) {
            text = test::mutatedPolicies(std::move(text), random);
        }
        refused += test::isRefused(text) ? 1 : 0;
        ASSERT_EQ(test::disagreement(text), "")
            << "file " << i << "\n"
            << text << "\nzolex: " << test::zolexSays(text) << "\n"
            << test::linterSays(text);
    }
    // Both happen often.
    EXPECT_GT(refused, 3000);
    EXPECT_LT(refused, 8000);
}

TEST(Parity, TheShippedSamplesAreClean) {
    for (const std::string& text : test::shippedPolicies()) {
        EXPECT_FALSE(test::isRefused(text));
        for (const Finding& finding : lint(scanPolicies("p.ini", text), {})) {
            EXPECT_TRUE(finding.severity == Severity::note || finding.code == "ZX309")
                << test::linterSays(text) << text;
        }
    }
}

// What --fix writes is the same to zolex.
TEST(Parity, MendedPoliciesAreWhatTheyWereToZolex) {
    const std::vector<std::string> shipped = test::shippedPolicies();
    std::mt19937 random(31); // NOLINT: the same files each time
    int changed = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::string text = test::mutatedPolicies(shipped[random() % shipped.size()], random);
        const PolicyDocument document = scanPolicies("p.ini", text);
        const FixedText fixed = fixPolicies(text, lint(document, {}));
        SilentReport silent;
        const PolicyFile before = readPolicies(text, ControllerCatalogue(), {}, silent);
        const PolicyFile after = readPolicies(fixed.text, ControllerCatalogue(), {}, silent);
        ASSERT_EQ(before.policies, after.policies) << text;
        changed += fixed.isChanged() ? 1 : 0;
    }
    EXPECT_GT(changed, 50);
}

} // namespace
} // namespace zolex::companion
