#pragma once

#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "companion/support/SimulatedPlatform.h"

#include <string>
#include <string_view>
#include <vector>

/// Plans as texts, so that the whole of one can be asserted.
namespace zolex::companion::test {

inline std::string joined(const std::vector<std::string>& words, const char* between = " ") {
    std::string text;
    for (const std::string& word : words) {
        text += (&word == &words.front() ? "" : between) + word;
    }
    return text;
}

/// "listed Array.A:4 \"3\"".
inline std::string reasonText(const PlanReason& reason) {
    std::string text = reason.code;
    if (!reason.keyword.empty()) {
        text += " " + reason.keyword;
    }
    if (reason.line > 0) {
        text += ":" + std::to_string(reason.line);
    }
    return reason.as.empty() ? text : text + " \"" + reason.as + "\"";
}

inline std::string findingText(const Finding& finding) {
    std::string text;
    if (finding.start.line > 0) {
        text +=
            std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column) + " ";
    }
    text += std::string(severityWord(finding.severity)) + " " + finding.code + ": " +
            finding.summary + "\n";
    if (!finding.detail.empty()) {
        text += "  detail: " + finding.detail + "\n";
    }
    for (const std::string& help : finding.help) {
        text += "  help: " + help + "\n";
    }
    return text;
}

inline std::string findingsText(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += findingText(finding);
    }
    return text;
}

inline std::string consideredText(const ControllerPlanning& planning) {
    std::string text;
    for (const PolicyMatch& policy : planning.considered) {
        text += policy.name + ":" + std::to_string(policy.line) +
                (!policy.matched   ? " not asked"
                 : *policy.matched ? " yes"
                                   : " no") +
                "\n";
        for (const EntryMatch& entry : policy.entries) {
            text += "  " + entry.keyword + ":" + std::to_string(entry.line) +
                    (entry.matched ? " yes" : " no");
            for (const SpecifierMatch& each : entry.specifiers) {
                text +=
                    " [" + each.specifier + (each.holds ? " is " : " is not ") + each.actual + "]";
            }
            text += "\n";
        }
    }
    return text;
}

inline std::string arraysText(const ControllerPlanning& planning) {
    std::string text;
    for (const PlannedArray& array : planning.arrays) {
        text += "array " + array.id + " " + std::to_string(array.capacityBytes) + "\n";
        for (const PlannedDrive& drive : array.drives) {
            text += "  " + drive.location + " " + reasonText(drive.reason) + "\n";
        }
    }
    for (const PlannedVolume& volume : planning.volumes) {
        text += volume.id + " " + volume.array + " " + volume.raidType + " " + volume.sizePolicy +
                " " + std::to_string(volume.capacityBytes) + " +-" +
                std::to_string(volume.toleranceBytes) +
                (volume.stripSizeBytes ? " strip " + std::to_string(*volume.stripSizeBytes) : "") +
                (volume.writeCache.empty() ? "" : " " + volume.writeCache) +
                (volume.readCache.empty() ? "" : " " + volume.readCache) + "\n";
        for (const auto& [name, reason] : volume.reasons) {
            text += "  " + name + " " + reasonText(reason) + "\n";
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        text += "spare " + spare.location + " covers " + joined(spare.covers) + " " +
                reasonText(spare.reason) + "\n";
    }
    return text;
}

inline std::string stepsText(const MachinePlan& plan) {
    std::string text;
    for (const PlanStep& step : plan.steps()) {
        text += std::to_string(step.step) + " " + joined(step.argv) + "\n";
    }
    return text;
}

/// What is to be said of a controller: outcome, faults, warnings.
inline std::string outcomeText(const ControllerPlanning& planning) {
    return "controller " + std::to_string(planning.controller.number) + " " +
           std::string(dispositionWord(planning.disposition)) +
           (planning.because.empty() ? "" : " (" + planning.because + ")") + "\n" +
           findingsText(planning.diagnostics) + findingsText(planning.warnings);
}

/// The same of a machine, with the faults of the file before it.
inline std::string outcomeText(const MachinePlan& plan) {
    std::string text = findingsText(plan.policiesFindings) + findingsText(plan.diagnostics);
    for (const ControllerPlanning& controller : plan.controllers) {
        text += outcomeText(controller);
    }
    return text;
}

inline std::string planText(const MachinePlan& plan) {
    std::string text = findingsText(plan.policiesFindings) + findingsText(plan.diagnostics);
    for (const ControllerPlanning& controller : plan.controllers) {
        text += outcomeText(controller) + consideredText(controller);
        if (!controller.policy.empty()) {
            text += "by " + controller.policy + ":" + std::to_string(controller.policyLine) + " " +
                    controller.matchedBy + "\n";
        }
        text += arraysText(controller);
        text += "before:\n";
        for (const std::string& line : layoutLines(controller.before)) {
            text += "  " + line + "\n";
        }
        text += "after:\n";
        for (const std::string& line : layoutLines(controller.after)) {
            text += "  " + line + "\n";
        }
        text += "strategy " + std::string(strategyWord(controller.strategy)) + "\n";
        for (const StrategyReason& reason : controller.strategyBecause) {
            text += "  " + reason.code + ": " + reason.text + "\n";
        }
        for (const Loss& loss : controller.losses) {
            text += "loses " + loss.kind + " " + loss.id + "\n";
        }
    }
    text += stepsText(plan) + (plan.consent.empty() ? "" : "consent " + plan.consent + "\n");
    for (const std::string& line : plan.oldCommand.wouldRun) {
        text += "old: " + line + "\n";
    }
    for (const std::string& line : plan.oldCommand.differences) {
        text += "old difference: " + line + "\n";
    }
    return text;
}

/// The plan of a virtual server, of a sample or a definition.
inline MachinePlan planOf(SimulatedPlatform& platform, std::string_view policies,
                          PlanRequest request = {}, const CaptureRequest& capture = {}) {
    request.policiesFile = request.classDefaults ? "" : "site.ini";
    request.policiesText = policies;
    return planMachine(captureMachine(platform, capture), request);
}
inline MachinePlan planOf(std::string_view server, std::string_view policies,
                          PlanRequest request = {}, const CaptureRequest& capture = {}) {
    SimulatedPlatform platform(server);
    return planOf(platform, policies, std::move(request), capture);
}

} // namespace zolex::companion::test
