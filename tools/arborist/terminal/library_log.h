#ifndef ARBORIST_TOOLS_TERMINAL_LIBRARY_LOG_H
#define ARBORIST_TOOLS_TERMINAL_LIBRARY_LOG_H

#include <optional>
#include <string>

namespace diagnosis::command {

/// Where the library's log goes: standard output belongs to results, so never there.
struct LogOptions {
    /// A word of LogLevelOf; lines from this level on go to standard error. Empty: none.
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

} // namespace diagnosis::command

#endif
