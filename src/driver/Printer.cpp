#include "driver/Printer.h"

#include <cstdarg>

namespace zolex {

void Printer::print(std::string_view message, std::int32_t messageLevel) {
    if (shows(messageLevel)) {
        console_.writeOutput(message);
    }
}

void Printer::printAlways(std::string_view message) {
    console_.writeOutput(message);
}

void Printer::trace(std::string_view message) {
    print(message, level::traces);
}

void Printer::errorBlock(std::string_view message) {
    console_.writeOutput(CString::concatenate("\n#### ERROR\n\t", message, "\n"));
}

void Printer::debugLine(std::string_view message) {
    console_.writeOutput(CString::concatenate("#### DEBUG:  ", message));
}

void Printer::printf(std::int32_t messageLevel, const char* format, ...) {
    if (!shows(messageLevel)) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    console_.writeOutput(formatTextV(format, values));
    va_end(values);
}

void Printer::printfAlways(const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    console_.writeOutput(formatTextV(format, values));
    va_end(values);
}

void Printer::tracef(const char* format, ...) {
    if (!shows(level::traces)) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    console_.writeOutput(formatTextV(format, values));
    va_end(values);
}

} // namespace zolex
