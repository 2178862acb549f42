#include "tests/tools/json_schema.h"

#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/detection_observer.h"
#include "diagnosis/bundle/bundle_file.h"
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

class DetectSchemaTest : public testing::Test {
protected:
    void SetUp() override { PrepareLaptop("laptop"); }

    TempDir mDir;
};

TEST_F(DetectSchemaTest, HoldsForEveryKindOfResult)
{
    mDir.Write("bad/bundle.json", "{}");
    const Json::Value schema = ParsedJson(PageOfDocs("detect.schema.json"));
    const std::vector<std::vector<std::string>> calls{{"laptop"}, {"laptop", "--tree"}, {"laptop", "--explain"},
        {"laptop", "--as-of", "2020-01-01 00:00:00", "--tree"}, {"laptop", "--rules", "nowhere"}, {"nowhere"}, {"bad"}};
    for (const std::vector<std::string>& call : calls) {
        std::vector<std::string> arguments{"detect", "--json"};
        arguments.insert(arguments.end(), call.begin(), call.end());
        EXPECT_THAT(Violations(schema, ParsedJson(RunArborist(arguments).out)), IsEmpty())
            << testing::PrintToString(call);
    }
}

TEST(DetectSchemaWordsTest, DefinitionsAreThoseOfExplanations)
{
    const Json::Value detect = ParsedJson(PageOfDocs("detect.schema.json"))["$defs"];
    for (const char* word : {"reason", "check", "checks", "openCheck", "possibleCause", "warning", "status",
             "repair"}) {
        EXPECT_EQ(detect[word], Schema()["$defs"][word]) << word;
    }
}

// The reader refuses or warns of what the schema doesn't allow, and of nothing else.
TEST(BundleSchemaTest, AllowsWhatTheReaderTakesWithoutAWarning)
{
    const Json::Value schema = ParsedJson(PageOfDocs("bundle.schema.json"));
    const std::string start = R"({"detectScene": 1, "treeTag": "T")";
    for (const std::string text : {"", R"(, "now": 5, "tz": "UTC0")", R"(, "now": "2024-01-01 00:00:00")",
             R"(, "now": 5.5)", R"(, "now": true)", R"(, "tz": 1)", R"(, "device": {"Product": "P", "RamSize": "8"})",
             R"(, "device": {"Product": 1})", R"(, "device": {"Colour": "red"})", R"(, "device": [])",
             R"(, "settings": {"ProgramDataDir": "p", "AppDatabaseDir": "", "AppFileDir": "", "VersionName": "1",
                "DeviceRootDir": "d"})", R"(, "settings": {"CurrentTime": "1"})", R"(, "settings": {"VersionName": 1})",
             R"(, "codeAnswers": {"a": true, "b": false})", R"(, "codeAnswers": {"a": "yes"})", R"(, "codeAnswers": 1)",
             R"(, "ruleFileDir": "r", "ruleFilePrefix": "p", "logLocation": "l", "reservedText": "x")",
             R"(, "ruleFileDir": null)", R"(, "rules": "r")"}) {
        diagnosis::Bundle bundle;
        std::vector<diagnosis::Warning> warnings;
        const auto failure = diagnosis::ReadBundleText("bundle.json", start + text + "}", bundle, warnings);
        EXPECT_EQ(Violations(schema, ParsedJson(start + text + "}")).empty(), !failure && warnings.empty()) << text;
    }
    for (const char* text : {R"({"treeTag": "T"})", R"({"detectScene": 1})", R"({"detectScene": 1.5, "treeTag": "T"})",
             R"({"detectScene": 2147483648, "treeTag": "T"})", R"({"detectScene": "1", "treeTag": "T"})", "[]"}) {
        EXPECT_FALSE(Violations(schema, ParsedJson(text)).empty()) << text;
    }
}

TEST(BundleSchemaTest, HoldsForTheExamplesAndForWhatACaptureWrites)
{
    const Json::Value schema = ParsedJson(PageOfDocs("bundle.schema.json"));
    for (const char* name : {"laptop", "linux-host"}) {
        std::ifstream file(std::string(ARBORIST_SOURCE_DIR "/examples/") + name + "/bundle.json");
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_THAT(Violations(schema, ParsedJson(text)), IsEmpty()) << name;
        diagnosis::Bundle bundle;
        std::vector<diagnosis::Warning> warnings;
        ASSERT_FALSE(diagnosis::ReadBundleText("bundle.json", text, bundle, warnings));
        EXPECT_THAT(Violations(schema, ParsedJson(diagnosis::BundleText(bundle))), IsEmpty()) << name;
    }
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
    const std::vector<std::vector<std::string>> views{{}, {"--minimal", "--near-misses", "3"}, {"--brief"}, {"--next", "3"},
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
