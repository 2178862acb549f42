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
    WriteNumber(json, "seconds", moment.seconds);
    json.Text("local", moment.local).EndObject();
}

void WriteStart(JsonWriter& json, const Evidence::Start& start)
{
    json.Key("start").BeginObject();
    WriteNumber(json, "seconds", start.start.seconds);
    json.Text("local", start.start.local).Text("floor", Evidence::FloorText(start.floor));
    WriteNumber(json, "periodDays", start.periodDays);
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
    WriteCount(json, "rowsTested", test.rowsTested);
    WriteCount(json, "rowsPassed", test.rowsPassed);
    if (test.rowsPassedByLastId) {
        WriteCount(json, "rowsPassedByLastId", *test.rowsPassedByLastId);
    }
    json.EndObject();
}

void WriteWindow(JsonWriter& json, const Evidence::Window& window)
{
    json.BeginObject();
    WriteCount(json, "item", window.item);
    WriteNumber(json, "firstId", window.firstId);
    WriteNumber(json, "lastId", window.lastId);
    json.Text("window", window.kind).Bool("hit", window.hit);
    json.Text("reason", Evidence::ReasonText(window.reason));
    WriteNotes(json, window.notes);
    if (window.start) {
        WriteNumber(json, "periodDays", window.periodDays);
        WriteStart(json, *window.start);
        json.Bool("versionFilter", window.versionFilter);
        WriteCount(json, "rowsFound", window.count.rowsFound);
        if (window.count.rowsBeforeStart) {
            WriteCount(json, "rowsBeforeStart", *window.count.rowsBeforeStart);
        }
        WriteCount(json, "rowsOfOtherVersion", window.count.rowsOfOtherVersion);
        WriteCount(json, "rowsFailedTest", window.count.rowsFailedTest);
        if (window.count.coveredDays) {
            WriteNumber(json, "coveredDays", *window.count.coveredDays);
        }
        WriteNumber(json, "reached", window.count.reached);
        WriteNumber(json, "reachedById", window.count.reachedById);
        json.Text("measure", Evidence::MeasureText(window.count.measure));
        json.Bool("lastIdDecides", window.count.lastIdDecides);
        WriteNumber(json, "threshold", window.threshold);
        WriteNumber(json, "missing", window.Missing());
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
    WriteCount(json, "rows", statement.rows);
    json.Text("error", statement.error).Text("reason", Evidence::ReasonText(statement.reason));
    if (statement.interval) {
        json.Key("interval").BeginObject().Text("startKey", statement.interval->startKey);
        json.Text("endKey", statement.interval->endKey);
        WriteNumber(json, "start", statement.interval->start);
        WriteNumber(json, "end", statement.interval->end);
        WriteCount(json, "days", statement.interval->days);
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
            WriteCount(mJson, "databases", command.hits->databases);
            WriteNumber(mJson, "hits", command.hits->hits);
            WriteNumber(mJson, "needed", command.hits->needed);
            WriteNumber(mJson, "missing", command.hits->Missing());
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
    WriteCount(json, "alternative", placed.alternative);
    if (placed.inGroup) {
        WriteCount(json, "place", placed.place);
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
