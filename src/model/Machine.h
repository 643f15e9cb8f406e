#pragma once

#include "foundation/CString.h"

namespace zolex {

/// The machine that the controllers are in, as its hardware detector or an inventory file names it.
/// A text that is not told is empty.
struct Machine {
    CString machineType;
    CString serialNumber;

    friend bool operator==(const Machine&, const Machine&) = default;
};

} // namespace zolex
