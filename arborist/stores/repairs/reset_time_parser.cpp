#include "arborist/stores/repairs/reset_time_parser.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "arborist/frame/log.h"
#include "arborist/utilities/file_util.h"
#include "arborist/utilities/time_util.h"
#include "arborist/utilities/zip_util.h"

namespace {

constexpr char PARSE_RECOVERY_LOG[] = "ResetTimeParser::ParseRecoveryLog";

bool Contains(const std::string& line, std::string_view text)
{
    return line.find(text) != std::string::npos;
}

// The content of a log; on failure a stream in the failed state.
std::istringstream OpenLog(const std::string& path)
{
    std::string realPath;
    std::string text;
    std::istringstream log;
    // A device may have no end.
    const bool isRead = FileUtil::PathToRealPath(path, realPath) && FileUtil::IsPlainFile(realPath) &&
        FileUtil::LoadStringFromFile(realPath, text);
    if (isRead) {
        log.str(std::move(text));
    } else {
        log.setstate(std::ios::failbit);
    }
    return log;
}

// The last line that isn't empty; the empty text if all are empty.
std::string LastLine(std::istream& file)
{
    std::string last;
    std::string line;
    std::size_t lastBegin = 0;
    for (std::size_t begin = 0; std::getline(file, line); begin += line.size() + 1) {
        if (!line.empty()) {
            lastBegin = begin;
            last = line;
        }
    }
    // A last line that begins at position 1 doesn't count: the single empty line in front hides it. Hosts rely on the
    // reset times that result.
    return lastBegin == 1 ? "" : last;
}

} // namespace

ResetTimeParser::ResetTimeParser(std::string workingDirectory) : directory(std::move(workingDirectory)) {}

void ResetTimeParser::ParseLogService() {}

void ResetTimeParser::GetFileContent(const std::vector<std::string>& files)
{
    if (files.empty()) {
        FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: file is null", "ResetTimeParser::GetFileContent");
        return;
    }
    for (const std::string& file : files) {
        if (file == RECOVERY_LOG_1 || file == RECOVERY_LOG_2) {
            ParseRecoveryLog(file);
        }
        if (Contains(file, RECOVERY_OLDLOG)) {
            ParseZipContent(file, std::string(RECOVERY_OLDLOG));
        }
    }
}

void ResetTimeParser::ParseRecoveryLog(const std::string& path)
{
    std::istringstream file = OpenLog(path);
    if (!file) {
        return;
    }
    Commands commands;
    for (std::string line; std::getline(file, line);) {
        if (!ReadRecoveryLine(line, commands)) {
            return;
        }
    }
    FT::Log::GetInstance().Output(FT::LEVEL_WARN, "FUNc:%s: updateTime: %lld, resetTime: %lld", PARSE_RECOVERY_LOG,
        static_cast<long long>(updateTime), static_cast<long long>(resetTime));
}

// Returns false once a reset is known: the rest of the log doesn't count.
bool ResetTimeParser::ReadRecoveryLine(const std::string& line, Commands& commands)
{
    FT::Log& log = FT::Log::GetInstance();
    if (Contains(line, CMD_BEGIN)) {
        // Test for an update first: the command of an update may also name the wiping of data.
        if (Contains(line, UPDATE) || Contains(line, SD_UPDATE)) {
            commands.isUpdateFlag = true;
        } else if (Contains(line, RESET)) {
            commands.isResetFlag = true;
        } else {
            log.Output(FT::LEVEL_WARN, "FUNc:%s: invalid command", PARSE_RECOVERY_LOG);
        }
    }
    log.Output(FT::LEVEL_WARN, "FUNc:%s: isResetFlag: %d", PARSE_RECOVERY_LOG, commands.isResetFlag ? 1 : 0);
    if (commands.isResetFlag && resetTime != 0) {
        log.Output(
            FT::LEVEL_WARN, "FUNc:%s: resetTime: %lld", PARSE_RECOVERY_LOG, static_cast<long long>(resetTime));
        return false;
    }
    if (!Contains(line, CMD_END) && !Contains(line, CMD_RESET_END) && !pendingFlag) {
        return true;
    }
    pendingFlag = false;
    const std::int64_t dateTime = GetTime(line);
    log.Output(FT::LEVEL_WARN, "FUNc:%s: dateTime: %lld", PARSE_RECOVERY_LOG, static_cast<long long>(dateTime));
    if (commands.isUpdateFlag) {
        updateTime = std::max(updateTime, dateTime);
    }
    if (commands.isResetFlag) {
        resetTime = std::max(resetTime, dateTime);
    }
    return true;
}

void ResetTimeParser::ParseZipContent(const std::string& archiveBase, const std::string& name)
{
    if (directory.empty() || name.empty() || archiveBase.empty()) {
        return;
    }
    // If the archive can't be unpacked, an older log may still be in the directory; it is read instead.
    ZipUtil::UnZipFile(archiveBase + name, directory);
    ParseRecoveryLog(directory + std::string(RECOVERY_LOG_1));
}

std::int64_t ResetTimeParser::GetResetLogTime(const std::string& path)
{
    std::istringstream file = OpenLog(path);
    if (!file) {
        return 0;
    }
    resetTime = GetResetLogTimeForStr(LastLine(file));
    return resetTime;
}

std::int64_t ResetTimeParser::GetResetLogTimeForStr(const std::string& line)
{
    // Skips the length of the prefix without checking that it is there.
    const std::size_t begin = RESET_LOG_START.size();
    const std::size_t end = line.find(RESET_LOG_DATE_END, begin);
    if (end == std::string::npos) {
        return 0;
    }
    return TimeUtil::StrToTimeStamp(line.substr(begin, end - begin));
}

std::int64_t ResetTimeParser::GetTime(const std::string& line)
{
    // Without an opening bracket the text starts at the begin of the line. The length is not the distance between the
    // brackets, on purpose: in a line that starts with "[" it cuts off the last three characters, the milliseconds.
    // Without a closing bracket, or with one too early, the length covers the rest of the line.
    const std::size_t begin = line.find('[') + 1;
    const std::size_t length = line.find(']') - 4;
    return TimeUtil::StrToTimeStamp(line.substr(begin, length), "%Y-%m-%d %H:%M:%S");
}
