#include "inventory/ControllerList.h"
#include "platform/PciDeviceList.h"
#include "properties/Generators.h"
#include "properties/Property.h"
#include "support/Scan.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace zolex::properties {
namespace {

template <typename Item>
std::vector<Item> inOrder(const std::vector<Item>& items, const std::vector<int>& numbers) {
    std::vector<Item> ordered;
    for (const int number : numbers) {
        ordered.push_back(items.at(static_cast<std::size_t>(number - 1)));
    }
    return ordered;
}

// The order of the bus

/// Devices at few places, so that some share one. The description tells them apart.
std::vector<PciDevice> anyDevices() {
    std::vector<PciDevice> devices(static_cast<std::size_t>(*number(0, 20)));
    int serial = 0;
    for (PciDevice& device : devices) {
        device.bus = oneOf<std::uint16_t>({0, 1, 2, 255, 256});
        device.device = oneOf<std::uint16_t>({0, 1, 31, 32});
        device.function = oneOf<std::uint16_t>({0, 1, 7, 8});
        device.deviceDescription = std::to_string(++serial);
    }
    return devices;
}

std::vector<PciDevice> listed(const std::vector<PciDevice>& devices) {
    test::FakePlatform platform;
    platform.devices = devices;
    const auto list = platform.pciDevices();
    list->collect();
    RC_ASSERT(list->count() == devices.size());
    std::vector<PciDevice> all;
    while (const PciDevice* device = list->next()) {
        all.push_back(*device);
    }
    return all;
}

auto placeOf(const PciDevice& device) {
    return std::make_tuple(device.bus, device.device, device.function);
}

TEST(OrderProperties, PciFunctionsStandInTheOrderOfTheirPlacesAndEqualOnesAsTheyWereFound) {
    checkProperty({{"two at one place", 10}}, [](Tally& tally) {
        const std::vector<PciDevice> devices = anyDevices();
        const std::vector<PciDevice> found =
            inOrder(devices, shuffledNumbers(static_cast<int>(devices.size())));
        // The slow way: the first of the least place, one by one.
        std::vector<PciDevice> rest;
        std::copy_if(found.begin(), found.end(), std::back_inserter(rest),
                     [](const PciDevice& device) {
                         return device.bus < 256 && device.device < 32 && device.function < 8;
                     });
        bool shared = false;
        for (const PciDevice& device : listed(found)) {
            RC_ASSERT(!rest.empty());
            auto least = rest.begin();
            for (auto it = rest.begin(); it != rest.end(); ++it) {
                shared = shared || (it != least && placeOf(*it) == placeOf(*least));
                least = placeOf(*it) < placeOf(*least) ? it : least;
            }
            RC_ASSERT(device.deviceDescription == least->deviceDescription);
            rest.erase(least);
        }
        RC_ASSERT(rest.empty());
        if (shared) {
            tally.count("two at one place");
        }
    });
}

// The order of the controllers of a run

struct Slot {
    std::int32_t type = 0;
    std::int32_t bus = 0;
    int serial = 0; ///< goes with the record
};

void fill(ControllerList& list, const std::vector<Slot>& slots) {
    int place = 0;
    for (const Slot& slot : slots) {
        RAIDController& controller = *list.add();
        controller.setType(slot.type);
        controller.setBusNumber(slot.bus);
        controller.setFirmwareVersion(CString::fromInt(slot.serial));
        controller.addDrive(1, 0, 1000 + slot.serial, "SAS");
        // What stays with the place.
        controller.setSubtype(place);
        controller.setPciLocation(CString::fromInt(place));
        ++place;
    }
}

std::vector<Slot> anySlots() {
    std::vector<Slot> slots(static_cast<std::size_t>(*number(0, 36)));
    int serial = 0;
    for (Slot& slot : slots) {
        slot.type = oneOf<std::int32_t>({10, 10, 12, 6, 1});
        slot.bus = *number(-1, 5);
        slot.serial = ++serial;
    }
    return slots;
}

TEST(OrderProperties, ControllersOfOneUtilityStandByBusNumberAndEqualOnesStayInOrder) {
    checkProperty({{"equal bus numbers", 30}}, [](Tally& tally) {
        const std::vector<Slot> slots = anySlots();
        ControllerList list;
        fill(list, slots);
        list.reorderByBusNumber();
        std::vector<Slot> moved;
        std::copy_if(slots.begin(), slots.end(), std::back_inserter(moved),
                     [](const Slot& slot) { return slot.type == controller_type::lsiSas; });
        const auto byBus = [](const Slot& a, const Slot& b) { return a.bus < b.bus; };
        std::stable_sort(moved.begin(), moved.end(), byBus);
        const auto equal = [](const Slot& a, const Slot& b) { return a.bus == b.bus; };
        if (std::adjacent_find(moved.begin(), moved.end(), equal) != moved.end()) {
            tally.count("equal bus numbers");
        }
        std::size_t next = 0;
        RC_ASSERT(list.count() == slots.size());
        for (std::size_t i = 0; i < slots.size(); ++i) {
            const RAIDController& controller = *list.controller(i);
            const Slot& expected =
                slots[i].type == controller_type::lsiSas ? moved.at(next++) : slots[i];
            RC_ASSERT(controller.type() == slots[i].type);
            RC_ASSERT(controller.busNumber() == expected.bus);
            RC_ASSERT(controller.firmwareVersion()->toInt() == expected.serial);
            RC_ASSERT(controller.size(1, 0) == 1000 + expected.serial);
            RC_ASSERT(controller.subtype() == static_cast<std::int32_t>(i));
            RC_ASSERT(controller.pciLocation() == CString::fromInt(static_cast<std::int64_t>(i)));
        }
    });
}

TEST(OrderProperties, DifferentBusNumbersGiveOneOrderWhateverTheOrderBefore) {
    checkProperty({{"several", 50}}, [](Tally& tally) {
        const int count = *number(1, 20);
        std::vector<Slot> slots;
        for (int bus = 1; bus <= count; ++bus) {
            slots.push_back({controller_type::lsiSas, bus, bus});
        }
        ControllerList list;
        fill(list, inOrder(slots, shuffledNumbers(count)));
        list.reorderByBusNumber();
        for (int i = 0; i < count; ++i) {
            RC_ASSERT(list.controller(static_cast<std::size_t>(i))->busNumber() == i + 1);
        }
        if (count > 1) {
            tally.count("several");
        }
    });
}

// Which utility a type is driven by, and so with which others it is counted.
int utilityOf(std::int32_t type) {
    switch (type) {
    case 2:
    case 7:
    case 11:
        return 7;
    case 3:
    case 4:
    case 8:
    case 9:
        return 4;
    case 10:
        return 6;
    default:
        return type;
    }
}

TEST(OrderProperties, ScanOrdersCountTheControllersOfAUtilityInSlotOrder) {
    checkProperty({{"many", 20}}, [](Tally& tally) {
        test::FakePlatform platform;
        Application application{platform};
        ControllerList list;
        const int count = *number(0, 36);
        for (int i = 0; i < count; ++i) {
            list.add()->setType(*number(1, 12));
        }
        list.setControllerScanOrders(application.report());
        std::map<int, int> counted;
        for (std::size_t i = 0; i < list.count(); ++i) {
            const int order = ++counted[utilityOf(list.controller(i)->type())];
            RC_ASSERT(list.controller(i)->scanOrder() == (order <= 15 ? order : 0));
            if (order == 9) {
                tally.count("many");
            }
        }
    });
}

TEST(OrderProperties, AMachineGivesTheSameControllersInAnyOrderOfDiscovery) {
    checkProperty({{"several", 50}}, [](Tally& tally) {
        // Columns: vendor, device; type.
        const std::vector<std::pair<std::uint16_t, std::uint16_t>> kinds = {
            {0x1000, 0x0079}, {0x1000, 0x0050}, {0x9005, 0x0286}, {0x8086, 0x1234}};
        std::vector<PciDevice> devices(static_cast<std::size_t>(*number(1, 12)));
        std::uint16_t bus = 0;
        for (PciDevice& device : devices) {
            std::tie(device.vendorId, device.deviceId) = oneOf(kinds);
            device.bus = static_cast<std::uint16_t>(bus + *number(1, 9));
            bus = device.bus;
        }
        const auto controllersOf = [](const std::vector<PciDevice>& found) {
            test::FakePlatform platform;
            platform.devices = found;
            Application application{platform};
            ControllerList list;
            RC_ASSERT(test::scan(list, application));
            std::string text;
            for (std::size_t i = 0; i < list.count(); ++i) {
                const RAIDController& controller = *list.controller(i);
                text += std::to_string(controller.type()) + "/" +
                        std::to_string(controller.scanOrder()) + " at " +
                        controller.pciLocation().c_str() + "\n";
            }
            return text;
        };
        const std::string expected = controllersOf(devices);
        if (std::count(expected.begin(), expected.end(), '\n') > 1) {
            tally.count("several");
        }
        RC_ASSERT(controllersOf(inOrder(
                      devices, shuffledNumbers(static_cast<int>(devices.size())))) == expected);
    });
}

} // namespace
} // namespace zolex::properties
