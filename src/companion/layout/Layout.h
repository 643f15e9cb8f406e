#pragma once

#include "companion/facts/Facts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// One logical drive of a layout, captured or wanted.
struct LayoutVolume {
    std::string id;       ///< as the utility numbers it, or "Logical.2"; no part of a comparison
    std::string raidType; ///< "RAID5"; "None" for a volume; empty: not known
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
    friend bool operator==(const LayoutGroup&, const LayoutGroup&) = default;

    [[nodiscard]] std::vector<std::string> drives() const; ///< of all spans, sorted
};

struct LayoutSpare {
    std::string location;
    std::vector<std::string> covers; ///< wanted: ids of groups; captured: empty
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
    friend bool operator==(const Layout&, const Layout&) = default;
};

/// What stands on the controller.
[[nodiscard]] Layout capturedLayout(const Facts& facts);

/// Sorts groups, spans and spares, cuts the drives of a group that come as one span into the spans
/// of its level, and has one word for one thing: a mirror of more than two drives is RAID 10 of
/// pairs.
void normalize(Layout& layout);

/// One line for each group and spare, for people ("RAID5 fill, strip 64 KB: 32:2 32:3 32:4").
[[nodiscard]] std::vector<std::string> layoutLines(const Layout& layout);

/// The order of locations: by their numbers, so that "32:10" stands behind "32:9".
[[nodiscard]] bool locationStandsBefore(const std::string& a, const std::string& b);

} // namespace zolex::companion
