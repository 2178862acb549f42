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

TEST(JsonWriterTest, WritesSecondsWithSixDecimals)
{
    JsonWriter json;
    json.BeginObject().Seconds("a", 0.0123456).Seconds("b", 61).Seconds("c", 1.9999996).Seconds("d", -1).EndObject();
    EXPECT_EQ(json.Line(), R"({"a": 0.012346, "b": 61.000000, "c": 2.000000, "d": 0.000000})");
}

} // namespace
