#ifndef ARBORIST_TOOLS_TERMINAL_WIDTH_H
#define ARBORIST_TOOLS_TERMINAL_WIDTH_H

#include <cstddef>
#include <optional>
#include <string>

namespace diagnosis::command {

/// Columns of the terminal on standard output; nothing if it is none.
std::optional<std::size_t> TerminalWidth();

/// Breaks the lines of a help text that are longer than `width` columns between words. The rest of a line is indented
/// like its description: behind the first gap of two blanks, as of "  --json    One JSON object". Lines of examples,
/// which are indented and have no gap, stay whole, so that they can be copied.
std::string WrapHelp(const std::string& help, std::size_t width);

} // namespace diagnosis::command

#endif
