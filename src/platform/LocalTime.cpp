#include "platform/LocalTime.h"

#include <algorithm>
#include <cstdint>
#include <ctime>

namespace zolex {

namespace {

/// Seconds from the first of January 1970 to a moment of a calendar without leap seconds.
std::int64_t secondsOf(const LocalTime& time) {
    // The year begins in March, so that the leap day is its last.
    const std::int64_t year = time.month > 2 ? time.year : time.year - 1;
    const std::int64_t month = (time.month + 9) % 12;
    const std::int64_t leapDays = year / 4 - year / 100 + year / 400;
    const std::int64_t days = year * 365 + leapDays + (month * 153 + 2) / 5 + time.day - 719469;
    return ((days * 24 + time.hour) * 60 + time.minute) * 60 + time.second;
}

} // namespace

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
    const std::int64_t ahead = secondsOf(time) - static_cast<std::int64_t>(now);
    // To the nearest minute: a leap second counted above must not cost one.
    time.offsetMinutes = static_cast<int>((ahead + (ahead < 0 ? -30 : 30)) / 60);
    return time;
}

} // namespace zolex
