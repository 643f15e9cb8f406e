#include "companion/families/Family.h"
#include "companion/json/PlanPieces.h"
#include "companion/planning/FamilyLines.h"
#include "companion/planning/Steps.h"
#include "foundation/Text.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <set>

namespace zolex::companion {

namespace {

using Names = std::set<std::string_view>;

/// One kind of step. Columns: word; whether it deletes.
struct ActionRow {
    std::string_view action;
    bool deletes;
};
constexpr std::array<ActionRow, 8> actionRows{{{"clear", true},
                                               {"clear-foreign", true},
                                               {"delete-logical-drive", true},
                                               {"remove-spare", true},
                                               {"create-array", false},
                                               {"create-logical-drive", false},
                                               {"create-spare", false},
                                               {"set", false}}};

std::string listed(std::string_view what, std::string_view list) {
    return "\"" + std::string(what) + "\" is none of " + std::string(list);
}

/// Checks the wanted layout of a controller; places are those of the document.
class WantedCheck {
  public:
    WantedCheck(const ControllerPlanning& planning, const Part& part)
        : planning_(planning), part_(part) {
        for (const MachineDrive& drive : planning.controller.drives) {
            if (!drives_.insert(drive.facts.location).second) {
                part.fail("drives", "has the location \"" + drive.facts.location + "\" twice");
            }
        }
    }

    void run() {
        checkArrays();
        checkVolumes();
        checkSpares();
        for (std::size_t i = 0; i < planning_.bindings.size(); ++i) {
            for (const BoundDrive& drive : planning_.bindings[i].drives) {
                checkDrive(drive.location, "bindings[" + std::to_string(i) + "].drives");
            }
        }
    }

  private:
    void checkDrive(const std::string& location, const std::string& place) const {
        if (!drives_.contains(location)) {
            part_.fail(place, listed(location, "the controller's drives"));
        }
    }

    void checkArrays() {
        // Several arrays may lie on the very same drives.
        std::set<std::vector<std::string>> known;
        for (std::size_t i = 0; i < planning_.arrays.size(); ++i) {
            const PlannedArray& array = planning_.arrays[i];
            const std::string place = "after.arrays[" + std::to_string(i) + "]";
            if (!arrays_.insert(array.id).second) {
                part_.fail(place + ".id", "\"" + array.id + "\" is the id of two arrays");
            }
            std::vector<std::string> drives;
            for (const PlannedDrive& drive : array.drives) {
                checkDrive(drive.location, place + ".drives");
                drives.push_back(drive.location);
            }
            if (drives.empty()) {
                part_.fail(place + ".drives", "is empty");
            }
            std::sort(drives.begin(), drives.end());
            if (!known.insert(drives).second) {
                continue;
            }
            for (const PlannedDrive& drive : array.drives) {
                if (!taken_.insert(drive.location).second) {
                    part_.fail(place + ".drives",
                               "\"" + drive.location + "\" is planned for two things");
                }
            }
        }
    }

    void checkVolumes() {
        Names ids;
        for (std::size_t i = 0; i < planning_.volumes.size(); ++i) {
            const PlannedVolume& volume = planning_.volumes[i];
            const std::string place = "after.logical_drives[" + std::to_string(i) + "]";
            if (!ids.insert(volume.id).second) {
                part_.fail(place + ".id", "\"" + volume.id + "\" is the id of two logical drives");
            }
            if (!arrays_.contains(volume.array)) {
                part_.fail(place + ".array", listed(volume.array, "the planned arrays"));
            }
        }
    }

    void checkSpares() {
        for (std::size_t i = 0; i < planning_.spares.size(); ++i) {
            const PlannedSpare& spare = planning_.spares[i];
            const std::string place = "after.hotspares[" + std::to_string(i) + "]";
            checkDrive(spare.location, place + ".location");
            if (!taken_.insert(spare.location).second) {
                part_.fail(place + ".location",
                           "\"" + spare.location + "\" is planned for two things");
            }
            for (const std::string& array : spare.covers) {
                if (!arrays_.contains(array)) {
                    part_.fail(place + ".covers", listed(array, "the planned arrays"));
                }
            }
        }
    }

    const ControllerPlanning& planning_;
    const Part& part_;
    Names drives_;
    Names arrays_;
    Names taken_; ///< drives
};

/// What stands on a controller and can be lost, and what steps can make and destroy.
struct NamesOf {
    Names logicalDrives;
    Names spares;
    Names drives;
    Names made;
    Names lost;

    explicit NamesOf(const ControllerPlanning& planning) {
        for (const LayoutGroup& group : planning.before.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                logicalDrives.insert(volume.id);
            }
        }
        for (const LayoutSpare& spare : planning.before.spares) {
            spares.insert(spare.location);
        }
        for (const MachineDrive& drive : planning.controller.drives) {
            drives.insert(drive.facts.location);
        }
        for (const PlannedArray& array : planning.arrays) {
            made.insert(array.id);
        }
        for (const PlannedVolume& volume : planning.volumes) {
            made.insert(volume.id);
        }
        for (const PlannedSpare& spare : planning.spares) {
            made.insert(spare.location);
        }
        for (const Loss& loss : planning.losses) {
            lost.insert(loss.id);
        }
    }
};

/// Checks the losses and steps of a plan. They stand in one list each, in the order of the
/// controllers.
class StepCheck {
  public:
    StepCheck(const MachinePlan& plan, const Part& part) : plan_(plan), part_(part) {}

    void run() {
        for (const ControllerPlanning& planning : plan_.controllers) {
            const NamesOf names(planning);
            for (const Loss& loss : planning.losses) {
                checkLoss(loss, names, planning);
            }
            for (const PlanStep& step : planning.steps) {
                checkStep(step, names, planning);
            }
        }
    }

  private:
    void checkLoss(const Loss& loss, const NamesOf& names, const ControllerPlanning& planning) {
        const Part item = partOf("destroys", "items", loss_++);
        checkOrder(item, loss.controller, planning);
        const bool isDrive = loss.kind == "logical_drive";
        const bool isSpare = loss.kind == "hotspare";
        if (!isDrive && !isSpare && loss.kind != "foreign") {
            item.fail("kind", "is the unknown word \"" + loss.kind + "\"");
        }
        const Names& known = isDrive ? names.logicalDrives : isSpare ? names.spares : names.drives;
        if (!known.contains(loss.id)) {
            item.fail("id", listed(loss.id, isDrive   ? "the logical drives that stand"
                                            : isSpare ? "the hot spares that stand"
                                                      : "the controller's drives"));
        }
    }

    void checkStep(const PlanStep& step, const NamesOf& names, const ControllerPlanning& planning) {
        const Part item = partOf({}, "steps", step_++);
        checkOrder(item, step.controller, planning);
        if (static_cast<std::size_t>(step.step) != step_) {
            item.fail("step",
                      "is " + std::to_string(step.step) + " instead of " + std::to_string(step_));
        }
        if (planning.disposition != Disposition::planned) {
            item.fail("controller", std::to_string(step.controller) + " is " +
                                        std::string(dispositionWord(planning.disposition)) +
                                        ", not planned");
        }
        checkAction(step, item);
        checkCommand(step, planning.controller, item);
        if (const Family* const family = findFamily(planning.controller.utility)) {
            // Nothing is run that nobody agreed to.
            if (!isLineOfStep(*family, planning, step)) {
                item.fail("command", "is not what the step says that it does");
            }
        }
        for (const std::string& made : step.creates) {
            if (!names.made.contains(made)) {
                item.fail("creates", listed(made, "what is planned"));
            }
        }
        for (const std::string& lost : step.destroys) {
            if (!names.lost.contains(lost)) {
                item.fail("destroys", listed(lost, "what is lost"));
            }
        }
        if (plan_.rehearsal.done && !step.expectedAfter.empty() &&
            !plan_.rehearsal.layouts.contains(step.expectedAfter)) {
            item.fail("expected_after.layout_sha256", "is none of rehearsal.layouts");
        }
    }

    static void checkAction(const PlanStep& step, const Part& item) {
        const auto* const row =
            std::find_if(actionRows.begin(), actionRows.end(),
                         [&](const ActionRow& each) { return each.action == step.action; });
        if (row == actionRows.end()) {
            item.fail("action", "is the unknown word \"" + step.action + "\"");
        }
        if (row->deletes != step.deletes) {
            item.fail("actions", row->deletes ? "lacks \"delete\"" : "has \"delete\"");
        }
    }

    /// What is run is what is shown, and is the controller's own utility.
    static void checkCommand(const PlanStep& step, const ControllerSnapshot& controller,
                             const Part& item) {
        constexpr std::string_view wrapper = "UTIL.BAT";
        const bool isOfFamily = findFamily(controller.utility) != nullptr;
        const std::size_t word = isOfFamily ? 0 : 1; // of the utility
        if (step.argv.size() <= word ||
            step.argv[0] != (isOfFamily ? controller.utility : wrapper) ||
            step.argv[word] != controller.utility) {
            item.fail("argv", "does not begin with " +
                                  (isOfFamily ? std::string() : std::string(wrapper) + " and ") +
                                  controller.utility);
        }
        if (step.argv != splitCommandLine(step.command)) {
            item.fail("argv", "is not what \"command\" says");
        }
        // No plan is made with it: a utility's refusal of what the system uses is heeded.
        const auto isForce = [](const std::string& argument) {
            return text::equalsNoCase(argument, "force") || text::equalsNoCase(argument, "--force");
        };
        if (isOfFamily && std::any_of(step.argv.begin(), step.argv.end(), isForce)) {
            item.fail("argv", "has \"force\", which no plan says");
        }
    }

    /// The document has one list for all controllers; the plan one for each.
    static void checkOrder(const Part& item, std::int32_t controller,
                           const ControllerPlanning& planning) {
        if (item.number("controller") != controller || controller != planning.controller.number) {
            item.fail("controller", "is not in the order of the controllers");
        }
    }

    Part partOf(std::string_view outer, std::string_view list, std::size_t index) const {
        const Json& document = part_.json();
        const Json& holder = outer.empty() ? document : document.at(std::string(outer));
        const std::string place = (outer.empty() ? "" : std::string(outer) + ".") +
                                  std::string(list) + "[" + std::to_string(index) + "]";
        return Part(holder.at(std::string(list)).at(index), place);
    }

    const MachinePlan& plan_;
    const Part& part_;
    std::size_t loss_ = 0;
    std::size_t step_ = 0;
};

} // namespace

void checkPlanning(const ControllerPlanning& planning, const Part& part) {
    WantedCheck(planning, part).run();
}

void checkPlan(const MachinePlan& plan, const Part& part) {
    std::set<std::int32_t> numbers;
    for (const ControllerPlanning& planning : plan.controllers) {
        const std::int32_t number = planning.controller.number;
        if (!numbers.insert(number).second) {
            part.fail("controllers", "has the number " + std::to_string(number) + " twice");
        }
    }
    StepCheck(plan, part).run();
    if (!plan.isApplicable()) {
        return;
    }
    const bool isOfMachine = !plan.fingerprint.identity.empty();
    if (!isOfMachine || plan.id.empty()) {
        part.fail(isOfMachine ? "plan_id" : "fingerprint", "is null in a plan that has steps");
    }
    const std::string consent = consentCode(plan.fingerprint.identity, plan.losses());
    if (plan.consent != consent) {
        const Part destroys = part.object("destroys");
        destroys.fail("consent", "is not the code of what is lost");
    }
}

} // namespace zolex::companion
