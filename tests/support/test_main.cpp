#include <cstdlib>
#include <ctime>

#include <gmock/gmock.h>

#include "tests/support/time_zone.h"

// A program of tests that is run by hand has the local time that CTest would give it.
int main(int argc, char** argv)
{
    constexpr int KEEP_WHAT_IS_SET = 0;
    setenv("TZ", CENTRAL_EUROPE, KEEP_WHAT_IS_SET);
    tzset();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
