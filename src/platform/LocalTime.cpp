#include "platform/LocalTime.h"

#include <algorithm>
#include <ctime>

namespace zolex {

LocalTime currentLocalTime() {
    const std::time_t now = std::time(nullptr);
    const std::tm* const parts = std::localtime(&now);
    if (parts == nullptr) {
        return {};
    }
    LocalTime time;
    time.year = parts->tm_year + 1900;
    time.month = parts->tm_mon + 1;
    time.day = parts->tm_mday;
    time.hour = parts->tm_hour;
    time.minute = parts->tm_min;
    time.second = std::min(parts->tm_sec, 59); // a leap second counts as the one before it
    return time;
}

} // namespace zolex
