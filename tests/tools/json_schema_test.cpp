#include "tests/tools/json_schema.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/detection_observer.h"
#include "tests/support/temp_dir.h"
#include "tests/support/xml_builder.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Json::Value Schema() { return ParsedJson(PageOfDocs("explain.schema.json")); }

std::vector<std::string> ViolationsOf(const std::vector<std::string>& arguments)
{
    const auto result = RunArborist(arguments);
    return Violations(Schema(), ParsedJson(result.out));
}

TEST(ViolationsTest, NameThePlaceAndWhatIsWrong)
{
    const Json::Value schema = ParsedJson(R"({"type": "object", "required": ["a", "b"], "properties": {
        "a": {"type": "array", "items": {"$ref": "#/$defs/word"}}, "b": {"type": "integer", "minimum": 0},
        "c": {"anyOf": [{"const": ""}, {"$ref": "#/$defs/word"}]}}, "$defs": {"word": {"enum": ["x", "y"]}}})");
    EXPECT_THAT(Violations(schema, ParsedJson(R"({"a": ["x", "y"], "b": 3, "c": ""})")), IsEmpty());
    EXPECT_THAT(Violations(schema, ParsedJson(R"({"a": ["x", "z"], "b": -1})")),
        ElementsAre(testing::StartsWith("/a/1: is none of the allowed values"), "/b: is out of range"));
    EXPECT_THAT(Violations(schema, ParsedJson(R"({"a": "x", "c": "z", "d": 1})")),
        ElementsAre(": lacks b", "/a: is no array", testing::StartsWith("/c: is none"), ": has the unlisted key d"));
}

class ExplainSchemaTest : public testing::Test {
protected:
    void SetUp() override { PrepareLaptop("laptop"); }

    TempDir mDir;
};

TEST_F(ExplainSchemaTest, HoldsForALaptopInEveryView)
{
    const std::vector<std::vector<std::string>> views{{}, {"--minimal", "--near-misses", "3"}, {"--brief"},
        {"--brief", "--minimal"}, {"--event", "BATTERY_WORN"}, {"--rule", "keys_bounce"}, {"--cause", "CHARGE_LOST"},
        {"--event", "NOWHERE"}, {"--rules", "nowhere"}};
    for (const std::vector<std::string>& view : views) {
        std::vector<std::string> arguments{"explain", "--json", "--log-level", "none", "laptop"};
        arguments.insert(arguments.end(), view.begin(), view.end());
        EXPECT_THAT(ViolationsOf(arguments), IsEmpty()) << testing::PrintToString(view);
    }
}

TEST(ExplainSchemaWordsTest, ReasonsAreAllOfThemInTheirOrder)
{
    std::vector<std::string> words;
    for (int reason = 1; *Evidence::ReasonText(static_cast<Evidence::Reason>(reason)) != '\0'; ++reason) {
        words.emplace_back(Evidence::ReasonText(static_cast<Evidence::Reason>(reason)));
    }
    std::vector<std::string> listed;
    const Json::Value schema = Schema();
    for (const Json::Value& word : schema["$defs"]["reason"]["enum"]) {
        listed.push_back(word.asString());
    }
    EXPECT_EQ(listed, words);
}

} // namespace
