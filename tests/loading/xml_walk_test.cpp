#include "arborist/loading/xml_walk.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/loading/xml_text.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Names(const XmlWalk::Children& children)
{
    std::vector<std::string> names;
    for (const auto& child : children) {
        names.emplace_back(child.Name());
    }
    return names;
}

TEST(XmlWalkTest, ChildrenAreAllElementsOrThoseOfOneNameInOrder)
{
    const XmlText xml("<r>text<a/><!-- c --><b/><a/></r>");
    EXPECT_THAT(Names(XmlWalk::Children(xml.Root())), ElementsAre("a", "b", "a"));
    EXPECT_THAT(Names(XmlWalk::Children(xml.Root(), "a")), ElementsAre("a", "a"));
    EXPECT_THAT(Names(XmlWalk::Children(xml.Root(), "A")), IsEmpty());
    EXPECT_THAT(Names(XmlWalk::Children(nullptr, "a")), IsEmpty());
}

TEST(XmlWalkTest, TagElementIsTheFirstInTheFirstSection)
{
    const XmlText xml("<r><s><t n=\"1\"/><t n=\"2\"/></s><s><t n=\"3\"/><u/></s></r>");
    ASSERT_NE(XmlWalk::FindTagElement(xml.Document(), "s", "t"), nullptr);
    EXPECT_STREQ(XmlWalk::FindTagElement(xml.Document(), "s", "t")->Attribute("n"), "1");
    EXPECT_EQ(XmlWalk::FindTagElement(xml.Document(), "s", "u"), nullptr);
    EXPECT_EQ(XmlWalk::FindTagElement(xml.Document(), "x", "t"), nullptr);
    EXPECT_EQ(XmlWalk::FindTagElement(xml.Document(), "s", ""), nullptr);
    EXPECT_EQ(XmlWalk::FindTagElement(XmlText("<?xml version=\"1.0\"?>").Document(), "s", "t"), nullptr);
}

TEST(XmlWalkTest, FirstChildOfEachNameIsFound)
{
    const XmlText xml("<r><b n=\"1\"/><a n=\"2\"/><a n=\"3\"/><b n=\"4\"/></r>");
    const tinyxml2::XMLElement* a = nullptr;
    const tinyxml2::XMLElement* b = nullptr;
    const tinyxml2::XMLElement* none = nullptr;
    XmlWalk::FindFirstChildren(xml.Root(), {{"a", &a}, {"none", &none}, {"b", &b}});
    EXPECT_STREQ(a->Attribute("n"), "2");
    EXPECT_STREQ(b->Attribute("n"), "1");
    EXPECT_EQ(none, nullptr);
}

TEST(XmlWalkTest, AttributesThatAreThereAreAssignedAlsoWhenEmpty)
{
    const XmlText xml("<r a=\"\" b=\"1\" ab=\"3\"/>");
    std::string a = "default";
    std::string b = "default";
    std::string none = "default";
    XmlWalk::ReadAttributes(xml.Root(), {{"none", &none}, {"a", &a}, {"b", &b}});
    EXPECT_EQ(a, "");
    EXPECT_EQ(b, "1");
    EXPECT_EQ(none, "default");
}

TEST(XmlWalkTest, AbsentAttributeIsEmpty)
{
    const XmlText xml("<r a=\"1\"/>");
    EXPECT_EQ(XmlWalk::Attribute(xml.Root(), "a"), "1");
    EXPECT_EQ(XmlWalk::Attribute(xml.Root(), "A"), "");
}

TEST(XmlWalkTest, IdsAreThoseOfTheChildrenOfOneName)
{
    const XmlText xml("<r><a id=\"2\"/><b id=\"3\"/><a/><a id=\"\"/><a id=\"1\"/></r>");
    EXPECT_THAT(XmlWalk::ChildIds(&xml.Root(), "a"), ElementsAre("2", "", "1"));
    EXPECT_THAT(XmlWalk::ChildIds(nullptr, "a"), IsEmpty());
}

TEST(XmlWalkTest, EmptyCdataIsTextAndAnEmptyElementHasNone)
{
    const XmlText xml("<r><a><![CDATA[]]></a><b></b><c/><d><e/></d></r>");
    EXPECT_STREQ(XmlWalk::ChildText(xml.Root(), "a"), "");
    EXPECT_EQ(XmlWalk::ChildText(xml.Root(), "b"), nullptr);
    EXPECT_EQ(XmlWalk::ChildText(xml.Root(), "c"), nullptr);
    EXPECT_EQ(XmlWalk::ChildText(xml.Root(), "d"), nullptr);
    EXPECT_EQ(XmlWalk::ChildText(xml.Root(), "none"), nullptr);
    std::string text = "default";
    XmlWalk::AssignText(xml.Root().FirstChildElement("b"), text);
    EXPECT_EQ(text, "default");
    XmlWalk::AssignText(xml.Root().FirstChildElement("a"), text);
    EXPECT_EQ(text, "");
}

} // namespace
