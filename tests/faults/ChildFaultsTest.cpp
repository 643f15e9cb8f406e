// Every child fails once, in every way that a child can fail, in every mode of a run.

#include "faults/FaultRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace zolex::test {
namespace {

struct ChildOperation {
    Operation operation;
    const char* name;
};
constexpr std::array<ChildOperation, 5> childOperations{{
    {Operation::pipe, "pipe"},
    {Operation::start, "start"},
    {Operation::limit, "limit"},
    {Operation::exitCode, "exit code"},
    {Operation::handles, "handles"},
}};

constexpr const char* detector = "hwdetect.exe /i";

/// What a run ends with when the command of such a line fails, and how it says so.
struct Kind {
    const char* line;
    int exitCode;
    const char* failure;
};
constexpr std::array<Kind, 3> kinds{{
    {"Capture Command=", 8, "     Error gathering information from controller "},
    {"Restore Command=", 7, "     Error restoring controller "},
    {"Deploy Command=", 11, "     Error deploying configuration to controller "},
}};

/// The kind of the command that was shown last.
const Kind& lastKind(const std::string& output) {
    const auto place = [&output](const Kind& kind) {
        const std::size_t at = output.rfind(kind.line);
        return at == std::string::npos ? 0 : at + 1;
    };
    return *std::max_element(kinds.begin(), kinds.end(), [&place](const Kind& a, const Kind& b) {
        return place(a) < place(b);
    });
}

bool isTestDouble(const std::string& command) {
    return command.starts_with("fakeraid ");
}

/// The words for the way in which a command failed.
std::string reason(Operation operation, const std::string& command) {
    switch (operation) {
    case Operation::pipe:
        return "CreatePipe Faield:Tool::Tool()\n";
    case Operation::limit:
        return "\n### Process " + command +
               " has failed to execute within the five minute limit.\nProcess cancelled.\n";
    case Operation::exitCode:
        // "UTIL.BAT" and the name of the utility, which the test double stands for too.
        return "     Received error return code 77 from the " +
               (isTestDouble(command)
                    ? "UTIL.BAT "
                    : command.substr(0, command.find(' ', command.find(' ') + 1)) + " command.\n");
    default:
        return "Executing:" + command + "\n";
    }
}

void expectFailedCommand(Operation operation, const std::string& command, const Outcome& got) {
    const Kind& kind = lastKind(got.output);
    EXPECT_EQ(kind.exitCode, got.exitCode);
    EXPECT_TRUE(
        holds(got.output, (isTestDouble(command) ? "FakeRAID Command=" : kind.line) + command));
    EXPECT_TRUE(holds(got.output, kind.failure)) << kind.failure;
    EXPECT_TRUE(holds(got.output, reason(operation, command))) << reason(operation, command);
    // Nothing was run after it.
    EXPECT_EQ(command, got.children.back());
}

void expectNothingOpen(const Outcome& got) {
    EXPECT_EQ(0, got.openFiles);
    EXPECT_EQ(0, got.openKeys);
}

void expectDetectorFailure(Operation operation, const Outcome& got) {
    EXPECT_TRUE(holds(got.output, operation == Operation::exitCode
                                      ? "ZOLEXSupport.gatherHardwareInfo: Return code is 77.\n"
                                      : "ZOLEXSupport.gatherHardwareInfo:Execution failed.\n"));
}

/// Without the detector, what does not need to know the machine is done as before.
void expectRunWithoutDetector(Operation operation, const Scenario& scenario, const Outcome& whole,
                              const Outcome& got) {
    expectDetectorFailure(operation, got);
    if (got.exitCode == 5) { // a deploy has to know it
        EXPECT_TRUE(holds(got.output, "\n#### ERROR\n\tCould not detect the system machine type "
                                      "or serial number.\n\n"));
        EXPECT_FALSE(holds(got.output, "Deploy Command="));
        EXPECT_EQ(policiesBefore(scenario), got.policies);
        return;
    }
    EXPECT_EQ(0, got.exitCode);
    if (!scenario.ordersByBus) {
        EXPECT_EQ(whole.children, got.children);
    }
    // Complete policies, though without the names of the machine.
    std::string expected = whole.policies;
    for (const char* name : {"8837", "KQ12345"}) {
        for (std::size_t at = expected.find(name, policiesBefore(scenario).size());
             at != std::string::npos; at = expected.find(name, at)) {
            expected.erase(at, std::string(name).size());
        }
    }
    EXPECT_EQ(expected, got.policies);
}

int timesExecuted(const Outcome& got, const std::string& command) {
    const std::string line = "Executing:" + command + "\n";
    int times = 0;
    for (std::size_t at = got.output.find(line); at != std::string::npos;
         at = got.output.find(line, at + 1)) {
        ++times;
    }
    return times;
}

bool isSecondTry(const Outcome& got) {
    return got.exitCode == 0 && holds(got.struck.front(), " ARCCONF SETCONFIG ");
}

/// `faults` has the number of failures of each way.
void expectManyFaults(std::map<std::string, int> faults) {
    int all = 0;
    for (const ChildOperation& row : childOperations) {
        EXPECT_GT(faults[row.name], 80) << row.name;
        all += faults[row.name];
    }
    testing::Test::RecordProperty("faults", all);
}

TEST(ChildFaults, EachIsToldAndHarmsNothing) {
    std::map<std::string, int> faults;
    for (const Scenario& scenario : scenarios()) {
        const Outcome whole = FaultRun(scenario, {}).run();
        ASSERT_EQ(0, whole.exitCode) << scenario.name;
        for (const ChildOperation& row : childOperations) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " + row.name + " " +
                             std::to_string(n));
                const Outcome got = FaultRun(scenario, {row.operation, n, false}).run();
                expectNothingOpen(got);
                if (got.struck.empty()) {
                    EXPECT_EQ(whole.children, got.children);
                    break;
                }
                ++faults[row.name];
                if (got.struck.front() == detector) {
                    expectRunWithoutDetector(row.operation, scenario, whole, got);
                } else {
                    expectNoHarm(scenario, whole, got);
                    if (row.operation == Operation::exitCode && isSecondTry(got)) {
                        // A reset that is refused once is tried again.
                        EXPECT_EQ(2, timesExecuted(got, got.struck.front()));
                    } else {
                        expectFailedCommand(row.operation, got.struck.front(), got);
                    }
                }
                if (testing::Test::HasFailure()) {
                    FAIL() << got.exitCode << testing::PrintToString(got.struck) << got.output;
                }
            }
        }
    }
    expectManyFaults(faults);
}

/// The commands that were struck, without the detector.
std::vector<std::string> struckCommands(const Outcome& got) {
    std::vector<std::string> commands;
    std::copy_if(got.struck.begin(), got.struck.end(), std::back_inserter(commands),
                 [](const std::string& command) { return command != detector; });
    return commands;
}

// Nothing that a run is told by one controller is used once another of them has failed.
TEST(ChildFaults, EveryChildFailsFromThenOn) {
    std::map<std::string, int> faults;
    for (const Scenario& scenario : scenarios()) {
        const Outcome whole = FaultRun(scenario, {}).run();
        for (const ChildOperation& row : childOperations) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " + row.name + " " +
                             std::to_string(n));
                const Outcome got = FaultRun(scenario, {row.operation, n, true}).run();
                expectNothingOpen(got);
                if (got.struck.empty()) {
                    EXPECT_EQ(whole.children, got.children);
                    break;
                }
                ++faults[row.name];
                const std::vector<std::string> commands = struckCommands(got);
                if (commands.empty()) {
                    expectRunWithoutDetector(row.operation, scenario, whole, got);
                } else {
                    const bool withoutDetector = got.struck.front() == detector;
                    if (withoutDetector) {
                        expectDetectorFailure(row.operation, got);
                    }
                    // A machine that is not known has its controllers in another order.
                    expectNoHarm(scenario,
                                 withoutDetector
                                     ? FaultRun(scenario, {row.operation, n, false}).run()
                                     : whole,
                                 got);
                    EXPECT_NE(0, got.exitCode);
                    EXPECT_EQ(policiesBefore(scenario), got.policies);
                    expectFailedCommand(row.operation, commands.front(), got);
                    // Only a reset that is refused is tried again.
                    const bool twice = row.operation == Operation::exitCode &&
                                       holds(commands.front(), " ARCCONF SETCONFIG ");
                    EXPECT_EQ(std::vector<std::string>(twice ? 2 : 1, commands.front()), commands);
                }
                if (testing::Test::HasFailure()) {
                    FAIL() << got.exitCode << testing::PrintToString(got.struck) << got.output;
                }
            }
        }
    }
    expectManyFaults(faults);
}

} // namespace
} // namespace zolex::test
