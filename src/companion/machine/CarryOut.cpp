#include "companion/machine/CarryOut.h"

#include "companion/families/Family.h"
#include "companion/machine/ProgramStart.h"
#include "platform/CommandLineSplit.h"

#include <charconv>

namespace zolex::companion {

namespace {

/// A step of a plan has no limit of its own: whoever started it waits, and leaves it running.
constexpr std::chrono::hours longest{24};

FamilyMachine machineOver(Platform& system) {
    FamilyMachine machine;
    machine.start = [&system](const std::vector<std::string>& arguments,
                              std::chrono::milliseconds limit) {
        return runProgram(system, arguments, true, limit);
    };
    machine.pauseOneSecond = [&system] { system.pauseOneSecond(); };
    return machine;
}

const Family* carrierOf(std::string_view commandLine) {
    const Family* const family = findFamily(commandLine);
    return family != nullptr && family->carriesOut() ? family : nullptr;
}

/// Its program; never UTIL.BAT, which nobody looks behind.
std::string programOf(const Utilities& utilities, const Family& family) {
    return utilities.usesWrapper(family.name()) ? std::string()
                                                : utilities.programOf(family.name());
}

} // namespace

std::optional<ChildResult> carriedOut(Platform& system, const Utilities& utilities,
                                      std::string_view commandLine,
                                      std::chrono::milliseconds limit) {
    const Family* const family = carrierOf(commandLine);
    if (family == nullptr) {
        return std::nullopt;
    }
    FamilyMachine machine = machineOver(system);
    machine.program = programOf(utilities, *family);
    machine.leastDriveBytes = utilities.leastDriveBytes;
    return family->carryOut(machine, commandLine, limit);
}

std::vector<std::string> carryingArguments(const Utilities& utilities,
                                           std::string_view commandLine) {
    const Family* const family = carrierOf(commandLine);
    const std::string program = family == nullptr ? std::string() : programOf(utilities, *family);
    if (program.empty()) {
        return {};
    }
    std::vector<std::string> arguments = {"/proc/self/exe", std::string(carryOutWord), program,
                                          std::to_string(utilities.leastDriveBytes)};
    const std::vector<std::string> words = splitCommandLine(commandLine);
    arguments.insert(arguments.end(), words.begin(), words.end());
    return arguments;
}

int carryOut(Platform& system, const std::vector<std::string>& arguments) {
    constexpr std::size_t firstWord = 3;
    std::string line;
    for (std::size_t i = firstWord; i < arguments.size(); ++i) {
        line += (i == firstWord ? "\"" : " \"") + arguments[i] + "\"";
    }
    const Family* const family =
        arguments.size() > firstWord ? carrierOf(arguments[firstWord]) : nullptr;
    if (family == nullptr) {
        return 2;
    }
    FamilyMachine machine = machineOver(system);
    machine.program = arguments[1];
    const std::string& least = arguments[2];
    std::from_chars(least.data(), least.data() + least.size(), machine.leastDriveBytes);
    const ChildResult result = family->carryOut(machine, line, longest).value_or(ChildResult());
    system.console().writeOutput(result.output);
    constexpr int notStarted = 127;
    constexpr std::uint32_t lowest = 255;
    return result.outcome == ChildOutcome::ended ? static_cast<int>(result.exitCode & lowest)
                                                 : notStarted;
}

} // namespace zolex::companion
