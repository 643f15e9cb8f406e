#include "foundation/Report.h"

#include <cstdarg>

namespace zolex {

void Report::notef(std::int32_t level, const char* format, ...) {
    if (!shows(level)) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    note(level, formatTextV(format, values));
    va_end(values);
}

void Report::tracef(const char* format, ...) {
    if (!shows(level::traces)) {
        return;
    }
    std::va_list values;
    va_start(values, format);
    trace(formatTextV(format, values));
    va_end(values);
}

} // namespace zolex
