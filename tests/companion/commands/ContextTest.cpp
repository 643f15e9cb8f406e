#include "companion/commands/Context.h"

#include "companion/commands/FilesPlatform.h"
#include "support/FakePlatform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

Context contextOn(Platform& platform) {
    return {platform, {}, Format::text, {}, {}, {}, false, false, {}};
}

TEST(Context, DeliversToStandardOutput) {
    zolex::test::FakePlatform platform;
    Context context = contextOn(platform);
    EXPECT_TRUE(deliver(context, "text\n"));
    context.outputFile = "-";
    EXPECT_TRUE(deliver(context, "more\n"));
    EXPECT_EQ(platform.consoleFake.output, "text\nmore\n");
    EXPECT_EQ(platform.consoleFake.error, "");
    EXPECT_TRUE(outputIsWritten(context));
}

TEST(Context, DeliversToTheOutputFileAlone) {
    const zolex::test::TemporaryDirectory directory;
    test::FilesPlatform platform;
    Context context = contextOn(platform);
    context.outputFile = "a.txt";
    EXPECT_TRUE(deliver(context, "text"));
    EXPECT_EQ(zolex::test::TemporaryDirectory::read("a.txt"), "text");
    EXPECT_EQ(platform.consoleFake.output, "");
    context.outputFile = "none/a.txt";
    EXPECT_FALSE(deliver(context, "text"));
    EXPECT_EQ(platform.consoleFake.output, "");
    EXPECT_EQ(platform.consoleFake.error,
              "error: none/a.txt: there is no such file or folder\n"
              "  help: name another file with -o; nothing was written\n");
}

TEST(Context, TellsWhatFailedAndWhatToDo) {
    zolex::test::FakePlatform platform;
    Context context = contextOn(platform);
    EXPECT_EQ(failWith(context, "this"), 2);
    EXPECT_EQ(failWith(context, "that", "do this"), 2);
    context.errorStyle.colours = true;
    EXPECT_EQ(failWith(context, "x", "y"), 2);
    EXPECT_EQ(platform.consoleFake.error, "error: this\n"
                                          "error: that\n  help: do this\n"
                                          "\033[31merror:\033[0m x\n  \033[36mhelp:\033[0m y\n");
    EXPECT_EQ(platform.consoleFake.output, "");
}

} // namespace
} // namespace zolex::companion
