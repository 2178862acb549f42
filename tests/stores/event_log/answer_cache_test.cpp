#include "arborist/stores/event_log/answer_cache.h"

#include "tests/stores/event_log/log_reading.h"
#include "tests/stores/event_log/number_question.h"

namespace {

class AnswerCacheTest : public LogReadingTest {
protected:
    // 100 rows of id 7 with numbers from 0, one of them not in JSON, and a row of id 8.
    AnswerCacheTest()
    {
        EventLogBuilder builder;
        for (int row = 0; row < 100; ++row) {
            builder.Row({row, 7, "", row == 50 ? "{" : "{\"a\":" + std::to_string(row) + "}"});
        }
        mSnapshot = Read(builder.Row({100, 8, "", "{\"a\":1000}"}));
        mCache.Reset(mSnapshot);
    }

    AnswerCache::Asked Ask(std::int32_t first, std::int32_t last, std::int64_t start, const std::string& key = "a")
    {
        return {first, last, start, mCache.Foresee(first, last, {NumberQuestion::Of(key)})};
    }

    std::shared_ptr<const RowAnswers> Find(const AnswerCache::Asked& asked, std::size_t entryNumber)
    {
        const EventLogSnapshot::Entry entry = mSnapshot->GetEntry(entryNumber);
        return mCache.Find(
            asked, entry, mSnapshot->RangeSince(entry, asked.startTime), {asked.startTime, std::nullopt});
    }

    std::int32_t Answer(const AnswerCache::Asked& asked, std::size_t entryNumber, std::uint32_t row)
    {
        const auto answers = Find(asked, entryNumber);
        return answers == nullptr ? -1 : answers->columns.at(0)->Get(row);
    }

    std::shared_ptr<const EventLogSnapshot> mSnapshot;
    AnswerCache mCache{mDatabase.GetHandle()};
};

TEST_F(AnswerCacheTest, RowsAreAnsweredPreparedOrNot)
{
    const auto asked = Ask(7, 8, 10);
    EXPECT_EQ(Answer(asked, 0, 20), 20);
    mCache.Prepare(asked);
    EXPECT_EQ(Answer(asked, 0, 20), 20);
    EXPECT_EQ(Answer(asked, 1, 100), 1000);
    EXPECT_EQ(Answer(Ask(7, 8, 0), 0, 5), 5) << "before the start that was prepared";
    EXPECT_EQ(Answer(Ask(7, 8, 10, "b"), 0, 20), 0) << "a question that was not prepared";
    EXPECT_TRUE(mLog.Lines().empty());
}

TEST_F(AnswerCacheTest, TextsOfRowsToAskAgainAreThere)
{
    const auto answers = Find(Ask(7, 7, 0), 0);
    ASSERT_NE(answers, nullptr);
    EXPECT_TRUE(answers->columns.at(0)->IsAskedAgain(50));
    EXPECT_EQ(answers->texts.at(50), "{");
    EXPECT_EQ(answers->texts.size(), 1U);
    EXPECT_TRUE(Find(Ask(7, 7, 51), 0)->texts.empty()) << "they don't count";
}

TEST_F(AnswerCacheTest, WhatIsReadAheadStaysKnownWhateverHappensToTheLog)
{
    mCache.ReadForeseen(); // of nothing
    const auto asked = Ask(7, 8, 51);
    mCache.ReadForeseen();
    mCache.ReadForeseen(); // once is enough
    const auto late = Ask(7, 8, 51, "b");
    EventLogBuilder::Run(mPath, "update event_info set extra = ''");
    EXPECT_EQ(Answer(asked, 0, 60), 60);
    EXPECT_EQ(Answer(asked, 1, 100), 1000);
    EXPECT_EQ(Find(late, 0), nullptr);
}

TEST_F(AnswerCacheTest, LogThatHasChangedIsNotReadAhead)
{
    const auto asked = Ask(7, 8, 0);
    EventLogBuilder::Run(mPath, "update event_info set extra = ''");
    mCache.ReadForeseen();
    EXPECT_EQ(Find(asked, 1), nullptr);
}

// What was read in one pass stays known; the rest would be read from another state of the log.
TEST_F(AnswerCacheTest, LogThatHasChangedHasNoFurtherAnswers)
{
    const auto asked = Ask(8, 8, 0);
    mCache.Prepare(Ask(7, 8, 51));
    EventLogBuilder::Run(mPath, "update event_info set extra = ''");
    EXPECT_EQ(Answer(Ask(7, 8, 51), 0, 60), 60);
    EXPECT_EQ(Find(asked, 1), nullptr);
    mCache.Prepare(asked);
    EXPECT_EQ(Find(asked, 1), nullptr);
    mSnapshot = ReadAgain();
    mCache.Reset(mSnapshot);
    EXPECT_EQ(Answer(asked, 1, 100), 0);
}

TEST_F(AnswerCacheTest, RowsBeforeThoseThatAreKnownArePreparedToo)
{
    Ask(8, 8, 0);
    mCache.ReadForeseen();
    const auto asked = Ask(7, 8, 51);
    mCache.Prepare(asked);
    EventLogBuilder::Run(mPath, "update event_info set extra = ''");
    EXPECT_EQ(Answer(asked, 0, 60), 60);
    EXPECT_EQ(Answer(asked, 1, 100), 1000);
}

} // namespace
