#include "inventory/ControllerList.h"

#include "controllers/Application.h"
#include "foundation/IniFile.h"
#include "inventory/ZOLEXSupport.h"
#include "model/TypeTraits.h"
#include "show/Dumps.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zolex {

namespace {

constexpr const char* tooManyControllers =
    "More than 36 RAID controllers found; only the first 36 are used.\n";

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

/// Reads the sections of one controller of an inventory file. Each step is false after a fault that
/// it has reported.
class InventoryReader {
  public:
    InventoryReader(IniFile& inventory, Application& application, std::size_t number)
        : inventory_(inventory), application_(application), printer_(application.printer()),
          section_(formatText("RAIDController.%d", static_cast<int>(number))) {}

    bool readModel() {
        const CString model = inventory_.readString(section_, "Model", "");
        if (model.isEmpty()) {
            reportString(section_, "Model", model);
            return fail(2);
        }
        type_ = application_.catalogue().getControllerType(model);
        subtype_ = application_.catalogue().getControllerSubtype(model);
        printer_.tracef("Processing controller type=%d, sub-type=%d\n", type_, subtype_);
        if (type_ < 0) {
            printer_.trace("Non-supported Controller Found in Inventory File\n");
            printer_.errorBlock("Non-supported Controller Found in Inventory File\n");
            return fail(3);
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
            printer_.printfAlways(
                "ReadInteger for section='%s', item='%s' returned Drive channel=%d\n",
                section.c_str(), channelKey.c_str(), channel);
            return fail(4);
        }
        const CString idKey = formatText("ID.%d", j);
        const std::int32_t id = inventory_.readInteger(section, idKey, -1);
        if (id < 0) {
            printer_.printfAlways("ReadInteger for section='%s', item='%s' returned Drive id=%d\n",
                                  section.c_str(), idKey.c_str(), id);
            return fail(5);
        }
        const CString sizeKey = formatText("Size.%d", j);
        const CString size = inventory_.readString(section, sizeKey, "");
        if (size.isEmpty()) {
            reportString(section, sizeKey, size);
            return fail(6);
        }
        const CString type = inventory_.readString(section, formatText("Type.%d", j), "");
        if (!controller.addDrive(channel, id, size.toInt(), type)) {
            printer_.errorBlockf(
                "Drive position out of range in Inventory File:  channel=%d, id=%d\n", channel, id);
            return fail(8);
        }
        return true;
    }

    void reportString(const CString& section, const CString& key, const CString& value) {
        printer_.printfAlways("ReadString for section='%s', item='%s' returned value=%s\n",
                              section.c_str(), key.c_str(), value.c_str());
    }

    bool fail(int number) {
        printer_.tracef("Exiting ControllerList::initialize(2), returning false(%d)\n", number);
        return false;
    }

    IniFile& inventory_;
    Application& application_;
    Printer& printer_;
    CString section_;
    std::int32_t type_ = controller_type::none;
    std::int32_t subtype_ = subtypeNotSet;
};

} // namespace

RAIDController* ControllerList::controller(std::size_t i) const {
    return i < controllers_.size() ? controllers_[i].get() : nullptr;
}

RAIDController* ControllerList::add(std::unique_ptr<RAIDController> controller) {
    if (count_ == maxControllers) {
        return nullptr;
    }
    controllers_[count_] = std::move(controller);
    return controllers_[count_++].get();
}

bool ControllerList::initialize(IniFile& inventory, Application& application) {
    Printer& printer = application.printer();
    printer.trace("Entering ControllerList::initialize(2)\n");
    if (inventory.loading() == IniFile::Loading::inPart) {
        printer.errorBlockf("Could not read inventory file:  %s\n", inventory.name().c_str());
        printer.trace("Exiting ControllerList::initialize(2), returning false(9)\n");
        return false;
    }
    const std::int32_t total = inventory.readInteger("System", "Total_Number_Of_Controllers", 0);
    if (total < 1) {
        printer.errorBlock("No Controllers Found in Inventory File\n");
        printer.trace("Exiting ControllerList::initialize(2), returning false(1)\n");
        return false;
    }
    if (total > static_cast<std::int32_t>(maxControllers)) {
        printer.errorBlock("More than 36 controllers found in Inventory File\n");
        printer.trace("Exiting ControllerList::initialize(2), returning false(7)\n");
        return false;
    }
    for (std::size_t n = 1; n <= static_cast<std::size_t>(total); ++n) {
        InventoryReader reader(inventory, application, n);
        if (!reader.readModel() || !reader.fill(*add(std::make_unique<RAIDController>()))) {
            return false;
        }
    }
    setControllerScanOrders(application);
    printer.trace("Exiting ControllerList::initialize(2), returning true\n");
    return true;
}

bool ControllerList::initialize(Application& application) {
    Printer& printer = application.printer();
    printer.trace("Entering ControllerList::initialize\n");
    if (!application.settings.controllerDefinitionFile.isEmpty()) {
        return initializeFromDefinition(application);
    }
    const auto devices = application.platform().pciDevices();
    devices->collect();
    devices->reset();
    if (!ZOLEXSupport::gatherHardwareInfo(application)) {
        application.machineInformationMissing = true;
        printer.trace("Machine type and serial number could not be obtained.\n");
    }
    devices->reset();
    printer.tracef("Total number of PCI devices=%d\n", static_cast<int>(devices->count()));
    bool tooMany = false;
    while (const PciDevice* device = devices->next()) {
        const PciRow row = findRow(*device);
        if (row.type != controller_type::none && !addFromPci(application, *device, row)) {
            tooMany = true;
        }
    }
    if (tooMany) {
        printer.errorBlock(tooManyControllers);
    }
    setControllerScanOrders(application);
    printer.trace("Exiting ControllerList::initialize\n");
    return true;
}

bool ControllerList::addFromPci(Application& application, const PciDevice& device,
                                const PciRow& row) {
    if (count_ == maxControllers) {
        return false;
    }
    Printer& printer = application.printer();
    const CString location = locationText(device);
    printer.tracef("Creating new RAIDController with: %s\n", location.c_str());
    printer.tracef(" Controller Name: %s, Type: %d, Subtype: %d\n",
                   application.controllerName(row.type, row.subtype).c_str(), row.type,
                   row.subtype);
    RAIDController* controller = add(std::make_unique<RAIDController>());
    controller->setType(row.type);
    controller->setSubtype(row.subtype);
    controller->setPciLocation(location);
    controller->setPciFunction(device.function);
    return true;
}

bool ControllerList::initializeFromDefinition(Application& application) {
    Printer& printer = application.printer();
    const CString& name = application.settings.controllerDefinitionFile;
    printer.printf(level::detail, "Reading RAID controllers from file:  %s\n", name.c_str());
    IniFile file(application.platform().files(), name, true);
    if (file.loading() == IniFile::Loading::inPart) {
        printer.errorBlockf("Could not read controller-definition file:  %s\n", name.c_str());
        return false;
    }
    if (file.loading() == IniFile::Loading::notOpened) {
        application.platform().console().writeError(
            formatText("Could not open controller-definition file:  %s\n", name.c_str()));
    }
    for (int i = 0;; ++i) {
        const CString section = formatText("Controller.%d", i);
        if (file.readString(section, "Type", "").isEmpty()) {
            break;
        }
        RAIDController* controller = add(std::make_unique<RAIDController>());
        if (controller == nullptr) {
            printer.errorBlock(tooManyControllers);
            break;
        }
        controller->setType(file.readInteger(section, "Type", 0));
        controller->setSubtype(file.readInteger(section, "SubType", 0));
    }
    printer.printf(level::detail, "Number of controllers read:  %d\n", static_cast<int>(count_));
    setControllerScanOrders(application);
    return true;
}

void ControllerList::setControllerScanOrders(Application& application) {
    constexpr std::size_t families = 23;
    Printer& printer = application.printer();
    printer.trace("Entering ControllerList::setControllerScanOrders\n");
    std::array<std::int32_t, families> next{};
    next.fill(1);
    for (const auto& controller : controllers_) {
        if (controller) {
            const auto family = static_cast<std::size_t>(
                application.catalogue().getUtilityFamily(controller->type()));
            controller->setScanOrder(next[family]++);
        }
    }
    printer.trace("Exiting ControllerList::setControllerScanOrders\n");
}

void ControllerList::reorderByBusNumber() {
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < count_; ++i) {
        if (traitsOf(controllers_[i]->type()).orderedByBus) {
            slots.push_back(i);
        }
    }
    // Only neighbours are exchanged, so that controllers of one bus keep their order.
    for (std::size_t sorted = 0; sorted < slots.size(); ++sorted) {
        for (std::size_t next = 1; next < slots.size(); ++next) {
            auto& first = controllers_[slots[next - 1]];
            auto& second = controllers_[slots[next]];
            if (second->busNumber() < first->busNumber()) {
                std::swap(first, second);
                first->swapIdentity(*second);
            }
        }
    }
}

void ControllerList::dump(Application& application, bool withConfiguration) const {
    Printer& printer = application.printer();
    for (std::size_t i = 0; i < count_; ++i) {
        printer.printfAlways("**** Dumping RAIDController at address %p\n",
                             static_cast<const void*>(controllers_[i].get()));
        printer.printAlways(show::dumpText(*controllers_[i], withConfiguration));
    }
}

} // namespace zolex
