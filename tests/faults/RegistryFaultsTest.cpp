// Every call to the registry fails once, and from some moment on, in every mode of a run. A call
// that fails ends the walk at its place without a message: what was found until then is the server.

#include "faults/FaultRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

namespace zolex::test {
namespace {

constexpr std::array<Operation, 3> registryOperations = {
    Operation::registryOpen, Operation::registrySubkey, Operation::registryValue};

/// The number in "Found %d supported RAID controllers."; 0 when there are none.
int controllersFound(const Outcome& got) {
    const std::string start = "Found ";
    const std::size_t at = got.output.find(start);
    if (at == std::string::npos) {
        EXPECT_TRUE(holds(got.output, "No supported RAID controllers found.\n"));
        return 0;
    }
    return std::stoi(got.output.substr(at + start.size()));
}

/// Whether a command for this family of utilities was run.
bool wasAsked(const Outcome& got, const char* utility) {
    return std::any_of(got.children.begin(), got.children.end(),
                       [utility](const std::string& command) { return holds(command, utility); });
}

int familiesAsked(const Outcome& got) {
    int families = 0;
    for (const char* utility : {" MEGACLI ", " HRCONF ", " ARCCONF ", " CFGGEN "}) {
        families += wasAsked(got, utility) ? 1 : 0;
    }
    return families;
}

bool readsRegistry(const Scenario& scenario) {
    return FaultRun(scenario, {}).run().calls[static_cast<std::size_t>(Operation::registryOpen)] >
           0;
}

class RegistryFaults : public testing::TestWithParam<bool> {};

TEST_P(RegistryFaults, LeaveASmallerServerThatIsServedWhole) {
    const bool lasting = GetParam();
    int faults = 0;
    for (const Scenario& scenario : scenarios()) {
        if (!readsRegistry(scenario)) {
            continue;
        }
        const Outcome whole = FaultRun(scenario, {}).run();
        for (const Operation operation : registryOperations) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " +
                             std::to_string(static_cast<int>(operation)) + " " + std::to_string(n));
                const Outcome got = FaultRun(scenario, {operation, n, lasting}).run();
                EXPECT_EQ(0, got.openKeys);
                EXPECT_EQ(0, got.openFiles);
                EXPECT_FALSE(got.hasTempFile && !scenario.keepsTempFile);
                if (got.struck.empty()) {
                    EXPECT_EQ(whole.children, got.children);
                    break;
                }
                ++faults;
                EXPECT_TRUE(got.struck.front().starts_with("SYSTEM\\CurrentControlSet\\Enum\\PCI"));
                const int found = controllersFound(got);
                const bool isDetection = scenario.arguments == std::vector<std::string>{"/e2"};
                EXPECT_EQ(isDetection && found == 0 ? 2 : 0, got.exitCode) << got.output;
                if (!isDetection && scenario.arguments.front() != "/r:1" &&
                    scenario.arguments.front() != "/r:2") {
                    EXPECT_EQ(found, familiesAsked(got)) << got.output;
                }
                EXPECT_TRUE(got.policies.starts_with(policiesBefore(scenario)));
                if (found == 0) {
                    EXPECT_EQ(policiesBefore(scenario), got.policies);
                }
            }
        }
    }
    RecordProperty("faults", faults);
    EXPECT_GT(faults, 100);
}

INSTANTIATE_TEST_SUITE_P(Length, RegistryFaults, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& length) {
                             return length.param ? "FromThenOn" : "Once";
                         });

} // namespace
} // namespace zolex::test
