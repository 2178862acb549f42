#include "arborist/stores/repairs/repair_dates.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/stores/repairs/repair_db_util.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"
#include "tests/support/temp_dir.h"
#include "tests/support/time_zone.h"

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

constexpr char TABLE_LINE[] = "FUNc:RepairDbUtil::CreateRepairRecordTable: table repair_data already exist.";

class RepairDatesTest : public testing::Test {
protected:
    RepairDatesTest() { UseRoot("data"); }

    void UseRoot(const std::string& name) const { mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path(name)); }
    void RepairAt(std::int64_t seconds, const std::string& id) const
    {
        mSettings.Set(Settings::CURRENT_TIME, std::to_string(seconds));
        UpdateRepairDb(id);
    }
    fs::path File() const { return mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"); }

    TimeZone mZone{CENTRAL_EUROPE};
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    RepairDates mDates;
};

TEST_F(RepairDatesTest, EachQuestionLeavesTheLinesOfAnOpening)
{
    RepairAt(1700000000, "R");
    mLog.Clear();
    for (int question = 0; question < 3; ++question) {
        EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:13:20");
        EXPECT_EQ(mDates.Query("other"), "");
    }
    const auto lines = mLog.Lines();
    mLog.Clear();
    for (int question = 0; question < 3; ++question) {
        RepairDbUtil().QueryRepairDate("R");
        RepairDbUtil().QueryRepairDate("other");
    }
    EXPECT_EQ(lines, mLog.Lines());
    EXPECT_THAT(lines, testing::Contains(testing::HasSubstr(TABLE_LINE)).Times(6));
}

TEST_F(RepairDatesTest, LaterRepairsAreSeen)
{
    RepairAt(1700000000, "R");
    EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:13:20");
    RepairAt(1700000060, "R");
    EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:14:20");
}

TEST_F(RepairDatesTest, FileThatGoesIsMadeAnew)
{
    RepairAt(1700000000, "R");
    EXPECT_NE(mDates.Query("R"), "");
    fs::remove(File());
    EXPECT_EQ(mDates.Query("R"), "");
    EXPECT_TRUE(fs::exists(File()));
    RepairAt(1700000000, "R");
    EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:13:20");
}

TEST_F(RepairDatesTest, TableThatGoesIsMadeAnew)
{
    RepairAt(1700000000, "R");
    for (int question = 0; question < 2; ++question) {
        EXPECT_NE(mDates.Query("R"), "");
    }
    EventLogBuilder::Run(File().string(), "drop table repair_data");
    EXPECT_EQ(mDates.Query("R"), "");
    RepairAt(1700000000, "R");
    EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:13:20");
}

TEST_F(RepairDatesTest, QuestionThatFailsLeavesTheFileToOthers)
{
    RepairAt(1700000000, "R");
    for (int question = 0; question < 2; ++question) {
        EXPECT_EQ(mDates.Query("it's"), "");
    }
    RepairAt(1700000060, "R");
    EXPECT_EQ(mDates.Query("R"), "2023-11-14 23:14:20");
}

TEST_F(RepairDatesTest, AnotherRootIsAnotherFile)
{
    RepairAt(1700000000, "R");
    EXPECT_NE(mDates.Query("R"), "");
    UseRoot("other");
    EXPECT_EQ(mDates.Query("R"), "");
}

TEST_F(RepairDatesTest, FileThatIsNoDatabaseFailsAtEachQuestion)
{
    fs::create_directories(File().parent_path());
    mDir.Write("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db", std::string(5000, 'x'));
    EXPECT_EQ(mDates.Query("R"), "");
    const auto first = mLog.Lines();
    mLog.Clear();
    EXPECT_EQ(mDates.Query("R"), "");
    EXPECT_EQ(mLog.Lines(), first);
    EXPECT_THAT(first, testing::Not(IsEmpty()));
}

} // namespace
