#include "diagnosis/results/verdict_json.h"

namespace diagnosis {

namespace {

using Evidence::Check;

void WriteChecks(JsonWriter& json, const Evidence::CheckCounts& checks)
{
    json.Key("checks").BeginObject().Key("total").Raw(std::to_string(checks.Total()));
    for (const Check check : {Check::DECIDED, Check::NOT_APPLICABLE, Check::NOT_SELECTED, Check::NOT_CHECKED,
                              Check::DATA_MISSING, Check::RULE_UNUSABLE}) {
        json.Key(Evidence::CheckText(check)).Raw(std::to_string(checks.Of(check)));
    }
    json.EndObject();
}

void WriteOpen(JsonWriter& json, const Evidence::OpenCheck& open)
{
    json.BeginObject().Text("event", open.eventId).Text("rule", open.ruleName);
    json.Text("check", Evidence::CheckText(open.check)).Text("reason", Evidence::ReasonText(open.reason));
    json.Text("detail", open.detail).Bool("restsOnDefault", open.restsOnDefault).EndObject();
}

} // namespace

void WriteVerdict(JsonWriter& json, const Evidence::TreeVerdict& verdict)
{
    json.Text("verdict", Evidence::TreeVerdictText(verdict.word)).Bool("complete", verdict.isComplete);
    WriteChecks(json, verdict.checks);
    json.Key("open").BeginArray();
    for (const Evidence::OpenCheck& open : verdict.open) {
        WriteOpen(json, open);
    }
    json.EndArray().Key("possibleCauses").BeginArray();
    for (const Evidence::TreeVerdict::PossibleCause& cause : verdict.possibleCauses) {
        json.BeginObject().Text("id", cause.id).Key("cutSet").Texts(cause.cutSet).EndObject();
    }
    json.EndArray().Bool("possibleCausesTruncated", verdict.arePossibleCausesTruncated);
}

} // namespace diagnosis
