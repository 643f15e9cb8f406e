#pragma once

#include "foundation/CString.h"
#include "model/Machine.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace zolex {

class FileSystem;
class IniFile;
class Report;
class Tool;
class PCI_DevList_VC;
struct PciDevice;
struct PciRow;

/// The inventory file that "/fake" reads instead of the hardware.
inline constexpr const char* inventoryFileName = "contlist.ini";

/// The controllers that a run works on, in a fixed order: slots filled from 0 upward without gaps.
class ControllerList {
  public:
    static constexpr std::size_t maxControllers = 36;

    /// Fills the list from the PCI functions of the machine. Between the look at the bus and the
    /// choice of the controllers the hardware detector is asked through `detector` (null: that is
    /// reported); what it tells is returned, nothing when it failed.
    std::optional<Machine> initialize(PCI_DevList_VC& devices, std::unique_ptr<Tool> detector,
                                      Report& report);
    /// Fills the list from a controller-definition file; false when it could be read in part only,
    /// which has been reported.
    bool initialize(FileSystem& files, const CString& definitionFile, Report& report);
    /// Fills the list, drives included, from the inventory file; false after the first fault, which
    /// has been reported.
    bool initialize(IniFile& inventory, Report& report);

    /// Numbers the controllers per utility family, from 1, in slot order.
    void setControllerScanOrders(Report& report);

    /// Puts the controllers of type 10 in ascending order of bus number, in the slots that hold
    /// such controllers; each slot keeps its own subtype and PCI location text.
    void reorderByBusNumber();

    [[nodiscard]] std::size_t count() const { return controllers_.size(); }
    /// The controller in slot i, from 0; null where empty or out of range. Valid until the list is
    /// copied from another or goes.
    [[nodiscard]] RAIDController* controller(std::size_t i);
    [[nodiscard]] const RAIDController* controller(std::size_t i) const;
    /// Every controller's dump, each behind a line with its address in memory.
    [[nodiscard]] CString dumpText(bool withConfiguration) const;
    /// Puts a controller into the next free slot; null when all 36 are taken.
    RAIDController* add(RAIDController controller = {});

    friend bool operator==(const ControllerList&, const ControllerList&) = default;

  private:
    /// False when there is no free slot.
    bool addFromPci(const PciDevice& device, const PciRow& row, Report& report);

    std::vector<RAIDController> controllers_;
};

} // namespace zolex
