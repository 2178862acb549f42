#include "diagnosis/results/rule_text.h"

#include "diagnosis/results/statement_text.h"
#include "diagnosis/results/value_text.h"
#include "diagnosis/results/window_text.h"
#include "diagnosis/text/printable.h"

namespace diagnosis {

namespace {

using namespace value_text;
using Evidence::Reason;

std::string FilterText(const Evidence::Rule& rule)
{
    const bool isScene = rule.reason == Reason::FILTERED_SCENE;
    const std::string found = isScene ? "the detection's scene is " + Printable(rule.filter->deviceValue)
                                      : "the device has " + Quoted(rule.filter->deviceValue);
    if (isScene && rule.filter->ruleText.empty()) {
        return found + ", the rule names none";
    }
    const bool isExcluded = rule.reason == Reason::FILTERED_BLACK_PRODUCT;
    return found + (isExcluded ? ", the rule excludes " : ", the rule asks for ") + Quoted(rule.filter->ruleText);
}

std::string NodeText(const Evidence::NodeFile& node)
{
    return Cut(node.param) + (node.readable ? " = " + Value(node.value) : " can't be read")
        + " from " + Printable(node.path);
}

std::string FormulaText(const Evidence::Formula& formula)
{
    const std::string grouping = formula.grouping.empty() ? formula.expression : formula.grouping;
    return Cut(formula.resultKey) + " = " + Cut(grouping, LONGEST_SQL) + " = "
        + (formula.result.empty() ? "ill-formed" : Printable(formula.result));
}

std::string Joined(const std::vector<std::string>& ids)
{
    std::string text;
    for (const std::string& id : ids) {
        text += (text.empty() ? "" : ", ") + Printable(id);
    }
    return text.empty() ? "none" : text;
}

void AppendCode(const Evidence::Code& code, std::vector<std::string>& lines)
{
    lines.push_back("the host answers for " + Value(code.detectCode) + ": "
        + (*code.answer ? "present" : "not present"));
    lines.push_back("  descriptions " + Joined(code.faultDescriptionIds) + "; suggestions "
        + Joined(code.suggestionIds) + "; repairs " + Joined(code.repairIds)
        + (code.userDefinedInfo.empty() ? "" : "; info " + Quoted(code.userDefinedInfo)));
}

std::string BadNameText(const Evidence::Rule& rule)
{
    return "the rule names " + Quoted(*rule.badName);
}

// Appends the lines of the part of each family.
struct AppendPart {
    void operator()(const std::monostate&) const {}

    void operator()(const Evidence::Alarm& alarm) const
    {
        const bool hasWindow = ClosestWindow(alarm) != nullptr;
        for (const Evidence::Window& window : alarm.windows) {
            if (hasWindow && window.reason == Reason::WINDOW_ABSENT) {
                continue; // most items have one window of the three
            }
            lines.push_back(WindowText(window));
            for (const Evidence::Test& test : window.tests) {
                lines.push_back(TestText(test));
            }
        }
    }

    void operator()(const Evidence::Command& command) const
    {
        if (command.start) {
            lines.push_back(StartText(*command.start));
        }
        for (const Evidence::Statement& statement : command.statements) {
            AppendStatement(statement, reason, lines);
        }
        if (command.hits) {
            lines.push_back(HitsText(*command.hits));
        }
    }

    void operator()(const Evidence::Node& node) const
    {
        for (const Evidence::NodeFile& file : node.files) {
            lines.push_back(NodeText(file));
        }
        if (node.formula) {
            lines.push_back(FormulaText(*node.formula));
        }
        for (const Evidence::Comparison& comparison : node.comparisons) {
            lines.push_back(ComparisonText(comparison));
        }
    }

    void operator()(const Evidence::Code& code) const
    {
        if (code.answer) {
            AppendCode(code, lines);
        }
    }

    Reason reason;
    std::vector<std::string>& lines;
};

// The most significant fact of a part.
struct PartSummary {
    std::string operator()(const std::monostate&) const { return ""; }

    std::string operator()(const Evidence::Alarm& alarm) const
    {
        const Evidence::Window* const window = ClosestWindow(alarm);
        return window == nullptr ? "" : WindowText(*window);
    }

    std::string operator()(const Evidence::Command& command) const
    {
        if (command.hits) {
            return HitsText(*command.hits);
        }
        for (const Evidence::Statement& statement : command.statements) {
            if (!statement.comparisons.empty()) {
                return Deciding(statement.comparisons);
            }
        }
        return "";
    }

    std::string operator()(const Evidence::Node& node) const { return Deciding(node.comparisons); }

    std::string operator()(const Evidence::Code& code) const
    {
        return code.answer ? "the host answers " + std::string(*code.answer ? "present" : "not present") : "";
    }
};

} // namespace

std::vector<std::string> RuleLines(const Evidence::Rule& rule)
{
    std::vector<std::string> lines;
    if (rule.filter) {
        lines.push_back(FilterText(rule));
    }
    if (rule.badName) {
        lines.push_back(BadNameText(rule));
    }
    std::visit(AppendPart{rule.reason, lines}, rule.part);
    if (const std::string notes = NotesText(rule.notes, rule.reason); !notes.empty()) {
        lines.push_back(notes + (rule.logProblem.empty() ? "" : ": " + Cut(rule.logProblem, LONGEST_SQL)));
    }
    return lines;
}

std::string RuleSummary(const Evidence::Rule& rule)
{
    if (rule.filter) {
        return FilterText(rule);
    }
    return rule.badName ? BadNameText(rule) : std::visit(PartSummary(), rule.part);
}

} // namespace diagnosis
