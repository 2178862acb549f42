#ifndef ARBORIST_DIAGNOSIS_CASES_COVERAGE_H
#define ARBORIST_DIAGNOSIS_CASES_COVERAGE_H

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "diagnosis/cases/rule_sets.h"
#include "diagnosis/evidence/recorded_tree.h"

namespace diagnosis::cases {

/// Something in a rule set that ends in one of two ways, and which of them the cases have shown.
struct CoverageItem {
    enum class Kind {
        LEAF, ///< a leaf event with rules: true, false
        ALTERNATIVE, ///< an alternative of an event's rules: held, failed
        WINDOW, ///< a time window of an alarm rule: reached, not reached
        TEST, ///< a comparison in a condition: held, failed
        FILTER, ///< a filter attribute of a rule: passed, rejected
    };

    Kind kind = Kind::LEAF;
    /// "event HOT", "rule hot: gt 70".
    std::string subject;
    std::string file;
    int line = 0;
    bool wasYes = false;
    bool wasNo = false;

    std::size_t Covered() const { return (wasYes ? 1U : 0U) + (wasNo ? 1U : 0U); }
    /// The outcomes that no case has shown: "true", "false".
    std::vector<std::string> Missing() const;
};

/// "leaves", "alternatives", "windows", "tests", "filters".
const char* CoverageKindText(CoverageItem::Kind kind);

/// What the cases of one rule set have shown of it.
struct RuleSetCoverage {
    std::string folder;
    std::string tag;
    /// By file and line.
    std::vector<CoverageItem> items;

    /// Numbers of outcomes, two for each item.
    std::size_t Covered() const;
    std::size_t Total() const { return 2 * items.size(); }
    /// True if at least this part of the outcomes is covered.
    bool Reaches(std::size_t percent) const { return Covered() * 100 >= Total() * percent; }
};

class RuleSetCollector;

/// Collects from the explanations of detections what they show of their rule sets. Outcomes count only where they were
/// decided on data that was there: a rule that had no value to compare shows nothing.
class Coverage {
public:
    Coverage();
    ~Coverage();
    Coverage(const Coverage&) = delete;
    Coverage& operator=(const Coverage&) = delete;

    void Add(const RuleSets::Key& key, const rule_source::RuleSet& ruleSet, const TreeReports& trees);
    std::vector<RuleSetCoverage> Result() const;

private:
    std::map<RuleSets::Key, std::unique_ptr<RuleSetCollector>> mCollectors;
};

} // namespace diagnosis::cases

#endif
