#include "commands/CommandLines.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "policies/PolicyFile.h"

#include <gtest/gtest.h>

#include <vector>

namespace zolex {
namespace {

RAIDController controllerWithDrives(std::int32_t type, std::int32_t subtype, std::int32_t drives) {
    RAIDController controller;
    controller.setType(type);
    controller.setSubtype(subtype);
    controller.setScanOrder(1);
    for (std::int32_t id = 0; id < drives; ++id) {
        controller.addDrive(1, id, 70000, "SAS", 8);
    }
    return controller;
}

// The first controller was configured before the fault of the second, known beforehand, was told.
TEST(WholeMachine, EveryFaultOfEveryControllerIsKnownBeforeALineIsRun) {
    constexpr const char* text = "[Policy.one]\nAppliesTo.1 = c:1\n"
                                 "[Policy.two]\nAppliesTo.1 = c:2\n"
                                 "Array_Mode = CUSTOM\nArray.A = 1,2,3\nHotspares = 4\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:40%:5\nLogical.2 = A:FILL:5\n"
                                 "[Policy.three]\nAppliesTo.1 = c:3\n"
                                 "Array_Mode = CUSTOM\nArray.A = 1,9\n";
    SilentReport report;
    const PolicyFile file = readPolicies(text, ControllerCatalogue(), {}, report);
    ASSERT_TRUE(file.policies);
    ControllerList controllers;
    controllers.add(controllerWithDrives(controller_type::megaRaid, 1, 5));
    controllers.add(controllerWithDrives(controller_type::arcconf7, 1, 5));
    controllers.add(controllerWithDrives(controller_type::megaRaid, 1, 5));
    const ControllerList before = controllers;

    std::vector<FaultKind> faults;
    std::size_t lines = 0;
    for (const ControllerPlan& plan : planControllers(controllers, *file.policies, {}, report)) {
        if (plan.fault) {
            faults.push_back(plan.fault->kind);
        }
        if (plan.layout) {
            const RAIDController& controller =
                *controllers.controller(static_cast<std::size_t>(plan.number - 1));
            const CommandLines made =
                commandLines(controller, plan.number, *plan.layout, {}, report);
            lines += made.lines.size();
            if (made.fault) {
                EXPECT_EQ(made.fault->place.controller, 2);
                faults.push_back(made.fault->kind);
            }
        }
    }
    EXPECT_GT(lines, 0U);
    EXPECT_EQ(faults, (std::vector<FaultKind>{FaultKind::secondLogicalDrive,
                                              FaultKind::planArrayDriveMissing}));
    EXPECT_EQ(controllers, before);
}

} // namespace
} // namespace zolex
