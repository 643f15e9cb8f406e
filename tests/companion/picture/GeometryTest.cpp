#include "companion/picture/Geometry.h"

#include "companion/support/ExampleSnapshot.h"

#include <gtest/gtest.h>

#include <set>

namespace zolex::companion {

/// For messages of tests.
void PrintTo(const Box& box, std::ostream* out) {
    *out << box.x << "," << box.y << " " << box.width << "x" << box.height;
}

namespace {

using test::exampleDrive;
using test::exampleLogicalDrive;
using test::exampleSnapshot;
using test::mb;

TEST(Geometry, SlotsOfAnEnclosureStandSideBySide) {
    const Geometry picture = geometryOf(exampleSnapshot());
    ASSERT_EQ(picture.controllers.size(), 1U);
    ASSERT_EQ(picture.controllers[0].rows.size(), 1U);
    const PlacedRow& row = picture.controllers[0].rows[0];
    EXPECT_EQ(row.title, "Enclosure 32");
    EXPECT_EQ(row.titleBox, (Box{12, 56, 614, 18}));
    ASSERT_EQ(row.slots.size(), 8U);
    EXPECT_EQ(row.slots[0].box, (Box{12, 74, 56, 88}));
    EXPECT_EQ(row.slots[1].box, (Box{74, 74, 56, 88}));
    EXPECT_EQ(row.slots[7].box, (Box{446, 74, 56, 88}));
    EXPECT_EQ(picture.width, 638);
    EXPECT_EQ(picture.height, 316);
    EXPECT_EQ(picture.legend, (Box{12, 246, 614, 58}));
}

TEST(Geometry, HeadsAndLegendCanBeLeftOut) {
    const Geometry picture = geometryOf(exampleSnapshot(), {0, false, false});
    EXPECT_EQ(picture.controllers[0].rows[0].titleBox, (Box{12, 12, 614, 18}));
    EXPECT_EQ(picture.legend.height, 0);
    EXPECT_EQ(picture.height, 316 - 44 - 58);
}

TEST(Geometry, BarsAreToScaleAndCutIntoLogicalDrives) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    // Half of the RAID 5, and two small ones behind it.
    controller.facts.logicalDrives[1].capacityBytes = 69376 * mb;
    controller.facts.logicalDrives.push_back(exampleLogicalDrive("2", "RAID5", 1388, {}));
    controller.arrays[1].logicalDrives = {1, 2};
    const std::vector<PlacedArray> arrays = geometryOf(snapshot).controllers[0].arrays;
    ASSERT_EQ(arrays.size(), 2U);
    // Two drives beside three: two thirds of the longest bar, 584 units.
    EXPECT_EQ(arrays[0].bar, (Box{42, 172, 389, 24}));
    EXPECT_EQ(arrays[1].bar, (Box{42, 204, 584, 24}));
    EXPECT_EQ(arrays[0].letter, (Box{12, 172, 24, 24}));
    ASSERT_EQ(arrays[0].segments.size(), 1U);
    EXPECT_EQ(arrays[0].segments[0].box, arrays[0].bar);
    EXPECT_TRUE(arrays[0].segments[0].hasLabel);
    ASSERT_EQ(arrays[1].segments.size(), 3U);
    EXPECT_EQ(arrays[1].segments[0].box, (Box{42, 204, 292, 24}));
    EXPECT_EQ(arrays[1].segments[1].box, (Box{334, 204, 5, 24}));
    EXPECT_EQ(arrays[1].segments[1].logicalDrive, 2U);
    EXPECT_FALSE(arrays[1].segments[1].hasLabel);
    EXPECT_EQ(arrays[1].segments[2].box, (Box{339, 204, 287, 24}));
    EXPECT_FALSE(arrays[1].segments[2].logicalDrive);
    // The label that found no room stands below the bar.
    ASSERT_EQ(arrays[1].labels.size(), 1U);
    EXPECT_EQ(arrays[1].labels[0].logicalDrive, 2U);
    EXPECT_EQ(arrays[1].labels[0].box, (Box{42, 230, 104, 16}));
}

TEST(Geometry, SegmentsFillTheirBarWhateverTheSizesAre) {
    const std::uint64_t sizes[] = {0, 1, mb, 69376 * mb, ~std::uint64_t{0}};
    for (const std::uint64_t drive : sizes) {
        for (const std::uint64_t logical : sizes) {
            Snapshot snapshot = exampleSnapshot();
            ControllerSnapshot& controller = snapshot.details[0];
            for (MachineDrive& other : controller.drives) {
                other.facts.capacityBytes = drive;
            }
            controller.facts.logicalDrives[0].capacityBytes = logical;
            controller.facts.logicalDrives[1].capacityBytes.reset();
            controller.arrays[0].logicalDrives = {0, 1, 0};
            const Geometry picture = geometryOf(snapshot);
            for (const PlacedArray& array : picture.controllers[0].arrays) {
                std::int32_t x = array.bar.x;
                for (const PlacedSegment& segment : array.segments) {
                    EXPECT_EQ(segment.box.x, x);
                    EXPECT_GE(segment.box.width, 0);
                    x += segment.box.width;
                }
                EXPECT_EQ(x, array.bar.x + array.bar.width) << drive << " " << logical;
                EXPECT_LE(array.bar.width, 584);
            }
        }
    }
}

TEST(Geometry, ARowHoldsTwentyFourSlotsAndGapsAreEmptySlots) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    controller.arrays.clear();
    controller.drives.clear();
    for (std::int32_t slot = 2; slot < 30; ++slot) {
        controller.drives.push_back(exampleDrive(8, slot, slot - 1, "X"));
    }
    const std::vector<PlacedRow> rows = geometryOf(snapshot).controllers[0].rows;
    ASSERT_EQ(rows.size(), 2U);
    ASSERT_EQ(rows[0].slots.size(), 24U);
    ASSERT_EQ(rows[1].slots.size(), 6U);
    EXPECT_EQ(rows[1].title, "");
    EXPECT_FALSE(rows[0].slots[0].slot.drive);
    EXPECT_EQ(rows[0].slots[1].slot.number, 1);
    EXPECT_EQ(rows[0].slots[2].slot.drive, 0U);
    EXPECT_EQ(rows[1].slots[5].slot.number, 29);
    EXPECT_EQ(rows[1].slots[0].box.x, rows[0].slots[0].box.x);
    EXPECT_EQ(rows[1].slots[0].box.y, rows[0].slots[0].box.y + 98);
    EXPECT_EQ(geometryOf(snapshot).width, 24 * 62 - 6 + 24);
}

TEST(Geometry, SlotNumbersThatNoEnclosureHasMakeNoGaps) {
    Snapshot snapshot = exampleSnapshot();
    std::vector<MachineDrive>& drives = snapshot.details[0].drives;
    drives[7].facts.slot = 2000000000;
    EXPECT_EQ(geometryOf(snapshot).controllers[0].rows[0].slots.size(), 8U);
    drives[0].facts.slot = -5;
    EXPECT_EQ(geometryOf(snapshot).controllers[0].rows[0].slots.size(), 8U);
    drives[7].facts.slot.reset();
    EXPECT_EQ(geometryOf(snapshot).controllers[0].rows[0].slots.size(), 8U);
}

TEST(Geometry, RowsAreInTheOrderOfTheNumbersOfPolicies) {
    Snapshot snapshot;
    ControllerSnapshot controller;
    controller.drives = {exampleDrive(64, 0, 1, "A"), exampleDrive(32, 1, 2, "B"),
                         exampleDrive(32, 0, 3, "C"), exampleDrive(8, 1, 0, "D")};
    MachineDrive loose = exampleDrive(0, 4, 4, "E");
    loose.facts.enclosure.reset();
    loose.facts.location = ":4";
    MachineDrive channel = exampleDrive(0, 2, 5, "F");
    channel.facts.enclosure.reset();
    channel.facts.slot.reset();
    channel.facts.channel = 1;
    channel.facts.id = 2;
    controller.drives.insert(controller.drives.end(), {loose, channel});
    snapshot.details.push_back(controller);
    std::string order;
    const Geometry picture = geometryOf(snapshot);
    for (const PlacedRow& row : picture.controllers[0].rows) {
        order += row.title + ":";
        for (const PlacedSlot& slot : row.slots) {
            order += slot.slot.drive ? " " + controller.drives[*slot.slot.drive].facts.serialNumber
                                     : " -";
        }
        order += "\n";
    }
    // Slots that count from 1 have no empty slot 0.
    EXPECT_EQ(order, "Enclosure 64: A\nEnclosure 32: C B\nNo enclosure: E\nChannel 1: F\n"
                     "Enclosure 8: D\n");
}

TEST(Geometry, ALogicalDriveTakesWhatItsLevelPutsBesideTheData) {
    struct {
        const char* raidType;
        std::size_t spans;
        std::uint64_t raw;
    } const rows[] = {
        {"RAID0", 1, 120},  {"RAID1", 1, 240},   {"RAID10", 2, 240}, {"RAID1E", 1, 240},
        {"RAID5", 1, 144},  {"RAID50", 2, 180},  {"RAID6", 1, 180},  {"RAID60", 2, 360},
        {"RAID5E", 1, 180}, {"RAID5EE", 1, 180}, {"None", 1, 120},   {"", 1, 120},
    };
    for (const auto& row : rows) {
        LogicalDriveFacts logicalDrive = exampleLogicalDrive("0", row.raidType, 0, {});
        logicalDrive.capacityBytes = 120;
        logicalDrive.spans.resize(row.spans);
        EXPECT_EQ(rawBytesOf(logicalDrive, 6), row.raw) << row.raidType;
    }
    LogicalDriveFacts odd = exampleLogicalDrive("0", "RAID6", 1, {});
    EXPECT_EQ(rawBytesOf(odd, 2), mb);
    EXPECT_EQ(rawBytesOf(odd, 0), mb);
    odd.capacityBytes.reset();
    EXPECT_EQ(rawBytesOf(odd, 6), std::nullopt);
}

} // namespace
} // namespace zolex::companion
