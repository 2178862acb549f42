#ifndef ARBORIST_EVALUATION_RULE_CHECKERS_H
#define ARBORIST_EVALUATION_RULE_CHECKERS_H

#include <memory>

#include "arborist/frame/evidence_words.h"

class AlarmRuleEngine;
class CodeRuleEngine;
class CommandRuleEngine;
class CommonPart;
class FaultTreeParser;
class NodeRuleEngine;
class Rule;
class RuleChecker;
class RuleEngineHelper;
class RuleHelper;
struct DetectInfo;

/// The family of a rule by its class; NONE for null and for a class without a checker.
Evidence::Family FamilyOf(const Rule* rule);

/// Creates a checker for each family of rules on first use and keeps it for all trees.
///
/// Shares ownership of its arguments; each may be null.
class RuleCheckers {
public:
    RuleCheckers(std::shared_ptr<RuleHelper> ruleHelper, std::shared_ptr<RuleEngineHelper> ruleEngineHelper,
                 std::shared_ptr<FaultTreeParser> faultTreeParser, std::shared_ptr<DetectInfo> detectInfo);

    /// Call before the rules of a detection are run.
    void StartDetection();
    /// Call when all rules of a detection have run: closes the database that a command rule asked last.
    void EndDetection();
    /// The checker of the rule's family; null, with a warning in the log, if there is none. The checker of command
    /// rules keeps the `commonPart` of the call that creates it.
    std::shared_ptr<RuleChecker> Get(const Rule* rule, const std::shared_ptr<CommonPart>& commonPart);
    /// The checker of code rules, which also answers look-ups of detect codes before any rule is run.
    const std::shared_ptr<CodeRuleEngine>& GetCodeRuleEngine();

private:
    template <typename Checker, typename... Arguments>
    const std::shared_ptr<Checker>& MakeOnce(std::shared_ptr<Checker>& checker, const Arguments&... arguments);
    void ForeseeAlarmRules();

    std::shared_ptr<RuleHelper> mRuleHelper;
    std::shared_ptr<RuleEngineHelper> mRuleEngineHelper;
    std::shared_ptr<FaultTreeParser> mFaultTreeParser;
    std::shared_ptr<DetectInfo> mDetectInfo;
    std::shared_ptr<AlarmRuleEngine> mAlarmRuleEngine;
    std::shared_ptr<CommandRuleEngine> mCommandRuleEngine;
    std::shared_ptr<NodeRuleEngine> mNodeRuleEngine;
    std::shared_ptr<CodeRuleEngine> mCodeRuleEngine;
};

#endif
