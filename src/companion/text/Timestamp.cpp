#include "companion/text/Timestamp.h"

#include <cstdlib>

namespace zolex::companion {

namespace {

void append(std::string& text, int number, std::size_t digits, char before) {
    const std::string written = std::to_string(number);
    if (before != '\0') {
        text += before;
    }
    if (written.size() < digits) {
        text.append(digits - written.size(), '0');
    }
    text += written;
}

} // namespace

std::string timestampOf(const LocalTime& time) {
    std::string text;
    append(text, time.year, 4, '\0');
    append(text, time.month, 2, '-');
    append(text, time.day, 2, '-');
    append(text, time.hour, 2, 'T');
    append(text, time.minute, 2, ':');
    append(text, time.second, 2, ':');
    const int offset = std::abs(time.offsetMinutes);
    append(text, offset / 60, 2, time.offsetMinutes < 0 ? '-' : '+');
    append(text, offset % 60, 2, ':');
    return text;
}

} // namespace zolex::companion
