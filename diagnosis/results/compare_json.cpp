#include "diagnosis/results/compare_json.h"

#include "diagnosis/results/results_diff_json.h"
#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/text/json_writer.h"

namespace diagnosis {

std::string CompareJson(const rule_set::ReadRuleSet& before, const rule_set::ReadRuleSet& after,
    const std::vector<rule_set::Change>& changes, const results_db::ResultsDiff& diff)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.compare.1");
    json.Key("rules").Raw(DifferenceJson(before, after, changes));
    json.Key("results").Raw(ResultsDiffJson(diff));
    return json.EndObject().Line();
}

} // namespace diagnosis
