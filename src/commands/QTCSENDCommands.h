#pragma once

#include "commands/ArrayCommands.h"

namespace zolex {

/// Commands of the family utility QTCSEND: one line for each logical drive, of which an array may
/// have several, and one for each hot spare.
class QTCSENDCommands : public ArrayCommands {
  public:
    using ArrayCommands::ArrayCommands;

  protected:
    [[nodiscard]] const Traces& arrayTraces() const override;
    [[nodiscard]] const Traces& hotspareTraces() const override;
    Exit makeArray(std::size_t array, std::size_t drive) override;
    [[nodiscard]] CString hotspareText(const Hotspare& hotspare) const override;

  private:
    [[nodiscard]] CString firstLine(std::size_t array, const LogicalDrive& logical) const;
    [[nodiscard]] CString laterLine(std::size_t array, std::size_t drive) const;
    /// What the array's other logical drives leave to the drive of index `drive`, in MB of that
    /// drive: 0 when one of them takes the rest of the array, below 0 when they take too much.
    [[nodiscard]] std::int64_t spaceLeft(std::size_t array, std::size_t drive) const;
};

} // namespace zolex
