#include <algorithm>
#include <set>

#include "diagnosis/lint/reading/cut_sets.h"
#include "diagnosis/rule_set/inventory.h"

namespace diagnosis::rule_set {

namespace {

using rule_source::BindingAlternative;
using rule_source::EventKind;
using rule_source::Family;
using rule_source::GateKind;
using rule_source::Rule;
using rule_source::RuleSet;
using rule_source::TreeEvent;

/// Counts under names, in order of the first count.
class Counter {
public:
    void Add(const char* name, std::uint64_t count) { mCounts.emplace_back(name, count); }

    template <typename List, typename Test>
    void AddIf(const char* name, const List& list, Test test)
    {
        Add(name, static_cast<std::uint64_t>(std::count_if(list.begin(), list.end(), test)));
    }

    std::vector<std::pair<std::string, std::uint64_t>>& Counts() { return mCounts; }

private:
    std::vector<std::pair<std::string, std::uint64_t>> mCounts;
};

std::size_t LevelsOf(const RuleSet& rules)
{
    std::vector<std::size_t> levels;
    std::size_t most = 0;
    for (const TreeEvent& event : rules.trees.events) {
        levels.push_back(event.parent == TreeEvent::NO_PARENT ? 1 : levels[event.parent] + 1);
        most = std::max(most, levels.back());
    }
    return most;
}

std::uint64_t CutSetsOf(const RuleSet& rules)
{
    const lint::CutSets sets(rules.trees);
    std::uint64_t number = 0;
    for (const rule_source::Tree& tree : rules.trees.trees) {
        number += tree.begin < tree.end ? sets.Number(tree.begin) : 0;
        number = std::min(number, lint::CutSets::COUNTLESS);
    }
    return number;
}

void CountTrees(const RuleSet& rules, Counter& counter)
{
    const auto& events = rules.trees.events;
    const auto isKind = [](EventKind kind) { return [kind](const TreeEvent& event) { return event.kind == kind; }; };
    const auto hasGate = [](GateKind kind) { return [kind](const TreeEvent& event) { return event.gateKind == kind; }; };
    counter.AddIf("trees", rules.trees.trees, [](const rule_source::Tree& tree) { return tree.isKept; });
    counter.Add("places of events", events.size());
    counter.Add("events", rules.eventsById.size());
    counter.AddIf("intermediate places", events, isKind(EventKind::INTERMEDIATE));
    counter.AddIf("basic places", events, isKind(EventKind::BASIC));
    counter.AddIf("undeveloped places", events, isKind(EventKind::UNDEVELOPED));
    counter.AddIf("OR gates", events, hasGate(GateKind::OR));
    counter.AddIf("AND gates", events, hasGate(GateKind::AND));
    counter.Add("levels", LevelsOf(rules));
    counter.Add("cut sets", CutSetsOf(rules));
}

void CountRules(const RuleSet& rules, Counter& counter)
{
    const auto isOf = [](Family family) {
        return [family](const Rule* rule) { return rule->family == family && rule->isKept && !rule->isReplaced; };
    };
    counter.Add("rules", rules.rules.byName.size());
    counter.AddIf("alarm rules", rules.rules.all, isOf(Family::ALARM));
    counter.AddIf("command rules", rules.rules.all, isOf(Family::COMMAND));
    counter.AddIf("code rules", rules.rules.all, isOf(Family::CODE));
    counter.AddIf("node rules", rules.rules.all, isOf(Family::NODE));
    std::set<const Rule*> named;
    std::uint64_t alternatives = 0;
    std::uint64_t groups = 0;
    for (const auto& [id, index] : rules.bindings.byId) {
        for (const BindingAlternative& alternative : rules.bindings.all[index].alternatives) {
            alternatives += alternative.kind == BindingAlternative::Kind::DROPPED ? 0 : 1;
            groups += alternative.kind == BindingAlternative::Kind::GROUP ? 1 : 0;
            for (const rule_source::RuleName& name : alternative.names) {
                named.insert(name.rule);
            }
        }
    }
    counter.Add("events with rules", rules.bindings.byId.size());
    counter.Add("alternatives", alternatives);
    counter.Add("groups", groups);
    counter.AddIf("rules that no event names", rules.rules.byName,
        [&named](const auto& entry) { return named.count(entry.second) == 0; });
    counter.Add("conditions", rules.rules.conditions.size());
}

} // namespace

std::vector<std::pair<std::string, std::uint64_t>> CountsOf(const RuleSet& rules)
{
    Counter counter;
    CountTrees(rules, counter);
    CountRules(rules, counter);
    counter.Add("shared data", rules.commonPart.beans.size());
    counter.Add("databases", rules.commonPart.tables.size());
    counter.Add("events with fault descriptions", rules.faultDescriptions.byId.size());
    counter.Add("events with solutions", rules.solutions.byId.size());
    counter.Add("events with repairs", rules.repairs.byId.size());
    return std::move(counter.Counts());
}

} // namespace diagnosis::rule_set
