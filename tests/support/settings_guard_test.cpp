#include "tests/support/settings_guard.h"

#include <gtest/gtest.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"

namespace {

TEST(SettingsGuardTest, EmptiesWhatATestHasSet)
{
    {
        const SettingsGuard settings;
        settings.Set(Settings::VERSION_NAME, "4.1");
        EXPECT_EQ(FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::VERSION_NAME, "x"), "4.1");
    }
    EXPECT_EQ(FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(Settings::VERSION_NAME, "x"), "");
}

} // namespace
