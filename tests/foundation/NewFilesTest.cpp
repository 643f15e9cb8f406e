// Files that are made anew, and files that are locked, by the file system of the system itself.

#include "foundation/EndingFiles.h"
#include "foundation/FileSystem.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace zolex {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Interrupted = FileSystem::WhenInterrupted;

class NewFiles : public testing::Test {
  protected:
    std::unique_ptr<File> create(std::string_view name, std::string_view other = "p.ini",
                                 Interrupted interrupted = Interrupted::kept) {
        return files.create(name, other, interrupted);
    }

    static std::string read(const std::string& name) {
        return test::TemporaryDirectory::read(name);
    }

    test::TemporaryDirectory directory;
    StandardFileSystem files;
};

TEST_F(NewFiles, AreReadThroughTheHandleThatWroteThem) {
    directory.write("a.tmp", "what stood there");
    auto file = create("a.tmp");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(5U, file->write("one\n\x1A"));
    EXPECT_TRUE(file->flush());
    EXPECT_TRUE(file->rewind());
    std::array<char, 100> bytes{};
    EXPECT_EQ("one\n\x1A", std::string(bytes.data(), file->read(bytes)));
    EXPECT_FALSE(file->failed());
    EXPECT_TRUE(files.discard(std::move(file), "a.tmp"));
    EXPECT_FALSE(fs::exists("a.tmp"));
    EXPECT_FALSE(files.discard(nullptr, "a.tmp"));
}

TEST_F(NewFiles, AreNotTheOtherFileUnderWhateverName) {
    directory.write("p.ini", "policies");
    EXPECT_EQ(create("p.ini"), nullptr);
    EXPECT_EQ(create(".\\p.ini"), nullptr);
    EXPECT_EQ(create("./p.ini"), nullptr);
    std::error_code none;
    fs::create_hard_link("p.ini", "hard.tmp", none);
    if (!none) {
        EXPECT_EQ(create("hard.tmp"), nullptr);
    }
    EXPECT_EQ("policies", read("p.ini"));
    EXPECT_NE(create("a.tmp", "missing.ini"), nullptr);
    EXPECT_NE(create("a.tmp", ""), nullptr);
}

TEST_F(NewFiles, AreNotMadeWhereTheyCannotBe) {
    fs::create_directory("folder");
    EXPECT_EQ(create("folder"), nullptr);
    EXPECT_EQ(create("missing/a.tmp"), nullptr);
    EXPECT_EQ(create(""), nullptr);
    EXPECT_EQ(create(std::string_view("a\0b", 3)), nullptr);
    EXPECT_TRUE(fs::is_directory("folder"));
}

int numberEntered() {
    static int files = 0;
    files = 0;
    EndingFile::forEach([](const char* /*name*/, EndingFile::Goes /*goes*/) { ++files; });
    return files;
}

TEST_F(NewFiles, GoWhenASignalEndsTheProcessUnlessTheyAreKept) {
    {
        const auto kept = create("a.tmp", "", Interrupted::kept);
        EXPECT_EQ(0, numberEntered());
    }
    auto file = create("a.tmp", "", Interrupted::removed);
    EXPECT_EQ(1, numberEntered());
    EXPECT_TRUE(files.discard(std::move(file), "a.tmp"));
    EXPECT_EQ(0, numberEntered());
    EXPECT_EQ(create("missing/a.tmp", "", Interrupted::removed), nullptr);
    EXPECT_EQ(0, numberEntered());
}

TEST_F(NewFiles, AnotherFileOfTheNameStaysWhenOneIsDiscarded) {
    auto mine = create("a.tmp");
    ASSERT_NE(mine, nullptr);
#ifdef _WIN32
    EXPECT_TRUE(files.remove("a.tmp")); // it has no name, and nobody else can have it
#else
    directory.write("b.tmp", "of another run");
    fs::rename("b.tmp", "a.tmp");
#endif
    EXPECT_TRUE(files.discard(std::move(mine), "a.tmp"));
#ifdef _WIN32
    EXPECT_FALSE(fs::exists("a.tmp"));
#else
    EXPECT_EQ("of another run", read("a.tmp"));
#endif
}

TEST_F(NewFiles, ALockedFileIsReadAndWrittenButNotLockedAgain) {
    directory.write("p.ini", "before\n");
    auto first = files.lock("p.ini", 0ms);
    ASSERT_NE(first.lock, nullptr);
    EXPECT_FALSE(first.isBusy);
    EXPECT_FALSE(first.lock->madeFile());
    const auto start = std::chrono::steady_clock::now();
    const auto second = files.lock("p.ini", 200ms);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 150ms);
    EXPECT_EQ(second.lock, nullptr);
    EXPECT_TRUE(second.isBusy);
    auto file = files.open("p.ini", "a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(3U, file->write("new"));
    EXPECT_TRUE(file->close());
    EXPECT_TRUE(read("p.ini").ends_with("\nnew"));
    first.lock.reset();
    EXPECT_NE(files.lock("p.ini", 0ms).lock, nullptr);
    EXPECT_TRUE(fs::exists("p.ini"));
}

TEST_F(NewFiles, AFileThatWasMadeToBeLockedGoesUnlessItIsWritten) {
    {
        const auto made = files.lock("p.ini", 0ms);
        ASSERT_NE(made.lock, nullptr);
        EXPECT_TRUE(made.lock->madeFile());
        EXPECT_TRUE(fs::exists("p.ini"));
        EXPECT_TRUE(files.lock("p.ini", 0ms).isBusy);
    }
    EXPECT_FALSE(fs::exists("p.ini"));
    EXPECT_EQ(0, numberEntered());
    {
        const auto made = files.lock("p.ini", 0ms);
        files.open("p.ini", "a")->write("x");
    }
    EXPECT_EQ("x", read("p.ini"));
    directory.write("p.ini", "");
    EXPECT_FALSE(files.lock("p.ini", 0ms).lock->madeFile());
    EXPECT_TRUE(fs::exists("p.ini"));
}

TEST_F(NewFiles, WhoWaitedForAFileThatWentMakesItAnew) {
    auto first = files.lock("p.ini", 0ms);
    LockResult second;
    std::thread waiting([&] { second = files.lock("p.ini", 60s); });
    std::this_thread::sleep_for(100ms);
    first.lock.reset();
    waiting.join();
    ASSERT_NE(second.lock, nullptr);
    EXPECT_TRUE(fs::exists("p.ini"));
    EXPECT_TRUE(files.lock("p.ini", 0ms).isBusy);
}

TEST_F(NewFiles, WhatIsNoFileIsNotLocked) {
    fs::create_directory("folder");
    for (const std::string_view name :
         {std::string_view("folder"), std::string_view("missing/p.ini"), std::string_view(""),
          std::string_view("a\0b", 3)}) {
        const auto result = files.lock(name, 0ms);
        EXPECT_EQ(result.lock, nullptr) << name;
        EXPECT_FALSE(result.isBusy) << name;
    }
}

} // namespace
} // namespace zolex
