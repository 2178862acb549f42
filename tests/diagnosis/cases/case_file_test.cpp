#include "diagnosis/cases/case_file.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "arborist/frame/settings.h"
#include "diagnosis/cases/case_time.h"
#include "tests/support/case_name.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::LoggedEvent;
using diagnosis::cases::CaseFile;
using diagnosis::cases::ReadCaseFile;
using diagnosis::cases::ReadCaseText;
using diagnosis::cases::TestCase;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

std::vector<std::string> Messages(const CaseFile& file)
{
    std::vector<std::string> messages;
    for (const auto& failure : file.failures) {
        messages.push_back(failure.message);
    }
    return messages;
}

// On Windows, with the drive.
std::string FromTheRoot(const std::string& path)
{
    return std::filesystem::absolute(path).generic_string();
}

// The one case of a text.
TestCase Read(const std::string& text)
{
    const CaseFile file = ReadCaseText("/rules/t.test.json", text);
    EXPECT_THAT(Messages(file), IsEmpty());
    EXPECT_THAT(file.cases, SizeIs(1));
    return file.cases.empty() ? TestCase() : file.cases.front();
}

std::vector<std::string> EventTexts(const TestCase& testCase)
{
    std::vector<std::string> texts;
    for (const LoggedEvent& event : testCase.events.value_or(std::vector<LoggedEvent>())) {
        texts.push_back(std::to_string(event.time) + " " + std::to_string(event.event) + " "
            + event.version.value_or("no version") + " " + event.extra.value_or("no extra"));
    }
    return texts;
}

TEST(CaseFileTest, EveryKeyOfACaseIsRead)
{
    const TestCase one = Read(R"({"rules": "../r", "prefix": "p", "tag": "T", "scene": 3, "tz": "UTC",
        "now": "2024-05-20 12:00:00", "version": "4.1", "appDatabaseDir": "", "device": {"Product": "X"},
        "name": "n", "note": "?", "reviewed": false,
        "files": {"/a": "1\n", "/b": 2}, "events": [], "repairs": {"R": "2024-05-01 08:00:00"},
        "databases": {"/d/x.db": {"t": {"columns": ["a INTEGER"], "rows": [[1], [null]]}}}, "answers": {"c": true},
        "expect": {"causes": {"A": ["x", "y"], "B": {"anyOrder": ["z"]}}, "verdicts": {"A": "fault"},
            "checks": {"A": "decided", "B": {"open": 2}}, "statuses": {"x": "TRUE"}, "reasons": {"r": "window_short"},
            "log": ["l"], "noLog": ["m"]}})");
    EXPECT_EQ(one.file + " " + one.name + " " + std::to_string(one.line), "/rules/t.test.json n 1");
    EXPECT_FALSE(one.isReviewed);
    EXPECT_EQ(one.bundle.ruleFileDir, FromTheRoot("/r"));
    EXPECT_EQ(one.bundle.ruleFilePrefix + one.bundle.treeTag + one.bundle.tz + one.bundle.now,
        "pTUTC2024-05-20 12:00:00");
    EXPECT_EQ(one.bundle.detectScene, 3);
    EXPECT_EQ(one.bundle.device.GetProduct(), "X");
    EXPECT_EQ(one.bundle.settings.at(Settings::VERSION_NAME) + one.bundle.settings.at(Settings::APP_DATABASE_DIR), "4.1");
    EXPECT_THAT(one.files, ElementsAre(Pair("/a", "1\n"), Pair("/b", "2")));
    ASSERT_THAT(one.repairs, SizeIs(1));
    EXPECT_EQ(one.repairs[0].id + " " + one.repairs[0].date, "R 2024-05-01 08:00:00");
    ASSERT_THAT(one.databases, SizeIs(1));
    EXPECT_EQ(one.databases[0].path + " " + one.databases[0].tables[0].columns[0], "/d/x.db a INTEGER");
    EXPECT_THAT(one.databases[0].tables[0].rows, SizeIs(2));
    EXPECT_THAT(one.answers, ElementsAre(Pair("c", true)));
    const auto& expected = one.expected;
    EXPECT_THAT(expected.causes.at("A").ids, ElementsAre("x", "y"));
    EXPECT_TRUE(expected.causes.at("A").inOrder);
    EXPECT_FALSE(expected.causes.at("B").inOrder);
    EXPECT_THAT(expected.verdicts, ElementsAre(Pair("A", "fault")));
    EXPECT_THAT(expected.decidedTrees, ElementsAre("A"));
    EXPECT_THAT(expected.checks.at("B"), ElementsAre(Pair("open", 2U)));
    EXPECT_THAT(expected.statuses, ElementsAre(Pair("x", "TRUE")));
    EXPECT_THAT(expected.reasons, ElementsAre(Pair("r", "window_short")));
    EXPECT_THAT(expected.log, ElementsAre("l"));
    EXPECT_THAT(expected.noLog, ElementsAre("m"));
}

TEST(CaseFileTest, ASmallCaseNeedsLittleAndIsAQuietDeviceInUtc)
{
    const TestCase one = Read(R"({"scene": 1, "expect": {"causes": {"T": []}}})");
    EXPECT_EQ(one.name, "t");
    EXPECT_TRUE(one.isReviewed);
    EXPECT_EQ(one.bundle.ruleFileDir, FromTheRoot("/rules"));
    EXPECT_EQ(one.bundle.treeTag + one.bundle.tz + one.bundle.now, "UTC2024-01-01 12:00:00");
    ASSERT_TRUE(one.events.has_value());
    EXPECT_THAT(*one.events, IsEmpty());
    EXPECT_EQ(one.bundle.settings.at(Settings::APP_DATABASE_DIR), "databases");
}

TEST(CaseFileTest, NullForEventsIsADeviceWithoutALog)
{
    EXPECT_FALSE(Read(R"({"scene": 1, "events": null, "expect": {"causes": {"T": []}}})").events.has_value());
}

TEST(CaseFileTest, EventsHaveTimesInTheZoneOfTheCaseOrDistancesFromItsMoment)
{
    const TestCase one = Read(R"({"scene": 1, "tz": "XST-2", "now": "1970-01-11 02:00:00", "events": [
        {"time": "1970-01-01 02:00:10", "event": 7, "version": "v", "extra": {"A":  1}},
        {"time": 5, "event": 8, "version": null, "extra": null},
        {"time": "-1d", "event": 9, "count": 2}, {"time": "+30m", "event": 9, "extra": "no json"},
        {"time": "-2h", "event": 9}, {"time": "-3s", "event": 9}], "expect": {"causes": {"T": []}}})");
    EXPECT_THAT(EventTexts(one), ElementsAre("10 7 v {\"A\":  1}", "5 8 no version no extra", "777600 9  ", "777600 9  ",
        "865800 9  no json", "856800 9  ", "863997 9  "));
}

TEST(CaseFileTest, CasesShareWhatTheFileSays)
{
    const CaseFile file = ReadCaseText("t.test.json", R"({"scene": 1, "device": {"Product": "P", "Platform": "F"},
        "files": {"/a": "1", "/b": "1"}, "events": [{"time": "-1d", "event": 1}], "answers": {"r": true},
        "cases": [
            {"name": "one", "expect": {"causes": {"T": []}}},
            {"name": "two", "scene": 2, "device": {"Product": "Q", "Platform": null}, "files": {"/b": "2", "/a": null},
             "events": [{"time": "-2d", "event": 2}], "answers": {"r": null}, "expect": {"causes": {"T": []}}}]})");
    ASSERT_THAT(Messages(file), IsEmpty());
    ASSERT_THAT(file.cases, SizeIs(2));
    const TestCase& one = file.cases[0];
    const TestCase& two = file.cases[1];
    EXPECT_EQ(one.bundle.device.GetProduct() + one.bundle.device.GetPlatform(), "PF");
    EXPECT_THAT(one.files, ElementsAre(Pair("/a", "1"), Pair("/b", "1")));
    EXPECT_THAT(EventTexts(one), SizeIs(1));
    EXPECT_THAT(one.answers, SizeIs(1));
    EXPECT_EQ(two.bundle.detectScene, 2);
    EXPECT_EQ(two.bundle.device.GetProduct() + two.bundle.device.GetPlatform(), "Q");
    EXPECT_THAT(two.files, ElementsAre(Pair("/b", "2")));
    EXPECT_THAT(two.answers, IsEmpty());
    EXPECT_EQ(two.line, 5);
    ASSERT_THAT(*two.events, SizeIs(2));
    EXPECT_EQ((*two.events)[0].event, 1);
    EXPECT_EQ((*two.events)[1].event, 2);
}

struct BadCase { const char* name; const char* text; const char* message; };
void PrintTo(const BadCase& badCase, std::ostream* out) { *out << badCase.name; }
class BadCaseFile : public testing::TestWithParam<BadCase> {};

TEST_P(BadCaseFile, IsToldWithLineAndColumn)
{
    EXPECT_THAT(Messages(ReadCaseText("t", GetParam().text)), ElementsAre(GetParam().message));
}

#define EXPECTS R"("expect": {"causes": {"T": []}})"

INSTANTIATE_TEST_SUITE_P(Table, BadCaseFile, testing::Values(
    BadCase{"NoJson", "{\n  \"scene\" 1}", "t:2:11: Missing ':' after object member name"},
    BadCase{"NoObject", "[]", "t:1:1: must hold an object, not a list"},
    BadCase{"NoScene", "{" EXPECTS "}", "t:1:1: \"scene\" is missing"},
    BadCase{"SceneIsText", "{\n  \"scene\": \"1\", " EXPECTS "}", "t:2:12: \"scene\" must be a whole number of 32 bits, not a text"},
    BadCase{"UnknownKey", "{\"scene\": 1, \"fles\": {}, " EXPECTS "}", "t:1:22: unknown key \"fles\"; did you mean \"files\"?"},
    BadCase{"UnknownAttribute", "{\"scene\": 1, \"device\": {\"product\": \"\"}, " EXPECTS "}",
        "t:1:36: unknown key \"device.product\"; did you mean \"Product\"?"},
    BadCase{"NoExpectations", "{\"scene\": 1}", "t:1:1: \"expect\" is missing"},
    BadCase{"ExpectsNothing", "{\"scene\": 1, \"expect\": {}}", "t:1:24: a case that expects nothing would always pass"},
    BadCase{"ExpectsNothingOfTrees", "{\"scene\": 1, \"expect\": {\"causes\": {}}}",
        "t:1:24: a case that expects nothing would always pass"},
    BadCase{"UnknownVerdict", R"({"scene": 1, "expect": {"verdicts": {"T": "nofault"}, "log": ["x"]}})",
        "t:1:43: unknown word \"nofault\"; did you mean \"no_fault\"?"},
    BadCase{"UnknownStatus", R"({"scene": 1, "expect": {"statuses": {"E": "true"}, "log": ["x"]}})",
        "t:1:43: unknown word \"true\"; did you mean \"TRUE\"?"},
    BadCase{"UnknownReason", R"({"scene": 1, "expect": {"reasons": {"r": "window_shrt"}, "log": ["x"]}})",
        "t:1:42: unknown word \"window_shrt\"; did you mean \"window_short\"?"},
    BadCase{"UnknownCheck", R"({"scene": 1, "expect": {"checks": {"T": {"opens": 1}}}})",
        "t:1:51: unknown word \"opens\"; did you mean \"open\"?"},
    BadCase{"ChecksAreText", R"({"scene": 1, "expect": {"checks": {"T": "all"}, "log": ["x"]}})",
        "t:1:41: the checks of a tree must be \"decided\" or an object with numbers of checks"},
    BadCase{"CausesAreText", R"({"scene": 1, "expect": {"causes": {"T": "A"}}})",
        "t:1:41: the causes of a tree must be a list of ids or {\"anyOrder\": ids}, not a text"},
    BadCase{"NoSuchZone", "{\"scene\": 1, \"tz\": \"Mars\", " EXPECTS "}",
        "t:1:20: names no time zone that this machine knows: \"Mars\""},
    BadCase{"NoSuchMoment", "{\"scene\": 1, \"now\": \"2024-02-30 00:00:00\", " EXPECTS "}",
        "t:1:21: \"now\" must be a local time \"YYYY-MM-DD HH:MM:SS\" that exists, or seconds since the epoch"},
    BadCase{"TimeWithoutNow", "{\"scene\": 1, \"events\": [{\"event\": 1, \"time\": \"2024-01-01 00:00:00\"}], " EXPECTS "}",
        "t:1:46: the case has no \"now\": name it, or give a distance like \"-3d\""},
    BadCase{"EventWithoutTime", "{\"scene\": 1, \"events\": [{\"event\": 1}], " EXPECTS "}", "t:1:25: event: \"time\" is missing"},
    BadCase{"EventWithAWrongKey", "{\"scene\": 1, \"events\": [{\"evnt\": 1}], " EXPECTS "}",
        "t:1:25: event: unknown key \"evnt\"; did you mean \"event\"?"},
    BadCase{"TooManyEvents", "{\"scene\": 1, \"events\": [{\"time\": \"-1d\", \"event\": 1, \"count\": 100001}], " EXPECTS "}",
        "t:1:25: more than 100,000 events"},
    BadCase{"CountOfNothing", "{\"scene\": 1, \"events\": [{\"time\": \"-1d\", \"event\": 1, \"count\": 0}], " EXPECTS "}",
        "t:1:62: \"count\" must be a whole number from 1"},
    BadCase{"RepairIsNoMoment", "{\"scene\": 1, \"now\": 5, \"repairs\": {\"R\": \"then\"}, " EXPECTS "}",
        "t:1:41: a repair must have a local time \"YYYY-MM-DD HH:MM:SS\" that exists, seconds since the epoch, or a "
        "distance like \"-3d\""},
    BadCase{"FileOutside", "{\"scene\": 1, \"files\": {\"../x\": \"\"}, " EXPECTS "}",
        "t:1:32: \"../x\" is no path of a file on the device"},
    BadCase{"FileOfTheBundle", "{\"scene\": 1, \"files\": {\"bundle.json\": \"\"}, " EXPECTS "}",
        "t:1:39: \"bundle.json\" is no path of a file on the device"},
    BadCase{"TableWithoutColumns", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": {\"rows\": []}}}, " EXPECTS "}",
        "t:1:40: the table \"t\" has no \"columns\""},
    BadCase{"RowTooShort", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": {\"columns\": [\"a\", \"b\"], \"rows\": [[1]]}}}, " EXPECTS "}",
        "t:1:73: a row of \"t\" must be a list of 2 values, one for each column"},
    BadCase{"ValueIsTrue", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": {\"columns\": [\"a\"], \"rows\": [[true]]}}}, " EXPECTS "}",
        "t:1:69: a value must be a text, a number or null"},
    BadCase{"AnswerIsText", "{\"scene\": 1, \"answers\": {\"r\": \"yes\"}, " EXPECTS "}",
        "t:1:31: an answer must be true or false, not a text"},
    BadCase{"DataAsFile", "{\"scene\": 1, \"files\": {\"programdata/x\": \"\"}, " EXPECTS "}",
        "t:1:41: \"programdata/x\" is no path of a file on the device"},
    BadCase{"CopyAsFile", "{\"scene\": 1, \"files\": {\"databases\": \"\"}, " EXPECTS "}",
        "t:1:37: \"databases\" is no path of a file on the device"},
    BadCase{"RootAsFile", "{\"scene\": 1, \"files\": {\"/\": \"\"}, " EXPECTS "}",
        "t:1:29: \"/\" is no path of a file on the device"},
    BadCase{"FileWithNul", "{\"scene\": 1, \"files\": {\"/a\": \"\\u0000\"}, " EXPECTS "}",
        "t:1:30: \"files./a\" holds a NUL character"},
    BadCase{"TagIsNumber", "{\"scene\": 1, \"tag\": 5, " EXPECTS "}", "t:1:21: \"tag\" must be a text, not a number"},
    BadCase{"EventIsText", "{\"scene\": 1, \"events\": [\"7\"], " EXPECTS "}", "t:1:25: event: must be an object, not a text"},
    BadCase{"CountIsText", "{\"scene\": 1, \"events\": [{\"time\": \"-1d\", \"event\": 1, \"count\": \"2\"}], " EXPECTS "}",
        "t:1:62: \"count\" must be a whole number from 1"},
    BadCase{"RepairIsTrue", "{\"scene\": 1, \"now\": 5, \"repairs\": {\"R\": true}, " EXPECTS "}",
        "t:1:41: a repair must have a local time \"YYYY-MM-DD HH:MM:SS\" that exists, seconds since the epoch, or a "
        "distance like \"-3d\""},
    BadCase{"DistanceWithoutSign", "{\"scene\": 1, \"now\": 5, \"repairs\": {\"R\": \"33d\"}, " EXPECTS "}",
        "t:1:41: a repair must have a local time \"YYYY-MM-DD HH:MM:SS\" that exists, seconds since the epoch, or a "
        "distance like \"-3d\""},
    BadCase{"DatabaseIsText", "{\"scene\": 1, \"databases\": {\"/d\": \"t\"}, " EXPECTS "}",
        "t:1:34: a database must be an object of tables, not a text"},
    BadCase{"DatabaseOutside", "{\"scene\": 1, \"databases\": {\"../d\": {}}, " EXPECTS "}",
        "t:1:36: \"../d\" is no path of a file on the device"},
    BadCase{"TableIsList", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": []}}, " EXPECTS "}",
        "t:1:40: a table must be an object with \"columns\" and \"rows\", not a list"},
    BadCase{"ColumnIsNumber", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": {\"columns\": [\"a\", 5]}}}, " EXPECTS "}",
        "t:1:58: \"databases.t.columns\" must be a text, not a number"},
    BadCase{"RowIsNumber", "{\"scene\": 1, \"databases\": {\"/d\": {\"t\": {\"columns\": [\"a\"], \"rows\": [1]}}}, " EXPECTS "}",
        "t:1:68: a row of \"t\" must be a list of 1 values, one for each column"},
    BadCase{"CausesWithoutAnyOrder", R"({"scene": 1, "expect": {"causes": {"T": {}}}})",
        "t:1:41: \"expect.causes.T.anyOrder\" is missing"},
    BadCase{"CauseIsNumber", R"({"scene": 1, "expect": {"causes": {"T": ["A", 5]}}})",
        "t:1:47: \"expect.causes\" must be a text, not a number"},
    BadCase{"VerdictIsNumber", R"({"scene": 1, "expect": {"verdicts": {"T": 5}, "log": ["x"]}})",
        "t:1:43: \"expect.verdicts\" must be a text, not a number"},
    BadCase{"CountOfChecksIsText", R"({"scene": 1, "expect": {"checks": {"T": {"open": "2"}}}})",
        "t:1:50: a number of checks must be a whole number from 0"},
    BadCase{"CasesAreText", "{\"scene\": 1, \"cases\": \"a\"}", "t:1:23: \"cases\" must be a list of at least one case"},
    BadCase{"CaseIsText", "{\"scene\": 1, \"cases\": [\"a\"]}", "t:1:24: a case must be an object, not a text"},
    BadCase{"NoCases", "{\"scene\": 1, \"cases\": []}", "t:1:23: \"cases\" must be a list of at least one case"},
    BadCase{"CaseWithoutName", "{\"scene\": 1, \"cases\": [{" EXPECTS "}]}", "t:1:24: \"name\" is missing"},
    BadCase{"NameTwice", "{\"scene\": 1, \"cases\": [{\"name\": \"a\", " EXPECTS "},\n {\"name\": \"a\", " EXPECTS "}]}",
        "t:2:11: another case of the file has this name"},
    BadCase{"ExpectBesideCases", "{\"scene\": 1, \"expect\": {}, \"cases\": [{\"name\": \"a\", " EXPECTS "}]}",
        "t:1:24: \"expect\" belongs into each of the \"cases\""}),
    CaseName());

TEST(CaseFileTest, AMistakeInWhatCasesShareIsToldOnce)
{
    const CaseFile file = ReadCaseText("t", "{\"scene\": 1, \"answers\": {\"r\": 1}, \"cases\": [{\"name\": \"a\", "
        EXPECTS "}, {\"name\": \"b\", " EXPECTS "}]}");
    EXPECT_THAT(Messages(file), ElementsAre("t:1:31: an answer must be true or false, not a number"));
    EXPECT_THAT(file.cases, IsEmpty());
}

TEST(CaseFileTest, NoMoreThanTwentyMistakesAreTold)
{
    std::string files;
    for (int i = 0; i < 30; ++i) {
        files += (i == 0 ? "\"/" : ", \"/") + std::to_string(i) + "\": true";
    }
    EXPECT_THAT(Messages(ReadCaseText("t", "{\"scene\": 1, \"files\": {" + files + "}, " EXPECTS "}")), SizeIs(20));
}

TEST(CaseFileTest, WhatManyCasesShareHasALimit)
{
    std::string cases;
    for (int i = 0; i < 11; ++i) {
        cases += std::string(i == 0 ? "" : ", ") + "{\"name\": \"" + std::to_string(i) + "\", " EXPECTS "}";
    }
    EXPECT_THAT(Messages(ReadCaseText("t", "{\"scene\": 1, \"events\": [{\"time\": \"-1d\", \"event\": 1, \"count\": 100000}], "
                             "\"cases\": [" + cases + "]}")),
        ElementsAre(testing::EndsWith(": up to here the cases have more than 1,000,000 events; put them into several files")));
    std::string files;
    for (int i = 0; i < 100'000; ++i) {
        files += std::string(i == 0 ? "" : ", ") + "\"" + std::to_string(i) + "\": 1";
    }
    EXPECT_THAT(Messages(ReadCaseText("t", "{\"scene\": 1, \"cases\": [" + cases + "], \"files\": {" + files + "}}")),
        ElementsAre("t:1:23: too many cases share too much; put them into several files"));
}

TEST(CaseFileTest, AMomentOutsideTheYearsIsRefused)
{
    EXPECT_THAT(Messages(ReadCaseText("t", R"({"scene": 1, "now": 9223372036854775807,
        "events": [{"time": "+1d", "event": 1}], )" EXPECTS "}")),
        ElementsAre(testing::HasSubstr("t:1:21: \"now\" must be a local time")));
}

TEST(CaseFileTest, AFileThatIsNoneIsAFailure)
{
    const TempDir dir;
    EXPECT_THAT(Messages(ReadCaseFile("none.test.json")), ElementsAre("none.test.json: no such file"));
    dir.MakeDir("folder.test.json");
    EXPECT_THAT(Messages(ReadCaseFile("folder.test.json")), ElementsAre("folder.test.json: no such file"));
}

TEST(CaseFileTest, ALargeFileIsNotRead)
{
    const TempDir dir;
    dir.Write("a.test.json", std::string((16U << 20U) + 1, ' '));
    EXPECT_THAT(Messages(ReadCaseFile("a.test.json")), ElementsAre("a.test.json: larger than 16 MiB"));
}

TEST(CaseFileTest, TextsThatAreNoDistancesAreMoments)
{
    for (const char* text : {"-", "-d", "-1x", "-1.5d", "-99999999999999999999d", "-9999999999d"}) {
        EXPECT_EQ(diagnosis::cases::ParseDistance(text), std::nullopt) << text;
    }
    EXPECT_EQ(diagnosis::cases::ParseDistance("+2h"), 7200);
}

} // namespace
