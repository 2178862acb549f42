#ifndef ARBORIST_STORES_REPAIRS_RESET_TIME_PARSER_H
#define ARBORIST_STORES_REPAIRS_RESET_TIME_PARSER_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Finds when the device was last reset and last updated, from the logs that the recovery system leaves: what was
/// logged before doesn't describe the device as it is now.
///
/// An unreadable log is no fault: the times stay as they were. Times are seconds since the epoch, 0 until found. An
/// object belongs to one thread.
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

    /// `workingDirectory`, with its separator at the end, is where old logs are unpacked.
    explicit ResetTimeParser(std::string workingDirectory);

    /// Does nothing, on purpose: no log reaches the class by itself, and both times stay 0.
    void ParseLogService();

    std::int64_t GetUpdateTime() const { return updateTime; }
    std::int64_t GetResetTime() const { return resetTime; }

    /// Reads the entries that are named exactly as a recovery log, and unpacks and reads those that are old ones.
    void GetFileContent(const std::vector<std::string>& files);

    /// Takes the end of each update and reset in a recovery log, where it is later than what is known. The end of the
    /// first reset ends the reading: what follows in the file is not seen.
    void ParseRecoveryLog(const std::string& path);

    /// Unpacks the archive `archiveBase` + `name` into the directory and reads the recovery log there. The texts are
    /// joined as they are. Nothing happens when one of them or the directory is empty.
    void ParseZipContent(const std::string& archiveBase, const std::string& name);

    /// Reads the time of a reset log from its last line that isn't empty, makes it the reset time, also when it is
    /// earlier, and returns it. For a log that can't be read 0, and the reset time stays.
    std::int64_t GetResetLogTime(const std::string& path);

    /// The time in a line of a reset log, "time: YYYYMMDDhhmmss;..."; 0 when there is none.
    static std::int64_t GetResetLogTimeForStr(const std::string& line);
    /// The time in a line of a recovery log, "[YYYY-MM-DD hh:mm:ss.mmm]..."; 0 when there is none.
    static std::int64_t GetTime(const std::string& line);

private:
    // What one recovery log has shown so far.
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
