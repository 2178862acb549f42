#include "diagnosis/rule_set/inventory.h"

#include <algorithm>
#include <set>
#include <unordered_set>

#include "diagnosis/rule_set/items.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::Family;
using rule_source::Rule;
using rule_source::RuleSet;
using rule_source::Tree;
using rule_source::TreeEvent;

std::string Count(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

const char* DroppedText(const Rule& rule)
{
    return rule.name.empty() ? ", dropped: it has no name"
        : !rule.isKept       ? ", dropped: it has no detectInfo"
        : rule.isReplaced    ? ", replaced by a later rule of this name"
                             : "";
}

/// Lists the parts of one tag.
class InventoryWriter {
public:
    explicit InventoryWriter(const RuleSet& rules) : mRules(rules), mIndex(rules) {}

    std::vector<Entry> Entries()
    {
        AddTrees();
        AddEvents();
        for (const Family family : {Family::ALARM, Family::COMMAND, Family::CODE, Family::NODE}) {
            AddRules(family);
        }
        AddCommonPart();
        return std::move(mEntries);
    }

private:
    void AddTrees()
    {
        for (const Tree& tree : mRules.trees.trees) {
            const std::string detail = !tree.isKept ? "dropped: it lacks a top event, id, version or type"
                                                    : Count(tree.end - tree.begin, "event");
            mEntries.push_back({ItemKind::TREE, std::string(tree.id), detail, PlaceOf(tree.element), {}});
        }
    }

    void AddEvents()
    {
        std::unordered_set<std::string_view> seen;
        for (const TreeEvent& event : mRules.trees.events) {
            if (seen.insert(event.id).second) {
                mEntries.push_back({ItemKind::EVENT, std::string(event.id), EventWord(event.kind),
                    PlaceOf(event.element), mIndex.OfEvent(event.id)});
            }
        }
    }

    void AddRules(Family family)
    {
        for (const Rule* rule : mRules.rules.all) {
            if (rule->family == family) {
                mEntries.push_back({ItemKind::RULE, std::string(rule->name),
                    std::string(FamilyWord(family)) + DroppedText(*rule), PlaceOf(rule->element),
                    mIndex.OfRule(*rule)});
            }
        }
    }

    void AddCommonPart()
    {
        for (const rule_source::ThresholdBean& bean : mRules.commonPart.beans) {
            mEntries.push_back({ItemKind::SHARED_DATA, std::string(bean.name), std::string(bean.type),
                PlaceOf(bean.element), mIndex.OfSharedData(bean.name)});
        }
        for (const rule_source::TableBean& table : mRules.commonPart.tables) {
            mEntries.push_back({ItemKind::DATABASE, std::string(table.name), std::string(table.type),
                PlaceOf(table.element), mIndex.OfDatabase(table.name)});
        }
    }

    const RuleSet& mRules;
    LinkIndex mIndex;
    std::vector<Entry> mEntries;
};

// Groups equal kinds: the items of one kind follow each other.
std::vector<Shown> ShownItems(const RuleSet& rules, const std::string& name)
{
    static const std::set<ItemKind> KINDS = {
        ItemKind::TREE, ItemKind::EVENT, ItemKind::RULE, ItemKind::SHARED_DATA, ItemKind::DATABASE};
    std::vector<Shown> shown;
    for (Item& item : ItemsOf(rules)) {
        if (item.id == name && KINDS.count(item.kind) != 0) {
            if (shown.empty() || shown.back().kind != item.kind) {
                shown.push_back({item.kind, name, {}, {}});
            }
            std::erase_if(item.facts, [](const Fact& fact) { return fact.value.empty(); });
            shown.back().items.push_back(std::move(item));
        }
    }
    return shown;
}

std::vector<Link> TreeLinks(const RuleSet& rules, const LinkIndex& index, const std::string& name)
{
    std::vector<Link> links;
    for (std::size_t tree = 0; tree < rules.trees.trees.size(); ++tree) {
        if (rules.trees.trees[tree].isKept && rules.trees.trees[tree].id == name) {
            const auto more = index.OfTree(tree);
            links.insert(links.end(), more.begin(), more.end());
        }
    }
    return links;
}

std::vector<Link> LinksOf(const RuleSet& rules, const LinkIndex& index, ItemKind kind, const std::string& name)
{
    const Rule* const rule = rules.rules.Find(name);
    return kind == ItemKind::TREE          ? TreeLinks(rules, index, name)
        : kind == ItemKind::EVENT          ? index.OfEvent(name)
        : kind == ItemKind::RULE && rule   ? index.AllOfRule(*rule)
        : kind == ItemKind::SHARED_DATA    ? index.OfSharedData(name)
                                           : index.OfDatabase(name);
}

} // namespace

std::vector<Entry> InventoryOf(const RuleSet& rules)
{
    return InventoryWriter(rules).Entries();
}

std::vector<Shown> Show(const RuleSet& rules, const std::string& name)
{
    std::vector<Shown> shown = ShownItems(rules, name);
    const LinkIndex index(rules);
    for (Shown& one : shown) {
        one.links = LinksOf(rules, index, one.kind, name);
    }
    if (auto links = index.OfRepair(name); !links.empty()) {
        const Item repair{ItemKind::REPAIRS, name, name, "", links.front().place, {}};
        shown.push_back({ItemKind::REPAIRS, name, {repair}, std::move(links)});
    }
    return shown;
}

std::vector<std::string> NamesOf(const RuleSet& rules)
{
    std::set<std::string> names = LinkIndex(rules).RepairIds();
    for (const Entry& entry : InventoryOf(rules)) {
        names.insert(entry.name);
    }
    return {names.begin(), names.end()};
}

} // namespace diagnosis::rule_set
