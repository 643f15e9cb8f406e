#pragma once

#include "companion/findings/Finding.h"
#include "foundation/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The RAID configuration that OpenStack's Ironic keeps for a node: {"logical_disks": [...]}.
namespace zolex::companion {

inline constexpr std::size_t mostIronicBytes = std::size_t{1} << 20U;
inline constexpr std::size_t mostIronicDisks = 256;
inline constexpr std::size_t mostIronicDrives = 1024; ///< of one logical disk

/// One of its logical disks.
struct IronicDisk {
    std::string raidLevel;                   ///< "JBOD", "0", "1", "2", "5", "6", "1+0", ...
    std::optional<std::uint64_t> sizeGb;     ///< GiB; nothing: "MAX"
    std::string volumeName;                  ///< empty: none
    bool isRoot = false;                     ///< is_root_volume
    bool shares = false;                     ///< share_physical_disks
    std::string diskType;                    ///< "hdd", "ssd"; empty: none
    std::string interfaceType;               ///< "sata", "scsi", "sas"; empty: none
    std::optional<std::uint64_t> driveCount; ///< number_of_physical_disks
    std::string controller;                  ///< empty: none
    std::vector<std::string> drives;         ///< physical_disks
    bool hasHintObjects = false;             ///< physical_disks are such, and `drives` is empty
};

/// What came of reading one.
struct IronicReading {
    std::optional<std::vector<IronicDisk>> disks; ///< nothing: `findings` say why
    std::vector<Finding> findings;                ///< errors, each with its place
};

/// Nothing in the text is trusted: size, depth, names, types and values are checked, and all that
/// is wrong with values is told at once.
[[nodiscard]] IronicReading readIronic(std::string_view text, std::string_view fileName);

/// The document, which ends with a newline. What a disk has of the default is not written.
[[nodiscard]] std::string ironicDocument(const std::vector<IronicDisk>& disks);

/// "5" for 50, as policies say it; empty for what they cannot say.
[[nodiscard]] std::string_view policyLevelOf(std::string_view ironicLevel);
/// "5+0" for "RAID50"; empty for what Ironic cannot say.
[[nodiscard]] std::string_view ironicLevelOf(std::string_view raidType);
/// The least number of drives of a level that policies can say.
[[nodiscard]] std::size_t leastDrivesOf(std::string_view ironicLevel);

} // namespace zolex::companion
