#include "arborist/loading/event_rule_parser.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/loading/xml_text.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"

namespace {

using testing::IsEmpty;

// "A: singleRule=R; multipleRule=R1,R2" for each event, a line each.
std::string Told(const EventRuleParser::EventRuleMap& eventRules)
{
    std::string told;
    for (const auto& [id, eventRule] : eventRules) {
        EXPECT_EQ(id, eventRule->SetEventId());
        told += id + ":";
        for (const auto& alternative : eventRule->GetRuleList()) {
            told += " " + alternative->type + "=" + alternative->ruleName;
            for (const auto& name : alternative->ruleNameList) {
                told += name + ",";
            }
        }
        told += "\n";
    }
    return told;
}

std::string ToldOf(const std::string& text, const std::string& tag = "jank")
{
    EventRuleParser parser(tag);
    parser.Parse(XmlText(text).Document());
    EXPECT_FALSE(testing::Test::HasFailure());
    return Told(parser.GetEventRuleMap());
}

struct EventCase { const char* name; const char* event; const char* expected; };
void PrintTo(const EventCase& eventCase, std::ostream* out) { *out << eventCase.name; }
class EventRuleOf : public testing::TestWithParam<EventCase> {};

TEST_P(EventRuleOf, OneSection)
{
    const LogCapture log;
    EXPECT_EQ(ToldOf(std::string("<r><EventRules><jank>") + GetParam().event + "</jank></EventRules></r>"),
        GetParam().expected);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Table, EventRuleOf, testing::Values(
    EventCase{"EmptySection", "", ""},
    EventCase{"SingleRule", R"(<Event><ID>A</ID><or type="singleRule"><Rule><Rule-name>R</Rule-name></Rule></or></Event>)",
        "A: singleRule=R\n"},
    EventCase{"MultipleRuleKeepsFileOrderAndSkipsNamesWithoutText", R"(<Event><ID>A</ID><or type="multipleRule"><and>
        <Rule><Rule-name>R2</Rule-name></Rule><Rule><Rule-name/></Rule><Rule/><Rule><Rule-name>R1</Rule-name></Rule>
        </and></or></Event>)", "A: multipleRule=R2,R1,\n"},
    EventCase{"LaterEventOfTheSameIdIsKept", R"(<Event><ID>A</ID><or type="singleRule"><Rule><Rule-name>R</Rule-name></Rule>
        </or></Event><Event><ID>B</ID></Event><Event><ID>A</ID></Event>)", "A:\nB:\n"},
    EventCase{"EventsOutOfOrder", "<Event><ID>C</ID></Event><Event><ID>A</ID></Event><Event><ID>B</ID></Event>",
        "A:\nB:\nC:\n"},
    EventCase{"EventWithoutIdIsDropped", R"(<Event><or type="singleRule"/></Event>)", ""},
    EventCase{"EventWithAnEmptyIdIsDropped", "<Event><ID></ID></Event><Event><ID/><ID>A</ID></Event>", ""},
    EventCase{"EventWithAnEmptyCdataAsIdIsKept", "<Event><ID><![CDATA[]]></ID></Event>", ":\n"},
    EventCase{"SpacesOfAnIdStay", "<Event><ID> A </ID></Event>", " A :\n"},
    EventCase{"OrWithoutTypeIsLeftOut", R"(<Event><ID>A</ID><or><Rule><Rule-name>R</Rule-name></Rule></or></Event>)",
        "A:\n"},
    EventCase{"OrOfUnknownTypeIsKeptWithoutNames",
        R"(<Event><ID>A</ID><or type="foo"><Rule><Rule-name>R</Rule-name></Rule></or></Event>)", "A: foo=\n"},
    EventCase{"SingleRuleTakesItsFirstRule", R"(<Event><ID>A</ID><or type="singleRule"><Rule><Rule-name>R1</Rule-name>
        <Rule-name>R2</Rule-name></Rule><Rule><Rule-name>R3</Rule-name></Rule></or></Event>)", "A: singleRule=R1\n"},
    EventCase{"SingleRuleWithoutNameIsKept", R"(<Event><ID>A</ID><or type="singleRule"><Rule/></or><or type="singleRule"/>
        </Event>)", "A: singleRule= singleRule=\n"},
    EventCase{"MultipleRuleWithoutAndIsKept",
        R"(<Event><ID>A</ID><or type="multipleRule"><Rule><Rule-name>R</Rule-name></Rule></or></Event>)",
        "A: multipleRule=\n"},
    EventCase{"OtherElementsArePassedOver", "<event><ID>A</ID></event><Foo><ID>B</ID></Foo>", ""}),
    CaseName());

TEST(EventRuleParserTest, MissingLinksLeaveTheMapEmpty)
{
    const std::string text = RuleXml("jank").EventRule("A", {Single("R")}).Text();
    EXPECT_EQ(ToldOf(text), "A: singleRule=R\n");
    EXPECT_EQ(ToldOf(text, "other"), "");
    EXPECT_EQ(ToldOf("<r><Other/></r>"), "");
    EXPECT_EQ(ToldOf("<?xml version=\"1.0\"?>"), "");
}

TEST(EventRuleParserTest, OnlyTheFirstSectionAndTagAreRead)
{
    EXPECT_EQ(ToldOf("<r><EventRules><jank><Event><ID>A</ID></Event></jank><jank><Event><ID>B</ID></Event></jank>"
        "</EventRules><EventRules><jank><Event><ID>C</ID></Event></jank></EventRules></r>"), "A:\n");
}

TEST(EventRuleParserTest, EventWithoutAlternativesNeverHolds)
{
    EventRuleParser parser("jank");
    parser.Parse(XmlText("<r><EventRules><jank><Event><ID>A</ID></Event></jank></EventRules></r>").Document());
    EXPECT_FALSE(parser.GetEventRuleMap().at("A")->CheckResult());
}

} // namespace
