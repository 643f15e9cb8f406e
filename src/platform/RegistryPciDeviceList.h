#pragma once

#include "platform/PciDeviceList.h"
#include "platform/Registry.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex {

/// The PCI functions that the registry knows, present or not: two levels of keys, devices and their
/// instances, and one record an instance. A call that fails ends the enumeration of the key that it
/// was made for, without a message; an instance whose key or values cannot be read keeps a record
/// of zeros.
class RegistryPciDeviceList : public OrderedPciDeviceList {
  public:
    RegistryPciDeviceList(Console& console, std::unique_ptr<Registry> registry)
        : OrderedPciDeviceList(console), registry_(std::move(registry)) {}

  protected:
    std::vector<PciDevice> enumerate() override;

  private:
    PciDevice readInstance(const std::string& path);

    std::unique_ptr<Registry> registry_;
};

} // namespace zolex
