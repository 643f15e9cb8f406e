#include "commands/HRCommands.h"

#include "model/RAIDController.h"

namespace zolex {

const CommandGenerator::Traces& HRCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering HRCommands::doArraysAndLogicalDrives\n",
        "Exiting HRCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting HRCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& HRCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering HRCommands::doHotspareDrives\n",
        "Exiting HRCommands::doHotspareDrives, returning true\n",
        "Exiting HRCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

std::int32_t HRCommands::stripeSize(const LogicalDrive& /*logical*/,
                                    const RaidArray& /*members*/) const {
    return configuration().stripeSize;
}

CString HRCommands::initText(const LogicalDrive& logical) const {
    CString text = formatText("Init_Priority %s ", rebuildRateWord(configuration().rebuildRate));
    if (isQuick(logical)) {
        text.append(formatText("Init_Method %s ", "QUICK"));
    }
    return text;
}

CString HRCommands::sizeText(const LogicalDrive& /*logical*/) const {
    return "MAX ";
}

const char* HRCommands::hotspareEnd() const {
    return "HSP noprompt";
}

void HRCommands::addCacheCommands(std::size_t /*array*/, const LogicalDrive& /*logical*/) {}

FaultKind HRCommands::secondLogicalDriveFault() const {
    return FaultKind::oneLogicalDriveOnly;
}

} // namespace zolex
