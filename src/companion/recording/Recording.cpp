#include "companion/recording/Recording.h"

#include <algorithm>

namespace zolex::companion {

namespace {

constexpr std::string_view detectorName = "hwdetect.exe";

/// Whether the key is that of a call of the hardware detector.
bool isDetector(std::string_view key) {
    return key == detectorName ||
           (key.starts_with(detectorName) && key[detectorName.size()] == ' ');
}

/// Names a call.
struct NameOf {
    std::string operator()(const PciCall& /*call*/) const { return "the list of PCI functions"; }
    std::string operator()(const ChildCall& call) const { return call.command; }
    std::string operator()(const PauseCall& /*call*/) const { return "a pause of one second"; }
    std::string operator()(const LocalTimeCall& /*call*/) const { return "the local time"; }
    std::string operator()(const FirmwareCall& /*call*/) const {
        return "the names that the firmware tells";
    }
    std::string operator()(const UtilitiesCall& /*call*/) const {
        return "the utilities that were found";
    }
};

} // namespace

std::string_view recordedCommand(std::string_view commandLine) {
    return commandLine.substr(0, commandLine.find_last_not_of(" \t\r\n") + 1);
}

std::string callKey(std::string_view commandLine) {
    const std::string_view command = recordedCommand(commandLine);
    const bool isQuoted = command.starts_with('"');
    const std::size_t begin = isQuoted ? 1 : 0;
    const std::size_t end =
        std::min(command.find_first_of(isQuoted ? "\"" : " \t", begin), command.size());
    std::string_view program = command.substr(begin, end - begin);
    program.remove_prefix(program.find_last_of("/\\") + 1);
    std::string key(program);
    key += command.substr(isQuoted ? std::min(end + 1, command.size()) : end);
    return key;
}

std::string callName(const CallKind& call) {
    return std::visit(NameOf{}, call);
}

RecordingCounts countCalls(const std::vector<RecordedCall>& calls) {
    RecordingCounts counts;
    for (const RecordedCall& recorded : calls) {
        if (const auto* const pci = std::get_if<PciCall>(&recorded.call)) {
            counts.pciFunctions = pci->devices.size();
        } else if (const auto* const child = std::get_if<ChildCall>(&recorded.call)) {
            ++(isDetector(callKey(child->command)) ? counts.detectorCalls : counts.utilityCalls);
        }
    }
    return counts;
}

} // namespace zolex::companion
