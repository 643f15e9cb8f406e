// Real children: the programs that were found get the arguments of zolex's command lines as they
// are, also from folders whose names have blanks.

#include "companion/machine/System.h"
#include "companion/machine/UtilityPlatform.h"
#include "platform/Platform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using std::chrono::seconds;

/// A script that prints its arguments, each in brackets, and ends with a code.
void writeScript(const zolex::test::TemporaryDirectory& folder, const std::string& name) {
    folder.write(name,
                 system::isWindows ? "@echo off\r\necho [%1][%2][%3]\r\nexit /b 7\r\n"
                                   : "#!/bin/sh\nfor a; do printf '[%s]' \"$a\"; done\necho\n"
                                     "exit 7\n",
                 true);
}

std::string firstLine(const std::string& output) {
    return output.substr(0, output.find_first_of("\r\n"));
}

TEST(RealUtilities, TheWrapperGetsTheUtilityAndItsArguments) {
    const zolex::test::TemporaryDirectory folder;
    writeScript(folder, "my tools/UTIL.BAT");
    const auto system = makeSystemPlatform();
    const Utilities utilities = findUtilities(systemFolders(system->files(), "my tools"), {});
    EXPECT_EQ(utilities.wrapper, system::isWindows ? "my tools\\UTIL.BAT" : "my tools/UTIL.BAT");
    UtilityPlatform platform(*system, utilities);
    const ChildResult result =
        platform.runChild("UTIL.BAT MEGACLI -pdList -a0 \n", true, seconds(60));
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 7U);
    EXPECT_EQ(firstLine(result.output), "[MEGACLI][-pdList][-a0]");
}

#ifndef _WIN32
TEST(RealUtilities, AUtilityUnderItsUsualNameGetsItsArgumentsAlone) {
    const zolex::test::TemporaryDirectory folder;
    writeScript(folder, "my tools/MegaCli64");
    const auto system = makeSystemPlatform();
    const Utilities utilities = findUtilities(systemFolders(system->files(), "my tools"), {});
    EXPECT_EQ(utilities.wrapper, "");
    UtilityPlatform platform(*system, utilities);
    const ChildResult result =
        platform.runChild("UTIL.BAT MEGACLI -pdList -a0 \n", true, seconds(60));
    EXPECT_EQ(result.exitCode, 7U);
    EXPECT_EQ(firstLine(result.output), "[-pdList][-a0]");
}
#endif

TEST(RealUtilities, AProgramThatIsNamedAndNotThereIsNotStarted) {
    const zolex::test::TemporaryDirectory folder;
    const auto system = makeSystemPlatform();
    const Utilities utilities =
        findUtilities(systemFolders(system->files(), ""), {{"MEGACLI", "./no such/MegaCli64"}});
    UtilityPlatform platform(*system, utilities);
    const ChildResult result =
        platform.runChild("UTIL.BAT MEGACLI -pdList -a0 \n", true, seconds(60));
    EXPECT_EQ(result.outcome, ChildOutcome::notStarted);
}

TEST(System, TellsWhatIsAroundTheProcess) {
    const std::string own = system::ownFolder();
    ASSERT_FALSE(own.empty());
    EXPECT_NE(std::string("/\\").find(own.back()), std::string::npos);
    EXPECT_FALSE(system::searchPath().empty());
    const system::TemporaryFolder folder = system::temporaryFolder();
    EXPECT_FALSE(folder.name.empty());
    EXPECT_TRUE(folder.isWritable);
    EXPECT_TRUE(folder.freeBytes);
}

} // namespace
} // namespace zolex::companion
