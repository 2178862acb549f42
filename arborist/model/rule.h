#ifndef ARBORIST_MODEL_RULE_H
#define ARBORIST_MODEL_RULE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arborist/model/condition.h"

/// What the rules of all families have in common. The loader's rule map and the evaluation share a rule; only one
/// thread at a time may evaluate it, since evaluation writes the fields marked "run-time".
class Rule {
public:
    Rule() = default;
    virtual ~Rule() = default;

    /// The word of the rule's family; empty for the base class.
    virtual std::string GetRuleType() const { return ""; }

    /// Key of the rule map; "Rule-name" elements refer to it.
    std::string name;
    std::string type;
    /// The device's platform, product, scene and type are looked for in these texts; see RuleHelper.
    std::string platform;
    std::string production;
    std::string blackProducts;
    std::string detectScene;
    std::string deviceType;
};

/// One time window.
class TimeSet {
public:
    enum TimeType : int { DURATION = 0, DAILY_PEAK = 1, LATEST = 2 };

    TimeSet() = default;
    virtual ~TimeSet() = default;

    /// "duration", "daily_peak" or "latest".
    std::string type;
    /// Length in days; 0 means 30.
    std::int32_t period = 0;
    /// Count to reach.
    std::int32_t threshold = 0;
    /// True if the rule file has a text that is no number in one of the two: it was read as 0.
    bool isBadPeriod = false;
    bool isBadThreshold = false;
    /// Run-time: the kind of this window within its item.
    TimeType timeType = DURATION;
};

/// Counts logged events in time windows.
class AlarmRule : public Rule {
public:
    /// One range of event ids with its windows and tests.
    class AlarmItem {
    public:
        static constexpr char TAG[] = "AlarmItem";
        static constexpr char EMPTY_STRING[] = "";

        /// The bounds as numbers: 0 for the empty text and for a text that is no number (which logs an error).
        std::int32_t GetEventIdMin() const { return ParseAlarmIdToInt(Eventid_Min); }
        std::int32_t GetEventIdMax() const { return ParseAlarmIdToInt(Eventid_Max); }

        /// With "param_eventid" the tests of `conditionList` apply; any other text counts rows without tests.
        std::string type;
        std::string Eventid_Min;
        std::string Eventid_Max;
        std::shared_ptr<TimeSet> duration;
        std::shared_ptr<TimeSet> daily_peak;
        std::shared_ptr<TimeSet> latest;
        ParamMap params;
        ConditionList conditionList;
        /// Part of the record as rule code knows it; the library neither sets nor reads it.
        bool flag = false;
        /// What may shorten the windows: "1" the last reset and update, "2" the update, "3" the reset, "4" neither.
        std::string BeginFlag = "1";

    private:
        static std::int32_t ParseAlarmIdToInt(std::string text);
    };

    static constexpr char ALARM_RULE[] = "AlarmRule";

    std::string GetRuleType() const override { return ALARM_RULE; }

    std::vector<std::shared_ptr<AlarmItem>> alarmItemList;
};

/// Asks the host's CodeRuleRunner.
class CodeRule : public Rule {
public:
    struct CodeItem {
        /// The detect code by which the host refers to this rule.
        std::string id;
    };

    static constexpr char CODE_RULE[] = "CodeRule";

    std::string GetRuleType() const override { return CODE_RULE; }

    CodeItem codeItem;
    /// Passed to the host's runner unchanged.
    std::string userDefinedInfo;
};

/// Runs SQL on a prepared database and compares the values of the row that it returns.
class CommandRule : public Rule {
public:
    struct SqlItem {
        /// "normalization" or "defDBSql".
        std::string type;
        std::string sql;
        TimeSet time;
        ConditionList conditionList;
        std::vector<std::string> timeParamList;
        std::vector<std::string> normalizationParamList;
        std::string BeginFlag = "1";
    };

    struct AnalysisMethod {
        SqlItem sqlItem;
        /// The library evaluates "SQL" only; a rule with another method is false.
        std::string type;
    };

    /// Names the external databases on which the query runs.
    struct ReferenceDefDb {
        static constexpr char TAG[] = "ReferenceDefDb";

        /// "singleDB": one hit is enough; anything else counts hits against `defDBNum`.
        std::string type;
        std::string defDBDomain;
        /// Name of a DefDbTableBean.
        std::string defDBName;
        std::string defDBNum;
    };

    static constexpr char COMMAND_RULE[] = "CommandRule";

    std::string GetRuleType() const override { return COMMAND_RULE; }

    AnalysisMethod analysisMethod;
    std::string commonPartDomain;
    /// Name of the ThresholdOrLumbraBean that this rule uses.
    std::string commonPartName;
    ParamMap params;
    /// Null when the rule names none: it then runs on the derived database.
    std::shared_ptr<ReferenceDefDb> referenceDefDb;
};

/// Where a node rule reads one value from.
class NodeInfo {
public:
    NodeInfo() = default;
    virtual ~NodeInfo() = default;

    const std::string& GetParam() const { return param; }
    void SetParam(const std::string& text) { param = text; }
    const std::string& GetPath() const { return path; }
    void SetPath(const std::string& text) { path = text; }
    const std::string& GetType() const { return type; }
    void SetType(const std::string& text) { type = text; }

private:
    std::string param;
    std::string path;
    std::string type;
};

/// Reads node files, calculates a formula and compares the result.
class NodeRule : public Rule {
public:
    class LogicExpression {
    public:
        LogicExpression() = default;
        virtual ~LogicExpression() = default;

        const std::string& GetExpress() const { return express; }
        void SetExpress(const std::string& text) { express = text; }
        const std::string& GetRet() const { return ret; }
        void SetRet(const std::string& text) { ret = text; }
        const std::string& GetType() const { return type; }
        void SetType(const std::string& text) { type = text; }

    private:
        std::string express;
        std::string ret;
        std::string type;
    };

    using NodeInfoList = std::vector<std::shared_ptr<NodeInfo>>;

    std::string GetRuleType() const override { return "NodeRule"; }

    const LogicExpression& GetLogicExpression() const { return logicExpression; }
    void SetLogicExpression(const LogicExpression& expression);
    const ParamMap& GetParamMap() const { return paramMap; }
    void SetParamMap(ParamMap params) { paramMap = std::move(params); }
    /// Adds the entries whose id is new; an id that is already present keeps its first entry. This and the Insert
    /// functions below are kept for the tests, which build rules by them.
    void InsertParamMap(const ParamMap& params);
    const NodeInfoList& GetNodeInfoList() const { return nodeInfoList; }
    void SetNodeInfoList(NodeInfoList nodes) { nodeInfoList = std::move(nodes); }
    void InsertNodeInfoList(const NodeInfoList& nodes);
    const ConditionList& GetConditionList() const { return conditionList; }
    void SetConditionList(ConditionList conditions) { conditionList = std::move(conditions); }
    void InsertConditionList(const ConditionList& conditions);

private:
    LogicExpression logicExpression;
    ParamMap paramMap;
    NodeInfoList nodeInfoList;
    ConditionList conditionList;
};

#endif
