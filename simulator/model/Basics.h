#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace zolex_sim {

/// Where a drive sits. Drives outside every enclosure have no enclosure number. For the utilities
/// that address drives by channel and device, these are the two numbers.
struct DriveLocation {
    std::optional<int> enclosure;
    int slot = 0;
    friend bool operator==(const DriveLocation&, const DriveLocation&) = default;
    friend bool operator<(const DriveLocation& a, const DriveLocation& b) {
        return std::tie(a.enclosure, a.slot) < std::tie(b.enclosure, b.slot);
    }
};

/// "252:3", or ":3" for a drive outside every enclosure.
std::string toText(const DriveLocation& location);
/// The texts of several locations with "," between them.
std::string toText(const std::vector<DriveLocation>& locations);
/// The location that such a text names; numbers up to 65535.
std::optional<DriveLocation> parseLocation(std::string_view text);

/// What a drive keeps its data on.
enum class Medium : std::uint8_t { disk, solidState };

/// The words of the definition: "hdd", "ssd".
std::optional<Medium> mediumNamed(std::string_view word);

/// One PCI function of the server.
struct PciFunction {
    int domain = 0;
    int bus = 0;
    int device = 0;
    int function = 0;
    std::uint16_t vendorId = 0;
    std::uint16_t deviceId = 0;
    std::uint16_t subsystemVendorId = 0;
    std::uint16_t subsystemId = 0;
    std::uint32_t classCode = 0; ///< 24 bits
    std::uint8_t revision = 0;
    std::string description;
};

/// The order in which a system lists its functions: bus, device, function, domain.
bool standsBefore(const PciFunction& a, const PciFunction& b);

/// The place of a member drive.
struct MemberPlace {
    std::size_t array = 0;
    std::size_t span = 0;
    std::size_t arm = 0; ///< within the span
};

} // namespace zolex_sim
