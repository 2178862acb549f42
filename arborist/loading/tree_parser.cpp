#include "arborist/loading/tree_parser.h"

#include <utility>

#include "arborist/loading/xml_walk.h"
#include "arborist/model/event.h"
#include "arborist/model/fault_tree.h"
#include "arborist/model/gate.h"

namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;
using XmlWalk::Children;

const XMLElement* FindSection(const XMLDocument& document, const std::string& treeTag)
{
    const XMLElement* root = document.RootElement();
    return root == nullptr ? nullptr : root->FirstChildElement(treeTag.c_str());
}

// The child elements that the parser reads below an event of any kind.
struct EventChildren {
    explicit EventChildren(const XMLElement& event)
    {
        XmlWalk::FindFirstChildren(event, {
            {TreeParser::ELEMENT_ID, &id},
            {TreeParser::ELEMENT_NAME, &name},
            {TreeParser::ELEMENT_VALUE, &value},
            {TreeParser::USER_DEFINED, &userDefined},
            {TreeParser::ELEMENT_DETECT_MODE, &detectMode},
            {TreeParser::OR_GATE, &orGate},
            {TreeParser::AND_GATE, &andGate}});
    }

    // Of two kinds of gates the or-gate wins, whatever their order: rule files rely on it.
    const XMLElement* Gate() const { return orGate != nullptr ? orGate : andGate; }

    const XMLElement* id = nullptr;
    const XMLElement* name = nullptr;
    const XMLElement* value = nullptr;
    const XMLElement* userDefined = nullptr;
    const XMLElement* detectMode = nullptr;
    const XMLElement* orGate = nullptr;
    const XMLElement* andGate = nullptr;
};

std::string Property(const XMLElement* element)
{
    const char* text = XmlWalk::TextOf(element);
    return text == nullptr ? TreeParser::EMPTY : text;
}

} // namespace

std::vector<std::shared_ptr<FaultTree>> TreeParser::GetTreeList(
    const XMLDocument& document, const std::string& treeTag)
{
    if (const XMLElement* root = document.RootElement()) {
        XmlWalk::ReadAttributes(*root, {{VERSION_KEY, &mTreeFileVersion}});
    }
    std::vector<std::shared_ptr<FaultTree>> trees;
    for (const XMLElement& element : Children(FindSection(document, treeTag))) {
        if (auto tree = ParseTree(element)) {
            trees.push_back(std::move(tree));
        }
    }
    return trees;
}

std::shared_ptr<FaultTree> TreeParser::Parse(
    const XMLDocument& document, const std::string& treeTag, const std::string& treeId)
{
    for (const XMLElement& element : Children(FindSection(document, treeTag))) {
        const char* id = element.Attribute(ID_STRING);
        if ((id == nullptr ? EMPTY : id) == treeId) {
            return ParseTree(element);
        }
    }
    return nullptr;
}

std::shared_ptr<FaultTree> TreeParser::ParseTree(const XMLElement& element)
{
    const XMLElement* topElement = element.FirstChildElement(TREE_NAME);
    const char* id = element.Attribute(ID_STRING);
    const char* version = element.Attribute(VERSION_KEY);
    const char* type = element.Attribute(TYPE_KEY);
    if (topElement == nullptr || id == nullptr || version == nullptr || type == nullptr) {
        return nullptr;
    }
    auto tree = std::make_shared<FaultTree>(id, version, type);
    // An element of this name always makes an intermediate event.
    tree->SetIntermediateEvent(std::static_pointer_cast<IntermediateEvent>(ParseEvent(*topElement)));
    return tree;
}

std::shared_ptr<Event> TreeParser::ParseEvent(const XMLElement& element)
{
    const EventChildren children(element);
    std::shared_ptr<Event> event;
    if (XmlWalk::IsNamed(element, TREE_NAME)) {
        auto intermediate = std::make_shared<IntermediateEvent>();
        if (auto gate = ParseGate(children.Gate())) {
            intermediate->SetGate(std::move(gate));
        }
        event = std::move(intermediate);
    } else if (XmlWalk::IsNamed(element, BASIC_EVENT)) {
        event = std::make_shared<BasicEvent>();
    } else {
        event = std::make_shared<UndevelopedEvent>();
    }
    return event->FillEventInfo(Property(children.value), Property(children.id), Property(children.name),
        Property(children.userDefined), Property(children.detectMode));
}

std::shared_ptr<Gate> TreeParser::ParseGate(const XMLElement* element)
{
    if (element == nullptr) {
        return nullptr;
    }
    std::shared_ptr<Gate> gate;
    if (XmlWalk::IsNamed(*element, OR_GATE)) {
        gate = std::make_shared<OrGate>();
    } else {
        gate = std::make_shared<AndGate>();
    }
    for (const XMLElement& event : Children(element)) {
        gate->AddEvent(ParseEvent(event));
    }
    return gate;
}
