#include "arborist/loading/xml_file.h"

#include <filesystem>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "arborist/frame/rule_set_summary.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Longer than the files whose attributes aren't counted.
const std::string LONG_TEXT(20'000, 'x');

std::string Attributes(std::size_t count, char quote = '"')
{
    std::string text;
    for (std::size_t attribute = 0; attribute < count; ++attribute) {
        text += " a" + std::to_string(attribute) + "=" + quote + "v" + quote;
    }
    return text;
}

// Looks as if it had too many attributes, so that the text is gone through, and has none.
const std::string COMMENT = "<!--" + Attributes(300) + "-->";

class XmlFileTest : public testing::Test {
protected:
    XmlFile::Outcome Load(const std::string& xml) { return XmlFile::Load(mDocument, mDir.Write("a.xml", xml)); }

    TempDir mDir;
    LogCapture mLog;
    tinyxml2::XMLDocument mDocument;
};

TEST_F(XmlFileTest, MillionAttributesAreRefusedBeforeTheyAreCompared)
{
    const auto outcome = Load("<a>\n<b/>\n<c" + Attributes(1'000'000) + "/></a>");
    EXPECT_EQ(outcome.error, tinyxml2::XML_ERROR_PARSING_ATTRIBUTE);
    EXPECT_EQ(outcome.message, "an element has more than 256 attributes");
    EXPECT_EQ(outcome.line, 3);
    EXPECT_EQ(mDocument.RootElement(), nullptr);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre("FUNc:XmlFile::Load: an element of " + mDir.Path("a.xml")
        + " has more than 256 attributes"));
}

TEST_F(XmlFileTest, EachElementMayHaveAsManyAsTheLimit)
{
    std::string xml = "<a>";
    for (int element = 0; element < 50; ++element) {
        xml += "<b" + Attributes(XmlFile::MOST_ATTRIBUTES, element % 2 == 0 ? '"' : '\'') + ">text</b>";
    }
    EXPECT_EQ(Load(xml + "</a>").error, tinyxml2::XML_SUCCESS);
    EXPECT_EQ(Load(xml + "<b" + Attributes(XmlFile::MOST_ATTRIBUTES + 1) + "/></a>").message,
        "an element has more than 256 attributes");
}

TEST_F(XmlFileTest, AttributesOfATextOf16KiBAreNotCounted)
{
    const std::string xml = "<a" + Attributes(XmlFile::MOST_ATTRIBUTES + 1);
    const std::string longest = xml + std::string(16 * 1024 - xml.size() - 2, ' ') + "/>";
    EXPECT_EQ(LineOfTooManyAttributes(longest), 0);
    EXPECT_EQ(LineOfTooManyAttributes(longest + "\n"), 1);
}

struct HidingCase {
    const char* name;
    std::string begin;
    std::string end;
};
void PrintTo(const HidingCase& hiding, std::ostream* out) { *out << hiding.name; }
class AttributesIn : public XmlFileTest, public testing::WithParamInterface<HidingCase> {};

// What only looks like attributes is none; behind it they count again. The length moves the places at which blocks end.
TEST_P(AttributesIn, AreNone)
{
    for (std::size_t length = 65'530; length < 65'540; ++length) {
        const std::string start = "<a>" + std::string(length - 3, ' ') + GetParam().begin + Attributes(300)
            + GetParam().end;
        EXPECT_EQ(Load(start + "</a>").error, tinyxml2::XML_SUCCESS) << length;
        EXPECT_EQ(Load(start + "<b" + Attributes(300) + "/></a>").error, tinyxml2::XML_ERROR_PARSING_ATTRIBUTE) << length;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, AttributesIn, testing::Values(
    HidingCase{"Text", "", ""},
    HidingCase{"Comment", "<!-- <c", "/> - -- > --->"},
    HidingCase{"EmptyLookingComment", "<!--> <c", "/> -->"},
    HidingCase{"Cdata", "<![CDATA[ <c", "/> ]> ] ]]]>"},
    HidingCase{"Declaration", "<!DOCTYPE c", ">"},
    HidingCase{"TextBehindSigns", "? ! don't > \"", ""},
    HidingCase{"Value", "<c a='<d", "></d>'/>"}), CaseName());

// Neither a sign within a tag nor a quote in a text changes what follows.
TEST_F(XmlFileTest, AttributesCountWhateverSignsStandAround)
{
    for (const std::string around : {"<b !", "<b ?", "<b <!-- ", "text's <b", "<!----><b", "<?x ' ?><b", "<b c='!'", "<b c='<?'"}) {
        const std::string xml = "<a>" + LONG_TEXT + around;
        EXPECT_EQ(LineOfTooManyAttributes(xml + Attributes(300) + "/></a>"), 1) << around;
        EXPECT_EQ(LineOfTooManyAttributes(xml + Attributes(200) + "/><d" + Attributes(200) + "/></a>"), 0) << around;
    }
}

std::string Repeated(const std::string& text, std::size_t times)
{
    std::string repeated;
    for (std::size_t time = 0; time < times; ++time) {
        repeated += text;
    }
    return repeated;
}

// Not every place of a text is looked at: wherever such an element begins, and however its characters are distributed, one
// of these places is in it.
TEST_F(XmlFileTest, TooManyAttributesAreFoundWhereverTheyBegin)
{
    const std::string start = "<a>" + LONG_TEXT;
    const std::string others = Repeated("<c d='' e=\"\"/>", 100);
    const auto many = [](const std::string& attribute) { return Repeated(attribute, XmlFile::MOST_ATTRIBUTES); };
    const std::string longValue(3000, '\'');
    const std::string tooMany[] = {many("a=''") + "a=''", many("a=\"\"") + "a='\"'", many("a='\"'") + "a\t= ''",
        many("a=''") + "a=\"" + longValue + '"', "a=\"" + longValue + '"' + many("a=\"'\"")};
    for (std::size_t blanks = 0; blanks < 1100; ++blanks) {
        const std::string before = start + std::string(blanks, ' ') + others + "<b ";
        for (const std::string& attributes : tooMany) {
            EXPECT_EQ(LineOfTooManyAttributes(before + attributes + "/>" + others), 1) << blanks << attributes;
        }
        EXPECT_EQ(LineOfTooManyAttributes(before + many("a=''") + "/>" + others), 0) << blanks;
    }
}

TEST_F(XmlFileTest, QuotesWithoutAnEqualsSignAreLeftToTheReader)
{
    const std::string quotes = Repeated(" 'c'", 2 * XmlFile::MOST_ATTRIBUTES);
    EXPECT_EQ(LineOfTooManyAttributes("<a>" + LONG_TEXT + "<b" + quotes + "/></a>"), 0);
}

TEST_F(XmlFileTest, BrokenMarkupIsLeftToTheReader)
{
    for (const std::string xml : {"<", "<!", "<!-", "<!--", "<![CDATA[", "<?", "<a b=\"", "<a", "<!>", "<!-x>", "<>"}) {
        for (const std::string& before : {LONG_TEXT, LONG_TEXT + COMMENT}) {
            EXPECT_NE(Load("<r>" + before + xml).error, tinyxml2::XML_SUCCESS) << xml;
            EXPECT_THAT(mLog.Lines(), IsEmpty()) << xml;
        }
    }
}

TEST_F(XmlFileTest, QuotesOutsideOfTagsAndTagsWithoutAnEndHaveNoAttributes)
{
    for (const std::string& xml : {"\"" + LONG_TEXT, "!" + LONG_TEXT, "<a b=\"c\" " + LONG_TEXT, "<a b='c'" + LONG_TEXT}) {
        EXPECT_EQ(LineOfTooManyAttributes(xml), 0);
        EXPECT_EQ(LineOfTooManyAttributes(COMMENT + xml), 0);
    }
    EXPECT_EQ(LineOfTooManyAttributes("!" + COMMENT + LONG_TEXT), 0);
    EXPECT_NE(LineOfTooManyAttributes("\"" + LONG_TEXT + "<a" + Attributes(XmlFile::MOST_ATTRIBUTES + 1)), 0);
}

TEST_F(XmlFileTest, WhatIsNoPlainFileIsUnreadable)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const std::string name : {"pipe", ".", "missing"}) {
        const auto outcome = XmlFile::Load(mDocument, mDir.Path(name));
        EXPECT_EQ(outcome.error, tinyxml2::XML_ERROR_FILE_READ_ERROR);
        EXPECT_EQ(outcome.message, "not a file");
    }
}

TEST_F(XmlFileTest, FailureLeavesTheDocumentEmpty)
{
    EXPECT_EQ(Load("<a/>").error, tinyxml2::XML_SUCCESS);
    EXPECT_NE(Load("<a>").error, tinyxml2::XML_SUCCESS);
    EXPECT_EQ(mDocument.RootElement(), nullptr);
    Load("<a/>");
    XmlFile::Load(mDocument, "missing");
    EXPECT_EQ(mDocument.RootElement(), nullptr);
}

} // namespace
