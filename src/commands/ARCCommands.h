#pragma once

#include "commands/CONFCommands.h"

namespace zolex {

/// Commands of the utility ARCCONF. After a logical drive's creation come its cache lines.
class ARCCommands : public CONFCommands {
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
    void addCacheCommands(std::size_t array, const LogicalDrive& logical) override;
    [[nodiscard]] FaultKind secondLogicalDriveFault() const override;

  private:
    void addCacheCommand(std::size_t array, const char* mode);
    [[nodiscard]] const char* writeCacheWord(std::int32_t code) const;
};

} // namespace zolex
