#ifndef ARBORIST_DIAGNOSIS_RULE_SET_INVENTORY_H
#define ARBORIST_DIAGNOSIS_RULE_SET_INVENTORY_H

#include <string>
#include <utility>
#include <vector>

#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_set/links.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// One line of an inventory.
struct Entry {
    ItemKind kind = ItemKind::TREE;
    std::string name;
    /// What it is: the family of a rule, "basic" for an event, "5 events" for a tree; why the engine drops it, if it does.
    std::string detail;
    Place place;
    std::vector<Link> links;
};

/// What a rule set has under one tag: trees, events (each id once), rules by family, shared data and databases.
std::vector<Entry> InventoryOf(const rule_source::RuleSet& rules);

/// One name with all that has it and touches it.
struct Shown {
    ItemKind kind = ItemKind::RULE;
    std::string name;
    /// One; several for an event with several places, or shared data of one name.
    std::vector<Item> items;
    std::vector<Link> links;
};

/// Every tree, event, rule, shared data, database and repair with this name. Empty if nothing has it.
std::vector<Shown> Show(const rule_source::RuleSet& rules, const std::string& name);

/// The names that Show knows.
std::vector<std::string> NamesOf(const rule_source::RuleSet& rules);

/// Numbers of what a rule set has under one tag, with their names, in a fixed order.
std::vector<std::pair<std::string, std::uint64_t>> CountsOf(const rule_source::RuleSet& rules);

} // namespace diagnosis::rule_set

#endif
