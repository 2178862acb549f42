#ifndef ARBORIST_TOOLS_TERMINAL_CONSOLE_H
#define ARBORIST_TOOLS_TERMINAL_CONSOLE_H

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

namespace diagnosis::command {

/// Occupies the numbers of closed standard streams, so that no other file gets one and receives their output. Reading
/// and writing these streams still fail. On Windows it makes the streams those of bytes, and consoles take UTF-8.
void KeepStandardStreams();

/// Columns of the terminal on standard output; nothing if it is none.
std::optional<std::size_t> TerminalWidth();

/// Opens a new file whose lines are written at once, so that a crash loses nothing and several processes can share it;
/// no program inherits it. Null, with errno, if it can't.
std::FILE* OpenLineByLine(const std::string& path);

} // namespace diagnosis::command

#endif
