#include "diagnosis/rule_set/difference.h"

#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "diagnosis/rule_set/items.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::RuleSet;

using ItemKey = std::pair<ItemKind, std::string_view>;
using ItemMap = std::map<ItemKey, const Item*>;
using FactMap = std::map<std::string_view, const Fact*>;

ItemMap MapOf(const std::vector<Item>& items)
{
    ItemMap map;
    for (const Item& item : items) {
        map.emplace(ItemKey(item.kind, item.name), &item);
    }
    return map;
}

FactMap MapOf(const Item& item)
{
    FactMap map;
    for (const Fact& fact : item.facts) {
        map.emplace(fact.key, &fact);
    }
    return map;
}

// The entries of a list that the other one has as well.
std::vector<std::string_view> Shared(const std::vector<std::string>& list, const std::vector<std::string>& other)
{
    std::map<std::string_view, int> left;
    for (const std::string& entry : other) {
        ++left[entry];
    }
    std::vector<std::string_view> shared;
    for (const std::string& entry : list) {
        const auto found = left.find(entry);
        if (found != left.end() && found->second-- > 0) {
            shared.push_back(entry);
        }
    }
    return shared;
}

// Added and removed entries are differences of their own.
bool IsSame(const Fact& one, const Fact& other)
{
    return one.isOrder ? Shared(one.order, other.order) == Shared(other.order, one.order) : one.value == other.value;
}

/// Compares the items of one tag.
class TagComparison {
public:
    TagComparison(const RuleSet& before, const RuleSet& after, std::vector<Change>& changes)
        : mTag(before.tag), mBefore(ItemsOf(before)), mAfter(ItemsOf(after)), mBeforeMap(MapOf(mBefore)),
          mAfterMap(MapOf(mAfter)), mChanges(changes)
    {
    }

    void Compare()
    {
        for (const Item& item : mBefore) {
            const auto found = mAfterMap.find({item.kind, item.name});
            if (found != mAfterMap.end()) {
                CompareFacts(item, *found->second);
            } else if (!IsBelowOther(item, mAfterMap)) {
                Add(Change::What::GONE, item);
            }
        }
        for (const Item& item : mAfter) {
            if (mBeforeMap.count({item.kind, item.name}) == 0 && !IsBelowOther(item, mBeforeMap)) {
                Add(Change::What::ADDED, item);
            }
        }
    }

private:
    // True for an event if the other rule set lacks the event or tree above it, too.
    static bool IsBelowOther(const Item& item, const ItemMap& others)
    {
        return item.kind == ItemKind::EVENT && others.count({ItemKind::EVENT, item.above}) == 0
            && others.count({ItemKind::TREE, item.above}) == 0;
    }

    void Add(Change::What what, const Item& item)
    {
        const bool isGone = what == Change::What::GONE;
        mChanges.push_back({what, mTag, item.kind, item.name, "", "", "", isGone ? item.place : Place{},
            isGone ? Place{} : item.place});
    }

    void CompareFacts(const Item& before, const Item& after)
    {
        const FactMap old = MapOf(before);
        const FactMap current = MapOf(after);
        for (const Fact& fact : before.facts) {
            const auto found = current.find(fact.key);
            const Fact* const other = found == current.end() ? nullptr : found->second;
            if (other == nullptr || !IsSame(fact, *other)) {
                AddFact(before, after, &fact, other);
            }
        }
        for (const Fact& fact : after.facts) {
            if (old.count(fact.key) == 0) {
                AddFact(before, after, nullptr, &fact);
            }
        }
    }

    void AddFact(const Item& before, const Item& after, const Fact* old, const Fact* current)
    {
        const Fact& fact = old == nullptr ? *current : *old;
        mChanges.push_back({old == nullptr ? Change::What::ADDED
                : current == nullptr       ? Change::What::GONE
                                           : Change::What::CHANGED,
            mTag, before.kind, before.name, fact.key, old == nullptr ? "" : old->value,
            current == nullptr ? "" : current->value, FactPlace(before, old), FactPlace(after, current)});
    }

    // A default has no line of its own.
    static Place FactPlace(const Item& item, const Fact* fact)
    {
        return fact == nullptr ? Place{}
            : fact->line == 0  ? item.place
                               : Place{item.place.file, fact->line};
    }

    std::string mTag;
    std::vector<Item> mBefore;
    std::vector<Item> mAfter;
    ItemMap mBeforeMap;
    ItemMap mAfterMap;
    std::vector<Change>& mChanges;
};

Change OfTag(Change::What what, const RuleSet& rules)
{
    Change change;
    change.what = what;
    change.tag = rules.tag;
    change.name = rules.tag;
    (what == Change::What::GONE ? change.beforePlace : change.afterPlace) = PlaceOf(rules.treeTag);
    return change;
}

} // namespace

const char* ChangeWord(Change::What what)
{
    static constexpr std::array<const char*, 3> WORDS = {"added", "gone", "changed"};
    return WORDS[static_cast<std::size_t>(what)];
}

std::vector<Change> DifferencesOf(const ReadRuleSet& before, const ReadRuleSet& after)
{
    std::vector<Change> changes;
    for (const auto& rules : before.tags) {
        if (const RuleSet* const other = after.Find(rules->tag)) {
            TagComparison(*rules, *other, changes).Compare();
        } else {
            changes.push_back(OfTag(Change::What::GONE, *rules));
        }
    }
    for (const auto& rules : after.tags) {
        if (before.Find(rules->tag) == nullptr) {
            changes.push_back(OfTag(Change::What::ADDED, *rules));
        }
    }
    return changes;
}

} // namespace diagnosis::rule_set
