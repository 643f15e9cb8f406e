#include "properties/VirtualMachine.h"

#include "driver/PolicyArguments.h"
#include "model/Definition.h"
#include "platform/CommandLineSplit.h"
#include "properties/Generators.h"
#include "roles/Roles.h"
#include "support/Scan.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string_view>

namespace zolex::properties {

namespace {

const std::vector<std::string> megaRaid = {"0", "1", "5", "6", "10", "50", "60"};
const std::vector<std::string> megaRaidWithout6 = {"0", "1", "5", "10", "50"};
const std::vector<std::string> megaRaidPlain = {"0", "1", "10"};
const std::vector<std::string> family = {"0", "1", "1E", "5", "5E", "5EE"};
const std::vector<std::string> arcconf = {"0", "1",  "1E", "5",  "5EE",
                                          "6", "10", "50", "60", "VOLUME"};
const std::vector<std::string> arcconf2 = {"0", "1", "5", "10", "VOLUME"};
const std::vector<std::string> arcconfB7 = {"0", "1", "1E", "5", "6", "10", "VOLUME"};
const std::vector<std::string> arcconfB8 = {"0", "1", "10", "VOLUME"};
const std::vector<std::string> mirrors = {"0", "1"};
const std::vector<std::string> mirrorsAnd10 = {"0", "1", "10"};
const std::vector<std::string> hrconf9 = {"0", "1", "10", "VOLUME"};
const std::vector<std::string> cfggen = {"0", "1", "1E"};
const std::vector<std::string> mirror = {"1"};

constexpr std::string_view hyperwinUtility = "HYPERWIN";

int mostPlaces(std::string_view utility) {
    return utility == hyperwinUtility                           ? 2
           : utility == "QTCSEND" || utility == "CFGGEN1.02.02" ? 15
                                                                : 36;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string field(const char* name, int value) {
    return quoted(name) + ": " + std::to_string(value) + ", ";
}

/// The address of a drive as the definition of its utility writes it.
std::string address(std::string_view utility, const VirtualDrive& drive) {
    if (utility == "MEGACLI") {
        // Group 0 stands for drives outside every enclosure.
        return (drive.group == 0 ? "" : field("enclosure", drive.group)) +
               field("slot", drive.place);
    }
    if (utility == "CFGGEN") {
        return field("enclosure", drive.group) + field("slot", drive.place);
    }
    if (utility == "ARCCONF" || utility == "HRCONF") {
        return field("channel", drive.group) + field("device", drive.place);
    }
    return field("channel", drive.group) + field("id", drive.place);
}

std::vector<int> anyGroups(std::string_view utility) {
    const int most = *number(1, 4);
    if (utility == "CFGGEN1.02.02" || utility == hyperwinUtility) {
        return {1};
    }
    std::vector<int> groups;
    if (utility == "MEGACLI") {
        if (oneIn(8)) {
            return {0};
        }
        const int first = *number(1, 60);
        for (int i = 0; i < most; ++i) {
            groups.push_back(1 + (first - 1 + i * 61) % 250);
        }
        return groups;
    }
    const int first = utility == "QTCSEND" || utility == "CFGGEN" ? 1 : 0;
    for (int i = 0; i < most; ++i) {
        groups.push_back(first + i);
    }
    return groups;
}

VirtualController anyController(bool last) {
    VirtualController controller;
    const int hyperwin = static_cast<int>(families().size()) - 1;
    controller.family =
        static_cast<std::size_t>(last && oneIn(12) ? hyperwin : *number(0, hyperwin - 1));
    const std::string_view utility = families()[controller.family].utility;
    controller.later = oneIn(2);
    const std::vector<int> sizes = {70006, oneOf<int>({17357, 34715, 140013, 953344}),
                                    oneOf<int>({70006, 70100, 300, 1907200})};
    const bool spoilt = utility != hyperwinUtility && oneIn(6);
    const bool many = oneIn(8);
    for (const int group : anyGroups(utility)) {
        const int most = std::min(mostPlaces(utility), many ? 36 : 9);
        const int count = *number(0, most);
        const int start = *number(0, std::min(3, mostPlaces(utility) - count));
        for (int i = 0; i < count; ++i) {
            // The controller's own id on a SCSI bus is no drive.
            const bool own = mostPlaces(utility) == 15 && start + i >= 7;
            VirtualDrive drive{group, start + i + (own ? 1 : 0), oneOf(sizes), "good"};
            if (spoilt && oneIn(5)) {
                drive.status = oneOf<std::string>({"failed", "bad", "foreign"});
            }
            controller.drives.push_back(drive);
        }
    }
    return controller;
}

} // namespace

const std::vector<Family>& families() {
    constexpr const char* b8 = R"("productName": "Norvik Kestrix B8",)";
    constexpr const char* b7 =
        R"("productName": "Norvik Kestrix B7", "automaticFailover": "Enabled",)";
    constexpr const char* plain = R"("raidLevels": ["RAID0", "RAID1", "RAID10"],)";
    // HYPERWIN comes last.
    // clang-format off
    static const std::vector<Family> all = {
        {"Kestrix-C1",        "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0060", "subsystemVendorId": "0x1F3D", "subsystemId": "0x0364")", "", megaRaid},
        {"LSI-MegaRAID-8480", "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0411", "subsystemVendorId": "0x1000", "subsystemId": "0x1002")", "", megaRaidWithout6},
        {"Kestrix-C7",        "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0073", "subsystemVendorId": "0x1F3D", "subsystemId": "0x03B1")", plain, megaRaidPlain},
        {"Kestrix-C8",        "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0073", "subsystemVendorId": "0x1F3D", "subsystemId": "0x03B1")", "", megaRaidWithout6},
        {"Kestrix-D1",        "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0079", "subsystemVendorId": "0x1F3D", "subsystemId": "0x03C7")", "", megaRaidWithout6},
        {"Kestrix-D4",        "MEGACLI", R"("vendorId": "0x1000", "deviceId": "0x0079")", "", megaRaid},
        {"Kestrix-A1",        "QTCSEND", R"("vendorId": "0x1F3D", "deviceId": "0x002E")", "", family},
        {"Kestrix-A4",        "QTCSEND", R"("vendorId": "0x1F3D", "deviceId": "0x01BD")", "", family},
        {"Kestrix-A8",        "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x9005", "subsystemId": "0x0290")", "", arcconf2},
        {"Kestrix-B1",        "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x02F2")", "", arcconf},
        {"Kestrix-B2",        "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x034D")", "", arcconf},
        {"Kestrix-B8",        "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0286")", b8, arcconfB8},
        {"Kestrix-B7",        "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0286")", b7, arcconfB7},
        {"Kestrix-A9",        "HRCONF",  R"("vendorId": "0x8086", "deviceId": "0x25B0")", "", mirrors},
        {"Kestrix-A10",       "HRCONF",  R"("vendorId": "0x9005", "deviceId": "0x808F")", "", mirrorsAnd10},
        {"Kestrix-B3",        "HRCONF",  R"("vendorId": "0x9005", "deviceId": "0x043F")", "", mirrorsAnd10},
        {"Kestrix-B4",        "HRCONF",  R"("vendorId": "0x8086", "deviceId": "0x27C3")", "", hrconf9},
        {"LSI-SAS-RAID",      "CFGGEN",  R"("vendorId": "0x1000", "deviceId": "0x0050")", "", cfggen},
        {"LSI-SAS-1078-IR",   "CFGGEN",  R"("vendorId": "0x1000", "deviceId": "0x0062")", "", mirrors},
        {"LSI-SCSI-RAID",     "CFGGEN1.02.02", R"("vendorId": "0x1000", "deviceId": "0x0030")", "", mirror},
        {"LSI-IDEal-RAID",    "HYPERWIN", R"("vendorId": "0x1166", "deviceId": "0x0213")", "", mirrors},
    };
    // clang-format on
    return all;
}

std::string VirtualServer::definition() const {
    std::string text = R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [)";
    int bus = 2;
    for (const VirtualController& controller : controllers) {
        const Family& kind = families().at(controller.family);
        const std::string_view utility = kind.utility;
        const bool generations = utility == "MEGACLI" || utility == "ARCCONF";
        text += (bus == 2 ? "{" : ", {") + quoted("utility") + ": " + quoted(kind.utility) + ", " +
                quoted("model") + ": " + quoted(kind.model) + ", " + kind.extra +
                (generations && controller.later ? R"("generation": "later", )" : "") +
                R"("pci": {"bus": )" + std::to_string(bus) +
                R"(, "device": 1, "class": "0x010400", )" + kind.pci + R"(}, "drives": [)";
        const char* separator = "";
        for (const VirtualDrive& drive : controller.drives) {
            text += separator + std::string("{") + address(utility, drive) +
                    field("sizeMB", drive.sizeMb) + R"("status": )" + quoted(drive.status) + "}";
            separator = ", ";
        }
        text += "]}";
        ++bus;
    }
    return text + "]}";
}

std::ostream& operator<<(std::ostream& out, const VirtualServer& server) {
    return out << server.definition();
}

rc::Gen<VirtualServer> virtualServers() {
    return rc::gen::exec([] {
        VirtualServer server;
        const int count = oneOf<int>({1, 1, 2, 4});
        for (int i = 1; i <= count; ++i) {
            server.controllers.push_back(anyController(i == count));
        }
        return server;
    });
}

VirtualMachine::VirtualMachine(const VirtualServer& virtualServer) {
    zolex_sim::Problem problem;
    server = zolex_sim::readDefinition(virtualServer.definition(), problem);
    if (problem.found()) {
        throw std::logic_error(problem.text() + " in " + virtualServer.definition());
    }
    for (const zolex_sim::Controller* controller : server.controllersInPciOrder()) {
        const zolex_sim::PciFunction& pci = controller->identity.pci;
        PciDevice device;
        device.vendorId = pci.vendorId;
        device.deviceId = pci.deviceId;
        device.subsystemVendorId = pci.subsystemVendorId;
        device.subsystemId = pci.subsystemId;
        device.bus = static_cast<std::uint16_t>(pci.bus);
        device.device = static_cast<std::uint16_t>(pci.device);
        device.function = static_cast<std::uint16_t>(pci.function);
        device.classCode = pci.classCode;
        platform.devices.push_back(device);
    }
    platform.respond = [this](const std::string& line) { return respond(line); };
    application.printer().setVerbosity(level::progress);
    application.settings.policiesFile = "p.ini";
    test::scan(controllers, application);
    application.machine->machineType = "8837";
    application.machine->serialNumber = "KQ12345";
}

ChildResult VirtualMachine::respond(const std::string& commandLine) {
    const std::vector<std::string> arguments = splitCommandLine(commandLine);
    const std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
    if (arguments.front() == "hwdetect.exe") {
        const zolex_sim::PlayResult result = zolex_sim::playDetector(server, rest);
        return test::FakePlatform::ended(static_cast<std::uint32_t>(result.exitCode),
                                         result.output);
    }
    const zolex_sim::PlayResult result = zolex_sim::playUtility(server, rest);
    commands.push_back({commandLine, result.exitCode, result.output});
    return test::FakePlatform::ended(static_cast<std::uint32_t>(result.exitCode), result.output);
}

unsigned VirtualMachine::capture(bool withConfiguration) {
    commands.clear();
    application.settings.capture = withConfiguration;
    const auto result = static_cast<unsigned>(application.captureConfiguration(controllers));
    application.settings.capture = false;
    return result;
}

std::string VirtualMachine::capturePolicies() {
    RC_ASSERT(capture(true) == 0U);
    application.settings.capture = true;
    application.settings.policiesFile = "captured.ini";
    PolicyGenerator generator(platform, application.catalogue(), appending(application.settings),
                              captureOptions(application), application.report());
    RC_ASSERT(generator.generatePolicies(controllers));
    application.settings.capture = false;
    application.settings.policiesFile = "p.ini";
    return platform.fileFake.files["captured.ini"];
}

unsigned VirtualMachine::deploy(const std::string& policies) {
    commands.clear();
    platform.fileFake.files["p.ini"] = policies;
    const auto result = static_cast<unsigned>(application.deployConfiguration(controllers).code);
    // What was planned is put into the records, for those who hold the machine against it.
    for (const ControllerPlan& plan : application.planning().plans) {
        if (plan.outcome != Outcome::noPolicy) {
            controllers.controller(static_cast<std::size_t>(plan.number - 1))
                ->setCaptured(plan.layout);
        }
    }
    return result;
}

} // namespace zolex::properties
