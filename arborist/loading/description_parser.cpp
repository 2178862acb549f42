#include "arborist/loading/description_parser.h"

#include <utility>

#include "arborist/loading/xml_walk.h"

using tinyxml2::XMLElement;
using XmlWalk::Children;

DescriptionParser::DescriptionParser(const Words& words, std::string treeTag)
    : mWords(words), mTreeTag(std::move(treeTag))
{
}

void DescriptionParser::Parse(const tinyxml2::XMLDocument& document)
{
    for (const XMLElement& event : Children(XmlWalk::FindTagElement(document, mWords.section, mTreeTag), "Event")) {
        ParseEvent(event);
    }
}

DescriptionParser::FaultItemList DescriptionParser::TakeItemList()
{
    return std::exchange(mItemList, {});
}

void DescriptionParser::ParseEvent(const XMLElement& element)
{
    const XMLElement* id = nullptr;
    const XMLElement* list = nullptr;
    XmlWalk::FindFirstChildren(element, {{"ID", &id}, {mWords.list, &list}});
    const char* idText = XmlWalk::TextOf(id);
    if (idText == nullptr) {
        return;
    }
    auto item = std::make_shared<FaultItem>();
    item->SetFaultItemId(idText);
    if (list != nullptr) {
        ParseEntries(*list, *item);
    }
    mItemList.push_back(std::move(item));
}

void DescriptionParser::ParseEntries(const XMLElement& list, FaultItem& item) const
{
    item.SetResolutionSuggestions(XmlWalk::ChildIds(&list, mWords.entry));
}

FaultDescriptionParser::FaultDescriptionParser(std::string treeTag)
    : DescriptionParser({"EventFaultDescriptions", "FaultDescriptions", "description"}, std::move(treeTag))
{
}

SuggestionParser::SuggestionParser(std::string treeTag)
    : DescriptionParser({"EventSolutions", "Solutions", "solution"}, std::move(treeTag))
{
}

RepairDescriptionParser::RepairDescriptionParser(std::string treeTag)
    : DescriptionParser({"RepairDescriptions", "Descriptions", "description"}, std::move(treeTag))
{
}

void RepairDescriptionParser::ParseEntries(const XMLElement& list, FaultItem& item) const
{
    DescriptionParser::ParseEntries(list, item);
    std::vector<FaultTreeResult::RepairInfo> repairs;
    for (const XMLElement& entry : Children(list, mWords.entry)) {
        if (const char* id = entry.Attribute("id")) {
            repairs.push_back({id, XmlWalk::Attribute(entry, "extra")});
        }
    }
    item.SetRepairInfo(std::move(repairs));
}
