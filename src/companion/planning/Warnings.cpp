#include "companion/planning/Warnings.h"

#include "companion/families/Family.h"
#include "companion/planning/PlanFaults.h"
#include "companion/text/Sizes.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace zolex::companion {

namespace {

/// What a rule of the linter says, where the plan tells it.
Finding warningOfRule(const char* rule, std::string summary, std::vector<std::string> help) {
    Finding finding;
    finding.code = rule;
    finding.severity = Severity::warning;
    finding.summary = std::move(summary);
    finding.help = std::move(help);
    return finding;
}

bool isRedundant(const LayoutVolume& volume) {
    return !volume.raidType.empty() && volume.raidType != "RAID0" && volume.raidType != "None";
}

bool isRedundant(const Layout& layout) {
    return std::any_of(layout.groups.begin(), layout.groups.end(), [](const LayoutGroup& group) {
        return std::any_of(group.volumes.begin(), group.volumes.end(),
                           [](const LayoutVolume& volume) { return isRedundant(volume); });
    });
}

/// The levels of a layout, each once: "RAID1, RAID5".
std::string levelsOf(const Layout& layout) {
    std::vector<std::string> levels;
    for (const LayoutGroup& group : layout.groups) {
        for (const LayoutVolume& volume : group.volumes) {
            if (std::find(levels.begin(), levels.end(), volume.raidType) == levels.end()) {
                levels.push_back(volume.raidType);
            }
        }
    }
    std::string text;
    for (const std::string& level : levels) {
        text += (text.empty() ? "" : ", ") + (level == "None" ? std::string("VOLUME") : level);
    }
    return text;
}

void tellSpares(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    const bool anyRedundant = isRedundant(planning.after);
    for (const PlannedSpare& spare : planning.spares) {
        const auto isOfSpare = [&spare](const Finding& finding) {
            const bool isRule = finding.code == "ZX504" || finding.code == "ZX706";
            return isRule &&
                   (finding.code == "ZX504" || finding.summary.compare(0, spare.location.size() + 1,
                                                                       spare.location + " ") == 0);
        };
        const bool isTold =
            std::any_of(planning.warnings.begin(), planning.warnings.end(), isOfSpare) ||
            std::any_of(planning.diagnostics.begin(), planning.diagnostics.end(), isOfSpare);
        if (spare.covers.empty() && !isTold) {
            findings.push_back(planWarning(
                problem::spareIdle,
                "the hot spare " + spare.location + " covers no array: " +
                    (anyRedundant ? "it is too small" : "none has redundancy"),
                {"use the drive in an array, or have no spare: Array_Defaults = 0%:0"}));
        }
    }
}

void tellRedundancy(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    if (isRedundant(planning.before) && !isRedundant(planning.after) &&
        !planning.after.groups.empty()) {
        findings.push_back(planWarning(problem::redundancyLost,
                                       "redundancy is lost: " + levelsOf(planning.before) +
                                           " stands, and " + levelsOf(planning.after) +
                                           " is planned",
                                       {"take a level such as 1, 5 or 10 where the data matters"}));
    }
}

void tellForeign(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    std::vector<std::string> drives;
    for (const Loss& loss : planning.losses) {
        if (loss.kind == "foreign") {
            drives.insert(drives.end(), loss.drives.begin(), loss.drives.end());
            if (loss.drives.empty()) {
                drives.push_back(loss.id);
            }
        }
    }
    if (drives.empty()) {
        return;
    }
    std::string text;
    for (const std::string& drive : drives) {
        text += (text.empty() ? "" : ", ") + drive;
    }
    std::string summary = "the foreign configuration on " + text + " is cleared";
    for (const std::string& line : planning.controller.facts.foreignConfigurations) {
        summary +=
            (&line == &planning.controller.facts.foreignConfigurations.front() ? ": " : "; ") +
            line;
    }
    findings.push_back(
        warningOfRule("ZX710", std::move(summary),
                      {"what another server wrote there is lost; take the drives out to keep it"}));
}

bool isNumber(const PlanReason& reason) {
    return reason.code == "listed" && text::wholeNumber(reason.as);
}

/// The first entry of a policy that names drives by their plain numbers, "Array.A"; empty: none
/// does.
std::string entryOfNumbers(const ControllerPlanning& planning) {
    for (const PlannedArray& array : planning.arrays) {
        for (const PlannedDrive& drive : array.drives) {
            if (isNumber(drive.reason)) {
                return drive.reason.keyword;
            }
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        if (isNumber(spare.reason)) {
            return spare.reason.keyword;
        }
    }
    return {};
}

/// Whether the policy is the controller's with this number of drives alone.
bool asksForCount(const ControllerPlanning& planning) {
    for (const PolicyMatch& policy : planning.considered) {
        for (const EntryMatch& entry : policy.entries) {
            const bool isIt = policy.matched.value_or(false) && entry.matched;
            if (isIt && std::any_of(entry.specifiers.begin(), entry.specifiers.end(),
                                    [](const SpecifierMatch& each) {
                                        return each.specifier.starts_with("d:");
                                    })) {
                return true;
            }
        }
    }
    return false;
}

/// ", or name the drives by their slots: Drives.A = slots 252:0,252:1", of the first array whose
/// drives are counted; empty where slots do not name them.
std::string slotsHelp(const ControllerPlanning& planning) {
    constexpr std::size_t mostNamed = 8;
    std::string help = ", or name the drives by their slots";
    const auto isCounted = [](const PlannedDrive& drive) { return isNumber(drive.reason); };
    const auto found = std::find_if(
        planning.arrays.begin(), planning.arrays.end(), [&](const PlannedArray& array) {
            return std::any_of(array.drives.begin(), array.drives.end(), isCounted);
        });
    if (found == planning.arrays.end() || found->drives.size() > mostNamed) {
        return help;
    }
    std::string slots;
    for (const PlannedDrive& drive : found->drives) {
        if (drive.location.find(':') == std::string::npos) {
            return {};
        }
        slots += (slots.empty() ? "" : ",") + drive.location;
    }
    return help + ": Drives." + found->id + " = slots " + slots;
}

/// Where logical drives are deleted, the numbers had better name the drives that are meant.
void tellNumbers(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    const auto deleted =
        std::count_if(planning.losses.begin(), planning.losses.end(),
                      [](const Loss& loss) { return loss.kind == "logical_drive"; });
    const std::string entry = entryOfNumbers(planning);
    if (deleted == 0 || entry.empty() || findFamily(planning.controller.utility) == nullptr ||
        asksForCount(planning)) {
        return;
    }
    findings.push_back(warningOfRule(
        "ZX309",
        entry + " names drives by number, and " +
            (planning.matchedBy.empty() ? "the policy" : planning.matchedBy) +
            " gives no d:, while " +
            countText(static_cast<std::size_t>(deleted), "logical drive is", "logical drives are") +
            " deleted: a drive that was pulled or added shifts the numbers behind it",
        {"see that the numbers are those that are meant: zolexctl show",
         "add d:" + std::to_string(planning.controller.drives.size()) + slotsHelp(planning)}));
}

/// Whether a line of health tells of a drive that is to be replaced.
bool lacksDrive(const std::string& line) {
    const std::size_t drives = line.find(": ");
    return drives != std::string::npos && (line.find(" failed", drives) != std::string::npos ||
                                           line.find(" missing", drives) != std::string::npos);
}

void tellHealth(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    if (planning.disposition != Disposition::already) {
        return;
    }
    for (const std::string& line : planning.comparison.health) {
        const bool isRebuilding = line.find("rebuilding") != std::string::npos;
        const bool isStopped = line.find(" is stopped") != std::string::npos;
        findings.push_back(planWarning(
            problem::degraded, line,
            {isStopped          ? "start it: mdadm --assemble --scan"
             : isRebuilding     ? "wait until it is rebuilt; the layout is as the policy says"
             : lacksDrive(line) ? "replace the drive; the layout is as the policy says"
                                : "look at the controller: zolexctl show; the layout is as the "
                                  "policy says"}));
    }
}

/// What goes and comes again on other drives, as a spare has taken a place.
void tellMoved(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    for (const Difference& difference : planning.comparison.differences) {
        const auto goes = [&difference](const Loss& loss) {
            return loss.kind == "logical_drive" && loss.id == difference.logicalDrive;
        };
        const bool isMoved = difference.attribute == "moved" && !difference.logicalDrive.empty() &&
                             std::any_of(planning.losses.begin(), planning.losses.end(), goes);
        for (const LayoutGroup& group : planning.before.groups) {
            const bool isIt =
                isMoved && std::any_of(group.volumes.begin(), group.volumes.end(),
                                       [&difference](const LayoutVolume& volume) {
                                           return volume.id == difference.logicalDrive &&
                                                  volume.health == Health::ok;
                                       });
            if (isIt) {
                findings.push_back(
                    planWarning(problem::wellElsewhere,
                                "LD " + difference.logicalDrive + " is well on " +
                                    locationsLine(group.drives()) +
                                    ", and goes only because the policy lists other drives",
                                {"if a hot spare has taken a place, name the drives on which it "
                                 "is: then it stays"}));
            }
        }
    }
}

/// Whether a drive is where it is planned to be, and is not written anew.
bool staysThere(const ControllerPlanning& planning, const std::string& location, bool isSpare) {
    const auto isLost = [&planning](const char* kind, const std::string& id) {
        return std::any_of(planning.losses.begin(), planning.losses.end(),
                           [&](const Loss& loss) { return loss.kind == kind && loss.id == id; });
    };
    if (isSpare) {
        const DriveFacts* const drive = planning.controller.facts.drive(location);
        return drive != nullptr && drive->hotspare != HotspareKind::none &&
               !isLost("hotspare", location);
    }
    const std::vector<LogicalDriveFacts>& all = planning.controller.facts.logicalDrives;
    return std::any_of(all.begin(), all.end(), [&](const LogicalDriveFacts& each) {
        return each.isOn(location) && !isLost("logical_drive", each.id);
    });
}

/// A drive that is about to fail. Of the seven the rules of the linter tell it.
void tellErrorsOf(const ControllerPlanning& planning, const std::string& location,
                  const std::string& where, bool isSpare, std::vector<Finding>& findings) {
    const DriveFacts* const drive = planning.controller.facts.drive(location);
    const std::uint64_t media = drive == nullptr ? 0 : drive->mediaErrorCount.value_or(0);
    const std::uint64_t predicted = drive == nullptr ? 0 : drive->predictedFailureCount.value_or(0);
    if (media == 0 && predicted == 0) {
        return;
    }
    std::string what = media == 0 ? "" : countText(media, "media error", "media errors");
    if (predicted > 0) {
        what += (what.empty() ? "" : ", ") +
                countText(predicted, "predicted failure", "predicted failures");
    }
    const bool stays = staysThere(planning, location, isSpare);
    findings.push_back(warningOfRule(
        "ZX703", location + " has " + what + (stays ? ", and is in " : ", and goes into ") + where,
        {stays ? "replace the drive while the others are well"
               : "replace " + location + " before the array is made"}));
}

void tellErrors(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    for (const PlannedArray& array : planning.arrays) {
        for (const PlannedDrive& drive : array.drives) {
            tellErrorsOf(planning, drive.location, "array " + array.id, false, findings);
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        tellErrorsOf(planning, spare.location, "the hot spares", true, findings);
    }
}

/// What is left unused of the larger drives of an array.
void tellSizes(const ControllerPlanning& planning, std::vector<Finding>& findings) {
    constexpr std::uint64_t worthMentioning = 50; // one part in so many
    for (const PlannedArray& array : planning.arrays) {
        std::vector<const DriveFacts*> drives;
        for (const PlannedDrive& planned : array.drives) {
            const DriveFacts* const drive = planning.controller.facts.drive(planned.location);
            if (drive != nullptr && drive->capacityBytes.value_or(0) > 0) {
                drives.push_back(drive);
            }
        }
        const auto [small, large] = std::minmax_element(
            drives.begin(), drives.end(), [](const DriveFacts* a, const DriveFacts* b) {
                return *a->capacityBytes < *b->capacityBytes;
            });
        if (drives.empty() || *(*large)->capacityBytes - *(*small)->capacityBytes <=
                                  *(*small)->capacityBytes / worthMentioning) {
            continue;
        }
        std::uint64_t unused = 0;
        for (const DriveFacts* const drive : drives) {
            unused += *drive->capacityBytes - *(*small)->capacityBytes;
        }
        findings.push_back(warningOfRule(
            "ZX704", "array " + array.id + " leaves " + sizeText(unused) + " of its drives unused",
            {(*small)->location + " has " + sizeText(*(*small)->capacityBytes) + ", " +
             (*large)->location + " has " + sizeText(*(*large)->capacityBytes)}));
    }
}

} // namespace

std::vector<Finding> planWarnings(const ControllerPlanning& planning) {
    std::vector<Finding> findings;
    tellHealth(planning, findings);
    tellSpares(planning, findings);
    tellRedundancy(planning, findings);
    tellForeign(planning, findings);
    tellNumbers(planning, findings);
    tellMoved(planning, findings);
    if (findFamily(planning.controller.utility) != nullptr) {
        tellErrors(planning, findings);
        tellSizes(planning, findings);
    }
    return findings;
}

std::string whyItStands(const Comparison& comparison) {
    std::string text = "as the policy says";
    if (comparison.result != Sameness::equivalent) {
        return text;
    }
    for (const std::string& each : comparison.equivalences) {
        text += (&each == &comparison.equivalences.front() ? ", equivalent: " : "; ") + each;
    }
    return comparison.equivalences.empty() ? text + ", equivalent" : text;
}

} // namespace zolex::companion
