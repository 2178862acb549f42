#include "diagnosis/rule_source/source_place.h"

#include <gtest/gtest.h>

#include "diagnosis/rule_source/source_file.h"
#include "tests/support/case_name.h"

namespace diagnosis::rule_source {
namespace {

// The piece in brackets, with the text around it: "<[a]/>"; "none" without a place.
std::string Marked(const std::string& text, const std::optional<SourcePlace>& place)
{
    if (!place) {
        return "none";
    }
    const std::size_t end = place->offset + place->length;
    return text.substr(0, place->offset) + "[" + text.substr(place->offset, place->length) + "]" + text.substr(end);
}

struct PlaceCase { const char* name; const char* text; const char* marked; };
void PrintTo(const PlaceCase& place, std::ostream* out) { *out << place.name; }

// Places of the first child of the root, or of the root if it has none, and of its first attribute.
class PlaceTest : public testing::TestWithParam<PlaceCase> {
protected:
    template <typename Find>
    void Expect(Find find) const
    {
        const auto file = SourceFile::Of("f.xml", GetParam().text);
        ASSERT_TRUE(file->IsLoaded()) << file->Problem();
        const Element child = file->Root().FirstChild();
        EXPECT_EQ(Marked(GetParam().text, find(child ? child : file->Root())), GetParam().marked);
    }
};

class NamePlace : public PlaceTest {};
TEST_P(NamePlace, IsThatInTheStartTag)
{
    Expect(PlaceOfName);
}
INSTANTIATE_TEST_SUITE_P(Table, NamePlace, testing::Values(PlaceCase{"OfAnEmptyElement", "<r><a/></r>", "<r><[a]/></r>"},
    PlaceCase{"WithAttributes", "<r><a b='a'></a></r>", "<r><[a] b='a'></a></r>"},
    PlaceCase{"AtTheEndOfALine", "<r><a\nb=''/></r>", "<r><[a]\nb=''/></r>"},
    PlaceCase{"TwiceInALine", "<r><a/><a/></r>", "none"},
    PlaceCase{"AsTheStartOfAnother", "<r><a/><ab/></r>", "<r><[a]/><ab/></r>"}), CaseName());

class EndNamePlace : public PlaceTest {};
TEST_P(EndNamePlace, IsThatInTheEndTag)
{
    Expect(PlaceOfEndName);
}
INSTANTIATE_TEST_SUITE_P(Table, EndNamePlace, testing::Values(
    PlaceCase{"OfATag", "<r>\n<a>x</a>\n</r>", "<r>\n<a>x</[a]>\n</r>"},
    PlaceCase{"WithBlanks", "<r>\n<a>x</a \t></r>", "<r>\n<a>x</[a] \t></r>"},
    PlaceCase{"OfAnEmptyElement", "<r>\n<a/>\n</r>", "none"},
    PlaceCase{"BehindQuotedSigns", "<r>\n<a b=\"'>/\" c='\">'>x</a>\n</r>", "<r>\n<a b=\"'>/\" c='\">'>x</[a]>\n</r>"},
    PlaceCase{"BehindInnerOnesOfThatName", "<r>\n<a>\n<a b='/'>\n<a/>\n</a>\n</a></r>",
        "<r>\n<a>\n<a b='/'>\n<a/>\n</a>\n</[a]></r>"},
    PlaceCase{"BehindOnesThatBeginLikeIt", "<r>\n<a>\n<ab>\n</ab></a></r>", "<r>\n<a>\n<ab>\n</ab></[a]></r>"},
    PlaceCase{"BehindAComment", "<r>\n<a><!-- </a> --><![CDATA[</a>]]></a></r>",
        "<r>\n<a><!-- </a> --><![CDATA[</a>]]></[a]></r>"},
    PlaceCase{"OfAnElementWhosePlaceIsNotClear", "<r><a></a><a></a></r>", "none"}), CaseName());

class TextPlace : public PlaceTest {};
TEST_P(TextPlace, IsOnePieceOrNone)
{
    Expect(PlaceOfText);
}
INSTANTIATE_TEST_SUITE_P(Table, TextPlace, testing::Values(PlaceCase{"Plain", "<r><a>x &lt;</a></r>", "<r><a>[x &lt;]</a></r>"},
    PlaceCase{"Empty", "<r><a></a></r>", "none"}, PlaceCase{"OfAnEmptyElement", "<r><a/></r>", "none"},
    PlaceCase{"WithAComment", "<r><a>x<!-- y --></a></r>", "none"}, PlaceCase{"WithAChild", "<r><a>x<b/></a></r>", "none"}),
    CaseName());

class ValuePlace : public PlaceTest {};
TEST_P(ValuePlace, IsBetweenTheQuotes)
{
    Expect([](Element element) { return PlaceOfValue(element, element.FirstAttribute()); });
}
INSTANTIATE_TEST_SUITE_P(Table, ValuePlace, testing::Values(PlaceCase{"DoubleQuotes", "<r><a b=\"c\"/></r>", "<r><a b=\"[c]\"/></r>"},
    PlaceCase{"SingleQuotes", "<r><a b = '\"'/></r>", "<r><a b = '[\"]'/></r>"},
    PlaceCase{"Empty", "<r><a b=''/></r>", "<r><a b='[]'/></r>"},
    PlaceCase{"TheNameInAValue", "<r><a b='b b'/></r>", "<r><a b='[b b]'/></r>"},
    PlaceCase{"TheNameInAnotherName", "<r><a b='' ab=''/></r>", "<r><a b='[]' ab=''/></r>"},
    PlaceCase{"TwiceInALine", "<r><a b=''/><a b=''/></r>", "none"},
    PlaceCase{"WhatOnlyLooksLikeOne", "<r><a b=''/> b =5 b</r>", "<r><a b='[]'/> b =5 b</r>"}), CaseName());

class AttributePlace : public PlaceTest {};
TEST_P(AttributePlace, HasTheBlanksInFrontOfIt)
{
    Expect([](Element element) { return PlaceOfAttribute(element, element.FirstAttribute()); });
}
INSTANTIATE_TEST_SUITE_P(Table, AttributePlace, testing::Values(PlaceCase{"Alone", "<r><a \n b='c'/></r>", "<r><a[ \n b='c']/></r>"},
    PlaceCase{"NotClear", "<r><a b=''/><a b=''/></r>", "none"}), CaseName());

TEST(AttributeNamePlace, IsTheName)
{
    const std::string text = "<a bc='d'/>";
    const auto file = SourceFile::Of("f.xml", text);
    EXPECT_EQ(Marked(text, PlaceOfAttributeName(file->Root(), file->Root().FirstAttribute())), "<a [bc]='d'/>");
    const auto twice = SourceFile::Of("f.xml", "<a b=''><c b=''/></a>");
    EXPECT_FALSE(PlaceOfAttributeName(twice->Root(), twice->Root().FirstAttribute()));
}

TEST(PlaceInALongLine, IsNone)
{
    const auto file = SourceFile::Of("f.xml", "<a b='" + std::string(5000, 'x') + "'/>");
    EXPECT_FALSE(PlaceOfName(file->Root()));
    EXPECT_FALSE(PlaceOfEndName(file->Root()));
    EXPECT_FALSE(PlaceOfText(file->Root()));
    EXPECT_FALSE(PlaceOfValue(file->Root(), file->Root().FirstAttribute()));
}

TEST(NullElementTest, HasNothing)
{
    const Element none;
    EXPECT_EQ(none.Name(), "");
    EXPECT_EQ(none.Line(), 0);
    EXPECT_EQ(none.File(), nullptr);
    EXPECT_EQ(none.Text(), "");
    EXPECT_FALSE(none.HasText());
    EXPECT_FALSE(none.FirstAttribute());
    EXPECT_FALSE(none.FirstChild());
    EXPECT_EQ(none.Value("a"), "");
    EXPECT_EQ(none.Number("a"), std::nullopt);
}

TEST(RootElementTest, HasNoParent)
{
    const auto file = SourceFile::Of("f.xml", "<a><b/></a>");
    EXPECT_FALSE(file->Root().Parent());
    EXPECT_EQ(file->Root().FirstChild().Parent(), file->Root());
}

} // namespace
} // namespace diagnosis::rule_source
