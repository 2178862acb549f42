#ifndef ARBORIST_DIAGNOSIS_RULE_SET_LINKS_H
#define ARBORIST_DIAGNOSIS_RULE_SET_LINKS_H

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "diagnosis/rule_set/item.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::rule_set {

/// How one item touches another.
struct Link {
    /// "decided by", "decides", "stands in", "holds", "uses", "used by", "described by" ...
    std::string relation;
    ItemKind kind = ItemKind::RULE;
    /// The other item; a name that nothing has is linked, too.
    std::string name;
    /// Where the other item, or the text that links them, is.
    Place place;
    /// More about the link; may be empty.
    std::string detail;
};

/// Finds who names whom in the rule set of one tag, which must outlive it.
class LinkIndex {
public:
    explicit LinkIndex(const rule_source::RuleSet& rules);

    /// The trees that an event is in, the rules that decide it, the repairs after which its rows count, and what
    /// describes it.
    std::vector<Link> OfEvent(std::string_view id) const;
    /// The events that a rule decides and the shared data that it uses.
    std::vector<Link> OfRule(const rule_source::Rule& rule) const;
    /// What a rule touches through its events, too: their trees and descriptions.
    std::vector<Link> AllOfRule(const rule_source::Rule& rule) const;
    /// The events of a tree, an index into Trees::trees, and the rules that decide them.
    std::vector<Link> OfTree(std::size_t tree) const;
    /// The rules that use shared data or a database.
    std::vector<Link> OfSharedData(std::string_view name) const;
    std::vector<Link> OfDatabase(std::string_view name) const;
    /// The events that list a repair, those whose user-defined text names it, and the rules of both. Their counts start
    /// anew with it.
    std::vector<Link> OfRepair(std::string_view id) const;
    /// The ids of all repairs that an event lists or names.
    std::set<std::string> RepairIds() const;

    /// Every place of an event, as indices into Trees::events.
    const std::vector<std::size_t>& PlacesOf(std::string_view eventId) const;

private:
    using RuleList = std::vector<const rule_source::Rule*>;
    using RulesByName = std::unordered_map<std::string_view, RuleList>;

    struct Use {
        const rule_source::Binding* binding;
        rule_source::Element element;
    };

    void AddRulesOf(const rule_source::Binding& binding, std::vector<Link>& links) const;
    void AddDescriptionsOf(std::string_view eventId, std::vector<Link>& links) const;
    void AddTreesOf(std::string_view eventId, std::vector<Link>& links) const;
    void AddRepairsOf(std::string_view eventId, std::vector<Link>& links) const;
    /// All links from repairs to events, each with the id of its repair.
    std::vector<std::pair<std::string, Link>> RepairLinks() const;
    static std::vector<Link> UsersOf(std::string_view name, const RulesByName& users);

    const rule_source::RuleSet& mRules;
    std::unordered_map<std::string_view, std::vector<std::size_t>> mEvents;
    std::unordered_map<const rule_source::Rule*, std::vector<Use>> mUses;
    RulesByName mUsersOfData;
    RulesByName mUsersOfDatabases;
};

} // namespace diagnosis::rule_set

#endif
