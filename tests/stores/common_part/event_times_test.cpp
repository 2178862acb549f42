#include "arborist/stores/common_part/event_times.h"

#include <gmock/gmock.h>

#include "arborist/frame/settings.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

class EventTimesTest : public testing::Test {
protected:
    EventTimesTest()
    {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        mSettings.Set(Settings::AS_OF, std::to_string(NOW + 5 * DAY));
        mIds.Append(3, 4);
    }

    std::vector<std::int64_t> Times() const { return EventTimes::Read(mIds, mDir.Path("log.db")); }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    EventIdList mIds;
};

TEST_F(EventTimesTest, TimesAreThoseOfTheSelectedEventsEachOnce)
{
    EventLogBuilder().Rows({{NOW - 30 * DAY, 3, "", ""}, {NOW - 30 * DAY + 1, 3, "", ""}, {NOW, 4, "", ""},
        {NOW, 3, "", ""}, {NOW, 5, "", ""}, {NOW + 5 * DAY, 3, "", ""}, {NOW + 5 * DAY + 1, 3, "", ""}})
        .WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(Times(), UnorderedElementsAre(NOW - 30 * DAY + 1, NOW, NOW + 5 * DAY));
}

TEST_F(EventTimesTest, ATimeBetweenTwoSecondsStandsForBoth)
{
    EventLogBuilder().Rows({{NOW, 3, "", ""}}).Sql("update event_info_flow set occurrence_time = occurrence_time + 0.5")
        .WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(Times(), testing::IsSupersetOf({NOW, NOW + 1}));
}

TEST_F(EventTimesTest, TheFirstEventThatNoTimeNamesIsThereByItsOwnTime)
{
    EventLogBuilder().Rows({{NOW + 2, 3, "", ""}, {NOW + 1, 4, "", ""}})
        .Sql("update event_info_flow set event_pid = 9").WriteTo(mDir.Path("log.db"));
    EXPECT_THAT(Times(), UnorderedElementsAre(NOW + 1));
}

TEST_F(EventTimesTest, AFolderInPlaceOfTheLogHasNone)
{
    mDir.MakeDir("log.db");
    EXPECT_THAT(Times(), IsEmpty());
}

TEST_F(EventTimesTest, ALogThatCantBeReadHasNone)
{
    EXPECT_THAT(Times(), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    mDir.Write("log.db", "no database");
    EXPECT_THAT(Times(), IsEmpty());
}

} // namespace
