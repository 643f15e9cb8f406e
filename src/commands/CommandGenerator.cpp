#include "commands/CommandGenerator.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

namespace zolex {

void CommandGenerator::start(RAIDController& controller, std::int32_t number,
                             const CString& prefix) {
    controller_ = &controller;
    number_ = number;
    prefix_ = prefix;
}

bool CommandGenerator::doArraysAndLogicalDrives() {
    printer().trace(arrayTraces().entering);
    return traceExit(arrayTraces(), makeArrays());
}

bool CommandGenerator::traceExit(const Traces& traces, Exit exit) {
    if (exit != done) {
        printer().tracef("%s%d)\n", traces.failed, exit);
        return false;
    }
    printer().trace(traces.succeeded);
    return true;
}

void CommandGenerator::addCommand(const CString& line) {
    static_assert(CommandList::fetchable * 2 == CommandList::slots, "the first half is fetched");
    static_cast<void>(application_.commands().add(line));
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

void CommandGenerator::replaceStripeSize() {
    RAIDConfiguration& plan = *controller_->configuration();
    if (plan.stripeSize == stripe::none) {
        plan.stripeSize = defaultStripeSize();
    }
}

void CommandGenerator::reportNoArray() {
    printer().errorBlockf("Each controller must have at least one array.\n"
                          "Could not configure %s, controller %d.\n",
                          modelName().c_str(), number());
}

void CommandGenerator::reportNoLogicalDrive() {
    printer().errorBlockf("Each array must have at least one logical drive.\n"
                          "Could not configure %s, controller %d.\n",
                          modelName().c_str(), number());
}

void CommandGenerator::reportOneLogicalDriveOnly() {
    printer().errorBlockf("Error in %s:  Only one logical drive may be created per array on %s "
                          "controllers.\n",
                          configuration().policyName.c_str(), modelName().c_str());
}

Printer& CommandGenerator::printer() const {
    return application_.printer();
}

const RAIDConfiguration& CommandGenerator::configuration() const {
    return *controller_->configuration();
}

const RaidArray& CommandGenerator::arrayAt(std::size_t index) const {
    return configuration().arrays().at(index);
}

const LogicalDrive& CommandGenerator::logicalDriveAt(std::size_t index) const {
    return configuration().logicalDrives().at(index);
}

std::int32_t CommandGenerator::adapter() const {
    return controller_->scanOrder() - 1;
}

CString CommandGenerator::modelName() const {
    return application_.controllerName(controller_->type(), controller_->subtype());
}

} // namespace zolex
