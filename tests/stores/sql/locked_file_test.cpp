// Statements on files that another connection has locked.
#include <optional>
#include <thread>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/stopping.h"
#include "arborist/stores/sql/sql_cursor.h"
#include "arborist/stores/sql/sql_database.h"
#include "arborist/stores/sql/sql_operator.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/longest_lock_wait.h"
#include "tests/support/temp_dir.h"

namespace FT::sql {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int FOR_EVER = 1'000'000'000;
constexpr char QUERY[] = "select * from t";

class LockedFile : public testing::Test {
protected:
    LockedFile()
    {
        EventLogBuilder::Run(mPath, "create table t (a)");
        EXPECT_TRUE(mDatabase.Open(mPath));
        EXPECT_TRUE(mOther.Open(mPath));
    }

    void Lock() { ASSERT_TRUE(SqlOperator(mOther.GetHandle()).ExecuteNoCallback("BEGIN EXCLUSIVE")); }
    bool Ask() const { return SqlOperator(mDatabase.GetHandle()).Execute(QUERY); }

    TempDir mDir;
    LogCapture mLog;
    const std::string mPath = mDir.Path("a.db");
    SqlDatabase mOther;
    SqlDatabase mDatabase;
    StopRequest mRequest;
};

TEST_F(LockedFile, WithoutADetectionFailsAtOnce)
{
    const LongestLockWait longest(FOR_EVER);
    Lock();
    EXPECT_FALSE(Ask());
    const StopScope none(nullptr);
    EXPECT_FALSE(Ask());
}

TEST_F(LockedFile, OfADetectionIsWaitedForOnceHoweverManyStatementsAndConnectionsFollow)
{
    const StopScope detection(&mRequest);
    mRequest.Start(std::nullopt);
    Lock();
    const LongestLockWait brief(5);
    EXPECT_FALSE(Ask());
    const LongestLockWait longest(FOR_EVER);
    EXPECT_FALSE(Ask());
    const auto line = HasSubstr("Execute sql failed: database is locked");
    EXPECT_THAT(mLog.Lines(), ElementsAre(line, line));
    EXPECT_FALSE(SqlCursor(mDatabase.GetHandle(), QUERY).Step());
    mLog.Clear();
    EXPECT_TRUE(mDatabase.Open(mPath));
    EXPECT_FALSE(Ask());
    EXPECT_THAT(mLog.Lines(), ElementsAre(HasSubstr("Open: Failed(5) to set cache size by " + mPath),
        HasSubstr("Open: Failed(5) to set synchronous by " + mPath), line));
}

TEST_F(LockedFile, OfTheNextDetectionIsWaitedForAgain)
{
    const StopScope detection(&mRequest);
    Lock();
    {
        const LongestLockWait brief(5);
        mRequest.Start(std::nullopt);
        EXPECT_FALSE(Ask());
    }
    const LongestLockWait longest(FOR_EVER);
    mRequest.Start(std::nullopt);
    mRequest.StopAtQuestion(6); // the statement asks first, then each sleep
    EXPECT_THROW(Ask(), DetectionStopped);
    EXPECT_EQ(mRequest.GetQuestions(), 6U);
}

TEST_F(LockedFile, IsNotWaitedForOnceTheDetectionHasToEnd)
{
    const LongestLockWait longest(FOR_EVER);
    const StopScope detection(&mRequest);
    Lock();
    mRequest.Start(std::nullopt);
    mRequest.StopAtQuestion(2);
    EXPECT_THROW(Ask(), DetectionStopped);
    EXPECT_FALSE(Ask()) << "what is left to do after the stop doesn't wait either";
    EXPECT_THAT(mLog.Lines(), ElementsAre(HasSubstr("database is locked"))) << "of the last statement alone";
}

TEST_F(LockedFile, IsNotWaitedForByAStoppedDetectionThatOpensIt)
{
    const LongestLockWait longest(FOR_EVER);
    const StopScope detection(&mRequest);
    Lock();
    mRequest.Start(std::nullopt);
    mRequest.StopAtQuestion(2);
    EXPECT_THROW(mDatabase.Open(mPath), DetectionStopped);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(LockedFile, IsLeftWhenAnotherThreadStopsTheDetection)
{
    const LongestLockWait longest(FOR_EVER);
    const StopScope detection(&mRequest);
    Lock();
    mRequest.Start(std::nullopt);
    std::thread host([this] { mRequest.Request(); });
    EXPECT_THROW(Ask(), DetectionStopped);
    host.join();
}

TEST_F(LockedFile, IsLeftWhenTheTimeOfTheDetectionIsOver)
{
    const LongestLockWait longest(FOR_EVER);
    const StopScope detection(&mRequest);
    Lock();
    mRequest.Start(std::chrono::duration<double>(0.001));
    EXPECT_THROW(Ask(), DetectionStopped);
}

TEST_F(LockedFile, CannotBeWaitedForLongerByAStatement)
{
    mDatabase.Restrict(SqlAccess::OWN_FILE);
    EXPECT_TRUE(SqlOperator(mDatabase.GetHandle()).ExecuteNoCallback("pragma busy_timeout=1000000000"));
    Lock();
    EXPECT_FALSE(Ask());
}

} // namespace
} // namespace FT::sql
