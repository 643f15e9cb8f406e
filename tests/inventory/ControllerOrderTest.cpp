#include "driver/Application.h"
#include "inventory/ControllerList.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace zolex {
namespace {

RAIDController& add(ControllerList& list, std::int32_t type, std::int32_t subtype = -1) {
    RAIDController& controller = *list.add();
    controller.setType(type);
    controller.setSubtype(subtype);
    return controller;
}

std::vector<std::int32_t> scanOrdersOf(const ControllerList& list) {
    std::vector<std::int32_t> orders;
    for (std::size_t i = 0; i < list.count(); ++i) {
        orders.push_back(list.controller(i)->scanOrder());
    }
    return orders;
}

TEST(ScanOrders, CountTheControllersOfEachUtilityFamily) {
    test::FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(9);
    ControllerList list;
    // Types 6 and 10 count together, as do 2, 7, 11 and 3, 4, 8, 9.
    for (const std::int32_t type : {12, 1, 12, 2, 7, 3, 11, 4, 6, 8, 10, 9, 5, 10, 12, 5, 1}) {
        add(list, type);
    }
    list.setControllerScanOrders(application.report());
    EXPECT_EQ(scanOrdersOf(list),
              (std::vector<std::int32_t>{1, 1, 2, 1, 2, 1, 3, 2, 1, 3, 2, 4, 1, 3, 3, 2, 2}));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "Entering ControllerList::setControllerScanOrders\nExiting "
              "ControllerList::setControllerScanOrders\n");
}

TEST(ScanOrders, ASixteenthControllerOfOneFamilyKeepsItsEarlierValue) {
    test::FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(9);
    ControllerList list;
    for (int i = 0; i < 18; ++i) {
        add(list, 12);
    }
    list.controller(16)->setScanOrder(7);
    add(list, 5);
    list.setControllerScanOrders(application.report());
    EXPECT_EQ(scanOrdersOf(list), (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12,
                                                             13, 14, 15, 0, 7, 0, 1}));
}

// The order of the controllers of type 10

struct Slot {
    std::int32_t type;
    std::int32_t subtype;
    const char* location;
    std::int32_t bus;
};

void fill(ControllerList& list, const std::vector<Slot>& slots) {
    for (const Slot& slot : slots) {
        RAIDController& controller = add(list, slot.type, slot.subtype);
        controller.setPciLocation(slot.location);
        controller.setBusNumber(slot.bus);
        controller.setSlotNumber(slot.bus + 1000);
        controller.setPciFunction(slot.bus + 2000);
        controller.setFirmwareVersion(CString::fromInt(slot.bus));
        controller.addDrive(1, 0, slot.bus + 3000, "SAS");
    }
}

/// The bus numbers in slot order; the rest of each record must have gone with its bus number.
std::vector<std::int32_t> busesOf(const ControllerList& list) {
    std::vector<std::int32_t> buses;
    for (std::size_t i = 0; i < list.count(); ++i) {
        const RAIDController& controller = *list.controller(i);
        buses.push_back(controller.busNumber());
        EXPECT_EQ(controller.slotNumber(), controller.busNumber() + 1000);
        EXPECT_EQ(controller.pciFunction(), controller.busNumber() + 2000);
        EXPECT_EQ(controller.firmwareVersion()->toInt(), controller.busNumber());
        EXPECT_EQ(controller.size(1, 0), controller.busNumber() + 3000);
    }
    return buses;
}

TEST(BusNumberOrder, PutsTheRecordsInOrderWhileEachSlotKeepsSubtypeAndLocation) {
    struct Row {
        std::vector<Slot> before;
        std::vector<std::int32_t> busesAfter;
    };
    const Row rows[] = {
        {{}, {}},
        {{{10, 1, "a", 5}}, {5}},
        {{{10, 1, "a", 5}, {10, 2, "b", 3}}, {3, 5}},
        {{{10, 1, "a", 3}, {10, 2, "b", 5}}, {3, 5}},
        {{{10, 1, "a", 3}, {10, 2, "b", 3}}, {3, 3}},
        {{{10, 1, "a", 9}, {10, 2, "b", 7}, {10, 3, "c", 8}, {10, -1, "d", 1}}, {1, 7, 8, 9}},
        {{{10, 1, "a", 4}, {10, 2, "b", -1}, {10, 3, "c", 0}}, {-1, 0, 4}},
        // Other types stay where they are, whatever their bus numbers.
        {{{12, 9, "x", 90}, {10, 1, "a", 5}, {12, 8, "y", 1}, {10, 2, "b", 3}, {6, 1, "z", 0}},
         {90, 3, 1, 5, 0}},
        {{{12, 1, "x", 9}, {12, 2, "y", 1}}, {9, 1}},
    };
    for (const Row& row : rows) {
        ControllerList list;
        fill(list, row.before);
        list.reorderByBusNumber();
        ASSERT_EQ(list.count(), row.before.size());
        EXPECT_EQ(busesOf(list), row.busesAfter);
        for (std::size_t i = 0; i < list.count(); ++i) {
            const RAIDController& controller = *list.controller(i);
            EXPECT_EQ(controller.type(), row.before[i].type) << i;
            EXPECT_EQ(controller.subtype(), row.before[i].subtype) << i;
            EXPECT_TRUE(controller.pciLocation() == row.before[i].location) << i;
        }
    }
}

// Symptom: of two controllers on one bus the later one came first when a third, on a lower bus,
// stood behind them.
TEST(BusNumberOrder, ControllersOfOneBusKeepTheirOrder) {
    ControllerList list;
    fill(list, {{10, 1, "a", 5}, {10, 2, "b", 5}, {12, 1, "x", 0}, {10, 3, "c", 3}});
    list.controller(0)->setSlotNumber(1);
    list.controller(1)->setSlotNumber(2);
    list.controller(3)->setSlotNumber(3);
    list.reorderByBusNumber();
    EXPECT_EQ(list.controller(0)->slotNumber(), 3);
    EXPECT_EQ(list.controller(1)->slotNumber(), 1);
    EXPECT_EQ(list.controller(3)->slotNumber(), 2);
    for (const std::size_t slot : {0U, 1U, 3U}) {
        EXPECT_EQ(list.controller(slot)->subtype(), slot == 3 ? 3 : static_cast<int>(slot) + 1);
    }
}

} // namespace
} // namespace zolex
