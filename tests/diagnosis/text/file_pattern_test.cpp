#include "diagnosis/text/file_pattern.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::LiteralStart;

TEST(FilePatternTest, StartsWithTheCharactersThatEveryMatchBeginsWith)
{
    EXPECT_EQ(LiteralStart("/data/.*\\.db"), "/data/");
    EXPECT_EQ(LiteralStart("^/data/usage\\.db$"), "/data/usage.db");
    EXPECT_EQ(LiteralStart("\\/data\\/x"), "/data/x");
    EXPECT_EQ(LiteralStart("/data[0-9]"), "/data");
    EXPECT_EQ(LiteralStart("/(data|other)/x"), "");
    EXPECT_EQ(LiteralStart("/data/x\\.db|/other/x\\.db"), "");
    EXPECT_EQ(LiteralStart(".*/x"), "");
    EXPECT_EQ(LiteralStart("\\w/x"), "");
    EXPECT_EQ(LiteralStart("/data\\d"), "/data");
    EXPECT_EQ(LiteralStart("/data\\"), "/data");
    EXPECT_EQ(LiteralStart(""), "");
}

TEST(FilePatternTest, EndsTheStartBeforeACharacterThatMayBeLeftOut)
{
    EXPECT_EQ(LiteralStart("/data?/x"), "/dat");
    EXPECT_EQ(LiteralStart("/data*/x"), "/dat");
    EXPECT_EQ(LiteralStart("/data{0,1}/x"), "/dat");
    EXPECT_EQ(LiteralStart("/data\\.?/x"), "/data");
    EXPECT_EQ(LiteralStart("/data+/x"), "/data");
}

} // namespace
