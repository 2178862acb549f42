#include "tools/arborist/detection/query.h"

#include "arborist/frame/arborist.h"

namespace command {

namespace {

void Ask(const BundleSession& session, DetectionRecorder& recorder, Arborist& engine, QueryReport& report)
{
    report.wouldRun = engine.IsRunRule(report.code);
    report.failure = RuleSetFailure(recorder.GetFiles(), session.GetBundle().treeTag);
    if (!report.failure) {
        report.faultDescription = engine.GetCodeRuleFaultDescId(report.code);
        report.suggestion = engine.GetCodeRuleSuggestionId(report.code);
        report.repair = engine.GetCodeRuleRepairId(report.code);
    }
}

} // namespace

QueryReport RunQuery(const BundlePath& bundle, const std::string& code, const BundleOverrides& overrides)
{
    QueryReport report;
    report.bundle = bundle.given;
    report.code = code;
    const auto recorder = std::make_shared<DetectionRecorder>(false);
    try {
        BundleSession session;
        report.failure = session.Enter(bundle, overrides);
        report.warnings = session.GetWarnings();
        if (!report.failure) {
            Arborist engine(session.MakeDetectInfo());
            engine.SetObserver(recorder);
            Ask(session, *recorder, engine, report);
        }
    } catch (...) {
        report.failure = FailureInFlight(recorder->GetFiles());
    }
    return report;
}

} // namespace command
