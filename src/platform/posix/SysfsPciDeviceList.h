#pragma once

#include "platform/PciDeviceList.h"

#include <string>
#include <vector>

namespace zolex::posix {

/// The PCI functions that the system lists: one folder a device in the directory that the
/// environment variable ZOLEX_PCI_ROOT names, by default "/sys/bus/pci/devices". A file that is
/// missing or holds no number leaves 0; folders that are not named as devices are passed over.
class SysfsPciDeviceList : public OrderedPciDeviceList {
  public:
    using OrderedPciDeviceList::OrderedPciDeviceList;

  protected:
    std::vector<PciDevice> enumerate() override;
};

} // namespace zolex::posix
