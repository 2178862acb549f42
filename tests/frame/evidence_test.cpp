#include "arborist/frame/evidence.h"

#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Evidence::Reason;
using testing::ElementsAre;

TEST(EvidenceWordsTest, EveryReasonHasAWordOfItsOwn)
{
    std::set<std::string> words;
    // VERSION_UNKNOWN is the last.
    for (int number = 0; number <= static_cast<int>(Reason::VERSION_UNKNOWN); ++number) {
        const std::string word = Evidence::ReasonText(static_cast<Reason>(number));
        EXPECT_EQ(word.empty(), number == 0) << number;
        EXPECT_TRUE(words.insert(word).second) << word;
    }
    EXPECT_STREQ(Evidence::ReasonText(static_cast<Reason>(words.size())), "");
    EXPECT_STREQ(Evidence::ReasonText(Reason::NO_CHECKER), "no_checker");
    EXPECT_STREQ(Evidence::ReasonText(Reason::UNKNOWN_CONDITION), "unknown_condition");
    EXPECT_STREQ(Evidence::ReasonText(Reason::NO_EVENT_ID), "no_event_id");
}

TEST(EvidenceWordsTest, OtherWordsAreThoseOfResults)
{
    EXPECT_STREQ(Evidence::FamilyText(Evidence::Family::NONE), "");
    EXPECT_STREQ(Evidence::FamilyText(Evidence::Family::COMMAND), "command");
    EXPECT_STREQ(Evidence::VerdictText(Evidence::Verdict::SKIPPED), "SKIP");
    EXPECT_STREQ(Evidence::FloorText(Evidence::Floor::UPDATE), "update");
    EXPECT_STREQ(Evidence::StateText(Evidence::EventState::PRESENT), "TRUE");
    EXPECT_STREQ(Evidence::StateText(Evidence::EventState::ABSENT), "FALSE");
    EXPECT_STREQ(Evidence::StateText(Evidence::EventState::INTERMEDIATE_PRESENT), "INTERMEDIATE_TRUE");
    EXPECT_STREQ(Evidence::StateText(Evidence::EventState::UNKNOWN), "UNKNOWN");
    EXPECT_STREQ(Evidence::MeasureText(Evidence::Measure::DAILY_WEIGHTS), "daily_weights");
    EXPECT_STREQ(Evidence::NoCopyText(Evidence::NoCopy::NONE), "");
    EXPECT_STREQ(Evidence::NoCopyText(Evidence::NoCopy::SETTING_EMPTY), "setting_empty");
    EXPECT_STREQ(Evidence::TypeText(Evidence::EventType::UNDEVELOPED), "undeveloped");
    EXPECT_STREQ(Evidence::GateText(Evidence::GateType::NONE), "");
}

TEST(EvidenceTest, ARuleKnowsItsFamilyByItsPart)
{
    using Evidence::Family;
    Evidence::Rule rule;
    for (const Family family : {Family::NONE, Family::ALARM, Family::COMMAND, Family::NODE, Family::CODE}) {
        rule.SetFamily(family);
        EXPECT_EQ(rule.GetFamily(), family);
    }
    rule.part = Evidence::Node{};
    EXPECT_EQ(rule.GetFamily(), Family::NODE);
}

TEST(EvidenceTest, ANoteIsKeptOnce)
{
    Evidence::Rule rule;
    rule.Note(Reason::NODE_UNREADABLE);
    rule.Note(Reason::NO_VALUE);
    rule.Note(Reason::NODE_UNREADABLE);
    EXPECT_THAT(rule.notes, ElementsAre(Reason::NODE_UNREADABLE, Reason::NO_VALUE));
}

TEST(EvidenceTest, AWindowMissesWhatIsShortOfItsThresholdIfItWasCounted)
{
    Evidence::Window window;
    window.threshold = 5;
    window.count.reached = 2;
    EXPECT_EQ(window.Missing(), 0) << "not counted";
    window.start.emplace();
    EXPECT_EQ(window.Missing(), 3);
    window.count.reached = 7; // the last id decides, and reached less
    EXPECT_EQ(window.Missing(), 0);
    window.count.reached = 2;
    window.hit = true;
    EXPECT_EQ(window.Missing(), 0);
}

TEST(EvidenceTest, HitsThatAreEnoughMissNone)
{
    EXPECT_EQ((Evidence::Hits{"D", 3, 1, 2}).Missing(), 1);
    EXPECT_EQ((Evidence::Hits{"D", 3, 3, 2}).Missing(), 0);
    EXPECT_EQ((Evidence::Hits{"D", 0, 0, -1}).Missing(), 0);
}

TEST(EvidenceTest, RecordsAreEqualIfNothingInThemDiffers)
{
    Evidence::Window window;
    window.tests = {{"DROP", "int", "ge", "5", 3, 2}};
    Evidence::Event event;
    event.alternatives = {{true, {{}}}};
    event.alternatives[0].rules[0].part = Evidence::Alarm{{window}};
    Evidence::Event other = event;
    EXPECT_EQ(event, other);
    std::get<Evidence::Alarm>(other.alternatives[0].rules[0].part).windows[0].tests[0].rowsPassed = 1;
    EXPECT_NE(event, other);
}

TEST(EvidenceTest, AnEventRestsOnADefaultIfItIsInErrorWithAnOpenCheck)
{
    using Evidence::Check;
    using Evidence::EventState;
    Evidence::FoldedEvent event;
    event.status = EventState::PRESENT;
    event.check = Check::DATA_MISSING;
    EXPECT_TRUE(event.RestsOnDefault());
    event.check = Check::DECIDED;
    EXPECT_FALSE(event.RestsOnDefault());
    event.check = Check::DATA_MISSING;
    event.status = EventState::ABSENT;
    EXPECT_FALSE(event.RestsOnDefault());
    event.status = EventState::INTERMEDIATE_PRESENT;
    EXPECT_TRUE(event.RestsOnDefault());
}

TEST(EvidenceTest, VerdictsAreEqualIfTheirChecksAndCausesAre)
{
    Evidence::TreeVerdict first;
    Evidence::TreeVerdict second;
    first.open = second.open = {{"A", "r", Evidence::Check::DATA_MISSING, Reason::NO_VALUE, {}, false}};
    first.possibleCauses = second.possibleCauses = {{}};
    EXPECT_EQ(first.open, second.open);
    EXPECT_EQ(first.possibleCauses, second.possibleCauses);
    second.open.front().restsOnDefault = true;
    EXPECT_NE(first.open, second.open);
}

} // namespace
