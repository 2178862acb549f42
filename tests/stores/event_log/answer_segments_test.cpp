#include "arborist/stores/event_log/answer_segments.h"

#include <gmock/gmock.h>

#include "arborist/frame/settings.h"
#include "tests/stores/event_log/log_reading.h"
#include "tests/stores/event_log/number_question.h"
#include "tests/support/settings_guard.h"

namespace {

class AnswerSegmentsTest : public LogReadingTest {
protected:
    void SetUp() override
    {
        EventLogBuilder builder;
        for (int row = 0; row < 40; ++row) {
            builder.Row({row, 1 + row % 10, "", ""});
        }
        mSnapshot = Read(builder);
    }

    Requests::Number Number(const std::string& key) { return mRequests.NumberOf(NumberQuestion::IsThere(key)); }

    // The requested keys of each id from 1 to 10: "ab" for the keys a and b.
    std::string KeysOfIds(const std::vector<Requests::Request>& wanted)
    {
        AnswerTable table(0);
        const AnswerSegments segments(*mSnapshot, mRequests, wanted, table);
        std::string text;
        for (std::size_t entry = 0; entry < 10; ++entry) {
            const AnswerSegment* const segment = segments.OfEntry(entry);
            text += entry == 0 ? "" : " ";
            for (const AnswerSegment::Target& target : segment == nullptr ? AnswerSegment().targets : segment->targets) {
                text += segment->keys[target.key];
            }
        }
        return text;
    }

    std::shared_ptr<const EventLogSnapshot> mSnapshot;
    Requests mRequests;
};

TEST_F(AnswerSegmentsTest, EachEntryIsAskedWhatIsWantedOfItsId)
{
    const auto a = Number("a");
    const auto b = Number("b");
    EXPECT_EQ(KeysOfIds({{2, 4, a}}), " a a a      ");
    EXPECT_EQ(KeysOfIds({{2, 4, a}, {4, 6, b}, {9, 300, a}}), " a a ab b b   a a");
    EXPECT_EQ(KeysOfIds({{2, 4, a}, {3, 6, a}, {6, 6, a}, {2, 4, a}}), " a a a a a    ");
    EXPECT_EQ(KeysOfIds({{20, 30, a}, {-5, 0, a}}), "         ");
    EXPECT_EQ(KeysOfIds({{INT32_MIN, INT32_MAX, b}}), "b b b b b b b b b b");
}

TEST_F(AnswerSegmentsTest, IdsWithoutRowsInTheSnapshotTakeNoColumnFromThoseBehindThem)
{
    SettingsGuard settings;
    settings.Set(Settings::AS_OF, "5");
    // The rows of the ids 1 and 2 are hidden.
    mSnapshot = Read(EventLogBuilder().Rows({{9, 1, "", ""}, {9, 2, "", ""}, {1, 3, "", ""}, {2, 3, "", ""}}));
    const auto a = Number("a");
    AnswerTable table(0);
    const AnswerSegments segments(*mSnapshot, mRequests, {{1, 1, a}, {3, 3, a}}, table);
    EXPECT_EQ(segments.OfEntry(0), nullptr);
    ASSERT_NE(segments.OfEntry(2), nullptr);
    EXPECT_NE(table.Find(a, 0, 2), nullptr);
}

TEST_F(AnswerSegmentsTest, OneKeyIsReadOnceForAllItsQuestions)
{
    AnswerTable table(0);
    const auto isThere = Number("a");
    const auto number = mRequests.NumberOf(NumberQuestion::Of("a"));
    const AnswerSegments segments(*mSnapshot, mRequests, {{1, 10, isThere}, {1, 10, number}}, table);
    EXPECT_THAT(segments.OfEntry(0)->keys, testing::ElementsAre("a"));
    EXPECT_EQ(segments.OfEntry(0)->targets.size(), 2U);
    EXPECT_FALSE(table.Find(isThere, 0, 40)->IsNumber());
    EXPECT_TRUE(table.Find(number, 0, 40)->IsNumber());
}

TEST_F(AnswerSegmentsTest, WhatHasNoRoomIsLeftOutFromTheEnd)
{
    std::vector<Requests::Request> wanted;
    for (int key = 0; key < 2000; ++key) {
        wanted.push_back({1, 10, Number("k" + std::to_string(key))});
    }
    AnswerTable table(0);
    const AnswerSegments segments(*mSnapshot, mRequests, wanted, table);
    EXPECT_NE(table.Find(wanted.front().question, 0, 40), nullptr);
    EXPECT_EQ(table.Find(wanted.back().question, 0, 40), nullptr);
    EXPECT_GT(segments.OfEntry(0)->targets.size(), 20U);
}

// Without a bound, nested ranges would have as many targets as the square of their number.
TEST_F(AnswerSegmentsTest, TargetsOfNestedRangesAreBounded)
{
    EventLogBuilder builder;
    builder.Sql("insert into event_version values (1, '')").Sql("with recursive n(i) as (select 1 union all select i + 1 "
        "from n where i < 20000) insert into event_info select i, i, '', 1 from n")
        .Sql("insert into event_info_flow select _ID, _ID, _ID from event_info");
    mSnapshot = Read(builder);
    std::vector<Requests::Request> wanted;
    for (int nested = 0; nested < 400; ++nested) {
        wanted.push_back({nested, nested + 100, Number("k" + std::to_string(nested))});
    }
    AnswerTable table(0);
    const AnswerSegments segments(*mSnapshot, mRequests, wanted, table);
    std::size_t targets = 0;
    const AnswerSegment* last = nullptr;
    for (std::size_t entry = 0; entry < 20000; ++entry) {
        const AnswerSegment* const segment = segments.OfEntry(entry);
        targets += segment != nullptr && segment != last ? segment->targets.size() : 0;
        last = segment;
    }
    EXPECT_GT(targets, 100U);
    EXPECT_LT(targets, 5000U);
}

} // namespace
