#include "companion/execution/Guard.h"

#include "companion/execution/ApplyCodes.h"
#include "companion/execution/RunCodes.h"
#include "companion/families/Family.h"
#include "companion/families/FamilyCodes.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/FamilyLines.h"
#include "companion/planning/FamilySteps.h"
#include "companion/planning/IdleVolumes.h"
#include "companion/planning/Losses.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

using Lines = std::vector<std::string>;

std::string told(const std::string& value) {
    return value.empty() ? "not told" : printable(value);
}

std::string controllerName(std::int32_t number) {
    return "controller " + std::to_string(number);
}

std::string machineText(const Fingerprint& print) {
    return "machine " + told(print.machineType) + ", serial number " + told(print.serialNumber);
}

std::string controllerText(const Fingerprint::Controller& controller) {
    return controllerName(controller.number) + ", " + told(controller.model) + " at " +
           told(controller.pci) + ", serial number " + told(controller.serialNumber);
}

/// What tells the two machines apart; both are told.
Lines identityLines(const Fingerprint& planned, const Fingerprint& found) {
    Lines lines;
    const auto tell = [&lines](const std::string& one, const std::string& other) {
        if (one != other) {
            lines.push_back("planned for: " + one);
            lines.push_back("this one is: " + other);
        }
    };
    tell(machineText(planned), machineText(found));
    const std::size_t count = std::max(planned.controllers.size(), found.controllers.size());
    for (std::size_t i = 0; i < count; ++i) {
        const auto textOf = [i](const Fingerprint& print) {
            return i < print.controllers.size() ? controllerText(print.controllers[i])
                                                : std::string("no further controller");
        };
        const std::string one = textOf(planned);
        const std::string other = textOf(found);
        const bool isOther = i < planned.controllers.size() && i < found.controllers.size() &&
                             planned.controllers[i].ids != found.controllers[i].ids;
        tell(one + (isOther ? ", PCI " + told(planned.controllers[i].ids) : ""),
             other + (isOther ? ", PCI " + told(found.controllers[i].ids) : ""));
    }
    return lines;
}

/// What a finding says of a listing that cannot be relied on.
bool isMisread(const Finding& finding) {
    return finding.code == problem::notAListing || finding.code == problem::listingRefused;
}
bool isOtherwiseNumbered(const Finding& finding) {
    return finding.code == problem::otherModel || finding.code == problem::otherPciFunction ||
           finding.code == problem::sameSerial;
}

template <typename Is>
Lines linesOfFindings(const Snapshot& snapshot, const Is& is) {
    Lines lines;
    const auto add = [&](const std::vector<Finding>& findings, const std::string& where) {
        for (const Finding& finding : findings) {
            if (is(finding)) {
                lines.push_back(where + printable(finding.summary) + " [" + finding.code + "]");
            }
        }
    };
    add(snapshot.findings, "");
    for (const ControllerSnapshot& controller : snapshot.details) {
        add(controller.findings, controllerName(controller.number) + ": ");
    }
    return lines;
}

/// What is not as planned for on one controller.
class ControllerChanges {
  public:
    ControllerChanges(const ControllerPlanning& planning, const ControllerSnapshot& found)
        : planned_(planning.controller), found_(found),
          name_(controllerName(planning.controller.number) + ": ") {
        compareDrives();
        compareLayoutOf(planning);
        compareFirmware();
    }

    Lines changes;
    Lines swapped; ///< of them those by which a drive is another one, is gone, or is now in use
    bool isRenumbered = false; ///< the layout is as it was, but for numbers in it
    Lines firmware;

  private:
    void compareDrives() {
        for (const MachineDrive& each : planned_.drives) {
            const DriveFacts& drive = each.facts;
            const DriveFacts* const now = driveAt(found_, drive.location);
            if (now == nullptr) {
                swap("drive " + drive.location + serialText(drive) + " is gone");
            } else {
                compareDrive(drive, *now);
            }
        }
        for (const MachineDrive& each : found_.drives) {
            if (driveAt(planned_, each.facts.location) == nullptr) {
                change("drive " + each.facts.location + serialText(each.facts) + " is new");
            }
        }
    }

    static const DriveFacts* driveAt(const ControllerSnapshot& controller,
                                     const std::string& location) {
        const auto found =
            std::find_if(controller.drives.begin(), controller.drives.end(),
                         [&](const MachineDrive& each) { return each.facts.location == location; });
        return found == controller.drives.end() ? nullptr : &found->facts;
    }

    static std::string serialText(const DriveFacts& drive) {
        return drive.serialNumber.empty()
                   ? ""
                   : ", serial number " + printable(drive.serialNumber) + ",";
    }
    static std::string nameOf(const DriveFacts& drive) {
        return drive.serialNumber.empty() ? drive.manufacturer + " " + drive.model
                                          : "serial number " + drive.serialNumber;
    }

    void compareDrive(const DriveFacts& drive, const DriveFacts& now) {
        const std::string subject = "drive " + drive.location + ": ";
        if (nameOf(drive) != nameOf(now)) {
            swap(subject + printable(nameOf(now)) + " in the place of " + printable(nameOf(drive)));
            return;
        }
        constexpr unsigned bitsOfMb = 20;
        const auto size = [](const DriveFacts& one) {
            return one.capacityBytes.value_or(0) >> bitsOfMb;
        };
        if (size(drive) != size(now)) {
            change(subject + "its size is " + std::to_string(size(now)) + " MB, it was " +
                   std::to_string(size(drive)) + " MB");
        }
        if (now.state != drive.state && !now.barred.empty()) { // plans do not tell what barred it
            swap("drive " + drive.location + " is not to be used now: " + printable(now.barred));
        }
        if (driveCondition(drive) != driveCondition(now)) {
            change("drive " + drive.location + " is " + std::string(driveCondition(now)) + " (" +
                   told(now.reportedState) + "), it was " + std::string(driveCondition(drive)));
        }
        if (drive.revision != now.revision) {
            firmware.push_back(name_ + "drive " + drive.location + " has firmware " +
                               told(now.revision) + ", it had " + told(drive.revision));
        }
    }

    /// What stands now and did not, and the other way round.
    void compareLayoutOf(const ControllerPlanning& planning) {
        const std::string before =
            planning.beforeHash.empty() ? layoutHash(planned_.facts) : planning.beforeHash;
        if (layoutHash(found_.facts) == before) {
            for (const std::string& line : otherwiseNumbered(planning, 0, found_.facts)) {
                change(line);
                isRenumbered = true;
            }
            for (const std::string& line : arraysOtherwiseNumbered(planning, 0, found_.facts)) {
                change(line);
                isRenumbered = true;
            }
            for (const std::string& line : madeAnew(planning, 0, found_.facts)) {
                change(line);
                isRenumbered = true;
            }
            return;
        }
        const Layout is = capturedLayout(found_.facts);
        tellBeyond(planning.before, is, "no longer there: ");
        tellBeyond(is, planning.before, "there now: ");
        if (changes.empty()) {
            change("its layout is not what it was");
        }
    }

    /// What the one layout has and the other has not.
    void tellBeyond(const Layout& layout, const Layout& other, const char* word) {
        const Lines lines = layoutLines(layout);
        Lines others = layoutLines(other);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const auto same = std::find(others.begin(), others.end(), lines[i]);
            if (same != others.end()) {
                others.erase(same);
                continue;
            }
            std::string ids;
            if (i < layout.groups.size()) { // groups have the first lines
                for (const LayoutVolume& volume : layout.groups[i].volumes) {
                    ids += "LD " + volume.id + ", ";
                }
            }
            change(word + printable(ids + lines[i]));
        }
    }

    void compareFirmware() {
        if (planned_.facts.firmwareVersion != found_.facts.firmwareVersion) {
            firmware.push_back(name_ + "its firmware is " + told(found_.facts.firmwareVersion) +
                               ", it was " + told(planned_.facts.firmwareVersion));
        }
    }

    void change(const std::string& text) { changes.push_back(name_ + text); }
    void swap(const std::string& text) {
        change(text);
        swapped.push_back(name_ + text);
    }

    const ControllerSnapshot& planned_;
    const ControllerSnapshot& found_;
    std::string name_;
};

/// Controllers that have another number in the commands of their utility: another card has come
/// before them, or is gone.
Lines linesOfAdapters(const Snapshot& snapshot, const MachinePlan& plan) {
    Lines lines;
    for (const ControllerPlanning& planning : plan.controllers) {
        const ControllerSnapshot& planned = planning.controller;
        const ControllerSnapshot* const found = capturedController(snapshot, planned.number);
        if (found != nullptr && !planned.failed && found->adapter != planned.adapter) {
            lines.push_back(controllerName(planned.number) + " has the number " +
                            std::to_string(found->adapter) + " in the commands of " +
                            printable(planned.utility) + " now, it had " +
                            std::to_string(planned.adapter));
        }
    }
    return lines;
}

/// A logical drive that stood before the plan, and what stands in its place.
struct StandingPair {
    LayoutVolume before;
    LayoutVolume now;
    Lines drives;
};

/// Takes those out of what stands that are still there, though they were to go: the others of their
/// drives are in their places behind them.
void dropClaimed(const Layout& before, const Lines& gone, Layout& found) {
    const auto isClaimed = [&](const LayoutVolume& now) {
        return !now.uniqueId.empty() &&
               std::any_of(before.groups.begin(), before.groups.end(), [&](const auto& group) {
                   return std::any_of(
                       group.volumes.begin(), group.volumes.end(), [&](const LayoutVolume& volume) {
                           return volume.uniqueId == now.uniqueId &&
                                  std::find(gone.begin(), gone.end(), volume.id) != gone.end();
                       });
               });
    };
    for (LayoutGroup& group : found.groups) {
        std::erase_if(group.volumes, isClaimed);
    }
}

/// Those that none of the first `done` steps removes.
std::vector<StandingPair> standingPairs(const ControllerPlanning& planning, std::size_t done,
                                        const Facts& facts) {
    Lines gone;
    for (std::size_t i = 0; i < std::min(done, planning.steps.size()); ++i) {
        const PlanStep& step = planning.steps[i];
        if (step.action == "clear") {
            return {};
        }
        gone.insert(gone.end(), step.destroys.begin(), step.destroys.end());
    }
    Layout found = capturedLayout(facts);
    dropClaimed(planning.before, gone, found);
    std::vector<StandingPair> pairs;
    for (const LayoutGroup& group : planning.before.groups) {
        const auto same =
            std::find_if(found.groups.begin(), found.groups.end(),
                         [&](const LayoutGroup& each) { return each.drives() == group.drives(); });
        std::size_t place = 0;
        for (const LayoutVolume& volume : group.volumes) {
            if (std::find(gone.begin(), gone.end(), volume.id) != gone.end()) {
                continue;
            }
            if (same != found.groups.end() && place < same->volumes.size()) {
                pairs.push_back({volume, same->volumes[place], group.drives()});
            }
            ++place;
        }
    }
    return pairs;
}

std::string quoted(const std::string& name) {
    return name.empty() ? "nothing" : "\"" + printable(name) + "\"";
}

/// Whether the plan tells logical drives apart by more than their numbers.
bool tellsIds(const MachinePlan& plan) {
    for (const ControllerPlanning& planning : plan.controllers) {
        for (const LayoutGroup& group : planning.before.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                if (!volume.uniqueId.empty() || !volume.name.empty()) {
                    return true;
                }
            }
        }
    }
    return false;
}

/// Plans of before tell no ids of logical drives, and have a state without them.
bool isInState(const Snapshot& snapshot, const MachinePlan& plan) {
    return fingerprintOf(snapshot).state == plan.fingerprint.state ||
           (!tellsIds(plan) && stateWithoutIds(snapshot) == plan.fingerprint.state);
}

bool makesVolume(const PlanStep& step) {
    return step.action == "create-array" || step.action == "create-logical-drive";
}

const LogicalDriveFacts* volumeOf(const Facts& facts, const std::string& id) {
    const auto found = std::find_if(facts.logicalDrives.begin(), facts.logicalDrives.end(),
                                    [&id](const auto& each) { return each.id == id; });
    return found == facts.logicalDrives.end() ? nullptr : &*found;
}

/// Whether a step behind the first `done` deletes it.
bool goesWith(const ControllerPlanning& planning, std::size_t done, const std::string& id) {
    return std::any_of(planning.steps.begin() + static_cast<std::ptrdiff_t>(done),
                       planning.steps.end(), [&id](const PlanStep& step) {
                           return std::find(step.destroys.begin(), step.destroys.end(), id) !=
                                  step.destroys.end();
                       });
}

/// Whether it is one that the plan deletes, and none that has its number by now.
bool isLost(const ControllerPlanning& planning, const LogicalDriveFacts& volume) {
    return std::any_of(planning.losses.begin(), planning.losses.end(), [&](const Loss& loss) {
        return loss.kind == "logical_drive" && loss.id == volume.id &&
               (loss.uniqueId.empty() || loss.uniqueId == volume.uniqueId);
    });
}

void tellUse(std::int32_t controller, const LogicalDriveFacts& volume, RunFault& fault) {
    if (!volume.usedAs.empty()) {
        fault.details.push_back(controllerName(controller) + ": " +
                                volumeNameText(volume.id, volume.name, volume.device) + ": " +
                                printable(volume.usedAs));
        fault.help.push_back(printable(howToEndUse(volume.usedAs)));
    }
}

std::optional<RunFault> faultOfUses(RunFault fault) {
    if (fault.details.empty()) {
        return std::nullopt;
    }
    fault.exitCode = apply_code::refused;
    fault.what = "the running system uses what would be deleted";
    fault.code = run_problem::lostInUse;
    return fault;
}

bool isAsked(const std::vector<std::int32_t>& numbers, std::int32_t number) {
    return numbers.empty() || std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

void append(Lines& to, const Lines& from, const char* word = "") {
    for (const std::string& line : from) {
        to.push_back(word + line);
    }
}

/// Null without lines.
std::optional<RunFault> changedFault(const MachinePlan& plan, std::string what, Lines lines) {
    if (lines.empty()) {
        return std::nullopt;
    }
    return RunFault{apply_code::refused,
                    std::move(what),
                    std::move(lines),
                    {planAgainHelp(plan)},
                    std::string(run_problem::machineChanged)};
}

/// Which numbers of logical drives that go behind the first `done` steps others have now, on other
/// drives: somebody deleted one and made another.
Lines takenNumbers(const ControllerPlanning& planning, std::size_t done, const Facts& facts) {
    Lines lines;
    const Layout found = capturedLayout(facts);
    for (const LayoutGroup& before : planning.before.groups) {
        for (const LayoutVolume& volume : before.volumes) {
            const LogicalDriveFacts* const now = volumeOf(facts, volume.id);
            const bool isKnown =
                now != nullptr && !now->uniqueId.empty() && now->uniqueId == volume.uniqueId;
            if (now == nullptr || isKnown || !goesWith(planning, done, volume.id)) {
                continue;
            }
            for (const LayoutGroup& group : found.groups) {
                const bool isThere =
                    std::any_of(group.volumes.begin(), group.volumes.end(),
                                [&volume](const auto& each) { return each.id == volume.id; });
                if (isThere && group.drives() != before.drives()) {
                    lines.push_back("LD " + printable(volume.id) + " is on " +
                                    locationsLine(group.drives()) + " now, it was on " +
                                    locationsLine(before.drives()));
                }
            }
        }
    }
    return lines;
}

} // namespace

std::vector<const ControllerPlanning*>
controllersAskedFor(const MachinePlan& plan, const std::vector<std::int32_t>& numbers) {
    std::vector<const ControllerPlanning*> asked;
    for (const ControllerPlanning& planning : plan.controllers) {
        if (isAsked(numbers, planning.controller.number)) {
            asked.push_back(&planning);
        }
    }
    return asked;
}

const ControllerSnapshot* capturedController(const Snapshot& snapshot, std::int32_t number) {
    const auto found =
        std::find_if(snapshot.details.begin(), snapshot.details.end(),
                     [number](const ControllerSnapshot& each) { return each.number == number; });
    return found == snapshot.details.end() || found->failed ? nullptr : &*found;
}

std::vector<std::string> otherwiseNumbered(const ControllerPlanning& planning, std::size_t done,
                                           const Facts& facts) {
    Lines lines;
    for (const StandingPair& pair : standingPairs(planning, done, facts)) {
        if (pair.now.id != pair.before.id) {
            lines.push_back("LD " + printable(pair.before.id) + " on " +
                            locationsLine(pair.drives) + " has the number " +
                            printable(pair.now.id) + " now");
        }
    }
    return lines;
}

std::vector<std::string> madeAnew(const ControllerPlanning& planning, std::size_t done,
                                  const Facts& facts) {
    Lines lines;
    if (findFamily(planning.controller.utility) == nullptr) {
        return lines; // zolex's utilities tell no ids
    }
    for (const StandingPair& pair : standingPairs(planning, done, facts)) {
        const LayoutVolume& before = pair.before;
        const LayoutVolume& now = pair.now;
        const std::string name = "LD " + printable(before.id) + " on " + locationsLine(pair.drives);
        if (now.id != before.id || (before.uniqueId.empty() && before.name.empty())) {
            continue; // of plans that do not tell it nothing is known
        }
        if (now.uniqueId != before.uniqueId) {
            lines.push_back(name + " is not the one that was there: its id is " +
                            told(now.uniqueId) + ", it was " + told(before.uniqueId));
        } else if (now.name != before.name) {
            lines.push_back(name + " is called " + quoted(now.name) + " now, it was " +
                            quoted(before.name));
        }
    }
    return lines;
}

std::vector<std::string> arraysOtherwiseNumbered(const ControllerPlanning& planning,
                                                 std::size_t done, const Facts& facts) {
    Lines lines;
    const Layout found = capturedLayout(facts);
    for (std::size_t i = done; i < planning.steps.size(); ++i) {
        const auto named = arraysNamedBy(planning, planning.steps[i]);
        for (const LayoutGroup* const group : named.value_or(std::vector<const LayoutGroup*>())) {
            const auto now = std::find_if(
                found.groups.begin(), found.groups.end(),
                [group](const LayoutGroup& each) { return each.drives() == group->drives(); });
            if (now == found.groups.end() || now->id == group->id) {
                continue;
            }
            std::string line = "array " + printable(group->id) + " on " +
                               locationsLine(group->drives()) + " has the number " +
                               printable(now->id) + " now";
            if (std::find(lines.begin(), lines.end(), line) == lines.end()) {
                lines.push_back(std::move(line));
            }
        }
    }
    return lines;
}

std::optional<NumbersFault> numbersFault(const MachinePlan& plan,
                                         const ControllerPlanning& planning, std::size_t done,
                                         const Facts& facts) {
    if (findFamily(planning.controller.utility) == nullptr) {
        return std::nullopt;
    }
    const std::string controller = controllerName(planning.controller.number);
    NumbersFault found{
        "its logical drives have other numbers",
        {apply_code::stopped,
         "the logical drives of " + controller + " have other numbers than the plan's commands say",
         otherwiseNumbered(planning, done, facts),
         {planAgainHelp(plan)},
         std::string(run_problem::standsElsewhere)}};
    Lines& lines = found.fault.details;
    if (lines.empty()) {
        lines = takenNumbers(planning, done, facts);
    }
    const Lines arrays = arraysOtherwiseNumbered(planning, done, facts);
    if (lines.empty() && !arrays.empty()) {
        found.why = "its arrays have other numbers";
        found.fault.what =
            "the arrays of " + controller + " have other numbers than the plan's commands say";
    }
    append(lines, arrays);
    const Lines others = madeAnew(planning, done, facts);
    if (lines.empty()) {
        found.why = "its logical drives are others";
        found.fault.what =
            "logical drives of " + controller + " are not those that the plan was made of";
    }
    append(lines, others);
    return lines.empty() ? std::nullopt : std::optional(std::move(found));
}

std::string planAgainHelp(const MachinePlan& plan) {
    return printable(planCommand(plan)) + " plans from what is there";
}

std::optional<RunFault> captureFault(const Snapshot& snapshot) {
    if (snapshot.details.empty()) {
        return RunFault{apply_code::notPossible,
                        "no supported RAID controller was found",
                        {},
                        {"zolexctl doctor tells what is there"},
                        std::string(run_problem::machineNotRead)};
    }
    Lines lines;
    for (const ControllerSnapshot& controller : snapshot.details) {
        for (const Finding& finding : controller.findings) {
            const bool isWhy = controller.failed && finding.severity == Severity::error;
            if (isWhy || isMisread(finding)) {
                lines.push_back(controllerName(controller.number) + ": " +
                                printable(finding.summary) + " [" + finding.code + "]");
            }
        }
        if (controller.failed && lines.empty()) {
            lines.push_back(controllerName(controller.number) + " could not be captured");
        }
    }
    if (lines.empty()) {
        return std::nullopt;
    }
    return RunFault{apply_code::notPossible,
                    "the machine could not be captured",
                    std::move(lines),
                    {"zolexctl doctor tells whether the utilities are there and are read"},
                    std::string(run_problem::machineNotRead)};
}

std::optional<RunFault> identityFault(const Snapshot& snapshot, const MachinePlan& plan) {
    const Fingerprint found = fingerprintOf(snapshot);
    if (found.identity != plan.fingerprint.identity) {
        return RunFault{apply_code::refused,
                        "this is another machine than the one planned for",
                        identityLines(plan.fingerprint, found),
                        {planAgainHelp(plan)},
                        std::string(run_problem::anotherMachine)};
    }
    Lines lines = linesOfAdapters(snapshot, plan);
    if (!lines.empty()) {
        return RunFault{apply_code::refused,
                        "the plan's commands would reach another controller",
                        std::move(lines),
                        {planAgainHelp(plan)},
                        std::string(run_problem::anotherMachine)};
    }
    lines = linesOfFindings(snapshot, isOtherwiseNumbered);
    if (!lines.empty()) {
        return RunFault{apply_code::refused,
                        "it is not sure which controller a command would reach",
                        std::move(lines),
                        {"zolexctl doctor tells more"},
                        std::string(run_problem::anotherMachine)};
    }
    return std::nullopt;
}

std::optional<RunFault> stateFault(const Snapshot& snapshot, const MachinePlan& plan,
                                   const std::vector<std::int32_t>& controllers,
                                   std::vector<std::string>& warnings) {
    Lines changed;
    bool isExplained = false;
    bool isRenumbered = false;
    for (const ControllerPlanning& planning : plan.controllers) {
        const std::int32_t number = planning.controller.number;
        const ControllerSnapshot* const found = capturedController(snapshot, number);
        if (found == nullptr) {
            continue;
        }
        const ControllerChanges changes(planning, *found);
        isExplained = isExplained || !changes.changes.empty() || !changes.firmware.empty();
        isRenumbered = isRenumbered || (changes.isRenumbered && isAsked(controllers, number));
        append(warnings, changes.firmware);
        append(isAsked(controllers, number) ? changed : warnings, changes.changes);
    }
    if (!isRenumbered && isInState(snapshot, plan)) {
        return std::nullopt;
    }
    if (changed.empty() && !isExplained) {
        changed.emplace_back("what its utility tells of a drive is not what it was");
    }
    return changedFault(plan, "the machine has changed since it was planned for",
                        std::move(changed));
}

std::optional<RunFault> inUseFault(const Snapshot& snapshot, const MachinePlan& plan,
                                   const std::vector<std::int32_t>& controllers) {
    RunFault fault;
    for (const ControllerPlanning* const planning : controllersAskedFor(plan, controllers)) {
        const ControllerSnapshot* const found =
            capturedController(snapshot, planning->controller.number);
        if (found == nullptr) {
            continue;
        }
        for (const LogicalDriveFacts& volume : found->facts.logicalDrives) {
            if (isLost(*planning, volume)) {
                tellUse(found->number, volume, fault);
            }
        }
    }
    return faultOfUses(std::move(fault));
}

void askOfLost(const ControllerPlanning& planning, const PlanStep* step, Facts& facts,
               const std::function<void(Facts&)>& ask) {
    Facts lost;
    std::vector<LogicalDriveFacts*> asked;
    for (LogicalDriveFacts& volume : facts.logicalDrives) {
        const bool isMeant =
            step == nullptr || std::find(step->destroys.begin(), step->destroys.end(), volume.id) !=
                                   step->destroys.end();
        if (isMeant && isLost(planning, volume)) {
            asked.push_back(&volume);
            lost.logicalDrives.push_back(volume);
            lost.logicalDrives.back().usedAs.clear();
        }
    }
    if (asked.empty()) {
        return;
    }
    ask(lost);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        *asked[i] = lost.logicalDrives[i];
    }
}

std::optional<RunFault> stepInUseFault(const ControllerPlanning& planning, const PlanStep& step,
                                       const Facts& facts, const std::function<void(Facts&)>& ask) {
    Facts now = facts;
    for (LogicalDriveFacts& volume : now.logicalDrives) {
        volume.usedAs.clear(); // of the others nothing is asked
    }
    askOfLost(planning, &step, now, ask);
    RunFault fault;
    for (const LogicalDriveFacts& volume : now.logicalDrives) {
        tellUse(planning.controller.number, volume, fault);
    }
    return faultOfUses(std::move(fault));
}

std::optional<RunFault> keptCacheFault(const Snapshot& snapshot, const ControllerPlanning& planning,
                                       std::size_t done) {
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    const auto first =
        planning.steps.begin() + static_cast<std::ptrdiff_t>(std::min(done, planning.steps.size()));
    if (found == nullptr || std::none_of(first, planning.steps.end(), makesVolume)) {
        return std::nullopt;
    }
    const auto kept = std::find_if(found->findings.begin(), found->findings.end(), [](auto& each) {
        return each.code == family_code::cachePreserved;
    });
    if (kept == found->findings.end()) {
        return std::nullopt;
    }
    RunFault fault{apply_code::refused,
                   "the cache of " + controllerName(found->number) + " keeps data",
                   {printable(kept->summary)},
                   {},
                   kept->code};
    for (const std::string& help : kept->help) {
        fault.help.push_back(printable(help));
    }
    return fault;
}

std::optional<RunFault> offlineFault(const Snapshot& snapshot, const ControllerPlanning& planning,
                                     std::size_t done) {
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    if (found == nullptr || done >= planning.steps.size()) {
        return std::nullopt;
    }
    const std::string& utility = planning.controller.utility;
    const Comparison comparison =
        compareLayouts(found->facts, capturedLayout(found->facts), planning.after, {utility});
    RunFault fault{apply_code::refused,
                   "a logical drive that stays is offline, and nothing is changed beside it",
                   {},
                   offlineHelp(),
                   std::string(run_problem::keptOffline)};
    for (const Difference& each : idleVolumes(utility, found->facts, comparison).differences) {
        const LogicalDriveFacts* const volume = volumeOf(found->facts, each.logicalDrive);
        const LogicalDriveFacts* const planned =
            volumeOf(planning.controller.facts, each.logicalDrive);
        const bool wasOffline = planned != nullptr && planned->health == Health::critical;
        if (volume != nullptr && volume->health == Health::critical && !wasOffline &&
            !goesWith(planning, done, volume->id)) {
            fault.details.push_back(controllerName(found->number) + ": " +
                                    volumeNameText(volume->id, volume->name, volume->device) +
                                    " is " + printable(each.found));
        }
    }
    return fault.details.empty() ? std::nullopt : std::optional(std::move(fault));
}

std::optional<RunFault> controllerFault(const Snapshot& snapshot, const MachinePlan& plan,
                                        const ControllerPlanning& planning) {
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    if (found == nullptr) {
        return std::nullopt;
    }
    Lines lines = linesOfAdapters(snapshot, plan);
    append(lines, ControllerChanges(planning, *found).changes);
    return changedFault(plan,
                        controllerName(found->number) + " has changed since it was planned for",
                        std::move(lines));
}

std::optional<RunFault> foreignFault(const MachinePlan& plan, const ControllerPlanning& planning,
                                     const Facts& facts) {
    Lines lines;
    const auto tellBeyond = [&](const Lines& all, const Lines& others, const char* begin,
                                const char* end) {
        for (const std::string& each : all) {
            if (std::find(others.begin(), others.end(), each) == others.end()) {
                lines.push_back(controllerName(planning.controller.number) + ": " + begin +
                                printable(each) + end);
            }
        }
    };
    const Lines now = capturedLayout(facts).foreignDrives;
    tellBeyond(now, planning.before.foreignDrives, "drive ", " is foreign now, it was not");
    tellBeyond(planning.before.foreignDrives, now, "drive ", " is not foreign any more");
    const Lines& planned = planning.controller.facts.foreignConfigurations;
    if (!planned.empty()) { // files of plans do not tell them
        tellBeyond(facts.foreignConfigurations, planned, "there now: ", "");
        tellBeyond(planned, facts.foreignConfigurations, "no longer there: ", "");
    }
    return changedFault(plan, "what is foreign is not what was agreed to be cleared",
                        std::move(lines));
}

std::optional<RunFault> notDeletedFault(const Snapshot& snapshot,
                                        const ControllerPlanning& planning, std::size_t done) {
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    const Family* const family = findFamily(planning.controller.utility);
    if (found == nullptr || family == nullptr) {
        return std::nullopt;
    }
    RunFault fault{apply_code::refused,
                   "what would be deleted is not what is known any more",
                   {},
                   {"zolexctl show tells what its utility says of it"},
                   std::string(run_problem::machineChanged)};
    for (const LogicalDriveFacts& volume : found->facts.logicalDrives) {
        const std::string why = whyNotLost(*family, volume);
        if (!why.empty() && goesWith(planning, done, volume.id) && isLost(planning, volume)) {
            fault.details.push_back(controllerName(found->number) + ": " +
                                    volumeNameText(volume.id, volume.name, volume.device) +
                                    " is not deleted: " + printable(why));
        }
    }
    return fault.details.empty() ? std::nullopt : std::optional(std::move(fault));
}

std::optional<RunFault> drivesFault(const Snapshot& snapshot, const MachinePlan& plan,
                                    const std::vector<std::int32_t>& controllers) {
    Lines lines;
    for (const ControllerPlanning* const planning : controllersAskedFor(plan, controllers)) {
        const ControllerSnapshot* const found =
            capturedController(snapshot, planning->controller.number);
        if (found != nullptr) {
            append(lines, ControllerChanges(*planning, *found).swapped);
        }
    }
    return changedFault(plan, "drives are not those that were planned for", std::move(lines));
}

} // namespace zolex::companion
