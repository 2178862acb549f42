#include "arborist/stores/event_log/unchanged_log.h"

#include "arborist/frame/settings.h"
#include "tests/stores/event_log/log_reading.h"
#include "tests/support/settings_guard.h"

namespace {

class UnchangedLogTest : public LogReadingTest {
protected:
    std::unique_ptr<const UnchangedLog> Open() { return UnchangedLog::Open(mDatabase.GetHandle(), mSnapshot); }

    std::shared_ptr<const EventLogSnapshot> mSnapshot = Read(EventLogBuilder().Row({10, 7, "", ""}));
};

TEST_F(UnchangedLogTest, LogStaysInTheStateOfItsSnapshot)
{
    const auto log = Open();
    ASSERT_NE(log, nullptr);
    EXPECT_EQ(&log->GetSnapshot(), mSnapshot.get());
    mSnapshot.reset();
    EXPECT_EQ(log->GetSnapshot().GetRowCount(), 1U);
}

TEST_F(UnchangedLogTest, LogThatHasChangedIsNotOpened)
{
    EventLogBuilder::Run(mPath, "delete from event_info");
    EXPECT_EQ(Open(), nullptr);
    EXPECT_FALSE(UnchangedLog::IsIn(mDatabase.GetHandle(), mSnapshot));
    EventLogBuilder::Run(mPath, "vacuum"); // no lock is left behind
    mSnapshot = ReadAgain();
    EXPECT_NE(Open(), nullptr);
}

TEST_F(UnchangedLogTest, AnEarlierLastMomentIsTheSameStateAndALaterOneIsNot)
{
    SettingsGuard settings;
    settings.Set(Settings::AS_OF, "5");
    EXPECT_NE(Open(), nullptr);
    mSnapshot = ReadAgain();
    EXPECT_NE(Open(), nullptr);
    settings.Set(Settings::AS_OF, "6");
    EXPECT_EQ(Open(), nullptr);
}

TEST_F(UnchangedLogTest, WithoutASnapshotNothingIsOpened)
{
    mSnapshot.reset();
    EXPECT_EQ(Open(), nullptr);
    EXPECT_FALSE(UnchangedLog::IsIn(mDatabase.GetHandle(), mSnapshot));
}

} // namespace
