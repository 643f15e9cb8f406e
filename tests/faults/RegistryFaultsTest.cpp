// Every call to the registry fails once, and from some moment on, in every mode of a run. A call
// that fails ends the walk at its place without a message: what was found until then is the server.

#include "faults/FaultRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

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

/// The policies that a run has added, each with the comment in front of it.
std::vector<std::string> addedPolicies(const Scenario& scenario, const Outcome& got) {
    const std::string before = policiesBefore(scenario);
    EXPECT_TRUE(got.policies.starts_with(before)) << got.policies;
    std::vector<std::string> policies;
    const std::string start = "\n\n; *-";
    std::size_t at = before.size();
    while (at < got.policies.size()) {
        EXPECT_EQ(0, got.policies.compare(at, start.size(), start)) << got.policies.substr(at);
        const std::size_t end = std::min(got.policies.find(start, at + 1), got.policies.size());
        policies.push_back(got.policies.substr(at, end - at));
        EXPECT_TRUE(holds(policies.back(), "\n[Policy.")) << policies.back();
        at = end;
    }
    return policies;
}

/// Takes the number that the comment of a policy names out of it; 0 when it names none.
int takeControllerNumber(std::string& policy) {
    const std::string start = "\n; * Controller number:        ";
    const std::size_t at = policy.find(start);
    if (at == std::string::npos) {
        return 0;
    }
    const std::size_t end = policy.find('\n', at + 1);
    const int number = std::stoi(policy.substr(at + start.size(), end - at));
    policy.erase(at, end - at);
    return number;
}

/// A capture has added one policy for each controller that was found: policies of the untouched
/// run, none of them twice and word for word but for the number of the controller. Only their order
/// may be another, as a controller whose bus is not known has another place. Gives their number.
int expectPoliciesOfTheSmallerServer(const Scenario& scenario, const Outcome& whole,
                                     const Outcome& got) {
    std::vector<std::string> expected = addedPolicies(scenario, whole);
    const bool isCapture = !expected.empty();
    EXPECT_EQ(isCapture ? controllersFound(whole) : 0, static_cast<int>(expected.size()));
    for (std::string& policy : expected) {
        takeControllerNumber(policy);
    }
    std::vector<std::string> policies = addedPolicies(scenario, got);
    EXPECT_EQ(isCapture ? controllersFound(got) : 0, static_cast<int>(policies.size()));
    int number = 0;
    for (std::string& policy : policies) {
        EXPECT_EQ(++number, takeControllerNumber(policy));
        const auto same = std::find(expected.begin(), expected.end(), policy);
        if (same == expected.end()) {
            ADD_FAILURE() << "not a policy of the untouched run:" << policy;
            break;
        }
        expected.erase(same);
    }
    return number;
}

class RegistryFaults : public testing::TestWithParam<bool> {};

TEST_P(RegistryFaults, LeaveASmallerServerThatIsServedWhole) {
    const bool lasting = GetParam();
    int faults = 0;
    int policies = 0;
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
                policies += expectPoliciesOfTheSmallerServer(scenario, whole, got);
                if (testing::Test::HasFailure()) {
                    FAIL() << got.exitCode << got.output << got.policies;
                }
            }
        }
    }
    RecordProperty("faults", faults);
    EXPECT_GT(faults, 100);
    EXPECT_GT(policies, 100);
}

INSTANTIATE_TEST_SUITE_P(Length, RegistryFaults, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& length) {
                             return length.param ? "FromThenOn" : "Once";
                         });

} // namespace
} // namespace zolex::test
