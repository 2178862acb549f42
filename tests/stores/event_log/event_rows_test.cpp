#include "arborist/stores/event_log/event_rows.h"

#include <gmock/gmock.h>

#include "tests/stores/event_log/alarm_rule_db_helper_fixture.h"
#include "tests/stores/event_log/number_question.h"
#include "tests/support/time_zone.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char VERSION_LINE[] = "FUNc:AlarmRuleDbHelper::GetEventList: version name: 1.0";

class EventRowsTest : public AlarmRuleDbHelperTest {
protected:
    void Open(const EventLogBuilder& builder)
    {
        Write(builder);
        mHelper = std::make_unique<AlarmRuleDbHelper>();
    }

    // Calls `look` with the rows of id 7.
    template <typename Look>
    void Show(const EventRows::Questions& questions, Look look, std::int64_t start = 0)
    {
        mHelper->VisitEvents({7, 7, start, true, questions}, [&](const EventRows& rows) {
            look(rows);
            return true;
        });
    }

    // The answers of the rows, one by one.
    std::string Answers(const EventRows::Questions& questions, std::int64_t start = 0)
    {
        std::string text;
        Show(questions, [&](const EventRows& rows) {
            rows.ForEach([&](const EventRows::Row& row) {
                for (std::size_t question = 0; question < questions.size(); ++question) {
                    text += std::to_string(row.Answer(question)) + (question + 1 < questions.size() ? "," : " ");
                }
            });
        }, start);
        return text;
    }

    std::uint64_t Sum(const std::shared_ptr<const RowQuestion>& question)
    {
        std::uint64_t sum = 0;
        Show({question}, [&sum](const EventRows& rows) { sum = rows.Sum(0); });
        return sum;
    }

    std::vector<std::int32_t> Days()
    {
        std::vector<std::int32_t> days;
        Show({NumberQuestion::Of("a")}, [&days](const EventRows& rows) {
            rows.ForEach([&days](const EventRows::Row& row) { days.push_back(row.GetDayOfMonth()); });
        });
        return days;
    }

    std::unique_ptr<AlarmRuleDbHelper> mHelper;
};

TEST_F(EventRowsTest, AnswerWhatTheirTextsHold)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5,"b":8})"}, {20, 7, "1.0", ""}, {40, 7, "1.0", "[1]"},
        {60, 7, "2.0", R"({"a":9})"}, {70, 7, "", R"({"a":"\u0031"})"}, {80, 7, "1.0", R"({"a":-3})"}}));
    const auto a = NumberQuestion::Of("a");
    const auto b = NumberQuestion::IsThere("b");
    EXPECT_EQ(Answers({a}), "5 0 0 1 -3 ");
    EXPECT_EQ(Answers({b}), "1 0 0 0 0 ");
    EXPECT_EQ(Answers({b, a}), "1,5 0,0 0,0 0,1 0,-3 ");
    EXPECT_EQ(Answers({a, a}, 70), "1,1 -3,-3 ");
    EXPECT_EQ(Sum(a), 3U);
    EXPECT_EQ(Sum(NumberQuestion::IsThere("a")), 3U);
}

TEST_F(EventRowsTest, CopiesOutliveTheVisitAndTheLog)
{
    Open(EventLogBuilder().Rows({{86400, 7, "1.0", R"({"a":5})"}, {86400, 7, "1.0", "{"}, {86400, 7, "2.0", ""}}));
    std::vector<EventRows> kept;
    {
        const EventRows::Questions questions{NumberQuestion::Of("a")};
        Show(questions, [&kept](const EventRows& rows) { kept.push_back(rows); });
    }
    mHelper.reset();
    mDir.Write("data/Comms/Lumbra/workDir/0/log.db", "");
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].GetEventId(), 7);
    EXPECT_EQ(kept[0].GetFoundCount(), 3U);
    EXPECT_EQ(kept[0].Sum(0), 4U);
    EXPECT_EQ(kept[0].CountAfter(86399), 2U);
    EventRows::DayCounts days{};
    kept[0].CountDays(days);
    EXPECT_EQ(days[2], 2);
}

TEST_F(EventRowsTest, SumOfAnswersOfYesOrNoCountsThoseOfTheRowsThatCount)
{
    EventLogBuilder builder;
    for (int row = 0; row < 500; ++row) { // those from 50 to 349 are of id 7, two thirds of them count
        const std::string extra = "{\"a\":" + std::to_string(row % 2) + "}";
        builder.Row({row, row < 50 ? 6 : row < 350 ? 7 : 8, row % 3 == 0 ? "2.0" : "1.0", extra});
    }
    Open(builder);
    EXPECT_EQ(Sum(NumberQuestion::IsThere("a")), 100U);
    EXPECT_EQ(Sum(NumberQuestion::IsThere("b")), 0U);
}

TEST_F(EventRowsTest, SumBelowZeroWraps)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":-5})"}, {20, 7, "1.0", R"({"a":2})"}}));
    EXPECT_EQ(Sum(NumberQuestion::Of("a")), UINT64_MAX - 2);
}

TEST_F(EventRowsTest, TextsThatLeaveLinesAreAskedEachTime)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", "{"}, {30, 7, "1.0", R"({"a":"x"})"}}));
    for (int round = 0; round < 2; ++round) {
        mLog.Clear();
        EXPECT_EQ(Answers({NumberQuestion::Of("a")}), "5 -1 -1 ");
        EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE, "FUNc:NumberQuestion: a of {",
            R"(FUNc:NumberQuestion: a of {"a":"x"})"));
        EXPECT_EQ(Sum(NumberQuestion::IsThere("a")), UINT64_MAX);
    }
}

TEST_F(EventRowsTest, QuestionsAreAnsweredForeseenOrNot)
{
    EventLogBuilder builder;
    std::string expected;
    for (int row = 0; row < 300; ++row) {
        builder.Row({row, 1 + row % 10, "1.0", R"({"a":)" + std::to_string(row) + "}"});
        expected += row % 10 == 6 ? std::to_string(row) + " " : "";
    }
    Open(builder);
    const auto a = NumberQuestion::Of("a");
    EXPECT_EQ(Answers({a}), expected);
    mHelper->Foresee(7, 7, {NumberQuestion::IsThere("b")});
    EXPECT_EQ(Answers({NumberQuestion::IsThere("b")}).size(), 60U);
    EXPECT_EQ(Answers({a}), expected);
    EXPECT_EQ(Answers({a}, 290), "296 ");
    EXPECT_EQ(Answers({a}, 200).substr(0, 8), "206 216 ");
}

TEST_F(EventRowsTest, QuestionsThatAreReadAheadAreAnsweredTheSame)
{
    const auto a = NumberQuestion::Of("a");
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":5})"}, {20, 7, "1.0", R"({"a":8})"}}));
    mHelper->Foresee(7, 7, {a});
    mHelper->ReadAhead();
    EXPECT_EQ(Answers({a}), "5 8 ");
    Open(EventLogBuilder().Row({10, 7, "1.0", R"({"a":5})"}).Sql("drop table event_version"));
    mHelper->Foresee(7, 7, {a});
    mHelper->ReadAhead();
    EXPECT_EQ(Answers({a}), "") << "a log that can't be asked";
}

// The index has the rows of an id in the order of their texts.
TEST_F(EventRowsTest, RowsThatAreReadInAnotherOrderAreNotReadAheadAndAnswerTheSame)
{
    const auto a = NumberQuestion::Of("a");
    Open(EventLogBuilder().Rows({{10, 7, "1.0", R"({"a":8})"}, {20, 7, "1.0", R"({"a":5})"}})
        .Sql("create index i on event_info(event_id, extra, version_id)"));
    mHelper->Foresee(7, 7, {a});
    mHelper->ReadAhead();
    EXPECT_EQ(Sum(a), 13U);
}

TEST_F(EventRowsTest, QuestionsWithoutRoomAreAnsweredToo)
{
    EventLogBuilder builder;
    for (int row = 0; row < 2000; ++row) {
        builder.Row({row, 1 + row % 10, "1.0", R"({"k1":1,"k300":)" + std::to_string(row) + "}"});
    }
    Open(builder);
    EventRows::Questions questions;
    for (int key = 1; key <= 300; ++key) {
        questions.push_back(NumberQuestion::Of("k" + std::to_string(key)));
    }
    mHelper->Foresee(1, 10, questions);
    std::uint64_t sum = 0;
    Show(questions, [&sum](const EventRows& rows) { sum = rows.Sum(0) + rows.Sum(299); });
    EXPECT_EQ(sum, 200U + 200U * 6U + 10U * (199U * 200U / 2U));
}

TEST_F(EventRowsTest, ChangeDuringAVisitGivesTheRowsOfAFreshQuery)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", "["}, {20, 8, "1.0", "["}, {30, 8, "1.0", "["}}));
    std::string text;
    mHelper->VisitEvents({7, 8, 0, true, {NumberQuestion::Of("a")}}, [&](const EventRows& rows) {
        EventLogBuilder::Run(mPath, "delete from event_info where _ID = 2");
        text += std::to_string(rows.GetEventId()) + ": " + std::to_string(rows.GetCount()) + "; ";
        return false;
    });
    EXPECT_EQ(text, "7: 1; 8: 1; ");
    EXPECT_THAT(mLog.Lines(), ElementsAre(VERSION_LINE, VERSION_LINE));
}

TEST_F(EventRowsTest, DaysAreLocal)
{
    // 23:30 of 31 December in UTC, half past midnight in the zone of the tests.
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", ""}, {1703980800, 7, "1.0", ""}}));
    EXPECT_THAT(Days(), ElementsAre(1, 31));
    EXPECT_THAT(Days(), ElementsAre(1, 31));
    const TimeZone zone("UTC0");
    EXPECT_THAT(Days(), ElementsAre(31, 31)) << "in the zone in force when it is asked";
}

TEST_F(EventRowsTest, RowsOfTheVersionAreShownWithoutAnyQuestion)
{
    Open(EventLogBuilder().Rows({{10, 7, "1.0", ""}, {20, 7, "2.0", ""}, {30, 7, "1.0", ""}}));
    std::vector<std::int64_t> times;
    Show({}, [&times](const EventRows& rows) {
        rows.ForEach([&times](const EventRows::Row& row) { times.push_back(row.GetTime()); });
    });
    EXPECT_THAT(times, ElementsAre(10, 30));
}

TEST_F(EventRowsTest, DaysAreCounted)
{
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", ""}, {1703980800, 7, "1.0", ""}, {1703980801, 7, "2.0", ""}}));
    EventRows::DayCounts days{};
    Show({}, [&days](const EventRows& rows) { rows.CountDays(days); });
    EXPECT_EQ(days[1], 1);
    EXPECT_EQ(days[31], 1);
}

TEST_F(EventRowsTest, RowsReadWholeAnswerAndHaveDaysToo)
{
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", R"({"a":5})"}, {0, 7, "1.0", ""}})
        .Sql("update event_info_flow set occurrence_time = -1 where _ID = 2"));
    EXPECT_EQ(Answers({NumberQuestion::Of("a")}, -5), "5 0 ");
    std::vector<std::int32_t> each;
    EventRows::DayCounts days{};
    Show({NumberQuestion::Of("a")}, [&](const EventRows& rows) {
        rows.CountDays(days);
        rows.ForEach([&each](const EventRows::Row& row) { each.push_back(row.GetDayOfMonth()); });
        EXPECT_EQ(rows.Sum(0), 5U);
    }, -5);
    EXPECT_THAT(each, ElementsAre(1, 1));
    EXPECT_EQ(days[1], 2);
}

TEST_F(EventRowsTest, RowsReadWholeAreCountedFromATimeOnToo)
{
    Open(EventLogBuilder().Rows({{1704065400, 7, "1.0", ""}, {1703980800, 7, "1.0", ""}, {0, 7, "1.0", ""}})
        .Sql("update event_info_flow set occurrence_time = -1 where _ID = 3"));
    EventRows::DayCounts days{};
    Show({}, [&days](const EventRows& rows) {
        EXPECT_FALSE(rows.HasTimes());
        EXPECT_EQ(rows.CountAfter(1703980800), 1U);
        EXPECT_EQ(rows.CountAfter(1703980799), 2U);
        rows.CountDaysAfter(0, days);
    }, -5);
    EXPECT_EQ(days[1], 1);
    EXPECT_EQ(days[31], 1);
}

} // namespace
