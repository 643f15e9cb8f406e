#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace hwdetect::test {

/// A structure of an SMBIOS table: the formatted part behind the header, and the texts.
inline std::string structure(unsigned type, const std::string& fields,
                             const std::vector<std::string>& texts) {
    std::string bytes;
    bytes += static_cast<char>(type);
    bytes += static_cast<char>(fields.size() + 4);
    bytes += std::string("\x34\x12", 2);
    bytes += fields;
    for (const std::string& text : texts) {
        bytes += text + '\0';
    }
    return bytes + std::string(texts.empty() ? 2 : 1, '\0');
}

/// A system structure whose fields name the texts maker, product, version and serial number in this
/// order; it is as long as in SMBIOS 2.4.
inline std::string systemStructure(const std::vector<std::string>& texts) {
    return structure(1, std::string("\x01\x02\x03\x04", 4) + std::string(16, '\xAB') + "\x06",
                     texts);
}

/// The table as Windows gives it.
inline std::string raw(const std::string& table) {
    std::string bytes("\x00\x02\x04\x00", 4);
    for (std::size_t shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(table.size() >> shift & 0xFFU);
    }
    return bytes + table;
}

} // namespace hwdetect::test
