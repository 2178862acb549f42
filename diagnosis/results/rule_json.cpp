#include "diagnosis/results/rule_json.h"

namespace diagnosis {

namespace {

void WriteNumber(JsonWriter& json, const char* key, std::int64_t number)
{
    json.Key(key).Number(number);
}

void WriteCount(JsonWriter& json, const char* key, std::uint64_t number)
{
    json.Key(key).Raw(std::to_string(number));
}

void WriteMoment(JsonWriter& json, const char* key, const ExplainedMoment& moment)
{
    json.Key(key).BeginObject();
    WriteNumber(json, "seconds", moment.seconds);
    json.Text("local", moment.local).EndObject();
}

void WriteStart(JsonWriter& json, const ExplainedStart& start)
{
    json.Key("start").BeginObject();
    WriteNumber(json, "seconds", start.start.seconds);
    json.Text("local", start.start.local).Text("floor", FloorWord(start.floor));
    WriteNumber(json, "periodDays", start.periodDays);
    json.Text("beginFlag", start.beginFlag);
    WriteMoment(json, "period", start.period);
    WriteMoment(json, "reset", start.reset);
    WriteMoment(json, "update", start.update);
    WriteMoment(json, "repair", start.repair);
    json.Text("repairId", start.repairId).EndObject();
}

void WriteTest(JsonWriter& json, const ExplainedTest& test)
{
    json.BeginObject().Text("key", test.key).Text("type", test.type).Text("logic", test.logic);
    json.Text("value", test.value);
    WriteCount(json, "rowsTested", test.rowsTested);
    WriteCount(json, "rowsPassed", test.rowsPassed);
    json.EndObject();
}

void WriteWindow(JsonWriter& json, const ExplainedWindow& window)
{
    json.BeginObject();
    WriteCount(json, "item", window.item);
    WriteNumber(json, "firstId", window.firstId);
    WriteNumber(json, "lastId", window.lastId);
    json.Text("window", window.window).Bool("hit", window.hit);
    json.Text("reason", DetectionObserver::ReasonText(window.reason));
    if (window.start) {
        WriteNumber(json, "periodDays", window.periodDays);
        WriteStart(json, *window.start);
        json.Bool("versionFilter", window.versionFilter);
        WriteCount(json, "rowsFound", window.rowsFound);
        WriteCount(json, "rowsOfOtherVersion", window.rowsOfOtherVersion);
        WriteCount(json, "rowsFailedTest", window.rowsFailedTest);
        WriteNumber(json, "reached", window.reached);
        WriteNumber(json, "reachedById", window.reachedById);
        json.Text("measure", window.measure);
        WriteNumber(json, "threshold", window.threshold);
        WriteNumber(json, "missing", window.Missing());
        json.Key("tests").BeginArray();
        for (const ExplainedTest& test : window.tests) {
            WriteTest(json, test);
        }
        json.EndArray();
    }
    json.EndObject();
}

void WriteComparisons(JsonWriter& json, const std::vector<ExplainedComparison>& comparisons)
{
    json.Key("comparisons").BeginArray();
    for (const ExplainedComparison& comparison : comparisons) {
        json.BeginObject().Text("paramId", comparison.paramId).Text("key", comparison.key);
        json.Text("type", comparison.type).Text("observed", comparison.observed).Text("logic", comparison.logic);
        json.Text("threshold", comparison.configured).Text("source", comparison.source);
        json.Text("sourceId", comparison.sourceId).Bool("holds", comparison.holds).EndObject();
    }
    json.EndArray();
}

void WriteQuery(JsonWriter& json, const ExplainedQuery& query)
{
    json.BeginObject().Text("database", query.database).Text("sql", query.sql).Bool("opened", query.opened);
    WriteCount(json, "rows", query.rows);
    json.Text("error", query.error);
    if (query.interval) {
        json.Key("interval").BeginObject().Text("startKey", query.interval->startKey);
        json.Text("endKey", query.interval->endKey);
        WriteNumber(json, "start", query.interval->start);
        WriteNumber(json, "end", query.interval->end);
        WriteCount(json, "days", query.interval->days);
        json.Bool("usable", query.interval->usable).EndObject();
    }
    json.Key("parameters").BeginArray();
    for (const ExplainedParameter& parameter : query.parameters) {
        json.BeginObject().Text("id", parameter.id).Text("key", parameter.key).Text("type", parameter.type);
        json.Text("raw", parameter.raw).Text("value", parameter.value).EndObject();
    }
    json.EndArray();
    WriteComparisons(json, query.comparisons);
    json.EndObject();
}

void WriteCodeRun(JsonWriter& json, const ExplainedCodeRun& run)
{
    json.Key("code").BeginObject().Text("detectCode", run.detectCode);
    json.Key("faultDescriptionIds").Texts(run.faultDescriptionIds);
    json.Key("suggestionIds").Texts(run.suggestionIds).Key("repairIds").Texts(run.repairIds);
    json.Text("userDefinedInfo", run.userDefinedInfo).Bool("answer", run.answer).EndObject();
}

void WriteNode(JsonWriter& json, const ExplainedRule& rule)
{
    json.Key("files").BeginArray();
    for (const ExplainedNodeFile& node : rule.nodeFiles) {
        json.BeginObject().Text("param", node.param).Text("path", node.path).Bool("readable", node.readable);
        json.Text("value", node.value).EndObject();
    }
    json.EndArray();
    if (rule.formula) {
        json.Key("formula").BeginObject().Text("expression", rule.formula->expression);
        json.Text("grouping", rule.formula->grouping).Text("result", rule.formula->result);
        json.Text("resultKey", rule.formula->resultKey).EndObject();
    }
    WriteComparisons(json, rule.comparisons);
}

} // namespace

void WriteRule(JsonWriter& json, const ExplainedRule& rule)
{
    json.BeginObject().Text("name", rule.name).Text("family", DetectionObserver::FamilyText(rule.family));
    json.Text("verdict", VerdictWord(rule.verdict)).Text("reason", DetectionObserver::ReasonText(rule.reason));
    WriteCount(json, "alternative", rule.alternative);
    if (rule.inGroup) {
        WriteCount(json, "place", rule.place);
    }
    if (rule.filter) {
        json.Key("filter").BeginObject().Text("deviceValue", rule.filter->deviceValue);
        json.Text("ruleText", rule.filter->ruleText).EndObject();
    }
    if (rule.badName) {
        json.Text("badName", *rule.badName);
    }
    if (!rule.windows.empty()) {
        json.Key("windows").BeginArray();
        for (const ExplainedWindow& window : rule.windows) {
            WriteWindow(json, window);
        }
        json.EndArray();
    }
    if (rule.start) {
        WriteStart(json, *rule.start);
    }
    if (!rule.queries.empty()) {
        json.Key("queries").BeginArray();
        for (const ExplainedQuery& query : rule.queries) {
            WriteQuery(json, query);
        }
        json.EndArray();
    }
    if (rule.hits) {
        json.Key("hits").BeginObject().Text("name", rule.hits->name);
        WriteCount(json, "databases", rule.hits->databases);
        WriteNumber(json, "hits", rule.hits->hits);
        WriteNumber(json, "needed", rule.hits->needed);
        WriteNumber(json, "missing", rule.hits->Missing());
        json.EndObject();
    }
    if (!rule.nodeFiles.empty() || !rule.comparisons.empty()) {
        WriteNode(json, rule);
    }
    if (rule.codeRun) {
        WriteCodeRun(json, *rule.codeRun);
    }
    json.EndObject();
}

} // namespace diagnosis
