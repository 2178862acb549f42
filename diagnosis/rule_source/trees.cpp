#include "diagnosis/rule_source/trees.h"

namespace diagnosis::rule_source {

namespace {

std::string_view WithoutSpaces(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

EventKind KindOf(std::string_view name)
{
    return name == "Intermediate-Event" ? EventKind::INTERMEDIATE
        : name == "Basic-Event"         ? EventKind::BASIC
                                        : EventKind::UNDEVELOPED;
}

void TakeFirst(Element child, Element& slot)
{
    if (!slot) {
        slot = child;
    }
}

// One pass over the children; a search for each name would start again at the first child.
TreeEvent ReadEvent(Element element)
{
    TreeEvent event;
    event.element = element;
    event.kind = KindOf(element.Name());
    Element orGate;
    Element andGate;
    for (const Element child : Children(element)) {
        const std::string_view name = child.Name();
        if (name == "ID") {
            TakeFirst(child, event.idElement);
        } else if (name == "Name") {
            TakeFirst(child, event.nameElement);
        } else if (name == "UserDefined") {
            TakeFirst(child, event.userDefined);
        } else if (name == "DetectMode") {
            TakeFirst(child, event.detectMode);
        } else if (name == "Or-Gate") {
            TakeFirst(child, orGate);
        } else if (name == "And-Gate") {
            TakeFirst(child, andGate);
        }
    }
    event.id = WithoutSpaces(event.idElement.Text());
    if (event.kind == EventKind::INTERMEDIATE) {
        event.gate = orGate ? orGate : andGate;
        event.gateKind = orGate ? GateKind::OR : andGate ? GateKind::AND : GateKind::NONE;
    }
    return event;
}

/// Reads the events of one tree in file order.
class EventReader {
public:
    EventReader(std::vector<TreeEvent>& events, std::size_t tree) : mEvents(events), mTree(tree) {}

    // Recursion is limited by the nesting that the XML library accepts.
    void Read(Element element, std::size_t parent)
    {
        const std::size_t index = mEvents.size();
        mEvents.push_back(ReadEvent(element));
        mEvents[index].parent = parent;
        mEvents[index].tree = mTree;
        const Element gate = mEvents[index].gate;
        for (const Element child : Children(gate)) {
            Read(child, index);
        }
        mEvents[index].end = mEvents.size();
    }

private:
    std::vector<TreeEvent>& mEvents;
    std::size_t mTree;
};

} // namespace

Trees ReadTrees(Element tag)
{
    Trees read;
    for (const Element element : Children(tag)) {
        Tree tree;
        tree.element = element;
        tree.id = element.Value("id");
        tree.top = element.FirstChild("Intermediate-Event");
        tree.isKept = tree.top && element.Has("id") && element.Has("version") && element.Has("type");
        tree.begin = read.events.size();
        if (tree.isKept) {
            EventReader(read.events, read.trees.size()).Read(tree.top, TreeEvent::NO_PARENT);
        }
        tree.end = read.events.size();
        read.trees.push_back(tree);
    }
    return read;
}

} // namespace diagnosis::rule_source
