#include "arborist/evaluation/rule_decider.h"

#include <gmock/gmock.h>

#include "arborist/evaluation/rule_helper.h"
#include "arborist/frame/detect_info.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/log_capture.h"

namespace {

using Evidence::Reason;
using Evidence::Verdict;

class RuleDeciderTest : public testing::Test {
protected:
    RuleDeciderTest()
    {
        mDir.Write("yes", "1");
        const auto info = DetectInfoFor(mDir, TAG);
        const auto rule = [](const std::string& name, const std::string& scenes) {
            return NodeRuleXml(name, {NodeInfoXml("v", "yes"), ParamsXml({ParamXml("p", "v", "int")}),
                ConditionXml({SingleLogicXml(TestXml("eq", "p", "1"))})}, scenes);
        };
        const auto ruleSet = Load(mDir, TreeXml(TAG).Tree("T", Or({Basic("E")})),
            RuleXml(TAG).Rule(rule("yes", "1")).Rule(rule("other scene", "2")), info);
        const auto helper = std::make_shared<RuleHelper>(info, ruleSet);
        mDecider = std::make_unique<RuleDecider>(ruleSet, helper, RuleCheckers(helper, nullptr, ruleSet, info));
    }

    // The record of the rule.
    const Evidence::Rule& Decided(const std::string& name, bool expected)
    {
        EXPECT_EQ(mDecider->Fires(name, "E", &mAlternative), expected);
        EXPECT_EQ(mDecider->Fires(name, "E", nullptr), expected) << "without a record";
        return mAlternative.rules.back();
    }

    TempDir mDir;
    LogCapture mLog;
    std::unique_ptr<RuleDecider> mDecider;
    Evidence::Alternative mAlternative;
};

TEST_F(RuleDeciderTest, TheCheckerOfTheRuleAnswers)
{
    const Evidence::Rule& record = Decided("yes", true);
    EXPECT_EQ(record.name, "yes");
    EXPECT_EQ(record.GetFamily(), Evidence::Family::NODE);
    EXPECT_EQ(record.verdict, Verdict::FIRED);
    EXPECT_EQ(record.reason, Reason::CONDITION_MET);
    EXPECT_EQ(record.check, Evidence::Check::DECIDED);
}

TEST_F(RuleDeciderTest, ARuleThatIsNotThereOrNotForThisSceneIsSkipped)
{
    EXPECT_EQ(Decided("nowhere", false).reason, Reason::NO_SUCH_RULE);
    const Evidence::Rule& filtered = Decided("other scene", false);
    EXPECT_EQ(filtered.reason, Reason::FILTERED_SCENE);
    EXPECT_EQ(filtered.verdict, Verdict::SKIPPED);
    ASSERT_TRUE(filtered.filter.has_value());
    EXPECT_EQ(filtered.filter->ruleText, "2");
}

TEST_F(RuleDeciderTest, ARuleBehindTheEndOfItsGroupIsRecordedAndNotRun)
{
    mDecider->SkipInGroup("yes", mAlternative);
    EXPECT_EQ(mAlternative.rules.back().reason, Reason::GROUP_ENDED);
    EXPECT_EQ(mAlternative.rules.back().verdict, Verdict::SKIPPED);
    EXPECT_EQ(mAlternative.rules.back().check, Evidence::Check::NONE);
}

} // namespace
