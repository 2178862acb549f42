#include "arborist/evaluation/sweep/moment_in_force.h"

#include <gtest/gtest.h>

#include "arborist/frame/fault_tree_prop_global.h"
#include "arborist/frame/settings.h"
#include "tests/support/settings_guard.h"

namespace {

std::string Setting(const char* key)
{
    return FaultTreePropGlobal::GetInstance().GetFaultTreeProperty(key, "never set");
}

TEST(MomentInForceTest, MomentsAreSetWhileItLivesAndThenAsBefore)
{
    SettingsGuard settings;
    settings.Set(Settings::CURRENT_TIME, "100");
    settings.Set(Settings::AS_OF, "90");
    {
        MomentInForce moment;
        EXPECT_EQ(Setting(Settings::CURRENT_TIME), "100");
        moment.Set(20, 10);
        EXPECT_EQ(Setting(Settings::CURRENT_TIME), "20");
        EXPECT_EQ(Setting(Settings::AS_OF), "10");
        moment.Set(21, 11);
        EXPECT_EQ(Setting(Settings::AS_OF), "11");
    }
    EXPECT_EQ(Setting(Settings::CURRENT_TIME), "100");
    EXPECT_EQ(Setting(Settings::AS_OF), "90");
}

} // namespace
