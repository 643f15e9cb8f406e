#pragma once

#include "companion/lint/PolicyDocument.h"
#include "model/Configuration.h"
#include "policies/Policy.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The values of a policy with their places, as far as they can be read. What is at fault in its
/// form is left out here: the checks of values tell it.
namespace zolex::companion {

/// One specifier of an AppliesTo entry.
struct SpecifierView {
    char letter = '\0'; ///< m, s, t, c, o, d; or '*' for ALL
    Piece whole;        ///< "t:Kestrix-C7"
    Piece value;        ///< behind the colon
};

/// One AppliesTo entry that zolex looks at.
struct EntryView {
    const DocumentEntry* entry = nullptr;
    std::vector<SpecifierView> specifiers;
    AppliesTo given;        ///< as zolex reads it: the last specifier of a letter counts
    bool isReadable = true; ///< false: nothing can be said of what it matches
};

/// One drive of a list: a number, or a position.
struct DriveView {
    Piece piece;
    std::int32_t number = 0; ///< from 1; 0: a position
    DrivePosition position;

    [[nodiscard]] bool isSameDrive(const DriveView& other) const {
        return number == other.number && position == other.position;
    }
};

/// `Array.<x>` or `Hotspares`.
struct DriveListView {
    const DocumentEntry* entry = nullptr;
    std::size_t index = 0; ///< of the array, 0 for "A"
    bool isAll = false;
    std::vector<DriveView> drives;

    [[nodiscard]] bool hasNumbers() const { return !drives.empty() && drives.front().number > 0; }
};

/// `Logical.<n>` or `Logical_Defaults`.
struct LogicalView {
    const DocumentEntry* entry = nullptr;
    LogicalSpecification given; ///< array index -1 in `Logical_Defaults`
    Piece array;                ///< empty in `Logical_Defaults`
    Piece size;
    Piece level;
    std::optional<Piece> cache;
};

/// A keyword with one code as its value.
struct SettingView {
    const DocumentEntry* entry = nullptr;
    std::int32_t code = 0;
};

/// `Array_Defaults`.
struct ArrayDefaultsView {
    const DocumentEntry* entry = nullptr;
    ArrayDefaults given;
    Piece variance;
    Piece hotspares;
};

/// One policy.
struct PolicyView {
    const DocumentPolicy* policy = nullptr;
    std::vector<EntryView> entries;
    /// `Array_Mode = CUSTOM`, or drives told by what they are; and the same of logical drives.
    bool customArrays = false;
    bool customLogicalDrives = false;
    bool hasDriveKinds = false; ///< some `Drives.<x>`
    /// As they are written, whether or not `Array_Mode` makes them count.
    std::vector<DriveListView> arrays;
    std::optional<DriveListView> hotspares;
    std::vector<LogicalView> logicalDrives;
    std::optional<LogicalView> logicalDefaults;
    std::optional<ArrayDefaultsView> arrayDefaults;
    std::optional<SettingView> stripeSize;
    std::optional<SettingView> readAhead;
    std::optional<SettingView> rebuildRate;
    std::optional<SettingView> init;
    /// Whether all of it could be read: only then can be said what it lacks.
    bool isWhole = true;

    [[nodiscard]] std::string name() const { return policy->name.text; }
    /// Whether captured policies have such a name, and it lists its arrays.
    [[nodiscard]] bool isGenerated() const;
    /// The arrays that count: none unless `Array_Mode = CUSTOM`.
    [[nodiscard]] const std::vector<DriveListView>& countingArrays() const;
    /// The list of the array of this index, from 0; null without one, or when it cannot be read.
    [[nodiscard]] const DriveListView* array(std::int32_t index) const;
};

/// One view for each policy of the document, in its order; the views point into the document.
[[nodiscard]] std::vector<PolicyView> viewPolicies(const PolicyDocument& document);

} // namespace zolex::companion
