#include <cstdlib>
#include <ctime>

#include <gmock/gmock.h>

#include "tests/support/time_zone.h"

// Sets the local time that CTest sets, for a test program that is run by hand.
int main(int argc, char** argv)
{
    constexpr int KEEP_WHAT_IS_SET = 0;
    setenv("TZ", CENTRAL_EUROPE, KEEP_WHAT_IS_SET);
    tzset();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
