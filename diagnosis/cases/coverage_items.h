#ifndef ARBORIST_DIAGNOSIS_CASES_COVERAGE_ITEMS_H
#define ARBORIST_DIAGNOSIS_CASES_COVERAGE_ITEMS_H

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "arborist/frame/evidence_words.h"
#include "diagnosis/cases/coverage.h"
#include "diagnosis/rule_source/rule_set.h"

namespace diagnosis::cases {

/// The filters of a rule in the order in which the engine applies them.
struct RuleFilterWord {
    Evidence::Reason rejection;
    const char* attribute;
    std::string_view rule_source::Rule::*text;
};
inline constexpr std::array<RuleFilterWord, 5> RULE_FILTERS = {{
    {Evidence::Reason::FILTERED_BLACK_PRODUCT, "blackProducts", &rule_source::Rule::blackProducts},
    {Evidence::Reason::FILTERED_PRODUCT, "production", &rule_source::Rule::production},
    {Evidence::Reason::FILTERED_SCENE, "detectScene", &rule_source::Rule::detectScene},
    {Evidence::Reason::FILTERED_PLATFORM, "platform", &rule_source::Rule::platform},
    {Evidence::Reason::FILTERED_DEVICE_TYPE, "deviceType", &rule_source::Rule::deviceType},
}};

/// Everything in a rule set that cases can cover, with the names that evidence uses. Values are indexes
/// into `items`.
class CoverageItems {
public:
    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

    /// The items of one rule.
    struct OfRule {
        /// By RULE_FILTERS; NONE for a filter that the rule doesn't have.
        std::array<std::size_t, RULE_FILTERS.size()> filters;
        /// By number of the alarm item and word of the window.
        std::map<std::pair<std::size_t, std::string>, std::size_t> windows;
        /// By TestKey. Tests that read alike share a key.
        std::map<std::string, std::vector<std::size_t>> tests;
    };

    explicit CoverageItems(const rule_source::RuleSet& ruleSet);

    /// The names of a test in evidence: its parameter may be any if `param` is empty.
    static std::string TestKey(std::size_t alarmItem, std::string_view word, std::string_view value, std::string_view param);

    std::vector<CoverageItem> items;
    /// By number of the tree among those that the engine keeps, and of the event in it; NONE for other events.
    std::vector<std::vector<std::size_t>> leaves;
    /// By event id, one for each alternative that the engine keeps.
    std::map<std::string, std::vector<std::size_t>, std::less<>> alternatives;
    std::map<std::string, OfRule, std::less<>> rules;

private:
    std::size_t Add(CoverageItem::Kind kind, rule_source::Element element, std::string subject);
    void AddLeaves(const rule_source::RuleSet& ruleSet);
    void AddAlternatives(const rule_source::RuleSet& ruleSet);
    void AddRules(const rule_source::RuleSet& ruleSet);
    void AddFilters(const rule_source::Rule& rule, OfRule& ofRule);
    void AddWindows(const rule_source::AlarmRule& rule, OfRule& ofRule);
    void AddTests(const rule_source::RuleCondition& condition, std::size_t alarmItem, OfRule& ofRule);
};

} // namespace diagnosis::cases

#endif
