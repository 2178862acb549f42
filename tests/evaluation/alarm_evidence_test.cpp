#include "arborist/evaluation/alarm_rule_engine.h"

#include <algorithm>
#include <functional>

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "arborist/frame/log.h"
#include "arborist/frame/repair.h"
#include "arborist/frame/settings.h"
#include "arborist/frame/trouble_watch.h"
#include "tests/evaluation/alarm_rules.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/log_capture.h"
#include "tests/support/settings_guard.h"

namespace {

using testing::ElementsAre;
using testing::Optional;

constexpr std::int64_t DAY = 86400;
constexpr std::int64_t NOW = 1700000000;
constexpr std::int64_t PERIOD = NOW - 7 * DAY;
constexpr std::int64_t REPAIR = NOW - 2 * DAY;

/// What an alarm rule tells of its windows.
class AlarmEvidence : public testing::Test {
protected:
    AlarmEvidence()
    {
        mSettings.Set(Settings::PROGRAM_DATA_DIR, mDir.Path("data"));
        mSettings.Set(Settings::VERSION_NAME, "1");
        SetNow(NOW);
    }

    void SetNow(std::int64_t now) const { mSettings.Set(Settings::CURRENT_TIME, std::to_string(now)); }

    void Log(const std::vector<LoggedRow>& rows) const
    {
        EventLogBuilder().Rows(rows).WriteTo(mDir.Path(LOG));
    }

    // The one window that was counted for the event E, which the repair R mends.
    Evidence::WindowCount Counted(const Ids& ids, bool expected = false) { return WindowOf(ids, expected).count; }
    Evidence::Window WindowOf(const Ids& ids, bool expected = false)
    {
        Evidence::Rule record;
        EXPECT_EQ(Fires(ids, &record), expected);
        const auto& windows = std::get<Evidence::Alarm>(record.part).windows;
        const auto counted = std::find_if(windows.begin(), windows.end(), [](const auto& window) {
            return window.start.has_value();
        });
        return counted == windows.end() ? Evidence::Window{} : *counted;
    }
    bool Fires(const Ids& ids, Evidence::Rule* record)
    {
        const auto info = std::make_shared<DetectInfo>();
        info->mTreeTag = TAG;
        info->mRuleFileDir = mDir.Path();
        const auto parser = Load(mDir, TreeXml(TAG).Tree("T", Or({Basic("E")})), RuleXml(TAG).Repair("E", {{"R", ""}}),
            info);
        AlarmRuleEngine engine(std::make_shared<RuleHelper>(info, parser));
        engine.SetRecord(record);
        mLog.Clear();
        return engine.IsFaultHappened(RuleOf({ids}), "E");
    }

    void Repair() const
    {
        SetNow(REPAIR);
        UpdateRepairDb("R");
        SetNow(NOW);
    }

    static constexpr char LOG[] = "data/Comms/Lumbra/workDir/0/log.db";
    TempDir mDir;
    SettingsGuard mSettings;
    LogCapture mLog;
};

// Seven passes the tests a = 1 twice and b = 1 once, eight the first once and the second never.
const std::vector<LoggedRow> SEVEN_AND_EIGHT{{NOW, 7, "1", R"({"a":1,"b":1})"}, {NOW, 7, "1", R"({"a":1})"},
    {NOW, 8, "1", R"({"a":1})"}};

Ids TwoTests(const char* first, const char* last)
{
    return Ids(first, last).WithParam("p", "a", "int").WithParam("q", "b", "int")
        .Multiple({{"p", "eq", "1"}, {"q", "eq", "1"}});
}

TEST_F(AlarmEvidence, OfSeparateTestsTheOneThatTheLastIdPassesLeastIsWhatWasReached)
{
    Log(SEVEN_AND_EIGHT);
    for (const Ids& ids : {TwoTests("7", "8").Latest(7, 1), TwoTests("7", "8").DailyPeak(7, 1)}) {
        const Evidence::Window window = WindowOf(ids);
        EXPECT_TRUE(window.count.lastIdDecides);
        EXPECT_EQ(window.count.reached, 0);
        EXPECT_EQ(window.count.reachedById, 8);
        EXPECT_EQ(window.count.measure, Evidence::Measure::ROWS);
        EXPECT_EQ(window.Missing(), 1);
        ASSERT_EQ(window.tests.size(), 2U);
        EXPECT_EQ(window.tests[0].rowsPassed, 3U);
        EXPECT_THAT(window.tests[0].rowsPassedByLastId, Optional(1U));
        EXPECT_THAT(window.tests[1].rowsPassedByLastId, Optional(0U));
    }
    EXPECT_EQ(Counted(TwoTests("7", "7").Latest(7, 1), true).reached, 1);
}

TEST_F(AlarmEvidence, TheLastIdWithoutRowsHasReachedNothing)
{
    Log(SEVEN_AND_EIGHT);
    const Evidence::Window window = WindowOf(TwoTests("7", "9").Latest(7, 1));
    EXPECT_EQ(window.count.reached, 0);
    EXPECT_EQ(window.count.reachedById, 9);
    EXPECT_THAT(window.tests[0].rowsPassedByLastId, Optional(0U));
}

TEST_F(AlarmEvidence, OfSeveralConditionsTheBestIsWhatWasReached)
{
    Log(SEVEN_AND_EIGHT);
    const auto last = Counted(TwoTests("7", "8").Multiple({{"p", "eq", "1"}}).Multiple({{"q", "eq", "1"}}).Latest(7, 2));
    EXPECT_TRUE(last.lastIdDecides);
    EXPECT_EQ(last.reached, 1);
    const auto any = Counted(TwoTests("7", "8").Single("p", "eq", "1").Latest(7, 3));
    EXPECT_FALSE(any.lastIdDecides) << "a single test is put to every id";
    EXPECT_EQ(any.reached, 2);
    EXPECT_EQ(any.reachedById, 7);
}

TEST_F(AlarmEvidence, WhereEachIdDecidesTheBestIsWhatWasReached)
{
    Log(SEVEN_AND_EIGHT);
    const Evidence::Window window = WindowOf(TwoTests("7", "8").Duration(7, 2));
    EXPECT_FALSE(window.count.lastIdDecides);
    EXPECT_EQ(window.count.reached, 1);
    EXPECT_EQ(window.count.reachedById, 7);
    EXPECT_EQ(window.tests[0].rowsPassedByLastId, std::nullopt);
}

// Of the period, before and after the repair, at both of their ends, of another version, and of another id.
const std::vector<LoggedRow> AROUND_THE_REPAIR{{PERIOD - 1, 7, "1", ""}, {PERIOD, 7, "1", ""},
    {REPAIR - 1, 8, "2", ""}, {REPAIR, 7, "1", ""}, {NOW, 8, "1", ""}, {PERIOD + 1, 9, "1", ""}};

TEST_F(AlarmEvidence, RowsThatARepairCutOffAreCounted)
{
    Log(AROUND_THE_REPAIR);
    Repair();
    const auto count = Counted(Ids("7", "8").Duration(7, 5));
    EXPECT_THAT(count.rowsBeforeStart, Optional(2U));
    EXPECT_EQ(count.rowsFound, 2U);
    EXPECT_THAT(Counted(Ids("8", "8").Latest(7, 5)).rowsBeforeStart, Optional(1U));
    EXPECT_THAT(Counted(Ids("5", "6").Latest(7, 5)).rowsBeforeStart, Optional(0U));
    EXPECT_THAT(Counted(Ids("7", "9").Latest(7, 1), true).rowsBeforeStart, Optional(3U)) << "of the whole range";
}

TEST_F(AlarmEvidence, RowsOfALogInDisorderAreCountedByTheirTimes)
{
    auto rows = AROUND_THE_REPAIR;
    std::reverse(rows.begin(), rows.end());
    Log(rows);
    Repair();
    EXPECT_THAT(Counted(Ids("7", "8").Duration(7, 5)).rowsBeforeStart, Optional(2U));
}

TEST_F(AlarmEvidence, NothingIsCutOffWhereThePeriodSetsTheStart)
{
    Log(AROUND_THE_REPAIR);
    EXPECT_EQ(Counted(Ids("7", "8").Duration(7, 5)).rowsBeforeStart, std::nullopt);
    Repair();
    EXPECT_EQ(Counted(Ids("7", "8").Duration(1, 5)).rowsBeforeStart, std::nullopt) << "repaired before the period";
}

TEST_F(AlarmEvidence, ALogThatCannotBeReadTellsNoNumber)
{
    Repair();
    EXPECT_EQ(Counted(Ids("7", "8").Duration(7, 5)).rowsBeforeStart, std::nullopt);
    mDir.Write(LOG, "no database");
    EXPECT_EQ(Counted(Ids("7", "8").Duration(7, 5)).rowsBeforeStart, std::nullopt);
}

// One way of counting, with a threshold to add.
struct LaterCase { const char* name; const char* id; std::function<void(Ids&, int)> window; };
void PrintTo(const LaterCase& later, std::ostream* out) { *out << later.name; }

class RowsLaterThanNow : public AlarmEvidence, public testing::WithParamInterface<LaterCase> {};

TEST_P(RowsLaterThanNow, AreToldWhereNoOtherRowIsThere)
{
    const std::int32_t id = std::stoi(GetParam().id);
    Log({{NOW + 1, id, "1", R"({"a":1,"COUNT":1})"}});
    Ids none(GetParam().id, GetParam().id);
    GetParam().window(none, 0);
    EXPECT_THAT(WindowOf(none, true).notes, ElementsAre(Evidence::Reason::ROWS_AFTER_NOW))
        << "no threshold is reached without any row";
}

TEST_P(RowsLaterThanNow, AreToldWhereTheThresholdWasReachedWithThemAlone)
{
    const std::int32_t id = std::stoi(GetParam().id);
    Log({{NOW, id, "1", R"({"a":1,"COUNT":1})"}, {NOW + 1, id, "1", R"({"a":1,"COUNT":1})"}});
    Ids one(GetParam().id, GetParam().id);
    GetParam().window(one, 1);
    EXPECT_THAT(WindowOf(one, true).notes, testing::IsEmpty());
    Ids two(GetParam().id, GetParam().id);
    GetParam().window(two, 2);
    EXPECT_THAT(WindowOf(two, true).notes, ElementsAre(Evidence::Reason::ROWS_AFTER_NOW));
    SetNow(NOW + 1);
    EXPECT_THAT(WindowOf(two, true).notes, testing::IsEmpty());
}

void WithTest(Ids& ids) { ids.WithParam("p", "a", "int").Single("p", "eq", "1"); }
void WithTests(Ids& ids) { ids.WithParam("p", "a", "int").Multiple({{"p", "eq", "1"}, {"p", "ge", "1"}}); }

INSTANTIATE_TEST_SUITE_P(Table, RowsLaterThanNow, testing::Values(
    LaterCase{"Rows", "7", [](Ids& ids, int threshold) { ids.Latest(7, threshold); }},
    LaterCase{"Weights", "920000001", [](Ids& ids, int threshold) { ids.Duration(7, threshold); }},
    LaterCase{"DailyRows", "7", [](Ids& ids, int threshold) { ids.DailyPeak(7, threshold); }},
    LaterCase{"DailyWeights", "920000001", [](Ids& ids, int threshold) { ids.DailyPeak(7, threshold); }},
    LaterCase{"Tested", "7", [](Ids& ids, int threshold) { WithTest(ids); ids.Latest(7, threshold); }},
    LaterCase{"DailyTested", "7", [](Ids& ids, int threshold) { WithTest(ids); ids.DailyPeak(7, threshold); }},
    LaterCase{"AllTests", "7", [](Ids& ids, int threshold) { WithTests(ids); ids.Duration(7, threshold); }},
    LaterCase{"TestsOfTheLastId", "7", [](Ids& ids, int threshold) { WithTests(ids); ids.Latest(7, threshold); }}),
    CaseName());

TEST_F(AlarmEvidence, RowsWithoutPartnersAreToldWhereMoreRowsWouldCount)
{
    const auto unseen = [this](const Ids& ids, bool expected, std::int64_t time) {
        EventLogBuilder().Rows({{NOW, 7, "1", ""}, {time, 7, "1", ""}, {NOW, 8, "1", ""}})
            .Sql("update event_info set version_id = 99 where _ID = 2").WriteTo(mDir.Path(LOG));
        return WindowOf(ids, expected).notes;
    };
    EXPECT_THAT(unseen(Ids("7", "7").Latest(7, 2), false, NOW), ElementsAre(Evidence::Reason::ROWS_UNSEEN));
    EXPECT_THAT(unseen(Ids("7", "7").Latest(7, 1), true, NOW), testing::IsEmpty());
    EXPECT_THAT(unseen(Ids("8", "8").Latest(7, 2), false, NOW), testing::IsEmpty()) << "of another id";
    EXPECT_THAT(unseen(Ids("7", "7").Latest(7, 2), false, PERIOD - 1), testing::IsEmpty()) << "before the window";
    EventLogBuilder().Rows({{NOW, 920000001, "1", R"({"COUNT":1})"}, {NOW, 920000001, "1", ""}})
        .Sql("delete from event_info_flow where _ID = 2").WriteTo(mDir.Path(LOG));
    EXPECT_THAT(WindowOf(Ids("920000001", "920000001").Latest(7, 1), true).notes,
        ElementsAre(Evidence::Reason::ROWS_UNSEEN)) << "it may weigh less than nothing";
    EventLogBuilder().Rows({{NOW, 929999999, "1", R"({"COUNT":1})"}, {NOW, 930000000, "1", ""}, {NOW, 930000000, "1", ""},
        {NOW, 929999999, "1", ""}}).Sql("delete from event_info_flow where _ID = 4").WriteTo(mDir.Path(LOG));
    EXPECT_THAT(WindowOf(Ids("929999999", "930000000").Latest(7, 2), true).notes, testing::IsEmpty())
        << "rows of the other id are enough, whatever it weighs";
}

TEST_F(AlarmEvidence, RowsThatAnUnknownVersionRejectsAreToldWhereMoreRowsWouldCount)
{
    using Evidence::Reason;
    const std::int32_t weighed = 920000001;
    Log({{NOW, 7, "4.1", ""}, {NOW, 7, "", ""}, {NOW, 8, "", ""}, {NOW, weighed, "", R"({"COUNT":1})"},
        {NOW, weighed, "4.1", R"({"COUNT":1})"}});
    const auto notes = [this](const char* id, const char* begin, std::int32_t threshold, bool expected) {
        return WindowOf(Ids(id, id).Begin(begin).Latest(7, threshold), expected).notes;
    };
    EXPECT_THAT(notes("7", "1", 2, false), testing::IsEmpty()) << "the device has another version, as after an update";
    mSettings.Set(Settings::VERSION_NAME, "");
    EXPECT_THAT(notes("7", "1", 2, false), ElementsAre(Reason::VERSION_UNKNOWN));
    EXPECT_THAT(notes("7", "1", 1, true), testing::IsEmpty());
    EXPECT_THAT(notes("7", "4", 3, false), testing::IsEmpty()) << "asks for no version";
    EXPECT_THAT(notes("8", "1", 2, false), testing::IsEmpty()) << "none was rejected";
    EXPECT_THAT(notes("920000001", "1", 1, true), ElementsAre(Reason::VERSION_UNKNOWN)) << "one may weigh less than 0";
}

TEST_F(AlarmEvidence, WeightsWithoutAReadableRepairAreToldAlsoWhereTheyAreShort)
{
    using Evidence::Reason;
    Log({{NOW - 2, 920000001, "1", R"({"COUNT":5})"}, {NOW - 1, 920000001, "1", R"({"COUNT":10})"},
        {NOW, 7, "1", ""}, {NOW, 929999999, "1", R"({"COUNT":1})"}, {NOW, 930000000, "1", ""}, {NOW, 930000000, "1", ""}});
    Repair();
    EventLogBuilder::Run(mDir.Path("data/Comms/Lumbra/zxdetectrepair/databases/repair_record.db"),
        "update repair_data set repair_date = null");
    const auto notes = [this](const char* id, std::int32_t threshold, bool expected) {
        return WindowOf(Ids(id, id).Latest(7, threshold), expected).notes;
    };
    EXPECT_THAT(notes("920000001", 16, false), ElementsAre(Reason::REPAIR_UNREADABLE));
    EXPECT_THAT(notes("920000001", 15, true), ElementsAre(Reason::REPAIR_UNREADABLE));
    EXPECT_THAT(notes("7", 2, false), testing::IsEmpty()) << "fewer rows are short, too";
    EXPECT_THAT(notes("7", 1, true), ElementsAre(Reason::REPAIR_UNREADABLE));
    EXPECT_THAT(WindowOf(Ids("929999999", "930000000").Latest(7, 3), false).notes, ElementsAre(Reason::REPAIR_UNREADABLE))
        << "the weight of the other id, however many rows this one has";
}

TEST_F(AlarmEvidence, NegativeWeightIsToldAlsoWhereTheSumIsShort)
{
    Log({{NOW - 2, 920000001, "1", R"({"COUNT":-5})"}, {NOW - 1, 920000001, "1", R"({"COUNT":10})"}});
    const auto notes = [this](const Ids& ids, bool expected) { return WindowOf(ids, expected).notes; };
    const Ids ids("920000001", "920000001");
    for (const auto& [threshold, expected] : {std::pair(8, false), {5, true}}) {
        EXPECT_THAT(notes(Ids(ids).Latest(7, threshold), expected), ElementsAre(Evidence::Reason::NEGATIVE_WEIGHT));
    }
    Log({{NOW - 2, 920000001, "1", R"({"COUNT":-1})"}, {NOW - 1, 920000001, "1", R"({"COUNT":10})"}});
    EXPECT_THAT(notes(Ids("920000001", "920000001").DailyPeak(7, 9), true),
        ElementsAre(Evidence::Reason::NEGATIVE_WEIGHT));
}

TEST_F(AlarmEvidence, RowsThatReachTheThresholdAreSureBesideWeightsThatDoNot)
{
    Log({{NOW, 909031999, "1", R"({"COUNT":1})"}, {NOW, 909032000, "1", ""}, {NOW, 909032000, "1", ""}});
    Repair(); // of the event, before the rows
    for (const Ids& ids : {Ids("909031999", "909032000").Latest(7, 2), Ids("909031999", "909032000").DailyPeak(7, 2)}) {
        const Evidence::Window window = WindowOf(ids, true);
        EXPECT_EQ(window.count.reachedById, 909032000);
        EXPECT_THAT(window.notes, testing::IsEmpty());
    }
}

// Such a row is no hit for any test, and nobody knows what it tells.
TEST_F(AlarmEvidence, ExtraThatCannotBeUsedIsTroubleOfItsRowAndNothingElse)
{
    std::vector<std::string> troubles;
    const TroubleWatch watch([&](const Evidence::Trouble& trouble) {
        ASSERT_EQ(trouble.kind, Evidence::Trouble::Kind::BAD_EXTRA);
        troubles.push_back(trouble.subject + ": " + trouble.words);
    });
    const auto told = [&](const char* extra, const Ids& ids, std::int32_t id, bool expected) {
        troubles.clear();
        Log({{NOW, id, "1", extra}});
        Evidence::Rule record;
        EXPECT_EQ(Fires(ids, &record), expected) << extra;
        EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::IsEmpty()) << extra;
        return troubles;
    };
    const Ids tested = Ids("7", "7").WithParam("p", "a", "int").Single("p", "lt", "5").Latest(7, 1);
    for (const char* const noObject : {"[1]", "1", R"("x")", "null", "true"}) {
        EXPECT_THAT(told(noObject, tested, 7, false), ElementsAre(": no JSON object")) << noObject;
    }
    EXPECT_THAT(told(R"({"a":[1]})", tested, 7, false), ElementsAre("a: a list or an object"));
    EXPECT_THAT(told(R"({"a":{}})", tested, 7, false), ElementsAre("a: a list or an object"));
    for (const char* const usable : {"", "{}", R"({"b":[1]})", R"({"a":null})"}) {
        EXPECT_THAT(told(usable, tested, 7, false), testing::IsEmpty()) << usable;
    }
    const Ids weighed = Ids("920000001", "920000001").Latest(7, 1);
    EXPECT_THAT(told(R"({"COUNT":[3]})", weighed, 920000001, true), ElementsAre("COUNT: a list or an object"));
    EXPECT_THAT(told("[3]", weighed, 920000001, true), ElementsAre(": no JSON object"));
    EXPECT_THAT(told("{}", weighed, 920000001, true), testing::IsEmpty());
}

TEST_F(AlarmEvidence, MemberThatIsTakenForZeroIsToldAlsoWhereTheRuleFires)
{
    const auto notes = [this](const char* member) {
        Log({{NOW, 7, "1", std::string(R"({"a":")") + member + "\"}"}});
        Evidence::Rule record;
        EXPECT_TRUE(Fires(Ids("7", "7").WithParam("p", "a", "int").Single("p", "lt", "5").Latest(7, 1), &record));
        return record.notes;
    };
    EXPECT_THAT(notes("none"), ElementsAre(Evidence::Reason::BAD_NUMBER));
    EXPECT_THAT(notes("4"), testing::IsEmpty());
}

TEST_F(AlarmEvidence, CountThatIsNoNumberIsTold)
{
    Log({{NOW, 920000001, "1", R"({"COUNT":"many"})"}, {NOW, 920000001, "1", R"({"COUNT":"2"})"}});
    Evidence::Rule record;
    EXPECT_TRUE(Fires(Ids("920000001", "920000001").Latest(7, 2), &record));
    EXPECT_THAT(record.notes, ElementsAre(Evidence::Reason::BAD_NUMBER));
}

TEST_F(AlarmEvidence, DaysThatALogCoversAreToldWhereItBeginsAfterTheWindow)
{
    Log({{NOW - 2 * DAY - 1, 1, "1", ""}, {NOW, 7, "1", ""}});
    EXPECT_THAT(Counted(Ids("7", "7").Latest(7, 2)).coveredDays, Optional(2));
    EXPECT_EQ(Counted(Ids("7", "7").Latest(2, 2)).coveredDays, std::nullopt);
    Log({{NOW - 7 * DAY, 1, "1", ""}, {NOW, 7, "1", ""}});
    EXPECT_EQ(Counted(Ids("7", "7").Latest(7, 2)).coveredDays, std::nullopt);
}

TEST_F(AlarmEvidence, CountingWhatWasCutOffLeavesNoLine)
{
    Log(AROUND_THE_REPAIR);
    Repair();
    Fires(Ids("7", "8").Duration(7, 5), nullptr);
    const std::vector<std::string> unobserved = mLog.Lines();
    EXPECT_EQ(WindowOf(Ids("7", "8").Duration(7, 5)).count.rowsBeforeStart, 2U);
    EXPECT_EQ(mLog.Lines(), unobserved);
}

TEST_F(AlarmEvidence, TheWordForTheBeginReachesTheStart)
{
    Log(SEVEN_AND_EIGHT);
    for (const char* const word : {"1", "4", ""}) {
        const Evidence::Window window = WindowOf(Ids("7", "7").Begin(word).Latest(7, 1), true);
        ASSERT_TRUE(window.start.has_value());
        EXPECT_EQ(window.start->beginFlag, word);
        EXPECT_EQ(window.start->periodDays, 7);
    }
}

} // namespace
