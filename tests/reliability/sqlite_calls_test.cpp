// Detections, derived tables and records of repairs over calls of the operating system that fail below SQLite.
#include <gmock/gmock.h>
#include <sqlite3.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/reliability/call_counter.h"
#include "tests/reliability/failing_vfs.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/case_name.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/longest_lock_wait.h"

// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

namespace {

using Call = FailingVfs::Call;
using CallCounter::Failing;
using testing::AnyOf;
using testing::ElementsAre;

constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char DERIVED_DATABASE[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";
constexpr char REPAIRS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";

struct CallCase {
    const char* name;
    Call call;
    int code;
    Failing failing;
};
void PrintTo(const CallCase& callCase, std::ostream* out) { *out << callCase.name; }

class FailingSqliteCall : public ObservedDetection, public testing::WithParamInterface<CallCase> {
protected:
    // The number of calls of the kind that `work` makes, which is made twice.
    template <typename Work>
    static std::uint64_t Count(Work work)
    {
        work();
        FailingVfs::Watch(GetParam().call, GetParam().code);
        CallCounter::Start(0);
        work();
        return CallCounter::Stop();
    }

    void ExpectWholeStores() const
    {
        // The next one who opens it for writing takes back what was left unfinished.
        EventLogBuilder::Run(mDir.Path(DERIVED_DATABASE), "begin immediate; commit");
        EXPECT_THAT(DatabaseRows(mDir.Path(DERIVED_DATABASE), "pragma quick_check"), ElementsAre("ok"));
        EXPECT_EQ(mDir.Read(EVENT_LOG), mEventLog);
    }

    const LongestLockWait mWait{2};
    FailingVfs mVfs;
    const std::string mEventLog = mDir.Read(EVENT_LOG);
};

TEST_P(FailingSqliteCall, LeavesADetectionHonestAndItsStoresWhole)
{
    const std::uint64_t calls = Count([this] { DetectAnew(); });
    EXPECT_GT(calls, 0U);
    const std::size_t files = OpenFiles();
    for (const std::uint64_t number : CallCounter::Sample(calls, 12)) {
        SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
        CallCounter::Start(number, GetParam().failing);
        const Answer answer = DetectAnew();
        CallCounter::Stop();
        EXPECT_TRUE(IsHonest(answer));
        ExpectWholeStores();
        EXPECT_EQ(OpenFiles(), files);
        EXPECT_EQ(DetectAnew().causes, CAUSES);
    }
}

TEST_P(FailingSqliteCall, LeavesAnEngineThatDetectsAgain)
{
    const std::uint64_t calls = Count([this] { DetectAnew(); });
    Arborist engine(mInfo);
    for (const std::uint64_t number : CallCounter::Sample(calls, 6)) {
        SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
        CallCounter::Start(number, GetParam().failing);
        const Answer answer = Detect(engine);
        CallCounter::Stop();
        EXPECT_TRUE(IsHonest(answer));
        EXPECT_EQ(Detect(engine).causes, CAUSES);
    }
}

TEST_P(FailingSqliteCall, LeavesTheOldOrTheNewDateOfARepair)
{
    // Where the look-up of the known repairs fails, a second row is written. The first one counts.
    const auto date = [this] {
        EventLogBuilder::Run(mDir.Path(REPAIRS), "begin immediate; commit");
        return DatabaseRows(mDir.Path(REPAIRS), "select repair_date from repair_data where repair_id='R1' limit 1");
    };
    const auto record = [&](std::int64_t time) {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(time));
        UpdateRepairDb("R1");
        return date();
    };
    const auto oldDate = record(NOW - 100);
    const auto newDate = record(NOW);
    ASSERT_NE(oldDate, newDate);
    std::int64_t later = NOW;
    const std::uint64_t calls = Count([&] {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(++later));
        UpdateRepairDb("R1");
    });
    EXPECT_GT(calls, 0U);
    const std::size_t files = OpenFiles();
    for (const std::uint64_t number : CallCounter::Sample(calls, 40)) {
        SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
        ASSERT_EQ(record(NOW - 100), oldDate);
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(NOW));
        CallCounter::Start(number, GetParam().failing);
        UpdateRepairDb("R1");
        CallCounter::Stop();
        EXPECT_THAT(date(), AnyOf(oldDate, newDate));
        EXPECT_EQ(OpenFiles(), files);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, FailingSqliteCall, testing::Values(
    CallCase{"Open", Call::OPEN, SQLITE_CANTOPEN, Failing::ONE},
    CallCase{"EveryOpen", Call::OPEN, SQLITE_CANTOPEN, Failing::ALL_FROM_IT_ON},
    CallCase{"Read", Call::READ, SQLITE_IOERR_READ, Failing::ONE},
    CallCase{"EveryRead", Call::READ, SQLITE_IOERR_READ, Failing::ALL_FROM_IT_ON},
    CallCase{"Write", Call::WRITE, SQLITE_IOERR_WRITE, Failing::ONE},
    CallCase{"DiskFull", Call::WRITE, SQLITE_FULL, Failing::ALL_FROM_IT_ON},
    CallCase{"ReadOnly", Call::WRITE, SQLITE_READONLY, Failing::ALL_FROM_IT_ON},
    CallCase{"Sync", Call::SYNC, SQLITE_IOERR_FSYNC, Failing::ONE},
    CallCase{"EverySync", Call::SYNC, SQLITE_IOERR_FSYNC, Failing::ALL_FROM_IT_ON},
    CallCase{"BusyLock", Call::LOCK, SQLITE_BUSY, Failing::ONE},
    CallCase{"EveryLockIsBusy", Call::LOCK, SQLITE_BUSY, Failing::ALL_FROM_IT_ON},
    CallCase{"RemovedJournal", Call::REMOVE, SQLITE_IOERR_DELETE, Failing::ONE}), CaseName());

class BriefSqliteLock : public ObservedDetection {
protected:
    // Calls `check` after `work` has met a lock of others at its first, second, ... call for one, each released at once.
    template <typename Work, typename Check>
    void MeetLocks(Work work, Check check)
    {
        work();
        FailingVfs::Watch(Call::LOCK, SQLITE_BUSY);
        CallCounter::Start(0);
        work();
        const std::uint64_t calls = CallCounter::Stop();
        EXPECT_GT(calls, 0U);
        for (const std::uint64_t number : CallCounter::Sample(calls, 40)) {
            SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
            CallCounter::Start(number, Failing::ONE);
            work();
            CallCounter::Stop();
            check();
        }
    }

    FailingVfs mVfs;
};

TEST_F(BriefSqliteLock, DoesNotChangeADetection)
{
    Answer answer;
    MeetLocks([&] { answer = DetectAnew(); },
        [&] {
            EXPECT_EQ(answer.causes, CAUSES);
            EXPECT_FALSE(answer.isDoubted);
        });
}

TEST_F(BriefSqliteLock, DoesNotLoseARecord)
{
    int records = 0;
    MeetLocks([&] { UpdateRepairDb("R" + std::to_string(++records)); },
        [&] {
            EXPECT_THAT(DatabaseRows(mDir.Path(REPAIRS), "select count(*) from repair_data"),
                ElementsAre(std::to_string(records)));
        });
}

} // namespace
