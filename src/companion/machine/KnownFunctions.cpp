#include "companion/machine/KnownFunctions.h"

#include "foundation/CString.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zolex::companion {

namespace {

constexpr std::uint16_t anySubsystem = 0;
constexpr std::uint16_t broadcom = 0x1000;
constexpr std::uint16_t adaptec = 0x9005;
constexpr std::uint16_t compaq = 0x103C;
constexpr std::uint16_t hpe = 0x1590;
constexpr std::uint16_t marvell = 0x1B4B;
constexpr std::uint16_t intel = 0x8086;

struct FunctionRow {
    std::uint16_t vendor;
    std::uint16_t device;
    std::uint16_t subsystemVendor; ///< anySubsystem: of any
    KnownFunction known;
};

// clang-format off
// Columns: vendor, device, vendor of the subsystem; utility, whether it is a RAID controller for
// sure. The first that fits counts.
constexpr auto functionRows = std::to_array<FunctionRow>({
    {broadcom, 0x0060, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x005B, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x005D, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x005F, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0052, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0053, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0071, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0073, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0079, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0014, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0015, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0016, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x0017, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x001B, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x001C, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E0, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E1, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E2, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E3, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E4, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E5, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E6, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x10E7, anySubsystem, {"STORCLI", true}},
    {broadcom, 0x00A5, anySubsystem, {"STORCLI2", true}},
    {broadcom, 0x00B3, anySubsystem, {"STORCLI2", true}},
    {compaq,   0x323A, anySubsystem, {"SSACLI", true}},
    {compaq,   0x323B, anySubsystem, {"SSACLI", true}},
    {compaq,   0x323C, anySubsystem, {"SSACLI", true}},
    {compaq,   0x3239, anySubsystem, {"SSACLI", true}},
    {compaq,   0x3238, anySubsystem, {"SSACLI", true}},
    {compaq,   0x3230, anySubsystem, {"SSACLI", true}},
    {adaptec,  0x028F, compaq,       {"SSACLI", true}},
    {adaptec,  0x028F, hpe,          {"SSACLI", true}},
    {adaptec,  0x028F, anySubsystem, {"ARCCONF", true}},
    {adaptec,  0x0285, anySubsystem, {"ARCCONF", true}},
    {adaptec,  0x0286, anySubsystem, {"ARCCONF", true}},
    {adaptec,  0x028B, anySubsystem, {"ARCCONF", true}},
    {adaptec,  0x028C, anySubsystem, {"ARCCONF", true}},
    {adaptec,  0x028D, anySubsystem, {"ARCCONF", true}},
    {broadcom, 0x0070, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0072, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0064, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0065, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0074, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0076, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0077, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0080, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0081, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0082, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0083, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0084, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0085, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0086, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0087, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x006E, anySubsystem, {"SAS2IRCU", false}},
    {broadcom, 0x0090, anySubsystem, {"SAS3IRCU", false}},
    {broadcom, 0x0091, anySubsystem, {"SAS3IRCU", false}},
    {broadcom, 0x0094, anySubsystem, {"SAS3IRCU", false}},
    {broadcom, 0x0095, anySubsystem, {"SAS3IRCU", false}},
    {broadcom, 0x0096, anySubsystem, {"SAS3IRCU", false}},
    {broadcom, 0x0097, anySubsystem, {"SAS3IRCU", false}},
    {marvell,  0x9230, anySubsystem, {"MVCLI", false}},
    {marvell,  0x9220, anySubsystem, {"MVCLI", false}},
    {marvell,  0x9172, anySubsystem, {"MVCLI", false}},
    {marvell,  0x9192, anySubsystem, {"MVCLI", false}},
    {marvell,  0x2241, anySubsystem, {"MNV_CLI", false}},
});

// Columns: devices whose firmware calls them unsupported, or was tampered with.
constexpr std::array<std::string_view, 4> tamperedIds = {
    "1000:10e0", "1000:10e3", "1000:10e4", "1000:10e7"};
// clang-format on

/// Mass storage, RAID.
constexpr std::uint32_t raidClass = 0x0104;
constexpr unsigned classShift = 8;

/// Of a controller with firmware of its own the subsystem tells, whether it is a host adapter.
bool isHostAdapter(const PciDevice& device) {
    constexpr std::array<std::uint16_t, 7> subsystems = {0x4640, 0x4650, 0x4660, 0x4670,
                                                         0x4680, 0x46C0, 0x46D0};
    constexpr std::uint16_t generation8 = 0x00A5;
    return device.vendorId == broadcom && device.deviceId == generation8 &&
           std::find(subsystems.begin(), subsystems.end(), device.subsystemId) != subsystems.end();
}

} // namespace

KnownFunction knownFunction(const PciDevice& device) {
    if (isHostAdapter(device)) {
        return {};
    }
    const auto* const found =
        std::find_if(functionRows.begin(), functionRows.end(), [&device](const FunctionRow& row) {
            return row.vendor == device.vendorId && row.device == device.deviceId &&
                   (row.subsystemVendor == anySubsystem ||
                    row.subsystemVendor == device.subsystemVendorId);
        });
    if (found != functionRows.end()) {
        return found->known;
    }
    const bool isRaid = device.classCode >> classShift == raidClass;
    return isRaid && device.vendorId == intel ? KnownFunction{"IMSM", false} : KnownFunction{};
}

bool isTamperedFunction(std::string_view pciIds) {
    return std::any_of(tamperedIds.begin(), tamperedIds.end(),
                       [pciIds](std::string_view ids) { return pciIds.starts_with(ids); });
}

std::string pciPlaceOf(const PciDevice& device) {
    return std::string(formatText("%04x:%02x:%02x.%x", static_cast<unsigned>(device.domain),
                                  static_cast<unsigned>(device.bus),
                                  static_cast<unsigned>(device.device),
                                  static_cast<unsigned>(device.function))
                           .view());
}

std::string pciIdsOf(const PciDevice& device) {
    return std::string(formatText("%04x:%04x:%04x:%04x", static_cast<unsigned>(device.vendorId),
                                  static_cast<unsigned>(device.deviceId),
                                  static_cast<unsigned>(device.subsystemVendorId),
                                  static_cast<unsigned>(device.subsystemId))
                           .view());
}

} // namespace zolex::companion
