#include "diagnosis/results/results_diff_json.h"

#include "diagnosis/results/detection_json.h"

namespace diagnosis {

namespace {

using results_db::Occurrences;
using results_db::TreeVerdict;

constexpr char SCHEMA[] = "arborist.results.diff.1";

void WriteSide(JsonWriter& json, const char* key, const results_db::ResultsSide& side)
{
    json.Key(key).BeginObject().Text("path", side.path).Number("bundles", side.bundles).Number("failed", side.failed);
    json.Key("engines").Texts(side.engines).Key("ruleSets").Texts(side.ruleSets);
    json.Text("firstMoment", side.firstMoment).Text("lastMoment", side.lastMoment);
    json.Seconds("seconds", side.seconds).EndObject();
}

void WriteMembers(JsonWriter& json, const Occurrences& bundles)
{
    json.Number("count", bundles.count).Key("examples").Texts(bundles.examples);
}

void WriteOccurrences(JsonWriter& json, const char* key, const Occurrences& bundles)
{
    json.Key(key).BeginObject();
    WriteMembers(json, bundles);
    json.EndObject();
}

void WriteMatrix(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    json.Key("matrix").BeginArray();
    for (std::size_t before = 0; before < diff.matrix.size(); ++before) {
        for (std::size_t after = 0; after < diff.matrix[before].size(); ++after) {
            if (diff.matrix[before][after] > 0) {
                json.BeginObject().Text("before", VerdictWord(static_cast<TreeVerdict>(before)));
                json.Text("after", VerdictWord(static_cast<TreeVerdict>(after)));
                json.Number("trees", diff.matrix[before][after]).EndObject();
            }
        }
    }
    json.EndArray();
}

void WriteVerdicts(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    json.Key("verdicts").BeginArray();
    for (const results_db::VerdictChange& change : diff.verdicts) {
        json.BeginObject().Text("tree", change.tree).Text("before", VerdictWord(change.before));
        json.Text("after", VerdictWord(change.after));
        WriteMembers(json, change.bundles);
        json.EndObject();
    }
    json.EndArray();
}

void WriteCauses(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    json.Key("causes").BeginArray();
    for (const results_db::CauseChange& cause : diff.causes) {
        json.BeginObject().Text("tree", cause.tree).Text("id", cause.id).Text("name", cause.name);
        json.Key("cutSet").Texts(cause.cutSet);
        WriteOccurrences(json, "new", cause.added);
        WriteOccurrences(json, "gone", cause.gone);
        WriteOccurrences(json, "unchanged", cause.unchanged);
        WriteOccurrences(json, "notComparable", cause.notComparable);
        json.EndObject();
    }
    json.EndArray();
}

void WriteNotComparable(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    json.Key("notComparable").BeginArray();
    for (std::size_t reason = 0; reason < diff.notComparable.size(); ++reason) {
        if (diff.notComparable[reason].count > 0) {
            json.BeginObject();
            json.Text("reason", NotComparableWord(static_cast<results_db::NotComparable>(reason)));
            WriteMembers(json, diff.notComparable[reason]);
            json.EndObject();
        }
    }
    json.EndArray();
}

void WriteNewlyOpen(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    json.Key("newlyOpen").BeginArray();
    for (const results_db::NewlyOpen& open : diff.newlyOpen) {
        json.BeginObject().Text("tree", open.tree).Text("event", open.event).Text("rule", open.rule);
        json.Text("reason", open.reason);
        WriteMembers(json, open.bundles);
        json.EndObject();
    }
    json.EndArray();
}

} // namespace

void WriteResultsDiff(JsonWriter& json, const results_db::ResultsDiff& diff)
{
    WriteSide(json, "before", diff.before);
    WriteSide(json, "after", diff.after);
    json.Bool("equal", !diff.HasDifference()).Number("compared", diff.compared).Number("otherMoment", diff.otherMoment);
    json.Number("new", diff.Added()).Number("gone", diff.Gone()).Number("changedVerdicts", diff.ChangedVerdicts());
    WriteMatrix(json, diff);
    WriteVerdicts(json, diff);
    WriteCauses(json, diff);
    WriteNotComparable(json, diff);
    WriteNewlyOpen(json, diff);
}

std::string ResultsDiffJson(const results_db::ResultsDiff& diff)
{
    JsonWriter json;
    json.BeginObject().Text("schema", SCHEMA);
    WriteResultsDiff(json, diff);
    return json.EndObject().Line();
}

std::string ResultsDiffFailureJson(const Failure& failure)
{
    JsonWriter json;
    json.BeginObject().Text("schema", SCHEMA);
    WriteError(json, failure);
    return json.EndObject().Line();
}

} // namespace diagnosis
