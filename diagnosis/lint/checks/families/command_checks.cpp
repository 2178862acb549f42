#include <algorithm>

#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/command_rules.h"

namespace diagnosis::lint {

namespace {

using rule_source::CommandRule;
using rule_source::ConditionAlternative;
using rule_source::Element;
using rule_source::ParamTable;
using rule_source::Test;
using rule_source::ThresholdBean;
using Kind = ConditionAlternative::Kind;

template <typename Beans>
NearNames NamesOf(const Beans& beans)
{
    return NearNames([&beans](NearNames& near) {
        for (const auto& bean : beans) {
            near.Add(bean.name);
        }
    });
}

void CheckCommonPartName(const Subject& subject, Report& report)
{
    const auto& common = subject.rules.commonPart;
    NearNames names = NamesOf(common.beans);
    ForEachKept(subject.rules.rules.commandRules, [&](const CommandRule& rule) {
        if (rule.referenceDefDb || common.FindBean(rule.commonPartName) != nullptr) {
            return;
        }
        if (rule.commonPartName.empty()) {
            report.Add(rule.element, "the rule " + Quoted(rule.name) + " names no data to query",
                {.help = "name a \"thresholdsOrLumbraData\" in \"commonPartName\""});
        } else {
            report.Add(rule.commonPartNameElement, "the rule " + Quoted(rule.name) + " asks for the common part "
                    + Quoted(rule.commonPartName) + ", which is not there",
                {.near = names.Find(rule.commonPartName), .isAboutText = true});
        }
    });
}

void CheckMethod(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        const std::string name = "the rule " + Quoted(rule.name);
        if (!rule.analysisMethod) {
            report.Add(rule.element, name + " has no \"AnalysisMethod\"");
        } else if (rule.analysisType != "SQL") {
            report.Add(rule.analysisMethod, name + " has no analysis of the type \"SQL\"",
                {.attribute = rule.analysisMethod.Find("type"), .help = "write type=\"SQL\""});
        } else if (!rule.sqlItem) {
            report.Add(rule.sqlCondition ? rule.sqlCondition : rule.analysisMethod,
                name + " has no \"" + (rule.sqlCondition ? "SQLItem" : "SQL_Condition") + "\"");
        }
    });
}

void CheckConditionType(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        const std::string_view type = rule.sqlConditionType;
        if (!type.empty() && type != "defDBSql" && type != "normalization") {
            report.Add(rule.sqlCondition, "the rule " + Quoted(rule.name) + " has the unknown type " + Quoted(type),
                {.attribute = rule.sqlCondition.Find("type"), .help = "write type=\"defDBSql\"",
                    .near = NearNames{"defDBSql", "normalization"}.Find(type)});
        }
    });
}

/// Calls `visit(rule, alternative, test)` for the first test of each alternative of a command rule.
template <typename Visit>
void ForEachAlternative(const CommandRule& rule, Visit visit)
{
    for (const ConditionAlternative& alternative : rule.condition.alternatives) {
        if (!alternative.tests.empty()) {
            visit(alternative, alternative.tests.front());
        }
    }
}

bool IsDynamic(const Test& test)
{
    return test.logicType == "dynamic";
}

// The section of the common part that has the limit of a test; null if the test has it.
const ParamTable* TableOfLimit(const ThresholdBean& bean, const Test& test)
{
    return IsDynamic(test) ? &bean.thresholds : test.logicType == "systemParam" ? &bean.systemParams : nullptr;
}

void CheckLimitInCommonPart(const CommandRule& rule, const ThresholdBean* bean, const Test& test, Report& report)
{
    const ParamTable* const table = bean == nullptr ? nullptr : TableOfLimit(*bean, test);
    if (table != nullptr && table->Find(test.commonPartParamId) != nullptr) {
        return;
    }
    report.Add(test.commonPartParamIdElement ? test.commonPartParamIdElement : test.element,
        "a test of the rule " + Quoted(rule.name) + " asks for the "
            + (IsDynamic(test) ? "threshold " : "system parameter ") + Quoted(test.commonPartParamId)
            + ", which its common part does not have",
        {.near = table == nullptr || !test.commonPartParamIdElement ? "" : NearIdIn(*table, test.commonPartParamId),
            .isAboutText = static_cast<bool>(test.commonPartParamIdElement)});
}

void CheckLimit(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&](const CommandRule& rule) {
        const ThresholdBean* const bean = subject.rules.commonPart.FindBean(rule.commonPartName);
        ForEachAlternative(rule, [&](const ConditionAlternative& alternative, const Test& test) {
            if (alternative.kind != Kind::SINGLE || test.logicType == "static") {
                return; // the tests of a "multiple_logic" have their own values
            }
            if (IsDynamic(test) || test.logicType == "systemParam") {
                CheckLimitInCommonPart(rule, bean, test, report);
            } else {
                report.Add(test.element, "a test of the rule " + Quoted(rule.name) + " has "
                        + (test.logicType.empty() ? "no type" : "the unknown type " + Quoted(test.logicType)),
                    {.attribute = test.element.Find("type"),
                        .help = "write type=\"static\" for the value in the test, \"dynamic\" for a threshold of the "
                                "common part, \"systemParam\" for a system parameter",
                        .near = NearNames{"static", "dynamic", "systemParam"}.Find(test.logicType)});
            }
        });
    });
}

void CheckTestsOfOneColumn(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        for (const ConditionAlternative& alternative : rule.condition.alternatives) {
            const auto& tests = alternative.tests;
            const auto other = std::find_if(tests.begin(), tests.end(),
                [&tests](const Test& test) { return test.id != tests.front().id; });
            if (other != tests.end()) {
                report.Add(other->idElement, "a \"multiple_logic\" of the rule " + Quoted(rule.name)
                        + " tests the parameter " + Quoted(tests.front().id) + " in place of " + Quoted(other->id),
                    {.help = "work out one column in SQL: a > 1 and b > 1", .isAboutText = true});
            }
        }
    });
}

// An alternative with one test ends the rule if its parameter has no value: those behind it run only if it has one.
void CheckEarlierTests(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        const Test* first = nullptr;
        bool isReported = false;
        ForEachAlternative(rule, [&](const ConditionAlternative& alternative, const Test& test) {
            if (first != nullptr && first->id != test.id && !isReported) {
                isReported = true;
                report.Add(first->idElement, "the rule " + Quoted(rule.name) + " looks at " + Quoted(test.id)
                        + " only where " + Quoted(first->id) + " has a value",
                    {.help = "let the earlier test be the only one of a \"multiple_logic\", which goes on without a "
                             "value",
                        .isAboutText = true});
            }
            first = first == nullptr && alternative.kind == Kind::SINGLE ? &test : first;
        });
    });
}

std::size_t KnownTimes(const CommandRule& rule)
{
    const auto isKnown = [&rule](const Element& time) { return rule.params.Find(time.Value("id")) != nullptr; };
    return static_cast<std::size_t>(std::count_if(rule.timeParams.begin(), rule.timeParams.end(), isKnown));
}

void CheckTimesOfNormalization(const Subject& subject, Report& report)
{
    static constexpr std::size_t WANTED = 2;
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        if (IsNormalizing(rule) && KnownTimes(rule) != WANTED) {
            report.Add(rule.normalization ? rule.normalization : rule.sqlCondition, "the normalization of the rule "
                    + Quoted(rule.name) + " names " + std::to_string(KnownTimes(rule))
                    + " of the rule's parameters as times, and needs two");
        }
    });
}

void CheckNormalization(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        if (IsNormalizing(rule)) {
            report.Add(rule.sqlCondition, "the rule " + Quoted(rule.name) + " has all values times 30",
                {.attribute = rule.sqlCondition.Find("type"),
                    .help = "scale in SQL, and write type=\"defDBSql\""});
        }
    });
}

void ReportUnread(const CommandRule& rule, Element element, Report& report)
{
    if (element) {
        report.Add(element, "nothing reads " + Quoted(element.Name()) + " of the rule " + Quoted(rule.name));
    }
}

void CheckUnread(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        ReportUnread(rule, rule.referenceCommonPart.FirstChild("commonPartDomain"), report);
        ReportUnread(rule, rule.referenceDefDb.FirstChild("defDBDomain"), report);
        ReportUnread(rule, rule.normalization.FirstChild("normalizationParam"), report);
        if (rule.time.element.Has("threshold")) {
            report.Add(rule.time.element, "nothing reads the threshold of a \"time\" of the rule " + Quoted(rule.name),
                {.attribute = rule.time.element.Find("threshold")});
        }
    });
}

void CheckCount(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&](const CommandRule& rule) {
        const bool isCounted = rule.referenceDefDb && rule.referenceType != "singleDB";
        if (isCounted && rule_source::ReadWholeNumber(rule.defDbNum).value <= 0) {
            report.Add(rule.defDbNumElement ? rule.defDbNumElement : rule.referenceDefDb,
                "the rule " + Quoted(rule.name) + " asks for no number of databases",
                {.help = "write type=\"singleDB\" for any of them, or a number above 0 in \"defDBNum\"",
                    .isAboutText = static_cast<bool>(rule.defDbNumElement)});
        }
    });
}

void CheckDatabaseName(const Subject& subject, Report& report)
{
    const auto& common = subject.rules.commonPart;
    NearNames names = NamesOf(common.tables);
    ForEachKept(subject.rules.rules.commandRules, [&](const CommandRule& rule) {
        if (rule.referenceDefDb && common.FindTable(rule.defDbName) == nullptr) {
            report.Add(rule.defDbNameElement ? rule.defDbNameElement : rule.referenceDefDb,
                "the rule " + Quoted(rule.name) + " asks for the databases " + Quoted(rule.defDbName)
                    + ", which no \"defDBTable\" names",
                {.near = rule.defDbNameElement ? names.Find(rule.defDbName) : "",
                    .isAboutText = static_cast<bool>(rule.defDbNameElement)});
        }
    });
}

void CheckLimitOfCopies(const Subject& subject, Report& report)
{
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        const Element element = rule.time.element.Has("period") ? rule.time.element : rule.beginFlagElement;
        if (!IsLimited(rule) && element) {
            report.Add(element, "the rule " + Quoted(rule.name) + " asks copies of databases, without a time limit",
                {.attribute = element.Find("period"), .help = "limit the time in the query"});
        }
    });
}

void CheckPeriod(const Subject& subject, Report& report)
{
    static constexpr int DAYS_OF_A_TABLE = 30;
    ForEachKept(subject.rules.rules.commandRules, [&report](const CommandRule& rule) {
        if (IsLimited(rule) && rule.time.period > DAYS_OF_A_TABLE) {
            report.Add(rule.time.element, "the rule " + Quoted(rule.name) + " asks for "
                    + std::to_string(rule.time.period) + " days of a table that has " + std::to_string(DAYS_OF_A_TABLE),
                {.attribute = rule.time.element.Find("period")});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A612", Severity::ERROR, CheckClass::STATIC, "command rule without a query",
        "A command rule whose \"AnalysisMethod\" is missing or not of the type \"SQL\", or has no \"SQL_Condition\" or "
        "no \"SQLItem\" in it.",
        "the rule is false", CheckMethod},
    {"A613", Severity::ERROR, CheckClass::STATIC, "unknown type of a query",
        "An \"SQL_Condition\" whose \"type\" is neither empty nor \"defDBSql\" nor \"normalization\".",
        "no parameter gets a value, and the rule is false", CheckConditionType},
    {"A614", Severity::ERROR, CheckClass::STATIC, "command rule without a known common part",
        "A command rule without \"referenceDefDB\" whose \"commonPartName\" no \"thresholdsOrLumbraData\" has, or that "
        "has none.",
        "the rule is false at once, without a line in the log", CheckCommonPartName},
    {"A615", Severity::ERROR, CheckClass::STATIC, "test of a command rule without a limit",
        "A test whose \"type\" is none of \"static\", \"dynamic\" and \"systemParam\", or whose \"commonPartParamId\" "
        "the common part of the rule does not have.",
        "the test has no value to compare with and never holds", CheckLimit},
    {"A616", Severity::WARNING, CheckClass::STATIC, "tests of several parameters in one",
        "A \"multiple_logic\" of a command rule with tests of more than one parameter.",
        "all tests look at the parameter of the first one", CheckTestsOfOneColumn},
    {"A617", Severity::WARNING, CheckClass::STATIC, "test behind a test of another parameter",
        "An alternative of a command rule behind a \"single_logic\" that tests another parameter.",
        "where the parameter of the earlier test has no value, the rule is false and the later test is not looked at",
        CheckEarlierTests},
    {"A618", Severity::ERROR, CheckClass::STATIC, "normalization without two times",
        "A query of the type \"normalization\" whose \"timeParam\" does not name two parameters of the rule.",
        "no parameter gets a value, and the rule is false", CheckTimesOfNormalization},
    {"A620", Severity::WARNING, CheckClass::STATIC, "normalization",
        "A query of the type \"normalization\".",
        "both times are read from one column, so that every value is multiplied by 30, in 32 bits where it is a whole "
        "number; texts have no value",
        CheckNormalization},
    {"A621", Severity::INFO, CheckClass::STATIC, "what a command rule has and nothing reads",
        "A \"commonPartDomain\", \"defDBDomain\" or \"normalizationParam\", or the \"threshold\" of a \"time\" of a "
        "command rule.",
        "nothing reads it", CheckUnread},
    {"A622", Severity::ERROR, CheckClass::STATIC, "databases counted up to no number",
        "A \"referenceDefDB\" that is not of the type \"singleDB\" and whose \"defDBNum\" is missing, no number, or "
        "not above 0.",
        "the rule is true always, without any database, too", CheckCount},
    {"A623", Severity::ERROR, CheckClass::STATIC, "unknown databases",
        "A \"referenceDefDB\" whose \"defDBName\" no \"defDBTable\" has.", "the rule is false", CheckDatabaseName},
    {"A624", Severity::WARNING, CheckClass::STATIC, "time limit for copied databases",
        "A \"period\" or a \"BeginFlag\" of a rule with \"referenceDefDB\".", "the query runs without a time limit",
        CheckLimitOfCopies},
    {"A627", Severity::WARNING, CheckClass::STATIC, "period longer than the table",
        "A \"period\" above 30 days of a rule that asks a derived table.",
        "the table has the rows of thirty days, and older ones are not found", CheckPeriod},
};

} // namespace

std::span<const Check> CommandChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
