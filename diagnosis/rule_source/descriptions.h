#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_DESCRIPTIONS_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_DESCRIPTIONS_H

#include <map>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/element.h"
#include "diagnosis/rule_source/sections.h"

namespace diagnosis::rule_source {

struct TreeEvent;

/// A "description" or "solution" with its id.
struct DescriptionEntry {
    Element element;
    std::string_view id;
    /// For repairs only.
    std::string_view extra;
};

/// An "Event" of a description section.
struct DescriptionItem {
    Element element;
    /// Null, or without text, if the engine drops the item.
    Element idElement;
    std::string_view id;
    bool isKept = false;
    /// An event of the id; null if no tree has one.
    const TreeEvent* event = nullptr;
    /// True if a later item of the same id replaces it.
    bool isReplaced = false;
    /// "FaultDescriptions", "Solutions" or "Descriptions"; null if there is none.
    Element list;
    std::vector<DescriptionEntry> entries;
};

/// One of the three description sections.
struct Descriptions {
    SectionKind section = SectionKind::FAULT_DESCRIPTIONS;
    /// Names of the list element below an item and of its entries.
    const char* listName = "";
    const char* entryName = "";
    std::vector<DescriptionItem> items;
    /// The item that counts for each id, as an index into items.
    std::map<std::string_view, std::size_t> byId;

    /// Null for an event without an item.
    const DescriptionItem* Find(std::string_view eventId) const
    {
        const auto found = byId.find(eventId);
        return found == byId.end() ? nullptr : &items[found->second];
    }
};

/// Reads a tag element of FAULT_DESCRIPTIONS, SOLUTIONS or REPAIR_DESCRIPTIONS; null has no items.
Descriptions ReadDescriptions(SectionKind section, Element tag);

} // namespace diagnosis::rule_source

#endif
