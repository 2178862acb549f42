#include "tools/arborist/commands/versions.h"

#include <sqlite3.h>

#include "diagnosis/text/json_writer.h"

namespace diagnosis::command {

std::string VersionsJson()
{
    JsonWriter json;
    json.BeginObject().Text("schema", "arborist.version.1").Text("arborist", ARBORIST_VERSION);
    json.Key("libraries").BeginObject();
    json.Text("sqlite", SQLITE_VERSION).Text("sqliteLinked", sqlite3_libversion());
    json.Text("tinyxml2", TINYXML2_VERSION_TEXT).Text("jsoncpp", JSONCPP_VERSION_TEXT);
    json.Text("zlib", ZLIB_VERSION_TEXT).Text("minizip", MINIZIP_VERSION_TEXT);
    json.Text("libsodium", LIBSODIUM_VERSION_TEXT);
    return json.EndObject().EndObject().Line();
}

} // namespace diagnosis::command
