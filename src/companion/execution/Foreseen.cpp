// What a plan foresees of a controller between two of its steps.

#include "companion/execution/Foreseen.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

bool holds(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// Carries out steps on a layout.
class ForeseenLayout {
  public:
    explicit ForeseenLayout(const ControllerPlanning& planning)
        : planning_(planning), layout_(planning.before) {}

    Layout after(std::size_t steps) {
        for (std::size_t i = 0; i < steps; ++i) {
            play(planning_.steps[i]);
        }
        takeCaches(steps);
        normalize(layout_);
        return std::move(layout_);
    }

  private:
    void play(const PlanStep& step) {
        if (step.action == "clear") {
            layout_.groups.clear();
            layout_.spares.clear();
        } else if (step.action == "clear-foreign") {
            layout_.foreignDrives.clear();
        } else if (step.action == "delete-logical-drive") {
            removeVolumes(step.destroys);
        } else if (step.action == "remove-spare") {
            std::erase_if(layout_.spares, [&](const LayoutSpare& spare) {
                return holds(step.destroys, spare.location);
            });
        } else {
            create(step.creates);
        }
    }

    void removeVolumes(const std::vector<std::string>& ids) {
        for (LayoutGroup& group : layout_.groups) {
            const bool leavesRoom = std::erase_if(group.volumes, [&](const LayoutVolume& volume) {
                                        return holds(ids, volume.id);
                                    }) > 0;
            for (LayoutVolume& volume : group.volumes) {
                volume.fills = volume.fills && !leavesRoom;
            }
        }
        std::erase_if(layout_.groups,
                      [](const LayoutGroup& group) { return group.volumes.empty(); });
    }

    void create(const std::vector<std::string>& ids) {
        for (const LayoutGroup& group : planning_.after.groups) {
            LayoutGroup made = group;
            std::erase_if(made.volumes,
                          [&](const LayoutVolume& volume) { return !holds(ids, volume.id); });
            if (!made.volumes.empty()) {
                layout_.groups.push_back(std::move(made)); // over the same drives they become one
            }
        }
        for (const LayoutSpare& spare : planning_.after.spares) {
            if (holds(ids, spare.location)) {
                layout_.spares.push_back(spare);
                for (std::string& array : layout_.spares.back().covers) {
                    array = idOf(array);
                }
            }
        }
    }

    /// The id that the wanted array has where it stands.
    [[nodiscard]] std::string idOf(const std::string& array) const {
        for (const LayoutGroup& wanted : planning_.after.groups) {
            for (const LayoutGroup& group : layout_.groups) {
                if (wanted.id == array && group.drives() == wanted.drives()) {
                    return group.id;
                }
            }
        }
        return array;
    }

    /// Cache modes are as they come until the last step that sets some is done.
    void takeCaches(std::size_t steps) {
        const auto isSet = [](const PlanStep& step) { return step.action == "set"; };
        const auto begin = planning_.steps.begin();
        if (std::none_of(begin, planning_.steps.end(), isSet)) {
            return;
        }
        const bool isSetAll =
            std::none_of(begin + static_cast<std::ptrdiff_t>(steps), planning_.steps.end(), isSet);
        for (LayoutGroup& group : layout_.groups) {
            for (LayoutVolume& volume : group.volumes) {
                volume.writeCache.clear();
                volume.readCache.clear();
            }
            if (isSetAll) {
                takeWantedCaches(group);
            }
        }
    }

    void takeWantedCaches(LayoutGroup& group) const {
        const std::vector<std::string> drives = group.drives();
        for (const LayoutGroup& wanted : planning_.after.groups) {
            if (wanted.drives() != drives) {
                continue;
            }
            for (std::size_t i = 0; i < std::min(wanted.volumes.size(), group.volumes.size());
                 ++i) {
                group.volumes[i].writeCache = wanted.volumes[i].writeCache;
                group.volumes[i].readCache = wanted.volumes[i].readCache;
            }
        }
    }

    const ControllerPlanning& planning_;
    Layout layout_;
};

} // namespace

std::string expectedHash(const ControllerPlanning& planning, std::size_t steps) {
    if (steps > 0) {
        return planning.steps[steps - 1].expectedAfter;
    }
    return planning.beforeHash.empty() ? layoutHash(planning.controller.facts)
                                       : planning.beforeHash;
}

Layout layoutAfterSteps(const ControllerPlanning& planning, std::size_t steps) {
    return ForeseenLayout(planning).after(std::min(steps, planning.steps.size()));
}

bool standsAfterSteps(const MachinePlan& /*plan*/, const ControllerPlanning& planning,
                      std::size_t steps, const Facts& facts) {
    const std::size_t done = std::min(steps, planning.steps.size());
    if (layoutHash(facts) == expectedHash(planning, done)) {
        return true;
    }
    Layout foreseen = layoutAfterSteps(planning, done);
    // The very drives that the command lines name, and no equal ones.
    for (LayoutGroup& group : foreseen.groups) {
        group.isListed = true;
    }
    for (LayoutSpare& spare : foreseen.spares) {
        spare.isListed = true;
    }
    const Layout found = capturedLayout(facts);
    return found.foreignDrives == foreseen.foreignDrives &&
           compareLayouts(facts, found, foreseen, {planning.controller.utility}).result ==
               Sameness::same;
}

} // namespace zolex::companion
