#include "tests/support/recording_observer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Evidence::Reason;
using testing::ElementsAre;

Evidence::Rule RuleNamed(const std::string& name, Evidence::Family family, Reason reason)
{
    Evidence::Rule rule;
    rule.name = name;
    rule.reason = reason;
    rule.SetFamily(family);
    return rule;
}

TEST(RecordingObserverTest, TellsTheCallsInOrder)
{
    Evidence::Rule filtered = RuleNamed("r1", Evidence::Family::NODE, Reason::FILTERED_SCENE);
    filtered.filter = {"3", "1,2"};
    RecordingObserver observer;
    observer.OnRuleSetRead({{{Evidence::RuleSetFileType::RULES, Evidence::RuleSetFileState::MALFORMED, "r.xml",
        "bad element", 3, 0}}, {{"D", ".*"}}, {}});
    observer.OnTreeStarted({"T", "2", "jank"});
    observer.OnEventDecided({"A", "name", false, Reason::NONE,
        {{false, {}}, {true, {filtered, RuleNamed("r2", Evidence::Family::CODE, Reason::GROUP_ENDED)}}}});
    observer.OnTreeFinished({"T", true, {}});
    EXPECT_THAT(observer.Lines(), ElementsAre("file rules malformed r.xml count 0 line 3: bad element",
                                              "database D '.*'", "tree T version 2 type jank", "event A (name)",
                                              "ask A r1 node #1.0", "filter r1 '3' in '1,2' [filtered_scene]",
                                              "rule A r1 node SKIP [filtered_scene]",
                                              "rule A r2 code SKIP [group_ended]", "decided A FALSE",
                                              "finished T fault"));
}

TEST(RecordingObserverTest, TellsTheDeduction)
{
    RecordingObserver observer;
    observer.OnTreeFolded({{0, Evidence::EventType::INTERMEDIATE, Evidence::GateType::AND, "T", "top", "",
        Evidence::EventState::PRESENT, true}});
    observer.OnRootCause({"A", {"T/A", "T/B"}, {"A", "B", "T"}});
    EXPECT_THAT(observer.Lines(), ElementsAre("folded 0 intermediate and T (top) TRUE observable",
                                              "cause A: T/A & T/B up A,B,T"));
}

TEST(RecordingObserverTest, TellsTroubleWithItsPlace)
{
    RecordingObserver observer;
    observer.OnTrouble({Evidence::Trouble::Kind::STATEMENT_FAILED, "A", "r", "", "rules.xml", 7, "no such table"});
    EXPECT_THAT(observer.Lines(), ElementsAre("trouble statement A r rules.xml:7: no such table"));
}

TEST(RecordingObserverTest, GivesTheLinesOfOneWord)
{
    RecordingObserver observer;
    observer.OnTreeStarted({"T", "2", "jank"});
    observer.OnTreeFinished({"T", false, {}});
    EXPECT_THAT(observer.Lines("finished"), ElementsAre("finished T no fault"));
    observer.Clear();
    EXPECT_TRUE(observer.Lines().empty());
}

} // namespace
