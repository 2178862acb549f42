#include "diagnosis/drawing/dot.h"

#include "diagnosis/drawing/event_label.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {


constexpr char HEAD[] =
    "digraph arborist {\n"
    "  graph [rankdir=TB, fontname=\"Helvetica,Arial,sans-serif\", labeljust=l, color=\"#c3c7cf\"];\n"
    "  node [fontname=\"Helvetica,Arial,sans-serif\", fontsize=11, color=\"#5c6270\", fillcolor=white, style=filled];\n"
    "  edge [color=\"#5c6270\", dir=none];\n";

// Escapes entities and backslashes, which Graphviz interprets inside quoted texts.
std::string Quoted(const std::vector<std::string>& lines)
{
    std::string quoted = "\"";
    for (const std::string& line : lines) {
        quoted += quoted.size() == 1 ? "" : "\\n";
        for (const char letter : line) {
            quoted += letter == '"' || letter == '\\' ? "\\" : "";
            quoted += letter == '&' ? "&amp;" : std::string(1, letter);
        }
    }
    return quoted + "\"";
}

const char* Shape(const Evidence::FoldedEvent& event)
{
    switch (event.type) {
    case Evidence::EventType::BASIC:
        return "ellipse";
    case Evidence::EventType::UNDEVELOPED:
        return "diamond";
    case Evidence::EventType::INTERMEDIATE:
        break;
    }
    return event.observable ? "box, peripheries=2" : "box";
}

// Words and line styles show the status, too, not colour alone.
std::string Colours(Evidence::EventState status)
{
    if (Evidence::IsInError(status)) {
        return ", color=\"#a5170c\", fillcolor=\"#fde3df\"";
    }
    return status == Evidence::EventState::UNKNOWN ? ", color=\"#7a5b00\", fillcolor=\"#fff3cd\", style=\"filled,dashed\""
                                          : ", color=\"#5c6270\", fillcolor=\"#f1f3f5\"";
}

std::string Bold(bool isBold)
{
    return isBold ? ", penwidth=3" : "";
}

/// Writes one tree. Node names are made of the numbers of tree and place, as ids may be equal or empty.
class TreeWriter {
public:
    TreeWriter(const DrawnTree& tree, std::size_t number) : mTree(tree), mPrefix("t" + std::to_string(number)) {}

    std::string Text() const
    {
        std::string text = "  subgraph cluster_" + mPrefix + " {\n    label=" + Quoted({TitleOf(mTree)}) + ";\n";
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            text += EventText(place);
        }
        return text + "  }\n";
    }

private:
    std::string EventText(std::size_t place) const
    {
        const DrawnEvent& drawn = mTree.events[place];
        const bool isBold = mTree.hasStatuses && drawn.isOnCausePath;
        std::string text = "    " + Name("e", place) + " [label=" + Quoted(EventLabel(mTree, place))
            + ", shape=" + Shape(*drawn.event) + (mTree.hasStatuses ? Colours(drawn.event->status) : "") + Bold(isBold)
            + "];\n";
        if (drawn.event->gate == Evidence::GateType::NONE) {
            return text;
        }
        const bool isAnd = drawn.event->gate == Evidence::GateType::AND;
        text += "    " + Name("g", place) + (isAnd ? " [label=\"AND\", shape=house" : " [label=\"OR\", shape=hexagon")
            + ", fontsize=9, margin=0.03" + Bold(isBold) + "];\n";
        text += Edge(Name("e", place), Name("g", place), isBold);
        for (const std::size_t child : drawn.children) {
            text += Edge(Name("g", place), Name("e", child), mTree.hasStatuses && mTree.events[child].isOnCausePath);
        }
        return text;
    }

    std::string Name(const char* kind, std::size_t place) const { return mPrefix + kind + std::to_string(place); }

    static std::string Edge(const std::string& from, const std::string& to, bool isBold)
    {
        return "    " + from + " -> " + to + (isBold ? " [penwidth=3, color=\"#a5170c\"];\n" : ";\n");
    }

    const DrawnTree& mTree;
    const std::string mPrefix;
};

} // namespace

std::string Dot(const std::vector<DrawnTree>& trees)
{
    std::string text = HEAD;
    for (std::size_t i = 0; i < trees.size(); ++i) {
        text += TreeWriter(trees[i], i).Text();
    }
    return text + "}\n";
}

} // namespace diagnosis
