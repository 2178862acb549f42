#include "diagnosis/lint/base/event_counts.h"
#include "diagnosis/lint/base/near_names.h"
#include "diagnosis/lint/checks/checks.h"
#include "diagnosis/lint/reading/alarm_items.h"
#include "diagnosis/lint/reading/time_limits.h"

namespace diagnosis::lint {

namespace {

using rule_source::AlarmItem;
using rule_source::AlarmRule;
using rule_source::Attribute;
using rule_source::IdRange;
using rule_source::TimeWindow;
using rule_source::WINDOW_WORDS;
using rule_source::WindowKind;
using Kind = rule_source::ConditionAlternative::Kind;

std::string WhyEmpty(const AlarmItem& item)
{
    const IdRange& ids = item.ids;
    if (!item.element.Has("Eventid_Max")) {
        return item.element.Has("Eventid_Min") ? "it has \"Eventid_Min\" alone" : "it has no \"Eventid_Max\"";
    }
    return ids.last == 0 ? "\"Eventid_Max\" is 0 or no number" : "\"Eventid_Min\" is above \"Eventid_Max\"";
}

void CheckIds(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (item.ids.IsEmpty()) {
        report.Add(item.element, "the rule " + Quoted(rule.name) + " asks for no event: " + WhyEmpty(item),
            {.attribute = item.element.Find("Eventid_Max"),
                .help = "name the lowest id in \"Eventid_Min\" and the highest in \"Eventid_Max\"; for a single id, "
                        "\"Eventid_Max\" alone"});
    }
}

void CheckNoWindow(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    const std::string ofRule = " of the rule " + Quoted(rule.name);
    bool hasWindow = false;
    ForEachWindow(item, [&](WindowKind, const TimeWindow& window) {
        hasWindow = true;
        if (IsPassedOver(window)) {
            report.Add(window.element, "a time" + ofRule + " has neither a period nor a threshold",
                {.help = "write the days of its \"period\" and the count to reach as its \"threshold\""});
        }
    });
    if (!hasWindow) {
        report.Add(item.element, "an \"alarmId\"" + ofRule + " has no time in which it counts",
            {.help = "add <time type=\"latest\" period=\"30\" threshold=\"1\"/>"});
    }
}

void CheckWindowTypes(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    for (const TimeWindow& time : item.times) {
        const auto word = std::find(WINDOW_WORDS.begin(), WINDOW_WORDS.end(), time.type);
        const std::string start = "a time of the rule " + Quoted(rule.name);
        const Attribute type = time.element.Find("type");
        if (word == WINDOW_WORDS.end()) {
            report.Add(time.element, start + (type ? " has the unknown type " + Quoted(time.type) : " has no type"),
                {.attribute = type, .near = NearNames(WINDOW_WORDS.begin(), WINDOW_WORDS.end()).Find(time.type)});
            continue;
        }
        const TimeWindow& last = item.windows[static_cast<std::size_t>(word - WINDOW_WORDS.begin())];
        if (!(last.element == time.element)) {
            report.Add(time.element, start + " has the type " + Quoted(time.type) + " again in line "
                    + std::to_string(last.element.Line()) + ", which takes the place of this one",
                {.attribute = type, .help = "give each its own \"alarmId\""});
        }
    }
}

void CheckSameWindows(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    if (!item.HasTests() && HasWindow(item, WindowKind::DURATION) && HasWindow(item, WindowKind::LATEST)) {
        report.Add(item.Window(WindowKind::LATEST).element,
            "the rule " + Quoted(rule.name) + " has both times \"duration\" and \"latest\", and no tests",
            {.attribute = item.Window(WindowKind::LATEST).element.Find("type")});
    }
}

// True if the count of the window is compared as a signed number.
bool IsSigned(const AlarmItem& item, WindowKind kind)
{
    return kind == WindowKind::DAILY_PEAK ? !item.HasTests() || HasAsked(item, Kind::SINGLE)
                                          : kind == WindowKind::DURATION && HasAsked(item, Kind::MULTIPLE);
}

void CheckThresholds(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    ForEachWindow(item, [&](WindowKind kind, const TimeWindow& window) {
        const Attribute threshold = window.element.Find("threshold");
        const bool isNumber = !threshold || IsWholeNumber(threshold);
        if (!isNumber || window.threshold > 0 || IsPassedOver(window)) {
            return;
        }
        const std::string text = threshold ? "has the threshold " + std::to_string(window.threshold)
                                           : std::string("has no threshold");
        const std::string effect = window.threshold < 0 && !IsSigned(item, kind)
            ? "which no count reaches"
            : "which any row of the events reaches";
        report.Add(window.element, "a time of the rule " + Quoted(rule.name) + " " + text + ", " + effect,
            {.attribute = threshold, .help = "write the count to reach, from 1 on"});
    });
}

void CheckLongPeak(const AlarmRule& rule, const AlarmItem& item, Report& report)
{
    static constexpr std::int32_t SHORTEST_MONTH = 28;
    const TimeWindow& peak = item.Window(WindowKind::DAILY_PEAK);
    const bool isCounted = !item.HasTests() || HasAsked(item, Kind::SINGLE);
    if (!peak.element || !isCounted || IsPassedOver(peak) || peak.period < 0 || peak.period > LONGEST_PERIOD) {
        return;
    }
    const std::int32_t days = peak.period == 0 ? DEFAULT_PERIOD : peak.period;
    if (days > SHORTEST_MONTH) {
        report.Add(peak.element,
            "a daily peak of the rule " + Quoted(rule.name) + " looks at " + std::to_string(days) + " days",
            {.attribute = peak.element.Find("period"), .help = "write a \"period\" of 28 days or less"});
    }
}

std::string Times(std::int64_t count, const char* one, const char* several)
{
    return std::to_string(count) + (count == 1 ? one : several);
}

/// A number that grows up to a bound: ids, times and tests come from a file, and their product may be larger than any type.
class Estimate {
public:
    explicit Estimate(std::uint64_t number) : mNumber(std::min(number, LARGEST)) {}

    Estimate operator*(std::uint64_t factor) const
    {
        return Estimate(factor != 0 && mNumber > LARGEST / factor ? LARGEST : mNumber * factor);
    }

    std::string Of(const char* one, const char* several) const
    {
        return mNumber == LARGEST ? std::string("more than 10^18") + several
                                  : std::to_string(mNumber) + (mNumber == 1 ? one : several);
    }

private:
    static constexpr std::uint64_t LARGEST = 1'000'000'000'000'000'000;

    std::uint64_t mNumber;
};

// What a wide range costs on a device whose log is known, if each id is counted `rounds` times.
std::string RangeHelp(const AlarmItem& item, std::int64_t rounds, const EventCounts* counts)
{
    const std::string help = "name the ids that are logged";
    if (counts == nullptr) {
        return help;
    }
    const auto times = static_cast<std::uint64_t>(rounds);
    const EventCounts::Held held = counts->Of(item.ids.first, item.ids.last);
    const Estimate rows(held.rows);
    const Estimate all(counts->Rows());
    const Estimate scans = Estimate(static_cast<std::uint64_t>(item.ids.Size())) * times;
    return help + ": the log has " + rows.Of(" row", " rows") + " of " + std::to_string(held.events)
        + " of them; a detection looks at up to " + (rows * times).Of(" row", " rows")
        + ", and if it has to ask for each id by itself, it needs " + scans.Of(" scan", " scans") + " of "
        + all.Of(" row", " rows");
}

void CheckWideRange(const AlarmRule& rule, const AlarmItem& item, const EventCounts* counts, Report& report)
{
    static constexpr std::int64_t WIDE = 1000; // as many as the widest block of ids with a meaning of their own
    if (item.ids.Size() <= WIDE) {
        return;
    }
    std::int64_t windows = 0;
    ForEachWindow(item, [&windows](WindowKind, const TimeWindow&) { ++windows; });
    std::int64_t tests = 0;
    for (const auto& alternative : item.condition.alternatives) {
        tests += static_cast<std::int64_t>(alternative.tests.size());
    }
    report.Add(item.element,
        "the rule " + Quoted(rule.name) + " asks for " + std::to_string(item.ids.Size()) + " events, each for itself, in "
            + Times(windows, " time", " times") + (item.HasTests() ? " with " + Times(tests, " test", " tests") : ""),
        {.attribute = item.element.Find("Eventid_Max"),
            .help = RangeHelp(item, windows * (item.HasTests() ? std::max<std::int64_t>(1, tests) : 1), counts)});
}

void CheckWideRanges(const Subject& subject, Report& report)
{
    ForEachItem(subject, [&](const AlarmRule& rule, const AlarmItem& item) {
        CheckWideRange(rule, item, subject.counts, report);
    });
}

constexpr Check CHECKS[] = {
    {"A501", Severity::ERROR, CheckClass::STATIC, "range of events that is empty",
        "An \"alarmId\" of a rule without an event to count: \"Eventid_Min\" alone or above \"Eventid_Max\", ids that "
        "are 0 or no number.",
        "the whole rule is false at once, and the items behind this one are not looked at", OnItems<CheckIds>},
    {"A502", Severity::ERROR, CheckClass::STATIC, "no time in which events count",
        "An \"alarmId\" without a \"time\" of a known type, or a \"time\" with neither a period nor a threshold.",
        "the time is passed over, and an \"alarmId\" without another one counts nothing", OnItems<CheckNoWindow>},
    {"A503", Severity::WARNING, CheckClass::STATIC, "time that is not read",
        "A \"time\" whose type is none of \"duration\", \"daily_peak\" and \"latest\", or that has the type of a later "
        "one in the same \"alarmId\".",
        "it is dropped, or the later one takes its place", OnItems<CheckWindowTypes>},
    {"A504", Severity::INFO, CheckClass::STATIC, "two times that count alike",
        "An \"alarmId\" without tests that has both a \"duration\" and a \"latest\".",
        "both count the rows since their start, and either of them makes the rule true", OnItems<CheckSameWindows>},
    {"A505", Severity::WARNING, CheckClass::STATIC, "threshold below 1",
        "A \"time\" of an alarm rule whose threshold is missing, 0 or negative.",
        "0 is reached as soon as one row of the event is found, whether or not it passes the tests; a negative one is "
        "never reached by a count, and always by a daily peak or by rows that pass several tests",
        OnItems<CheckThresholds>},
    {"A511", Severity::WARNING, CheckClass::STATIC, "daily peak over more than a month",
        "A \"daily_peak\" over more than 28 days, or without a period, which is 30 days.",
        "events of the same day of different months are added up", OnItems<CheckLongPeak>},
    {"A512", Severity::WARNING, CheckClass::STATIC, "wide range of events",
        "An \"alarmId\" with more than 1000 ids.",
        "each id is counted for itself and costs nothing in a log without it; where the log can't be read, each id asks "
        "again and writes its lines, for each time and test, up to 100000 of them",
        CheckWideRanges},
};

} // namespace

std::span<const Check> AlarmChecks()
{
    return CHECKS;
}

} // namespace diagnosis::lint
