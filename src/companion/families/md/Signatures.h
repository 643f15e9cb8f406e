#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::md {

/// What stands at the two ends of a drive.
struct DriveEnds {
    static constexpr std::size_t most = std::size_t{1} << 20U;
    std::string head;        ///< its first MiB, or all that it has
    std::string tail;        ///< its last MiB; may overlap the first
    std::uint64_t bytes = 0; ///< of the drive
};

/// What a superblock of an md array says.
struct Superblock {
    /// What its drive is in the array.
    enum class Part { member, spare, journal, faulty };
    std::string version; ///< "0.90", "1.0", "1.1" or "1.2"
    std::string uuid;    ///< of its array, as mdadm writes it: "3e2f1a00:...:...:..."
    std::string name;    ///< of its array; with the name of its host before a colon; or empty
    std::int32_t level = 0;
    std::uint32_t raidDisks = 0;
    std::uint64_t chunkBytes = 0;
    std::uint64_t componentBytes = 0; ///< that each member gives
    std::uint64_t events = 0;
    Part part = Part::member;
    std::optional<std::uint32_t> role; ///< place in the array from 0, of a member
    bool hasJournal = false;           ///< its array has a drive to which all is written first
    friend bool operator==(const Superblock&, const Superblock&) = default;
};

/// What a superblock of version 1 tells of all devices of its array.
struct RoleTable {
    std::uint32_t device = 0;         ///< the number of its own drive
    std::vector<std::uint32_t> roles; ///< by number: a place, or what the kernel writes for others
};
[[nodiscard]] RoleTable rolesOf(const DriveEnds& ends);

/// The superblock of version 1 or 0.90 on a drive; nothing: none. Of 0.90 no more than that it is
/// there is read.
[[nodiscard]] std::optional<Superblock> superblockOf(const DriveEnds& ends);

/// Whether the first MiB holds anything but what is left of a bitmap of md, which mdadm leaves
/// behind when it zeroes a superblock.
[[nodiscard]] bool hasUnknownData(const DriveEnds& ends);

/// What a drive carries besides superblocks of md: "a GPT partition table", "xfs", or "unknown data
/// in its first 4 KiB". Empty: nothing is known there.
[[nodiscard]] std::vector<std::string> signaturesOf(const DriveEnds& ends);

} // namespace zolex::companion::md
