#include "readers/DiskInformation.h"

#include "foundation/Fault.h"
#include "foundation/IniFile.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"
#include "show/Dumps.h"

#include <cstddef>

namespace zolex {

namespace {

CString nameOf(const RAIDController& controller) {
    return ControllerCatalogue::getControllerName(controller.type(), controller.subtype());
}

void readDrives(IniFile& definition, const CString& section, RAIDController& controller) {
    for (std::int32_t channel = RAIDController::firstChannel; channel < RAIDController::channels;
         ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            const CString key = formatText("C%dS%d", channel, id);
            if (!definition.readString(section, key, "").isEmpty()) {
                controller.setSize(channel, id, definition.readInteger(section, key, 0));
            }
        }
    }
}

} // namespace

bool DiskInformation::readDiskInformation(ControllerList& controllers,
                                          std::span<const std::vector<std::string>> listings) {
    report_.trace("Entering DiskInformation::readDiskInformation\n");
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const Listings own = i < listings.size() ? Listings(listings[i]) : Listings();
        if (!readController(*controllers.controller(i), static_cast<std::int32_t>(i + 1), own)) {
            return false;
        }
    }
    report_.trace("Exiting DiskInformation::readDiskInformation(4)\n");
    return true;
}

bool DiskInformation::readController(RAIDController& controller, std::int32_t number,
                                     Listings listings) {
    report_.notef(level::progress, "\tController %d:  %s\n", number, nameOf(controller).c_str());
    const ReaderEntry* entry = findReader(controller.type());
    if (entry == nullptr) {
        report_.fault({.kind = FaultKind::typeWithoutReader,
                       .place = {.model = nameOf(controller), .controller = number},
                       .number = controller.type()});
        report_.trace("Exiting DiskInformation::readDiskInformation(1)\n");
        return false;
    }
    detail_.number = number;
    const std::unique_ptr<ConfigurationReader> reader = createReader(*entry);
    if (!reader) {
        fail(FaultKind::listingMissing, controller);
        report_.trace("Exiting DiskInformation::readDiskInformation(2)\n");
        return false;
    }
    if (!parseDiskInfo(*reader, controller, listings)) {
        report_.trace("Exiting DiskInformation::readDiskInformation(3)\n");
        return false;
    }
    return true;
}

std::unique_ptr<ConfigurationReader> DiskInformation::createReader(const ReaderEntry& entry) {
    report_.trace(entry.creationTrace);
    return entry.create(detail_, report_);
}

bool DiskInformation::parseDiskInfo(ConfigurationReader& reader, RAIDController& controller,
                                    Listings listings) {
    report_.trace("Entering DiskInformation::parseDiskInfo\n");
    if (listings.empty()) {
        fail(FaultKind::listingMissing, controller);
        return false;
    }
    if (!reader.readConfiguration(controller, listings)) {
        fail(FaultKind::listingFormat, controller);
        return false;
    }
    if (report_.shows(level::detail)) {
        report_.note(level::detail, show::dumpText(controller, detail_.layout));
    }
    report_.trace("Exiting DiskInformation::parseDiskInfo, returning true\n");
    return true;
}

bool DiskInformation::readDefinition(ControllerList& controllers, FileSystem& files,
                                     const CString& fileName) {
    report_.trace("Entering DiskInformation::readDiskInformation\n");
    report_.notef(level::detail, "Reading drives from file:  %s\n", fileName.c_str());
    IniFile definition(files, fileName, true);
    if (definition.loading() != IniFile::Loading::whole) {
        report_.fault({.kind = FaultKind::definitionUnreadable, .place = {.file = fileName}});
        return false;
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const auto number = static_cast<std::int32_t>(i);
        const CString section = formatText("Controller.%d", number);
        if (definition.readString(section, "Type", "").isEmpty()) {
            break;
        }
        RAIDController& controller = *controllers.controller(i);
        report_.notef(level::detail, "\tController %d:  %s\n", number + 1,
                      nameOf(controller).c_str());
        readDrives(definition, section, controller);
    }
    return true;
}

void DiskInformation::fail(FaultKind kind, const RAIDController& controller) {
    report_.fault(
        {.kind = kind, .place = {.model = nameOf(controller), .controller = detail_.number}});
}

} // namespace zolex
