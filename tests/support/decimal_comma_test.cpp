#include "tests/support/decimal_comma.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

TEST(DecimalCommaTest, TheLibraryOfTheSystemReadsACommaWhileItLives)
{
    {
        const DecimalComma host;
        if (!host.IsSet()) {
            GTEST_SKIP() << "no program that makes a locale";
        }
        EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
    }
    EXPECT_EQ(std::strtod("1,5", nullptr), 1.0);
    EXPECT_EQ(std::getenv("LOCPATH"), nullptr);
}

} // namespace
