#include "companion/json/PlanDocument.h"
#include "companion/planning/Diff.h"
#include "support/Check.h"
#include "support/Input.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace zolex::fuzz {
namespace {

using namespace companion;

/// An error with a place in the text, and no plan.
void checkError(const PlanReading& reading, std::string_view text) {
    check(!reading.plan && reading.findings.size() == 1, "what is not read has one reason");
    const Finding& finding = reading.findings.front();
    check(finding.severity == Severity::error && !finding.code.empty() && !finding.summary.empty(),
          "an error says something");
    check(finding.start.byte >= 0 && finding.start.byte <= static_cast<std::int64_t>(text.size()),
          "an error stands in the text");
}

/// What holds of every step of a plan that was read.
void checkSteps(const MachinePlan& plan) {
    std::int32_t number = 0;
    for (const PlanStep& step : plan.steps()) {
        check(step.step == ++number, "steps are counted");
        check(step.argv.size() >= 2 && step.argv.front() == "UTIL.BAT", "steps start a utility");
        for (const std::string& argument : step.argv) {
            const bool isWord = std::none_of(argument.begin(), argument.end(), [](char c) {
                return static_cast<unsigned char>(c) < 0x20;
            });
            check(isWord, "arguments have no control characters");
        }
        const auto isOf = [&](const ControllerPlanning& each) {
            return each.controller.number == step.controller &&
                   each.disposition == Disposition::planned;
        };
        check(std::any_of(plan.controllers.begin(), plan.controllers.end(), isOf),
              "steps are of controllers that are planned");
    }
}

/// What was read comes back as it is, and can be told of.
void checkPlan(const PlanReading& reading) {
    const MachinePlan& plan = *reading.plan;
    checkSteps(plan);
    const std::string written = planDocument(plan, reading.head);
    const PlanReading again = readPlanDocument(written, "again.json");
    check(again.plan.has_value(), "what was written is read");
    check(planDocument(*again.plan, again.head) == written, "what was read is written as it was");
    check(diffOf(plan).controllers.size() == plan.controllers.size(), "one for each controller");
}

/// The whole input is a plan.
void readAny(std::string_view text) {
    const PlanReading reading = readPlanDocument(text, "plan.json");
    if (reading.plan) {
        check(reading.findings.empty(), "a plan that is read has no fault");
        checkPlan(reading);
    } else {
        checkError(reading, text);
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readAny(zolex::fuzz::Input(data, size).rest());
    return 0;
}
