#include "diagnosis/text/json_writer.h"

#include <gtest/gtest.h>

namespace {

using diagnosis::JsonWriter;

TEST(JsonWriterTest, KeepsTheOrderOfMembersAndEscapesTexts)
{
    JsonWriter json;
    json.BeginObject().Text("b", "q\"\\\n\x01").Key("a").BeginArray().Number(-5).Bool(true).Null().EndArray();
    json.Key("c").Texts({"x", "\xff"}).Key("d").BeginObject().EndObject().EndObject();
    EXPECT_EQ(json.Line(), "{\"b\": \"q\\\"\\\\\\n\\u0001\", \"a\": [-5, true, null], \"c\": [\"x\", \"\xEF\xBF\xBD\"], "
                           "\"d\": {}}");
}

} // namespace
