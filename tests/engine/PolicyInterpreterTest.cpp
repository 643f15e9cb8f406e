#include "engine/PolicyInterpreter.h"

#include "driver/KnownMachine.h"
#include "engine/PlanningFixture.h"
#include "inventory/ControllerList.h"
#include "show/Dumps.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

Policy policyFor(const char* name, AppliesTo entry) {
    Policy policy = makePolicy(name);
    policy.appliesTo.push_back(std::move(entry));
    return policy;
}

AppliesTo everything() {
    AppliesTo entry;
    entry.all = true;
    return entry;
}

AppliesTo ofType(const char* model) {
    AppliesTo entry;
    entry.controllerType = model;
    return entry;
}

/// A machine whose detector gave a type and a serial number.
struct Machine : Bench {
    Machine() {
        application.machine->machineType = "8837";
        application.machine->serialNumber = "ABC1234";
    }

    RAIDController& add(std::int32_t type, std::int32_t subtype, std::vector<DriveAt> drives) {
        return *controllers.add(*makeController(type, subtype, drives));
    }
    /// Plans the controllers and keeps the plans in them.
    bool interpret(const PolicyList& policies, std::int32_t verbosity = level::progress) {
        application.printer().setVerbosity(verbosity);
        PolicyInterpreter interpreter(policies,
                                      {.reportUnmatched = application.settings.e1, .reasons = true},
                                      application.report());
        result = interpreter.createConfigurations(controllers,
                                                  [this] { return knownMachine(application); });
        for (std::size_t i = 0; i < result.plans.size(); ++i) {
            EXPECT_EQ(result.plans[i].number, static_cast<std::int32_t>(i + 1));
            keepPlan(*controllers.controller(i), result.plans[i]);
        }
        return result.done();
    }
    [[nodiscard]] std::int32_t returnCode() const {
        return result.fault ? planningCodeOf(result.fault->kind) : planning_code::none;
    }

    ControllerList controllers;
    PolicyInterpreter::Result result;
};

TEST(MachineInformation, ComesFromTheDetector) {
    Machine machine;
    EXPECT_TRUE(machine.interpret(listOf({}), level::detail));
    EXPECT_EQ(machine.takeOutput(), "Machine type = 8837, serial number = ABC1234\n");
    EXPECT_TRUE(machine.interpret(listOf({}), level::progress));
    EXPECT_EQ(machine.takeOutput(), "");
    EXPECT_TRUE(machine.platform.fileFake.opened.empty());
}

TEST(MachineInformation, ComesFromTheInventoryFile) {
    Machine machine;
    machine.application.settings.fake = true;
    machine.platform.fileFake.files["contlist.ini"] =
        "[System]\nTotal_Number_Of_Controllers=1\nmachType = 5944X\nserial=S77\n";
    machine.add(12, 2, equalDrives(2));
    AppliesTo entry;
    entry.machineType = "5944x";
    entry.serialNumber = "s77";
    EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.inv", entry)}), level::detail));
    const std::string output = machine.takeOutput();
    EXPECT_TRUE(output.starts_with("Getting machine information from file:  contlist.ini\n"
                                   "Machine type = 5944X, serial number = S77\n"
                                   "\tKestrix-C1, controller 1 using policy:  Policy.inv\n"))
        << output;
    EXPECT_EQ(machine.platform.fileFake.opened, std::vector<std::string>{"r contlist.ini"});
    EXPECT_EQ(machine.application.machine->machineType, "8837") << "the application's own stay";
}

TEST(MachineInformation, AbsentKeysGiveEmptyTexts) {
    Machine machine;
    machine.application.settings.fake = true;
    for (const char* content : {"[System]\n", "[Other]\nmachType=1\n", ""}) {
        machine.platform.fileFake.files["contlist.ini"] = content;
        EXPECT_TRUE(machine.interpret(listOf({}), level::detail));
        EXPECT_EQ(machine.takeOutput(), "Getting machine information from file:  contlist.ini\n"
                                        "Machine type = , serial number = \n");
    }
}

// Symptom: when the inventory file could not be read a second time, controllers were matched as if
// the machine had neither type nor serial number, and the run succeeded.
TEST(MachineInformation, CannotBeHadFromAnInventoryFileThatCannotBeRead) {
    Machine machine;
    machine.application.settings.fake = true;
    EXPECT_FALSE(machine.interpret(listOf({}), level::progress));
    EXPECT_EQ(machine.takeOutput(),
              "\n#### ERROR\n\tCould not read inventory file:  contlist.ini\n\n"
              "\n#### ERROR\n\tCould not detect the system machine type or serial number.\n\n");
}

TEST(MachineInformation, CannotBeHadAfterAFailedDetector) {
    Machine machine;
    machine.application.machine.reset();
    RAIDController& controller = machine.add(12, 2, equalDrives(2));
    EXPECT_FALSE(machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
    EXPECT_EQ(machine.takeOutput(),
              "Entering PolicyInterpreter::createConfigurations\n"
              "\n#### ERROR\n\tCould not detect the system machine type or serial number.\n\n"
              "Exiting PolicyInterpreter::createConfigurations(1)\n");
    EXPECT_EQ(controller.captured(), nullptr);
}

// A run from a controller-definition file asks no detector: the empty texts count as had.
TEST(MachineInformation, EmptyTextsOfADefinitionRunCountAsHad) {
    Machine machine;
    machine.application.settings.controllerDefinitionFile = "controllers.def";
    machine.application.machine->machineType = "";
    machine.application.machine->serialNumber = "";
    machine.add(12, 2, equalDrives(2));
    EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.a", everything())})));
    EXPECT_NE(machine.controllers.controller(0)->captured(), nullptr);
}

TEST(CreateConfigurations, NoControllerAtAll) {
    Machine machine;
    EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
    EXPECT_EQ(machine.takeOutput(), "Entering PolicyInterpreter::createConfigurations\n"
                                    "Machine type = 8837, serial number = ABC1234\n"
                                    "Exiting PolicyInterpreter::createConfigurations(4)\n");
    EXPECT_FALSE(machine.result.noDrives);
}

TEST(CreateConfigurations, TwoControllersOfOneModelAreToldApart) {
    Machine machine;
    machine.add(12, 2, equalDrives(2));
    machine.add(12, 2, equalDrives(2));
    AppliesTo second;
    second.controllerNumber = 2;
    const PolicyList policies =
        listOf({policyFor("Policy.second", second), policyFor("Policy.any", everything())});
    ASSERT_TRUE(machine.interpret(policies, level::detail));
    const std::string output = machine.takeOutput();
    EXPECT_NE(output.find("\tKestrix-C1, controller 1 using policy:  Policy.any\n"),
              std::string::npos);
    EXPECT_NE(output.find("\tKestrix-C1, controller 2 using policy:  Policy.second\n"),
              std::string::npos);
    EXPECT_EQ(machine.controllers.controller(0)->captured()->policyName, "Policy.any");
    EXPECT_EQ(machine.controllers.controller(1)->captured()->policyName, "Policy.second");
}

TEST(CreateConfigurations, EveryValueIsHandedToTheMatch) {
    struct Row {
        const char* title;
        AppliesTo hit;
        AppliesTo miss;
    };
    const auto entry = [](auto set) {
        AppliesTo made;
        set(made);
        return made;
    };
    const std::vector<Row> rows{
        {"machine type", entry([](AppliesTo& e) { e.machineType = "8837"; }),
         entry([](AppliesTo& e) { e.machineType = "8838"; })},
        {"serial number", entry([](AppliesTo& e) { e.serialNumber = "abc1234"; }),
         entry([](AppliesTo& e) { e.serialNumber = "ABC"; })},
        {"model name", ofType("Kestrix-B2"), ofType("Kestrix-B1")},
        {"controller number", entry([](AppliesTo& e) { e.controllerNumber = 2; }),
         entry([](AppliesTo& e) { e.controllerNumber = 1; })},
        {"scan order", entry([](AppliesTo& e) { e.scanOrder = 7; }),
         entry([](AppliesTo& e) { e.scanOrder = 2; })},
        {"number of drives", entry([](AppliesTo& e) { e.numberOfDrives = 3; }),
         entry([](AppliesTo& e) { e.numberOfDrives = 4; })},
    };
    for (const Row& row : rows) {
        Machine machine;
        machine.add(12, 2, equalDrives(5)).setScanOrder(3);
        RAIDController& controller = machine.add(7, 1, equalDrives(3));
        controller.setScanOrder(7);
        ASSERT_TRUE(machine.interpret(
            listOf({policyFor("Policy.miss", row.miss), policyFor("Policy.hit", row.hit)})));
        ASSERT_NE(controller.captured(), nullptr) << row.title;
        EXPECT_EQ(controller.captured()->policyName, "Policy.hit") << row.title;
    }
}

TEST(CreateConfigurations, ASkippedControllerDoesNotEndTheRun) {
    Machine machine;
    machine.add(10, -1, equalDrives(1));
    machine.add(12, 2, equalDrives(2));
    ASSERT_TRUE(machine.interpret(listOf({policyFor("Policy.a", everything())})));
    EXPECT_EQ(machine.takeOutput(),
              "\tSkipped LSI-SAS-RAID controller -- Not enough drives available.\n");
    EXPECT_EQ(machine.controllers.controller(0)->captured(), nullptr);
    EXPECT_NE(machine.controllers.controller(1)->captured(), nullptr);

    Machine quiet;
    quiet.add(10, -1, equalDrives(1));
    ASSERT_TRUE(quiet.interpret(listOf({policyFor("Policy.a", everything())}), level::always));
    EXPECT_EQ(quiet.takeOutput(), "");
}

TEST(CreateConfigurations, NoMatchIsReportedAsTheSettingsSay) {
    struct Row {
        bool e1;
        std::int32_t verbosity;
        const char* output;
    };
    const std::vector<Row> rows{
        {true, level::progress, "\tNo policy match found for Kestrix-C1, controller 1.\n"},
        {true, level::always, ""},
        {false, level::progress, ""},
        {false, level::detail,
         "Machine type = 8837, serial number = ABC1234\n"
         "\tKestrix-C1, controller 1 using policy:  No policy found.\n"},
    };
    for (const Row& row : rows) {
        Machine machine;
        machine.application.settings.e1 = row.e1;
        machine.add(12, 2, equalDrives(2));
        EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.a", ofType("Kestrix-B1"))}),
                                      row.verbosity));
        EXPECT_EQ(machine.takeOutput(), row.output);
        EXPECT_EQ(machine.result.noPolicyFound, row.e1);
        EXPECT_EQ(machine.controllers.controller(0)->captured(), nullptr);
        EXPECT_EQ(describeUsed(*machine.controllers.controller(0)), "");
    }
}

TEST(CreateConfigurations, AnUnmatchedControllerDoesNotEndTheRun) {
    Machine machine;
    machine.application.settings.e1 = true;
    machine.add(7, 7, equalDrives(2));
    machine.add(12, 2, equalDrives(2));
    machine.add(7, 1, equalDrives(2));
    ASSERT_TRUE(machine.interpret(listOf({policyFor("Policy.a", ofType("Kestrix-C1"))})));
    EXPECT_EQ(machine.takeOutput(), "\tNo policy match found for Kestrix-B1, controller 1.\n"
                                    "\tNo policy match found for Kestrix-B2, controller 3.\n");
    EXPECT_NE(machine.controllers.controller(1)->captured(), nullptr);
}

TEST(CreateConfigurations, ControllersWithoutDrivesSetTheFlag) {
    struct Row {
        const char* title;
        std::vector<DriveAt> drives;
        const char* model; // that the only policy is for
        bool flag;
    };
    const std::vector<Row> rows{
        {"drives, matched", equalDrives(1), "Kestrix-C1", false},
        {"drives, unmatched", equalDrives(1), "Kestrix-C2", false},
        {"no drives, matched", {}, "Kestrix-C1", true},
        {"no drives, unmatched", {}, "Kestrix-C2", true},
        {"a drive on channel 0 does not count", {{0, 1, 70000}}, "Kestrix-C1", true},
    };
    for (const Row& row : rows) {
        Machine machine;
        machine.add(12, 2, row.drives);
        EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.a", ofType(row.model))})));
        EXPECT_EQ(machine.result.noDrives, row.flag) << row.title;
    }
}

TEST(CreateConfigurations, TheFlagStandsEvenWhenTheControllerCannotBePlanned) {
    Machine machine;
    machine.add(13, -1, {});
    EXPECT_FALSE(machine.interpret(listOf({policyFor("Policy.a", everything())})));
    EXPECT_TRUE(machine.result.noDrives);
}

TEST(CreateConfigurations, AnUnknownTypeIsAnInternalError) {
    for (const std::int32_t type : {13, 0, -1}) {
        Machine machine;
        machine.add(type, -1, equalDrives(2));
        EXPECT_FALSE(
            machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
        EXPECT_EQ(machine.takeOutput(),
                  "Entering PolicyInterpreter::createConfigurations\n"
                  "Machine type = 8837, serial number = ABC1234\n"
                  "\n#### ERROR\n\tInternal error.  Controller type not found:  " +
                      std::to_string(type) +
                      "\nExiting PolicyInterpreter::createConfigurations(2)\n");
    }
    // Without a matching policy the type does not matter.
    Machine machine;
    machine.add(13, -1, equalDrives(2));
    EXPECT_TRUE(machine.interpret(listOf({policyFor("Policy.a", ofType("Kestrix-C1"))})));
}

TEST(CreateConfigurations, APlanningFaultEndsTheRun) {
    Machine machine;
    machine.add(12, 2, equalDrives(2));
    RAIDController& after = machine.add(12, 2, equalDrives(2));
    Policy policy = policyFor("Policy.a", everything());
    policy.arrayDefaults.hotspareCount = 3;
    EXPECT_FALSE(machine.interpret(listOf({policy}), level::traces));
    const std::string output = machine.takeOutput();
    EXPECT_TRUE(output.ends_with("Exiting RAIDConfigCreator::createConfig(2)\n"
                                 "Exiting PolicyInterpreter::createConfigurations(3)\n"))
        << output;
    EXPECT_EQ(machine.returnCode(), 12);
    EXPECT_EQ(after.captured(), nullptr);
    EXPECT_EQ(describeUsed(after), "");
}

TEST(CreateConfigurations, CreationTracesByType) {
    struct Row {
        std::int32_t type;
        const char* next; // between the machine information and the plan
    };
    const std::vector<Row> rows{
        {1, "Creating KXConfig\n"},   {2, "Creating KXTConfig\n"},  {3, "Creating SATAConfig\n"},
        {4, "Creating SCSIConfig\n"}, {5, "Creating LSIConfig\n"},  {6, ""},
        {7, "Creating KXTConfig\n"},  {8, "Creating SATAConfig\n"}, {9, "Creating SATAConfig\n"},
        {10, "Creating LSIConfig\n"}, {11, "Creating KXTConfig\n"}, {12, "Creating MEGAConfig\n"},
    };
    for (const Row& row : rows) {
        Machine machine;
        machine.add(row.type, 1, equalDrives(2));
        EXPECT_TRUE(
            machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
        const std::string output = machine.takeOutput();
        EXPECT_TRUE(
            output.starts_with(std::string("Entering PolicyInterpreter::createConfigurations\n"
                                           "Machine type = 8837, serial number = ABC1234\n") +
                               row.next + "Entering RAIDConfigCreator::createConfig\n"))
            << output;
    }
}

TEST(CreateConfigurations, APlannedControllerIsDumpedInVerboseMode) {
    Machine machine;
    RAIDController& controller = machine.add(12, 2, equalDrives(2));
    ASSERT_TRUE(machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
    const std::string traced = machine.takeOutput();
    const std::string plan = "Configuration is NOT NULL\n"
                             "\tKestrix-C1, controller 1 using policy:  Policy.a\n"
                             "Dumping controller information.\n"
                             "#### START Configuration dump ####\n";
    EXPECT_NE(traced.find(plan), std::string::npos) << traced;
    EXPECT_TRUE(traced.ends_with("\n#### END Configuration dump ####\n"
                                 "Exiting PolicyInterpreter::createConfigurations(4)\n"));

    Printer& printer = machine.application.printer();
    printer.setVerbosity(level::always);
    printer.printAlways(show::dumpText(*controller.captured()));
    const std::string dump = machine.takeOutput();
    const auto replan = [](std::int32_t verbosity) {
        Machine other;
        other.add(12, 2, equalDrives(2));
        EXPECT_TRUE(other.interpret(listOf({policyFor("Policy.a", everything())}), verbosity));
        return other.takeOutput();
    };
    EXPECT_EQ(replan(level::detail), "Machine type = 8837, serial number = ABC1234\n"
                                     "\tKestrix-C1, controller 1 using policy:  Policy.a\n" +
                                         dump);
    EXPECT_EQ(replan(level::progress), "");
}

TEST(CreateConfigurations, ASkippedControllerIsTracedAndNotDumped) {
    Machine machine;
    machine.add(12, 2, {});
    ASSERT_TRUE(machine.interpret(listOf({policyFor("Policy.a", everything())}), level::traces));
    EXPECT_TRUE(machine.takeOutput().ends_with(
        "Exiting RAIDConfigCreator::createConfig(1)\n"
        "Configuration is NULL\n"
        "\tSkipped Kestrix-C1 controller -- Not enough drives available.\n"
        "Exiting PolicyInterpreter::createConfigurations(4)\n"));
}

} // namespace
} // namespace zolex::test
