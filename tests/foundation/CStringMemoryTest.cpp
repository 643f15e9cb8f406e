#include "foundation/CString.h"

#include "foundation/AllocationFaults.h"
#include "foundation/StandardError.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

namespace zolex {
namespace {

using namespace std::literals;

struct Operation {
    const char* name;
    std::function<void(CString&)> run;
};

const std::vector<Operation>& allocatingOperations() {
    static const std::vector<Operation> operations = {
        {"from a C string", [](CString& s) { s = CString("text"); }},
        {"from a view", [](CString& s) { s = CString("text"sv); }},
        {"from a repeated character", [](CString& s) { s = CString('x', 10); }},
        {"from a number", [](CString& s) { s = CString(std::uint32_t{12}); }},
        {"from a signed number", [](CString& s) { s = CString::fromInt(-12); }},
        {"from wide text", [](CString& s) { s = CString(u"text", 4); }},
        {"copy", [](CString& s) { CString(s).makeUpper(); }},
        {"append", [](CString& s) { s.append("more"); }},
        {"append a character", [](CString& s) { s.append('x'); }},
        {"prepend", [](CString& s) { s.prepend("more"); }},
        {"concatenate", [](CString& s) { s = CString::concatenate(s, "b", "c"); }},
        {"plus", [](CString& s) { s = s + "b"; }},
        {"left", [](CString& s) { s = s.left(2); }},
        {"mid", [](CString& s) { s = s.mid(1, 2); }},
        {"right", [](CString& s) { s = s.right(2); }},
        {"upper", [](CString& s) { s = s.upper(); }},
        {"trim", [](CString& s) { s = s.trim(); }},
        {"trimLeft", [](CString& s) { s = s.trimLeft(); }},
        {"trimRight", [](CString& s) { s = s.trimRight(); }},
        {"token", [](CString& s) { s = s.token(",", 0); }},
        {"format", [](CString& s) { s = formatText("%s!", s.c_str()); }},
        {"format a long text", [](CString& s) { s = formatText("%600s", s.c_str()); }},
    };
    return operations;
}

[[noreturn]] void runShortOfMemory(const Operation& operation) {
    CString string("some, text");
    test::failAllocation(test::Allocation::nothrow, 1);
    operation.run(string);
    std::exit(0);
}

TEST(CStringDeathTest, AFailedAllocationIsReportedAndEndsTheProcessWithCodeOne) {
    for (const Operation& operation : allocatingOperations()) {
        EXPECT_EXIT(runShortOfMemory(operation), testing::ExitedWithCode(1),
                    test::StandardErrorIs(test::memoryReport("CString::CreateCharString")))
            << operation.name;
    }
}

// Symptom: a length of which one more byte cannot be counted was taken for no bytes at all.
TEST(CStringDeathTest, ALengthThatNoMemoryHoldsIsAFailedAllocation) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t length : {most, most - 1, most / 2, most / 2 - 1}) {
        EXPECT_EXIT(
            {
                const CString string('x', length);
                std::exit(0);
            },
            testing::ExitedWithCode(1),
            test::StandardErrorIs(test::memoryReport("CString::CreateCharString")))
            << length;
    }
}

TEST(CString, AsksForMemoryOnlyThroughItsOneAllocation) {
    test::failAllocation(test::Allocation::throwing, 0);
    test::failAllocation(test::Allocation::nothrow, 0);
    {
        CString string("text that is longer than any short buffer would hold");
        string.append("more");
        const CString part = string.mid(3).trim() + "x";
        EXPECT_GE(test::allocationsAsked(test::Allocation::nothrow), 5U);
        EXPECT_EQ(test::allocationsAsked(test::Allocation::throwing), 0U);
    }
}

} // namespace
} // namespace zolex
