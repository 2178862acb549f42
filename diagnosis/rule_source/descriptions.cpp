#include "diagnosis/rule_source/descriptions.h"

namespace diagnosis::rule_source {

namespace {

void SetWords(Descriptions& descriptions)
{
    switch (descriptions.section) {
    case SectionKind::SOLUTIONS:
        descriptions.listName = "Solutions";
        descriptions.entryName = "solution";
        return;
    case SectionKind::REPAIR_DESCRIPTIONS:
        descriptions.listName = "Descriptions";
        descriptions.entryName = "description";
        return;
    default:
        descriptions.listName = "FaultDescriptions";
        descriptions.entryName = "description";
    }
}

DescriptionItem ReadItem(const Descriptions& descriptions, Element element)
{
    DescriptionItem item;
    item.element = element;
    item.idElement = element.FirstChild("ID");
    item.id = item.idElement.Text();
    item.isKept = item.idElement.HasText();
    item.list = element.FirstChild(descriptions.listName);
    const bool areRepairs = descriptions.section == SectionKind::REPAIR_DESCRIPTIONS;
    for (const Element entry : Children(item.list, descriptions.entryName)) {
        if (entry.Has("id")) {
            item.entries.push_back({entry, entry.Value("id"), areRepairs ? entry.Value("extra") : ""});
        }
    }
    return item;
}

} // namespace

Descriptions ReadDescriptions(SectionKind section, Element tag)
{
    Descriptions descriptions;
    descriptions.section = section;
    SetWords(descriptions);
    for (const Element event : Children(tag, "Event")) {
        descriptions.items.push_back(ReadItem(descriptions, event));
        if (!descriptions.items.back().isKept) {
            continue;
        }
        const std::size_t index = descriptions.items.size() - 1;
        const auto place = descriptions.byId.emplace_hint(descriptions.byId.end(), descriptions.items.back().id, index);
        if (place->second != index) {
            descriptions.items[place->second].isReplaced = true;
            place->second = index;
        }
    }
    return descriptions;
}

} // namespace diagnosis::rule_source
