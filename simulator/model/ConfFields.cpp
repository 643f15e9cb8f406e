#include "model/ConfFields.h"

#include <string>

namespace zolex_sim {
namespace {

constexpr int maxChannel = 255;
constexpr int maxDevice = 255;

DriveLocation readChannelPlace(Fields& fields) {
    DriveLocation location;
    location.enclosure = fields.smallNumber("channel", 0, maxChannel);
    location.slot = fields.smallNumber("device", 0, maxDevice);
    return location;
}

EnclosureDevice readEnclosureDevice(Fields& fields) {
    EnclosureDevice device;
    device.location = readChannelPlace(fields);
    device.id = fields.smallNumber("id", 0, 65535, 0);
    device.type = fields.text("type", "SES2", 16);
    device.vendor = fields.text("vendor", "NORVIK", 8);
    device.model = fields.text("model", "SAS SES-2 DEVICE", 16);
    device.revision = fields.text("revision", "1.10", 4);
    device.temperature = fields.text("temperature", "Normal", 16);
    return device;
}

const char* usualSpeed(const std::string& interface) {
    if (interface == "SAS") {
        return "SAS 3.0 Gb/s";
    }
    return interface == "SATA" ? "SATA 3.0 Gb/s" : "Ultra320";
}

} // namespace

ConfIdentity readConfIdentity(Fields& fields) {
    ConfIdentity conf;
    conf.status = fields.text("status", "Okay");
    conf.channels = fields.text("channelDescription", "SAS/SATA");
    conf.physicalSlot = fields.smallNumber("physicalSlot", 0, 255, 0);
    conf.memory = fields.text("installedMemory", "32 MB");
    conf.copyback = fields.text("copyback", "Disabled");
    conf.dataScrubbing = fields.text("dataScrubbing", "Enabled");
    conf.failover = fields.text("automaticFailover", "");
    conf.driver = fields.text("driver", "1.2-0 (29000)");
    conf.battery = fields.text("battery", "Not Installed");
    conf.showsReadCache = fields.flag("showsReadCache", true);
    conf.expander = fields.flag("expander", false);
    fields.list("enclosureDevices", [&](const Json& item, const std::string& path) {
        Fields device(item, path, fields.problem());
        conf.enclosureDevices.push_back(readEnclosureDevice(device));
        device.finish();
    });
    return conf;
}

void readChannelDrive(Fields& fields, Drive& drive) {
    drive.location = readChannelPlace(fields);
    drive.bay.enclosure = fields.smallNumber("enclosure", 0, 65535, 0);
    drive.bay.slot = fields.smallNumber("slot", 0, 65535, drive.location.slot);
    drive.transferSpeed = fields.text("transferSpeed", usualSpeed(drive.interface), 20);
}

} // namespace zolex_sim
