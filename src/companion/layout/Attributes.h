#pragma once

#include "companion/layout/Compare.h"
#include "companion/layout/Layout.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// What of a layout reaches a utility in its commands, and comes back in its listings.
struct ComparedAttributes {
    std::string_view utility;
    enum class Strip {
        all,
        striped,
        stripes,
        none
    } strip;                                           ///< striped: no mirrors and volumes;
                                                       ///< stripes: RAID 0 alone
    enum class ReadCache { all, off, none } readCache; ///< off: read-ahead is turned off alone
    bool writeCache;
    bool sizes;  ///< else a logical drive is as large as its drives
    bool drives; ///< else the utility chooses the drives itself
};
/// The row of a utility. A utility without a row is compared in all.
[[nodiscard]] const ComparedAttributes& comparedAttributes(std::string_view utility);

/// Where two volumes lie that are held against each other.
struct VolumePlace {
    std::size_t drives = 0; ///< captured, as are the spans
    std::size_t spans = 0;
    bool isFirst = true;      ///< no other volume lies before it on these drives
    bool sizeIsOpen = false;  ///< other drives: sizes say nothing
    bool roomIsKnown = false; ///< the sizes of all members are told
};

/// The attributes that are not as wanted. What cannot be compared goes to `notComparable`, each
/// once.
[[nodiscard]] std::vector<Difference>
compareVolumes(const LayoutVolume& captured, const LayoutVolume& wanted, const VolumePlace& place,
               const ComparedAttributes& attributes, std::vector<std::string>& notComparable);

} // namespace zolex::companion
