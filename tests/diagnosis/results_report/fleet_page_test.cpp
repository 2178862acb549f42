#include "diagnosis/results_report/fleet_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/results_report/fleet_json.h"
#include "diagnosis/text/json_text.h"
#include "tests/diagnosis/results_report/fleet_database.h"

namespace diagnosis {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Two devices with the fault, of which one was repaired, and one bundle of each other kind.
Fleet SmallFleet()
{
    FleetDatabase database;
    database.Bundle("a1", "2024-05-01 12:00:00", "a", 1234567).Tree("T", "fault").Cause("HOT", {"FAN"}).Cause("OLD");
    database.Bundle("a2", "2024-05-20 12:00:00", "a").Tree("T", "no_fault").Repaired("FAN", "2024-05-02 12:00:00");
    database.Bundle("b1", "2024-05-01 12:00:00", "b").Tree("T", "fault").Cause("HOT", {"FAN"});
    database.Bundle("b2", "2024-05-20 12:00:00", "b").Tree("T", "fault").Cause("HOT", {"FAN"});
    database.Bundle("c", "2024-05-20 12:00:00").Tree("T", "undecided", false)
        .Open("X", "no_data", "node_unreadable", "node/temperature");
    database.Bundle("d", "").Failed("timeout", true);
    return database.Read();
}

TEST(FleetPageTest, ShowsAllPartsWithTheirFigures)
{
    const std::string page = FleetPage(SmallFleet());
    EXPECT_THAT(page, HasSubstr("<h1>Faults in 3 of 6 bundles, 1 undecided, 1 not diagnosed</h1>"));
    EXPECT_THAT(page, HasSubstr("<tr><td class=\"id\">T</td><td class=\"number\">3</td><td class=\"number\">1</td>"
        "<td class=\"number\">1</td><td class=\"number\">0</td><td class=\"number\">0</td><td class=\"number\">1</td>"
        "<td class=\"number\">6</td></tr>"));
    EXPECT_THAT(page, HasSubstr("3 bundles, 60.0 %, Name of HOT"));
    EXPECT_THAT(page, HasSubstr("<title>T: HOT and T: OLD: 1, 33 % of the first</title>"));
    EXPECT_THAT(page, HasSubstr("<td>the node file node/temperature</td><td class=\"number\">1</td>"));
    EXPECT_THAT(page, HasSubstr("<td class=\"id\">timeout</td><td class=\"number\">1</td><td class=\"number\">16.7 %</td>"
        "<td>yes</td><td>why</td>"));
    EXPECT_THAT(page, HasSubstr("<tr><td>a1</td><td class=\"moment\">2024-05-01 12:00:00</td><td class=\"number\">1.234 s</td></tr>"));
    EXPECT_THAT(page, HasSubstr("<title>2024-04-29: fault 2</title>"));
    EXPECT_THAT(page, HasSubstr("1 bundle has no moment."));
}

TEST(FleetPageTest, TellsWhatRepairsCameToAndWhatThatCannotSay)
{
    const std::string page = FleetPage(SmallFleet());
    EXPECT_THAT(page, HasSubstr("<tr><td class=\"id\">FAN</td><td class=\"number\">1</td><td class=\"number\">1</td>"
        "<td class=\"number\">0</td><td class=\"number\">0.0 % (0.0 % to 79.3 %)</td><td class=\"number\">1</td>"
        "<td class=\"number\">1</td><td class=\"number\">100.0 % (20.7 % to 100.0 %)</td></tr>"));
    EXPECT_THAT(page, HasSubstr("seen again within 30 days"));
    EXPECT_THAT(page, AllOf(HasSubstr("There is no control group."), HasSubstr("19 of 20 such intervals")));
    EXPECT_THAT(page, HasSubstr("Share of devices with the fault again, with and without each repair."));
}

TEST(FleetPageTest, SaysWhyThereAreNoRepairs)
{
    EXPECT_THAT(FleetPage({}), AllOf(HasSubstr("No result names a device"), Not(HasSubstr("control group"))));
    FleetDatabase database;
    database.Bundle("a", "2024-05-01 12:00:00", "a").Tree("T", "no_fault").Repaired("OTHER", "2024-05-01 11:00:00");
    EXPECT_THAT(FleetPage(database.Read()), AllOf(HasSubstr("No device has a repair on record that a root cause"),
        HasSubstr("1 repair is on record that no root cause of these results names.")));
}

TEST(FleetPageTest, TheHeadlineClaimsNoMoreThanWasDiagnosed)
{
    FleetDatabase failed;
    failed.Bundle("a", "").Failed("no_bundle");
    failed.Bundle("b", "").Failed("timeout");
    EXPECT_THAT(FleetPage(failed.Read()), HasSubstr("<h1>None of 2 bundles diagnosed</h1>"));
    FleetDatabase partly;
    partly.Bundle("a", "2024-05-01 12:00:00").Tree("T", "no_fault");
    partly.Bundle("b", "").Failed("timeout");
    EXPECT_THAT(FleetPage(partly.Read()), HasSubstr("<h1>No fault found in 1 bundle, 1 not diagnosed</h1>"));
}

TEST(FleetPageTest, ABundleThatFailedBeforeItsRulesWereReadIsOfNoOtherRuleSet)
{
    const auto page = [](const std::string& ruleSet) {
        FleetDatabase database;
        database.Bundle("a", "2024-05-01 12:00:00").Tree("T", "no_fault");
        database.Bundle("b", "", "", 1, ruleSet).Failed("no_bundle");
        return FleetPage(database.Read());
    };
    EXPECT_THAT(page(""), AllOf(HasSubstr("<td>not known</td>"), Not(HasSubstr("of several engines or rule sets"))));
    EXPECT_THAT(page("sha256:2"), HasSubstr("of several engines or rule sets"));
}

TEST(FleetPageTest, TextsOfDevicesFormNoMarkup)
{
    const std::string hostile = "<script>alert(1)</script>\"'&\x1b[31m";
    FleetDatabase database;
    for (int bundle = 1; bundle <= 2; ++bundle) {
        database.Bundle(hostile + std::to_string(bundle), "2024-05-0" + std::to_string(bundle) + " 12:00:00", hostile, 1, hostile)
            .Tree(hostile, "fault", false)
            .Cause(hostile, {hostile})
            .Cause(hostile + "2")
            .Open(hostile, hostile, hostile, hostile)
            .Repaired(hostile, "2024-05-01 13:00:00");
    }
    database.Bundle("failed", "").Failed(hostile);
    const std::string page = FleetPage(database.Read());
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("\x1b")));
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;"));
}

TEST(FleetPageTest, LoadsAndRunsNothing)
{
    const std::string page = FleetPage(SmallFleet());
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'\""));
    for (const char* const word : {"<script", "<link", "<img", "href=", "src=", "url(", "@import", "http:", "https:"}) {
        EXPECT_THAT(page, Not(HasSubstr(word))) << word;
    }
}

TEST(FleetPageTest, AnEmptyFleetHasAPage)
{
    const std::string page = FleetPage({});
    EXPECT_THAT(page, AllOf(HasSubstr("<h1>No results</h1>"), HasSubstr("No bundle has a root cause."),
        HasSubstr("No check is open."), testing::EndsWith("</html>\n")));
}

TEST(FleetJsonTest, HasTheFiguresOfThePage)
{
    std::string problem;
    const auto json = ParseJson(FleetJson(SmallFleet()), problem);
    ASSERT_TRUE(json) << problem;
    EXPECT_EQ((*json)["schema"].asString(), "arborist.results_report.1");
    EXPECT_EQ((*json)["bundles"]["total"].asInt(), 6);
    EXPECT_EQ((*json)["trees"][0]["fault"].asInt(), 3);
    EXPECT_EQ((*json)["causes"][0]["id"].asString(), "HOT");
    EXPECT_EQ((*json)["together"][0][1].asInt(), 1);
    EXPECT_EQ((*json)["openBySource"][0]["undecidedTrees"].asInt(), 1);
    EXPECT_EQ((*json)["slowest"][0]["seconds"].asDouble(), 1.234567);
    EXPECT_EQ((*json)["weeks"][0]["causes"][0].asInt(), 2);
    const Json::Value& repair = (*json)["repairs"][0];
    EXPECT_EQ(repair["repaired"]["followed"].asInt(), 1);
    EXPECT_EQ(repair["repaired"]["high"].asDouble(), 0.7935);
    EXPECT_EQ(repair["others"]["low"].asDouble(), 0.2065);
    EXPECT_EQ(repair["others"]["high"].asDouble(), 1.0);
}

} // namespace
} // namespace diagnosis
