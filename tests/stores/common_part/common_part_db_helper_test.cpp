#include "arborist/stores/common_part/common_part_db_helper.h"

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/stores/common_part/derived_tables_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using CommonPartDbHelperTest = DerivedTablesTest;

TEST_F(CommonPartDbHelperTest, InitMakesTheDirectory)
{
    EXPECT_TRUE(mDir.Has("root/Comms/Lumbra/zxdetectrepair/databases"));
    EXPECT_TRUE(CommonPartDbHelper::GetInstance().Init());
}

TEST_F(CommonPartDbHelperTest, InitTellsOfADirectoryThatCannotBeMade)
{
    mDir.Write("file", "");
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("file"));
    EXPECT_FALSE(CommonPartDbHelper::GetInstance().Init());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::Contains(Line("Init: create database dir fail.")));
}

TEST_F(CommonPartDbHelperTest, NullPartIsFalseAndTouchesNothing)
{
    EXPECT_FALSE(CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(mLogPath, nullptr));
    EXPECT_FALSE(CommonPartDbHelper::GetInstance().IsSuccessCreateJankDb(mLogPath, std::make_shared<CommonPart>()));
    EXPECT_FALSE(Build({}));
    EXPECT_FALSE(mDir.Has("log.db"));
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CommonPartDbHelperTest, MinimumOfZeroSelectsTheMaximumAlone)
{
    EventLogBuilder().Rows({{NOW - 1, 1, "", ""}, {NOW - 2, 9, "", ""}}).WriteTo(mLogPath);
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("0", "9")})}));
    EXPECT_THAT(Rows("select occurrence_time from T"), ElementsAre("1699999998"));
}

TEST_F(CommonPartDbHelperTest, BothIdsZeroEndTheCallAlsoForLaterBeans)
{
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("A", {EventsOf("7", "7")}), BeanOf("B", {EventsOf("7", "7"), EventsOf("0", "0")}),
        BeanOf("C", {EventsOf("7", "7")})}));
    EXPECT_THAT(Rows("select name from sqlite_master where name in ('A', 'B', 'C')"), ElementsAre("A"));
    EXPECT_FALSE(Build({BeanOf("C", {EventsOf("", "x")})}));
}

TEST_F(CommonPartDbHelperTest, MinimumAboveMaximumAddsNothing)
{
    EventLogBuilder().Rows({{NOW - 1, 5, "", ""}, {NOW - 2, 9, "", ""}}).WriteTo(mLogPath);
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("9", "5"), EventsOf("5", "5")})}));
    EXPECT_THAT(Rows("select occurrence_time from T"), ElementsAre("1699999999"));
}

TEST_F(CommonPartDbHelperTest, SecondOfTwoBeansWithOneNameRebuildsTheTable)
{
    EventLogBuilder().Rows({{NOW - 1, 5, "", ""}, {NOW - 2, 9, "", ""}}).WriteTo(mLogPath);
    EXPECT_TRUE(Build({BeanOf("T", {EventsOf("5", "5")}), nullptr, BeanOf("T", {EventsOf("9", "9")})}));
    EXPECT_THAT(Rows("select * from T"), ElementsAre("1|1699999998"));
}

TEST_F(CommonPartDbHelperTest, TablesThatARunDoesNotNameStayFromTheLastOne)
{
    LogExtras({"{}"});
    EXPECT_TRUE(Build({BeanOf("Old", {EventsOf("7", "7")})}));
    EXPECT_TRUE(Build({BeanOf("New", {EventsOf("7", "7")})}));
    EXPECT_THAT(Rows("select count(*) from Old"), ElementsAre("1"));
}

TEST_F(CommonPartDbHelperTest, AnswerIsThatOfTheLastBeanBuilt)
{
    LogExtras({"{}"});
    EXPECT_FALSE(Build({BeanOf("A", {EventsOf("7", "7")}), BeanOf("B", {EventsOf("8", "8")})}));
    EXPECT_TRUE(Build({BeanOf("B", {EventsOf("8", "8")}), BeanOf("A", {EventsOf("7", "7")}), BeanOf("C", {})}));
}

TEST_F(CommonPartDbHelperTest, NullItemsAndColumnsArePassedOver)
{
    LogExtras({R"({"a":5})"});
    const auto events = EventsOf("7", "7", {ParamOf("a", "int")});
    ParamMap columns = events->GetParamMap();
    columns["0"] = nullptr;
    events->SetParamMap(columns);
    EXPECT_TRUE(Build({BeanOf("T", {events, nullptr})}));
    EXPECT_THAT(Rows("select a from T"), ElementsAre("5"));
    EXPECT_TRUE(Build({BeanOf("U", {nullptr, events})}));
    EXPECT_THAT(Rows("select * from U"), ElementsAre("1|1699999999")) << "the columns are those of the first item";
}

} // namespace
