#include "model/TypeTraits.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <vector>

namespace zolex {
namespace {

TEST(TypeTraits, EveryTypeHasItsRow) {
    struct Row {
        std::int32_t type;
        Dialect dialect;
        std::array<std::size_t, 3> lines;
        std::int32_t seconds;
        bool retries;
        std::int32_t stripeSize;
    };
    // clang-format off
    const Row rows[] = {
        {1,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb8},
        {2,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb256},
        {3,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb64},
        {4,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb64},
        {5,  Dialect::cfggen,   {1, 0, 1}, 0,  false, stripe::none},
        {6,  Dialect::hyperwin, {2, 1, 1}, 0,  false, stripe::kb64},
        {7,  Dialect::conf,     {1, 0, 1}, 0,  true,  stripe::kb256},
        {8,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb64},
        {9,  Dialect::conf,     {1, 0, 1}, 0,  false, stripe::kb64},
        {10, Dialect::cfggen,   {1, 0, 1}, 15, false, stripe::none},
        {11, Dialect::conf,     {1, 0, 1}, 0,  true,  stripe::kb256},
        {12, Dialect::megaCli,  {2, 1, 2}, 0,  false, stripe::kb64},
    };
    // clang-format on
    for (const Row& row : rows) {
        const TypeTraits& traits = traitsOf(row.type);
        EXPECT_EQ(traits.controllerType, row.type);
        EXPECT_EQ(traits.dialect, row.dialect) << row.type;
        EXPECT_EQ(traits.lines.listings, row.lines[0]) << row.type;
        EXPECT_EQ(traits.lines.layoutListings, row.lines[1]) << row.type;
        EXPECT_EQ(traits.lines.resets, row.lines[2]) << row.type;
        EXPECT_EQ(traits.secondsBeforeCommand, row.seconds) << row.type;
        EXPECT_EQ(traits.retriesReset, row.retries) << row.type;
        EXPECT_EQ(finalStripeSize(row.type, stripe::none), row.stripeSize) << row.type;
        EXPECT_EQ(finalStripeSize(row.type, stripe::kb16), stripe::kb16) << row.type;
        EXPECT_EQ(traits.orderedByBus, row.type == 10) << row.type;
    }
}

TEST(TypeTraits, AnyOtherValueHasTheRowOfNoType) {
    for (const std::int32_t type : {std::numeric_limits<std::int32_t>::min(), -1, 0, 13, 99,
                                    std::numeric_limits<std::int32_t>::max()}) {
        const TypeTraits& traits = traitsOf(type);
        EXPECT_EQ(traits.controllerType, controller_type::none) << type;
        EXPECT_EQ(traits.utilityCommand, "") << type;
        EXPECT_EQ(traits.lines.listings, 1U) << type;
        EXPECT_EQ(traits.lines.layoutListings, 0U) << type;
        EXPECT_EQ(traits.lines.resets, 1U) << type;
        EXPECT_EQ(traits.secondsBeforeCommand, 0) << type;
        EXPECT_FALSE(traits.retriesReset) << type;
        EXPECT_FALSE(traits.orderedByBus) << type;
        EXPECT_TRUE(traits.writes.rebuildRate) << type;
        EXPECT_EQ(finalStripeSize(type, stripe::none), stripe::none) << type;
    }
}

struct TableRow {
    std::int32_t controllerType;
};

std::vector<TableRow> wholeTable() {
    std::vector<TableRow> rows;
    for (std::int32_t type = controller_type::last; type >= controller_type::first; --type) {
        rows.push_back({type});
    }
    return rows;
}

TEST(TypeTraits, ATableCoversEveryTypeWithOneRowForEach) {
    EXPECT_TRUE(coversEveryType(wholeTable()));
    EXPECT_FALSE(coversEveryType(std::vector<TableRow>{}));
    for (std::size_t i = 0; i < wholeTable().size(); ++i) {
        std::vector<TableRow> forgotten = wholeTable();
        forgotten.erase(forgotten.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_FALSE(coversEveryType(forgotten)) << i;
        std::vector<TableRow> empty = wholeTable();
        empty[i].controllerType = 0;
        EXPECT_FALSE(coversEveryType(empty)) << i;
        std::vector<TableRow> twice = wholeTable();
        twice[i].controllerType = twice[(i + 1) % twice.size()].controllerType;
        EXPECT_FALSE(coversEveryType(twice)) << i;
    }
    for (const std::int32_t other : {-1, 0, 1, controller_type::last + 1}) {
        std::vector<TableRow> more = wholeTable();
        more.push_back({other});
        EXPECT_FALSE(coversEveryType(more)) << other;
    }
}

} // namespace
} // namespace zolex
