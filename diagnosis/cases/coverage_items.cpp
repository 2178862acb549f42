#include "diagnosis/cases/coverage_items.h"

#include <set>

#include "diagnosis/rule_source/source_file.h"

namespace diagnosis::cases {

namespace {

using rule_source::BindingAlternative;
using rule_source::EventKind;
using rule_source::TreeEvent;
using Kind = CoverageItem::Kind;

constexpr std::string_view LEFT_TO_THE_HOST = "2";

// Rules decide it in a detection.
bool IsDecidedByRules(const TreeEvent& event)
{
    return event.binding != nullptr && event.detectMode.Text() != LEFT_TO_THE_HOST;
}

std::string NamesOf(const BindingAlternative& alternative)
{
    std::string names;
    for (const auto& name : alternative.names) {
        names += (names.empty() ? "" : ", ") + std::string(name.name);
    }
    return names;
}

// The text with which a test compares, or the name of the value in the common part.
std::string_view ValueOf(const rule_source::Test& test)
{
    return test.value.empty() ? test.commonPartParamId : test.value;
}

std::size_t NumberOf(const rule_source::AlarmItem* item, const rule_source::Rule& rule)
{
    return item == nullptr ? 0
                           : static_cast<std::size_t>(item - static_cast<const rule_source::AlarmRule&>(rule).items.data());
}

} // namespace

CoverageItems::CoverageItems(const rule_source::RuleSet& ruleSet)
{
    AddLeaves(ruleSet);
    AddAlternatives(ruleSet);
    AddRules(ruleSet);
}

std::string CoverageItems::TestKey(
    std::size_t alarmItem, std::string_view word, std::string_view value, std::string_view param)
{
    const char end = '\0';
    return std::to_string(alarmItem) + end + std::string(word) + end + std::string(value) + end + std::string(param);
}

std::size_t CoverageItems::Add(Kind kind, rule_source::Element element, std::string subject)
{
    items.push_back({kind, std::move(subject), element.File()->Path(), element.Line()});
    return items.size() - 1;
}

void CoverageItems::AddLeaves(const rule_source::RuleSet& ruleSet)
{
    for (const auto& tree : ruleSet.trees.trees) {
        if (!tree.isKept) {
            continue;
        }
        auto& ofTree = leaves.emplace_back(tree.end - tree.begin, NONE);
        for (std::size_t i = tree.begin; i < tree.end; ++i) {
            const TreeEvent& event = ruleSet.trees.events[i];
            if (event.kind != EventKind::INTERMEDIATE && IsDecidedByRules(event)) {
                ofTree[i - tree.begin] = Add(Kind::LEAF, event.element, "event " + std::string(event.id));
            }
        }
    }
}

void CoverageItems::AddAlternatives(const rule_source::RuleSet& ruleSet)
{
    for (const auto& [id, index] : ruleSet.bindings.byId) {
        const auto& binding = ruleSet.bindings.all[index];
        if (binding.event == nullptr || !IsDecidedByRules(*binding.event)) {
            continue;
        }
        auto& ofEvent = alternatives[std::string(id)];
        for (const BindingAlternative& alternative : binding.alternatives) {
            if (alternative.kind != BindingAlternative::Kind::DROPPED) {
                ofEvent.push_back(Add(Kind::ALTERNATIVE, alternative.element,
                    "alternative " + NamesOf(alternative) + " of " + std::string(id)));
            }
        }
    }
}

void CoverageItems::AddRules(const rule_source::RuleSet& ruleSet)
{
    std::set<const rule_source::Rule*> named;
    for (const auto& [id, ofEvent] : alternatives) {
        for (const BindingAlternative& alternative : ruleSet.bindings.Find(id)->alternatives) {
            for (const auto& name : alternative.names) {
                named.insert(name.rule);
            }
        }
    }
    for (const rule_source::Rule* rule : ruleSet.rules.all) {
        if (rule->isKept && !rule->isReplaced && named.count(rule) != 0) {
            OfRule& ofRule = rules[std::string(rule->name)];
            AddFilters(*rule, ofRule);
            if (rule->family == rule_source::Family::ALARM) {
                AddWindows(static_cast<const rule_source::AlarmRule&>(*rule), ofRule);
            }
        }
    }
    for (const auto& condition : ruleSet.rules.conditions) {
        const auto ofRule = rules.find(condition.rule->name);
        if (ofRule != rules.end() && condition.IsAsked() && !condition.rule->isReplaced) {
            AddTests(condition, NumberOf(condition.item, *condition.rule), ofRule->second);
        }
    }
}

void CoverageItems::AddFilters(const rule_source::Rule& rule, OfRule& ofRule)
{
    for (std::size_t i = 0; i < RULE_FILTERS.size(); ++i) {
        const std::string_view text = rule.*RULE_FILTERS[i].text;
        ofRule.filters[i] = text.empty() ? NONE
            : Add(Kind::FILTER, rule.element, "rule " + std::string(rule.name) + ": " + RULE_FILTERS[i].attribute + "=\""
                + std::string(text) + "\"");
    }
}

void CoverageItems::AddWindows(const rule_source::AlarmRule& rule, OfRule& ofRule)
{
    for (std::size_t number = 0; number < rule.items.size(); ++number) {
        for (const auto& window : rule.items[number].windows) {
            if (window.element) {
                ofRule.windows[{number, std::string(window.type)}] = Add(Kind::WINDOW, window.element,
                    "rule " + std::string(rule.name) + ": " + std::string(window.type) + " of "
                        + std::to_string(window.threshold) + " in " + std::to_string(window.period) + " days");
            }
        }
    }
}

void CoverageItems::AddTests(const rule_source::RuleCondition& condition, std::size_t alarmItem, OfRule& ofRule)
{
    for (const auto& alternative : condition.condition->alternatives) {
        for (const rule_source::Test& test : alternative.tests) {
            const auto* const param = condition.params->Find(test.id);
            const std::string_view key = param == nullptr ? std::string_view() : param->key;
            const std::size_t item = Add(Kind::TEST, test.element, "rule " + std::string(condition.rule->name) + ": "
                + std::string(key) + " " + std::string(test.word) + " " + std::string(ValueOf(test)));
            ofRule.tests[TestKey(alarmItem, test.word, ValueOf(test), key)].push_back(item);
            // The engine doesn't look at the parameter of a "single_logic" in node rules.
            ofRule.tests[TestKey(alarmItem, test.word, ValueOf(test), "")].push_back(item);
        }
    }
}

} // namespace diagnosis::cases
