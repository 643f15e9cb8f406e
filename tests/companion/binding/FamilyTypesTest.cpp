#include "companion/binding/FamilyTypes.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(FamilyTypes, ModelTexts) {
    EXPECT_EQ(familyModelText("PERC H755 Front"), "PERC-H755-Front");
    EXPECT_EQ(familyModelText(" MegaRAID 9560-8i (4GB) "), "MegaRAID-9560-8i-4GB");
    EXPECT_EQ(familyModelText(" ()"), "");
}

TEST(FamilyTypes, WhatAFamilyTypeIs) {
    for (const char* const type :
         {"STORCLI", "storcli", "MD", "PERC-H755-Front", "PERC-H7*", "MegaRAID-9560-8i-4GB", "X*",
          "ServeRAID-M5210", "Megaware-9364-8i", "SSACLI"}) {
        EXPECT_TRUE(isFamilyType(type)) << type;
    }
    for (const char* const type :
         {"LSI-MegaRAID-8480", "PERC-", "STORCLI3", "*", "A*B*", "PERC-H*5", "", "Something",
          "9364", "LSI-MegaRAID-8481", "Megaware 9364"}) {
        EXPECT_FALSE(isFamilyType(type)) << type;
    }
}

TEST(FamilyTypes, WhichAreKnown) {
    for (const char* const type :
         {"MD", "ssacli", "perc-h755-front", "PERC-*", "P*", "INTEL-RS3DC080", "Cisco-12G-SAS"}) {
        EXPECT_TRUE(isKnownFamilyType(type)) << type;
    }
    for (const char* const type :
         {"Megaware-9364-8i", "X*", "PERX-*", "*", "PERC-", "LSI-MegaRAID-8480", ""}) {
        EXPECT_FALSE(isKnownFamilyType(type)) << type;
    }
}

bool holds(const char* type) {
    return familyTypeHolds(type, "STORCLI", "PERC H755 Front", "1000:10e2:1028:1ae1");
}

TEST(FamilyTypes, WhatHoldsForAController) {
    EXPECT_TRUE(holds("storcli"));
    EXPECT_TRUE(holds("PERC-H755-Front"));
    EXPECT_TRUE(holds("perc-h755-front"));
    EXPECT_TRUE(holds("PERC-H7*"));
    EXPECT_TRUE(holds("PERC-*"));
    EXPECT_FALSE(holds("PERC-H755"));
    EXPECT_FALSE(holds("PERC-H8*"));
    EXPECT_FALSE(holds("MD"));
    EXPECT_FALSE(holds("LSI-MegaRAID-8480"));
}

TEST(FamilyTypes, TheCoreReadsTheFileWithoutThem) {
    const std::string text = "[Policy.one]\r\n"
                             "AppliesTo.1 = t:STORCLI,d:8\r\n"
                             "AppliesTo.2 = t:PERC-H7*,t:LSI-MegaRAID-8480,o:1\r\n"
                             "AppliesTo.3 = t:LSI-MegaRAID-8480\r\n"
                             "; t:STORCLI\r\n";
    EXPECT_TRUE(hasFamilyTypes(text));
    EXPECT_EQ(withoutFamilyTypes(text), "[Policy.one]\r\n"
                                        "AppliesTo.1 = m:\r\n"
                                        "AppliesTo.2 = t:LSI-MegaRAID-8480,o:1\r\n"
                                        "AppliesTo.3 = t:LSI-MegaRAID-8480\r\n"
                                        "; t:STORCLI\r\n");
    EXPECT_FALSE(hasFamilyTypes("[Policy.one]\nAppliesTo.1 = ALL\n"));
}

} // namespace
} // namespace zolex::companion
