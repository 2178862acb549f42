#include "diagnosis/bundle/bundle_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::Bundle;
using diagnosis::Failure;
using diagnosis::ReadBundleText;
using diagnosis::Warning;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

TEST(BundleFileTest, EveryKeyIsRead)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = ReadBundleText("b.json", R"({"detectScene": -3, "treeTag": "T", "ruleFileDir": "r//",
        "ruleFilePrefix": "p", "logLocation": "l", "reservedText": "x", "deviceId": "i", "now": 5, "tz": "UTC",
        "device": {"DeviceType": "1", "Product": "2", "Platform": "3", "CpuName": "4", "RamSize": "5",
            "Resolution": "6", "BatteryCapacity": "7"},
        "settings": {"ProgramDataDir": "a", "AppDatabaseDir": "b", "AppFileDir": "c", "VersionName": "d",
            "DeviceRootDir": "e"},
        "codeAnswers": {"yes": true, "no": false}})", bundle, warnings);
    EXPECT_FALSE(failure.has_value());
    EXPECT_THAT(warnings, IsEmpty());
    EXPECT_EQ(bundle.detectScene, -3);
    EXPECT_EQ(bundle.treeTag + bundle.ruleFileDir + bundle.ruleFilePrefix + bundle.logLocation + bundle.reservedText
            + bundle.deviceId, "Trplxi");
    EXPECT_EQ(bundle.now + bundle.tz, "5UTC");
    const DeviceDetails& device = bundle.device;
    EXPECT_EQ(device.GetDeviceType() + device.GetProduct() + device.GetPlatform() + device.GetCpuName()
        + device.GetRamSize() + device.GetResolution() + device.GetBatteryCapacity(), "1234567");
    EXPECT_THAT(bundle.settings, ElementsAre(Pair(Settings::APP_DATABASE_DIR, "b"), Pair(Settings::APP_FILE_DIR, "c"),
        Pair(Settings::DEVICE_ROOT_DIR, "e"), Pair(Settings::PROGRAM_DATA_DIR, "a"), Pair(Settings::VERSION_NAME, "d")));
    EXPECT_THAT(bundle.codeAnswers, ElementsAre(Pair("no", false), Pair("yes", true)));
}

TEST(BundleFileTest, TheTwoRequiredKeysAreEnough)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    EXPECT_FALSE(ReadBundleText("b.json", R"({"detectScene": 1.0, "treeTag": "T"})", bundle, warnings).has_value());
    EXPECT_EQ(bundle.detectScene, 1);
    EXPECT_EQ(bundle.ruleFileDir, "rules");
    EXPECT_EQ(bundle.settings[Settings::PROGRAM_DATA_DIR], "programdata");
    EXPECT_THAT(warnings, IsEmpty());
}

struct BadKeyCase { const char* name; const char* json; const char* message; };
void PrintTo(const BadKeyCase& keyCase, std::ostream* out) { *out << keyCase.name; }
class BadBundleKey : public testing::TestWithParam<BadKeyCase> {};

TEST_P(BadBundleKey, IsNamedWithItsReason)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = ReadBundleText("b.json", GetParam().json, bundle, warnings);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->message, std::string("b.json: ") + GetParam().message);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_BUNDLE);
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::INPUT);
}

INSTANTIATE_TEST_SUITE_P(Table, BadBundleKey, testing::Values(
    BadKeyCase{"BothRequiredMissing", "{}", "\"detectScene\" is missing; \"treeTag\" is missing"},
    BadKeyCase{"RequiredMistyped", R"({"detectscene": 1, "treeTag": "T"})",
        "\"detectScene\" is missing (there is \"detectscene\")"},
    BadKeyCase{"EmptyTag", R"({"detectScene": 1, "treeTag": ""})", "\"treeTag\" must not be empty"},
    BadKeyCase{"SceneWithFraction", R"({"detectScene": 1.5, "treeTag": "T"})",
        "\"detectScene\" must be a whole number of 32 bits"},
    BadKeyCase{"SceneAsText", R"({"detectScene": "1", "treeTag": "T"})", "\"detectScene\" must be a number, not a text"},
    BadKeyCase{"SceneTooLarge", R"({"detectScene": 4294967296, "treeTag": "T"})",
        "\"detectScene\" must be a whole number of 32 bits"},
    BadKeyCase{"TagWithNul", R"({"detectScene": 1, "treeTag": "a\u0000b"})", "\"treeTag\" holds a NUL character"},
    BadKeyCase{"DeviceIdAsNumber", R"({"detectScene": 1, "treeTag": "T", "deviceId": 77})",
        "\"deviceId\" must be a text, not a number"},
    BadKeyCase{"DeviceAttributeAsNumber", R"({"detectScene": 1, "treeTag": "T", "device": {"RamSize": 8}})",
        "\"device.RamSize\" must be a text, not a number"},
    BadKeyCase{"SettingAsNull", R"({"detectScene": 1, "treeTag": "T", "settings": {"VersionName": null}})",
        "\"settings.VersionName\" must be a text, not null"},
    BadKeyCase{"AnswerAsText", R"({"detectScene": 1, "treeTag": "T", "codeAnswers": {"a": "yes"}})",
        "\"codeAnswers.a\" must be true or false, not a text"},
    BadKeyCase{"NowWithFraction", R"({"detectScene": 1, "treeTag": "T", "now": 1.5})",
        "\"now\" must be a text or a whole number, not a number"},
    BadKeyCase{"NowOfAnotherForm", R"({"detectScene": 1, "treeTag": "T", "now": "noon"})",
        "\"now\" must be a local time \"YYYY-MM-DD HH:MM:SS\" or seconds since the epoch, not \"noon\""},
    BadKeyCase{"UnknownZone", R"({"detectScene": 1, "treeTag": "T", "tz": "Mars"})",
        "\"tz\" names no time zone that this machine knows: \"Mars\""}),
    CaseName());

TEST(BundleFileTest, ADeviceWithoutAnIdIsWrittenWithoutTheKey)
{
    Bundle bundle;
    EXPECT_THAT(diagnosis::BundleText(bundle), Not(HasSubstr("deviceId")));
    bundle.deviceId = "SN-1";
    EXPECT_THAT(diagnosis::BundleText(bundle), HasSubstr("\"deviceId\": \"SN-1\""));
}

TEST(BundleFileTest, ACommentBeforeAKeyIsBadJsonAndHasItsPlace)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = ReadBundleText("b.json", "{\n  // one\n  \"detectScene\": 1}", bundle, warnings);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_JSON);
    EXPECT_EQ(failure->message, "b.json: line 2, column 3: a comment is no JSON");
}

TEST(BundleFileTest, ATextThatIsNoUtf8IsBadJsonAndHasItsPlace)
{
    for (const char* const name : {"\xE9", "\\uDC00"}) {
        Bundle bundle;
        std::vector<Warning> warnings;
        const auto failure = ReadBundleText(
            "b.json", "{\"detectScene\": 1,\n\"treeTag\": \"" + std::string(name) + "\"}", bundle, warnings);
        ASSERT_TRUE(failure.has_value()) << name;
        EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_JSON);
        EXPECT_EQ(failure->message.rfind("b.json: line 2, column 13: ", 0), 0U) << failure->message;
    }
}

TEST(BundleFileTest, JsonNestedTooDeepIsBadJson)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = ReadBundleText("b.json", std::string(100000, '['), bundle, warnings);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_JSON);
}

TEST(BundleFileTest, APipeInPlaceOfTheFileBlocksNothing)
{
    const TempDir dir;
    dir.MakeDir("b/bundle.json");
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = diagnosis::ReadBundleFile({"b", dir.Path("b")}, bundle, warnings);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->code, diagnosis::FailureCode::NO_BUNDLE_JSON);
}

TEST(BundleFileTest, AMomentInSecondsIsWrittenAsANumber)
{
    Bundle bundle;
    bundle.now = "-5";
    EXPECT_THAT(diagnosis::BundleText(bundle), HasSubstr("\"now\": -5,"));
    bundle.now = "99999999999999999999";
    EXPECT_THAT(diagnosis::BundleText(bundle), HasSubstr("\"now\": \"99999999999999999999\""));
    bundle.now = "";
    EXPECT_THAT(diagnosis::BundleText(bundle), HasSubstr("\"now\": \"\""));
    std::vector<Warning> warnings;
    Bundle read;
    EXPECT_FALSE(ReadBundleText("b.json", R"({"detectScene": 1, "treeTag": "T", "now": ""})", read, warnings).has_value());
}

TEST(BundleFileTest, WhatIsNoObjectIsRefused)
{
    Bundle bundle;
    std::vector<Warning> warnings;
    EXPECT_EQ(ReadBundleText("b.json", "[]", bundle, warnings)->message, "b.json: must hold an object, not a list");
}

TEST(BundleFileTest, ALargeFileIsNotRead)
{
    const TempDir dir;
    dir.Write("b/bundle.json", std::string((16U << 20U) + 1, ' '));
    Bundle bundle;
    std::vector<Warning> warnings;
    const auto failure = diagnosis::ReadBundleFile({"b", dir.Path("b")}, bundle, warnings);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->message, "b/bundle.json: larger than 16 MiB");
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::INTERNAL);
}

} // namespace
