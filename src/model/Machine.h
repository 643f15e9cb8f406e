#pragma once

#include "foundation/CString.h"

namespace zolex {

/// What is known of the machine itself. Texts that are not known are empty.
struct Machine {
    CString machineType;
    CString serialNumber;

    friend bool operator==(const Machine&, const Machine&) = default;
};

} // namespace zolex
