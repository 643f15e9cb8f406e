#include "companion/planning/ControllerPlanner.h"

#include "companion/lint/Entries.h"
#include "companion/lint/MachineCase.h"
#include "companion/planning/Beginning.h"
#include "companion/planning/HealthyView.h"
#include "companion/planning/HurtArrays.h"
#include "companion/planning/Matching.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/PlannedLayout.h"
#include "companion/planning/Steps.h"
#include "companion/planning/UsedDrives.h"
#include "companion/planning/Warnings.h"
#include "companion/rewriting/PlanComparison.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

namespace zolex::companion {

namespace {

/// What is said of command lines, and of no matter where none is run.
constexpr std::array<std::string_view, 3> ofCommands = {"ZX701", "ZX702", "ZX711"};

/// What the capture says of the controller that the plan says better: ZX701 where drives without
/// a number shift numbers that the policy uses, and what lines of zolex name otherwise.
bool isSaidBetter(const Finding& finding, bool isShifted, const std::string& utility) {
    return (finding.code == "ZX701" && isShifted) ||
           (finding.code == problem::namedOtherwise && utility == "MEGACLI");
}

/// By their places in the file; those without one come last.
void sortByPlace(std::vector<Finding>& findings) {
    const auto key = [](const Finding& finding) {
        return std::tuple(finding.start.line == 0, finding.start.line, finding.start.column);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [&key](const Finding& a, const Finding& b) { return key(a) < key(b); });
}

Finding findingOf(const BindingFault& fault, const std::string& file) {
    Finding finding;
    finding.code = fault.code;
    finding.refusedBy = RefusedBy::plan;
    finding.summary = fault.keyword + ": " + fault.what;
    if (!fault.help.empty()) {
        finding.help.push_back(fault.help);
    }
    finding.file = file;
    finding.start = {fault.line, fault.column, 0};
    finding.end = {fault.line, fault.endColumn, 0};
    return finding;
}

/// Whether what seems to be a controller without drives is one whose listing is an error text.
bool hasNoListing(const ControllerSnapshot& detail, const RAIDController& record) {
    return record.numberOfDrives() == 0 &&
           std::any_of(detail.findings.begin(), detail.findings.end(), [](const Finding& finding) {
               return finding.code == problem::notAListing ||
                      finding.code == problem::listingRefused;
           });
}

} // namespace

/// A plan that may be taken, or not.
struct ControllerPlanner::Attempt {
    ControllerPlanning planning;
    std::vector<Finding> findings;
    std::optional<Fault> fault;
    bool isPlanned = false; ///< it has a layout

    [[nodiscard]] bool stands() const {
        return isPlanned && planning.comparison.result != Sameness::different;
    }
};

ControllerPlanning ControllerPlanner::plan(const ControllerSnapshot& detail) {
    ControllerPlanning planning = planOf(detail);
    sortByPlace(planning.diagnostics);
    sortByPlace(planning.warnings);
    if (planning.disposition == Disposition::refused && !planning.diagnostics.empty()) {
        const std::size_t more = planning.diagnostics.size() - 1;
        planning.because = planning.diagnostics.front().summary;
        planning.because += more == 0 ? "" : ", and " + countOf(more, "more fault");
    }
    return planning;
}

ControllerPlanning ControllerPlanner::planOf(const ControllerSnapshot& detail) {
    if (detail.index == ControllerSnapshot::noRecord) {
        return familyPlanner_.plan(detail);
    }
    ControllerPlanning planning;
    planning.controller = withoutListings(detail);
    const RAIDController* const record = snapshot_.controllers.controller(detail.index);
    const bool isCaptured = !detail.failed && record != nullptr && !hasNoListing(detail, *record);
    if (!beginPlanning(detail, isCaptured, policies_ != nullptr, refusals_, planning)) {
        return planning;
    }
    refuseMisread(planning.controller.findings);
    const bool isTrusted = std::none_of(detail.findings.begin(), detail.findings.end(), isMisread);
    const auto healthy =
        request_.strategy == StrategyWish::rebuild ? std::nullopt : healthyView(*record, detail);
    if (healthy) {
        Attempt first = attempt(healthy->record, healthy->detail, true);
        if (isTrusted && first.stands()) {
            takeAsItStands(first, planning);
            return planning;
        }
    }
    Attempt found = attempt(*record, detail, false);
    if (isTrusted && found.stands() && request_.strategy != StrategyWish::rebuild) {
        takeAsItStands(found, planning);
        return planning;
    }
    finish(*record, found, planning);
    return planning;
}

ControllerPlanner::Attempt ControllerPlanner::attempt(const RAIDController& record,
                                                      const ControllerSnapshot& detail,
                                                      bool failedMembersStay) const {
    Attempt attempt;
    ControllerPlanning& planning = attempt.planning;
    MatchedPolicy match = matchPolicies(*policies_, snapshot_.machine, detail.number, record);
    planning.considered = std::move(match.considered);
    planning.disposition = Disposition::planned;
    if (match.unknown) {
        attempt.findings.push_back(std::move(*match.unknown));
        return attempt;
    }
    if (record.numberOfDrives() == 0) {
        planning.disposition = Disposition::skipped;
        planning.because = detail.drives.empty() ? "it has no drives"
                                                 : "none of its drives has a number in policies";
        return attempt;
    }
    if (!match.index) {
        planning.disposition = Disposition::skipped;
        planning.because = whyUnmatched(planning.considered);
        return attempt;
    }
    const PolicyView& view = policies_->views[*match.index];
    planning.policy = view.name();
    planning.policyLine = policies_->fileLine(view.policy->header.line);
    planning.matchedBy = std::move(match.matchedBy);
    if (policies_->isDefault || !hasKindEntries(request_.policiesText)) {
        planBy(*policies_, *match.index, record, detail, attempt);
        return attempt;
    }
    BoundPolicies bound = bindPolicy(request_.policiesText, *match.index, detail, record,
                                     {.failedMembersStay = failedMembersStay});
    planning.bindings = std::move(bound.bindings);
    for (const BindingFault& fault : bound.faults) {
        attempt.findings.push_back(findingOf(fault, request_.policiesFile));
    }
    if (!bound.faults.empty()) {
        return attempt;
    }
    const auto policies = readBoundPolicies(request_, bound);
    if (!policies) {
        attempt.findings.push_back(planFault(
            problem::cannotBind, planning.policy + " cannot be read when its drives are bound",
            {"see each binding: zolexctl convert --to policies " + request_.policiesFile +
             " --machine server.zrec"}));
        return attempt;
    }
    planBy(*policies, *match.index, record, detail, attempt);
    return attempt;
}

void ControllerPlanner::planBy(const PlanPolicies& policies, std::size_t policy,
                               const RAIDController& record, const ControllerSnapshot& detail,
                               Attempt& attempt) const {
    SilentReport silent;
    ControllerPlan plan = planByPolicy(record, detail.number, policies.list.policies()[policy],
                                       PlanOptions(), silent);
    plan.policyIndex = static_cast<std::int32_t>(policy);
    ControllerPlanning& planning = attempt.planning;
    if (plan.outcome == Outcome::tooFewDrives) {
        planning.disposition = Disposition::skipped;
        planning.because = "it has " +
                           countOf(static_cast<std::size_t>(record.numberOfDrives()), "drive") +
                           ", too few for " + detail.model;
        return;
    }
    attempt.fault = plan.fault;
    attempt.isPlanned = plan.outcome == Outcome::planned;
    if (attempt.isPlanned) {
        fillLayout({record, detail, policies, policy, plan, planning.bindings}, planning);
        planning.after = layoutOf(planning);
        CompareTerms terms;
        terms.utility = detail.utility;
        planning.before = capturedLayout(detail.facts);
        planning.comparison = compareLayouts(detail.facts, planning.before, planning.after, terms);
    }
    FindingSink sink(policies.document.file);
    Models models;
    MachineCase machine{
        snapshot_,         detail, record, plan, policies.views, &policies.views[policy], true,
        policies.uncovered};
    if (attempt.isPlanned && request_.strategy != StrategyWish::rebuild &&
        planning.comparison.result != Sameness::different) {
        machine.used = usedDrives(planning, true);
    }
    checkController(machine, models, sink);
    attempt.findings = sink.take();
    policies.place(attempt.findings);
    if (!attempt.isPlanned && !hasErrors(attempt.findings)) {
        attempt.findings.push_back(planFault(
            problem::notPlanned, plan.fault ? faultLine(*plan.fault) : "no plan can be made",
            {"zolexctl show"}));
    }
}

/// What is planned stands already. Nothing is run, so nothing can be refused.
void ControllerPlanner::takeAsItStands(Attempt& attempt, ControllerPlanning& planning) {
    ControllerSnapshot controller = std::move(planning.controller);
    planning = std::move(attempt.planning);
    planning.controller = std::move(controller);
    planning.disposition = Disposition::already;
    planning.because = whyItStands(planning.comparison);
    planning.strategy = Strategy::none;
    if (std::optional<Finding> offline = offlineArrayFault(planning)) {
        planning.because.clear();
        refusals_.sort({*std::move(offline)}, planning);
        refusePlanning(planning);
        return;
    }
    for (Finding& finding : attempt.findings) {
        const bool isOfCommand =
            finding.severity == Severity::error ||
            std::find(ofCommands.begin(), ofCommands.end(), finding.code) != ofCommands.end();
        if (isOfCommand) {
            continue;
        }
        constexpr std::string_view goesInto = ", and goes into ";
        if (const std::size_t at = finding.summary.find(goesInto); at != std::string::npos) {
            finding.summary.replace(at, goesInto.size(), ", and is in ");
            finding.help = {"replace the drive while the others are well"};
        }
        planning.warnings.push_back(std::move(finding));
    }
    for (Finding finding : planning.controller.findings) {
        const bool isSaid = finding.code == "ZX701" || finding.code == problem::namedOtherwise;
        if (!isSaid) {
            finding.severity = std::min(finding.severity, Severity::warning);
            planning.warnings.push_back(std::move(finding));
        }
    }
    for (Finding& finding : planWarnings(planning)) {
        planning.warnings.push_back(std::move(finding));
    }
}

void ControllerPlanner::finish(const RAIDController& record, Attempt& attempt,
                               ControllerPlanning& planning) {
    ControllerSnapshot controller = std::move(planning.controller);
    const Layout before = std::move(planning.before);
    planning = std::move(attempt.planning);
    planning.controller = std::move(controller);
    planning.before = before;
    if (attempt.fault) {
        coreMessages_.push_back(faultLine(*attempt.fault));
    }
    std::vector<Finding> found = std::move(attempt.findings);
    if (planning.disposition == Disposition::skipped) {
        // A drive without a number may be why there are fewer than a policy asks for.
        for (const Finding& finding : planning.controller.findings) {
            if (finding.code == "ZX701") {
                found.push_back(finding);
            }
        }
        refusals_.sort(std::move(found), planning);
        return;
    }
    const bool isShifted = std::any_of(
        found.begin(), found.end(), [](const Finding& finding) { return finding.code == "ZX701"; });
    for (const Finding& finding : planning.controller.findings) {
        if (!isSaidBetter(finding, isShifted, planning.controller.utility)) {
            found.push_back(finding);
        }
        if (finding.code == problem::notAddressed) {
            found.back().refusedBy = RefusedBy::plan; // no line could be right
        }
        if (finding.code == problem::brokenBlock) {
            found.back().severity = Severity::error; // what is lost may not be listed
        }
    }
    refusals_.sort(std::move(found), planning);
    std::vector<Finding> told = std::exchange(planning.diagnostics, {});
    if (planning.configuration) {
        makeSteps(record, request_.strategy, planning);
    }
    // What cannot be made is not made by being accepted.
    const bool isUnmade = hasErrors(planning.diagnostics) && planning.steps.empty();
    for (Finding& finding : std::exchange(planning.diagnostics, {})) {
        const bool isTold = std::any_of(told.begin(), told.end(), [&finding](const Finding& each) {
            return each.code == finding.code ||
                   (each.code == "ZX711" && finding.code == problem::namedOtherwise);
        });
        if (isTold) {
            continue;
        }
        finding.refusedBy =
            isUnmade && finding.severity == Severity::error ? RefusedBy::plan : finding.refusedBy;
        refusals_.sort({std::move(finding)}, planning);
    }
    planning.diagnostics.insert(planning.diagnostics.begin(), std::make_move_iterator(told.begin()),
                                std::make_move_iterator(told.end()));
    if (std::optional<Finding> offline = offlineArrayFault(planning)) {
        refusals_.sort({*std::move(offline)}, planning);
    }
    if (hasErrors(planning.diagnostics)) {
        refusePlanning(planning);
        return;
    }
    for (Finding& finding : planWarnings(planning)) {
        planning.warnings.push_back(std::move(finding));
    }
}

} // namespace zolex::companion
