#pragma once

#include "SimulatorSupport.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace zolex_sim::test {

using OrderedJson = nlohmann::ordered_json;

/// Plays STORCLI on a server in memory; blanks divide the words.
inline PlayResult storcli(Server& server, const std::string& options) {
    std::vector<std::string> arguments = splitWords(options);
    arguments.insert(arguments.begin(), "storcli64");
    return playUtility(server, arguments);
}

/// Asks for JSON, and reads the answer of the first controller.
inline OrderedJson storcliJson(Server& server, const std::string& options) {
    const OrderedJson answer =
        OrderedJson::parse(storcli(server, options + " J nolog").output, nullptr, false);
    return answer.is_object() ? answer.at("Controllers").at(0) : OrderedJson();
}

/// "13: disk doesn't have enough capacity": the exit code of a command, and what it says.
inline std::string outcome(Server& server, const std::string& options) {
    const PlayResult result = storcli(server, options + " J nolog");
    const OrderedJson status =
        OrderedJson::parse(result.output).at("Controllers").at(0).at("Command Status");
    std::string text = std::to_string(result.exitCode) + ": " + std::string(status["Description"]);
    for (const auto& row : status.value("Detailed Status", OrderedJson::array())) {
        if (row.value("ErrMsg", "-") != "-") {
            text += " " + std::string(row["ErrMsg"]);
        }
    }
    return text;
}

/// A definition with one controller; `drives` are the drives' fields, `controller` further fields
/// of the controller and `rest` of the server, each behind a comma.
inline std::string storcliDefinition(const std::string& drives, const std::string& controller = "",
                                     const std::string& rest = "") {
    return R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [{
      "utility": "STORCLI", "pci": {"bus": 193}, "drives": [)" +
           drives + "]" + controller + "}]" + rest + "}";
}

/// One line about the first controller: the states of its drives, its groups and virtual drives.
inline std::string dumpStorcli(const Server& server) {
    const storcli::Controller& controller = server.storcliControllers.front();
    std::vector<std::string> parts;
    for (const storcli::Drive& drive : controller.drives) {
        parts.push_back(toText(drive.place) + "=" + std::string(wordOf(drive.state)));
        for (const std::size_t group : drive.groups) {
            parts.back() += formatted("/%zu", group);
        }
    }
    for (const storcli::Volume& volume : controller.volumes) {
        std::string spans;
        for (const std::vector<DriveLocation>& span : controller.groups[volume.group].spans) {
            spans += "[" + toText(span) + "]";
        }
        parts.push_back(formatted("%d %s %s %lld %dkB %s %s%s", volume.number,
                                  std::string(rulesOf(volume.level).name).c_str(), spans.c_str(),
                                  static_cast<long long>(volume.blocks), volume.stripKb,
                                  std::string(wordOf(volume.cache)).c_str(),
                                  volume.readAhead ? "RA" : "NORA",
                                  volume.cachedIo ? " cached" : ""));
    }
    return join(parts, " | ");
}

} // namespace zolex_sim::test
