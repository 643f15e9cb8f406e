#include "foundation/TemporaryFile.h"

#include "foundation/AllocationFaults.h"
#include "foundation/ErrorReporter.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace zolex {
namespace {

constexpr const char* temporaryName = "a.tmp";

class TemporaryFileTest : public testing::Test {
  protected:
    test::FakeFileSystem files;
};

TEST_F(TemporaryFileTest, IsRemovedOnceWhenItIsFinished) {
    TemporaryFile temporary(files, temporaryName);
    EXPECT_EQ(temporary.file(), nullptr);
    ASSERT_TRUE(temporary.open());
    EXPECT_EQ(files.opened, std::vector<std::string>{"w+ a.tmp"});
    temporary.file()->write("text");
    EXPECT_TRUE(files.exists(temporaryName));
    EXPECT_TRUE(temporary.finish());
    EXPECT_EQ(temporary.file(), nullptr);
    EXPECT_FALSE(files.exists(temporaryName));
    EXPECT_TRUE(temporary.finish());
    EXPECT_EQ(files.removed, std::vector<std::string>{temporaryName});
}

TEST_F(TemporaryFileTest, IsRemovedWithItsObject) {
    {
        TemporaryFile temporary(files, temporaryName);
        ASSERT_TRUE(temporary.open());
    }
    EXPECT_FALSE(files.exists(temporaryName));
}

TEST_F(TemporaryFileTest, StaysWhenItIsKept) {
    {
        TemporaryFile temporary(files, temporaryName);
        temporary.setKept(true);
        ASSERT_TRUE(temporary.open());
        EXPECT_TRUE(temporary.finish());
    }
    EXPECT_TRUE(files.exists(temporaryName));
    EXPECT_TRUE(files.removed.empty());
}

TEST_F(TemporaryFileTest, WhatCouldNotBeOpenedIsNotRemoved) {
    files.files[temporaryName] = "of somebody else";
    files.refused = {"w+ a.tmp"};
    {
        TemporaryFile temporary(files, temporaryName);
        EXPECT_FALSE(temporary.open());
        EXPECT_EQ(temporary.file(), nullptr);
        EXPECT_TRUE(temporary.finish());
    }
    EXPECT_TRUE(files.exists(temporaryName));
}

TEST_F(TemporaryFileTest, TellsThatItCouldNotBeRemovedAndTriesOnce) {
    files.failRemove = true;
    {
        TemporaryFile temporary(files, temporaryName);
        ASSERT_TRUE(temporary.open());
        EXPECT_FALSE(temporary.finish());
    }
    EXPECT_EQ(files.removed.size(), 1U);
}

/// Files whose first removal finds no memory.
class ShortOfMemory : public test::FakeFileSystem {
  public:
    bool remove(std::string_view file) override {
        if (!std::exchange(tried_, true)) {
            throw std::bad_alloc();
        }
        return FakeFileSystem::remove(file);
    }

  private:
    bool tried_ = false;
};

TEST(TemporaryFile, IsRemovedAfterAllWhenMemoryWasShortAtFirst) {
    ShortOfMemory files;
    {
        TemporaryFile temporary(files, temporaryName);
        ASSERT_TRUE(temporary.open());
        EXPECT_THROW(temporary.finish(), std::bad_alloc);
        EXPECT_TRUE(files.exists(temporaryName));
    }
    EXPECT_FALSE(files.exists(temporaryName));
}

TEST(TemporaryFile, ShortMemoryInItsDestructionIsNoException) {
    ShortOfMemory files;
    {
        TemporaryFile temporary(files, temporaryName);
        ASSERT_TRUE(temporary.open());
    }
    EXPECT_TRUE(files.exists(temporaryName));
}

/// Prints its letter when the process ends under it.
class Letter : public EndingTask {
  public:
    Letter(std::string& said, char letter) : said_(said), letter_(letter) {}

  private:
    void processEnds() noexcept override { said_ += letter_; }

    std::string& said_;
    char letter_;
};

TEST(EndingTaskTest, TheTasksOfTheLivingAreRunOnceTheYoungestFirst) {
    std::string said;
    said.reserve(10);
    {
        const Letter a(said, 'a');
        auto b = std::make_unique<Letter>(said, 'b');
        const Letter c(said, 'c');
        b.reset(); // not the youngest
        const Letter d(said, 'd');
        EndingTask::runAll();
        EXPECT_EQ(said, "dca");
        EndingTask::runAll();
        EXPECT_EQ(said, "dca");
    }
    EndingTask::runAll();
    EXPECT_EQ(said, "dca");
}

/// Ends the process once more while it ends, as a task does that runs out of memory.
class EndsAgain : public EndingTask {
  public:
    explicit EndsAgain(std::string& said) : said_(said) {}

  private:
    void processEnds() noexcept override {
        said_ += '!';
        if (said_.size() < 5) {
            runAll();
        }
    }

    std::string& said_;
};

TEST(EndingTaskTest, ATaskThatEndsTheProcessAgainLeavesOnlyTheOlderOnes) {
    std::string said;
    said.reserve(10);
    const Letter a(said, 'a');
    const EndsAgain again(said);
    const Letter b(said, 'b');
    EndingTask::runAll();
    EXPECT_EQ(said, "b!a");
}

#if GTEST_HAS_DEATH_TEST
/// Says on standard error what has become of the file when the process ends.
class Witness : public test::FakeFileSystem {
  public:
    bool remove(std::string_view file) override {
        std::fprintf(stderr, "removed %s", std::string(file).c_str());
        return FakeFileSystem::remove(file);
    }
};

// Symptom: when the string class ended the process, the temp file stayed behind.
TEST(TemporaryFileDeathTest, IsRemovedWhenTheErrorReporterEndsTheProcess) {
    EXPECT_EXIT(
        {
            Witness files;
            TemporaryFile temporary(files, temporaryName);
            temporary.open();
            test::failAllocation(test::Allocation::nothrow, 1);
            const CString text("more");
        },
        testing::ExitedWithCode(1), "CString::CreateCharString\nremoved a.tmp$");
    EXPECT_EXIT(
        {
            Witness files;
            TemporaryFile temporary(files, temporaryName);
            temporary.setKept(true);
            temporary.open();
            reportError(ReportMode::endProcess, ReportCategory::detailOnly, "detail");
        },
        testing::ExitedWithCode(1), "detail\n$");
}
#endif

} // namespace
} // namespace zolex
