#include "companion/families/SpanRules.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zolex::companion {

namespace {

/// What a level takes of drives.
struct LevelRow {
    std::string_view raidType;
    std::size_t least; ///< drives of a span
    bool isEven;       ///< a span has an even number of them
    bool hasSpans;     ///< two or more
    std::string_view takes;
};

// Columns: level, least drives of a span, even, several spans, for people.
// clang-format off
constexpr std::array<LevelRow, 8> rows = {{
    {"RAID0",  1, false, false, "1 drive or more"},
    {"RAID1",  2, true,  false, "an even number of drives, 2 or more"},
    {"RAID1E", 3, false, false, "3 drives or more"},
    {"RAID5",  3, false, false, "3 drives or more"},
    {"RAID6",  3, false, false, "3 drives or more"},
    {"RAID10", 2, true,  true,  "an even number of drives, 4 or more"},
    {"RAID50", 3, false, true,  "6 drives or more that spans of 3 or more divide evenly"},
    {"RAID60", 4, false, true,  "8 drives or more that spans of 4 or more divide evenly"},
}};
// clang-format on

constexpr std::size_t leastSpans = 2;

bool isSpan(const LevelRow& row, std::size_t each, std::size_t most) {
    return each >= row.least && each <= most && (!row.isEven || each % 2 == 0);
}

SpanChoice refused(std::string_view raidType, const std::string& what, std::string help) {
    return {0, levelWords(raidType) + what, std::move(help)};
}

} // namespace

std::string levelWords(std::string_view raidType) {
    constexpr std::string_view word = "RAID";
    return raidType.starts_with(word) ? "RAID " + std::string(raidType.substr(word.size()))
                                      : std::string("VOLUME");
}

SpanChoice chooseSpans(std::string_view raidType, std::size_t drives, std::size_t wanted,
                       const FamilyLimits& limits) {
    const auto* const row = std::find_if(rows.begin(), rows.end(), [raidType](const auto& each) {
        return each.raidType == raidType;
    });
    if (row == rows.end()) {
        return refused(raidType, " is not made on such controllers", "take another level");
    }
    const std::string has = ", and the array has " + std::to_string(drives);
    const auto orAny = [](std::size_t most) {
        return most == 0 ? std::numeric_limits<std::size_t>::max() : most;
    };
    const std::size_t mostOfSpan = orAny(limits.mostDrivesPerSpan);
    const bool makesSpans = row->hasSpans && limits.mostSpans >= leastSpans;
    if (!makesSpans) {
        const std::size_t least = row->hasSpans ? row->least * leastSpans : row->least;
        // Where each drive of a mirror holds all, any number of them will do.
        const bool isMirrorOfAll = raidType == "RAID1" && limits.deepMirrors == DeepMirrors::ofAll;
        if (drives < least || (row->isEven && !isMirrorOfAll && drives % 2 != 0)) {
            return refused(raidType,
                           " takes " +
                               std::string(isMirrorOfAll ? "2 drives or more" : row->takes) + has,
                           "change the drives of the array, or take another level");
        }
        if (drives > mostOfSpan) {
            return refused(raidType,
                           " takes " + std::to_string(mostOfSpan) + " drives at most" + has,
                           "take fewer drives, or RAID 10, 50 or 60, which have spans");
        }
        return {};
    }
    if (wanted > 0) {
        const bool isPossible = wanted <= limits.mostSpans && drives % wanted == 0 &&
                                isSpan(*row, drives / wanted, mostOfSpan);
        return isPossible
                   ? SpanChoice{drives / wanted, {}, {}}
                   : refused(raidType,
                             " takes " + std::string(row->takes) + "; " + std::to_string(drives) +
                                 " drives are not " + std::to_string(wanted) + " such spans",
                             "change Spans, or take the line out");
    }
    // As many spans as there can be for mirrors, as few as there can be for parity.
    SpanChoice choice;
    for (std::size_t spans = leastSpans; spans <= limits.mostSpans; ++spans) {
        if (drives % spans == 0 && isSpan(*row, drives / spans, mostOfSpan)) {
            choice.drivesPerSpan = drives / spans;
            if (!row->isEven) {
                break;
            }
        }
    }
    return choice.drivesPerSpan > 0
               ? choice
               : refused(raidType,
                         " takes " + std::string(row->takes) + ", in " +
                             std::to_string(limits.mostSpans) + " spans of " +
                             std::to_string(mostOfSpan) + " at most" + has,
                         "change the drives of the array, or take another level");
}

} // namespace zolex::companion
