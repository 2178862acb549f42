#include "bindings/c/calls.h"

#include "diagnosis/bundle/repairs.h"
#include "diagnosis/detection/query.h"
#include "diagnosis/results/detection_json.h"
#include "diagnosis/results/explained_report.h"
#include "diagnosis/results/explanation_json.h"
#include "diagnosis/results/query_json.h"
#include "diagnosis/results/repair_json.h"
#include "diagnosis/results/rule_set_json.h"
#include "diagnosis/rule_set/read_rule_set.h"

namespace diagnosis::bindings {

namespace {

/// The bundle of a request and how its detection is to be run.
struct Run {
    BundlePath bundle;
    DetectionOptions options;
};

BundleOverrides OverridesOf(const arborist_engine& engine, Request& request)
{
    BundleOverrides overrides = request.Overrides();
    overrides.rules = request.Rules();
    overrides.isToEnd = [&engine] { return engine.stop.IsAsked(); };
    return overrides;
}

Run RunOf(arborist_engine& engine, Request& request)
{
    Run run{request.NeededBundle(), OptionsOf(engine)};
    run.options.overrides = OverridesOf(engine, request);
    run.options.overrides.timeLimit = request.TimeLimit();
    return run;
}

ExplanationView ViewOf(Request& request)
{
    static constexpr std::size_t MOST_MISSING = 100;
    static constexpr std::size_t MOST_SHOWN = 100000;
    ExplanationView view;
    view.event = request.Text("event");
    view.rule = request.Text("rule");
    view.cause = request.Text("cause");
    view.nearMisses = request.Count("nearMisses", 0, MOST_MISSING, view.nearMisses);
    view.limit = request.Count("limit", 1, MOST_SHOWN, view.limit);
    view.minimal = request.Flag("minimal");
    view.brief = request.Flag("brief");
    return view;
}

Answer Refused(const Failure& failure)
{
    return {failure, "", {}};
}

Answer AnswerOf(const RepairReport& report)
{
    return {report.failure, RepairLines(report.records), report.warnings};
}

} // namespace

Answer Detect(arborist_engine& engine, Request& request)
{
    Run run = RunOf(engine, request);
    run.options.withTrees = request.Flag("tree");
    run.options.withExplanation = request.Flag("explain");
    run.options.isForLine = true;
    if (const auto failure = request.End()) {
        return Refused(*failure);
    }
    const DetectionReport report = RunDetection(run.bundle, run.options);
    return {report.failure, DetectionJson(report) + "\n", report.warnings};
}

Answer Explain(arborist_engine& engine, Request& request)
{
    const Run run = RunOf(engine, request);
    const ExplanationView view = ViewOf(request);
    if (const auto failure = request.End()) {
        return Refused(*failure);
    }
    const DetectionReport report = RunExplanation(run.bundle, run.options, view);
    return {report.failure, ExplanationJson(report, view) + "\n", report.warnings};
}

Answer Query(arborist_engine& engine, Request& request)
{
    const BundlePath bundle = request.NeededBundle();
    const std::string code = request.Needed("code");
    const BundleOverrides overrides = OverridesOf(engine, request);
    if (const auto failure = request.End()) {
        return Refused(*failure);
    }
    const QueryReport report = RunQuery(bundle, code, overrides);
    return {report.failure, QueryJson(report) + "\n", report.warnings};
}

Answer RepairRecord(arborist_engine& engine, Request& request)
{
    const BundlePath bundle = request.NeededBundle();
    const std::string id = request.Needed("id");
    const BundleOverrides overrides = OverridesOf(engine, request);
    const auto failure = request.End();
    return failure ? Refused(*failure) : AnswerOf(RecordRepair(bundle, id, overrides));
}

Answer RepairList(arborist_engine& engine, Request& request)
{
    const BundlePath bundle = request.NeededBundle();
    BundleOverrides overrides;
    overrides.isToEnd = [&engine] { return engine.stop.IsAsked(); };
    overrides.isLive = request.Flag("live");
    const auto failure = request.End();
    return failure ? Refused(*failure) : AnswerOf(ListRepairs(bundle, overrides));
}

Answer RuleSet(arborist_engine&, Request& request)
{
    const rule_set::Selection selection{request.Needed("rules"), request.Text("prefix"), request.Text("tag")};
    if (const auto failure = request.End()) {
        return Refused(*failure);
    }
    rule_set::ReadRuleSet rules;
    if (const auto failure = ReadInto(selection, rules)) {
        return {*failure, RulesFailureJson("list", selection.folder, *failure) + "\n", {}};
    }
    return {std::nullopt, InventoryJson(rules) + "\n", {}};
}

} // namespace diagnosis::bindings
