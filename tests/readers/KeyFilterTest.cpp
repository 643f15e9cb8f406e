#include "readers/KeyFilter.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace zolex::test {
namespace {

constexpr std::array<std::string_view, 3> shortKeys = {"PFA", "State", "Serial number"};
constexpr std::array<std::string_view, 3> longKeys = {"Adapter #", "Slot Number", "Inquiry Data"};

/// Puts each key at each place of lines of each length, in its own and in other letter case.
void expectFound(std::span<const std::string_view> keys) {
    const KeyFilter filter(keys);
    const KeyFilter anyCase(keys, KeyFilter::LetterCase::ignored);
    for (std::size_t key = 0; key < keys.size(); ++key) {
        for (std::size_t before = 0; before < 40; ++before) {
            for (std::size_t behind = 0; behind < 10; ++behind) {
                std::string line =
                    std::string(before, '~') + std::string(keys[key]) + std::string(behind, '~');
                EXPECT_TRUE(KeyedLine(line, filter).holds(key)) << line;
                EXPECT_FALSE(KeyedLine(line, filter).holdsNone()) << line;
                for (char& c : line) {
                    c = text::lower(c);
                }
                EXPECT_NE(anyCase.candidates(line) & (1U << key), 0U) << line;
                EXPECT_FALSE(KeyedLine(line, filter).holds(key)) << line;
            }
        }
    }
}

TEST(KeyFilter, FindsEachKeyWhereverItStands) {
    expectFound(shortKeys);
    expectFound(longKeys);
}

TEST(KeyFilter, MostOtherLinesNeedNoSearch) {
    const KeyFilter filter(longKeys);
    for (const char* line : {"", "P", "Media Error Count: 0", "Drive has flagged a S.M.A.R.T alert",
                             "Sequence Number: 2", "Port-0 :"}) {
        EXPECT_TRUE(KeyedLine(line, filter).holdsNone()) << line;
    }
}

// Lines made of pieces of the keys: the filter and a search agree on what a line holds.
TEST(KeyFilter, IsRightAboutAnyLine) {
    std::mt19937 random(7);
    for (const auto& keys : {std::span(shortKeys), std::span(longKeys)}) {
        const KeyFilter filter(keys);
        std::size_t held = 0;
        for (int i = 0; i < 20000; ++i) {
            std::string line;
            for (int piece = 0; piece < 4; ++piece) {
                const std::string_view key = keys[random() % keys.size()];
                const std::size_t from = random() % 4 == 0 ? random() % key.size() : 0;
                line += key.substr(from, random() % 2 == 0 ? key.size() : random() % key.size());
            }
            const KeyedLine keyed(line, filter);
            for (std::size_t key = 0; key < keys.size(); ++key) {
                const bool expected = text::contains(line, keys[key]);
                held += expected ? 1U : 0U;
                ASSERT_EQ(keyed.holds(key), expected) << line;
            }
        }
        EXPECT_GT(held, 1000U);
    }
}

} // namespace
} // namespace zolex::test
