#include "inventory/ControllerList.h"

#include "foundation/IniFile.h"
#include "foundation/Report.h"
#include "inventory/ZOLEXSupport.h"
#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "platform/PciDeviceList.h"
#include "show/Dumps.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace zolex {

namespace {

/// The device whose RAID mode is told apart by its class code alone, and that class.
constexpr std::uint16_t classCheckedVendor = 0x1166;
constexpr std::uint16_t classCheckedDevice = 0x0213;
constexpr std::uint32_t classMask = 0xFFFF00;
constexpr std::uint32_t raidClass = 0x010400;
constexpr std::uint16_t anyId = 0xFFFF;

bool rowMatches(const PciRow& row, const PciDevice& device) {
    if (row.vendorId != device.vendorId || row.deviceId != device.deviceId ||
        (row.subsystemVendorId != anyId && row.subsystemVendorId != device.subsystemVendorId) ||
        (row.subsystemId != anyId && row.subsystemId != device.subsystemId)) {
        return false;
    }
    return row.vendorId != classCheckedVendor || row.deviceId != classCheckedDevice ||
           (device.classCode & classMask) == raidClass;
}

/// The first matching row of the catalogue; the end row (type -1) when there is none.
PciRow findRow(const PciDevice& device) {
    PciRowCursor cursor;
    PciRow row = cursor.nextPciRow();
    while (row.type != controller_type::none && !rowMatches(row, device)) {
        row = cursor.nextPciRow();
    }
    return row;
}

CString locationText(const PciDevice& device) {
    const auto id = [](std::uint16_t value) { return static_cast<unsigned>(value); };
    return formatText("%d:%d:%d:%04X:%04X:%04X:%04X", device.bus, device.device, device.function,
                      id(device.vendorId), id(device.deviceId), id(device.subsystemVendorId),
                      id(device.subsystemId));
}

CString rangeWords(std::int32_t first, std::int32_t last) {
    return formatText("%d to %d", first, last);
}

/// Reads the sections of one controller of an inventory file. Each step is false after a fault that
/// it has reported.
class InventoryReader {
  public:
    InventoryReader(IniFile& inventory, Report& report, std::size_t number)
        : inventory_(inventory), report_(report),
          section_(formatText("RAIDController.%d", static_cast<int>(number))) {}

    bool readModel() {
        const CString model = inventory_.readString(section_, "Model", "");
        if (model.isEmpty()) {
            return fail(2,
                        {.kind = FaultKind::inventoryModelMissing, .place = at(section_, "Model")});
        }
        const ControllerCatalogue catalogue;
        type_ = catalogue.getControllerType(model);
        subtype_ = catalogue.getControllerSubtype(model);
        report_.tracef("Processing controller type=%d, sub-type=%d\n", type_, subtype_);
        if (type_ < 0) {
            report_.trace("Non-supported Controller Found in Inventory File\n");
            return fail(3, {.kind = FaultKind::inventoryModelUnknown,
                            .place = at(section_, "Model"),
                            .wanted = model,
                            .possible = ControllerCatalogue::modelNames()});
        }
        return true;
    }

    bool fill(RAIDController& controller) {
        controller.setType(type_);
        controller.setSubtype(subtype_);
        controller.setBiosVersion(inventory_.readString(section_, "BIOSVersion", ""));
        controller.setFirmwareVersion(inventory_.readString(section_, "FirmwareVersion", ""));
        readArrays();
        const CString physical = section_ + ".Physical";
        const std::int32_t drives =
            inventory_.readInteger(physical, "Total_Number_Of_Physicals", 0);
        for (std::int32_t j = 1; j <= drives; ++j) {
            if (!readDrive(physical, j, controller)) {
                return false;
            }
        }
        return true;
    }

  private:
    /// Array lines carry no meaning: the values are read and dropped.
    void readArrays() {
        const CString section = section_ + ".Array";
        const std::int32_t arrays = inventory_.readInteger(section, "Total_Number_Of_Arrays", 0);
        // However large the count is, no more keys can be present than the file has lines.
        const auto lines = static_cast<std::int64_t>(inventory_.lines().size());
        for (std::int32_t i = 1; i <= arrays && i <= lines; ++i) {
            inventory_.readString(section, formatText("Members.%d", i), "");
        }
    }

    bool readDrive(const CString& section, std::int32_t j, RAIDController& controller) {
        const CString channelKey = formatText("Channel.%d", j);
        const std::int32_t channel = inventory_.readInteger(section, channelKey, -1);
        if (channel < 0) {
            return fail(4, {.kind = FaultKind::inventoryChannelMissing,
                            .place = at(section, channelKey),
                            .number = channel});
        }
        const CString idKey = formatText("ID.%d", j);
        const std::int32_t id = inventory_.readInteger(section, idKey, -1);
        if (id < 0) {
            return fail(
                5,
                {.kind = FaultKind::inventoryIdMissing, .place = at(section, idKey), .number = id});
        }
        const CString sizeKey = formatText("Size.%d", j);
        const CString size = inventory_.readString(section, sizeKey, "");
        if (size.isEmpty()) {
            return fail(6,
                        {.kind = FaultKind::inventorySizeMissing, .place = at(section, sizeKey)});
        }
        const CString type = inventory_.readString(section, formatText("Type.%d", j), "");
        if (!controller.addDrive(channel, id, size.toInt(), type)) {
            Fault fault{.kind = FaultKind::inventoryPositionInvalid,
                        .place = at(section, channelKey)};
            fault.possible =
                formatText("channel %s, id %s", rangeWords(0, RAIDController::channels - 1).c_str(),
                           rangeWords(0, RAIDController::ids - 1).c_str());
            fault.place.channel = channel;
            fault.place.id = id;
            return fail(8, fault);
        }
        return true;
    }

    [[nodiscard]] FaultPlace at(const CString& section, const CString& keyword) const {
        return {.file = inventory_.name(), .section = section, .keyword = keyword};
    }

    bool fail(int number, const Fault& fault) {
        report_.fault(fault);
        report_.tracef("Exiting ControllerList::initialize(2), returning false(%d)\n", number);
        return false;
    }

    IniFile& inventory_;
    Report& report_;
    CString section_;
    std::int32_t type_ = controller_type::none;
    std::int32_t subtype_ = subtypeNotSet;
};

constexpr auto mostControllers = static_cast<std::int32_t>(ControllerList::maxControllers);

} // namespace

RAIDController* ControllerList::controller(std::size_t i) {
    return i < controllers_.size() ? &controllers_[i] : nullptr;
}

const RAIDController* ControllerList::controller(std::size_t i) const {
    return i < controllers_.size() ? &controllers_[i] : nullptr;
}

RAIDController* ControllerList::add(RAIDController controller) {
    if (controllers_.size() == maxControllers) {
        return nullptr;
    }
    controllers_.reserve(maxControllers); // what was handed out stays where it is
    return &controllers_.emplace_back(std::move(controller));
}

bool ControllerList::initialize(IniFile& inventory, Report& report) {
    report.trace("Entering ControllerList::initialize(2)\n");
    const auto fail = [&](int exit, const Fault& fault) {
        report.fault(fault);
        report.tracef("Exiting ControllerList::initialize(2), returning false(%d)\n", exit);
        return false;
    };
    if (inventory.loading() == IniFile::Loading::inPart) {
        return fail(9,
                    {.kind = FaultKind::inventoryUnreadable, .place = {.file = inventory.name()}});
    }
    const FaultPlace place{
        .file = inventory.name(), .section = "System", .keyword = "Total_Number_Of_Controllers"};
    const std::int32_t total = inventory.readInteger(place.section, place.keyword, 0);
    const auto wrongTotal = [&](FaultKind kind) {
        return Fault{.kind = kind,
                     .place = place,
                     .number = total,
                     .possible = rangeWords(1, mostControllers)};
    };
    if (total < 1) {
        return fail(1, wrongTotal(FaultKind::inventoryWithoutControllers));
    }
    if (total > static_cast<std::int32_t>(maxControllers)) {
        return fail(7, wrongTotal(FaultKind::inventoryTooManyControllers));
    }
    for (std::size_t n = 1; n <= static_cast<std::size_t>(total); ++n) {
        InventoryReader reader(inventory, report, n);
        if (!reader.readModel() || !reader.fill(*add())) {
            return false;
        }
    }
    setControllerScanOrders(report);
    report.trace("Exiting ControllerList::initialize(2), returning true\n");
    return true;
}

std::optional<Machine> ControllerList::initialize(PCI_DevList_VC& devices,
                                                  std::unique_ptr<Tool> detector, Report& report) {
    report.trace("Entering ControllerList::initialize\n");
    devices.collect();
    devices.reset();
    std::optional<Machine> machine = ZOLEXSupport::gatherHardwareInfo(std::move(detector), report);
    if (!machine) {
        report.trace("Machine type and serial number could not be obtained.\n");
    }
    devices.reset();
    report.tracef("Total number of PCI devices=%d\n", static_cast<int>(devices.count()));
    bool tooMany = false;
    while (const PciDevice* device = devices.next()) {
        const PciRow row = findRow(*device);
        if (row.type != controller_type::none && !addFromPci(*device, row, report)) {
            tooMany = true;
        }
    }
    if (tooMany) {
        report.fault({.kind = FaultKind::tooManyControllers, .number = mostControllers});
    }
    setControllerScanOrders(report);
    report.trace("Exiting ControllerList::initialize\n");
    return machine;
}

bool ControllerList::addFromPci(const PciDevice& device, const PciRow& row, Report& report) {
    if (controllers_.size() == maxControllers) {
        return false;
    }
    const CString location = locationText(device);
    report.tracef("Creating new RAIDController with: %s\n", location.c_str());
    report.tracef(" Controller Name: %s, Type: %d, Subtype: %d\n",
                  ControllerCatalogue().getControllerName(row.type, row.subtype).c_str(), row.type,
                  row.subtype);
    RAIDController& controller = *add();
    controller.setType(row.type);
    controller.setSubtype(row.subtype);
    controller.setPciLocation(location);
    controller.setPciFunction(device.function);
    return true;
}

bool ControllerList::initialize(FileSystem& files, const CString& definitionFile, Report& report) {
    report.trace("Entering ControllerList::initialize\n");
    report.notef(level::detail, "Reading RAID controllers from file:  %s\n",
                 definitionFile.c_str());
    IniFile file(files, definitionFile, true);
    if (file.loading() == IniFile::Loading::inPart) {
        report.fault({.kind = FaultKind::definitionUnreadable, .place = {.file = definitionFile}});
        return false;
    }
    if (file.loading() == IniFile::Loading::notOpened) {
        report.fault({.kind = FaultKind::definitionMissing, .place = {.file = definitionFile}});
    }
    for (int i = 0;; ++i) {
        const CString section = formatText("Controller.%d", i);
        if (file.readString(section, "Type", "").isEmpty()) {
            break;
        }
        RAIDController* controller = add();
        if (controller == nullptr) {
            report.fault({.kind = FaultKind::tooManyControllers,
                          .place = {.file = definitionFile, .section = section},
                          .number = mostControllers});
            break;
        }
        controller->setType(file.readInteger(section, "Type", 0));
        controller->setSubtype(file.readInteger(section, "SubType", 0));
    }
    report.notef(level::detail, "Number of controllers read:  %d\n", static_cast<int>(count()));
    setControllerScanOrders(report);
    return true;
}

void ControllerList::setControllerScanOrders(Report& report) {
    constexpr std::size_t families = 23;
    report.trace("Entering ControllerList::setControllerScanOrders\n");
    const ControllerCatalogue catalogue;
    std::array<std::int32_t, families> next{};
    next.fill(1);
    for (RAIDController& controller : controllers_) {
        const auto family = static_cast<std::size_t>(catalogue.getUtilityFamily(controller.type()));
        controller.setScanOrder(next[family]++);
    }
    report.trace("Exiting ControllerList::setControllerScanOrders\n");
}

void ControllerList::reorderByBusNumber() {
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < controllers_.size(); ++i) {
        if (traitsOf(controllers_[i].type()).orderedByBus) {
            slots.push_back(i);
        }
    }
    // Only neighbours are exchanged, so that controllers of one bus keep their order.
    for (std::size_t sorted = 0; sorted < slots.size(); ++sorted) {
        for (std::size_t next = 1; next < slots.size(); ++next) {
            auto& first = controllers_[slots[next - 1]];
            auto& second = controllers_[slots[next]];
            if (second.busNumber() < first.busNumber()) {
                std::swap(first, second);
                first.swapIdentity(second);
            }
        }
    }
}

CString ControllerList::dumpText(bool withConfiguration) const {
    CString text;
    for (const RAIDController& controller : controllers_) {
        text.append(formatText("**** Dumping RAIDController at address %p\n",
                               static_cast<const void*>(&controller)));
        text.append(show::dumpText(controller, withConfiguration));
    }
    return text;
}

} // namespace zolex
