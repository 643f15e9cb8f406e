// From policies to command lines, for 36 controllers of 144 drives each.

#include "CpuTime.h"
#include "MemoryPlatform.h"

#include "commands/CommandLines.h"
#include "driver/Application.h"
#include "driver/KnownMachine.h"
#include "driver/PolicyArguments.h"
#include "engine/PolicyInterpreter.h"
#include "inventory/ControllerList.h"
#include "model/RAIDController.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::bench {
namespace {

constexpr std::int32_t sizeMb = 69618;

using Types = std::array<std::int32_t, 3>;
constexpr Types threeUtilities = {controller_type::megaRaid, controller_type::arcconf7,
                                  controller_type::family};
/// Others take at most 16 drives into an array, of which 144 drives need too many.
constexpr Types megaCliOnly = {controller_type::megaRaid, controller_type::megaRaid,
                               controller_type::megaRaid};

/// As many controllers as there can be, with a drive at every place; each type for 15 of them.
ControllerList largestServer(const Types& types) {
    constexpr std::size_t ofOneUtility = 15;
    ControllerList list;
    for (std::size_t i = 0; i < ControllerList::maxControllers; ++i) {
        auto controller = std::make_unique<RAIDController>();
        controller->setType(types[i / ofOneUtility]);
        controller->setSubtype(1);
        controller->setScanOrder(static_cast<std::int32_t>(i % ofOneUtility + 1));
        for (std::int32_t channel = 1; channel < RAIDController::channels; ++channel) {
            for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
                controller->setSizeAndTarget(channel, id, sizeMb, channel + 7);
            }
        }
        list.add(std::move(*controller));
    }
    return list;
}

/// 100 policies with 15 AppliesTo entries each, of which the very last one is met.
std::string policiesWith(const std::string& entries) {
    std::string text;
    for (int policy = 1; policy <= 100; ++policy) {
        text += "[Policy." + std::to_string(policy) + "]\n";
        for (int entry = 1; entry <= 14; ++entry) {
            text += "AppliesTo." + std::to_string(entry) + " = t:Kestrix-D4,d:143,m:8837\n";
        }
        text += policy < 100 ? "AppliesTo.15 = s:KX1,d:144\n" : "AppliesTo.15 = ALL\n";
        text += entries;
    }
    return text;
}

/// Eight arrays of 16 drives, each with a logical drive, named by position, and eight hot spares.
std::string listedDrives() {
    std::string text = "Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\n";
    for (int array = 0; array < 8; ++array) {
        text += std::string("Array.") + static_cast<char>('A' + array) + " = ";
        for (int drive = 0; drive < 16; ++drive) {
            text += (drive == 0 ? "" : ",") + std::to_string(array * 16 + drive + 1);
        }
        text += "\nLogical." + std::to_string(array + 1) + " = " + static_cast<char>('A' + array) +
                ":FILL:5\n";
    }
    return text + "Hotspares = 137,138,139,140,141,142,143,144\n";
}

constexpr const char* chosenDrives = "Array_Defaults = 5%:8\n";

/// The plans of all controllers; none when one has got no layout.
std::vector<ControllerPlan> plan(Application& application, const PolicyList& policies,
                                 const ControllerList& controllers) {
    PolicyInterpreter interpreter(policies, {}, application.report());
    PolicyInterpreter::Result result = interpreter.createConfigurations(
        controllers, [&application] { return knownMachine(application); });
    const bool whole = result.done() && std::all_of(result.plans.begin(), result.plans.end(),
                                                    [](const ControllerPlan& plan) {
                                                        return plan.layout.has_value();
                                                    });
    return whole ? std::move(result.plans) : std::vector<ControllerPlan>();
}

void planAll(benchmark::State& state, const Types& types, const std::string& entries) {
    MemoryPlatform platform(policiesWith(entries));
    Application application(platform);
    application.settings.policiesFile = "policies.ini";
    PolicyReader reader(platform.files(), application.catalogue(), application.report());
    if (!reader.read(policySource(application.settings))) {
        state.SkipWithError("the policies were refused");
        return;
    }
    for (auto _ : state) {
        ControllerList controllers = largestServer(types);
        const CpuTime time(state);
        if (plan(application, *reader.policies(), controllers).empty()) {
            state.SkipWithError("a controller was not planned");
            break;
        }
    }
}

// Bound by the comparison with 1500 AppliesTo entries a controller.
void matchAndPlanListedDrives(benchmark::State& state) {
    planAll(state, threeUtilities, listedDrives());
}
BENCHMARK(matchAndPlanListedDrives)->UseManualTime()->Unit(benchmark::kMillisecond);

// Bound by the walks over the 144 places for each hot spare and array that is chosen.
void matchAndPlanChosenDrives(benchmark::State& state) {
    planAll(state, megaCliOnly, chosenDrives);
}
BENCHMARK(matchAndPlanChosenDrives)->UseManualTime()->Unit(benchmark::kMillisecond);

// Bound by the formatting of numbers: about 300 for each controller.
void generateCommands(benchmark::State& state) {
    MemoryPlatform platform(policiesWith(listedDrives()));
    Application planner(platform);
    planner.settings.policiesFile = "policies.ini";
    PolicyReader reader(platform.files(), planner.catalogue(), planner.report());
    ControllerList controllers = largestServer(threeUtilities);
    const std::vector<ControllerPlan> plans = reader.read(policySource(planner.settings))
                                                  ? plan(planner, *reader.policies(), controllers)
                                                  : std::vector<ControllerPlan>();
    if (plans.empty()) {
        state.SkipWithError("a controller was not planned");
        return;
    }
    for (std::size_t i = 0; i < plans.size(); ++i) {
        controllers.controller(i)->setCaptured(*plans[i].layout);
    }
    for (auto _ : state) {
        std::size_t generated = 0;
        {
            const CpuTime time(state);
            for (std::size_t i = 0; i < controllers.count(); ++i) {
                const RAIDController& controller = *controllers.controller(i);
                const CommandLines lines =
                    commandLines(controller, static_cast<std::int32_t>(i + 1),
                                 *controller.captured(), {}, planner.report());
                generated += lines.fault ? 0 : 1;
            }
        }
        if (generated != controllers.count()) {
            state.SkipWithError("no commands were generated");
            break;
        }
    }
}
BENCHMARK(generateCommands)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace zolex::bench
