#include "inventory/ZOLEXSupport.h"

#include "foundation/Report.h"
#include "foundation/Text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zolex {

namespace {

/// The output with each carriage return that stands before a line feed dropped.
std::string withoutCarriageReturns(CapturedOutput& output) {
    std::string text;
    for (;;) {
        const std::string_view piece = output.nextPiece(capturedLineLimit);
        if (piece.empty()) {
            return text;
        }
        text += piece;
        if (text.ends_with("\r\n")) {
            text.erase(text.size() - 2, 1);
        }
    }
}

void storeValue(std::string_view line, std::string_view key, CString& field) {
    if (text::contains(line, key)) {
        // A NUL ends the value, which is trimmed then.
        field = CString(text::token(line, "=", 1)).trim();
    }
}

} // namespace

std::optional<Machine> ZOLEXSupport::gatherHardwareInfo(std::unique_ptr<Tool> runner,
                                                        Report& report) {
    const auto failed = [&report](FaultKind kind, std::int32_t number = 0) {
        Fault fault;
        fault.kind = kind;
        fault.wanted = detectorCommand;
        fault.number = number;
        report.fault(fault);
        return std::nullopt;
    };
    if (!runner) {
        return failed(FaultKind::detectorRunnerMissing);
    }
    runner->setCommand(detectorCommand);
    if (!runner->run(true)) {
        return failed(FaultKind::detectorNotRun);
    }
    if (runner->exitCode() != 0) {
        return failed(FaultKind::detectorFailed, static_cast<std::int32_t>(runner->exitCode()));
    }
    Machine machine;
    CapturedOutput lines(withoutCarriageReturns(*runner->output()));
    for (auto line = lines.nextPiece(capturedLineLimit); !line.empty();
         line = lines.nextPiece(capturedLineLimit)) {
        storeValue(line, "Machine_Type", machine.machineType);
        storeValue(line, "Serial_Number", machine.serialNumber);
    }
    return machine;
}

} // namespace zolex
