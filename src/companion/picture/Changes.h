#pragma once

#include "companion/planning/Diff.h"
#include "companion/planning/Plan.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// A controller as it is and as it will be, drive by drive: the same for texts and for pictures.
namespace zolex::companion {

/// What becomes of one drive.
struct DriveChange {
    bool isLost = false; ///< what it holds or does now is deleted
    bool isNew = false;  ///< it gets a job that it has not
    std::string reason;  ///< why it has its planned job; or empty
};

struct ControllerChange {
    ControllerSnapshot now;                  ///< its arrays have small letters
    ControllerSnapshot after;                ///< its arrays have the letters of the plan
    bool hasAfter = false;                   ///< else there is nothing to be shown beside `now`
    std::vector<DriveChange> drives;         ///< one for each drive of `now`
    std::set<std::string> lostLogicalDrives; ///< ids in `now`
    std::set<std::string> newLogicalDrives;  ///< ids in `after`
    std::set<std::string> newArrays;         ///< letters in `after`
    /// Colours: one for each letter, and the same for an array that stays.
    std::map<std::string, std::size_t> nowColours;
    std::map<std::string, std::size_t> afterColours;
};

[[nodiscard]] ControllerChange changeOf(const ControllerPlanning& planning);
/// What stands (`now`) and what is wanted (`after`).
[[nodiscard]] ControllerChange changeOf(const ControllerDiff& diff,
                                        const ControllerSnapshot& controller);

/// "listed in Array.A", "as large as the first of the array", ... ; empty for a code that is not
/// known.
[[nodiscard]] std::string reasonText(const PlanReason& reason);

/// "write-back, adaptive read-ahead, strip 64 KB": what is told of these.
[[nodiscard]] std::string settingsText(const std::string& writeCache, const std::string& readCache,
                                       const std::optional<std::uint64_t>& stripSizeBytes);

/// What people call an attribute of a layout: "strip size" for "strip_size_bytes".
[[nodiscard]] std::string attributeText(std::string_view attribute);

/// A text with ranges of drives: "RAID5 fill: 32:0-32:2 32:7" for "RAID5 fill: 32:0 32:1 32:2
/// 32:7".
[[nodiscard]] std::string withRanges(const std::string& text);

/// "2 logical drives (203.3 GB), 1 hot spare and 3 foreign drives".
[[nodiscard]] std::string lossesText(const std::vector<Loss>& losses);

/// Why a policy is the controller's or not: "because d:8 holds", "no: d:6, this controller has 8
/// drives", "not asked: an earlier policy matched".
[[nodiscard]] std::string matchText(const PolicyMatch& match);

/// What a controller of the plan does: "as the policy says (...)", "skipped: ...".
[[nodiscard]] std::string dispositionText(const ControllerPlanning& planning);

/// The errors of the plan, and the controllers that have some: "2 errors, on controllers 1 and 3".
[[nodiscard]] std::string faultsText(const MachinePlan& plan);

/// How a plan is carried out.
struct CarryOut {
    std::string sentence;              ///< ends with ":", what is to be typed follows
    std::vector<std::string> commands; ///< not printable yet
};
/// `savedTo` is the file of the plan; where it stands in none, keeping it comes first.
[[nodiscard]] CarryOut carryOutOf(const MachinePlan& plan, const std::string& savedTo);

/// What zolex's own commands erase beside what the plan does; or empty.
[[nodiscard]] std::string oldWarning(const MachinePlan& plan);

/// Why a controller that differs cannot be mended by adding; empty where it can: "This takes a
/// rebuild: strip size. To be removed: LD 2."
[[nodiscard]] std::string rebuildText(const ControllerDiff& diff);

/// "The plan is refused: zolexctl plan site.ini says why."
[[nodiscard]] std::string planRefusedText(const MachineDiff& diff);

/// What came of the rehearsal, sentence by sentence; those that are bad first.
struct RehearsalSentence {
    std::string text;
    bool isBad = false;
};
[[nodiscard]] std::vector<RehearsalSentence> rehearsalSentences(const MachinePlan& plan);

} // namespace zolex::companion
