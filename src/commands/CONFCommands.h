#pragma once

#include "commands/ArrayCommands.h"

namespace zolex {

/// What the utilities ARCCONF and HRCONF have in common: a line that creates the one logical drive
/// of each array, and a line for each hot spare. Channels are numbered from 0.
class CONFCommands : public ArrayCommands {
  public:
    using ArrayCommands::ArrayCommands;

  protected:
    static constexpr Exit exitSecondLogicalDrive = 3;

    Exit makeArray(std::size_t array, std::size_t drive) override;
    [[nodiscard]] CString hotspareText(const Hotspare& hotspare) const override;

    // The pieces in which the utilities differ. Each ends in a blank or is empty.
    /// The stripe-size code that a logical drive of the array is created with.
    [[nodiscard]] virtual std::int32_t stripeSize(const LogicalDrive& logical,
                                                  const RaidArray& members) const = 0;
    [[nodiscard]] virtual CString initText(const LogicalDrive& logical) const = 0;
    [[nodiscard]] virtual CString sizeText(const LogicalDrive& logical) const = 0;
    /// The end of a hot spare's line.
    [[nodiscard]] virtual const char* hotspareEnd() const = 0;
    /// Adds the lines that follow the creation of array `array`'s logical drive.
    virtual void addCacheCommands(std::size_t array, const LogicalDrive& logical) = 0;
    /// The fault of a second logical drive of an array.
    [[nodiscard]] virtual FaultKind secondLogicalDriveFault() const = 0;

    /// Whether the logical drive is asked to be initialised quickly.
    [[nodiscard]] bool isQuick(const LogicalDrive& logical) const;

  private:
    [[nodiscard]] CString createLine(std::size_t array, std::size_t drive) const;
};

} // namespace zolex
