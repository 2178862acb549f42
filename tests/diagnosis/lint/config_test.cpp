#include "diagnosis/lint/config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diagnosis/lint/device_profiles.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::lint::ReadConfig;
using diagnosis::lint::ReadDeviceProfiles;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST(LintConfigTest, EachKeyIsReadAndFilesLieBesideIt)
{
    const TempDir dir;
    dir.Write("c/lint.json", R"({"tags": ["A", "B"], "prefix": "p", "disable": ["A303"], "only": ["A401"],
        "failLevel": "info", "baseline": "known.txt", "devices": ["d.json"], "tests": ["t"]})");
    std::string problem;
    const auto config = ReadConfig("c/lint.json", problem);
    ASSERT_TRUE(config) << problem;
    EXPECT_THAT(config->tags, ElementsAre("A", "B"));
    EXPECT_EQ(config->prefix + config->failLevel, "pinfo");
    EXPECT_THAT(config->disable, ElementsAre("A303"));
    EXPECT_THAT(config->only, ElementsAre("A401"));
    EXPECT_EQ(config->baseline, "c/known.txt");
    EXPECT_THAT(config->devices, ElementsAre("c/d.json"));
    EXPECT_THAT(config->tests, ElementsAre("c/t"));
    dir.Write("empty.json", "{}");
    EXPECT_EQ(ReadConfig("empty.json", problem)->baseline, "");
}

struct ConfigCase { const char* name; const char* text; const char* problem; };
void PrintTo(const ConfigCase& config, std::ostream* out) { *out << config.name; }
class BadLintConfig : public testing::TestWithParam<ConfigCase> {};

TEST_P(BadLintConfig, IsRefusedWithItsReason)
{
    const TempDir dir;
    dir.Write("c.json", GetParam().text);
    std::string problem;
    EXPECT_FALSE(ReadConfig("c.json", problem));
    EXPECT_EQ(problem, std::string("c.json: ") + GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(Table, BadLintConfig, testing::Values(
    ConfigCase{"NoObject", "[]", "must be an object, not a list"},
    ConfigCase{"UnknownKey", R"({"tag": ["A"]})", "unknown key \"tag\"; did you mean \"tags\"?"},
    ConfigCase{"PrefixAsNumber", R"({"prefix": 5})", "\"prefix\" must be a text, not a number"},
    ConfigCase{"TagsAsText", R"({"tags": "A"})", "\"tags\" must be a list of texts, not a text"},
    ConfigCase{"TagAsNumber", R"({"tags": ["A", 5]})", "\"tags\" must be a list of texts, with a number in it"},
    ConfigCase{"UnknownLevel", R"({"failLevel": "fatal"})", "\"failLevel\" must be error, warning or info"},
    ConfigCase{"UnknownCheckToLeaveOut", R"({"disable": ["A303", "B"]})", "no such check: B"},
    ConfigCase{"UnknownCheckToRun", R"({"only": ["X"]})", "no such check: X"}), CaseName());

// The profiles of a file: "product platform type scenes" each.
std::vector<std::string> ProfilesOf(const std::string& text)
{
    const TempDir dir;
    dir.Write("d.json", text);
    std::string problem;
    const auto profiles = ReadDeviceProfiles("d.json", problem);
    if (!profiles) {
        return {problem};
    }
    std::vector<std::string> texts;
    for (const auto& profile : *profiles) {
        texts.push_back(profile.product + "|" + profile.platform + "|" + profile.deviceType + "|");
        for (const int scene : profile.scenes) {
            texts.back() += std::to_string(scene);
        }
    }
    return texts;
}

TEST(DeviceProfilesTest, AreProfilesOrBundlesOneOrMany)
{
    EXPECT_THAT(ProfilesOf(R"({"Product": "P", "Platform": "F", "DeviceType": "T", "scenes": [1, 2]})"), ElementsAre("P|F|T|12"));
    EXPECT_THAT(ProfilesOf(R"([{}, {"detectScene": 3, "device": {"Product": "P"}}, {"detectScene": 3}, {"detectScene": "3"}])"),
        ElementsAre("|||", "P|||3", "|||3", "|||"));
    EXPECT_THAT(ProfilesOf("[]"), IsEmpty());
}

TEST(DeviceProfilesTest, WhatIsNoneIsRefused)
{
    for (const char* text : {"[5]", R"({"Product": 5})", R"({"Platform": []})", R"({"DeviceType": true})", R"({"scenes": 5})",
             R"({"scenes": ["1"]})", R"({"detectScene": 1, "device": "x"})", "[{}, null]"}) {
        EXPECT_THAT(ProfilesOf(text), ElementsAre(StartsWith("d.json: is no device profile with texts"))) << text;
    }
    EXPECT_THAT(ProfilesOf("{"), ElementsAre(StartsWith("d.json: line 1")));
}

} // namespace
