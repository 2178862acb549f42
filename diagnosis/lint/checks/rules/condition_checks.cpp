#include <unordered_set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/condition_walk.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::CommandRule;
using rule_source::ConditionAlternative;
using rule_source::DataItem;
using rule_source::Element;
using rule_source::NodeRule;
using rule_source::Param;
using rule_source::ParamTable;
using rule_source::RuleCondition;
using rule_source::RuleSet;
using rule_source::ThresholdBean;
using Kind = ConditionAlternative::Kind;

void CheckFirstWord(const Subject& subject, Report& report)
{
    // Of equally near words the first is taken: "ge" for "gte", "le" for "lte".
    NearNames words{"eq", "ge", "le", "gt", "lt", "ne"};
    ForEachAskedCondition(subject.rules, [&](const RuleCondition& condition) {
        for (const ConditionAlternative& alternative : condition.condition->alternatives) {
            if (alternative.kind == Kind::EMPTY) {
                const Element first = alternative.element.FirstChild();
                report.Add(first, "an alternative of the rule " + Quoted(condition.rule->name) + " begins with "
                        + Quoted(first.Name()) + ", which is no comparison",
                    {.near = words.Find(first.Name())});
            }
        }
    });
}

// ---- Alternatives that the engine drops. ----

std::string WhyDropped(Element alternative)
{
    const std::string_view type = alternative.Value("type");
    if (type == "single_logic") {
        return alternative.FirstChild() ? "has a test without an \"id\"" : "has no test";
    }
    if (type == "multiple_logic") {
        return alternative.FirstChild("and") ? "has no test with an \"id\" and a \"value\"" : "has no \"and\"";
    }
    return alternative.Has("type") ? "has the unknown type " + Quoted(type) : "has no type";
}

// A known type like the one that is misspelt; empty for one that is right.
std::string NearType(Element alternative, NearNames& types)
{
    const std::string_view type = alternative.Value("type");
    const bool isKnown = type == "single_logic" || type == "multiple_logic";
    return isKnown ? "" : types.Find(type);
}

void CheckAlternatives(const Subject& subject, Report& report)
{
    NearNames types{"single_logic", "multiple_logic"};
    ForEachAskedCondition(subject.rules, [&](const RuleCondition& condition) {
        for (const Element dropped : condition.condition->dropped) {
            report.Add(dropped, "an alternative of the rule " + Quoted(condition.rule->name) + " " + WhyDropped(dropped),
                {.attribute = dropped.Find("type"),
                    .help = "write type=\"single_logic\" with a test, or type=\"multiple_logic\" with an \"and\" of several",
                    .near = NearType(dropped, types)});
        }
    });
    ForEachAskedTest(subject.rules, [&report](const AskedTest& asked) {
        if (asked.HasOwnValue() && asked.test.value.empty()) {
            report.Add(asked.test.element, "a test of the rule " + Quoted(asked.RuleName()) + " has no \"value\"",
                {.help = "write the value to compare with"});
        }
    });
}

// The other check reports an alternative that has no test left.
void CheckDroppedTests(const Subject& subject, Report& report)
{
    ForEachAskedCondition(subject.rules, [&report](const RuleCondition& condition) {
        const auto& dropped = condition.condition->dropped;
        const std::unordered_set<Element> gone(dropped.begin(), dropped.end());
        for (const Element test : condition.condition->droppedTests) {
            if (gone.count(test.Parent().Parent()) == 0) {
                report.Add(test, "a test of the rule " + Quoted(condition.rule->name) + " has no "
                        + (test.FirstChild("id").HasText() ? "\"value\"" : "\"id\""),
                    {.help = "write both, or take the test out"});
            }
        }
    });
}

// ---- Parameters. ----

void CheckTable(const ParamTable& table, Report& report)
{
    for (const Element param : table.Incomplete()) {
        const char* const missing = !param.Has("id") ? "id" : !param.Has("key") ? "key" : "type";
        report.Add(param, "a parameter has no " + Quoted(missing),
            {.attribute = param.FirstAttribute(), .help = "write \"id\", \"key\" and \"type\""});
    }
    for (const Param& param : table.Repeated()) {
        report.Add(param.element, "the parameter " + Quoted(param.id) + " is declared again, and the one in line "
                + std::to_string(table.Find(param.id)->element.Line()) + " counts",
            {.attribute = param.element.Find("id"), .help = "give each parameter an id of its own"});
    }
}

/// Calls `visit(table)` for the parameters of all rules.
template <typename Visit>
void ForEachTableOfRules(const RuleSet& rules, Visit visit)
{
    for (const AlarmRule& rule : rules.rules.alarmRules) {
        for (const AlarmItem& item : rule.items) {
            visit(item.params);
        }
    }
    for (const CommandRule& rule : rules.rules.commandRules) {
        visit(rule.params);
    }
    for (const NodeRule& rule : rules.rules.nodeRules) {
        visit(rule.params);
    }
}

/// Calls `visit(table)` for the parameters of all shared data.
template <typename Visit>
void ForEachTableOfCommonPart(const RuleSet& rules, Visit visit)
{
    for (const ThresholdBean& bean : rules.commonPart.beans) {
        visit(bean.systemParams);
        visit(bean.thresholds);
        for (const DataItem& item : bean.dataItems) {
            visit(item.params);
        }
    }
}

void CheckParams(const Subject& subject, Report& report)
{
    const auto check = [&report](const ParamTable& table) { CheckTable(table, report); };
    ForEachTableOfRules(subject.rules, check);
    ForEachTableOfCommonPart(subject.rules, check);
}

constexpr Check CHECKS[] = {
    {"A426", Severity::ERROR, CheckClass::STATIC, "alternative that begins with no comparison",
        "A \"single_logic\" whose first element is none of \"eq\", \"gt\", \"lt\", \"ge\", \"le\" and \"ne\".",
        "the alternative is kept without a test and never holds; tests behind the first element are not looked at",
        CheckFirstWord},
    {"A427", Severity::ERROR, CheckClass::STATIC, "alternative of a condition that is dropped",
        "An \"or\" of a condition without a type or with an unknown one, without an \"and\" or a test, or with a test "
        "without an \"id\"; and a test that has nothing to compare with.",
        "the alternative is dropped, or never holds", CheckAlternatives},
    {"A428", Severity::WARNING, CheckClass::STATIC, "one of several tests that is dropped",
        "A test of a \"multiple_logic\" without an \"id\" or a \"value\", beside others.",
        "the test is dropped, and the others alone must hold: the rule fires more often", CheckDroppedTests},
    {"A429", Severity::WARNING, CheckClass::STATIC, "parameter that is skipped",
        "A \"param\" without \"id\", \"key\" or \"type\", or with the id of an earlier one.",
        "it is skipped; of two with one id the first counts", CheckParams},
};

} // namespace

std::span<const Check> ConditionChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
