#include "arborist/loading/description_parser.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/loading/xml_text.h"
#include "tests/support/log_capture.h"

namespace {

using testing::IsEmpty;

// "A: id1 id2; B:" and, for repairs, "A: id1 {id1=extra}".
std::string Told(const DescriptionParser::FaultItemList& items)
{
    std::string told;
    for (const auto& item : items) {
        told += item->GetFaultItemId() + ":";
        for (const auto& id : item->GetResolutionSuggestions()) {
            told += " " + id;
        }
        for (const auto& repair : item->GetRepairInfo()) {
            told += " {" + repair.mId + "=" + repair.mExtra + "}";
        }
        told += ";";
    }
    return told;
}

std::string FaultDescriptions(const std::string& text, const std::string& tag = "jank")
{
    FaultDescriptionParser parser(tag);
    parser.Parse(XmlText(text).Document());
    return Told(parser.GetFaultDescriptionList());
}

std::string Suggestions(const std::string& text, const std::string& tag = "jank")
{
    SuggestionParser parser(tag);
    parser.Parse(XmlText(text).Document());
    return Told(parser.GetSuggestionList());
}

std::string Repairs(const std::string& text, const std::string& tag = "jank")
{
    RepairDescriptionParser parser(tag);
    parser.Parse(XmlText(text).Document());
    return Told(parser.GetFaultItemList());
}

std::string Section(const std::string& section, const std::string& events)
{
    return "<r><" + section + "><jank>" + events + "</jank></" + section + "></r>";
}

TEST(DescriptionParserTest, EachKindReadsItsOwnSection)
{
    const std::string text = RuleXml("jank").FaultDescription("A", {"d1", "d2"}).Solution("A", {"s"})
        .Repair("A", {{"r1", "extra"}, {"r2", ""}}).Text();
    EXPECT_EQ(FaultDescriptions(text), "A: d1 d2;");
    EXPECT_EQ(Suggestions(text), "A: s;");
    EXPECT_EQ(Repairs(text), "A: r1 r2 {r1=extra} {r2=};");
}

TEST(DescriptionParserTest, EventWithoutIdMakesNoItemAndOneWithoutListAnEmptyOne)
{
    const std::string events = "<Event><FaultDescriptions><description id=\"d\"/></FaultDescriptions></Event>"
        "<Event><ID/></Event><Event><ID>B</ID></Event>";
    EXPECT_EQ(FaultDescriptions(Section("EventFaultDescriptions", events)), "B:;");
    EXPECT_EQ(Suggestions(Section("EventSolutions", events)), "B:;");
    EXPECT_EQ(Repairs(Section("RepairDescriptions", events)), "B:;");
}

TEST(DescriptionParserTest, EntryWithoutIdIsSkipped)
{
    EXPECT_EQ(FaultDescriptions(Section("EventFaultDescriptions", "<Event><ID>A</ID><FaultDescriptions>"
        "<description/><description id=\"\"/><description id=\"d\"/></FaultDescriptions></Event>")), "A:  d;");
    EXPECT_EQ(Repairs(Section("RepairDescriptions", "<Event><ID>A</ID><Descriptions>"
        "<description extra=\"x\"/><description id=\"r\"/></Descriptions></Event>")), "A: r {r=};");
}

TEST(DescriptionParserTest, ParserLooksForItsOwnEntryWordAlone)
{
    EXPECT_EQ(FaultDescriptions(Section("EventFaultDescriptions", "<Event><ID>A</ID><FaultDescriptions>"
        "<solution id=\"s\"/></FaultDescriptions><Solutions><solution id=\"s\"/></Solutions></Event>")), "A:;");
    EXPECT_EQ(Suggestions(Section("EventSolutions", "<Event><ID>A</ID><Solutions>"
        "<description id=\"d\"/></Solutions></Event>")), "A:;");
}

TEST(DescriptionParserTest, FirstIdAndFirstListOfAnEventCount)
{
    EXPECT_EQ(Suggestions(Section("EventSolutions", "<Event><Solutions><solution id=\"1\"/></Solutions>"
        "<Solutions><solution id=\"2\"/></Solutions><ID>A</ID><ID>B</ID></Event>")), "A: 1;");
}

TEST(DescriptionParserTest, RepeatedIdMakesAnItemEachTime)
{
    EXPECT_EQ(Suggestions(RuleXml("jank").Solution("A", {"1"}).Solution("A", {"2"}).Text()), "A: 1;A: 2;");
}

TEST(DescriptionParserTest, OnlyTheGivenTagIsRead)
{
    const std::string text = "<r><EventSolutions><slow><Event><ID>S</ID></Event></slow>"
        "<jank><Event><ID>J</ID></Event></jank></EventSolutions></r>";
    EXPECT_EQ(Suggestions(text), "J:;");
    EXPECT_EQ(Suggestions(text, "slow"), "S:;");
    EXPECT_EQ(Suggestions(text, "other"), "");
    EXPECT_EQ(Suggestions(text, ""), "");
    EXPECT_EQ(Repairs(text), "");
    EXPECT_EQ(FaultDescriptions("<?xml version=\"1.0\"?>"), "");
}

TEST(DescriptionParserTest, ParsersWithoutATagReadNothing)
{
    const XmlText xml(RuleXml("jank").FaultDescription("A", {"d"}).Repair("A", {{"r", ""}}).Text());
    FaultDescriptionParser descriptions;
    descriptions.Parse(xml.Document());
    EXPECT_THAT(descriptions.GetFaultDescriptionList(), IsEmpty());
    RepairDescriptionParser repairs;
    repairs.Parse(xml.Document());
    EXPECT_THAT(repairs.GetFaultItemList(), IsEmpty());
}

TEST(DescriptionParserTest, SaysNothing)
{
    const LogCapture log;
    FaultDescriptions("<r/>");
    Repairs(Section("RepairDescriptions", "<Event/>"));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

} // namespace
