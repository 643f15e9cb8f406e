// Every operation on a file fails once, and from some moment on, in every mode of a run.

#include "faults/FaultRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace zolex::test {
namespace {

struct FileOperation {
    Operation operation;
    const char* name;
};
constexpr std::array<FileOperation, 11> fileOperations{{
    {Operation::open, "open"},
    {Operation::create, "create"},
    {Operation::lock, "lock"},
    {Operation::read, "read"},
    {Operation::readInPart, "read in part"},
    {Operation::write, "write"},
    {Operation::writeInPart, "write in part"},
    {Operation::rewind, "rewind"},
    {Operation::flush, "flush"},
    {Operation::close, "close"},
    {Operation::remove, "remove"},
}};

/// Ways in which a run may tell that it could not use a file.
struct Told {
    const char* text;
    std::set<int> exitCodes;
};
const std::vector<Told>& waysToTell(const std::string& file) {
    static const std::map<std::string, std::vector<Told>> ways = {
        {"p.ini",
         {{"\n#### ERROR\n\tCould not open policies file:  p.ini\n\n", {5, 9}},
          {"\n#### ERROR\n\tCould not open policies file for writing:  p.ini\n", {9}},
          {"\n#### ERROR\n\tError writing to policies file.\n"
           "Warning: Partial data may have been written.\n\n",
           {9}}}},
        {"ZOLEXM~~.TMP",
         {{"\n#### ERROR\n\tCould not write to temp space.  ZOLEX requires temp space to run.\n\n",
           {9}},
          // It could not be read again.
          {"\n#### ERROR\n\tError writing to policies file.\n"
           "Warning: Partial data may have been written.\n\n",
           {9}},
          {"Could not delete temp file:  ZOLEXM~~.TMP\n", {0, 9}}}},
        {"def.ini",
         {{"\n#### ERROR\n\tCould not read controller-definition file:  def.ini\n\n", {8, 10}},
          // A definition file that is missing defines no controllers.
          {"Could not open controller-definition file:  def.ini\n", {0}}}},
        {"contlist.ini",
         {{"\n#### ERROR\n\tCould not read inventory file:  contlist.ini\n\n", {5, 10}},
          {"\n#### ERROR\n\tNo Controllers Found in Inventory File\n\n", {10}}}},
        {"params.txt",
         {{"\n#### ERROR\n\tCould not read parameter file:  params.txt\n\n", {4}},
          // Without its parameters the command line asks for nothing.
          {"Could not open parameter file:  params.txt\n", {4}}}},
    };
    return ways.at(file);
}

bool isTold(const Outcome& got) {
    return std::any_of(got.struck.begin(), got.struck.end(), [&got](const std::string& file) {
        const std::vector<Told>& ways = waysToTell(file);
        return std::any_of(ways.begin(), ways.end(), [&got](const Told& way) {
            return holds(got.output + got.error, way.text) &&
                   way.exitCodes.count(got.exitCode) != 0;
        });
    });
}

/// What a missing definition file leaves to do.
bool isEmptyRun(const Outcome& got) {
    return got.exitCode == 0 && got.children.empty() &&
           holds(got.output, "No supported RAID controllers found.\n");
}

class FileFaults : public testing::TestWithParam<bool> {};

TEST_P(FileFaults, EachIsToldAndHarmsNothing) {
    const bool lasting = GetParam();
    std::map<std::string, int> faults;
    for (const Scenario& scenario : scenarios()) {
        const Outcome whole = FaultRun(scenario, {}).run();
        ASSERT_EQ(0, whole.exitCode) << scenario.name << whole.output;
        for (const FileOperation& row : fileOperations) {
            for (int n = 1;; ++n) {
                SCOPED_TRACE(std::string(scenario.name) + ", " + row.name + " " +
                             std::to_string(n));
                const Outcome got = FaultRun(scenario, {row.operation, n, lasting}).run();
                EXPECT_EQ(0, got.openFiles);
                EXPECT_EQ(0, got.openKeys);
                if (got.struck.empty()) { // there is no n-th call
                    EXPECT_TRUE(whole.output == got.output) << got.output;
                    EXPECT_EQ(whole.calls, got.calls);
                    break;
                }
                ++faults[row.name];
                if (isEmptyRun(got)) {
                    EXPECT_TRUE(isTold(got)) << got.output << got.error;
                    EXPECT_EQ(got.policies, policiesBefore(scenario));
                    continue;
                }
                expectNoHarm(scenario, whole, got);
                if (got.exitCode != 0 || got.output != whole.output) {
                    EXPECT_TRUE(isTold(got)) << got.exitCode << testing::PrintToString(got.struck)
                                             << got.output << got.error;
                }
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
    for (const FileOperation& row : fileOperations) {
        EXPECT_GT(faults[row.name], 0) << row.name;
        RecordProperty(std::string("faults_") + row.name, faults[row.name]);
    }
}

INSTANTIATE_TEST_SUITE_P(Length, FileFaults, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& length) {
                             return length.param ? "FromThenOn" : "Once";
                         });

} // namespace
} // namespace zolex::test
