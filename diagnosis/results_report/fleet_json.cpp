#include "diagnosis/results_report/fleet_json.h"

#include <cmath>

#include "diagnosis/results_report/wilson.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

// From 0 to 1, with four digits behind the point in every locale.
std::string ShareText(double share)
{
    const std::string digits = std::to_string(std::lround(share * 10000) + 100000);
    return digits.substr(1, 1) + "." + digits.substr(2);
}

std::string SecondsText(std::int64_t microseconds)
{
    const std::string digits = std::to_string(microseconds % 1000000 + 1000000);
    return std::to_string(microseconds / 1000000) + "." + digits.substr(1);
}

template <typename Items, typename Write>
void WriteList(JsonWriter& json, const char* key, const Items& items, Write write)
{
    json.Key(key).BeginArray();
    for (const auto& item : items) {
        json.BeginObject();
        write(item);
        json.EndObject();
    }
    json.EndArray();
}

void WriteStates(JsonWriter& json, const BundleStates& states)
{
    json.Count("fault", states.fault).Count("undecided", states.undecided).Count("noFault", states.noFault);
    json.Count("notApplicable", states.notApplicable).Count("failed", states.failed);
}

void WriteBundles(JsonWriter& json, const Fleet& fleet)
{
    WriteList(json, "runs", fleet.runs, [&json](const FleetRun& run) {
        json.Text("engine", run.engine).Text("ruleSet", run.ruleSet).Count("bundles", run.bundles);
    });
    json.Count("runsLeftOut", fleet.runsLeftOut).Text("from", fleet.from).Text("until", fleet.until);
    json.Key("bundles").BeginObject().Count("total", fleet.bundles.All());
    WriteStates(json, fleet.bundles);
    json.EndObject();
    WriteList(json, "trees", fleet.trees, [&json](const TreeVerdicts& tree) {
        json.Text("tree", tree.tree).Count("fault", tree.fault).Count("undecided", tree.undecided);
        json.Count("noFault", tree.noFault).Count("notApplicable", tree.notApplicable).Count("absent", tree.absent);
    });
    json.Count("treesLeftOut", fleet.treesLeftOut);
}

void WriteCauses(JsonWriter& json, const CommonCauses& causes)
{
    json.Count("differentCauses", causes.different);
    WriteList(json, "causes", causes.causes, [&json](const CommonCause& cause) {
        json.Text("tree", cause.tree).Text("id", cause.event).Text("name", cause.name).Count("bundles", cause.bundles);
    });
    json.Key("together").BeginArray();
    for (const auto& row : causes.together) {
        json.BeginArray();
        for (const std::uint64_t count : row) {
            json.Raw(std::to_string(count));
        }
        json.EndArray();
    }
    json.EndArray();
}

void WriteOpen(JsonWriter& json, const OpenChecks& open)
{
    json.Count("openChecks", open.checks);
    WriteList(json, "openByReason", open.byReason, [&json](const OpenByReason& reason) {
        json.Text("check", reason.check).Text("reason", reason.reason).Count("checks", reason.checks);
        json.Count("bundles", reason.bundles);
    });
    WriteList(json, "openBySource", open.bySource, [&json](const OpenBySource& source) {
        json.Text("reason", Evidence::ReasonText(source.reason)).Text("detail", source.detail);
        json.Count("checks", source.checks).Count("bundles", source.bundles);
        json.Count("undecidedTrees", source.undecidedTrees);
    });
    json.Count("openSourcesLeftOut", open.sourcesInRest).Count("openChecksLeftOut", open.checksInRest);
}

void WriteRuns(JsonWriter& json, const Fleet& fleet)
{
    WriteList(json, "failures", fleet.failures, [&json](const CommonFailure& failure) {
        json.Text("code", failure.code).Bool("retry", failure.retry).Count("bundles", failure.bundles);
        json.Text("example", failure.example);
    });
    json.Key("seconds").Raw(SecondsText(fleet.times.sum));
    json.Key("medianSeconds").Raw(SecondsText(fleet.times.median));
    json.Key("seconds95").Raw(SecondsText(fleet.times.most95));
    WriteList(json, "slowest", fleet.times.slowest, [&json](const SlowBundle& bundle) {
        json.Text("bundle", bundle.bundle).Text("now", bundle.moment).Key("seconds").Raw(SecondsText(bundle.microseconds));
    });
}

void WriteTrend(JsonWriter& json, const FleetTrend& trend)
{
    WriteList(json, "weeks", trend.weeks, [&json](const FleetWeek& week) {
        json.Text("monday", week.monday);
        WriteStates(json, week.bundles);
        json.Key("causes").BeginArray();
        for (const std::uint64_t count : week.causes) {
            json.Raw(std::to_string(count));
        }
        json.EndArray();
    });
    json.Count("bundlesBefore", trend.before).Count("bundlesAfter", trend.after).Count("bundlesUndated", trend.undated);
}

void WriteFollowed(JsonWriter& json, const char* key, const FollowedDevices& devices)
{
    const ShareInterval interval = WilsonInterval(devices.again, devices.All());
    json.Key(key).BeginObject().Count("followed", devices.All()).Count("again", devices.again);
    json.Key("share").Raw(ShareText(interval.share)).Key("low").Raw(ShareText(interval.low));
    json.Key("high").Raw(ShareText(interval.high)).EndObject();
}

void WriteRepairs(JsonWriter& json, const RepairFigures& repairs)
{
    json.Number("withinDays", repairs.withinDays).Count("devices", repairs.devices);
    json.Count("bundlesWithoutDevice", repairs.bundlesWithoutDevice);
    WriteList(json, "repairs", repairs.effects, [&json](const RepairEffect& effect) {
        json.Text("id", effect.id).Count("devices", effect.Devices());
        WriteFollowed(json, "repaired", effect.repaired);
        json.Count("faultNotSeenBefore", effect.faultNotSeenBefore).Count("notSeenAfter", effect.notSeenAfter);
        json.Count("notToldAfter", effect.notToldAfter);
        WriteFollowed(json, "others", effect.others);
        json.Count("othersNotFollowed", effect.othersNotFollowed);
    });
    json.Count("repairsLeftOut", repairs.leftOut).Count("repairsWithoutCause", repairs.withoutCause);
}

} // namespace

std::string FleetJson(const Fleet& fleet)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.results_report.1");
    WriteBundles(json, fleet);
    WriteCauses(json, fleet.causes);
    WriteOpen(json, fleet.open);
    WriteRuns(json, fleet);
    WriteTrend(json, fleet.trend);
    WriteRepairs(json, fleet.repairs);
    return json.EndObject().Line();
}

} // namespace diagnosis
