#include "support/ModeRun.h"

namespace zolex::test {

ModeRun::ModeRun() {
    driveList = megaCliDrives(4);
    configurationList = "\nAdapter #0\n\nNumber of Virtual Disks: 0\n\n";
    platform.respond = [this](const std::string& command) {
        if (command == "hwdetect.exe /i") {
            return FakePlatform::ended(0, hardware);
        }
        if (command.find(" -pdList ") != std::string::npos) {
            return FakePlatform::ended(0, driveList);
        }
        if (command.find(" -LdPdInfo ") != std::string::npos) {
            return FakePlatform::ended(0, configurationList);
        }
        if (command.find(" -adpallinfo ") != std::string::npos) {
            return FakePlatform::ended(0, adapterList);
        }
        return respond ? respond(command) : FakePlatform::ended(0);
    };
}

void ModeRun::addDevice(std::uint16_t vendor, std::uint16_t device, std::uint16_t subsystemVendor,
                        std::uint16_t subsystem) {
    PciDevice function;
    function.vendorId = vendor;
    function.deviceId = device;
    function.subsystemVendorId = subsystemVendor;
    function.subsystemId = subsystem;
    function.bus = static_cast<std::uint16_t>(platform.devices.size() + 2);
    function.classCode = 0x010400;
    platform.devices.push_back(function);
}

int ModeRun::run(const std::vector<std::string>& arguments) {
    ZOLEX application(platform);
    return run(application, arguments);
}

int ModeRun::run(ZOLEX& application, const std::vector<std::string>& arguments) {
    std::vector<const char*> argv = {"zolex"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    return application.run(static_cast<int>(argv.size()), argv.data());
}

std::vector<std::string> ModeRun::commands() const {
    std::vector<std::string> started;
    for (const std::string& child : platform.children) {
        if (child != "hwdetect.exe /i") {
            started.push_back(child);
        }
    }
    return started;
}

std::string megaCliDrives(int drives, int sizeMb, int enclosure) {
    std::string text = "\nAdapter #0\n\n";
    for (int slot = 0; slot < drives; ++slot) {
        text += "Enclosure Device ID: " + std::to_string(enclosure) + "\n";
        text += "Slot Number: " + std::to_string(slot) + "\n";
        text += "PD Type: SAS\n";
        text += "Coerced Size: " + std::to_string(sizeMb) + "MB [0x8780000 Sectors]\n";
        text += "Firmware state: Unconfigured(good)\n";
        text += "Inquiry Data: NORVIK  NV73455S        S5273LQ2A00" + std::to_string(slot) + "\n\n";
    }
    return text + "\nExit Code: 0x00\n";
}

std::string cfggenBusListing(int bus) {
    return "------------------------------------------------------------------------\n"
           "Controller information\n"
           "------------------------------------------------------------------------\n"
           "  Slot                                    : 1\n"
           "  Bus                                     : " +
           std::to_string(bus) +
           "\n"
           "------------------------------------------------------------------------\n"
           "IR Volume information\n"
           "------------------------------------------------------------------------\n"
           "------------------------------------------------------------------------\n"
           "Physical device information\n"
           "------------------------------------------------------------------------\n"
           "\n";
}

} // namespace zolex::test
