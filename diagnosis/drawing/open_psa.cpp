#include "diagnosis/drawing/open_psa.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "diagnosis/text/escaped_name.h"
#include "diagnosis/text/markup.h"

namespace diagnosis {

namespace {

std::string LabelText(const std::string& indent, const std::string& label)
{
    return label.empty() ? "" : indent + "<label>" + Markup(label) + "</label>\n";
}

using Attributes = std::vector<std::pair<std::string, std::string>>;

std::string AttributesText(const std::string& indent, const Attributes& attributes)
{
    std::string text;
    for (const auto& [name, value] : attributes) {
        text += indent + "  <attribute name=\"" + name + "\" value=\"" + Markup(value) + "\"/>\n";
    }
    return text.empty() ? "" : indent + "<attributes>\n" + text + indent + "</attributes>\n";
}

/// Gives each gate and tree a unique name: its id, with "-2", "-3" and so on from the second of the same id.
class NameBook {
public:
    /// Basic events are named first, as one name serves for all places of an id.
    std::string BasicName(const std::string& id)
    {
        mCounts.emplace(id, 1);
        return EscapedName(id);
    }

    std::string NewName(const std::string& id)
    {
        const std::size_t count = ++mCounts[id];
        return EscapedName(id) + (count == 1 ? "" : "-" + std::to_string(count));
    }

private:
    std::map<std::string, std::size_t> mCounts;
};

struct BasicEventText {
    std::string label;
    bool isUndeveloped;
};

class ModelWriter {
public:
    explicit ModelWriter(const std::vector<DrawnTree>& trees) : mTrees(trees) {}

    std::string Text()
    {
        NameBasicEvents();
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opsa-mef>\n";
        for (const DrawnTree& tree : mTrees) {
            text += TreeText(tree);
        }
        return text + ModelData() + "</opsa-mef>\n";
    }

private:
    void NameBasicEvents()
    {
        for (const DrawnTree& tree : mTrees) {
            for (const DrawnEvent& drawn : tree.events) {
                if (drawn.event->type != Evidence::EventType::INTERMEDIATE) {
                    Note(*drawn.event);
                }
            }
        }
    }

    // If an id belongs to both a developed and an undeveloped event, it counts as developed.
    void Note(const Evidence::FoldedEvent& event)
    {
        const bool isUndeveloped = event.type == Evidence::EventType::UNDEVELOPED;
        const auto noted = mBasicEvents.emplace(mNames.BasicName(event.id), BasicEventText{event.name, true}).first;
        noted->second.label = noted->second.label.empty() ? event.name : noted->second.label;
        noted->second.isUndeveloped = noted->second.isUndeveloped && isUndeveloped;
    }

    std::string TreeText(const DrawnTree& tree)
    {
        std::vector<std::string> names;
        for (const DrawnEvent& drawn : tree.events) {
            const bool isGate = drawn.event->type == Evidence::EventType::INTERMEDIATE;
            names.push_back(isGate ? mNames.NewName(drawn.event->id) : EscapedName(drawn.event->id));
        }
        std::string text = "  <define-fault-tree name=\"" + mTreeNames.NewName(tree.report->Id()) + "\">\n";
        for (std::size_t place = 0; place < tree.events.size(); ++place) {
            if (tree.events[place].event->type == Evidence::EventType::INTERMEDIATE) {
                text += GateText(tree, place, names);
            }
        }
        return text + "  </define-fault-tree>\n";
    }

    static std::string GateText(const DrawnTree& tree, std::size_t place, const std::vector<std::string>& names)
    {
        const Evidence::FoldedEvent& event = *tree.events[place].event;
        Attributes attributes;
        if (event.observable) {
            attributes.emplace_back("observable", "true");
        }
        // A name that is not that of its id would be imported as another id.
        if (names[place] != EscapedName(event.id)) {
            attributes.emplace_back("event-id", event.id);
        }
        return "    <define-gate name=\"" + names[place] + "\">\n" + LabelText("      ", event.name)
            + AttributesText("      ", attributes) + FormulaText(tree, place, names) + "    </define-gate>\n";
    }

    // The format requires at least two different arguments of "or" and "and".
    static std::string FormulaText(const DrawnTree& tree, std::size_t place, const std::vector<std::string>& names)
    {
        std::string arguments;
        std::set<std::string> seen;
        for (const std::size_t child : tree.events[place].children) {
            if (seen.insert(names[child]).second) {
                const bool isGate = tree.events[child].event->type == Evidence::EventType::INTERMEDIATE;
                arguments += (seen.size() == 1 ? "" : "\n");
                arguments += std::string(isGate ? "<gate" : "<basic-event") + " name=\"" + names[child] + "\"/>";
            }
        }
        const bool isAnd = tree.events[place].event->gate == Evidence::GateType::AND;
        if (seen.empty()) {
            return std::string("      <constant value=\"") + (isAnd ? "true" : "false") + "\"/>\n";
        }
        return seen.size() == 1 ? "      " + arguments + "\n" : Grouped(isAnd ? "and" : "or", arguments);
    }

    static std::string Grouped(const std::string& gate, const std::string& arguments)
    {
        std::string text = "      <" + gate + ">\n        ";
        for (const char letter : arguments) {
            text += letter == '\n' ? "\n        " : std::string(1, letter);
        }
        return text + "\n      </" + gate + ">\n";
    }

    std::string ModelData() const
    {
        std::string text = "  <model-data>\n";
        for (const auto& [name, basic] : mBasicEvents) {
            const std::string content = LabelText("      ", basic.label)
                + (basic.isUndeveloped ? AttributesText("      ", {{"flavor", "undeveloped"}}) : "");
            text += "    <define-basic-event name=\"" + name
                + (content.empty() ? "\"/>\n" : "\">\n" + content + "    </define-basic-event>\n");
        }
        return text + "  </model-data>\n";
    }

    const std::vector<DrawnTree>& mTrees;
    NameBook mNames;
    NameBook mTreeNames;
    std::map<std::string, BasicEventText> mBasicEvents;
};

} // namespace

std::string OpenPsa(const std::vector<DrawnTree>& trees)
{
    return ModelWriter(trees).Text();
}

} // namespace diagnosis
