#include "arborist/frame/fault_tree_prop_global.h"

#include <cstdint>
#include <limits>
#include <optional>

#include <gtest/gtest.h>

#include "arborist/frame/settings.h"

namespace {

FaultTreePropGlobal& Properties()
{
    return FaultTreePropGlobal::GetInstance();
}

TEST(FaultTreePropGlobalTest, UnknownKeyGivesTheDefault)
{
    EXPECT_EQ(Properties().GetFaultTreeProperty("never set", "default"), "default");
}

TEST(FaultTreePropGlobalTest, TheFreeFunctionReplacesAValue)
{
    SetFaultTreeProperty("replaced", "one");
    SetFaultTreeProperty("replaced", "two");
    EXPECT_EQ(Properties().GetFaultTreeProperty("replaced", "default"), "two");
}

TEST(FaultTreePropGlobalTest, WithoutOverwriteAPresentKeyStays)
{
    EXPECT_TRUE(Properties().SetFaultTreeProperty("kept", "one", false));
    EXPECT_FALSE(Properties().SetFaultTreeProperty("kept", "two", false));
    EXPECT_EQ(Properties().GetFaultTreeProperty("kept", "default"), "one");
}

TEST(FaultTreePropGlobalTest, NumberIsTheWholeTextOrNone)
{
    EXPECT_EQ(Properties().GetNumber("no number"), std::nullopt);
    for (const char* text : {"", "x", "1x", " 1", "1.5", "9223372036854775808"}) {
        SetFaultTreeProperty("number", text);
        EXPECT_EQ(Properties().GetNumber("number"), std::nullopt) << text;
    }
    SetFaultTreeProperty("number", "4294967297");
    EXPECT_EQ(Properties().GetNumber("number"), 4'294'967'297);
    SetFaultTreeProperty("number", "-9223372036854775808");
    EXPECT_EQ(Properties().GetNumber("number"), std::numeric_limits<std::int64_t>::min());
}

} // namespace
