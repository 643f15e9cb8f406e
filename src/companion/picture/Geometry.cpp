#include "companion/picture/Geometry.h"

#include "companion/text/Terminal.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace zolex::companion {

namespace {

/// How a level uses drives: of n drives in s spans, n - spare * s hold data; `halves`: every
/// second.
struct LevelUse {
    std::string_view raidType;
    bool halves;
    std::size_t spare;
};

constexpr LevelUse levelUses[] = {
    {"RAID1", true, 0},   {"RAID1E", true, 0},  {"RAID10", true, 0},
    {"RAID5", false, 1},  {"RAID50", false, 1}, {"RAID6", false, 2},
    {"RAID60", false, 2}, {"RAID5E", false, 2}, {"RAID5EE", false, 2},
};

constexpr std::uint64_t mb = std::uint64_t{1} << 20U;
/// No size in a picture is larger (an exabyte, in MB), so that products stay in 64 bits.
constexpr std::uint64_t largestMb = std::uint64_t{1} << 40U;

std::uint64_t toMb(std::uint64_t bytes) {
    return std::min(bytes / mb, largestMb);
}

/// What an array's bar is made of, in MB.
struct ArraySizes {
    std::uint64_t whole = 0;
    std::vector<std::uint64_t> used; ///< of each logical drive
};

ArraySizes sizesOf(const ControllerSnapshot& controller, const MachineArray& array,
                   const std::map<std::string_view, const DriveFacts*>& drives) {
    ArraySizes sizes;
    std::uint64_t smallest = 0;
    for (const std::string& location : array.drives) {
        const auto drive = drives.find(location);
        if (drive != drives.end() && drive->second->capacityBytes) {
            const std::uint64_t size = toMb(*drive->second->capacityBytes);
            smallest = smallest == 0 ? size : std::min(smallest, size);
        }
    }
    const auto count = static_cast<std::uint64_t>(array.drives.size());
    std::uint64_t used = 0;
    for (const std::size_t index : array.logicalDrives) {
        const LogicalDriveFacts& logicalDrive = controller.facts.logicalDrives.at(index);
        sizes.used.push_back(toMb(rawBytesOf(logicalDrive, array.drives.size()).value_or(0)));
        used = std::min(used + sizes.used.back(), largestMb);
    }
    sizes.whole =
        std::max(std::min(smallest * std::min(count, std::uint64_t{1} << 20U), largestMb), used);
    // What rounding of the listed sizes may leave over is not room.
    if (used > 0 && sizes.whole - used <= sizes.whole / 100) {
        sizes.whole = used;
    }
    return sizes;
}

/// Cuts the bar into its logical drives and the rest.
void placeSegments(PlacedArray& placed, const MachineArray& array, const ArraySizes& sizes,
                   const ControllerSnapshot& controller) {
    const Box& bar = placed.bar;
    const auto offset = [&](std::uint64_t mbytes) {
        const std::uint64_t part = std::min(mbytes, sizes.whole);
        const auto width = static_cast<std::uint64_t>(bar.width);
        return sizes.whole == 0 ? 0 : static_cast<std::int32_t>(part * width / sizes.whole);
    };
    const auto equalOffset = [&](std::size_t i) { // sizes are not known
        return static_cast<std::int32_t>(static_cast<std::size_t>(bar.width) * i /
                                         array.logicalDrives.size());
    };
    std::uint64_t before = 0;
    for (std::size_t i = 0; i < array.logicalDrives.size(); ++i) {
        const std::uint64_t after = before + sizes.used[i];
        const bool known = sizes.whole != 0;
        const std::int32_t left = known ? offset(before) : equalOffset(i);
        const std::int32_t right = known ? offset(after) : equalOffset(i + 1);
        PlacedSegment segment{
            {bar.x + left, bar.y, right - left, bar.height}, array.logicalDrives[i], false};
        const std::string label =
            labelOf(controller.facts.logicalDrives.at(array.logicalDrives[i]));
        segment.hasLabel =
            geometry::textWidth(columnsOf(label), geometry::fontSize) + 6 <= segment.box.width;
        placed.segments.push_back(segment);
        before = after;
    }
    if (before < sizes.whole || array.logicalDrives.empty()) {
        const std::int32_t left = offset(before);
        placed.segments.push_back(
            {{bar.x + left, bar.y, bar.width - left, bar.height}, std::nullopt, false});
    }
}

/// Puts the labels without room behind the bar and, when there is none left, into lines below it;
/// returns the height of these lines.
std::int32_t placeLabels(PlacedArray& placed, const ControllerSnapshot& controller,
                         std::int32_t right) {
    constexpr std::int32_t gap = 8;
    const Box& bar = placed.bar;
    std::int32_t x = bar.x + bar.width + gap;
    std::int32_t y = bar.y + (bar.height - geometry::lineHeight) / 2;
    for (const PlacedSegment& segment : placed.segments) {
        if (!segment.logicalDrive || segment.hasLabel) {
            continue;
        }
        const std::string label = labelOf(controller.facts.logicalDrives.at(*segment.logicalDrive));
        const std::int32_t width = geometry::textWidth(columnsOf(label), geometry::fontSize);
        const bool isLineStart = x == bar.x;
        if (!isLineStart && x + width > right) {
            x = bar.x;
            y = std::max(y + geometry::lineHeight, bar.y + bar.height + 2);
        }
        placed.labels.push_back({{x, y, width, geometry::lineHeight}, *segment.logicalDrive});
        x += width + 2 * geometry::fontSize;
    }
    return std::max(y + geometry::lineHeight - bar.y - bar.height, 0);
}

std::int32_t widthOfSlots(std::size_t slots) {
    return static_cast<std::int32_t>(std::min(slots, geometry::slotsInARow)) *
               (geometry::slotWidth + geometry::slotGap) -
           geometry::slotGap;
}

/// Places the rows of drives from `y` on; returns where they end.
std::int32_t placeRows(PlacedController& placed, const std::vector<DriveRow>& rows, std::int32_t y,
                       std::int32_t contentWidth) {
    for (const DriveRow& row : rows) {
        for (std::size_t first = 0; first < row.slots.size(); first += geometry::slotsInARow) {
            PlacedRow line;
            if (first == 0) {
                line.title = row.title;
                line.titleBox = {geometry::margin, y, contentWidth, geometry::titleHeight};
                y += geometry::titleHeight;
            }
            const std::size_t end = std::min(first + geometry::slotsInARow, row.slots.size());
            for (std::size_t i = first; i < end; ++i) {
                const auto column = static_cast<std::int32_t>(i - first);
                line.slots.push_back(
                    {{geometry::margin + column * (geometry::slotWidth + geometry::slotGap), y,
                      geometry::slotWidth, geometry::slotHeight},
                     row.slots[i]});
            }
            y += geometry::slotHeight + geometry::rowGap;
            placed.rows.push_back(std::move(line));
        }
    }
    return y;
}

std::vector<ArraySizes> sizesOfArrays(const ControllerSnapshot& controller) {
    std::map<std::string_view, const DriveFacts*> drives;
    for (const MachineDrive& drive : controller.drives) {
        drives.emplace(drive.facts.location, &drive.facts);
    }
    std::vector<ArraySizes> sizes;
    for (const MachineArray& array : controller.arrays) {
        sizes.push_back(sizesOf(controller, array, drives));
    }
    return sizes;
}

std::uint64_t largestOf(const std::vector<ArraySizes>& sizes) {
    std::uint64_t largest = 0;
    for (const ArraySizes& size : sizes) {
        largest = std::max(largest, size.whole);
    }
    return largest;
}

/// Places the bars of the arrays from `y` on; returns where they end. `largest` is what the longest
/// bar stands for.
std::int32_t placeArrays(std::vector<PlacedArray>& placed, const ControllerSnapshot& controller,
                         const std::vector<ArraySizes>& sizes, std::uint64_t largest,
                         std::int32_t y, std::int32_t contentWidth) {
    const std::int32_t most = contentWidth - geometry::barLeft;
    for (std::size_t i = 0; i < controller.arrays.size(); ++i) {
        PlacedArray array;
        array.array = i;
        const auto scaled = largest == 0
                                ? most
                                : static_cast<std::int32_t>(
                                      sizes[i].whole * static_cast<std::uint64_t>(most) / largest);
        array.letter = {geometry::margin, y, geometry::barLeft - 6, geometry::barHeight};
        array.bar = {geometry::margin + geometry::barLeft, y, std::max(scaled, 2),
                     geometry::barHeight};
        placeSegments(array, controller.arrays[i], sizes[i], controller);
        y += geometry::barHeight + placeLabels(array, controller, geometry::margin + contentWidth) +
             geometry::barGap;
        placed.push_back(std::move(array));
    }
    return y;
}

/// Places rows of drives twice, from `y` on; returns where they end.
std::int32_t placePlanRows(PlacedPlan& placed, const std::vector<DriveRow>& rows, bool hasAfter,
                           std::int32_t y, std::int32_t contentWidth) {
    const auto place = [](std::vector<PlacedSlot>& slots, const DriveRow& row, std::size_t first,
                          std::size_t end, std::int32_t top) {
        for (std::size_t i = first; i < end; ++i) {
            const auto column = static_cast<std::int32_t>(i - first);
            slots.push_back({{geometry::margin + geometry::rowLabelWidth +
                                  column * (geometry::slotWidth + geometry::slotGap),
                              top, geometry::slotWidth, geometry::slotHeight},
                             row.slots[i]});
        }
    };
    for (const DriveRow& row : rows) {
        for (std::size_t first = 0; first < row.slots.size(); first += geometry::slotsInARow) {
            PlacedPlanRow line;
            if (first == 0) {
                line.title = row.title;
                line.titleBox = {geometry::margin, y, contentWidth, geometry::titleHeight};
                y += geometry::titleHeight;
            }
            const std::size_t end = std::min(first + geometry::slotsInARow, row.slots.size());
            line.nowLabel = {geometry::margin, y, geometry::rowLabelWidth, geometry::slotHeight};
            place(line.now, row, first, end, y);
            y += geometry::slotHeight;
            if (hasAfter) {
                y += geometry::linkHeight;
                line.afterLabel = {geometry::margin, y, geometry::rowLabelWidth,
                                   geometry::slotHeight};
                place(line.after, row, first, end, y);
                y += geometry::slotHeight;
            }
            y += geometry::rowGap;
            placed.rows.push_back(std::move(line));
        }
    }
    return y;
}

/// Places the bars of now and of later, each below a line of text; returns where they end.
std::int32_t placePlanArrays(PlacedPlan& placed, const NowAndAfter& controller, std::int32_t y,
                             std::int32_t contentWidth) {
    const std::vector<ArraySizes> now = sizesOfArrays(*controller.now);
    const std::vector<ArraySizes> after =
        controller.after == nullptr ? std::vector<ArraySizes>() : sizesOfArrays(*controller.after);
    const std::uint64_t largest = std::max(largestOf(now), largestOf(after));
    const auto place = [&](std::vector<PlacedArray>& arrays, Box& label,
                           const ControllerSnapshot& state, const std::vector<ArraySizes>& sizes) {
        if (!sizes.empty()) {
            label = {geometry::margin, y, contentWidth, geometry::titleHeight};
            y = placeArrays(arrays, state, sizes, largest, y + geometry::titleHeight, contentWidth);
        }
    };
    place(placed.now, placed.nowLabel, *controller.now, now);
    if (controller.after != nullptr) {
        place(placed.after, placed.afterLabel, *controller.after, after);
    }
    return y;
}

} // namespace

PlanGeometry planGeometryOf(const std::vector<NowAndAfter>& controllers,
                            const PictureContent& content) {
    PlanGeometry picture;
    const auto isShown = [&](std::size_t i) {
        return !content.onlyController || *content.onlyController == i;
    };
    std::vector<std::vector<DriveRow>> rows(controllers.size());
    std::int32_t contentWidth = geometry::leastWidth;
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        if (isShown(i)) {
            rows[i] = driveRowsOf(*controllers[i].now);
            for (const DriveRow& row : rows[i]) {
                contentWidth = std::max(contentWidth,
                                        geometry::rowLabelWidth + widthOfSlots(row.slots.size()));
            }
        }
    }
    std::int32_t y = geometry::margin;
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        if (!isShown(i)) {
            continue;
        }
        PlacedPlan placed;
        placed.index = i;
        std::int32_t end =
            placePlanRows(placed, rows[i], controllers[i].after != nullptr,
                          y + (content.heads ? geometry::headHeight : 0), contentWidth);
        end = placePlanArrays(placed, controllers[i], end, contentWidth);
        placed.box = {geometry::margin, y, contentWidth, end - y};
        picture.controllers.push_back(std::move(placed));
        y = end + geometry::rowGap;
    }
    picture.hasHeads = content.heads;
    picture.legend = {geometry::margin, y, contentWidth,
                      content.legend ? geometry::legendHeight : 0};
    picture.width = contentWidth + 2 * geometry::margin;
    picture.height = y + picture.legend.height + geometry::margin;
    return picture;
}

std::optional<std::uint64_t> rawBytesOf(const LogicalDriveFacts& logicalDrive,
                                        std::size_t arrayDrives) {
    if (!logicalDrive.capacityBytes) {
        return std::nullopt;
    }
    const std::uint64_t capacity = std::min(*logicalDrive.capacityBytes, largestMb * mb);
    const auto use =
        std::find_if(std::begin(levelUses), std::end(levelUses), [&](const LevelUse& level) {
            return level.raidType == logicalDrive.raidType;
        });
    if (use == std::end(levelUses)) {
        return capacity;
    }
    if (use->halves) {
        return 2 * capacity;
    }
    const std::size_t spans = std::max<std::size_t>(logicalDrive.spans.size(), 1);
    const std::size_t spare = use->spare * spans;
    if (arrayDrives <= spare || arrayDrives > 100000) {
        return capacity;
    }
    const std::uint64_t data = arrayDrives - spare;
    return capacity / data * arrayDrives + capacity % data * arrayDrives / data;
}

Geometry geometryOf(const Snapshot& snapshot, const PictureContent& content) {
    Geometry picture;
    const auto isShown = [&](std::size_t i) {
        return !content.onlyController || *content.onlyController == i;
    };
    std::vector<std::vector<DriveRow>> rows;
    std::int32_t contentWidth = geometry::leastWidth;
    for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
        rows.emplace_back();
        if (!isShown(i)) {
            continue;
        }
        rows.back() = driveRowsOf(snapshot.details[i]);
        for (const DriveRow& row : rows.back()) {
            contentWidth = std::max(contentWidth, widthOfSlots(row.slots.size()));
        }
    }
    std::int32_t y = geometry::margin;
    for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
        if (!isShown(i)) {
            continue;
        }
        PlacedController controller;
        controller.index = i;
        std::int32_t end = placeRows(controller, rows[i],
                                     y + (content.heads ? geometry::headHeight : 0), contentWidth);
        const std::vector<ArraySizes> sizes = sizesOfArrays(snapshot.details[i]);
        end = placeArrays(controller.arrays, snapshot.details[i], sizes, largestOf(sizes), end,
                          contentWidth);
        controller.box = {geometry::margin, y, contentWidth, end - y};
        picture.controllers.push_back(std::move(controller));
        y = end + geometry::rowGap;
    }
    picture.hasHeads = content.heads;
    picture.legend = {geometry::margin, y, contentWidth,
                      content.legend ? geometry::legendHeight : 0};
    picture.width = contentWidth + 2 * geometry::margin;
    picture.height = y + picture.legend.height + geometry::margin;
    return picture;
}

} // namespace zolex::companion
