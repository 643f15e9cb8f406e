#pragma once

#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What people are shown of drives and arrays: the same in the terminal, in pictures and in pages.
namespace zolex::companion {

/// What a drive is there for.
enum class Role { member, hotspare, free, failed, foreign, jbod, unknown };

/// The role of a drive. One that failed has the role `failed`, a member or not.
[[nodiscard]] Role roleOf(const MachineDrive& drive);
/// The letter of its array, "*" for a spare, "x" failed, "." free, "~" foreign, "=" shown as it is,
/// "?" unknown.
[[nodiscard]] std::string markOf(const MachineDrive& drive);
/// "A", "spare", "free", "foreign", "JBOD"; "-" when it has no job.
[[nodiscard]] std::string jobOf(const MachineDrive& drive);
/// The bad signs of a drive, beside that it failed: "12 media errors, 1 predicted failure"; or
/// empty.
[[nodiscard]] std::string troubleOf(const DriveFacts& drive);
/// "NORVIK NV73455S"; the inquiry text where there are no words of it.
[[nodiscard]] std::string modelOf(const DriveFacts& drive);
/// The number that policies use, or "-".
[[nodiscard]] std::string numberOf(const MachineDrive& drive);

/// Drives that stand together: an enclosure, a channel, or those of neither. The rows are in the
/// order of their lowest policy number.
struct DriveRow {
    struct Slot {
        std::optional<std::size_t>
            drive; ///< index into ControllerSnapshot::drives; none: empty slot
        std::optional<std::int32_t> number; ///< of the slot
    };
    std::string title; ///< "Enclosure 32", "Channel 1", "No enclosure"
    std::vector<Slot> slots;
};
[[nodiscard]] std::vector<DriveRow> driveRowsOf(const ControllerSnapshot& controller);

/// From an array's letter to its index in ControllerSnapshot::arrays.
[[nodiscard]] std::map<std::string, std::size_t> arrayIndices(const ControllerSnapshot& controller);

/// "RAID5"; "RAID50 2x3" with two spans of three drives; "VOLUME"; "?" when not known.
[[nodiscard]] std::string levelOf(const LogicalDriveFacts& logicalDrive);
/// "write-back", "write-through"; empty when not told.
[[nodiscard]] std::string cacheOf(const LogicalDriveFacts& logicalDrive);
/// "LD 0 RAID5 271.0 GB".
[[nodiscard]] std::string labelOf(const LogicalDriveFacts& logicalDrive);
/// The utility's word with small letters where a word begins with one capital: "optimal".
[[nodiscard]] std::string stateText(std::string_view reportedState);

/// Locations with three or more that follow each other as "32:2-32:6".
[[nodiscard]] std::vector<std::string> locationRanges(const std::vector<std::string>& locations);

/// "PCI 02:0e.0 1000:0411 1000:1002"; empty when neither is known.
[[nodiscard]] std::string pciText(const ControllerSnapshot& controller);
/// "levels 0 1 5 6", "strip 8-1024 KB", "rebuild rate 30 %": what is told of these.
[[nodiscard]] std::vector<std::string> abilitiesOf(const Facts& facts);
/// "LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480)", or the model alone.
[[nodiscard]] std::string productText(const ControllerSnapshot& controller);
/// What came of a reading command: "exit code 3", "could not be started", ...
[[nodiscard]] std::string outcomeText(const CapturedListing& listing);
/// "Machine 8837, serial KQ10Z7V".
[[nodiscard]] std::string machineTitle(const Snapshot& snapshot);

} // namespace zolex::companion
