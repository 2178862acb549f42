#include "diagnosis/detection/query.h"

#include <algorithm>

#include "arborist/frame/arborist.h"
#include "diagnosis/bundle/rule_paths.h"
#include "diagnosis/evidence/detection_recorder.h"
#include "diagnosis/text/near_match.h"

namespace diagnosis {

namespace {

// Without this warning a misspelt code would look like one whose rule doesn't apply to the device.
void WarnOfUnknownCode(const std::vector<std::string>& codes, QueryReport& report)
{
    if (std::find(codes.begin(), codes.end(), report.code) == codes.end()) {
        report.warnings.push_back({WarningCode::UNKNOWN_CODE,
            "no code rule has the code \"" + report.code + "\"" + DidYouMean(report.code, codes)});
    }
}

void Ask(const BundleSession& session, DetectionRecorder& recorder, Arborist& engine, QueryReport& report)
{
    report.wouldRun = engine.IsRunRule(report.code);
    report.failure = RuleSetFailure(recorder.GetRuleSet(), session.GetBundle());
    if (!report.failure) {
        report.faultDescription = engine.GetCodeRuleFaultDescId(report.code);
        report.suggestion = engine.GetCodeRuleSuggestionId(report.code);
        report.repair = engine.GetCodeRuleRepairId(report.code);
        WarnOfUnknownCode(SummariseRuleSet(session.GetBundle()).detectCodes, report);
    }
}

} // namespace

QueryReport RunQuery(const BundlePath& bundle, const std::string& code, const BundleOverrides& overrides)
{
    QueryReport report;
    report.bundle = bundle.given;
    report.code = code;
    const auto recorder = std::make_shared<DetectionRecorder>();
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
        report.failure = FailureInFlight(recorder->GetRuleSet());
    }
    return report;
}

} // namespace diagnosis
