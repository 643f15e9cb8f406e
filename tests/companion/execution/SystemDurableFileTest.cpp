#include "companion/execution/SystemExecutionFixture.h"

#include <filesystem>

namespace zolex::companion {
namespace {

using SystemDurableFile = test::SystemExecutionTest;

TEST_F(SystemDurableFile, Grows) {
    const auto file = system->makeDurable("journal");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(read("journal"), "");
    EXPECT_TRUE(std::filesystem::exists("journal"));
    EXPECT_TRUE(file->append("one\n"));
    EXPECT_EQ(read("journal"), "one\n");
    EXPECT_TRUE(file->append(""));
    const std::string line(100'000, 'x');
    EXPECT_TRUE(file->append(line));
    EXPECT_EQ(read("journal"), "one\n" + line);
}

TEST_F(SystemDurableFile, OneThatIsThereIsNotMade) {
    directory.write("journal", "before");
    EXPECT_EQ(system->makeDurable("journal"), nullptr);
    EXPECT_EQ(read("journal"), "before");
    EXPECT_EQ(system->makeDurable("no-folder/journal"), nullptr);
    std::filesystem::create_directory("folder");
    EXPECT_EQ(system->makeDurable("folder"), nullptr);
}

TEST_F(SystemDurableFile, ATornLineIsCutOff) {
    directory.write("journal", "one\ntwo\ntor");
    {
        const auto file = system->reopenDurable("journal", 8);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(read("journal"), "one\ntwo\n");
        EXPECT_TRUE(file->append("three\n"));
    }
    EXPECT_EQ(read("journal"), "one\ntwo\nthree\n");
    const auto whole = system->reopenDurable("journal", 14);
    ASSERT_NE(whole, nullptr);
    EXPECT_TRUE(whole->append("four\n"));
    EXPECT_EQ(read("journal"), "one\ntwo\nthree\nfour\n");
}

TEST_F(SystemDurableFile, OneThatIsShorterOrNotThereIsNotReopened) {
    directory.write("journal", "one\n");
    EXPECT_EQ(system->reopenDurable("journal", 5), nullptr);
    EXPECT_EQ(system->reopenDurable("journal", 0xFFFFFFFFFFFFFFFFU), nullptr);
    EXPECT_EQ(read("journal"), "one\n");
    EXPECT_EQ(system->reopenDurable("no-journal", 0), nullptr);
    EXPECT_FALSE(std::filesystem::exists("no-journal"));
    std::filesystem::create_directory("folder");
    EXPECT_EQ(system->reopenDurable("folder", 0), nullptr);
}

} // namespace
} // namespace zolex::companion
