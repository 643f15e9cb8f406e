#pragma once

#include "commands/CommandGenerator.h"

namespace zolex {

struct Hotspare;

/// A generator that goes array by array and then hot spare by hot spare. The walk is written here
/// once; what is written for one array and for one hot spare differs by utility.
class ArrayCommands : public CommandGenerator {
  public:
    using CommandGenerator::CommandGenerator;

  protected:
    bool makeLines() override;
    [[nodiscard]] virtual const Traces& hotspareTraces() const = 0;

    /// The lines of every array, in order.
    Exit makeArrays() override;
    /// The lines of array `array`, whose first logical drive has index `drive`.
    virtual Exit makeArray(std::size_t array, std::size_t drive) = 0;

    /// The lines of hot spares, with the operation's traces.
    bool doHotspareDrives();
    /// One line for each hot spare, in order.
    virtual Exit makeHotspares();
    /// The line of one hot spare, or its part of the line.
    [[nodiscard]] virtual CString hotspareText(const Hotspare& hotspare) const = 0;
};

} // namespace zolex
