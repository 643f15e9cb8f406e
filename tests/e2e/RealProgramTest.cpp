// What only the shipped program over the real system can show: when its texts arrive, and what it
// makes of outputs and files that take no more.

#ifdef __linux__

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace zolex::e2e {
namespace {

/// A server with a configured controller, the policies that its capture gives, and older ones.
class RealProgramTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
        ASSERT_EQ(0, server.zolex({"/c", "/f:wanted.ini"}).exitCode);
        added = server.read("wanted.ini");
        ASSERT_TRUE(contains(added, "[Policy.AUTO-"));
    }

    /// Runs a script of the shell, in which $zolex is the program.
    int script(const std::string& lines) {
        server.write("run.sh", "zolex='" ZOLEX_PROGRAM "'\n" + lines);
        return server.start("sh", {"run.sh"}).exitCode;
    }

    VirtualServer server;
    std::string added;
    const std::string before = "[Policy.other]\nAppliesTo.1 = t:LSI-SAS-RAID\n";
};

TEST_F(RealProgramTest, AReaderOfThePipeSeesATextBeforeTheRunEnds) {
    // The detector waits until the reader has shown what it read, up to twenty seconds.
    server.write("hwdetect.exe", "#!/bin/sh\n"
                                 "tries=0\n"
                                 "until [ -s seen ] || [ $tries -ge 200 ]; do\n"
                                 "    sleep 0.1\n"
                                 "    tries=$((tries + 1))\n"
                                 "done\n"
                                 "[ -s seen ] && cp seen seen-meanwhile\n"
                                 "exec '" ZOLEX_SIMULATOR_PROGRAM "' hwdetect \"$@\"\n");
    EXPECT_EQ(0, script("{ \"$zolex\" /c /f:p.ini; echo $? >code; } | {\n"
                        "    IFS= read -r line\n"
                        "    echo \"$line\" >seen.new\n"
                        "    mv seen.new seen\n"
                        "    cat >rest\n"
                        "}\n"));
    EXPECT_EQ("0\n", server.read("code"));
    EXPECT_EQ("Started ZOLEX.\n", server.read("seen-meanwhile"));
    EXPECT_TRUE(server.read("rest").ends_with("\nZOLEX completed with RC=0 \n"));
}

TEST_F(RealProgramTest, ATextThatCannotBeWrittenChangesNothingOfTheRun) {
    EXPECT_EQ(0, script("\"$zolex\" /c /f:p.ini >/dev/full 2>/dev/full\n"));
    EXPECT_EQ(withoutComments(added), withoutComments(server.read("p.ini")));
    EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
    EXPECT_EQ(4, script("\"$zolex\" /no-such-switch >/dev/full 2>/dev/full\n"));
}

TEST_F(RealProgramTest, FilesThatMayNotGrowAreToldWhereverTheLimitIs) {
    const std::size_t whole = before.size() + added.size();
    for (const std::size_t room : {std::size_t{0}, std::size_t{1}, before.size(), added.size() / 2,
                                   added.size() - 1, added.size(), whole - 1, whole}) {
        SCOPED_TRACE(room);
        server.write("p.ini", before);
        // What the program prints goes through a pipe, which has no size.
        EXPECT_EQ(0, script("trap '' XFSZ\n"
                            "{ prlimit --fsize=" +
                            std::to_string(room) +
                            " \"$zolex\" /c /f:p.ini 2>&1; echo $? >code; } | cat >out\n"));
        const std::string after = server.read("p.ini");
        const std::string output = server.read("out");
        EXPECT_EQ(room == whole ? "0\n" : "9\n", server.read("code")) << output;
        EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
        EXPECT_EQ(room < added.size(), contains(output, "Could not write to temp space."))
            << output;
        EXPECT_EQ(room >= added.size() && room < whole,
                  contains(output, "Error writing to policies file.\n"
                                   "Warning: Partial data may have been written.\n"))
            << output;
        EXPECT_EQ(room < added.size() ? before.size() : room, after.size());
        EXPECT_TRUE(after.starts_with(before));
    }
}

} // namespace
} // namespace zolex::e2e

#endif
