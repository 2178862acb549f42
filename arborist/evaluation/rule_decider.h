#ifndef ARBORIST_EVALUATION_RULE_DECIDER_H
#define ARBORIST_EVALUATION_RULE_DECIDER_H

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "arborist/evaluation/rule_checkers.h"
#include "arborist/frame/detection_observer.h"
#include "arborist/frame/evidence.h"

class CommonPart;
class FaultTreeParser;
class Rule;
class RuleHelper;

/// What a rule has answered.
struct RuleAnswer {
    bool fires = false;
    Evidence::Rule record;
};

/// Decides one rule of the rule set for one event: applies the filters, then asks the checker of the rule's family.
/// Writes what happens into a record of the rule.
///
/// Shares ownership of its arguments. Not thread-safe.
class RuleDecider {
public:
    /// Both arguments must not be null when a rule is decided.
    RuleDecider(
        std::shared_ptr<FaultTreeParser> ruleSet, std::shared_ptr<RuleHelper> ruleHelper, RuleCheckers checkers);

    /// Gives the answer of a rule that need not be asked; null to ask it. It is copied at once.
    using KnownAnswer = std::function<const RuleAnswer*(const std::string& ruleName)>;

    /// True if the rule of this name fires; false for a rule that isn't there or isn't for this device. Appends its
    /// record to `alternative`, which is null without an observer.
    bool Fires(const std::string& ruleName, const std::string& eventId, Evidence::Alternative* alternative);
    /// Appends the record of a rule that is not run, as its group has ended.
    void SkipInGroup(const std::string& ruleName, Evidence::Alternative& alternative) const;

    RuleCheckers& GetCheckers() { return mCheckers; }
    /// Sets the common part for command rules.
    void SetCommonPart(std::shared_ptr<CommonPart> commonPart) { mCommonPart = std::move(commonPart); }
    /// The observer hears of trouble; null for none. A rule may call the host, which may set it anew. Not owned.
    void SetObserver(DetectionObserver* observer) { mObserver = observer; }
    DetectionObserver* GetObserver() const { return mObserver; }
    /// Sets where answers come from that are known; empty, the default, for nowhere.
    void SetKnownAnswers(KnownAnswer find) { mFindKnown = std::move(find); }

private:
    bool AskIfSupported(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record);
    bool Ask(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule* record);
    bool AskAndRecord(const std::shared_ptr<Rule>& rule, const std::string& eventId, Evidence::Rule& record);
    void Tell(Evidence::Trouble trouble, const Rule& rule, const std::string& eventId, Evidence::Rule& record) const;

    std::shared_ptr<FaultTreeParser> mRuleSet;
    std::shared_ptr<RuleHelper> mRuleHelper;
    RuleCheckers mCheckers;
    std::shared_ptr<CommonPart> mCommonPart;
    DetectionObserver* mObserver = nullptr;
    KnownAnswer mFindKnown;
};

#endif
