#include <memory>

#include "diagnosis/detection/query.h"
#include "diagnosis/results/query_json.h"
#include "tools/arborist/commands/commands.h"
#include "tools/arborist/commands/shared_options.h"
#include "tools/arborist/render/query_text.h"
#include "tools/arborist/terminal/output.h"

namespace diagnosis::command {

namespace {

struct QueryOptions {
    std::string bundle;
    std::string code;
    BundleOverrides overrides;
    LogOptions log;
    bool asJson = false;
};

ExitStatus Query(const QueryOptions& options)
{
    if (!IsLogOpen(options.log)) {
        return ExitStatus::WRONG_USE;
    }
    const QueryReport report = RunQuery(MakeBundlePath(options.bundle), options.code, options.overrides);
    if (options.asJson) {
        PrintResult(QueryJson(report) + "\n");
    } else {
        PrintProblems(report.bundle, report.warnings, report.failure);
        PrintResult(QueryText(report));
    }
    return report.failure ? report.failure->status : ExitStatus::SUCCESS;
}

} // namespace

void AddQueryCommand(Command app, ExitStatus& status)
{
    auto options = std::make_shared<QueryOptions>();
    Command query = app.AddCommand("query", "Tell about one detection code, without a detection");
    query.Add("BUNDLE", options->bundle, "Folder or zip with a bundle.json").Required();
    query.Add("CODE", options->code, "Detection code of a code rule").Required().NotEmpty();
    query.AddFlag("--json", options->asJson, "One JSON object");
    AddOverrides(query, options->overrides);
    AddRules(query, options->overrides);
    AddLogOptions(query, options->log);
    query.Footer("Prints whether the code rule would run on this device, and the description, suggestion and repair\n"
                  "ids that it stands for.\nExample:\n  arborist query examples/laptop KEYBOARD_TEST");
    query.OnCall([options, &status] { status = Query(*options); });
}

} // namespace diagnosis::command
