#include "companion/planning/Steps.h"

#include "companion/planning/CreateLines.h"
#include "companion/planning/Exchange.h"
#include "companion/planning/RemovalLines.h"
#include "companion/planning/Strategy.h"

#include <cstdint>
#include <utility>

namespace zolex::companion {

namespace {

template <typename Value>
void append(std::vector<Value>& to, std::vector<Value> from) {
    for (Value& value : from) {
        to.push_back(std::move(value));
    }
}

void addFault(ControllerPlanning& planning, Finding fault) {
    planning.diagnostics.push_back(std::move(fault));
}

} // namespace

void makeSteps(const RAIDController& record, StrategyWish wish, ControllerPlanning& planning) {
    planning.steps.clear();
    planning.losses.clear();
    planning.strategyBecause.clear();
    if (!planning.configuration) {
        return;
    }
    const RAIDConfiguration byZolex = *planning.configuration;
    if (wish != StrategyWish::rebuild && planning.comparison.result == Sameness::different &&
        planForStandingDrives(planning) && planning.comparison.result != Sameness::different) {
        return;
    }
    StepChoice choice = chooseStrategy(abilitiesOf(record), wish, planning);
    planning.strategy = choice.strategy;
    planning.strategyBecause = choice.because;
    if (choice.strategy == Strategy::none) {
        return;
    }
    Creation creation = makeCreation(record, planning, choice, byZolex);
    append(choice.faults, std::move(creation.faults));
    if (!choice.faults.empty()) {
        for (Finding& fault : choice.faults) {
            addFault(planning, std::move(fault));
        }
        return;
    }
    Removal removal = makeRemoval(record, planning, choice);
    planning.losses = std::move(removal.losses);
    append(planning.oldDifferences, std::move(removal.oldDifferences));
    append(planning.oldDifferences, std::move(creation.oldDifferences));
    append(planning.steps, std::move(removal.steps));
    append(planning.steps, std::move(creation.steps));
    std::int32_t number = 0;
    for (PlanStep& step : planning.steps) {
        step.step = ++number;
    }
}

} // namespace zolex::companion
