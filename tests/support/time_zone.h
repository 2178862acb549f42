#ifndef ARBORIST_TESTS_SUPPORT_TIME_ZONE_H
#define ARBORIST_TESTS_SUPPORT_TIME_ZONE_H

#include <optional>
#include <string>

/// Sets the time zone of the process (a TZ text such as "CET-1") as long as the object exists. One at a time.
class TimeZone {
public:
    explicit TimeZone(const std::string& zone);
    ~TimeZone();
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> mBefore;
};

/// One hour ahead of UTC, two from the last Sunday of March to the last of October; needs no zone database.
inline constexpr char CENTRAL_EUROPE[] = "CET-1CEST,M3.5.0,M10.5.0/3";

#endif
