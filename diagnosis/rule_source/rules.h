#ifndef ARBORIST_DIAGNOSIS_RULE_SOURCE_RULES_H
#define ARBORIST_DIAGNOSIS_RULE_SOURCE_RULES_H

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <string_view>
#include <vector>

#include "diagnosis/rule_source/conditions.h"
#include "diagnosis/rule_source/numbers.h"
#include "diagnosis/rule_source/params.h"

namespace diagnosis::rule_source {

enum class Family { ALARM, COMMAND, CODE, NODE };

/// The members that rules of all families share.
struct Rule {
    Element element;
    Family family = Family::ALARM;
    std::string_view name;
    std::string_view type;
    std::string_view platform;
    std::string_view production;
    std::string_view blackProducts;
    std::string_view detectScene;
    std::string_view deviceType;
    /// True if the engine keeps it: it has a name and, if it is a code rule, a "detectInfo".
    bool isKept = true;
    /// True if a later rule of the same name replaces it.
    bool isReplaced = false;
};

/// A "time" element.
struct TimeWindow {
    Element element;
    std::string_view type;
    /// As the engine reads them: 0 if the attribute is missing or no number.
    std::int32_t period = 0;
    std::int32_t threshold = 0;
};

TimeWindow ReadTimeWindow(Element element);

/// A range of event ids: "Eventid_Min" and "Eventid_Max" as the engine reads them.
struct IdRange {
    WholeNumber min;
    WholeNumber max;
    /// The ids from first to last; none if `first` is 0 or greater than `last`.
    std::int32_t first = 0;
    std::int32_t last = 0;

    bool IsEmpty() const { return first == 0 || first > last; }
    /// Number of ids.
    std::int64_t Size() const { return IsEmpty() ? 0 : std::int64_t{last} - first + 1; }
};

IdRange ReadIdRange(Element alarmId);

/// The windows of an alarm item in the order in which the engine checks them.
enum class WindowKind { DURATION, DAILY_PEAK, LATEST };
inline constexpr std::array<const char*, 3> WINDOW_WORDS = {"duration", "daily_peak", "latest"};

/// An "alarmId" of an alarm rule.
struct AlarmItem {
    Element element;
    std::string_view type;
    /// "1" if the attribute is missing.
    std::string_view beginFlag;
    IdRange ids;
    /// For each kind the window that counts, the last of its type. Its element is null if there is none.
    std::array<TimeWindow, 3> windows;
    /// All "time" elements in order, including those that are dropped or replaced.
    std::vector<TimeWindow> times;
    ParamTable params;
    Condition condition;

    const TimeWindow& Window(WindowKind kind) const { return windows[static_cast<std::size_t>(kind)]; }
    /// True if the engine runs its tests at all.
    bool HasTests() const { return type == "param_eventid"; }
};

struct AlarmRule : Rule {
    std::vector<AlarmItem> items;
};

struct CodeRule : Rule {
    /// Null if it is missing, for which the engine drops the rule.
    Element detectInfo;
    std::string_view code;
    Element userDefinedInfo;
};

/// A command rule. Missing elements, and everything in them, are null.
struct CommandRule : Rule {
    Element referenceCommonPart;
    Element commonPartNameElement;
    std::string_view commonPartName;

    Element referenceDefDb;
    std::string_view referenceType;
    Element defDbNameElement;
    std::string_view defDbName;
    Element defDbNumElement;
    std::string_view defDbNum;

    ParamTable params;

    Element analysisMethod;
    std::string_view analysisType;
    Element sqlCondition;
    std::string_view sqlConditionType;
    Element sqlItem;
    Element sqlElement;
    std::string_view sql;
    TimeWindow time;
    /// The element; its text is "1" if the element or attribute is missing.
    Element beginFlagElement;
    std::string_view beginFlag;
    Condition condition;

    Element normalization;
    /// The elements "defineTimeProp" and "defineNormalizationProp" that have an "id".
    std::vector<Element> timeParams;
    std::vector<Element> normalizationParams;
};

struct NodeInfo {
    Element element;
    std::string_view param;
    std::string_view path;
    std::string_view type;
};

struct NodeRule : Rule {
    std::vector<NodeInfo> nodes;
    ParamTable params;
    /// Null where the rule has none.
    Element expression;
    std::string_view expressionType;
    std::string_view ret;
    std::string_view express;
    Condition condition;
};

/// A condition of a rule with the parameters that its tests name.
struct RuleCondition {
    const Rule* rule = nullptr;
    const ParamTable* params = nullptr;
    const Condition* condition = nullptr;
    /// Its item; null in rules that are no alarm rules.
    const AlarmItem* item = nullptr;

    /// True if the engine runs its tests at all.
    bool IsAsked() const { return item == nullptr || item->HasTests(); }
};

/// The rules of one tag.
struct Rules {
    std::deque<AlarmRule> alarmRules;
    std::deque<CommandRule> commandRules;
    std::deque<CodeRule> codeRules;
    std::deque<NodeRule> nodeRules;
    /// All rules in file order, including those that are dropped or replaced.
    std::vector<const Rule*> all;
    /// The rule that counts for each name.
    std::map<std::string_view, const Rule*> byName;
    /// The conditions of all rules that are kept, in order of family.
    std::vector<RuleCondition> conditions;

    Rules() = default;
    Rules(Rules&&) = default;
    Rules& operator=(Rules&&) = default;

    /// Null for a name that no rule has.
    const Rule* Find(std::string_view name) const
    {
        const auto found = byName.find(name);
        return found == byName.end() ? nullptr : found->second;
    }
};

/// Reads the children of a tag element; null has none.
Rules ReadRules(Element tag);

} // namespace diagnosis::rule_source

#endif
