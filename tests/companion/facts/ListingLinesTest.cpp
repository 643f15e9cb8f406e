#include "companion/facts/ListingLines.h"
#include "companion/facts/KeyTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using Lines = std::vector<std::string>;

/// Each line as "number indent text|key|value", without the keys where there is none.
Lines linesOf(std::string_view listing) {
    Lines found;
    ListingLines lines(listing);
    while (lines.next()) {
        lines.takeApart();
        const ListingLine& line = lines.complete();
        std::string text = std::to_string(line.number) + " " + std::to_string(line.indent) + " " +
                           std::string(line.text);
        if (line.hasKey) {
            text += "|" + std::string(line.key) + "|" + std::string(line.value);
        }
        found.push_back(text);
    }
    return found;
}

TEST(ListingLines, AreTakenApartAtTheirColon) {
    EXPECT_EQ(linesOf("Size : 1 MB\n  a b:c : d \nno key\n:\n x:\n"),
              (Lines{"1 0 Size : 1 MB|Size|1 MB", "2 2 a b:c : d|a b|c : d", "3 0 no key",
                     "4 0 :||", "5 1 x:|x|"}));
}

TEST(ListingLines, AColonInParenthesesIsPartOfTheKey) {
    EXPECT_EQ(linesOf("Reported Channel,Device(T:L)   : 0,8(8:0)\nSAS Address(0): 0x5\n"
                      "0 (Target Id: 0) x\n((a:b) : c\n) a : b\n"),
              (Lines{"1 0 Reported Channel,Device(T:L)   : 0,8(8:0)|Reported Channel,Device(T:L)|"
                     "0,8(8:0)",
                     "2 0 SAS Address(0): 0x5|SAS Address(0)|0x5",
                     "3 0 0 (Target Id: 0) x|0 (Target Id|0) x", "4 0 ((a:b) : c|((a|b) : c",
                     "5 0 ) a : b|) a|b"}));
}

TEST(ListingLines, LineEndsAndOddBytes) {
    EXPECT_EQ(linesOf(""), Lines());
    EXPECT_EQ(linesOf("\n\r\n"), (Lines{"1 0 ", "2 0 "}));
    EXPECT_EQ(linesOf("a : b\r\n\tc : d\t"), (Lines{"1 0 a : b|a|b", "2 1 c : d|c|d"}));
    EXPECT_EQ(linesOf(std::string_view("a\0 : b\nc : d\0e\n", 15)),
              (Lines{"1 0 a", "2 0 c : d|c|d"}));
}

TEST(ListingLines, KnowTheirLengthAndWhatStandsBehindTheColon) {
    ListingLines lines("Inquiry Data:  NV  1  \r\n");
    ASSERT_TRUE(lines.next());
    EXPECT_EQ(lines.takeApart().rest, "  NV  1  ");
    EXPECT_EQ(lines.line().length, 22U);
    EXPECT_EQ(lines.beginning(), "Inquiry Data:");
}

TEST(ListingLines, ALineThatBeginsLikeAnotherIsTakenApartAsThat) {
    ListingLines lines("  Slot Number  : 1\n  Slot Number  : 22 \n  Slot Number : 3\n");
    ASSERT_TRUE(lines.next());
    lines.takeApart();
    const std::string_view beginning = lines.beginning();
    EXPECT_EQ(beginning, "  Slot Number  :");
    ASSERT_TRUE(lines.next());
    ASSERT_TRUE(lines.beginsWith(beginning));
    lines.takeApart(beginning, std::string_view("Slot Number").size());
    EXPECT_EQ(lines.complete().key, "Slot Number");
    EXPECT_EQ(lines.line().value, "22");
    EXPECT_EQ(lines.line().indent, 2U);
    EXPECT_EQ(lines.line().number, 2);
    ASSERT_TRUE(lines.next());
    EXPECT_FALSE(lines.beginsWith(beginning));
}

TEST(KeyTable, FindsEachKeyInItsBlocks) {
    static constexpr auto rows = std::to_array<KeyRow>({
        {"State", in(Block::drive)},
        {"State", in(Block::logicalDrive)},
        {"Size", in(Block::drive, Block::logicalDrive)},
        {"Exit Code", anywhere},
    });
    static constexpr KeyTable table(rows);
    static_assert(table.isDistinct());
    const KeyLookup keys = table.lookup();
    const auto found = [&](Block block, std::string_view key) {
        const KeyRow* const row = keys.find(block, key);
        return row == nullptr ? -1 : static_cast<int>(keys.numberOf(*row));
    };
    EXPECT_EQ(found(Block::drive, "State"), 0);
    EXPECT_EQ(found(Block::logicalDrive, "State"), 1);
    EXPECT_EQ(found(Block::member, "State"), -1);
    EXPECT_EQ(found(Block::logicalDrive, "size"), 2); // letter case does not count
    EXPECT_EQ(found(Block::none, "Exit Code"), 3);
    EXPECT_EQ(found(Block::none, ""), -1);
    EXPECT_EQ(found(Block::drive, "Stat"), -1);
    static constexpr auto doubled = std::to_array<KeyRow>({
        {"Size", in(Block::drive)},
        {"Size", in(Block::drive, Block::member)},
    });
    EXPECT_FALSE(KeyTable(doubled).isDistinct());
}

} // namespace
} // namespace zolex::companion
