#pragma once

#include "commands/ArrayCommands.h"

namespace zolex {

/// Commands of the utility MEGACLI: one line for each array with its first logical drive, and one
/// line for all hot spares.
class MEGAWinCommands : public ArrayCommands {
  public:
    using ArrayCommands::ArrayCommands;

    /// The drives of an array split into the spans of a spanned RAID level, appended to `list`:
    /// pairs for RAID 10, two halves for RAID 50 and 60. False, with a fault, for another level.
    bool appendSpans(std::int32_t raidLevel, const RaidArray& members, CString& list);

  protected:
    bool makeLines() override;
    [[nodiscard]] const Traces& arrayTraces() const override;
    [[nodiscard]] const Traces& hotspareTraces() const override;
    Exit makeArrays() override;
    Exit makeArray(std::size_t array, std::size_t drive) override;
    /// Fails, adding no line, for a hot spare outside the drive positions: it has no target id.
    Exit makeHotspares() override;
    /// One hot spare's part of the line.
    [[nodiscard]] CString hotspareText(const Hotspare& hotspare) const override;

  private:
    /// The first hot spare outside the drive positions.
    [[nodiscard]] const Hotspare* misplacedHotspare() const;
    void appendDrives(const RaidArray& members, std::size_t first, std::size_t count,
                      CString& list) const;
};

} // namespace zolex
