#include "arborist/evaluation/start_times.h"

#include <gmock/gmock.h>

#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/trouble_watch.h"
#include "arborist/model/event.h"
#include "arborist/stores/repairs/reset_time_parser.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/evidence_lines.h"
#include "tests/support/settings_guard.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t DAY = 86400;

// A user-defined text that names a repair, and whether it is found.
struct UserDefinedCase {
    const char* name;
    const char* text;
    bool findsRepair;
    std::size_t errors;
    bool isUnreadable = false;
};
void PrintTo(const UserDefinedCase& userDefined, std::ostream* out) { *out << userDefined.name; }

class StartTimesTest : public testing::TestWithParam<UserDefinedCase> {
protected:
    StartTimesTest()
    {
        mInfo->mTreeTag = TAG;
        mInfo->mRuleFileDir = mDir.Path();
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        SetNow(NOW);
    }

    void SetNow(std::int64_t now) const { mSettings.Set(Settings::CURRENT_TIME, std::to_string(now)); }

    // Records that the repair was carried out `age` seconds ago.
    void Repair(const std::string& id, std::int64_t age) const
    {
        SetNow(NOW - age);
        UpdateRepairDb(id);
        SetNow(NOW);
    }

    // The start time for the rules of mCurrent, in a rule set in which R1 and R2 repair the event E.
    std::int64_t Start(std::int32_t days, const std::string& word, const std::string& eventId)
    {
        return mStartTimes->GetDetectStartTime(days, word, eventId, mCurrent.get(), &mRecord);
    }

    void SetUp() override
    {
        const TreeXml trees = TreeXml(TAG).Tree("T", Or({Basic("E")}));
        const RuleXml rules = RuleXml(TAG).Repair("E", {{"R1", ""}, {"R2", ""}});
        mStartTimes = std::make_unique<StartTimes>(mRecovery, Load(mDir, trees, rules, mInfo));
        mLog.Clear();
    }

    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
    Evidence::Start mRecord;
    std::shared_ptr<DetectInfo> mInfo = std::make_shared<DetectInfo>();
    std::shared_ptr<ResetTimeParser> mRecovery = std::make_shared<ResetTimeParser>("");
    std::shared_ptr<Event> mCurrent;
    std::unique_ptr<StartTimes> mStartTimes;
};

TEST_F(StartTimesTest, ReachesBackSoManyDays)
{
    EXPECT_EQ(Start(7, "4", ""), NOW - 7 * DAY);
    EXPECT_EQ(Start(0, "4", ""), NOW - 30 * DAY);
    EXPECT_EQ(Start(-1, "4", ""), NOW + DAY);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(StartTimesTest, NoRecordedResetOrUpdateMovesNothing)
{
    for (const char* const word : {"1", "2", "3", "4", "", "odd"}) {
        EXPECT_EQ(Start(7, word, ""), NOW - 7 * DAY) << word;
    }
}

TEST_F(StartTimesTest, DaysWrapAt32Bits)
{
    // 24,856 days are 2,147,558,400 seconds, which read as -2,147,408,896.
    SetNow(NOW + 1000000000);
    EXPECT_EQ(Start(24855, "4", ""), NOW + 1000000000 - 2147472000);
    SetNow(NOW);
    EXPECT_EQ(Start(24856, "4", ""), NOW + 2147408896);
    EXPECT_EQ(Start(INT32_MIN, "4", ""), NOW);
    SetNow(INT64_MIN);
    EXPECT_EQ(Start(1, "4", ""), INT64_MAX - DAY + 1);
}

TEST_F(StartTimesTest, StartIsNeverBeforeTheEpoch)
{
    EXPECT_EQ(Start(24000, "4", ""), 0);
}

TEST_F(StartTimesTest, LatestRepairOfTheEventRaisesTheStart)
{
    Repair("R1", 2 * DAY);
    Repair("R2", 5 * DAY);
    Repair("R3", DAY);
    EXPECT_EQ(Start(7, "4", "E"), NOW - 2 * DAY);
    EXPECT_EQ(Start(1, "4", "E"), NOW - DAY);
    EXPECT_EQ(Start(7, "4", "other"), NOW - 7 * DAY);
    EXPECT_EQ(Start(7, "4", ""), NOW - 7 * DAY);
}

TEST_F(StartTimesTest, DateThatIsNoDateCountsAsNone)
{
    Repair("R1", 2 * DAY);
    EventLogBuilder::Run(mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"),
        "update repair_data set repair_date = 'yesterday'");
    EXPECT_EQ(Start(7, "4", "E"), NOW - 7 * DAY);
}

// The repair took place, and nobody knows when.
TEST_F(StartTimesTest, RepairThatIsRecordedWithoutADateIsUnreadable)
{
    const std::string path = mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
    Repair("R1", 2 * DAY);
    for (const char* const date : {"null", "''", "'yesterday'"}) {
        EventLogBuilder::Run(path, std::string("update repair_data set repair_date = ") + date);
        EXPECT_EQ(Start(7, "4", "E"), NOW - 7 * DAY);
        EXPECT_EQ(mRecord.unreadableRepair, "R1") << date;
    }
    EventLogBuilder::Run(path, "delete from repair_data");
    Start(7, "4", "E");
    EXPECT_EQ(mRecord.unreadableRepair, "") << "not recorded";
}

TEST_F(StartTimesTest, TroubleWithRepairsNamesTheirDatabase)
{
    std::vector<std::string> places;
    const TroubleWatch watch([&](const Evidence::Trouble& trouble) {
        places.push_back(trouble.subject + " " + trouble.file);
    });
    const std::string path = mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db");
    Repair("R1", 2 * DAY);
    mSettings.Set(Settings::AS_OF, std::to_string(NOW - 3 * DAY));
    Start(7, "4", "E");
    EXPECT_THAT(places, ElementsAre("R1 " + path));
    places.clear();
    mSettings.Set(Settings::AS_OF, "-5"); // even before 1970 a repair without a date wasn't recorded later
    Start(7, "4", "E");
    EXPECT_THAT(places, ElementsAre("R1 " + path));
    places.clear();
    mSettings.Set(Settings::AS_OF, "");
    EventLogBuilder::Run(path, "alter table repair_data rename column repair_date to other");
    Start(7, "4", "E");
    EXPECT_THAT(places, testing::AllOf(testing::Not(IsEmpty()), testing::Each(" " + path)));
}

TEST_F(StartTimesTest, FloorsHoldForAnyMomentAndHaveTheRepairsUpToTheLast)
{
    const auto floors = [this](std::int32_t days, const std::string& word) {
        return mStartTimes->GetFloors(days, word, "E", mCurrent.get());
    };
    Repair("R1", 2 * DAY);
    Repair("R2", 5 * DAY);
    EXPECT_EQ(floors(7, "4").period, 7 * DAY);
    EXPECT_EQ(floors(0, "4").period, 30 * DAY);
    EXPECT_EQ(floors(7, "1").always, 0);
    EXPECT_THAT(floors(7, "4").repairs, ElementsAre(NOW - 5 * DAY, NOW - 2 * DAY));
    mSettings.Set(Settings::AS_OF, std::to_string(NOW - 3 * DAY));
    EXPECT_THAT(floors(7, "4").repairs, ElementsAre(NOW - 5 * DAY));
}

TEST_F(StartTimesTest, EventOfAnotherIdDoesNotAddItsRepair)
{
    Repair("R3", DAY);
    const auto other = std::make_shared<BasicEvent>();
    other->SetId("other");
    other->SetUserDefined(R"({"Repairid":"R3"})");
    mCurrent = other;
    EXPECT_EQ(Start(7, "4", "E"), NOW - 7 * DAY);
    EXPECT_EQ(Start(7, "4", "other"), NOW - 7 * DAY) << "has no repairs in the rule set";
}

TEST_P(StartTimesTest, CurrentEventMayNameARepair)
{
    Repair("R1", 5 * DAY);
    Repair("R3", DAY);
    const auto event = std::make_shared<BasicEvent>();
    event->SetId("E");
    event->SetUserDefined(GetParam().text);
    mCurrent = event;
    mLog.Clear();
    EXPECT_EQ(Start(7, "4", "E"), GetParam().findsRepair ? NOW - DAY : NOW - 5 * DAY);
    EXPECT_EQ(mRecord.unreadableRepair, GetParam().isUnreadable ? "the repair id in the user-defined text of E" : "");
    const auto errors = mLog.Lines(FT::LEVEL_ERROR);
    EXPECT_EQ(errors.size(), GetParam().errors);
    EXPECT_THAT(errors, testing::Each(StartsWith("FUNc:RuleHelper::GetRepairIdFromCurEvent: parse userDefinedJson err. ")));
}

INSTANTIATE_TEST_SUITE_P(Table, StartTimesTest, testing::Values(
    UserDefinedCase{"Names", R"({"Repairid":"R3"})", true, 0}, UserDefinedCase{"Empty", "", false, 0},
    UserDefinedCase{"NamesNone", R"({"repairid":"R3"})", false, 0}, UserDefinedCase{"NoObject", "[1]", false, 0, true},
    UserDefinedCase{"NamesAnObject", R"({"Repairid":{}})", false, 0, true},
    UserDefinedCase{"NamesAList", R"({"Repairid":["R3"]})", false, 0, true},
    UserDefinedCase{"NamesANumber", R"({"Repairid":3})", false, 0}, UserDefinedCase{"NoJson", "{Repairid", false, 1, true}),
    CaseName());

TEST_F(StartTimesTest, ThePartsAreNoted)
{
    Repair("R1", 2 * DAY);
    Start(0, "1", "E");
    EXPECT_EQ(EvidenceLine(mRecord), "start 1699827200 of period 1697408000 reset 0 update 0 repair 1699827200 "
        "by repair days 30 flag '1' repair id 'R1'");
    EXPECT_EQ(mRecord.start.local, "2023-11-12 23:13:20");
    EXPECT_EQ(mRecord.reset.local, "") << "none";
}

TEST_F(StartTimesTest, WhichFloorWonIsNoted)
{
    mRecovery->ParseRecoveryLog(mDir.Write("recovery",
        "[2023-11-12 09:00:00.000] Command: \"recovery\" \"UPDATE\"\n"
        "[2023-11-12 12:00:00.000] zenrix recovery stopped\n"));
    mRecovery->GetResetLogTime(mDir.Write("reset", "time: 20231110120000;\n"));
    std::vector<std::string> lines;
    for (const char* const flag : {"1", "2", "3", "4"}) {
        Start(7, flag, "E");
        lines.push_back(EvidenceLine(mRecord));
    }
    Repair("R1", DAY);
    Start(7, "3", "E");
    lines.push_back(EvidenceLine(mRecord));
    EXPECT_THAT(lines, ElementsAre(
        "start 1699786800 of period 1699395200 reset 1699614000 update 1699786800 repair 0 by update days 7 flag '1' "
        "repair id ''",
        "start 1699786800 of period 1699395200 reset 0 update 1699786800 repair 0 by update days 7 flag '2' repair id ''",
        "start 1699614000 of period 1699395200 reset 1699614000 update 0 repair 0 by reset days 7 flag '3' repair id ''",
        "start 1699395200 of period 1699395200 reset 0 update 0 repair 0 by period days 7 flag '4' repair id ''",
        "start 1699913600 of period 1699395200 reset 1699614000 update 0 repair 1699913600 by repair days 7 flag '3' "
        "repair id 'R1'"));
}

TEST_F(StartTimesTest, ChecksFromUpdateCountTheCurrentVersion)
{
    EXPECT_TRUE(StartTimes::IsDetectFromUpdate("1"));
    EXPECT_TRUE(StartTimes::IsDetectFromUpdate("2"));
    EXPECT_FALSE(StartTimes::IsDetectFromUpdate("3"));
    EXPECT_FALSE(StartTimes::IsDetectFromUpdate("4"));
    EXPECT_FALSE(StartTimes::IsDetectFromUpdate(""));
}

} // namespace
