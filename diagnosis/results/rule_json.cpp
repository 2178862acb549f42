#include "diagnosis/results/rule_json.h"

namespace diagnosis {

namespace {

// What else went wrong on the way; left out where nothing did.
void WriteNotes(JsonWriter& json, const std::vector<Evidence::Reason>& notes)
{
    if (notes.empty()) {
        return;
    }
    json.Key("notes").BeginArray();
    for (const Evidence::Reason note : notes) {
        json.Text(Evidence::ReasonText(note));
    }
    json.EndArray();
}

void WriteMoment(JsonWriter& json, const char* key, const Evidence::Moment& moment)
{
    json.Key(key).BeginObject();
    json.Number("seconds", moment.seconds);
    json.Text("local", moment.local).EndObject();
}

void WriteStart(JsonWriter& json, const Evidence::Start& start)
{
    json.Key("start").BeginObject();
    json.Number("seconds", start.start.seconds);
    json.Text("local", start.start.local).Text("floor", Evidence::FloorText(start.floor));
    json.Number("periodDays", start.periodDays);
    json.Text("beginFlag", start.beginFlag);
    WriteMoment(json, "period", start.period);
    WriteMoment(json, "reset", start.reset);
    WriteMoment(json, "update", start.update);
    WriteMoment(json, "repair", start.repair);
    json.Text("repairId", start.repairId);
    if (!start.unreadableRepair.empty()) {
        json.Text("unreadableRepair", start.unreadableRepair);
    }
    json.EndObject();
}

void WriteTest(JsonWriter& json, const Evidence::Test& test)
{
    json.BeginObject().Text("key", test.key).Text("type", test.type).Text("logic", test.logic);
    json.Text("value", test.value);
    json.Count("rowsTested", test.rowsTested);
    json.Count("rowsPassed", test.rowsPassed);
    if (test.rowsPassedByLastId) {
        json.Count("rowsPassedByLastId", *test.rowsPassedByLastId);
    }
    json.EndObject();
}

void WriteWindow(JsonWriter& json, const Evidence::Window& window)
{
    json.BeginObject();
    json.Count("item", window.item);
    json.Number("firstId", window.firstId);
    json.Number("lastId", window.lastId);
    json.Text("window", window.kind).Bool("hit", window.hit);
    json.Text("reason", Evidence::ReasonText(window.reason));
    WriteNotes(json, window.notes);
    if (window.start) {
        json.Number("periodDays", window.periodDays);
        WriteStart(json, *window.start);
        json.Bool("versionFilter", window.versionFilter);
        json.Count("rowsFound", window.count.rowsFound);
        if (window.count.rowsBeforeStart) {
            json.Count("rowsBeforeStart", *window.count.rowsBeforeStart);
        }
        json.Count("rowsOfOtherVersion", window.count.rowsOfOtherVersion);
        json.Count("rowsFailedTest", window.count.rowsFailedTest);
        if (window.count.coveredDays) {
            json.Number("coveredDays", *window.count.coveredDays);
        }
        json.Number("reached", window.count.reached);
        json.Number("reachedById", window.count.reachedById);
        json.Text("measure", Evidence::MeasureText(window.count.measure));
        json.Bool("lastIdDecides", window.count.lastIdDecides);
        json.Number("threshold", window.threshold);
        json.Number("missing", window.Missing());
        json.Key("tests").BeginArray();
        for (const Evidence::Test& test : window.tests) {
            WriteTest(json, test);
        }
        json.EndArray();
    }
    json.EndObject();
}

void WriteComparisons(JsonWriter& json, const std::vector<Evidence::Comparison>& comparisons)
{
    json.Key("comparisons").BeginArray();
    for (const Evidence::Comparison& comparison : comparisons) {
        json.BeginObject().Text("paramId", comparison.paramId).Text("key", comparison.key);
        json.Text("type", comparison.type).Text("observed", comparison.observed).Text("logic", comparison.logic);
        json.Text("threshold", comparison.configured).Text("source", comparison.source);
        json.Text("sourceId", comparison.sourceId).Bool("holds", comparison.holds).EndObject();
    }
    json.EndArray();
}

void WriteStatement(JsonWriter& json, const Evidence::Statement& statement)
{
    json.BeginObject().Text("database", statement.database).Text("sql", statement.sql).Bool("opened", statement.opened);
    json.Count("rows", statement.rows);
    json.Text("error", statement.error).Text("reason", Evidence::ReasonText(statement.reason));
    if (statement.interval) {
        json.Key("interval").BeginObject().Text("startKey", statement.interval->startKey);
        json.Text("endKey", statement.interval->endKey);
        json.Number("start", statement.interval->start);
        json.Number("end", statement.interval->end);
        json.Count("days", statement.interval->days);
        json.Bool("usable", statement.interval->usable).EndObject();
    }
    json.Key("parameters").BeginArray();
    for (const Evidence::Column& column : statement.columns) {
        json.BeginObject().Text("id", column.id).Text("key", column.key).Text("type", column.type);
        json.Text("raw", column.raw).Text("value", column.value).EndObject();
    }
    json.EndArray();
    WriteComparisons(json, statement.comparisons);
    json.EndObject();
}

void WriteMissingCopies(JsonWriter& json, const Evidence::MissingCopies& missing)
{
    json.Key("missingCopies").BeginObject().Text("cause", Evidence::NoCopyText(missing.cause));
    json.Key("folders").Texts(missing.folders).Text("pattern", missing.pattern).EndObject();
}

// Writes the part of each family; leaves out members that the reason leaves empty.
class PartJson {
public:
    explicit PartJson(JsonWriter& json) : mJson(json) {}

    void operator()(const std::monostate&) const {}

    void operator()(const Evidence::Alarm& alarm) const
    {
        if (!alarm.windows.empty()) {
            mJson.Key("windows").BeginArray();
            for (const Evidence::Window& window : alarm.windows) {
                WriteWindow(mJson, window);
            }
            mJson.EndArray();
        }
    }

    void operator()(const Evidence::Command& command) const
    {
        if (command.start) {
            WriteStart(mJson, *command.start);
        }
        if (!command.statements.empty()) {
            mJson.Key("queries").BeginArray();
            for (const Evidence::Statement& statement : command.statements) {
                WriteStatement(mJson, statement);
            }
            mJson.EndArray();
        }
        if (command.hits) {
            mJson.Key("hits").BeginObject().Text("name", command.hits->name);
            mJson.Count("databases", command.hits->databases);
            mJson.Number("hits", command.hits->hits);
            mJson.Number("needed", command.hits->needed);
            mJson.Number("missing", command.hits->Missing());
            if (command.hits->missingCopies) {
                WriteMissingCopies(mJson, *command.hits->missingCopies);
            }
            mJson.EndObject();
        }
    }

    void operator()(const Evidence::Node& node) const
    {
        if (node.files.empty() && node.comparisons.empty()) {
            return;
        }
        mJson.Key("files").BeginArray();
        for (const Evidence::NodeFile& file : node.files) {
            mJson.BeginObject().Text("param", file.param).Text("path", file.path).Bool("readable", file.readable);
            mJson.Text("value", file.value).EndObject();
        }
        mJson.EndArray();
        if (node.formula) {
            mJson.Key("formula").BeginObject().Text("expression", node.formula->expression);
            mJson.Text("grouping", node.formula->grouping).Text("result", node.formula->result);
            mJson.Text("resultKey", node.formula->resultKey).EndObject();
        }
        WriteComparisons(mJson, node.comparisons);
    }

    void operator()(const Evidence::Code& code) const
    {
        if (!code.answer) {
            return;
        }
        mJson.Key("code").BeginObject().Text("detectCode", code.detectCode);
        mJson.Key("faultDescriptionIds").Texts(code.faultDescriptionIds);
        mJson.Key("suggestionIds").Texts(code.suggestionIds).Key("repairIds").Texts(code.repairIds);
        mJson.Text("userDefinedInfo", code.userDefinedInfo).Bool("answer", *code.answer).EndObject();
    }

private:
    JsonWriter& mJson;
};

} // namespace

void WriteRule(JsonWriter& json, const PlacedRule& placed)
{
    const Evidence::Rule& rule = placed.rule;
    json.BeginObject().Text("name", rule.name).Text("family", Evidence::FamilyText(rule.GetFamily()));
    json.Text("verdict", Evidence::VerdictText(rule.verdict)).Text("reason", Evidence::ReasonText(rule.reason));
    json.Text("check", Evidence::CheckText(rule.check));
    WriteNotes(json, rule.notes);
    if (!rule.logProblem.empty()) {
        json.Text("logProblem", rule.logProblem);
    }
    json.Count("alternative", placed.alternative);
    if (placed.inGroup) {
        json.Count("place", placed.place);
    }
    if (rule.filter) {
        json.Key("filter").BeginObject().Text("deviceValue", rule.filter->deviceValue);
        json.Text("ruleText", rule.filter->ruleText).EndObject();
    }
    if (rule.badName) {
        json.Text("badName", *rule.badName);
    }
    std::visit(PartJson(json), rule.part);
    json.EndObject();
}

} // namespace diagnosis
