#pragma once

#include "companion/families/Family.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Command lines of mdadm. They begin with "MD", which stands for the program. There are no others
/// than these, and none tells mdadm not to ask: whatever it would ask about ends a command.
namespace zolex::companion::md {

/// "MD drives": what this program itself sees of drives and arrays. Its output is the text of a
/// DiskList.
inline constexpr std::string_view drivesLine = "MD drives";
inline constexpr std::string_view versionLine = "MD --version";
[[nodiscard]] std::string detailLine(std::string_view node);   ///< of "md127"
[[nodiscard]] std::string examineLine(std::string_view drive); ///< of "sdb"

/// "MD --create /dev/md/zolex-data ...": where its array would have no name, one is made of its
/// drives. Empty for an array that mdadm does not make.
[[nodiscard]] std::string createLine(const VolumeWish& wish);
/// "MD --stop /dev/md/NAME --uuid=UUID --zero-superblock DRIVES"; of an empty UUID, or of one that
/// is none, without it: any array of the name is meant.
[[nodiscard]] std::string deleteLine(const std::string& array, const std::string& uuid,
                                     const std::vector<std::string>& drives);
/// "MD --manage /dev/md/NAME --add-spare DRIVE".
[[nodiscard]] std::string addSpareLine(const std::string& array, const std::string& drive);

/// "MD --manage /dev/md/NAME --remove DRIVE"; its superblock is zeroed behind it.
[[nodiscard]] std::string removeSpareLine(const std::string& array, const std::string& drive);

/// What a command line asks for.
struct MdCommand {
    enum class Verb { drives, ask, create, remove, addSpare, removeSpare };
    Verb verb = Verb::drives;
    std::vector<std::string> arguments; ///< of mdadm
    std::string array;                  ///< name of the array
    std::string uuid;                   ///< of the array that is removed; empty: of any
    std::vector<std::string> drives;    ///< names in /dev/disk/by-id
};

/// Takes a line apart; nothing for one that is not of the lines above, to the letter.
[[nodiscard]] std::optional<MdCommand> commandFrom(std::string_view line);

/// Why mdadm would not make the array; empty: it would.
[[nodiscard]] std::string whyNoArray(const VolumeWish& wish, const Facts& facts);

} // namespace zolex::companion::md
