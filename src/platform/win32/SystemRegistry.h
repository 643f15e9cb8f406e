#pragma once

#include "platform/Registry.h"

#include <memory>

namespace zolex::win32 {

/// The keys below HKEY_LOCAL_MACHINE.
std::unique_ptr<Registry> makeSystemRegistry();

} // namespace zolex::win32
