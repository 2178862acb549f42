#ifndef ARBORIST_DIAGNOSIS_PROCESS_LIBRARY_LOG_H
#define ARBORIST_DIAGNOSIS_PROCESS_LIBRARY_LOG_H

#include <memory>
#include <string>

namespace diagnosis {

class PathNames;

/// Takes lines of the library's log as texts.
class LogSink {
public:
    virtual ~LogSink() = default;

    /// Whether lines of this FT::LogLevel are worth making up.
    virtual bool IsWanted(unsigned int level) const = 0;
    /// `line` is "[[LEVEL] ]:" and the message with a line end, as the library's own logger prints it; paths in it are
    /// named as PathsShown says.
    virtual void OnLine(unsigned int level, const std::string& line) = 0;
};

/// Sends the library's log to `sink`, until it is given back or sent elsewhere. The command never gives it back.
void SendLibraryLogTo(std::unique_ptr<LogSink> sink);
/// Gives the log back to the library's own logger, which prints all lines to standard output. For hosts that outlive
/// their sink.
void GiveLibraryLogBack();

/// Lets the log name paths in another way while it lives. One at a time.
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
