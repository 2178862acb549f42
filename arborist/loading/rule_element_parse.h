#ifndef ARBORIST_LOADING_RULE_ELEMENT_PARSE_H
#define ARBORIST_LOADING_RULE_ELEMENT_PARSE_H

#include <memory>

#include "arborist/model/rule.h"

namespace tinyxml2 {
class XMLElement;
}

/// Reads one rule element of a family. Use an object for one element, which must outlive it.
class RuleElementParse {
public:
    explicit RuleElementParse(const tinyxml2::XMLElement& element) : mElement(element) {}
    virtual ~RuleElementParse() = default;
    RuleElementParse(const RuleElementParse&) = delete;
    RuleElementParse& operator=(const RuleElementParse&) = delete;

    /// Returns the rule, whose name may be empty; null for an element of another family.
    virtual std::shared_ptr<Rule> Parse() const = 0;

protected:
    /// Assigns the attributes that all families share.
    void ParseRuleAttr(Rule& rule) const;
    /// Reads "type", "period" and "threshold"; a missing number, or a text that is none, reads as 0.
    static void ParseTimeSet(const tinyxml2::XMLElement& element, TimeSet& timeSet);

    const tinyxml2::XMLElement& mElement;
};

/// "alarmRule".
class AlarmRuleElementParse final : public RuleElementParse {
public:
    using RuleElementParse::RuleElementParse;
    std::shared_ptr<Rule> Parse() const override;

private:
    static std::shared_ptr<AlarmRule::AlarmItem> ParseAlarmItem(const tinyxml2::XMLElement& element);
    static void ParseAlarmItemAttrs(const tinyxml2::XMLElement& element, AlarmRule::AlarmItem& item);
};

/// "codeRule". Without a "detectInfo" there is no rule.
class CodeRuleElementParse final : public RuleElementParse {
public:
    using RuleElementParse::RuleElementParse;
    std::shared_ptr<Rule> Parse() const override;
};

/// "commandRule". All of its parts are optional; an "AnalysisMethod" without "SQL_Condition" logs a warning.
class CommandRuleElementParse final : public RuleElementParse {
public:
    using RuleElementParse::RuleElementParse;
    std::shared_ptr<Rule> Parse() const override;

private:
    static std::shared_ptr<CommandRule::ReferenceDefDb> ParseRefDefDb(const tinyxml2::XMLElement& element);
    static void ParseAnalysisMethod(const tinyxml2::XMLElement& element, CommandRule::AnalysisMethod& method);
    static void ParseSqlItem(const tinyxml2::XMLElement& sqlCondition, CommandRule::SqlItem& item);
    static void ParseNormalElement(const tinyxml2::XMLElement& element, CommandRule::SqlItem& item);
    static void ParseTimeElement(const tinyxml2::XMLElement& element, CommandRule::SqlItem& item);
};

/// "nodeRule".
class NodeAlarmElementParse final : public RuleElementParse {
public:
    using RuleElementParse::RuleElementParse;
    std::shared_ptr<Rule> Parse() const override;

private:
    static std::shared_ptr<NodeInfo> ParseNodeInfo(const tinyxml2::XMLElement& element);
    static NodeRule::LogicExpression ParseLogicExpression(const tinyxml2::XMLElement& element);
};

#endif
