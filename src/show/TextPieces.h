#pragma once

#include "show/FaultTexts.h"

#include <utility>
#include <vector>

/// Faults whose text is one piece.
namespace zolex::show {

[[nodiscard]] inline std::vector<FaultText> errorBlock(CString text) {
    return {FaultText{.place = FaultText::Place::errorBlock, .text = std::move(text)}};
}

[[nodiscard]] inline std::vector<FaultText> output(CString text) {
    return {FaultText{.place = FaultText::Place::output, .text = std::move(text)}};
}

[[nodiscard]] inline std::vector<FaultText> errorStream(CString text) {
    return {FaultText{.place = FaultText::Place::error, .text = std::move(text)}};
}

} // namespace zolex::show
