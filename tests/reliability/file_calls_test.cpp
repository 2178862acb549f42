// Detections over calls of the file system that fail.
#include <cerrno>

#include <gmock/gmock.h>

#include "arborist/frame/arborist.h"
#include "arborist/frame/repair.h"
#include "tests/reliability/call_counter.h"
#include "tests/reliability/failing_files.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/case_name.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"

namespace {

using CallCounter::Failing;
using FailingFiles::Call;
using testing::ElementsAre;

constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char DATABASES[] = "programdata/Comms/Lumbra/zxdetectrepair/databases";

struct CallCase {
    const char* name;
    Call call;
    int error;
    Failing failing;
};
void PrintTo(const CallCase& callCase, std::ostream* out) { *out << callCase.name; }

class FailingFileCall : public ObservedDetection, public testing::WithParamInterface<CallCase> {
protected:
    // A device on which nothing was ever detected, so that folders are made, too.
    void ForgetDetections() const
    {
        std::filesystem::remove_all(mDir.Path("programdata/Comms/Lumbra/zxdetectrepair"));
        std::filesystem::remove_all(mDir.Path("copies"));
    }

    Answer DetectFirst(std::uint64_t number)
    {
        ForgetDetections();
        FailingFiles::Watch(GetParam().call, GetParam().error);
        CallCounter::Start(number, GetParam().failing);
        const Answer answer = DetectAnew();
        UpdateRepairDb("R2");
        mCalls = CallCounter::Stop();
        return answer;
    }

    // The next one who opens it for writing takes back what was left unfinished.
    void ExpectWhole(const std::string& database) const
    {
        if (mDir.Has(database)) {
            EventLogBuilder::Run(mDir.Path(database), "begin immediate; commit");
            EXPECT_THAT(DatabaseRows(mDir.Path(database), "pragma quick_check"), ElementsAre("ok"));
        }
    }

    std::uint64_t mCalls = 0;
};

TEST_P(FailingFileCall, LeavesADetectionHonestAndItsStoresWhole)
{
    const std::string log = mDir.Read(EVENT_LOG);
    const std::string archive = mDir.Read("device/data/battery.zip");
    DetectAnew();
    DetectFirst(0);
    const std::uint64_t calls = mCalls;
    EXPECT_GT(calls, 0U);
    const std::size_t files = OpenFiles();
    for (const std::uint64_t number : CallCounter::Sample(calls, 20)) {
        SCOPED_TRACE("call " + std::to_string(number) + " of " + std::to_string(calls));
        EXPECT_TRUE(IsHonest(DetectFirst(number)));
        ExpectWhole(std::string(DATABASES) + "/JankEventDb.db");
        ExpectWhole(std::string(DATABASES) + "/repair_record.db");
        EXPECT_EQ(OpenFiles(), files);
        EXPECT_EQ(DetectAnew().causes, CAUSES);
        EXPECT_EQ(mDir.Read(EVENT_LOG), log);
        EXPECT_EQ(mDir.Read("device/data/battery.zip"), archive);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, FailingFileCall, testing::Values(
    CallCase{"OpenWithoutPermission", Call::OPEN, EACCES, Failing::ONE},
    CallCase{"EveryOpenWithoutPermission", Call::OPEN, EACCES, Failing::ALL_FROM_IT_ON},
    CallCase{"NoDescriptorLeft", Call::OPEN, EMFILE, Failing::ALL_FROM_IT_ON},
    CallCase{"Read", Call::READ, EIO, Failing::ONE},
    CallCase{"EveryRead", Call::READ, EIO, Failing::ALL_FROM_IT_ON},
    CallCase{"Write", Call::WRITE, EIO, Failing::ONE},
    CallCase{"DiskFull", Call::WRITE, ENOSPC, Failing::ALL_FROM_IT_ON},
    CallCase{"ReadOnlyFileSystem", Call::WRITE, EROFS, Failing::ALL_FROM_IT_ON},
    CallCase{"Rename", Call::RENAME, EACCES, Failing::ONE},
    CallCase{"MakeFolder", Call::MAKE_FOLDER, EACCES, Failing::ONE},
    CallCase{"EveryMakeFolder", Call::MAKE_FOLDER, ENOSPC, Failing::ALL_FROM_IT_ON},
    CallCase{"Remove", Call::REMOVE, EACCES, Failing::ONE},
    CallCase{"Status", Call::STATUS, EACCES, Failing::ONE},
    CallCase{"EveryStatus", Call::STATUS, EACCES, Failing::ALL_FROM_IT_ON},
    CallCase{"Close", Call::CLOSE, EIO, Failing::ONE},
    CallCase{"EveryClose", Call::CLOSE, EIO, Failing::ALL_FROM_IT_ON},
    CallCase{"Seek", Call::SEEK, EIO, Failing::ONE},
    CallCase{"ChangeMode", Call::CHANGE_MODE, EPERM, Failing::ALL_FROM_IT_ON},
    CallCase{"NextEntry", Call::NEXT_ENTRY, EIO, Failing::ONE},
    CallCase{"DeadStream", Call::DEAD_STREAM, EIO, Failing::ONE}), CaseName());

} // namespace
