#include "arborist/stores/event_log/alarm_rule_db_helper.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/time_zone.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char NOT_EXIST[] = "FUNc:AlarmRuleDbHelper::OpenDatabase: log.db is not exist.";
constexpr char OPEN_FAIL[] = "FUNc:AlarmRuleDbHelper::GetEventList: Open log.db fail.";
constexpr char VERSION_LINE[] = "FUNc:AlarmRuleDbHelper::GetEventList: version name: 1.0";

class AlarmRuleDbHelperTest : public testing::Test {
protected:
    AlarmRuleDbHelperTest()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::VERSION_NAME, "1.0");
    }

    void Write(const EventLogBuilder& builder) const { builder.WriteTo(mPath); }

    // The extras of the events, joined.
    static std::string Extras(const AlarmRuleDbHelper::EventList& events)
    {
        std::string text;
        for (const auto& event : events) {
            text += event->extra;
        }
        return text;
    }

    // "id found/count" for each id that is visited, up to and with `stopAt`.
    static std::string Visit(AlarmRuleDbHelper& helper, const AlarmRuleDbHelper::Query& query, std::int32_t stopAt = 0)
    {
        std::string text;
        const bool isReadable = helper.VisitEvents(query, [&](EventRows& rows) {
            text += (text.empty() ? "" : ", ") + std::to_string(rows.GetEventId()) + " " +
                std::to_string(rows.GetFoundCount()) + "/" + std::to_string(rows.GetCount());
            return rows.GetEventId() == stopAt;
        });
        return isReadable ? text : "unreadable " + text;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::string mPath = mDir.Path("data/Comms/Lumbra/workDir/0/log.db");
};

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
    EXPECT_EQ(mLog.Lines().size(), 2U * AlarmRuleDbHelper::LONGEST_UNREADABLE_RANGE);
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
    // How far a reading gets depends on what it reads: not exactly as far as the query's.
    std::size_t found = 0;
    EXPECT_TRUE(helper.VisitEvents({6, 8, 0, false}, [&found](EventRows& rows) {
        found = rows.GetFoundCount();
        return false;
    }));
    EXPECT_GT(found, 100U);
    EXPECT_LT(found, 2000U);
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

// What a visit tells of members, row by row.
std::string MemberTexts(EventRows& rows, const std::vector<std::string>& keys)
{
    rows.LoadMembers(keys);
    std::string text;
    for (std::size_t row = 0; row < rows.GetCount(); ++row) {
        for (std::size_t key = 0; key < keys.size(); ++key) {
            const EventMember member = rows.GetMember(row, key);
            switch (member.kind) {
            case EventMember::Kind::NO_EXTRA: text += "-"; break;
            case EventMember::Kind::RAW: text += "raw(" + std::string(member.text) + ")"; break;
            case EventMember::Kind::INTEGER: text += "#" + member.ToText(); break;
            case EventMember::Kind::TEXT: text += "'" + member.ToText() + "'"; break;
            }
        }
        text += " ";
    }
    return text;
}

class EventMembersTest : public AlarmRuleDbHelperTest {
protected:
    std::string Members(const std::vector<std::string>& keys, std::int64_t start = 0)
    {
        std::string text;
        mHelper->VisitEvents({7, 7, start, true}, [&](EventRows& rows) {
            text = MemberTexts(rows, keys);
            return true;
        });
        return text;
    }

    void Open(const EventLogBuilder& builder)
    {
        Write(builder);
        mHelper = std::make_unique<AlarmRuleDbHelper>();
    }

    std::unique_ptr<AlarmRuleDbHelper> mHelper;
};

TEST_F(EventMembersTest, AreReadWhenAskedForAndKept)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5,"b":"x"})"}, {20, 7, "1.0", ""}, {30, 7, "1.0", "{"},
        {40, 7, "1.0", "[1]"}, {50, 7, "1.0", R"({"a":{"b":1},"b":1.5})"}, {60, 7, "2.0", R"({"a":9})"},
        {70, 7, "", R"({"a":"\u0041","b":"007"})"}, {80, 7, "1.0", R"({"a":-1000000001})"},
        {90, 7, "1.0", R"({"a":-1000000000})"}, {95, 7, "1.0", R"({"a":123456789012345})"}}));
    const std::string onlyA = "#5 - raw({) '' '' 'A' '-1000000001' #-1000000000 '123456789012345' ";
    EXPECT_EQ(Members({"a"}), onlyA);
    EXPECT_EQ(Members({"a"}), onlyA);
    const std::string both = "'x'#5 -- raw({)raw({) '''' '1.5''' '007''A' '''-1000000001' ''#-1000000000 "
                             "'''123456789012345' ";
    EXPECT_EQ(Members({"b", "a"}), both);
    EXPECT_EQ(Members({"a"}), onlyA);
    EXPECT_EQ(Members({"a", "a"}).substr(0, 5), "#5#5 ");
    EXPECT_EQ(Members({"b"}, 70), "'007' '' '' '' ");
}

TEST_F(EventMembersTest, MoreKeysThanAreKeptTakeTurns)
{
    std::string extra = "{";
    std::vector<std::string> keys;
    std::string expected;
    for (int key = 1; key <= 40; ++key) {
        keys.push_back("k" + std::to_string(key));
        extra += (key == 1 ? "\"" : ",\"") + keys.back() + "\":" + std::to_string(key);
        expected += "#" + std::to_string(key);
    }
    Open(EventLogBuilder().Row({10, 7, "1.0", extra + "}"}));
    for (int round = 0; round < 2; ++round) {
        for (int key = 1; key <= 40; ++key) {
            EXPECT_EQ(Members({keys[static_cast<std::size_t>(key) - 1]}), "#" + std::to_string(key) + " ");
        }
    }
    EXPECT_EQ(Members(keys), expected + " ");
}

TEST_F(EventMembersTest, TextsBeyondTheStoreAreReadAgain)
{
    EventLogBuilder builder;
    std::string expected;
    for (int row = 0; row < 6000; ++row) {
        const std::string value = std::to_string(row) + std::string(60, 'x');
        builder.Row({row, 7, "1.0", "{\"a\":\"" + value + "\"}"});
        expected += "'" + value + "' ";
    }
    builder.Row({9000, 7, "1.0", "{\"a\":\"" + std::string(70000, 'y') + "\"}"});
    Open(builder);
    const std::string first = Members({"a"});
    EXPECT_EQ(Members({"a"}), first);
    EXPECT_EQ(first.substr(0, 1000), expected.substr(0, 1000));
    EXPECT_THAT(first, testing::HasSubstr("raw({\"a\":\"5999" + std::string(60, 'x') + "\"})"));
    EXPECT_THAT(first, testing::EndsWith("yyy\"}) "));
}

// Rows of id 7 with members k1 to k`keys`, whose value is the number of the row; the last k1 is `lastValue`.
EventLogBuilder RowsWithMembers(int rows, int keys, const std::string& lastValue)
{
    EventLogBuilder builder;
    for (int row = 1; row <= rows; ++row) {
        const std::string value = std::to_string(row % 100);
        std::string extra = "{\"k1\":" + (row == rows ? lastValue : value);
        for (int key = 2; key <= keys; ++key) {
            extra += ",\"k" + std::to_string(key) + "\":" + value;
        }
        builder.Row({row, 7, "1.0", extra + "}"});
    }
    return builder;
}

std::vector<std::string> MemberKeys(int keys)
{
    std::vector<std::string> names;
    for (int key = 1; key <= keys; ++key) {
        names.push_back("k" + std::to_string(key));
    }
    return names;
}

TEST_F(EventMembersTest, MoreMembersThanThereIsRoomForAreReadAgain)
{
    Open(RowsWithMembers(3000, 32, "1000000000"));
    std::string expected;
    for (int row = 1; row <= 3000; ++row) {
        for (int key = 1; key <= 32; ++key) {
            expected += "#" + (row == 3000 && key == 1 ? "1000000000" : std::to_string(row % 100));
        }
        expected += " ";
    }
    EXPECT_EQ(Members(MemberKeys(32)), expected);
    EXPECT_EQ(Members(MemberKeys(32)), expected);
}

TEST_F(EventMembersTest, NumbersTooLargeForTheRoomThatIsLeftAreReadAgain)
{
    Open(RowsWithMembers(3000, 20, "1000000000"));
    std::string expected;
    for (int row = 1; row < 3000; ++row) {
        expected += "#" + std::to_string(row % 100) + " ";
    }
    mHelper->Foresee(7, 7, MemberKeys(20));
    for (int round = 0; round < 2; ++round) {
        const std::string told = Members({"k1"});
        EXPECT_EQ(told.substr(0, expected.size()), expected);
        EXPECT_THAT(told.substr(expected.size()), testing::StartsWith("raw({\"k1\":1000000000,"));
        EXPECT_THAT(Members({"k2"}), testing::EndsWith("#98 #99 #0 "));
    }
}

TEST_F(EventMembersTest, RowsReadInOneGoThatCannotBeKeptAreReadAgain)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", "{"}, {30, 7, "1.0", ""}}));
    mHelper->Foresee(7, 7, {"a"});
    for (int round = 0; round < 2; ++round) {
        std::string text;
        mHelper->VisitEvents({7, 7, 0, true, true}, [&](EventRows& rows) {
            text = MemberTexts(rows, {"a"});
            return true;
        });
        EXPECT_EQ(text, "#5 raw({) - ");
    }
}

TEST_F(EventMembersTest, MembersForeseenInTheMiddleLeaveThoseAroundAsTheyAre)
{
    EventLogBuilder builder;
    for (int row = 0; row < 50; ++row) {
        builder.Row({row, 1 + row % 10, "1.0", R"({"a":)" + std::to_string(row * 10) + R"(,"b":"x)" +
            std::to_string(row) + "\"}"});
    }
    Open(builder);
    const auto members = [this](const std::vector<std::string>& keys) {
        std::string text;
        mHelper->VisitEvents({1, 10, 20, false, true}, [&](EventRows& rows) {
            text += MemberTexts(rows, keys);
            return false;
        });
        return text;
    };
    std::string onlyA;
    std::string onlyB;
    for (int id = 1; id <= 10; ++id) {
        for (int row = id - 1; row < 50; row += 10) {
            onlyA += row < 20 ? "" : "#" + std::to_string(row * 10) + " ";
            onlyB += row < 20 ? "" : "'x" + std::to_string(row) + "' ";
        }
    }
    mHelper->Foresee(1, 10, {"a"});
    EXPECT_EQ(members({"a"}), onlyA);
    mHelper->Foresee(4, 6, {"b"});
    mHelper->Foresee(6, 300, {"c", "b"});
    EXPECT_EQ(members({"a"}), onlyA);
    EXPECT_EQ(members({"b"}), onlyB);
    EXPECT_EQ(members({"a"}), onlyA);
}

TEST_F(EventMembersTest, ChangeDuringAVisitGivesTheRowsOfAFreshQuery)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", R"({"a":6})"}}));
    std::string text;
    mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
        EventLogBuilder::Run(mPath, "delete from event_info where _ID = 1");
        text = MemberTexts(rows, {"a"});
        return true;
    });
    EXPECT_EQ(text, "raw({\"a\":6}) ");
    EXPECT_EQ(Members({"a"}), "#6 ");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE, VERSION_LINE));
}

TEST_F(EventMembersTest, DaysAreLocal)
{
    // 23:30 of 31 December in UTC, half past midnight in the zone of the tests.
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", ""}, {1703980800, 7, "1.0", ""}}));
    std::vector<std::int32_t> days;
    for (int round = 0; round < 2; ++round) {
        mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
            days.push_back(rows.GetDayOfMonth(0));
            days.push_back(rows.GetDayOfMonth(1));
            return true;
        });
    }
    EXPECT_THAT(days, ElementsAre(1, 31, 1, 31));
}

// Rows of one hour, in a zone whose midnight lies in the middle of it.
TEST_F(EventMembersTest, DaysAreToldApartWithinAnHour)
{
    const TimeZone zone("IST-5:30");
    EventLogBuilder builder;
    for (std::int64_t minute = 0; minute < 60; ++minute) {
        builder.Row({1704045600 + minute * 60, 7, "1.0", ""}); // 18:00 to 18:59 in UTC
    }
    Open(builder);
    std::vector<std::int32_t> days;
    mHelper->VisitEvents({7, 7, 0, true}, [&](EventRows& rows) {
        for (std::size_t row = 0; row < rows.GetCount(); ++row) {
            days.push_back(rows.GetDayOfMonth(row));
        }
        return true;
    });
    std::vector<std::int32_t> expected(30, 31);
    expected.resize(60, 1);
    EXPECT_EQ(days, expected);
}

} // namespace
