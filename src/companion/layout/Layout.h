#pragma once

#include "companion/facts/Facts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// One logical drive of a layout, captured or wanted.
struct LayoutVolume {
    std::string id; ///< as the utility numbers it, or "Logical.2"; no part of a comparison
    /// "RAID5"; "None" for a volume; the utility's own words for another level; empty: not known.
    std::string raidType;
    std::optional<std::uint64_t> capacityBytes;  ///< nothing: not known
    std::uint64_t toleranceBytes = 0;            ///< how far the capacity may be off
    bool fills = false;                          ///< takes all that its group has left
    std::optional<std::uint64_t> stripSizeBytes; ///< nothing: not told, or the controller's own
    /// "WriteThrough", "ProtectedWriteBack", "UnprotectedWriteBack"; empty: not told, or the
    /// controller's own. Wanted write-back is "UnprotectedWriteBack".
    std::string writeCache;
    std::string readCache;     ///< "Off", "ReadAhead", "AdaptiveReadAhead"; empty: as above
    std::string reportedState; ///< captured: the utility's word
    Health health = Health::unknown;
    // Captured; no part of a comparison.
    std::string name{};
    std::string uniqueId{}; ///< as in LogicalDriveFacts
    std::string device{};   ///< the same
    friend bool operator==(const LayoutVolume&, const LayoutVolume&) = default;
};

/// Logical drives over the same drives.
struct LayoutGroup {
    std::string id; ///< letter, or the utility's own; no part of a comparison
    /// Locations span by span: consecutive pairs for RAID 10, two halves for 50 and 60, else one
    /// span. Sorted inside a span, and the spans by their first drive.
    std::vector<std::vector<std::string>> spans;
    std::vector<LayoutVolume> volumes; ///< in the order in which they lie on the drives
    bool isListed = false; ///< wanted: the policy names these very drives, no equal ones will do
    /// Wanted and listed: by pairs of channel and id, so that a drive that stands in for one of
    /// them has to be in the same enclosure.
    bool isByPairs = false;
    friend bool operator==(const LayoutGroup&, const LayoutGroup&) = default;

    [[nodiscard]] std::vector<std::string> drives() const; ///< of all spans, sorted
};

struct LayoutSpare {
    std::string location;
    std::vector<std::string> covers; ///< ids of groups; captured: empty, or named by nameCovers
    bool isDedicated = false;
    bool isListed = false; ///< wanted: the policy names this very drive
    friend bool operator==(const LayoutSpare&, const LayoutSpare&) = default;
};

/// The layout of one controller in its normal form: groups sorted by their first drive, spares
/// sorted, the same word for the same thing.
struct Layout {
    std::vector<LayoutGroup> groups;
    std::vector<LayoutSpare> spares;
    std::vector<std::string> foreignDrives; ///< locations, sorted
    DeepMirrors deepMirrors = DeepMirrors::asRaid10;
    friend bool operator==(const Layout&, const Layout&) = default;
};

/// What stands on the controller.
[[nodiscard]] Layout capturedLayout(const Facts& facts);
/// Gives the dedicated spares of a captured layout the arrays that their drives tell of.
void nameCovers(Layout& captured, const Facts& facts);

/// Sorts groups, spans and spares, makes one group of those over the same drives, cuts the drives
/// of a group that come as one span into the spans of its level, and has one word for one thing:
/// where `deepMirrors` says so, a mirror of more than two drives is RAID 10 of pairs.
void normalize(Layout& layout);

/// Drives' worth of data that a logical drive holds, in halves of a drive: 2 of a mirror of two, 4
/// of RAID 5 of three. 0 where there are too few drives.
[[nodiscard]] std::uint64_t dataHalves(std::string_view raidType, std::uint64_t drives,
                                       std::uint64_t spans,
                                       DeepMirrors deepMirrors = DeepMirrors::asRaid10);
/// What zolex itself takes for the rest of an array, in bytes.
inline constexpr std::uint64_t fillMarginBytes = std::uint64_t{139} << 20U;
/// What metadata may take of `bytes` of drives: two of a thousand.
[[nodiscard]] constexpr std::uint64_t metadataBytes(std::uint64_t bytes) {
    return bytes / 1000 * 2;
}

/// One line for each group and spare, for people ("RAID5 fill, strip 64 KB: 32:2 32:3 32:4").
[[nodiscard]] std::vector<std::string> layoutLines(const Layout& layout);

/// "32:0 32:1".
[[nodiscard]] std::string locationsLine(const std::vector<std::string>& locations);
/// "32:0 32:1 32:2" of one span, "(32:0 32:1) (32:2 32:3)" of several.
[[nodiscard]] std::string spansLine(const std::vector<std::vector<std::string>>& spans);
/// "RAID5 fill, strip 64 KB, write-back": what is told of a volume.
[[nodiscard]] std::string layoutVolumeLine(const LayoutVolume& volume);
/// "write-back", "write-through", "protected write-back".
[[nodiscard]] std::string writeCacheWords(std::string_view writeCache);
/// "no read-ahead", "read-ahead", "adaptive read-ahead".
[[nodiscard]] std::string readCacheWords(std::string_view readCache);
/// "64 KB".
[[nodiscard]] std::string stripSizeLine(std::uint64_t bytes);

/// How people know a logical drive: LD 239 "data" (/dev/sdb), as far as that is told. For eyes:
/// what cannot be printed is replaced.
[[nodiscard]] std::string volumeNameText(const std::string& id, const std::string& name,
                                         const std::string& device);
/// "data", /dev/sdb: the same without its number; or empty.
[[nodiscard]] std::string volumeAliasText(const std::string& name, const std::string& device);

/// The order of locations: by their numbers, so that "32:10" stands behind "32:9".
[[nodiscard]] bool locationStandsBefore(const std::string& a, const std::string& b);

} // namespace zolex::companion
