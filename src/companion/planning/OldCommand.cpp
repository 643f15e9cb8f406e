#include "companion/planning/OldCommand.h"

#include "commands/CommandLines.h"
#include "companion/binding/FamilyTypes.h"
#include "companion/planning/RemovalLines.h"
#include "companion/planning/Strategy.h"
#include "foundation/Report.h"
#include "foundation/Text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

/// The commands that one run of zolex carries out.
constexpr std::size_t mostCommands = 16;

constexpr std::string_view configuresAll = "zolex configures all ";

/// Makes what is to be said of the run of zolex over the whole machine.
class OldRun {
  public:
    OldRun(const Snapshot& snapshot, const PlanRequest& request, const MachinePlan& plan)
        : snapshot_(snapshot), request_(request), plan_(plan) {}

    OldCommand run() {
        OldCommand old;
        if (isAnythingPlanned() && !hasKinds() && snapshot_.controllers.count() > 0) {
            old.wouldRun = {"zolex " + (mustClear() ? std::string("/r /y ") : std::string()) +
                            (request_.classDefaults ? "/d" : "/f:" + request_.policiesFile)};
        }
        tellPolicies();
        tellClearing();
        tellOthers();
        tellLeftOut();
        for (const ControllerPlanning& controller : plan_.controllers) {
            for (const std::string& difference : controller.oldDifferences) {
                tell(controller, difference);
            }
        }
        old.differences = std::move(differences_);
        return old;
    }

  private:
    [[nodiscard]] bool isAnythingPlanned() const {
        return std::any_of(plan_.controllers.begin(), plan_.controllers.end(),
                           [](const ControllerPlanning& each) {
                               return each.disposition == Disposition::planned;
                           });
    }

    /// Whether the file holds entries that zolex refuses.
    [[nodiscard]] bool hasKinds() const {
        return !request_.classDefaults &&
               (hasKindEntries(request_.policiesText) || hasFamilyTypes(request_.policiesText));
    }

    static bool holdsSomething(const ControllerPlanning& controller) {
        return !controller.before.groups.empty() || !controller.before.spares.empty();
    }

    /// Whether zolex would meet drives in use, or leave what the plan removes.
    [[nodiscard]] bool mustClear() const {
        return std::any_of(
            plan_.controllers.begin(), plan_.controllers.end(), [](const ControllerPlanning& each) {
                return each.configuration && (needsDrivesInUse(each) || removesSomething(each));
            });
    }

    static bool removesSomething(const ControllerPlanning& controller) {
        return std::any_of(controller.steps.begin(), controller.steps.end(),
                           [](const PlanStep& step) { return step.deletes; });
    }

    /// Whether a drive that is planned is in use.
    static bool needsDrivesInUse(const ControllerPlanning& controller) {
        std::vector<std::string> inUse = controller.before.foreignDrives;
        for (const LayoutGroup& group : controller.before.groups) {
            const std::vector<std::string> drives = group.drives();
            inUse.insert(inUse.end(), drives.begin(), drives.end());
        }
        for (const LayoutSpare& spare : controller.before.spares) {
            inUse.push_back(spare.location);
        }
        const auto isInUse = [&inUse](const std::string& location) {
            return std::find(inUse.begin(), inUse.end(), location) != inUse.end();
        };
        return std::any_of(controller.arrays.begin(), controller.arrays.end(),
                           [&](const PlannedArray& array) {
                               return std::any_of(array.drives.begin(), array.drives.end(),
                                                  [&](const PlannedDrive& drive) {
                                                      return isInUse(drive.location);
                                                  });
                           }) ||
               std::any_of(controller.spares.begin(), controller.spares.end(),
                           [&](const PlannedSpare& spare) { return isInUse(spare.location); });
    }

    void tell(const ControllerPlanning& controller, const std::string& what) {
        differences_.push_back("controller " + std::to_string(controller.controller.number) + ": " +
                               what);
    }

    void tellPolicies() {
        if (hasKinds() && !hasKindEntries(request_.policiesText)) {
            differences_.emplace_back(
                "zolex refuses the file: it does not know controllers of families (t:)");
        } else if (hasKinds()) {
            differences_.push_back(
                "zolex refuses the file: Drives.*, Spares and Level.* are for zolexctl alone; "
                "zolexctl record -o server.zrec, and zolexctl convert --to policies " +
                request_.policiesFile + " --machine server.zrec writes one that it takes");
        }
    }

    /// Its restore takes all of every controller.
    void tellClearing() {
        if (!isAnythingPlanned() || !mustClear()) {
            return;
        }
        const bool isRefused =
            std::any_of(plan_.controllers.begin(), plan_.controllers.end(), needsDrivesInUse);
        differences_.emplace_back(
            isRefused ? "without /r zolex stops at the first drive in use, exit code 11"
                      : "without /r zolex leaves what stands, and adds to it");
        for (const ControllerPlanning& controller : plan_.controllers) {
            const bool stays = controller.disposition != Disposition::planned ||
                               controller.strategy == Strategy::add;
            if (stays && holdsSomething(controller)) {
                tell(controller, "zolex /r erases it, and here it stays as it is");
            }
            if (!holdsSomething(controller)) {
                tellNeedlessReset(controller);
            }
        }
    }

    /// Its restore takes blank controllers, too.
    void tellNeedlessReset(const ControllerPlanning& controller) {
        const RAIDController* const record =
            snapshot_.controllers.controller(controller.controller.index);
        if (record == nullptr) {
            return;
        }
        const std::vector<std::string>& foreign = controller.before.foreignDrives;
        const std::vector<std::string> lines = resetLines(*record, controller.controller.number);
        for (const std::string& line : lines) {
            const bool isRun =
                std::any_of(controller.steps.begin(), controller.steps.end(),
                            [&line](const PlanStep& step) { return step.command == line; });
            if (!isRun) {
                const bool isOfForeign = &line != &lines.front() && !foreign.empty();
                tell(controller, "zolex also runs " + line + ": " +
                                     (isOfForeign ? "the plan does not need " + driveList(foreign)
                                                  : "nothing stands on the controller"));
            }
        }
    }

    /// zolex configures all controllers, and knows no other way.
    void tellOthers() {
        const auto known = std::count_if(snapshot_.details.begin(), snapshot_.details.end(),
                                         [](const ControllerSnapshot& detail) {
                                             return detail.index != ControllerSnapshot::noRecord;
                                         });
        const auto planned = static_cast<std::size_t>(known);
        if (isAnythingPlanned() && planned < snapshot_.controllers.count()) {
            differences_.push_back(std::string(configuresAll) +
                                   std::to_string(snapshot_.controllers.count()) +
                                   " controllers, and this plan " + std::to_string(planned));
        }
    }

    /// ZX601
    void tellLeftOut() {
        std::vector<std::string> lines;
        for (const ControllerPlanning& controller : plan_.controllers) {
            const RAIDController* const record =
                snapshot_.controllers.controller(controller.controller.index);
            if (!controller.configuration || record == nullptr) {
                continue;
            }
            SilentReport silent;
            const CommandLines made = commandLines(*record, controller.controller.number,
                                                   *controller.configuration, {}, silent);
            for (const CString& line : made.lines) {
                lines.emplace_back(line.c_str());
            }
        }
        for (std::size_t i = mostCommands; i < lines.size() && isAnythingPlanned(); ++i) {
            differences_.push_back("ZX601: zolex leaves out command " + std::to_string(i + 1) +
                                   " of " + std::to_string(lines.size()) + ": " + lines[i]);
        }
    }

    const Snapshot& snapshot_;
    const PlanRequest& request_;
    const MachinePlan& plan_;
    std::vector<std::string> differences_;
};

} // namespace

bool reachesOtherControllers(const OldCommand& old) {
    return std::any_of(old.differences.begin(), old.differences.end(),
                       [](const std::string& difference) {
                           return difference.substr(0, configuresAll.size()) == configuresAll;
                       });
}

OldCommand oldCommandOf(const Snapshot& snapshot, const PlanRequest& request,
                        const MachinePlan& plan) {
    return OldRun(snapshot, request, plan).run();
}

} // namespace zolex::companion
