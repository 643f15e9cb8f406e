#include "companion/lint/RuleCases.h"

#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/text/Diagnostics.h"
#include "policies/PolicyFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion::test {

namespace {

const LintSelection reading{{"ZX0", "ZX1", "ZX203", "ZX603", "ZX610", "ZX9"}, {}};

std::vector<Finding> findingsOf(const std::string& text) {
    return lint(scanPolicies("p.ini", text), reading);
}

bool has(const std::vector<Finding>& findings, const std::string& rule) {
    return std::any_of(findings.begin(), findings.end(),
                       [&rule](const Finding& finding) { return finding.code == rule; });
}

bool isRefused(const std::string& text) {
    SilentReport silent;
    return !readPolicies(text, ControllerCatalogue(), {}, silent).faults.empty();
}

void checkCase(const Case& row) {
    SCOPED_TRACE(row.rule + " " + row.name);
    const std::vector<Finding> bad = findingsOf(row.bad);
    const SourceFile source{"p.ini", row.bad};
    EXPECT_EQ(diagnosticsText(bad, {&source, 1}, {}), row.told);
    EXPECT_TRUE(has(bad, row.rule));
    EXPECT_FALSE(has(findingsOf(row.good), row.rule));
    EXPECT_FALSE(isRefused(row.good));
    const bool saysRefused = std::any_of(bad.begin(), bad.end(), [](const Finding& finding) {
        return finding.refusedBy == RefusedBy::zolex;
    });
    EXPECT_EQ(isRefused(row.bad), saysRefused);
}

} // namespace

void checkCases(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
        checkCase(row);
    }
}

std::string list(int drives) {
    return repeated("12,", drives - 1) + "12";
}

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

std::string policies(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "[Policy.p" + std::to_string(i) + "]\nAppliesTo.1 = ALL\n";
    }
    return text;
}

std::string entries(int count) {
    std::string text = "[Policy.web]\nAppliesTo.1 = ALL\n";
    for (int i = 2; i <= count; ++i) {
        text += "AppliesTo." + std::to_string(i) + " = c:1\n";
    }
    return text;
}

} // namespace zolex::companion::test
