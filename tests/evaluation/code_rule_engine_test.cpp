#include "arborist/evaluation/code_rule_engine.h"

#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/evaluation/rule_engine_helper.h"
#include "arborist/evaluation/rule_helper.h"
#include "arborist/model/event.h"
#include "tests/evaluation/rule_set.h"
#include "tests/support/code_runner_stub.h"
#include "tests/support/log_capture.h"
#include "tests/support/evidence_lines.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Evidence::Reason;

class CodeRuleEngineTest : public testing::Test {
protected:
    CodeRuleEngineTest() { mInfo->mCodeRuleRunner = mRunner; }

    void LoadSet(const TreeXml& trees, const RuleXml& rules) { mParser = Load(mDir, trees, rules, mInfo); }

    // Two trees; rule "r" with the code "C" decides A, with ids of every kind.
    void LoadUsual()
    {
        LoadSet(TreeXml(TAG).Tree("T1", Or({Basic("A")})).Tree("T2", Or({Basic("B")})),
                RuleXml(TAG)
                    .Rule(CodeRuleXml("r", "C", "{\"k\": 1}"))
                    .EventRule("A", {Single("r")})
                    .FaultDescription("A", {"F1", "F2"})
                    .Solution("A", {"S1"})
                    .Repair("A", {{"R1", ""}}));
    }

    std::vector<std::string> Ids(std::string_view type, const std::string& code) const
    {
        return CodeRuleEngine(mStore, mParser, mInfo).GetCodeRuleInfoByType(type, code);
    }

    std::vector<std::string> FaultIds(const std::string& code) const { return Ids(RuleHelper::FAULT, code); }

    bool Ask(const std::shared_ptr<Rule>& rule) const
    {
        return CodeRuleEngine(mStore, mParser, mInfo).IsFaultHappened(rule, "A");
    }

    TempDir mDir;
    LogCapture mLog;
    std::shared_ptr<CodeRunnerStub> mRunner = std::make_shared<CodeRunnerStub>();
    std::shared_ptr<DetectInfo> mInfo = DetectInfoFor(mDir, TAG);
    std::shared_ptr<RuleEngineHelper> mStore = std::make_shared<RuleEngineHelper>();
    std::shared_ptr<FaultTreeParser> mParser;
};

TEST_F(CodeRuleEngineTest, RunnerTakesTheIdsOfTheEventAndDecides)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    Evidence::Rule record;
    engine.SetRecord(&record);
    mRunner->answer = true;
    EXPECT_TRUE(engine.IsFaultHappened(mParser->GetRuleByRuleName("r"), "whatever"));
    EXPECT_THAT(EvidenceLines(record),
                ElementsAre("code C faults F1,F2 suggestions S1 repairs R1 info '{\"k\": 1}' yes"));
    mRunner->answer = false;
    EXPECT_FALSE(engine.IsFaultHappened(mParser->GetRuleByRuleName("r"), ""));
    EXPECT_THAT(EvidenceLines(record),
                ElementsAre("code C faults F1,F2 suggestions S1 repairs R1 info '{\"k\": 1}' no"));
    EXPECT_THAT(mRunner->calls, ElementsAre("F1,F2|S1|R1|{\"k\": 1}", "F1,F2|S1|R1|{\"k\": 1}"));
    EXPECT_EQ(engine.GetReason(), Reason::RUNNER_ANSWERED);
}

TEST_F(CodeRuleEngineTest, AnswerCountsAlsoWithoutAnyIds)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})), RuleXml(TAG).Rule(CodeRuleXml("r", "C")));
    mRunner->answer = true;
    EXPECT_TRUE(Ask(mParser->GetRuleByRuleName("r")));
    EXPECT_THAT(mRunner->calls, ElementsAre("|||")); // an empty user-defined text is passed, too
}

TEST_F(CodeRuleEngineTest, WithoutRunnerTheRuleIsFalse)
{
    LoadUsual();
    mInfo->mCodeRuleRunner = nullptr;
    CodeRuleEngine engine(mStore, mParser, mInfo);
    EXPECT_FALSE(engine.IsFaultHappened(mParser->GetRuleByRuleName("r"), "A"));
    EXPECT_EQ(engine.GetReason(), Reason::NO_RUNNER);
}

TEST_F(CodeRuleEngineTest, WhatIsNoCodeRuleIsFalseAndRunsNothing)
{
    LoadUsual();
    mRunner->answer = true;
    EXPECT_FALSE(Ask(nullptr));
    EXPECT_FALSE(Ask(std::make_shared<NodeRule>()));
    EXPECT_FALSE(CodeRuleEngine(mStore, mParser, nullptr).IsFaultHappened(mParser->GetRuleByRuleName("r"), "A"));
    EXPECT_THAT(mRunner->calls, IsEmpty());
}

TEST_F(CodeRuleEngineTest, NullPartsGiveEmptyLists)
{
    LoadUsual();
    EXPECT_THAT(CodeRuleEngine(mStore, nullptr, mInfo).GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), IsEmpty());
    EXPECT_THAT(CodeRuleEngine(nullptr, mParser, mInfo).GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), IsEmpty());
    mRunner->answer = true;
    EXPECT_TRUE(CodeRuleEngine(nullptr, nullptr, mInfo).IsFaultHappened(mParser->GetRuleByRuleName("r"), "A"));
    EXPECT_THAT(mRunner->calls, ElementsAre("|||{\"k\": 1}"));
}

TEST_F(CodeRuleEngineTest, EachKindHasItsList)
{
    LoadUsual();
    EXPECT_THAT(Ids(RuleHelper::FAULT, "C"), ElementsAre("F1", "F2"));
    EXPECT_THAT(Ids(RuleHelper::SUGGESTION, "C"), ElementsAre("S1"));
    EXPECT_THAT(Ids(RuleHelper::REPAIR, "C"), ElementsAre("R1"));
    EXPECT_THAT(Ids(RuleHelper::USER_DEFINED, "C"), IsEmpty());
    EXPECT_THAT(Ids("", "C"), IsEmpty());
}

TEST_F(CodeRuleEngineTest, UnknownAndEmptyCodesHaveNone)
{
    LoadUsual();
    mLog.Clear();
    EXPECT_THAT(FaultIds("X"), IsEmpty());
    EXPECT_THAT(FaultIds(""), IsEmpty());
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(CodeRuleEngineTest, EmptyCodeHasNoneEvenWhereARuleHasIt)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})),
            RuleXml(TAG).Rule(CodeRuleXml("r", "")).EventRule("A", {Single("r")}).FaultDescription("A", {"F1"}));
    EXPECT_THAT(FaultIds(""), IsEmpty());
}

TEST_F(CodeRuleEngineTest, RuleOfAnUnknownCodeIsRunWithEmptyLists)
{
    LoadUsual();
    const auto stranger = std::make_shared<CodeRule>();
    stranger->codeItem.id = "X";
    mRunner->answer = true;
    EXPECT_TRUE(Ask(stranger));
    EXPECT_THAT(mRunner->calls, ElementsAre("|||"));
}

TEST_F(CodeRuleEngineTest, FirstCallFillsTheStoreWithTheEventsOfAllTreesAndLaterOnesFindItFull)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    EXPECT_THAT(mStore->GetAllEventList(), IsEmpty());
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), SizeIs(2));
    EXPECT_THAT(mStore->GetAllEventList(), SizeIs(4));
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), SizeIs(2));
    EXPECT_THAT(mStore->GetAllEventList(), SizeIs(4));
}

TEST_F(CodeRuleEngineTest, RuleInAMultipleRuleIsFoundLikeASingleOne)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})),
            RuleXml(TAG)
                .Rule(CodeRuleXml("r", "C"))
                .EventRule("A", {Single("x"), Multiple({"y", "r"})})
                .FaultDescription("A", {"F1"}));
    EXPECT_THAT(FaultIds("C"), ElementsAre("F1"));
}

TEST_F(CodeRuleEngineTest, FirstEventOfTheListThatNamesTheRuleGivesTheIds)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("B"), Basic("A")})),
            RuleXml(TAG)
                .Rule(CodeRuleXml("r", "C"))
                .EventRule("A", {Single("r")})
                .EventRule("B", {Single("r")})
                .FaultDescription("A", {"FA"})
                .FaultDescription("B", {"FB"}));
    EXPECT_THAT(FaultIds("C"), ElementsAre("FB"));
}

TEST_F(CodeRuleEngineTest, OfTwoRulesWithOneCodeBothTakeTheIdsOfTheFirst)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A"), Basic("B")})),
            RuleXml(TAG)
                .Rule(CodeRuleXml("z", "C"))
                .Rule(CodeRuleXml("r", "C"))
                .EventRule("A", {Single("r")})
                .EventRule("B", {Single("z")})
                .FaultDescription("A", {"FA"})
                .FaultDescription("B", {"FB"}));
    Ask(mParser->GetRuleByRuleName("z"));
    Ask(mParser->GetRuleByRuleName("r"));
    EXPECT_THAT(mRunner->calls, ElementsAre("FB|||", "FB|||"));
}

TEST_F(CodeRuleEngineTest, RuleThatNoEventUsesHasNone)
{
    LoadSet(TreeXml(TAG).Tree("T", Or({Basic("A")})),
            RuleXml(TAG)
                .Rule(CodeRuleXml("r", "C"))
                .EventRule("Z", {Single("r")})
                .FaultDescription("Z", {"F1"})
                .FaultDescription("A", {"F2"}));
    EXPECT_THAT(FaultIds("C"), IsEmpty());
}

TEST_F(CodeRuleEngineTest, WithTheStoreOfTheLastTreeARuleOfAnEarlierOneIsNotFound)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), SizeIs(2));
    mStore->Reset();
    mStore->FetchEvent(mParser->GetFaultTrees().back()->GetIntermediateEvent());
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), IsEmpty());
}

TEST_F(CodeRuleEngineTest, AskingAgainGivesTheSameOfEachKind)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    for (const auto type : {RuleHelper::FAULT, RuleHelper::SUGGESTION, RuleHelper::REPAIR}) {
        const std::vector<std::string> first = engine.GetCodeRuleInfoByType(type, "C");
        EXPECT_THAT(first, testing::Not(IsEmpty()));
        EXPECT_EQ(engine.GetCodeRuleInfoByType(type, "C"), first);
    }
    EXPECT_THAT(engine.GetCodeRuleInfoByType("another", "C"), IsEmpty());
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "other"), IsEmpty());
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "other"), IsEmpty());
}

TEST_F(CodeRuleEngineTest, ParseWithoutEventRulesForgetsWhatWasAsked)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), ElementsAre("F1", "F2"));
    mDir.Write("FaultTreeRules.xml", RuleXml(TAG).Rule(CodeRuleXml("s", "C")).Text());
    mParser->StartParse();
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), IsEmpty());
}

TEST_F(CodeRuleEngineTest, AnotherParseIsSeenAtOnce)
{
    LoadUsual();
    CodeRuleEngine engine(mStore, mParser, mInfo);
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), ElementsAre("F1", "F2"));
    mDir.Write("FaultTreeRules.xml", RuleXml(TAG)
                                         .Rule(CodeRuleXml("s", "C"))
                                         .EventRule("B", {Single("s")})
                                         .FaultDescription("B", {"F3"})
                                         .Text());
    mParser->StartParse();
    EXPECT_THAT(engine.GetCodeRuleInfoByType(RuleHelper::FAULT, "C"), ElementsAre("F3"));
}

TEST_F(CodeRuleEngineTest, WhatTheRunnerSaysOfItsAnswerIsTheReason)
{
    using Outcome = CodeRuleRunner::Outcome;
    LoadUsual();
    for (const auto& [outcome, reason] : {std::pair(Outcome::ANSWERED, Reason::RUNNER_ANSWERED),
             std::pair(Outcome::NOBODY_THERE, Reason::NO_RUNNER), std::pair(Outcome::BROKEN_OFF, Reason::RUNNER_FAILED)}) {
        mRunner->outcome = outcome;
        CodeRuleEngine engine(mStore, mParser, mInfo);
        engine.IsFaultHappened(mParser->GetRuleByRuleName("r"), "A");
        EXPECT_EQ(engine.GetReason(), reason);
    }
}

} // namespace
