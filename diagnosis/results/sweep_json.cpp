#include "diagnosis/results/sweep_json.h"

#include <algorithm>
#include <string>
#include <vector>

#include "diagnosis/bundle/moment.h"
#include "diagnosis/process/process_state.h"
#include "diagnosis/results/detection_json.h"

namespace diagnosis {

namespace {

using Print = std::function<void(const std::string& line)>;

/// What an interval belongs to.
struct Subject {
    const char* what;
    Grounds grounds;
    std::string tree = {};
    std::size_t treeNumber = 0;
    std::string cause = {};
    std::vector<std::string> cutSet = {};
    std::string event = {};
    std::string rule = {};
    const char* source = "";
};

void WriteMoment(JsonWriter& json, const std::string& key, std::int64_t moment)
{
    json.Number(key, moment).Text(key + "Local", FormatMoment(moment).value_or(""));
}

// "repair date" as the other words of the lines.
std::vector<std::string> KeysOf(const Grounds& grounds)
{
    std::vector<std::string> words = grounds.Words();
    for (std::string& word : words) {
        std::replace(word.begin(), word.end(), ' ', '_');
    }
    return words;
}

void PrintIntervals(const Subject& subject, const Timeline& timeline, const Print& print)
{
    for (const SweptInterval& interval : timeline.GetIntervals()) {
        JsonWriter json;
        json.BeginObject().Text("kind", "interval").Text("of", subject.what).Text("tree", subject.tree);
        json.Text("cause", subject.cause).Key("cutSet").Texts(subject.cutSet).Text("event", subject.event);
        json.Text("rule", subject.rule).Text("source", subject.source).Count("treeNumber", subject.treeNumber);
        json.Key("restsOn").Texts(KeysOf(subject.grounds));
        WriteMoment(json, "from", interval.from);
        WriteMoment(json, "until", interval.until);
        json.Text("state", SweptStateText(interval.state)).Text("word", interval.word);
        print(json.EndObject().Line());
    }
}

std::string HeadLine(const SweepReport& report)
{
    JsonWriter json;
    json.BeginObject();
    WriteHead(json, "arborist.sweep.1", report.bundle, !report.failure, report.warnings);
    json.Text("kind", "sweep");
    WriteMoment(json, "from", report.from);
    WriteMoment(json, "until", report.until);
    json.Count("moments", report.plan.moments).Count("tableMoments", report.plan.tableMoments);
    json.Key("asked").BeginArray();
    for (const SweepPlan::Asked& asked : report.plan.asked) {
        json.BeginObject().Text("event", asked.eventId).Count("times", asked.times).EndObject();
    }
    json.EndArray().Text("repairs", "latest_date");
    if (report.failure) {
        WriteError(json, *report.failure);
    }
    return json.EndObject().Line();
}

} // namespace

void SweepJson(const SweepReport& report, const Print& print)
{
    const TimeZoneGuard zone(report.tz);
    print(HeadLine(report));
    for (const SweptTree& tree : report.trees) {
        PrintIntervals({"tree", tree.grounds, tree.id, tree.number}, tree.timeline, print);
        for (const SweptCause& cause : tree.causes) {
            PrintIntervals(
                {"cause", cause.grounds, tree.id, tree.number, cause.id, cause.cutSet}, cause.timeline, print);
        }
    }
    for (const SweptRule& rule : report.rules) {
        PrintIntervals({.what = "rule", .grounds = rule.GetGrounds(), .event = rule.eventId, .rule = rule.name,
            .source = SweptSourceText(rule.source)}, rule.timeline, print);
    }
}

} // namespace diagnosis
