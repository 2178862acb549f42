#include <map>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>
#include <tinyxml2.h>

#include "diagnosis/drawing/event_label.h"
#include "diagnosis/drawing/mermaid.h"
#include "diagnosis/drawing/open_psa.h"
#include "diagnosis/text/escaped_name.h"

namespace {

using diagnosis::DetectionReport;
using diagnosis::DrawnTree;
using diagnosis::RecordedEvent;
using Truth = std::map<std::string, bool>;

// Ids that a format could mistake for its own syntax, for another id, or for a generated name.
const std::vector<std::string> IDS{"A", "A-2", "A_x2D2", "a", "", " ", "2", "_", "_x", "_x_", "x.y", "x y", "end", "t0e0",
    "\"]", "#quot;", "#34;", "</gate>", "&amp;", "'", "\\", "\xC3\xA4", "\xFF", "\n", "--", "A--B", "class", "%%{init}%%"};

/// Trees with few ids, many of them hostile, so that ids repeat within a tree and among trees.
class RandomReport {
public:
    explicit RandomReport(unsigned seed) : mRandom(seed) {}

    DetectionReport Make()
    {
        DetectionReport report;
        for (unsigned count = 1 + Below(3); count > 0; --count) {
            report.trees.push_back({std::make_shared<FaultTreeResult>(Id()), {}, {}});
            Add(report.trees.back().tree, RecordedEvent::NONE, 0);
        }
        return report;
    }

    unsigned Below(unsigned end) { return static_cast<unsigned>(mRandom() % end); }

private:
    std::string Id() { return IDS[Below(static_cast<unsigned>(IDS.size()))]; }

    void Add(diagnosis::RecordedTree& tree, std::size_t parent, std::size_t depth)
    {
        const bool isLeaf = depth > 0 && (depth == 4 || Below(2) == 0);
        const auto kind = !isLeaf ? Evidence::EventType::INTERMEDIATE
            : Below(5) == 0       ? Evidence::EventType::UNDEVELOPED
                                  : Evidence::EventType::BASIC;
        const auto gate = isLeaf ? Evidence::GateType::NONE : Below(2) == 0 ? Evidence::GateType::OR : Evidence::GateType::AND;
        const auto status = static_cast<Evidence::EventState>(Below(4));
        const std::size_t place = tree.events.size();
        tree.events.push_back({{depth, kind, gate, Id(), Id(), "", status, !isLeaf && Below(4) == 0}, parent});
        for (unsigned count = isLeaf ? 0 : Below(4); count > 0; --count) {
            Add(tree, place, depth + 1);
        }
        tree.events[place].end = tree.events.size();
    }

    std::mt19937 mRandom;
};

// ---- Open-PSA. ----

/// The definitions that a tool reads from a model; each name must be unique.
class Model {
public:
    explicit Model(const std::string& text)
    {
        EXPECT_EQ(mDocument.Parse(text.c_str(), text.size()), tinyxml2::XML_SUCCESS) << mDocument.ErrorStr();
        const auto* model = mDocument.RootElement();
        for (const auto* tree = model->FirstChildElement("define-fault-tree"); tree != nullptr;
             tree = tree->NextSiblingElement("define-fault-tree")) {
            EXPECT_TRUE(trees.insert(Name(*tree)).second) << Name(*tree);
            tops.push_back(Name(*tree->FirstChildElement("define-gate")));
            for (const auto* gate = tree->FirstChildElement("define-gate"); gate != nullptr;
                 gate = gate->NextSiblingElement("define-gate")) {
                EXPECT_TRUE(gates.emplace(Name(*gate), gate).second) << Name(*gate);
            }
        }
        const auto* basic = model->FirstChildElement("model-data")->FirstChildElement("define-basic-event");
        for (; basic != nullptr; basic = basic->NextSiblingElement("define-basic-event")) {
            EXPECT_TRUE(basics.insert(Name(*basic)).second) << Name(*basic);
        }
    }

    static std::string Name(const tinyxml2::XMLElement& element)
    {
        const char* const name = element.Attribute("name");
        static const std::regex allowed("[A-Za-z_][A-Za-z0-9_]*(-[A-Za-z0-9_]+)*");
        EXPECT_TRUE(name != nullptr && std::regex_match(name, allowed)) << (name == nullptr ? "none" : name);
        return name == nullptr ? "" : name;
    }

    /// The formula of a gate, behind its label and attributes.
    static const tinyxml2::XMLElement* FormulaOf(const tinyxml2::XMLElement& gate)
    {
        const tinyxml2::XMLElement* formula = gate.FirstChildElement();
        while (formula != nullptr && (std::string(formula->Name()) == "label" || std::string(formula->Name()) == "attributes")) {
            formula = formula->NextSiblingElement();
        }
        EXPECT_TRUE(formula != nullptr && formula->NextSiblingElement() == nullptr);
        return formula;
    }

    void NoteReferences(const tinyxml2::XMLElement& formula, std::map<std::string, int>& counts) const
    {
        const std::string kind = formula.Name();
        if (kind == "gate") {
            EXPECT_EQ(gates.count(Name(formula)), 1U) << Name(formula);
            ++counts[Name(formula)];
        } else if (kind == "basic-event") {
            EXPECT_EQ(basics.count(Name(formula)), 1U) << Name(formula);
            ++counts[Name(formula)];
        } else if (kind == "and" || kind == "or") {
            std::set<std::string> arguments;
            for (const auto* argument = formula.FirstChildElement(); argument != nullptr;
                 argument = argument->NextSiblingElement()) {
                EXPECT_TRUE(arguments.insert(Name(*argument)).second) << "twice in one gate";
                NoteReferences(*argument, counts);
            }
            EXPECT_GE(arguments.size(), 2U);
        } else {
            EXPECT_EQ(kind, "constant");
        }
    }

    bool Holds(const tinyxml2::XMLElement& formula, const Truth& truth) const
    {
        const std::string kind = formula.Name();
        if (kind == "gate") {
            return Holds(*FormulaOf(*gates.at(Name(formula))), truth);
        }
        if (kind == "basic-event") {
            return truth.at(Name(formula));
        }
        if (kind == "constant") {
            return formula.BoolAttribute("value");
        }
        bool holds = kind == "and";
        for (const auto* argument = formula.FirstChildElement(); argument != nullptr;
             argument = argument->NextSiblingElement()) {
            holds = kind == "and" ? holds && Holds(*argument, truth) : holds || Holds(*argument, truth);
        }
        return holds;
    }

    std::set<std::string> trees;
    std::vector<std::string> tops;
    std::map<std::string, const tinyxml2::XMLElement*> gates;
    std::set<std::string> basics;

private:
    tinyxml2::XMLDocument mDocument;
};

// The value of the tree itself, computed gate by gate.
bool Holds(const DrawnTree& tree, std::size_t place, const Truth& truth)
{
    const auto& event = *tree.events[place].event;
    if (event.type != Evidence::EventType::INTERMEDIATE) {
        return truth.at(diagnosis::EscapedName(event.id));
    }
    const bool isAnd = event.gate == Evidence::GateType::AND;
    bool holds = isAnd;
    for (const std::size_t child : tree.events[place].children) {
        holds = isAnd ? holds && Holds(tree, child, truth) : holds || Holds(tree, child, truth);
    }
    return holds;
}

TEST(OpenPsaStructureTest, DefinesOnceAllThatItRefersToAndMeansTheTree)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomReport random(seed);
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
        const DetectionReport report = random.Make();
        const std::vector<DrawnTree> trees = diagnosis::DrawTrees(report, true, "");
        const Model model(diagnosis::OpenPsa(trees));
        std::map<std::string, int> references;
        for (const auto& [name, gate] : model.gates) {
            EXPECT_EQ(model.basics.count(name), 0U) << "both a gate and a basic event: " << name;
            model.NoteReferences(*Model::FormulaOf(*gate), references);
        }
        for (const auto& [name, gate] : model.gates) {
            const bool isTop = std::find(model.tops.begin(), model.tops.end(), name) != model.tops.end();
            EXPECT_EQ(references[name], isTop ? 0 : 1) << name;
        }
        for (const std::string& name : model.basics) {
            EXPECT_GE(references[name], 1) << name;
        }
        ASSERT_EQ(model.tops.size(), trees.size());
        for (int sample = 0; sample < 10; ++sample) {
            Truth truth;
            for (const std::string& name : model.basics) {
                truth[name] = random.Below(2) == 0;
            }
            for (std::size_t tree = 0; tree < trees.size(); ++tree) {
                EXPECT_EQ(model.Holds(*Model::FormulaOf(*model.gates.at(model.tops[tree])), truth),
                    Holds(trees[tree], 0, truth));
            }
        }
    }
}

TEST(OpenPsaStructureTest, DifferentIdsHaveDifferentNames)
{
    std::set<std::string> names;
    for (const std::string& id : IDS) {
        EXPECT_TRUE(names.insert(diagnosis::EscapedName(id)).second) << id;
    }
}

// ---- Mermaid. ----

// A quoted text as Mermaid shows it, with lines joined by "|".
std::string Shown(const std::string& quoted)
{
    std::string text;
    for (std::size_t at = 0; at < quoted.size(); ++at) {
        if (quoted.compare(at, 5, "<br/>") == 0) {
            text += '|';
            at += 4;
        } else if (quoted[at] == '#') {
            const auto end = quoted.find(';', at);
            text += static_cast<char>(std::stoi(quoted.substr(at + 1, end - at - 1)));
            at = end;
        } else {
            text += quoted[at];
        }
    }
    return text;
}

std::string Joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (std::size_t line = 0; line < lines.size(); ++line) {
        text += (line == 0 ? "" : "|") + lines[line];
    }
    return text;
}

/// A flow chart, parsed line by line; every line must be of a known kind.
struct Chart {
    explicit Chart(const std::string& text)
    {
        const std::string label = "\"((?:[^\"#<>\\[\\]{}|`]|#[0-9]+;|<br/>)*)\"";
        const std::regex tree("  subgraph (t\\d+)\\[" + label + "\\]");
        const std::regex event("    (t\\d+e\\d+)(?:\\(\\[|\\[\\[|\\[|\\{)" + label + "(?:\\]\\)|\\]\\]|\\]|\\})");
        const std::regex gate("    (t\\d+g\\d+)(?:\\[/\"AND\"\\\\\\]|\\{\\{\"OR\"\\}\\})");
        const std::regex edge("    (t\\d+[eg]\\d+) (?:===|---) (t\\d+[eg]\\d+)");
        const std::regex styled("    class (t\\d+e\\d+) ([a-z]+)");
        const std::regex style("  classDef ([a-z]+) [a-z0-9:,# -]+");
        std::istringstream lines(text);
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, "flowchart TD");
        std::smatch parts;
        while (std::getline(lines, line)) {
            if (std::regex_match(line, parts, tree)) {
                trees.push_back(Shown(parts[2]));
                ++open;
            } else if (line == "  end") {
                --open;
            } else if (std::regex_match(line, parts, event)) {
                EXPECT_TRUE(events.emplace(parts[1], Shown(parts[2])).second) << line;
            } else if (std::regex_match(line, parts, gate)) {
                EXPECT_TRUE(gates.insert(parts[1]).second) << line;
            } else if (std::regex_match(line, parts, edge)) {
                edges.emplace_back(parts[1], parts[2]);
            } else if (std::regex_match(line, parts, styled)) {
                classes.emplace_back(parts[1], parts[2]);
            } else if (std::regex_match(line, parts, style)) {
                styles.insert(parts[1]);
            } else {
                ADD_FAILURE() << "no line of a flow chart: " << line;
            }
        }
    }

    bool Has(const std::string& node) const { return events.count(node) + gates.count(node) == 1; }

    std::vector<std::string> trees;
    std::map<std::string, std::string> events;
    std::set<std::string> gates;
    std::vector<std::pair<std::string, std::string>> edges;
    std::vector<std::pair<std::string, std::string>> classes;
    std::set<std::string> styles;
    int open = 0;
};

TEST(MermaidStructureTest, NodesAreDefinedOnceAndSayWhatTheEventsSay)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomReport random(seed);
    for (int round = 0; round < 100 && !testing::Test::HasFailure(); ++round) {
        const DetectionReport report = random.Make();
        const std::vector<DrawnTree> trees = diagnosis::DrawTrees(report, random.Below(4) != 0, "");
        const Chart chart(diagnosis::Mermaid(trees));
        EXPECT_EQ(chart.open, 0);
        ASSERT_EQ(chart.trees.size(), trees.size());
        std::size_t nodes = 0;
        for (std::size_t tree = 0; tree < trees.size(); ++tree) {
            EXPECT_EQ(chart.trees[tree], diagnosis::ShownId(trees[tree].report->Id()));
            for (std::size_t place = 0; place < trees[tree].events.size(); ++place) {
                const std::string name = "t" + std::to_string(tree) + "e" + std::to_string(place);
                EXPECT_EQ(chart.events.at(name), Joined(diagnosis::EventLabel(trees[tree], place)));
                ++nodes;
            }
        }
        EXPECT_EQ(chart.events.size(), nodes);
        EXPECT_EQ(chart.edges.size(), nodes - trees.size() + chart.gates.size()) << "one above each event and gate";
        for (const auto& [from, to] : chart.edges) {
            EXPECT_TRUE(chart.Has(from) && chart.Has(to)) << from << " to " << to;
        }
        for (const auto& [node, style] : chart.classes) {
            EXPECT_EQ(chart.events.count(node), 1U);
            EXPECT_EQ(chart.styles.count(style), 1U) << style;
        }
    }
}

} // namespace
