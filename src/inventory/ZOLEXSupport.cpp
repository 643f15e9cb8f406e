#include "inventory/ZOLEXSupport.h"

#include "controllers/Application.h"
#include "foundation/Text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zolex {

namespace {

std::unique_ptr<Tool> makeApplicationTool(Application& application) {
    return std::make_unique<Tool>(application.platform(), application.printer(),
                                  application.childLimit);
}

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

bool ZOLEXSupport::gatherHardwareInfo(Application& application) {
    return gatherHardwareInfo(application, makeApplicationTool);
}

bool ZOLEXSupport::gatherHardwareInfo(Application& application, ToolMaker makeTool) {
    Printer& printer = application.printer();
    const std::unique_ptr<Tool> util = makeTool(application);
    if (!util) {
        printer.printAlways("ZOLEXSupport.gatherHardwareInfo: util is NULL\n");
        return false;
    }
    util->setCommand("hwdetect.exe /i");
    if (!util->run(true)) {
        printer.printAlways("ZOLEXSupport.gatherHardwareInfo:Execution failed.\n");
        return false;
    }
    if (util->exitCode() != 0) {
        printer.printfAlways("ZOLEXSupport.gatherHardwareInfo: Return code is %d.\n",
                             static_cast<std::int32_t>(util->exitCode()));
        return false;
    }
    CapturedOutput lines(withoutCarriageReturns(*util->output()));
    for (auto line = lines.nextPiece(capturedLineLimit); !line.empty();
         line = lines.nextPiece(capturedLineLimit)) {
        storeValue(line, "Machine_Type", application.machineType);
        storeValue(line, "Serial_Number", application.serialNumber);
    }
    return true;
}

} // namespace zolex
