#include "arborist/stores/event_log/answer_reader.h"

#include <gmock/gmock.h>

#include "arborist/stores/event_log/snapshot_builder.h"
#include "tests/stores/event_log/log_reading.h"
#include "tests/stores/event_log/number_question.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

class AnswerReaderTest : public LogReadingTest {
protected:
    void Open(const EventLogBuilder& builder)
    {
        mSnapshot = Read(builder);
        mNumber = mRequests.NumberOf(NumberQuestion::Of("a"));
        mIsThere = mRequests.NumberOf(NumberQuestion::IsThere("a"));
    }

    AnswerReader Reader()
    {
        mUnchanged = UnchangedLog::Open(mDatabase.GetHandle(), mSnapshot);
        return AnswerReader(*mUnchanged, mRequests);
    }

    // The answers of an entry's rows, "?" for rows that are asked again.
    std::string Told(const AnswerColumn& column, std::size_t entryNumber = 0) const
    {
        const EventLogSnapshot::Entry entry = mSnapshot->GetEntry(entryNumber);
        std::string text;
        for (std::uint32_t row = entry.begin; row < entry.end; ++row) {
            text += column.IsAskedAgain(row) ? "? " : std::to_string(column.Get(row)) + " ";
        }
        return text;
    }

    RowBits AllRows() const
    {
        RowBits rows(0, static_cast<std::uint32_t>(mSnapshot->GetRowCount()));
        for (std::uint32_t row = 0; row < mSnapshot->GetRowCount(); ++row) {
            rows.Set(row);
        }
        return rows;
    }

    std::shared_ptr<const EventLogSnapshot> mSnapshot;
    std::unique_ptr<const UnchangedLog> mUnchanged;
    Requests mRequests;
    Requests::Number mNumber = 0;
    Requests::Number mIsThere = 0;
};

EventLogBuilder SomeTexts()
{
    return EventLogBuilder().Rows({{10, 7, "", R"({"a":5,"b":"x"})"}, {20, 7, "", ""}, {30, 7, "", "{"},
        {40, 7, "", "[1]"}, {50, 7, "", R"({"a":{"b":1}})"}, {60, 7, "", R"({"a":"x"})"},
        {70, 7, "", R"({"a":"\u0031"})"}, {80, 7, "", R"({"a":-3,"a":0})"}, {90, 7, "", R"({"b":1.5,"a":-3})"}});
}

TEST_F(AnswerReaderTest, AllTextsAreReadInSilence)
{
    Open(SomeTexts());
    const auto table = Reader().ReadAll({{7, 7, mNumber}, {7, 7, mIsThere}}, 0);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(Told(*table->Find(mNumber, 0, 9)), "5 0 ? ? ? ? 1 0 -3 ");
    EXPECT_EQ(Told(*table->Find(mIsThere, 0, 9)), "1 0 ? ? ? ? 1 0 1 ");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(AnswerReaderTest, RowsReadOneByOneAnswerTheSame)
{
    Open(SomeTexts());
    const auto columns = Reader().ReadOneByOne(mSnapshot->GetEntry(0), AllRows(), {mIsThere, mNumber});
    ASSERT_TRUE(columns.has_value());
    EXPECT_EQ(Told(*columns->at(0)), "1 0 ? ? ? ? 1 0 1 ");
    EXPECT_EQ(Told(*columns->at(1)), "5 0 ? ? ? ? 1 0 -3 ");
    EXPECT_THAT(mLog.Lines(), testing::IsEmpty());
}

TEST_F(AnswerReaderTest, TextsComeWithTheirRows)
{
    Open(SomeTexts());
    const auto texts = Reader().ReadTexts({2, 5});
    ASSERT_TRUE(texts.has_value());
    EXPECT_THAT(*texts, ElementsAre(Pair(2U, "{"), Pair(5U, R"({"a":"x"})")));
}

TEST_F(AnswerReaderTest, RowsBetweenThoseOfTheSnapshotAreLeftOut)
{
    Open(EventLogBuilder().Rows({{10, 7, "", R"({"a":1})"}, {20, 7, "", R"({"a":2})"}, {30, 8, "", R"({"a":3})"},
        {40, 7, "", R"({"a":4})"}, {50, 8, "", R"({"a":5})"}}).Sql("delete from event_info_flow where _ID = 2")
        .Sql("insert into event_info values (6, 7, '{\"a\":6}', 99)"));
    const auto table = Reader().ReadAll({{7, 8, mNumber}}, 0);
    EXPECT_EQ(Told(*table->Find(mNumber, 0, 4), 0), "1 4 ");
    EXPECT_EQ(Told(*table->Find(mNumber, 0, 4), 1), "3 5 ");
}

TEST_F(AnswerReaderTest, OnlyRowsSinceTheStartAreRead)
{
    Open(EventLogBuilder().Rows({{10, 7, "", "{"}, {20, 7, "", R"({"a":2})"}}));
    const auto table = Reader().ReadAll({{7, 7, mNumber}}, 15);
    EXPECT_EQ(table->GetSince(), 15);
    EXPECT_EQ(Told(*table->Find(mNumber, 0, 2)), "0 2 ");
}

// In a damaged log a scan may have found rows that a search misses.
TEST_F(AnswerReaderTest, RowsThatAreNotFoundAreNoAnswer)
{
    Open(SomeTexts());
    EventLogSnapshot::Origin origin = mSnapshot->GetOrigin();
    SnapshotBuilder builder(origin.lastMoment);
    builder.AddVersion(1, true, "");
    for (const std::int64_t row : {1, 2, 99}) {
        builder.AddRow({true, true, true, 7, 10, 1, row});
    }
    mSnapshot = std::move(builder).Build(std::move(origin));
    EXPECT_EQ(Reader().ReadAll({{7, 7, mNumber}}, 0), nullptr);
    EXPECT_FALSE(Reader().ReadOneByOne(mSnapshot->GetEntry(0), AllRows(), {mNumber}).has_value());
    EXPECT_FALSE(Reader().ReadTexts({2}).has_value());
}

} // namespace
