#include "diagnosis/redaction/redaction_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::ReadRedactionFile;
using diagnosis::Redaction;
using testing::ElementsAre;
using testing::Pair;

TEST(RedactionFileTest, EveryKeyIsReadAndTheKeyFileLiesBesideIt)
{
    const TempDir dir;
    dir.Write("r/key", "0123456789abcdef");
    const auto path = dir.Write("r/redaction.json", R"({"$schema": "x", "keyFile": "key", "bundle": ["deviceId", "device.RamSize"],
        "nodes": ["/sys/.*"], "log": [{"events": "7,10-12", "members": ["User"]}, {"members": ["PATH"]}],
        "results": ["bundle"]})");
    Redaction redaction;
    ASSERT_FALSE(ReadRedactionFile(path, redaction).has_value());
    EXPECT_EQ(redaction.key, "0123456789abcdef");
    EXPECT_THAT(redaction.bundleKeys, ElementsAre("deviceId", "device.RamSize"));
    ASSERT_EQ(redaction.nodes.size(), 1U);
    EXPECT_TRUE(std::regex_match("/sys/serial", redaction.nodes[0].pattern));
    ASSERT_EQ(redaction.log.size(), 2U);
    EXPECT_THAT(redaction.log[0].names, ElementsAre(Pair("user", "User")));
    EXPECT_TRUE(redaction.log[0].HasEvent(7) && redaction.log[0].HasEvent(12) && !redaction.log[0].HasEvent(9));
    EXPECT_TRUE(redaction.log[1].HasEvent(9));
    EXPECT_THAT(redaction.results, ElementsAre("bundle"));
}

struct BadFileCase { const char* name; const char* json; const char* message; };
void PrintTo(const BadFileCase& fileCase, std::ostream* out) { *out << fileCase.name; }
class BadRedactionFile : public testing::TestWithParam<BadFileCase> {};

TEST_P(BadRedactionFile, IsRefusedWithAllReasons)
{
    const TempDir dir;
    dir.Write("r.json", GetParam().json);
    Redaction redaction;
    const auto failure = ReadRedactionFile("r.json", redaction);
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->message, std::string("r.json: ") + GetParam().message);
    EXPECT_EQ(failure->code, diagnosis::FailureCode::BAD_REDACTION);
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::WRONG_USE);
}

INSTANTIATE_TEST_SUITE_P(Table, BadRedactionFile, testing::Values(
    BadFileCase{"NoJson", "{", "line 1, column 2: Missing '}' or object member name"},
    BadFileCase{"NoObject", "[]", "must hold an object, not a list"},
    BadFileCase{"NoKey", "{}", "there must be either \"key\" or \"keyFile\""},
    BadFileCase{"TwoKeys", R"({"key": "0123456789abcdef", "keyFile": "k"})", "there must be either \"key\" or \"keyFile\""},
    BadFileCase{"ShortKey", R"({"key": "short"})", "\"key\" must be a text of at least 16 bytes"},
    BadFileCase{"KeyAsNumber", R"({"key": 1234567890123456})", "\"key\" must be a text of at least 16 bytes"},
    BadFileCase{"KeyFileAsNumber", R"({"keyFile": 5})", "\"keyFile\" must be the name of a file"},
    BadFileCase{"KeyFileWithoutName", R"({"keyFile": ""})", "\"keyFile\" must be the name of a file"},
    BadFileCase{"KeyFileWithNul", R"({"keyFile": "a\u0000"})", "\"keyFile\" must be the name of a file"},
    BadFileCase{"EventsAsNumber", R"({"key": "0123456789abcdef", "log": [{"members": ["x"], "events": 7}]})",
        "\"log.events\" must be a text of numbers and ranges, as \"931001001,932000000-932999999\""},
    BadFileCase{"KeyFileMissing", R"({"keyFile": "k"})", "k: the key can't be read"},
    BadFileCase{"MisspeltKey", R"({"key": "0123456789abcdef", "node": ["x"]})", "unknown key \"node\"; did you mean \"nodes\"?"},
    BadFileCase{"MisspeltMembers", R"({"key": "0123456789abcdef", "log": [{"member": ["x"]}]})",
        "unknown key \"log.member\"; did you mean \"members\"?; \"log.members\" is missing"},
    BadFileCase{"NoMembers", R"({"key": "0123456789abcdef", "log": [{"members": []}, {"members": null}]})",
        "\"log.members\" names no member; \"log.members\" names no member"},
    BadFileCase{"PlaceOfTheBundle", R"({"key": "0123456789abcdef", "bundle": ["ruleFileDir", "device.Cpuname"]})",
        "\"bundle\" can't replace \"ruleFileDir\"; \"bundle\" can't replace \"device.Cpuname\"; did you mean \"device.CpuName\"?"},
    BadFileCase{"NoPattern", R"({"key": "0123456789abcdef", "nodes": ["["]})",
        "\"nodes\" has a pattern that is no regular expression: ["},
    BadFileCase{"ListAsText", R"({"key": "0123456789abcdef", "nodes": "/sys", "log": {}})",
        "\"nodes\" must be a list, not a text; \"log\" must be a list, not an object"},
    BadFileCase{"EmptyName", R"({"key": "0123456789abcdef", "log": [{"members": ["", 5]}]})",
        "\"log.members\" must have texts that are not empty; \"log.members\" must have texts that are not empty, not a number"},
    BadFileCase{"EventsThatAreNone", R"({"key": "0123456789abcdef", "log": [{"members": ["x"], "events": "a"}, 5]})",
        "\"log.events\" must be a text of numbers and ranges, as \"931001001,932000000-932999999\"; \"log\" must have objects, "
        "not a number"},
    BadFileCase{"UnknownPartOfResults", R"({"key": "0123456789abcdef", "results": ["detail"]})",
        "\"results\" can't replace \"detail\"; did you mean \"details\"?"}), CaseName());

TEST(RedactionFileTest, AFileLargerThanAMebibyteIsRefused)
{
    const TempDir dir;
    dir.Write("large.json", "{\"key\": \"0123456789abcdef\"}" + std::string(1 << 20, ' '));
    diagnosis::Redaction redaction;
    const auto failure = diagnosis::ReadRedactionFile("large.json", redaction);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->message, "large.json: is larger than 1 MiB");
    EXPECT_EQ(failure->status, diagnosis::ExitStatus::WRONG_USE);
}

} // namespace
