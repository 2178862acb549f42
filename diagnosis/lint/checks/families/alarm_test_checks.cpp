#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/reading/alarm_items.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/weighted_ids.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::ConditionAlternative;
using rule_source::Param;
using rule_source::Test;
using rule_source::TimeWindow;
using rule_source::WINDOW_WORDS;
using rule_source::WindowKind;
using Kind = ConditionAlternative::Kind;

/// Calls `visit(test)` for each test of an item that is asked.
template <typename Visit>
void ForEachTest(const AlarmItem& item, Visit visit)
{
    if (!item.HasTests() || item.params.IsEmpty()) {
        return;
    }
    for (const ConditionAlternative& alternative : item.condition.alternatives) {
        for (const Test& test : alternative.tests) {
            visit(test);
        }
    }
}

void CheckTestsUnread(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (item.condition.element && !item.HasTests()) {
        report.Add(item.element, "the rule " + Quoted(rule.name) + " has tests, and its type is not "
                "\"param_eventid\"",
            {.attribute = item.element.Find("type"), .help = "write type=\"param_eventid\"",
                .near = NearNames{"param_eventid"}.Find(item.element.Value("type"))});
    }
}

// Another check reports dropped alternatives.
void CheckNoTests(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    const bool hasTests = !item.condition.alternatives.empty() || !item.condition.dropped.empty();
    if (item.HasTests() && (!hasTests || item.params.IsEmpty())) {
        report.Add(item.element, "the rule " + Quoted(rule.name) + " has the type \"param_eventid\" and no "
                + (hasTests ? "parameters" : "tests"),
            {.attribute = item.element.Find("type"),
                .help = hasTests ? "declare what the tests ask for in \"params\""
                                 : "add a \"condition\", or leave the type out to count all rows"});
    }
}

void CheckTestIds(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (!item.HasTests()) {
        return;
    }
    NearNames ids;
    for (const Param& param : item.params.Params()) {
        ids.Add(param.id);
    }
    ForEachTest(item, [&](const Test& test) {
        if (item.params.Find(test.id) == nullptr) {
            report.Add(test.idElement, "the rule " + Quoted(rule.name) + " has no parameter " + Quoted(test.id),
                {.near = ids.Find(test.id), .isAboutText = true});
        }
    });
}

void CheckSeveralTests(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (!HasAsked(item, Kind::MULTIPLE)) {
        return;
    }
    const std::string start = "the rule " + Quoted(rule.name) + " has a \"multiple_logic\" ";
    const auto tell = [&](WindowKind kind, const std::string& trouble) {
        const rule_source::Element time = item.Window(kind).element;
        report.Add(time, start + trouble,
            {.attribute = time.Find("type"), .help = "use \"duration\", or an \"alarmId\" for each event"});
    };
    if (HasWindow(item, WindowKind::DAILY_PEAK)) {
        tell(WindowKind::DAILY_PEAK, "under \"daily_peak\", which counts the whole period for it");
    }
    if (HasWindow(item, WindowKind::LATEST) && item.ids.Size() > 1) {
        tell(WindowKind::LATEST, "under \"latest\" for " + std::to_string(item.ids.Size()) + " events");
    }
}

bool HasSeveralTests(const AlarmItem& item)
{
    const auto& alternatives = item.condition.alternatives;
    return HasAsked(item, Kind::MULTIPLE)
        && std::any_of(alternatives.begin(), alternatives.end(),
            [](const ConditionAlternative& alternative) { return alternative.tests.size() > 1; });
}

void CheckTwoMeanings(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (!HasSeveralTests(item) || !HasWindow(item, WindowKind::DURATION)) {
        return;
    }
    ForEachWindow(item, [&](WindowKind kind, const TimeWindow& window) {
        if (kind != WindowKind::DURATION) {
            report.Add(window.element, "the rule " + Quoted(rule.name) + " asks one \"multiple_logic\" under \"duration\" "
                    "and under " + Quoted(WINDOW_WORDS[static_cast<std::size_t>(kind)]),
                {.attribute = window.element.Find("type"), .help = "give each an \"alarmId\" of its own"});
        }
    });
}

void CheckTestSources(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    ForEachTest(item, [&](const Test& test) {
        if (test.logicType == "dynamic" || test.logicType == "systemParam") {
            report.Add(test.element, "a test of the rule " + Quoted(rule.name) + " has the type " + Quoted(test.logicType),
                {.attribute = test.element.Find("type"), .help = "write the value to compare with as its \"value\""});
        }
    });
}

void CheckWeightedTests(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    const bool isWeighted = std::any_of(WEIGHTED_IDS.begin(), WEIGHTED_IDS.end(),
        [&item](const WeightedIds& ids) { return item.ids.first <= ids.last && item.ids.last >= ids.first; });
    if (!isWeighted || item.ids.IsEmpty() || !item.HasTests()) {
        return;
    }
    report.Add(item.element, "the rule " + Quoted(rule.name) + " has tests on events that carry a \"COUNT\"",
        {.attribute = item.element.Find("Eventid_Max"), .help = "choose the threshold as a number of rows"});
}

constexpr Check CHECKS[] = {
    {"A506", Severity::WARNING, CheckClass::STATIC, "tests that are not asked",
        "An \"alarmId\" with a \"condition\" whose \"type\" is not \"param_eventid\".",
        "the tests are ignored, and all rows of the events are counted", OnItems<CheckTestsUnread>},
    {"A507", Severity::ERROR, CheckClass::STATIC, "type \"param_eventid\" without tests",
        "An \"alarmId\" of the type \"param_eventid\" without a \"condition\" or without \"params\".",
        "it is false, however many rows there are", OnItems<CheckNoTests>},
    {"A508", Severity::ERROR, CheckClass::STATIC, "test of an unknown parameter",
        "A test of an \"alarmId\" whose \"id\" none of its \"params\" has.", "no row ever passes the test",
        OnItems<CheckTestIds>},
    {"A509", Severity::WARNING, CheckClass::STATIC, "several tests at once outside \"duration\"",
        "A \"multiple_logic\" under \"latest\" over several ids, or under \"daily_peak\".",
        "the last id of the range alone decides, and in place of the daily peak the rows of the whole period are counted",
        OnItems<CheckSeveralTests>},
    {"A510", Severity::WARNING, CheckClass::STATIC, "several tests with two meanings",
        "A \"multiple_logic\" with more than one test in an \"alarmId\" with a \"duration\" and another time.",
        "under \"duration\" one and the same row must pass all tests; under the others each test may be passed by rows of "
        "its own",
        OnItems<CheckTwoMeanings>},
    {"A513", Severity::WARNING, CheckClass::STATIC, "threshold from elsewhere in an alarm rule",
        "A test of an \"alarmId\" with the type \"dynamic\" or \"systemParam\".",
        "the type is ignored, and the test compares with its own \"value\"", OnItems<CheckTestSources>},
    {"A514", Severity::WARNING, CheckClass::STATIC, "tests on events that carry a count",
        "An \"alarmId\" of the type \"param_eventid\" over ids whose rows have the number of their events in "
        "\"COUNT\": 909030000 to 909031999, 912001000 to 912001999 and 920000000 to 929999999.",
        "each row that passes counts once, whatever its \"COUNT\" says", OnItems<CheckWeightedTests>},
};

} // namespace

std::span<const Check> AlarmTestChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
