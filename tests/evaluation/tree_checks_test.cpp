#include "arborist/evaluation/tree_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/evaluation/event_decider.h"
#include "arborist/model/event.h"
#include "arborist/model/event_rule.h"
#include "tests/support/tree_builder.h"

namespace {

using Evidence::Check;
using Evidence::Reason;
using testing::ElementsAre;
using testing::IsEmpty;

class TreeChecksTest : public testing::Test {
protected:
    // An event whose only rule came to this.
    Evidence::Event& RecordOf(bool fired, Check check, Reason reason)
    {
        Evidence::Rule rule;
        rule.name = "r";
        rule.reason = reason;
        rule.check = check;
        mRecord = {"A", "", fired, Reason::NONE, {{false, {rule}}}, Check::NONE};
        return mRecord;
    }
    void Decide(const Event& event, bool fired, Check check, Reason reason)
    {
        EventCheck eventCheck;
        eventCheck.Land(&mAlternative, fired, check, 0);
        mChecks.AddDecided(event, &mEntry, eventCheck, RecordOf(fired, check, reason));
    }
    std::vector<std::string> Open() const
    {
        Evidence::CheckCounts counts;
        for (const Check check : mChecks.GetChecks()) {
            counts.Add(check);
        }
        std::vector<std::string> lines;
        for (const Evidence::OpenCheck& open : mChecks.ListOpen(counts)) {
            lines.push_back(open.eventId + " " + open.ruleName + " " + Evidence::CheckText(open.check) + " " +
                Evidence::ReasonText(open.reason) + (open.restsOnDefault ? " by default" : ""));
        }
        return lines;
    }

    TreeChecks mChecks;
    EventRule mEntry;
    OrRuleSingle mAlternative;
    Evidence::Event mRecord;
};

TEST_F(TreeChecksTest, AnEventWithoutAnEntryIsToldByItsKind)
{
    const auto asked = Leaf("C");
    asked->SetDetectMode(std::string(EventDecider::DETECT_INTERACTION_RULE));
    mChecks.AddWithoutEntry(*Inner("T", Or({})));
    mChecks.AddWithoutEntry(*Inner("G", nullptr));
    mChecks.AddWithoutEntry(*Leaf("A"));
    mChecks.AddWithoutEntry(*asked);
    mChecks.AddStopped(*Leaf("S"));
    EXPECT_THAT(mChecks.GetChecks(), ElementsAre(Check::NONE, Check::RULE_UNUSABLE, Check::NOT_CHECKED,
        Evidence::CheckOf(Reason::INTERACTION_EVENT), Evidence::CheckOf(Reason::STOPPED)));
    mChecks.StartTree();
    EXPECT_THAT(mChecks.GetChecks(), IsEmpty());
}

TEST_F(TreeChecksTest, AnOpenRuleIsToldByItsNameAndADecidedOneNot)
{
    Decide(*Leaf("A"), false, Check::DATA_MISSING, Reason::NO_VALUE);
    EXPECT_EQ(mRecord.check, Check::DATA_MISSING);
    EXPECT_THAT(Open(), ElementsAre("A r no_data no_value"));
    mChecks.StartTree();
    Decide(*Leaf("A"), true, Check::DECIDED, Reason::CONDITION_MET);
    EXPECT_THAT(Open(), IsEmpty());
}

TEST_F(TreeChecksTest, WhatIsTrueOnAnOpenCheckRestsOnADefaultInEachTreeOfTheDetection)
{
    Decide(*Leaf("A"), true, Check::DATA_MISSING, Reason::NO_VALUE);
    EXPECT_THAT(Open(), ElementsAre("A r no_data no_value by default"));
    EXPECT_EQ(mChecks.GetTrueCheck(&mEntry), Check::DATA_MISSING);
    mChecks.StartTree();
    EventCheck kept;
    kept.KeepTrue(mChecks.GetTrueCheck(&mEntry));
    mRecord.alternatives.clear();
    mChecks.AddDecided(*Leaf("A"), &mEntry, kept, mRecord);
    EXPECT_THAT(Open(), ElementsAre("A r no_data no_value by default")) << "the rule is that of the first tree";
}

TEST_F(TreeChecksTest, ACheckThatBecomesGreaterIsNotTheOneThatWasKept)
{
    Decide(*Leaf("A"), true, Check::NOT_CHECKED, Reason::NO_RUNNER);
    Decide(*Leaf("A"), true, Check::DATA_MISSING, Reason::NO_VALUE);
    EXPECT_THAT(Open(), ElementsAre("A r not_checked no_runner by default", "A r no_data no_value by default"));
    EXPECT_EQ(mChecks.GetTrueCheck(&mEntry), Check::DATA_MISSING);
    EventCheck other;
    other.KeepTrue(Check::RULE_UNUSABLE);
    mRecord.alternatives.clear();
    mRecord.fired = false;
    mRecord.reason = Reason::NONE;
    mChecks.AddDecided(*Leaf("B"), &mEntry, other, mRecord);
    EXPECT_EQ(mChecks.GetChecks().back(), Check::RULE_UNUSABLE);
}

TEST_F(TreeChecksTest, AGateThatIsMissingCountsMoreThanTheRulesOfItsEvent)
{
    Decide(*Inner("G", nullptr), true, Check::DECIDED, Reason::CONDITION_MET);
    EXPECT_THAT(Open(), ElementsAre("G  error no_gate by default"));
    EXPECT_EQ(mRecord.check, Check::RULE_UNUSABLE);
}

TEST_F(TreeChecksTest, AnEntryWhoseNamesLeadNowhereHasNoRuleToTell)
{
    Evidence::Event record{"A", "", false, Reason::NONE, {}, Check::NONE};
    mChecks.AddDecided(*Leaf("A"), nullptr, {}, record);
    record.reason = Reason::NO_EVENT_RULE;
    mChecks.AddDecided(*Leaf("B"), &mEntry, {}, record);
    EXPECT_THAT(Open(), ElementsAre("A  not_checked no_rule_names", "B  not_checked no_event_rule"));
}

TEST_F(TreeChecksTest, ATreeWithoutChecksNamesItsTopEventAndOneOfScenesThoseNotSelected)
{
    mChecks.AddWithoutEntry(*Inner("T", Or({})));
    EXPECT_THAT(Open(), ElementsAre("T  not_checked no_event_rule"));
    Decide(*Leaf("A"), false, Check::NOT_SELECTED, Reason::FILTERED_SCENE);
    EXPECT_THAT(Open(), ElementsAre("A r not_selected filtered_scene"));
    Decide(*Leaf("B"), false, Check::DECIDED, Reason::CONDITION_NOT_MET);
    EXPECT_THAT(Open(), IsEmpty());
}

} // namespace
