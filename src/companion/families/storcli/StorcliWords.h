#pragma once

#include "companion/facts/Facts.h"

#include <optional>
#include <string>
#include <string_view>

/// What single words and texts of the utility mean. Nothing here throws, whatever they are.
namespace zolex::companion {

/// What a drive does, and why it is not to be planned with.
struct StorcliDriveWord {
    std::string_view word;
    DriveState state = DriveState::unknown;
    Health health = Health::unknown;
    HotspareKind hotspare = HotspareKind::none;
    std::string_view barred;
};

/// Null for a word that no list has.
[[nodiscard]] const StorcliDriveWord* storcliDriveWord(std::string_view word);
[[nodiscard]] Health storcliVolumeHealth(std::string_view word);
/// "RAID10", "RAID00"; "RAID1" of "RAID1(2 or more drives)"; empty for what is no level.
[[nodiscard]] std::string storcliLevel(std::string_view word);

/// "RWBD": read-ahead and write modes in the words of facts.
struct StorcliCache {
    std::string write;
    std::string read;
};
/// Nothing for a word of another form.
[[nodiscard]] std::optional<StorcliCache> storcliCache(std::string_view word);
/// The write mode that "WriteBack", "WB", "AlwaysWriteBack" and so on name; empty for others.
[[nodiscard]] std::string storcliWriteMode(std::string_view words);
[[nodiscard]] std::string storcliReadMode(std::string_view words);

/// How units are to be read.
enum class StorcliUnits {
    binary,  ///< three decimals, cut: "7.277 TB"
    decimal, ///< or binary, which the word does not tell
};

/// The least that a size text can mean, and how much more it may be.
struct StorcliSize {
    std::uint64_t bytes = 0;
    std::uint64_t tolerance = 0;
};
[[nodiscard]] std::optional<StorcliSize> storcliSize(std::string_view text, StorcliUnits units);

/// "252:3" as it stands in listings, " :3" in no enclosure.
struct StorcliPlace {
    std::optional<std::int32_t> enclosure;
    std::int32_t slot = 0;
    [[nodiscard]] std::string location() const;
};
[[nodiscard]] std::optional<StorcliPlace> storcliPlace(std::string_view text);
/// The place in a path: "/c0/e252/s3", "/c0/s3".
[[nodiscard]] std::optional<StorcliPlace> storcliPathPlace(std::string_view path);

/// "0000:c1:00.0" of "00:c1:00:00"; empty for what is no such address.
[[nodiscard]] std::string storcliPciAddress(std::string_view text);
/// "PERC-H755-Front" of "PERC H755 Front".
[[nodiscard]] std::string storcliModel(std::string_view text);

} // namespace zolex::companion
