#include "companion/planning/Diff.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/planning/HurtArrays.h"
#include "companion/planning/IdleVolumes.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/Refusals.h"
#include "companion/planning/Strategy.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace zolex::companion {

namespace {

using Result = ControllerDiff::Result;

Result resultOf(Sameness sameness) {
    switch (sameness) {
    case Sameness::same:
        return Result::same;
    case Sameness::equivalent:
        return Result::equivalent;
    case Sameness::different:
        break;
    }
    return Result::different;
}

/// What is worse stands behind what is better.
std::size_t rankOf(Result result) {
    constexpr std::array<Result, 5> ranks = {Result::skipped, Result::same, Result::equivalent,
                                             Result::different, Result::unknown};
    return static_cast<std::size_t>(std::find(ranks.begin(), ranks.end(), result) - ranks.begin());
}

struct AttributeWords {
    std::string_view attribute;
    std::string_view words;
};

// Columns: attribute, for people. Order: as told.
constexpr std::array<AttributeWords, 8> rebuiltAttributes = {{
    {"raid_type", "RAID level"},
    {"capacity_bytes", "size"},
    {"strip_size_bytes", "strip size"},
    {"write_cache_policy", "write cache"},
    {"read_cache_policy", "read-ahead"},
    {"hotspare_type", "kind of hot spare"},
    {"drives", "other drives"},
    {"moved", "the move to the listed drives"},
}};

/// Whether a line sets the attribute, and nothing has to be made anew for it.
bool isSetOnly(std::string_view attribute, const std::string& utility) {
    return abilitiesOf(utility).setsCaches &&
           (attribute == "write_cache_policy" || attribute == "read_cache_policy");
}

/// Why adding alone does not mend it.
void tellReasons(ControllerDiff& diff, const std::string& utility) {
    const std::vector<Difference>& differences = diff.comparison.differences;
    for (const AttributeWords& row : rebuiltAttributes) {
        if (!isSetOnly(row.attribute, utility) &&
            std::any_of(differences.begin(), differences.end(),
                        [&](const Difference& each) { return each.attribute == row.attribute; })) {
            diff.takesRebuild.emplace_back(row.words);
        }
    }
    for (const Difference& difference : differences) {
        if (difference.attribute == "surplus") {
            diff.toRemove.push_back(difference.logicalDrive.empty()
                                        ? "hot spare " + difference.location
                                        : "LD " + difference.logicalDrive);
        }
    }
    if (diff.takesRebuild.empty() && diff.toRemove.empty()) {
        diff.takesRebuild.emplace_back("what is missing, as its drives are in use");
    }
}

void tellRebuild(ControllerDiff& diff, const std::string& utility, bool addingIsEnough) {
    if (diff.result != Result::different || diff.isRefused) {
        return;
    }
    diff.addingIsEnough = addingIsEnough;
    if (!addingIsEnough) {
        tellReasons(diff, utility);
    }
}

/// Whether a fault leaves it open what is wanted. That a utility would refuse a command does not.
bool leavesOpen(const Finding& finding) {
    return finding.severity == Severity::error && finding.refusedBy != RefusedBy::utility;
}

std::string firstError(const std::vector<Finding>& findings) {
    const auto error = std::find_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::error;
    });
    return error == findings.end() ? std::string() : error->summary;
}

ControllerDiff headOf(const ControllerPlanning& planning) {
    ControllerDiff diff;
    diff.number = planning.controller.number;
    diff.model = planning.controller.model;
    diff.policy = planning.policy;
    diff.policyLine = planning.policyLine;
    diff.wanted = planning.after;
    return diff;
}

/// An array that serves nobody is not what is wanted, and adding or making anew mends none. Whether
/// there is one.
bool takeAsIdle(ControllerDiff& diff, const std::string& utility, const Facts& facts,
                bool isWantedKnown) {
    IdleVolumes idle =
        isWantedKnown ? idleVolumes(utility, facts, diff.comparison) : idleVolumes(utility, facts);
    if (idle.differences.empty()) {
        return false;
    }
    diff.result = Result::different;
    diff.isRefused = diff.isRefused || idle.isOffline;
    diff.comparison.result = Sameness::different;
    std::move(idle.differences.begin(), idle.differences.end(),
              std::back_inserter(diff.comparison.differences));
    if (hasErrors(diff.diagnostics)) {
        return true;
    }
    if (std::optional<Finding> fault = offlineArrayFault(facts)) {
        diff.diagnostics.push_back(*std::move(fault));
    }
    return true;
}

ControllerDiff diffOfPlanned(const ControllerPlanning& planning) {
    ControllerDiff diff = headOf(planning);
    diff.captured = planning.before;
    diff.comparison = planning.comparison;
    if (planning.disposition == Disposition::refused) {
        diff.diagnostics = planning.diagnostics;
    }
    if (planning.disposition != Disposition::skipped &&
        takeAsIdle(diff, planning.controller.utility, planning.controller.facts,
                   !diff.comparison.groups.empty() ||
                       planning.disposition != Disposition::refused)) {
        return diff;
    }
    switch (planning.disposition) {
    case Disposition::skipped:
        diff.result = Result::skipped;
        diff.because = planning.because;
        return diff;
    case Disposition::refused:
        diff.isRefused = true;
        if (planning.comparison.differences.empty() ||
            std::any_of(diff.diagnostics.begin(), diff.diagnostics.end(), leavesOpen)) {
            diff.result = Result::unknown;
            diff.because =
                planning.because.empty() ? firstError(planning.diagnostics) : planning.because;
            return diff;
        }
        break;
    case Disposition::planned:
    case Disposition::already:
        break;
    }
    diff.result = resultOf(planning.comparison.result);
    tellRebuild(diff, planning.controller.utility, planning.strategy == Strategy::add);
    return diff;
}

/// Whether what is wanted is missing only, and its drives have no other work.
bool canBeAdded(const ControllerSnapshot& details, const ControllerDiff& diff) {
    const bool isMissingOnly =
        std::all_of(diff.comparison.differences.begin(), diff.comparison.differences.end(),
                    [&](const Difference& difference) {
                        return difference.attribute == "missing" ||
                               isSetOnly(difference.attribute, details.utility);
                    });
    const auto isFree = [&](const std::string& location) {
        const DriveFacts* const drive = details.facts.drive(location);
        return drive != nullptr && drive->state == DriveState::free;
    };
    for (std::size_t i = 0; i < diff.wanted.groups.size(); ++i) {
        const std::vector<std::string> drives = diff.wanted.groups[i].drives();
        if (!diff.comparison.groups[i].captured &&
            !std::all_of(drives.begin(), drives.end(), isFree)) {
            return false;
        }
    }
    for (std::size_t i = 0; i < diff.wanted.spares.size(); ++i) {
        if (diff.comparison.spares[i].empty() && !isFree(diff.wanted.spares[i].location)) {
            return false;
        }
    }
    return isMissingOnly;
}

ControllerDiff diffOfEarlier(const Snapshot& snapshot, const ControllerPlanning& planning) {
    ControllerDiff diff = headOf(planning);
    if (planning.disposition == Disposition::skipped) {
        diff.result = Result::skipped;
        diff.because = planning.because;
        return diff;
    }
    if (planning.disposition == Disposition::refused) {
        diff.diagnostics = planning.diagnostics;
        diff.because = "the plan has no layout for it";
        return diff;
    }
    const auto details =
        std::find_if(snapshot.details.begin(), snapshot.details.end(),
                     [&](const ControllerSnapshot& each) { return each.number == diff.number; });
    if (details == snapshot.details.end() || details->failed) {
        diff.because = "it could not be captured";
        if (details != snapshot.details.end()) {
            diff.diagnostics = details->findings;
        }
        return diff;
    }
    compareStanding(diff, *details, layoutOf(planning));
    return diff;
}

} // namespace

std::string_view diffResultWord(ControllerDiff::Result result) {
    switch (result) {
    case Result::same:
        return "same";
    case Result::equivalent:
        return "equivalent";
    case Result::different:
        return "different";
    case Result::skipped:
        return "skipped";
    case Result::unknown:
        break;
    }
    return "unknown";
}

Result worstOf(const std::vector<ControllerDiff>& controllers) {
    const auto worst = std::max_element(controllers.begin(), controllers.end(),
                                        [](const ControllerDiff& a, const ControllerDiff& b) {
                                            return rankOf(a.result) < rankOf(b.result);
                                        });
    return worst == controllers.end() ? Result::unknown : worst->result;
}

void compareStanding(ControllerDiff& diff, const ControllerSnapshot& details, Layout wanted) {
    diff.captured = capturedLayout(details.facts);
    diff.wanted = std::move(wanted);
    diff.comparison = compareLayouts(details.facts, diff.captured, diff.wanted, {details.utility});
    diff.result = resultOf(diff.comparison.result);
    if (takeAsIdle(diff, details.utility, details.facts, false)) {
        return;
    }
    tellRebuild(diff, details.utility,
                diff.result == Result::different && canBeAdded(details, diff));
}

std::string whatIsOther(const Fingerprint& found, const Fingerprint& earlier,
                        const std::string& what) {
    const auto told = [](const std::string& text, const char* none) {
        return text.empty() ? std::string(none) : text;
    };
    if (found.machineType != earlier.machineType) {
        return "it is of type " + found.machineType + ", " + what + " is of one of type " +
               earlier.machineType;
    }
    if (found.serialNumber != earlier.serialNumber) {
        return "its serial number is " + told(found.serialNumber, "not told") + ", " + what +
               " is of " + told(earlier.serialNumber, "one that is not told");
    }
    if (found.controllers.size() != earlier.controllers.size()) {
        return "it has " + std::to_string(found.controllers.size()) + " controllers, " + what +
               " is of " + std::to_string(earlier.controllers.size());
    }
    for (std::size_t i = 0; i < found.controllers.size(); ++i) {
        if (found.controllers[i] != earlier.controllers[i]) {
            return "its controller " + std::to_string(found.controllers[i].number) +
                   " is another one than that of " + what;
        }
    }
    return "";
}

Fingerprint fingerprintFor(const Snapshot& snapshot, const Fingerprint& earlier) {
    Snapshot part;
    part.machine = snapshot.machine;
    const auto isOfIt = [&](const ControllerSnapshot& details) {
        return std::any_of(
            earlier.controllers.begin(), earlier.controllers.end(),
            [&](const auto& controller) { return controller.number == details.number; });
    };
    std::copy_if(snapshot.details.begin(), snapshot.details.end(), std::back_inserter(part.details),
                 isOfIt);
    return fingerprintOf(part);
}

std::string_view MachineDiff::wisher() const {
    return isByPlan ? "plan" : isByCertificate ? "certificate" : "policy";
}

MachineDiff diffOf(const MachinePlan& plan) {
    MachineDiff diff;
    diff.wantedBy = plan.policiesFile;
    diff.fingerprint = plan.fingerprint;
    diff.diagnostics = plan.diagnostics;
    std::copy_if(plan.policiesFindings.begin(), plan.policiesFindings.end(),
                 std::back_inserter(diff.diagnostics), leavesOpen);
    for (const ControllerPlanning& planning : plan.controllers) {
        diff.controllers.push_back(diffOfPlanned(planning));
    }
    diff.result = hasErrors(plan.diagnostics) ? Result::unknown : worstOf(diff.controllers);
    return diff;
}

MachineDiff diffOf(const Snapshot& snapshot, const MachinePlan& earlier,
                   const std::vector<std::int32_t>& controllers) {
    const auto isAskedFor = [&](std::int32_t number) {
        return controllers.empty() ||
               std::find(controllers.begin(), controllers.end(), number) != controllers.end();
    };
    Fingerprint planned = earlier.fingerprint;
    if (!controllers.empty()) {
        std::erase_if(planned.controllers,
                      [&](const auto& controller) { return !isAskedFor(controller.number); });
        planned.identity = identityHash(planned);
    }
    MachineDiff diff;
    diff.wantedBy = earlier.id;
    diff.isByPlan = true;
    diff.fingerprint = fingerprintFor(snapshot, planned);
    const bool isOther = diff.fingerprint.identity != planned.identity;
    if (isOther) {
        diff.diagnostics.push_back(problemFinding(
            problem::otherMachine, "the plan " + earlier.id + " is of another machine",
            whatIsOther(diff.fingerprint, planned, "the plan")));
        if (!earlier.policiesFile.empty()) {
            namePolicies(diff.diagnostics, earlier.policiesFile);
        }
    }
    for (const ControllerPlanning& planning : earlier.controllers) {
        if (!isAskedFor(planning.controller.number)) {
            continue;
        }
        ControllerDiff& controller = diff.controllers.emplace_back();
        controller = isOther ? headOf(planning) : diffOfEarlier(snapshot, planning);
        if (isOther) {
            controller.because = "the plan is of another machine";
        }
    }
    diff.result = worstOf(diff.controllers);
    return diff;
}

} // namespace zolex::companion
