// What the program finds around it: closed streams, other files in the place of its own, other runs
// of it, bytes and lines that are no text, and utilities that never stop writing.

#include "Programs.h"
#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

constexpr const char* temporaryFile = "ZOLEXM~~.TMP";
constexpr const char* mine = "; of the operator\n[Policy.mine]\nAppliesTo.1 = m:0000\n";

/// A server whose controller is configured, and what a capture of it appends.
class SurroundingsTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
        ASSERT_EQ(0, server.zolex({"/c", "/f:wanted.ini"}).exitCode);
        wanted = withoutComments(server.read("wanted.ini"));
        ASSERT_TRUE(contains(wanted, "[Policy.AUTO-"));
    }

    /// What was captured into the file, whatever the time of the capture.
    [[nodiscard]] std::string captured(const std::string& name) const {
        return withoutComments(server.read(name));
    }

    VirtualServer server;
    std::string wanted;
};

// Symptom: with a closed standard output the policies file got its descriptor, and the messages of
// the run were written into it; exit code 0.
TEST_F(SurroundingsTest, AClosedStreamIsTheNullDevice) {
    for (const char* closed : {"0", "1", "2", "01", "02", "12", "012"}) {
        SCOPED_TRACE(closed);
        server.write("p.ini", mine);
        const ProgramRun run = server.zolexWithout(closed, {"/c", "/f:p.ini", "/v:5"});
        EXPECT_EQ(0, run.exitCode);
        EXPECT_EQ(withoutComments(mine) + wanted, captured("p.ini"));
        EXPECT_FALSE(server.exists(temporaryFile));
    }
}

TEST_F(SurroundingsTest, AClosedInputAnswersNothing) {
    const std::string before = server.simulator({"show"}).output;
    const ProgramRun run = server.zolexWithout("0", {"/r"});
    EXPECT_EQ(0, run.exitCode) << run.output;
    EXPECT_EQ(before, server.simulator({"show"}).output);
}

// Symptom: the temp file was written through a link, over a file of somebody else.
TEST_F(SurroundingsTest, TheTemporaryFileIsAlwaysANewOne) {
    server.write("victim.txt", "of somebody else\n");
    for (const bool isHardLink : {false, true}) {
        SCOPED_TRACE(isHardLink);
        std::error_code error;
        if (isHardLink) {
            fs::create_hard_link(server.folder() / "victim.txt", server.folder() / temporaryFile,
                                 error);
        } else {
            fs::create_symlink("victim.txt", server.folder() / temporaryFile, error);
        }
        if (error) {
            server.write(temporaryFile, "what stood there\n"); // a system without such links
        }
        fs::remove(server.folder() / "p.ini");
        const ProgramRun run = server.zolex({"/c", "/f:p.ini"});
        EXPECT_EQ(0, run.exitCode) << run.output;
        EXPECT_EQ(wanted, captured("p.ini"));
        EXPECT_EQ("of somebody else\n", server.read("victim.txt"));
        EXPECT_FALSE(server.exists(temporaryFile));
    }
}

// Symptom: a policies file of the temp file's name was emptied and removed.
TEST_F(SurroundingsTest, ThePoliciesFileIsNoTemporaryFile) {
    const std::string noSpace =
        "Could not write to temp space.  ZOLEX requires temp space to run.\n";
    server.write(temporaryFile, mine);
    const ProgramRun there = server.zolex({"/c", std::string("/f:") + temporaryFile});
    EXPECT_EQ(9, there.exitCode) << there.output;
    EXPECT_TRUE(contains(there.output, noSpace)) << there.output;
    EXPECT_EQ(mine, server.read(temporaryFile));
    fs::remove(server.folder() / temporaryFile);
    const ProgramRun missing = server.zolex({"/c", std::string("/f:./") + temporaryFile});
    EXPECT_EQ(9, missing.exitCode) << missing.output;
    EXPECT_TRUE(contains(missing.output, noSpace)) << missing.output;
    EXPECT_FALSE(server.exists(temporaryFile));
}

#ifndef _WIN32
// Symptom: the same through a link.
TEST_F(SurroundingsTest, ThePoliciesFileIsNoTemporaryFileByALinkOfPosix) {
    fs::create_symlink(temporaryFile, server.folder() / "p.ini");
    EXPECT_EQ(9, server.zolex({"/c", "/f:p.ini"}).exitCode);
    EXPECT_FALSE(server.exists(temporaryFile));
    server.write(temporaryFile, mine);
    EXPECT_EQ(9, server.zolex({"/c", "/f:p.ini"}).exitCode);
    EXPECT_EQ(mine, server.read(temporaryFile));
}
#endif

TEST_F(SurroundingsTest, AFolderInThePlaceOfTheTemporaryFileIsReported) {
    fs::create_directory(server.folder() / temporaryFile);
    const ProgramRun run = server.zolex({"/c", "/f:p.ini"});
    EXPECT_EQ(9, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "Could not write to temp space.")) << run.output;
    EXPECT_FALSE(server.exists("p.ini"));
}

/// The exit codes of runs of the program at the same time, one with each of these arguments.
std::vector<int> runTogether(const VirtualServer& server,
                             const std::vector<std::vector<std::string>>& runs) {
    const std::string streams = server.folder().string() + "-streams-";
    server.write("nothing.txt", "");
    std::vector<int> codes(runs.size(), -1);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        threads.emplace_back([&, i] {
            const std::string output = streams + std::to_string(i);
            codes[i] = runProgram({ZOLEX_PROGRAM,
                                   runs[i],
                                   server.folder(),
                                   server.environment,
                                   server.folder() / "nothing.txt",
                                   output,
                                   output + "e",
                                   {}});
            std::error_code ignored;
            fs::remove(output, ignored);
            fs::remove(output + "e", ignored);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return codes;
}

TEST_F(SurroundingsTest, CapturesAtOnceIntoFilesOfTheirOwnAllArriveWhole) {
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), runTogether(server, {{"/c", "/f:a.ini"},
                                                                   {"/c", "/f:b.ini"},
                                                                   {"/c", "/f:c.ini"},
                                                                   {"/c", "/f:d.ini"}}));
    for (const char* name : {"a.ini", "b.ini", "c.ini", "d.ini"}) {
        EXPECT_EQ(wanted, captured(name)) << name;
    }
    EXPECT_FALSE(server.exists(temporaryFile));
}

// Symptom: captures at once into one file gave their policies the same names, and some ended with
// exit code 0 and had written nothing.
TEST_F(SurroundingsTest, CapturesAtOnceIntoOneFileWaitForEachOther) {
    server.write("p.ini", mine);
    auto held = std::make_unique<LockedFile>(server.folder() / "p.ini");
    ASSERT_TRUE(held->isLocked());
    std::vector<int> codes;
    const std::vector<std::string> capture = {"/c", "/f:p.ini"};
    std::thread runs([&] { codes = runTogether(server, {capture, capture, capture, capture}); });
    std::this_thread::sleep_for(std::chrono::seconds(3));
    EXPECT_EQ(mine, server.read("p.ini")); // all of them wait
    held.reset();
    runs.join();
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), codes);
    const std::string after = server.read("p.ini");
    EXPECT_TRUE(after.starts_with(mine));
    std::vector<std::string> names = linesAfter(after, "[Policy.AUTO-");
    EXPECT_EQ(4 * linesAfter(wanted, "[Policy.AUTO-").size(), names.size());
    std::sort(names.begin(), names.end());
    EXPECT_TRUE(std::adjacent_find(names.begin(), names.end()) == names.end())
        << testing::PrintToString(names);
    EXPECT_FALSE(server.exists(temporaryFile));
    EXPECT_EQ(0, server.zolex({"/f:p.ini", "/fake"}).exitCode); // the file is a valid one
}

TEST_F(SurroundingsTest, APoliciesFileThatStaysLockedCannotBeOpened) {
    server.write("p.ini", mine);
    const LockedFile held(server.folder() / "p.ini");
    ASSERT_TRUE(held.isLocked());
    const auto start = std::chrono::steady_clock::now();
    const ProgramRun run = server.zolex({"/c", "/f:p.ini"});
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(9, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "\n#### ERROR\n\tCould not open policies file:  p.ini\n\n"))
        << run.output;
    EXPECT_GE(taken, std::chrono::seconds(9));
    EXPECT_LT(taken, std::chrono::seconds(60));
    EXPECT_EQ(mine, server.read("p.ini"));
    EXPECT_FALSE(server.exists(temporaryFile));
    // A deployment only reads it.
    EXPECT_EQ(0, server.zolex({"/f:p.ini", "/fake"}).exitCode);
}

// Symptom: on Windows 0x1A ended the file. What stood before it was deployed, exit code 0.
TEST_F(SurroundingsTest, TheByte1AIsOneLikeAnyOther) {
    const std::string valid = "[Policy.a]\nAppliesTo.1 = m:0000\n";
    server.write("p.ini", valid + "\x1A\n[Policy.b]\nno entry\n");
    const ProgramRun refused = server.zolex({"/fake", "/f:p.ini"});
    EXPECT_EQ(5, refused.exitCode) << refused.output;
    EXPECT_TRUE(contains(refused.output, "Line 3 -- Line not in keyword = value format:  \x1A"))
        << refused.output;
    EXPECT_EQ(9, server.zolex({"/c", "/f:p.ini"}).exitCode);
    server.write("p.ini", "; a comment \x1A of it\n" + valid);
    EXPECT_EQ(0, server.zolex({"/fake", "/f:p.ini"}).exitCode);
    // In the other files too.
    server.write("p.ini", valid);
    server.write("params.txt", "/f:p.ini\n\x1A\n/fake\n");
    const ProgramRun parameters = server.zolex({"@params.txt"});
    EXPECT_EQ(5, parameters.exitCode)
        << parameters.output; // the name goes on, for want of a switch
    EXPECT_TRUE(contains(parameters.output, "p.ini \x1A")) << parameters.output;
    server.write("contlist.ini", ";\x1A\n" + server.read("contlist.ini"));
    const ProgramRun fake = server.zolex({"/fake", "/f:p.ini"});
    EXPECT_TRUE(contains(fake.output, "Found 1 supported RAID controllers.\n")) << fake.output;
}

/// A line that no file may have.
std::string tooLong(char c) {
    return std::string((std::size_t{16} << 20U) + 1, c) + "\n";
}

// Symptom: a file without line ends was read into memory without bound.
TEST_F(SurroundingsTest, AFileWithALineOfMoreThan16MiBCannotBeRead) {
    const std::string valid = "[Policy.a]\nAppliesTo.1 = m:0000\n";
    server.write("long.ini", valid + tooLong(' '));
    const ProgramRun policies = server.zolex({"/fake", "/f:long.ini"});
    EXPECT_EQ(5, policies.exitCode) << policies.output;
    EXPECT_TRUE(contains(policies.output, "Could not open policies file:  long.ini\n"))
        << policies.output;
    EXPECT_EQ(9, server.zolex({"/c", "/f:long.ini"}).exitCode);

    server.write("long.txt", "/?\n" + tooLong(' '));
    const ProgramRun parameters = server.zolex({"@long.txt"});
    EXPECT_EQ(4, parameters.exitCode);
    EXPECT_TRUE(contains(parameters.output, "Could not read parameter file:  long.txt\n"))
        << parameters.output;

    server.write("p.ini", valid);
    server.write("contlist.ini", server.read("contlist.ini") + tooLong(';'));
    const ProgramRun inventory = server.zolex({"/fake", "/f:p.ini"});
    EXPECT_EQ(10, inventory.exitCode);
    EXPECT_TRUE(contains(inventory.output, "Could not read inventory file:  contlist.ini\n"))
        << inventory.output;

    server.write("long.def", "[Controller.0]\nType = 12\n" + tooLong(';'));
    const ProgramRun definition = server.zolex({"/controllers:long.def", "/f:p.ini"});
    EXPECT_EQ(10, definition.exitCode);
    EXPECT_TRUE(
        contains(definition.output, "Could not read controller-definition file:  long.def\n"))
        << definition.output;
}

// Symptom: 256 MiB of a child's output were read into memory.
TEST_F(SurroundingsTest, AUtilityWithMoreThan32MiBOfOutputIsGivenUp) {
    server.write("big.txt", std::string((std::size_t{33} << 20U), 'x'));
#ifdef _WIN32
    server.write("UTIL.BAT", "@type big.txt\r\n");
#else
    server.write("UTIL.BAT", "cat big.txt\n");
#endif
    server.environment["ZOLEX_TEST_CHILD_LIMIT"] = "4000";
    const ProgramRun run = server.zolex({"/c", "/f:p.ini"});
    EXPECT_EQ(8, run.exitCode) << run.output.substr(0, 2000);
    EXPECT_TRUE(contains(run.output, " has failed to execute within the five minute limit.\n"))
        << run.output.substr(0, 2000);
    EXPECT_FALSE(server.exists("p.ini"));
}

} // namespace
} // namespace zolex::e2e
