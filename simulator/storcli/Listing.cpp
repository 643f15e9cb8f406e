#include "storcli/Listing.h"

#include "model/Text.h"
#include "storcli/Words.h"

#include <algorithm>
#include <string>

namespace zolex_sim::storcli {
namespace {

constexpr const char* dash = "-";

bool before(const View& view, Version version) {
    return view.controller.version < version;
}

/// A text with blanks behind it, as wide as the field of the drive's own data.
std::string padded(const std::string& text, std::size_t width) {
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text;
}

bool isSpare(const Drive& drive) {
    return drive.state == DriveState::globalSpare || drive.state == DriveState::dedicatedSpare;
}

std::string driveWord(const View& view, const Drive& drive) {
    const bool unheardOf = view.effect != nullptr &&
                           view.effect->kind == EffectKind::wordOfTomorrow &&
                           drive.place == affectedDrive(view);
    return unheardOf ? "Zzzz" : stateText(drive.state);
}

std::string driveSize(const View& view, const Drive& drive) {
    return sizeText(view.controller, drive.sectors, drive.sectorBytes, true);
}

std::string blocksText(const View& view, std::int64_t blocks) {
    return sizeText(view.controller, blocks, 512, false);
}

Value groupOf(const View& view, const Drive& drive) {
    if (drive.state == DriveState::foreign) {
        return "F";
    }
    if (const std::optional<MemberPlace> place = view.controller.placeOf(drive.place)) {
        return place->array;
    }
    if (drive.state != DriveState::dedicatedSpare) {
        return dash;
    }
    if (drive.groups.size() == 1 && !before(view, Version::v1017)) {
        return drive.groups.front();
    }
    std::vector<std::string> numbers;
    for (const std::size_t group : drive.groups) {
        numbers.push_back(std::to_string(group));
    }
    return join(numbers, ",");
}

/// A row of the topology.
struct TopologyRow {
    Value group = dash;
    Value span = dash;
    Value row = dash;
    Value place = dash;
    Value deviceId = dash;
    std::string type;
    std::string state;
    std::string background = dash;
    std::string size;
    bool configured = true; ///< false: a spare, of which little is told
    std::string freeSpace = dash;
};

Value rowValue(const View& view, const TopologyRow& row) {
    Value value = Value::object();
    value.add("DG", row.group).add("Arr", row.span).add("Row", row.row);
    value.add("EID:Slot", row.place).add("DID", row.deviceId).add("Type", row.type);
    value.add("State", row.state).add("BT", row.background).add("Size", row.size);
    value.add("PDC", row.configured ? "dflt" : dash);
    value.add("PI", row.configured ? "N" : dash).add("SED", row.configured ? "N" : dash);
    value.add("DS3", row.configured ? "none" : dash).add("FSpace", row.freeSpace);
    if (!before(view, Version::v1017)) {
        value.add("TR", "N");
    }
    return value;
}

TopologyRow driveTopology(const View& view, const Drive& drive) {
    TopologyRow row;
    if (drive.isThere()) {
        row.place = placeText(drive.place);
        row.deviceId = drive.deviceId;
    }
    row.type = "DRIVE";
    row.state = driveWord(view, drive);
    row.size = driveSize(view, drive);
    return row;
}

void addSpareRow(const View& view, const Drive& drive, const Value& group, Value& rows) {
    TopologyRow row = driveTopology(view, drive);
    row.group = group;
    row.configured = false;
    rows.add(rowValue(view, row));
}

void addSpanRows(const View& view, std::size_t group, std::size_t span, const TopologyRow& whole,
                 Value& rows) {
    const Controller& controller = view.controller;
    const std::vector<DriveLocation>& members = controller.groups[group].spans[span];
    const Level level = controller.levelOf(group);
    TopologyRow row = whole;
    row.span = span;
    row.type = std::string(rulesOf(rulesOf(level).inSpan).name);
    row.state = stateText(controller.stateOf(level, members));
    row.size = blocksText(view, controller.capacity(level, {members}));
    rows.add(rowValue(view, row));
    for (std::size_t arm = 0; arm < members.size(); ++arm) {
        const Drive& drive = *controller.driveAt(members[arm]);
        TopologyRow member = driveTopology(view, drive);
        member.group = group;
        member.span = span;
        member.row = arm;
        const bool busy = drive.state == DriveState::rebuild || drive.state == DriveState::copyback;
        member.background = busy ? "Y" : "N";
        rows.add(rowValue(view, member));
    }
}

void addGroupRows(const View& view, std::size_t group, Value& rows) {
    const Controller& controller = view.controller;
    const Level level = controller.levelOf(group);
    TopologyRow row;
    row.group = group;
    row.type = std::string(rulesOf(level).name);
    row.state = stateText(controller.stateOf(level, group));
    row.background = "N";
    row.size = blocksText(view, controller.capacity(level, controller.groups[group].spans));
    row.freeSpace = controller.roomLeft(group, level) > 0 ? "Y" : "N";
    rows.add(rowValue(view, row));
    for (std::size_t span = 0; span < controller.groups[group].spans.size(); ++span) {
        addSpanRows(view, group, span, row, rows);
    }
    for (const Drive& drive : controller.drives) {
        if (drive.state == DriveState::dedicatedSpare &&
            std::find(drive.groups.begin(), drive.groups.end(), group) != drive.groups.end()) {
            addSpareRow(view, drive, group, rows);
        }
    }
}

bool needsAttention(const Controller& controller) {
    return std::any_of(controller.volumes.begin(), controller.volumes.end(),
                       [&](const Volume& volume) {
                           return controller.stateOf(volume.level, volume.group) !=
                                  VolumeState::optimal;
                       }) ||
           std::any_of(controller.drives.begin(), controller.drives.end(), [](const Drive& drive) {
               return drive.state == DriveState::bad || drive.state == DriveState::failed ||
                      drive.smartAlert;
           });
}

std::string pciText(const PciFunction& pci) {
    return formatted("%02x:%02x:%02x:%02x", static_cast<unsigned>(pci.domain), pci.bus, pci.device,
                     pci.function);
}

Value basics(const View& view) {
    const Controller& controller = view.controller;
    Value value = Value::object();
    value.add("Controller", view.number).add("Model", controller.model);
    value.add("Serial Number", controller.serialNumber);
    value.add("Current Controller Date/Time", "03/02/2026, 08:14:10");
    value.add("Current System Date/time", "03/02/2026, 09:14:12");
    value.add("SAS Address",
              formatted("%llx", static_cast<unsigned long long>(controller.sasAddress)));
    value.add("PCI Address", pciText(controller.pci));
    value.add("Mfg Date", "02/11/25").add("Rework Date", "00/00/00");
    return value.add("Revision No", "01006");
}

Value versions(const Controller& controller) {
    Value value = Value::object();
    value.add("Firmware Package Build", controller.firmwarePackage);
    value.add("Firmware Version", controller.firmware);
    value.add("CPLD Version", "26515-00A").add("Bios Version", controller.bios);
    value.add("HII Version", "07.26.03.00").add("NVDATA Version", "5.2600.00-0001");
    value.add("Boot Block Version", "7.02.00.00-0021").add("Driver Name", "megaraid_sas");
    return value.add("Driver Version", "07.719.03.00-rc1");
}

void addBusIds(const Controller& controller, Value& value) {
    const PciFunction& pci = controller.pci;
    value.add("Vendor Id", Value::identifier(pci.vendorId));
    value.add("Device Id", Value::identifier(pci.deviceId));
    value.add("SubVendor Id", Value::identifier(pci.subsystemVendorId));
    value.add("SubDevice Id", Value::identifier(pci.subsystemId));
    value.add("Host Interface", "PCI-E").add("Device Interface", "SAS-12G");
    value.add("Bus Number", pci.bus).add("Device Number", pci.device);
    value.add("Function Number", pci.function).add("Domain ID", pci.domain);
}

Value bus(const Controller& controller) {
    Value value = Value::object();
    addBusIds(controller, value);
    return value;
}

Value status(const Controller& controller) {
    Value value = Value::object();
    value.add("Controller Status", needsAttention(controller) ? "Needs Attention" : "Optimal");
    value.add("Memory Correctable Errors", 0).add("Memory Uncorrectable Errors", 0);
    value.add("ECC Bucket Count", 0);
    value.add("Any Offline VD Cache Preserved", controller.preservedCache ? "Yes" : "No");
    value.add(controller.branding == Branding::hpe ? "Energy Pack Status" : "BBU Status",
              controller.battery == Battery::failed ? 32 : 0);
    value.add("PD Firmware Download in progress", "No").add("Lock Key Assigned", "No");
    value.add("Controller shutdown required", "No");
    value.add("Controller has booted into safe mode", "No");
    return value.add("Current Personality", controller.hostAdapter ? "HBA-Mode " : "RAID-Mode ");
}

Value adapterOperations(const Controller& controller) {
    Value value = Value::object();
    for (const char* name :
         {"Rebuild Rate", "CC Rate", "BGI Rate ", "Dedicated Hot Spare", "Revertible Hot Spares",
          "Foreign Config Import", "Global Hot Spares"}) {
        value.add(name, "Yes");
    }
    value.add("Support JBOD", controller.supportsJbod ? "Yes" : "No");
    return value.add("Support Security", "No").add("Support Config Auto Balance", "No");
}

Value driveOperations() {
    Value value = Value::object();
    value.add("Force Online", "Yes").add("Force Offline", "Yes");
    return value.add("Force Rebuild", "Yes").add("Deny Locate", "No");
}

Value volumeOperations() {
    Value value = Value::object();
    for (const char* name :
         {"Read Policy", "Write Policy", "IO Policy", "Access Policy", "Disk Cache Policy"}) {
        value.add(name, "Yes");
    }
    return value;
}

Value hardware(const Controller& controller) {
    Value value = Value::object();
    value.add("ChipRevision", " A0").add("Backend Port Count", 16);
    value.add("BBU", controller.battery == Battery::none ? "Absent" : "Present");
    value.add("Alarm", "Absent").add("On Board Memory Size", "8192MB");
    value.add("CacheVault Flash Size", "33.695 GB").add("Temperature Sensor for ROC", "Present");
    value.add("Temperature Sensor for Controller", "Absent");
    return value.add("ROC temperature(Degree Celsius)", 57);
}

Value policies(const Controller& controller) {
    Value table = Value::list();
    const auto row = [](const char* name, const std::string& current, const char* usual) {
        Value value = Value::object();
        return value.add("Policy", name).add("Current", current).add("Default", usual);
    };
    table.add(row("Rebuild Rate", formatted("%d %%", controller.rebuildRate), "30%"));
    table.add(row("Check Consistency Rate", "30 %", "30%"));
    table.add(row("Cache Flush Interval", "4s", ""));
    Value value = Value::object();
    value.add("Policies Table", table).add("Flush Time(Default)", "4s");
    value.add("Drive Coercion Mode", controller.coercion).add("Auto Rebuild", "On");
    value.add("Restore Hot Spare on Insertion", "Off");
    return value.add("Maintain PD Fail History", "Off");
}

std::string coercionText(std::string mode) {
    const std::size_t unit = mode.find_first_not_of("0123456789");
    if (unit != 0 && unit != std::string::npos) {
        mode.insert(unit, " ");
    }
    return mode;
}

Value defaults(const Controller& controller) {
    Value value = Value::object();
    value.add("Strip Size", stripText(controller.defaultStripKb));
    value.add("Write Policy", std::string(wordOf(controller.defaultCache)));
    value.add("Read Policy", controller.defaultReadAhead ? "RA" : "No Read Ahead");
    value.add("Cache When BBU Bad", "Off").add("Cached IO", "Off");
    return value.add("Coercion Mode", coercionText(controller.coercion));
}

std::string levelsText(const Controller& controller) {
    std::vector<std::string> names;
    for (const Level level : controller.levels) {
        const char* about = level == Level::raid1    ? "(2 or more drives)"
                            : level == Level::raid10 ? "(2 or more drives per span)"
                                                     : "";
        names.push_back(std::string(rulesOf(level).name) + about);
    }
    return join(names, ", ");
}

Value capabilities(const Controller& controller) {
    const auto allowed = [](bool mixes) { return mixes ? "Allowed" : "Not Allowed"; };
    Value value = Value::object();
    value.add("Supported Drives", "SAS, SATA, NVMe");
    value.add("RAID Level Supported", levelsText(controller));
    value.add(controller.branding == Branding::perc ? "Enable SystemPD" : "Enable JBOD",
              controller.jbodOn ? "Yes" : "No");
    value.add("Mix in Enclosure", "Allowed");
    value.add("Mix of SAS/SATA of HDD type in VD", allowed(controller.mixesSasSataDisks));
    value.add("Mix of SAS/SATA of SSD type in VD", allowed(controller.mixesSasSataSsds));
    value.add("Mix of SSD/HDD in VD", allowed(controller.mixesMedia));
    value.add("Max Arms Per VD", controller.maxArms);
    value.add("Max Spans Per VD", controller.maxSpans).add("Max Arrays", 240);
    value.add("Max VD per array", controller.maxVolumesPerGroup);
    value.add("Max Number of VDs", controller.maxVolumes);
    value.add("Min Strip Size", stripText(controller.minStripKb));
    return value.add("Max Strip Size", stripText(controller.maxStripKb));
}

Value enclosureRows(const View& view) {
    Value rows = Value::list();
    for (const Enclosure& enclosure : view.controller.enclosures) {
        const auto drives = std::count_if(
            view.controller.drives.begin(), view.controller.drives.end(), [&](const Drive& drive) {
                return drive.isThere() && drive.place.enclosure == enclosure.id;
            });
        Value row = Value::object();
        row.add("EID", enclosure.id).add("State", "OK").add("Slots", enclosure.slots);
        row.add("PD", static_cast<std::int64_t>(drives)).add("PS", 0).add("Fans", 0);
        row.add("TSs", 0).add("Alms", 0).add("SIM", 0).add("Port#", dash);
        if (view.controller.branding != Branding::hpe && !before(view, Version::v1017)) {
            row.add("ProdID", enclosure.product).add("VendorSpecific", " ");
        }
        rows.add(row);
    }
    return rows;
}

Value batteryRows(const Controller& controller) {
    Value row = Value::object();
    row.add("Model", "CVPM05");
    row.add("State", controller.battery == Battery::optimal ? "Optimal" : "Failed");
    row.add("Temp", "31C").add("Mode", dash).add("MfgDate", "2025/01/20");
    return Value::list().add(row);
}

/// The lists of groups, virtual drives, drives and so on. A list without rows is left out.
void addLists(const View& view, Value& data) {
    const Controller& controller = view.controller;
    data.add(controller.branding == Branding::hpe ? "Arrays" : "Drive Groups",
             controller.groups.size());
    Value topology = topologyRows(view);
    if (!topology.isEmpty()) {
        data.add("TOPOLOGY", std::move(topology));
    }
    data.add("Virtual Drives", controller.volumes.size());
    if (!controller.volumes.empty()) {
        Value rows = Value::list();
        for (const Volume& volume : controller.volumes) {
            rows.add(volumeRow(view, volume));
        }
        data.add("VD LIST", std::move(rows));
    }
    data.add("Physical Drives", controller.driveCount());
    if (controller.driveCount() > 0) {
        Value rows = Value::list();
        for (const Drive& drive : controller.drives) {
            if (drive.isThere()) {
                rows.add(driveRow(view, drive));
            }
        }
        data.add("PD LIST", std::move(rows));
    }
    if (!controller.enclosures.empty()) {
        data.add("Enclosures", controller.enclosures.size());
        data.add("Enclosure LIST", enclosureRows(view));
    }
    if (controller.battery != Battery::none) {
        data.add("Cachevault_Info", batteryRows(controller));
    }
}

Value allData(const View& view) {
    const Controller& controller = view.controller;
    Value data = Value::object();
    data.add("Basics", basics(view)).add("Version", versions(controller));
    data.add("Bus", bus(controller));
    data.add("Pending Images in Flash", Value::object().add("Image name", "No pending images"));
    data.add("Status", status(controller));
    data.add("Supported Adapter Operations", adapterOperations(controller));
    data.add(controller.branding == Branding::hpe ? "Supported Drive Operations"
                                                  : "Supported PD Operations",
             driveOperations());
    data.add("Supported VD Operations", volumeOperations());
    data.add("HwCfg", hardware(controller)).add("Policies", policies(controller));
    data.add("Defaults", defaults(controller)).add("Capabilities", capabilities(controller));
    return data;
}

Value briefData(const View& view) {
    const Controller& controller = view.controller;
    Value data = Value::object();
    data.add("Product Name", controller.model).add("Serial Number", controller.serialNumber);
    data.add("SAS Address",
             formatted("%llx", static_cast<unsigned long long>(controller.sasAddress)));
    data.add("PCI Address", pciText(controller.pci));
    data.add("System Time", "03/02/2026 09:14:12").add("Mfg. Date", "02/11/25");
    data.add("Controller Time", "03/02/2026 08:14:10");
    data.add("FW Package Build", controller.firmwarePackage);
    data.add("BIOS Version", controller.bios).add("FW Version", controller.firmware);
    data.add("Driver Name", "megaraid_sas").add("Driver Version", "07.719.03.00-rc1");
    data.add("Current Personality", controller.hostAdapter ? "HBA-Mode " : "RAID-Mode ");
    addBusIds(controller, data);
    return data;
}

std::string sectorsText(const View& view, const Drive& drive, std::int64_t sectors) {
    return sizeText(view.controller, sectors, drive.sectorBytes, true) +
           formatted(" [0x%llx Sectors]", static_cast<unsigned long long>(sectors));
}

Value driveStateBlock(const Drive& drive) {
    const int tenths = drive.temperature * 18 + 320;
    Value value = Value::object();
    value.add("Shield Counter", 0).add("Media Error Count", drive.mediaErrors);
    value.add("Other Error Count", drive.otherErrors);
    value.add("Drive Temperature",
              formatted(" %dC (%d.%d0 F)", drive.temperature, tenths / 10, tenths % 10));
    value.add("Predictive Failure Count", drive.predictiveFailures);
    return value.add("S.M.A.R.T alert flagged by drive", drive.smartAlert ? "Yes" : "No");
}

std::string sectorText(const Drive& drive) {
    return drive.sectorBytes == 512 ? "512B" : "4 KB";
}

Value driveAttributes(const View& view, const Drive& drive) {
    const std::string speed = drive.interface == "SATA"   ? "6.0Gb/s"
                              : drive.interface == "NVMe" ? "16.0GT/s"
                                                          : "12.0Gb/s";
    Value value = Value::object();
    value.add("SN", " " + drive.serial).add("Manufacturer Id", padded(drive.vendor, 8));
    value.add("Model Number", padded(drive.model, 16)).add("NAND Vendor", "NA");
    value.add("WWN", formatted("%llX", static_cast<unsigned long long>(drive.wwn)));
    value.add("Firmware Revision", padded(drive.revision, 8));
    value.add("Raw size", sectorsText(view, drive, drive.rawSectors));
    value.add("Coerced size", sectorsText(view, drive, drive.sectors));
    value.add("Non Coerced size", sectorsText(view, drive, drive.nonCoercedSectors()));
    value.add("Device Speed", speed).add("Link Speed", speed).add("Write Cache", "N/A");
    value.add("Logical Sector Size", sectorText(drive)).add("Physical Sector Size", "4 KB");
    return value.add("Connector Name",
                     formatted("C%d.%d x1", drive.place.slot / 8, drive.place.slot % 8 / 4));
}

Value drivePorts(const Drive& drive) {
    Value port = Value::object();
    port.add("Port", 0).add("Status", "Active").add("Linkspeed", "12.0Gb/s");
    port.add("SAS address", formatted("0x%llx", static_cast<unsigned long long>(drive.wwn)));
    return Value::list().add(port);
}

Value driveSettings(const View& view, const Drive& drive) {
    Value value = Value::object();
    if (const std::optional<MemberPlace> place = view.controller.placeOf(drive.place)) {
        value.add("Drive position", formatted("DriveGroup:%zu, Span:%zu, Row:%zu", place->array,
                                              place->span, place->arm));
    }
    value.add("Enclosure position", "1");
    value.add("Connected Port Number", formatted("%d(path0) ", drive.place.slot));
    value.add("Sequence Number", 2).add("Commissioned Spare", isSpare(drive) ? "Yes" : "No");
    value.add("Emergency Spare", "No").add("Successful diagnostics completion on", "N/A");
    value.add("FDE Type", "None");
    for (const char* name : {"SED Capable", "SED Enabled", "Secured", "Locked", "PI Eligible",
                             "Certified", "Wide Port Capable"}) {
        value.add(name, "No");
    }
    return value.add("Port Information", drivePorts(drive));
}

std::string inquiryText(const Drive& drive) {
    std::string text = "00 00 06 12 45 00 00 02 ";
    for (const char c : padded(drive.vendor == "ATA" ? "NORVIK" : drive.vendor, 8)) {
        text += formatted("%02x ", static_cast<unsigned>(static_cast<unsigned char>(c)));
    }
    return text;
}

} // namespace

DriveLocation affectedDrive(const View& view) {
    if (view.effect != nullptr && view.effect->drive) {
        return *view.effect->drive;
    }
    return view.controller.drives.empty() ? DriveLocation{} : view.controller.drives.front().place;
}

Value overviewRow(const View& view) {
    const Controller& controller = view.controller;
    const auto faulty = static_cast<std::int64_t>(std::count_if(
        controller.volumes.begin(), controller.volumes.end(), [&](const Volume& volume) {
            return controller.stateOf(volume.level, volume.group) != VolumeState::optimal;
        }));
    std::int64_t faultyGroups = 0;
    for (std::size_t group = 0; group < controller.groups.size(); ++group) {
        const VolumeState state = controller.stateOf(controller.levelOf(group), group);
        faultyGroups += state == VolumeState::optimal ? 0 : 1;
    }
    Value row = Value::object();
    row.add("Ctl", view.number).add("Model", controller.model).add("Ports", 16);
    row.add("PDs", controller.driveCount()).add("DGs", controller.groups.size());
    row.add("DNOpt", faultyGroups).add("VDs", controller.volumes.size()).add("VNOpt", faulty);
    row.add("BBU", controller.battery == Battery::none      ? "N/A"
                   : controller.battery == Battery::optimal ? "Opt"
                                                            : "Fail");
    row.add("sPR", "On").add("DS", dash).add("EHS", "N").add("ASOs", 3);
    return row.add("Hlth", needsAttention(controller) ? "NdAtn" : "Opt");
}

Value adapterRow(const View& view) {
    const Controller& controller = view.controller;
    Value row = Value::object();
    row.add("Ctl", view.number).add("Model", controller.model).add("AdapterType", "SAS3816(A0)");
    row.add("VendId", formatted("0x%X", controller.pci.vendorId));
    row.add("DevId", formatted("0x%X", controller.pci.deviceId));
    row.add("SubVendId", formatted("0x%X", controller.pci.subsystemVendorId));
    row.add("SubDevId", formatted("0x%X", controller.pci.subsystemId));
    return row.add("PCI Address", pciText(controller.pci));
}

Value controllerData(const View& view, bool all) {
    Value data = all ? allData(view) : briefData(view);
    if (!view.controller.hostAdapter) {
        addLists(view, data);
    }
    return data;
}

Value driveRow(const View& view, const Drive& drive) {
    Value row = Value::object();
    row.add("EID:Slt", placeText(drive.place)).add("DID", drive.deviceId);
    row.add("State", driveWord(view, drive)).add("DG", groupOf(view, drive));
    row.add("Size", driveSize(view, drive)).add("Intf", drive.interface);
    row.add("Med", drive.medium == Medium::solidState ? "SSD" : "HDD");
    row.add("SED", "N").add("PI", "N").add("SeSz", sectorText(drive));
    row.add("Model", padded(drive.model, 16)).add("Sp", isSpare(drive) ? "D" : "U");
    if (!before(view, Version::v1616)) {
        row.add("Type", drive.state == DriveState::jbod ? "JBOD" : dash);
    }
    return row;
}

Value driveDetails(const View& view, const Drive& drive) {
    const std::string name = "Drive " + pathText(view.number, drive.place);
    Value value = Value::object();
    value.add(name + " State", driveStateBlock(drive));
    value.add(name + " Device attributes", driveAttributes(view, drive));
    value.add(name + " Policies/Settings", driveSettings(view, drive));
    return value.add("Inquiry Data", inquiryText(drive));
}

Value volumeRow(const View& view, const Volume& volume) {
    const Controller& controller = view.controller;
    const VolumeState state = controller.stateOf(volume.level, volume.group);
    const bool consistent = volume.consistent && state == VolumeState::optimal;
    Value row = Value::object();
    row.add("DG/VD", formatted("%zu/%d", volume.group, volume.number));
    row.add("TYPE", std::string(rulesOf(volume.level).name)).add("State", stateText(state));
    row.add("Access", "RW").add("Consist", consistent ? "Yes" : "No");
    row.add("Cache", cacheText(controller, volume));
    if (!before(view, Version::v1017)) {
        row.add("Cac", dash);
    }
    row.add("sCC", "ON").add("Size", blocksText(view, volume.blocks));
    return row.add("Name", volume.name);
}

Value memberRows(const View& view, const Volume& volume) {
    Value rows = Value::list();
    for (const std::vector<DriveLocation>& span : view.controller.groups[volume.group].spans) {
        for (const DriveLocation& place : span) {
            const Drive& drive = *view.controller.driveAt(place);
            if (drive.isThere()) {
                rows.add(driveRow(view, drive));
            }
        }
    }
    return rows;
}

Value volumeProperties(const View& view, const Volume& volume) {
    const Controller& controller = view.controller;
    const std::vector<std::vector<DriveLocation>>& spans = controller.groups[volume.group].spans;
    bool rebuilds = false;
    for (const std::vector<DriveLocation>& span : spans) {
        rebuilds = rebuilds || std::any_of(span.begin(), span.end(), [&](const auto& place) {
                       return controller.driveAt(place)->state == DriveState::rebuild;
                   });
    }
    Value value = Value::object();
    value.add("Strip Size", stripText(volume.stripKb));
    value.add("Number of Blocks", volume.blocks).add("VD has Emulated PD", "No");
    value.add("Span Depth", spans.size());
    value.add("Number of Drives Per Span", spans.front().size());
    value.add("Write Cache(initial setting)",
              volume.cache == Cache::writeThrough ? "WriteThrough" : "WriteBack");
    value.add("Disk Cache Policy", "Disk's Default").add("Encryption", "None");
    value.add("Data Protection", "Disabled");
    value.add("Active Operations", rebuilds ? "Rebuild in progress" : "None");
    value.add("Exposed to OS", "Yes").add("OS Drive Name", volume.device);
    constexpr int perDay = 120; // between ten and twelve
    value.add("Creation Date", formatted("%02d-03-2026", 1 + volume.order / perDay % 28));
    value.add("Creation Time",
              formatted("%d:%02d:00 AM", 10 + volume.order % perDay / 60, volume.order % 60));
    value.add("Emulation type", "default").add("Is LD Ready for OS Requests", "Yes");
    return value.add("SCSI NAA Id", volume.naaId);
}

Value topologyRows(const View& view) {
    Value rows = Value::list();
    for (std::size_t group = 0; group < view.controller.groups.size(); ++group) {
        addGroupRows(view, group, rows);
    }
    for (const Drive& drive : view.controller.drives) {
        if (drive.state == DriveState::globalSpare) {
            addSpareRow(view, drive, dash, rows);
        }
    }
    return rows;
}

Value groupData(const View& view) {
    const Controller& controller = view.controller;
    Value data = Value::object();
    Value topology = topologyRows(view);
    if (!topology.isEmpty()) {
        data.add("TOPOLOGY", std::move(topology));
    }
    Value members = Value::list();
    Value unconfigured = Value::list();
    for (const Drive& drive : controller.drives) {
        if (!drive.isThere()) {
            continue;
        }
        const bool member = controller.placeOf(drive.place).has_value();
        (member ? members : unconfigured).add(driveRow(view, drive));
    }
    Value room = Value::list();
    for (std::size_t group = 0; group < controller.groups.size(); ++group) {
        const Level level = controller.levelOf(group);
        if (const std::int64_t left = controller.roomLeft(group, level); left > 0) {
            Value row = Value::object();
            row.add("DG", group).add("Arr", 0).add("Space Id", 0);
            room.add(row.add("Size", blocksText(view, left)));
        }
    }
    if (!members.isEmpty()) {
        data.add("DG Drive LIST", std::move(members));
    }
    data.add("Total Drive Groups", controller.groups.size());
    if (!room.isEmpty()) {
        data.add("FREE SPACE DETAILS", std::move(room));
    }
    if (!unconfigured.isEmpty()) {
        data.add("UN-CONFIGURED DRIVE LIST", std::move(unconfigured));
    }
    return data;
}

std::vector<const ForeignSet*> foreignSets(const Controller& controller) {
    std::vector<const ForeignSet*> found;
    for (const ForeignSet& set : controller.foreignSets) {
        if (std::any_of(set.drives.begin(), set.drives.end(), [&](const DriveLocation& place) {
                return controller.driveAt(place)->state == DriveState::foreign;
            })) {
            found.push_back(&set);
        }
    }
    return found;
}

Value foreignData(const View& view) {
    const std::vector<const ForeignSet*> sets = foreignSets(view.controller);
    const bool newer = !before(view, Version::v3703);
    Value rows = Value::list();
    for (std::size_t i = 0; i < sets.size(); ++i) {
        Value row = Value::object();
        row.add("DG", i).add("EID:Slot", dash);
        row.add("Type", std::string(rulesOf(sets[i]->level).name)).add("State", "Frgn");
        row.add("Size", blocksText(view, sets[i]->blocks)).add("NoVDs", sets[i]->volumes);
        rows.add(row);
    }
    Value data = Value::object();
    data.add(newer ? "FOREIGN DG LIST" : "FOREIGN CONFIGURATION", std::move(rows));
    if (newer) {
        Value drives = Value::list();
        for (const Drive& drive : view.controller.drives) {
            if (drive.state == DriveState::foreign) {
                Value row = Value::object();
                row.add("EID:Slt", placeText(drive.place)).add("DID", drive.deviceId);
                row.add("State", "Foreign").add("DG", "F").add("Size", driveSize(view, drive));
                row.add("Intf", drive.interface);
                drives.add(row.add("Med", drive.medium == Medium::solidState ? "SSD" : "HDD"));
            }
        }
        data.add("FOREIGN PD LIST", std::move(drives));
    }
    return data.add("Total foreign Drive Groups", sets.size());
}

} // namespace zolex_sim::storcli
