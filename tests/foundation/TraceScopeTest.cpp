#include "foundation/TraceScope.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::test {
namespace {

class Traces : public SilentReport {
  public:
    void trace(std::string_view line) override { text += line; }
    [[nodiscard]] bool shows(std::int32_t level) const override { return level == level::traces; }
    std::string text;
};

TEST(TraceScope, FramesAStep) {
    Traces report;
    const auto step = [&report](bool result) {
        const TraceScope scope(report, "Step::run");
        report.trace("inside\n");
        return scope.returning(result);
    };
    EXPECT_TRUE(step(true));
    EXPECT_FALSE(step(false));
    EXPECT_EQ(report.text, "Entering Step::run\ninside\nExiting Step::run, returning true\n"
                           "Entering Step::run\ninside\nExiting Step::run, returning false\n");
}

TEST(TraceScope, HasASecondForm) {
    Traces report;
    EXPECT_FALSE(TraceScope(report, "Step::run").returnValue(false));
    EXPECT_EQ(report.text, "Entering Step::run\nExiting Step::run, returnValue=false\n");
}

} // namespace
} // namespace zolex::test
