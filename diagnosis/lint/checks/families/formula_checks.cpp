#include <algorithm>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/formula_outline.h"
#include "diagnosis/lint/reading/node_rules.h"
#include "diagnosis/rule_source/numbers.h"

namespace diagnosis::lint {

namespace {

using rule_source::ConditionAlternative;
using rule_source::NodeInfo;
using rule_source::NodeRule;
using rule_source::Param;
using rule_source::Test;
using Pieces = std::vector<FormulaPiece>;

void AddAboutFormula(const NodeRule& rule, const std::string& what, std::string help, Report& report)
{
    report.Add(rule.expression, "the formula of the rule " + Quoted(rule.name) + " " + what,
        {.attribute = rule.expression.Find("express"), .help = std::move(help)});
}

/// Calls `visit(rule, pieces)` for each formula that the engine calculates.
template <typename Visit>
void ForEachFormula(const Subject& subject, Visit visit)
{
    ForEachKept(subject.rules.rules.nodeRules, [&visit](const NodeRule& rule) {
        if (HasFormula(rule)) {
            visit(rule, ReadFormula(rule.express));
        }
    });
}

void CheckForm(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        const std::string fault = FaultOf(pieces);
        if (!fault.empty()) {
            AddAboutFormula(rule, "has no result: " + fault, "write 0 - x for the negative of x", report);
        }
    });
}

void CheckChain(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        if (FaultOf(pieces).empty() && IsOrderVital(pieces)) {
            AddAboutFormula(rule, "is worked out as " + WithParentheses(pieces), "put parentheses where they are meant",
                report);
        }
    });
}

bool IsNegative(std::string_view value)
{
    const std::size_t first = value.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && value[first] == '-';
}

bool IsLetter(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

// The kernel reports temperatures ("temp1_input") and the currents of batteries ("current_now") with a sign.
bool IsOfSignedKind(std::string_view path)
{
    static constexpr std::string_view TEMPERATURE = "temp";
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::size_t place = name.find(TEMPERATURE);
    const std::string_view behind = place == std::string_view::npos ? name : name.substr(place + TEMPERATURE.size());
    const bool isWord = place != std::string_view::npos && (place == 0 || !IsLetter(name[place - 1]))
        && (behind.empty() || !IsLetter(behind.front()));
    return isWord || name.starts_with("current_");
}

// The keys of parameters that a test compares with a number below zero.
std::unordered_set<std::string_view> NegativeKeys(const NodeRule& rule)
{
    std::unordered_set<std::string_view> keys;
    for (const ConditionAlternative& alternative : rule.condition.alternatives) {
        for (const Test& test : alternative.tests) {
            const Param* const param = rule.params.Find(test.id);
            if (param != nullptr && IsNegative(test.value)) {
                keys.insert(param->key);
            }
        }
    }
    return keys;
}

void CheckSign(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        std::unordered_set<std::string_view> used;
        for (const FormulaPiece& piece : pieces) {
            used.insert(piece.operand);
        }
        const auto negative = NegativeKeys(rule);
        for (const NodeInfo& node : rule.nodes) {
            if (used.count(node.param) != 0 && (IsOfSignedKind(node.path) || negative.count(node.param) != 0)) {
                AddAboutFormula(rule, "works with " + Quoted(node.param) + ", which may be below zero",
                    "test such a value by itself, without a formula", report);
            }
        }
    });
}

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

// "1e" before "-" and "5" is the start of a number that the sign divides.
bool IsCutNumber(const Pieces& pieces, std::size_t place)
{
    const std::string_view text = pieces[place].operand;
    const bool isStart = text.size() > 1 && (text.back() == 'e' || text.back() == 'E')
        && rule_source::IsDecimalNumber(text.substr(0, text.size() - 1));
    return isStart && place + 2 < pieces.size() && (pieces[place + 1].sign == '-' || pieces[place + 1].sign == '+')
        && pieces[place + 2].IsOperand() && IsDigit(pieces[place + 2].operand.front());
}

bool HasBlank(std::string_view operand)
{
    return operand.find(' ') != std::string_view::npos;
}

// The formula with another name in every place of a name.
std::string Renamed(std::string_view formula, const Pieces& pieces, std::string_view name, const std::string& other)
{
    std::string renamed(formula);
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
        if (piece->operand == name) {
            renamed.replace(static_cast<std::size_t>(piece->operand.data() - formula.data()), name.size(), other);
        }
    }
    return renamed;
}

void ReportUnknownName(const NodeRule& rule, const Pieces& pieces, std::string_view name, const std::string& near,
    Report& report)
{
    report.Add(rule.expression, "the formula of the rule " + Quoted(rule.name) + " names " + Quoted(name)
            + ", which is the key of no parameter",
        {.attribute = rule.expression.Find("express"),
            .fix = near.empty() ? FixOf() : FixOf::Value(Renamed(rule.express, pieces, name, near), false),
            .near = near});
}

void CheckNames(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        const auto keys = ParamKeys(rule);
        NearNames near = KeysOf(rule);
        std::unordered_set<std::string_view> told;
        for (std::size_t place = 0; place < pieces.size(); ++place) {
            const std::string_view name = pieces[place].operand;
            const bool isKnown = name.empty() || keys.count(name) != 0 || rule_source::IsDecimalNumber(name);
            if (!isKnown && !HasBlank(name) && !IsCutNumber(pieces, place) && told.insert(name).second) {
                ReportUnknownName(rule, pieces, name, near.Find(name), report);
            }
        }
    });
}

void CheckCutNames(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        for (std::size_t place = 0; place < pieces.size(); ++place) {
            const std::string_view name = pieces[place].operand;
            if (HasBlank(name)) {
                AddAboutFormula(rule, "joins " + Quoted(name) + " to one name", "", report);
            } else if (IsCutNumber(pieces, place)) {
                AddAboutFormula(rule, "cuts " + Quoted(std::string(name) + pieces[place + 1].sign
                                          + std::string(pieces[place + 2].operand)) + " at its sign",
                    "write the number without an exponent", report);
            }
        }
    });
}

void CheckKeys(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.nodeRules, [&report](const NodeRule& rule) {
        for (const Param& param : rule.params.Params()) {
            const bool isNameable = param.key.find_first_of("()+-*/ ") == std::string_view::npos;
            if (HasFormula(rule) && param.key != rule.ret && !isNameable) {
                report.Add(param.element, "no formula can name the key " + Quoted(param.key) + " of the rule "
                        + Quoted(rule.name), {.attribute = param.element.Find("key")});
            }
        }
    });
}

void CheckAllCutNames(const Subject& subject, Report& report)
{
    CheckCutNames(subject, report);
    CheckKeys(subject, report);
}

bool IsZeroPossible(const FormulaPiece& divisor)
{
    const bool isNumber = rule_source::IsDecimalNumber(divisor.operand);
    return !isNumber || divisor.operand.find_first_of("123456789") == std::string_view::npos;
}

void CheckDivision(const Subject& subject, Report& report)
{
    ForEachFormula(subject, [&report](const NodeRule& rule, const Pieces& pieces) {
        for (std::size_t place = 0; place + 1 < pieces.size(); ++place) {
            if (pieces[place].sign == '/' && IsZeroPossible(pieces[place + 1])) {
                AddAboutFormula(rule, "divides by what may be 0", "", report);
                return;
            }
        }
    });
}

constexpr Check CHECKS[] = {
    {"A701", Severity::ERROR, CheckClass::STATIC, "formula that is not well-formed",
        "A formula with a parenthesis that lacks its other one, an operator that lacks an operand, such as a minus "
        "sign before a number, or two operands without an operator.",
        "the formula has no result and its parameter no value; of two operands without an operator the first is lost",
        CheckForm},
    {"A702", Severity::WARNING, CheckClass::STATIC, "chain that is worked out from the right",
        "A \"-\" before another \"+\" or \"-\", or a \"/\" before another \"*\" or \"/\", without parentheses.",
        "the right operator goes first: 10 - 3 - 2 is 9", CheckChain},
    {"A703", Severity::WARNING, CheckClass::STATIC, "formula with a value that may be negative",
        "A formula with the value of a node that may be below zero: the rule compares it with such a number, or its "
        "file is called \"temp\" or \"current_now\" or the like.",
        "the sign of a negative value counts as an operator, the number is lost, and the formula has no result",
        CheckSign},
    {"A704", Severity::ERROR, CheckClass::STATIC, "formula with an unknown name",
        "A name in a formula that is the key of no parameter of the rule.", "it counts as 0", CheckNames},
    {"A705", Severity::ERROR, CheckClass::STATIC, "name or number that a formula cuts or joins",
        "A blank within a name of a formula, a number such as 1e-5, or a key with a blank or a sign that a formula "
        "can't name.",
        "every sign is an operator and blanks are left out, so that the formula has other names and numbers than it "
        "reads",
        CheckAllCutNames},
    {"A706", Severity::INFO, CheckClass::STATIC, "division",
        "A division by anything but a number other than 0.", "divided by 0 is 0", CheckDivision},
};

} // namespace

std::span<const Check> FormulaChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
