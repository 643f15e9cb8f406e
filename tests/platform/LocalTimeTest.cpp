#include "platform/LocalTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace zolex {
namespace {

#ifdef _WIN32
void setZone(const std::string& zone) {
    ::_putenv_s("TZ", zone.c_str());
    ::_tzset();
}
#else
void setZone(const std::string& zone) {
    zone.empty() ? ::unsetenv("TZ") : ::setenv("TZ", zone.c_str(), 1);
    ::tzset();
}
#endif

/// The time zone of a test, which goes with it.
class Zone {
  public:
    explicit Zone(const std::string& zone) {
        if (const char* before = std::getenv("TZ"); before != nullptr) {
            before_ = before;
        }
        setZone(zone);
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
    ~Zone() { setZone(before_); }

  private:
    std::string before_;
};

std::string toText(const LocalTime& time) {
    std::string text;
    for (const int field : {time.year, time.month, time.day, time.hour, time.minute, time.second}) {
        text += std::to_string(field) + " ";
    }
    return text;
}

/// What a clock shows that is `seconds` ahead of Greenwich at this moment.
std::string clockText(std::time_t moment, int seconds) {
    moment += seconds;
    const std::tm* const parts = std::gmtime(&moment);
    return toText({parts->tm_year + 1900, parts->tm_mon + 1, parts->tm_mday, parts->tm_hour,
                   parts->tm_min, parts->tm_sec});
}

TEST(LocalTimeTest, IsThatOfTheTimeZone) {
    constexpr int hour = 3600;
    struct {
        const char* zone;
        int ahead;
    } const rows[] = {{"AAA-9:30", 9 * hour + hour / 2}, {"BBB11", -11 * hour}, {"CCC0", 0}};
    for (const auto& row : rows) {
        const Zone zone(row.zone);
        const std::time_t before = std::time(nullptr);
        const std::string shown = toText(currentLocalTime());
        const std::time_t after = std::time(nullptr);
        bool found = false;
        for (std::time_t moment = before; moment <= after; ++moment) {
            found = found || shown == clockText(moment, row.ahead);
        }
        EXPECT_EQ(currentLocalTime().offsetMinutes, row.ahead / 60) << row.zone;
        EXPECT_TRUE(found) << row.zone << ": " << shown << "is not " << clockText(after, row.ahead);
    }
}

} // namespace
} // namespace zolex
