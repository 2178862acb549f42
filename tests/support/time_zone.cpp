#include "tests/support/time_zone.h"

#include <cstdlib>
#include <ctime>

TimeZone::TimeZone(const std::string& zone)
{
    if (const char* const before = std::getenv("TZ")) {
        mBefore = before;
    }
    setenv("TZ", zone.c_str(), 1);
    tzset();
}

TimeZone::~TimeZone()
{
    if (mBefore) {
        setenv("TZ", mBefore->c_str(), 1);
    } else {
        unsetenv("TZ");
    }
    tzset();
}
