#include "companion/lint/Fix.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyTexts.h"
#include "companion/lint/RuleGroups.h"
#include "policies/PolicyFile.h"
#include "show/FaultTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace zolex;
using namespace zolex::companion;

namespace {

/// What zolex says first; nothing when it takes the file.
std::optional<Fault> firstFault(const std::string& text) {
    SilentReport silent;
    PolicyOptions options;
    options.file = "p.ini";
    const PolicyFile file = readPolicies(text, ControllerCatalogue(), options, silent);
    return file.faults.empty() ? std::nullopt : std::optional(file.faults.front());
}

bool isOfReading(const Finding& finding) {
    return finding.code.starts_with("ZX0") || finding.code.starts_with("ZX1") ||
           finding.code == "ZX203";
}

bool isRefusal(const Finding& finding) {
    return finding.severity == Severity::error && finding.refusedBy == RefusedBy::zolex;
}

std::string told(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column) +
                ": " + finding.code + " " + finding.summary + "\n";
    }
    return text;
}

/// What is wrong with the findings of a file, against what zolex says of it; empty when they agree.
std::string disagreement(const std::string& text, bool& isRefused) {
    const std::optional<Fault> fault = firstFault(text);
    isRefused = fault.has_value();
    const PolicyDocument document = scanPolicies("p.ini", text);
    // Without the comments that silence findings.
    const std::vector<Finding> raw = lintAll(document);
    if (std::any_of(raw.begin(), raw.end(),
                    [](const Finding& finding) { return finding.code == "ZX610"; })) {
        return {};
    }
    std::vector<Finding> findings = raw;
    PolicyDocument unsilenced = document;
    unsilenced.ignored.clear();
    arrangeFindings(unsilenced, {}, findings);
    for (const Finding& finding : findings) {
        // What stands beyond 255 characters can be what nobody wants and zolex takes.
        if (isOfReading(finding) && finding.severity == Severity::error &&
            finding.refusedBy != RefusedBy::zolex && finding.code != "ZX012") {
            return "an error of reading that zolex does not make: " + finding.code;
        }
    }
    const bool hasRefusal = std::any_of(findings.begin(), findings.end(), isRefusal);
    if (hasRefusal != isRefused) {
        return isRefused ? "zolex refuses it, and no error is found" : "zolex takes it";
    }
    if (!fault || fault->place.line == 0 ||
        (findings.size() == 1 && findings.front().code == "ZX002")) {
        return {};
    }
    const bool isThere =
        std::any_of(findings.begin(), findings.end(), [&fault](const Finding& finding) {
            return isRefusal(finding) && finding.start.line == fault->place.line;
        });
    return isThere ? "" : "no error in line " + std::to_string(fault->place.line);
}

std::string zolexSays(const std::string& text) {
    const std::optional<Fault> fault = firstFault(text);
    return fault ? std::string(show::faultTexts(*fault).front().text.view()) : "takes it";
}

} // namespace

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
        bool isRefused = false;
        const std::string wrong = disagreement(text, isRefused);
        refused += isRefused ? 1 : 0;
        ASSERT_EQ(wrong, "") << "file " << i << "\n"
                             << text << "\nzolex: " << zolexSays(text) << "\n"
                             << told(lint(scanPolicies("p.ini", text), {}));
    }
    // Both happen often.
    EXPECT_GT(refused, 3000);
    EXPECT_LT(refused, 8000);
}

TEST(Parity, TheShippedSamplesAreClean) {
    for (const std::string& text : test::shippedPolicies()) {
        EXPECT_FALSE(firstFault(text).has_value());
        for (const Finding& finding : lint(scanPolicies("p.ini", text), {})) {
            EXPECT_TRUE(finding.severity == Severity::note || finding.code == "ZX309")
                << told({finding}) << text;
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
