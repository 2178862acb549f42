#include <gmock/gmock.h>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/model/event.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/recording_observer.h"
#include "tests/support/settings_guard.h"

struct RuleHelperPeer {
    static ResetTimeParser& Recovery(RuleHelper& helper) { return *helper.mResetTimeParser; }
};

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

// A user-defined text that names a repair, and what it says.
struct UserDefinedCase { const char* name; const char* text; bool findsRepair; std::size_t errors; };
void PrintTo(const UserDefinedCase& userDefined, std::ostream* out) { *out << userDefined.name; }

class DetectStartTimeTest : public testing::TestWithParam<UserDefinedCase> {
protected:
    DetectStartTimeTest()
    {
        mInfo->mTreeTag = TAG;
        mInfo->mRuleFileDir = mDir.Path();
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        SetNow(NOW);
    }

    void SetNow(std::int64_t now) const { mSettings.Set(Settings::CURRENT_TIME, std::to_string(now)); }

    // The repair was carried out so many seconds ago.
    void Repair(const std::string& id, std::int64_t age) const
    {
        SetNow(NOW - age);
        UpdateRepairDb(id);
        SetNow(NOW);
    }

    // A helper for a rule set in which the event E is mended by R1 and R2.
    std::unique_ptr<RuleHelper> Helper()
    {
        const TreeXml trees = TreeXml(TAG).Tree("T", Or({Basic("E")}));
        const RuleXml rules = RuleXml(TAG).Repair("E", {{"R1", ""}, {"R2", ""}});
        auto helper = std::make_unique<RuleHelper>(mInfo, Load(mDir, trees, rules, mInfo));
        mLog.Clear();
        return helper;
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    std::shared_ptr<DetectInfo> mInfo = std::make_shared<DetectInfo>();
};

TEST_F(DetectStartTimeTest, ReachesBackSoManyDays)
{
    const auto helper = Helper();
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", ""), NOW - 7 * DAY);
    EXPECT_EQ(helper->GetDetectStartTime(0, "4", ""), NOW - 30 * DAY);
    EXPECT_EQ(helper->GetDetectStartTime(-1, "4", ""), NOW + DAY);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(DetectStartTimeTest, NoRecordedResetOrUpdateMovesNothing)
{
    const auto helper = Helper();
    for (const char* const word : {"1", "2", "3", "4", "", "odd"}) {
        EXPECT_EQ(helper->GetDetectStartTime(7, word, ""), NOW - 7 * DAY) << word;
    }
}

TEST_F(DetectStartTimeTest, DaysWrapAt32Bits)
{
    const auto helper = Helper();
    // 24,856 days are 2,147,558,400 seconds, which read as -2,147,408,896.
    SetNow(NOW + 1000000000);
    EXPECT_EQ(helper->GetDetectStartTime(24855, "4", ""), NOW + 1000000000 - 2147472000);
    SetNow(NOW);
    EXPECT_EQ(helper->GetDetectStartTime(24856, "4", ""), NOW + 2147408896);
    EXPECT_EQ(helper->GetDetectStartTime(INT32_MIN, "4", ""), NOW);
    SetNow(INT64_MIN);
    EXPECT_EQ(helper->GetDetectStartTime(1, "4", ""), INT64_MAX - DAY + 1);
}

TEST_F(DetectStartTimeTest, StartIsNeverBeforeTheEpoch)
{
    EXPECT_EQ(Helper()->GetDetectStartTime(24000, "4", ""), 0);
}

TEST_F(DetectStartTimeTest, LatestRepairOfTheEventRaisesTheStart)
{
    const auto helper = Helper();
    Repair("R1", 2 * DAY);
    Repair("R2", 5 * DAY);
    Repair("R3", DAY);
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "E"), NOW - 2 * DAY);
    EXPECT_EQ(helper->GetDetectStartTime(1, "4", "E"), NOW - DAY);
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "other"), NOW - 7 * DAY);
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", ""), NOW - 7 * DAY);
}

TEST_F(DetectStartTimeTest, DateThatIsNoDateCountsAsNone)
{
    const auto helper = Helper();
    Repair("R1", 2 * DAY);
    EventLogBuilder::Run(mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"),
        "update repair_data set repair_date = 'yesterday'");
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "E"), NOW - 7 * DAY);
}

TEST_F(DetectStartTimeTest, EventOfAnotherIdDoesNotAddItsRepair)
{
    const auto helper = Helper();
    Repair("R3", DAY);
    const auto other = std::make_shared<BasicEvent>();
    other->SetId("other");
    other->SetUserDefined(R"({"Repairid":"R3"})");
    helper->SetCurrentEvent(other);
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "E"), NOW - 7 * DAY);
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "other"), NOW - 7 * DAY) << "has no repairs in the rule set";
}

TEST_P(DetectStartTimeTest, CurrentEventMayNameARepair)
{
    const auto helper = Helper();
    Repair("R1", 5 * DAY);
    Repair("R3", DAY);
    const auto event = std::make_shared<BasicEvent>();
    event->SetId("E");
    event->SetUserDefined(GetParam().text);
    helper->SetCurrentEvent(event);
    mLog.Clear();
    EXPECT_EQ(helper->GetDetectStartTime(7, "4", "E"), GetParam().findsRepair ? NOW - DAY : NOW - 5 * DAY);
    const auto errors = mLog.Lines(FT::LEVEL_ERROR);
    EXPECT_EQ(errors.size(), GetParam().errors);
    EXPECT_THAT(errors, testing::Each(StartsWith("FUNc:RuleHelper::GetRepairIdFromCurEvent: parse userDefinedJson err. ")));
}

INSTANTIATE_TEST_SUITE_P(Table, DetectStartTimeTest, testing::Values(
    UserDefinedCase{"Names", R"({"Repairid":"R3"})", true, 0}, UserDefinedCase{"Empty", "", false, 0},
    UserDefinedCase{"NamesNone", R"({"repairid":"R3"})", false, 0}, UserDefinedCase{"NoObject", "[1]", false, 0},
    UserDefinedCase{"NamesAnObject", R"({"Repairid":{}})", false, 0},
    UserDefinedCase{"NoJson", "{Repairid", false, 1}),
    CaseName());

TEST_F(DetectStartTimeTest, ObserverIsToldTheParts)
{
    const auto helper = Helper();
    RecordingObserver observer;
    helper->SetObserver(&observer);
    Repair("R1", 2 * DAY);
    helper->GetDetectStartTime(0, "1", "E");
    EXPECT_THAT(observer.Lines(), ElementsAre("start 1699827200 of period 1697408000 reset 0 update 0 repair 1699827200 "
        "by repair days 30 flag '1' repair id 'R1'"));
}

TEST_F(DetectStartTimeTest, ObserverIsToldWhichFloorWon)
{
    const auto helper = Helper();
    RecordingObserver observer;
    helper->SetObserver(&observer);
    ResetTimeParser& recovery = RuleHelperPeer::Recovery(*helper);
    recovery.ParseRecoveryLog(mDir.Write("recovery",
        "[2023-11-12 09:00:00.000] Command: \"recovery\" \"UPDATE\"\n"
        "[2023-11-12 12:00:00.000] zenrix recovery stopped\n"));
    recovery.GetResetLogTime(mDir.Write("reset", "time: 20231110120000;\n"));
    for (const char* const flag : {"1", "2", "3", "4"}) {
        helper->GetDetectStartTime(7, flag, "E");
    }
    Repair("R1", DAY);
    helper->GetDetectStartTime(7, "3", "E");
    EXPECT_THAT(observer.Lines(), ElementsAre(
        "start 1699786800 of period 1699395200 reset 1699614000 update 1699786800 repair 0 by update days 7 flag '1' "
        "repair id ''",
        "start 1699786800 of period 1699395200 reset 0 update 1699786800 repair 0 by update days 7 flag '2' repair id ''",
        "start 1699614000 of period 1699395200 reset 1699614000 update 0 repair 0 by reset days 7 flag '3' repair id ''",
        "start 1699395200 of period 1699395200 reset 0 update 0 repair 0 by period days 7 flag '4' repair id ''",
        "start 1699913600 of period 1699395200 reset 1699614000 update 0 repair 1699913600 by repair days 7 flag '3' "
        "repair id 'R1'"));
}

TEST_F(DetectStartTimeTest, ChecksFromUpdateCountTheCurrentVersion)
{
    EXPECT_TRUE(RuleHelper::IsDetectFromUpdate("1"));
    EXPECT_TRUE(RuleHelper::IsDetectFromUpdate("2"));
    EXPECT_FALSE(RuleHelper::IsDetectFromUpdate("3"));
    EXPECT_FALSE(RuleHelper::IsDetectFromUpdate("4"));
    EXPECT_FALSE(RuleHelper::IsDetectFromUpdate(""));
}

} // namespace
