#include "tools/arborist/batch/batch_summary.h"

#include "diagnosis/text/json_writer.h"

namespace diagnosis::command {

std::string SummaryJson(const BatchSummary& summary)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.batch.1").Count("listed", summary.listed).Count("done", summary.done);
    json.Count("kept", summary.kept).Key("failed").BeginObject();
    for (const auto& [code, bundles] : summary.failed) {
        json.Count(code, bundles);
    }
    json.EndObject().Key("trees").BeginObject();
    for (std::size_t verdict = 0; verdict < VERDICTS.size(); ++verdict) {
        json.Count(Evidence::TreeVerdictText(VERDICTS[verdict]), summary.trees[verdict]);
    }
    json.EndObject().Seconds("seconds", summary.seconds).Bool("complete", summary.isComplete);
    return json.EndObject().Line();
}

} // namespace diagnosis::command
