#include "companion/lint/PolicyDocument.h"

#include <gtest/gtest.h>

using namespace zolex::companion;

TEST(PolicyDocument, KeepsTextAndPlaces) {
    const PolicyDocument document =
        scanPolicies("p.ini", "; one\r\n [Policy.a] x\r\n\tInit =  QUICK \r\nArray.a=1, 2");
    ASSERT_EQ(document.policies.size(), 1U);
    const DocumentPolicy& policy = document.policies[0];
    EXPECT_EQ(policy.name, (Piece{"Policy.a", {2, 3, 9}, {2, 11, 17}}));
    EXPECT_EQ(policy.header, (TextPlace{2, 2, 8}));
    ASSERT_EQ(policy.entries.size(), 2U);
    EXPECT_EQ(policy.entries[0].keyword, (Piece{"Init", {3, 2, 23}, {3, 6, 27}}));
    EXPECT_EQ(policy.entries[0].value, (Piece{"QUICK", {3, 10, 31}, {3, 15, 36}}));
    const DocumentEntry* entry = policy.find("ARRAY.A");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->value, (Piece{"1, 2", {4, 9, 47}, {4, 13, 51}}));
    EXPECT_EQ(document.line(2), " [Policy.a] x");
    EXPECT_EQ(document.line(4), "Array.a=1, 2");
    EXPECT_EQ(document.line(5), "");
    EXPECT_EQ(document.placeOf(9), (TextPlace{2, 3, 9}));
}

TEST(PolicyDocument, FieldsAreTrimmedAndKeepTheirPlaces) {
    const Piece value{"1, 2 ,,3", {4, 9, 100}, {4, 17, 108}};
    const std::vector<Piece> expected = {{"1", {4, 9, 100}, {4, 10, 101}},
                                         {"2", {4, 12, 103}, {4, 13, 104}},
                                         {"", {4, 15, 106}, {4, 15, 106}},
                                         {"3", {4, 16, 107}, {4, 17, 108}}};
    EXPECT_EQ(fieldsOf(value, ','), expected);
    EXPECT_EQ(fieldsOf(Piece{"", {1, 2, 3}, {1, 2, 3}}, ',').size(), 1U);
}
