// Processes that write to the event log and the repair records while a detection reads them: nobody loses anything, as
// each waits for the locks of the others.
#include <functional>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "tests/reliability/observed_detection.h"
#include "tests/support/database_rows.h"
#include "tests/support/event_log_builder.h"

// Waiting for the disk would take most of the time, and is of no interest here.
extern "C" int fsync(int) { return 0; }
extern "C" int fdatasync(int) { return 0; }

namespace {

using testing::ElementsAre;

constexpr char EVENT_LOG[] = "programdata/Comms/Lumbra/workDir/0/log.db";
constexpr char REPAIRS[] = "programdata/Comms/Lumbra/zxdetectrepair/databases/repair_record.db";
constexpr int RECORDS = 40;

class SharedStores : public ObservedDetection {
protected:
    // Processes that do `work`, each with its number from 0, until they are done with it.
    class Others {
    public:
        Others(int count, const std::function<void(int)>& work)
        {
            for (int number = 0; number < count; ++number) {
                const pid_t child = fork();
                if (child == 0) {
                    work(number);
                    _exit(testing::Test::HasFailure() ? 1 : 0);
                }
                mChildren.push_back(child);
            }
        }

        // True as long as one of them runs.
        bool Run()
        {
            int status = 0;
            while (!mChildren.empty() && waitpid(mChildren.back(), &status, WNOHANG) == mChildren.back()) {
                mChildren.pop_back();
                EXPECT_EQ(status, 0);
            }
            return !mChildren.empty();
        }

    private:
        std::vector<pid_t> mChildren;
    };
};

TEST_F(SharedStores, EachRecordOfThreeProcessesIsThereAndTheRepairedEventStaysRepaired)
{
    const std::vector<std::string> repaired = {"T/derived", "T/external", "T/node", "T/code"};
    UpdateRepairDb("R1");
    Others recorders(3, [](int number) {
        for (int record = 0; record < RECORDS; ++record) {
            UpdateRepairDb("P" + std::to_string(number) + "-" + std::to_string(record));
        }
    });
    int detections = 0;
    while (recorders.Run() || detections == 0) {
        const Answer answer = DetectAnew();
        EXPECT_EQ(answer.causes, repaired);
        EXPECT_FALSE(answer.isDoubted);
        ++detections;
    }
    EXPECT_THAT(DatabaseRows(mDir.Path(REPAIRS), "select count(*), count(distinct repair_id) from repair_data"),
        ElementsAre(std::to_string(3 * RECORDS + 1) + "|" + std::to_string(3 * RECORDS + 1)));
}

TEST_F(SharedStores, ALogThatIsWrittenToIsReadAsOneAtRest)
{
    Others services(1, [this](int) {
        for (int event = 0; event < 1000; ++event) {
            EventLogBuilder::Run(mDir.Path(EVENT_LOG),
                "pragma busy_timeout=60000; insert into event_info (event_id) values (1)");
        }
    });
    int detections = 0;
    while (services.Run() || detections == 0) {
        const Answer answer = DetectAnew();
        EXPECT_EQ(answer.causes, CAUSES);
        EXPECT_FALSE(answer.isDoubted);
        ++detections;
    }
}

} // namespace
