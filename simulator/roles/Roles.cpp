#include "roles/Roles.h"

#include "cfggen/Cfggen.h"
#include "conf/Conf.h"
#include "hyperwin/Hyperwin.h"
#include "megacli/Megacli.h"
#include "model/Text.h"
#include "qtcsend/Qtcsend.h"
#include "storcli/Storcli.h"

#include <array>
#include <string_view>

namespace zolex_sim {
namespace {

// The utilities that UTIL.BAT starts, and those that are called by a usual name.
struct Utility {
    std::string_view name;
    PlayResult (*play)(Server&, const std::vector<std::string>& options);
};
// clang-format off
constexpr std::array<Utility, 11> utilities = {{
    {"MEGACLI", megacli::play},
    {"ARCCONF", conf::playArcconf},
    {"HRCONF", conf::playHrconf},
    {"QTCSEND", qtcsend::play},
    {"CFGGEN", cfggen::playSas},
    {"CFGGEN1.02.02", cfggen::playScsi},
    {"HYPERWIN", hyperwin::play},
    {"STORCLI", storcli::play},
    {"storcli64", storcli::play},
    {"perccli", storcli::play},
    {"perccli64", storcli::play},
}};
// clang-format on

} // namespace

PlayResult playUtility(Server& server, const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        return {1, "UTIL: no utility given\n"};
    }
    for (const Utility& utility : utilities) {
        if (equalsIgnoringCase(utility.name, arguments.front())) {
            return utility.play(server, {arguments.begin() + 1, arguments.end()});
        }
    }
    return {1, "UTIL: unknown utility " + arguments.front() + "\n"};
}

PlayResult playDetector(Server& server, const std::vector<std::string>& arguments) {
    if (arguments != std::vector<std::string>{"/i"}) {
        return {1, "Usage: hwdetect /i\n"};
    }
    std::size_t drives = 0;
    for (const Controller& controller : server.controllers) {
        drives += controller.drives.size();
    }
    for (const storcli::Controller& controller : server.storcliControllers) {
        drives += controller.driveCount();
    }
    return {server.detectorExitCode,
            formatted("Hardware detection\n"
                      "\n"
                      "Manufacturer=NORVIK\n"
                      "Machine_Type=%s\n"
                      "Serial_Number=%s\n"
                      "Processors=2\n"
                      "Memory=4096 MB\n"
                      "RAID_Controllers=%zu\n"
                      "Disk_Drives=%zu\n",
                      server.machineType.c_str(), server.serialNumber.c_str(),
                      server.controllers.size() + server.storcliControllers.size(), drives)};
}

PlayResult playFakeraid(Server& server, const std::vector<std::string>& arguments) {
    constexpr std::array<std::string_view, 3> deeds = {"restoring", "capturing", "deploying"};
    for (std::size_t i = 0; i < deeds.size() && arguments.size() > 1; ++i) {
        if (arguments.front() == std::to_string(i)) {
            return {server.fakeraidExitCode,
                    "fakeraid: " + std::string(deeds[i]) + " " +
                        join({arguments.begin() + 1, arguments.end()}, " ") + "\n"};
        }
    }
    return {1, "Usage: fakeraid 0|1|2 MODEL\n"};
}

} // namespace zolex_sim
