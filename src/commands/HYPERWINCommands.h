#pragma once

#include "commands/CommandGenerator.h"

namespace zolex {

/// Commands of the utility HYPERWIN, which builds one logical drive over all drives: a line that
/// creates it, hot spare included, and one for its write cache.
class HYPERWINCommands : public CommandGenerator {
  public:
    using CommandGenerator::CommandGenerator;

  protected:
    bool makeLines() override;
    [[nodiscard]] const Traces& arrayTraces() const override;
    Exit makeArrays() override;

  private:
    Exit checkPlan();
    Exit checkHotspares(const LogicalDrive& logical);
    [[nodiscard]] CString createLine(const LogicalDrive& logical) const;
};

} // namespace zolex
