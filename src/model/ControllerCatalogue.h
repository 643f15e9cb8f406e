#pragma once

#include "controllers/CommandList.h"
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
};

/// The fixed knowledge of the supported controllers. Read-only but for the row cursor and the
/// generated command list, which it carries for the run.
class ControllerCatalogue {
  public:
    /// Model name of a type and subtype; "ERROR-NO-CONTROLLER" for any other type.
    [[nodiscard]] CString getControllerName(std::int32_t type, std::int32_t subtype) const;
    /// Command prefix of the type's utility; empty for a type outside 1 to 12.
    [[nodiscard]] CString getUtilityCommand(std::int32_t type) const;
    /// Index of the utility family by which scan orders are counted: 1, 4, 5, 6, 7 or 12.
    [[nodiscard]] std::int32_t getUtilityFamily(std::int32_t type) const;
    /// Exit code that counts as success, slot 1 to 3; -1 never matches. A type outside 1 to 12
    /// accepts 0 only.
    [[nodiscard]] std::int32_t getAcceptedReturnCode(std::int32_t type, std::int32_t slot) const;
    /// Type of a model name, exact case; -1 when unknown.
    [[nodiscard]] std::int32_t getControllerType(const CString& name) const;
    /// Subtype of a model name, exact case; -1 when unknown or not set.
    [[nodiscard]] std::int32_t getControllerSubtype(const CString& name) const;
    /// Whether a policy may name this model; exact case.
    [[nodiscard]] bool isValidControllerName(std::string_view name) const;
    /// Whether the type takes an explicit size in MB in a generated policy: true for 1, 2, 7, 10,
    /// 11, 12, for any value below 3 and any above 9.
    [[nodiscard]] bool acceptsExplicitSize(std::int32_t type) const;

    /// Puts the cursor on the last PCI row.
    void resetPciRowCursor();
    /// The row at the cursor, which moves one row back; the end marker again once it was reached.
    PciRow nextPciRow();

    [[nodiscard]] CommandList& commandList() { return commandList_; }
    [[nodiscard]] const CommandList& commandList() const { return commandList_; }

  private:
    std::size_t pciRowCursor_ = 0;
    CommandList commandList_;
};

} // namespace zolex
