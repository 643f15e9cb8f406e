#pragma once

#include "platform/PciDeviceList.h"

#include <string>
#include <string_view>

namespace zolex::companion {

/// A PCI function that is known to be a RAID controller, whoever drives it.
struct KnownFunction {
    std::string_view family; ///< the word of its utility: "STORCLI", "SSACLI"
    /// Whether it is one for sure; else it may as well be a plain host adapter.
    bool isSure = false;
};

/// What a PCI function is; without a family for one that is no RAID controller, or not known. It
/// does not decide what is asked: a utility tells its controllers itself.
[[nodiscard]] KnownFunction knownFunction(const PciDevice& device);

/// Whether ids ("1000:10e0:1000:4000") are those by which a controller says that it is not
/// supported, or was tampered with.
[[nodiscard]] bool isTamperedFunction(std::string_view pciIds);

/// "0000:c1:00.0": domain, bus, device and function.
[[nodiscard]] std::string pciPlaceOf(const PciDevice& device);
/// "1000:10e2:1028:1ae1".
[[nodiscard]] std::string pciIdsOf(const PciDevice& device);

} // namespace zolex::companion
