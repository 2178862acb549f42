#include "diagnosis/rule_set/items.h"

#include <array>
#include <map>
#include <utility>

#include "diagnosis/rule_set/common_part_facts.h"
#include "diagnosis/rule_set/fact_list.h"
#include "diagnosis/rule_set/rule_facts.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::Binding;
using rule_source::BindingAlternative;
using rule_source::DescriptionItem;
using rule_source::Descriptions;
using rule_source::Element;
using rule_source::GateKind;
using rule_source::Rule;
using rule_source::RuleSet;
using rule_source::Tree;
using rule_source::TreeEvent;

std::string Joined(const std::vector<std::string>& texts, const char* separator)
{
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : separator) + text;
    }
    return joined;
}

Fact OrderFact(const char* key, std::vector<std::string> order, Element element)
{
    std::string text = Joined(order, ", ");
    return {key, std::move(text), element.Line(), true, std::move(order)};
}

const char* GateWord(GateKind kind)
{
    static constexpr std::array<const char*, 3> WORDS = {"none", "OR", "AND"};
    return WORDS[static_cast<std::size_t>(kind)];
}

std::string BindingText(const Binding& binding)
{
    std::vector<std::string> alternatives;
    for (const BindingAlternative& alternative : binding.alternatives) {
        if (alternative.kind != BindingAlternative::Kind::DROPPED) {
            alternatives.push_back(AlternativeText(alternative));
        }
    }
    return Joined(alternatives, " or ");
}

/// Collects the items of one tag.
class ItemCollector {
public:
    explicit ItemCollector(const RuleSet& rules) : mRules(rules) {}

    std::vector<Item> Items()
    {
        AddTag();
        AddTrees();
        AddEvents();
        AddBindings();
        AddRules();
        AddDescriptions(mRules.faultDescriptions, ItemKind::FAULT_DESCRIPTIONS);
        AddDescriptions(mRules.solutions, ItemKind::SOLUTIONS);
        AddDescriptions(mRules.repairs, ItemKind::REPAIRS);
        AddCommonPart();
        return std::move(mItems);
    }

private:
    Item& Add(ItemKind kind, const std::string& name, std::string_view id, Element element)
    {
        const int number = ++mNames[{kind, name}];
        mItems.push_back({kind, name + (number == 1 ? "" : "#" + std::to_string(number)), std::string(id), "",
            PlaceOf(element), {}});
        return mItems.back();
    }

    Item& Add(ItemKind kind, std::string_view id, Element element) { return Add(kind, std::string(id), id, element); }

    void AddTag()
    {
        Item& item = Add(ItemKind::TAG, mRules.tag, mRules.treeTag);
        const Element root = mRules.files.TreeRoot();
        FactList(item).Add("version of the tree file", root.Has("version") ? root.Value("version") : "-1", root);
        std::vector<std::string> trees;
        for (const Tree& tree : mRules.trees.trees) {
            if (tree.isKept) {
                trees.emplace_back(tree.id);
            }
        }
        item.facts.push_back(OrderFact("order of trees", std::move(trees), mRules.treeTag));
        // Hosts look up codes: the first rule with the code answers, even if another rule has replaced it.
        std::vector<std::string> codes;
        for (const rule_source::CodeRule& rule : mRules.rules.codeRules) {
            if (rule.isKept) {
                codes.push_back(std::string(rule.name) + " (" + std::string(rule.code) + ")");
            }
        }
        item.facts.push_back(OrderFact("order of detection codes", std::move(codes),
            mRules.SectionOf(rule_source::SectionKind::RULE_LIST).tag));
    }

    void AddTrees()
    {
        for (const Tree& tree : mRules.trees.trees) {
            if (tree.isKept) {
                Item& item = Add(ItemKind::TREE, tree.id, tree.element);
                FactList facts(item);
                facts.Add("version", tree.element.Value("version"), tree.element);
                facts.Add("type", tree.element.Value("type"), tree.element);
                facts.Add("top event", mRules.trees.events[tree.begin].id, tree.top);
                mTreeNames.push_back(item.name);
            } else {
                mTreeNames.emplace_back();
            }
        }
    }

    void AddEvents()
    {
        mPaths.reserve(mRules.trees.events.size());
        for (std::size_t index = 0; index < mRules.trees.events.size(); ++index) {
            const TreeEvent& event = mRules.trees.events[index];
            const std::string& above =
                event.parent == TreeEvent::NO_PARENT ? mTreeNames[event.tree] : mPaths[event.parent];
            Item& item = Add(ItemKind::EVENT, above + "/" + std::string(event.id), event.id, event.element);
            item.above = above;
            mPaths.push_back(item.name);
            AddEventFacts(index, item);
        }
    }

    void AddEventFacts(std::size_t index, Item& item) const
    {
        const TreeEvent& event = mRules.trees.events[index];
        FactList facts(item);
        facts.Add("kind", EventWord(event.kind), event.element);
        facts.Add("name", event.nameElement.Text(), event.nameElement);
        const Element value = event.element.FirstChild("Value");
        facts.Add("value", value.Text(), value);
        facts.Add("UserDefined", event.userDefined.Text(), event.userDefined);
        facts.Add("DetectMode", event.detectMode.Text(), event.detectMode);
        if (event.kind == rule_source::EventKind::INTERMEDIATE) {
            facts.Add("gate", GateWord(event.gateKind), event.gate);
            std::vector<std::string> children;
            mRules.trees.ForEachChild(
                index, [&](std::size_t child) { children.emplace_back(mRules.trees.events[child].id); });
            item.facts.push_back(OrderFact("order of events", std::move(children), event.gate));
        }
    }

    void AddBindings()
    {
        for (const Binding& binding : mRules.bindings.all) {
            if (binding.isKept && !binding.isReplaced) {
                Item& item = Add(ItemKind::EVENT_RULES, binding.id, binding.element);
                FactList(item).Add("rules", BindingText(binding), binding.element);
            }
        }
    }

    void AddRules()
    {
        for (const Rule* rule : mRules.rules.all) {
            if (rule->isKept && !rule->isReplaced) {
                FactList facts(Add(ItemKind::RULE, rule->name, rule->element));
                facts.Add("family", FamilyWord(rule->family), rule->element);
                AddRuleFacts(*rule, facts);
            }
        }
    }

    void AddDescriptions(const Descriptions& descriptions, ItemKind kind)
    {
        for (const DescriptionItem& described : descriptions.items) {
            if (described.isKept && !described.isReplaced) {
                AddDescription(described, kind);
            }
        }
    }

    // An entry without ids says the same as none.
    void AddDescription(const DescriptionItem& described, ItemKind kind)
    {
        std::vector<std::string> ids;
        for (const rule_source::DescriptionEntry& entry : described.entries) {
            ids.push_back(std::string(entry.id) + (entry.extra.empty() ? "" : " " + std::string(entry.extra)));
        }
        if (!ids.empty()) {
            FactList(Add(kind, described.id, described.element)).Add("ids", Joined(ids, ", "), described.element);
        }
    }

    void AddCommonPart()
    {
        for (const rule_source::ThresholdBean& bean : mRules.commonPart.beans) {
            FactList facts(Add(ItemKind::SHARED_DATA, bean.name, bean.element));
            AddBeanFacts(bean, facts);
        }
        for (const rule_source::TableBean& table : mRules.commonPart.tables) {
            FactList facts(Add(ItemKind::DATABASE, table.name, table.element));
            AddDatabaseFacts(table, facts);
        }
    }

    const RuleSet& mRules;
    std::vector<Item> mItems;
    std::map<std::pair<ItemKind, std::string>, int> mNames;
    /// By index of tree; empty for those that the engine drops.
    std::vector<std::string> mTreeNames;
    /// By index of event.
    std::vector<std::string> mPaths;
};

} // namespace

std::vector<Item> ItemsOf(const RuleSet& rules)
{
    return ItemCollector(rules).Items();
}

const char* FamilyWord(rule_source::Family family)
{
    static constexpr std::array<const char*, 4> WORDS = {"alarm", "command", "code", "node"};
    return WORDS[static_cast<std::size_t>(family)];
}

const char* EventWord(rule_source::EventKind kind)
{
    static constexpr std::array<const char*, 3> WORDS = {"intermediate", "basic", "undeveloped"};
    return WORDS[static_cast<std::size_t>(kind)];
}

std::string AlternativeText(const BindingAlternative& alternative)
{
    if (alternative.kind == BindingAlternative::Kind::UNKNOWN) {
        return "a type that is unknown";
    }
    std::vector<std::string> names;
    for (const rule_source::RuleName& name : alternative.names) {
        names.emplace_back(name.name);
    }
    const std::string text = Joined(names, " and ");
    const bool isPair = alternative.kind == BindingAlternative::Kind::GROUP && names.size() > 1;
    return text.empty() ? "no rule" : isPair ? "(" + text + ")" : text;
}

} // namespace diagnosis::rule_set
