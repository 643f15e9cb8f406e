#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zolex {

/// Results of reading a registry value. Other numbers are failures too; they end an enumeration.
namespace registry_result {
inline constexpr long success = 0;
inline constexpr long moreData = 234; ///< the name or the data is longer than its buffer
} // namespace registry_result

/// What an attempt to read one value gave.
struct RegistryValue {
    long result = registry_result::success;
    std::string name;         ///< valid on success
    std::size_t dataSize = 0; ///< bytes of data, valid on success and on moreData
};

/// An open key of the registry; it is closed when this object goes.
class RegistryKey {
  public:
    virtual ~RegistryKey() = default;
    /// Name of subkey `index`, from 0, shorter than 260 bytes; nothing when it cannot be had.
    virtual std::optional<std::string> subkeyName(std::uint32_t index) = 0;
    /// Reads value `index`, from 0, into `data`; with an empty `data`, only asks for its size.
    virtual RegistryValue value(std::uint32_t index, std::span<char> data) = 0;
};

/// The part of the registry that describes the machine.
class Registry {
  public:
    virtual ~Registry() = default;
    /// Opens the key `path`, whose parts are separated by "\"; null when that fails.
    virtual std::unique_ptr<RegistryKey> open(const std::string& path) = 0;
};

} // namespace zolex
