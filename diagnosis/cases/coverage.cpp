#include "diagnosis/cases/coverage.h"

#include <algorithm>
#include <tuple>

#include "diagnosis/cases/coverage_items.h"

namespace diagnosis::cases {

namespace {

using Evidence::Check;
using Evidence::Verdict;
using Kind = CoverageItem::Kind;

struct OutcomeWords {
    const char* kind;
    const char* yes;
    const char* no;
};

OutcomeWords WordsOf(Kind kind)
{
    switch (kind) {
    case Kind::LEAF:
        return {"leaves", "true", "false"};
    case Kind::ALTERNATIVE:
        return {"alternatives", "held", "failed"};
    case Kind::WINDOW:
        return {"windows", "reached", "missed"};
    case Kind::TEST:
        return {"tests", "held", "failed"};
    case Kind::FILTER:
        return {"filters", "passed", "rejected"};
    }
    return {"", "", ""};
}

} // namespace

/// Marks the items of one rule set.
class RuleSetCollector {
public:
    RuleSetCollector(const RuleSets::Key& key, const rule_source::RuleSet& ruleSet) : mKey(key), mItems(ruleSet) {}

    void Add(const TreeReports& trees)
    {
        // Trees are in the order of the file; a rule set that has changed since is skipped.
        for (std::size_t tree = 0; tree < std::min(trees.size(), mItems.leaves.size()); ++tree) {
            AddLeaves(trees[tree].tree, mItems.leaves[tree]);
            for (const Evidence::Event& event : trees[tree].tree.evidence) {
                AddAlternatives(event);
                for (const PlacedRule& placed : RulesOf(event)) {
                    AddRule(placed.rule);
                }
            }
        }
    }

    RuleSetCoverage Result() const { return {RuleSets::ShownFolder(mKey.folder), mKey.tag, mItems.items}; }

private:
    void Mark(std::size_t item, bool isYes, bool isNo)
    {
        if (item != CoverageItems::NONE) {
            mItems.items[item].wasYes |= isYes;
            mItems.items[item].wasNo |= isNo;
        }
    }

    void AddLeaves(const RecordedTree& tree, const std::vector<std::size_t>& leaves)
    {
        for (std::size_t i = 0; i < std::min(tree.events.size(), leaves.size()); ++i) {
            if (tree.events[i].check == Check::DECIDED) {
                Mark(leaves[i], tree.events[i].IsInError(), tree.events[i].status == Evidence::EventState::ABSENT);
            }
        }
    }

    void AddAlternatives(const Evidence::Event& event)
    {
        const auto items = mItems.alternatives.find(event.id);
        if (items == mItems.alternatives.end() || items->second.size() != event.alternatives.size()) {
            return;
        }
        for (std::size_t i = 0; i < event.alternatives.size(); ++i) {
            const auto& rules = event.alternatives[i].rules;
            const bool held = !rules.empty() && std::all_of(rules.begin(), rules.end(),
                [](const Evidence::Rule& rule) { return rule.verdict == Verdict::FIRED; });
            const bool failed = std::any_of(rules.begin(), rules.end(), [](const Evidence::Rule& rule) {
                return rule.verdict == Verdict::NOT_FIRED && rule.check == Check::DECIDED;
            });
            Mark(items->second[i], held, failed);
        }
    }

    void AddRule(const Evidence::Rule& rule)
    {
        const auto ofRule = mItems.rules.find(rule.name);
        if (ofRule == mItems.rules.end() || rule.reason == Evidence::Reason::GROUP_ENDED) {
            return;
        }
        AddFilters(rule.reason, ofRule->second);
        if (const auto* const alarm = std::get_if<Evidence::Alarm>(&rule.part)) {
            AddWindows(*alarm, ofRule->second);
        } else if (const auto* const command = std::get_if<Evidence::Command>(&rule.part)) {
            for (const Evidence::Statement& statement : command->statements) {
                AddComparisons(statement.comparisons, ofRule->second);
            }
        } else if (const auto* const node = std::get_if<Evidence::Node>(&rule.part)) {
            AddComparisons(node->comparisons, ofRule->second);
        }
    }

    // Filters in front of the one that rejected let the rule pass, those behind it were not asked.
    void AddFilters(Evidence::Reason reason, const CoverageItems::OfRule& ofRule)
    {
        for (std::size_t i = 0; i < RULE_FILTERS.size(); ++i) {
            const bool isRejected = RULE_FILTERS[i].rejection == reason;
            Mark(ofRule.filters[i], !isRejected, isRejected);
            if (isRejected) {
                return;
            }
        }
    }

    void AddWindows(const Evidence::Alarm& alarm, const CoverageItems::OfRule& ofRule)
    {
        for (const Evidence::Window& window : alarm.windows) {
            const auto item = ofRule.windows.find({window.item, window.kind});
            if (item != ofRule.windows.end()) {
                Mark(item->second, window.hit, window.reason == Evidence::Reason::WINDOW_SHORT);
            }
            for (const Evidence::Test& test : window.tests) {
                MarkTests(window.item, test.logic, test.value, test.key, test.rowsPassed > 0,
                    test.rowsPassed < test.rowsTested, ofRule);
            }
        }
    }

    void AddComparisons(const std::vector<Evidence::Comparison>& comparisons, const CoverageItems::OfRule& ofRule)
    {
        for (const Evidence::Comparison& comparison : comparisons) {
            const std::string& value = comparison.sourceId.empty() ? comparison.configured : comparison.sourceId;
            const bool isCompared = !comparison.observed.empty();
            MarkTests(0, comparison.logic, value, comparison.key, isCompared && comparison.holds,
                isCompared && !comparison.holds, ofRule);
        }
    }

    void MarkTests(std::size_t alarmItem, const std::string& word, const std::string& value, const std::string& param,
        bool held, bool failed, const CoverageItems::OfRule& ofRule)
    {
        auto tests = ofRule.tests.find(CoverageItems::TestKey(alarmItem, word, value, param));
        if (tests == ofRule.tests.end()) {
            tests = ofRule.tests.find(CoverageItems::TestKey(alarmItem, word, value, ""));
        }
        if (tests != ofRule.tests.end()) {
            for (const std::size_t item : tests->second) {
                Mark(item, held, failed);
            }
        }
    }

    RuleSets::Key mKey;
    CoverageItems mItems;
};

std::vector<std::string> CoverageItem::Missing() const
{
    const OutcomeWords words = WordsOf(kind);
    std::vector<std::string> missing;
    if (!wasYes) {
        missing.emplace_back(words.yes);
    }
    if (!wasNo) {
        missing.emplace_back(words.no);
    }
    return missing;
}

const char* CoverageKindText(Kind kind)
{
    return WordsOf(kind).kind;
}

std::size_t RuleSetCoverage::Covered() const
{
    std::size_t covered = 0;
    for (const CoverageItem& item : items) {
        covered += item.Covered();
    }
    return covered;
}

Coverage::Coverage() = default;
Coverage::~Coverage() = default;

void Coverage::Add(const RuleSets::Key& key, const rule_source::RuleSet& ruleSet, const TreeReports& trees)
{
    auto& collector = mCollectors[key];
    if (collector == nullptr) {
        collector = std::make_unique<RuleSetCollector>(key, ruleSet);
    }
    collector->Add(trees);
}

std::vector<RuleSetCoverage> Coverage::Result() const
{
    std::vector<RuleSetCoverage> results;
    for (const auto& [key, collector] : mCollectors) {
        results.push_back(collector->Result());
        auto& items = results.back().items;
        std::stable_sort(items.begin(), items.end(), [](const CoverageItem& one, const CoverageItem& other) {
            return std::tie(one.file, one.line) < std::tie(other.file, other.line);
        });
    }
    return results;
}

} // namespace diagnosis::cases
