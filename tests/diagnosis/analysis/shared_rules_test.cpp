#include "diagnosis/analysis/shared_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/diagnosis/evidence/recorded_tree.h"

namespace {

using diagnosis::RecordedTree;
using diagnosis::SharedRules;
using Evidence::Check;
using testing::ElementsAre;

Evidence::Rule Rule(const std::string& name, Check check = Check::NOT_CHECKED)
{
    Evidence::Rule rule;
    rule.name = name;
    rule.check = check;
    return rule;
}

Evidence::Rule Asking(const std::string& name, const std::string& code, const std::string& text)
{
    Evidence::Rule rule = Rule(name);
    rule.SetFamily(Evidence::Family::CODE);
    std::get<Evidence::Code>(rule.part).detectCode = code;
    std::get<Evidence::Code>(rule.part).userDefinedInfo = text;
    return rule;
}

// A tree with the open events A, B, ..., one for each list of rules: its alternatives.
RecordedTree WithRules(const std::vector<std::vector<Evidence::Rule>>& rules)
{
    std::vector<ToldEvent> events;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        events.push_back(Event(std::string(1, static_cast<char>('A' + i)), false));
    }
    RecordedTree tree = Told(GateEvent("T", true, events));
    for (std::size_t i = 0; i < rules.size(); ++i) {
        Evidence::Event& evidence = tree.evidence.emplace_back();
        evidence.check = tree.events[i + 1].check = Check::NOT_CHECKED;
        tree.events[i + 1].evidence = i;
        for (const Evidence::Rule& rule : rules[i]) {
            evidence.alternatives.push_back({false, {rule}});
        }
    }
    return tree;
}

bool HasAny(const std::vector<std::vector<Evidence::Rule>>& rules) { return SharedRules(WithRules(rules)).HasAny(); }

TEST(SharedRulesTest, AreThoseThatStandTwiceWithoutAnAnswer)
{
    EXPECT_FALSE(HasAny({{Rule("r")}, {Rule("s")}}));
    EXPECT_TRUE(HasAny({{Rule("r")}, {Rule("r")}}));
    EXPECT_TRUE(HasAny({{Rule("r"), Rule("r")}}));
    EXPECT_FALSE(HasAny({{Rule("r", Check::DECIDED), Rule("s")}, {Rule("r", Check::DECIDED)}}));
}

TEST(SharedRulesTest, AreThoseThatAskTheHostTheSame)
{
    EXPECT_FALSE(HasAny({{Asking("r", "C1", "x")}, {Asking("s", "C2", "y")}}));
    EXPECT_FALSE(HasAny({{Asking("r", "", "")}, {Asking("s", "", "")}})) << "there is no host to ask";
    EXPECT_TRUE(HasAny({{Asking("r", "C1", "x")}, {Asking("s", "C1", "y")}}));
    EXPECT_TRUE(HasAny({{Asking("r", "C1", "x")}, {Asking("s", "C2", "x")}}));
}

TEST(SharedRulesTest, OfADecidedEventNeedNoAnswer)
{
    RecordedTree tree = WithRules({{Rule("r"), Rule("r")}});
    tree.events[1].check = tree.evidence[0].check = Check::DECIDED;
    EXPECT_FALSE(SharedRules(tree).HasAny());
}

TEST(SharedRulesTest, AnswerTheEventsThatRestOnNothingElse)
{
    const RecordedTree tree = WithRules({{Rule("r")}, {Rule("s")}, {Rule("r")}, {Rule("r"), Rule("s")},
        {Rule("r"), Rule("u", Check::DECIDED)}});
    const SharedRules shared(tree);
    EXPECT_THAT(shared.AnsweredWith(1), ElementsAre("A", "C", "E"));
    EXPECT_THAT(shared.AnsweredWith(2), ElementsAre("B"));
    EXPECT_THAT(shared.AnsweredWith(3), ElementsAre("C", "A", "E"));
    EXPECT_THAT(shared.AnsweredWith(4), ElementsAre("D"));
}

} // namespace
