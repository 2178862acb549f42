// A log with more versions than a row of the snapshot has numbers for.

#include <string>

#include <gtest/gtest.h>

#include "tests/stores/event_log/alarm_rule_db_helper_fixture.h"

namespace {

constexpr int VERSIONS = 2100;

class ManyVersionsTest : public AlarmRuleDbHelperTest {
protected:
    ManyVersionsTest()
    {
        EventLogBuilder log;
        log.Row({100, 7, "", ""});
        for (int version = 1; version <= VERSIONS; ++version) {
            log.Row({100 + version, 7, "v" + std::to_string(version), std::to_string(version)});
            log.Row({100 + version, 1000 + version, "v" + std::to_string(version), ""});
        }
        Write(log);
    }
};

TEST_F(ManyVersionsTest, EachVersionFindsItsOwnRowAndThoseWithoutOne)
{
    AlarmRuleDbHelper helper;
    for (const int version : {1, 2, 2046, 2047, 2048, 2049, 2050, VERSIONS}) {
        mSettings.Set(Settings::VERSION_NAME, "v" + std::to_string(version));
        EXPECT_EQ(Visit(helper, {7, 7, 0, true}), "7 2101/2") << version;
        EXPECT_EQ(Extras(helper.GetEventList(7, 0, true)), std::to_string(version));
    }
}

TEST_F(ManyVersionsTest, RowsOfAnIdCountForTheirVersionAlone)
{
    AlarmRuleDbHelper helper;
    for (const int version : {1, 2047, 2048, 2049, VERSIONS}) {
        mSettings.Set(Settings::VERSION_NAME, "v" + std::to_string(version));
        const int id = 1000 + version;
        EXPECT_EQ(Visit(helper, {id, id, 0, true}), std::to_string(id) + " 1/1");
        const int other = version == 2048 ? 3049 : 3048;
        EXPECT_EQ(Visit(helper, {other, other, 0, true}), std::to_string(other) + " 1/0") << version;
    }
}

TEST_F(ManyVersionsTest, VersionThatTheLogLacksFindsTheRowsWithoutOne)
{
    AlarmRuleDbHelper helper;
    mSettings.Set(Settings::VERSION_NAME, "none");
    EXPECT_EQ(Visit(helper, {7, 7, 0, true}), "7 2101/1");
    EXPECT_EQ(Visit(helper, {7, 7, 0, false}), "7 2101/2101");
}

} // namespace
