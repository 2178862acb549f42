#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/base/report.h"
#include "diagnosis/lint/base/subject.h"
#include "diagnosis/lint/checks/checks.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::IdRange;
using rule_source::Param;
using rule_source::Test;

/// Calls `visit(rule, item)` for each "alarmId" of a rule that is kept.
template <typename Visit>
void ForEachItem(const Subject& subject, Visit visit)
{
    for (const AlarmRule& rule : subject.rules.rules.alarmRules) {
        if (!rule.isKept) {
            continue;
        }
        for (const AlarmItem& item : rule.items) {
            visit(rule, item);
        }
    }
}

std::string WhyEmpty(const AlarmItem& item)
{
    const IdRange& ids = item.ids;
    if (!item.element.Has("Eventid_Max")) {
        return item.element.Has("Eventid_Min") ? "it has \"Eventid_Min\" alone" : "it has no \"Eventid_Max\"";
    }
    return ids.last == 0 ? "\"Eventid_Max\" is 0 or no number" : "\"Eventid_Min\" is above \"Eventid_Max\"";
}

void CheckIds(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const AlarmRule& rule, const AlarmItem& item) {
        if (item.ids.IsEmpty()) {
            report.Add(item.element, "the rule " + Quoted(rule.name) + " asks for no event: " + WhyEmpty(item),
                {.attribute = item.element.Find("Eventid_Max"),
                    .help = "name the lowest id in \"Eventid_Min\" and the highest in \"Eventid_Max\"; a single id "
                            "stands in \"Eventid_Max\" alone"});
        }
    });
}

void CheckTestsUnread(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const AlarmRule& rule, const AlarmItem& item) {
        if (item.condition.element && !item.HasTests()) {
            report.Add(item.element, "the rule " + Quoted(rule.name) + " has tests, and its type is not "
                    "\"param_eventid\"",
                {.attribute = item.element.Find("type"), .help = "write type=\"param_eventid\""});
        }
    });
}

void CheckTestIds(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&report](const AlarmRule& rule, const AlarmItem& item) {
        if (!item.HasTests() || item.params.IsEmpty()) {
            return;
        }
        NearNames ids;
        for (const Param& param : item.params.Params()) {
            ids.Add(param.id);
        }
        for (const auto& alternative : item.condition.alternatives) {
            for (const Test& test : alternative.tests) {
                if (item.params.Find(test.id) == nullptr) {
                    report.Add(test.idElement, "the rule " + Quoted(rule.name) + " has no parameter "
                            + Quoted(test.id), {.help = ids.Help(test.id), .isAboutText = true});
                }
            }
        }
    });
}

constexpr Check CHECKS[] = {
    {"A501", Severity::ERROR, CheckClass::STATIC, "range of events that is empty",
        "An \"alarmId\" of a rule without an event to count: \"Eventid_Min\" alone or above \"Eventid_Max\", ids that "
        "are 0 or no number.",
        "the whole rule is false at once, and the items behind this one are not looked at", CheckIds},
    {"A506", Severity::WARNING, CheckClass::STATIC, "tests that are not asked",
        "An \"alarmId\" with a \"condition\" whose \"type\" is not \"param_eventid\".",
        "the tests are ignored, and all rows of the events are counted", CheckTestsUnread},
    {"A508", Severity::ERROR, CheckClass::STATIC, "test of an unknown parameter",
        "A test of an \"alarmId\" whose \"id\" none of its \"params\" has.", "no row ever passes the test",
        CheckTestIds},
};

} // namespace

std::span<const Check> AlarmChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
