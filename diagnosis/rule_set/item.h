#ifndef ARBORIST_DIAGNOSIS_RULE_SET_ITEM_H
#define ARBORIST_DIAGNOSIS_RULE_SET_ITEM_H

#include <string>
#include <vector>

#include "diagnosis/rule_source/element.h"

namespace diagnosis::rule_set {

/// A line of a file; 0 for a place that has none.
struct Place {
    std::string file;
    int line = 0;
};

/// Where an element begins; nothing for a null element.
Place PlaceOf(rule_source::Element element);

/// What a rule set consists of.
enum class ItemKind {
    TAG,
    TREE,
    EVENT,
    EVENT_RULES,
    RULE,
    FAULT_DESCRIPTIONS,
    SOLUTIONS,
    REPAIRS,
    SHARED_DATA,
    DATABASE,
};

/// "tag", "tree", "event", "event rules" ...
const char* KindWord(ItemKind kind);

/// One thing that the engine reads of an item: `detectScene` is `1,2`.
struct Fact {
    std::string key;
    std::string value;
    int line = 0;
    /// True for a list whose entries are items of their own, so that only their order is this fact.
    bool isOrder = false;
    std::vector<std::string> order = {};
};

/// One part of a rule set with everything that the engine reads of it.
struct Item {
    ItemKind kind = ItemKind::TAG;
    /// Unique in its kind: for an event the way to it, "TREE/TOP/EVENT"; of equal names the second has "#2" at its end.
    std::string name;
    /// As the file has it: for an event its id.
    std::string id;
    /// For an event the name of the event or tree that it is directly below; empty for all others.
    std::string above;
    Place place;
    /// Facts with an empty value are left out, except for lists: the engine reads nothing there.
    std::vector<Fact> facts;
};

} // namespace diagnosis::rule_set

#endif
