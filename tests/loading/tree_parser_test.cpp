#include "arborist/loading/tree_parser.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"
#include "tests/loading/xml_text.h"
#include "tests/support/log_capture.h"
#include "tests/support/xml_builder.h"

struct TreeParserPeer {
    static std::shared_ptr<FaultTree> Parse(const XmlText& xml, const std::string& tag, const std::string& id)
    {
        return TreeParser::Parse(xml.Document(), tag, id);
    }
};

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An event with all below it: "T(or A? b (and C))" with "?" after an undeveloped and "." after a basic event.
std::string Shape(const Event& event)
{
    const IntermediateEvent* intermediate = event.AsIntermediate();
    if (intermediate == nullptr) {
        return event.GetId() + (event.GetKind() == EventKind::BASIC ? "." : "?");
    }
    if (intermediate->GetGate() == nullptr) {
        return event.GetId();
    }
    std::string shape = event.GetId() + (intermediate->GetGate()->GetKind() == GateKind::OR ? "(or" : "(and");
    for (const auto& child : intermediate->GetGate()->GetEvents()) {
        shape += " " + Shape(*child);
    }
    return shape + ")";
}

std::vector<std::string> Shapes(const std::string& text, const std::string& tag = "jank")
{
    std::vector<std::string> shapes;
    for (const auto& tree : TreeParser().GetTreeList(XmlText(text).Document(), tag)) {
        shapes.push_back(Shape(*tree->GetIntermediateEvent()));
    }
    return shapes;
}

// A file with one tree whose top event is T and has this gate.
std::string FileOf(const Xml& gate)
{
    return TreeXml("jank").Tree("T", gate).Text();
}

Xml TreeElement(const std::string& name, const std::string& id)
{
    return Xml(name).Attr("id", id).Attr("version", "2").Attr("type", "kind").Child(Intermediate(id, Or({})));
}

std::string VersionOf(const std::string& text)
{
    TreeParser parser;
    parser.GetTreeList(XmlText(text).Document(), "jank");
    return parser.GetTreeFileVersion();
}

TEST(TreeParserTest, ReadsTreesWithGatesAndEventsOfAllKinds)
{
    EXPECT_THAT(Shapes(FileOf(Or({Basic("A"), Intermediate("G", And({Basic("B"), Intermediate("H", Or({}))}))}))),
        ElementsAre("T(or A. G(and B. H(or)))"));
}

TEST(TreeParserTest, TreeKeepsItsThreeAttributes)
{
    const XmlText xml(TreeXml("jank").Element(TreeElement("any", "X")).Text());
    const auto trees = TreeParser().GetTreeList(xml.Document(), "jank");
    ASSERT_EQ(trees.size(), 1U);
    EXPECT_EQ(trees[0]->GetId(), "X");
    EXPECT_EQ(trees[0]->GetVersion(), "2");
    EXPECT_EQ(trees[0]->GetType(), "kind");
}

TEST(TreeParserTest, FileVersionComesFromTheRoot)
{
    EXPECT_EQ(TreeParser().GetTreeFileVersion(), "-1");
    EXPECT_EQ(VersionOf("<r version=\"3.1\"><jank/></r>"), "3.1");
    EXPECT_EQ(VersionOf("<r><jank/></r>"), "-1");
    EXPECT_EQ(VersionOf("<r version=\"\"><jank/></r>"), "");
    EXPECT_EQ(VersionOf("<r version=\"5\"><other/></r>"), "5");
    EXPECT_EQ(VersionOf("<?xml version=\"1.0\"?>"), "-1");
}

TEST(TreeParserTest, RootWithoutVersionKeepsThatOfTheFileBefore)
{
    TreeParser parser;
    parser.GetTreeList(XmlText("<r version=\"8\"/>").Document(), "jank");
    parser.GetTreeList(XmlText("<r/>").Document(), "jank");
    EXPECT_EQ(parser.GetTreeFileVersion(), "8");
}

TEST(TreeParserTest, OnlyTheFirstSectionOfTheTagYieldsTrees)
{
    const std::string other = "<slow>" + TreeElement("t", "S").ToText() + "</slow>";
    const std::string again = "<jank>" + TreeElement("t", "Again").ToText() + "</jank>";
    const std::string text = TreeXml("jank").Tree("T", Or({})).Raw(other + again).Text();
    EXPECT_THAT(Shapes(text), ElementsAre("T(or)"));
    EXPECT_THAT(Shapes(text, "slow"), ElementsAre("S(or)"));
    EXPECT_THAT(Shapes(text, "Jank"), IsEmpty());
    EXPECT_THAT(Shapes(text, ""), IsEmpty());
}

TEST(TreeParserTest, TreeWithoutATopEventIsLeftOut)
{
    EXPECT_THAT(Shapes(TreeXml("jank").Tree("A", Or({}))
        .Element(Xml("tree").Attr("id", "B").Attr("version", "1").Attr("type", "t").Child(Basic("B")))
        .Tree("C", Or({})).Text()), ElementsAre("A(or)", "C(or)"));
}

TEST(TreeParserTest, TreeWithoutOneOfItsAttributesIsLeftOut)
{
    TreeXml file("jank");
    for (const std::string missing : {"id", "version", "type"}) {
        Xml tree("tree");
        for (const std::string name : {"id", "version", "type"}) {
            if (name != missing) {
                tree.Attr(name, "x");
            }
        }
        file.Element(tree.Child(Intermediate("without " + missing, Or({}))));
    }
    EXPECT_THAT(Shapes(file.Text()), IsEmpty());
}

TEST(TreeParserTest, TreeKeepsAttributesThatAreEmpty)
{
    EXPECT_THAT(Shapes(TreeXml("jank").Element(Xml("tree").Attr("id", "").Attr("version", "").Attr("type", "")
        .Child(Intermediate("T", Or({})))).Text()), ElementsAre("T(or)"));
}

TEST(TreeParserTest, NamesOfTreeElementsDoNotMatter)
{
    EXPECT_THAT(Shapes(TreeXml("jank").Element(TreeElement("a", "A")).Element(TreeElement("b", "B")).Text()),
        ElementsAre("A(or)", "B(or)"));
}

TEST(TreeParserTest, SecondTopEventIsIgnored)
{
    EXPECT_THAT(Shapes(TreeXml("jank").Element(TreeElement("t", "First").Child(Intermediate("Second", Or({})))).Text()),
        ElementsAre("First(or)"));
}

TEST(TreeParserTest, OrGateBeatsAnAndGateBeforeIt)
{
    EXPECT_THAT(Shapes(FileOf(Or({Xml("Intermediate-Event").TextChild("ID", "G")
        .Child(And({Basic("A")})).Child(Or({Basic("B")}))}))), ElementsAre("T(or G(or B.))"));
}

TEST(TreeParserTest, FirstGateOfAKindCounts)
{
    EXPECT_THAT(Shapes(FileOf(Or({Xml("Intermediate-Event").TextChild("ID", "G")
        .Child(And({Basic("A")})).Child(And({Basic("B")}))}))), ElementsAre("T(or G(and A.))"));
}

TEST(TreeParserTest, IntermediateEventWithoutAGateIsKept)
{
    EXPECT_THAT(Shapes(FileOf(Or({Xml("Intermediate-Event").TextChild("ID", "G")}))), ElementsAre("T(or G)"));
}

TEST(TreeParserTest, UnknownElementInAGateIsAnUndevelopedEvent)
{
    const XmlText xml(FileOf(Or({Xml("Foo").TextChild("ID", "U").TextChild("Name", "nobody looks")})));
    const auto trees = TreeParser().GetTreeList(xml.Document(), "jank");
    EXPECT_EQ(Shape(*trees.at(0)->GetIntermediateEvent()), "T(or U?)");
    EXPECT_EQ(trees[0]->GetIntermediateEvent()->GetGate()->GetEvents()[0]->GetName(), "nobody looks");
}

TEST(TreeParserTest, GatesOfOtherEventsAreNotRead)
{
    EXPECT_THAT(Shapes(FileOf(Or({Basic("A").Child(Or({Basic("B")})),
        Xml("Foo").TextChild("ID", "U").Child(And({Basic("C")}))}))), ElementsAre("T(or A. U?)"));
}

TEST(TreeParserTest, EventTextsAreKeptAsWrittenButForSpacesAroundTheId)
{
    const XmlText xml(TreeXml("jank").Element(Xml("t").Attr("id", "T").Attr("version", "1").Attr("type", "x").Child(
        Intermediate("  a id ", Or({}), {" name ", " value ", "{\"k\": \"<v>\"}", " 2 "}))).Text());
    const auto trees = TreeParser().GetTreeList(xml.Document(), "jank");
    const auto& event = *trees.at(0)->GetIntermediateEvent();
    EXPECT_EQ(event.GetId(), "a id");
    EXPECT_EQ(event.GetName(), " name ");
    EXPECT_EQ(event.GetValue(), " value ");
    EXPECT_EQ(event.GetUserDefined(), "{\"k\": \"<v>\"}");
    EXPECT_EQ(event.GetDetectMode(), " 2 ");
}

TEST(TreeParserTest, FirstChildOfAPropertyNameCountsEvenWithoutText)
{
    const XmlText xml(FileOf(Or({Basic("A").Raw("<Name/><Name>second</Name><ID>B</ID>")})));
    const auto trees = TreeParser().GetTreeList(xml.Document(), "jank");
    const auto& event = *trees.at(0)->GetIntermediateEvent()->GetGate()->GetEvents().at(0);
    EXPECT_EQ(event.GetId(), "A");
    EXPECT_EQ(event.GetName(), "");
}

TEST(TreeParserTest, EventWithoutTextInItsIdIsKeptWithTheEmptyId)
{
    EXPECT_THAT(Shapes(FileOf(Or({Xml("Basic-Event").Raw("<ID/>"), Xml("Basic-Event")}))), ElementsAre("T(or . .)"));
}

TEST(TreeParserTest, OddIdsAreKeptLetterByLetter)
{
    EXPECT_THAT(Shapes(FileOf(Or({Basic("a/b"), Basic("a&b"), Basic("a b"), Basic("\"q'"), Basic("\xC3\xA9\xE2\x82\xAC"),
        Basic("\tx"), Basic("\xFF\xFE")}))),
        ElementsAre("T(or a/b. a&b. a b. \"q'. \xC3\xA9\xE2\x82\xAC. \tx. \xFF\xFE.)"));
}

TEST(TreeParserTest, AttributesOfEventsAreNotRead)
{
    EXPECT_THAT(Shapes(FileOf(Or({Xml("Basic-Event").Attr("ID", "A")}))), ElementsAre("T(or .)"));
}

TEST(TreeParserTest, OneTreeIsFoundByItsId)
{
    const XmlText xml(TreeXml("jank").Tree("A", Or({})).Tree("B", And({})).Element(TreeElement("t", "B"))
        .Element(Xml("t").Child(Intermediate("no id", Or({})))).Text());
    ASSERT_NE(TreeParserPeer::Parse(xml, "jank", "B"), nullptr);
    EXPECT_EQ(Shape(*TreeParserPeer::Parse(xml, "jank", "B")->GetIntermediateEvent()), "B(and)");
    EXPECT_EQ(TreeParserPeer::Parse(xml, "jank", "C"), nullptr);
    EXPECT_EQ(TreeParserPeer::Parse(xml, "jank", ""), nullptr);
    EXPECT_EQ(TreeParserPeer::Parse(xml, "other", "B"), nullptr);
}

TEST(TreeParserTest, SaysNothing)
{
    const LogCapture log;
    Shapes("<r><jank><t/><u id=\"1\"/></jank></r>");
    EXPECT_THAT(log.Lines(), IsEmpty());
}

} // namespace
