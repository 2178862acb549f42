#include "arborist/utilities/json_text.h"

#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "tests/support/case_name.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ParseJsonTest : public testing::Test {
protected:
    bool Parse(const std::string& text) { return ParseJson(text, mRoot, mError); }

    Json::Value mRoot;
    std::string mError = "of before";
};

TEST_F(ParseJsonTest, ReadsAnObject)
{
    EXPECT_TRUE(Parse(R"({"a": "b"})"));
    EXPECT_EQ(MemberText(mRoot, "a"), "b");
    EXPECT_THAT(mError, IsEmpty());
}

TEST_F(ParseJsonTest, ReadsTheViewAndNotBeyond)
{
    const std::string text = R"({"a": 1}garbage)";
    EXPECT_TRUE(ParseJson(std::string_view(text).substr(0, 8), mRoot, mError));
    EXPECT_EQ(MemberText(mRoot, "a"), "1");
}

TEST_F(ParseJsonTest, BrokenTextLeavesWhatWasRead)
{
    EXPECT_FALSE(Parse(R"({"a": "b", "c": )"));
    EXPECT_THAT(mError, HasSubstr("Syntax error"));
    EXPECT_EQ(MemberText(mRoot, "a"), "b");
}

TEST_F(ParseJsonTest, TextThatHoldsNothingLeavesTheFormerValue)
{
    mRoot["kept"] = 1;
    EXPECT_FALSE(Parse(""));
    EXPECT_THAT(mError, Not(IsEmpty()));
    EXPECT_EQ(MemberText(mRoot, "kept"), "1");
    EXPECT_FALSE(ParseJson({}, mRoot, mError));
}

TEST_F(ParseJsonTest, NestingDeeperThanTheReaderGoesIsAFault)
{
    EXPECT_FALSE(Parse(std::string(100000, '[')));
    EXPECT_THAT(mError, HasSubstr("stackLimit"));
    EXPECT_FALSE(Parse(std::string(100000, '{')));
}

TEST_F(ParseJsonTest, IsNotDisturbedByAFaultBefore)
{
    EXPECT_FALSE(Parse(std::string(2000, '[')));
    EXPECT_TRUE(Parse(R"({"a": 1})"));
    EXPECT_THAT(mError, IsEmpty());
    EXPECT_EQ(mRoot.toStyledString(), "{\n\t\"a\" : 1\n}\n");
}

TEST_F(ParseJsonTest, AnyBytesAreAnswered)
{
    for (const std::string& text : {std::string("\0\xff\xfe", 3), std::string("\"\\ud800\""), std::string("1e999999"),
             std::string("{\"a\":1"), std::string("nul"), std::string("/*"), std::string("\"")}) {
        EXPECT_FALSE(Parse(text)) << text;
        EXPECT_THAT(mError, Not(IsEmpty())) << text;
    }
}

TEST_F(ParseJsonTest, EachThreadReadsForItself)
{
    bool parsed = false;
    std::thread([&parsed] {
        Json::Value root;
        std::string error;
        parsed = ParseJson("{}", root, error);
    }).join();
    EXPECT_TRUE(parsed);
    EXPECT_TRUE(Parse("[]"));
}

struct MemberCase { const char* name; const char* json; const char* expected; bool isReadable = true; };
void PrintTo(const MemberCase& memberCase, std::ostream* out) { *out << memberCase.name; }
class MemberTextTest : public testing::TestWithParam<MemberCase> {};

TEST_P(MemberTextTest, GivesTheMemberAsText)
{
    Json::Value root;
    std::string error;
    ASSERT_TRUE(ParseJson(GetParam().json, root, error)) << error;
    EXPECT_EQ(MemberText(root, "key"), GetParam().expected);
    EXPECT_EQ(IsMemberReadable(root, "key"), GetParam().isReadable);
}

INSTANTIATE_TEST_SUITE_P(Table, MemberTextTest, testing::Values(
    MemberCase{"Text", R"({"key": "text"})", "text"},
    MemberCase{"WholeNumber", R"({"key": -12})", "-12"},
    MemberCase{"GreatestNumber", R"({"key": 18446744073709551615})", "18446744073709551615"},
    MemberCase{"Fraction", R"({"key": 0.5})", "0.5"},
    MemberCase{"True", R"({"key": true})", "true"},
    MemberCase{"False", R"({"key": false})", "false"},
    MemberCase{"Null", R"({"key": null})", ""},
    MemberCase{"Object", R"({"key": {"a": 1}})", "", false},
    MemberCase{"Array", R"({"key": [1]})", "", false},
    MemberCase{"Missing", R"({"Key": 1})", ""},
    MemberCase{"RootIsAnArray", R"(["key"])", "", false},
    MemberCase{"RootIsAText", R"("key")", "", false},
    MemberCase{"RootIsANumber", "1", "", false},
    MemberCase{"RootIsNull", "null", "", false}),
    CaseName());

} // namespace
