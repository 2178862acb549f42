#include <csignal>
#include <cstdlib>
#include <ctime>

#include <gmock/gmock.h>

#include "tests/support/time_zone.h"

namespace {

// A test program that runs in the background has the signals of the terminal ignored, and so would the commands that
// it starts and interrupts.
void TakeSignalsAgain()
{
#ifndef _WIN32
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM}) {
        std::signal(number, SIG_DFL);
    }
#endif
}

} // namespace

// Sets the local time that CTest sets, for a test program that is run by hand.
int main(int argc, char** argv)
{
    constexpr int KEEP_WHAT_IS_SET = 0;
    setenv("TZ", CENTRAL_EUROPE, KEEP_WHAT_IS_SET);
    tzset();
    TakeSignalsAgain();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
