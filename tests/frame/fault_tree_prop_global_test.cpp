#include "arborist/frame/fault_tree_prop_global.h"

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

} // namespace
