#pragma once

#include "platform/FolderPciDeviceList.h"

#include <memory>

namespace zolex::posix {

/// Where the system lists its PCI functions.
inline constexpr const char* systemPciRoot = "/sys/bus/pci/devices";

/// The folders of this system.
std::unique_ptr<PciFolders> makeSystemPciFolders();

} // namespace zolex::posix
