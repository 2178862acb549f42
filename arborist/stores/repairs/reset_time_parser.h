#ifndef ARBORIST_STORES_REPAIRS_RESET_TIME_PARSER_H
#define ARBORIST_STORES_REPAIRS_RESET_TIME_PARSER_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads from the logs of the recovery system when the device was last reset and last updated: events logged before
/// that don't describe the device as it is now.
///
/// An unreadable log, or one of more than 32 MiB, leaves the times unchanged and is no error. Times are seconds since
/// the epoch, 0 until one is found. Not thread-safe.
///
/// No log reaches its readers by itself (see ParseLogService): they are kept for devices that have such logs, and only
/// their tests call them.
class ResetTimeParser {
public:
    static constexpr std::string_view SEPARATOR = "\"";
    static constexpr std::string_view RESET_LOG_NAME = "reset_log";
    static constexpr std::string_view RESET_LOG_START = "time: ";
    static constexpr std::string_view RESET_LOG_DATE_END = ";";
    static constexpr std::string_view RECOVERY_LOG_1 = "recovery_log";
    static constexpr std::string_view RECOVERY_LOG_2 = "recovery.log";
    static constexpr std::string_view RECOVERY_OLDLOG = "recovery_log.old";
    static constexpr std::string_view CMD_BEGIN = "Command: \"recovery\"";
    static constexpr std::string_view CMD_END = "zenrix recovery stopped";
    static constexpr std::string_view CMD_RESET_END = "wipe_data_factory_menu success";
    static constexpr std::string_view UPDATE = "UPDATE";
    static constexpr std::string_view SD_UPDATE = "factory_sd_update";
    static constexpr std::string_view RESET = "wipe_data";
    static constexpr std::string_view PRIVATE_PATH = "/data/data/";
    static constexpr std::string_view BASE_URI_PATH = "content://com.example.repair.provider/records";
    static constexpr std::array<std::string_view, 4> RECOVERY_PATHS = {
        "/splash2/recovery/", "/splash2/", "/log/", "/log/recovery/"};

    /// Old logs are unpacked into `workingDirectory`, which ends in a separator.
    explicit ResetTimeParser(std::string workingDirectory);

    /// Does nothing, on purpose: both times stay 0, as the class reads only the logs that a caller hands to it.
    void ParseLogService();

    std::int64_t GetUpdateTime() const { return updateTime; }
    std::int64_t GetResetTime() const { return resetTime; }

    /// Reads the files that have exactly the name of a recovery log; unpacks and reads those that have the name of an
    /// old one.
    void GetFileContent(const std::vector<std::string>& files);

    /// Reads the ends of updates and resets from a recovery log; a later time replaces the known one. Stops at the end
    /// of the first reset: the lines after it are not read.
    void ParseRecoveryLog(const std::string& path);

    /// Unpacks the archive `archiveBase` + `name` into the directory and reads the recovery log there. Joins the two
    /// texts without a separator. Does nothing if one of them or the directory is empty.
    void ParseZipContent(const std::string& archiveBase, const std::string& name);

    /// Reads a time from the last non-empty line of a reset log, makes it the reset time even if it is earlier, and
    /// returns it. Returns 0 and keeps the reset time if the log can't be read.
    std::int64_t GetResetLogTime(const std::string& path);

    /// The time in a line of a reset log, "time: YYYYMMDDhhmmss;..."; 0 if there is none.
    static std::int64_t GetResetLogTimeForStr(const std::string& line);
    /// The time in a line of a recovery log, "[YYYY-MM-DD hh:mm:ss.mmm]..."; 0 if there is none.
    static std::int64_t GetTime(const std::string& line);

private:
    // The commands found so far in one recovery log.
    struct Commands {
        bool isUpdateFlag = false;
        bool isResetFlag = false;
    };

    bool ReadRecoveryLine(const std::string& line, Commands& commands);

    std::int64_t updateTime = 0;
    std::int64_t resetTime = 0;
    bool pendingFlag = false;
    std::string directory;
};

#endif
