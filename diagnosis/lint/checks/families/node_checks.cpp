#include <algorithm>
#include <unordered_set>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/node_rules.h"

namespace diagnosis::lint {

namespace {

using rule_source::ConditionAlternative;
using rule_source::NodeInfo;
using rule_source::NodeRule;
using rule_source::Param;
using rule_source::Test;
using Kind = ConditionAlternative::Kind;

void CheckExpression(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        for (const char* name : {"type", "ret", "express"}) {
            if (rule.expression && rule.expression.Value(name).empty()) {
                report.Add(rule.expression, "the formula of the rule " + Quoted(rule.name) + " has no " + Quoted(name));
            }
        }
    });
}

void CheckResult(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        if (!HasFormula(rule) || rule.params.FindKey(rule.ret) != nullptr) {
            return;
        }
        NearNames keys = KeysOf(rule);
        report.Add(rule.expression, "no parameter of the rule " + Quoted(rule.name) + " has the key " + Quoted(rule.ret)
                + " for the result of the formula",
            {.attribute = rule.expression.Find("ret"), .near = keys.Find(rule.ret)});
    });
}

void CheckSecondCondition(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        if (rule.condition.alternatives.size() > 1) {
            report.Add(rule.condition.alternatives[1].element, "the rule " + Quoted(rule.name)
                    + " has another condition, and the first one decides alone",
                {.help = "write two rules, and two alternatives in \"EventRules\""});
        }
    });
}

void CheckSingleTest(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        const auto& alternatives = rule.condition.alternatives;
        if (rule.params.Params().size() > 1 && !alternatives.empty() && alternatives.front().kind == Kind::SINGLE) {
            report.Add(alternatives.front().element, "a \"single_logic\" of the rule " + Quoted(rule.name)
                    + " asks all its parameters, not only " + Quoted(alternatives.front().tests.front().id),
                {.attribute = alternatives.front().element.Find("type"),
                    .help = "put the test into a \"multiple_logic\", which goes by the id"});
        }
    });
}

bool IsComparedAsText(const Param& param, const ConditionAlternative& alternative, const Test& test)
{
    const bool isAsked = alternative.kind == Kind::SINGLE || test.id == param.id;
    return isAsked && (test.word == "eq" || test.word == "ne") && !test.value.ends_with('\n');
}

void CheckLineEnd(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        const auto keys = NodeKeys(rule);
        if (rule.condition.alternatives.empty()) {
            return;
        }
        const ConditionAlternative& alternative = rule.condition.alternatives.front();
        for (const Test& test : alternative.tests) {
            const Param* const param = rule.params.Find(test.id);
            if (param != nullptr && param->type == "string" && keys.count(param->key) != 0
                && IsComparedAsText(*param, alternative, test)) {
                report.Add(test.element, "the rule " + Quoted(rule.name) + " compares the whole file of "
                        + Quoted(param->key) + " with " + Quoted(test.value),
                    {.help = "end the value in &#10; where the file ends in a line end"});
            }
        }
    });
}

void CheckNodes(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        if (rule.nodes.empty() || rule.params.IsEmpty()) {
            report.Add(rule.element, "the rule " + Quoted(rule.name) + " has no "
                    + (rule.nodes.empty() ? "\"nodeInfo\"" : "\"params\""));
            return;
        }
        const auto keys = ParamKeys(rule);
        NearNames near = KeysOf(rule);
        for (const NodeInfo& node : rule.nodes) {
            if (keys.count(node.param) == 0) {
                report.Add(node.element, "no parameter of the rule " + Quoted(rule.name) + " has the key "
                        + Quoted(node.param),
                    {.attribute = node.element.Find("param"), .near = near.Find(node.param)});
            }
        }
    });
}

void CheckTypeOfResult(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        const Param* const result = HasFormula(rule) ? rule.params.FindKey(rule.ret) : nullptr;
        if (result != nullptr && result->type == "string") {
            report.Add(result->element, "the result of the formula of the rule " + Quoted(rule.name) + " is no text",
                {.attribute = result->element.Find("type"), .help = "write type=\"double\""});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A707", Severity::ERROR, CheckClass::STATIC, "formula without type, ret or express",
        "A \"logicExpression\" in which \"type\", \"ret\" or \"express\" is missing or empty.",
        "the formula is not worked out, and its result has no value", CheckExpression},
    {"A708", Severity::ERROR, CheckClass::STATIC, "result that no parameter takes",
        "A \"ret\" that is the key of no parameter of the rule.", "the result is lost", CheckResult},
    {"A709", Severity::WARNING, CheckClass::STATIC, "second condition of a node rule",
        "A node rule with more than one \"or\".", "the first one decides alone, and those behind it are not looked at",
        CheckSecondCondition},
    {"A710", Severity::WARNING, CheckClass::STATIC, "single test of several parameters",
        "A \"single_logic\" in a node rule with several parameters.",
        "the id of the test is not looked at; the rule is true as soon as any parameter passes it", CheckSingleTest},
    {"A711", Severity::WARNING, CheckClass::STATIC, "whole file compared as a text",
        "An \"eq\" or \"ne\" of a node's value of the type \"string\" with a text without a line end.",
        "the value is the whole file with the line end that it ends in, so that \"eq\" fails and \"ne\" holds",
        CheckLineEnd},
    {"A712", Severity::ERROR, CheckClass::STATIC, "node rule without a value to read",
        "A node rule without \"nodeInfo\" or without \"params\", or a \"nodeInfo\" whose \"param\" is the key of no "
        "parameter.",
        "without either the rule is false; a value for an unknown key goes nowhere", CheckNodes},
    {"A713", Severity::WARNING, CheckClass::STATIC, "result of a formula as a text",
        "A parameter of the type \"string\" that takes the result of a formula.",
        "the text has six decimals, \"5.000000\"", CheckTypeOfResult},
};

} // namespace

std::span<const Check> NodeChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
