#pragma once

#include "model/RAIDController.h"

#include <array>
#include <cstddef>
#include <memory>

namespace zolex {

class Application;
class IniFile;
struct PciDevice;
struct PciRow;

/// The inventory file that "/fake" reads instead of the hardware.
inline constexpr const char* inventoryFileName = "contlist.ini";

/// The controllers that a run works on, in a fixed order: slots filled from 0 upward without gaps.
class ControllerList {
  public:
    static constexpr std::size_t maxControllers = 36;

    /// Fills the list from the PCI devices of the machine or, when the settings name one, from the
    /// controller-definition file. Always true.
    bool initialize(Application& application);
    /// Fills the list, drives included, from the inventory file; false after the first fault, which
    /// has been reported.
    bool initialize(IniFile& inventory, Application& application);

    /// Numbers the controllers per utility family, from 1, in slot order.
    void setControllerScanOrders(Application& application);

    /// Puts the controllers of type 10 in ascending order of bus number, in the slots that hold
    /// such controllers; each slot keeps its own subtype and PCI location text.
    void reorderByBusNumber();

    [[nodiscard]] std::size_t count() const { return count_; }
    /// The controller in slot i, from 0; null where empty or out of range.
    [[nodiscard]] RAIDController* controller(std::size_t i) const;
    /// Puts a controller into the next free slot; null when all 36 are taken.
    RAIDController* add(std::unique_ptr<RAIDController> controller);

    /// Every controller as text on standard output, at every verbosity.
    void dump(Application& application, bool withConfiguration) const;

  private:
    bool initializeFromDefinition(Application& application);
    /// False when there is no free slot.
    bool addFromPci(Application& application, const PciDevice& device, const PciRow& row);

    std::array<std::unique_ptr<RAIDController>, maxControllers> controllers_;
    std::size_t count_ = 0;
};

} // namespace zolex
