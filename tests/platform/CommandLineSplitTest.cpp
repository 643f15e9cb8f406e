#include "platform/CommandLineSplit.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

TEST(CommandLineSplit, SplitsAtWhiteSpaceOutsideQuotes) {
    using List = std::vector<std::string>;
    struct {
        const char* line;
        List expected;
    } const rows[] = {
        {"", {}},
        {" \t\r\n ", {}},
        {"one", {"one"}},
        {"UTIL.BAT MEGACLI -pdList -a0 ", {"UTIL.BAT", "MEGACLI", "-pdList", "-a0"}},
        {"\ta  b\tc\r\nd\n", {"a", "b", "c", "d"}},
        {"fakeraid 2 \"Model One\"", {"fakeraid", "2", "Model One"}},
        {"a\"b c\"d", {"ab cd"}},
        {"\"a\"\"b\" c", {"ab", "c"}},
        {"a \"\" b", {"a", "", "b"}},
        {"\"\"", {""}},
        {"a \"not closed b", {"a", "not closed b"}},
        {"a \"", {"a", ""}},
        {"\"line\nend\"", {"line\nend"}},
        {"back\\slash \\\"x y\\\"", {"back\\slash", "\\x y\\"}},
        {"'a b'", {"'a", "b'"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(splitCommandLine(row.line), row.expected) << row.line;
    }
}

} // namespace
} // namespace zolex
