#pragma once

#include "simulator/SimulatorSupport.h"

#include <string>
#include <vector>

namespace zolex_sim::test {

/// Plays a command line of UTIL.BAT on a server in memory: a utility and its options.
inline PlayResult play(Server& server, const std::string& command) {
    return playUtility(server, splitWords(command));
}

/// A definition with one controller of a utility; `controller` holds further fields, each followed
/// by a comma, `drives` the drives' fields.
inline std::string definitionOf(const std::string& utility, const std::string& drives,
                                const std::string& controller = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [{
      "utility": ")" +
           utility + R"(", "model": "M", )" + controller + R"(
      "pci": {"bus": 2, "device": 0, "vendorId": "0x1000", "deviceId": "0x0050"},
      "drives": [)" +
           drives + "]}]}";
}

/// The logical drives and the drives that are not good; the order is that of the dump.
inline std::string layoutOf(const Server& server) {
    std::vector<std::string> parts;
    const Controller& controller = server.controllers.front();
    for (const Drive& drive : controller.drives) {
        if (drive.status != DriveStatus::good && drive.status != DriveStatus::online) {
            parts.push_back(toText(drive.location) + "=" + std::string(statusWord(drive.status)));
        }
    }
    for (const LogicalDrive& drive : controller.logicalDrives) {
        parts.push_back(formatted("%s [%s] %lldMB", std::string(rulesOf(drive.level).name).c_str(),
                                  toText(controller.arrays[drive.array].spans.front()).c_str(),
                                  static_cast<long long>(drive.sizeMb)));
    }
    return join(parts, " | ");
}

/// A command line with what it must come to: a layout, or a reason.
struct CommandRow {
    const char* command;
    const char* result;
};

} // namespace zolex_sim::test
