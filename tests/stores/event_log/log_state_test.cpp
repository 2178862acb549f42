#include "arborist/stores/event_log/log_state.h"

#include "arborist/frame/stopping.h"
#include "tests/stores/event_log/log_reading.h"

namespace {

class LogStateTest : public LogReadingTest {};

TEST_F(LogStateTest, ChangeByAnotherConnectionIsSeenOutsideOfATransaction)
{
    EventLogBuilder().Row({10, 7, "", ""}).WriteTo(mPath);
    EventLogBuilder::Run(mPath, "pragma journal_mode = wal");
    mDatabase.Open(mPath);
    const std::int64_t before = ReadDataVersion(mDatabase.GetHandle());
    {
        const ReadTransaction transaction(mDatabase.GetHandle());
        EXPECT_EQ(ReadDataVersion(mDatabase.GetHandle()), before);
        EventLogBuilder::Run(mPath, "update event_info_flow set occurrence_time = 20");
        EXPECT_EQ(ReadDataVersion(mDatabase.GetHandle()), before);
    }
    EXPECT_NE(ReadDataVersion(mDatabase.GetHandle()), before);
}

TEST_F(LogStateTest, ClosedDatabaseHasNoVersion)
{
    const ReadTransaction transaction(mDatabase.GetHandle());
    EXPECT_EQ(ReadDataVersion(mDatabase.GetHandle()), NO_DATA_VERSION);
    EXPECT_TRUE(mLog.Lines().empty());
}

TEST_F(LogStateTest, TransactionOfADetectionThatIsToEndIsClosed)
{
    EventLogBuilder().Row({10, 7, "", ""}).WriteTo(mPath);
    mDatabase.Open(mPath);
    StopRequest request;
    const StopScope scope(&request);
    request.Start(std::nullopt);
    {
        const ReadTransaction transaction(mDatabase.GetHandle());
        ReadDataVersion(mDatabase.GetHandle());
        request.Request();
    }
    EXPECT_FALSE(request.HasStopped());
    EventLogBuilder::Run(mPath, "update event_info_flow set occurrence_time = 20"); // fails while somebody reads
}

} // namespace
