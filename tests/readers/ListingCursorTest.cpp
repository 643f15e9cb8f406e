#include "readers/ListingCursor.h"

#include "platform/CapturedOutput.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace zolex::test {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    ListingCursor cursor(text);
    Lines lines;
    for (std::string_view line = cursor.nextLine(); line != endOfOutput; line = cursor.nextLine()) {
        lines.emplace_back(line);
    }
    EXPECT_EQ(cursor.nextLine(), endOfOutput);
    return lines;
}

/// The lines by the plainest rule: pieces up to a newline or of the longest length, each ended by
/// its first carriage return or zero byte.
Lines plainLinesOf(const std::string& text) {
    CapturedOutput output(text);
    Lines lines;
    for (;;) {
        std::string piece(output.nextPiece(longestListingLine));
        const bool ended = piece.ends_with('\n');
        if (!ended && piece.size() < longestListingLine) {
            return lines;
        }
        piece.resize(piece.size() - (ended ? 1 : 0));
        piece.resize(std::min(piece.find('\0'), piece.size()));
        piece.resize(std::min(piece.find('\r'), piece.size()));
        if (piece == endOfOutput) {
            return lines;
        }
        lines.push_back(piece);
    }
}

TEST(ListingCursor, WithoutAListingThereIsOnlyTheEnd) {
    ListingCursor cursor;
    EXPECT_FALSE(cursor.hasListing());
    EXPECT_EQ(cursor.nextLine(), endOfOutput);
    EXPECT_TRUE(ListingCursor("").hasListing());
}

TEST(ListingCursor, AnyTextHasTheLinesOfThePlainRule) {
    std::mt19937 random(3);
    const std::string rare("\r\0\n", 3);
    std::size_t lines = 0;
    for (int i = 0; i < 20000; ++i) {
        // Often one line end throughout, so that the quick ways are gone too.
        const std::string ends[] = {"\n", "\r\n", "\r\n\r\n", "\nEOF\n", "\r\r\n"};
        const std::size_t usual = random() % 5;
        const unsigned oddEvery = i % 3 == 0 ? 5 : 100000;
        std::string text;
        while (random() % 12 != 0) {
            text.append(random() % 8 == 0 ? random() % 420 : random() % 60, 'x');
            text += random() % oddEvery == 0 ? std::string(1, rare[random() % 3]) : ends[usual];
        }
        const Lines expected = plainLinesOf(text);
        ASSERT_EQ(linesOf(text), expected) << text;
        lines += expected.size();
    }
    EXPECT_GT(lines, 100000U);
}

TEST(KeyAhead, FindsTheKeyInEachLineThatHoldsIt) {
    const std::string text = "PD: 1\nnothing\n P\nD\nxxPDPD\nPPD\n\nlast";
    ListingCursor lines(text);
    KeyAhead key("PD");
    std::string found;
    for (std::string_view line = lines.nextLine(); line != endOfOutput; line = lines.nextLine()) {
        found += key.canBeIn(line, lines) ? '1' : '0';
    }
    EXPECT_EQ(found, "1000110");
}

} // namespace
} // namespace zolex::test
