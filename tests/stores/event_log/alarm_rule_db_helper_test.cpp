#include "arborist/stores/event_log/alarm_rule_db_helper.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/stores/event_log/alarm_rule_db_helper_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char NOT_EXIST[] = "FUNc:AlarmRuleDbHelper::OpenDatabase: log.db is not exist.";
constexpr char OPEN_FAIL[] = "FUNc:AlarmRuleDbHelper::GetEventList: Open log.db fail.";

TEST_F(AlarmRuleDbHelperTest, StartTimeIsInclusive)
{
    Write(EventLogBuilder().Rows({{99, 7, "1.0", "a"}, {100, 7, "1.0", "b"}, {101, 7, "1.0", "c"}, {101, 8, "", "d"}}));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Extras(helper.GetEventList(7, 100, false)), "bc");
}

TEST_F(AlarmRuleDbHelperTest, EventsCarryIdLocalTimeAndExtra)
{
    Write(EventLogBuilder().Row({1700000000, 7, "1.0", "{}"}));
    AlarmRuleDbHelper helper;
    const auto events = helper.GetEventList(7, 0, true);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0]->eventId, 7);
    EXPECT_EQ(events[0]->occurrenceTime, "2023-11-14 23:13:20");
    EXPECT_EQ(events[0]->extra, "{}");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE));
}

TEST_F(AlarmRuleDbHelperTest, VersionFilterDropsOtherVersionsAndKeepsNone)
{
    Write(EventLogBuilder().Rows({{10, 7, "1.0", "a"}, {20, 7, "2.0", "b"}, {30, 7, "", "c"}, {40, 7, "1.0 ", "d"}})
        .Sql("insert into event_version values (9, null)").Sql("insert into event_info values (9, 7, 'e', 9)")
        .Sql("insert into event_info_flow values (9, 9, 50)"));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Extras(helper.GetEventList(7, 0, false)), "abcde");
    EXPECT_EQ(Extras(helper.GetEventList(7, 0, true)), "ace");
    mSettings.Set(Settings::VERSION_NAME, "");
    EXPECT_EQ(Extras(helper.GetEventList(7, 0, true)), "ce");
}

TEST_F(AlarmRuleDbHelperTest, NothingFoundIsSilent)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}));
    AlarmRuleDbHelper helper;
    EXPECT_THAT(helper.GetEventList(7, 11, false), IsEmpty());
    EXPECT_THAT(helper.GetEventList(8, 0, false), IsEmpty());
    EXPECT_EQ(Visit(helper, {8, 100, 0, true}), "");
    EXPECT_EQ(Visit(helper, {7, 7, 11, true}), "");
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(AlarmRuleDbHelperTest, FilterThatDropsAllStillTellsTheVersion)
{
    Write(EventLogBuilder().Row({10, 7, "2.0", ""}));
    AlarmRuleDbHelper helper;
    EXPECT_THAT(helper.GetEventList(7, 0, true), IsEmpty());
    EXPECT_EQ(Visit(helper, {7, 7, 0, true}), "7 1/0");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_DEBUG), ElementsAre(VERSION_LINE, VERSION_LINE));
}

TEST_F(AlarmRuleDbHelperTest, RowsWithoutPartnersAreInvisible)
{
    Write(EventLogBuilder().Rows({{10, 7, "1.0", "a"}, {10, 7, "1.0", "b"}, {10, 7, "1.0", "c"}})
        .Sql("update event_info_flow set _ID = 11 where _ID = 1")
        .Sql("update event_info set version_id = 5 where _ID = 2"));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Extras(helper.GetEventList(7, 0, false)), "c");
    EXPECT_EQ(Visit(helper, {7, 7, 0, false}), "7 1/1");
}

TEST_F(AlarmRuleDbHelperTest, ColumnsWithoutAValueKeepTheirEmptyDefault)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}).Sql("update event_info set extra = null"));
    AlarmRuleDbHelper helper;
    const auto events = helper.GetEventList(7, 0, false);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0]->extra, "");
}

TEST_F(AlarmRuleDbHelperTest, MissingLogIsTriedAgainAtEachQuery)
{
    AlarmRuleDbHelper helper;
    EXPECT_THAT(mLog.Lines(), ElementsAre(NOT_EXIST));
    EXPECT_FALSE(std::filesystem::exists(mPath));
    mLog.Clear();
    EXPECT_THAT(helper.GetEventList(7, 0, false), IsEmpty());
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(NOT_EXIST, OPEN_FAIL));
    mLog.Clear();
    Write(EventLogBuilder().Row({10, 7, "1.0", "a"}));
    EXPECT_EQ(Extras(helper.GetEventList(7, 0, false)), "a");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE));
}

TEST_F(AlarmRuleDbHelperTest, LogThatIsThereAndCannotBeOpenedIsTriedAgainAtEachQuery)
{
    mDir.MakeDir("data/Comms/Lumbra/workDir/0/log.db");
    const std::string line =
        "FUNc:FT::sql::SqlDatabase::Open: open db:" + mPath + " failed, error msg is :unable to open database file";
    AlarmRuleDbHelper helper;
    EXPECT_THAT(mLog.Lines(), ElementsAre(line));
    mLog.Clear();
    EXPECT_THAT(helper.GetEventList(7, 0, false), IsEmpty());
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, OPEN_FAIL));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(OPEN_FAIL));
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, OPEN_FAIL, line, OPEN_FAIL));
}

TEST_F(AlarmRuleDbHelperTest, EndOfAHelperThatNeverOpenedTheLogIsSilentAndLeavesNoFile)
{
    auto helper = std::make_unique<AlarmRuleDbHelper>();
    EXPECT_THAT(helper->GetEventList(7, 0, false), IsEmpty());
    mLog.Clear();
    helper.reset();
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    EXPECT_FALSE(mDir.Has("data"));
}

TEST_F(AlarmRuleDbHelperTest, VisitOfAMissingLogTellsForEachId)
{
    AlarmRuleDbHelper helper;
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {7, 9, 0, false}), "unreadable ");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(NOT_EXIST, OPEN_FAIL, NOT_EXIST, OPEN_FAIL, NOT_EXIST, OPEN_FAIL));
    Write(EventLogBuilder().Row({10, 8, "1.0", "a"}));
    EXPECT_EQ(Visit(helper, {7, 9, 0, false}), "8 1/1");
}

TEST_F(AlarmRuleDbHelperTest, LogThatAppearsDuringAVisitIsPickedUp)
{
    // The second id's query is the first to find the file: a logger writes it when the first one fails.
    class Writer : public FT::ILogger {
    public:
        explicit Writer(std::string path) : mTarget(std::move(path)) {}
        void Print(unsigned int level, const std::string&, va_list) override
        {
            if (level == FT::LEVEL_WARN && ++mLines == 3) {
                EventLogBuilder().Rows({{10, 7, "1.0", ""}, {10, 8, "1.0", ""}}).WriteTo(mTarget);
            }
        }

    private:
        std::string mTarget;
        int mLines = 0;
    };
    FT::Log::GetInstance().SetUserLogger(std::make_unique<Writer>(mPath));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Visit(helper, {7, 9, 0, false}), "8 1/1");
}

TEST_F(AlarmRuleDbHelperTest, HugeRangeOverAMissingLogEnds)
{
    AlarmRuleDbHelper helper;
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {INT32_MIN, INT32_MAX, 0, false}), "unreadable ");
    EXPECT_EQ(mLog.Lines().size(), 2U * EventLogSearch::LONGEST_LOGGED_RANGE);
}

TEST_F(AlarmRuleDbHelperTest, PartsOfOneHugeRangeShareTheBoundOfLines)
{
    constexpr std::int32_t BOUND = EventLogSearch::LONGEST_LOGGED_RANGE;
    AlarmRuleDbHelper helper;
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {BOUND - 1, INT32_MAX, 0, false, {}, BOUND - 2}), "unreadable ");
    EXPECT_EQ(mLog.Lines().size(), 2U * 2U);
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {BOUND + 1, INT32_MAX, 0, false, {}, BOUND}), "unreadable ");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
    Write(EventLogBuilder().Row({10, BOUND + 2, "1.0", ""}));
    AlarmRuleDbHelper later;
    EXPECT_EQ(Visit(later, {BOUND + 1, INT32_MAX, 0, false, {}, BOUND}), "100002 1/1");
}

TEST_F(AlarmRuleDbHelperTest, VisitGoesThroughTheIdsThatHaveRows)
{
    Write(EventLogBuilder().Rows({{10, 9, "1.0", ""}, {20, -3, "2.0", ""}, {30, 9, "2.0", ""}, {40, 2000000, "", ""},
        {50, INT32_MAX, "", ""}}));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Visit(helper, {INT32_MIN, INT32_MAX, 0, false}), "-3 1/1, 9 2/2, 2000000 1/1, 2147483647 1/1");
    EXPECT_EQ(Visit(helper, {-3, 2000000, 15, true}), "-3 1/0, 9 1/0, 2000000 1/1");
    EXPECT_EQ(Visit(helper, {-2, 9, 0, false}), "9 2/2");
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {-3, INT32_MAX, 0, false}, 9), "-3 1/1, 9 2/2");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE, VERSION_LINE));
}

TEST_F(AlarmRuleDbHelperTest, GrowingLogIsSeenByTheNextVisit)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}));
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Visit(helper, {7, 9, 0, false}), "7 1/1");
    EventLogBuilder::Run(mPath, "insert into event_info values (2, 8, '', 1);"
        "insert into event_info_flow values (2, 2, 20)");
    EXPECT_EQ(Visit(helper, {7, 9, 0, false}), "7 1/1, 8 1/1");
}

TEST_F(AlarmRuleDbHelperTest, RowsThatDoNotFitTheIndexAreAsked)
{
    Write(EventLogBuilder().Rows({{10, 7, "1.0", "a"}, {20, 7, "1.0", "b"}, {30, 7, "1.0", "c"}})
        .Sql("update event_info_flow set occurrence_time = 'soon' where _ID = 1")
        .Sql("update event_info_flow set occurrence_time = 25.5 where _ID = 2"));
    AlarmRuleDbHelper helper;
    // A text is later than any number.
    EXPECT_EQ(Visit(helper, {7, 7, 25, false}), "7 3/3");
    EXPECT_EQ(Visit(helper, {7, 7, 26, false}), "7 2/2");
    EXPECT_EQ(Visit(helper, {7, 7, 31, true}), "7 1/1");
    const auto events = helper.GetEventList(7, 31, false);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0]->occurrenceTime, "1970-01-01 01:00:00");
    EXPECT_EQ(mLog.Lines().size(), 4U);
}

TEST_F(AlarmRuleDbHelperTest, MissingTableTellsForEachId)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}).Sql("drop table event_info_flow"));
    AlarmRuleDbHelper helper;
    const std::string line = "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: event_info_flow";
    EXPECT_THAT(helper.GetEventList(7, 0, false), IsEmpty());
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line, line));
}

TEST_F(AlarmRuleDbHelperTest, ColumnNameOfTwoTablesTellsForEachId)
{
    for (const char* const column : {"event_version add column event_id", "event_info add column occurrence_time"}) {
        Write(EventLogBuilder().Row({10, 7, "1.0", ""}).Sql(std::string("alter table ") + column));
        AlarmRuleDbHelper helper;
        mLog.Clear();
        EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
        EXPECT_THAT(mLog.Lines(), testing::AllOf(testing::SizeIs(2),
            testing::Each(testing::HasSubstr("Execute sql failed: ambiguous column name: "))));
        EXPECT_THAT(helper.GetEventList(7, 0, false), IsEmpty());
    }
}

TEST_F(AlarmRuleDbHelperTest, LogOfAServiceThatEndedEarlyStaysAsItIs)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}));
    const std::string left = mDir.Path("left/Comms/Lumbra/workDir/0/log.db");
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    {
        FT::sql::SqlDatabase service; // keeps the others from moving the changes into the file
        service.Open(mPath);
        EventLogBuilder::Run(mPath, "insert into event_info values (2, 8, '', 1);"
            "insert into event_info_flow values (2, 2, 20)");
        std::filesystem::create_directories(std::filesystem::path(left).parent_path());
        std::filesystem::copy_file(mPath, left);
        std::filesystem::copy_file(mPath + "-wal", left + "-wal");
    }
    const std::string file = mDir.Read("left/Comms/Lumbra/workDir/0/log.db");
    const std::string changes = mDir.Read("left/Comms/Lumbra/workDir/0/log.db-wal");
    ASSERT_FALSE(changes.empty());
    mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("left"));
    {
        AlarmRuleDbHelper helper;
        EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "7 1/1, 8 1/1");
    }
    EXPECT_EQ(mDir.Read("left/Comms/Lumbra/workDir/0/log.db"), file);
    EXPECT_EQ(mDir.Read("left/Comms/Lumbra/workDir/0/log.db-wal"), changes);
}

TEST_F(AlarmRuleDbHelperTest, FileThatIsNoDatabaseTellsForEachId)
{
    mDir.Write("data/Comms/Lumbra/workDir/0/log.db", std::string(3000, 'x'));
    AlarmRuleDbHelper helper;
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
    const std::string line = "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: file is not a database";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line));
}

TEST_F(AlarmRuleDbHelperTest, EmptyFileHasNoTables)
{
    mDir.Write("data/Comms/Lumbra/workDir/0/log.db", "");
    AlarmRuleDbHelper helper;
    EXPECT_EQ(Visit(helper, {7, 7, 0, false}), "unreadable ");
    EXPECT_THAT(mLog.Lines(),
        ElementsAre("FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: no such table: event_info"));
}

TEST_F(AlarmRuleDbHelperTest, TruncatedFileGivesNothing)
{
    EventLogBuilder builder;
    for (int row = 0; row < 500; ++row) {
        builder.Row({row, 7, "1.0", std::string(100, 'x')});
    }
    Write(builder);
    std::filesystem::resize_file(mPath, std::filesystem::file_size(mPath) / 2);
    AlarmRuleDbHelper helper;
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
    const std::string line =
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: database disk image is malformed";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line));
}

TEST_F(AlarmRuleDbHelperTest, DamageInTheMiddleTellsForEachIdAndCountsTheRowsBefore)
{
    EventLogBuilder builder;
    for (int row = 1; row <= 2000; ++row) {
        builder.Row({row, 7, "1.0", std::string(100, 'x')});
    }
    Write(builder);
    std::string file = mDir.Read("data/Comms/Lumbra/workDir/0/log.db");
    file.replace(file.size() / 2, 4096, 4096, '\xFF');
    mDir.Write("data/Comms/Lumbra/workDir/0/log.db", file);
    AlarmRuleDbHelper helper;
    EXPECT_GT(helper.GetEventList(7, 0, false).size(), 100U);
    const std::string line =
        "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: database disk image is malformed";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, VERSION_LINE));
    mLog.Clear();
    const std::size_t before = helper.GetEventList(7, 0, false).size();
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {6, 8, 0, false}), "7 " + std::to_string(before) + "/" + std::to_string(before));
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line, VERSION_LINE, line));
}

TEST_F(AlarmRuleDbHelperTest, LockedLogFailsEachQueryAndThenWorks)
{
    Write(EventLogBuilder().Row({10, 7, "1.0", ""}));
    AlarmRuleDbHelper helper;
    FT::sql::SqlDatabase other;
    ASSERT_TRUE(other.Open(mPath));
    FT::sql::SqlOperator writer(other.GetHandle());
    ASSERT_TRUE(writer.ExecuteNoCallback("BEGIN EXCLUSIVE"));
    mLog.Clear();
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "unreadable ");
    const std::string line = "FUNc:FT::sql::SqlOperator::Execute: Execute sql failed: database is locked";
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line));
    ASSERT_TRUE(writer.ExecuteNoCallback("ROLLBACK"));
    EXPECT_EQ(Visit(helper, {7, 8, 0, false}), "7 1/1");
}

} // namespace
