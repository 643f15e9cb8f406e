#include "platform/CapturedOutput.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace zolex {
namespace {

std::vector<std::string> pieces(CapturedOutput output, std::size_t limit = capturedLineLimit) {
    std::vector<std::string> all;
    for (auto piece = output.nextPiece(limit); !piece.empty(); piece = output.nextPiece(limit)) {
        all.emplace_back(piece);
    }
    return all;
}

TEST(CapturedOutput, PiecesEndAtNewlinesAtTheLimitAndAtTheEnd) {
    using List = std::vector<std::string>;
    const std::string full(198, 'x');
    const std::string almost(197, 'x');
    struct {
        std::string bytes;
        List expected;
    } const rows[] = {
        {"", {}},
        {"a\nb\n", {"a\n", "b\n"}},
        {"a\nlast", {"a\n", "last"}},
        {"\n\n", {"\n", "\n"}},
        {"a\r\nb\r\n", {"a\r\n", "b\r\n"}},
        {almost + "\nb", {almost + "\n", "b"}},
        {full + "\nb", {full, "\n", "b"}},
        {full + full + "y", {full, full, "y"}},
        {std::string("a\0b\n", 4), {std::string("a\0b\n", 4)}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(pieces(CapturedOutput(row.bytes)), row.expected) << row.bytes;
    }
}

TEST(CapturedOutput, ReadMovesBytesOnceFromFrontToBack) {
    CapturedOutput output("abcde");
    std::array<char, 3> buffer{};
    EXPECT_EQ(output.read(buffer), 3U);
    EXPECT_EQ(std::string(buffer.data(), 3), "abc");
    EXPECT_EQ(output.read(buffer), 2U);
    EXPECT_EQ(std::string(buffer.data(), 2), "de");
    EXPECT_EQ(output.read(buffer), 0U);
    EXPECT_EQ(output.read(buffer), 0U);
}

TEST(CapturedOutput, PiecesGoOnWhereReadsEnded) {
    CapturedOutput output("abc\nd");
    std::array<char, 1> buffer{};
    EXPECT_EQ(output.read(buffer), 1U);
    EXPECT_EQ(output.nextPiece(capturedLineLimit), "bc\n");
    EXPECT_EQ(output.read(buffer), 1U);
    EXPECT_EQ(buffer[0], 'd');
    EXPECT_EQ(output.nextPiece(capturedLineLimit), "");
}

TEST(CapturedOutput, AnEmptyOneIsAtItsEnd) {
    CapturedOutput output;
    std::array<char, 1> buffer{};
    EXPECT_EQ(output.read(buffer), 0U);
    EXPECT_EQ(output.nextPiece(capturedLineLimit), "");
}

TEST(CapturedOutput, TakingTheTextLeavesNothing) {
    CapturedOutput output("abc\nd");
    EXPECT_EQ(output.nextPiece(capturedLineLimit), "abc\n");
    EXPECT_EQ(output.take(), "abc\nd");
    EXPECT_EQ(output.nextPiece(capturedLineLimit), "");
    EXPECT_EQ(output.take(), "");
}

} // namespace
} // namespace zolex
