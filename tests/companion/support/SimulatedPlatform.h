#pragma once

#include "model/Definition.h"
#include "model/Text.h"
#include "platform/CommandLineSplit.h"
#include "roles/Faults.h"
#include "roles/Roles.h"
#include "setup/Samples.h"
#include "support/FakePlatform.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// The name of a program without its folder and the suffix ".exe".
inline std::string bareName(std::string_view program) {
    std::string name(program.substr(program.find_last_of("/\\") + 1));
    if (name.size() > 4 && name.ends_with(".exe")) {
        name.resize(name.size() - 4);
    }
    return name;
}

/// A machine that is a virtual server, in one process: its children are the server's utilities and
/// its hardware detector, its PCI functions those of the server, its files are in memory. A child
/// is UTIL.BAT with the utility's word, hwdetect.exe, or a utility under one of its usual names, in
/// whatever folder, or the word of a family. What is not one of these cannot be started.
class SimulatedPlatform : public zolex::test::FakePlatform {
  public:
    /// Of a sample by its name ("single"), or of a definition (a text that begins with "{").
    explicit SimulatedPlatform(std::string_view sample) {
        std::string_view definition = sample;
        if (!sample.starts_with('{')) {
            const zolex_sim::Sample* const found = zolex_sim::sampleNamed(sample);
            if (found == nullptr) {
                throw std::logic_error("no sample " + std::string(sample));
            }
            definition = found->definition;
        }
        zolex_sim::Problem problem;
        server = zolex_sim::readDefinition(definition, problem);
        if (problem.found()) {
            throw std::logic_error(problem.text());
        }
        for (const zolex_sim::Controller* controller : server.controllersInPciOrder()) {
            addDevice(controller->identity.pci);
        }
        for (const zolex_sim::storcli::Controller* controller : server.storcliInPciOrder()) {
            addDevice(controller->pci);
        }
        for (const zolex_sim::PciFunction& other : server.otherDevices) {
            addDevice(other);
        }
        respond = [this](const std::string& line) { return play(line); };
    }

    /// The names of all samples.
    static std::vector<std::string> samples() {
        std::vector<std::string> names;
        for (const zolex_sim::Sample& sample : zolex_sim::samples()) {
            names.emplace_back(sample.name);
        }
        return names;
    }

    /// What the server answers to a command line; faults of its definition come first.
    ChildResult play(const std::string& commandLine) {
        std::vector<std::string> arguments = splitCommandLine(commandLine);
        const std::string name = arguments.empty() ? "" : bareName(arguments.front());
        if (name == "hwdetect") {
            return playRole("hwdetect ", arguments, zolex_sim::playDetector);
        }
        if (name == "UTIL.BAT") {
            return playRole("", arguments, zolex_sim::playUtility);
        }
        for (const auto& [program, utility] : programs()) {
            if (name == program) {
                arguments.insert(arguments.begin() + 1, utility);
                return playRole("", arguments, zolex_sim::playUtility);
            }
        }
        for (const char* const utility :
             {"STORCLI", "storcli64", "storcli", "perccli64", "perccli"}) {
            if (zolex_sim::equalsIgnoringCase(name, utility)) {
                arguments.insert(arguments.begin() + 1, utility);
                return playRole("", arguments, zolex_sim::playUtility);
            }
        }
        return {};
    }

    zolex_sim::Server server;
    int logsLeft = 0; ///< commands that have written a log file into the current folder

  private:
    using Role = zolex_sim::PlayResult (*)(zolex_sim::Server&, const std::vector<std::string>&);

    struct Program {
        const char* name;
        const char* utility;
    };
    static std::vector<Program> programs() {
        return {
            {"MegaCli64", "MEGACLI"}, {"MegaCli", "MEGACLI"},   {"megacli", "MEGACLI"},
            {"arcconf", "ARCCONF"},   {"hrconf", "HRCONF"},     {"qtcsend", "QTCSEND"},
            {"cfggen", "CFGGEN"},     {"hyperwin", "HYPERWIN"}, {"cfggen1.02.02", "CFGGEN1.02.02"}};
    }

    ChildResult playRole(const std::string& word, const std::vector<std::string>& arguments,
                         Role role) {
        const std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
        std::string command = word;
        for (const std::string& argument : rest) {
            command += (&argument == &rest.front() ? "" : " ") + argument;
        }
        std::string output;
        if (const zolex_sim::Fault* const due = zolex_sim::countFaults(server, command).due) {
            output = zolex_sim::faultOutput(*due);
            if (due->exitCode) {
                return ended(static_cast<std::uint32_t>(*due->exitCode), output);
            }
        }
        const zolex_sim::PlayResult result = role(server, rest);
        logsLeft += result.leavesLog ? 1 : 0;
        return ended(static_cast<std::uint32_t>(result.exitCode), output + result.output);
    }

    void addDevice(const zolex_sim::PciFunction& pci) {
        PciDevice device;
        device.vendorId = pci.vendorId;
        device.deviceId = pci.deviceId;
        device.subsystemVendorId = pci.subsystemVendorId;
        device.subsystemId = pci.subsystemId;
        device.domain = static_cast<std::uint32_t>(pci.domain);
        device.bus = static_cast<std::uint16_t>(pci.bus);
        device.device = static_cast<std::uint16_t>(pci.device);
        device.function = static_cast<std::uint16_t>(pci.function);
        device.classCode = pci.classCode;
        devices.push_back(device);
    }
};

} // namespace zolex::companion::test
