#ifndef ARBORIST_TOOLS_TERMINAL_LIBRARY_LOG_H
#define ARBORIST_TOOLS_TERMINAL_LIBRARY_LOG_H

#include <optional>
#include <string>

namespace diagnosis::command {

/// The targets of the library's log, never standard output, which is for results.
struct LogOptions {
    /// A word of LogLevelOf: lines from this level on go to standard error; none if empty.
    std::string level;
    /// The file for the whole log, whatever the level; empty for none.
    std::string file;
};

/// The level of "trace", "debug", "info", "warn", "error" or "fatal"; a number above all levels for "none".
std::optional<int> LogLevelOf(const std::string& word);

/// Sends the log to the targets for the rest of the process. Returns the reason if it can't.
std::optional<std::string> OpenLibraryLog(const LogOptions& options);

/// The reason if a line could not be written into the file, in this process or a forked one.
std::optional<std::string> LibraryLogProblem();

} // namespace diagnosis::command

#endif
