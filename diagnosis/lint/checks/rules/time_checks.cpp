#include "diagnosis/lint/reading/alarm_items.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/time_limits.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::Attribute;
using rule_source::CommandRule;
using rule_source::Element;
using rule_source::Rule;
using rule_source::TimeWindow;
using rule_source::WindowKind;

/// Calls `visit(rule)` for each command rule that is kept and whose query is limited in time: one on external databases
/// is not.
template <typename Visit>
void ForEachLimitedRule(const Subject& subject, Visit visit)
{
    for (const CommandRule& rule : subject.rules.rules.commandRules) {
        if (rule.isKept && !rule.referenceDefDb) {
            visit(rule);
        }
    }
}

// ---- Where the time begins. ----

/// Calls `visit(rule, element, attribute)` for each word that says where the time begins.
template <typename Visit>
void ForEachBeginFlag(const Subject& subject, Visit visit)
{
    ForEachItem(subject, [&visit](const AlarmRule& rule, const AlarmItem& item) {
        if (const Attribute word = item.element.Find("BeginFlag")) {
            visit(rule, item.element, word);
        }
    });
    ForEachLimitedRule(subject, [&visit](const CommandRule& rule) {
        if (const Attribute word = rule.beginFlagElement.Find("value")) {
            visit(rule, rule.beginFlagElement, word);
        }
    });
}

void CheckUnknownFlag(const Subject& subject, Report& report)
{
    ForEachBeginFlag(subject, [&report](const Rule& rule, Element element, Attribute word) {
        const std::string_view value = word.Value();
        if (value.size() != 1 || value < "1" || value > "4") {
            report.Add(element, "the rule " + Quoted(rule.name) + " has the unknown BeginFlag " + Quoted(value),
                {.attribute = word, .help = "write \"1\" or \"2\" to count rows of the current version alone, \"3\" or "
                                            "\"4\" to count those of all versions"});
        }
    });
}

void CheckFlagForm(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const AlarmRule& rule, const AlarmItem& item) {
        if (const Element flag = item.element.FirstChild("BeginFlag")) {
            report.Add(flag, "a BeginFlag of the alarm rule " + Quoted(rule.name) + " is an element",
                {.help = "make it an attribute of \"alarmId\""});
        }
    });
    ForEachLimitedRule(subject, [&report](const CommandRule& rule) {
        const char* const help = "write <BeginFlag value=\"...\"/> in \"SQLItem\"";
        if (const Attribute flag = rule.sqlItem.Find("BeginFlag")) {
            report.Add(rule.sqlItem, "the BeginFlag of the command rule " + Quoted(rule.name) + " is an attribute",
                {.attribute = flag, .help = help});
        } else if (rule.beginFlagElement && !rule.beginFlagElement.Has("value")) {
            report.Add(rule.beginFlagElement, "the BeginFlag of the command rule " + Quoted(rule.name) + " has no \"value\"",
                {.help = help});
        }
    });
}

void CheckSameFlag(const Subject& subject, Report& report)
{
    ForEachBeginFlag(subject, [&report](const Rule& rule, Element element, Attribute word) {
        if (word.Value() == "2" || word.Value() == "3") {
            report.Add(element, "the BeginFlag " + Quoted(word.Value()) + " of the rule " + Quoted(rule.name)
                    + " does what " + (word.Value() == "2" ? "\"1\"" : "\"4\"") + " does",
                {.attribute = word});
        }
    });
}

// ---- How long it is. ----

// The problem with the days of a time; empty if there is none.
std::string PeriodTrouble(const TimeWindow& time)
{
    const Attribute attribute = time.element.Find("period");
    const std::string days = std::to_string(time.period);
    if (time.period < -LONGEST_PERIOD || time.period > LONGEST_PERIOD) {
        return "has a period of " + days + " days, whose seconds do not fit into 32 bits";
    }
    if (time.period < 0) {
        return "has a period of " + days + " days, which begins in the future";
    }
    const std::string taken = time.period == 0 ? "30 days are taken" : "it is read as " + days;
    if (attribute && !IsWholeNumber(attribute)) {
        return "has the period " + Quoted(attribute.Value()) + ", which is no number: " + taken;
    }
    return time.period != 0 ? "" : attribute ? "has a period of 0 days: " + taken : "has no period: " + taken;
}

void CheckPeriod(const Rule& rule, const TimeWindow& time, Report& report)
{
    const std::string trouble = PeriodTrouble(time);
    if (!trouble.empty()) {
        report.Add(time.element, "a time of the rule " + Quoted(rule.name) + " " + trouble,
            {.attribute = time.element.Find("period"), .help = "write the number of days, from 1 to 24855"});
    }
}

void CheckPeriods(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const AlarmRule& rule, const AlarmItem& item) {
        ForEachWindow(item, [&](WindowKind, const TimeWindow& window) {
            if (!IsPassedOver(window)) {
                CheckPeriod(rule, window, report);
            }
        });
    });
    ForEachLimitedRule(subject, [&report](const CommandRule& rule) {
        if (rule.time.element) {
            CheckPeriod(rule, rule.time, report);
        }
    });
}

void CheckThresholdText(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    ForEachWindow(item, [&](WindowKind, const TimeWindow& window) {
        const Attribute threshold = window.element.Find("threshold");
        if (threshold && !IsWholeNumber(threshold)) {
            report.Add(window.element, "a time of the rule " + Quoted(rule.name) + " has the threshold "
                    + Quoted(threshold.Value()) + ", which is read as " + std::to_string(window.threshold),
                {.attribute = threshold, .help = "write the count to reach in digits"});
        }
    });
}

constexpr Check CHECKS[] = {
    {"A407", Severity::WARNING, CheckClass::STATIC, "unknown BeginFlag",
        "A \"BeginFlag\" other than \"1\", \"2\", \"3\" and \"4\".",
        "the time begins as with \"1\", but rows of all versions are counted", CheckUnknownFlag},
    {"A408", Severity::WARNING, CheckClass::STATIC, "BeginFlag that is not read",
        "A \"BeginFlag\" as an element in \"alarmId\", where it is an attribute; or as an attribute of \"SQLItem\", where "
        "it is an element with the attribute \"value\".",
        "it is ignored and stays \"1\"", CheckFlagForm},
    {"A409", Severity::INFO, CheckClass::STATIC, "BeginFlag that makes no difference",
        "The \"BeginFlag\" \"2\", which does what \"1\" does, and \"3\", which does what \"4\" does.",
        "no time of a reset or an update is known, so that neither moves the beginning", CheckSameFlag},
    {"A410", Severity::WARNING, CheckClass::STATIC, "period that is no number of days",
        "A period of a time that is missing, 0, negative, above 24855 or no number.",
        "a missing one, 0 and what is no number are 30 days; a negative one begins in the future; above 24855 the number "
        "of seconds overflows",
        CheckPeriods},
    {"A411", Severity::WARNING, CheckClass::STATIC, "threshold that is no number",
        "A threshold of a time of an alarm rule that is no number.",
        "the digits that it begins with count; without any it is 0, and one row of the event is enough",
        OnItems<CheckThresholdText>},
};

} // namespace

std::span<const Check> TimeChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
