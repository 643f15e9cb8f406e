#pragma once

#include "foundation/CString.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {

class Console;

/// One PCI function: identification, location and the raw values it was read from. Numbers start
/// at 0.
struct PciDevice {
    std::uint16_t vendorId = 0;
    std::uint16_t deviceId = 0;
    std::uint16_t subsystemVendorId = 0;
    std::uint16_t subsystemId = 0;
    std::uint32_t domain = 0; ///< where a list tells it; zolex does not look at it
    std::uint16_t bus = 0;
    std::uint16_t device = 0;
    std::uint16_t function = 0;
    std::uint32_t classCode = 0; ///< for example 0x010400: mass storage, RAID
    std::uint16_t revision = 0;
    std::array<CString, 3> texts;                ///< no list fills them
    std::array<std::int32_t, 2> numbers{-1, -1}; ///< no list fills them
    std::string hardwareId;                      ///< a multi-string: texts that each end in a NUL
    std::string locationInformation;             ///< raw bytes, as the registry holds them
    std::string deviceDescription;
    std::string compatibleIds;
    std::size_t largestValue = 0; ///< size in bytes of the largest value of the device's key
};

/// Reads vendor, device, subsystem, class code and revision from the device's hardware ids. The
/// first occurrence of each field over all ids counts.
void parseHardwareIds(PciDevice& device);
/// Reads bus, device and function from the device's location text; "%n" placeholders are filled
/// from the tuple that follows.
void parseLocation(PciDevice& device);

/// The PCI functions of this machine. Each operation of this class itself prints
/// "Unimplemented SubClass PCI_DevList_VC Virtual funciton\n" and returns false, 0 or nothing.
class PCI_DevList_VC {
  public:
    explicit PCI_DevList_VC(Console& console) : console_(console) {}
    virtual ~PCI_DevList_VC() = default;
    PCI_DevList_VC(const PCI_DevList_VC&) = delete;
    PCI_DevList_VC& operator=(const PCI_DevList_VC&) = delete;

    virtual bool rescan();
    /// The current device, after which the next one is current; null at the end.
    virtual const PciDevice* next();
    /// Makes the first device current.
    virtual void reset();
    /// Number of records collected, those that dropped out of the order included.
    virtual std::size_t count();
    virtual int spare();
    /// Builds the list anew. Always returns false.
    virtual bool collect();

  protected:
    void complain();

  private:
    Console& console_;
};

/// Iteration and order, shared by the lists of every system; they only collect differently.
class OrderedPciDeviceList : public PCI_DevList_VC {
  public:
    using PCI_DevList_VC::PCI_DevList_VC;

    bool rescan() override { return collect(); }
    const PciDevice* next() override;
    void reset() override { current_ = 0; }
    std::size_t count() override { return count_; }
    int spare() override { return 0; }
    bool collect() override;

  protected:
    /// All devices of the machine, in the order found.
    virtual std::vector<PciDevice> enumerate() = 0;

  private:
    std::vector<PciDevice> devices_;
    std::size_t count_ = 0;
    std::size_t current_ = 0;
};

} // namespace zolex
