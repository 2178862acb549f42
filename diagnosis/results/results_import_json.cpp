#include "diagnosis/results/results_import_json.h"

#include "diagnosis/text/json_writer.h"

namespace diagnosis {

std::string ResultsImportJson(const std::string& target, const results_db::ImportReport& report,
    const std::map<std::string, std::uint64_t>& redacted)
{
    const results_db::ImportCounts counts = report.isImported ? report.counts : results_db::ImportCounts();
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.results.import.1").Text("database", target);
    json.Bool("imported", report.isImported).Number("added", counts.added).Number("replaced", counts.replaced);
    json.Number("there", counts.there).Number("skipped", counts.skipped).Key("redacted").BeginArray();
    for (const auto& [part, values] : redacted) {
        json.BeginObject().Text("part", part).Count("values", values).EndObject();
    }
    json.EndArray().Key("errors").BeginArray();
    for (const Failure& failure : report.failures) {
        json.BeginObject().Text("code", CodeWord(failure.code)).Text("message", failure.message).EndObject();
    }
    return json.EndArray().EndObject().Line();
}

} // namespace diagnosis
