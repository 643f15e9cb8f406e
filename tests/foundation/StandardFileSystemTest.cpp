#include "foundation/FileSystem.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <array>

namespace zolex {
namespace {

using test::TemporaryDirectory;

class StandardFiles : public ::testing::Test {
  protected:
    std::string contentOf(std::string_view name) {
        const auto file = files.open(name, "r");
        if (!file) {
            return "(not opened)";
        }
        std::array<char, 100> buffer{};
        const std::size_t n = file->read(buffer);
        EXPECT_FALSE(file->failed());
        return {buffer.data(), n};
    }

    TemporaryDirectory directory;
    StandardFileSystem files;
};

TEST_F(StandardFiles, WritesAppendsAndReads) {
    auto file = files.open("a.txt", "w");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->write("one\n"), 4U);
    EXPECT_TRUE(file->flush());
    EXPECT_TRUE(file->close());
    file = files.open("a.txt", "a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->write("two\n"), 4U);
    file.reset();
    EXPECT_EQ(contentOf("a.txt"), "one\ntwo\n");
    EXPECT_NE(files.open("a.txt", "w"), nullptr);
    EXPECT_EQ(contentOf("a.txt"), "");
}

TEST_F(StandardFiles, ReadsBackWhatItWrote) {
    const auto file = files.open("a.txt", "w+");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->write("text\n"), 5U);
    EXPECT_TRUE(file->rewind());
    std::array<char, 3> buffer{};
    EXPECT_EQ(file->read(buffer), 3U);
    EXPECT_EQ(std::string(buffer.data(), 3), "tex");
    EXPECT_EQ(file->read(buffer), 2U);
    EXPECT_EQ(file->read(buffer), 0U);
    EXPECT_FALSE(file->failed());
    EXPECT_TRUE(file->close());
    EXPECT_TRUE(file->close());
}

TEST_F(StandardFiles, WhatAModeDoesNotAllowFails) {
    std::array<char, 3> buffer{};
    const auto writing = files.open("a.txt", "w");
    ASSERT_NE(writing, nullptr);
    EXPECT_FALSE(writing->failed());
    EXPECT_EQ(writing->read(buffer), 0U);
    EXPECT_TRUE(writing->failed());

    const auto reading = files.open("a.txt", "r");
    ASSERT_NE(reading, nullptr);
    EXPECT_EQ(reading->write("x"), 0U);
    EXPECT_TRUE(reading->failed());
}

TEST_F(StandardFiles, AClosedFileTakesAndGivesNothing) {
    const auto file = files.open("a.txt", "w+");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->close());
    std::array<char, 3> buffer{};
    EXPECT_EQ(file->write("x"), 0U);
    EXPECT_EQ(file->read(buffer), 0U);
    EXPECT_TRUE(file->failed());
    EXPECT_FALSE(file->rewind());
    EXPECT_FALSE(file->flush());
}

TEST_F(StandardFiles, WhatIsNoFileIsNotOpened) {
    directory.write("folder/inside.txt", "x");
    EXPECT_EQ(files.open("missing.txt", "r"), nullptr);
    EXPECT_EQ(files.open("missing/a.txt", "w"), nullptr);
    EXPECT_EQ(files.open("folder", "r"), nullptr);
    EXPECT_EQ(files.open("folder", "w"), nullptr);
    EXPECT_EQ(files.open("", "r"), nullptr);
    EXPECT_EQ(files.open(std::string_view("a.txt\0b", 7), "w"), nullptr);
    EXPECT_EQ(contentOf("a.txt"), "(not opened)");
}

TEST_F(StandardFiles, ABackslashLeadsIntoAFolder) {
    directory.write("folder/deep/inside.txt", "found");
    EXPECT_EQ(contentOf("folder\\deep/inside.txt"), "found");
    EXPECT_EQ(contentOf(".\\folder\\deep\\inside.txt"), "found");
    EXPECT_TRUE(files.remove("folder\\deep\\inside.txt"));
    EXPECT_EQ(contentOf("folder/deep/inside.txt"), "(not opened)");
}

TEST_F(StandardFiles, AFolderAndAnImpossibleNameAreNoFiles) {
    directory.write("folder/a.txt", "x");
    EXPECT_TRUE(files.isFile("folder/a.txt"));
    EXPECT_TRUE(files.isFile("folder\\a.txt"));
    EXPECT_FALSE(files.isFile("folder"));
    EXPECT_FALSE(files.isFile("missing.txt"));
    EXPECT_FALSE(files.isFile(std::string_view("folder/a.txt\0", 13)));
}

TEST_F(StandardFiles, RemovesOnlyWhatIsThere) {
    directory.write("a.txt", "x");
    EXPECT_TRUE(files.remove("a.txt"));
    EXPECT_FALSE(files.remove("a.txt"));
    EXPECT_FALSE(files.remove(std::string_view("\0", 1)));
}

#ifdef __linux__
TEST_F(StandardFiles, AFullDeviceOfPosixIsSeen) {
    const auto file = files.open("/dev/full", "w");
    ASSERT_NE(file, nullptr);
    file->write("x");
    EXPECT_FALSE(file->flush());
    const auto other = files.open("/dev/full", "w");
    ASSERT_NE(other, nullptr);
    other->write("x");
    EXPECT_FALSE(other->close());
}
#endif

} // namespace
} // namespace zolex
