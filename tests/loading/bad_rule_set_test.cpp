// Damaged rule sets: truncated, of another kind, too deep. Each must either load or be refused with its log line.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/log.h"
#include "arborist/loading/fault_tree_parser.h"
#include "arborist/model/event.h"
#include "arborist/model/gate.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using State = Evidence::RuleSetFileState;

// One rule of each family and one entry of each section.
std::string FullRules()
{
    const auto condition = ConditionXml({SingleLogicXml(TestXml("gt", "p", "5")),
        MultipleLogicXml({TestXml("lt", "p", "5"), TestXml("eq", "p", "6")})});
    const auto params = ParamsXml({ParamXml("p", "k", "int")});
    return RuleXml("jank").EventRule("A", {Single("R1"), Multiple({"R2", "R3"})})
        .Rule(AlarmRuleXml("R1", {AlarmIdXml("1", "2", {TimeXml("latest", "3", "4"), params, condition})}))
        .Rule(CodeRuleXml("R2", "850", "{}")).Rule(NodeRuleXml("R3", {NodeInfoXml("p", "/x"), params, condition}))
        .Rule(CommandRuleXml("R4").Child(AnalysisMethodXml("defDBSql", {Xml("sql").Text("SELECT 1"), condition})))
        .FaultDescription("A", {"d"}).Solution("A", {"s"}).Repair("A", {{"r", "{}"}})
        .CommonPart({Xml("thresholdsOrLumbraData").Attr("name", "b"), Xml("defDBTable").Attr("name", "d")}).Text();
}

std::string FullTrees()
{
    return TreeXml("jank").Version("1").Tree("T", Or({Basic("A", {"n", "v", "{}", "2"}),
        Intermediate("G", And({Basic("B"), Xml("Foo").TextChild("ID", "U")}))})).Text();
}

class BadRuleSetTest : public testing::Test {
protected:
    // Parses anew with these files; the loader stays until the next call.
    FaultTreeParser& Parse(const std::string& trees, const std::string& rules)
    {
        // Writes new files, as some file systems wait for the disk when a file is truncated and rewritten.
        std::filesystem::remove(mDir.Path("FaultTrees.xml"));
        std::filesystem::remove(mDir.Path("FaultTreeRules.xml"));
        mDir.Write("FaultTrees.xml", trees);
        mDir.Write("FaultTreeRules.xml", rules);
        mLog.Clear();
        mParser = std::make_unique<FaultTreeParser>(DetectInfoFor(mDir, "jank"));
        mParser->StartParse();
        return *mParser;
    }

    TempDir mDir;
    LogCapture mLog;
    std::unique_ptr<FaultTreeParser> mParser;
};

TEST_F(BadRuleSetTest, TreeFileCutOffAtAnyByteIsRefused)
{
    const std::string trees = FullTrees();
    for (std::size_t length = 0; length < trees.size(); ++length) {
        const auto& parser = Parse(trees.substr(0, length), "<r/>");
        EXPECT_EQ(parser.GetTreeFileReport().state, State::MALFORMED) << length;
        EXPECT_THAT(parser.GetFaultTrees(), IsEmpty()) << length;
        EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("load tree rules xml failed"))) << length;
    }
    EXPECT_EQ(Parse(trees, "<r/>").GetFaultTrees().size(), 1U);
}

TEST_F(BadRuleSetTest, RuleFileCutOffAtAnyByteIsRefused)
{
    const std::string rules = FullRules();
    for (std::size_t length = 0; length < rules.size(); ++length) {
        const auto& parser = Parse("<r/>", rules.substr(0, length));
        EXPECT_EQ(parser.GetRuleFileReport().state, State::MALFORMED) << length;
        EXPECT_THAT(parser.GetRuleMap(), IsEmpty()) << length;
        EXPECT_TRUE(parser.IsParseDone()) << length;
        EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), ElementsAre(HasSubstr("load tree rules xml failed"))) << length;
    }
    EXPECT_EQ(Parse("<r/>", rules).GetRuleMap().size(), 4U);
}

TEST_F(BadRuleSetTest, AnyByteTurnedIntoAnotherLoadsOrIsRefused)
{
    const std::string trees = FullTrees();
    const std::string rules = FullRules();
    for (std::size_t place = 0; place < rules.size(); ++place) {
        const char letter = "<&\0\""[place % 4];
        std::string badTrees = trees;
        std::string badRules = rules;
        badTrees[place % trees.size()] = letter;
        badRules[place] = letter;
        EXPECT_TRUE(Parse(badTrees, badRules).IsParseDone());
    }
}

struct BadFile { const char* name; std::string text; };
void PrintTo(const BadFile& badFile, std::ostream* out) { *out << badFile.name; }
class BadFileTest : public BadRuleSetTest, public testing::WithParamInterface<BadFile> {};

TEST_P(BadFileTest, IsRefusedWithItsLineInBothPlaces)
{
    const auto& parser = Parse(GetParam().text, GetParam().text);
    EXPECT_EQ(parser.GetTreeFileReport().state, State::MALFORMED);
    EXPECT_EQ(parser.GetRuleFileReport().state, State::MALFORMED);
    EXPECT_THAT(parser.GetFaultTrees(), IsEmpty());
    EXPECT_THAT(parser.GetRuleMap(), IsEmpty());
    EXPECT_EQ(mLog.Lines(FT::LEVEL_ERROR).size(), 2U);
}

// Every second byte is zero, as in files from some editors.
std::string AsUtf16(const std::string& text)
{
    std::string wide = "\xFF\xFE";
    for (const char letter : text) {
        wide += letter;
        wide += '\0';
    }
    return wide;
}

INSTANTIATE_TEST_SUITE_P(Table, BadFileTest, testing::Values(
    BadFile{"Empty", ""},
    BadFile{"Blanks", " \r\n\t "},
    BadFile{"NotXml", "{\"trees\": []}"},
    BadFile{"Binary", std::string("PK\x03\x04\0\0\xFF\xFE", 8)},
    BadFile{"Utf16", AsUtf16(FullTrees())},
    BadFile{"UnquotedAttribute", "<r version=1></r>"},
    BadFile{"AttributeTwice", "<r a=\"1\" a=\"2\"/>"},
    BadFile{"OverlappingElements", "<r><a><b></a></b></r>"}), CaseName());

TEST_F(BadRuleSetTest, OneByteEncodingIsReadByteByByte)
{
    const auto& parser = Parse("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
        + TreeXml("jank").Tree("T\xE9", Or({})).Text(), "<r/>");
    ASSERT_EQ(parser.GetFaultTrees().size(), 1U);
    EXPECT_EQ(parser.GetFaultTrees()[0]->GetId(), "T\xE9");
}

TEST_F(BadRuleSetTest, ByteOrderMarkIsPassedOver)
{
    EXPECT_EQ(Parse("\xEF\xBB\xBF" + FullTrees(), "\xEF\xBB\xBF" + FullRules()).GetFaultTrees().size(), 1U);
    EXPECT_EQ(mParser->GetRuleMap().size(), 4U);
}

TEST_F(BadRuleSetTest, FileOfADeclarationAloneHasNoRootAndNothing)
{
    const auto& parser = Parse("<?xml version=\"1.0\"?>", "<?xml version=\"1.0\"?>");
    EXPECT_EQ(parser.GetTreeFileReport().state, State::LOADED);
    EXPECT_EQ(parser.GetTreeFileVersion(), "-1");
    EXPECT_THAT(parser.GetFaultTrees(), IsEmpty());
    EXPECT_THAT(parser.GetRuleMap(), IsEmpty());
}

// A file whose innermost element is nested `depth` deep, at least 4: root, section, tree and top event.
std::string TreesOfDepth(int depth)
{
    Xml event("Intermediate-Event");
    if (depth % 2 != 0) {
        event.TextChild("ID", "innermost");
    }
    for (int level = depth; level >= 6; level -= 2) {
        event = Xml("Intermediate-Event").Child(Xml("Or-Gate").Child(event));
    }
    return TreeXml("jank").Element(Xml("t").Attr("id", "T").Attr("version", "1").Attr("type", "x").Child(event)).Text();
}

TEST_F(BadRuleSetTest, NestingIsReadAsDeepAsTheXmlLibraryGoes)
{
    const auto& parser = Parse(TreesOfDepth(98), "<r/>");
    EXPECT_EQ(parser.GetTreeFileReport().state, State::LOADED) << parser.GetTreeFileReport().message;
    ASSERT_EQ(parser.GetFaultTrees().size(), 1U);
    int gates = 0;
    for (const IntermediateEvent* event = parser.GetFaultTrees()[0]->GetIntermediateEvent().get();
         event != nullptr && event->GetGate() != nullptr; ++gates) {
        event = event->GetGate()->GetEvents().at(0)->AsIntermediate();
    }
    EXPECT_EQ(gates, 47);
}

TEST_F(BadRuleSetTest, DeeperNestingIsRefusedWithItsLine)
{
    const auto& parser = Parse(TreesOfDepth(99), std::string(100'000, '<') + "r/>");
    EXPECT_EQ(parser.GetTreeFileReport().state, State::MALFORMED);
    EXPECT_THAT(parser.GetTreeFileReport().message, HasSubstr("XML_ELEMENT_DEPTH_EXCEEDED"));
    EXPECT_THAT(mLog.Lines(FT::LEVEL_ERROR), testing::Contains("FUNc:FaultTreeParser::StartFaultTreeParse: "
        "load tree rules xml failed " + mDir.Path("FaultTrees.xml") + ", errno 18"));
}

TEST_F(BadRuleSetTest, OddIdsGoThroughEveryTable)
{
    for (const std::string id : {"a/b", "a & b", "<>\"'", "\xC3\xA9\xE2\x82\xAC", "%s%n", "T/G & T/H"}) {
        auto& parser = Parse(TreeXml("jank").Tree(id, Or({Basic(id)})).Text(), RuleXml("jank")
            .EventRule(id, {Single(id)}).Rule(CodeRuleXml(id, id)).FaultDescription(id, {id}).Solution(id, {id})
            .Repair(id, {{id, ""}}).Text());
        ASSERT_EQ(parser.GetFaultTrees().size(), 1U);
        EXPECT_EQ(parser.GetFaultTrees()[0]->GetId(), id);
        EXPECT_EQ(parser.GetFaultTrees()[0]->GetIntermediateEvent()->GetGate()->GetEvents().at(0)->GetId(), id);
        ASSERT_NE(parser.GetEventRuleByEventId(id), nullptr);
        EXPECT_EQ(parser.GetEventRuleByEventId(id)->GetRuleList().at(0)->ruleName, id);
        EXPECT_EQ(parser.GetCodeRuleNameById(id), id);
        EXPECT_THAT(parser.GetFaultDescListById(id), ElementsAre(id));
        EXPECT_THAT(parser.GetSuggestionListById(id), ElementsAre(id));
        EXPECT_THAT(parser.GetRepairListById(id), ElementsAre(id));
    }
}

} // namespace
