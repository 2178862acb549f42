#include "diagnosis/log_db/slice_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(IdRanges, AreReadStrictly)
{
    EXPECT_THAT(*diagnosis::ParseIdRanges("7"), ElementsAre(Pair(7, 7)));
    EXPECT_THAT(*diagnosis::ParseIdRanges("-5--3,8-9"), ElementsAre(Pair(-5, -3), Pair(8, 9)));
    for (const char* text : {"", ",", "7,", "9-8", "7 ", "a", "99999999999999999999"}) {
        EXPECT_FALSE(diagnosis::ParseIdRanges(text).has_value()) << text;
    }
}

} // namespace
