#pragma once

#include "show/FaultTexts.h"

#include <gtest/gtest.h>

#include <span>
#include <vector>

namespace zolex::test {

/// A kind of fault that has one text, which no verbosity hides.
struct FaultTextRow {
    FaultKind kind;
    FaultText::Place place;
    const char* text;
};

/// Expects of each row the text of `fault` with the row's kind.
inline void expectFaultTexts(std::span<const FaultTextRow> rows, Fault fault) {
    for (const FaultTextRow& row : rows) {
        fault.kind = row.kind;
        const std::vector<FaultText> texts = show::faultTexts(fault);
        ASSERT_EQ(texts.size(), 1U) << row.text;
        EXPECT_EQ(texts[0].place, row.place) << row.text;
        EXPECT_EQ(texts[0].text.view(), row.text);
        EXPECT_EQ(texts[0].level, level::ungated) << row.text;
    }
}

} // namespace zolex::test
