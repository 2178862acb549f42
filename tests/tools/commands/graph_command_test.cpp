#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Opens every kind of markup, closes every kind of quote.
const std::string HOSTILE = "\"]}>--&amp;</label></text><script>alert(1)</script>\\N\\\" '#`/";

class GraphCommandTest : public testing::Test {
protected:
    void SetUp() override { WriteHotBundle(mDir, "b"); }

    /// Replaces the trees of the bundle.
    void Trees(const TreeXml& trees) const { mDir.Write("b/rules/FaultTrees.xml", trees.Text()); }

    static std::string Graph(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), {"graph", "b"});
        const auto result = RunArborist(arguments);
        EXPECT_THAT(result.err, testing::AnyOf(IsEmpty(), StartsWith("arborist: b: warning: ")));
        EXPECT_EQ(result.status, 0);
        return result.out;
    }

    TempDir mDir;
};

TEST_F(GraphCommandTest, ARunColoursStatusesAndMakesTheWayOfTheRootCauseBold)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("HOT", {"Too hot", "", "", ""}), Basic("COLD")})));
    EXPECT_EQ(Graph({}),
        "digraph arborist {\n"
        "  graph [rankdir=TB, fontname=\"Helvetica,Arial,sans-serif\", labeljust=l, color=\"#c3c7cf\"];\n"
        "  node [fontname=\"Helvetica,Arial,sans-serif\", fontsize=11, color=\"#5c6270\", fillcolor=white, "
        "style=filled];\n"
        "  edge [color=\"#5c6270\", dir=none];\n"
        "  subgraph cluster_t0 {\n"
        "    label=\"T: FAULT, 1 of 2 checks open (1 not_checked)\";\n"
        "    t0e0 [label=\"T\\nTRUE\", shape=box, color=\"#a5170c\", fillcolor=\"#fde3df\", penwidth=3];\n"
        "    t0g0 [label=\"OR\", shape=hexagon, fontsize=9, margin=0.03, penwidth=3];\n"
        "    t0e0 -> t0g0 [penwidth=3, color=\"#a5170c\"];\n"
        "    t0g0 -> t0e1 [penwidth=3, color=\"#a5170c\"];\n"
        "    t0g0 -> t0e2;\n"
        "    t0e1 [label=\"HOT\\nToo hot\\nTRUE, ROOT CAUSE\", shape=ellipse, color=\"#a5170c\", "
        "fillcolor=\"#fde3df\", penwidth=3];\n"
        "    t0e2 [label=\"COLD\\nFALSE\\nopen: not_checked\", shape=ellipse, color=\"#5c6270\", "
        "fillcolor=\"#f1f3f5\"];\n"
        "  }\n"
        "}\n");
}

TEST_F(GraphCommandTest, KindsOfEventsAndGatesDiffer)
{
    Trees(TreeXml("Tag").Tree("T", And({Intermediate("HOT", Or({Basic("COLD")})), Xml("House").TextChild("ID", "U"),
        Intermediate("G", Or({}))})));
    const std::string graph = Graph({});
    EXPECT_THAT(graph, HasSubstr("t0g0 [label=\"AND\", shape=house"));
    EXPECT_THAT(graph, HasSubstr("t0g1 [label=\"OR\", shape=hexagon"));
    EXPECT_THAT(graph, HasSubstr("t0e1 [label=\"HOT\\nTRUE\", shape=box, peripheries=2")); // has a rule of its own
    EXPECT_THAT(graph, HasSubstr("t0e4 [label=\"G\\nFALSE\", shape=box, color"));
    EXPECT_THAT(graph, HasSubstr("t0e3 [label=\"U\\nUNKNOWN\\nopen: not_checked\", shape=diamond, color=\"#7a5b00\", "
                                 "fillcolor=\"#fff3cd\", style=\"filled,dashed\""));
    EXPECT_THAT(graph, Not(HasSubstr("penwidth"))); // no fault
}

TEST_F(GraphCommandTest, OfACutSetTheRootCauseIsTheEventThatNamesIt)
{
    WriteCodeBundle(mDir, "b", {"a", "b"}, BundleJson(R"(, "codeAnswers": {"a": true, "b": true})"));
    Trees(TreeXml("Tag").Tree("T", And({Basic("C1"), Basic("C2")})));
    const std::string graph = Graph({});
    EXPECT_THAT(graph, HasSubstr("label=\"C1\\nTRUE, ROOT CAUSE\""));
    EXPECT_THAT(graph, HasSubstr("label=\"C2\\nTRUE, in its cut set\""));
}

TEST_F(GraphCommandTest, EqualIdsAreSeveralPlaces)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("COLD"), Intermediate("G", And({Basic("HOT"), Basic("COLD")})),
        Intermediate("H", And({Basic("HOT")}))})));
    const std::string graph = Graph({});
    EXPECT_THAT(graph, HasSubstr("    t0e3 [label=\"HOT\\nTRUE\", shape=ellipse"));
    EXPECT_THAT(graph, HasSubstr("    t0e6 [label=\"HOT\\nTRUE, ROOT CAUSE\", shape=ellipse"));
    EXPECT_THAT(graph, HasSubstr("    t0g5 -> t0e6 [penwidth=3"));
    EXPECT_THAT(graph, HasSubstr("    t0g2 -> t0e3;\n"));
}

TEST_F(GraphCommandTest, BareRulesAreDrawnWithoutStatuses)
{
    Trees(TreeXml("Tag").Tree("T", Or({Intermediate("HOT", And({Basic("A")}))})));
    std::filesystem::remove("b/bundle.json");
    const auto result = RunArborist({"graph", "b/rules", "--tree-tag", "Tag"});
    EXPECT_THAT(result.out, HasSubstr("  t0e1 [label=\"HOT\", shape=box, peripheries=2];\n"));
    EXPECT_THAT(result.out, AllOf(Not(HasSubstr("FALSE")), Not(HasSubstr("penwidth"))));
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.status, 0);
}

TEST_F(GraphCommandTest, BareRulesLeaveNothingBehind)
{
    std::filesystem::create_directory("tmp");
    EXPECT_EQ(RunArborist({"graph", "b/rules", "--tree-tag", "Tag"}, {"", {{"TMPDIR", "tmp"}}, ""}).status, 0);
    EXPECT_TRUE(std::filesystem::is_empty("tmp"));
    EXPECT_FALSE(std::filesystem::exists("b/programdata"));
}

TEST_F(GraphCommandTest, AMissingRuleSetIsNamed)
{
    const auto result = RunArborist({"graph", "b/nowhere", "--tree-tag", "Tag"});
    EXPECT_THAT(result.err, AllOf(StartsWith("arborist: b/nowhere: "),
        HasSubstr("b/nowhere/FaultTrees.xml: no such file"), EndsWith("[rule_file_missing]\n")));
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.out, IsEmpty());
}

TEST_F(GraphCommandTest, TreeLeavesTheOthersOut)
{
    Trees(TreeXml("Tag").Tree("ONE", Or({Basic("A")})).Tree("TWO", Or({Basic("B")})));
    EXPECT_THAT(Graph({"--tree", "TWO"}), AllOf(HasSubstr("label=\"TWO: no fault, UNDECIDED: 1 of 1 check open (1 not_checked)\""), Not(HasSubstr("ONE"))));
    const auto result = RunArborist({"graph", "b", "--tree", "TW"});
    EXPECT_EQ(result.err, "arborist: b: no tree with the id \"TW\"; did you mean \"TWO\"? [no_such_tree]\n");
    EXPECT_EQ(result.status, 2);
}

TEST_F(GraphCommandTest, OutputGoesIntoAFile)
{
    const std::string expected = Graph({});
    EXPECT_THAT(Graph({"-o", "out.dot"}), IsEmpty());
    EXPECT_EQ(mDir.Read("out.dot"), expected);
}

TEST_F(GraphCommandTest, AFileThatCantBeWrittenIsNamed)
{
    const auto result = RunArborist({"graph", "b", "-o", "nowhere/out.dot"});
    EXPECT_EQ(result.err, "arborist: nowhere/out.dot: can't be written: No such file or directory\n");
    EXPECT_EQ(result.status, 5);
}

TEST_F(GraphCommandTest, MermaidHasShapesAndClasses)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("HOT", {"Too hot; \"very\"", "", "", ""}),
        Intermediate("G", And({Xml("House").TextChild("ID", "U")}))})));
    EXPECT_THAT(Graph({"--format", "mermaid"}),
        StartsWith("flowchart TD\n"
                   "  subgraph t0[\"T: FAULT, 1 of 2 checks open (1 not_checked)\"]\n"
                   "    t0e0[\"T<br/>TRUE\"]\n"
                   "    class t0e0 fault\n"
                   "    class t0e0 path\n"
                   "    t0g0{{\"OR\"}}\n"
                   "    t0e0 === t0g0\n"
                   "    t0g0 === t0e1\n"
                   "    t0g0 --- t0e2\n"
                   "    t0e1([\"HOT<br/>Too hot#59; #34;very#34;<br/>TRUE, ROOT CAUSE\"])\n"
                   "    class t0e1 fault\n"
                   "    class t0e1 path\n"
                   "    t0e2[\"G<br/>UNKNOWN\"]\n"
                   "    class t0e2 unknown\n"
                   "    t0g2[/\"AND\"\\]\n"
                   "    t0e2 --- t0g2\n"
                   "    t0g2 --- t0e3\n"
                   "    t0e3{\"U<br/>UNKNOWN<br/>open: not_checked\"}\n"
                   "    class t0e3 unknown\n"
                   "  end\n"
                   "  classDef fault "));
}

TEST_F(GraphCommandTest, OpenPsaHasAGateForEachPlaceAndABasicEventForEachId)
{
    Trees(TreeXml("Tag").Tree("T", Or({Basic("A", {"Label", "", "", ""}), Basic("A"),
        Intermediate("A", And({Basic("A"), Xml("House").TextChild("ID", "U")})), Intermediate("HOT", And({Basic("A")})),
        Intermediate("EMPTY", And({}))})));
    EXPECT_EQ(Graph({"--format", "openpsa"}), R"(<?xml version="1.0" encoding="UTF-8"?>
<opsa-mef>
  <define-fault-tree name="T">
    <define-gate name="T">
      <or>
        <basic-event name="A"/>
        <gate name="A-2"/>
        <gate name="HOT"/>
        <gate name="EMPTY"/>
      </or>
    </define-gate>
    <define-gate name="A-2">
      <attributes>
        <attribute name="event-id" value="A"/>
      </attributes>
      <and>
        <basic-event name="A"/>
        <basic-event name="U"/>
      </and>
    </define-gate>
    <define-gate name="HOT">
      <attributes>
        <attribute name="observable" value="true"/>
      </attributes>
      <basic-event name="A"/>
    </define-gate>
    <define-gate name="EMPTY">
      <constant value="true"/>
    </define-gate>
  </define-fault-tree>
  <model-data>
    <define-basic-event name="A">
      <label>Label</label>
    </define-basic-event>
    <define-basic-event name="U">
      <attributes>
        <attribute name="flavor" value="undeveloped"/>
      </attributes>
    </define-basic-event>
  </model-data>
</opsa-mef>
)");
}

TEST_F(GraphCommandTest, HostileTextsBreakNoFormat)
{
    Trees(TreeXml("Tag").Tree(HOSTILE, Or({Basic(HOSTILE, {HOSTILE, "", "", ""}),
        Basic("\x01\xFF", {"\x7F", "", "", ""}), Intermediate("", And({Basic(HOSTILE)}))})));
    const std::string read = "import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.stdin.buffer)";
    const auto xml = RunProcess({"python3", "-c", read}, {Graph({"--format", "openpsa"}), {}, ""});
    EXPECT_EQ(xml.status, 0) << xml.err;
    EXPECT_THAT(Graph({"--format", "mermaid"}), Not(HasSubstr("<script")));
    if (RunProcess({"sh", "-c", "command -v dot"}).status == 0) {
        const auto svg = RunProcess({"python3", "-c", read}, {Graph({"--format", "svg"}), {}, ""});
        EXPECT_EQ(svg.status, 0) << svg.err;
    }
}

TEST_F(GraphCommandTest, SvgIsDrawnByGraphviz)
{
    if (RunProcess({"sh", "-c", "command -v dot"}).status != 0) {
        GTEST_SKIP() << "Graphviz is not installed";
    }
    EXPECT_THAT(Graph({"--format", "svg"}), AllOf(HasSubstr("<svg "), HasSubstr(">HOT</text>"), EndsWith("</svg>\n")));
}

TEST_F(GraphCommandTest, WithoutGraphvizSvgSaysWhatToDo)
{
    const auto result = RunArborist({"graph", "b", "--format", "svg"}, {"", {{"PATH", mDir.Path()}}, ""});
    EXPECT_THAT(result.err, AllOf(StartsWith("arborist: b: --format svg needs Graphviz's program dot, which is not "
        "installed"), EndsWith("[no_graphviz]\n")));
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.status, 2);
}

TEST_F(GraphCommandTest, AnUnknownFormatIsWrongUse)
{
    EXPECT_EQ(RunArborist({"graph", "b", "--format", "png"}).status, 2);
}

} // namespace
