#ifndef ARBORIST_MODEL_CONDITION_H
#define ARBORIST_MODEL_CONDITION_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// One named value that tests refer to.
struct Param {
    /// Name of the value in its source: a JSON member, a result column or the word of a system parameter.
    std::string key;
    /// Type of the comparison: "int", "long", "float", "double" or "string"; see RuleChecker.
    std::string type;
    /// The id by which tests refer to the value; also its key in the map.
    std::string id;
    /// Run-time: the text that was read.
    std::string value;
};

using ParamMap = std::map<std::string, std::shared_ptr<Param>>;

/// One alternative of a condition: a single test, or several that must all be true.
class OrLogic {
public:
    /// One test of a "multiple_logic".
    class LogicItem {
    public:
        LogicItem() = default;
        virtual ~LogicItem() = default;

        const std::string& GetLogic() const { return logic; }
        void SetLogic(const std::string& text) { logic = text; }
        const std::string& GetParamId() const { return paramId; }
        void SetParamId(const std::string& text) { paramId = text; }
        const std::string& GetValue() const { return value; }
        void SetValue(const std::string& text) { value = text; }
        void SetLogicType(const std::string& text) { logicType = text; }
        bool IsResult() const { return result; }
        void SetResult(bool outcome) { result = outcome; }

    private:
        std::string logic;
        std::string paramId;
        std::string value;
        std::string logicType;
        bool result = false; // run-time: outcome of the test
    };

    using LogicItemList = std::vector<std::shared_ptr<LogicItem>>;

    OrLogic() = default;
    virtual ~OrLogic() = default;

    /// "single_logic" or "multiple_logic".
    const std::string& GetType() const { return type; }
    void SetType(const std::string& text) { type = text; }
    /// The comparison: "eq", "gt", "lt", "ge", "le", "ne", "in".
    const std::string& GetLogic() const { return logic; }
    void SetLogic(const std::string& text) { logic = text; }
    /// Where the configured value comes from: "static", "dynamic" or "systemParam".
    const std::string& GetLogicType() const { return logicType; }
    void SetLogicType(const std::string& text) { logicType = text; }
    const std::string& GetParamId() const { return paramId; }
    void SetParamId(const std::string& text) { paramId = text; }
    const std::string& GetValue() const { return value; }
    void SetValue(const std::string& text) { value = text; }
    const std::string& GetCommonPartParamId() const { return commonPartParamId; }
    void SetCommonPartParamId(const std::string& text) { commonPartParamId = text; }
    const LogicItemList& GetLogicItemList() const { return logicItemList; }
    void SetLogicItemList(LogicItemList items) { logicItemList = std::move(items); }
    /// Kept for the tests, which build conditions by it.
    void InsertLogicItemList(const LogicItemList& items);

    /// True if every non-null item is true, also without any item.
    bool CheckAndListResult() const;

private:
    std::string type;
    std::string logic;
    std::string logicType;
    std::string paramId;
    std::string value;
    std::string commonPartParamId;
    LogicItemList logicItemList;
};

using ConditionList = std::vector<std::shared_ptr<OrLogic>>;

/// One test of a threshold item's condition.
class Logic {
public:
    Logic() = default;
    virtual ~Logic() = default;

    const std::string& GetType() const { return type; }
    void SetType(const std::string& text) { type = text; }
    const std::string& GetLogic() const { return logic; }
    void SetLogic(const std::string& text) { logic = text; }
    const std::string& GetParamId() const { return paramId; }
    void SetParamId(const std::string& text) { paramId = text; }
    const std::string& GetValue() const { return value; }
    void SetValue(const std::string& text) { value = text; }
    /// The values of an "in" test.
    const std::vector<std::string>& GetSetList() const { return setList; }
    void SetSetList(const std::vector<std::string>& texts) { setList = texts; }

private:
    std::string type;
    std::string logic;
    std::string paramId;
    std::string value;
    std::vector<std::string> setList;
};

#endif
