#include "companion/commands/PlanBrief.h"

#include "companion/commands/LossText.h"
#include "companion/picture/Changes.h"
#include "companion/picture/TextLines.h"
#include "companion/text/Sizes.h"

#include <vector>

namespace zolex::companion {

namespace {

std::string stepLines(const std::vector<PlanStep>& steps, bool isOfSeveral,
                      const TextStyle& style) {
    std::string text;
    const std::size_t digits = std::to_string(steps.back().step).size();
    for (const PlanStep& step : steps) {
        const std::string number = std::to_string(step.step);
        const std::string controller =
            isOfSeveral ? "controller " + std::to_string(step.controller) + ": " : "";
        text += signedLine(std::string(2 + digits - number.size(), ' ') + number + " ",
                           controller + printable(step.summary),
                           step.deletes ? Emphasis::bad : Emphasis::plain, style);
    }
    return text;
}

} // namespace

std::string planBrief(const MachinePlan& plan, const TextStyle& style) {
    std::string text;
    for (const ControllerPlanning& controller : plan.controllers) {
        const std::string name = "Controller " + std::to_string(controller.controller.number);
        if (controller.disposition != Disposition::planned) {
            // No policy says what a reset is to leave.
            const bool isOfReset = controller.disposition == Disposition::already &&
                                   controller.policy.empty() && !controller.because.empty();
            text +=
                signedLine(name + "  ",
                           isOfReset ? printable(controller.because) : dispositionText(controller),
                           Emphasis::plain, style);
        }
        for (const Finding& finding : controller.warnings) {
            if (finding.severity == Severity::warning) {
                text += signedLine(
                    "! ", name + ": " + printable(finding.summary) + " [" + finding.code + "]",
                    Emphasis::warning, style);
            }
        }
    }
    const std::vector<PlanStep> steps = plan.steps();
    if (steps.empty()) {
        return text;
    }
    text += emphasized("Plan (" + countText(steps.size(), "step", "steps") + ")", Emphasis::heading,
                       style) +
            "\n" + stepLines(steps, plan.controllers.size() > 1, style);
    for (const RehearsalSentence& sentence : rehearsalSentences(plan)) {
        if (sentence.isBad) {
            text += signedLine("! ", sentence.text, Emphasis::warning, style);
        }
    }
    const std::vector<Loss> losses = plan.losses();
    if (!losses.empty()) {
        text += signedLine("", "This destroys " + lossesText(losses) + ":", Emphasis::bad, style) +
                lossLines(losses, style);
    }
    return text + "\n";
}

} // namespace zolex::companion
