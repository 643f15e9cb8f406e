#include "companion/commands/PlanMaking.h"

#include "companion/commands/MachineAccess.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/commands/UnaskedFamilies.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/System.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/text/Timestamp.h"
#include "companion/text/TypedWord.h"

#include <utility>

namespace zolex::companion {

namespace {

void addArgument(std::string& command, const char* option, const std::string& value) {
    if (!value.empty()) {
        command += std::string(" ") + option + " " + typedWord(value);
    }
}

} // namespace

std::string planCommandOf(const Context& context, const PlanOptions& options) {
    std::string command =
        "zolexctl plan " + (options.classDefaults ? "--default" : typedWord(options.file));
    addArgument(command, "--strategy",
                options.strategy == StrategyWish::add       ? "add"
                : options.strategy == StrategyWish::rebuild ? "rebuild"
                                                            : "");
    return command + machineArguments(context.machine);
}

std::string machineArguments(const MachineOptions& machine) {
    std::string command;
    std::string numbers;
    for (const std::int32_t number : machine.controllers) {
        numbers += (numbers.empty() ? "" : ",") + std::to_string(number);
    }
    addArgument(command, "--controller", numbers);
    addArgument(command, "--recording", machine.recording);
    addArgument(command, "--utilities", machine.utilitiesFolder);
    for (const auto& [name, path] : machine.utilities) {
        addArgument(command, "--utility", std::string(name).append("=").append(path));
    }
    for (const std::string& family : machine.families) {
        addArgument(command, "--family", family);
    }
    if (machine.leastDriveBytes != 0) {
        addArgument(command, "--md-min", std::to_string(machine.leastDriveBytes >> 20U));
    }
    addArgument(command, "--machine-type", machine.machineType);
    addArgument(command, "--serial", machine.serialNumber);
    return command;
}

bool PlanMaker::readPolicies() {
    request_.classDefaults = options_.classDefaults;
    request_.strategy = options_.strategy;
    request_.accept = options_.accept;
    request_.command = planCommandOf(context_, options_);
    if (options_.classDefaults) {
        return true;
    }
    PoliciesText read = readPoliciesText(context_.platform, options_.file);
    if (read.fault) {
        fault_ = read.fault;
        failWith(context_, printable(read.name) + ": " + printable(read.fault->summary),
                 read.fault->help.front());
        return false;
    }
    request_.policiesFile = std::move(read.name);
    request_.policiesText = std::move(read.text);
    return true;
}

std::optional<MachinePlan> PlanMaker::make(Platform& machine, const Utilities& utilities) {
    const std::chrono::milliseconds begin = system::elapsed();
    const Snapshot snapshot = captureMachine(machine, captureRequest(context_, &utilities));
    if (context_.machine.recording.empty()) {
        captureTime_ = system::elapsed() - begin;
    }
    const auto notAsked = familyNotAsked(context_, request_.policiesFile, request_.policiesText,
                                         askedCommand_.empty() ? request_.command : askedCommand_);
    if (snapshot.details.empty()) {
        failWithoutController(context_, notAsked);
        return std::nullopt;
    }
    if (notAsked) {
        tellNotAsked(context_, *notAsked);
    }
    madeAt_ = timestampOf(machine.localTime());
    MachinePlan plan = planMachine(snapshot, request_);
    if (options_.rehearse && plan.isApplicable()) {
        rehearse(snapshot, plan);
    }
    plan.id = planIdOf(plan, madeAt_);
    return plan;
}

std::vector<Finding> PlanMaker::faults() const {
    return fault_ ? std::vector<Finding>{*fault_} : context_.failures;
}

} // namespace zolex::companion
