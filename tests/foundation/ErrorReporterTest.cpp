#include "foundation/ErrorReporter.h"

#include "foundation/AllocationFaults.h"
#include "foundation/Console.h"
#include "foundation/StandardError.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace zolex {
namespace {

// The text of a category with the detail "the detail" and without one.
struct CategoryRow {
    int category;
    const char* withDetail;
    const char* withoutDetail;
};
constexpr CategoryRow categories[] = {
    {1, "General System Error\n\nthe detail", "General System Error\n\n"},
    {2, "General Program Error\n\nthe detail", "General Program Error\n\n"},
    {3, "the detail", ""},
    {4,
     "Memory Allocation Error\n\nNot enough memory is available for this application.\n\n"
     "Please close some programs to free up memory and try running\nthis application again.\n\n"
     "the detail",
     "Memory Allocation Error\n\nNot enough memory is available for this application.\n\n"
     "Please close some programs to free up memory and try running\nthis application again.\n\n"},
    {5, "File Open Error\n\nUnable to open file...\n\nthe detail",
     "File Open Error\n\nUnable to open file...\n\n"},
    {6, "File Read Error\n\nUnable to read from file...\n\nthe detail",
     "File Read Error\n\nUnable to read from file...\n\n"},
    {7, "File Write Error\n\nUnable to write to file...\n\nthe detail",
     "File Write Error\n\nUnable to write to file...\n\n"},
    {8, "File Close Error\n\nUnable to close file...\n\nthe detail",
     "File Close Error\n\nUnable to close file...\n\n"},
    {9,
     "Parse Error\n\nUnable to parse data file...\n\nthe detail\n\n"
     "The data file may not be in the correct format or it may be corrupt.\n\n",
     "Parse Error\n\nUnable to parse data file...\n\n"
     "The data file may not be in the correct format or it may be corrupt.\n\n"},
    {10, "TCP/IP Error\n\nthe detail", "TCP/IP Error\n\n"},
};

ReportCategory category(int number) {
    return static_cast<ReportCategory>(number);
}

/// The frame that stands around every text.
std::string framed(const std::string& text) {
    return "\n\n" + text + "\n";
}

/// Passes standard error on and answers from a script.
class EchoConsole : public Console {
  public:
    explicit EchoConsole(std::string_view answers) : answers_(answers) {}
    void writeOutput(std::string_view text) override { writeError("<out>" + std::string(text)); }
    void writeError(std::string_view text) override {
        std::fwrite(text.data(), 1, text.size(), stderr);
    }
    int readCharacter() override {
        if (answers_.empty()) {
            return -1;
        }
        const char answer = answers_.front();
        answers_.remove_prefix(1);
        return static_cast<unsigned char>(answer);
    }

  private:
    std::string_view answers_;
};

TEST(ErrorReporter, WritesTheFramedTextOfEachCategoryAndReturns) {
    for (const CategoryRow& row : categories) {
        test::FakeConsole console;
        reportError(console, ReportMode::goOn, category(row.category), "the detail");
        EXPECT_EQ(console.error, framed(row.withDetail)) << row.category;
        console.error.clear();
        reportError(console, ReportMode::goOn, category(row.category), "");
        EXPECT_EQ(console.error, framed(row.withoutDetail)) << row.category;
        console.error.clear();
        reportError(console, ReportMode::goOn, category(row.category), nullptr);
        EXPECT_EQ(console.error, framed(row.withoutDetail)) << row.category;
        EXPECT_EQ(console.output, "") << row.category;
        EXPECT_EQ(console.charactersRead, 0U) << row.category;
    }
}

TEST(ErrorReporter, AnUnknownCategoryLeavesTheFrame) {
    for (const int number : {-1, 0, 11}) {
        test::FakeConsole console;
        reportError(console, ReportMode::goOn, category(number), "the detail");
        EXPECT_EQ(console.error, framed("")) << number;
    }
}

TEST(ErrorReporter, AnyOtherModeReturns) {
    for (const int mode : {-1, 1, 3, 100}) {
        test::FakeConsole console;
        console.answers = "n";
        reportError(console, static_cast<ReportMode>(mode), ReportCategory::tcpIp, "x");
        EXPECT_EQ(console.error, framed("TCP/IP Error\n\nx")) << mode;
        EXPECT_EQ(console.charactersRead, 0U) << mode;
    }
}

TEST(ErrorReporter, AskingReturnsOnYes) {
    for (const char* answers : {"y", "Y", "yn", "Yes\n"}) {
        test::FakeConsole console;
        console.answers = answers;
        reportError(console, ReportMode::ask, ReportCategory::fileRead, "policies.ini");
        EXPECT_EQ(console.error,
                  framed("File Read Error\n\nUnable to read from file...\n\npolicies.ini") +
                      "\nContinue anyway? ")
            << answers;
        EXPECT_EQ(console.output, "");
        EXPECT_EQ(console.charactersRead, 1U) << answers;
    }
}

TEST(ErrorReporterDeathTest, AskingEndsTheProcessOnAnyOtherAnswer) {
    for (const char* answers : {"", "n", "N", "\n", " y", "x", "\xFF"}) {
        EXPECT_EXIT(
            {
                EchoConsole console(answers);
                reportError(console, ReportMode::ask, ReportCategory::generalSystem, "x");
                std::exit(0);
            },
            testing::ExitedWithCode(1),
            test::StandardErrorIs(framed("General System Error\n\nx") + "\nContinue anyway? "))
            << answers;
    }
}

TEST(ErrorReporterDeathTest, EndsTheProcessWithCodeOneInEveryCategory) {
    for (const CategoryRow& row : categories) {
        EXPECT_EXIT(
            {
                EchoConsole console("y");
                reportError(console, ReportMode::endProcess, category(row.category), "the detail");
                std::exit(0);
            },
            testing::ExitedWithCode(1), test::StandardErrorIs(framed(row.withDetail)))
            << row.category;
    }
}

TEST(ErrorReporterDeathTest, WithoutAConsoleItWritesOnStandardError) {
    EXPECT_EXIT(
        {
            reportError(ReportMode::goOn, ReportCategory::fileOpen, "first");
            reportError(ReportMode::endProcess, ReportCategory::fileClose, "second");
            std::exit(0);
        },
        testing::ExitedWithCode(1),
        test::StandardErrorIs(framed("File Open Error\n\nUnable to open file...\n\nfirst") +
                              framed("File Close Error\n\nUnable to close file...\n\nsecond")));
}

TEST(ErrorReporterDeathTest, WithoutAConsoleItReadsTheAnswerFromStandardInput) {
    const std::string name = testing::TempDir() + "zolex-answer.txt";
    for (const char* answer : {"y", "n"}) {
        std::FILE* file = std::fopen(name.c_str(), "w");
        ASSERT_NE(file, nullptr);
        std::fputs(answer, file);
        std::fclose(file);
        EXPECT_EXIT(
            {
                if (std::freopen(name.c_str(), "r", stdin) == nullptr) {
                    std::exit(3);
                }
                reportError(ReportMode::ask, ReportCategory::detailOnly, "x");
                std::exit(2);
            },
            testing::ExitedWithCode(answer[0] == 'y' ? 2 : 1),
            test::StandardErrorIs(framed("x") + "\nContinue anyway? "));
    }
    std::remove(name.c_str());
}

/// Compares with one expected text, without memory of its own.
class ComparingConsole : public Console {
  public:
    explicit ComparingConsole(std::string_view expected) : rest(expected) {}
    void writeOutput(std::string_view /*text*/) override { isSame = false; }
    void writeError(std::string_view text) override {
        isSame = isSame && rest.starts_with(text);
        rest.remove_prefix(isSame ? text.size() : 0);
    }
    int readCharacter() override { return 'y'; }

    std::string_view rest;
    bool isSame = true;
};

TEST(ErrorReporter, AsksForNoMemory) {
    const std::string expected = test::memoryReport("IniFile.AddLine()") + "\nContinue anyway? ";
    ComparingConsole console(expected);
    test::failAllocation(test::Allocation::throwing, 0);
    test::failAllocation(test::Allocation::nothrow, 0);
    reportError(console, ReportMode::ask, ReportCategory::memoryAllocation, "IniFile.AddLine()");
    EXPECT_EQ(test::allocationsAsked(test::Allocation::throwing), 0U);
    EXPECT_EQ(test::allocationsAsked(test::Allocation::nothrow), 0U);
    EXPECT_TRUE(console.isSame);
    EXPECT_EQ(console.rest, "");
}

} // namespace
} // namespace zolex
