#include "engine/PolicyMatch.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace zolex::test {
namespace {

MatchValues valuesOf() {
    MatchValues values;
    values.machineType = "8837";
    values.serialNumber = "ABC1234";
    values.controllerType = "Kestrix-C1";
    values.controllerNumber = 2;
    values.scanOrder = 1;
    values.numberOfDrives = 6;
    return values;
}

template <typename Change>
AppliesTo entryWith(Change change) {
    AppliesTo entry;
    change(entry);
    return entry;
}

std::string reasonText(const Reason& reason) {
    const char* const kind = reason.kind == Reason::Kind::entryMatches   ? "matches"
                             : reason.kind == Reason::Kind::entryDiffers ? "differs"
                                                                         : "gives nothing";
    std::string text = kind;
    if (reason.specifier != '\0') {
        text += std::string(" ") + reason.specifier + ":" + reason.wanted.c_str() + ", " +
                reason.actual.c_str();
    }
    return text;
}

struct Row {
    const char* title;
    AppliesTo entry;
    const char* reason;
};

TEST(ExplainMatch, TheFirstSpecifierThatDoesNotHold) {
    const std::vector<Row> rows{
        {"nothing", {}, "gives nothing"},
        {"all", entryWith([](AppliesTo& e) { e.all = true; }), "matches"},
        {"machine type", entryWith([](AppliesTo& e) { e.machineType = "8838"; }),
         "differs m:8838, 8837"},
        {"serial number", entryWith([](AppliesTo& e) { e.serialNumber = "X"; }),
         "differs s:X, ABC1234"},
        {"letter case", entryWith([](AppliesTo& e) { e.serialNumber = "abc1234"; }), "matches"},
        {"model", entryWith([](AppliesTo& e) { e.controllerType = "Kestrix-B1"; }),
         "differs t:Kestrix-B1, Kestrix-C1"},
        {"controller number", entryWith([](AppliesTo& e) { e.controllerNumber = 1; }),
         "differs c:1, 2"},
        {"scan order", entryWith([](AppliesTo& e) { e.scanOrder = 3; }), "differs o:3, 1"},
        {"drives", entryWith([](AppliesTo& e) { e.numberOfDrives = 5; }), "differs d:5, 6"},
        {"all, but for other drives", entryWith([](AppliesTo& e) {
             e.all = true;
             e.numberOfDrives = 5;
         }),
         "differs d:5, 6"},
        {"two that do not hold", entryWith([](AppliesTo& e) {
             e.numberOfDrives = 5;
             e.machineType = "1";
         }),
         "differs m:1, 8837"},
        {"every one holds", entryWith([](AppliesTo& e) {
             e.machineType = "8837";
             e.controllerType = "kestrix-c1";
             e.controllerNumber = 2;
             e.scanOrder = 1;
             e.numberOfDrives = 6;
         }),
         "matches"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(reasonText(explainMatch(row.entry, valuesOf())), row.reason) << row.title;
    }
}

TEST(ExplainMatch, AgreesWithTheMatchItself) {
    std::mt19937 random(7);
    const auto below = [&random](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    int matched = 0;
    for (int i = 0; i < 20000; ++i) {
        const auto text = [&below](const char* value) {
            const char* const texts[] = {"", "", value, value, "other"};
            return CString(texts[below(5)]);
        };
        const auto numeral = [&below](std::int32_t value) {
            const std::int32_t numbers[] = {notGiven, 0, -1, value, value, value + 1};
            return numbers[below(6)];
        };
        AppliesTo entry;
        entry.machineType = text("8837");
        entry.serialNumber = text("abc1234");
        entry.controllerType = text("Kestrix-C1");
        entry.controllerNumber = numeral(2);
        entry.scanOrder = numeral(1);
        entry.numberOfDrives = numeral(6);
        entry.all = below(3) == 0;
        const bool matches = entry.matches(valuesOf());
        matched += matches ? 1 : 0;
        const Reason reason = explainMatch(entry, valuesOf());
        ASSERT_EQ(reason.kind == Reason::Kind::entryMatches, matches) << i;
        ASSERT_EQ(reason.kind == Reason::Kind::entryDiffers, reason.specifier != '\0') << i;
    }
    EXPECT_GT(matched, 500);
    EXPECT_LT(matched, 15000);
}

TEST(FindPolicy, EachEntryUpToTheMatchHasItsReason) {
    Policy first;
    first.name = "Policy.first";
    first.appliesTo = {entryWith([](AppliesTo& e) { e.numberOfDrives = 5; }), AppliesTo()};
    Policy second;
    second.name = "Policy.second";
    second.appliesTo = {entryWith([](AppliesTo& e) { e.machineType = "1"; }),
                        entryWith([](AppliesTo& e) { e.controllerNumber = 2; }),
                        entryWith([](AppliesTo& e) { e.scanOrder = 9; })};
    Policy third = second;
    PolicyList list;
    list.add(first);
    list.add(second);
    list.add(third);
    std::vector<Reason> reasons;
    EXPECT_EQ(findPolicy(list, valuesOf(), &reasons), 1U);
    EXPECT_EQ(findPolicy(list, valuesOf(), nullptr), 1U);
    std::string text;
    for (const Reason& reason : reasons) {
        text += std::to_string(reason.policy) + " " + reason.keyword.c_str() + " " +
                reasonText(reason) + "\n";
    }
    EXPECT_EQ(text, "0 AppliesTo.1 differs d:5, 6\n"
                    "0 AppliesTo.2 gives nothing\n"
                    "1 AppliesTo.1 differs m:1, 8837\n"
                    "1 AppliesTo.2 matches\n");

    reasons.clear();
    PolicyList none;
    none.add(first);
    EXPECT_EQ(findPolicy(none, valuesOf(), &reasons), std::nullopt);
    EXPECT_EQ(findPolicy(none, valuesOf(), nullptr), std::nullopt);
    EXPECT_EQ(reasons.size(), 2U);
}

} // namespace
} // namespace zolex::test
