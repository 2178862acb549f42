#include "diagnosis/cases/coverage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/cases/test_run.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::cases::CoverageItem;
using diagnosis::cases::CoverageKindText;
using diagnosis::cases::RuleSetCoverage;
using diagnosis::cases::RunTests;
using diagnosis::cases::TestOptions;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char TREES[] = R"(<FaultTrees version="1">
  <Tag>
    <tree id="T" version="1" type="t">
      <Intermediate-Event><ID>TOP</ID>
        <Or-Gate>
          <Basic-Event><ID>HOT</ID></Basic-Event>
          <Basic-Event><ID>DROPS</ID></Basic-Event>
          <Basic-Event><ID>LEFT</ID><DetectMode>2</DetectMode></Basic-Event>
          <Basic-Event><ID>BARE</ID></Basic-Event>
        </Or-Gate>
      </Intermediate-Event>
    </tree>
  </Tag>
</FaultTrees>
)";

// Lines matter.
constexpr char RULES[] = R"(<FaultTreeRules>
  <EventRules><Tag>
    <Event><ID>HOT</ID>
      <or type="singleRule"><Rule><Rule-name>hot</Rule-name></Rule></or>
      <or type="multipleRule"><and><Rule><Rule-name>warm</Rule-name></Rule><Rule><Rule-name>drops</Rule-name></Rule></and></or>
    </Event>
    <Event><ID>DROPS</ID><or type="singleRule"><Rule><Rule-name>drops</Rule-name></Rule></or></Event>
    <Event><ID>LEFT</ID><or type="singleRule"><Rule><Rule-name>left</Rule-name></Rule></or></Event>
  </Tag></EventRules>
  <RuleList><Tag><rule>
    <nodeRule name="hot" detectScene="1">
      <nodeInfo param="T" path="/temp"/><params><param id="t" key="T" type="int"/></params>
      <condition><or type="multiple_logic"><and>
        <gt><id>t</id><value>70</value></gt>
        <lt><id>t</id><value>200</value></lt>
      </and></or></condition>
    </nodeRule>
    <nodeRule name="warm" detectScene="1" production="A">
      <nodeInfo param="T" path="/temp"/><params><param id="t" key="T" type="int"/></params>
      <condition><or type="single_logic"><gt><id>t</id><value>50</value></gt></or></condition>
    </nodeRule>
    <alarmRule name="drops" detectScene="1">
      <alarmId type="param_eventid" Eventid_Max="7">
        <time type="duration" period="7" threshold="2"/>
        <params><param id="w" key="WHO" type="string"/></params>
        <condition><or type="single_logic"><eq><id>w</id><value>me</value></eq></or></condition>
      </alarmId>
    </alarmRule>
    <codeRule name="left" detectScene="1"><detectInfo id="L"/></codeRule>
    <codeRule name="unused" detectScene="1"><detectInfo id="U"/></codeRule>
  </rule></Tag></RuleList>
</FaultTreeRules>
)";

class CoverageTest : public testing::Test {
protected:
    void SetUp() override
    {
        mDir.Write("rules/FaultTrees.xml", TREES);
        mDir.Write("rules/FaultTreeRules.xml", RULES);
    }

    // Runs cases with these members, and gives "file:line kind subject never ...".
    std::vector<std::string> UncoveredBy(const std::vector<std::string>& cases)
    {
        std::string text;
        for (std::size_t i = 0; i < cases.size(); ++i) {
            text += std::string(i == 0 ? "" : ", ") + "{\"name\": \"" + std::to_string(i) + "\", " + cases[i]
                + ", \"expect\": {\"noLog\": [\"nothing\"]}}";
        }
        mDir.Write("rules/a.test.json", "{\"scene\": 1, \"cases\": [" + text + "]}");
        TestOptions options;
        options.withCoverage = true;
        const auto run = RunTests({"rules"}, options);
        EXPECT_EQ(run.Passed(), cases.size());
        EXPECT_THAT(run.coverage, SizeIs(1));
        mCoverage = run.coverage.at(0);
        std::vector<std::string> lines;
        for (const CoverageItem& item : mCoverage.items) {
            for (const std::string& word : item.Missing()) {
                lines.push_back(item.file + ":" + std::to_string(item.line) + " " + CoverageKindText(item.kind) + " "
                    + item.subject + " never " + word);
            }
        }
        return lines;
    }

    TempDir mDir;
    RuleSetCoverage mCoverage;
};

const std::string HOT = R"("files": {"/temp": 80})";
const std::string COLD = R"("files": {"/temp": 20})";

TEST_F(CoverageTest, AQuietDeviceShowsTheNegativeHalfOfWhatWasAsked)
{
    EXPECT_THAT(UncoveredBy({COLD}), ElementsAre("rules/FaultTreeRules.xml:4 alternatives alternative hot of HOT never held",
        "rules/FaultTreeRules.xml:5 alternatives alternative warm, drops of HOT never held",
        "rules/FaultTreeRules.xml:7 alternatives alternative drops of DROPS never held",
        "rules/FaultTreeRules.xml:11 filters rule hot: detectScene=\"1\" never rejected",
        "rules/FaultTreeRules.xml:14 tests rule hot: T gt 70 never held",
        "rules/FaultTreeRules.xml:15 tests rule hot: T lt 200 never failed",
        "rules/FaultTreeRules.xml:18 filters rule warm: production=\"A\" never rejected",
        "rules/FaultTreeRules.xml:18 filters rule warm: detectScene=\"1\" never rejected",
        "rules/FaultTreeRules.xml:20 tests rule warm: T gt 50 never held",
        "rules/FaultTreeRules.xml:22 filters rule drops: detectScene=\"1\" never rejected",
        "rules/FaultTreeRules.xml:24 windows rule drops: duration of 2 in 7 days never reached",
        "rules/FaultTreeRules.xml:26 tests rule drops: WHO eq me never held",
        "rules/FaultTreeRules.xml:26 tests rule drops: WHO eq me never failed",
        "rules/FaultTrees.xml:6 leaves event HOT never true", "rules/FaultTrees.xml:7 leaves event DROPS never true"));
    EXPECT_EQ(mCoverage.folder + " " + mCoverage.tag, "rules Tag");
}

TEST_F(CoverageTest, CasesOfEveryOutcomeCoverAll)
{
    const std::string drops = R"(, "events": [{"time": "-1d", "event": 7, "extra": {"WHO": "me"}, "count": 2},
        {"time": "-1d", "event": 7, "extra": {"WHO": "you"}}])";
    EXPECT_THAT(UncoveredBy({COLD, HOT + drops, R"("files": {"/temp": 250})", COLD + ", \"scene\": 2",
                    COLD + ", \"device\": {\"Product\": \"B\"}"}), IsEmpty());
    EXPECT_TRUE(mCoverage.Reaches(100));
}

TEST_F(CoverageTest, WhatHadNoDataShowsNothing)
{
    const auto without = UncoveredBy({R"("events": null)"});
    EXPECT_THAT(without, testing::Contains("rules/FaultTrees.xml:6 leaves event HOT never false"));
    EXPECT_THAT(without, testing::Contains("rules/FaultTrees.xml:7 leaves event DROPS never false"));
    EXPECT_THAT(without, testing::Contains("rules/FaultTreeRules.xml:4 alternatives alternative hot of HOT never failed"));
    EXPECT_THAT(without, testing::Contains("rules/FaultTreeRules.xml:14 tests rule hot: T gt 70 never failed"));
    EXPECT_THAT(without, testing::Contains("rules/FaultTreeRules.xml:24 windows rule drops: duration of 2 in 7 days never missed"));
}

TEST_F(CoverageTest, ARejectedRuleShowsTheFiltersUpToTheOneThatRejected)
{
    EXPECT_THAT(UncoveredBy({COLD + R"(, "scene": 2, "device": {"Product": "B"})"}),
        testing::IsSupersetOf({"rules/FaultTreeRules.xml:18 filters rule warm: production=\"A\" never passed",
            "rules/FaultTreeRules.xml:18 filters rule warm: detectScene=\"1\" never passed",
            "rules/FaultTreeRules.xml:18 filters rule warm: detectScene=\"1\" never rejected"}));
}

TEST_F(CoverageTest, ARuleBehindTheEndOfItsGroupShowsNothing)
{
    std::string rules = RULES;
    const std::string entry = "    <Event><ID>DROPS</ID>";
    const auto start = rules.find(entry);
    mDir.Write("rules/FaultTreeRules.xml", rules.erase(start, rules.find('\n', start) - start));
    EXPECT_THAT(UncoveredBy({COLD}),
        testing::Contains("rules/FaultTreeRules.xml:22 filters rule drops: detectScene=\"1\" never passed"));
}

TEST_F(CoverageTest, AThresholdIsReachedByItsPartOfTheOutcomes)
{
    UncoveredBy({COLD});
    EXPECT_EQ(mCoverage.Total(), 28U);
    EXPECT_EQ(mCoverage.Covered(), 13U);
    EXPECT_TRUE(mCoverage.Reaches(46)); // 46.4 percent
    EXPECT_FALSE(mCoverage.Reaches(47));
}

} // namespace
