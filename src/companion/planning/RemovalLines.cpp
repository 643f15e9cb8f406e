#include "companion/planning/RemovalLines.h"

#include "commands/CommandSource.h"
#include "companion/planning/Losses.h"
#include "companion/text/Sizes.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

/// Makes the removing steps of one controller.
class Remover {
  public:
    Remover(const RAIDController& record, const ControllerPlanning& planning,
            const StepChoice& choice)
        : record_(record), planning_(planning), choice_(choice) {}

    Removal make() {
        if (choice_.clearsAll) {
            addWholeClear();
        } else {
            removeSingly();
        }
        addForeignClear();
        tellLeftOut();
        return std::move(removal_);
    }

  private:
    /// zolex's reset line of an index; empty when there is none.
    [[nodiscard]] std::string resetLine(std::size_t index) const {
        const std::vector<std::string> lines = resetLines(record_, planning_.controller.number);
        return index < lines.size() ? lines[index] : "";
    }

    PlanStep& add(const char* action, std::string command, std::string summary) {
        PlanStep step = stepOf(record_, planning_, action, std::move(command));
        step.deletes = true;
        step.summary = std::move(summary);
        removal_.steps.push_back(std::move(step));
        return removal_.steps.back();
    }

    void lose(PlanStep& step, Loss loss) {
        step.destroys.push_back(loss.id);
        removal_.losses.push_back(std::move(loss));
    }

    void addWholeClear() {
        std::size_t volumes = 0;
        for (const LayoutGroup& group : planning_.before.groups) {
            volumes += group.volumes.size();
        }
        const std::size_t spares = planning_.before.spares.size();
        std::string what;
        if (volumes > 0) {
            what = countText(volumes, "logical drive", "logical drives");
        }
        if (spares > 0) {
            what += (what.empty() ? "" : " and ") + countText(spares, "spare", "spares");
        }
        PlanStep& step = add("clear", resetLine(0),
                             "clear the controller: " + (what.empty() ? "it is blank" : what));
        step.isRepeatable = true;
        for (const LayoutGroup& group : planning_.before.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                lose(step, volumeLoss(planning_, group, volume));
            }
        }
        for (const LayoutSpare& spare : planning_.before.spares) {
            lose(step, spareLoss(planning_, spare));
        }
    }

    void removeSingly() {
        for (std::size_t index = planning_.before.spares.size(); index-- > 0;) {
            if (!choice_.parts.sparesKept[index]) {
                removeSpare(planning_.before.spares[index]);
            }
        }
        for (std::size_t group = planning_.before.groups.size(); group-- > 0;) {
            for (std::size_t volume = planning_.before.groups[group].volumes.size();
                 volume-- > choice_.parts.volumesKept[group];) {
                going_.push_back({group, volume});
            }
        }
        // By number, so that no number can change before its logical drive is deleted.
        std::stable_sort(going_.begin(), going_.end(), [this](const auto& one, const auto& other) {
            return numberOf(one) > numberOf(other);
        });
        for (const StandingParts::Volume& each : going_) {
            removeVolume(each);
        }
    }

    void removeSpare(const LayoutSpare& spare) {
        PlanStep& step =
            add("remove-spare", spareLine(spare.location), "remove the spare " + spare.location);
        step.differsFromZolex = "zolex clears the controller as a whole";
        lose(step, spareLoss(planning_, spare));
    }

    void removeVolume(const StandingParts::Volume& each) {
        const LayoutGroup& group = planning_.before.groups[each.group];
        const LayoutVolume& volume = group.volumes[each.volume];
        PlanStep& step = add("delete-logical-drive", volumeLine(numberOf(each)),
                             "delete LD " + volume.id + ": " +
                                 (volume.raidType.empty() ? "" : volume.raidType + " ") + "on " +
                                 driveList(groupDrives(group)));
        step.differsFromZolex = "zolex clears the controller as a whole";
        lose(step, volumeLoss(planning_, group, volume));
    }

    [[nodiscard]] std::int32_t numberOf(const StandingParts::Volume& each) const {
        const LayoutGroup& group = planning_.before.groups[each.group];
        return commandNumberOf(planning_, group.volumes[each.volume].id).value_or(0);
    }

    /// The utility's word with what zolex writes before its parameters.
    [[nodiscard]] std::string start() const {
        return std::string(traitsOf(record_.type()).utilityCommand);
    }
    [[nodiscard]] bool isMegaCli() const {
        return traitsOf(record_.type()).dialect == Dialect::megaCli;
    }
    [[nodiscard]] std::string adapterOption() const {
        return " -a" + std::to_string(record_.scanOrder() - 1);
    }

    [[nodiscard]] std::string spareLine(const std::string& location) const {
        if (isMegaCli()) {
            return start() + " -PDHSP -Rmv -PhysDrv[" + location + "]" + adapterOption();
        }
        const std::size_t colon = location.find(':');
        return start() + " SETSTATE " + std::to_string(record_.scanOrder()) + " DEVICE " +
               location.substr(0, colon) + " " +
               (colon == std::string::npos ? "" : location.substr(colon + 1)) + " RDY";
    }

    [[nodiscard]] std::string volumeLine(std::int32_t number) const {
        if (isMegaCli()) {
            return start() + " -CfgLdDel -L" + std::to_string(number) + adapterOption();
        }
        return start() + " DELETE " + std::to_string(record_.scanOrder()) + " LOGICALDRIVE " +
               std::to_string(number) + " NOPROMPT";
    }

    void addForeignClear() {
        if (!choice_.clearsForeign) {
            return;
        }
        const std::vector<std::string>& drives = planning_.before.foreignDrives;
        PlanStep& step =
            add("clear-foreign", resetLine(1),
                drives.empty() ? "clear the layouts of other controllers: there are none"
                               : "clear the layouts of other controllers: " + driveList(drives));
        step.isRepeatable = true;
        for (const std::string& drive : drives) {
            lose(step, foreignLoss(planning_, drive));
        }
    }

    void tellLeftOut() {
        // Whether zolex would clear a blank controller depends on the others.
        if (planning_.before.groups.empty() && planning_.before.spares.empty()) {
            return;
        }
        if (!choice_.clearsAll) {
            leaveOut(0, removal_.steps.empty() ? "what stands stays"
                                               : "the plan removes only what is in the way");
        }
        if (!choice_.clearsForeign) {
            const std::vector<std::string>& drives = planning_.before.foreignDrives;
            leaveOut(1, drives.empty() ? "there is nothing that it would clear"
                                       : "the plan does not need " + driveList(drives));
        }
        for (const PlanStep& step : removal_.steps) {
            if (!step.differsFromZolex.empty()) {
                removal_.oldDifferences.push_back("zolex does not run " + step.command + ": " +
                                                  step.differsFromZolex);
            }
        }
    }

    void leaveOut(std::size_t index, const std::string& why) {
        if (const std::string line = resetLine(index); !line.empty()) {
            removal_.oldDifferences.push_back("zolex also runs " + line + ": " + why);
        }
    }

    const RAIDController& record_;
    const ControllerPlanning& planning_;
    const StepChoice& choice_;
    std::vector<StandingParts::Volume> going_;
    Removal removal_;
};

} // namespace

Removal makeRemoval(const RAIDController& record, const ControllerPlanning& planning,
                    const StepChoice& choice) {
    return Remover(record, planning, choice).make();
}

std::vector<std::string> resetLines(const RAIDController& record, std::int32_t number) {
    SilentReport silent;
    RestoreDefaults source({}, silent);
    std::vector<std::string> lines;
    for (std::size_t index = 0; index < source.numberOfCommands(record); ++index) {
        lines.emplace_back(source.getCommand(record, number, index).c_str());
    }
    return lines;
}

PlanStep stepOf(const RAIDController& record, const ControllerPlanning& planning,
                const char* action, std::string command) {
    PlanStep step;
    step.controller = planning.controller.number;
    step.action = action;
    step.command = std::move(command);
    step.argv = splitCommandLine(step.command);
    for (std::int32_t slot = 1; slot <= 3; ++slot) {
        const std::int32_t code = ControllerCatalogue::getAcceptedReturnCode(record.type(), slot);
        if (code >= 0) {
            step.acceptedExitCodes.push_back(code);
        }
    }
    step.pauseBeforeSeconds = traitsOf(record.type()).secondsBeforeCommand;
    return step;
}

} // namespace zolex::companion
