#pragma once

#include "policies/Policy.h"

#include <cstdint>
#include <string>

namespace zolex::test {

/// The short form of a size in tables: above 0 MB, below 0 percent, sizeFill for the rest.
inline DriveSize driveSize(std::int32_t number) {
    if (number == sizeFill) {
        return {DriveSize::Kind::rest, 0};
    }
    return number < 0 ? DriveSize{DriveSize::Kind::percent, -number}
                      : DriveSize{DriveSize::Kind::mb, number};
}

/// "FILL", "25%" or "4096".
inline std::string sizeText(const DriveSize& size) {
    return size.kind == DriveSize::Kind::rest
               ? "FILL"
               : std::to_string(size.value) + (size.kind == DriveSize::Kind::percent ? "%" : "");
}

} // namespace zolex::test
