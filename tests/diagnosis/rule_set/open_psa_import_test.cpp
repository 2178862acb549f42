#include "diagnosis/rule_set/open_psa/import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/rule_set/open_psa/sizes.h"
#include "diagnosis/rule_source/source_file.h"
#include "diagnosis/rule_source/trees.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::rule_set::open_psa::Import;
using diagnosis::rule_set::open_psa::ImportedTrees;
using diagnosis::rule_set::open_psa::MOST_LEVELS;
using diagnosis::rule_source::EventKind;
using diagnosis::rule_source::GateKind;
using diagnosis::rule_source::SourceFile;
using diagnosis::rule_source::Trees;
using testing::HasSubstr;
using testing::StartsWith;

// "G OR(A, H AND(B, C))"; an undeveloped event ends in "?".
std::string EventText(const Trees& trees, std::size_t index)
{
    const auto& event = trees.events[index];
    std::string text(event.id);
    if (event.kind != EventKind::INTERMEDIATE) {
        return text + (event.kind == EventKind::UNDEVELOPED ? "?" : "");
    }
    std::string children;
    trees.ForEachChild(index, [&](std::size_t child) {
        children += (children.empty() ? "" : ", ") + EventText(trees, child);
    });
    return text + (event.gateKind == GateKind::AND ? " AND(" : " OR(") + children + ")";
}

std::string TreesText(const std::string& treeFile)
{
    const auto file = SourceFile::Of("FaultTrees.xml", treeFile);
    EXPECT_TRUE(file->IsLoaded()) << file->Problem();
    const Trees trees = diagnosis::rule_source::ReadTrees(file->Root().FirstChild("Tag"));
    std::string text;
    for (const auto& tree : trees.trees) {
        EXPECT_TRUE(tree.isKept);
        text += (text.empty() ? "" : "; ") + std::string(tree.id) + ": " + EventText(trees, tree.begin);
    }
    return text;
}

std::string Gate(const std::string& name, const std::string& formula)
{
    return "<define-gate name=\"" + name + "\">" + formula + "</define-gate>\n";
}
std::string To(const std::string& name) { return "<gate name=\"" + name + "\"/>"; }
std::string Leaf(const std::string& name) { return "<basic-event name=\"" + name + "\"/>"; }
std::string Or(const std::string& arguments) { return "<or>" + arguments + "</or>"; }
std::string And(const std::string& arguments) { return "<and>" + arguments + "</and>"; }
std::string AtLeast(const std::string& min, const std::string& arguments)
{
    return "<atleast min=\"" + min + "\">" + arguments + "</atleast>";
}

// A file of one fault tree "T" over the basic events A to E.
std::string Model(const std::string& gates, const std::string& more = "")
{
    std::string basic;
    for (const char* name : {"A", "B", "C", "D", "E"}) {
        basic += std::string("<define-basic-event name=\"") + name + "\"/>\n";
    }
    return "<opsa-mef>\n<define-fault-tree name=\"T\">\n" + gates + "</define-fault-tree>\n<model-data>\n" + basic + more
        + "</model-data>\n</opsa-mef>\n";
}

// The trees that an import makes, or why it fails.
std::string Imported(const std::string& model)
{
    const TempDir dir;
    dir.Write("model.xml", model);
    ImportedTrees imported;
    const auto failure = Import("model.xml", "Tag", imported);
    return failure ? failure->message : TreesText(imported.text);
}

TEST(OpenPsaImport, TurnsGatesIntoEvents)
{
    EXPECT_EQ(Imported(Model(Gate("G", Or(Leaf("A") + To("H"))) + Gate("H", And(Leaf("B") + Leaf("C"))))),
        "T: G OR(A, H AND(B, C))");
}

TEST(OpenPsaImport, WritesSharedGatesOut)
{
    EXPECT_EQ(Imported(Model(Gate("G", And(To("H") + To("I"))) + Gate("H", Or(To("I") + Leaf("A")))
                  + Gate("I", Or(Leaf("B") + Leaf("C"))))),
        "T: G AND(H OR(I OR(B, C), A), I OR(B, C))");
}

TEST(OpenPsaImport, WritesKOfNAsAnOrOfAnds)
{
    EXPECT_EQ(Imported(Model(Gate("G", AtLeast("2", Leaf("A") + Leaf("B") + Leaf("C"))))),
        "T: G OR(G_1 AND(A, B), G_2 AND(A, C), G_3 AND(B, C))");
    EXPECT_EQ(Imported(Model(Gate("G", AtLeast("1", Leaf("A") + Leaf("B"))))), "T: G OR(A, B)");
    EXPECT_EQ(Imported(Model(Gate("G", AtLeast("2", Leaf("A") + Leaf("B"))))), "T: G AND(A, B)");
}

TEST(OpenPsaImport, NamesPartsOfFormulasThatHaveNoNameAndTakesNoneThatIsTaken)
{
    EXPECT_EQ(Imported(Model(Gate("G", Or(And(Leaf("A") + Leaf("B")) + And(Leaf("C") + To("G_1"))))
                  + Gate("G_1", Or(Leaf("D"))))),
        "T: G OR(G_2 AND(A, B), G_3 AND(C, G_1 OR(D)))");
}

TEST(OpenPsaImport, TakesAFormulaOfOneReferenceAndEventsOfAnyKind)
{
    EXPECT_EQ(Imported(Model(Gate("G", To("H")) + Gate("H", Or("<event name=\"I\"/><event name=\"A\"/>"))
                  + Gate("I", "<event name=\"B\" type=\"basic-event\"/>"))),
        "T: G OR(H OR(I OR(B), A))");
}

TEST(OpenPsaImport, MakesATreeOfEachGateThatNoOtherNames)
{
    EXPECT_EQ(Imported(Model(Gate("G", Or(Leaf("A"))) + Gate("H", Or(Leaf("B"))))), "T_G: G OR(A); T_H: H OR(B)");
    EXPECT_EQ(Imported("<opsa-mef><define-fault-tree name=\"T\"><define-gate name=\"G\"><or><gate name=\"H\"/></or></define-gate>"
                       "</define-fault-tree><define-fault-tree name=\"U\"><define-gate name=\"H\"><basic-event name=\"A\"/>"
                       "</define-gate><define-basic-event name=\"A\"/></define-fault-tree></opsa-mef>"),
        "T: G OR(H OR(A))");
}

TEST(OpenPsaImport, KeepsLabelsUndevelopedEventsAndNamesThatWereEscaped)
{
    const TempDir dir;
    dir.Write("model.xml", Model(Gate("G_x2D1", "<label>Too &lt;hot&gt;</label>" + Or(Leaf("U"))),
        "<define-basic-event name=\"U\"><label>u</label><attributes><attribute name=\"flavor\" value=\"undeveloped\"/>"
        "</attributes></define-basic-event>"));
    ImportedTrees imported;
    ASSERT_FALSE(Import("model.xml", "Tag", imported));
    EXPECT_EQ(TreesText(imported.text), "T: G-1 OR(U?)");
    EXPECT_THAT(imported.text, HasSubstr("<Name>Too &lt;hot&gt;</Name>"));
    EXPECT_EQ(imported.withProbabilities, 0U);
}

TEST(OpenPsaImport, CountsTheProbabilitiesThatItLeavesOut)
{
    const TempDir dir;
    dir.Write("model.xml", Model(Gate("G", Leaf("P")), "<define-basic-event name=\"P\"><float value=\"0.1\"/></define-basic-event>"
        "<define-parameter name=\"x\"><float value=\"0.1\"/></define-parameter>"));
    ImportedTrees imported;
    ASSERT_FALSE(Import("model.xml", "Tag", imported));
    EXPECT_EQ(imported.withProbabilities, 2U);
}

// ---- What is refused, with file and line: gates begin in line 3. ----

struct Refusal {
    const char* name;
    std::string model;
    std::string message;
};
void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.name; }
class OpenPsaRefusal : public testing::TestWithParam<Refusal> {};

TEST_P(OpenPsaRefusal, NamesTheLine)
{
    EXPECT_THAT(Imported(GetParam().model), StartsWith(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Table, OpenPsaRefusal, testing::Values(
    Refusal{"OtherFormula", Model(Gate("G", Or(Leaf("A") + "\n<not>" + Leaf("B") + "</not>"))),
        "model.xml:4: \"not\" can't be imported"},
    Refusal{"Constant", Model(Gate("G", "<constant value=\"true\"/>")), "model.xml:3: \"constant\" can't be imported"},
    Refusal{"HouseEvent", Model(Gate("G", Or("<house-event name=\"H\"/>"))), "model.xml:3: \"house-event\" can't be imported"},
    Refusal{"TypeOfEvent", Model(Gate("G", Or("<event name=\"H\" type=\"house-event\"/>"))),
        "model.xml:3: an event of the type \"house-event\" can't be imported"},
    Refusal{"EventTree", "<opsa-mef>\n<define-event-tree name=\"X\"/></opsa-mef>",
        "model.xml:2: \"define-event-tree\" can't be imported"},
    Refusal{"Component", Model("<define-component name=\"X\"/>"), "model.xml:3: \"define-component\" can't be imported"},
    Refusal{"HouseDefinition", Model(Gate("G", Leaf("A")), "<define-house-event name=\"X\"/>"),
        "model.xml:11: \"define-house-event\" can't be imported"},
    Refusal{"UnknownGate", Model(Gate("G", Or(Leaf("A") + "\n" + To("X")))), "model.xml:4: no gate \"X\" is defined"},
    Refusal{"UnknownBasicEvent", Model(Gate("G", Or(Leaf("X")))), "model.xml:3: no basic event \"X\" is defined"},
    Refusal{"GateThatIsABasicEvent", Model(Gate("G", Or(To("A")))), "model.xml:3: no gate \"A\" is defined"},
    Refusal{"GateOfItself", Model(Gate("G", Or(To("G")))), "model.xml:3: the gate \"G\" is part of itself"},
    Refusal{"Circle", Model(Gate("G", Or(To("H"))) + Gate("H", And(To("I") + Leaf("A"))) + Gate("I", Or(To("H")))),
        "model.xml:4: the gate \"H\" is part of itself"},
    Refusal{"CircleBesideATree", Model(Gate("G", Or(Leaf("A"))) + Gate("H", Or(To("H")))),
        "model.xml:4: the gate \"H\" is part of itself"},
    Refusal{"SecondGate", Model(Gate("G", Leaf("A")) + Gate("G", Leaf("B"))), "model.xml:4: \"G\" is defined already in line 3"},
    Refusal{"GateNamedAsAnEvent", Model(Gate("A", Leaf("B"))), "model.xml:6: \"A\" is defined already in line 3"},
    Refusal{"NoFormula", Model(Gate("G", "<label>x</label>")), "model.xml:3: the gate \"G\" needs one formula"},
    Refusal{"TwoFormulas", Model(Gate("G", Leaf("A") + Leaf("B"))), "model.xml:3: the gate \"G\" needs one formula"},
    Refusal{"NoArguments", Model(Gate("G", Or(""))), "model.xml:3: \"or\" has no arguments"},
    Refusal{"NoMin", Model(Gate("G", "<atleast>" + Leaf("A") + "</atleast>")), "model.xml:3: \"min\" must be a number from 1 to"},
    Refusal{"MinAboveN", Model(Gate("G", AtLeast("3", Leaf("A") + Leaf("B")))), "model.xml:3: \"min\" must be"},
    Refusal{"MinOfZero", Model(Gate("G", AtLeast("0", Leaf("A")))), "model.xml:3: \"min\" must be"},
    Refusal{"MinWithMore", Model(Gate("G", AtLeast("1x", Leaf("A")))), "model.xml:3: \"min\" must be"},
    Refusal{"NoName", Model("<define-gate>" + Leaf("A") + "</define-gate>"), "model.xml:3: \"define-gate\" lacks a name"},
    Refusal{"OtherRoot", "<html/>", "model.xml:1: the root must be \"opsa-mef\""},
    Refusal{"NoGate", Model(""), "model.xml: it defines no gate"},
    Refusal{"NoXml", "<opsa-mef>\n</x>", "model.xml:1: mismatched element"}),
    CaseName());

TEST(OpenPsaImport, RefusesAMissingFile)
{
    const TempDir dir;
    ImportedTrees imported;
    EXPECT_EQ(Import("nowhere.xml", "Tag", imported)->message, "nowhere.xml: there is no such file");
}

// ---- Sizes. ----

// Each gate names the next one twice.
std::string Doubling(int gates)
{
    std::string text;
    for (int gate = 0; gate < gates; ++gate) {
        const std::string next = To("G" + std::to_string(gate + 1));
        text += Gate("G" + std::to_string(gate), And(next + next));
    }
    return text + Gate("G" + std::to_string(gates), Or(Leaf("A")));
}

TEST(OpenPsaImport, RefusesTreesThatGrowBeyondALimitWithoutBuildingThem)
{
    EXPECT_THAT(Imported(Model(Doubling(40))), StartsWith("model.xml:3: the tree of the gate \"G0\" and those before it have "
        "more than 100000 events when written out"));
    std::string leaves;
    for (int i = 0; i < 60; ++i) {
        leaves += Leaf("A");
    }
    EXPECT_THAT(Imported(Model(Gate("G", AtLeast("30", leaves)))), HasSubstr("more than 100000 events"));
    EXPECT_THAT(Imported(Model(Doubling(8))), StartsWith("T: G0 AND("));
}

std::string Chain(std::size_t gates)
{
    std::string text;
    for (std::size_t gate = 1; gate < gates; ++gate) {
        text += Gate("G" + std::to_string(gate), To("G" + std::to_string(gate + 1)));
    }
    return text + Gate("G" + std::to_string(gates), Leaf("A"));
}

// The import of the deepest tree is loaded by the library's own rules, in Imported.
TEST(OpenPsaImport, RefusesTreesThatATreeFileCannotHold)
{
    EXPECT_THAT(Imported(Model(Chain(MOST_LEVELS - 1))), StartsWith("T: G1 OR(G2 OR("));
    EXPECT_EQ(Imported(Model(Chain(MOST_LEVELS))),
        "model.xml:3: the tree of the gate \"G1\" has more than 47 levels, which a tree file can't hold");
    EXPECT_THAT(Imported(Model(Chain(20000))), HasSubstr("has more than 47 levels"));
}

// The size that is told beforehand is that of what is written.
TEST(OpenPsaImport, CountsEventsAsItWritesThem)
{
    using namespace diagnosis::rule_set::open_psa;
    const TempDir dir;
    dir.Write("model.xml", ::Model(Gate("G", AtLeast("2", Leaf("A") + Leaf("B") + Or(Leaf("C") + To("H")) + Leaf("D")))
        + Gate("H", AtLeast("2", Leaf("A") + Leaf("B") + Leaf("C"))) + Gate("I", To("G"))));
    diagnosis::rule_set::open_psa::Model model;
    ASSERT_FALSE(ReadModel("model.xml", model));
    ImportedTrees imported;
    ASSERT_FALSE(Import("model.xml", "Tag", imported));
    const auto file = SourceFile::Of("FaultTrees.xml", imported.text);
    EXPECT_EQ(SizesOf(model)[2].events, diagnosis::rule_source::ReadTrees(file->Root().FirstChild("Tag")).events.size());
}

} // namespace
