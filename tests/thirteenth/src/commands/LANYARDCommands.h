#pragma once

#include "commands/ArrayCommands.h"

namespace zolex {

/// Commands of the invented utility LANYARD: a line for each array, and one for each hot spare.
class LANYARDCommands : public ArrayCommands {
  public:
    using ArrayCommands::ArrayCommands;

  protected:
    [[nodiscard]] const Traces& arrayTraces() const override;
    [[nodiscard]] const Traces& hotspareTraces() const override;
    Exit makeArray(std::size_t array, std::size_t drive) override;
    [[nodiscard]] CString hotspareText(const Hotspare& hotspare) const override;
};

} // namespace zolex
