#include "policies/PolicyLines.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex {
namespace {

/// Each line as "number:text", newlines shown as "$" and carriage returns as "@".
std::vector<std::string> linesOf(const std::string& content, bool meaningfulOnly = false) {
    test::FakeFileSystem files;
    files.files["f"] = content;
    const auto file = files.open("f", "r");
    PolicyLines lines(*file);
    std::vector<std::string> result;
    std::string_view line;
    while (meaningfulOnly ? lines.nextMeaningful(line) : lines.next(line)) {
        std::string shown = std::to_string(lines.number()) + ":";
        for (const char c : line) {
            shown += c == '\n' ? '$' : c == '\r' ? '@' : c;
        }
        result.push_back(shown);
    }
    return result;
}

using Lines = std::vector<std::string>;

TEST(PolicyLinesTest, LinesKeepTheirNewlineAndAreNumberedByIt) {
    EXPECT_EQ(linesOf(""), Lines{});
    EXPECT_EQ(linesOf("a\n\nb\n"), (Lines{"1:a$", "2:$", "3:b$"}));
}

TEST(PolicyLinesTest, AFinalLineWithoutNewlineKeepsTheNumberOfTheLineBefore) {
    EXPECT_EQ(linesOf("a\nb"), (Lines{"1:a$", "1:b"}));
    EXPECT_EQ(linesOf("a"), Lines{"0:a"});
}

TEST(PolicyLinesTest, ACarriageReturnBeforeANewlineIsDropped) {
    EXPECT_EQ(linesOf("a\r\nb\r\n\r\n"), (Lines{"1:a$", "2:b$", "3:$"}));
    EXPECT_EQ(linesOf("a\r\r\nb\rc\r"), (Lines{"1:a@$", "1:b@c@"}));
}

TEST(PolicyLinesTest, WhatStandsBeyond255CharactersIsTheNextLine) {
    const std::string full(255, 'x');
    EXPECT_EQ(linesOf(full + "y\nz\n"), (Lines{"0:" + full, "1:y$", "2:z$"}));
    EXPECT_EQ(linesOf(full + full + "\n"), (Lines{"0:" + full, "0:" + full, "1:$"}));
    const std::string short254(254, 'x');
    EXPECT_EQ(linesOf(short254 + "\nz\n"), (Lines{"1:" + short254 + "$", "2:z$"}));
    EXPECT_EQ(linesOf(short254 + "\r\nz\n"), (Lines{"1:" + short254 + "$", "2:z$"}));
}

TEST(PolicyLinesTest, ALineEndMayStandWhereTheReadBufferEnds) {
    for (std::size_t before = 4090; before < 4100; ++before) {
        const std::string blanks = std::string(before, '\n');
        EXPECT_EQ(linesOf(blanks + "a\r\nb\n", true),
                  (Lines{std::to_string(before + 1) + ":a$", std::to_string(before + 2) + ":b$"}));
    }
}

TEST(PolicyLinesTest, BlankLinesCommentsAndSpacesAreLeftOut) {
    EXPECT_EQ(linesOf("\n   \n; c\n   ;c\n\rwhatever\n  a\n\t\n", true),
              (Lines{"6:  a$", "7:\t$"}));
    EXPECT_EQ(linesOf(std::string(256, ' ') + "\na\n", true), Lines{"2:a$"});
    EXPECT_EQ(linesOf("a\n   ", true), Lines{"1:a$"});
}

TEST(PolicyLinesTest, EachLineKnowsWhereItBeginsInTheFile) {
    test::FakeFileSystem files;
    files.files["f"] = "a\r\n" + std::string(600, 'x') + "\n" + std::string(255, 'y') + "\nend";
    const auto file = files.open("f", "r");
    PolicyLines lines(*file);
    std::string places;
    std::string_view line;
    while (lines.next(line)) {
        places += std::to_string(lines.line()) + ":" + std::to_string(lines.column()) + " ";
    }
    EXPECT_EQ(places, "1:1 2:1 2:256 2:511 3:1 3:256 4:1 ");
}

TEST(PolicyLinesTest, TheRestOfALongCommentIsNoComment) {
    EXPECT_EQ(linesOf(";" + std::string(254, '-') + "rest\n", true), Lines{"1:rest$"});
}

// Symptom: an endless line of spaces was read for ever.
TEST(PolicyLinesTest, ALineOfTheFileMayHave16MiBAndNoMore) {
    const std::string longest(longestLine, ' ');
    EXPECT_EQ(linesOf(longest + "\r\na\n", true), Lines{"2:a$"});
    EXPECT_EQ(linesOf("a\n" + longest + " \nb\n", true), Lines{"1:a$"});
    for (const bool isTooLong : {false, true}) {
        test::FakeFileSystem files;
        files.files["f"] = longest + (isTooLong ? " " : "") + "\nb\n";
        const auto file = files.open("f", "r");
        PolicyLines lines(*file);
        std::string_view line;
        EXPECT_EQ(lines.nextMeaningful(line), !isTooLong);
        EXPECT_EQ(lines.failed(), isTooLong);
    }
}

} // namespace
} // namespace zolex
