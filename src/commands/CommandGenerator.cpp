#include "commands/CommandGenerator.h"

#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"

#include <utility>

namespace zolex {

namespace {

RAIDConfiguration withFinalStripeSize(RAIDConfiguration layout, std::int32_t controllerType) {
    layout.stripeSize = finalStripeSize(controllerType, layout.stripeSize);
    return layout;
}

} // namespace

CommandGenerator::CommandGenerator(const GeneratorInput& input)
    : controller_(input.controller), number_(input.number),
      layout_(withFinalStripeSize(input.layout, input.controller.type())),
      prefix_(CString::concatenate(input.style.pathPrefix,
                                   traitsOf(input.controller.type()).utilityCommand)),
      report_(input.report) {}

CommandLines CommandGenerator::generate() {
    made_ = {};
    static_cast<void>(makeLines());
    return std::exchange(made_, {});
}

bool CommandGenerator::doArraysAndLogicalDrives() {
    report().trace(arrayTraces().entering);
    return traceExit(arrayTraces(), makeArrays());
}

bool CommandGenerator::traceExit(const Traces& traces, Exit exit) {
    if (exit != done) {
        report().tracef("%s%d)\n", traces.failed, exit);
        return false;
    }
    report().trace(traces.succeeded);
    return true;
}

void CommandGenerator::addCommand(CString line) {
    made_.lines.push_back(std::move(line));
}

std::optional<std::size_t> CommandGenerator::findLogicalDrive(std::size_t array,
                                                              std::size_t from) const {
    const std::vector<LogicalDrive>& drives = configuration().logicalDrives();
    for (std::size_t index = from; index < drives.size(); ++index) {
        if (drives[index].arrayIndex == static_cast<std::int32_t>(array)) {
            return index;
        }
    }
    return std::nullopt;
}

Fault CommandGenerator::faultOf(FaultKind kind) const {
    Fault fault;
    fault.kind = kind;
    fault.place.section = layout_.policyName;
    fault.place.model =
        ControllerCatalogue::getControllerName(controller_.type(), controller_.subtype());
    fault.place.controller = number_;
    return fault;
}

Fault CommandGenerator::faultOf(FaultKind kind, std::size_t array) const {
    Fault fault = faultOf(kind);
    fault.place.array = static_cast<std::int32_t>(array);
    return fault;
}

void CommandGenerator::fail(const Fault& fault) {
    made_.fault = fault;
    report().fault(fault);
}

const RaidArray& CommandGenerator::arrayAt(std::size_t index) const {
    return configuration().arrays().at(index);
}

const LogicalDrive& CommandGenerator::logicalDriveAt(std::size_t index) const {
    return configuration().logicalDrives().at(index);
}

std::int32_t CommandGenerator::adapter() const {
    return controller_.scanOrder() - 1;
}

} // namespace zolex
