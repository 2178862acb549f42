#include "diagnosis/results/log_json.h"

#include <utility>

#include "diagnosis/text/json_writer.h"

namespace diagnosis {

namespace {

void WriteSpan(JsonWriter& json, const LoggedSpan& span)
{
    for (const auto& [key, time] : {std::pair("first", span.first), std::pair("last", span.last)}) {
        json.Key(key);
        time ? json.Number(*time) : json.Null();
    }
}

JsonWriter& WriteRows(JsonWriter& json, std::uint64_t rows)
{
    return json.Count("rows", rows);
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

std::string LogJson(const std::string& log, const LogInspection& inspection)
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.log.1").Text("log", log);
    WriteRows(json, inspection.rows);
    WriteSpan(json, inspection.span);
    json.Key("ids").BeginArray();
    for (const LoggedId& id : inspection.ids) {
        json.BeginObject().Number("id", id.id);
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

} // namespace diagnosis
