#pragma once

#include "commands/CommandGenerator.h"

namespace zolex {

/// Commands of the utility HYPERWIN, which builds one logical drive over all drives: a line that
/// creates it, hot spare included, and one for its write cache.
class HYPERWINCommands : public CommandGenerator {
  public:
    using CommandGenerator::CommandGenerator;
    bool generate() override;

  protected:
    [[nodiscard]] const Traces& traces() const override;
    [[nodiscard]] std::int32_t defaultStripeSize() const override;
    Exit makeArrays() override;
    Exit makeArray(std::size_t array, std::size_t drive) override;
    /// The option of a hot spare in the line that creates the logical drive.
    [[nodiscard]] CString hotspareLine(const Hotspare& hotspare) const override;

  private:
    Exit checkPlan();
    Exit checkHotspares(std::int32_t raidLevel);
};

} // namespace zolex
