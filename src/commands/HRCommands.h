#pragma once

#include "commands/CONFCommands.h"

namespace zolex {

/// Commands of the utility HRCONF. A logical drive takes its whole array.
class HRCommands : public CONFCommands {
  public:
    using CONFCommands::CONFCommands;

  protected:
    [[nodiscard]] const Traces& arrayTraces() const override;
    [[nodiscard]] const Traces& hotspareTraces() const override;
    [[nodiscard]] std::int32_t stripeSize(const LogicalDrive& logical,
                                          const RaidArray& members) const override;
    [[nodiscard]] CString initText(const LogicalDrive& logical) const override;
    [[nodiscard]] CString sizeText(const LogicalDrive& logical) const override;
    [[nodiscard]] const char* hotspareEnd() const override;
    /// Adds nothing: the utility has no cache commands.
    void addCacheCommands(std::size_t array, const LogicalDrive& logical) override;
    [[nodiscard]] FaultKind secondLogicalDriveFault() const override;
};

} // namespace zolex
