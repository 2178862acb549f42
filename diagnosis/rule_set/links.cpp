#include "diagnosis/rule_set/links.h"

#include <optional>
#include <unordered_set>

#include "diagnosis/rule_set/items.h"
#include "diagnosis/text/json_text.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::Binding;
using rule_source::BindingAlternative;
using rule_source::CommandRule;
using rule_source::DescriptionItem;
using rule_source::Rule;
using rule_source::RuleName;
using rule_source::RuleSet;
using rule_source::Tree;

struct Described {
    rule_source::Descriptions RuleSet::*section;
    ItemKind kind;
    const char* relation;
};

constexpr Described DESCRIBED[] = {
    {&RuleSet::faultDescriptions, ItemKind::FAULT_DESCRIPTIONS, "described by"},
    {&RuleSet::solutions, ItemKind::SOLUTIONS, "solved by"},
    {&RuleSet::repairs, ItemKind::REPAIRS, "repaired by"},
};

Link ToRule(const Rule& rule, const char* relation)
{
    return {relation, ItemKind::RULE, std::string(rule.name), PlaceOf(rule.element), FamilyWord(rule.family)};
}

// The repair that the user-defined text of an event names: what was logged before its date doesn't count.
std::optional<std::string> RepairNamedBy(rule_source::Element userDefined)
{
    std::string problem;
    const auto json = userDefined.HasText() ? ParseEngineJson(std::string(userDefined.Text()), problem) : std::nullopt;
    const bool isNamed = json && json->isObject() && (*json)["Repairid"].isString();
    return isNamed ? std::optional((*json)["Repairid"].asString()) : std::nullopt;
}

} // namespace

LinkIndex::LinkIndex(const RuleSet& rules) : mRules(rules)
{
    for (std::size_t event = 0; event < rules.trees.events.size(); ++event) {
        mEvents[rules.trees.events[event].id].push_back(event);
    }
    for (const Binding& binding : rules.bindings.all) {
        if (!binding.isKept || binding.isReplaced) {
            continue;
        }
        for (const BindingAlternative& alternative : binding.alternatives) {
            for (const RuleName& name : alternative.names) {
                mUses[name.rule].push_back({&binding, name.element});
            }
        }
    }
    for (const CommandRule& rule : rules.rules.commandRules) {
        if (rule.isKept && !rule.isReplaced) {
            mUsersOfData[rule.commonPartName].push_back(&rule);
            mUsersOfDatabases[rule.defDbName].push_back(&rule);
        }
    }
}

const std::vector<std::size_t>& LinkIndex::PlacesOf(std::string_view eventId) const
{
    static const std::vector<std::size_t> NOWHERE;
    const auto found = mEvents.find(eventId);
    return found == mEvents.end() ? NOWHERE : found->second;
}

std::vector<Link> LinkIndex::OfEvent(std::string_view id) const
{
    std::vector<Link> links;
    AddTreesOf(id, links);
    if (const Binding* const binding = mRules.bindings.Find(id)) {
        AddRulesOf(*binding, links);
    }
    AddRepairsOf(id, links);
    AddDescriptionsOf(id, links);
    return links;
}

void LinkIndex::AddTreesOf(std::string_view eventId, std::vector<Link>& links) const
{
    for (const std::size_t place : PlacesOf(eventId)) {
        const rule_source::TreeEvent& event = mRules.trees.events[place];
        links.push_back({"stands in", ItemKind::TREE, std::string(mRules.trees.trees[event.tree].id),
            PlaceOf(event.element), EventWord(event.kind)});
    }
}

void LinkIndex::AddRepairsOf(std::string_view eventId, std::vector<Link>& links) const
{
    for (const std::size_t place : PlacesOf(eventId)) {
        const rule_source::Element text = mRules.trees.events[place].userDefined;
        if (const auto repair = RepairNamedBy(text)) {
            links.push_back({"counts since repair", ItemKind::REPAIRS, *repair, PlaceOf(text), ""});
        }
    }
}

std::vector<std::pair<std::string, Link>> LinkIndex::RepairLinks() const
{
    std::vector<std::pair<std::string, Link>> links;
    for (const auto& [event, place] : mRules.repairs.byId) {
        for (const rule_source::DescriptionEntry& entry : mRules.repairs.items[place].entries) {
            links.emplace_back(entry.id,
                Link{"listed by", ItemKind::EVENT, std::string(event), PlaceOf(entry.element), std::string(entry.extra)});
        }
    }
    for (const rule_source::TreeEvent& event : mRules.trees.events) {
        if (const auto repair = RepairNamedBy(event.userDefined)) {
            links.emplace_back(
                *repair, Link{"named by", ItemKind::EVENT, std::string(event.id), PlaceOf(event.userDefined), ""});
        }
    }
    return links;
}

std::vector<Link> LinkIndex::OfRepair(std::string_view id) const
{
    std::vector<Link> links;
    std::set<std::string> events;
    for (auto& [repair, link] : RepairLinks()) {
        if (repair == id && !id.empty()) {
            events.insert(link.name);
            links.push_back(std::move(link));
        }
    }
    for (const std::string& event : events) {
        if (const Binding* const binding = mRules.bindings.Find(event)) {
            AddRulesOf(*binding, links);
        }
    }
    return links;
}

std::set<std::string> LinkIndex::RepairIds() const
{
    std::set<std::string> ids;
    for (const auto& [repair, link] : RepairLinks()) {
        ids.insert(repair);
    }
    return ids;
}

void LinkIndex::AddRulesOf(const Binding& binding, std::vector<Link>& links) const
{
    for (const BindingAlternative& alternative : binding.alternatives) {
        const bool isGroup = alternative.kind == BindingAlternative::Kind::GROUP;
        for (const RuleName& name : alternative.names) {
            Link link = name.rule != nullptr
                ? ToRule(*name.rule, "decided by")
                : Link{"decided by", ItemKind::RULE, std::string(name.name), PlaceOf(name.element), "no such rule"};
            link.detail += isGroup ? ", in a group of " + std::to_string(alternative.names.size()) : "";
            links.push_back(std::move(link));
        }
    }
}

void LinkIndex::AddDescriptionsOf(std::string_view eventId, std::vector<Link>& links) const
{
    for (const Described& described : DESCRIBED) {
        if (const DescriptionItem* const item = (mRules.*described.section).Find(eventId)) {
            for (const rule_source::DescriptionEntry& entry : item->entries) {
                links.push_back({described.relation, described.kind, std::string(entry.id), PlaceOf(entry.element),
                    std::string(entry.extra)});
            }
        }
    }
}

std::vector<Link> LinkIndex::OfRule(const Rule& rule) const
{
    std::vector<Link> links;
    if (const auto uses = mUses.find(&rule); uses != mUses.end()) {
        for (const Use& use : uses->second) {
            links.push_back({"decides", ItemKind::EVENT, std::string(use.binding->id), PlaceOf(use.element), ""});
        }
    }
    if (rule.family != rule_source::Family::COMMAND) {
        return links;
    }
    const auto& command = static_cast<const CommandRule&>(rule);
    if (!command.commonPartName.empty()) {
        const auto* const bean = mRules.commonPart.FindBean(command.commonPartName);
        links.push_back({"uses", ItemKind::SHARED_DATA, std::string(command.commonPartName),
            PlaceOf(bean != nullptr ? bean->element : command.commonPartNameElement), bean != nullptr ? "" : "no such data"});
    }
    if (!command.defDbName.empty()) {
        const auto* const table = mRules.commonPart.FindTable(command.defDbName);
        links.push_back({"uses", ItemKind::DATABASE, std::string(command.defDbName),
            PlaceOf(table != nullptr ? table->element : command.defDbNameElement),
            table != nullptr ? "" : "no such database"});
    }
    return links;
}

std::vector<Link> LinkIndex::AllOfRule(const Rule& rule) const
{
    std::vector<Link> links = OfRule(rule);
    std::unordered_set<std::string_view> seen;
    if (const auto uses = mUses.find(&rule); uses != mUses.end()) {
        for (const Use& use : uses->second) {
            if (seen.insert(use.binding->id).second) {
                AddTreesOf(use.binding->id, links);
                AddRepairsOf(use.binding->id, links);
                AddDescriptionsOf(use.binding->id, links);
            }
        }
    }
    return links;
}

std::vector<Link> LinkIndex::OfTree(std::size_t tree) const
{
    std::vector<Link> links;
    const Tree& shown = mRules.trees.trees[tree];
    for (std::size_t place = shown.begin; place < shown.end; ++place) {
        const rule_source::TreeEvent& event = mRules.trees.events[place];
        links.push_back(
            {"holds", ItemKind::EVENT, std::string(event.id), PlaceOf(event.element), EventWord(event.kind)});
    }
    std::unordered_set<std::string_view> seen;
    for (std::size_t place = shown.begin; place < shown.end; ++place) {
        const rule_source::TreeEvent& event = mRules.trees.events[place];
        if (event.binding != nullptr && seen.insert(event.id).second) {
            AddRulesOf(*event.binding, links);
        }
    }
    return links;
}

std::vector<Link> LinkIndex::UsersOf(std::string_view name, const RulesByName& users)
{
    std::vector<Link> links;
    const auto found = users.find(name);
    for (const Rule* rule : found == users.end() || name.empty() ? RuleList() : found->second) {
        links.push_back(ToRule(*rule, "used by"));
    }
    return links;
}

std::vector<Link> LinkIndex::OfSharedData(std::string_view name) const
{
    return UsersOf(name, mUsersOfData);
}

std::vector<Link> LinkIndex::OfDatabase(std::string_view name) const
{
    return UsersOf(name, mUsersOfDatabases);
}

} // namespace diagnosis::rule_set
