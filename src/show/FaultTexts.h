#pragma once

#include "foundation/CString.h"
#include "foundation/Fault.h"
#include "foundation/Levels.h"

#include <cstdint>
#include <vector>

namespace zolex {

/// A piece of what is printed for a fault.
struct FaultText {
    enum class Place {
        errorBlock, ///< an error block on standard output
        output,     ///< standard output, by verbosity
        error,      ///< standard error
    };
    Place place = Place::errorBlock;
    CString text;
    std::int32_t level = level::ungated; ///< of `output`
};

namespace show {

/// The prescribed texts of a fault, in the order in which they are printed.
[[nodiscard]] std::vector<FaultText> faultTexts(const Fault& fault);

} // namespace show

} // namespace zolex
