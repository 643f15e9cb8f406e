// Faults of the real system: full disks, files and folders that may not be written, short memory
// over real files, and what children that fail leave open.

#ifndef _WIN32

#include "foundation/AllocationFaults.h"
#include "platform/WrittenProcess.h"
#include "platform/posix/ChildRunner.h"
#include "support/ModeRun.h"
#include "support/TemporaryDirectory.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace zolex::test {
namespace {

namespace fs = std::filesystem;

const std::string before =
    "; of the operator\n[Policy.mine]\nAppliesTo.1 = m:0000\nHotspares = 1,2\n";

/// A fake server over the files of the system, in the current directory.
class RealFiles : public Platform {
  public:
    RealFiles() {
        server.addMegaRaid();
        server.driveList = readTestData("megacli-pdlist-early.txt");
        server.configurationList = readTestData("megacli-ldpdinfo-early.txt");
    }

    Console& console() override { return server.platform.console(); }
    FileSystem& files() override { return files_; }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        const UncountedAllocations uncounted;
        return server.platform.runChild(commandLine, capture, limit);
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return server.platform.pciDevices(); }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return server.platform.localTime(); }

    int run(std::vector<const char*> arguments) {
        const UncountedAllocations uncounted;
        arguments.insert(arguments.begin(), "zolex");
        return runCounted(arguments);
    }
    int runCounted(const std::vector<const char*>& argv) {
        constexpr int resources = 10;
        try {
            return ZOLEX::run(static_cast<int>(argv.size()), argv.data(), *this);
        } catch (const std::bad_alloc&) {
            return resources;
        }
    }
    [[nodiscard]] bool says(const std::string& text) const {
        return server.output.find(text) != std::string::npos;
    }

    ModeRun server;

  private:
    StandardFileSystem files_;
};

/// Numbers of the descriptors that are open.
std::vector<std::string> openDescriptors() {
    std::vector<std::string> open;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const fs::path target = fs::read_symlink(entry.path(), error);
        if (!error && target.string().find("/fd") == std::string::npos) {
            open.push_back(entry.path().filename().string());
        }
    }
    return open;
}

class PosixSystemFaults : public testing::Test {
  protected:
    TemporaryDirectory directory;
    RealFiles platform;
};

TEST_F(PosixSystemFaults, ACaptureOverRealFilesLeavesNothingOpenAndNoTempFile) {
    directory.write("p.ini", before);
    const auto descriptors = openDescriptors();
    ASSERT_EQ(0, platform.run({"/c", "/f:p.ini"})) << platform.server.output;
    EXPECT_EQ(descriptors, openDescriptors());
    const std::string after = TemporaryDirectory::read("p.ini");
    EXPECT_TRUE(after.starts_with(before + "\n\n; *---"));
    EXPECT_TRUE(after.ends_with("Logical.1 = A:138752:5:ON\n\n"));
    EXPECT_FALSE(fs::exists("ZOLEXM~~.TMP"));
}

// A limit on the size of files does what a full disk does, and needs no rights.
class SizeLimit {
  public:
    explicit SizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit narrow = before_;
        narrow.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &narrow);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

  private:
    rlimit before_{};
    void (*signal_)(int);
};

TEST_F(PosixSystemFaults, AFullDiskIsToldWhereverItFillsUp) {
    directory.write("p.ini", before);
    ASSERT_EQ(0, platform.run({"/c", "/f:p.ini"}));
    const std::string whole = TemporaryDirectory::read("p.ini");
    const std::size_t added = whole.size() - before.size();
    int parts = 0;
    for (std::size_t room = 0; room < whole.size(); ++room) {
        SCOPED_TRACE(room);
        directory.write("p.ini", before);
        RealFiles full;
        int code = 0;
        {
            const SizeLimit limit(room);
            code = full.run({"/c", "/f:p.ini"});
        }
        const std::string after = TemporaryDirectory::read("p.ini");
        EXPECT_FALSE(fs::exists("ZOLEXM~~.TMP"));
        EXPECT_EQ(9, code);
        if (room < added) {
            EXPECT_TRUE(full.says("Could not write to temp space.  ZOLEX requires temp space"));
            EXPECT_EQ(before, after);
        } else {
            EXPECT_TRUE(full.says("Error writing to policies file.\n"
                                  "Warning: Partial data may have been written.\n"));
            EXPECT_EQ(whole.substr(0, std::max(room, before.size())), after);
            parts += after.size() > before.size() ? 1 : 0;
        }
    }
    EXPECT_GT(parts, 0);
}

#ifdef __linux__
TEST_F(PosixSystemFaults, ADeviceThatIsAlwaysFullTakesNoPolicies) {
    const auto descriptors = openDescriptors();
    // It reads as an endless file; what matters here is what is appended.
    StandardFileSystem files;
    for (const char* mode : {"a", "w"}) {
        const auto file = files.open("/dev/full", mode);
        ASSERT_NE(file, nullptr);
        const std::string block(50, 'x');
        bool taken = true;
        for (int i = 0; i < 10000 && taken; ++i) {
            taken = file->write(block) == block.size();
        }
        EXPECT_FALSE(taken && file->flush() && file->close()) << mode;
    }
    EXPECT_EQ(descriptors, openDescriptors());
}
#endif

/// What may not be written must not be written by the superuser either, so that the test shows the
/// same everywhere.
class WithoutRights {
  public:
    WithoutRights() : user_(::geteuid()) {
        constexpr uid_t nobody = 65534;
        if (user_ == 0) {
            EXPECT_EQ(0, ::seteuid(nobody));
        }
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;
    ~WithoutRights() { EXPECT_EQ(0, ::seteuid(user_)); }

  private:
    uid_t user_;
};

TEST_F(PosixSystemFaults, APoliciesFileThatMayOnlyBeReadStaysAsItIs) {
    directory.write("p.ini", before);
    fs::create_directory("temp");
    fs::permissions("temp", fs::perms::all);
    fs::permissions(".", fs::perms::all);
    fs::permissions("p.ini",
                    fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    int code = 0;
    {
        const WithoutRights user;
        code = platform.run({"/c", "/f:p.ini", "/t:temp"});
    }
    EXPECT_EQ(9, code);
    EXPECT_TRUE(platform.says("\n#### ERROR\n\tCould not open policies file for writing:  p.ini\n"))
        << platform.server.output;
    EXPECT_EQ(before, TemporaryDirectory::read("p.ini"));
    EXPECT_TRUE(fs::is_empty("temp"));
}

// Symptom: new policies were appended to a file that could be written but not read, under names
// that it may have held already; no deploy took the file any more.
TEST_F(PosixSystemFaults, APoliciesFileThatMayNotBeReadStaysAsItIs) {
    directory.write("p.ini", before);
    fs::permissions(".", fs::perms::all);
    fs::permissions("p.ini",
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write);
    int code = 0;
    {
        const WithoutRights user;
        code = platform.run({"/c", "/f:p.ini"});
    }
    fs::permissions("p.ini", fs::perms::owner_all);
    EXPECT_EQ(9, code);
    EXPECT_TRUE(platform.says("\n#### ERROR\n\tCould not open policies file:  p.ini\n\n"));
    EXPECT_EQ(before, TemporaryDirectory::read("p.ini"));
}

TEST_F(PosixSystemFaults, FoldersThatAreMissingAreTold) {
    EXPECT_EQ(9, platform.run({"/c", "/f:no/such/p.ini"}));
    EXPECT_TRUE(platform.says("Could not open policies file for writing:  no/such/p.ini\n"));
    EXPECT_EQ(9, platform.run({"/c", "/f:p.ini", "/t:no\\such"}));
    EXPECT_TRUE(platform.says("Could not write to temp space.  ZOLEX requires temp space"));
    EXPECT_EQ(5, platform.run({"/f:no\\such\\p.ini"}));
    EXPECT_TRUE(platform.says("Could not open policies file:  no\\such\\p.ini\n"));
    EXPECT_TRUE(fs::is_empty("."));
}

TEST_F(PosixSystemFaults, AFolderIsNoPoliciesFile) {
    fs::create_directory("p.ini");
    EXPECT_EQ(9, platform.run({"/c", "/f:p.ini"}));
    EXPECT_TRUE(platform.says("Could not open policies file for writing:  p.ini\n"));
    EXPECT_FALSE(fs::exists("ZOLEXM~~.TMP"));
}

// Symptom: when memory ran out in a capture, the temp file stayed behind.
TEST_F(PosixSystemFaults, ShortMemoryOverRealFiles) {
    const std::vector<const char*> arguments = {"zolex", "/c", "/f:p.ini"};
    const auto descriptors = openDescriptors();
    directory.write("p.ini", before);
    ASSERT_EQ(0, platform.runCounted(arguments));
    const std::string whole = TemporaryDirectory::read("p.ini");
    int failures = 0;
    for (std::size_t n = 1;; ++n) {
        SCOPED_TRACE(n);
        directory.write("p.ini", before);
        auto run = std::make_unique<RealFiles>();
        failAllocation(Allocation::throwing, n);
        const int code = run->runCounted(arguments);
        const bool struck = allocationsAsked(Allocation::throwing) >= n;
        failAllocation(Allocation::throwing, 0);
        run.reset();
        EXPECT_FALSE(fs::exists("ZOLEXM~~.TMP"));
        EXPECT_EQ(descriptors, openDescriptors());
        EXPECT_TRUE(code == 0 || code == 10) << code;
        const std::string after = TemporaryDirectory::read("p.ini");
        EXPECT_TRUE(after == whole || (code == 10 && after == before)) << after;
        if (!struck) {
            EXPECT_EQ(0, code);
            break;
        }
        failures += code == 10 ? 1 : 0;
    }
    EXPECT_GT(failures, 50);
}

// Symptom: a capture that was killed while it appended many policies left a part of them.
TEST_F(PosixSystemFaults, WhatIsAppendedGoesToTheSystemInOnePiece) {
    directory.write("p.ini", before);
    StandardFileSystem files;
    const auto file = files.open("p.ini", "a");
    ASSERT_NE(file, nullptr);
    const std::string block(50, 'x');
    constexpr int blocks = 2500; // more than the policies of 36 controllers take
    for (int i = 0; i < blocks; ++i) {
        ASSERT_EQ(block.size(), file->write(block));
        ASSERT_EQ(before.size(), fs::file_size("p.ini")) << i;
    }
    EXPECT_TRUE(file->flush());
    EXPECT_EQ(before.size() + blocks * block.size(), fs::file_size("p.ini"));
}

// Children

struct ChildFault {
    const char* name;
    const char* command;
    std::chrono::milliseconds limit;
    ChildOutcome outcome;
    std::size_t leftOpen; ///< descriptors
};

class PosixChildren : public testing::TestWithParam<posix::Notice> {};

TEST_P(PosixChildren, NoFailureLeavesADescriptorButThatOfAChildLeftRunning) {
    using namespace std::chrono_literals;
    const TemporaryDirectory directory;
    directory.write("no-program", "#!/bin/cat\n"); // and no permission
    const std::vector<ChildFault> faults = {
        {"none", "/bin/true", 60s, ChildOutcome::ended, 0},
        {"exit code", "/bin/sh -c \"exit 77\"", 60s, ChildOutcome::ended, 0},
        {"signal", "/bin/sh -c \"kill -9 $$\"", 60s, ChildOutcome::ended, 0},
        {"unknown", "zolex-no-such-program", 60s, ChildOutcome::notStarted, 0},
        {"unknown path", "/no/such/program", 60s, ChildOutcome::notStarted, 0},
        {"no program", "no-program", 60s, ChildOutcome::notStarted, 0},
        {"empty", "", 60s, ChildOutcome::notStarted, 0},
        {"a folder", "/bin", 60s, ChildOutcome::notStarted, 0},
        // The child must be able to go on writing.
        {"limit", "/bin/sh -c \"echo $$ > pid; exec sleep 60\"", 300ms, ChildOutcome::stillRunning,
         1},
    };
    for (const ChildFault& fault : faults) {
        SCOPED_TRACE(fault.name);
        const auto descriptors = openDescriptors();
        const ChildResult result = posix::runChild(fault.command, true, fault.limit, GetParam());
        EXPECT_EQ(fault.outcome, result.outcome);
        EXPECT_EQ(descriptors.size() + fault.leftOpen, openDescriptors().size());
    }
    const pid_t child = writtenProcess();
    ASSERT_GT(child, 0);
    EXPECT_EQ(0, ::kill(child, SIGKILL));
    EXPECT_EQ(child, ::waitpid(child, nullptr, 0));
}

TEST_P(PosixChildren, AShortageOfDescriptorsLeavesNoneOpen) {
    const auto descriptors = openDescriptors();
    rlimit usual{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &usual));
    const posix::Notice notice = GetParam();
    for (rlim_t most = 3; most < 40; ++most) {
        rlimit narrow = usual;
        narrow.rlim_cur = most;
        ASSERT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &narrow));
        // Nothing else is touched here: the sanitizers want a descriptor to look at it.
        const ChildOutcome outcome =
            posix::runChild("/bin/true", true, std::chrono::minutes(1), notice).outcome;
        ::setrlimit(RLIMIT_NOFILE, &usual);
        EXPECT_TRUE(outcome == ChildOutcome::noPipe || outcome == ChildOutcome::notStarted ||
                    outcome == ChildOutcome::ended);
        EXPECT_EQ(descriptors, openDescriptors()) << most;
    }
}

INSTANTIATE_TEST_SUITE_P(Notices, PosixChildren,
                         testing::Values(posix::Notice::byDescriptor, posix::Notice::bySlices));

} // namespace
} // namespace zolex::test

#endif
