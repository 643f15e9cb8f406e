#pragma once

#include "commands/ArrayCommands.h"

namespace zolex {

/// Commands of the utilities CFGGEN and CFGGEN1.02.02: one line for each array with its one logical
/// drive, and one for each hot spare.
class CFGGENCommands : public ArrayCommands {
  public:
    using ArrayCommands::ArrayCommands;

    /// "IS", "IM" or "IME" for RAID 0, 1 and 1E; "ERROR" for any other level code.
    [[nodiscard]] const char* translateRAIDLevelLSI(std::int32_t level) const;

  protected:
    [[nodiscard]] const Traces& arrayTraces() const override;
    [[nodiscard]] const Traces& hotspareTraces() const override;
    Exit makeArrays() override;
    Exit makeArray(std::size_t array, std::size_t drive) override;
    Exit makeHotspares() override;
    [[nodiscard]] CString hotspareText(const Hotspare& hotspare) const override;

  private:
    /// A drive as the utility of the controller's type names it, and a blank.
    [[nodiscard]] CString driveText(std::int32_t channel, std::int32_t id) const;
};

} // namespace zolex
