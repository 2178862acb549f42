#include "arborist/stores/event_log/json_members.h"

#include <random>

#include <gmock/gmock.h>
#include <json/value.h>

#include "arborist/utilities/json_text.h"

namespace {

using testing::ElementsAre;

std::vector<std::string_view> Members(std::string_view text, const std::vector<std::string>& keys)
{
    std::vector<std::string_view> values;
    EXPECT_TRUE(ReadPlainMembers(text, keys, values)) << text;
    return values;
}

TEST(JsonMembersTest, ValuesBecomeText)
{
    EXPECT_THAT(Members(R"( { "n" : 12 , "s":"a b", "t":true, "f":false,"z":null, "m":-7,"o":0 } )",
        {"n", "s", "t", "f", "z", "m", "o", "missing"}), ElementsAre("12", "a b", "true", "false", "", "-7", "0", ""));
    EXPECT_THAT(Members("{}", {"a"}), ElementsAre(""));
    EXPECT_THAT(Members("{\r\n\t\"a\"\r:\r1}\r", {"a"}), ElementsAre("1"));
    EXPECT_THAT(Members("{\"a\":1}", {}), ElementsAre());
}

TEST(JsonMembersTest, OfMembersWithOneNameTheLastCounts)
{
    EXPECT_THAT(Members(R"({"a":1,"a":"x"})", {"a"}), ElementsAre("x"));
    EXPECT_THAT(Members(R"({"a":1,"a":null})", {"a"}), ElementsAre(""));
}

TEST(JsonMembersTest, WhatIsNotPlainIsLeftToTheFullReader)
{
    std::vector<std::string_view> values;
    for (const char* const text : {"", " ", "[]", "1", "null", "{", "}", R"({"a"})", R"({"a":})", R"({"a":1)",
             R"({"a":1}x)", R"({"a":1,})", R"({"a":{}})", R"({"a":[]})", R"({"a":1.5})", R"({"a":1e3})",
             R"({"a":01})", R"({"a":-0})", R"({"a":+1})", R"({"a":-})", R"({"a":1234567890123456789})",
             R"({"a":"\n"})", R"({"\u0061":1})", R"({"a":truex})", R"({"a":nul})", R"({"a":"x)", R"({a:1})",
             R"({'a':1})", "{\"a\":1/**/}", "\xEF\xBB\xBF{\"a\":1}"}) {
        EXPECT_FALSE(ReadPlainMembers(text, {"a"}, values)) << text;
    }
}

// A text that begins as an object and is then cut, changed and joined at random.
std::string RandomText(std::mt19937& random)
{
    static const char* const pieces[] = {"{", "}", "\"a\"", "\"b\"", ":", ":", ",", ",", "1", "-7", "0", "12.5", "1e2",
        "\"x\"", "\"\"", "true", "false", "null", " ", "\n", "[", "]", "\\", "\"\\u0041\"", "/**/", "//", "01", "-0",
        "\"a\":1", "\"b\":\"x\"", "\"a\":\"5\",", "\xC3\xA4", "\t", "999999999999999999", "NaN", "+"};
    std::string text = random() % 8 == 0 ? "" : "{";
    for (std::size_t count = random() % 9; count != 0; --count) {
        text += pieces[random() % std::size(pieces)];
    }
    return random() % 4 == 0 ? text : text + "}";
}

TEST(JsonMembersTest, AgreesWithTheFullReader)
{
    const unsigned int seed = 20240611;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> keys{"a", "b", ""};
    std::vector<std::string_view> values;
    int plain = 0;
    for (int round = 0; round < 300000; ++round) {
        const std::string text = RandomText(random);
        if (!ReadPlainMembers(text, keys, values)) {
            continue;
        }
        ++plain;
        Json::Value root;
        std::string error;
        ASSERT_TRUE(ParseJson(text, root, error)) << text << error;
        for (std::size_t number = 0; number < keys.size(); ++number) {
            ASSERT_EQ(values[number], MemberText(root, keys[number])) << text;
        }
    }
    EXPECT_GT(plain, 10000);
}

} // namespace
