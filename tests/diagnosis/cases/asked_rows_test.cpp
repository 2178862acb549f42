#include "diagnosis/cases/asked_rows.h"

#include <gtest/gtest.h>

#include "diagnosis/rule_source/rule_set.h"

namespace {

using diagnosis::TreeReports;
using diagnosis::cases::AskedRows;
using diagnosis::rule_source::RuleSet;
using diagnosis::rule_source::RuleSetFiles;
using diagnosis::rule_source::SourceFile;

constexpr std::int64_t DAY = 86400;
constexpr std::int64_t NOW = 100 * DAY;

/// A tree with one alarm rule.
class AskedRowsTest : public testing::Test {
protected:
    void Window(std::int64_t firstId, std::int64_t lastId, std::int64_t since)
    {
        Evidence::Window window;
        window.firstId = firstId;
        window.lastId = lastId;
        window.start.emplace().start.seconds = since;
        mAlarm.windows.push_back(window);
    }

    AskedRows Asked(const std::string& commonPart = "")
    {
        Evidence::Rule rule;
        rule.part = mAlarm;
        Evidence::Event event;
        event.alternatives.push_back({false, {rule}});
        TreeReports trees(1);
        trees.front().tree.evidence.push_back(event);
        RuleSetFiles files;
        files.rules = SourceFile::Of("r", "<FaultTreeRules><RuleCommonPart><Tag><commonPart>" + commonPart
            + "</commonPart></Tag></RuleCommonPart></FaultTreeRules>");
        return AskedRows(trees, RuleSet(files, "Tag"), NOW);
    }

    Evidence::Alarm mAlarm;
};

TEST_F(AskedRowsTest, AWindowAsksFromItsStartOn)
{
    Window(5, 7, 1000);
    const AskedRows asked = Asked();
    EXPECT_TRUE(asked.Contains(5, 1000));
    EXPECT_TRUE(asked.Contains(7, NOW + DAY));
    EXPECT_FALSE(asked.Contains(7, 999));
    EXPECT_FALSE(asked.Contains(4, 1000));
    EXPECT_FALSE(asked.Contains(8, 1000));
}

TEST_F(AskedRowsTest, WhereWindowsOverlapTheEarliestStartCounts)
{
    Window(1, 10, 500);
    Window(3, 5, 100);
    Window(5, 20, 300);
    Window(7, 6, 0); // no ids
    const AskedRows asked = Asked();
    EXPECT_FALSE(asked.Contains(2, 499));
    EXPECT_TRUE(asked.Contains(3, 100));
    EXPECT_TRUE(asked.Contains(5, 100));
    EXPECT_FALSE(asked.Contains(6, 299));
    EXPECT_TRUE(asked.Contains(10, 300));
    EXPECT_TRUE(asked.Contains(20, 300));
    EXPECT_FALSE(asked.Contains(21, 300));
}

TEST_F(AskedRowsTest, ADerivedTableAsksForThirtyDays)
{
    const AskedRows asked = Asked("<thresholdsOrLumbraData name=\"t\"><retrieveLumbraData>"
                                  "<alarmId Eventid_Min=\"8\" Eventid_Max=\"9\"/></retrieveLumbraData></thresholdsOrLumbraData>");
    EXPECT_TRUE(asked.Contains(9, NOW - 30 * DAY + 1));
    EXPECT_FALSE(asked.Contains(9, NOW - 30 * DAY));
    EXPECT_FALSE(asked.Contains(902000000, NOW));
}

TEST_F(AskedRowsTest, ADerivedTableWithoutIdsAsksForTheDefaultEventsOfSevenDays)
{
    const AskedRows asked = Asked("<thresholdsOrLumbraData name=\"t\"><retrieveLumbraData>"
                                  "<alarmId Eventid_Min=\"9\" Eventid_Max=\"8\"/></retrieveLumbraData></thresholdsOrLumbraData>");
    EXPECT_TRUE(asked.Contains(902000000, NOW - 7 * DAY + 1));
    EXPECT_TRUE(asked.Contains(902500007, NOW));
    EXPECT_FALSE(asked.Contains(902500000, NOW));
    EXPECT_FALSE(asked.Contains(902000000, NOW - 7 * DAY));
}

TEST_F(AskedRowsTest, NothingIsAskedWithoutWindowsAndTables)
{
    EXPECT_FALSE(Asked().Contains(0, NOW));
    EXPECT_FALSE(Asked("<thresholdsOrLumbraData name=\"t\"/>").Contains(902000000, NOW));
}

} // namespace
