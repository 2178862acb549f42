#include "arborist/stores/repairs/reset_time_parser.h"

#include <string>
#include <vector>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "arborist/frame/log.h"
#include "tests/support/case_name.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_dir.h"
#include "tests/support/time_zone.h"
#include "tests/support/zip_file.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// 2024-01-15 10:00:00 and so on, in Central Europe.
constexpr std::int64_t AT_10 = 1705309200;
constexpr std::int64_t AT_11 = AT_10 + 3600;
constexpr std::int64_t AT_12 = AT_10 + 7200;

std::string At(int hour, const std::string& text)
{
    return "[2024-01-15 " + std::to_string(hour) + ":00:00.123] " + text + "\n";
}

std::string Begin(int hour, const std::string& command)
{
    return At(hour, "Command: \"recovery\" \"" + command + "\"");
}

std::string End(int hour)
{
    return At(hour, "zenrix recovery stopped");
}

std::string ResetEnd(int hour)
{
    return At(hour, "wipe_data_factory_menu success");
}

std::string Line(const std::string& text)
{
    return "FUNc:ResetTimeParser::ParseRecoveryLog: " + text;
}

class ResetTimeParserTest : public testing::Test {
protected:
    void ParseLog(const std::string& content) { mParser.ParseRecoveryLog(mDir.Write("log", content)); }

    std::int64_t ResetLogTime(const std::string& content)
    {
        return mParser.GetResetLogTime(mDir.Write("log", content));
    }

    TimeZone mZone{CENTRAL_EUROPE};
    TempDir mDir;
    LogCapture mLog;
    ResetTimeParser mParser{mDir.Path("unpacked/")};
};

TEST(ResetTimeParserNames, AreThoseOfTheDevice)
{
    EXPECT_THAT(ResetTimeParser::RECOVERY_PATHS,
        ElementsAre("/splash2/recovery/", "/splash2/", "/log/", "/log/recovery/"));
    EXPECT_EQ(ResetTimeParser::SEPARATOR, "\"");
    EXPECT_EQ(ResetTimeParser::RESET_LOG_NAME, "reset_log");
    EXPECT_EQ(ResetTimeParser::PRIVATE_PATH, "/data/data/");
    EXPECT_EQ(ResetTimeParser::BASE_URI_PATH, "content://com.example.repair.provider/records");
}

TEST_F(ResetTimeParserTest, LogServiceLeavesBothTimesAtZero)
{
    mDir.Write("unpacked/recovery_log", Begin(9, "UPDATE") + End(10));
    mDir.Write("recovery_log", Begin(9, "wipe_data") + End(10));
    mParser.ParseLogService();
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_EQ(mParser.GetResetTime(), 0);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ResetTimeParserTest, EndOfAnUpdateIsTheUpdateTime)
{
    ParseLog(Begin(9, "UPDATE") + At(9, "working") + End(10));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
    EXPECT_EQ(mParser.GetResetTime(), 0);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("isResetFlag: 0"), Line("isResetFlag: 0"), Line("isResetFlag: 0"),
            Line("dateTime: 1705309200"), Line("updateTime: 1705309200, resetTime: 0")));
}

TEST_F(ResetTimeParserTest, LogOfMoreThan32MebibytesCountsAsUnreadable)
{
    ParseLog(Begin(9, "UPDATE") + End(10) + std::string(32 << 20, '\n'));
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ResetTimeParserTest, EndOfAResetIsTheResetTimeAndEndsTheReading)
{
    ParseLog(Begin(9, "wipe_data") + ResetEnd(10) + End(11));
    EXPECT_EQ(mParser.GetResetTime(), AT_10);
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("isResetFlag: 1"), Line("isResetFlag: 1"), Line("dateTime: 1705309200"),
            Line("isResetFlag: 1"), Line("resetTime: 1705309200")));
}

TEST_F(ResetTimeParserTest, UpdateFromACardIsNoResetAlthoughItWipes)
{
    ParseLog(Begin(9, "factory_sd_update wipe_data") + End(10));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
    EXPECT_EQ(mParser.GetResetTime(), 0);
}

TEST_F(ResetTimeParserTest, UpdateComesBeforeTheOtherCommands)
{
    ParseLog(Begin(9, "wipe_data UPDATE") + End(10));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
    EXPECT_EQ(mParser.GetResetTime(), 0);
}

TEST_F(ResetTimeParserTest, UnknownCommandIsLoggedAndIgnored)
{
    ParseLog(Begin(9, "something") + End(10));
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_EQ(mParser.GetResetTime(), 0);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("invalid command"), Line("isResetFlag: 0"), Line("isResetFlag: 0"),
            Line("dateTime: 1705309200"), Line("updateTime: 0, resetTime: 0")));
}

TEST_F(ResetTimeParserTest, EndBeforeAnyCommandChangesNothing)
{
    ParseLog(ResetEnd(10));
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_EQ(mParser.GetResetTime(), 0);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(
            Line("isResetFlag: 0"), Line("dateTime: 1705309200"), Line("updateTime: 0, resetTime: 0")));
}

TEST_F(ResetTimeParserTest, UpdateBehindAResetIsMissed)
{
    ParseLog(Begin(9, "wipe_data") + End(10) + Begin(11, "UPDATE") + End(12));
    EXPECT_EQ(mParser.GetResetTime(), AT_10);
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
}

TEST_F(ResetTimeParserTest, ResetBehindAnUpdateTakesPartInBothKinds)
{
    ParseLog(Begin(9, "UPDATE") + End(10) + Begin(11, "wipe_data") + End(12));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_12); // a command adds a kind and removes none
    EXPECT_EQ(mParser.GetResetTime(), AT_12);
}

TEST_F(ResetTimeParserTest, TimesOnlyGrowAcrossLogs)
{
    ParseLog(Begin(9, "UPDATE") + End(11));
    ParseLog(Begin(9, "UPDATE") + End(10));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_11);
    ParseLog(Begin(9, "UPDATE") + End(12));
    EXPECT_EQ(mParser.GetUpdateTime(), AT_12);
}

TEST_F(ResetTimeParserTest, KnownResetTimeEndsTheReadingAtTheCommand)
{
    ParseLog(Begin(9, "wipe_data") + End(10));
    mLog.Clear();
    ParseLog(At(11, "first") + Begin(11, "wipe_data") + End(12));
    EXPECT_EQ(mParser.GetResetTime(), AT_10);
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN),
        ElementsAre(Line("isResetFlag: 0"), Line("isResetFlag: 1"), Line("resetTime: 1705309200")));
}

TEST_F(ResetTimeParserTest, EndWithoutADateCountsAsZero)
{
    ParseLog(Begin(9, "UPDATE") + "zenrix recovery stopped\n" + End(10) + "zenrix recovery stopped");
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
}

TEST_F(ResetTimeParserTest, LogThatCannotBeReadIsSilent)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    for (const char* path : {"missing", "", ".", "pipe", "/dev/zero"}) {
        mParser.ParseRecoveryLog(path);
        EXPECT_EQ(mParser.GetResetLogTime(path), 0);
    }
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    EXPECT_THAT(mLog.Lines(), IsEmpty());
}

TEST_F(ResetTimeParserTest, EmptyLogGivesTheLastLineOnly)
{
    ParseLog("");
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre(Line("updateTime: 0, resetTime: 0")));
}

TEST_F(ResetTimeParserTest, NoFilesAreLogged)
{
    mParser.GetFileContent({});
    EXPECT_THAT(mLog.Lines(FT::LEVEL_WARN), ElementsAre("FUNc:ResetTimeParser::GetFileContent: file is null"));
}

TEST_F(ResetTimeParserTest, RecoveryLogsAreKnownByTheirWholeName)
{
    mDir.Write("recovery_log", Begin(9, "UPDATE") + End(10));
    mDir.Write("recovery.log", Begin(9, "UPDATE") + End(11));
    mDir.Write("recovery_log_x", Begin(9, "UPDATE") + End(12));
    mParser.GetFileContent({"recovery_log_x", "./recovery_log"});
    EXPECT_THAT(mLog.Lines(), IsEmpty());
    mParser.GetFileContent({"recovery_log"});
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
    mParser.GetFileContent({"recovery.log"});
    EXPECT_EQ(mParser.GetUpdateTime(), AT_11);
}

TEST_F(ResetTimeParserTest, OldLogIsUnpackedAndRead)
{
    mDir.Write("recovery_log.old", Begin(9, "UPDATE") + End(12)); // not read itself
    WriteZip("recovery_log.oldrecovery_log.old", {{"recovery_log", Begin(9, "UPDATE") + End(10)}});
    mDir.MakeDir("unpacked");
    mParser.GetFileContent({"recovery_log.old"});
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
}

TEST_F(ResetTimeParserTest, OldLogIsKnownByItsNameAnywhereInTheEntry)
{
    WriteZip("old_recovery_log.old.1recovery_log.old", {{"recovery_log", Begin(9, "UPDATE") + End(10)}});
    mDir.MakeDir("unpacked");
    mParser.GetFileContent({"old_recovery_log.old.1"});
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
}

TEST_F(ResetTimeParserTest, ArchiveThatDoesNotUnpackLeavesTheLogThatIsThere)
{
    mDir.Write("unpacked/recovery_log", Begin(9, "UPDATE") + End(10));
    mParser.ParseZipContent("missing", "name");
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
}

TEST_F(ResetTimeParserTest, DamagedArchiveLeavesTheLogThatIsThere)
{
    mDir.Write("unpacked/recovery_log", Begin(9, "UPDATE") + End(10));
    WriteDamagedZip("old.zip", {{"recovery_log", Begin(9, "UPDATE") + End(12)}});
    mParser.ParseZipContent("old", ".zip");
    EXPECT_EQ(mParser.GetUpdateTime(), AT_10);
}

TEST_F(ResetTimeParserTest, EmptyTextUnpacksNothing)
{
    mDir.Write("unpacked/recovery_log", Begin(9, "UPDATE") + End(10));
    mParser.ParseZipContent("", "name");
    mParser.ParseZipContent("base", "");
    EXPECT_EQ(mParser.GetUpdateTime(), 0);
    mDir.Write("recovery_log", Begin(9, "UPDATE") + End(10));
    ResetTimeParser withoutDirectory("");
    withoutDirectory.ParseZipContent("base", "name");
    EXPECT_EQ(withoutDirectory.GetUpdateTime(), 0);
}

struct TimeCase { const char* name; const char* line; std::int64_t expected; };
void PrintTo(const TimeCase& timeCase, std::ostream* out) { *out << timeCase.name; }
class TimeOfRecoveryLine : public testing::TestWithParam<TimeCase> {};

TEST_P(TimeOfRecoveryLine, IsReadBehindTheFirstBracket)
{
    const TimeZone zone(CENTRAL_EUROPE);
    EXPECT_EQ(ResetTimeParser::GetTime(GetParam().line), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TimeOfRecoveryLine, testing::Values(
    TimeCase{"WithMilliseconds", "[2024-01-15 10:00:00.123] end", AT_10},
    TimeCase{"LastThreeCharactersAreLeftOut", "[2024-01-15 10:00:07] end", AT_10},
    TimeCase{"FewerBehindTheSecondsCutThem", "[2024-01-15 10:00:07.1] end", AT_10},
    TimeCase{"TextInFrontLengthensIt", "ab [2024-01-15 10:00:07] end", AT_10 + 7},
    TimeCase{"WithoutBrackets", "2024-01-15 10:00:00 end", AT_10},
    TimeCase{"WithoutClosingBracket", "[2024-01-15 10:00:00 end", AT_10},
    TimeCase{"EarlyClosingBracket", "]] [2024-01-15 10:00:00", AT_10},
    TimeCase{"OpeningBracketAtTheEnd", "2024-01-15 10:00:00 end [", 0},
    TimeCase{"NoDate", "[yesterday, ten o'clock.123]", 0},
    TimeCase{"Empty", "", 0}),
    CaseName());

class TimeOfResetLine : public testing::TestWithParam<TimeCase> {};

TEST_P(TimeOfResetLine, IsReadBehindThePrefix)
{
    const TimeZone zone(CENTRAL_EUROPE);
    EXPECT_EQ(ResetTimeParser::GetResetLogTimeForStr(GetParam().line), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TimeOfResetLine, testing::Values(
    TimeCase{"WithEnd", "time: 20240115100000;reason", AT_10},
    TimeCase{"PrefixIsAssumed", "123456" "20240115100000;", AT_10},
    TimeCase{"FirstEndCounts", "time: 20240115100000;20240115110000;", AT_10},
    TimeCase{"WithoutEnd", "time: 20240115100000", 0},
    TimeCase{"EndAtTheStart", "time: ;20240115100000;", 0},
    TimeCase{"EndBeforeTheStart", "a;b;cd" "20240115100000;", AT_10},
    TimeCase{"ShorterThanThePrefix", "t;", 0},
    TimeCase{"TooFewDigits", "time: 2024011510000;", 0},
    TimeCase{"Empty", "", 0}),
    CaseName());

TEST_F(ResetTimeParserTest, ResetLogYieldsItsLastLineThatIsNotEmpty)
{
    EXPECT_EQ(ResetLogTime("time: 20240115100000;\ntime: 20240115110000;\n\n\n\n"), AT_11);
    EXPECT_EQ(mParser.GetResetTime(), AT_11);
}

TEST_F(ResetTimeParserTest, ResetLogOverwritesAnExistingTime)
{
    ResetLogTime("time: 20240115110000;");
    EXPECT_EQ(ResetLogTime("time: 20240115100000;"), AT_10);
    EXPECT_EQ(mParser.GetResetTime(), AT_10);
    EXPECT_EQ(mParser.GetResetLogTime("missing"), 0);
    EXPECT_EQ(mParser.GetResetTime(), AT_10);
    EXPECT_EQ(ResetLogTime("no time"), 0);
    EXPECT_EQ(mParser.GetResetTime(), 0);
}

TEST_F(ResetTimeParserTest, ResetLogWithOneEmptyLineInFrontYieldsThatLine)
{
    EXPECT_EQ(ResetLogTime("\ntime: 20240115100000;"), 0);
    EXPECT_EQ(ResetLogTime("\n\ntime: 20240115100000;"), AT_10);
    EXPECT_EQ(ResetLogTime("x\ntime: 20240115100000;"), AT_10);
}

TEST_F(ResetTimeParserTest, ResetLogWithoutALineYieldsZero)
{
    EXPECT_EQ(ResetLogTime(""), 0);
    EXPECT_EQ(ResetLogTime("\n"), 0);
    EXPECT_EQ(ResetLogTime("\n\n\n"), 0);
    EXPECT_EQ(ResetLogTime("x"), 0);
}

// Searches backwards from the end, one character at a time.
std::string LastLineBackwards(const std::string& text)
{
    std::size_t position = text.size();
    while (position >= 2 && text[position - 1] == '\n') {
        --position;
    }
    while (position >= 2 && text[position - 1] != '\n') {
        --position;
    }
    const std::size_t begin = position < 2 ? 0 : position;
    return text.substr(begin, text.find('\n', begin) - begin);
}

TEST_F(ResetTimeParserTest, LastLineIsThatOfTheWayBackFromTheEnd)
{
    const std::vector<std::string> pieces = {"\n", "x", "time: 20240115100000;", "time: 20240115110000;"};
    for (std::size_t choice = 0; choice < 1024; ++choice) {
        std::string text;
        for (std::size_t place = 0, rest = choice; place < 5; ++place, rest /= 4) {
            text += pieces[rest % 4];
        }
        EXPECT_EQ(ResetLogTime(text), ResetTimeParser::GetResetLogTimeForStr(LastLineBackwards(text))) << text;
    }
}

} // namespace
