#ifndef ARBORIST_MODEL_EVENT_RULE_H
#define ARBORIST_MODEL_EVENT_RULE_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// One alternative of an event's rules: one rule, or several that must all fire.
struct OrRuleSingle {
    /// "singleRule" or "multipleRule".
    std::string type;
    /// Of a "singleRule".
    std::string ruleName;
    /// Run-time: true if the alternative was true.
    bool result = false;
    /// Of a "multipleRule".
    std::vector<std::string> ruleNameList;
};

using OrRuleList = std::vector<std::shared_ptr<OrRuleSingle>>;

/// The name of an alternative: that of its rule for a "singleRule", otherwise the listed names joined by commas.
std::string NameOf(const OrRuleSingle& alternative);
/// The names of the rules that an alternative of this name asks: the parts between the commas, but for empty ones;
/// without a comma the name itself, also if it is empty.
std::vector<std::string> RuleNamesIn(const std::string& alternativeName);

/// The rules that decide one event.
class EventRule {
public:
    EventRule() = default;
    virtual ~EventRule() = default;

    void SetEventId(const std::string& id) { eventId = id; }
    /// Returns the id. The odd name is part of the interface that rule code was written against.
    const std::string& SetEventId() const { return eventId; }
    const OrRuleList& GetRuleList() const { return ruleList; }
    void SetRuleList(OrRuleList rules) { ruleList = std::move(rules); }
    /// The result of CheckResult, which alone sets it; these two are kept for the tests.
    ///@{
    bool IsRuleResult() const { return ruleResult; }
    void SetRuleResult(bool result) { ruleResult = result; }
    ///@}

    /// True if any alternative is true, or was at an earlier call: the result never goes back to false. Always false
    /// without alternatives.
    bool CheckResult();

private:
    std::string eventId;
    bool ruleResult = false; // run-time
    OrRuleList ruleList;
};

#endif
