#ifndef ARBORIST_EVALUATION_NODE_RULE_ENGINE_H
#define ARBORIST_EVALUATION_NODE_RULE_ENGINE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "arborist/evaluation/formula.h"
#include "arborist/evaluation/rule_checker.h"
#include "arborist/model/condition.h"

class NodeRule;

/// Decides node rules: reads small files with one value each, calculates the rule's formula over them and tests the
/// values. Unlike in other families, the first condition of a known kind decides alone.
///
/// Each call reads the files anew, below Settings::DEVICE_ROOT_DIR if that is set. The values stay in the rule's
/// parameters, so that many rules on a large file would fill the memory: once the files of a detection have MOST_BYTES
/// together, each counted as often as it is read, further ones count as unreadable.
class NodeRuleEngine : public RuleChecker {
public:
    static constexpr std::size_t MOST_BYTES = 256 * 1024 * 1024;

    /// From now on the files of a new detection are counted.
    void StartDetection() { mBytesLeft = MOST_BYTES; }
    /// False for the empty event id; otherwise the id has no effect.
    bool IsFaultHappened(const std::shared_ptr<Rule>& rule, const std::string& eventId) override;

private:
    class ParamIndex;

    void SetExpressNodeValue(const ParamIndex& params, const std::string& name, const std::string& value) const;
    void NoteFormula(const Formula::Outcome& outcome) const;
    static const std::string* GetExpressNodeValue(const ParamIndex& params, std::string_view name);
    bool ReadNode(const std::string& path, std::string& value);
    /// True if every file could be read. An unreadable file has the empty value.
    bool SetParamValue(const NodeRule& rule, const ParamIndex& params);
    void RunLogicExpression(const NodeRule& rule, const ParamIndex& params);
    Evidence::Reason CheckConditions(const NodeRule& rule);
    Evidence::Reason ReasonOf(Evidence::Reason outcome, bool allRead) const;
    bool IsFaultForSingleNodeRule(const ParamMap& params, const OrLogic& logic);
    bool IsFaultForMultipleNodeRule(const ParamMap& params, const OrLogic& logic);
    bool IsFaultForNodeRuleItem(const ParamIndex& params, const OrLogic::LogicItem& item);

    std::size_t mBytesLeft = MOST_BYTES;
    bool mIsValueMissing = false; // a test of the current call had no value to look at
};

#endif
