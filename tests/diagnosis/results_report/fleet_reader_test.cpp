#include "diagnosis/results_report/fleet_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "diagnosis/bundle/bundle_overlay.h"
#include "diagnosis/results_report/bundle_figures.h"
#include "tests/diagnosis/results_report/fleet_database.h"

namespace diagnosis {
namespace {

using testing::ElementsAre;

std::string Text(const BundleStates& states)
{
    return std::to_string(states.fault) + " fault " + std::to_string(states.undecided) + " undecided "
        + std::to_string(states.noFault) + " sound " + std::to_string(states.notApplicable) + " not for it "
        + std::to_string(states.failed) + " failed";
}

std::string Text(const TreeVerdicts& tree)
{
    return tree.tree + " " + std::to_string(tree.fault) + " " + std::to_string(tree.undecided) + " "
        + std::to_string(tree.noFault) + " " + std::to_string(tree.notApplicable) + " " + std::to_string(tree.absent);
}

std::string Text(const CommonCause& cause)
{
    return cause.tree + "/" + cause.event + " " + std::to_string(cause.bundles);
}

std::string Text(const OpenByReason& reason)
{
    return reason.check + " " + reason.reason + " " + std::to_string(reason.checks) + " in " + std::to_string(reason.bundles);
}

std::string Text(const OpenBySource& source)
{
    return std::string(Evidence::ReasonText(source.reason)) + " (" + source.detail + ") " + std::to_string(source.checks)
        + " in " + std::to_string(source.bundles) + ", " + std::to_string(source.undecidedTrees) + " trees";
}

std::string Text(const RepairEffect& effect)
{
    return effect.id + ": " + std::to_string(effect.repaired.again) + " again " + std::to_string(effect.repaired.gone)
        + " gone " + std::to_string(effect.NotFollowed()) + " not; without " + std::to_string(effect.others.again) + " again "
        + std::to_string(effect.others.gone) + " gone " + std::to_string(effect.othersNotFollowed) + " not";
}

template <typename Items>
std::vector<std::string> Texts(const Items& items)
{
    std::vector<std::string> texts;
    for (const auto& item : items) {
        texts.push_back(Text(item));
    }
    return texts;
}

TEST(FleetReaderTest, ABundleCountsWithTheMostSeriousVerdictOfItsTrees)
{
    FleetDatabase database;
    database.Bundle("a", "2024-05-20 12:00:00").Tree("T", "fault").Tree("U", "undecided");
    database.Bundle("b", "2024-05-20 12:00:00").Tree("T", "no_fault").Tree("U", "undecided");
    database.Bundle("c", "2024-05-20 12:00:00").Tree("T", "no_fault").Tree("U", "not_applicable");
    database.Bundle("d", "2024-05-20 12:00:00").Tree("T", "not_applicable");
    database.Bundle("e", "").Failed("timeout", true);
    const Fleet fleet = database.Read();
    EXPECT_EQ(Text(fleet.bundles), "1 fault 1 undecided 1 sound 1 not for it 1 failed");
    EXPECT_THAT(Texts(fleet.trees), ElementsAre("T 1 0 2 1 0", "U 0 2 0 1 1"));
    ASSERT_EQ(fleet.failures.size(), 1U);
    EXPECT_EQ(fleet.failures[0].code + " " + fleet.failures[0].example, "timeout why");
    EXPECT_TRUE(fleet.failures[0].retry);
    EXPECT_EQ(fleet.trend.undated, 1U);
    EXPECT_EQ(fleet.from + ", " + fleet.until, "2024-05-20 12:00:00, 2024-05-20 12:00:00");
}

TEST(FleetReaderTest, RunsAreToldWithTheirBundles)
{
    FleetDatabase database;
    database.Bundle("a", "", "", 1, "sha256:1").Bundle("b", "", "", 1, "sha256:2").Bundle("c", "", "", 1, "sha256:2");
    const Fleet fleet = database.Read();
    ASSERT_EQ(fleet.runs.size(), 2U);
    EXPECT_EQ(fleet.runs[0].ruleSet + " " + std::to_string(fleet.runs[0].bundles), "sha256:2 2");
    EXPECT_EQ(fleet.runs[1].engine, "1.0");
}

TEST(FleetReaderTest, ACauseCountsOnceForABundleWhateverItsCutSets)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "fault").Cause("X").Cause("X", {}, " & Y").Cause("Z");
    database.Bundle("b", "").Tree("T", "fault").Cause("X", {}, " & Y").Tree("U", "fault").Cause("X");
    const Fleet fleet = database.Read();
    EXPECT_THAT(Texts(fleet.causes.causes), ElementsAre("T/X 2", "T/Z 1", "U/X 1"));
    EXPECT_EQ(fleet.causes.causes[0].name, "Name of X");
    EXPECT_EQ(fleet.causes.different, 3U);
    EXPECT_THAT(fleet.causes.together, ElementsAre(ElementsAre(2, 1, 1), ElementsAre(1, 1, 0), ElementsAre(1, 0, 1)));
}

TEST(FleetReaderTest, OnlyTheCommonestCausesAreComparedAndListed)
{
    FleetDatabase database;
    for (int bundle = 0; bundle < 40; ++bundle) {
        database.Bundle("b" + std::to_string(bundle), "").Tree("T", "fault");
        for (int cause = 0; cause <= bundle; ++cause) {
            database.Cause("C" + std::to_string(cause + 10));
        }
    }
    const Fleet fleet = database.Read();
    EXPECT_EQ(fleet.causes.different, 40U);
    ASSERT_EQ(fleet.causes.causes.size(), CommonCauses::MOST);
    EXPECT_EQ(Text(fleet.causes.causes[29]), "T/C39 11");
    ASSERT_EQ(fleet.causes.together.size(), CommonCauses::MOST_TOGETHER);
    EXPECT_EQ(fleet.causes.together[0][11], 29U);
}

TEST(FleetReaderTest, OpenChecksAddUpByReasonAndBySource)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "undecided", false).Open("X", "no_data", "node_unreadable", "node/a")
        .Open("Y", "no_data", "node_unreadable", "node/b").Tree("U", "undecided", false)
        .Open("X", "no_data", "node_unreadable", "node/a");
    database.Bundle("b", "").Tree("T", "fault", false).Open("X", "no_data", "node_unreadable", "node/a")
        .Open("Z", "not_checked", "no_runner");
    const Fleet fleet = database.Read();
    EXPECT_EQ(fleet.open.checks, 5U);
    EXPECT_THAT(Texts(fleet.open.byReason), ElementsAre("no_data node_unreadable 4 in 2", "not_checked no_runner 1 in 1"));
    EXPECT_THAT(Texts(fleet.open.bySource), ElementsAre("node_unreadable (node/a) 3 in 2, 2 trees",
        "node_unreadable (node/b) 1 in 1, 1 trees", "no_runner () 1 in 1, 0 trees"));
}

TEST(FleetReaderTest, ChecksThatLackTheLogAreOneSourceInATreeThatSaysSo)
{
    FleetDatabase database;
    // The second check rests on tables that are derived from the log; without a missing log it has a source of its own.
    for (const char* const bundle : {"a", "b"}) {
        database.Bundle(bundle, "").Tree("T", "undecided", false);
        if (bundle[0] == 'a') {
            database.Open("X", "no_data", "log_unavailable", "log.db");
        }
        database.Open("Y", "no_data", "no_value", std::string("table t of ") + DERIVED_DATABASE);
        database.Open("Z", "no_data", "no_value", "table of its own");
    }
    EXPECT_THAT(Texts(database.Read().open.bySource), ElementsAre("no_value (table of its own) 2 in 2, 2 trees",
        "log_unavailable () 2 in 1, 1 trees", std::string("no_value (table t of ") + DERIVED_DATABASE + ") 1 in 1, 1 trees"));
}

TEST(FleetReaderTest, OfSeveralReasonsWhyTheLogIsMissingTheFirstCounts)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "undecided", false).Open("X", "no_data", "log_unavailable")
        .Open("Y", "no_data", "log_damaged");
    EXPECT_THAT(Texts(database.Read().open.bySource), ElementsAre("log_unavailable () 2 in 1, 1 trees"));
}

TEST(FleetReaderTest, ATreeCountsOnceForASourceInWhateverOrderItsChecksWereSeenFirst)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "undecided", false).Open("X", "no_data", "no_value");
    database.Tree("U", "undecided", false).Open("Y", "no_data", "no_value");
    database.Bundle("b", "").Tree("T", "undecided", false).Open("X", "no_data", "no_value").Open("Z", "no_data", "no_value");
    database.Tree("U", "undecided", false).Open("Y", "no_data", "no_value");
    EXPECT_THAT(Texts(database.Read().open.bySource), ElementsAre("no_value () 5 in 2, 4 trees"));
}

TEST(FleetReaderTest, SourcesBeyondTheListAreAddedUp)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "undecided", false);
    for (int file = 0; file < 33; ++file) {
        database.Open("X", "no_data", "node_unreadable", "node/" + std::to_string(file));
    }
    const Fleet fleet = database.Read();
    EXPECT_EQ(fleet.open.bySource.size(), OpenChecks::MOST);
    EXPECT_EQ(fleet.open.sourcesInRest, 3U);
    EXPECT_EQ(fleet.open.checksInRest, 3U);
}

TEST(FleetReaderTest, RunTimesHaveTheirMiddleAndTheirSlowest)
{
    FleetDatabase database;
    for (int bundle = 1; bundle <= 40; ++bundle) {
        database.Bundle("b" + std::to_string(bundle), "2024-05-20 12:00:00", "", bundle * 1000);
    }
    const RunTimes times = database.Read().times;
    EXPECT_EQ(times.sum, 820000);
    EXPECT_EQ(times.median, 20000);
    EXPECT_EQ(times.most95, 38000);
    ASSERT_EQ(times.slowest.size(), RunTimes::MOST);
    EXPECT_EQ(times.slowest[0].bundle + " " + times.slowest[0].moment, "b40 2024-05-20 12:00:00");
}

TEST(FleetReaderTest, AWeekBeginsOnMonday)
{
    FleetDatabase database;
    database.Bundle("a", "2024-05-19 23:59:59").Tree("T", "fault").Cause("X");
    database.Bundle("b", "2024-05-20 00:00:00").Tree("T", "no_fault");
    database.Bundle("c", "2024-06-09 23:59:59").Tree("T", "fault").Cause("X").Cause("Y");
    const FleetTrend trend = database.Read().trend;
    ASSERT_EQ(trend.weeks.size(), 4U);
    EXPECT_EQ(trend.weeks[0].monday + " " + Text(trend.weeks[0].bundles),
        "2024-05-13 1 fault 0 undecided 0 sound 0 not for it 0 failed");
    EXPECT_EQ(trend.weeks[1].monday + " " + Text(trend.weeks[1].bundles),
        "2024-05-20 0 fault 0 undecided 1 sound 0 not for it 0 failed");
    EXPECT_EQ(trend.weeks[2].bundles.All(), 0U);
    EXPECT_THAT(trend.weeks[3].causes, ElementsAre(1, 1, 0, 0, 0, 0));
    EXPECT_EQ(trend.weeks[3].monday, "2024-06-03");
}

TEST(FleetReaderTest, WeeksBeforeTheEpochAreWholeWeeks)
{
    EXPECT_EQ(WeekOf(4 * 86400), 0);
    EXPECT_EQ(WeekOf(4 * 86400 - 1), -1);
    EXPECT_EQ(WeekOf(-3 * 86400), -1);
    EXPECT_EQ(WeekOf(-3 * 86400 - 1), -2);
}

TEST(FleetReaderTest, AWrongClockDoesNotMoveTheTrendAway)
{
    FleetDatabase database;
    database.Bundle("z", "2099-01-01 00:00:00").Tree("T", "fault");
    database.Bundle("y", "1970-01-01 00:00:00").Tree("T", "fault").Cause("X");
    database.Bundle("a", "2024-05-19 12:00:00").Tree("T", "fault");
    database.Bundle("b", "2024-05-20 12:00:00").Tree("T", "fault");
    const FleetTrend trend = database.Read().trend;
    ASSERT_EQ(trend.weeks.size(), 2U);
    EXPECT_EQ(trend.weeks[0].monday, "2024-05-13");
    EXPECT_EQ(trend.before, 1U);
    EXPECT_EQ(trend.after, 1U);
}

TEST(FleetReaderTest, DevicesAreFollowedThroughTheirBundles)
{
    FleetDatabase database;
    const auto fault = [&database](const char* name, const char* now, const char* device) -> FleetDatabase& {
        return database.Bundle(name, now, device).Tree("T", "fault").Cause("HOT", {"FAN", "PASTE"});
    };
    fault("a1", "2024-05-01 12:00:00", "a");
    fault("a2", "2024-05-20 12:00:00", "a").Repaired("FAN", "2024-05-02 12:00:00");
    fault("b1", "2024-05-01 12:00:00", "b");
    database.Bundle("b2", "2024-05-20 12:00:00", "b").Tree("T", "no_fault").Repaired("FAN", "2024-05-02 12:00:00");
    fault("c1", "2024-05-01 12:00:00", "c");
    fault("c2", "2024-05-02 12:00:00", "c");
    fault("d1", "2024-05-01 12:00:00", "d");
    database.Bundle("d2", "2024-05-20 12:00:00", "d").Tree("T", "undecided", false);
    // Without a device, failed, and with a repair on record alone.
    fault("e1", "2024-05-01 12:00:00", "");
    database.Bundle("f1", "2024-05-01 12:00:00", "f").Repaired("FAN", "2024-04-01 12:00:00").Failed("bad_bundle");
    database.Bundle("z1", "", "zz").Repaired("FAN", "").Repaired("UNKNOWN", "2024-04-01 12:00:00").Tree("T", "no_fault");
    const RepairFigures repairs = database.Read().repairs;
    EXPECT_EQ(repairs.withinDays, 30);
    EXPECT_EQ(repairs.devices, 6U);
    EXPECT_EQ(repairs.bundlesWithoutDevice, 1U);
    EXPECT_EQ(repairs.withoutCause, 1U);
    // PASTE is on record on no device.
    EXPECT_THAT(Texts(repairs.effects), ElementsAre("FAN: 1 again 1 gone 2 not; without 1 again 0 gone 1 not"));
}

TEST(FleetReaderTest, ATrendHasAsManyWeeksAsItMayAndOfEqualOnesTheLast)
{
    for (const auto& [later, weeks, before] :
        {std::tuple("2024-05-19 12:00:00", 104U, 0U), std::tuple("2024-05-20 12:00:00", 1U, 1U)}) {
        FleetDatabase database;
        database.Bundle("a", "2022-05-23 12:00:00").Bundle("b", later);
        const FleetTrend trend = database.Read().trend;
        ASSERT_EQ(trend.weeks.size(), weeks);
        EXPECT_EQ(trend.before, before);
        EXPECT_EQ(trend.weeks.back().monday, weeks == 1 ? "2024-05-20" : "2024-05-13");
    }
}

TEST(FleetReaderTest, RepairsOfDevicesWithoutBundlesDoNotHideThoseOfOthers)
{
    FleetDatabase database;
    database.Bundle("a", "2024-05-01 12:00:00", "a").Repaired("FAN", "2024-04-01 12:00:00").Failed("bad_bundle");
    database.Bundle("b1", "2024-05-01 12:00:00", "b").Tree("T", "fault").Cause("HOT", {"FAN"});
    database.Bundle("b2", "2024-05-03 12:00:00", "b").Tree("T", "no_fault").Repaired("FAN", "2024-05-02 12:00:00");
    EXPECT_THAT(Texts(database.Read().repairs.effects), ElementsAre("FAN: 0 again 1 gone 1 not; without 0 again 0 gone 0 not"));
}

TEST(FleetReaderTest, AFailedBundleDoesNotShowADevice)
{
    FleetDatabase database;
    database.Bundle("b1", "2024-05-01 12:00:00", "b").Tree("T", "fault").Cause("HOT", {"FAN"});
    database.Bundle("b2", "2024-05-03 12:00:00", "b").Repaired("FAN", "2024-05-02 12:00:00").Failed("timeout");
    EXPECT_EQ(database.Read().repairs.effects.at(0).notSeenAfter, 1U);
}

TEST(FleetReaderTest, AnotherFaultOfTheTreeWithOpenChecksDoesNotExcludeTheFault)
{
    FleetDatabase database;
    database.Bundle("b1", "2024-05-01 12:00:00", "b").Tree("T", "fault").Cause("HOT", {"FAN"});
    database.Bundle("b2", "2024-05-03 12:00:00", "b").Tree("T", "fault", false).Cause("OLD")
        .Repaired("FAN", "2024-05-02 12:00:00");
    EXPECT_EQ(database.Read().repairs.effects.at(0).notToldAfter, 1U);
}

TEST(FleetReaderTest, AFaultIsGoneIfAllTreesOfItsCausesSaySo)
{
    FleetDatabase database;
    const auto bundle = [&database](const char* name, const char* now) -> FleetDatabase& {
        return database.Bundle(name, now, "a");
    };
    bundle("a1", "2024-05-01 12:00:00").Tree("Z", "fault").Cause("HOT", {"FAN"}).Tree("A", "fault").Cause("HOT", {"FAN"});
    bundle("a2", "2024-05-03 12:00:00").Tree("Z", "no_fault").Tree("A", "not_applicable")
        .Repaired("FAN", "2024-05-02 12:00:00");
    EXPECT_EQ(database.Read().repairs.effects.at(0).notToldAfter, 1U);
    FleetDatabase other;
    other.Bundle("b1", "2024-05-01 12:00:00", "b").Tree("Z", "fault").Cause("HOT", {"FAN"}).Tree("A", "fault")
        .Cause("HOT", {"FAN"});
    other.Bundle("b2", "2024-05-03 12:00:00", "b").Tree("Z", "no_fault").Tree("A", "no_fault")
        .Repaired("FAN", "2024-05-02 12:00:00");
    EXPECT_EQ(other.Read().repairs.effects.at(0).repaired.gone, 1U);
}

TEST(FleetReaderTest, DaysToFollowAreThoseThatWereAskedFor)
{
    for (const auto& [days, expected] : {std::pair(18, "FAN: 0 again 0 gone 1 not; without 0 again 0 gone 0 not"),
             std::pair(19, "FAN: 1 again 0 gone 0 not; without 0 again 0 gone 0 not")}) {
        FleetDatabase database;
        database.Bundle("a1", "2024-05-01 12:00:00", "a").Tree("T", "fault").Cause("HOT", {"FAN"});
        database.Bundle("a2", "2024-05-21 12:00:00", "a").Tree("T", "fault").Cause("HOT").Repaired("FAN", "2024-05-02 12:00:00");
        EXPECT_THAT(Texts(database.Read(days).repairs.effects), ElementsAre(expected)) << days;
    }
}

TEST(FleetReaderTest, RepairsBeyondTheListAreCounted)
{
    FleetDatabase database;
    std::vector<std::string> repairs;
    for (int repair = 10; repair < 55; ++repair) {
        repairs.push_back("R" + std::to_string(repair));
    }
    database.Bundle("a", "2024-05-01 12:00:00", "a").Tree("T", "fault").Cause("HOT", repairs);
    for (const std::string& repair : repairs) {
        database.Repaired(repair, "2024-05-01 12:00:00");
    }
    const RepairFigures figures = database.Read().repairs;
    EXPECT_EQ(figures.effects.size(), RepairFigures::MOST);
    EXPECT_EQ(figures.leftOut, 5U);
}

TEST(FleetReaderTest, AnEmptyDatabaseHasNoFigures)
{
    const Fleet fleet = FleetDatabase().Read();
    EXPECT_EQ(fleet.bundles.All(), 0U);
    EXPECT_TRUE(fleet.trend.weeks.empty());
    EXPECT_EQ(fleet.from, "");
    EXPECT_TRUE(fleet.repairs.effects.empty());
}

TEST(FleetReaderTest, AFileThatIsNoResultsDatabaseIsRefused)
{
    const TempDir dir;
    Fleet fleet;
    const auto failure = ReadFleet(dir.Path("none.db"), 30, fleet);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_RESULTS);
}

TEST(FleetReaderTest, ADatabaseThatLacksATableIsToldAsSuch)
{
    FleetDatabase database;
    database.Read();
    Connection connection;
    ASSERT_TRUE(connection.Open(database.Path(), Connection::Mode::CREATE));
    ASSERT_TRUE(connection.Execute("DROP TABLE repaired"));
    Fleet fleet;
    const auto failure = ReadFleet(database.Path(), 30, fleet);
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->message, testing::EndsWith("results.db: lacks the table repaired"));
}

TEST(FleetReaderTest, ARootCauseWithoutItsDefinitionIsPassedOver)
{
    FleetDatabase database;
    database.Bundle("a", "").Tree("T", "fault").Cause("X");
    database.Read();
    Connection connection;
    ASSERT_TRUE(connection.Open(database.Path(), Connection::Mode::CREATE));
    ASSERT_TRUE(connection.Execute("INSERT INTO root_cause VALUES (1, 0), (1, 7), (2, 0)"));
    Fleet fleet;
    ASSERT_FALSE(ReadFleet(database.Path(), 30, fleet));
    EXPECT_THAT(Texts(fleet.causes.causes), ElementsAre("T/X 1"));
}

// Random fleets: every list adds up to the numbers above it.
TEST(FleetReaderTest, AllPartsAddUp)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto oneOf = [&random](std::vector<std::string> words) { return words[random() % words.size()]; };
    FleetDatabase database;
    const std::vector<std::string> days = {"", "2024-05-01 12:00:00", "2024-06-11 12:00:00", "2023-01-01 00:00:00"};
    std::uint64_t open = 0;
    for (int bundle = 0; bundle < 300; ++bundle) {
        database.Bundle("b" + std::to_string(bundle), oneOf(days), oneOf({"", "p", "q", "r"}));
        if (random() % 5 == 0) {
            database.Failed(oneOf({"timeout", "bad_bundle"}));
            continue;
        }
        for (const char* const tree : {"T", "U"}) {
            const std::string verdict = oneOf({"fault", "undecided", "no_fault", "not_applicable"});
            database.Tree(tree, verdict, verdict != "undecided");
            for (auto left = random() % 4; left > 0 && verdict == "undecided"; --left, ++open) {
                database.Open("E" + std::to_string(left), "no_data", oneOf({"log_damaged", "no_value"}), oneOf({"", "jank_db.db"}));
            }
        }
    }
    const Fleet fleet = database.Read();
    EXPECT_EQ(fleet.bundles.All(), 300U);
    for (const TreeVerdicts& tree : fleet.trees) {
        EXPECT_EQ(tree.All() + fleet.bundles.failed, 300U);
    }
    std::uint64_t failed = 0;
    for (const CommonFailure& failure : fleet.failures) {
        failed += failure.bundles;
    }
    EXPECT_EQ(failed, fleet.bundles.failed);
    std::uint64_t byReason = 0;
    for (const OpenByReason& reason : fleet.open.byReason) {
        byReason += reason.checks;
    }
    std::uint64_t bySource = fleet.open.checksInRest;
    for (const OpenBySource& source : fleet.open.bySource) {
        bySource += source.checks;
    }
    EXPECT_EQ(byReason, open);
    EXPECT_EQ(bySource, open);
    EXPECT_EQ(fleet.open.checks, open);
    std::uint64_t inWeeks = fleet.trend.before + fleet.trend.after + fleet.trend.undated;
    for (const FleetWeek& week : fleet.trend.weeks) {
        inWeeks += week.bundles.All();
    }
    EXPECT_EQ(inWeeks, 300U);
}

} // namespace
} // namespace diagnosis
