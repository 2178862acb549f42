// Processes that are killed in the midst of writing: the next one finds stores as they were before or after, never half of
// something that it takes for whole.
#include <chrono>
#include <csignal>
#include <cstdlib>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/zip_file.h"

namespace {

using testing::AnyOf;
using testing::ElementsAre;

constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char DERIVED_DATABASE[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/JankEventDb.db";
constexpr char REPAIRS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";

// How often a process is killed: what the environment's ARBORIST_DEATHS says, or some.
int Deaths()
{
    const char* const text = std::getenv("ARBORIST_DEATHS");
    return text == nullptr ? 10 : std::atoi(text);
}

class SuddenDeath : public ObservedDetection {
protected:
    // Runs `work` again and again in a process that is killed after `microseconds`.
    template <typename Work>
    static void Kill(unsigned int microseconds, Work work)
    {
        int started[2];
        ASSERT_EQ(pipe(started), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            [[maybe_unused]] const auto told = write(started[1], "s", 1);
            for (;;) {
                work();
            }
        }
        char byte = 0;
        ASSERT_EQ(read(started[0], &byte, 1), 1);
        close(started[0]);
        close(started[1]);
        usleep(microseconds);
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
    }

    // Spreads the deaths over the time that `work` takes.
    template <typename Work, typename Check>
    void KillOften(Work work, Check check)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const auto taken = std::chrono::steady_clock::now() - begin;
        const auto most = std::chrono::duration_cast<std::chrono::microseconds>(taken).count() * 2;
        const int deaths = Deaths();
        for (int death = 0; death < deaths; ++death) {
            SCOPED_TRACE("death " + std::to_string(death));
            Kill(static_cast<unsigned int>(most * death / deaths), work);
            check();
            if (HasFailure()) {
                return;
            }
        }
    }

    static void ExpectSound(const std::string& database)
    {
        // The next one who opens it for writing takes back what was left unfinished.
        EventLogBuilder::Run(database, "begin immediate; commit");
        EXPECT_THAT(DatabaseRows(database, "pragma quick_check"), ElementsAre("ok"));
    }

    const std::string mEventLog = mDir.Read(EVENT_LOG);
    const std::string mArchive = mDir.Read("device/data/battery.zip");
};

TEST_F(SuddenDeath, InADetectionLeavesTheNextOneRight)
{
    KillOften([this] { DetectAnew(); },
        [this] {
            EXPECT_EQ(DetectAnew().causes, CAUSES);
            ExpectSound(mDir.Path(DERIVED_DATABASE));
            EXPECT_EQ(mDir.Read(EVENT_LOG), mEventLog);
            EXPECT_EQ(mDir.Read("device/data/battery.zip"), mArchive);
        });
}

TEST_F(SuddenDeath, InARecordOfARepairLeavesTheOldOrTheNewDate)
{
    const auto date = [this](const std::string& repair) {
        EventLogBuilder::Run(mDir.Path(REPAIRS), "begin immediate; commit");
        return DatabaseRows(mDir.Path(REPAIRS), "select repair_date from repair_data where repair_id='" + repair + "'");
    };
    const auto record = [this](std::int64_t time, const std::string& repair) {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(time));
        UpdateRepairDb(repair);
    };
    record(NOW, "other");
    const auto other = date("other");
    record(NOW, "R1");
    const auto newDate = date("R1");
    record(NOW - 100, "R1");
    const auto oldDate = date("R1");
    bool isNew = false;
    KillOften([&] { record((isNew = !isNew) ? NOW : NOW - 100, "R1"); },
        [&] {
            EXPECT_THAT(date("R1"), AnyOf(oldDate, newDate));
            EXPECT_EQ(date("other"), other);
            ExpectSound(mDir.Path(REPAIRS));
        });
}

TEST_F(SuddenDeath, InTheFirstRecordsLosesNoneThatWasWritten)
{
    int repairs = 0;
    KillOften([&] { UpdateRepairDb("R" + std::to_string(++repairs)); },
        [&] {
            // Each process wrote the repairs that follow, and the last may be missing: none in between.
            EventLogBuilder::Run(mDir.Path(REPAIRS), "begin immediate; commit");
            EXPECT_THAT(DatabaseRows(mDir.Path(REPAIRS),
                "select count(distinct repair_id) = max(cast(substr(repair_id, 2) as integer)) from repair_data"),
                ElementsAre("1"));
        });
}

// Large enough that many deaths strike in the midst of a file.
class SuddenDeathOfCopies : public SuddenDeath {
protected:
    SuddenDeathOfCopies()
    {
        EventLogBuilder::Run(mDir.Path("big.db"),
            "create table charge(level, filler); insert into charge values (5, zeroblob(4000000)), (50, '')");
        mBig = mDir.Read("big.db");
        std::filesystem::remove(mDir.Path("big.db"));
    }

    void ExpectRightAnswerAndWholeCopy(const std::string& copy)
    {
        EXPECT_EQ(DetectAnew().causes, CAUSES);
        EXPECT_THAT(DatabaseRows(mDir.Path(copy), "select count(*), sum(length(filler)) from charge"),
            ElementsAre("2|4000000"));
        ExpectSound(mDir.Path(copy));
    }

    std::string mBig;
};

TEST_F(SuddenDeathOfCopies, LeavesTheNextCopyWhole)
{
    std::filesystem::remove(mDir.Path("device/data/battery.zip"));
    mDir.Write("device/data/battery.db", mBig);
    KillOften([this] { DetectAnew(); }, [this] {
        ExpectRightAnswerAndWholeCopy("copies/battery.db");
        EXPECT_EQ(mDir.Read("device/data/battery.db"), mBig);
    });
}

TEST_F(SuddenDeathOfCopies, OfAnArchiveLeavesTheNextOneWhole)
{
    WriteZip(mDir.Path("device/data/battery.zip"), {{"battery.db", mBig}});
    KillOften([this] { DetectAnew(); }, [this] { ExpectRightAnswerAndWholeCopy("copies/battery.db"); });
}

} // namespace
