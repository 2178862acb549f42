#ifndef ARBORIST_DIAGNOSIS_PROCESS_LIBRARY_LOG_H
#define ARBORIST_DIAGNOSIS_PROCESS_LIBRARY_LOG_H

#include <memory>
#include <string>

namespace diagnosis {

class PathNames;

/// Receives the lines of the library's log.
class LogSink {
public:
    virtual ~LogSink() = default;

    /// True if lines of this FT::LogLevel should be formatted at all.
    virtual bool IsWanted(unsigned int level) const = 0;
    /// `line` is "[[LEVEL] ]:", the message and a line end, like the output of the library's own logger; PathsShown
    /// decides how paths in it are named.
    virtual void OnLine(unsigned int level, const std::string& line) = 0;
};

/// Sends the library's log to `sink` until the next call, or until GiveLibraryLogBack. The command never gives it back.
void SendLibraryLogTo(std::unique_ptr<LogSink> sink);
/// Restores the library's own logger, which prints all lines to standard output. For hosts that outlive their sink.
void GiveLibraryLogBack();

/// As long as it exists, renames paths in the log. One at a time.
class PathsShown {
public:
    PathsShown() = default;
    ~PathsShown();
    PathsShown(const PathsShown&) = delete;
    PathsShown& operator=(const PathsShown&) = delete;

    /// `names` must outlive this object.
    void Show(const PathNames& names);
};

} // namespace diagnosis

#endif
