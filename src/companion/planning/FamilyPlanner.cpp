#include "companion/planning/FamilyPlanner.h"

#include "companion/families/Family.h"
#include "companion/families/FamilyCodes.h"
#include "companion/lint/Entries.h"
#include "companion/planning/Beginning.h"
#include "companion/planning/FamilyLayout.h"
#include "companion/planning/FamilySteps.h"
#include "companion/planning/HealthyView.h"
#include "companion/planning/HurtArrays.h"
#include "companion/planning/Matching.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/UsedDrives.h"
#include "companion/planning/Warnings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

/// Whether what is lost may not be listed.
bool hidesLosses(const Finding& finding) {
    return finding.code == problem::brokenBlock || finding.code == family_code::notWhole ||
           finding.code == family_code::noDetails;
}

bool makesVolume(const PlanStep& step) {
    return step.action == "create-array" || step.action == "create-logical-drive";
}

/// Its place among the controllers of its family, from 1.
std::int32_t placeInFamily(const Snapshot& snapshot, const ControllerSnapshot& detail) {
    return 1 + static_cast<std::int32_t>(std::count_if(
                   snapshot.families.begin(), snapshot.families.end(),
                   [&detail](const FamilyPlace& other) {
                       return other.utility == detail.utility && other.number < detail.number;
                   }));
}

} // namespace

/// A plan that may be taken, or not.
struct FamilyPlanner::Attempt {
    ControllerPlanning planning;
    std::vector<Finding> findings;

    [[nodiscard]] bool stands() const {
        return !hasErrors(findings) && planning.comparison.result != Sameness::different;
    }
};

FamilyPlanner::FamilyPlanner(const Snapshot& snapshot, const PlanRequest& request,
                             const PlanPolicies* policies, Refusals& refusals)
    : snapshot_(snapshot), request_(request), policies_(policies), refusals_(refusals) {
    if (policies != nullptr && !policies->isDefault) {
        document_ = scanPolicies(request.policiesFile, request.policiesText);
        views_ = viewPolicies(document_);
        kinds_ = readKindFile(request.policiesText);
    }
}

namespace {

/// Whether there are no arrays, and no drive of which one could be made.
bool hasNothingToUse(const Family& family, const Facts& facts) {
    return facts.logicalDrives.empty() &&
           std::none_of(facts.drives.begin(), facts.drives.end(), [&](const DriveFacts& drive) {
               return family.whyNotUsable(drive).empty();
           });
}

/// Why, of the first drive; and how many there are.
std::string whyNotUsed(const Family& family, const ControllerSnapshot& detail) {
    const DriveFacts& first = detail.facts.drives.front();
    const std::size_t others = detail.facts.drives.size() - 1;
    const std::string toUse =
        first.state == DriveState::jbod
            ? typedLine(family, detail, family.makeGood(detail.adapter, first))
            : std::string();
    return first.location + ": " + family.whyNotUsable(first) +
           (others == 0 ? "" : ", and " + std::to_string(others) + " more") +
           (toUse.empty() ? "" : "; to make it good, which loses all that is on it: " + toUse);
}

} // namespace

ControllerPlanning FamilyPlanner::plan(const ControllerSnapshot& detail) {
    ControllerPlanning planning;
    planning.controller = withoutListings(detail);
    planning.oldDifferences = {"zolex does not know this controller, and leaves it as it is"};
    const Family* const family = findFamily(detail.utility);
    const bool isCaptured = !detail.failed && family != nullptr;
    if (!beginPlanning(detail, isCaptured, policies_ != nullptr, refusals_, planning)) {
        return planning;
    }
    ControllerMatch wanted;
    wanted.family = family->name();
    wanted.pciIds = detail.pciIds;
    wanted.needsName = family->isOptIn();
    wanted.values.machineType = snapshot_.machine.machineType;
    wanted.values.serialNumber = snapshot_.machine.serialNumber;
    wanted.values.controllerType = CString(detail.model);
    wanted.values.controllerNumber = detail.number;
    wanted.values.scanOrder = placeInFamily(snapshot_, detail);
    wanted.values.numberOfDrives = static_cast<std::int32_t>(detail.drives.size());
    MatchedPolicy match = matchPolicies(*policies_, wanted);
    planning.considered = std::move(match.considered);
    if (match.unknown) {
        finish(planning, {std::move(*match.unknown)});
        return planning;
    }
    if (detail.drives.empty() || !match.index) {
        planning.disposition = Disposition::skipped;
        planning.because = detail.drives.empty() ? "it has no drives"
                           : family->isOptIn()   ? "no policy names it: AppliesTo.1 = t:" +
                                                     std::string(family->name())
                                               : whyUnmatched(planning.considered);
        return planning;
    }
    planning.policy = policies_->views[*match.index].name();
    planning.policyLine = policies_->fileLine(policies_->views[*match.index].policy->header.line);
    planning.matchedBy = std::move(match.matchedBy);
    const bool isTrusted = std::none_of(detail.findings.begin(), detail.findings.end(), isMisread);
    const auto take = [&](Attempt& found) {
        std::swap(planning.arrays, found.planning.arrays);
        std::swap(planning.volumes, found.planning.volumes);
        std::swap(planning.spares, found.planning.spares);
        std::swap(planning.bindings, found.planning.bindings);
        planning.rebuildRate = found.planning.rebuildRate;
        planning.after = std::move(found.planning.after);
        planning.comparison = std::move(found.planning.comparison);
    };
    const bool mayStand = isTrusted && request_.strategy != StrategyWish::rebuild;
    const bool hasHurt =
        std::any_of(detail.facts.drives.begin(), detail.facts.drives.end(), isHurt);
    std::string whyNotBeside;
    for (const bool failedMembersStay : {true, false}) {
        if (failedMembersStay && (!hasHurt || !mayStand)) {
            continue;
        }
        Attempt found = attempt(detail, *match.index, failedMembersStay);
        if (mayStand && found.stands() && hasNothingToUse(*family, detail.facts)) {
            planning.disposition = Disposition::skipped;
            planning.because = "none of its drives can be used: " + whyNotUsed(*family, detail);
            return planning;
        }
        // One that the policy gives up may go: then its array is no wanted one's.
        std::optional<Finding> offline =
            hasErrors(found.findings)
                ? std::nullopt
                : offlineArrayFault(detail.utility, detail.facts, found.planning.comparison);
        if (mayStand && offline &&
            (found.stands() || (failedMembersStay && whyHurtArraysGo(planning, found).empty()))) {
            take(found);
            found.findings.push_back(*std::move(offline));
            finish(planning, std::move(found.findings));
            return planning;
        }
        if (mayStand && found.stands()) {
            take(found);
            planning.disposition = Disposition::already;
            planning.because = whyItStands(planning.comparison);
            for (Finding& finding : found.findings) {
                planning.warnings.push_back(std::move(finding));
            }
            for (Finding finding : detail.findings) {
                finding.severity = std::min(finding.severity, Severity::warning);
                planning.warnings.push_back(std::move(finding));
            }
            tellIdle(planning);
            for (Finding& finding : planWarnings(planning)) {
                planning.warnings.push_back(std::move(finding));
            }
            return planning;
        }
        if (failedMembersStay) {
            whyNotBeside = hasErrors(found.findings) ? "" : whyHurtArraysGo(planning, found);
            if (hasErrors(found.findings) || !whyNotBeside.empty()) {
                continue;
            }
        }
        for (Finding& finding : found.findings) {
            if (finding.code == "ZX702" && !whyNotBeside.empty()) {
                finding.help.push_back("the array could stay beside other changes, but " +
                                       whyNotBeside);
            }
        }
        take(found);
        if (hasErrors(found.findings)) {
            // What is wanted is not known: it may be the array that is offline.
            if (std::optional<Finding> any = offlineArrayFault(detail.facts)) {
                found.findings.insert(found.findings.begin(), *std::move(any));
            }
        }
        finish(planning, std::move(found.findings));
        if (planning.disposition == Disposition::planned) {
            std::vector<Finding> kept = hurtArrayWarnings(planning);
            std::move(kept.begin(), kept.end(), std::back_inserter(planning.warnings));
        }
        return planning;
    }
    return planning;
}

std::string FamilyPlanner::whyHurtArraysGo(ControllerPlanning planning,
                                           const Attempt& found) const {
    planning.arrays = found.planning.arrays;
    planning.volumes = found.planning.volumes;
    planning.spares = found.planning.spares;
    planning.after = found.planning.after;
    planning.comparison = found.planning.comparison;
    makeFamilySteps(*findFamily(planning.controller.utility), request_.strategy, planning);
    std::string why =
        whyHurtArraysChange(planning, chooseStrategy(abilitiesOf(planning.controller.utility),
                                                     request_.strategy, planning));
    return why.empty() && hasErrors(planning.diagnostics) ? planning.diagnostics.front().summary
                                                          : why;
}

FamilyPlanner::Attempt FamilyPlanner::attempt(const ControllerSnapshot& detail, std::size_t policy,
                                              bool failedMembersStay) const {
    Attempt attempt;
    std::vector<BindingFault> faults;
    std::optional<KindSection> kinds;
    const bool isDefault = policies_->isDefault;
    if (!isDefault && policy < kinds_.sections.size() && kinds_.sections[policy].hasKindEntries()) {
        kinds = readKindSection(kinds_.sections[policy], faults);
    }
    const FamilyCase planned{detail,
                             *findFamily(detail.utility),
                             isDefault ? policies_->views[policy] : views_.at(policy),
                             kinds ? &*kinds : nullptr,
                             isDefault ? std::string() : request_.policiesFile,
                             failedMembersStay};
    attempt.findings = fillFamilyLayout(planned, attempt.planning);
    if (hasErrors(attempt.findings)) {
        attempt.planning.arrays.clear();
        attempt.planning.volumes.clear();
        attempt.planning.spares.clear();
        return attempt;
    }
    attempt.planning.controller.utility = detail.utility;
    attempt.planning.after = layoutOf(attempt.planning);
    attempt.planning.comparison =
        compareLayouts(detail.facts, capturedLayout(detail.facts), attempt.planning.after,
                       {.utility = detail.utility});
    return attempt;
}

void FamilyPlanner::finish(ControllerPlanning& planning, std::vector<Finding> found) {
    planning.disposition = Disposition::planned;
    const bool isPlanned = !hasErrors(found);
    for (Finding& finding : found) {
        if (finding.severity == Severity::error) {
            finding.refusedBy = RefusedBy::plan; // nothing was made that could be accepted
        }
    }
    refuseMisread(planning.controller.findings);
    std::optional<Finding> keptCache;
    for (const Finding& finding : planning.controller.findings) {
        if (finding.code == family_code::cachePreserved) {
            keptCache = finding;
            continue;
        }
        found.push_back(finding);
        if (hidesLosses(finding)) {
            found.back().severity = Severity::error; // what is lost may not be listed
        }
    }
    refusals_.sort(std::move(found), planning);
    if (isPlanned) {
        const std::size_t told = planning.diagnostics.size();
        makeFamilySteps(*findFamily(planning.controller.utility), request_.strategy, planning);
        std::vector<Finding> ofSteps(
            std::make_move_iterator(planning.diagnostics.begin() + static_cast<long>(told)),
            std::make_move_iterator(planning.diagnostics.end()));
        planning.diagnostics.resize(told);
        refusals_.sort(std::move(ofSteps), planning);
    }
    if (keptCache) {
        if (std::any_of(planning.steps.begin(), planning.steps.end(), makesVolume)) {
            keptCache->severity = Severity::error;
            keptCache->refusedBy = RefusedBy::plan; // apply refuses it, too
        }
        refusals_.sort({std::move(*keptCache)}, planning);
    }
    if (isPlanned && !hasErrors(planning.diagnostics)) {
        if (std::optional<Finding> offline = offlineArrayFault(planning)) {
            refusals_.sort({*std::move(offline)}, planning);
        }
    }
    if (hasErrors(planning.diagnostics)) {
        refusePlanning(planning);
        return;
    }
    tellIdle(planning);
    for (Finding& finding : planWarnings(planning)) {
        planning.warnings.push_back(std::move(finding));
    }
}

void FamilyPlanner::tellIdle(ControllerPlanning& planning) const {
    constexpr std::size_t mostNamed = 16;
    const Family& family = *findFamily(planning.controller.utility);
    const std::set<std::string> used =
        usedDrives(planning, request_.strategy != StrategyWish::rebuild);
    std::vector<std::string> idle;
    for (const MachineDrive& drive : planning.controller.drives) {
        if (!used.contains(drive.facts.location) && family.whyNotUsable(drive.facts).empty()) {
            idle.push_back(drive.facts.location);
        }
    }
    if (idle.empty() || planning.after.groups.empty()) {
        return;
    }
    Finding finding;
    finding.code = "ZX712";
    finding.severity = Severity::note;
    finding.summary =
        countOf(idle.size(), "drive") + (idle.size() == 1 ? " gets" : " get") + " no job: ";
    for (std::size_t i = 0; i < std::min(idle.size(), mostNamed); ++i) {
        finding.summary += (i == 0 ? "" : ", ") + idle[i];
    }
    if (idle.size() > mostNamed) {
        finding.summary += " and " + std::to_string(idle.size() - mostNamed) + " more";
    }
    planning.warnings.push_back(std::move(finding));
}

} // namespace zolex::companion
