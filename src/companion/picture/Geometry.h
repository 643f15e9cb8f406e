#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/picture/Roles.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Where everything stands in a picture of a machine: numbers alone, in units.
namespace zolex::companion {

struct Box {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    friend bool operator==(const Box&, const Box&) = default;
};

namespace geometry {
inline constexpr std::int32_t slotWidth = 56;
inline constexpr std::int32_t slotHeight = 88;
inline constexpr std::int32_t slotGap = 6;
inline constexpr std::size_t slotsInARow = 24;
inline constexpr std::int32_t margin = 12;
inline constexpr std::int32_t leastWidth = 10 * (slotWidth + slotGap) - slotGap; ///< of the content
inline constexpr std::int32_t headHeight = 44;  ///< two lines of text above a controller
inline constexpr std::int32_t titleHeight = 18; ///< a line of text above a row
inline constexpr std::int32_t rowGap = 10;      ///< below a row
inline constexpr std::int32_t barLeft = 30;     ///< the letter of an array, before its bar
inline constexpr std::int32_t barHeight = 24;
inline constexpr std::int32_t barGap = 8;
inline constexpr std::int32_t lineHeight = 16; ///< of labels that find no room in a bar
inline constexpr std::int32_t legendHeight = 58;
inline constexpr std::int32_t rowLabelWidth = 56; ///< "planned", before the slots of a plan
inline constexpr std::int32_t linkHeight = 18;    ///< of the lines from slot to slot
inline constexpr std::int32_t fontSize = 10;      ///< of what stands in slots and bars
/// Width of `characters` characters of a font in which all are equally wide; never too small.
[[nodiscard]] constexpr std::int32_t textWidth(std::size_t characters, std::int32_t size) {
    return static_cast<std::int32_t>((characters * static_cast<std::size_t>(size) * 61 + 99) / 100);
}
} // namespace geometry

struct PlacedSlot {
    Box box;
    DriveRow::Slot slot;
};

/// At most 24 slots. What does not fit goes on in a row without a title.
struct PlacedRow {
    std::string title;
    Box titleBox;
    std::vector<PlacedSlot> slots;
};

/// A piece of an array's bar.
struct PlacedSegment {
    Box box;
    std::optional<std::size_t> logicalDrive; ///< index into Facts::logicalDrives; none: not used
    bool hasLabel = false;                   ///< there is room for it
};

/// The label of a logical drive that found no room in its segment.
struct PlacedLabel {
    Box box;
    std::size_t logicalDrive = 0;
};

/// An array's bar: as long as its drives are large together, in the scale of its controller.
struct PlacedArray {
    std::size_t array = 0; ///< index into ControllerSnapshot::arrays
    Box letter;
    Box bar;
    std::vector<PlacedSegment> segments;
    std::vector<PlacedLabel> labels;
};

struct PlacedController {
    std::size_t index = 0; ///< in Snapshot::details
    Box box;
    std::vector<PlacedRow> rows;
    std::vector<PlacedArray> arrays;
};

struct Geometry {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<PlacedController> controllers;
    bool hasHeads = true;
    Box legend; ///< without height: none
};

/// What a picture holds.
struct PictureContent {
    std::optional<std::size_t> onlyController; ///< index in Snapshot::details; none: all of them
    bool heads = true;                         ///< the lines of text above each controller
    bool legend = true;
};

/// Drives as they are and, below, as they will be. The two rows have the same slots.
struct PlacedPlanRow {
    std::string title;
    Box titleBox;
    Box nowLabel;
    std::vector<PlacedSlot> now;
    Box afterLabel;                ///< without height: there is no second row
    std::vector<PlacedSlot> after; ///< as many as `now`, or none
};

struct PlacedPlan {
    std::size_t index = 0; ///< in what was asked for
    Box box;
    std::vector<PlacedPlanRow> rows;
    std::vector<PlacedArray> now;   ///< bars, in one scale with those below
    std::vector<PlacedArray> after; ///< bars
    Box nowLabel;                   ///< line of text above the bars; without height: no bars
    Box afterLabel;
};

struct PlanGeometry {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<PlacedPlan> controllers;
    bool hasHeads = true;
    Box legend; ///< without height: none
};

/// A controller as it is and as it will be; the second may be missing. Their drives are the same.
struct NowAndAfter {
    const ControllerSnapshot* now = nullptr;
    const ControllerSnapshot* after = nullptr;
};

[[nodiscard]] PlanGeometry planGeometryOf(const std::vector<NowAndAfter>& controllers,
                                          const PictureContent& content = {});

[[nodiscard]] Geometry geometryOf(const Snapshot& snapshot, const PictureContent& content = {});

/// Room on the drives of an array that a logical drive takes: its capacity, and what its level puts
/// beside it. Nothing when its capacity is not known.
[[nodiscard]] std::optional<std::uint64_t> rawBytesOf(const LogicalDriveFacts& logicalDrive,
                                                      std::size_t arrayDrives);

} // namespace zolex::companion
