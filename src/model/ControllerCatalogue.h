#pragma once

#include "foundation/CString.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zolex {

/// One PCI identification row. 0xFFFF in a subsystem field means any; type -1 is the end marker.
struct PciRow {
    std::uint16_t vendorId;
    std::uint16_t deviceId;
    std::uint16_t subsystemVendorId;
    std::uint16_t subsystemId;
    std::int32_t type;
    std::int32_t subtype;
    bool namedInPolicies = false; ///< a policy may name the model of type and subtype
};

/// Walks the PCI rows from the last to the first, which is the end marker, so that rows with an
/// exact subsystem come before the generic ones.
class PciRowCursor {
  public:
    /// Starts on the last row.
    PciRowCursor();
    /// Puts the cursor on the last row.
    void resetPciRowCursor();
    /// The row at the cursor, which moves one row back; the end marker again once it was reached.
    PciRow nextPciRow();

  private:
    std::size_t row_;
};

/// The fixed knowledge of the supported controllers, under the names of its questions. It has no
/// state; what depends on the type alone is a row of TypeTraits.
class ControllerCatalogue {
  public:
    /// Model name of a type and subtype; "ERROR-NO-CONTROLLER" for any other type.
    [[nodiscard]] static CString getControllerName(std::int32_t type, std::int32_t subtype);
    /// Command prefix of the type's utility; empty for a type outside 1 to 12.
    [[nodiscard]] static CString getUtilityCommand(std::int32_t type);
    /// Index of the utility family by which scan orders are counted: 1, 4, 5, 6, 7 or 12.
    [[nodiscard]] static std::int32_t getUtilityFamily(std::int32_t type);
    /// Exit code that counts as success, slot 1 to 3; -1 never matches. A type outside 1 to 12
    /// accepts 0 only.
    [[nodiscard]] static std::int32_t getAcceptedReturnCode(std::int32_t type, std::int32_t slot);
    /// Type of a model name, exact case; -1 when unknown.
    [[nodiscard]] static std::int32_t getControllerType(const CString& name);
    /// Subtype of a model name, exact case; -1 when unknown or not set.
    [[nodiscard]] static std::int32_t getControllerSubtype(const CString& name);
    /// The model names that have a type, in the order of types: "Kestrix-A1, Kestrix-A2, ...".
    [[nodiscard]] static CString modelNames();
    /// Whether a policy may name this model; exact case.
    [[nodiscard]] static bool isValidControllerName(std::string_view name);
    /// Whether the type takes an explicit size in MB in a generated policy: true for 1, 2, 7, 10,
    /// 11, 12, for any value below 3 and any above 9.
    [[nodiscard]] static bool acceptsExplicitSize(std::int32_t type);
};

} // namespace zolex
