#include "diagnosis/text/json_text.h"

#include <gtest/gtest.h>

#include "tests/support/case_name.h"

namespace {

TEST(JsonTextTest, AnErrorHasItsPlaceAndAReasonThatIsCut)
{
    std::string problem;
    EXPECT_FALSE(diagnosis::ParseJson("{\n \"a\": tru}", problem).has_value());
    EXPECT_EQ(problem, "line 2, column 7: Syntax error: value, object or array expected.");
    // A number and a key that are quoted in the reason.
    for (const std::string& text : {"[1" + std::string(1000000, '0') + "e999]",
             "{\"" + std::string(1000000, 'k') + "\": 1, \"" + std::string(1000000, 'k') + "\": 1}"}) {
        EXPECT_FALSE(diagnosis::ParseJson(text, problem).has_value());
        EXPECT_EQ(problem.rfind("line 1, column ", 0), 0U);
        EXPECT_EQ(problem.substr(problem.size() - 3), "...");
        EXPECT_LT(problem.size(), 300U);
    }
}

struct LooseCase { const char* name; const char* text; const char* problem; };
void PrintTo(const LooseCase& looseCase, std::ostream* out) { *out << looseCase.name; }
class LooseJson : public testing::TestWithParam<LooseCase> {};

TEST_P(LooseJson, IsRefusedWithItsPlace)
{
    std::string problem;
    EXPECT_FALSE(diagnosis::ParseJson(GetParam().text, problem).has_value());
    EXPECT_EQ(problem, GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(Table, LooseJson, testing::Values(
    LooseCase{"CommentBeforeAKey", "{\n  /* c */ \"a\": 1}", "line 2, column 3: a comment is no JSON"},
    LooseCase{"CommentBeforeALaterKey", "{\"a\": 1, // c\n\"b\": 2}", "line 1, column 10: a comment is no JSON"},
    LooseCase{"CommentAfterAValue", "{\"a\": 1\n /* c */}", "line 2, column 2: a comment is no JSON"},
    LooseCase{"CommentAtTheEnd", "{\"a\": 1}\n// c\n", "line 2, column 1: Extra non-whitespace after JSON value."},
    LooseCase{"CommentAtTheStart", "// c\n{\"a\": 1}",
        "line 1, column 1: Syntax error: value, object or array expected."},
    LooseCase{"CommentBeforeAValue", "{\"a\": /* c */ 1}",
        "line 1, column 7: Syntax error: value, object or array expected."},
    LooseCase{"DoubleKey", "{\"a\": 1,\n \"a\": 2}", "line 2, column 2: Duplicate key: 'a'"},
    LooseCase{"DoubleKeyOfAnInnerObject", "{\"o\": {\"a\": 1, \"a\": 2}}", "line 1, column 16: Duplicate key: 'a'"},
    LooseCase{"TrailingText", "{\"a\": 1}\nx", "line 2, column 1: Extra non-whitespace after JSON value."},
    LooseCase{"SecondObject", "{} {}", "line 1, column 4: Extra non-whitespace after JSON value."},
    LooseCase{"TrailingComma", "{\"a\": 1,}", "line 1, column 9: Missing '}' or object member name"},
    LooseCase{"ZeroInFront", "{\"a\": 01}", "line 1, column 7: \"01\" is not a number"},
    LooseCase{"PlusInFront", "[+1]", "line 1, column 2: \"+1\" is not a number"},
    LooseCase{"NoDigits", "[-]", "line 1, column 2: \"-\" is not a number"},
    LooseCase{"NoDigitsBehindThePoint", "[1.]", "line 1, column 2: \"1.\" is not a number"},
    LooseCase{"LineEndInAText", "[\"a\nb\"]", "line 1, column 4: a control character stands in a text"},
    LooseCase{"ByteThatIsNoUtf8", "{\"a\":\n \"b\xE9\"}", "line 2, column 4: a byte that is no UTF-8 stands in a text"},
    LooseCase{"CharacterThatIsCutOff", "{\"\xE2\x82\": 1}", "line 1, column 3: a byte that is no UTF-8 stands in a text"},
    LooseCase{"SurrogateInUtf8", "[\"\xED\xA0\x80\"]", "line 1, column 3: a byte that is no UTF-8 stands in a text"},
    LooseCase{"LowSurrogateAlone", "[\n\"a\\uDC00\"]", "line 2, column 3: a surrogate lacks its other half"},
    LooseCase{"HighSurrogateAlone", "[\"\\ud83d\\u0041\"]", "line 1, column 3: a surrogate lacks its other half"},
    LooseCase{"SurrogatesInTheWrongOrder", "[\"\\uDE00\\uD83D\\uDE00\"]",
        "line 1, column 3: a surrogate lacks its other half"}),
    CaseName());

TEST(JsonTextTest, WhatFollowsANulIsRefused)
{
    using std::string_literals::operator""s;
    std::string problem;
    for (const std::string& text : {"{\"a\": 1}\n\0"s, "{\"a\": 1}\n\0 {"s}) {
        EXPECT_FALSE(diagnosis::ParseJson(text, problem).has_value());
        EXPECT_EQ(problem, "line 2, column 1: a NUL character is no JSON");
    }
}

TEST(JsonTextTest, BracketsNestTooDeepFromThePlaceThatIsTold)
{
    const auto nested = [](std::size_t deep, const std::string& value) {
        return "[\"[{\\\"[\",[],\n" + std::string(deep - 1, '[') + value + std::string(deep, ']');
    };
    std::string problem;
    EXPECT_TRUE(diagnosis::ParseJson(nested(999, "1"), problem).has_value()) << problem;
    EXPECT_FALSE(diagnosis::ParseJson(nested(1000, "1"), problem).has_value());
    EXPECT_EQ(problem, "line 2, column 999: 1000 brackets are open: nested too deep");
}

TEST(JsonTextTest, CharactersBeyondAsciiAreTakenEscapedOrNot)
{
    std::string problem;
    const auto value = diagnosis::ParseJson("[\"\\u00e9\\uD83D\\uDE00\\\\uDC00\", \"\xC3\xA9\xF0\x9F\x98\x80\"]", problem);
    ASSERT_TRUE(value.has_value()) << problem;
    EXPECT_EQ((*value)[0].asString(), "\xC3\xA9\xF0\x9F\x98\x80\\uDC00");
    EXPECT_EQ((*value)[1].asString(), "\xC3\xA9\xF0\x9F\x98\x80");
}

TEST(JsonTextTest, TextsOfTheEngineMayHaveAnyBytes)
{
    std::string problem;
    EXPECT_TRUE(diagnosis::ParseEngineJson("{\"a\": \"\xE9\", \"b\": \"\\uDC00\"}", problem).has_value()) << problem;
    EXPECT_FALSE(diagnosis::ParseEngineJson("{\"a\": 01}", problem).has_value());
    EXPECT_EQ(problem, "line 1, column 7: \"01\" is not a number");
}

TEST(JsonTextTest, WhatOnlyLooksLooseIsTaken)
{
    std::string problem;
    const char* const text = R"({"a//b": "/* \" // 01 \\", "n": [0, -0, 10, -1.5e+07, 2E3, 0.0]})";
    EXPECT_TRUE(diagnosis::ParseJson(text, problem).has_value()) << problem;
    EXPECT_EQ(problem, "");
}

} // namespace
