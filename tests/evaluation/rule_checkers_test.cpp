#include "arborist/evaluation/rule_checkers.h"

#include <set>
#include <vector>

#include <gmock/gmock.h>

#include "arborist/evaluation/code_rule_engine.h"
#include "arborist/frame/log.h"
#include "arborist/model/rule.h"
#include "tests/support/log_capture.h"

namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Evidence::Family;

class RuleCheckersTest : public testing::Test {
protected:
    LogCapture mLog;
    RuleCheckers mCheckers{nullptr, nullptr, nullptr, nullptr};
};

TEST_F(RuleCheckersTest, ClassOfARuleIsItsFamily)
{
    const AlarmRule alarm;
    const CommandRule command;
    const NodeRule node;
    const CodeRule code;
    const Rule none;
    EXPECT_EQ(FamilyOf(&alarm), Family::ALARM);
    EXPECT_EQ(FamilyOf(&command), Family::COMMAND);
    EXPECT_EQ(FamilyOf(&node), Family::NODE);
    EXPECT_EQ(FamilyOf(&code), Family::CODE);
    EXPECT_EQ(FamilyOf(&none), Family::NONE);
    EXPECT_EQ(FamilyOf(nullptr), Family::NONE);
}

TEST_F(RuleCheckersTest, RuleWithoutAFamilyHasNoChecker)
{
    const Rule rule;
    EXPECT_EQ(mCheckers.Get(&rule, nullptr), nullptr);
    EXPECT_EQ(mCheckers.Get(nullptr, nullptr), nullptr);
    const std::string line = "FUNc:RuleEngine::GetRuleCheckerInstance: undefine rule";
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(line, line));
}

TEST_F(RuleCheckersTest, EachFamilyHasOneCheckerThatIsKept)
{
    const std::vector<std::shared_ptr<Rule>> rules = {std::make_shared<AlarmRule>(), std::make_shared<CommandRule>(),
                                                      std::make_shared<NodeRule>(), std::make_shared<CodeRule>()};
    std::set<std::shared_ptr<RuleChecker>> checkers;
    for (const auto& rule : rules) {
        const auto checker = mCheckers.Get(rule.get(), nullptr);
        EXPECT_EQ(mCheckers.Get(rule.get(), nullptr), checker);
        checkers.insert(checker);
    }
    EXPECT_THAT(checkers, SizeIs(4));
    EXPECT_EQ(checkers.count(nullptr), 0U);
    EXPECT_EQ(checkers.count(mCheckers.GetCodeRuleEngine()), 1U);
}

} // namespace
