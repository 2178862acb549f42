#include "diagnosis/results/compare_json.h"

#include "diagnosis/results/detection_json.h"
#include "diagnosis/results/results_diff_json.h"
#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

constexpr char SCHEMA[] = "arborist.compare.1";

} // namespace

std::string CompareJson(const rule_set::ReadRuleSet& before, const rule_set::ReadRuleSet& after,
    const std::vector<rule_set::Change>& changes, const results_db::ResultsDiff& diff)
{
    JsonWriter json;
    json.BeginObject().Text("schema", SCHEMA);
    json.Key("rules").Raw(DifferenceJson(before, after, changes));
    json.Key("results").Raw(ResultsDiffJson(diff));
    return json.EndObject().Line();
}

std::string CompareFailureJson(const Failure& failure)
{
    JsonWriter json;
    json.BeginObject().Text("schema", SCHEMA);
    WriteError(json, failure);
    return json.EndObject().Line();
}

} // namespace diagnosis
