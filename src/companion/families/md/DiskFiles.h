#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion::md {

/// Folders in which Linux tells of itself and of its drives. Tests put folders of their own there.
struct Roots {
    std::string sys = "/sys";
    std::string proc = "/proc";
    std::string dev = "/dev";
};

/// What of them is looked at. Nothing is ever written.
class DiskFiles {
  public:
    virtual ~DiskFiles() = default;

    /// Names in a folder, sorted, at most 65536; none where it cannot be read.
    [[nodiscard]] virtual std::vector<std::string> entries(const std::string& folder) = 0;
    /// Up to `most` bytes from an offset; nothing where they cannot be read.
    [[nodiscard]] virtual std::optional<std::string>
    read(const std::string& file, std::uint64_t offset, std::size_t most) = 0;
    /// The path without links; empty where there is no such file.
    [[nodiscard]] virtual std::string resolved(const std::string& path) = 0;
    /// Why a device cannot be opened for this process alone; empty where it can. It is closed
    /// again.
    [[nodiscard]] virtual std::string whyNotOpened(const std::string& device) = 0;
};

/// Those of the system; null where it is not Linux.
[[nodiscard]] std::unique_ptr<DiskFiles> systemDiskFiles();

} // namespace zolex::companion::md
