#pragma once

#include "platform/FolderPciDeviceList.h"

#include <memory>

namespace zolex::win32 {

/// The folders of this system.
std::unique_ptr<PciFolders> makeSystemPciFolders();

} // namespace zolex::win32
