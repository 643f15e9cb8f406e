// A capture onto a disk that is full: a small file system that is mounted for the run alone.

#ifdef __linux__

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::e2e {
namespace {

/// A disk of 16 KB whose policies file leaves less than 200 bytes of it.
class FullDiskTest : public testing::Test {
  protected:
    void SetUp() override {
        const auto mounts = [this](const char* flags) {
            return server_.start("unshare", {flags, "mount", "-t", "tmpfs", "none", "/mnt"})
                       .exitCode == 0;
        };
        flags_ = mounts("-m") ? "-m" : mounts("-Urm") ? "-Urm" : "";
        if (flags_.empty()) {
            GTEST_SKIP() << "this machine lets nobody mount a file system";
        }
        EXPECT_EQ(0, server_.simulator({"init", ".", "--sample", "configured"}).exitCode);
        EXPECT_EQ(0, server_.zolex({"/c", "/f:wanted.ini"}).exitCode);
        before_ = "[Policy.other]\nAppliesTo.1 = t:LSI-SAS-RAID\n";
        while (before_.size() < 16'200) {
            before_ += "; a line that takes some of the room that the disk has\n";
        }
        server_.write("before.ini", before_);
    }

    /// Runs the program with policies on the disk. The policies file is after.ini then, and
    /// left.txt names the files on the disk.
    ProgramRun capture(const std::string& arguments) {
        server_.write("full.sh", "set -e\n"
                                 "mkdir -p disk\n"
                                 "mount -t tmpfs -o size=16k none disk\n"
                                 "cp before.ini disk/p.ini\n"
                                 "code=0\n"
                                 "'" ZOLEX_UNPAUSED_PROGRAM "' " +
                                     arguments +
                                     " || code=$?\n"
                                     "cp disk/p.ini after.ini\n"
                                     "ls disk >left.txt\n"
                                     "exit $code\n");
        return server_.start("unshare", {flags_, "sh", "full.sh"});
    }

    VirtualServer server_;
    std::string flags_; ///< of unshare: with the rights of root, or with those of a user
    std::string before_;
};

TEST_F(FullDiskTest, ATempFileWithoutRoomLeavesThePoliciesAsTheyWere) {
    const ProgramRun run = capture("/c /f:disk/p.ini /t:disk");
    EXPECT_EQ(9, run.exitCode) << run.output << run.error;
    EXPECT_NE(std::string::npos, run.output.find("Could not write to temp space.")) << run.output;
    EXPECT_EQ(before_, server_.read("after.ini"));
    EXPECT_EQ("p.ini\n", server_.read("left.txt"));
}

TEST_F(FullDiskTest, PoliciesThatFitInPartAreReportedAsSuch) {
    const ProgramRun run = capture("/c /f:disk/p.ini");
    EXPECT_EQ(9, run.exitCode) << run.output << run.error;
    EXPECT_NE(std::string::npos, run.output.find("Error writing to policies file.\n"
                                                 "Warning: Partial data may have been written.\n"))
        << run.output;
    const std::string after = server_.read("after.ini");
    EXPECT_TRUE(after.starts_with(before_));
    EXPECT_LT(after.size(), before_.size() + server_.read("wanted.ini").size());
    EXPECT_EQ("p.ini\n", server_.read("left.txt"));
    EXPECT_FALSE(server_.exists("ZOLEXM~~.TMP"));
    // What stood there before is good still.
    EXPECT_EQ(0, server_.zolex({"/f:before.ini", "/fake"}).exitCode);
}

} // namespace
} // namespace zolex::e2e

#endif
