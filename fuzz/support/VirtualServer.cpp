#include "support/VirtualServer.h"

#include "model/Definition.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"
#include "setup/Samples.h"
#include "setup/ServerFiles.h"
#include "support/Check.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace zolex::fuzz {

namespace {

/// What a child may be made to do instead of what it does.
enum class Change : unsigned {
    none,
    text,     ///< prints the next text alone
    edit,     ///< prints its listing with some lines edited
    exitCode, ///< ends with another exit code
    outcome,  ///< does not start or does not end
    cut,      ///< prints the beginning of its listing
    textCode, ///< prints the next text and ends with another exit code
    count
};

std::uint32_t exitCodeOf(unsigned choice) {
    constexpr std::array<std::uint32_t, 8> codes = {0, 1, 2, 49, 128, 255, 0x80000000, 0xFFFFFFFF};
    return codes[choice % codes.size()];
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

/// Changes line `at`, which exists; the kind is a choice.
void editLine(std::vector<std::string>& lines, std::size_t at, unsigned kind, Input& script,
              Input& texts) {
    const auto position = lines.begin() + static_cast<std::ptrdiff_t>(at);
    switch (kind % 7) {
    case 0:
        lines.erase(position);
        break;
    case 1:
        lines.insert(position, std::string(*position));
        break;
    case 2:
        position->resize(std::min<std::size_t>(position->size(), script.choice()));
        break;
    case 3:
        *position = texts.text();
        break;
    case 4:
        lines.insert(position, std::string(texts.text()));
        break;
    case 5: // another value behind the key
        position->resize(std::min(position->find(':'), position->size() - 1) + 1);
        *position += " ";
        *position += texts.text();
        break;
    default:
        std::swap(*position, lines[script.choice() % lines.size()]);
        break;
    }
}

std::vector<zolex_sim::Server> readSamples() {
    std::vector<zolex_sim::Server> servers;
    for (const zolex_sim::Sample& sample : zolex_sim::samples()) {
        zolex_sim::Problem problem;
        servers.push_back(zolex_sim::readDefinition(sample.definition, problem));
        check(!problem.found(), "a sample is sound");
    }
    return servers;
}

/// A server in its initial state. Reading the definitions takes longer than a run: it is done once.
const zolex_sim::Server& sampleServer(unsigned number) {
    static const std::vector<zolex_sim::Server> servers = readSamples();
    return servers[number % servers.size()];
}

} // namespace

std::string edited(std::string_view listing, Input& script, Input& texts) {
    std::vector<std::string> lines = linesOf(listing);
    for (unsigned edits = 1 + script.choice() % 4; edits > 0 && !lines.empty(); --edits) {
        const std::size_t at = (script.choice() * 256U + script.choice()) % lines.size();
        if (lines[at].empty()) {
            lines[at] = " ";
        }
        editLine(lines, at, script.choice(), script, texts);
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

VirtualServer::VirtualServer(unsigned sample, std::string_view script, Input& texts)
    : server_(sampleServer(sample)), script_(script), texts_(texts) {}

std::vector<PciDevice> VirtualServer::devices() const {
    std::vector<PciDevice> devices;
    for (const zolex_sim::Controller* controller : server_.controllersInPciOrder()) {
        const zolex_sim::PciFunction& pci = controller->identity.pci;
        PciDevice device;
        device.vendorId = static_cast<std::uint16_t>(pci.vendorId);
        device.deviceId = static_cast<std::uint16_t>(pci.deviceId);
        device.subsystemVendorId = static_cast<std::uint16_t>(pci.subsystemVendorId);
        device.subsystemId = static_cast<std::uint16_t>(pci.subsystemId);
        device.bus = static_cast<std::uint16_t>(pci.bus);
        device.device = static_cast<std::uint16_t>(pci.device);
        device.function = static_cast<std::uint16_t>(pci.function);
        device.classCode = pci.classCode;
        devices.push_back(device);
    }
    return devices;
}

std::string VirtualServer::policies() const {
    return zolex_sim::samplePolicies(server_).content;
}

std::string VirtualServer::inventory() const {
    return zolex_sim::inventory(server_).content;
}

ChildResult VirtualServer::run(std::string_view commandLine) {
    ChildResult result = play(commandLine);
    change(result);
    return result;
}

ChildResult VirtualServer::play(std::string_view commandLine) {
    std::vector<std::string> arguments = splitCommandLine(commandLine);
    check(!arguments.empty(), "a command line names a program");
    const std::string program = arguments.front();
    arguments.erase(arguments.begin());
    zolex_sim::PlayResult played;
    if (program == "UTIL.BAT") {
        played = zolex_sim::playUtility(server_, arguments);
    } else if (program == "hwdetect.exe") {
        played = zolex_sim::playDetector(server_, arguments);
    } else if (program == "fakeraid") {
        played = zolex_sim::playFakeraid(server_, arguments);
    } else {
        return {ChildOutcome::notStarted, 0, {}};
    }
    return {ChildOutcome::ended, static_cast<std::uint32_t>(played.exitCode),
            std::move(played.output)};
}

void VirtualServer::change(ChildResult& result) {
    const auto kind = static_cast<Change>(script_.choice() % static_cast<unsigned>(Change::count));
    switch (kind) {
    case Change::text:
        result = {ChildOutcome::ended, 0, std::string(texts_.text())};
        break;
    case Change::edit:
        result.output = edited(result.output, script_, texts_);
        break;
    case Change::exitCode:
        result.exitCode = exitCodeOf(script_.choice());
        break;
    case Change::outcome:
        result = {static_cast<ChildOutcome>(script_.choice() % 5), 0, {}};
        break;
    case Change::cut:
        result.output.resize(std::min<std::size_t>(result.output.size(),
                                                   script_.choice() * 256U + script_.choice()));
        break;
    case Change::textCode:
        result = {ChildOutcome::ended, exitCodeOf(script_.choice()), std::string(texts_.text())};
        break;
    default:
        break;
    }
}

} // namespace zolex::fuzz
