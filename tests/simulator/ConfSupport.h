#pragma once

#include "simulator/SimulatorSupport.h"

#include <string>

namespace zolex_sim::test {

/// The one controller of a definition: its drives, and further fields, each followed by a comma.
struct ConfServer {
    const char* utility = "ARCCONF";
    std::string drives;
    std::string fields;

    [[nodiscard]] std::string definition() const {
        return R"({"machineType": "8840", "serialNumber": "KQ2", "controllers": [{
          "model": "Kestrix-B7", "utility": ")" +
               std::string(utility) + "\", " + fields + R"(
          "pci": {"bus": 2, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
          "drives": [)" +
               drives + "]}]}";
    }
    [[nodiscard]] Server server() const { return serverOf(definition()); }
};

/// Plays a command line of UTIL.BAT, split at blanks as a shell does.
inline PlayResult playLine(Server& server, const std::string& commandLine) {
    return playUtility(server, splitWords(commandLine));
}

/// The lines of a listing from the first that holds `from` to the one before `to`.
inline std::string excerpt(const std::string& listing, const std::string& from,
                           const std::string& to) {
    const std::size_t found = listing.find(from);
    if (found == std::string::npos) {
        return "(no " + from + ")";
    }
    const std::size_t start = found == 0 ? 0 : listing.rfind('\n', found) + 1;
    const std::size_t end = listing.find(to, found);
    return listing.substr(start,
                          end == std::string::npos ? end : listing.rfind('\n', end) + 1 - start);
}

} // namespace zolex_sim::test
