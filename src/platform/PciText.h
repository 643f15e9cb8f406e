#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zolex {

struct PciDevice;

/// Numbers and names as PCI listings write them.
namespace pci {

/// The hexadecimal digits at the start of `text`, after an optional "0x", clamped at 0xFFFFFFFF; 0
/// without digits.
[[nodiscard]] std::uint32_t leadingHex(std::string_view text) noexcept;

/// The decimal digits at the start of `text`, clamped at 65535; nothing without digits.
[[nodiscard]] std::optional<std::uint16_t> leadingDecimal(std::string_view text) noexcept;

/// The number that a file of a device's folder holds: hexadecimal, white space around it allowed. 0
/// when it is anything else or above `highest`.
[[nodiscard]] std::uint32_t fileNumber(std::string_view content, std::uint32_t highest) noexcept;

/// Reads domain, bus, device and function from a folder name of the form DDDD:BB:DD.F, or
/// DDDD-BB-DD.F where names cannot hold a ":" (hexadecimal; the domain may be longer). False, with
/// `device` untouched, for any other name.
bool parseFolderName(std::string_view name, PciDevice& device) noexcept;

} // namespace pci

} // namespace zolex
