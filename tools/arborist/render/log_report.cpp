#include "tools/arborist/render/log_report.h"

#include <algorithm>

#include "tools/arborist/bundle/moment.h"
#include "tools/arborist/render/json_writer.h"
#include "tools/arborist/text/printable.h"

namespace command {

namespace {

std::string Time(std::int64_t seconds)
{
    return FormatMoment(seconds).value_or(std::to_string(seconds));
}

std::string Padded(const std::string& text, std::size_t width)
{
    return text + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

std::string Rows(std::uint64_t rows)
{
    return std::to_string(rows) + (rows == 1 ? " row" : " rows");
}

std::string Keys(const UnseenRows& unseen)
{
    std::string text;
    for (const std::string& key : unseen.keys) {
        text += (text.empty() ? "_ID " : ", ") + Printable(key);
    }
    return text + (unseen.rows > unseen.keys.size() ? ", ..." : "");
}

void WriteSpan(JsonWriter& json, const LoggedSpan& span)
{
    for (const auto& [key, time] : {std::pair("first", span.first), std::pair("last", span.last)}) {
        json.Key(key);
        time ? json.Number(*time) : json.Null();
    }
}

JsonWriter& WriteRows(JsonWriter& json, std::uint64_t rows)
{
    return json.Key("rows").Number(static_cast<std::int64_t>(rows));
}

void WriteUnseen(JsonWriter& json, const std::vector<UnseenRows>& kinds)
{
    json.Key("unseen").BeginArray();
    for (const UnseenRows& unseen : kinds) {
        json.BeginObject().Text("reason", unseen.reason).Text("by", unseen.reader).Text("message", unseen.text);
        WriteRows(json, unseen.rows).Key("keys").Texts(unseen.keys).EndObject();
    }
    json.EndArray();
}

} // namespace

std::string SpanText(const LoggedSpan& span)
{
    return span.first && span.last ? Time(*span.first) + " to " + Time(*span.last) : "no time";
}

std::string LogText(const std::string& log, const LogInspection& inspection)
{
    std::string text = Printable(log) + ": " + Rows(inspection.rows) + ", " + SpanText(inspection.span) + "\n";
    std::size_t width = 0;
    std::size_t rowsWidth = 0;
    for (const LoggedId& id : inspection.ids) {
        width = std::max(width, std::to_string(id.id).size());
        rowsWidth = std::max(rowsWidth, Rows(id.rows).size());
    }
    for (const LoggedId& id : inspection.ids) {
        text += "  event " + Padded(std::to_string(id.id), width) + "  " + Padded(Rows(id.rows), rowsWidth) + "  "
            + SpanText(id.span) + "\n";
    }
    for (const LoggedVersion& version : inspection.versions) {
        text += "  version \"" + Printable(version.name) + "\"  " + Rows(version.rows) + "\n";
    }
    for (const UnseenRows& unseen : inspection.unseen) {
        text += "  not seen by " + std::string(unseen.reader) + ": " + Rows(unseen.rows) + ", " + unseen.text + " ("
            + Keys(unseen) + ")\n";
    }
    return text;
}

std::string LogJson(const std::string& log, const LogInspection& inspection)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.log.1").Text("log", log);
    WriteRows(json, inspection.rows);
    WriteSpan(json, inspection.span);
    json.Key("ids").BeginArray();
    for (const LoggedId& id : inspection.ids) {
        json.BeginObject().Key("id").Number(id.id);
        WriteRows(json, id.rows);
        WriteSpan(json, id.span);
        json.EndObject();
    }
    json.EndArray().Key("versions").BeginArray();
    for (const LoggedVersion& version : inspection.versions) {
        json.BeginObject().Text("name", version.name);
        WriteRows(json, version.rows).EndObject();
    }
    json.EndArray();
    WriteUnseen(json, inspection.unseen);
    return json.EndObject().Line();
}

} // namespace command
