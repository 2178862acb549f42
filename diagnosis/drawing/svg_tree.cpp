#include "diagnosis/drawing/svg_tree.h"

#include <algorithm>

#include "diagnosis/drawing/event_label.h"
#include "diagnosis/drawing/svg_parts.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {


constexpr std::size_t MOST_PLACES = 200;
constexpr std::size_t MOST_DEPTH = 9;

// In pixels; all even, so that halves are whole numbers.
constexpr int MARGIN = 4;
constexpr int BOX_WIDTH = 200;
constexpr int LINE_HEIGHT = 16;
constexpr int BOX_PADDING = 8;
constexpr int ROW_GAP = 12;
constexpr int GATE_GAP = 14;
constexpr int GATE_SIZE = 36;
constexpr int FAN_WIDTH = 32;
constexpr int SYMBOL_SIZE = 18;
constexpr int COLUMN = BOX_WIDTH + GATE_GAP + GATE_SIZE + FAN_WIDTH;

constexpr std::size_t ID_WIDTH = 22;
constexpr std::size_t NAME_WIDTH = 30;

std::string Number(int number)
{
    return std::to_string(number);
}

struct Label {
    std::vector<std::string> id;
    std::vector<std::string> name;
    /// Empty for a check that is not open.
    std::string open;

    std::size_t Lines() const { return id.size() + name.size() + (open.empty() ? 1 : 2); }
};

class TreePicture {
public:
    explicit TreePicture(const DrawnTree& tree) : mTree(tree)
    {
        for (std::size_t place = 0; place < tree.events.size(); ++place) {
            const Evidence::FoldedEvent& event = *tree.events[place].event;
            mLabels.push_back({Wrapped(ShownId(event.id), ID_WIDTH, 2), Wrapped(event.name, NAME_WIDTH, 2),
                OpenWords(tree, place)});
            mLines = std::max(mLines, mLabels.back().Lines());
            mDepth = std::max(mDepth, event.depth);
        }
        Place();
    }

    int TopEventHeight() const { return mMiddles.front(); }

    std::string Text() const
    {
        const int width = 2 * MARGIN + static_cast<int>(mDepth) * COLUMN + BOX_WIDTH + SYMBOL_SIZE;
        const int height = 2 * MARGIN + mRows * RowHeight() - ROW_GAP;
        std::string text = SvgStart("", Description(), width, height);
        for (const bool isBold : {false, true}) { // draws the paths of root causes on top
            for (std::size_t place = 0; place < mTree.events.size(); ++place) {
                text += LinesBelow(place, isBold);
            }
        }
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            text += Gate(place) + Event(place);
        }
        return text + "</svg>\n";
    }

private:
    int BoxHeight() const { return static_cast<int>(mLines) * LINE_HEIGHT + 2 * BOX_PADDING; }
    int RowHeight() const { return BoxHeight() + ROW_GAP; }
    int Left(std::size_t place) const { return MARGIN + static_cast<int>(mTree.events[place].event->depth) * COLUMN; }
    int GateLeft(std::size_t place) const { return Left(place) + BOX_WIDTH + GATE_GAP; }
    bool IsBold(std::size_t place) const { return mTree.hasStatuses && mTree.events[place].isOnCausePath; }

    // Puts each leaf in the next row, and every other event in the middle of its children. As children follow their
    // parents, the second pass goes backwards.
    void Place()
    {
        mMiddles.resize(mTree.events.size());
        for (std::size_t place = 0; place < mTree.events.size(); ++place) {
            if (mTree.events[place].children.empty()) {
                mMiddles[place] = MARGIN + mRows++ * RowHeight() + BoxHeight() / 2;
            }
        }
        for (std::size_t place = mTree.events.size(); place-- > 0;) {
            const std::vector<std::size_t>& children = mTree.events[place].children;
            if (!children.empty()) {
                mMiddles[place] = (mMiddles[children.front()] + mMiddles[children.back()]) / 2;
            }
        }
    }

    std::string Description() const
    {
        std::string text = "Fault tree " + mTree.report->Id() + " with " + std::to_string(mTree.events.size()) + " events.";
        for (const DrawnEvent& drawn : mTree.events) {
            text += drawn.isRootCause ? " Root cause: " + ShownId(drawn.event->id) + "." : "";
        }
        return text + " The same events stand in the list below.";
    }

    std::string LinesBelow(std::size_t place, bool isBold) const
    {
        const char* style = isBold ? "\" class=\"line path\"/>\n" : "\" class=\"line\"/>\n";
        std::string text;
        if (mTree.events[place].event->gate == Evidence::GateType::NONE) {
            return text;
        }
        if (IsBold(place) == isBold) {
            text += "<path d=\"M" + Number(Left(place) + BOX_WIDTH) + " " + Number(mMiddles[place]) + "H"
                + Number(GateLeft(place)) + style;
        }
        for (const std::size_t child : mTree.events[place].children) {
            if (IsBold(child) == isBold) {
                const int right = GateLeft(place) + GATE_SIZE;
                text += "<path d=\"M" + Number(right - 6) + " " + Number(mMiddles[place]) + "H"
                    + Number(right + FAN_WIDTH / 2) + "V" + Number(mMiddles[child]) + "H" + Number(Left(child)) + style;
            }
        }
        return text;
    }

    std::string Gate(std::size_t place) const
    {
        const Evidence::GateType kind = mTree.events[place].event->gate;
        if (kind == Evidence::GateType::NONE) {
            return "";
        }
        const bool isAnd = kind == Evidence::GateType::AND;
        return "<g class=\"gate" + std::string(IsBold(place) ? " path" : "") + "\" transform=\"translate("
            + Number(GateLeft(place)) + " " + Number(mMiddles[place] - GATE_SIZE / 2) + ")\"><path d=\""
            + (isAnd ? "M36 0H18A18 18 0 0 0 18 36H36Z" : "M36 0Q28 18 36 36Q12 36 0 18Q12 0 36 0Z")
            + "\"/><text x=\"19\" y=\"22\">" + (isAnd ? "AND" : "OR") + "</text></g>\n";
    }

    std::string Event(std::size_t place) const
    {
        const DrawnEvent& drawn = mTree.events[place];
        std::string text = "<g class=\"event " + std::string(StatusClass(mTree, place)) + (IsBold(place) ? " path" : "")
            + "\" transform=\"translate(" + Number(Left(place)) + " " + Number(mMiddles[place] - BoxHeight() / 2)
            + ")\">" + Box(0) + (drawn.event->observable ? Box(4) : "") + Symbol(drawn.event->type);
        int line = BOX_PADDING + LINE_HEIGHT - 4;
        for (const std::string& words : mLabels[place].id) {
            text += Line(words, "id", line);
        }
        for (const std::string& words : mLabels[place].name) {
            text += Line(words, "name", line);
        }
        text += mTree.hasStatuses ? Line(StatusWords(mTree, place), "status", line) : "";
        const std::string& open = mLabels[place].open;
        return text + (open.empty() ? "" : Line(open, "open", line)) + "</g>\n";
    }

    std::string Box(int inset) const
    {
        return "<rect x=\"" + Number(inset) + "\" y=\"" + Number(inset) + "\" width=\"" + Number(BOX_WIDTH - 2 * inset)
            + "\" height=\"" + Number(BoxHeight() - 2 * inset) + "\" rx=\"3\"/>";
    }

    std::string Symbol(Evidence::EventType kind) const
    {
        const int middle = BoxHeight() / 2;
        if (kind == Evidence::EventType::BASIC) {
            return "<circle cx=\"" + Number(BOX_WIDTH + 9) + "\" cy=\"" + Number(middle) + "\" r=\"8\"/>";
        }
        return kind == Evidence::EventType::INTERMEDIATE ? ""
                                                  : "<path d=\"M" + Number(BOX_WIDTH) + " " + Number(middle)
                + "l9 -10l9 10l-9 10Z\"/>";
    }

    static std::string Line(const std::string& words, const char* style, int& line)
    {
        const std::string text = "<text class=\"" + std::string(style) + "\" x=\"10\" y=\"" + Number(line) + "\">"
            + Markup(words) + "</text>";
        line += LINE_HEIGHT;
        return text;
    }

    const DrawnTree& mTree;
    std::vector<Label> mLabels;
    std::vector<int> mMiddles;
    std::size_t mLines = 1;
    std::size_t mDepth = 0;
    int mRows = 0;
};

bool IsTooLarge(const DrawnTree& tree)
{
    return tree.events.size() > MOST_PLACES || std::any_of(tree.events.begin(), tree.events.end(),
        [](const DrawnEvent& drawn) { return drawn.event->depth > MOST_DEPTH; });
}

} // namespace

SvgPicture SvgTree(const DrawnTree& tree)
{
    if (tree.events.empty() || IsTooLarge(tree)) {
        return {};
    }
    const TreePicture picture(tree);
    return {picture.Text(), picture.TopEventHeight()};
}

} // namespace diagnosis
