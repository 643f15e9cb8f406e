// Faults that were found by making every operation fail. Each test begins with the symptom.

#include "faults/FaultRun.h"

#include "foundation/AllocationFaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace zolex::test {
namespace {

const Scenario& scenario(std::string_view name) {
    const auto found =
        std::find_if(scenarios().begin(), scenarios().end(),
                     [name](const Scenario& candidate) { return candidate.name == name; });
    EXPECT_NE(found, scenarios().end());
    return *found;
}

// Symptom: half of a parameter file counted as the whole of it, so that a run could begin without
// the switch that was to keep it from executing anything.
TEST(FoundFaults, AParameterFileReadInPartIsACommandLineError) {
    const Outcome got =
        FaultRun(scenario("parameters of a file"), {Operation::readInPart, 1, false}).run();
    EXPECT_EQ(4, got.exitCode);
    EXPECT_EQ("\n#### ERROR\n\tCould not read parameter file:  params.txt\n\n", got.output);
    EXPECT_TRUE(got.children.empty());
}

// Symptom: controllers that stood behind the place where reading failed were not there, and the run
// succeeded.
TEST(FoundFaults, ADefinitionFileReadInPartDefinesNothing) {
    const Scenario& deploy = scenario("definition, deploy");
    const Outcome first = FaultRun(deploy, {Operation::readInPart, 1, false}).run();
    EXPECT_EQ(10, first.exitCode);
    EXPECT_TRUE(first.output.ends_with(
        "\n#### ERROR\n\tCould not read controller-definition file:  def.ini\n\n"));
    // Opened again for the drives, it is not there: the controllers had none.
    const Outcome second = FaultRun(deploy, {Operation::open, 2, false}).run();
    EXPECT_EQ(8, second.exitCode);
    EXPECT_TRUE(second.output.ends_with(
        "\n#### ERROR\n\tCould not read controller-definition file:  def.ini\n\n"));
}

// Symptom: a definition file that was not there was taken for an empty one without a word.
TEST(FoundFaults, AMissingDefinitionFileIsNamed) {
    const Outcome got = FaultRun(scenario("definition, deploy"), {Operation::open, 1, false}).run();
    EXPECT_EQ(0, got.exitCode);
    EXPECT_EQ("Started ZOLEX.\nNo supported RAID controllers found.\n", got.output);
    EXPECT_EQ("Could not open controller-definition file:  def.ini\n", got.error);
}

// Symptom: what stood in an inventory file behind the place where reading failed was reported as
// missing from it.
TEST(FoundFaults, AnInventoryFileReadInPartIsNamed) {
    const Outcome got =
        FaultRun(scenario("inventory, deploy"), {Operation::readInPart, 1, false}).run();
    EXPECT_EQ(10, got.exitCode);
    EXPECT_EQ("Started ZOLEX.\n\n#### ERROR\n\tCould not read inventory file:  contlist.ini\n\n",
              got.output);
}

// Symptom: a file that was there but could not be opened counted as missing, and policies were
// appended to it under names that it had already.
TEST(FoundFaults, APoliciesFileThatCannotBeReadIsNotAppendedTo) {
    const Outcome got = FaultRun(scenario("capture appends"), {Operation::open, 1, false}).run();
    EXPECT_EQ(9, got.exitCode);
    EXPECT_TRUE(holds(got.output, "\n#### ERROR\n\tCould not open policies file:  p.ini\n\n"));
    EXPECT_EQ(policiesBefore(scenario("capture appends")), got.policies);
}

// Symptom: when reading the temp file failed within a block, the next blocks were appended behind
// the hole.
TEST(FoundFaults, NothingIsAppendedBehindAPlaceThatCouldNotBeRead) {
    const Scenario& capture = scenario("capture into a new file");
    const Outcome whole = FaultRun(capture, {}).run();
    const Outcome got = FaultRun(capture, {Operation::readInPart, 2, false}).run();
    EXPECT_EQ(9, got.exitCode);
    EXPECT_EQ(whole.policies.substr(0, 50), got.policies);
}

// Symptom: a capture that could not go back to the start of its temp file had made an empty
// policies file, which no deploy takes.
TEST(FoundFaults, NoEmptyPoliciesFileIsMade) {
    const Outcome got =
        FaultRun(scenario("capture into a new file"), {Operation::rewind, 1, false}).run();
    EXPECT_EQ(9, got.exitCode);
    EXPECT_FALSE(got.hasPolicies);
}

// Symptom: a temp file that could not be deleted stayed behind without a word.
TEST(FoundFaults, ATempFileThatStaysIsNamed) {
    const Outcome got = FaultRun(scenario("capture appends"), {Operation::remove, 1, false}).run();
    EXPECT_EQ(0, got.exitCode);
    EXPECT_TRUE(got.hasTempFile);
    EXPECT_EQ("Could not delete temp file:  ZOLEXM~~.TMP\n", got.error);
}

// Symptom: a restore without memory for its runner ended with exit code 10 and said nothing.
TEST(FoundFaults, AWorkerWithoutMemoryIsNamed) {
    FakePlatform platform;
    class Application : public ZOLEX {
      public:
        using ZOLEX::makeRunner;
        using ZOLEX::ZOLEX;
    };
    Application application(platform);
    failAllocation(Allocation::nothrow, 1);
    const bool made = application.makeRunner() != nullptr;
    failAllocation(Allocation::nothrow, 0);
    EXPECT_FALSE(made);
    EXPECT_TRUE(holds(platform.consoleFake.error, "\n\nMemory Allocation Error\n\n"));
    EXPECT_TRUE(holds(platform.consoleFake.error, "ZOLEX::makeRunner\n"));
}

} // namespace
} // namespace zolex::test
