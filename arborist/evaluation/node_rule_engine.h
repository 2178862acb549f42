#ifndef ARBORIST_EVALUATION_NODE_RULE_ENGINE_H
#define ARBORIST_EVALUATION_NODE_RULE_ENGINE_H

#include <memory>
#include <string>
#include <string_view>

#include "arborist/evaluation/rule_checker.h"
#include "arborist/model/condition.h"

class NodeRule;

/// Decides node rules: reads small files that hold one value each, works out the rule's formula over them and tests the
/// values. The first condition of a known kind is the whole answer; those behind it are never asked, unlike with other
/// rules.
///
/// The files are read anew at each call, below Settings::DEVICE_ROOT_DIR where that is set. What was read and worked
/// out stays in the rule's parameters.
class NodeRuleEngine : public RuleChecker {
public:
    /// False for the empty event id, which plays no other part.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

private:
    class ParamIndex;

    static void SetExpressNodeValue(const ParamIndex& params, const std::string& name, const std::string& value);
    static const std::string* GetExpressNodeValue(const ParamIndex& params, std::string_view name);
    /// Answers whether every file could be read. One that can't gives the empty value.
    bool SetParamValue(const NodeRule& rule, const ParamIndex& params);
    void RunLogicExpression(const NodeRule& rule, const ParamIndex& params);
    bool CheckConditions(const NodeRule& rule);
    bool IsFaultForSingleNodeRule(const ParamMap& params, const OrLogic& logic);
    bool IsFaultForMultipleNodeRule(const ParamMap& params, const OrLogic& logic);
    bool IsFaultForNodeRuleItem(const ParamIndex& params, const OrLogic::LogicItem& item);

    bool mIsValueMissing = false; // a test of the current call had no value to look at
};

#endif
