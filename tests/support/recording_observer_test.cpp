#include "tests/support/recording_observer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using Observer = DetectionObserver;

TEST(RecordingObserverTest, TellsTheDriverCallsInOrder)
{
    RecordingObserver observer;
    observer.OnRuleSetFile({Observer::RuleSetFile::Kind::RULES, Observer::RuleSetFile::State::MALFORMED, "r.xml",
                            "bad element", 3, 0});
    observer.OnThresholds({"C", 4, 2, false});
    observer.OnExternalDatabase({"D", ".*"});
    observer.OnTreeStarted({"T", "2", "jank"});
    observer.OnEventAsked({"A", "name"});
    observer.OnRuleAsked({"A", "r1", Observer::Family::NODE, 1, 2, true});
    observer.OnFilter({"r1", Observer::Reason::FILTERED_SCENE, "3", "1,2"});
    observer.OnRuleDecided({"A", "r1", Observer::Family::NODE, Observer::Verdict::SKIPPED,
                            Observer::Reason::FILTERED_SCENE});
    observer.OnEventDecided({"A", false, Observer::Reason::NONE});
    observer.OnTreeFinished({"T", true});
    EXPECT_THAT(observer.Lines(), ElementsAre("file rules malformed r.xml count 0 line 3: bad element",
                                              "thresholds C 2 by 4 unset", "database D '.*'",
                                              "tree T version 2 type jank", "event A (name)", "ask A r1 node #1.2",
                                              "filter r1 '3' in '1,2' [filtered_scene]",
                                              "rule A r1 node SKIP [filtered_scene]", "decided A FALSE",
                                              "finished T fault"));
}

TEST(RecordingObserverTest, TellsWhatCheckersSaw)
{
    RecordingObserver observer;
    const std::vector<std::string> faults{"F1", "F2"};
    const std::vector<std::string> none;
    observer.OnStartTime({100, 90, 100, 0, 0, Observer::StartTimeSeen::Floor::RESET, 30, "1", ""});
    observer.OnAlarmTest({"DROP", "int", "ge", "5", 6, 4});
    observer.OnAlarmWindow({0, 10, 20, "latest", 7, 5, 100, true, 6, 1, 2, 3, 11, false,
                            Observer::Reason::WINDOW_SHORT, "weights"});
    observer.OnNodeFile({"p", "/node", true, "5"});
    observer.OnFormula({"a-b-c", "a - (b - c)", "9.000000", "ret"});
    observer.OnQuery({"j.db", "select 1", true, 1});
    observer.OnQuery({"j.db", "select", true, 0, "incomplete input"});
    observer.OnInterval({"begin", "end", 5, 0, 0, false});
    observer.OnParameter({"1", "key", "int", "7", "8"});
    observer.OnComparison({"1", "key", "int", "gt", "8", "5", "static", true});
    observer.OnComparison({"1", "key", "int", "gt", "8", "5", "dynamic", true, "limit"});
    observer.OnName({Observer::Reason::NOT_SQL, "LUA"});
    observer.OnHits({"panels", 3, 1, 2});
    observer.OnCodeRun({"C", faults, none, none, "info", true});
    EXPECT_THAT(observer.Lines(),
                ElementsAre("start 100 of period 90 reset 100 update 0 repair 0 by reset days 30 flag '1' repair id ''",
                            "test DROP int ge '5' passed 4 of 6",
                            "window item 0 ids 10-20 latest days 7 threshold 5 since 100 by version rows 6 "
                            "other version 1 failed 2 reached 3 weights by 11 miss [window_short]",
                            "node p /node = '5'", "formula ret = a-b-c as a - (b - c) -> 9.000000",
                            "query j.db rows 1: select 1", "query j.db rows 0: select failed: incomplete input",
                            "interval begin=5 to end=0 days 0 unusable", "parameter 1 key int '7' -> '8'",
                            "compare 1 key int '8' gt '5' from static holds",
                            "compare 1 key int '8' gt '5' from dynamic limit holds",
                            "name 'LUA' [not_sql]", "hits 1 of 3 panels needed 2",
                            "code C faults F1,F2 suggestions  repairs  info 'info' yes"));
}

TEST(RecordingObserverTest, TellsTheDeduction)
{
    RecordingObserver observer;
    const std::vector<std::string> cutSet{"T/A", "T/B"};
    const std::vector<std::string> wayUp{"A", "B", "T"};
    observer.OnEventFolded({0, Observer::EventFolded::Kind::INTERMEDIATE, Observer::EventFolded::GateKind::AND, "T",
                            "top", "", EventStatus::TRUE, true});
    observer.OnRootCause({"A", cutSet, wayUp});
    EXPECT_THAT(observer.Lines(), ElementsAre("folded 0 intermediate and T (top) TRUE observable",
                                              "cause A: T/A & T/B up A,B,T"));
}

TEST(RecordingObserverTest, GivesTheLinesOfOneWord)
{
    RecordingObserver observer;
    observer.OnTreeStarted({"T", "2", "jank"});
    observer.OnTreeFinished({"T", false});
    EXPECT_THAT(observer.Lines("finished"), ElementsAre("finished T no fault"));
    observer.Clear();
    EXPECT_TRUE(observer.Lines().empty());
}

} // namespace
