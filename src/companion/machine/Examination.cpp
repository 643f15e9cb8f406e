#include "companion/machine/Examination.h"

#include "companion/families/Family.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/ReadOnlyPlatform.h"
#include "companion/text/TypedWord.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

constexpr int firstYear = 2020; ///< the clock of a machine without a battery starts long before
constexpr std::uint64_t leastFreeBytes = std::uint64_t{1} << 20U;

/// The numbers of all controllers that the utility drives, asked for or not.
std::vector<std::int32_t> controllersOf(const Snapshot& snapshot, std::string_view utility) {
    std::vector<std::int32_t> numbers;
    for (std::size_t i = 0; i < snapshot.controllers.count(); ++i) {
        const std::int32_t number = static_cast<std::int32_t>(i) + 1;
        if (utilityOfType(snapshot.controllers.controller(i)->type()) == utility &&
            !snapshot.isOfFamily(number)) {
            numbers.push_back(number);
        }
    }
    for (const FamilyPlace& place : snapshot.families) {
        if (place.utility == utility) {
            numbers.push_back(place.number);
        }
    }
    return numbers;
}

std::string numbersText(const std::vector<std::int32_t>& numbers) {
    std::string text = numbers.size() == 1 ? "controller " : "controllers ";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        text += (i == 0 ? "" : ",") + std::to_string(numbers[i]);
    }
    return text;
}

bool isOfUtility(std::string_view code) {
    return code == problem::utilityMissing || code == problem::utilityNotStarted ||
           code == problem::utilityStillRuns || code == problem::utilityFailed ||
           code == problem::notAListing;
}

/// Whether nothing could be had of a controller that was asked for.
bool hasFailed(const Snapshot& snapshot, std::string_view utility) {
    return std::any_of(snapshot.details.begin(), snapshot.details.end(),
                       [utility](const ControllerSnapshot& controller) {
                           return controller.utility == utility && controller.failed;
                       });
}

/// Whether it ran at least once: then it is there, wherever it was found.
bool hasAnswered(const Snapshot& snapshot, std::string_view utility) {
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (controller.utility == utility &&
            std::any_of(controller.commands.begin(), controller.commands.end(),
                        [](const CapturedListing& command) {
                            return command.outcome != ChildOutcome::notStarted &&
                                   command.outcome != ChildOutcome::noPipe;
                        })) {
            return true;
        }
    }
    return false;
}

UtilityCheck::State stateOf(const Snapshot& snapshot, const UtilityCheck& check, bool isThere) {
    using State = UtilityCheck::State;
    if (check.controllers.empty()) {
        return isThere ? State::unused : State::absent;
    }
    if (!isThere) {
        return State::missing;
    }
    const bool loses = check.probe && check.probe->isLost();
    return loses || hasFailed(snapshot, check.name) ? State::failed : State::ok;
}

UtilityCheck checkUtility(std::string_view name, const Snapshot& snapshot,
                          const Utilities& utilities, const std::vector<ExitCodeProbe>& probes) {
    UtilityCheck check;
    check.name = name;
    check.controllers = controllersOf(snapshot, name);
    const auto found = utilities.programs.find(name);
    if (check.controllers.empty()) {
        // UTIL.BAT does not tell whether the program behind it is there.
        const auto named = utilities.named.find(name);
        check.program = named != utilities.named.end()      ? named->second
                        : found != utilities.programs.end() ? found->second
                                                            : std::string();
    } else {
        check.program = utilities.programOf(name);
        check.usesWrapper = utilities.usesWrapper(name);
    }
    const auto probe =
        std::find_if(probes.begin(), probes.end(),
                     [name](const ExitCodeProbe& each) { return each.utility == name; });
    if (probe != probes.end()) {
        check.probe = *probe;
    }
    check.state = stateOf(snapshot, check, !check.program.empty() || hasAnswered(snapshot, name));
    return check;
}

void tellUtility(const UtilityCheck& check, std::vector<SubjectFinding>& findings) {
    if (check.state == UtilityCheck::State::missing) {
        findings.push_back(
            {check.name,
             problemFinding(problem::utilityMissing,
                            check.name + " is missing, and " + numbersText(check.controllers) +
                                (check.controllers.size() == 1 ? " needs it" : " need it"))});
        findings.back().finding.help = {"install it, or name it: " + namingOption(check.name)};
    }
    if (check.probe && check.probe->isLost()) {
        findings.push_back(
            {check.usesWrapper ? "UTIL.BAT" : check.name,
             problemFinding(problem::exitCodesLost,
                            check.probe->command +
                                " ended with exit code 0, although there is no such verb")});
    }
}

/// Whether the list of its controllers could not be had of a family.
bool hasTrouble(const Snapshot& snapshot, const std::string& family) {
    return std::any_of(
        snapshot.findings.begin(), snapshot.findings.end(), [&family](const Finding& finding) {
            return finding.severity != Severity::note && finding.summary.starts_with(family + " ");
        });
}

/// Families have a row where they are of use: their program is there, or a controller.
void addFamilies(const Snapshot& snapshot, const Utilities& utilities, Examination& examination) {
    for (const Family* const family : families()) {
        UtilityCheck check = checkUtility(family->name(), snapshot, utilities, {});
        const bool isThere = !check.controllers.empty() || !check.program.empty();
        if (check.controllers.empty() && hasTrouble(snapshot, check.name)) {
            check.state = UtilityCheck::State::failed;
        }
        if (isThere) {
            examination.utilities.push_back(std::move(check));
        }
    }
}

/// RAID controllers of which no utility tells.
void tellUndriven(const Snapshot& snapshot, const Utilities& utilities,
                  std::vector<SubjectFinding>& findings) {
    for (const UndrivenFunction& function : snapshot.undriven) {
        Finding finding = problemFinding(problem::notDriven, undrivenText(function));
        finding.severity = function.isSure ? Severity::warning : Severity::note;
        finding.help = {undrivenHelp(function)};
        if (const auto others = utilities.others.find(function.family);
            others != utilities.others.end() && !utilities.named.contains(function.family)) {
            for (const std::string& program : others->second) {
                finding.help.push_back("ask another one that is there: zolexctl --utility " +
                                       typedWord(function.family + "=" + program) + " show");
            }
        }
        findings.push_back({"PCI " + function.pci, std::move(finding)});
    }
    for (const UtilityNames& names : undrivenUtilityNames()) {
        const auto found = utilities.programs.find(names.utility);
        if (found != utilities.programs.end()) {
            Finding finding =
                problemFinding(problem::notDriven,
                               found->second + " is there, and zolexctl does not drive it yet");
            finding.severity = Severity::note;
            findings.push_back({std::string(names.utility), std::move(finding)});
        }
    }
}

void tellSurroundings(const Surroundings& surroundings, std::vector<SubjectFinding>& findings) {
    const system::TemporaryFolder& folder = surroundings.temporaryFolder;
    if (!folder.isWritable) {
        findings.push_back(
            {"temporary folder",
             problemFinding(problem::temporaryFolder,
                            folder.name.empty()
                                ? std::string("there is no folder for temporary files")
                                : folder.name + " cannot be written")});
    } else if (folder.freeBytes && *folder.freeBytes < leastFreeBytes) {
        findings.push_back({"temporary folder",
                            problemFinding(problem::temporaryFolder, folder.name + " is full")});
    }
    if (surroundings.clock.year < firstYear) {
        findings.push_back({"clock", problemFinding(problem::clockWrong,
                                                    "the clock says that it is the year " +
                                                        std::to_string(surroundings.clock.year))});
    }
}

} // namespace

std::vector<ExitCodeProbe> probeExitCodes(Platform& platform, const Snapshot& snapshot,
                                          std::chrono::milliseconds limit) {
    ReadOnlyPlatform reading(platform);
    std::vector<ExitCodeProbe> probes;
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (findFamily(controller.utility) != nullptr) {
            continue; // it is judged by what it prints
        }
        const bool isAsked =
            std::any_of(probes.begin(), probes.end(), [&controller](const ExitCodeProbe& probe) {
                return probe.utility == controller.utility;
            });
        if (isAsked) {
            continue;
        }
        ExitCodeProbe& probe = probes.emplace_back();
        probe.utility = controller.utility;
        probe.command = nonsenseLine(controller.utility);
        const ChildResult result = reading.runChild(probe.command, true, limit);
        probe.outcome = result.outcome;
        probe.exitCode = result.exitCode;
    }
    return probes;
}

std::string undrivenText(const UndrivenFunction& function) {
    const bool isOurs = findFamily(function.family) != nullptr;
    return std::string(function.isSure ? "a RAID controller ("
                                       : "what may be a RAID controller (") +
           function.pciIds + ") " +
           (isOurs
                ? "is on the bus, and " + function.family +
                      (function.isAsked ? " tells of none there" : ", which drives it, is missing")
                : "is on the bus, of the utility " + function.family +
                      ", which zolexctl does not drive yet");
}

std::string undrivenHelp(const UndrivenFunction& function) {
    if (findFamily(function.family) != nullptr && function.isAsked) {
        return "run the utility by hand, and look whether the driver of the controller is loaded";
    }
    return findFamily(function.family) != nullptr
               ? "install " + function.family + ", or name it: " + namingOption(function.family)
               : "configure it with its own utility";
}

bool Examination::hasFaults() const {
    return std::any_of(findings.begin(), findings.end(), [](const SubjectFinding& each) {
        return each.finding.severity != Severity::note;
    });
}

std::optional<bool> Examination::wrapperLosesCodes() const {
    std::optional<bool> loses;
    for (const UtilityCheck& check : utilities) {
        if (check.usesWrapper && check.probe && check.probe->hasEnded()) {
            loses = loses.value_or(false) || check.probe->isLost();
        }
    }
    return loses;
}

Examination examine(const Snapshot& snapshot, const Utilities& utilities,
                    const std::vector<ExitCodeProbe>& probes, const Surroundings& surroundings) {
    Examination examination;
    examination.wrapper = utilities.wrapper;
    examination.detector = utilities.detector;
    examination.surroundings = surroundings;
    std::vector<SubjectFinding>& findings = examination.findings;
    for (const UtilityNames& names : utilityNames()) {
        examination.utilities.push_back(checkUtility(names.utility, snapshot, utilities, probes));
    }
    addFamilies(snapshot, utilities, examination);
    if (snapshot.count() == 0) {
        findings.push_back(
            {"machine", problemFinding(problem::noControllers,
                                       "no PCI function is a RAID controller that zolex knows")});
    }
    tellUndriven(snapshot, utilities, findings);
    for (const Finding& finding : snapshot.findings) {
        findings.push_back(
            {finding.code == problem::detectorFailed ? "hwdetect.exe" : "machine", finding});
    }
    for (const UtilityCheck& check : examination.utilities) {
        tellUtility(check, findings);
        for (const ControllerSnapshot& controller : snapshot.details) {
            if (controller.utility != check.name) {
                continue;
            }
            for (const Finding& finding : controller.findings) {
                // A utility that is not there was told once for all of its controllers.
                if (check.state != UtilityCheck::State::missing || !isOfUtility(finding.code)) {
                    findings.push_back(
                        {"controller " + std::to_string(controller.number), finding});
                }
            }
        }
    }
    tellSurroundings(surroundings, findings);
    return examination;
}

} // namespace zolex::companion
