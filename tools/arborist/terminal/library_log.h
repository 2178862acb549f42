#ifndef ARBORIST_DIAGNOSIS_BUNDLE_LIBRARY_LOG_H
#define ARBORIST_DIAGNOSIS_BUNDLE_LIBRARY_LOG_H

#include <optional>
#include <string>

namespace diagnosis {

class PathNames;

/// Where the library's log goes: standard output belongs to results, so never there.
struct LogOptions {
    /// A word of LogLevelOf; lines from this level on go to standard error. Empty: "error", or "none" with a file.
    std::string level;
    /// The whole log, whatever the level; empty for none.
    std::string file;
};

/// The number of "trace", "debug", "info", "warn", "error" or "fatal", and one above all for "none".
std::optional<int> LogLevelOf(const std::string& word);

/// Puts the log where `options` say, for the rest of the process. Otherwise answers why not.
std::optional<std::string> OpenLibraryLog(const LogOptions& options);

/// Why some line could not be written into the file, in this process or one that was forked from it.
std::optional<std::string> LibraryLogProblem();

/// Lets the log name paths as `names` shows them, which must live until the next call; null for as they are.
void ShowPathsInLibraryLog(const PathNames* names);

/// Hears lines of the library's log beside where they go, while it lives. One at a time, after OpenLibraryLog.
class LogListener {
public:
    LogListener();
    virtual ~LogListener();
    LogListener(const LogListener&) = delete;
    LogListener& operator=(const LogListener&) = delete;

    /// Whether lines of this format are worth making up. Asked for every line: it must be quick.
    virtual bool IsWanted(unsigned int level, const std::string& format) const = 0;
    /// `function` is the one that logs, `message` what stands behind it.
    virtual void OnLine(const std::string& function, const std::string& message) = 0;
};

} // namespace diagnosis

#endif
