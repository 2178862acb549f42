#ifndef ARBORIST_FRAME_LOG_RECORDING_H
#define ARBORIST_FRAME_LOG_RECORDING_H

#include <string>
#include <vector>

namespace FT {

/// One line of the log, formatted: "FUNc:Name: text".
struct LogLine {
    int level;
    std::string text;
};
using LogLines = std::vector<LogLine>;

/// While it exists, the lines that its thread logs are appended to a list and don't reach the logger. Of nested
/// recordings only the innermost counts; one of null records nothing, and lines reach the logger.
class LogRecording {
public:
    /// `lines` must outlive the recording.
    explicit LogRecording(LogLines* lines);
    ~LogRecording();
    LogRecording(const LogRecording&) = delete;
    LogRecording& operator=(const LogRecording&) = delete;

    /// The list of this thread's recording; null without one. For a thread that works for this one.
    static LogLines* OfThread();

private:
    LogLines* mOuter;
};

/// Logs a recorded line again. The logger receives a format that begins as all do, and the function's name as its only
/// argument: the other arguments are part of the format.
void LogAgain(const LogLine& line);

} // namespace FT

#endif
