#include "diagnosis/redaction/extra_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/digest/digest.h"
#include "diagnosis/text/json_text.h"
#include "tests/support/case_name.h"
#include "tests/support/random_cases.h"

namespace {

using diagnosis::LogMembers;
using diagnosis::RedactedExtra;
using testing::ElementsAre;

const std::string KEY = "0123456789abcdef";

std::string Hash(const std::string& value)
{
    return diagnosis::KeyedHash(KEY, value);
}

// Replaces the members USER and PATH.
RedactedExtra Redact(const std::string& extra)
{
    LogMembers members;
    members.names = {{"user", "USER"}, {"path", "PATH"}};
    return diagnosis::RedactExtra(extra, {&members}, KEY);
}

TEST(ExtraTextTest, ValuesBecomeHashesAndAllOtherBytesStay)
{
    EXPECT_EQ(Redact(R"( { "A" : 1e3,"USER":"Ann" , "B": [ ] } )").text,
        R"( { "A" : 1e3,"USER":")" + Hash("Ann") + R"(" , "B": [ ] } )");
    EXPECT_THAT(Redact(R"({"USER": "Ann", "PATH": "/x"})").members, ElementsAre("path", "user"));
    EXPECT_EQ(Redact(R"({"A": 1})").text, R"({"A": 1})");
    EXPECT_FALSE(Redact(R"({"A": 1})").IsChanged());
}

TEST(ExtraTextTest, ATextAndANumberOfEqualDigitsHaveEqualHashes)
{
    EXPECT_EQ(Redact(R"({"USER": 17})").text, R"({"USER": ")" + Hash("17") + R"("})");
    EXPECT_EQ(Redact(R"({"USER": "1\u0037"})").text, R"({"USER": ")" + Hash("17") + R"("})");
    EXPECT_EQ(Redact(R"({"USER": true})").text, R"({"USER": ")" + Hash("true") + R"("})");
}

TEST(ExtraTextTest, MembersAreFoundAtAnyDepthWhateverTheirCaseAndSpelling)
{
    EXPECT_EQ(Redact(R"({"A": [{"B": {"user": "Ann"}}, 1]})").text,
        R"({"A": [{"B": {"user": ")" + Hash("Ann") + R"("}}, 1]})");
    EXPECT_EQ(Redact(R"({"\u0055SER": "Ann"})").text, R"({"\u0055SER": ")" + Hash("Ann") + R"("})");
}

TEST(ExtraTextTest, AListOrAnObjectIsReplacedAsOne)
{
    EXPECT_EQ(Redact(R"({"USER": {"PATH": ["/home"]}, "A": 1})").text,
        R"({"USER": ")" + Hash(R"({"PATH": ["/home"]})") + R"(", "A": 1})");
    EXPECT_THAT(Redact(R"({"USER": {"PATH": ["/home"]}})").members, ElementsAre("user"));
}

TEST(ExtraTextTest, WhatTellsNothingStays)
{
    for (const char* extra : {"", "{}", R"({"USER": null})", R"({"USER": ""})"}) {
        EXPECT_EQ(Redact(extra).text, extra);
        EXPECT_FALSE(Redact(extra).IsChanged()) << extra;
    }
}

TEST(ExtraTextTest, AByteOrderMarkMovesNothing)
{
    EXPECT_EQ(Redact("\xEF\xBB\xBF{\"USER\": \"Ann\", \"A\": 2}").text,
        "\xEF\xBB\xBF{\"USER\": \"" + Hash("Ann") + "\", \"A\": 2}");
}

TEST(ExtraTextTest, AQuoteInAValueIsNoted)
{
    EXPECT_TRUE(Redact(R"({"USER": "O'Hara"})").hadQuote);
    EXPECT_TRUE(Redact(R"({"USER": "O\u0027Hara"})").hadQuote);
    EXPECT_FALSE(Redact(R"({"A": "O'Hara", "USER": "Ann"})").hadQuote);
}

struct WholeCase { const char* name; std::string extra; };
void PrintTo(const WholeCase& wholeCase, std::ostream* out) { *out << wholeCase.name; }
class ExtraThatIsNoObject : public testing::TestWithParam<WholeCase> {};

TEST_P(ExtraThatIsNoObject, IsReplacedAsAWholeByWhatIsNoJsonEither)
{
    const auto redacted = Redact(GetParam().extra);
    EXPECT_TRUE(redacted.isWhole);
    EXPECT_EQ(redacted.text, "redacted " + Hash(GetParam().extra));
    std::string problem;
    EXPECT_FALSE(diagnosis::ParseEngineJson(redacted.text, problem).has_value());
}

INSTANTIATE_TEST_SUITE_P(Table, ExtraThatIsNoObject, testing::Values(
    WholeCase{"BrokenBehindAMember", R"({"USER": "Ann", )"}, WholeCase{"Repeated", R"({"USER": "Ann", "USER": "Bob"})"},
    WholeCase{"WithAComment", R"({"A": 1 /* Ann */})"}, WholeCase{"List", R"([{"USER": "Ann"}])"},
    WholeCase{"Number", "17"}, WholeCase{"BehindANul", std::string("{\"A\": 1}\0Ann", 12)},
    WholeCase{"Text", "Ann"}, WholeCase{"TooDeep", std::string(5000, '[')},
    WholeCase{"MoreBehindTheObject", R"({"A": 1} Ann)"}), CaseName());

bool IsHash(const Json::Value& value)
{
    return value.isString() && value.asString().size() == 32
        && value.asString().find_first_not_of("0123456789abcdef") == std::string::npos;
}

// Goes through both values side by side, and tells what is not as it should be.
std::string Difference(const Json::Value& before, const Json::Value& after)
{
    if (before.type() != after.type() || before.size() != after.size() || (before.size() == 0 && before != after)) {
        return before.toStyledString() + " became " + after.toStyledString();
    }
    for (Json::ArrayIndex item = 0; before.isArray() && item < before.size(); ++item) {
        if (const std::string difference = Difference(before[item], after[item]); !difference.empty()) {
            return difference;
        }
    }
    for (const std::string& name : before.isObject() ? before.getMemberNames() : std::vector<std::string>()) {
        const bool isListed = name == "USER" || name == "user";
        const bool isEmpty = before[name].isNull() || before[name] == "";
        const std::string difference = isListed && !isEmpty ? IsHash(after[name]) ? "" : name + " is no hash"
                                                            : Difference(before[name], after[name]);
        if (!difference.empty()) {
            return difference;
        }
    }
    return "";
}

std::string RandomValue(RandomCases& random, int depth)
{
    const std::size_t kind = random.Below(depth > 3 ? 3 : 9);
    if (kind < 3) {
        return random.OneOf({"1", "null", "\"\"", "\"x\"", "-2.5e3", "true", "\"a\\\"b\"", "\"\\u00e9'\"", "{}", "[]", "\"{\\\"USER\\\": 1}\""});
    }
    const bool isObject = kind > 4 || depth == 0;
    std::string text;
    std::vector<std::string> names = {"\"USER\"", "\"user\"", "\"A\"", "\"\"", "\"B\"", "\"\\u0041b\""};
    for (std::size_t left = random.Below(4); left > 0; --left) {
        const std::size_t name = random.Below(names.size());
        text += (text.empty() ? "" : random.OneOf({",", " , "})) + (isObject ? names[name] + random.OneOf({":", " : "}) : "")
            + RandomValue(random, depth + 1);
        names.erase(names.begin() + static_cast<std::ptrdiff_t>(name));
    }
    return isObject ? "{" + text + "}" : "[" + text + "]";
}

TEST(ExtraTextTest, RandomTextsKeepNoListedValueAndAllOthers)
{
    RandomCases random(3000);
    int objects = 0;
    for (int run = 0; run < random.GetCount(); ++run) {
        std::string extra = RandomValue(random, 0);
        if (random.OnceIn(4)) { // one byte that doesn't belong there
            extra.insert(random.Below(extra.size() + 1), random.OneOf({"{", "}", "\"", ",", "\\", "'", "\xff", "/", "\n", "x"}));
        }
        const auto redacted = Redact(extra);
        const std::string where = "seed " + std::to_string(random.GetSeed()) + ": " + extra;
        std::string problem;
        const auto before = diagnosis::ParseEngineJson(extra, problem);
        const bool isObject = before && before->isObject();
        EXPECT_EQ(redacted.isWhole, !isObject && !extra.empty()) << where;
        if (isObject) {
            ++objects;
            const auto after = diagnosis::ParseEngineJson(redacted.text, problem);
            ASSERT_TRUE(after.has_value()) << where << problem;
            EXPECT_EQ(Difference(*before, *after), "") << where;
        }
    }
    EXPECT_GT(objects, random.GetCount() / 20);
}

} // namespace
