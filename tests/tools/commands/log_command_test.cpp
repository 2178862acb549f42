#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "diagnosis/sqlite/connection.h"
#include "tests/support/case_name.h"
#include "tests/support/event_log_builder.h"
#include "tests/support/temp_dir.h"
#include "tests/tools/command_bundle.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char LINES[] =
    R"({"time": "2024-05-01 10:00:00", "event": 1001, "version": "4.1", "extra": {"COUNT":3, "a" :  "b\u00e9"}})" "\n"
    R"({"time": "2024-01-01 00:00:00", "event": -5, "version": "", "extra": ""})" "\n"
    R"({"time": "2024-05-01 10:00:00", "event": 1001, "version": null, "extra": "no object"})" "\n"
    R"({"time": "1970-01-01 01:00:01", "event": 2147483647, "version": "4.1", "extra": null})" "\n";

class LogCommandTest : public testing::Test {
protected:
    ProcessResult Import(const std::string& lines, const std::vector<std::string>& more = {}) const
    {
        mDir.Write("events.jsonl", lines);
        std::vector<std::string> arguments = {"log", "import", "events.jsonl", "--to", "log.db"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunArborist(arguments);
    }

    // All rows of a statement, columns joined by "|".
    std::vector<std::string> Rows(const std::string& sql, int columns) const
    {
        diagnosis::Connection database;
        EXPECT_TRUE(database.Open(mDir.Path("log.db"), diagnosis::Connection::Mode::READ_ONLY));
        auto statement = database.Prepare(sql);
        std::vector<std::string> rows;
        while (statement && statement->Step()) {
            std::string row;
            for (int column = 0; column < columns; ++column) {
                row += (column == 0 ? "" : "|") + (statement->IsNull(column) ? "null" : statement->Text(column));
            }
            rows.push_back(row);
        }
        return rows;
    }

    std::vector<std::string> FilesBesideTheLog() const
    {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(mDir.Path())) {
            files.push_back(entry.path().filename().string());
        }
        std::sort(files.begin(), files.end());
        return files;
    }

    TempDir mDir;
};

TEST_F(LogCommandTest, ShowGivesBackTheLinesThatWereImported)
{
    const auto import = Import(LINES);
    EXPECT_THAT(import.out + import.err, IsEmpty());
    EXPECT_EQ(import.status, 0);
    EXPECT_EQ(RunArborist({"log", "show", "log.db"}).out, LINES);
}

TEST_F(LogCommandTest, TheLogHasTheLayoutOfTheMonitoringService)
{
    Import(LINES);
    EXPECT_THAT(Rows("select _ID, event_id, extra, version_id from event_info order by _ID", 4), ElementsAre(
        R"(1|1001|{"COUNT":3, "a" :  "b\u00e9"}|1)", "2|-5||2", "3|1001|no object|null", "4|2147483647|null|1"));
    EXPECT_THAT(Rows("select _ID, event_pid, occurrence_time from event_info_flow order by _ID", 3),
        ElementsAre("1|1|1714550400", "2|2|1704063600", "3|3|1714550400", "4|4|1"));
    EXPECT_THAT(Rows("select _ID, VERSION_NAME from event_version order by _ID", 2), ElementsAre("1|4.1", "2|"));
}

TEST_F(LogCommandTest, MissingVersionAndExtraAreEmptyAndSecondsAreATime)
{
    EXPECT_EQ(Import("\n  \n{\"event\": 7, \"time\": 1714550400}\r\n").status, 0);
    EXPECT_EQ(RunArborist({"log", "show", "log.db"}).out,
        "{\"time\": \"2024-05-01 10:00:00\", \"event\": 7, \"version\": \"\", \"extra\": \"\"}\n");
    EXPECT_THAT(RunArborist({"log", "show", "--seconds", "log.db"}).out, StartsWith("{\"time\": 1714550400, "));
    EXPECT_THAT(RunArborist({"log", "show", "--tz", "UTC", "log.db"}).out, StartsWith("{\"time\": \"2024-05-01 08:"));
}

TEST_F(LogCommandTest, AnHourThatComesTwiceIsShownInSeconds)
{
    // 2024-10-27 02:30:00 in summer time and again in winter time.
    Import("{\"event\": 7, \"time\": 1729989000}\n{\"event\": 7, \"time\": 1729992600}\n");
    const auto shown = RunArborist({"log", "show", "log.db"}).out;
    EXPECT_THAT(shown, AllOf(HasSubstr("\"time\": \"2024-10-27 02:30:00\""), HasSubstr("\"time\": 1729992600")));
    Import(shown);
    EXPECT_EQ(RunArborist({"log", "show", "log.db"}).out, shown);
    EXPECT_THAT(Rows("select occurrence_time from event_info_flow order by _ID", 1),
        ElementsAre("1729989000", "1729992600"));
}

TEST_F(LogCommandTest, StandardInputIsADash)
{
    EXPECT_EQ(RunArborist({"log", "import", "-", "--to", "log.db"}, {.input = LINES}).status, 0);
    EXPECT_EQ(RunArborist({"log", "show", "log.db"}).out, LINES);
}

struct BadLineCase { const char* name; const char* line; const char* problem; };
void PrintTo(const BadLineCase& lineCase, std::ostream* out) { *out << lineCase.name; }
class BadEventLine : public LogCommandTest, public testing::WithParamInterface<BadLineCase> {};

TEST_P(BadEventLine, IsNamedAndNothingIsWritten)
{
    mDir.Write("log.db", "the old log");
    const auto result = Import("{\"event\": 7, \"time\": 5}\n\n" + std::string(GetParam().line) + "\n");
    EXPECT_EQ(result.err, "arborist: events.jsonl:3: " + std::string(GetParam().problem) + "\n");
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(mDir.Read("log.db"), "the old log");
    EXPECT_THAT(FilesBesideTheLog(), ElementsAre("events.jsonl", "log.db"));
}

const std::string TOO_LONG((std::size_t{64} << 20U) + 1, ' ');
constexpr char TIME_PROBLEM[] =
    "\"time\" must be a local time \"YYYY-MM-DD HH:MM:SS\" that exists, or seconds since the epoch";

INSTANTIATE_TEST_SUITE_P(Table, BadEventLine, testing::Values(
    BadLineCase{"TooLong", TOO_LONG.c_str(), "the line is longer than 64 MiB"},
    BadLineCase{"NoJson", "event 7", "line 1, column 1: Syntax error: value, object or array expected."},
    BadLineCase{"NoObject", "[7]", "must be an object, not a list"},
    BadLineCase{"NoTime", R"({"event": 7})", "\"time\" is missing"},
    BadLineCase{"NoEvent", R"({"time": 7})", "\"event\" is missing"},
    BadLineCase{"UnknownKey", R"({"time": 7, "evnt": 7})", "unknown key \"evnt\"; did you mean \"event\"?"},
    BadLineCase{"TimeWithoutSeconds", R"({"event": 7, "time": "2024-05-01 10:00"})", TIME_PROBLEM},
    BadLineCase{"DayOutsideTheCalendar", R"({"event": 7, "time": "2023-02-29 10:00:00"})", TIME_PROBLEM},
    BadLineCase{"SkippedHour", R"({"event": 7, "time": "2024-03-31 02:30:00"})", TIME_PROBLEM},
    BadLineCase{"TimeWithFraction", R"({"event": 7, "time": 1.5})", TIME_PROBLEM},
    BadLineCase{"EventAsText", R"({"event": "7", "time": 5})", "\"event\" must be a whole number of 32 bits"},
    BadLineCase{"EventTooLarge", R"({"event": 2147483648, "time": 5})", "\"event\" must be a whole number of 32 bits"},
    BadLineCase{"VersionAsNumber", R"({"event": 7, "time": 5, "version": 4.1})", "\"version\" must be a text, not a number"},
    BadLineCase{"ExtraAsList", R"({"event": 7, "time": 5, "extra": [1]})",
        "\"extra\" must be an object or a text, not a list"}),
    CaseName());

TEST_F(LogCommandTest, EveryBadLineIsNamedUntilTwenty)
{
    EXPECT_THAT(Import("x\n{\"event\": 7, \"time\": 5}\ny\n").err,
        testing::AllOf(HasSubstr("events.jsonl:1: "), HasSubstr("events.jsonl:3: ")));
    std::string lines;
    for (int i = 0; i < 30; ++i) {
        lines += "x\n";
    }
    EXPECT_THAT(Import(lines).err, testing::EndsWith("events.jsonl: given up after 20 lines that can't be used\n"));
}

TEST_F(LogCommandTest, TheFoldersOfTheTargetAreMade)
{
    mDir.Write("events.jsonl", LINES);
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "a/b/log.db"}).status, 0);
    EXPECT_TRUE(mDir.Has("a/b/log.db"));
}

TEST_F(LogCommandTest, ATargetThatCannotBeWrittenIsTold)
{
    mDir.Write("events.jsonl", LINES);
    mDir.MakeDir("folder");
    mDir.Write("used.db-wal", "");
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "folder"}).err, "arborist: folder: is a folder\n");
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "used.db-wal/log.db"}).err,
        "arborist: used.db-wal/log.db: can't be written: Not a directory\n");
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "used.db"}).err,
        "arborist: used.db: is in use: there is used.db-wal\n");
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl", "--to", "./events.jsonl"}).err,
        "arborist: ./events.jsonl: is the file that is read\n");
    EXPECT_EQ(mDir.Read("events.jsonl"), LINES);
    EXPECT_EQ(RunArborist({"log", "import", "no.jsonl", "--to", "log.db"}).err,
        "arborist: no.jsonl: can't be read: No such file or directory\n");
    EXPECT_EQ(RunArborist({"log", "import", "folder", "--to", "log.db"}).status, 4);
    EXPECT_EQ(RunArborist({"log", "import", "events.jsonl"}).status, 2);
    EXPECT_FALSE(mDir.Has("log.db"));
}

TEST_F(LogCommandTest, ALogThatIsNoneIsTold)
{
    mDir.Write("text.db", "no database at all, though long enough to have had a header of one hundred bytes in it");
    mDir.Write("empty.db", "");
    EXPECT_EQ(RunArborist({"log", "show", "no.db"}).err, "arborist: no.db: no such file\n");
    EXPECT_EQ(RunArborist({"log", "show", "text.db"}).err, "arborist: text.db: file is not a database\n");
    EXPECT_EQ(RunArborist({"log", "show", "empty.db"}).err, "arborist: empty.db: no such table: event_info\n");
    EXPECT_EQ(RunArborist({"log", "show", "empty.db"}).status, 4);
}

TEST_F(LogCommandTest, APipeOrAFolderInPlaceOfALogIsToldAndNotWaitedFor)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    mDir.MakeDir("folder");
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{{"show"}, {"inspect"},
             {"slice", "--to", "new.db"}}) {
        for (const auto& [file, reason] : {std::pair("pipe", "is no plain file"), std::pair("folder", "is a folder")}) {
            std::vector<std::string> arguments = {"log"};
            arguments.insert(arguments.end(), command.begin(), command.end());
            arguments.emplace_back(file);
            const auto result = RunArborist(arguments);
            EXPECT_EQ(result.err, "arborist: " + std::string(file) + ": " + reason + "\n");
            EXPECT_EQ(result.status, 4);
        }
    }
}

// Views in place of a table: one that runs for ever, one that builds a text of a gigabyte.
TEST_F(LogCommandTest, AViewThatNeverEndsIsGivenUp)
{
    const auto view = [](const std::string& rows) {
        return EventLogBuilder().Schema("CREATE TABLE event_info_flow (_ID, event_pid, occurrence_time);"
            "CREATE TABLE event_version (_ID, VERSION_NAME); CREATE VIEW event_info AS " + rows + ";");
    };
    view("WITH RECURSIVE n (_ID) AS (SELECT 1 UNION ALL SELECT _ID + 1 FROM n) SELECT _ID, 5 AS event_id, '' AS extra,"
         " 1 AS version_id FROM n WHERE _ID < 0").WriteTo(mDir.Path("endless.db"));
    view("SELECT 1 AS _ID, 5 AS event_id, hex(zeroblob(400000000)) AS extra, 1 AS version_id").WriteTo(mDir.Path("long.db"));
    for (const char* command : {"show", "inspect"}) {
        const auto endless = RunArborist({"log", command, "endless.db"});
        EXPECT_EQ(endless.err, "arborist: endless.db: takes more work than a database of its size can need\n");
        EXPECT_EQ(endless.status, 4);
        EXPECT_EQ(RunArborist({"log", command, "long.db"}).err, "arborist: long.db: string or blob too big\n");
    }
}

TEST_F(LogCommandTest, ATextOfMillionsOfLettersIsShown)
{
    const std::string line = R"({"time": 5, "event": 7, "version": "", "extra": ")" + std::string(3'000'000, 'x') + "\"}\n";
    EXPECT_EQ(Import(line).status, 0);
    EXPECT_EQ(RunArborist({"log", "show", "--seconds", "log.db"}).out, line);
    EXPECT_EQ(RunArborist({"log", "slice", "log.db", "--to", "slice.db", "--last", "1"}).status, 0);
    EXPECT_EQ(RunArborist({"log", "show", "--seconds", "slice.db"}).out, line);
}

TEST_F(LogCommandTest, RowsOfStrangersAreShownAsTheyAre)
{
    Import(LINES);
    diagnosis::Connection database;
    ASSERT_TRUE(database.Open("log.db", diagnosis::Connection::Mode::CREATE));
    ASSERT_TRUE(database.Execute("delete from event_info; delete from event_info_flow;"
                                 "insert into event_info values (9, 'text', '{\"a\":1}\n', 77), (10, 7, '{\"a\":\n1}', 77),"
                                 " (11, 7, '{a}', 77); insert into event_info_flow values (10, 10, 9223372036854775807)"));
    EXPECT_EQ(RunArborist({"log", "show", "log.db"}).out,
        R"({"time": null, "event": "text", "version": null, "extra": "{\"a\":1}\n"})" "\n"
        R"({"time": 9223372036854775807, "event": 7, "version": null, "extra": "{\"a\":\n1}"})" "\n"
        R"({"time": null, "event": 7, "version": null, "extra": "{a}"})" "\n");
}

} // namespace
